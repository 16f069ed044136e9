#include <nlohmann/json.hpp>

#include "checks/atctl/run_program.h"

// atctl monitor as users run it.

namespace {

constexpr uint16_t kModules[] = {0x1002, 0x1003, 0x100a, 0x100e, 0x1019, 0x101c, 0x1022};

Wire NewMessage(int32_t index) {
    return Report(AT_MODULE_SMS, 0x0110, 1, Text("SM", 12) + Integers({index}));
}

// The queue of a module, as soon as the monitor has made it.
int QueueOf(uint16_t module) {
    int queue = -1;
    EXPECT_TRUE(WaitUntil([&] { return (queue = msgget(module, 0)) >= 0; }));
    return queue;
}

// Everything is there: the last queue is made.
void WaitForAll() {
    for (const uint16_t module : kModules)
        QueueOf(module);
}

using Monitor = Program;

TEST_F(Monitor, PrintsEachReportAsItComesAndEndsWithTheCount) {
    const Child child = Start({"monitor", "sms", "--count", "2", "--timeout", "20"});
    const int queue = QueueOf(AT_MODULE_SMS);
    EXPECT_EQ(msgget(AT_MODULE_CALL, 0), -1);
    ASSERT_TRUE(PutInto(queue, NewMessage(3)));
    // Not kept back until the end, though the output is no terminal.
    pollfd out = {child.out, POLLIN, 0};
    EXPECT_EQ(poll(&out, 1, 5000), 1);
    ASSERT_TRUE(PutInto(queue, NewMessage(4)));
    const Outcome outcome = Finish(child);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "atctl: listening as sms; there is no server yet\n");
    ASSERT_EQ(Lines(outcome.out), 2U) << outcome.out;
    const size_t second = outcome.out.find('\n') + 1;
    EXPECT_EQ(outcome.out.substr(12, second - 12), "  sms      new message  memory SM  index 3\n");
    EXPECT_EQ(outcome.out.substr(second + 12), "  sms      new message  memory SM  index 4\n");
}

TEST_F(Monitor, ListensAsEveryModuleWhenNoneIsNamed) {
    const Queue server(AT_MODULE_SERVER);
    const Child child = Start({"monitor", "--json", "--count", "3", "--timeout", "20"});
    WaitForAll();
    EXPECT_TRUE(PutInto(QueueOf(AT_MODULE_CALL), Report(AT_MODULE_CALL, 0x0407, 1, Text("RING", 4))));
    EXPECT_TRUE(PutInto(QueueOf(AT_MODULE_DATA), Report(AT_MODULE_DATA, 0x0625, 1, Integers({1}))));
    EXPECT_TRUE(PutInto(QueueOf(AT_MODULE_SMS), NewMessage(1)));
    const Outcome outcome = Finish(child);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "atctl: listening as call, sim, sms, time, toolkit, ussd, data\n");
    std::vector<std::string> names;
    for (size_t at = 0; at < outcome.out.size(); at = outcome.out.find('\n', at) + 1)
        names.push_back(
            nlohmann::json::parse(outcome.out.substr(at, outcome.out.find('\n', at) - at))["name"]);
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"+CMTI", "+ZCONSTAT", "RING"}));
}

TEST_F(Monitor, EndsWith3WhenTheTimeRunsOutBeforeTheCount) {
    const Outcome outcome = Atctl({"monitor", "sms", "--count", "2", "--timeout", "0.05"});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.out, "");
    EXPECT_NE(outcome.err.find("\natctl: the time is up after 0 of 2 reports\n"), std::string::npos);
    EXPECT_EQ(Atctl({"monitor", "sms", "--timeout", "0.05"}).status, 0);
}

TEST_F(Monitor, RefusesAQueueThatIsThereAndRemovesItsOwn) {
    // The last of the seven: six are made before it shows.
    const Queue data(AT_MODULE_DATA);
    ASSERT_TRUE(PutInto(data.Id(), Report(AT_MODULE_DATA, 0x0625, 1, Integers({1}))));
    Outcome outcome = Atctl({"monitor", "--timeout", "5"});
    EXPECT_EQ(outcome.status, 5);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err,
              "atctl: module data (queue 0x1022) is somebody else's: its queue was made by user " +
                  std::to_string(geteuid()) +
                  " and never read; end that program or name other modules, and remove a queue "
                  "that is left over with ipcrm -Q 0x1022\n");
    EXPECT_EQ(Queues(), 1);
    // What waited there still does.
    Wire message;
    EXPECT_TRUE(TakeFrom(data.Id(), message));
    outcome = Atctl({"monitor", "data", "--timeout", "5"});
    EXPECT_EQ(outcome.status, 5);
    EXPECT_NE(outcome.err.find("last read by process " + std::to_string(getpid()) + " (atctl_program_c"),
              std::string::npos)
        << outcome.err;
}

