#include "records/queue.h"
#include "records/payload.h"

#include <errno.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <string.h>
#include <sys/ipc.h>
#include <sys/msg.h>

#include <string>

#include "checks/support/fake_queue.h"
#include "checks/support/log_capture.h"
#include "records/state.h"

namespace {

using std::string;

constexpr uint16_t kModule = 0x2345;

MSG_BUF Message() {
    MSG_BUF message;
    memset(&message, 0x11, sizeof message);
    message.lMsgType = 7;
    message.usTargetModuleID = kModule;
    message.usSourceModuleID = 0x1000;
    message.usMsgCmd = 0x0302;
    message.usDataLen = 0x0208;
    message.ulMagic = AT_MESSAGE_MAGIC;
    return message;
}

class SendMsgBuf : public testing::Test {
  protected:
    void SetUp() override {
        Queues().Reset();
        Queues().Create(kModule);
        ClearLog();
        g_atd_warting = 1;
    }
    void TearDown() override { g_atd_warting = 0; }
};

}  // namespace

TEST(ToWire, Carries652BytesBehindTheType) {
    MSG_BUF message = Message();
    for (size_t i = 4; i < sizeof message; ++i)
        reinterpret_cast<unsigned char*>(&message)[i] = static_cast<unsigned char>(i);
    QueueMessage wire;
    memset(&wire, 0xEE, sizeof wire);
    ToWire(message, wire);
    EXPECT_EQ(wire.mtype, 7);
    ASSERT_EQ(sizeof wire.body, 652u);
    for (size_t i = 0; i < sizeof wire.body; ++i)
        ASSERT_EQ(wire.body[i], static_cast<unsigned char>(i + 4)) << i;
    MSG_BUF back = {};
    EXPECT_TRUE(FromWire(wire, back));
    EXPECT_EQ(memcmp(&back, &message, sizeof back), 0);
}

TEST(ToWire, GuardWordStandsInTheLastFourBytes) {
    QueueMessage wire;
    ToWire(Message(), wire);
    EXPECT_EQ(memcmp(wire.body + 648, "::::", 4), 0);
}

TEST(FromWire, TypeMustFitAPositiveNumberOf32Bits) {
    QueueMessage wire = {};
    MSG_BUF message = Message();
    for (const long type : {0L, -1L, LONG_MIN, INT32_MIN + 0L}) {
        wire.mtype = type;
        EXPECT_FALSE(FromWire(wire, message)) << type;
    }
    if (sizeof(long) > 4) {
        const long too_large = INT32_MAX;
        wire.mtype = too_large + (sizeof(long) > 4 ? 1 : 0);
        EXPECT_FALSE(FromWire(wire, message));
        wire.mtype = LONG_MAX;
        EXPECT_FALSE(FromWire(wire, message));
    }
    EXPECT_EQ(message.lMsgType, 7);
    for (const long type : {1L, INT32_MAX + 0L}) {
        wire.mtype = type;
        EXPECT_TRUE(FromWire(wire, message)) << type;
        EXPECT_EQ(message.lMsgType, type);
    }
}

TEST_F(SendMsgBuf, NullIsRefused) {
    EXPECT_EQ(send_msg_buf(nullptr), 1);
    EXPECT_TRUE(Logged("send_msg_buf:: para is NULL!\n", "at_server"));
}

TEST_F(SendMsgBuf, WhatTravelsIsTheRecord) {
    MSG_BUF message = Message();
    EXPECT_EQ(send_msg_buf(&message), 0);
    ASSERT_EQ(Queues().sent.size(), 1u);
    EXPECT_EQ(Queues().sent[0].key, kModule);
    EXPECT_EQ(Queues().sent[0].type, 7);
    ASSERT_EQ(Queues().sent[0].body.size(), 652u);
    EXPECT_EQ(memcmp(Queues().sent[0].body.data(), reinterpret_cast<unsigned char*>(&message) + 4, 652), 0);
}

TEST_F(SendMsgBuf, TargetWithoutAQueueFailsAndNothingIsRetried) {
    MSG_BUF message = Message();
    message.usTargetModuleID = 0x0ABC;
    ResponseOf(message).ucResult = 0;
    ResponseOf(message).usCmdID = 0x0403;
    EXPECT_EQ(send_msg_buf(&message), 1);
    EXPECT_TRUE(Logged("send_msg_buf ::get target msg id 0x0abc failed!\n", "at_server"));
    EXPECT_TRUE(Queues().sent.empty());
    EXPECT_EQ(Queues().waiting.count(0x0ABC), 0u);
    // The look-up comes before anything else is done.
    EXPECT_EQ(ResponseOf(message).ucResult, 0);
    EXPECT_EQ(g_atd_warting, 1u);
}

TEST_F(SendMsgBuf, TargetZeroIsNoQueueAndMakesNone) {
    MSG_BUF message = Message();
    message.usTargetModuleID = 0;
    EXPECT_EQ(send_msg_buf(&message), 1);
    EXPECT_TRUE(Logged("send_msg_buf ::get target msg id 0x0000 failed!\n", "at_server"));
    EXPECT_EQ(Queues().private_queues, 0);
}

TEST_F(SendMsgBuf, ResultZeroLeavesAsOneAndInTheCallersRecord) {
    MSG_BUF message = Message();
    ResponseOf(message).ucResult = 0;
    EXPECT_EQ(send_msg_buf(&message), 0);
    EXPECT_EQ(ResponseOf(message).ucResult, 1);
    EXPECT_EQ(Queues().sent[0].Response().ucResult, 1);
}

