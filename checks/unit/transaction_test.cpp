#include "server/transaction.h"

#include <errno.h>
#include <gtest/gtest.h>
#include <string.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/times.h>
#include <unistd.h>

#include <string>
#include <thread>
#include <vector>

#include "checks/support/fake_modem.h"
#include "checks/support/fake_platform.h"
#include "checks/support/fake_queue.h"
#include "checks/support/log_capture.h"
#include "codec/framing.h"
#include "port/com.h"
#include "records/handover.h"
#include "records/state.h"

// The waiting half of a transaction, driven round by round: nothing here waits for a time-out to pass.

namespace {

using std::string;

constexpr uint16_t kRequester = 0x2345;
constexpr uint16_t kAddressed = 0x1000;

MSG_BUF Request(uint16_t id, uint8_t type = 3, int32_t message_type = 7, uint16_t source = kRequester) {
    MSG_BUF request = {};
    request.lMsgType = message_type;
    request.usTargetModuleID = kAddressed;
    request.usSourceModuleID = source;
    request.usMsgCmd = 0x0301;
    request.usDataLen = 640;
    request.ulMagic = AT_MESSAGE_MAGIC;
    _BK_AT_CMD_T command = {};
    command.usCmdID = id;
    command.ucCmdType = type;
    command.usParaLen = 3;
    memcpy(command.aucParas, "abc", 3);
    memcpy(request.aucDataBuf, &command, sizeof command);
    return request;
}

// The 652 bytes of an answer of the server's own, laid out by hand.
std::vector<unsigned char> Answer(uint16_t id, uint8_t type, uint8_t result, const string& paras = "") {
    std::vector<unsigned char> bytes(652, 0);
    const auto put = [&bytes](size_t at, auto value) { memcpy(&bytes[at], &value, sizeof value); };
    put(0, kRequester);
    put(2, kAddressed);
    put(4, uint16_t{0x0302});
    put(6, uint16_t{0x0208});
    put(8, id);
    put(10, type);
    put(11, result);
    put(12, uint16_t{512});
    memcpy(&bytes[14], paras.data(), paras.size());
    memcpy(&bytes[648], "::::", 4);
    return bytes;
}

class TransactionCheck : public testing::Test {
  protected:
    void SetUp() override {
        Platform().Reset();
        Platform().config["data_card_mode"] = "KVX_LTE";
        Queues().Reset();
        Queues().CreateModules();
        Queues().Create(kRequester);
        gStrResAtBuffer[0] = '\0';
        g_iFdCom = -1;
        HandoverTake();
        ClearPendingRequest();
        ResponseRound();  // an idle round forgets the count
        g_at_processing = 0;
        g_at_statistics.send = g_at_statistics.received = g_at_statistics.report = g_at_statistics.lost = 0;
        ClearLog();
    }
    void TearDown() override { SetUp(); }

