#include <sys/ipc.h>
#include <sys/msg.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <ctime>
#include <set>

#include "checks/client/support.h"

// Requests and their answers, with a thread of the handle and without.

namespace {

class Asking : public testing::TestWithParam<unsigned> {
  protected:
    Client OpenIt() const { return Open(OptionsFor(key_, GetParam())); }
    static at_client_error Ask(const Client& client, at_client_message* answer = nullptr,
                               int timeout_ms = kLong) {
        return at_client_ask(client.get(), kSignal, AT_CMD_TYPE_EXEC, nullptr, 0, timeout_ms, answer);
    }
    const key_t key_ = PrivateKey();
};

void Restamp(Wire& wire, uint16_t cmd_id, uint8_t cmd_type) {
    _BK_AT_RES_T res;
    memcpy(&res, wire.record.aucDataBuf, sizeof res);
    res.usCmdID = cmd_id;
    res.ucCmdType = cmd_type;
    memcpy(wire.record.aucDataBuf, &res, sizeof res);
}

}  // namespace

TEST_P(Asking, ARequestIsTheRecordThatTheServerReads) {
    const Queue server(key_);
    const Client client = OpenIt();
    const Bytes record = Integers({1, 2});
    int32_t number = 0;
    ASSERT_EQ(at_client_send(client.get(), 0x010B, AT_CMD_TYPE_SET, record.data(), record.size(), 0, &number),
              AT_CLIENT_OK);
    Wire request;
    ASSERT_TRUE(TakeFrom(server.Id(), request));
    EXPECT_EQ(request.type, number);
    EXPECT_GT(request.type, 1);
    EXPECT_LT(request.type, INT32_MAX);
    EXPECT_EQ(request.record.usTargetModuleID, AT_MODULE_SERVER);
    EXPECT_EQ(request.record.usSourceModuleID, at_client_module(client.get()));
    EXPECT_EQ(request.record.usMsgCmd, AT_MESSAGE_COMMAND);
    EXPECT_EQ(request.record.usDataLen, 16);
    EXPECT_EQ(request.record.ulMagic, AT_MESSAGE_MAGIC);
    const _BK_AT_CMD_T command = Command(request);
    EXPECT_EQ(command.usCmdID, 0x010B);
    EXPECT_EQ(command.ucCmdType, AT_CMD_TYPE_SET);
    EXPECT_EQ(command.usParaLen, 8);
    Bytes paras(command.aucParas, command.aucParas + sizeof command.aucParas);
    EXPECT_EQ(Bytes(paras.begin(), paras.begin() + 8), record);
    EXPECT_EQ(Bytes(paras.begin() + 8, paras.end()), Bytes(paras.size() - 8));
}

TEST_P(Asking, NumbersBeginAtARandomPlace) {
    const Queue server(key_);
    const auto first = [&] {
        int32_t number = 0;
        EXPECT_EQ(at_client_send(OpenIt().get(), kSignal, AT_CMD_TYPE_EXEC, nullptr, 0, 0, &number),
                  AT_CLIENT_OK);
        return number;
    };
    EXPECT_GT(std::set<int32_t>({first(), first(), first()}).size(), 1U);
}

TEST_P(Asking, TheLargestRecordTravels) {
    FakeServer server(key_, FakeServer::Answering(AT_RESULT_OK, Bytes(AT_RESPONSE_PARAS_SIZE, 0xA5)));
    const Client client = OpenIt();
    const Bytes largest(AT_REQUEST_PARAS_SIZE, 0x5A);
    at_client_message answer;
    ASSERT_EQ(
        at_client_ask(client.get(), kSignal, AT_CMD_TYPE_SET, largest.data(), largest.size(), kLong, &answer),
        AT_CLIENT_OK);
    const _BK_AT_CMD_T command = Command(server.Requests().at(0));
    EXPECT_EQ(Bytes(command.aucParas, command.aucParas + sizeof command.aucParas), largest);
    EXPECT_EQ(answer.size, AT_RESPONSE_PARAS_SIZE);
    EXPECT_EQ(Bytes(at_client_paras(&answer), at_client_paras(&answer) + answer.size),
              Bytes(AT_RESPONSE_PARAS_SIZE, 0xA5));
}

