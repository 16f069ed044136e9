#include <gtest/gtest.h>
#include <string.h>

#include <string>

#include "checks/support/fake_platform.h"
#include "checks/support/fake_queue.h"
#include "checks/support/log_capture.h"
#include "checks/unit/vectors.h"
#include "codec/atcode.h"
#include "records/state.h"

// From a framed response to the response record: whose answer it is, and what travels.

namespace {

using std::string;

constexpr uint16_t kRequester = 0x2345;
constexpr uint16_t kAddressed = 0x1000;
constexpr int kUntold = -7;

struct Parsed {
    int returned;
    int is_last;  // kUntold when it was not written
    MSG_BUF message;
    _BK_AT_RES_T res;
    string text;  // aucParas up to its NUL
    string Bytes() const { return {reinterpret_cast<const char*>(res.aucParas), sizeof res.aucParas}; }
};

class Parse : public testing::Test {
  protected:
    void SetUp() override {
        StartWith(kModule);
        Queues().Reset();
        Queues().CreateModules();
        g_last_atcmd = 0;
        ClearPendingRequest();
        g_at_msg.lMsgType = 7;
        g_at_msg.usTargetModuleID = kAddressed;
        g_at_msg.usSourceModuleID = kRequester;
    }
    void TearDown() override {
        g_last_atcmd = 0;
        ClearPendingRequest();
    }

    static Parsed Of(const string& text, uint16_t id, uint8_t type = EXEC) {
        PendingRequest()->usCmdID = id;
        PendingRequest()->ucCmdType = type;
        return Of(text, *PendingRequest());
    }
    static Parsed Of(const string& text, const _BK_AT_CMD_T& pending) {
        static MSG_BUF message;
        message = {};
        Parsed parsed{};
        parsed.is_last = kUntold;
        parsed.returned = Bk_Parse_At_Res_Message(&message, &parsed.is_last, text.c_str(), &pending);
        parsed.message = message;
        memcpy(&parsed.res, message.aucDataBuf, sizeof parsed.res);
        parsed.text =
            string(reinterpret_cast<const char*>(parsed.res.aucParas),
                   strnlen(reinterpret_cast<const char*>(parsed.res.aucParas), sizeof parsed.res.aucParas));
        return parsed;
    }
    // Parsed as the answer to a request of this id and type, while the one in flight has `other_id` and
    // `other_type`.
    static Parsed OfGiven(const string& text, uint16_t id, uint8_t type, uint16_t other_id,
                          uint8_t other_type) {
        PendingRequest()->usCmdID = other_id;
        PendingRequest()->ucCmdType = other_type;
        _BK_AT_CMD_T given = {};
        given.usCmdID = id;
        given.ucCmdType = type;
        return Of(text, given);
    }
    static void ExpectAddressedBack(const Parsed& parsed) {
        EXPECT_EQ(parsed.message.usTargetModuleID, kRequester);
        EXPECT_EQ(parsed.message.usSourceModuleID, kAddressed);
    }
};

}  // namespace

TEST_F(Parse, NullArgumentsAreRefused) {
    MSG_BUF message = {};
    int is_last = kUntold;
    const _BK_AT_CMD_T* pending = PendingRequest();
    EXPECT_EQ(Bk_Parse_At_Res_Message(nullptr, &is_last, "\r\nOK\r\n", pending), -1);
    EXPECT_EQ(Bk_Parse_At_Res_Message(&message, nullptr, "\r\nOK\r\n", pending), -1);
    EXPECT_EQ(Bk_Parse_At_Res_Message(&message, &is_last, nullptr, pending), -1);
    EXPECT_EQ(Bk_Parse_At_Res_Message(&message, &is_last, "\r\nOK\r\n", nullptr), -1);
    EXPECT_EQ(is_last, kUntold);
}

TEST_F(Parse, NamedAnswerOfThePendingCommandIsLastAndDecoded) {
    const Parsed parsed = Of("\r\n+CSQ: 20,99\r\n\r\nOK\r\n", 0x0604);
    EXPECT_EQ(parsed.returned, 0);
    EXPECT_EQ(parsed.is_last, 1);
    ExpectAddressedBack(parsed);
    EXPECT_EQ(parsed.res.usCmdID, 0x0604);
    EXPECT_EQ(parsed.res.ucCmdType, EXEC);
    EXPECT_EQ(parsed.res.ucResult, 1);
    EXPECT_EQ(parsed.res.usParaLen, 8);
    EXPECT_EQ(parsed.Bytes().substr(0, 8), Bytes().I32(20).I32(0).data);
    EXPECT_TRUE(Logged("the atResLine is 20,99", "atcode", 7));
}

