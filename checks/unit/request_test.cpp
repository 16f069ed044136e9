#include "server/request.h"

#include <errno.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <signal.h>
#include <string.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "checks/support/fake_modem.h"
#include "checks/support/fake_platform.h"
#include "checks/support/fake_queue.h"
#include "checks/support/log_capture.h"
#include "records/handover.h"
#include "records/state.h"
#include "server/watchdog.h"

namespace {

using std::string;

constexpr uint16_t kRequester = 0x2345;

MSG_BUF Request(uint16_t id, uint8_t type, const string& paras = "") {
    MSG_BUF request = {};
    request.lMsgType = 7;
    request.usTargetModuleID = 0x1000;
    request.usSourceModuleID = kRequester;
    request.usMsgCmd = 0x0301;
    request.usDataLen = 640;
    request.ulMagic = AT_MESSAGE_MAGIC;
    _BK_AT_CMD_T command = {};
    command.usCmdID = id;
    command.ucCmdType = type;
    command.usParaLen = static_cast<uint16_t>(paras.size());
    memcpy(command.aucParas, paras.data(), paras.size());
    memcpy(request.aucDataBuf, &command, sizeof command);
    return request;
}

std::vector<unsigned char> Body(const MSG_BUF& request) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(&request);
    return {bytes + 4, bytes + sizeof request};
}

bool Same(const MSG_BUF& a, const MSG_BUF& b) {
    return memcmp(&a, &b, sizeof a) == 0;
}

int64_t Milliseconds() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
}

// Polls for a condition, at most ten seconds.
template <typename Condition>
bool Becomes(Condition condition) {
    for (int i = 0; i < 10'000; ++i) {
        if (condition()) return true;
        usleep(1'000);
    }
    return false;
}

class RequestCheck : public testing::Test {
  protected:
    void SetUp() override {
        Platform().Reset();
        Queues().Reset();
        Queues().Create(0x1000);
        queue_ = msgget(0x1000, 0);
        HandoverTake();
        ClearPendingRequest();
        g_cmd_str[0] = '\0';
        g_at_processing = 0;
        g_atd_warting = 0;
        g_dogref_count = 0;
        g_at_statistics.send = g_at_statistics.received = g_at_statistics.report = g_at_statistics.lost = 0;
        ClearLog();
    }
    void TearDown() override { SetUp(); }

    int queue_ = -1;
    FakeModem modem_;
};

using Receive = RequestCheck;
using Check = RequestCheck;
using Serve = RequestCheck;
using ServeDogref = RequestCheck;
using Loop = RequestCheck;

}  // namespace

TEST_F(Receive, WholeRequest) {
    const MSG_BUF sent = Request(0x0604, 1, "abc");
    Queues().Put(0x1000, 7, Body(sent));
    MSG_BUF request;
    memset(&request, 0xEE, sizeof request);
    EXPECT_EQ(ReceiveRequest(queue_, request), 652);
    EXPECT_TRUE(Same(request, sent));
    EXPECT_TRUE(Logged("Listening message queue...", "at_server", 5));
    EXPECT_TRUE(Logged("Receive a message", "at_server", 6));
    EXPECT_EQ(g_at_msg.lMsgType, -1);
}

TEST_F(Receive, ShortMessageIsFilledWithZeros) {
    MSG_BUF sent = Request(0x0604, 1, "abc");
    auto body = Body(sent);
    body.resize(20);
    Queues().Put(0x1000, 7, body);
    // As left by the message before, its guard word included.
    MSG_BUF request = Request(0x0401, 2, string(600, 'x'));
    EXPECT_EQ(ReceiveRequest(queue_, request), 20);
    memset(reinterpret_cast<unsigned char*>(&sent) + 24, 0, sizeof sent - 24);
    EXPECT_TRUE(Same(request, sent));
    EXPECT_EQ(CheckRequest(request, request.aucDataBuf), -1);
    EXPECT_TRUE(Logged("[error]: slop over. error code :42497", "at_server", 3));
}

TEST_F(Receive, EmptyMessageIsAnErrorAndGone) {
    Queues().Put(0x1000, 7, {});
    MSG_BUF request = Request(0x0604, 1);
    EXPECT_EQ(ReceiveRequest(queue_, request), -1);
    EXPECT_TRUE(Logged("[error]: Receive message error!error code:42501", "at_server", 3));
    EXPECT_TRUE(Same(request, MSG_BUF{}));
    EXPECT_TRUE(Queues().waiting[0x1000].empty());
}