TEST_F(SendMsgBuf, OtherResultsStay) {
    for (const int result : {1, 2, 5, 6, 11, 255}) {
        MSG_BUF message = Message();
        ResponseOf(message).ucResult = static_cast<uint8_t>(result);
        EXPECT_EQ(send_msg_buf(&message), 0);
        EXPECT_EQ(Queues().sent.back().Response().ucResult, result);
    }
}

TEST_F(SendMsgBuf, HangUpEndsTheWaitForADialWhateverItsResult) {
    for (const int result : {0, 1, 2, 5}) {
        g_atd_warting = 1;
        MSG_BUF message = Message();
        ResponseOf(message).usCmdID = 0x0403;
        ResponseOf(message).ucResult = static_cast<uint8_t>(result);
        EXPECT_EQ(send_msg_buf(&message), 0);
        EXPECT_EQ(g_atd_warting, 0u) << result;
    }
}

TEST_F(SendMsgBuf, OtherCommandsLeaveTheDialAlone) {
    for (const uint16_t id : std::initializer_list<uint16_t>{0x0401, 0x0402, 0x0404, 0x0304}) {
        MSG_BUF message = Message();
        ResponseOf(message).usCmdID = id;
        EXPECT_EQ(send_msg_buf(&message), 0);
        EXPECT_EQ(g_atd_warting, 1u);
    }
}

TEST_F(SendMsgBuf, RecordIsLogged) {
    MSG_BUF message = Message();
    _BK_AT_RES_T& res = ResponseOf(message);
    res.usCmdID = 0x0604;
    res.ucCmdType = 1;
    res.ucResult = 2;
    res.usParaLen = 0x10;
    strcpy(reinterpret_cast<char*>(res.aucParas), "text");
    send_msg_buf(&message);
    ASSERT_EQ(LoggedLines().size(), 2u);
    EXPECT_EQ(LoggedLines()[0].text.rfind(
                  "tagMSG_BUF : lMsgType=0x7, usTargetModuleID=0x2345,usSourceModuleID=0x1000,"
                  "usMsgCmd=0x302,usDataLen=0x208, aucDataBuf=0x",
                  0),
              0u);
    EXPECT_NE(LoggedLines()[0].text.find(", ulMagic=0x3a3a3a3a \n"), string::npos);
    EXPECT_EQ(LoggedLines()[1].text,
              "_BK_AT_RES_T : usCmdID=0x604,ucCmdType=0x1,ucResult=0x2,usParaLen=0x10,aucParas=text \n");
    EXPECT_EQ(LoggedLines()[0].level, 7);
    EXPECT_EQ(LoggedLines()[1].level, 7);
}

TEST_F(SendMsgBuf, LoggedParametersEndWithTheRecord) {
    MSG_BUF message = Message();
    memset(ResponseOf(message).aucParas, 'p', sizeof ResponseOf(message).aucParas);
    send_msg_buf(&message);
    EXPECT_TRUE(LoggedPart("aucParas=" + string(634, 'p') + " \n"));
}

TEST_F(SendMsgBuf, LengthBeyondTheRecordTravelsAsItStands) {
    for (const uint16_t length : std::initializer_list<uint16_t>{635, 22004, 50564, 65535}) {
        MSG_BUF message = Message();
        ResponseOf(message).usParaLen = length;
        EXPECT_EQ(send_msg_buf(&message), 0);
        EXPECT_EQ(Queues().sent.back().Response().usParaLen, length);
        EXPECT_EQ(Queues().sent.back().body.size(), 652u);
    }
}

TEST_F(SendMsgBuf, FailedSendIsLoggedWithItsError) {
    Queues().fail_send = EIDRM;
    MSG_BUF message = Message();
    ResponseOf(message).ucResult = 0;
    EXPECT_EQ(send_msg_buf(&message), 1);
    EXPECT_TRUE(Logged("ERROR: send_msg_buf:: send msg failed, error code " + std::to_string(EIDRM) + "!\n",
                       "at_server"));
    EXPECT_EQ(ResponseOf(message).ucResult, 1);
}

TEST_F(SendMsgBuf, TypeThatAQueueRefusesIsAFailure) {
    MSG_BUF message = Message();
    message.lMsgType = -1;
    EXPECT_EQ(send_msg_buf(&message), 1);
    EXPECT_TRUE(Queues().sent.empty());
}

TEST(QueueDepth, CountsWhatIsWaiting) {
    Queues().Reset();
    Queues().Create(kModule);
    const int queue = msgget(kModule, 0);
    EXPECT_EQ(QueueDepth(queue), 0);
    Queues().Put(kModule, 1, {1});
    Queues().Put(kModule, 1, {});
    EXPECT_EQ(QueueDepth(queue), 2);
}

TEST(QueueDepth, QueueThatCannotBeRead) {
    Queues().Reset();
    EXPECT_EQ(QueueDepth(-1), -1);
    EXPECT_EQ(QueueDepth(4711), -1);
    Queues().Create(kModule);
    const int queue = msgget(kModule, 0);
    Queues().fail_control = EACCES;
    EXPECT_EQ(QueueDepth(queue), -1);
    Queues().Reset();
}
