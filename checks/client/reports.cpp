#include <poll.h>
#include <sys/ipc.h>
#include <sys/msg.h>

#include <cerrno>
#include <csignal>

#include "checks/client/support.h"

// Reports: taken one by one, by callback, by a descriptor.

namespace {

class Reports : public testing::TestWithParam<unsigned> {
  protected:
    const key_t key_ = PrivateKey();
};

bool Readable(int fd, int timeout_ms = 0) {
    pollfd one = {fd, POLLIN, 0};
    return poll(&one, 1, timeout_ms) == 1 && one.revents == POLLIN;
}

struct Seen {
    std::mutex lock;
    std::vector<int32_t> values;
    std::vector<at_client_error> errors;
    bool ask = false;

    size_t Count() {
        const std::lock_guard guard(lock);
        return values.size();
    }
};

void See(at_client* client, const at_client_message* message, void* context) {
    Seen& seen = *static_cast<Seen*>(context);
    at_client_error error = AT_CLIENT_OK;
    if (seen.ask) error = at_client_ask(client, kSignal, AT_CMD_TYPE_EXEC, nullptr, 0, kLong, nullptr);
    const std::lock_guard guard(seen.lock);
    seen.values.push_back(ValueOf(*message));
    seen.errors.push_back(error);
}

at_client_options WithCallback(key_t key, unsigned flags, Seen& seen) {
    at_client_options options = OptionsFor(key, flags);
    options.on_report = See;
    options.context = &seen;
    return options;
}

std::vector<int32_t> Numbers(int32_t first, int32_t last) {
    std::vector<int32_t> numbers;
    for (int32_t i = first; i <= last; ++i)
        numbers.push_back(i);
    return numbers;
}

}  // namespace

TEST_P(Reports, ComeInOrder) {
    const Client client = Open(OptionsFor(key_, GetParam()));
    for (int32_t i = 0; i < 5; ++i)
        PutReport(client, i);
    at_client_message report;
    for (int32_t i = 0; i < 5; ++i) {
        ASSERT_EQ(at_client_next_report(client.get(), &report, kLong), AT_CLIENT_OK);
        EXPECT_EQ(report.kind, AT_CLIENT_REPORT);
        EXPECT_EQ(report.type, 1);
        EXPECT_EQ(report.cmd_id, 0x0110);
        EXPECT_EQ(ValueOf(report), i);
    }
    EXPECT_EQ(at_client_next_report(client.get(), &report, 0), AT_CLIENT_TIMED_OUT);
    EXPECT_EQ(at_client_next_report(client.get(), &report, kShort), AT_CLIENT_TIMED_OUT);
    EXPECT_EQ(StatsOf(client).reports, 5U);
}

TEST_P(Reports, ThatComeWhileSomebodyAsksAreKept) {
    FakeServer server(key_, [&](const Wire& request, const FakeServer::Answer& answer) {
        for (int32_t i = 0; i < 3; ++i)
            answer(Report(request.record.usSourceModuleID, 0x0110, i));
        answer(FakeServer::AnswerTo(request, AT_RESULT_OK, {}));
    });
    const Client client = Open(OptionsFor(key_, GetParam()));
    ASSERT_EQ(at_client_ask(client.get(), kSignal, AT_CMD_TYPE_EXEC, nullptr, 0, kLong, nullptr),
              AT_CLIENT_OK);
    at_client_message report;
    for (int32_t i = 0; i < 3; ++i) {
        ASSERT_EQ(at_client_next_report(client.get(), &report, 0), AT_CLIENT_OK);
        EXPECT_EQ(ValueOf(report), i);
    }
}

