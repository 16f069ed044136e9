#include <sys/ioctl.h>

#include <mutex>
#include <nlohmann/json.hpp>

#include "checks/atctl/run_program.h"

// atctl watch and atctl bench as users run them.

namespace {

using Json = nlohmann::json;
using Watch = Program;
using Bench = Program;

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (size_t at = 0; at < text.size(); at = text.find('\n', at) + 1)
        lines.push_back(text.substr(at, text.find('\n', at) - at));
    return lines;
}

// A signal that goes 10, 11, 99 (which means that it is not known), 12, ...
FakeServer::Serve Moving() {
    return [next = 10](const Wire& request, const FakeServer::Answer& answer) mutable {
        const int value = next == 12 ? 99 : next > 12 ? next - 1 : next;
        ++next;
        answer(FakeServer::AnswerTo(request, AT_RESULT_OK, Integers({value, 0})));
    };
}

// A terminal of so many columns.
struct Terminal {
    explicit Terminal(unsigned short columns) : own(posix_openpt(O_RDWR | O_NOCTTY)) {
        EXPECT_GE(own, 0);
        EXPECT_EQ(grantpt(own) | unlockpt(own), 0);
        const winsize size = {24, columns, 0, 0};
        other = open(ptsname(own), O_RDWR | O_NOCTTY);
        EXPECT_EQ(ioctl(other, TIOCSWINSZ, &size), 0);
    }
    ~Terminal() {
        close(other);
        close(own);
    }
    // What was written up to the first line break, which comes at the end.
    std::string Read() const {
        std::string written;
        while (written.find('\n') == std::string::npos) {
            pollfd end = {own, POLLIN, 0};
            if (poll(&end, 1, 5000) <= 0) break;
            char text[4096];
            const ssize_t got = read(own, text, sizeof text);
            if (got <= 0) break;
            written.append(text, static_cast<size_t>(got));
        }
        return written;
    }
    int own;
    int other = -1;
};

void PlainTerminal() {
    setenv("TERM", "xterm", 1);
    setenv("NO_COLOR", "1", 1);
    setenv("LC_ALL", "C.UTF-8", 1);
}

TEST_F(Watch, PrintsALineForEachAnswerAndASummary) {
    FakeServer server(AT_MODULE_SERVER, Moving());
    const Outcome outcome = Atctl({"watch", "+CSQ", "0.01", "--count", "4"});
    EXPECT_EQ(outcome.status, 0);
    const auto lines = LinesOf(outcome.out);
    ASSERT_EQ(lines.size(), 4U) << outcome.out;
    EXPECT_EQ(lines[0].substr(12), "  +CSQ: OK  rssi 10  ber 0");
    EXPECT_EQ(lines[2].substr(12), "  +CSQ: OK  rssi 99 (unknown)  ber 0");
    EXPECT_EQ(outcome.err.substr(0, 29), "atctl: 4 requests of +CSQ in ") << outcome.err;
    EXPECT_NE(outcome.err.find("; rssi 10 to 12, mean 11; answered in "), std::string::npos) << outcome.err;
    EXPECT_EQ(server.Requests().size(), 4U);
}

TEST_F(Watch, DrawsOneLineOnATerminal) {
    FakeServer server(AT_MODULE_SERVER, Moving());
    const Terminal terminal(70);
    const Outcome outcome =
        Finish(Start({"watch", "+CSQ", "0.01", "--count", "4"}, PlainTerminal, terminal.other));
    EXPECT_EQ(outcome.status, 0);
    const std::string text = terminal.Read();
    const size_t last = text.rfind('\r', text.rfind("\033[K"));
    EXPECT_EQ(text.substr(last, text.rfind("\033[K") - last),
              "\r+CSQ  rssi 12            ▁▅?█  10 to 12  4 requests")
        << text;
    // Every line fits, the graph's characters have three bytes each.
    for (size_t at = text.find('\r'), end = 0; (end = text.find("\033[K", at)) != std::string::npos;
         at = text.find('\r', end))
        EXPECT_LT(end - at, 70U + 2 * 4);
    EXPECT_EQ(text.substr(text.size() - 2), "\r\n");
}