TEST_P(Asking, WhatCannotBeARequestIsMisuse) {
    const Queue server(key_);
    const Client client = OpenIt();
    const Bytes large(AT_REQUEST_PARAS_SIZE + 1);
    const auto ask = [&](uint8_t type, const void* paras, size_t size) {
        return at_client_ask(client.get(), kSignal, type, paras, size, 0, nullptr);
    };
    EXPECT_EQ(ask(AT_CMD_TYPE_SET, large.data(), large.size()), AT_CLIENT_MISUSE);
    EXPECT_EQ(ask(AT_CMD_TYPE_SET, nullptr, 1), AT_CLIENT_MISUSE);
    EXPECT_EQ(ask(0, nullptr, 0), AT_CLIENT_MISUSE);
    EXPECT_EQ(ask(5, nullptr, 0), AT_CLIENT_MISUSE);
    EXPECT_EQ(at_client_send(client.get(), kSignal, AT_CMD_TYPE_EXEC, nullptr, 0, 0, nullptr),
              AT_CLIENT_MISUSE);
    EXPECT_EQ(at_client_fetch(client.get(), kSignal, AT_CMD_TYPE_EXEC, nullptr, 0, 0, nullptr, 4),
              AT_CLIENT_MISUSE);
    EXPECT_EQ(at_client_receive(client.get(), 77, 0, nullptr), AT_CLIENT_MISUSE);
    EXPECT_EQ(Waiting(server.Id()), 0U);
    EXPECT_EQ(StatsOf(client).requests, 0U);
}

TEST_P(Asking, AnAnswerIsRead) {
    FakeServer server(key_, FakeServer::Answering(AT_RESULT_CME_ERROR, Text("SIM busy", 9)));
    const Client client = OpenIt();
    at_client_message answer;
    ASSERT_EQ(Ask(client, &answer), AT_CLIENT_OK);
    EXPECT_EQ(answer.kind, AT_CLIENT_ANSWER);
    EXPECT_EQ(answer.cmd_id, kSignal);
    EXPECT_EQ(answer.cmd_type, AT_CMD_TYPE_EXEC);
    EXPECT_EQ(answer.result, AT_RESULT_CME_ERROR);
    EXPECT_EQ(answer.record_size, 9);
    EXPECT_EQ(answer.size, 9);
    EXPECT_EQ(answer.length, AT_WIRE_SIZE);
    EXPECT_EQ(answer.type, server.Requests().at(0).type);
    char text[32];
    at_client_text(&answer, text, sizeof text);
    EXPECT_STREQ(text, "SIM busy");
    at_client_text(&answer, text, 4);
    EXPECT_STREQ(text, "SIM");
    const at_client_stats stats = StatsOf(client);
    EXPECT_EQ(stats.requests, 1U);
    EXPECT_EQ(stats.answers, 1U);
    EXPECT_EQ(stats.stale + stats.foreign + stats.reports + stats.lost, 0U);
}

TEST_P(Asking, AFetchedRecordHasExactlyItsSize) {
    struct {
        size_t came;
        at_client_error expected;
    } const kCases[] = {{0, AT_CLIENT_WRONG_SIZE},
                        {4, AT_CLIENT_WRONG_SIZE},
                        {7, AT_CLIENT_WRONG_SIZE},
                        {8, AT_CLIENT_OK},
                        {9, AT_CLIENT_WRONG_SIZE}};
    for (const auto& one : kCases) {
        const key_t key = PrivateKey();
        FakeServer server(key, FakeServer::Answering(AT_RESULT_OK, Bytes(one.came, 1)));
        const Client client = Open(OptionsFor(key, GetParam()));
        int32_t record[2] = {-1, -1};
        EXPECT_EQ(at_client_fetch(client.get(), kSignal, AT_CMD_TYPE_EXEC, nullptr, 0, kLong, record,
                                  sizeof record),
                  one.expected)
            << one.came;
        EXPECT_EQ(record[1], one.expected == AT_CLIENT_OK ? 0x01010101 : 0);
    }
}