TEST_F(Receive, MessageThatIsTooLongIsTakenOffOnceAndForgotten) {
    Queues().Put(0x1000, 7, std::vector<unsigned char>(653, ':'));
    Queues().Put(0x1000, 8, Body(Request(0x0604, 1)));
    MSG_BUF request = {};
    EXPECT_EQ(ReceiveRequest(queue_, request), -1);
    EXPECT_TRUE(Logged("[error]: Receive message error!error code:42501", "at_server", 3));
    EXPECT_TRUE(Same(request, MSG_BUF{}));
    EXPECT_EQ(Queues().waiting[0x1000].size(), 1u);
    EXPECT_EQ(ReceiveRequest(queue_, request), 652);
    EXPECT_EQ(request.lMsgType, 8);
}

TEST_F(Receive, TypeOfMoreThan32BitsIsAnError) {
    if (sizeof(long) == 4) GTEST_SKIP() << "no such type here";
    Queues().Put(0x1000, LONG_MAX, Body(Request(0x0604, 1)));
    MSG_BUF request = {};
    EXPECT_EQ(ReceiveRequest(queue_, request), -1);
    EXPECT_TRUE(Logged("[error]: Receive message error!error code:42501", "at_server", 3));
    EXPECT_TRUE(Same(request, MSG_BUF{}));
}

TEST_F(Receive, OtherFailuresWaitALittle) {
    for (const int error : {EIDRM, EINVAL, EINTR, EACCES}) {
        Queues().fail_receive = error;
        MSG_BUF request = Request(0x0604, 1);
        const int64_t begin = Milliseconds();
        EXPECT_EQ(ReceiveRequest(queue_, request), -1);
        EXPECT_GE(Milliseconds() - begin, 49) << error;
        EXPECT_TRUE(Same(request, MSG_BUF{}));
    }
    EXPECT_TRUE(Logged("[error]: Receive message error!error code:42501", "at_server", 3));
}

TEST_F(Check, GoodRequest) {
    const MSG_BUF request = Request(0x0604, 1);
    EXPECT_EQ(CheckRequest(request, request.aucDataBuf), 0);
    EXPECT_TRUE(LoggedLines().empty());
}

TEST_F(Check, NoDataIsRefused) {
    EXPECT_EQ(CheckRequest(Request(0x0604, 1), nullptr), -1);
    EXPECT_TRUE(Logged("[error]: Receive a 0 length message. error code :42503", "at_server", 3));
}

TEST_F(Check, EveryByteOfTheGuardWordCounts) {
    for (size_t byte = 0; byte < 4; ++byte) {
        ClearLog();
        MSG_BUF request = Request(0x0604, 1);
        reinterpret_cast<unsigned char*>(&request)[652 + byte] = ';';
        EXPECT_EQ(CheckRequest(request, request.aucDataBuf), -1);
        EXPECT_TRUE(Logged("[error]: slop over. error code :42497", "at_server", 3));
    }
}

TEST_F(Serve, NormalLine) {
    const MSG_BUF request = Request(0x0604, 1);
    ServeRequest(request);
    EXPECT_EQ(modem_.Heard(), "AT+CSQ\r");
    EXPECT_NE(g_at_processing, 0u);
    EXPECT_EQ(g_atd_warting, 0u);
    EXPECT_EQ(g_at_msg.lMsgType, -1);
    EXPECT_TRUE(HandoverTake());
    EXPECT_TRUE(Same(g_at_msg, request));
    EXPECT_STREQ(g_cmd_str, "AT+CSQ\r");
    EXPECT_TRUE(Logged("Parse AT Message : AT+CSQ\r\n", "at_server"));
    EXPECT_TRUE(Logged("Send AT---------------->>>>AT+CSQ\r\n", "at_server"));
    EXPECT_TRUE(Platform().writes.empty());
}

TEST_F(Serve, EachRequestHasATicketOfItsOwn) {
    ServeRequest(Request(0x0604, 1));
    const uint32_t first = g_at_processing;
    HandoverTake();
    ServeRequest(Request(0x0604, 1));
    EXPECT_NE(g_at_processing, first);
    EXPECT_NE(g_at_processing, 0u);
}

TEST_F(Serve, DialIsIdleFromTheStart) {
    MSG_BUF request = Request(0x0401, 1, "123");
    ServeRequest(request);
    EXPECT_EQ(modem_.Heard(), "ATD123;\r");
    EXPECT_EQ(g_at_processing, 0u);
    EXPECT_EQ(g_atd_warting, 1u);
    EXPECT_TRUE(HandoverTake());
    request.lMsgType = -1;
    EXPECT_TRUE(Same(g_at_msg, request));
    EXPECT_STREQ(g_cmd_str, "ATD123;\r");
}