// The decoder takes the quotes out of the text; the log shows what the modem sent.
TEST_F(Parse, NamedAnswerIsLoggedAsItStandsBeforeItIsDecoded) {
    const Parsed parsed = Of("\r\n+CREG: 2,1,\"1A2B\",\"00C3D4E5\"\r\n\r\nOK\r\n", 0x052D, READ);
    EXPECT_EQ(parsed.is_last, 1);
    EXPECT_EQ(parsed.Bytes().substr(0, 40), Bytes().I32(2).I32(1).Text("1A2B", 16).Text("00C3D4E5", 16).data);
    EXPECT_TRUE(Logged("the atResLine is 2,1,\"1A2B\",\"00C3D4E5\"", "atcode", 7));
}

TEST_F(Parse, NamedAnswerIsDecodedWhateverItsResult) {
    for (const auto& [end, result] : {std::pair{"ERROR\r\n", 2}, {"BUSY\r\n", 6}, {"", 0}}) {
        const Parsed parsed = Of(string("\r\n+CSQ: 20,99\r\n") + end, 0x0604);
        EXPECT_EQ(parsed.returned, 0);
        EXPECT_EQ(parsed.is_last, 1);
        EXPECT_EQ(parsed.res.ucResult, result);
        EXPECT_EQ(parsed.Bytes().substr(0, 8), Bytes().I32(20).I32(0).data);
    }
}

TEST_F(Parse, OkOfACommandWithoutAnAnswerOfItsOwn) {
    const Parsed parsed = Of("\r\nOK\r\n", 0x0116, SET);  // +CMMS
    EXPECT_EQ(parsed.returned, 0);
    EXPECT_EQ(parsed.is_last, 1);
    ExpectAddressedBack(parsed);
    EXPECT_EQ(parsed.res.usCmdID, 0x0116);
    EXPECT_EQ(parsed.res.ucCmdType, SET);
    EXPECT_EQ(parsed.res.ucResult, 1);
    EXPECT_EQ(parsed.res.usParaLen, 2);
    EXPECT_EQ(parsed.text, "OK");
}

TEST_F(Parse, OkIsDecodedByTheRowOfThePendingCommand) {
    const Parsed parsed = Of("\r\n490154203237518\r\n\r\nOK\r\n", 0x0603);  // +CGSN
    EXPECT_EQ(parsed.is_last, 1);
    EXPECT_EQ(parsed.res.usCmdID, 0x0603);
    EXPECT_EQ(parsed.res.usParaLen, 32);
    EXPECT_EQ(parsed.text, "490154203237518");
}

TEST_F(Parse, ErrorTextIsCarriedAndNothingIsDecoded) {
    const Parsed parsed = Of("\r\n+CME ERROR: 10\r\n", 0x0301, READ);  // +CPIN
    EXPECT_EQ(parsed.returned, 0);
    EXPECT_EQ(parsed.is_last, 1);
    EXPECT_EQ(parsed.res.usCmdID, 0x0301);
    EXPECT_EQ(parsed.res.ucCmdType, READ);
    EXPECT_EQ(parsed.res.ucResult, 4);
    EXPECT_EQ(parsed.res.usParaLen, 2);
    EXPECT_EQ(parsed.Bytes(), "10" + string(632, '\0'));
}

TEST_F(Parse, EveryFinalResultEndsThePendingCommand) {
    for (const auto& [text, result] : {std::pair{"OK\r\n", 1},
                                       {"ERROR\r\n", 2},
                                       {"not support\r\n", 2},
                                       {"+CMS ERROR: 1\r\n", 3},
                                       {"+CME ERROR: 1\r\n", 4},
                                       {"BUSY\r\n", 6}}) {
        const Parsed parsed = Of(text, 0x0116, SET);
        EXPECT_EQ(parsed.returned, 0) << text;
        EXPECT_EQ(parsed.is_last, 1) << text;
        EXPECT_EQ(parsed.res.ucResult, result) << text;
        EXPECT_EQ(parsed.res.usCmdID, 0x0116) << text;
    }
}

TEST_F(Parse, ErrorWithoutTextHasLengthZero) {
    const Parsed parsed = Of("\r\nERROR\r\n", 0x0604);
    EXPECT_EQ(parsed.res.usParaLen, 0);
    EXPECT_EQ(parsed.Bytes(), string(634, '\0'));
}