TEST_P(Asking, AFetchedRecordThatDoesNotFitAMessageIsCut) {
    FakeServer server(key_, FakeServer::Answering(AT_RESULT_OK, Bytes(AT_RESPONSE_PARAS_SIZE, 3), 752));
    const Client client = OpenIt();
    Bytes record(752, 9);
    EXPECT_EQ(at_client_fetch(client.get(), 0x0107, AT_CMD_TYPE_SET, nullptr, 0, kLong, record.data(),
                              record.size()),
              AT_CLIENT_CUT);
    EXPECT_EQ(Bytes(record.begin(), record.begin() + AT_RESPONSE_PARAS_SIZE),
              Bytes(AT_RESPONSE_PARAS_SIZE, 3));
    EXPECT_EQ(Bytes(record.begin() + AT_RESPONSE_PARAS_SIZE, record.end()),
              Bytes(752 - AT_RESPONSE_PARAS_SIZE));
}

TEST_P(Asking, AFetchThatTheModemRefusesLeavesNothing) {
    FakeServer server(key_, FakeServer::Answering(AT_RESULT_TIMEOUT, {}, 512));
    const Client client = OpenIt();
    int32_t record = -1;
    EXPECT_EQ(
        at_client_fetch(client.get(), kSignal, AT_CMD_TYPE_EXEC, nullptr, 0, kLong, &record, sizeof record),
        AT_CLIENT_REFUSED);
    EXPECT_EQ(record, 0);
    EXPECT_EQ(at_client_fetch(client.get(), kSignal, AT_CMD_TYPE_EXEC, nullptr, 0, kLong, nullptr, 0),
              AT_CLIENT_REFUSED);
}

TEST_P(Asking, NoAnswerEndsInTime) {
    const Queue server(key_);
    const Client client = OpenIt();
    EXPECT_EQ(Ask(client, nullptr, 0), AT_CLIENT_TIMED_OUT);
    EXPECT_EQ(Ask(client, nullptr, kShort), AT_CLIENT_TIMED_OUT);
    EXPECT_EQ(Waiting(server.Id()), 2U);  // both were sent all the same
    at_client_server state;
    ASSERT_EQ(at_client_look_at_server(client.get(), &state), AT_CLIENT_OK);
    EXPECT_EQ(state.waiting, 2U);
    EXPECT_EQ(state.reader, 0);
    EXPECT_EQ(state.reader_is_gone, 0);
}

TEST_P(Asking, AnAnswerAfterTheDeadlineIsNotTheNextRequestsAnswer) {
    const Queue server(key_);
    const Client client = OpenIt();
    ASSERT_EQ(Ask(client, nullptr, 0), AT_CLIENT_TIMED_OUT);
    Wire first;
    ASSERT_TRUE(TakeFrom(server.Id(), first));
    std::thread late([&] {
        Wire second;
        ASSERT_TRUE(WaitUntil([&] { return TakeFrom(server.Id(), second); }));
        const int queue = QueueOf(client);
        ASSERT_TRUE(PutInto(queue, FakeServer::AnswerTo(first, AT_RESULT_OK, Integers({1}))));
        ASSERT_TRUE(PutInto(queue, FakeServer::AnswerTo(second, AT_RESULT_OK, Integers({2}))));
    });
    at_client_message answer;
    EXPECT_EQ(Ask(client, &answer), AT_CLIENT_OK);
    late.join();
    EXPECT_EQ(ValueOf(answer), 2);
    EXPECT_EQ(StatsOf(client).stale, 1U);
    EXPECT_EQ(StatsOf(client).answers, 1U);
}

