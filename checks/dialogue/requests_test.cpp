#include <gtest/gtest.h>
#include <sys/ipc.h>
#include <sys/msg.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <memory>

#include "checks/dialogue/target.h"
#include "checks/dialogue/world.h"
#include "platform/platform.h"

// Requests on their road: from a module's queue to the modem and back, through the real daemon.

namespace {

constexpr uint8_t kExec = AT_CMD_TYPE_EXEC;
constexpr uint8_t kSet = AT_CMD_TYPE_SET;
constexpr uint8_t kRead = AT_CMD_TYPE_READ;

class Requests : public testing::Test {
  protected:
    static void SetUpTestSuite() { world_ = new World(PlainAnswer); }
    static void TearDownTestSuite() {
        delete world_;
        world_ = nullptr;
    }
    void SetUp() override {
        world_->modem.SetAnswer(PlainAnswer);
        world_->modem.ForgetLines();
        world_->log.Forget();
    }
    void TearDown() override { ASSERT_TRUE(world_->daemon.Running()); }

    static Modem& TheModem() { return world_->modem; }
    static LogCollector& Log() { return world_->log; }

    // Whatever was done to the daemon, it serves the next request.
    static void ExpectStillServing() {
        Module module(0x1234);
        const Received answer = module.Exchange(0x0604, kExec);
        EXPECT_EQ(answer.result, 1);
        EXPECT_EQ(answer.I32(0), 20);
    }

