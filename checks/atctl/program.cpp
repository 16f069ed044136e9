#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <signal.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <nlohmann/json.hpp>

#include "checks/atctl/run_program.h"

// The program itself: what it prints where, and its exit statuses. The server's queue has the real key, so
// these checks run in a world with queues of its own, where ATCTL names the program.

TEST_F(Program, PrintsTheAnswerAndEndsWith0) {
    FakeServer server(AT_MODULE_SERVER, FakeServer::Answering(AT_RESULT_OK, Integers({20, 0})));
    const Outcome outcome = Atctl({"send", "+CSQ"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out,
              "+CSQ  signal quality: OK\n"
              "  rssi  20  (0..31 in steps of 2 dB from -113 dBm, 99 unknown)\n"
              "  ber   0   (bit error rate; 0 whenever the modem separates the two by a comma)\n");
}

TEST_F(Program, PrintsAnErrorAndEndsWith1) {
    FakeServer server(AT_MODULE_SERVER, FakeServer::Answering(AT_RESULT_CME_ERROR, Text("10", 2)));
    const Outcome outcome = Atctl({"send", "+CPIN?"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.out.find("no SIM is inserted"), std::string::npos);
    EXPECT_EQ(outcome.err, "");
}

TEST_F(Program, OptionsMayStandAnywhereAndNumbersMayBeNegative) {
    FakeServer server(AT_MODULE_SERVER, FakeServer::Answering(AT_RESULT_OK, Text("OK", 2)));
    EXPECT_EQ(Atctl({"send", "--json", "+CMGD=", "-1", "flag=-2"}).status, 0);
    EXPECT_EQ(Atctl({"send", "+CMGD=", "-1", "--timeout", "3", "-2", "--json"}).status, 0);
    EXPECT_EQ(Atctl({"send", "+CPMS=", "--", "-a", "--b", ""}).status, 0);
    EXPECT_EQ(Atctl({"send", "+CPMS=", "list", "show", "{}"}).status, 0);
    EXPECT_EQ(Atctl({"send", ""}).out, "AT  attention check: OK\n");
    const auto requests = server.Requests();
    ASSERT_EQ(requests.size(), 5U);
    for (int i = 0; i < 2; ++i) {
        const _BK_AT_CMD_T command = Command(requests[static_cast<size_t>(i)]);
        EXPECT_EQ(Bytes(command.aucParas, command.aucParas + 8), Integers({-1, -2}));
    }
    const auto texts = [&](size_t i) {
        const _BK_AT_CMD_T command = Command(requests[i]);
        return Bytes(command.aucParas, command.aucParas + command.usParaLen);
    };
    EXPECT_EQ(texts(2), Text("-a", 10) + Text("--b", 10) + Text("", 10));
    EXPECT_EQ(texts(3), Text("list", 10) + Text("show", 10) + Text("{}", 10));
    EXPECT_EQ(Command(requests[4]).usCmdID, 0x0001);
}

TEST_F(Program, DialsANumber) {
    FakeServer server(AT_MODULE_SERVER, FakeServer::Answering(AT_RESULT_OK, Text("OK", 2)));
    EXPECT_EQ(Atctl({"send", "D", "5550123"}).out, "D  dial: OK\n");
    ASSERT_EQ(server.Requests().size(), 1U);
    const _BK_AT_CMD_T command = Command(server.Requests()[0]);
    EXPECT_EQ(command.usCmdID, 0x0401);
    EXPECT_EQ(command.usParaLen, 7);
}

TEST_F(Program, EndsWith2WithoutAServer) {
    const Outcome outcome = Atctl({"send", "+CSQ"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err, "atctl: there is no server: no message queue 0x1000; start at-server first\n");
    EXPECT_EQ(outcome.out, "");
}

TEST_F(Program, EndsWith4WithoutPermission) {
    const Queue server(AT_MODULE_SERVER, 0);
    const Outcome outcome = Atctl({"send", "+CSQ"}, [] { prctl(PR_CAPBSET_DROP, CAP_IPC_OWNER, 0, 0, 0); });
    EXPECT_EQ(outcome.status, 4);
    EXPECT_EQ(outcome.err,
              "atctl: no permission to use the server's queue 0x1000; try as the server's user or root\n");
}

TEST_F(Program, EndsWith6WhenTheQueueIsFull) {
    const Queue server(AT_MODULE_SERVER);
    Wire message;
    message.type = 1;
    while (PutInto(server.Id(), message)) {
    }
    const Outcome outcome = Atctl({"send", "+CSQ"});
    EXPECT_EQ(outcome.status, 6);
    EXPECT_NE(outcome.err.find("queue is full"), std::string::npos);
}

TEST_F(Program, EndsWith3WithoutAnAnswer) {
    const Queue server(AT_MODULE_SERVER);
    const Outcome outcome = Atctl({"send", "+CSQ", "--timeout", "0.1"});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err,
              "atctl: no answer to +CSQ within 0.100 s; 1 request waits in the server's queue\n");
}

TEST_F(Program, SaysAtOnceThatTheServerIsGoneAndTakesTheNextOnesAnswer) {
    const Queue server(AT_MODULE_SERVER);
    Wire request;
    request.type = 1;
    ASSERT_TRUE(PutInto(server.Id(), request));
    const pid_t dead = fork();
    if (dead == 0) _exit(TakeFrom(server.Id(), request) ? 0 : 1);
    int status = -1;
    ASSERT_EQ(waitpid(dead, &status, 0), dead);
    ASSERT_EQ(status, 0);
    const Child child = Start({"send", "+CSQ", "--timeout", "15"});
    // Taken while it waits: the request would be answered after the whole time otherwise.
    std::string said;
    pollfd end = {child.err, POLLIN, 0};
    while (said.find('\n') == std::string::npos && poll(&end, 1, 10000) > 0) {
        char text[256];
        const ssize_t got = read(child.err, text, sizeof text);
        if (got <= 0) break;
        said.append(text, static_cast<size_t>(got));
    }
    EXPECT_EQ(said, "atctl: the server that last read its queue (process " + std::to_string(dead) +
                        ") is gone; still waiting (15 s in all), in case it is started again\n");
    ASSERT_TRUE(TakeFrom(server.Id(), request));
    const Wire answer = FakeServer::AnswerTo(request, AT_RESULT_OK, Integers({20, 0}));
    ASSERT_TRUE(PutInto(msgget(request.record.usSourceModuleID, 0), answer));
    const Outcome outcome = Finish(child);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out.substr(0, 24), "+CSQ  signal quality: OK");
    EXPECT_EQ(outcome.err, "");
}

TEST_F(Program, MisuseIsOneLineAndEndsWith2) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
        {{}, "a subcommand is missing: send, watch, monitor, bench, list, show;"},
        {{"frob"}, "there is no subcommand \"frob\", only send, watch, monitor, bench, list, show"},
        {{"sned"}, "; did you mean send?"},
        {{"+CSQ"}, "to send it: atctl send '+CSQ'"},
        {{"AT+CFUN=1"}, "to send it: atctl send '+CFUN=' 1"},
        {{"--jsno"}, "there is no option \"--jsno\" before the subcommand"},
        {{"-x"}, "there is no option \"-x\" before the subcommand; atctl --help tells more"},
        {{"help", "sned"}, "there is no subcommand \"sned\""},
        {{"raw", "AT+CSQ"}, "modules never send AT syntax, they fill records; type: atctl send '+CSQ'"},
        {{"raw", "+CPMS=SM,ME,SM"}, "type: atctl send '+CPMS=' SM ME SM"},
        {{"raw", "AT+XYZZY"}, "there is no command for \"AT+XYZZY\""},
        {{"raw"}, "atctl send COMMAND [FIELD...] fills one"},
        {{"send"}, "COMMAND is required; atctl send --help tells more"},
        {{"send", "AT+CSQ"},
         "modules never send AT syntax, they fill records; names stand without AT: atctl send '+CSQ'"},
        {{"send", "+CFUN=1"}, "they fill records; values stand one by one: atctl send '+CFUN=' 1"},
        {{"send", "+CSX"}, "there is no command \"+CSX\"; did you mean +CSQ?"},
        {{"send", "+CFUN="}, "+CFUN= takes 1 field (fun); fun is missing"},
        {{"send", "+CFUN=", "1", "2"}, "+CFUN= takes 1 field (fun); 2 were given"},
        {{"send", "+CFUN=", "fan=1"}, "front); did you mean fun?"},
        {{"send", "+CFUN=", "x"}, "+CFUN=: fun is a number, not \"x\""},
        {{"send", "+CFUN=", "9999999999"}, "is out of range"},
        {{"send", "+CPIN=", std::string(40, '1')}, "pin holds at most 31 bytes; the text has 40"},
        {{"send", "+CSQ", "1"}, "+CSQ takes no fields"},
        {{"send", "+CMTI"}, "only reported by the modem"},
        {{"send", "+CSQ", "--timeout", "0"}, "not a time from 0.001 to 86400 seconds"},
        {{"send", "+CSQ", "--timeout", "-3"}, "\"-3\" is not a time"},
        {{"send", "+CSQ", "--timeout"}, "--timeout"},
        {{"send", "+CSQ", "--module", "x"}, "--module is a number"},
        {{"send", "+CSQ", "--jsno"}, "atctl send has no option \"--jsno\"; did you mean --json?"},
        {{"send", "+CSQ", "--color", "red"}, "\"red\" is not auto, always or never"},
        {{"list", "sms", "more"}, "atctl list: \"more\" is one word too many"},
        {{"list", "xyzzy"}, "no command has \"xyzzy\" in its name or title"},
        {{"show"}, "NAME is required"},
        {{"show", "+CSX"}, "did you mean +CSQ?"},
        {{"monitor", "smss"}, "there is no module \"smss\", only call, sim, sms,"},
        {{"monitor", "smss"}, "; did you mean sms"},
        {{"watch"}, "COMMAND is required"},
        {{"watch", "+CSQ", "x"}, "\"x\" is not a time"},
        {{"watch", "+CSQ", "1", "2"}, "+CSQ takes no fields"},
        {{"watch", "+CSQ", "--field", "rsi"}, "has no field \"rsi\", only rssi, ber; did you mean rssi?"},
        {{"watch", "AT", "--field", "x"}, "the answer to AT has no fields"},
        {{"watch", "+CSQ", "--count", "-1"}, "\"-1\" is not a count"},
        {{"bench", "0"}, "\"0\" is not a count"},
        {{"bench", "--command", "+CFUN="}, "fun is missing"},
    };
    for (const auto& [arguments, text] : cases) {
        const Outcome outcome = Atctl(arguments);
        EXPECT_EQ(outcome.status, 2) << text;
        EXPECT_EQ(outcome.out, "") << text;
        EXPECT_EQ(outcome.err.substr(0, 7), "atctl: ") << text;
        EXPECT_EQ(Lines(outcome.err), 1U) << outcome.err;
        EXPECT_NE(outcome.err.find(text), std::string::npos) << outcome.err;
    }
}