TEST_P(Asking, WhatIsNotExactlyItsAnswerIsDroppedAndCounted) {
    const auto foreign = [](const Wire& request, const FakeServer::Answer& answer) {
        const Wire good = FakeServer::AnswerTo(request, AT_RESULT_OK, Integers({13}));
        const int queue = msgget(good.record.usTargetModuleID, 0);
        for (const size_t size : {size_t{0}, size_t{12}, size_t{AT_WIRE_SIZE - 1}})
            EXPECT_TRUE(PutInto(queue, good, size));
        struct {
            long type;
            unsigned char body[2000];
        } oversize = {};
        oversize.type = request.type;
        memcpy(oversize.body, reinterpret_cast<const unsigned char*>(&good.record) + 4, AT_WIRE_SIZE);
        EXPECT_EQ(msgsnd(queue, &oversize, AT_WIRE_SIZE + 1, IPC_NOWAIT), 0);
        EXPECT_EQ(msgsnd(queue, &oversize, sizeof oversize.body, IPC_NOWAIT), 0);
        Wire bad = good;
        bad.record.ulMagic = 0x3a3a3a3b;
        answer(bad);
        bad = good;
        bad.record.usMsgCmd = 0x0303;
        answer(bad);
        bad = good;
        bad.record.usTargetModuleID ^= 1;
        EXPECT_TRUE(PutInto(queue, bad));
        // Answers of the server's, but to other requests.
        bad = good;
        Restamp(bad, kSignal + 1, AT_CMD_TYPE_EXEC);
        answer(bad);
        bad = good;
        Restamp(bad, kSignal, AT_CMD_TYPE_READ);
        answer(bad);
        bad = good;
        bad.type = request.type - 1;
        answer(bad);
        answer(FakeServer::AnswerTo(request, AT_RESULT_OK, Integers({20})));
    };
    FakeServer server(key_, foreign);
    const Client client = OpenIt();
    at_client_message answer;
    ASSERT_EQ(Ask(client, &answer), AT_CLIENT_OK);
    EXPECT_EQ(ValueOf(answer), 20);
    EXPECT_EQ(StatsOf(client).foreign, 8U);
    EXPECT_EQ(StatsOf(client).stale, 3U);
    EXPECT_EQ(StatsOf(client).answers, 1U);
}

#if LONG_MAX > INT32_MAX
TEST_P(Asking, AMessageTypeBeyond32BitsIsForeign) {
    FakeServer server(key_, [](const Wire& request, const FakeServer::Answer& answer) {
        Wire far = FakeServer::AnswerTo(request, AT_RESULT_OK, Integers({13}));
        far.type = request.type + 0x100000000L;
        answer(far);
        answer(FakeServer::AnswerTo(request, AT_RESULT_OK, Integers({20})));
    });
    const Client client = OpenIt();
    at_client_message answer;
    ASSERT_EQ(Ask(client, &answer), AT_CLIENT_OK);
    EXPECT_EQ(ValueOf(answer), 20);
    EXPECT_EQ(StatsOf(client).foreign, 1U);
}
#endif

TEST_P(Asking, TheAnswerToADialComesWithTheTypeOfReports) {
    FakeServer server(key_, [](const Wire& request, const FakeServer::Answer& answer) {
        Wire told = FakeServer::AnswerTo(request, AT_RESULT_OK, Text("OK", 2));
        told.type = 1;
        Restamp(told, kDial, AT_CMD_TYPE_SET);  // a report, for all that is known
        answer(told);
        Restamp(told, kDial, AT_CMD_TYPE_EXEC);
        answer(told);
    });
    const Client client = OpenIt();
    at_client_message answer;
    ASSERT_EQ(at_client_ask(client.get(), kDial, AT_CMD_TYPE_EXEC, "5550123", 7, kLong, &answer),
              AT_CLIENT_OK);
    EXPECT_EQ(answer.result, AT_RESULT_OK);
    EXPECT_EQ(StatsOf(client).reports, 1U);
    // To any other command, such a message is no answer.
    EXPECT_EQ(Ask(client, nullptr, kShort), AT_CLIENT_TIMED_OUT);
}