TEST_F(Monitor, SaysThatTheReaderOfAQueueIsGone) {
    const Queue sms(AT_MODULE_SMS);
    ASSERT_TRUE(PutInto(sms.Id(), NewMessage(1)));
    const pid_t reader = fork();
    if (reader == 0) {
        Wire message;
        _exit(TakeFrom(sms.Id(), message) ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(reader, &status, 0), reader);
    ASSERT_EQ(status, 0);
    EXPECT_NE(Atctl({"monitor", "sms"}).err.find("process " + std::to_string(reader) + ", which is gone;"),
              std::string::npos);
}

TEST_F(Monitor, TwoMonitorsShareNoModule) {
    const Child first = Start({"monitor", "sms", "--timeout", "60"});
    QueueOf(AT_MODULE_SMS);
    EXPECT_EQ(Atctl({"monitor", "call", "sms"}).status, 5);
    EXPECT_EQ(msgget(AT_MODULE_CALL, 0), -1);
    EXPECT_EQ(Atctl({"monitor", "call", "--timeout", "0.01"}).status, 0);
    EXPECT_NE(msgget(AT_MODULE_SMS, 0), -1);
    kill(first.pid, SIGTERM);
    EXPECT_EQ(Finish(first).status, 128 + SIGTERM);
}

TEST_F(Monitor, SignalsTakeTheQueuesAway) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const Child child = Start({"monitor"});
        WaitForAll();
        EXPECT_EQ(Queues(), 7);
        kill(child.pid, signal);
        const Outcome outcome = Finish(child);
        EXPECT_EQ(outcome.status, 128 + signal);
        EXPECT_NE(outcome.err.find("\natctl: interrupted after 0 reports\n"), std::string::npos);
        EXPECT_EQ(Queues(), 0);
    }
}

TEST_F(Monitor, EndsWhenNobodyReadsItsLines) {
    Child child = Start({"monitor", "sms"});
    QueueOf(AT_MODULE_SMS);
    close(child.out);
    child.out = open("/dev/null", O_RDONLY);
    EXPECT_EQ(Finish(child).status, 0);
}

TEST_F(Monitor, EndsWith7WhenItsQueueIsRemoved) {
    const Child child = Start({"monitor", "sms", "call"});
    QueueOf(AT_MODULE_CALL);
    msgctl(QueueOf(AT_MODULE_SMS), IPC_RMID, nullptr);
    const Outcome outcome = Finish(child);
    EXPECT_EQ(outcome.status, 7);
    EXPECT_NE(outcome.err.find("\natctl: somebody removed the queue of module sms\n"), std::string::npos);
}

TEST_F(Monitor, MisuseIsOneLineAndMakesNoQueue) {
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"smss"},
                                                      {"0x1000"},
                                                      {"-1"},
                                                      {"--count", "0"},
                                                      {"--count", "x"},
                                                      {"--count", "-2"},
                                                      {"--timeout", "0"},
                                                      {"--frob"}}) {
        std::vector<std::string> call = {"monitor", "--timeout", "3"};
        if (arguments[0] == "--timeout") call.resize(1);
        call.insert(call.end(), arguments.begin(), arguments.end());
        const Outcome outcome = Atctl(call);
        EXPECT_EQ(outcome.status, 2) << arguments[0];
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err.substr(0, 7), "atctl: ");
        EXPECT_EQ(Lines(outcome.err), 1U) << outcome.err;
    }
}

TEST_F(Monitor, TheSameModuleTwiceIsOne) {
    EXPECT_EQ(Atctl({"monitor", "sms", "SMS", "0x100a", "4106", "--timeout", "0.01"}).err,
              "atctl: listening as sms; there is no server yet\n");
}

}  // namespace