    static void Rounds(unsigned count) {
        for (unsigned i = 0; i < count; ++i)
            ResponseRound();
    }
    // Rounds until a message is sent, at most `most`.
    static unsigned RoundsUntilSent(unsigned most = 40'000) {
        const size_t before = Queues().sent.size();
        for (unsigned round = 1; round <= most; ++round) {
            ResponseRound();
            if (Queues().sent.size() != before) return round;
        }
        return 0;
    }
    static FakeMessage LastSent() { return Queues().sent.empty() ? FakeMessage() : Queues().sent.back(); }
    static bool Idle() {
        const MSG_BUF zero = {};
        return g_at_msg.lMsgType == -1 &&
               memcmp(&g_at_msg.usTargetModuleID, &zero.usTargetModuleID, 652) == 0;
    }
};

using Timeout = TransactionCheck;
using Round = TransactionCheck;
using TimeoutAnswer = TransactionCheck;
using Refuse = TransactionCheck;
using Statistics = TransactionCheck;

constexpr struct {
    uint16_t id;
    uint32_t rounds;
} kTable[] = {
    {0x0401, 6'000},  {0x0519, 1'000}, {0x0106, 12'000}, {0x010B, 12'000}, {0x0612, 8'000},
    {0x0108, 18'000}, {0x0623, 9'000}, {0x0624, 9'000},  {0x0620, 9'000},  {0x0517, 18'000},
};

}  // namespace

TEST_F(Timeout, Table) {
    for (const auto& [id, rounds] : kTable)
        EXPECT_EQ(TimeoutRounds(id), rounds) << id;
}

TEST_F(Timeout, EveryOtherCommandHasTenSeconds) {
    for (unsigned id = 0; id <= 0xFFFF; ++id) {
        bool listed = false;
        for (const auto& row : kTable)
            listed = listed || row.id == id;
        if (listed) continue;
        ASSERT_EQ(TimeoutRounds(static_cast<uint16_t>(id)), 1'000u) << id;
    }
}

TEST_F(Timeout, EachCommandIsAnsweredInItsRound) {
    for (const auto& [id, rounds] : kTable) {
        g_at_msg = Request(id);
        EXPECT_EQ(RoundsUntilSent(), rounds) << id;
        EXPECT_EQ(LastSent().body, Answer(id, 3, 5));
        EXPECT_TRUE(Idle());
        ClearLog();
    }
    EXPECT_EQ(g_at_statistics.lost, std::size(kTable));
}

TEST_F(Timeout, UnknownCommandIsAnsweredAfterAThousandRounds) {
    g_at_msg = Request(0x0102, 9);
    EXPECT_EQ(RoundsUntilSent(), 1'000u);
    EXPECT_EQ(LastSent().body, Answer(0x0102, 9, 5));
    EXPECT_EQ(LastSent().type, 7);
}

TEST_F(Timeout, RoundBeforeIsSilent) {
    g_at_msg = Request(0x0604);
    const uint32_t ticket = IssueTicket();
    Rounds(999);
    EXPECT_TRUE(Queues().sent.empty());
    EXPECT_EQ(g_at_statistics.lost, 0u);
    EXPECT_EQ(g_at_processing, ticket);
    EXPECT_TRUE(LoggedLines().empty());
    Rounds(1);
    EXPECT_EQ(Queues().sent.size(), 1u);
    EXPECT_EQ(g_at_statistics.lost, 1u);
    EXPECT_EQ(g_at_processing, 0u);
    EXPECT_TRUE(Logged("Waiting for AT response time out(timeout=1000)!!discard...\n", "at_server", 4));
}

TEST_F(Timeout, EachOfTwoSilentRequestsIsAnsweredAndCounted) {
    for (const int32_t type : {7, 8}) {
        ASSERT_TRUE(HandoverPut(Request(0x0604, 1, type), "AT+CSQ\r"));
        IssueTicket();
        EXPECT_EQ(RoundsUntilSent(), 1'000u);
        EXPECT_EQ(LastSent().type, type);
        EXPECT_EQ(g_at_processing, 0u);
    }
    EXPECT_EQ(g_at_statistics.lost, 2u);
}

TEST_F(Timeout, CountStartsAnewAfterIt) {
    g_at_msg = Request(0x0604);
    Rounds(1'000);
    g_at_msg = Request(0x0604);
    EXPECT_EQ(RoundsUntilSent(), 1'000u);
}

TEST_F(Timeout, FailedAnswerIsRetriedAfterAnotherFullTime) {
    Queues().Reset();
    g_at_msg = Request(0x0604);
    IssueTicket();
    Rounds(1'000);
    EXPECT_EQ(g_at_processing, 0u);
    const MSG_BUF request = Request(0x0604);
    EXPECT_EQ(memcmp(&g_at_msg, &request, sizeof request), 0);
    EXPECT_TRUE(Logged("ERROR: send_msg_buf send msg failed, error code 42506!", "at_server"));
    Queues().Create(kRequester);
    EXPECT_EQ(RoundsUntilSent(), 1'000u);
    EXPECT_EQ(g_at_statistics.lost, 2u);
    EXPECT_TRUE(Idle());
}

TEST_F(Timeout, RequestThatOverwritesAnotherGoesOnWithItsCount) {
    g_at_msg = Request(0x0604, 1, 7);
    Rounds(600);
    ASSERT_TRUE(HandoverPut(Request(0x060D, 1, 8), "AT+CGMR\r"));
    EXPECT_EQ(RoundsUntilSent(), 400u);
    EXPECT_EQ(LastSent().type, 8);
}

TEST_F(Timeout, LongerTimeAlsoCountsFromTheRequestBefore) {
    g_at_msg = Request(0x0604);
    Rounds(600);
    ASSERT_TRUE(HandoverPut(Request(0x0517), "AT+COPS?\r"));
    EXPECT_EQ(RoundsUntilSent(), 17'400u);
}

// Compared with the limit alone such a count would never be met.
TEST_F(Timeout, CountThatIsPastTheLimitEndsAtTheNextMultiple) {
    for (const auto& [passed, left] :
         {std::pair{1'500u, 500u}, {999u, 1u}, {1'000u, 1'000u}, {17'999u, 1u}}) {
        SetUp();
        g_at_msg = Request(0x0517);
        Rounds(passed);
        ASSERT_TRUE(HandoverPut(Request(0x0604), "AT+CSQ?\r"));
        EXPECT_EQ(RoundsUntilSent(), left) << passed;
        EXPECT_EQ(LastSent().body, Answer(0x0604, 3, 5));
    }
}

TEST_F(Timeout, DialIsNeverTimed) {
    ASSERT_TRUE(HandoverPut(Request(0x0401, 1, -1), "ATD123;\r"));
    Rounds(20'000);
    EXPECT_TRUE(Queues().sent.empty());
    EXPECT_EQ(g_at_statistics.lost, 0u);
}

TEST_F(Timeout, OpenQuoteOfTheUnfinishedTextIsDropped) {
    FakeModem modem;
    g_at_msg = Request(0x0604);
    modem.Say("\r\n+CSQ: \"20\r\n\r\nOK\r\n");
    EXPECT_EQ(RoundsUntilSent(), 1'000u);
    EXPECT_EQ(LastSent().body, Answer(0x0604, 3, 5));
    EXPECT_STREQ(gStrResAtBuffer, "");
    EXPECT_TRUE(LoggedPart("open quote"));
    // The next answer is not hidden by it.
    ASSERT_TRUE(HandoverPut(Request(0x0604, 1), "AT+CSQ\r"));
    modem.Say("\r\n+CSQ: 20,99\r\n\r\nOK\r\n");
    EXPECT_EQ(RoundsUntilSent(10), 1u);
    EXPECT_EQ(LastSent().Response().ucResult, 1);
}

TEST_F(Timeout, OtherUnfinishedTextStays) {
    FakeModem modem;
    g_at_msg = Request(0x0604);
    modem.Say("\r\n+CSQ: \"20\"");
    EXPECT_EQ(RoundsUntilSent(), 1'000u);
    EXPECT_STREQ(gStrResAtBuffer, "\r\n+CSQ: \"20\"");
    EXPECT_FALSE(LoggedPart("open quote"));
}

TEST_F(Round, IdleRoundLetsTheLoopGoOn) {
    IssueTicket();
    ResponseRound();
    EXPECT_EQ(g_at_processing, 0u);
    EXPECT_FALSE(Logged("AT RESOLVE COMPLETE!"));
}

TEST_F(Round, RequestInFlightKeepsTheLoopWaiting) {
    ASSERT_TRUE(HandoverPut(Request(0x0604), "AT+CSQ?\r"));
    const uint32_t ticket = IssueTicket();
    Rounds(5);
    EXPECT_EQ(g_at_processing, ticket);
    EXPECT_EQ(g_at_msg.lMsgType, 7);
    EXPECT_STREQ(g_cmd_str, "AT+CSQ?\r");
}

TEST_F(Round, AnswerEndsTheTransaction) {
    FakeModem modem;
    ASSERT_TRUE(HandoverPut(Request(0x0604, 1), "AT+CSQ\r"));
    IssueTicket();
    Rounds(3);
    modem.Say("\r\n+CSQ: 20,99\r\n\r\nOK\r\n");
    ResponseRound();
    ASSERT_EQ(Queues().sent.size(), 1u);
    EXPECT_EQ(Queues().sent[0].key, kRequester);
    EXPECT_EQ(Queues().sent[0].type, 7);
    EXPECT_EQ(Queues().sent[0].Response().usCmdID, 0x0604);
    EXPECT_TRUE(Idle());
    EXPECT_EQ(g_at_processing, 0u);
    EXPECT_EQ(g_at_statistics.received, 1u);
    EXPECT_EQ(g_at_statistics.lost, 0u);
    EXPECT_TRUE(Logged("AT RESOLVE COMPLETE!", "at_server", 4));
    ClearLog();
    ResponseRound();
    EXPECT_FALSE(Logged("AT RESOLVE COMPLETE!"));
}

TEST_F(Round, AnswerInTheFirstRoundEndsItSilently) {
    FakeModem modem;
    ASSERT_TRUE(HandoverPut(Request(0x0604, 1), "AT+CSQ\r"));
    modem.Say("\r\n+CSQ: 20,99\r\n\r\nOK\r\n");
    ResponseRound();
    EXPECT_EQ(Queues().sent.size(), 1u);
    EXPECT_FALSE(Logged("AT RESOLVE COMPLETE!"));
}

TEST_F(Round, CountStartsAnewAfterAnAnswer) {
    FakeModem modem;
    g_at_msg = Request(0x0604, 1);
    Rounds(900);
    modem.Say("\r\n+CSQ: 20,99\r\n\r\nOK\r\n");
    ResponseRound();
    g_at_msg = Request(0x0604, 1);
    EXPECT_EQ(RoundsUntilSent(), 1'000u);
}

TEST_F(Round, DialAfterARequestForgetsItsCount) {
    g_at_msg = Request(0x0604, 1);
    Rounds(900);
    ASSERT_TRUE(HandoverPut(Request(0x0401, 1, -1), "ATD1;\r"));
    ResponseRound();
    EXPECT_TRUE(Logged("AT RESOLVE COMPLETE!", "at_server", 4));
    ASSERT_TRUE(HandoverPut(Request(0x0604, 1), "AT+CSQ\r"));
    EXPECT_EQ(RoundsUntilSent(), 1'000u);
}

// A modem that answers so fast that its text is there before the request was taken over.
TEST_F(Round, TextIsReadOnlyAfterItsRequestWasTakenOver) {
    FakeModem modem;
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(HandoverPut(Request(0x0604, 1, 10 + i), "AT+CSQ\r"));
        IssueTicket();
        modem.Say("\r\n+CSQ: 20,99\r\n\r\nOK\r\n");
        ResponseRound();
        ASSERT_EQ(Queues().sent.size(), static_cast<size_t>(i + 1));
        EXPECT_EQ(LastSent().type, 10 + i);
        EXPECT_EQ(g_at_processing, 0u);
    }
}

TEST_F(TimeoutAnswer, LogsEveryStep) {
    g_at_msg = Request(0x0604, 3);
    EXPECT_EQ(SendTimeoutAnswer(), 0);
    EXPECT_TRUE(Logged("Waiting for AT response time out!!\n", "at_server", 4));
    const char id_bytes[] = {static_cast<char>(g_at_msg.aucDataBuf[0]), '\0'};
    EXPECT_TRUE(LoggedPart("Waiting for AT response g_at_msg.aucDataBuf=" + string(id_bytes)));
    EXPECT_TRUE(Logged("Waiting for AT response tAtRes->usCmdID=0x0604\n", "at_server"));
    EXPECT_TRUE(Logged("Waiting for AT response g_at_msg.aucDataBuf=3\n", "at_server"));
    EXPECT_TRUE(Logged("Waiting for AT response tAtRes->ucResult =5\n", "at_server"));
    EXPECT_TRUE(Logged("send_msg_buf send msg_response OK!\n", "at_server"));
    EXPECT_TRUE(Idle());
}

TEST_F(TimeoutAnswer, RecordWithoutANulIsLoggedUpToItsEnd) {
    g_at_msg = Request(0x0604);
    memset(g_at_msg.aucDataBuf, 'd', sizeof g_at_msg.aucDataBuf);
    EXPECT_EQ(SendTimeoutAnswer(), 0);
    EXPECT_TRUE(
        Logged("Waiting for AT response g_at_msg.aucDataBuf=" + string(640, 'd') + "\n", "at_server", 6));
}

TEST_F(TimeoutAnswer, HangUpThatTimesOutEndsTheWaitForADial) {
    g_atd_warting = 1;
    g_at_msg = Request(0x0403, 1);
    EXPECT_EQ(SendTimeoutAnswer(), 0);
    EXPECT_EQ(g_atd_warting, 0u);
}

TEST_F(TimeoutAnswer, AnswerNamesTheServerAsItWasAddressed) {
    g_at_msg = Request(0x0604);
    g_at_msg.usTargetModuleID = 0x1777;
    EXPECT_EQ(SendTimeoutAnswer(), 0);
    EXPECT_EQ(LastSent().Record().usSourceModuleID, 0x1777);
}

TEST_F(TimeoutAnswer, FailureLeavesTheRequest) {
    g_at_msg = Request(0x0604);
    const MSG_BUF request = g_at_msg;
    Queues().fail_send = EAGAIN;
    EXPECT_EQ(SendTimeoutAnswer(), 1);
    EXPECT_TRUE(Logged("ERROR: send_msg_buf send msg failed, error code 42506!", "at_server"));
    EXPECT_EQ(memcmp(&g_at_msg, &request, sizeof request), 0);
}

TEST_F(Refuse, NullStateDoesNotRefuse) {
    g_at_msg = Request(0x0604);
    for (const auto& [call, data] : {std::pair<const char*, const char*>{nullptr, "ppp_connecting"},
                                     {"call_setup", nullptr},
                                     {nullptr, nullptr}}) {
        ClearLog();
        EXPECT_FALSE(RefuseWhenBusy(call, data));
        EXPECT_TRUE(Logged("why NULL value happened??", "at_server"));
    }
    EXPECT_TRUE(Queues().sent.empty());
    EXPECT_EQ(g_at_msg.lMsgType, 7);
}

TEST_F(Refuse, OtherStatesDoNotRefuse) {
    g_at_msg = Request(0x0604);
    for (const char* state :
         {"", "idle", "call_setup ", "ppp_connected", "ppp_disconnected", "ppp_connectin"})
        EXPECT_FALSE(RefuseWhenBusy(state, state)) << state;
    EXPECT_FALSE(RefuseWhenBusy("ppp_connecting", "call_setup"));
    EXPECT_TRUE(Queues().sent.empty());
    EXPECT_TRUE(LoggedLines().empty());
}

TEST_F(Refuse, EachReason) {
    const struct {
        const char* call;
        const char* data;
        const char* reason;
    } kStates[] = {
        {"call_setup", "", "call_setup"},
        {"", "ppp_connecting", "ppp_connecting"},
        {"", "ppp_disconnecting", "ppp_disconnecting"},
        {"call_setup", "ppp_connecting", "ppp_connecting"},
        {"call_setup", "ppp_disconnecting", "ppp_disconnecting"},
    };
    for (const auto& state : kStates) {
        Queues().sent.clear();
        ClearLog();
        g_at_msg = Request(0x0604);
        EXPECT_TRUE(RefuseWhenBusy(state.call, state.data));
        ASSERT_EQ(Queues().sent.size(), 1u);
        EXPECT_EQ(Queues().sent[0].type, 7);
        EXPECT_EQ(Queues().sent[0].body, Answer(0x0604, 3, 6, state.reason));
        EXPECT_TRUE(Idle());
        EXPECT_TRUE(Logged("send_msg_buf send msg_response OK!\n", "at_server"));
        EXPECT_EQ(Logged("cscall is busy...,please wait!", "at_server"), state.call[0] != '\0');
        EXPECT_EQ(Logged("ppp_connecting...,please wait!", "at_server"),
                  strcmp(state.data, "ppp_connecting") == 0);
        EXPECT_EQ(Logged("ppp_disconnecting...,please wait!", "at_server"),
                  strcmp(state.data, "ppp_disconnecting") == 0);
    }
}

TEST_F(Refuse, CallModuleIsNotRefusedForACall) {
    g_at_msg = Request(0x0604, 3, 7, 0x1002);
    EXPECT_FALSE(RefuseWhenBusy("call_setup", ""));
    EXPECT_EQ(g_at_msg.lMsgType, 7);
    EXPECT_TRUE(RefuseWhenBusy("call_setup", "ppp_connecting"));
    ASSERT_EQ(Queues().sent.size(), 1u);
    EXPECT_EQ(Queues().sent[0].key, 0x1002);
    EXPECT_STREQ(reinterpret_cast<const char*>(Queues().sent[0].Response().aucParas), "ppp_connecting");
}

TEST_F(Refuse, FailureLeavesTheRequest) {
    g_at_msg = Request(0x0604);
    Queues().fail_send = EAGAIN;
    EXPECT_TRUE(RefuseWhenBusy("call_setup", ""));
    EXPECT_TRUE(Logged("ERROR: send_msg_buf send msg failed, error code 42506!", "at_server"));
    EXPECT_EQ(g_at_msg.lMsgType, 7);
}

TEST_F(Statistics, LineTellsTheCountersAndTheQueue) {
    g_at_statistics.send = 1;
    g_at_statistics.received = 2;
    g_at_statistics.report = 3;
    g_at_statistics.lost = 4;
    Queues().Create(0x1000);
    Queues().Put(0x1000, 1, {1});
    g_at_send_time = static_cast<uint32_t>(times(nullptr)) - 500;
    LogStatistics(msgget(0x1000, 0));
    ASSERT_EQ(LoggedLines().size(), 2u);
    EXPECT_EQ(LoggedLines()[0].text,
              "AT Command statistics:[send/received/report/lost/-msgNum-] (1/2/3/4/1)\n");
    EXPECT_EQ(LoggedLines()[0].level, 5);
    EXPECT_EQ(LoggedLines()[0].module, "at_server");
    EXPECT_EQ(LoggedLines()[1].level, 4);
    int used = -1;
    EXPECT_EQ(sscanf(LoggedLines()[1].text.c_str(), "Resolve AT OK!....time used (%d)", &used), 1);
    EXPECT_GE(used, 500);
    EXPECT_LT(used, 600);
}

TEST_F(Statistics, QueueThatCannotBeRead) {
    LogStatistics(-1);
    EXPECT_TRUE(
        Logged("AT Command statistics:[send/received/report/lost/-msgNum-] (0/0/0/0/-1)\n", "at_server", 5));
}

// The thread never returns: it runs in a process of its own.
TEST_F(Round, ThreadAnnouncesItselfAndGoesRound) {
    EXPECT_EXIT(
        {
            Device().skip_waits = true;
            IssueTicket();
            std::thread([] { resolve_at_response_thread(nullptr); }).detach();
            for (int i = 0; i < 10'000 && g_at_processing != 0; ++i)
                usleep(1'000);
            if (g_at_processing != 0 || !Logged("AT response thread  is running ...", "at_server", 6))
                _exit(1);
            // Before the first round; 10 ms in each.
            _exit(Device().first_wait_ms == 1000 ? 0 : 2);
        },
        testing::ExitedWithCode(0), "");
}