TEST_P(Asking, ADialsAnswerThatNobodyWaitsForIsNeitherAReportNorTheNextDialsAnswer) {
    const Queue server(key_);
    const Client client = OpenIt();
    ASSERT_EQ(at_client_ask(client.get(), kDial, AT_CMD_TYPE_EXEC, "1", 1, 0, nullptr), AT_CLIENT_TIMED_OUT);
    Wire request;
    ASSERT_TRUE(TakeFrom(server.Id(), request));
    Wire late = FakeServer::AnswerTo(request, AT_RESULT_BUSY, Text("BUSY", 4));
    late.type = 1;
    ASSERT_TRUE(PutInto(QueueOf(client), late));
    ASSERT_TRUE(WaitUntil([&] { return GetParam() == 0 || Waiting(QueueOf(client)) == 0; }));
    EXPECT_EQ(at_client_ask(client.get(), kDial, AT_CMD_TYPE_EXEC, "2", 1, kShort, nullptr),
              AT_CLIENT_TIMED_OUT);
    EXPECT_EQ(StatsOf(client).stale, 1U);
    EXPECT_EQ(StatsOf(client).reports, 0U);
}

TEST_P(Asking, WithoutAServerNothingIsSent) {
    const Client client = OpenIt();
    EXPECT_EQ(Ask(client), AT_CLIENT_NO_SERVER);
    at_client_server state;
    EXPECT_EQ(at_client_look_at_server(client.get(), &state), AT_CLIENT_NO_SERVER);
    EXPECT_EQ(StatsOf(client).requests, 0U);
}

TEST_P(Asking, AServerThatComesBackIsFound) {
    const Client client = OpenIt();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(Ask(client), AT_CLIENT_NO_SERVER);
        FakeServer server(key_, FakeServer::Answering(AT_RESULT_OK, {}));
        EXPECT_EQ(Ask(client), AT_CLIENT_OK);
    }
    // Also one whose queue was replaced unseen.
    {
        const FakeServer server(key_, FakeServer::Answering(AT_RESULT_OK, {}));
        EXPECT_EQ(Ask(client), AT_CLIENT_OK);
    }
    const FakeServer server(key_, FakeServer::Answering(AT_RESULT_OK, {}));
    EXPECT_EQ(Ask(client), AT_CLIENT_OK);
}

TEST_P(Asking, AServerOfAnotherUserIsNotAsked) {
    const Queue server(key_, 0);
    WithoutPrivileges([&] {
        const Client client = OpenIt();
        EXPECT_EQ(Ask(client), AT_CLIENT_NO_PERMISSION);
        EXPECT_EQ(StatsOf(client).requests, 0U);
        at_client_server state;
        EXPECT_EQ(at_client_look_at_server(client.get(), &state), AT_CLIENT_NO_PERMISSION);
    });
}

TEST_P(Asking, AFullServerIsGivenUpInTime) {
    const Queue server(key_);
    Fill(server.Id());
    const size_t waiting = Waiting(server.Id());
    const Client client = OpenIt();
    for (const int timeout_ms : {0, kShort})
        EXPECT_EQ(Ask(client, nullptr, timeout_ms), AT_CLIENT_SERVER_FULL);
    EXPECT_EQ(Waiting(server.Id()), waiting);
    EXPECT_EQ(StatsOf(client).requests, 0U);
    // Nothing of the failed requests stays open.
    Wire message;
    ASSERT_TRUE(TakeFrom(server.Id(), message));
    EXPECT_EQ(Ask(client, nullptr, 0), AT_CLIENT_TIMED_OUT);
}

TEST_P(Asking, AFullServerThatStandsStillBecauseOfUsIsFreed) {
    // The server waits for room in the module's queue and takes no request meanwhile.
    const Queue server(key_);
    const Client client = OpenIt();
    const int own = QueueOf(client);
    std::thread serving([&] {
        for (int i = 0; i < 100; ++i) {
            Wire report = Report(at_client_module(client.get()), 0x0110, i);
            struct {
                long type;
                unsigned char body[AT_WIRE_SIZE];
            } wire;
            wire.type = report.type;
            memcpy(wire.body, reinterpret_cast<unsigned char*>(&report.record) + 4, AT_WIRE_SIZE);
            ASSERT_EQ(msgsnd(own, &wire, sizeof wire.body, 0), 0);
        }
        Wire request;
        while (TakeFrom(server.Id(), request) && request.type == 1) {
        }
        ASSERT_TRUE(WaitUntil(
            [&] { return request.type != 1 || (TakeFrom(server.Id(), request) && request.type != 1); }));
        ASSERT_TRUE(PutInto(own, FakeServer::AnswerTo(request, AT_RESULT_OK, {})));
    });
    Fill(server.Id());
    EXPECT_EQ(Ask(client), AT_CLIENT_OK);
    serving.join();
    EXPECT_EQ(StatsOf(client).reports, 100U);
    EXPECT_EQ(StatsOf(client).lost, 100U - AT_CLIENT_MOST_REPORTS);
}

