#include <gtest/gtest.h>
#include <string.h>

#include "checks/support/fake_modem.h"
#include "checks/support/fake_platform.h"
#include "checks/support/fake_queue.h"
#include "checks/support/log_capture.h"
#include "codec/framing.h"
#include "records/state.h"
#include "reports/response.h"

// From modem text to the messages that leave the server: what is an answer, what is a report, whatever the
// pieces it comes in.

namespace {

constexpr uint16_t kRequester = 0x2345;

struct Sent {
    uint16_t target, id;
    uint8_t type, result;
    uint16_t para_len;
    std::string text;  // aucParas up to the NUL
    bool operator==(const Sent&) const = default;
};

void PrintTo(const Sent& sent, std::ostream* out) {
    *out << "{to 0x" << std::hex << sent.target << ", id 0x" << sent.id << ", type " << int(sent.type)
         << ", result " << int(sent.result) << std::dec << ", length " << sent.para_len << ", \"" << sent.text
         << "\"}";
}

class Delivery : public testing::Test {
  protected:
    void SetUp() override { Start("KVX_LTE"); }

    void Start(const char* card) {
        Platform().Reset();
        Platform().config["data_card_mode"] = card;
        Queues().Reset();
        Queues().CreateModules();
        Queues().Create(kRequester);
        ClearLog();
        ForgetReceived();
        ClearPendingRequest();
        g_last_atcmd = 0;
    }

    static void Pend(uint16_t id, uint8_t type) {
        ClearPendingRequest();
        g_at_msg.lMsgType = 7;
        g_at_msg.usTargetModuleID = AT_MODULE_SERVER;
        g_at_msg.usSourceModuleID = kRequester;
        PendingRequest()->usCmdID = id;
        PendingRequest()->ucCmdType = type;
        g_at_msg.ulMagic = AT_MESSAGE_MAGIC;
    }

    static void Feed(const std::string& text) {
        static std::string chunk;
        chunk = text;
        chunk.push_back('\0');
        chunk.resize(chunk.size() + 16);
        ProcessReceived(chunk.data());
    }

    static std::vector<Sent> Messages() {
        std::vector<Sent> all;
        for (const FakeMessage& message : Queues().sent) {
            const MSG_BUF record = message.Record();
            const _BK_AT_RES_T res = message.Response();
            const auto* text = reinterpret_cast<const char*>(res.aucParas);
            all.push_back({record.usTargetModuleID, res.usCmdID, res.ucCmdType, res.ucResult, res.usParaLen,
                           std::string(text, strnlen(text, sizeof res.aucParas))});
        }
        return all;
    }

    // Feeds `stream` to a fresh start with `id` pending: whole, byte by byte and split at every position.
    void ExpectEverySplit(uint16_t id, uint8_t type, const std::string& stream,
                          const std::vector<Sent>& expected, const char* card = "KVX_LTE") {
        const auto run = [&](const std::vector<std::string>& chunks) {
            Start(card);
            if (id != 0) Pend(id, type);
            for (const std::string& chunk : chunks)
                Feed(chunk);
            return Messages();
        };
        EXPECT_EQ(run({stream}), expected) << "whole";
        std::vector<std::string> bytes;
        for (char byte : stream)
            bytes.push_back(std::string(1, byte));
        EXPECT_EQ(run(bytes), expected) << "byte by byte";
        for (size_t at = 1; at < stream.size(); ++at)
            ASSERT_EQ(run({stream.substr(0, at), stream.substr(at)}), expected) << "split at " << at;
    }