TEST_F(Serve, OnlyLinesThatBeginWithAtdAreDials) {
    for (const uint16_t id : std::initializer_list<uint16_t>{0x040F, 0x0404, 0x0403}) {  // +CDV, A, +CHUP
        ServeRequest(Request(id, 1));
        EXPECT_NE(g_at_processing, 0u);
        EXPECT_EQ(g_atd_warting, 0u);
        HandoverTake();
        EXPECT_EQ(g_at_msg.lMsgType, 7);
        g_at_processing = 0;
    }
    ServeRequest(Request(0x0401, 3));  // "ATD?" is one
    EXPECT_EQ(g_atd_warting, 1u);
}

TEST_F(Serve, RequestWithoutALineIsInFlightAndNothingIsSent) {
    strcpy(g_cmd_str, "before");
    const std::pair<uint16_t, uint8_t> kBad[] = {{0x0102, 1}, {0, 1},        {0x0604, 0},
                                                 {0x0604, 5}, {0x0604, 255}, {0x0110, 1}};
    for (const auto& [id, type] : kBad) {
        ClearLog();
        const MSG_BUF request = Request(id, type);
        ServeRequest(request);
        EXPECT_EQ(modem_.Heard(), "");
        EXPECT_EQ(g_at_processing, 0u);
        EXPECT_TRUE(Logged("[error]:Parse AT Message error!error code:42504", "at_server", 3));
        EXPECT_FALSE(LoggedPart("Send AT"));
        EXPECT_TRUE(HandoverTake());
        EXPECT_TRUE(Same(g_at_msg, request));
        EXPECT_STREQ(g_cmd_str, "before");
    }
    EXPECT_TRUE(Platform().writes.empty());
}

TEST_F(Serve, ReadingAMessageIsNoted) {
    ServeRequest(Request(0x0107, 1));  // +CMGR
    EXPECT_EQ(Platform().writes, (decltype(Platform().writes){{"sms_cmgr_send", "1"}}));
    HandoverTake();
    Platform().Reset();
    ServeRequest(Request(0x0106, 1));  // +CMGL
    EXPECT_TRUE(Platform().writes.empty());
}

TEST_F(Serve, NameInsideTheLineIsNotedToo) {
    ServeRequest(Request(0x062F, 2, "AT+CMGR" + string(121, '\0')));  // +ZUTP prints a text as it stands
    const string line = modem_.Heard();
    EXPECT_EQ(Platform().Get("sms_cmgr_send"), line.find("AT+CMGR") != string::npos ? "1" : "");
}

TEST_F(Serve, FailedWriteLetsTheLoopGoOnAndLeavesTheRequestInFlight) {
    modem_.Unplug();
    const MSG_BUF request = Request(0x0604, 1);
    ServeRequest(request);
    EXPECT_EQ(g_at_processing, 0u);
    EXPECT_EQ(Platform().Get("port_stat"), "port_close");
    EXPECT_EQ(Platform().Get("usb_reset"), "activated");
    EXPECT_TRUE(HandoverTake());
    EXPECT_TRUE(Same(g_at_msg, request));
}