TEST_P(Reports, ThatNobodyTakesLoseTheOldestFirst) {
    FakeServer server(key_, [&](const Wire& request, const FakeServer::Answer& answer) {
        for (int32_t i = 0; i < AT_CLIENT_MOST_REPORTS + 2; ++i)
            ASSERT_TRUE(WaitUntil([&] {
                return PutInto(msgget(request.record.usSourceModuleID, 0),
                               Report(request.record.usSourceModuleID, 0x0110, i));
            }));
        ASSERT_TRUE(WaitUntil([&] {
            return PutInto(msgget(request.record.usSourceModuleID, 0),
                           FakeServer::AnswerTo(request, AT_RESULT_OK, {}));
        }));
        (void)answer;
    });
    const Client client = Open(OptionsFor(key_, GetParam()));
    ASSERT_EQ(at_client_ask(client.get(), kSignal, AT_CMD_TYPE_EXEC, nullptr, 0, kLong, nullptr),
              AT_CLIENT_OK);
    EXPECT_EQ(StatsOf(client).lost, 2U);
    at_client_message report;
    for (int32_t i = 2; i < AT_CLIENT_MOST_REPORTS + 2; ++i) {
        ASSERT_EQ(at_client_next_report(client.get(), &report, 0), AT_CLIENT_OK);
        EXPECT_EQ(ValueOf(report), i);
    }
    EXPECT_EQ(at_client_next_report(client.get(), &report, 0), AT_CLIENT_TIMED_OUT);
}

TEST_P(Reports, OtherMessagesComeToo) {
    const Client client = Open(OptionsFor(key_, GetParam() | AT_CLIENT_TAKE_ALL));
    const int queue = QueueOf(client);
    Wire late = Report(at_client_module(client.get()), kSignal, 4);
    late.type = 99;
    ASSERT_TRUE(PutInto(queue, late));
    ASSERT_TRUE(PutInto(queue, late, 20));
    late.record.ulMagic = 0;
    ASSERT_TRUE(PutInto(queue, late));
    PutReport(client, 6);
    struct {
        at_client_kind kind;
        uint16_t length;
    } const kExpected[] = {{AT_CLIENT_STALE, AT_WIRE_SIZE},
                           {AT_CLIENT_FOREIGN, 20},
                           {AT_CLIENT_FOREIGN, AT_WIRE_SIZE},
                           {AT_CLIENT_REPORT, AT_WIRE_SIZE}};
    for (const auto& expected : kExpected) {
        at_client_message message;
        ASSERT_EQ(at_client_next_report(client.get(), &message, kLong), AT_CLIENT_OK);
        EXPECT_EQ(message.kind, expected.kind);
        EXPECT_EQ(message.length, expected.length);
        int32_t value;
        EXPECT_EQ(at_client_record(&message, &value, sizeof value),
                  expected.kind == AT_CLIENT_FOREIGN ? AT_CLIENT_WRONG_SIZE : AT_CLIENT_OK);
    }
}

TEST_P(Reports, AWaitEndsWithTheQueue) {
    const Client client = Open(OptionsFor(key_, GetParam()));
    const int queue = QueueOf(client);
    std::thread removing([&] { msgctl(queue, IPC_RMID, nullptr); });
    at_client_message report;
    EXPECT_EQ(at_client_next_report(client.get(), &report, AT_CLIENT_PATIENT), AT_CLIENT_QUEUE_GONE);
    removing.join();
}

INSTANTIATE_TEST_SUITE_P(, Reports, testing::Values(0U, unsigned{AT_CLIENT_THREAD}),
                         [](const auto& mode) { return mode.param == 0 ? "Polling" : "Thread"; });

TEST(Callback, IsCalledByPoll) {
    Seen seen;
    const Client client = Open(WithCallback(PrivateKey(), 0, seen));
    EXPECT_EQ(at_client_poll(client.get(), kShort), AT_CLIENT_TIMED_OUT);
    for (int32_t i = 1; i <= 7; ++i)
        PutReport(client, i);
    EXPECT_EQ(at_client_poll(client.get(), kLong), AT_CLIENT_OK);
    EXPECT_EQ(seen.values, Numbers(1, 7));
    EXPECT_EQ(at_client_poll(client.get(), 0), AT_CLIENT_TIMED_OUT);
}