    static Sent Answer(uint16_t id, uint8_t type, uint8_t result, uint16_t length, const std::string& text) {
        return {kRequester, id, type, result, length, text};
    }
};

Sent Signal(int value) {
    // The text view of an integer is its first bytes up to a zero.
    int32_t number = value;
    char bytes[5] = {};
    memcpy(bytes, &number, sizeof number);
    return {kRequester, 0x0604, AT_CMD_TYPE_EXEC, 1, 8, std::string(bytes)};
}

Sent Registration(int state) {
    int32_t number = state;
    char bytes[5] = {};
    memcpy(bytes, &number, sizeof number);
    return {AT_MODULE_SIM, 0x052D, 6, 1, 36, std::string(bytes)};
}

// ------------------------------------------------------------------- answers

TEST_F(Delivery, AnswerWithARecord) {
    ExpectEverySplit(0x0604, AT_CMD_TYPE_EXEC, "\r\n+CSQ: 20,99\r\n\r\nOK\r\n", {Signal(20)});
}

TEST_F(Delivery, AnswerWithEcho) {
    ExpectEverySplit(0x0604, AT_CMD_TYPE_EXEC, "AT+CSQ\r\r\n+CSQ: 20,99\r\n\r\nOK\r\n", {Signal(20)});
}

TEST_F(Delivery, NameWithoutABlankBehindItsColonDecodesToZerosWithTheModulesOwnCards) {
    // So does the built-in answer of the test responder.
    ExpectEverySplit(0x0604, AT_CMD_TYPE_EXEC, "\r\n+CSQ:20,60\r\n\r\nOK\r\n", {Signal(0)});
    ExpectEverySplit(0x0604, AT_CMD_TYPE_EXEC, "\r\n+CSQ:20,60\r\n\r\nOK\r\n", {Signal(20)}, "other");
}

TEST_F(Delivery, PlainOk) {
    ExpectEverySplit(0x0001, AT_CMD_TYPE_EXEC, "\r\nOK\r\n", {Answer(0x0001, 1, 1, 0, "OK")});
}

TEST_F(Delivery, ErrorTextTravels) {
    ExpectEverySplit(0x0301, AT_CMD_TYPE_READ, "\r\n+CME ERROR: 10\r\n", {Answer(0x0301, 3, 4, 2, "10")});
}

TEST_F(Delivery, ListOfCallsArrivesWithAllItsCalls) {
    Pend(0x0518, AT_CMD_TYPE_READ);
    Feed("\r\n+CLCC: 1,0,0,0,0,\"5550123\",129,0,0\r\n+CLCC: 2,1,5,0,0,\"5550124\",129,0,0\r\n\r\nOK\r\n");
    ASSERT_EQ(Queues().sent.size(), 1U);
    const _BK_AT_RES_T res = Queues().sent[0].Response();
    int32_t count = 0;
    memcpy(&count, res.aucParas, sizeof count);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(res.usParaLen, 1284);
}

TEST_F(Delivery, VolumeEndsWithItsOwnOk) {
    // Its name is an end marker, so that framing alone would end at the first line and leave an OK behind.
    Sent level = Answer(0x0514, AT_CMD_TYPE_READ, 1, 4, "\x03");
    level.text = Registration(3).text;
    ExpectEverySplit(0x0514, AT_CMD_TYPE_READ, "\r\n+CLVL: 3\r\n\r\nOK\r\n", {level});
}

TEST_F(Delivery, DataLengthIsTheParameterLengthAndSix) {
    Pend(0x0604, AT_CMD_TYPE_EXEC);
    Feed("\r\n+CSQ: 20,99\r\n\r\nOK\r\n");
    EXPECT_EQ(Queues().sent.at(0).Record().usDataLen, 14);
    EXPECT_EQ(Queues().sent.at(0).type, 7);
    EXPECT_EQ(g_at_msg.lMsgType, -1);
    EXPECT_EQ(g_last_atcmd, 0x0604);
}

TEST_F(Delivery, AnswerWithNothingOutstandingHasType1) {
    Pend(0x0401, AT_CMD_TYPE_EXEC);
    g_at_msg.lMsgType = -1;  // a dial
    Feed("\r\nOK\r\n");
    ASSERT_EQ(Queues().sent.size(), 1U);
    EXPECT_EQ(Queues().sent[0].type, 1);
    EXPECT_EQ(Queues().sent[0].Record().usTargetModuleID, kRequester);
}

TEST_F(Delivery, TwoResponsesInOneReadAndAThirdThatCompletesLater) {
    Pend(0x0604, AT_CMD_TYPE_EXEC);
    Feed("\r\n+CSQ: 20,99\r\n\r\nOK\r\n\r\nRING\r\n\r\n+CMTI: \"SM\"");
    EXPECT_EQ(Queues().sent.size(), 2U);
    EXPECT_STREQ(gStrResAtBuffer, "\r\n+CMTI: \"SM\"");
    Feed(",3\r\n");
    EXPECT_EQ(Queues().sent.size(), 3U);
    EXPECT_STREQ(gStrResAtBuffer, "");
}

TEST_F(Delivery, FailedSendStillCountsAsAnswered) {
    Pend(0x0604, AT_CMD_TYPE_EXEC);
    Queues().Reset();
    Feed("\r\n+CSQ: 20,99\r\n\r\nOK\r\n");
    EXPECT_TRUE(Logged("ERROR: send_msg_buf send msg failed, error code 42506!", "response", 3));
    EXPECT_EQ(g_at_msg.lMsgType, -1);
}

// ------------------------------------------------------------------- reports at the modem's own time

TEST_F(Delivery, RegistrationAlone) {
    ExpectEverySplit(0, 0, "\r\n+CREG: 1\r\n", {Registration(1)});
}

TEST_F(Delivery, RegistrationGluedBeforeAnAnswer) {
    ExpectEverySplit(0x0604, AT_CMD_TYPE_EXEC, "\r\n+CREG: 1\r\n\r\n+CSQ: 20,99\r\n\r\nOK\r\n",
                     {Registration(1), Signal(20)});
}

TEST_F(Delivery, RegistrationInsideAnAnswer) {
    ExpectEverySplit(0x0604, AT_CMD_TYPE_EXEC, "\r\n+CSQ: 20,99\r\n\r\n+CREG: 5\r\n\r\nOK\r\n",
                     {Registration(5), Signal(20)});
}

TEST_F(Delivery, RegistrationInsideABareAnswer) {
    Sent imei = Answer(0x0603, AT_CMD_TYPE_EXEC, 1, 32, "356938035643809");
    ExpectEverySplit(0x0603, AT_CMD_TYPE_EXEC, "\r\n356938035643809\r\n\r\n+CREG: 5\r\n\r\nOK\r\n",
                     {Registration(5), imei});
}

TEST_F(Delivery, RegistrationBetweenTwoAnswers) {
    const std::string stream = "\r\n+CSQ: 20,99\r\n\r\nOK\r\n\r\n+CREG: 1\r\n";
    ExpectEverySplit(0x0604, AT_CMD_TYPE_EXEC, stream, {Signal(20), Registration(1)});
}

TEST_F(Delivery, RegistrationReadIsAnAnswerAndNotAReport) {
    Pend(0x052D, AT_CMD_TYPE_READ);
    Feed("\r\n+CREG: 0,1\r\n\r\nOK\r\n");
    ASSERT_EQ(Messages().size(), 1U);
    EXPECT_EQ(Messages()[0].target, kRequester);
    EXPECT_EQ(Messages()[0].para_len, 40);
}

TEST_F(Delivery, EveryRegistrationLineBelongsToARegistrationReadUntilItsOk) {
    Sent state = Answer(0x052D, AT_CMD_TYPE_READ, 1, 40, Registration(5).text);
    ExpectEverySplit(0x052D, AT_CMD_TYPE_READ, "\r\n+CREG: 5\r\n\r\n+CREG: 0,1\r\n\r\nOK\r\n", {state});
}

TEST_F(Delivery, LineThatLooksLikeThePromptStaysInItsAnswer) {
    // As long as its line break comes along; without it, it is the prompt.
    Pend(0x0603, AT_CMD_TYPE_EXEC);
    Feed("\r\n123\r\n> 4\r\n\r\nOK\r\n");
    EXPECT_EQ(Messages(), (std::vector<Sent>{Answer(0x0603, AT_CMD_TYPE_EXEC, 1, 32, "123>")}));
}

TEST_F(Delivery, LineOfHexDigitsBehindABlankLineIsNotTheReportsOwn) {
    ExpectEverySplit(0x0603, AT_CMD_TYPE_EXEC, "\r\n%NEWS: 4\r\n\r\n07911326\r\n\r\nOK\r\n",
                     {Answer(0x0603, AT_CMD_TYPE_EXEC, 1, 32, "07911326")});
}

TEST_F(Delivery, LateRegistrationAnswerTakesItsOkAlong) {
    // With nothing pending an OK alone is a hang-up for the call module.
    ExpectEverySplit(0, 0, "\r\n+CREG: 1,5\r\n\r\nOK\r\n", {Registration(1)});
}

TEST_F(Delivery, OkWithNothingPendingIsAHangUp) {
    ExpectEverySplit(0, 0, "\r\nOK\r\n", {{AT_MODULE_CALL, 0x0408, 1, 1, 2, "OK"}});
}

TEST_F(Delivery, SignalReportInsideAnAnswerDoesNoHarm) {
    ExpectEverySplit(0x0604, AT_CMD_TYPE_EXEC, "\r\n+CSQ: 20,99\r\n\r\n^RSSI:12\r\n\r\nOK\r\n", {Signal(20)});
}

TEST_F(Delivery, UnknownReportNeverSwallowsAnAnswer) {
    ExpectEverySplit(0x0604, AT_CMD_TYPE_EXEC, "\r\n^NEWS: 1,2\r\n\r\n+CSQ: 20,99\r\n\r\nOK\r\n",
                     {Signal(20)});
    ExpectEverySplit(0x0604, AT_CMD_TYPE_EXEC, "\r\n+CSQ: 20,99\r\n^NEWS: 1,2\r\n\r\nOK\r\n", {Signal(20)});
}

TEST_F(Delivery, UnknownReportWithALineOfHexDigitsTakesItAlong) {
    Sent imei = Answer(0x0603, AT_CMD_TYPE_EXEC, 1, 32, "356938035643809");
    ExpectEverySplit(0x0603, AT_CMD_TYPE_EXEC,
                     "\r\n+NEWS: 4\r\n07911326\r\n\r\n356938035643809\r\n\r\nOK\r\n", {imei});
}

TEST_F(Delivery, WordsInsideAReportAreNoResult) {
    // "BOOK" ends in OK; it is a report all the same, and the command goes on waiting.
    ExpectEverySplit(0x0604, AT_CMD_TYPE_EXEC, "\r\n^NEWS:BOOK\r\n\r\n+CSQ: 20,99\r\n\r\nOK\r\n",
                     {Signal(20)});
}

TEST_F(Delivery, OkInsideAReportIsNoOkOfTheCommand) {
    // The decoder of a command without parameters would hand the word on, and it would be routed as a
    // hang-up.
    ExpectEverySplit(0x0001, AT_CMD_TYPE_EXEC, "\r\n^NEWS:BOOK\r\n\r\nOK\r\n",
                     {Answer(0x0001, 1, 1, 0, "OK")});
    ExpectEverySplit(0, 0, "\r\n^NEWS:BOOK\r\n", {});
    EXPECT_EQ(g_last_atcmd, 0);
    Start("KVX_LTE");
    Pend(0x0108, AT_CMD_TYPE_SET);
    Feed("\r\n^NEWS:BOOK\r\n");
    EXPECT_TRUE(Messages().empty()) << "not an answer of +CMGS either";
}

TEST_F(Delivery, OkInsideALineWithinABareAnswerDoesNotEndIt) {
    Sent imei = Answer(0x0603, AT_CMD_TYPE_EXEC, 1, 32, "356938035643809");
    ExpectEverySplit(0x0603, AT_CMD_TYPE_EXEC, "\r\n356938035643809\r\n\r\n^BOOT:TOKEN\r\n\r\nOK\r\n",
                     {imei});
}

TEST_F(Delivery, OkInsideUnquotedUssdWithinAnAnswerDoesNotClearTheRequest) {
    Pend(0x0604, AT_CMD_TYPE_EXEC);
    Feed("\r\n+CSQ: 20,99\r\n\r\n+CUSD: 0,BOOK NOW\r\n\r\nOK\r\n");
    ASSERT_EQ(Messages().size(), 3U);
    EXPECT_EQ(Messages()[0].target, AT_MODULE_USSD);
    EXPECT_EQ(Messages()[1].id, 0x0408);
    EXPECT_EQ(Messages()[2], Signal(20));
}

TEST_F(Delivery, RingInsideAnAnswerIsReportedAndTheAnswerIsWhole) {
    ExpectEverySplit(0x0604, AT_CMD_TYPE_EXEC, "\r\n+CSQ: 20,99\r\n\r\nRING\r\n\r\nOK\r\n",
                     {{AT_MODULE_CALL, 0x0407, 1, 1, 4, "RING"}, Signal(20)});
}

TEST_F(Delivery, CallEventInsideAnAnswerDoesNotClearTheRequest) {
    ExpectEverySplit(0x0604, AT_CMD_TYPE_EXEC, "\r\n+CSQ: 20,99\r\n\r\nCONNECT\r\n\r\nOK\r\n",
                     {{AT_MODULE_CALL, 0x040D, 1, 1, 7, "CONNECT"}, Signal(20)});
}

TEST_F(Delivery, CallEventBeforeAnAnswerClearsTheRequest) {
    Pend(0x0604, AT_CMD_TYPE_EXEC);
    Feed("\r\nCONNECT\r\n");
    EXPECT_EQ(g_at_msg.lMsgType, -1);
    EXPECT_EQ(Messages(), (std::vector<Sent>{{AT_MODULE_CALL, 0x040D, 1, 1, 7, "CONNECT"}}));
}

TEST_F(Delivery, BusyInsideAnAnswerIsDropped) {
    ExpectEverySplit(0x0604, AT_CMD_TYPE_EXEC, "\r\n+CSQ: 20,99\r\n\r\nBUSY\r\n\r\nOK\r\n", {Signal(20)});
    EXPECT_TRUE(LoggedPart("BUSY inside an answer"));
}

TEST_F(Delivery, BusyBeforeAnAnswerAnswersWith6) {
    Pend(0x0604, AT_CMD_TYPE_EXEC);
    Feed("\r\nBUSY\r\n");
    ASSERT_EQ(Messages().size(), 1U);
    EXPECT_EQ(Messages()[0].result, 6);
}

TEST_F(Delivery, BusyWithNothingPendingReachesNobody) {
    Feed("\r\nBUSY\r\n");
    EXPECT_TRUE(Messages().empty());
}

TEST_F(Delivery, NoCarrierIsDropped) {
    Feed("\r\nNO CARRIER\r\n");
    EXPECT_TRUE(Messages().empty());
}

TEST_F(Delivery, NoAnswerIsReportedAsAnswered) {
    Feed("\r\nNO ANSWER\r\n");
    EXPECT_EQ(Messages(), (std::vector<Sent>{{AT_MODULE_CALL, 0x040A, 1, 1, 9, "NO ANSWER"}}));
}

TEST_F(Delivery, VoiceNoCarrierLineIsAReport) {
    const std::string line = "VOICE NO CARRIER: 3";
    ExpectEverySplit(0, 0, "\r\n" + line + "\r\n",
                     {{AT_MODULE_CALL, 0x040E, 1, 1, static_cast<uint16_t>(line.size()), line}});
}

TEST_F(Delivery, LateAnswerOfAnotherCommandIsDroppedWithItsOk) {
    Pend(0x0604, AT_CMD_TYPE_EXEC);
    Feed("\r\n+CFUN: 1\r\n\r\nOK\r\n");
    EXPECT_TRUE(Messages().empty());
    Feed("\r\n+CSQ: 20,99\r\n\r\nOK\r\n");
    EXPECT_EQ(Messages(), (std::vector<Sent>{Signal(20)}));
}

TEST_F(Delivery, LineOfAnotherCommandBeforeTheAnswerIsAResponseOfItsOwn) {
    ExpectEverySplit(0x0604, AT_CMD_TYPE_EXEC, "\r\n+CFUN: 1\r\n\r\n+CSQ: 20,99\r\n\r\nOK\r\n", {Signal(20)});
}

TEST_F(Delivery, FurtherForwardingLinesGoToTheCallModule) {
    Pend(0x052B, AT_CMD_TYPE_SET);
    Feed("\r\n+CCFC: 0,1\r\n+CCFC: 1,2\r\n\r\nOK\r\n");
    ASSERT_EQ(Messages().size(), 3U);
    EXPECT_EQ(Messages()[0].target, kRequester);
    EXPECT_EQ(Messages()[0].para_len, 48);
    EXPECT_EQ(Messages()[1].target, AT_MODULE_CALL);
    EXPECT_EQ(Messages()[1].id, 0x052B);
    EXPECT_EQ(Messages()[1].type, 2);
    EXPECT_EQ(Messages()[1].para_len, 48) << "the line is decoded although nothing is pending any more";
    EXPECT_EQ(Messages()[2].id, 0x052B);
}

TEST_F(Delivery, NamelessLineBeforeAForwardingAnswerChangesNothing) {
    Pend(0x052B, AT_CMD_TYPE_SET);
    Feed("\r\nnoise\r\n+CCFC: 0,1\r\n+CCFC: 1,2\r\n\r\nOK\r\n");
    ASSERT_EQ(Messages().size(), 3U);
    EXPECT_EQ(Messages()[0].target, kRequester);
    EXPECT_EQ(Messages()[1].target, AT_MODULE_CALL);
    EXPECT_EQ(Messages()[1].para_len, 48);
}

TEST_F(Delivery, CallerIdReadSendsAReportAndAnswersZeros) {
    Pend(0x0513, AT_CMD_TYPE_READ);
    Feed("\r\n+CLIP: 0,1\r\n\r\nOK\r\n");
    ASSERT_EQ(Messages().size(), 2U);
    EXPECT_EQ(Messages()[0].target, AT_MODULE_CALL);
    EXPECT_EQ(Messages()[0].id, 0x0513);
    EXPECT_EQ(Messages()[0].para_len, 0);
    EXPECT_EQ(Messages()[1], Answer(0x0513, AT_CMD_TYPE_READ, 1, 4, ""));
}

TEST_F(Delivery, VoiceMailReadSendsAReportAndAnswersZeros) {
    Pend(0x0118, AT_CMD_TYPE_READ);
    Feed("\r\n+ZVMAIL: 1\r\n\r\nOK\r\n");
    ASSERT_EQ(Messages().size(), 2U);
    EXPECT_EQ(Messages()[0].target, AT_MODULE_SMS);
    EXPECT_EQ(Messages()[0].id, 0x0118);
    EXPECT_EQ(Messages()[0].type, 1);
    EXPECT_EQ(Messages()[0].para_len, 4);
    EXPECT_EQ(Messages()[1], Answer(0x0118, AT_CMD_TYPE_READ, 1, 4, ""));
}

TEST_F(Delivery, NetworkTimeReadSendsAReportAndAnswersZerosWithTheModulesOwnCards) {
    Sent time = Answer(0x063E, AT_CMD_TYPE_EXEC, 1, 32, Registration(3).text);
    time.target = AT_MODULE_TIME;
    const Sent zeros = Answer(0x063E, AT_CMD_TYPE_READ, 1, 32, "");
    ExpectEverySplit(0x063E, AT_CMD_TYPE_READ, "\r\n+ZNITZ: 3\r\n\r\nOK\r\n", {time, zeros});
    Sent answer = zeros;
    answer.text = time.text;
    ExpectEverySplit(0x063E, AT_CMD_TYPE_READ, "\r\n+ZNITZ: 3\r\n\r\nOK\r\n", {answer}, "other");
}

TEST_F(Delivery, CallWaitingQuerySendsAReportAndAnswersTheResultAlone) {
    Pend(0x052C, AT_CMD_TYPE_SET);
    Feed("\r\n+CCWA: 1,1\r\n\r\nOK\r\n");
    ASSERT_EQ(Messages().size(), 2U);
    EXPECT_EQ(Messages()[0].target, AT_MODULE_CALL);
    EXPECT_EQ(Messages()[0].id, 0x052C);
    EXPECT_EQ(Messages()[0].type, 1);
    EXPECT_EQ(Messages()[1], Answer(0x052C, AT_CMD_TYPE_SET, 1, 2, "OK"));
}

TEST_F(Delivery, BroadcastIsReportedForEachResponseFramedUpToIt) {
    Feed("\r\nRING\r\n\r\n+CBM: 8\r\n0011223344556677\r\n");
    int broadcasts = 0;
    for (const Sent& sent : Messages())
        broadcasts += sent.id == 0x0115 ? 1 : 0;
    EXPECT_EQ(broadcasts, 2);
}

TEST_F(Delivery, BroadcastWaitsForItsPdu) {
    std::vector<Sent> expected = {{AT_MODULE_SMS, 0x0115, 1, 1, 512, Registration(8).text}};
    ExpectEverySplit(0, 0, "\r\n+CBM: 8\r\n0011223344556677\r\n", expected);
    EXPECT_EQ(memcmp(Queues().sent.at(0).Response().aucParas + 4, "0011223344556677", 17), 0);
}

TEST_F(Delivery, BroadcastReadInPiecesLeavesNothingInTheBareAnswerBehindIt) {
    ExpectEverySplit(0x0603, AT_CMD_TYPE_EXEC, "\r\n+CBM: 8\r\n0011223344556677\r\n\r\n1234\r\n\r\nOK\r\n",
                     {{AT_MODULE_SMS, 0x0115, 1, 1, 512, Registration(8).text},
                      Answer(0x0603, AT_CMD_TYPE_EXEC, 1, 32, "1234")});
}

TEST_F(Delivery, StatusReportWaitsForItsPdu) {
    std::vector<Sent> expected = {{AT_MODULE_SMS, 0x0119, 1, 1, 512, Registration(8).text}};
    ExpectEverySplit(0, 0, "\r\n+CDS: 8\r\n0011223344556677\r\n", expected);
    EXPECT_EQ(memcmp(Queues().sent.at(0).Response().aucParas + 4, "0011223344556677", 17), 0);
}

TEST_F(Delivery, PduOfABroadcastNeverBecomesPartOfABareAnswer) {
    // Not even when a read ends between the two halves of the line break behind it.
    const Sent page = {AT_MODULE_SMS, 0x0115, 1, 1, 512, Registration(8).text};
    const Sent imei = Answer(0x0603, AT_CMD_TYPE_EXEC, 1, 32, "356938035643809");
    ExpectEverySplit(0x0603, AT_CMD_TYPE_EXEC,
                     "\r\n+CBM: 8\r\n0011223344556677\r\n\r\n356938035643809\r\n\r\nOK\r\n", {page, imei});
    ExpectEverySplit(0x0603, AT_CMD_TYPE_EXEC,
                     "\r\n356938035643809\r\n\r\n+CBM: 8\r\n0011223344556677\r\n\r\nOK\r\n", {page, imei});
}

TEST_F(Delivery, BroadcastWithoutItsBlankSendsNothing) {
    Feed("\r\n+CBM:8\r\n0011\r\n");
    EXPECT_TRUE(Messages().empty());
    EXPECT_TRUE(LoggedPart("cbm_resolve para is wrong"));
}

TEST_F(Delivery, UssdErrorsAreNoFinalResultsAfterAUssdAnswer) {
    Pend(0x0604, AT_CMD_TYPE_EXEC);
    g_last_atcmd = 0x0532;
    Feed("\r\n+CME ERROR: 10\r\n");
    EXPECT_TRUE(Messages().empty());
    EXPECT_EQ(g_at_msg.lMsgType, 7) << "the command goes on waiting until it times out";
}

TEST_F(Delivery, UssdErrorIsReportedAndItsTextDoubledInTheAnswer) {
    Pend(0x0532, AT_CMD_TYPE_SET);
    Feed("\r\n+CME ERROR: network timeout\r\n");
    ASSERT_EQ(Messages().size(), 2U);
    EXPECT_EQ(Messages()[0], (Sent{AT_MODULE_USSD, 0x0532, 6, 4, 27, "+CME ERROR: network timeout"}));
    EXPECT_EQ(Messages()[1].result, 4);
    EXPECT_EQ(Messages()[1].text, "+CME ERROR: network timeoutnetwork timeout");
}

TEST_F(Delivery, StormOf500MixedReportsAroundOneAnswerLosesNothing) {
    const std::string reports[] = {"\r\nRING\r\n", "\r\n+CREG: 1\r\n", "\r\n+CMTI: \"SM\",3\r\n",
                                   "\r\n^NEWS:1\r\n", "\r\n+CGREG: 5\r\n"};
    std::string stream;
    for (int i = 0; i < 250; ++i)
        stream += reports[i % 5];
    stream += "\r\n+CSQ: 20,99\r\n";
    for (int i = 0; i < 250; ++i)
        stream += reports[i % 5];
    stream += "\r\nOK\r\n";
    Pend(0x0604, AT_CMD_TYPE_EXEC);
    Feed(stream);
    int rings = 0, registrations = 0, messages = 0, packets = 0, answers = 0;
    for (const Sent& sent : Messages()) {
        rings += sent.id == 0x0407;
        registrations += sent.id == 0x052D;
        messages += sent.id == 0x0110;
        packets += sent.id == 0x0553;
        answers += sent == Signal(20);
    }
    EXPECT_EQ(rings, 100);
    EXPECT_EQ(registrations, 100);
    EXPECT_EQ(messages, 100);
    EXPECT_EQ(packets, 100);
    EXPECT_EQ(answers, 1);
}

TEST_F(Delivery, SortedOutReportIsNotTheSmsPrompt) {
    FakeModem modem;
    Pend(0x0108, AT_CMD_TYPE_SET);
    memcpy(PendingRequest()->aucParas + 4, "0011", 5);
    Feed("\r\n+CREG: 1\r\n\r\n^NEWS: 1\r\n");
    EXPECT_EQ(modem.Heard(), "");
    Feed("\r\n> ");
    EXPECT_EQ(modem.Heard(), "0011\x1a");
    Feed("\r\n^RSSI:12\r\n");
    EXPECT_EQ(modem.Heard(), "0011\x1a") << "a framed report writes the message again";
}

// ------------------------------------------------------------------- the polling step

TEST_F(Delivery, StepWithoutDataChangesNothing) {
    FakeModem modem;
    Platform().config["WatchDog_Setting_Option"] = "on";
    AtStatistics.read = 0;
    EXPECT_EQ(on_recieve_at(), 1U);
    EXPECT_EQ(AtStatistics.read, 0U);
    EXPECT_TRUE(LoggedLines().empty());
}

TEST_F(Delivery, StepWithDataIsLoggedAndHandled) {
    FakeModem modem;
    Pend(0x0604, AT_CMD_TYPE_EXEC);
    modem.Say("\r\n+CSQ: 20,99\r\n\r\nOK\r\n");
    EXPECT_EQ(on_recieve_at(), 0U);
    EXPECT_EQ(Messages(), (std::vector<Sent>{Signal(20)}));
    EXPECT_TRUE(Logged("Receive AT response ok,RecvLen(chars) =  21.", "response"));
    EXPECT_TRUE(
        Logged("\n------------------------------------\n\r\n+CSQ: 20,99\r\n\r\nOK\r\n"
               "-------------------RecvLen:21-----",
               "response"));
    EXPECT_TRUE(Logged("acComReceive=\r\n+CSQ: 20,99\r\n\r\nOK\r\n", "response"));
    EXPECT_TRUE(Logged("pAtRes=\r\n+CSQ: 20,99\r\n\r\nOK\r\n", "response"));
    EXPECT_TRUE(Logged("\t#nIsLast:1\n", "response", 7));
    EXPECT_TRUE(Logged("\t#AtResResult:1\n", "response", 7));
    EXPECT_TRUE(Logged("\t#AtResParaLen:8\n", "response", 7));
    EXPECT_TRUE(Logged("send AT Response to module 0x2345 OK!", "response", 5));
}

TEST_F(Delivery, ReadsAreCountedForTheWatchdogOnlyWhileItIsOn) {
    FakeModem modem;
    AtStatistics.read = 0;
    for (const char* option : {"off", "", "On", "on "}) {
        Platform().config["WatchDog_Setting_Option"] = option;
        modem.Say("\r\nRING\r\n");
        EXPECT_EQ(on_recieve_at(), 0U);
        EXPECT_EQ(AtStatistics.read, 0U) << option;
    }
    Platform().config["WatchDog_Setting_Option"] = "on";
    modem.Say("\r\nRING\r\n");
    EXPECT_EQ(on_recieve_at(), 0U);
    EXPECT_EQ(AtStatistics.read, 1U);
    AtStatistics.read = 0;
}

TEST_F(Delivery, ReportsAreCountedAndAnnounced) {
    const uint32_t before = g_at_statistics.report;
    Feed("\r\nRING\r\n\r\n+CREG: 1\r\n");
    EXPECT_EQ(g_at_statistics.report, before + 2);
    EXPECT_TRUE(Logged("It's  a auto reporting  message!", "response"));
    EXPECT_TRUE(Logged("\t#nIsLast:0\n", "response", 7));
}

// ------------------------------------------------------------------- what stays in the buffer

TEST_F(Delivery, EchoBehindALineBreakThatAReportLeftIsDropped) {
    ExpectEverySplit(0x0001, AT_CMD_TYPE_EXEC, "\r\n+CREG: 1\r\nAT\r\r\nOK\r\n",
                     {Registration(1), Answer(0x0001, 1, 1, 0, "OK")});
}

TEST_F(Delivery, EchoInTheReadOfTheResponseBeforeIsDropped) {
    // A dial is not waited for, so its OK and the echo of the next line can come in one read.
    ExpectEverySplit(0x0001, AT_CMD_TYPE_EXEC, "\r\nRING\r\nAT\r\r\nOK\r\n",
                     {{AT_MODULE_CALL, 0x0407, 1, 1, 4, "RING"}, Answer(0x0001, 1, 1, 0, "OK")});
}

TEST_F(Delivery, EchoIsDroppedInWhateverPiecesItComes) {
    ExpectEverySplit(0x0603, AT_CMD_TYPE_EXEC, "AT+CGSN\r\r\n1234\r\n\r\nOK\r\n",
                     {Answer(0x0603, AT_CMD_TYPE_EXEC, 1, 32, "1234")});
}

TEST_F(Delivery, EchoCutBehindItsFirstLetterIsDropped) {
    ExpectEverySplit(0x0001, AT_CMD_TYPE_EXEC, "AT\r\r\nOK\r\n", {Answer(0x0001, 1, 1, 0, "OK")});
    ExpectEverySplit(0x0603, AT_CMD_TYPE_EXEC, "AT+CGSN\r\r\n356938035643809\r\n\r\nOK\r\n",
                     {Answer(0x0603, AT_CMD_TYPE_EXEC, 1, 32, "356938035643809")});
}

TEST_F(Delivery, FirstLetterOfAnEchoThatIsNoneKeepsItsLine) {
    Feed("\r\nRING\r\nA");
    Feed("NSWER\r\n");
    ASSERT_EQ(Messages().size(), 2U);
    EXPECT_EQ(Messages()[1].id, 0x040A);
}

TEST_F(Delivery, AnswerThatBeginsLikeAnEchoIsNone) {
    Pend(0x0610, AT_CMD_TYPE_EXEC);
    Feed("\r\n+CREG: 1\r\n");
    Feed("\r\nATM-100\r\n\r\nOK\r\n");
    ASSERT_EQ(Messages().size(), 2U);
    EXPECT_EQ(Messages()[1].text.substr(0, 7), "ATM-100");
}

TEST_F(Delivery, RestThatBeginsInTheMiddleOfALineKeepsIt) {
    Pend(0x0604, AT_CMD_TYPE_EXEC);
    Feed("\r\n+CSQ: 20,99\r\n\r\nOK\r\n+CRE");
    EXPECT_STREQ(gStrResAtBuffer, "\r\n+CRE");
    Feed("G: 1\r\n");
    EXPECT_EQ(Messages(), (std::vector<Sent>{Signal(20), Registration(1)}));
}

TEST_F(Delivery, LinesWithoutAnEmptyOneBetweenThemMayArriveOneByOne) {
    const std::vector<Sent> expected = {{AT_MODULE_SMS, 0x0110, 1, 1, 16, "SM"},
                                        {AT_MODULE_CALL, 0x0408, 1, 1, 9, "HANGUP: 1"},
                                        Registration(5),
                                        {AT_MODULE_CALL, 0x0407, 1, 1, 4, "RING"}};
    const std::string stream = "\r\n+CMTI: \"SM\",8\r\nHANGUP: 1\r\n+CREG: 5\r\nRING\r\n";
    ExpectEverySplit(0, 0, stream, expected);
    Start("KVX_LTE");
    for (const char* line : {"\r\n+CMTI: \"SM\",8\r\n", "HANGUP: 1\r\n", "+CREG: 5\r\n", "RING\r\n"})
        Feed(line);
    EXPECT_EQ(Messages(), expected);
}

TEST_F(Delivery, MixedLinesInRandomPiecesAreTheSameAsWhole) {
    const char* const lines[] = {"RING",
                                 "+CREG: 1,\"1A2B\",\"00C3D4E5\"",
                                 "+CMTI: \"SM\",8",
                                 "+CLIP: \"5550123\",129",
                                 "^NOROW: 5",
                                 "^HRSSILVL:85",
                                 "HANGUP: 16",
                                 "+ZSTI: \"OK\",1",
                                 "+ZGIPDNS: 1,5,\"IP\",\"10.0.0.2\",\"\",\"8.8.8.8\",\"\"",
                                 "+CUSD: 1,\"a\r\nOK\r\n\",15",
                                 "VOICE NO CARRIER: 16",
                                 "+CGEV: ME DETACH",
                                 "NO CARRIER",
                                 "ZREFRESH: \"6F3C\",\"1\"",
                                 "+ZEND"};
    uint32_t state = 1;
    const auto random = [&state](size_t below) {
        state = state * 1'664'525U + 1'013'904'223U;
        return static_cast<size_t>(state >> 8U) % below;
    };
    for (int round = 0; round < 1000; ++round) {
        const char* card = round % 2 == 0 ? "KVX_LTE" : "OTHER_CARD";
        const bool asked = random(3) != 0;
        std::string stream = "\r\n";
        const auto say = [&](size_t count) {
            for (; count != 0; --count)
                stream += lines[random(std::size(lines))] + std::string(random(2) == 0 ? "\r\n" : "\r\n\r\n");
        };
        say(random(4));
        if (asked) {
            stream += "+CSQ: 20,99\r\n";
            say(random(3));
            stream += "OK\r\n";
            say(random(4));
        }
        const auto run = [&](size_t longest) {
            Start(card);
            if (asked) Pend(0x0604, AT_CMD_TYPE_EXEC);
            for (size_t at = 0; at < stream.size();) {
                const size_t length = longest == 0 ? stream.size() : 1 + random(longest);
                Feed(stream.substr(at, length));
                at += length;
            }
            return Messages();
        };
        const std::vector<Sent> whole = run(0);
        ASSERT_EQ(run(3), whole) << stream;
        ASSERT_EQ(run(40), whole) << stream;
    }
}

TEST_F(Delivery, EchoThatBeginsAReadIsDroppedBehindALineToo) {
    Feed("\r\nRING\r\n");
    Pend(0x0604, AT_CMD_TYPE_EXEC);
    Feed("AT+CSQ\r\r\n+CSQ: 20,99\r\n\r\nOK\r\n");
    EXPECT_EQ(Messages(), (std::vector<Sent>{{AT_MODULE_CALL, 0x0407, 1, 1, 4, "RING"}, Signal(20)}));
}

TEST_F(Delivery, NoiseInFrontOfTheFirstLineBreakIsDroppedAtTheStart) {
    Feed("RING\r\nRING\r\n");
    EXPECT_EQ(Messages(), (std::vector<Sent>{{AT_MODULE_CALL, 0x0407, 1, 1, 4, "RING"}}));
}

TEST_F(Delivery, FullBufferWithoutAResponseIsClearedAndLogged) {
    Feed("\r\n" + std::string(102'396, 'x'));
    EXPECT_EQ(strlen(gStrResAtBuffer), 102'398U);
    EXPECT_FALSE(LoggedPart("receive buffer is full"));
    Feed("x");
    EXPECT_STREQ(gStrResAtBuffer, "");
    EXPECT_TRUE(LoggedPart("receive buffer is full, 102399 characters"));
}

TEST_F(Delivery, OpenQuoteIsDroppedOnlyWhenThereIsOne) {
    Feed("\r\n+CSQ: 20");
    EXPECT_FALSE(DropUnfinishedQuote());
    EXPECT_STREQ(gStrResAtBuffer, "\r\n+CSQ: 20");
    Feed("\"");
    EXPECT_TRUE(DropUnfinishedQuote());
    EXPECT_STREQ(gStrResAtBuffer, "");
}

TEST_F(Delivery, OtherCardsSortTheSameWay) {
    ExpectEverySplit(0x0604, AT_CMD_TYPE_EXEC, "\r\n+CREG: 1\r\n\r\n+CSQ: 20,99\r\n\r\nOK\r\n",
                     {Registration(1), Signal(20)}, "other");
    ExpectEverySplit(0x0604, AT_CMD_TYPE_EXEC, "\r\n+CSQ: 20,99\r\n\r\n^RSSI:12\r\n\r\nOK\r\n", {Signal(20)},
                     "other");
}

}  // namespace