    static World* world_;
};

World* Requests::world_ = nullptr;

TEST_F(Requests, SignalQualityComesBackAsItsRecord) {
    Module module(0x1234);
    const Received answer = module.Exchange(0x0604, kExec);
    EXPECT_EQ(TheModem().Lines(), std::vector<std::string>{"AT+CSQ"});
    EXPECT_EQ(answer.type, 7);
    EXPECT_EQ(answer.target, 0x1234);
    EXPECT_EQ(answer.source, 0x1000);
    EXPECT_EQ(answer.command, 0x0302);
    EXPECT_EQ(answer.data_len, 8 + 6);
    EXPECT_EQ(answer.id, 0x0604);
    EXPECT_EQ(answer.cmd_type, kExec);
    EXPECT_EQ(answer.result, 1);
    EXPECT_EQ(answer.para_len, 8);
    EXPECT_EQ(answer.I32(0), 20);
    EXPECT_EQ(answer.I32(4), 0);
    EXPECT_EQ(answer.magic, AT_MESSAGE_MAGIC);
}

TEST_F(Requests, RegistrationWithPlaceComesBackRestored) {
    Module module(0x1234);
    const Received answer = module.Exchange(0x052D, kRead);
    EXPECT_EQ(answer.para_len, 40);
    EXPECT_EQ(answer.I32(0), 2);
    EXPECT_EQ(answer.I32(4), 1);
    EXPECT_EQ(answer.Text(8), "1A2B");
    EXPECT_EQ(answer.Text(24), "00C3D4E5");
}

TEST_F(Requests, BareIdentityAnswersAreDecoded) {
    Module module(0x1234);
    EXPECT_EQ(module.Exchange(0x0603, kExec).Text(), "356938035643809");
    EXPECT_EQ(module.Exchange(0x0111, kExec).Text(), "001010123456789");
}

TEST_F(Requests, AnswerInOneBytePiecesIsTheSame) {
    TheModem().SetAnswer([](const std::string&) { return std::string(); });
    Module module(0x1234);
    module.Ask(0x0604, kExec);
    ASSERT_TRUE(TheModem().WaitForLine("AT+CSQ"));
    for (char byte : PlainAnswer("AT+CSQ"))
        TheModem().Say(std::string(1, byte));
    Received answer;
    ASSERT_TRUE(module.Receive(answer));
    EXPECT_EQ(answer.I32(0), 20);
}

TEST_F(Requests, EchoIsDropped) {
    TheModem().SetAnswer([](const std::string& line) { return line + "\r" + PlainAnswer(line); });
    Module module(0x1234);
    EXPECT_EQ(module.Exchange(0x0604, kExec).I32(0), 20);
    EXPECT_EQ(module.Exchange(0x0001, kExec).Text(), "OK");
    EXPECT_EQ(module.Exchange(0x0603, kExec).Text(), "356938035643809");
}

TEST_F(Requests, EchoBehindAReportIsDroppedToo) {
    TheModem().SetAnswer([](const std::string& line) { return line + "\r" + PlainAnswer(line); });
    Module sim(AT_MODULE_SIM);
    TheModem().Say("\r\n+CREG: 1\r\n");
    Received report;
    ASSERT_TRUE(sim.Receive(report));
    EXPECT_EQ(report.id, 0x052D);
    Module module(0x1234);
    EXPECT_EQ(module.Exchange(0x0001, kExec).Text(), "OK");
}

TEST_F(Requests, SecondRequestWaitsForTheFirst) {
    TheModem().SetAnswer([](const std::string&) { return std::string(); });
    Module module(0x1234);
    module.Ask(0x0604, kExec);
    module.Ask(0x0544, kRead);
    ASSERT_TRUE(TheModem().WaitForLine("AT+CSQ"));
    EXPECT_FALSE(TheModem().WaitForLine("AT+CFUN?", 0.3));
    TheModem().Say("\r\n+CSQ: 11,0\r\n\r\nOK\r\n");
    Received answer;
    ASSERT_TRUE(module.Receive(answer));
    EXPECT_EQ(answer.id, 0x0604);
    ASSERT_TRUE(TheModem().WaitForLine("AT+CFUN?"));
    TheModem().Say("\r\n+CFUN: 4\r\n\r\nOK\r\n");
    ASSERT_TRUE(module.Receive(answer));
    EXPECT_EQ(answer.id, 0x0544);
    EXPECT_EQ(answer.I32(0), 4);
}

TEST_F(Requests, DialIsNotWaitedFor) {
    TheModem().SetAnswer([](const std::string& line) {
        return line.rfind("ATD", 0) == 0 ? std::string() : PlainAnswer(line);
    });
    Module call(AT_MODULE_CALL);
    Module module(0x1234);
    call.Ask(0x0401, kExec, "5550123");
    ASSERT_TRUE(TheModem().WaitForLine("ATD5550123;"));
    EXPECT_EQ(module.Exchange(0x0604, kExec).I32(0), 20);
    Received nothing;
    EXPECT_FALSE(call.Receive(nothing, 0.1));
}

TEST_F(Requests, OkOfADialAnswersTheDialler) {
    Module call(AT_MODULE_CALL);
    call.Ask(0x0401, kExec, "5550123");
    Received answer;
    ASSERT_TRUE(call.Receive(answer));
    EXPECT_EQ(answer.id, 0x0401);
    EXPECT_EQ(answer.result, 1);
    EXPECT_EQ(answer.type, 1) << "nothing is outstanding, so the request's type is gone";
}

TEST_F(Requests, BurstOf200From8ModulesReachesEveryRequester) {
    std::vector<std::unique_ptr<Module>> modules;
    for (uint16_t i = 0; i < 8; ++i)
        modules.push_back(std::make_unique<Module>(static_cast<uint16_t>(0x2000 + i)));
    // Requests of different kinds, told apart by the message type that comes back with the answer.
    constexpr uint16_t kIds[] = {0x0604, 0x0544, 0x052D, 0x0001};
    constexpr uint8_t kTypes[] = {kExec, kRead, kRead, kExec};
    std::vector<std::vector<int>> seen(8);
    std::thread receiver([&] {
        WaitUntil(
            [&] {
                size_t total = 0;
                for (size_t m = 0; m < 8; ++m) {
                    Received answer;
                    while (modules[m]->Receive(answer, 0)) {
                        const auto number = static_cast<int>(answer.type - 100);
                        EXPECT_EQ(number % 8, static_cast<int>(m)) << "an answer at another requester";
                        EXPECT_EQ(answer.target, modules[m]->Id());
                        EXPECT_EQ(answer.id, kIds[(number / 8) % 4]);
                        EXPECT_EQ(answer.result, 1);
                        seen[m].push_back(number);
                    }
                    total += seen[m].size();
                }
                return total == 200;
            },
            60);
    });
    for (int i = 0; i < 200; ++i)
        modules[static_cast<size_t>(i % 8)]->Ask(kIds[(i / 8) % 4], kTypes[(i / 8) % 4], {}, 100 + i);
    receiver.join();
    for (int m = 0; m < 8; ++m) {
        ASSERT_EQ(seen[static_cast<size_t>(m)].size(), 25U);
        for (int k = 0; k < 25; ++k)
            EXPECT_EQ(seen[static_cast<size_t>(m)][static_cast<size_t>(k)], k * 8 + m);
    }
}

// A round is a sleep of 10 ms. How long that is on this machine, with what else it does, is measured beside
// it.
TEST_F(Requests, AnswerIsInTheQueueWithinARoundOfTheModemsLastByte) {
    TheModem().SetAnswer([](const std::string&) { return std::string(); });
    Module module(0x1234);
    std::vector<double> answers;
    std::vector<double> sleeps;
    const auto since = [](std::chrono::steady_clock::time_point start) {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    };
    for (int i = 0; i < 50; ++i) {
        TheModem().ForgetLines();
        module.Ask(0x0604, kExec);
        ASSERT_TRUE(TheModem().WaitForLine("AT+CSQ"));
        const auto last_byte = std::chrono::steady_clock::now();
        TheModem().Say("\r\n+CSQ: 20,99\r\n\r\nOK\r\n");
        Received answer;
        ASSERT_TRUE(module.Receive(answer));
        answers.push_back(since(last_byte));
        const auto asleep = std::chrono::steady_clock::now();
        usleep(10'000);
        sleeps.push_back(since(asleep));
    }
    std::sort(answers.begin(), answers.end());
    std::sort(sleeps.begin(), sleeps.end());
    RecordProperty("median_ms", std::to_string(answers[25]));
    printf(
        "modem's last byte to answer in the queue: median %.1f ms, slowest %.1f ms of 50; a sleep of 10 ms: "
        "median %.1f ms, slowest %.1f ms\n",
        answers[25], answers.back(), sleeps[25], sleeps.back());
    EXPECT_LT(answers[25], sleeps[25]);
}

// ------------------------------------------------------------------- bad input

TEST_F(Requests, WrongGuardWordIsDroppedWithoutAnAnswer) {
    Module module(0x1234);
    std::string bytes = module.Request(0x0604, kExec);
    bytes[648] = '\0';
    SendRaw(bytes);
    EXPECT_TRUE(Log().WaitFor("[error]: slop over. error code :42497"));
    EXPECT_TRUE(Log().WaitFor("message check error!"));
    Received nothing;
    EXPECT_FALSE(module.Receive(nothing, 0.2));
    EXPECT_TRUE(TheModem().Lines().empty());
    ExpectStillServing();
}

TEST_F(Requests, ShortMessageDoesNotPassOnTheGuardWordOfTheOneBefore) {
    ExpectStillServing();
    TheModem().ForgetLines();
    Module module(0x1234);
    SendRaw(module.Request(0x0604, kExec).substr(0, 40));
    EXPECT_TRUE(Log().WaitFor("[error]: slop over. error code :42497"));
    EXPECT_TRUE(TheModem().Lines().empty());
    ExpectStillServing();
}

TEST_F(Requests, EmptyMessageIsAReceiveError) {
    SendRaw("");
    EXPECT_TRUE(Log().WaitFor("[error]: Receive message error!error code:42501"));
    EXPECT_TRUE(Log().WaitFor("message recieve error!"));
    ExpectStillServing();
}

TEST_F(Requests, OversizeMessageIsTakenOffOnce) {
    SendRaw(std::string(653, 'x'));
    EXPECT_TRUE(Log().WaitFor("[error]: Receive message error!error code:42501"));
    ExpectStillServing();
    EXPECT_EQ(Log().Count("error code:42501"), 1);
}

TEST_F(Requests, UnknownIdFailsGenerationAndTheNextRequestGoesOn) {
    Module module(0x1234);
    module.Ask(0x0102, kExec);
    EXPECT_TRUE(Log().WaitFor("[error]:Parse AT Message error!error code:42504"));
    EXPECT_TRUE(TheModem().Lines().empty());
    ExpectStillServing();
}

TEST_F(Requests, UnknownTypeFailsGeneration) {
    Module module(0x1234);
    module.Ask(0x0604, 5);
    EXPECT_TRUE(Log().WaitFor("[error]:Parse AT Message error!error code:42504"));
    ExpectStillServing();
}

TEST_F(Requests, RecordOfTheWrongSizeGivesTheBareLine) {
    Module module(0x1234);
    module.Ask(0x0103, kSet, std::string(29, 'A'));
    EXPECT_TRUE(TheModem().WaitForLine("AT+CPMS="));
    Received answer;
    ASSERT_TRUE(module.Receive(answer));
    EXPECT_EQ(answer.result, 2);
}

TEST_F(Requests, ParameterLengthBeyondTheMessageIsNotBelieved) {
    Module module(0x1234);
    std::string bytes = module.Request(0x0401, kExec, std::string(600, '1'));
    bytes[14] = bytes[15] = '\xff';
    SendRaw(bytes);
    EXPECT_TRUE(TheModem().WaitForLine("ATD" + std::string(35, '1') + ";"));
    Received dialled;  // the OK of a dial would answer a request that is written before it comes
    EXPECT_TRUE(module.Receive(dialled));
    ExpectStillServing();
}

TEST_F(Requests, ModuleIdZeroHasNoQueue) {
    Module module(0x1234);
    std::string bytes = module.Request(0x0604, kExec);
    bytes[2] = bytes[3] = '\0';
    SendRaw(bytes);
    EXPECT_TRUE(Log().WaitFor("send_msg_buf ::get target msg id 0x0000 failed!"));
    EXPECT_TRUE(Log().WaitFor("ERROR: send_msg_buf send msg failed, error code 42506!"));
    ExpectStillServing();
}

TEST_F(Requests, ModuleWithoutAQueueLosesItsAnswerOnly) {
    Module module(0x1234);
    std::string bytes = module.Request(0x0604, kExec);
    PutInteger<uint16_t>(bytes, 2, 0x4321);
    SendRaw(bytes);
    EXPECT_TRUE(Log().WaitFor("send_msg_buf ::get target msg id 0x4321 failed!"));
    ExpectStillServing();
}

TEST_F(Requests, BufferFullOfTextWithoutALineBreakIsCleared) {
    TheModem().Say(std::string(102'399, 'x'));
    EXPECT_TRUE(Log().WaitFor("receive buffer is full", 10));
    ExpectStillServing();
}

TEST_F(Requests, NulBytesEndTheirChunkOnly) {
    TheModem().Say(std::string("\r\nab\0cd\r\n", 9));
    EXPECT_TRUE(Log().WaitFor("RecvLen(chars) =  9."));
    ExpectStillServing();
}

TEST_F(Requests, SilentModemGivesResult5AndCountsAsLost) {
    TheModem().SetAnswer([](const std::string&) { return std::string(); });
    Module module(0x1234);
    module.Ask(0x0604, kExec);
    Received answer;
    ASSERT_TRUE(module.Receive(answer, 20));
    EXPECT_EQ(answer.result, 5);
    EXPECT_EQ(answer.data_len, 0x0208);
    EXPECT_EQ(answer.para_len, 512);
    EXPECT_EQ(answer.type, 7);
    EXPECT_EQ(answer.paras, std::string(634, '\0'));
    EXPECT_TRUE(Log().WaitFor("Waiting for AT response time out(timeout=1000)!!discard..."));
    TheModem().SetAnswer(PlainAnswer);
    ExpectStillServing();
}

TEST_F(Requests, OpenQuoteIsDroppedWithTheTimeOutOfItsRequest) {
    TheModem().SetAnswer([](const std::string&) { return std::string("\r\n+CSQ: \"20,99\r\n\r\nOK\r\n"); });
    Module module(0x1234);
    module.Ask(0x0604, kExec);
    Received answer;
    ASSERT_TRUE(module.Receive(answer, 20));
    EXPECT_EQ(answer.result, 5);
    EXPECT_TRUE(Log().WaitFor("unfinished text with an open quote dropped"));
    TheModem().SetAnswer(PlainAnswer);
    ExpectStillServing();
}

}  // namespace
