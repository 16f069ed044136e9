#include "checks/unit/delivery.h"

// Reports of the modem at its own time, around and inside answers.

namespace {

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

}  // namespace
