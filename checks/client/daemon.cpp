#include <atomic>
#include <thread>
#include <vector>

#include "checks/client/handle.h"
#include "checks/dialogue/world.h"
#include "commands/records_network.h"
#include "reports/report_records.h"

// The client library with the real daemon and a modem on a pty, in the private world of scripts/sandbox.

namespace {

constexpr uint16_t kRegistration = 0x052D;  // +CREG

class WithDaemon : public testing::TestWithParam<unsigned> {
  protected:
    static void SetUpTestSuite() { world_ = new World(PlainAnswer); }
    static void TearDownTestSuite() {
        delete world_;
        world_ = nullptr;
    }
    void SetUp() override { world_->modem.SetAnswer(PlainAnswer); }
    void TearDown() override { ASSERT_TRUE(world_->daemon.Running()); }

    static Client OpenModule(uint16_t module = AT_CLIENT_ANY_MODULE) {
        at_client_options options = {};
        options.module = module;
        options.flags = GetParam() | AT_CLIENT_NEED_SERVER;
        return Open(options);
    }
    static at_client_error FetchSignal(const Client& client, int timeout_ms, AT_CSQ_EXEC_RES_PARA_T* signal) {
        return at_client_fetch(client.get(), kSignal, AT_CMD_TYPE_EXEC, nullptr, 0, timeout_ms, signal,
                               sizeof *signal);
    }
    static Modem& TheModem() { return world_->modem; }

    static World* world_;
};

World* WithDaemon::world_ = nullptr;

}  // namespace

TEST_P(WithDaemon, ARecordComesBack) {
    const Client client = OpenModule();
    AT_CSQ_EXEC_RES_PARA_T signal;
    ASSERT_EQ(FetchSignal(client, AT_CLIENT_PATIENT, &signal), AT_CLIENT_OK);
    EXPECT_EQ(signal.rssi, 20);
    EXPECT_EQ(StatsOf(client).answers, 1U);
}

TEST_P(WithDaemon, ARefusalComesBackWithItsText) {
    TheModem().SetAnswer([](const std::string&) { return "\r\n+CME ERROR: 10\r\n"; });
    const Client client = OpenModule();
    at_client_message answer;
    ASSERT_EQ(at_client_ask(client.get(), kSignal, AT_CMD_TYPE_EXEC, nullptr, 0, AT_CLIENT_PATIENT, &answer),
              AT_CLIENT_OK);
    EXPECT_EQ(answer.result, AT_RESULT_CME_ERROR);
    AT_CSQ_EXEC_RES_PARA_T signal;
    EXPECT_EQ(FetchSignal(client, AT_CLIENT_PATIENT, &signal), AT_CLIENT_REFUSED);
}

TEST_P(WithDaemon, ALateAnswerIsNotTheNextRequestsAnswer) {
    // The modem keeps the first answer until the second question has been put on the server's queue.
    const auto lines = std::make_shared<std::atomic<int>>(0);
    TheModem().SetAnswer([lines](const std::string&) -> std::string {
        return ++*lines == 1 ? "" : "\r\n+CSQ: 7,99\r\n\r\nOK\r\n";
    });
    const Client client = OpenModule();
    AT_CSQ_EXEC_RES_PARA_T signal;
    ASSERT_EQ(FetchSignal(client, kShort, &signal), AT_CLIENT_TIMED_OUT);
    ASSERT_TRUE(WaitUntil([&] { return *lines == 1; }));
    std::thread late([&] {
        EXPECT_TRUE(WaitUntil([&] { return StatsOf(client).requests == 2 || Waiting(ServerQueue()) == 1; }));
        TheModem().Say("\r\n+CSQ: 31,99\r\n\r\nOK\r\n");
    });
    int32_t request = 0;
    ASSERT_EQ(at_client_send(client.get(), kSignal, AT_CMD_TYPE_EXEC, nullptr, 0, kLong, &request),
              AT_CLIENT_OK);
    late.join();
    at_client_message answer;
    ASSERT_EQ(at_client_receive(client.get(), request, kLong, &answer), AT_CLIENT_OK);
    ASSERT_EQ(at_client_record(&answer, &signal, sizeof signal), AT_CLIENT_OK);
    EXPECT_EQ(signal.rssi, 7);
    EXPECT_EQ(StatsOf(client).stale, 1U);
}

TEST_P(WithDaemon, ADialIsAnsweredAndReported) {
    const Client client = OpenModule(AT_MODULE_CALL);
    TheModem().SetAnswer([](const std::string& line) -> std::string {
        return line == "ATD5550123;" ? "\r\nOK\r\n\r\nRINGBACK\r\n" : "\r\nOK\r\n";
    });
    at_client_message message;
    ASSERT_EQ(at_client_ask(client.get(), kDial, AT_CMD_TYPE_EXEC, "5550123", 7, kLong, &message),
              AT_CLIENT_OK);
    EXPECT_EQ(message.result, AT_RESULT_OK);
    EXPECT_EQ(message.type, 1);
    ASSERT_EQ(at_client_next_report(client.get(), &message, kLong), AT_CLIENT_OK);
    EXPECT_EQ(message.cmd_id, 0x053D);
    char text[32];
    at_client_text(&message, text, sizeof text);
    EXPECT_STREQ(text, "RINGBACK");
    EXPECT_EQ(at_client_ask(client.get(), 0x0403, AT_CMD_TYPE_EXEC, nullptr, 0, kLong, &message),
              AT_CLIENT_OK);
}

TEST_P(WithDaemon, AReportIsItsRecord) {
    const Client client = OpenModule(AT_MODULE_SIM);
    TheModem().Say("\r\n+CREG: 1,\"1A2B\",\"00C3D4E5\"\r\n");
    at_client_message report;
    ASSERT_EQ(at_client_next_report(client.get(), &report, kLong), AT_CLIENT_OK);
    EXPECT_EQ(report.cmd_id, kRegistration);
    AT_CREG_NOTIFY_RES_PARA_T registration;
    ASSERT_EQ(at_client_record(&report, &registration, sizeof registration), AT_CLIENT_OK);
    EXPECT_EQ(registration.state, 1);
    EXPECT_STREQ(registration.cellid, "00C3D4E5");
}

TEST_P(WithDaemon, SeveralThreadsAskAtOnce) {
    TheModem().SetAnswer([](const std::string& line) -> std::string {
        if (line == "AT+CSQ") return "\r\n+CSQ: 20,99\r\n\r\nOK\r\n";
        return "\r\n+CLVL: 5\r\n\r\nOK\r\n";
    });
    const Client client = OpenModule();
    std::atomic<int> good{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&, signal = i % 2 == 0] {
            for (int round = 0; round < 5; ++round) {
                AT_CSQ_EXEC_RES_PARA_T quality = {};
                int32_t level = 0;
                const at_client_error error = signal
                                                  ? FetchSignal(client, kLong, &quality)
                                                  : at_client_fetch(client.get(), 0x0514, AT_CMD_TYPE_READ,
                                                                    nullptr, 0, kLong, &level, sizeof level);
                if (error == AT_CLIENT_OK && (signal ? quality.rssi == 20 : level == 5)) ++good;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(good, 20);
    EXPECT_EQ(StatsOf(client).stale, 0U);
}

INSTANTIATE_TEST_SUITE_P(, WithDaemon, testing::Values(0U, unsigned{AT_CLIENT_THREAD}),
                         [](const auto& mode) { return mode.param == 0 ? "Polling" : "Thread"; });