TEST_F(Parse, ErrorRightAfterAUssdAnswerIsNotFinal) {
    g_last_atcmd = 0x0532;
    const Parsed parsed = Of("\r\n+CME ERROR: 10\r\n", 0x0301, READ);
    EXPECT_EQ(parsed.returned, 0);
    EXPECT_EQ(parsed.is_last, 0);
    EXPECT_EQ(parsed.res.usCmdID, 0);
    EXPECT_EQ(parsed.text, "10");
}

TEST_F(Parse, TextOfAUssdErrorArrivesTwice) {
    const Parsed parsed = Of("\r\n+CME ERROR: network timeout\r\n", 0x0604);
    EXPECT_EQ(parsed.is_last, 1);
    EXPECT_EQ(parsed.res.ucResult, 4);
    EXPECT_EQ(parsed.text, "+CME ERROR: network timeoutnetwork timeout");
    EXPECT_EQ(parsed.res.usParaLen, parsed.text.size());
    ASSERT_EQ(Queues().sent.size(), 1u);
    EXPECT_EQ(Queues().sent[0].key, 0x101C);
}

// The caller says which request is answered; the one in flight only says where the answer goes.
TEST_F(Parse, UnnamedOkAnswersTheRequestThatWasGiven) {
    const Parsed parsed = OfGiven("\r\n490154203237518\r\n\r\nOK\r\n", 0x0603, EXEC, 0x0116, SET);
    EXPECT_EQ(parsed.returned, 0);
    EXPECT_EQ(parsed.is_last, 1);
    ExpectAddressedBack(parsed);
    EXPECT_EQ(parsed.res.usCmdID, 0x0603);
    EXPECT_EQ(parsed.res.ucCmdType, EXEC);
    EXPECT_EQ(parsed.res.usParaLen, 32);  // by the row of +CGSN
    EXPECT_EQ(parsed.text, "490154203237518");
}

TEST_F(Parse, UnnamedErrorAnswersTheRequestThatWasGiven) {
    const Parsed parsed = OfGiven("\r\n+CME ERROR: 10\r\n", 0x0301, READ, 0x0116, SET);
    EXPECT_EQ(parsed.returned, 0);
    EXPECT_EQ(parsed.is_last, 1);
    ExpectAddressedBack(parsed);
    EXPECT_EQ(parsed.res.usCmdID, 0x0301);
    EXPECT_EQ(parsed.res.ucCmdType, READ);
    EXPECT_EQ(parsed.res.ucResult, 4);
    EXPECT_EQ(parsed.text, "10");
}

TEST_F(Parse, NamedAnswerIsLastForTheRequestThatWasGiven) {
    Parsed parsed = OfGiven("\r\n+CSQ: 20,99\r\n\r\nOK\r\n", 0x0604, EXEC, 0x0116, SET);
    EXPECT_EQ(parsed.returned, 0);
    EXPECT_EQ(parsed.is_last, 1);
    ExpectAddressedBack(parsed);
    EXPECT_EQ(parsed.res.usCmdID, 0x0604);
    EXPECT_EQ(parsed.res.ucCmdType, EXEC);
    EXPECT_EQ(parsed.Bytes().substr(0, 8), Bytes().I32(20).I32(0).data);

    parsed = OfGiven("\r\n+CSQ: 20,99\r\n\r\nOK\r\n", 0x0116, SET, 0x0604, EXEC);
    EXPECT_EQ(parsed.returned, 0);
    EXPECT_EQ(parsed.is_last, 0);
    EXPECT_EQ(parsed.res.usCmdID, 0x0604);
    EXPECT_EQ(parsed.res.ucCmdType, SET);
}

TEST_F(Parse, AnotherCommandsNameIsAReport) {
    const Parsed parsed = Of("\r\n+CREG: 1\r\n", 0x0604, READ);
    EXPECT_EQ(parsed.returned, 0);
    EXPECT_EQ(parsed.is_last, 0);
    ExpectAddressedBack(parsed);
    EXPECT_EQ(parsed.res.usCmdID, 0x052D);
    EXPECT_EQ(parsed.res.ucCmdType, READ);
    EXPECT_EQ(parsed.res.ucResult, 0);
}

TEST_F(Parse, NameWithoutARowIsRefused) {
    const Parsed parsed = Of("\r\n+XYZ: 1\r\n\r\nOK\r\n", 0x0604);
    EXPECT_EQ(parsed.returned, -1);
    EXPECT_EQ(parsed.is_last, kUntold);
}

TEST_F(Parse, ResponseThatSaysNothingIsRefused) {
    for (const char* text : {"", "\r\n", "\r\n\r\n", "no line break"}) {
        const Parsed parsed = Of(text, 0x0604);
        EXPECT_EQ(parsed.returned, -1) << text;
        EXPECT_EQ(parsed.is_last, kUntold) << text;
    }
}