TEST_F(Watch, FitsANarrowTerminal) {
    FakeServer server(AT_MODULE_SERVER, Moving());
    const Terminal terminal(24);
    EXPECT_EQ(Finish(Start({"watch", "+CSQ", "0.01", "--count", "2"}, PlainTerminal, terminal.other)).status,
              0);
    EXPECT_NE(terminal.Read().find("\r+CSQ  rssi 11  ▁█\033[K"), std::string::npos);
}

TEST_F(Watch, IsALineOfJsonForEachAnswer) {
    FakeServer server(AT_MODULE_SERVER, Moving());
    const Outcome outcome = Atctl({"watch", "+CSQ", "0.01", "--count", "2", "--json"});
    const auto lines = LinesOf(outcome.out);
    ASSERT_EQ(lines.size(), 2U);
    const Json json = Json::parse(lines[1]);
    EXPECT_EQ(json["command"], "+CSQ");
    EXPECT_EQ(json["fields"]["rssi"], 11);
    EXPECT_GT(json["seconds"], 0);
    EXPECT_TRUE(json.contains("time"));
}

TEST_F(Watch, TheFieldThatIsNamedIsWatchedAndValuesAreSent) {
    FakeServer server(AT_MODULE_SERVER, FakeServer::Answering(AT_RESULT_OK, Integers({1, 7})));
    EXPECT_NE(Atctl({"watch", "+CSQ", "0.01", "--count", "2", "--field", "ber"}).err.find("; ber always 7;"),
              std::string::npos);
    EXPECT_EQ(Atctl({"watch", "+CFUN=", "0.01", "1", "--count", "1"}).status, 0);
    EXPECT_EQ(Command(server.Requests().back()).usParaLen, 4);
}

TEST_F(Watch, EndsWithTheWorstAnswer) {
    {
        FakeServer server(AT_MODULE_SERVER, FakeServer::Answering(AT_RESULT_CME_ERROR, Text("10", 2)));
        const Outcome outcome = Atctl({"watch", "+CSQ", "0.01", "--count", "2"});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_NE(outcome.out.find("no SIM is inserted"), std::string::npos);
        EXPECT_NE(outcome.err.find(", 2 with another result;"), std::string::npos);
    }
    const Queue silent(AT_MODULE_SERVER);
    const Outcome outcome = Atctl({"watch", "+CSQ", "0.01", "--count", "2", "--timeout", "0.05", "--json"});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(Lines(outcome.out), 2U);
    EXPECT_TRUE(Json::parse(LinesOf(outcome.out)[0])["result"].is_null());
    EXPECT_NE(outcome.err.find(", 2 not answered\n"), std::string::npos) << outcome.err;
}

TEST_F(Watch, BeginsWithAServerAndWaitsForOneThatGoesAway) {
    EXPECT_EQ(Atctl({"watch", "+CSQ"}).status, 2);
    auto server = std::make_unique<FakeServer>(AT_MODULE_SERVER, Moving());
    const Child child = Start({"watch", "+CSQ", "0.02", "--timeout", "0.1"});
    // A server of the same machine that is started anew.
    ASSERT_TRUE(WaitUntil([&] { return server->Requests().size() >= 2; }));
    server.reset();
    std::string out;
    char text[4096];
    while (out.find("there is no server") == std::string::npos) {
        pollfd end = {child.out, POLLIN, 0};
        ASSERT_GT(poll(&end, 1, 5000), 0) << out;
        out.append(text, static_cast<size_t>(std::max<ssize_t>(read(child.out, text, sizeof text), 0)));
    }
    server = std::make_unique<FakeServer>(AT_MODULE_SERVER, Moving());
    EXPECT_TRUE(WaitUntil([&] { return server->Requests().size() >= 2; }));
    kill(child.pid, SIGINT);
    const Outcome outcome = Finish(child);
    EXPECT_EQ(outcome.status, 128 + SIGINT);
    EXPECT_EQ(outcome.err.substr(0, 25), "atctl: interrupted after ");
    EXPECT_NE(outcome.err.find(" not answered"), std::string::npos);
}

TEST_F(Watch, SignalsTakeTheQueueAway) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        FakeServer server(AT_MODULE_SERVER, Moving());
        const Child child = Start({"watch", "+CSQ", "60"});
        ASSERT_TRUE(WaitUntil([&] { return !server.Requests().empty(); }));
        kill(child.pid, signal);
        EXPECT_EQ(Finish(child).status, 128 + signal);
        EXPECT_EQ(Queues(), 1);
    }
}