TEST_P(Asking, AQueueThatIsRemovedEndsTheWaitAndTheHandle) {
    const Queue server(key_);
    const Client client = OpenIt();
    std::thread removing([&] {
        ASSERT_TRUE(WaitUntil([&] { return Waiting(server.Id()) == 1; }));
        ASSERT_EQ(msgctl(QueueOf(client), IPC_RMID, nullptr), 0);
    });
    EXPECT_EQ(Ask(client), AT_CLIENT_QUEUE_GONE);
    EXPECT_TRUE(errno == EIDRM || errno == EINVAL) << errno;
    removing.join();
    EXPECT_EQ(Ask(client), AT_CLIENT_QUEUE_GONE);
    at_client_message report;
    EXPECT_EQ(at_client_next_report(client.get(), &report, kLong), AT_CLIENT_QUEUE_GONE);
    EXPECT_EQ(Waiting(server.Id()), 1U);
}

TEST_P(Asking, SeveralRequestsAreOpenAtOnce) {
    const Queue server(key_);
    const Client client = OpenIt();
    int32_t numbers[AT_CLIENT_MOST_REQUESTS];
    Wire requests[AT_CLIENT_MOST_REQUESTS];
    for (int i = 0; i < AT_CLIENT_MOST_REQUESTS; ++i) {
        ASSERT_EQ(at_client_send(client.get(), kSignal, AT_CMD_TYPE_EXEC, nullptr, 0, 0, &numbers[i]),
                  AT_CLIENT_OK);
        ASSERT_TRUE(TakeFrom(server.Id(), requests[i]));
    }
    EXPECT_EQ(std::set<int32_t>(std::begin(numbers), std::end(numbers)).size(), std::size(numbers));
    EXPECT_EQ(Ask(client, nullptr, 0), AT_CLIENT_TOO_MANY);
    // Answered in the opposite order.
    for (int i = AT_CLIENT_MOST_REQUESTS - 1; i >= 0; --i)
        ASSERT_TRUE(PutInto(QueueOf(client), FakeServer::AnswerTo(requests[i], AT_RESULT_OK, Integers({i}))));
    at_client_message answer;
    for (int i = 0; i < AT_CLIENT_MOST_REQUESTS; ++i) {
        ASSERT_EQ(at_client_receive(client.get(), numbers[i], kLong, &answer), AT_CLIENT_OK);
        EXPECT_EQ(ValueOf(answer), i);
        EXPECT_EQ(at_client_receive(client.get(), numbers[i], 0, &answer), AT_CLIENT_MISUSE);
    }
    EXPECT_EQ(Ask(client, nullptr, 0), AT_CLIENT_TIMED_OUT);
}

TEST_P(Asking, ARequestIsOpenUntilItIsForgotten) {
    const Queue server(key_);
    const Client client = OpenIt();
    int32_t number = 0;
    ASSERT_EQ(at_client_send(client.get(), kSignal, AT_CMD_TYPE_EXEC, nullptr, 0, 0, &number), AT_CLIENT_OK);
    EXPECT_EQ(at_client_receive(client.get(), number, 0, nullptr), AT_CLIENT_TIMED_OUT);
    EXPECT_EQ(at_client_receive(client.get(), number, 0, nullptr), AT_CLIENT_TIMED_OUT);
    at_client_forget(client.get(), number);
    EXPECT_EQ(at_client_receive(client.get(), number, 0, nullptr), AT_CLIENT_MISUSE);
    Wire request;
    ASSERT_TRUE(TakeFrom(server.Id(), request));
    ASSERT_TRUE(PutInto(QueueOf(client), FakeServer::AnswerTo(request, AT_RESULT_OK, {})));
    at_client_message report;
    EXPECT_EQ(at_client_next_report(client.get(), &report, kShort), AT_CLIENT_TIMED_OUT);
    EXPECT_EQ(StatsOf(client).stale, 1U);
}