TEST_F(Parse, ToolkitEventLeavesNothingToParse) {
    EXPECT_EQ(Of("\r\n+ZSTI: 3\r\n", 0x0604).returned, -1);
    EXPECT_EQ(Queues().sent.size(), 1u);
}

TEST_F(Parse, UnnamedReportTextIsCarried) {
    const Parsed parsed = Of("\r\n+CLIP: \"123\",129\r\n", 0x0604);
    EXPECT_EQ(parsed.returned, 0);
    EXPECT_EQ(parsed.is_last, 0);
    EXPECT_EQ(parsed.res.usCmdID, 0);
    EXPECT_EQ(parsed.message.usTargetModuleID, 0);
    EXPECT_EQ(parsed.text, "+CLIP: \"123\",129");
    EXPECT_EQ(parsed.res.usParaLen, 16);
}

TEST_F(Parse, OkForAnUnknownCommandIsRefusedAndOtherResultsAreNot) {
    for (const uint16_t id : std::initializer_list<uint16_t>{0x0000, 0x0102}) {
        EXPECT_EQ(Of("\r\nOK\r\n", id).returned, -1);
        const Parsed parsed = Of("\r\nERROR\r\n", id);
        EXPECT_EQ(parsed.returned, 0);
        EXPECT_EQ(parsed.is_last, 1);
        EXPECT_EQ(parsed.res.usCmdID, id);
    }
}

TEST_F(Parse, CarriedTextIsCutAndItsLengthIsNot) {
    for (const size_t length : {632u, 633u, 634u, 900u}) {
        const Parsed parsed = Of("+CME ERROR: " + string(length, 'x') + "\r\n", 0x0604);
        EXPECT_EQ(parsed.res.usParaLen, length);
        EXPECT_EQ(parsed.text, string(std::min<size_t>(length, 633), 'x'));
        EXPECT_EQ(parsed.Bytes().back(), '\0');
    }
}

TEST_F(Parse, LengthOfVeryLongTextKeepsItsLowSixteenBits) {
    string text;
    for (int i = 0; i < 70; ++i)
        text += string(1000, 'x') + "\r\n";
    const Parsed parsed = Of(text, 0x0604);
    EXPECT_EQ(parsed.is_last, 0);
    EXPECT_EQ(parsed.res.usParaLen, 70'000 - 65'536);
    EXPECT_EQ(parsed.text, string(633, 'x'));
}

TEST_F(Parse, OkInsideALineIsAResult) {
    const Parsed parsed = Of("\r\nBOOKED\r\n", 0x0116, SET);
    EXPECT_EQ(parsed.is_last, 1);
    EXPECT_EQ(parsed.res.ucResult, 1);
}

TEST_F(Parse, CardModeChoosesTheScan) {
    for (const char* mode : {"KVX_LTE", "KVX_WCDMA"}) {
        Platform().config["data_card_mode"] = mode;
        EXPECT_EQ(Of("\r\n+CSQ: 20\r\n+CREG: 1\r\nERROR\r\n", 0x0604).res.ucResult, 2) << mode;
    }
    for (const char* mode : {"", "KVX", "kvx_lte"}) {
        Platform().config["data_card_mode"] = mode;
        EXPECT_EQ(Of("\r\n+CSQ: 20\r\n+CREG: 1\r\nERROR\r\n", 0x0604).res.ucResult, 0) << mode;
    }
    Platform().config.erase("data_card_mode");
    EXPECT_EQ(Of("\r\n+CSQ: 20\r\n+CREG: 1\r\nERROR\r\n", 0x0604).res.ucResult, 0);
}

TEST_F(Parse, OtherCardsKeepThePartThatWasScanned) {
    Platform().config["data_card_mode"] = "";
    const Parsed parsed = Of("\r\n+CSQ: 20,99\r\n+CREG: 1\r\nOK\r\n", 0x0604);
    EXPECT_EQ(parsed.returned, 0);
    EXPECT_EQ(parsed.is_last, 1);
    EXPECT_EQ(parsed.Bytes().substr(0, 8), Bytes().I32(20).I32(0).data);
}

// What one response left behind must not show in the next.
TEST_F(Parse, NothingIsLeftFromTheResponseBefore) {
    Of("\r\n+CSQ: 20,99\r\n\r\nOK\r\n", 0x0604);
    const Parsed parsed = Of("\r\nhello\r\n", 0x0604);
    EXPECT_EQ(parsed.returned, 0);
    EXPECT_EQ(parsed.is_last, 0);
    EXPECT_EQ(parsed.text, "hello");
}