TEST(Callback, AStormDoesNotKeepTheCaller) {
    struct Storm {
        int calls = 0;
        Wire report;
    } storm;
    at_client_options options = OptionsFor(PrivateKey());
    options.context = &storm;
    options.on_report = [](at_client* client, const at_client_message*, void* context) {
        Storm& one = *static_cast<Storm*>(context);
        ++one.calls;
        ASSERT_TRUE(PutInto(msgget(at_client_module(client), 0), one.report));
    };
    const Client client = Open(options);
    storm.report = Report(at_client_module(client.get()), 0x0110, 1);
    PutReport(client, 1);
    EXPECT_EQ(at_client_poll(client.get(), kLong), AT_CLIENT_OK);
    EXPECT_EQ(storm.calls, AT_CLIENT_MOST_REPORTS);
}

TEST(Callback, MayAsk) {
    const key_t key = PrivateKey();
    FakeServer server(key, FakeServer::Answering(AT_RESULT_OK, {}));
    Seen seen;
    seen.ask = true;
    const Client client = Open(WithCallback(key, 0, seen));
    PutReport(client, 1);
    PutReport(client, 2);
    EXPECT_EQ(at_client_poll(client.get(), kLong), AT_CLIENT_OK);
    EXPECT_EQ(seen.values, Numbers(1, 2));
    EXPECT_EQ(seen.errors, std::vector<at_client_error>(2, AT_CLIENT_OK));
}

TEST(Callback, OfTheThreadMayAskWhileOthersAsk) {
    const key_t key = PrivateKey();
    FakeServer server(key, FakeServer::Answering(AT_RESULT_OK, {}));
    Seen seen;
    seen.ask = true;
    const Client client = Open(WithCallback(key, AT_CLIENT_THREAD, seen));
    for (int32_t i = 1; i <= 20; ++i) {
        PutReport(client, i);
        EXPECT_EQ(at_client_ask(client.get(), kSignal, AT_CMD_TYPE_EXEC, nullptr, 0, kLong, nullptr),
                  AT_CLIENT_OK);
    }
    EXPECT_TRUE(WaitUntil([&] { return seen.Count() == 20; }, 20));
    EXPECT_EQ(seen.values, Numbers(1, 20));
    EXPECT_EQ(seen.errors, std::vector<at_client_error>(20, AT_CLIENT_OK));
    at_client_message report;
    EXPECT_EQ(at_client_next_report(client.get(), &report, 0), AT_CLIENT_MISUSE);
    EXPECT_EQ(at_client_poll(client.get(), 0), AT_CLIENT_MISUSE);
    EXPECT_EQ(at_client_fd(client.get()), -1);
}

TEST(Callback, ThatTakesItsTimeDoesNotHoldUpAnswers) {
    const key_t key = PrivateKey();
    FakeServer server(key, FakeServer::Answering(AT_RESULT_OK, {}));
    struct Gate {
        std::atomic<bool> entered{false};
        std::atomic<bool> open{false};
    } gate;
    at_client_options options = OptionsFor(key, AT_CLIENT_THREAD);
    options.context = &gate;
    options.on_report = [](at_client*, const at_client_message*, void* context) {
        Gate& one = *static_cast<Gate*>(context);
        one.entered = true;
        EXPECT_TRUE(WaitUntil([&] { return one.open.load(); }, 20));
    };
    const Client client = Open(options);
    PutReport(client, 1);
    ASSERT_TRUE(WaitUntil([&] { return gate.entered.load(); }));
    EXPECT_EQ(at_client_ask(client.get(), kSignal, AT_CMD_TYPE_EXEC, nullptr, 0, kLong, nullptr),
              AT_CLIENT_OK);
    gate.open = true;
}

