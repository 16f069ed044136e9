#include <errno.h>
#include <gtest/gtest.h>
#include <string.h>

#include <string>
#include <vector>

#include "checks/support/fake_queue.h"
#include "checks/support/log_capture.h"
#include "records/report.h"
#include "records/state.h"

namespace {

using std::string;

_BK_AT_RES_T Response(uint16_t length, uint8_t fill = 'p', uint8_t result = 4) {
    _BK_AT_RES_T res;
    memset(&res, 0xEE, sizeof res);
    res.usCmdID = 0x1111;
    res.ucCmdType = 9;
    res.ucResult = result;
    res.usParaLen = length;
    memset(res.aucParas, fill, sizeof res.aucParas);
    return res;
}

// The 652 bytes of a report, laid out by hand.
std::vector<unsigned char> Wire(uint16_t target, uint16_t id, uint8_t type, uint8_t result, uint16_t length,
                                const string& paras) {
    std::vector<unsigned char> bytes(652, 0);
    const auto put = [&bytes](size_t at, auto value) { memcpy(&bytes[at], &value, sizeof value); };
    put(0, target);
    put(2, uint16_t{0x1000});
    put(4, uint16_t{0x0302});
    put(6, uint16_t{518});
    put(8, id);
    put(10, type);
    put(11, result);
    put(12, length);
    memcpy(&bytes[14], paras.data(), paras.size());
    memcpy(&bytes[648], "::::", 4);
    return bytes;
}

class ReportSender : public testing::Test {
  protected:
    void SetUp() override {
        Queues().Reset();
        Queues().CreateModules();
        ClearLog();
    }
    static void ExpectSent(const std::vector<unsigned char>& wire) {
        ASSERT_EQ(Queues().sent.size(), 1u);
        EXPECT_EQ(Queues().sent[0].type, 1);
        EXPECT_EQ(Queues().sent[0].body, wire);
        Queues().sent.clear();
    }
};

using SendAutoReport = ReportSender;
using SendUssdError = ReportSender;

}  // namespace

TEST_F(SendAutoReport, NullIsRefused) {
    EXPECT_EQ(send_auto_report(0x1003, 0x052D, 1, nullptr), 1);
    EXPECT_TRUE(Logged("ERROR: send_auto_report NULL parameter.\n", "response", 3));
    EXPECT_TRUE(Queues().sent.empty());
}

TEST_F(SendAutoReport, ExactBytes) {
    const _BK_AT_RES_T res = Response(3);
    EXPECT_EQ(send_auto_report(0x1003, 0x052D, 2, &res), 0);
    ExpectSent(Wire(0x1003, 0x052D, 2, 1, 3, "ppp"));
    EXPECT_TRUE(Logged("send_auto_report send RES msg to 0x1003 CMD 0x052d OK.\n", "response", 3));
}

TEST_F(SendAutoReport, ResultIsAlwaysOne) {
    for (const int result : {0, 1, 4, 255}) {
        const _BK_AT_RES_T res = Response(0, 'p', static_cast<uint8_t>(result));
        EXPECT_EQ(send_auto_report(0x1003, 0x052D, 2, &res), 0);
        ExpectSent(Wire(0x1003, 0x052D, 2, 1, 0, ""));
    }
}

TEST_F(SendAutoReport, ParametersUpToTheRecordAreCarried) {
    for (const size_t length : {0u, 1u, 633u, 634u}) {
        const _BK_AT_RES_T res = Response(static_cast<uint16_t>(length));
        EXPECT_EQ(send_auto_report(0x1002, 0x0513, 1, &res), 0);
        ExpectSent(Wire(0x1002, 0x0513, 1, 1, static_cast<uint16_t>(length), string(length, 'p')));
    }
}

TEST_F(SendAutoReport, LengthBeyondTheRecordIsCarriedAndItsTextIsCut) {
    for (const uint16_t length : std::initializer_list<uint16_t>{635, 824, 50564, 65535}) {
        const _BK_AT_RES_T res = Response(length);
        EXPECT_EQ(send_auto_report(0x1002, 0x0513, 1, &res), 0);
        ExpectSent(Wire(0x1002, 0x0513, 1, 1, length, string(634, 'p')));
    }
}

TEST_F(SendAutoReport, UssdTextIsWithheldAndItsLengthIsNot) {
    for (const uint16_t length : std::initializer_list<uint16_t>{0, 5, 824}) {
        const _BK_AT_RES_T res = Response(length);
        EXPECT_EQ(send_auto_report(0x101C, 0x0532, 2, &res), 0);
        ExpectSent(Wire(0x101C, 0x0532, 2, 1, length, ""));
    }
}

TEST_F(SendAutoReport, HangUpEndsTheWaitForADial) {
    g_atd_warting = 1;
    const _BK_AT_RES_T res = Response(0);
    send_auto_report(0x1002, 0x0402, 1, &res);
    EXPECT_EQ(g_atd_warting, 1u);
    send_auto_report(0x1002, 0x0403, 1, &res);
    EXPECT_EQ(g_atd_warting, 0u);
}

TEST_F(SendAutoReport, FailedSend) {
    const _BK_AT_RES_T res = Response(3);
    EXPECT_EQ(send_auto_report(0x0ABC, 0x052D, 2, &res), 1);
    EXPECT_TRUE(Logged("ERROR: send_auto_report send msg failed.\n", "response", 3));
    EXPECT_FALSE(LoggedPart("send RES msg"));
    Queues().fail_send = EAGAIN;
    EXPECT_EQ(send_auto_report(0x1003, 0x052D, 2, &res), 1);
}

TEST_F(SendUssdError, NullIsRefused) {
    EXPECT_EQ(send_auto_report_ussd_error(0x101C, 0x0532, 6, nullptr), 1);
    EXPECT_TRUE(Logged("ERROR: send_auto_report_ussd_error NULL parameter.\n", "response", 3));
}

TEST_F(SendUssdError, CarriesTheTextAndTheResult) {
    const _BK_AT_RES_T res = Response(4, 'e', 4);
    EXPECT_EQ(send_auto_report_ussd_error(0x101C, 0x0532, 6, &res), 0);
    ExpectSent(Wire(0x101C, 0x0532, 6, 4, 4, "eeee"));
    EXPECT_TRUE(Logged("send_auto_report_ussd_error send RES msg to 0x101c CMD 0x0532 OK.\n", "response", 3));
}

TEST_F(SendUssdError, ResultZeroLeavesAsOne) {
    const _BK_AT_RES_T res = Response(0, 'e', 0);
    EXPECT_EQ(send_auto_report_ussd_error(0x101C, 0x0532, 6, &res), 0);
    ExpectSent(Wire(0x101C, 0x0532, 6, 1, 0, ""));
}

TEST_F(SendUssdError, FailedSend) {
    Queues().Reset();
    const _BK_AT_RES_T res = Response(4);
    EXPECT_EQ(send_auto_report_ussd_error(0x101C, 0x0532, 6, &res), 1);
    EXPECT_TRUE(Logged("ERROR: send_auto_report_ussd_error send msg failed.\n", "response", 3));
}