TEST_F(Watch, EndsWhenNobodyReadsItsLines) {
    FakeServer server(AT_MODULE_SERVER, Moving());
    Child child = Start({"watch", "+CSQ", "60"});
    ASSERT_TRUE(WaitUntil([&] { return !server.Requests().empty(); }));
    close(child.out);
    child.out = open("/dev/null", O_RDONLY);
    EXPECT_NE(Finish(child).status, 128 + SIGKILL);
}

TEST_F(Bench, PrintsWhereTheTimesLie) {
    FakeServer server(AT_MODULE_SERVER, FakeServer::Answering(AT_RESULT_OK, Text("OK", 2)));
    const Outcome outcome = Atctl({"bench", "25"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out.substr(0, 36), "AT  attention check: 25 requests in ");
    for (const char* word : {"  OK  25\n", "█", "  median  ", "  95 %  ", "  99 %  ", "  max  "})
        EXPECT_NE(outcome.out.find(word), std::string::npos) << word << outcome.out;
    ASSERT_EQ(server.Requests().size(), 25U);
    EXPECT_EQ(Command(server.Requests()[0]).usCmdID, 0x0001);
}

TEST_F(Bench, TellsTheSameInJson) {
    FakeServer server(AT_MODULE_SERVER, FakeServer::Answering(AT_RESULT_OK, Integers({20, 0})));
    const Json json = Json::parse(Atctl({"bench", "20", "--command", "+CSQ", "--json"}).out);
    EXPECT_EQ(json["command"], "+CSQ");
    EXPECT_EQ(json["requests"], 20);
    EXPECT_EQ(json["ok"], 20);
    EXPECT_EQ(json["no_answer"], 0);
    const Json& latency = json["latency_ms"];
    EXPECT_LE(latency["min"], latency["median"]);
    EXPECT_LE(latency["median"], latency["p95"]);
    EXPECT_LE(latency["p95"], latency["p99"]);
    EXPECT_LE(latency["p99"], latency["max"]);
    size_t counted = 0;
    for (const Json& bin : json["histogram"])
        counted += bin["count"].get<size_t>();
    EXPECT_EQ(counted, 20U);
}

TEST_F(Bench, CountsWhatIsNotOkAndGivesUpOnSilence) {
    {
        FakeServer server(AT_MODULE_SERVER, FakeServer::Answering(AT_RESULT_ERROR, Text("ERROR", 5)));
        const Outcome outcome = Atctl({"bench", "5", "--json"});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(Json::parse(outcome.out)["ok"], 0);
        EXPECT_EQ(Json::parse(outcome.out)["other_results"].begin().value(), 5);
    }
    // The first is answered, then nothing is.
    FakeServer server(AT_MODULE_SERVER,
                      [first = true](const Wire& request, const FakeServer::Answer& answer) mutable {
                          if (first) answer(FakeServer::AnswerTo(request, AT_RESULT_OK, Text("OK", 2)));
                          first = false;
                      });
    const Outcome outcome = Atctl({"bench", "100", "--timeout", "0.05"});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_NE(outcome.out.find("no answer  3"), std::string::npos) << outcome.out;
    EXPECT_EQ(outcome.err,
              "atctl: no answer to AT within 0.050 s; gave up after 3 requests in a row without an answer\n");
    EXPECT_EQ(server.Requests().size(), 4U);
}

TEST_F(Bench, IsInterruptedWithWhatThereIs) {
    FakeServer server(AT_MODULE_SERVER, FakeServer::Answering(AT_RESULT_OK, Text("OK", 2)));
    const Child child = Start({"bench", "1000000"});
    ASSERT_TRUE(WaitUntil([&] { return server.Requests().size() > 3; }));
    kill(child.pid, SIGINT);
    const Outcome outcome = Finish(child);
    EXPECT_EQ(outcome.status, 128 + SIGINT);
    EXPECT_NE(outcome.out.find("median"), std::string::npos);
    EXPECT_NE(outcome.err.find("atctl: interrupted after "), std::string::npos);
    EXPECT_EQ(Queues(), 1);
}

}  // namespace