TEST_F(Program, SignalsTakeTheQueueAway) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const Queue server(AT_MODULE_SERVER);
        const Child child = Start({"send", "+CSQ", "--timeout", "60"});
        Wire request;
        ASSERT_TRUE(WaitUntil([&] { return TakeFrom(server.Id(), request); }));
        EXPECT_NE(msgget(request.record.usSourceModuleID, 0), -1);
        kill(child.pid, signal);
        const Outcome outcome = Finish(child);
        EXPECT_EQ(outcome.status, 128 + signal);
        EXPECT_EQ(msgget(request.record.usSourceModuleID, 0), -1);
    }
}

TEST_F(Program, AQueueThatAKilledOneLeftIsNoHindrance) {
    FakeServer server(AT_MODULE_SERVER, FakeServer::Answering(AT_RESULT_OK, Text("OK", 2)));
    std::vector<Queue*> left;
    // Wherever in the range the next process begins, the first places are taken.
    const auto start = static_cast<unsigned>(getpid());
    for (unsigned i = 0; i < 64; ++i)
        left.push_back(new Queue(static_cast<key_t>(0x6000 + (start + i) % 0x2000)));
    EXPECT_EQ(Atctl({"send", "+CSQ"}).status, 0);
    ASSERT_EQ(server.Requests().size(), 1U);
    for (const Queue* queue : left)
        delete queue;
}