TEST(Callback, OfTheThreadLeavesSignalsToTheProgram) {
    std::atomic<int> blocked{-1};
    at_client_options options = OptionsFor(PrivateKey(), AT_CLIENT_THREAD);
    options.context = &blocked;
    options.on_report = [](at_client*, const at_client_message*, void* context) {
        sigset_t mask;
        pthread_sigmask(SIG_BLOCK, nullptr, &mask);
        *static_cast<std::atomic<int>*>(context) = sigismember(&mask, SIGINT) + sigismember(&mask, SIGTERM);
    };
    const Client client = Open(options);
    PutReport(client, 1);
    ASSERT_TRUE(WaitUntil([&] { return blocked != -1; }));
    EXPECT_EQ(blocked, 2);
    sigset_t mask;
    pthread_sigmask(SIG_BLOCK, nullptr, &mask);
    EXPECT_EQ(sigismember(&mask, SIGINT), 0);
}

TEST(Callback, IsNeededForPoll) {
    const Client client = Open(OptionsFor(PrivateKey()));
    EXPECT_EQ(at_client_poll(client.get(), 0), AT_CLIENT_MISUSE);
}

TEST(Descriptor, IsReadableWhileReportsWait) {
    const Client client = Open(OptionsFor(PrivateKey(), AT_CLIENT_THREAD));
    const int fd = at_client_fd(client.get());
    ASSERT_GE(fd, 0);
    EXPECT_FALSE(Readable(fd));
    PutReport(client, 1);
    PutReport(client, 2);
    ASSERT_TRUE(Readable(fd, kLong));
    at_client_message report;
    ASSERT_EQ(at_client_next_report(client.get(), &report, kLong), AT_CLIENT_OK);
    ASSERT_EQ(at_client_next_report(client.get(), &report, kLong), AT_CLIENT_OK);
    EXPECT_EQ(ValueOf(report), 2);
    EXPECT_FALSE(Readable(fd));
    PutReport(client, 3);
    EXPECT_TRUE(Readable(fd, kLong));
}

TEST(Descriptor, TellsOfAnAnswer) {
    const key_t key = PrivateKey();
    FakeServer server(key, FakeServer::Answering(AT_RESULT_OK, {}));
    const Client client = Open(OptionsFor(key, AT_CLIENT_THREAD));
    int32_t request = 0;
    ASSERT_EQ(at_client_send(client.get(), kSignal, AT_CMD_TYPE_EXEC, nullptr, 0, 0, &request), AT_CLIENT_OK);
    ASSERT_TRUE(Readable(at_client_fd(client.get()), kLong));
    EXPECT_EQ(at_client_receive(client.get(), request, 0, nullptr), AT_CLIENT_OK);
    EXPECT_FALSE(Readable(at_client_fd(client.get())));
}

TEST(Descriptor, TellsOfTheEnd) {
    const Client stopped = Open(OptionsFor(PrivateKey(), AT_CLIENT_THREAD));
    at_client_stop(stopped.get());
    EXPECT_TRUE(Readable(at_client_fd(stopped.get()), kLong));
    const Client gone = Open(OptionsFor(PrivateKey(), AT_CLIENT_THREAD));
    ASSERT_EQ(msgctl(QueueOf(gone), IPC_RMID, nullptr), 0);
    EXPECT_TRUE(Readable(at_client_fd(gone.get()), kLong));
    at_client_message report;
    EXPECT_EQ(at_client_next_report(gone.get(), &report, 0), AT_CLIENT_QUEUE_GONE);
}

TEST(Descriptor, IsThereWithAThreadOnly) {
    EXPECT_EQ(at_client_fd(Open(OptionsFor(PrivateKey())).get()), -1);
}

TEST(Records, AreZeroWhenTheyAreNotThere) {
    EXPECT_EQ(at_client_record(nullptr, nullptr, 0), AT_CLIENT_MISUSE);
    at_client_message message = {};
    message.record_size = 4;
    message.size = 4;
    char record[8];
    memset(record, 1, sizeof record);
    EXPECT_EQ(at_client_record(&message, record, sizeof record), AT_CLIENT_WRONG_SIZE);
    EXPECT_EQ(std::string(record, sizeof record), std::string(sizeof record, '\0'));
    memset(record, 1, sizeof record);
    at_client_text(nullptr, record, sizeof record);
    EXPECT_EQ(record[0], '\0');
    at_client_text(&message, nullptr, 0);
}