TEST_F(Serve, WaitsUntilTheRequestBeforeWasTakenOver) {
    ServeRequest(Request(0x0604, 1));
    EXPECT_EQ(modem_.Heard(), "AT+CSQ\r");
    std::atomic<bool> served{false};
    std::thread next([&served] {
        ServeRequest(Request(0x060D, 1));
        served = true;
    });
    usleep(20'000);
    EXPECT_FALSE(served);
    EXPECT_EQ(modem_.Heard(), "");
    EXPECT_TRUE(HandoverTake());
    EXPECT_TRUE(Becomes([&served] { return served.load(); }));
    next.join();
    EXPECT_EQ(modem_.Heard(), "AT+CGMR\r");
    EXPECT_TRUE(HandoverTake());
    EXPECT_STREQ(g_cmd_str, "AT+CGMR\r");
}

TEST_F(ServeDogref, OnlyTheSecondOneStartsTheWatchdog) {
    Platform().config["WatchDog_Setting_Option"] = "on";
    for (unsigned count = 1; count <= 5; ++count) {
        ServeRequest(Request(0x062E, 1));
        HandoverTake();
        EXPECT_EQ(g_dogref_count, count);
        EXPECT_EQ(Platform().timers.size(), count < 2 ? 0u : 1u) << count;
    }
    const auto& timer = Platform().timers[0];
    EXPECT_EQ(timer.id, 25);
    EXPECT_EQ(timer.periodic, 1);
    EXPECT_EQ(timer.period_ms, 60'000u);
    EXPECT_EQ(timer.callback, &DetectAtTimer);
    EXPECT_EQ(timer.arg, nullptr);
    EXPECT_TRUE(Logged("\n==========>>>>TIMER_AT_STATE_DETECT<<<<===========\n", "at_server"));
}

TEST_F(ServeDogref, TimerThatCannotBeStartedIsTold) {
    Platform().config["WatchDog_Setting_Option"] = "on";
    Platform().fail_timers = true;
    for (int i = 0; i < 2; ++i) {
        EXPECT_FALSE(LoggedPart("Soft timer"));
        ServeRequest(Request(0x062E, 1));
        HandoverTake();
    }
    EXPECT_TRUE(
        Logged("[error]:Soft timer 25 was not started! There is no modem watchdog until the server is "
               "started again.",
               "at_server", 3));
}

TEST_F(ServeDogref, WatchdogThatIsSwitchedOnLaterIsNeverStarted) {
    for (const char* option : {"", "off", "ON"}) {
        SetUp();
        Platform().config["WatchDog_Setting_Option"] = option;
        for (int i = 0; i < 2; ++i) {
            ServeRequest(Request(0x062E, 1));
            HandoverTake();
        }
        Platform().config["WatchDog_Setting_Option"] = "on";
        for (int i = 0; i < 3; ++i) {
            ServeRequest(Request(0x062E, 1));
            HandoverTake();
        }
        EXPECT_TRUE(Platform().timers.empty()) << option;
        EXPECT_FALSE(LoggedPart("TIMER_AT_STATE_DETECT"));
    }
}

TEST_F(ServeDogref, UpdateOfTheModemKeepsItOff) {
    for (const auto& [updating, timers] : {std::pair{"1", 0u}, {"0", 1u}, {"", 1u}, {"11", 1u}}) {
        SetUp();
        Platform().config["WatchDog_Setting_Option"] = "on";
        Platform().config["led_modem_updating"] = updating;
        for (int i = 0; i < 2; ++i) {
            ServeRequest(Request(0x062E, 1));
            HandoverTake();
        }
        EXPECT_EQ(Platform().timers.size(), timers) << updating;
    }
}

TEST_F(ServeDogref, RequestWithoutALineDoesNotCount) {
    ServeRequest(Request(0x062E, 5));
    HandoverTake();
    EXPECT_EQ(g_dogref_count, 0u);
    ServeRequest(Request(0x062F, 1));
    HandoverTake();
    EXPECT_EQ(g_dogref_count, 0u);
}

// The loop never returns: it runs in a process of its own, whose exit status says how far things went.
TEST_F(Loop, TimeIsCountedFromItsBeginning) {
    EXPECT_EXIT(
        {
            g_at_send_time = 0;
            std::thread(RequestLoop, queue_).detach();
            _exit(Becomes([] { return g_at_send_time != 0; }) ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(Loop, ServesOneRequestAfterTheOther) {
    EXPECT_EXIT(
        {
            MSG_BUF bad = Request(0x0604, 4);
            bad.ulMagic = 0;
            Queues().Put(0x1000, 7, {});
            Queues().Put(0x1000, 7, Body(bad));
            Queues().Put(0x1000, 7, Body(Request(0x0604, 1)));
            Queues().Put(0x1000, 7, Body(Request(0x0401, 1, "123")));
            Queues().Put(0x1000, 7, Body(Request(0x060D, 1)));
            g_at_send_time = 0;
            std::thread(RequestLoop, queue_).detach();

            if (!Becomes([&] { return modem_.Heard() == "AT+CSQ\r"; })) _exit(1);
            if (!Logged("message recieve error!", "at_server", 6)) _exit(2);
            if (!Logged("message check error!", "at_server", 3)) _exit(3);
            if (!Logged("Receive a message from module 0x2345 ", "at_server", 5)) _exit(4);
            if (!Logged("Receive a message from module g_at_msg.lMsgType=7 ", "at_server", 5)) _exit(5);
            if (!LoggedPart("AT Command statistics:[send/received/report/lost/-msgNum-] (0/0/0/0/5)\n"))
                _exit(6);
            // The next request stays in the queue until the ticket is redeemed.
            usleep(200'000);
            if (modem_.Heard() != "") _exit(7);
            if (!HandoverTake() || g_at_msg.lMsgType != 7) _exit(8);
            RedeemTicket(g_at_processing);
            // The one behind a dial does not, but the dial has to be taken over.
            if (!Becomes([&] { return modem_.Heard() == "ATD123;\r"; })) _exit(9);
            if (!HandoverTake() || g_at_msg.lMsgType != -1) _exit(10);
            if (!Becomes([&] { return modem_.Heard() == "AT+CGMR\r"; })) _exit(11);
            if (!HandoverTake() || g_at_msg.lMsgType != 7 || g_at_processing == 0) _exit(12);
            _exit(0);
        },
        testing::ExitedWithCode(0), "");
}
