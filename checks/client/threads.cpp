#include "checks/client/support.h"

// Several threads on one handle. Meant for the thread sanitizer too.

namespace {

class Threads : public testing::TestWithParam<unsigned> {
  protected:
    const key_t key_ = PrivateKey();
};

// Gathers requests and answers them last one first, each with its own parameters.
FakeServer::Serve Backwards(size_t gathered) {
    auto waiting = std::make_shared<std::vector<Wire>>();
    return [=](const Wire& request, const FakeServer::Answer& answer) {
        waiting->push_back(request);
        if (waiting->size() < gathered) return;
        for (; !waiting->empty(); waiting->pop_back()) {
            const _BK_AT_CMD_T command = Command(waiting->back());
            answer(FakeServer::AnswerTo(waiting->back(), AT_RESULT_OK,
                                        Bytes(command.aucParas, command.aucParas + command.usParaLen)));
        }
    };
}

constexpr int kThreads = 4;
constexpr int kRounds = 50;

// Each thread asks with values of its own; how many answers were its own.
int AskInThreads(const Client& client) {
    std::atomic<int> good{0};
    std::vector<std::thread> threads;
    for (int32_t thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([&, thread] {
            for (int32_t round = 0; round < kRounds; ++round) {
                const int32_t asked = thread * 1000 + round;
                int32_t told = -1;
                if (at_client_fetch(client.get(), 0x010B, AT_CMD_TYPE_SET, &asked, sizeof asked, kLong, &told,
                                    sizeof told) == AT_CLIENT_OK &&
                    told == asked)
                    ++good;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    return good;
}

}  // namespace

TEST_P(Threads, EachGetsItsOwnAnswer) {
    FakeServer server(key_, Backwards(kThreads));
    const Client client = Open(OptionsFor(key_, GetParam()));
    EXPECT_EQ(AskInThreads(client), kThreads * kRounds);
    EXPECT_EQ(StatsOf(client).answers, static_cast<uint32_t>(kThreads * kRounds));
    EXPECT_EQ(StatsOf(client).stale, 0U);
}

TEST_P(Threads, OneReceivesWhileOthersAsk) {
    FakeServer server(key_, Backwards(1));
    const Client client = Open(OptionsFor(key_, GetParam()));
    std::vector<int32_t> values;
    std::thread receiving([&] {
        at_client_message report;
        while (values.size() < 100 && at_client_next_report(client.get(), &report, kLong) == AT_CLIENT_OK)
            values.push_back(ValueOf(report));
    });
    std::thread reporting([&] {
        for (int32_t i = 0; i < 100; ++i) {
            const Wire report = Report(at_client_module(client.get()), 0x0110, i);
            ASSERT_TRUE(WaitUntil([&] {
                return StatsOf(client).reports + AT_CLIENT_MOST_REPORTS / 2 > static_cast<uint32_t>(i) &&
                       PutInto(QueueOf(client), report);
            }));
        }
    });
    EXPECT_EQ(AskInThreads(client), kThreads * kRounds);
    reporting.join();
    receiving.join();
    EXPECT_EQ(StatsOf(client).reports, 100U);
    EXPECT_EQ(values.size() + StatsOf(client).lost, 100U);
    EXPECT_TRUE(std::is_sorted(values.begin(), values.end()));
}

TEST_P(Threads, AStopEndsAllOfThem) {
    const Queue server(key_);
    const Client client = Open(OptionsFor(key_, GetParam()));
    std::atomic<int> stopped{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([&] {
            if (at_client_ask(client.get(), kSignal, AT_CMD_TYPE_EXEC, nullptr, 0, AT_CLIENT_PATIENT,
                              nullptr) == AT_CLIENT_STOPPED)
                ++stopped;
        });
    threads.emplace_back([&] {
        at_client_message report;
        if (at_client_next_report(client.get(), &report, AT_CLIENT_PATIENT) == AT_CLIENT_STOPPED) ++stopped;
    });
    EXPECT_TRUE(WaitUntil([&] { return Waiting(server.Id()) == 3; }));
    at_client_stop(client.get());
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(stopped, 4);
}

TEST_P(Threads, OpeningAndClosingManyTimesLeavesNothing) {
    for (int i = 0; i < 100; ++i) {
        uint16_t module;
        {
            const Client client = Open(OptionsFor(key_, GetParam()));
            module = at_client_module(client.get());
        }
        ASSERT_FALSE(QueueExists(module));
    }
}

INSTANTIATE_TEST_SUITE_P(, Threads, testing::Values(0U, unsigned{AT_CLIENT_THREAD}),
                         [](const auto& mode) { return mode.param == 0 ? "Polling" : "Thread"; });