TEST_F(Program, ListsAndShowsInBothForms) {
    const Outcome list = Atctl({"list"});
    EXPECT_EQ(list.status, 0);
    EXPECT_GE(Lines(list.out), 187U);
    EXPECT_EQ(list.out.find('\033'), std::string::npos);
    EXPECT_EQ(nlohmann::json::parse(Atctl({"list", "--json"}).out).size(), 186U);
    const Outcome show = Atctl({"show", "csq"});
    EXPECT_EQ(show.status, 0);
    EXPECT_EQ(show.out.substr(0, 21), "+CSQ  signal quality\n");
    EXPECT_EQ(Lines(Atctl({"list", "signal QUALITY"}).out), 2U);
    EXPECT_EQ(nlohmann::json::parse(Atctl({"show", "+CSQ", "--json"}).out)["id"], 0x0604);
}

TEST_F(Program, EveryHelpHasTwoExamplesThatHold) {
    FakeServer server(AT_MODULE_SERVER, FakeServer::Answering(AT_RESULT_OK, Text("OK", 2)));
    for (const char* subcommand : {"send", "watch", "monitor", "bench", "list", "show"}) {
        const Outcome help = Atctl({subcommand, "--help"});
        EXPECT_EQ(help.status, 0);
        const std::string head = std::string("\n  atctl ") + subcommand;
        size_t examples = 0;
        for (size_t at = help.out.find(head); at != std::string::npos; at = help.out.find(head, at)) {
            const size_t end = help.out.find('\n', ++at);
            std::string line = help.out.substr(at, end - at);
            // What is behind two blanks explains the example.
            line = line.substr(2, line.find("  ", 8) - 2);
            const std::string shell = getenv("ATCTL") + line.substr(5) + " >/dev/null";
            EXPECT_EQ(system(shell.c_str()), 0) << shell;
            ++examples;
        }
        EXPECT_EQ(examples, 2U) << help.out;
    }
    EXPECT_EQ(Atctl({"--help"}).status, 0);
    EXPECT_EQ(Atctl({"help"}).out, Atctl({"--help"}).out);
    EXPECT_EQ(Atctl({"help", "send"}).out, Atctl({"send", "--help"}).out);
    const Outcome version = Atctl({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.out.substr(0, 6), "atctl ");
}

TEST_F(Program, ColoursAreForTerminalsThatWantThem) {
    setenv("TERM", "xterm", 1);
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(terminal, 0);
    ASSERT_EQ(grantpt(terminal) | unlockpt(terminal), 0);
    const int other = open(ptsname(terminal), O_RDWR | O_NOCTTY);
    ASSERT_GE(other, 0);
    const auto shown = [&](const Prepare& prepare) {
        const Outcome outcome = Finish(Start({"show", "+CSQ"}, prepare, other));
        EXPECT_EQ(outcome.status, 0);
        char text[4096];
        const ssize_t got = read(terminal, text, sizeof text);
        return std::string(text, static_cast<size_t>(std::max<ssize_t>(got, 0)));
    };
    EXPECT_NE(shown([] { unsetenv("NO_COLOR"); }).find("\033[1m+CSQ\033[0m"), std::string::npos);
    EXPECT_EQ(shown([] { setenv("NO_COLOR", "1", 1); }).find('\033'), std::string::npos);
    EXPECT_EQ(shown([] { setenv("TERM", "dumb", 1); }).find('\033'), std::string::npos);
    EXPECT_EQ(Atctl({"show", "+CSQ"}).out.find('\033'), std::string::npos);
    EXPECT_EQ(Atctl({"show", "+CSQ", "--color=always"}).out.substr(0, 4), "\033[1m");
    close(other);
    close(terminal);
}

TEST_F(Program, ReadsAListFromItsFile) {
    const char path[] = "/etc_rw/config/copslist";
    const auto write_list = [&] {
        const Bytes list = Integers({1, 2}) + Text("Network", 68) + Text("Net", 20) + Text("26201", 12) +
                           Text("7", 24) + Bytes(12804 - 132);
        const int file = open(path, O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (file < 0) return false;
        const bool good = write(file, list.data(), list.size()) == static_cast<ssize_t>(list.size());
        close(file);
        return good;
    };
    if (!write_list()) GTEST_SKIP() << "there is no /etc_rw/config to write to in this world";
    FakeServer server(AT_MODULE_SERVER, [&](const Wire& request, const FakeServer::Answer& answer) {
        EXPECT_TRUE(write_list());
        answer(FakeServer::AnswerTo(request, AT_RESULT_OK, {}, 12804));
    });
    const auto json = nlohmann::json::parse(Atctl({"send", "+COPS=?", "--json"}).out);
    ASSERT_EQ(json["entries"].size(), 1U);
    EXPECT_EQ(json["entries"][0]["long_name"], "Network");
    unlink(path);
}