TEST_P(Asking, TwoHandlesOfOneProcessDoNotMix) {
    FakeServer server(key_, [](const Wire& request, const FakeServer::Answer& answer) {
        answer(FakeServer::AnswerTo(request, AT_RESULT_OK, Integers({request.record.usSourceModuleID})));
    });
    const Client clients[] = {OpenIt(), OpenIt()};
    for (int i = 0; i < 10; ++i) {
        at_client_message answer;
        ASSERT_EQ(Ask(clients[i % 2], &answer), AT_CLIENT_OK);
        EXPECT_EQ(ValueOf(answer), at_client_module(clients[i % 2].get()));
    }
}

namespace {

at_client* g_stopped = nullptr;
std::atomic<int> g_signals{0};

void StopIt(int) {
    at_client_stop(g_stopped);
}
void CountIt(int) {
    ++g_signals;
}

void Handle(int number, void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    sigaction(number, &action, nullptr);
}

}  // namespace

TEST_P(Asking, SignalsDoNotEndTheWait) {
    Handle(SIGALRM, CountIt);
    g_signals = 0;
    // Answers only after a few hundred signals.
    FakeServer server(key_, [](const Wire& request, const FakeServer::Answer& answer) {
        EXPECT_TRUE(WaitUntil([] { return g_signals >= 50; }, 20));
        answer(FakeServer::AnswerTo(request, AT_RESULT_OK, {}));
    });
    const Client client = OpenIt();
    timer_t timer;
    sigevent event = {};
    event.sigev_notify = SIGEV_THREAD_ID;
    event.sigev_signo = SIGALRM;
    event._sigev_un._tid = static_cast<pid_t>(gettid());
    ASSERT_EQ(timer_create(CLOCK_MONOTONIC, &event, &timer), 0);
    const itimerspec often = {{0, 1'000'000}, {0, 1'000'000}};
    ASSERT_EQ(timer_settime(timer, 0, &often, nullptr), 0);
    EXPECT_EQ(Ask(client), AT_CLIENT_OK);
    EXPECT_EQ(Ask(client, nullptr, 0), AT_CLIENT_TIMED_OUT);
    EXPECT_EQ(timer_delete(timer), 0);
}

TEST_P(Asking, AStopFromASignalHandlerEndsEveryWait) {
    const Queue server(key_);
    const Client client = OpenIt();
    g_stopped = client.get();
    Handle(SIGUSR1, StopIt);
    std::thread signalling([&, self = pthread_self()] {
        ASSERT_TRUE(WaitUntil([&] { return Waiting(server.Id()) == 1; }));
        pthread_kill(self, SIGUSR1);
    });
    EXPECT_EQ(Ask(client, nullptr, AT_CLIENT_PATIENT), AT_CLIENT_STOPPED);
    signalling.join();
    EXPECT_EQ(Ask(client), AT_CLIENT_STOPPED);
    at_client_message report;
    EXPECT_EQ(at_client_next_report(client.get(), &report, AT_CLIENT_PATIENT), AT_CLIENT_STOPPED);
}

TEST(Patience, IsLongerThanTheServersOwn) {
    EXPECT_EQ(at_client_timeout_ms(kSignal), 17'500);
    EXPECT_EQ(at_client_timeout_ms(0x0517), 230'000);  // +COPS
}

INSTANTIATE_TEST_SUITE_P(, Asking, testing::Values(0U, unsigned{AT_CLIENT_THREAD}),
                         [](const auto& mode) { return mode.param == 0 ? "Polling" : "Thread"; });
