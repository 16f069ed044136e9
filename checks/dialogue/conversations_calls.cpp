#include "checks/dialogue/conversation.h"
#include "platform/platform.h"

// Calls, supplementary services and USSD dialogues.

namespace {

class CallTalks : public Conversation {
  protected:
    static std::string Forwarding(int status, int cls, const std::string& number, int type, int time) {
        return I32({status, cls}) + Text(number, 32) + I32({type, time});
    }
    static std::string ForwardingQuery(int reason) {
        return I32({reason, 2}) + Text("", 32) + I32({0, 0, 0});
    }
    static std::string Ussd(int n, const std::string& text) { return I32({n}) + Text(text, 36) + I32({15}); }
};

TEST_F(CallTalks, IncomingCallIsAnsweredAndHungUp) {
    Say("\r\nRING\r\n\r\n+CLIP: \"5550123\",129\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x0407, 1, "RING"));
    EXPECT_EQ(Next(call), Report(call, 0x0513, 1, "5550123"));
    EXPECT_TRUE(Log().WaitFor("+CLIP: dest =5550123"));
    Say("\r\nRING\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x0407, 1, "RING"));

    call.Ask(0x0404, kExec);
    EXPECT_EQ(Next(call), Answer(call, 0x0404, kExec, 1, "OK"));
    Say("\r\nANSWER\r\n\r\nZVCONNECT: 1\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x040A, 1, "ANSWER"));
    EXPECT_TRUE(Log().WaitFor("ZVCONNECT: 1 and cfg set"));
    EXPECT_EQ(ConfigValue("call_cs_status"), "call_active");

    call.Ask(0x0403, kExec);
    EXPECT_EQ(Next(call), Answer(call, 0x0403, kExec, 1, "OK"));
    Say("\r\nHANGUP: 16\r\n\r\nZVCONNECT: 0\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x0408, 1, "HANGUP: 16"));
    EXPECT_TRUE(Log().WaitFor("ZVCONNECT: 0 and cfg set"));
    EXPECT_EQ(ConfigValue("call_cs_status"), "call_idle");
    EXPECT_EQ(TheModem().Bytes(), "ATA\rAT+CHUP\r");
}

TEST_F(CallTalks, CallWithoutANumberIsReportedWithoutOne) {
    Say("\r\n+CLIP: \"\",128\r\n\r\n+CLIP: ,128\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x0513, 1, ""));
    EXPECT_EQ(Next(call), Report(call, 0x0513, 1, ""));
}

TEST_F(CallTalks, CallerThatGivesUpStopsTheRinging) {
    Say("\r\nRING\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x0407, 1, "RING"));
    Say("\r\nSTOPRING\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x040C, 1, "STOPRING"));
}

TEST_F(CallTalks, AnswerReportBeforeTheOkTakesItAway) {
    TheModem().SetAnswer(Answers({{"ATA", "\r\nANSWER\r\n\r\nOK\r\n"}}));
    call.Ask(0x0404, kExec);
    EXPECT_EQ(Next(call), Report(call, 0x040A, 1, "ANSWER"));
    EXPECT_EQ(Next(call), Report(call, 0x0408, 1, "OK")) << "an OK of nobody's is reported as the end";
}

TEST_F(CallTalks, OutgoingCallRunsThroughItsStates) {
    call.Ask(0x0401, kExec, "+15550123");
    EXPECT_EQ(Next(call), DialAnswer(call));
    EXPECT_EQ(TheModem().Bytes(), "ATD+15550123;\r");
    Say("\r\nRINGBACK\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x053D, 1, "RINGBACK"));
    Say("\r\nRINGBACKLOCAL\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x053D, 1, "RINGBACKLOCAL"));
    Say("\r\n+RINGBACK: 1\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x053D, 1, "+RINGBACK: 1"));
    Say("\r\nVOICE CONNECT\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x040D, 1, "VOICE CONNECT"));
    Say("\r\nZVCONNECT: 2\r\n");
    EXPECT_TRUE(Log().WaitFor("ZVCONNECT: 2 and cfg set"));
    EXPECT_EQ(ConfigValue("call_cs_status"), "call_active");
    EXPECT_EQ(ConfigValue("volte_cs_status"), "call_active");
    Say("\r\nZVCONNECT: 3\r\n");
    Settle();
    EXPECT_EQ(ConfigValue("volte_cs_status"), "call_active");
    Say("\r\nHANGUP: 16\r\n\r\nVOICE NO CARRIER: 16\r\n\r\nZVCONNECT: 0\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x0408, 1, "HANGUP: 16"));
    EXPECT_EQ(Next(call), Report(call, 0x040E, 1, "VOICE NO CARRIER: 16"));
    EXPECT_TRUE(Log().WaitFor("ZVCONNECT: 0 and cfg set"));
    EXPECT_EQ(ConfigValue("volte_cs_status"), "call_idle");
}

TEST_F(CallTalks, EveryFormOfNoCarrierIsReported) {
    for (const char* line : {"VOICE NO CARRIER: 16", "VOICE NO CARRIER : 16", "VOICE NO CARRIER 16"}) {
        Say(std::string("\r\n") + line + "\r\n");
        EXPECT_EQ(Next(call), Report(call, 0x040E, 1, line));
    }
}

TEST_F(CallTalks, UnansweredDialIsReportedAndALostCarrierIsNot) {
    call.Ask(0x0401, kExec, "5550123");
    EXPECT_EQ(Next(call), DialAnswer(call));
    Say("\r\nNO ANSWER\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x040A, 1, "NO ANSWER"));
    Say("\r\nNO CARRIER\r\n");
    SayAlone("\r\nBUSY\r\n");  // with a request behind it in the same read it would answer that
    Settle();
}

TEST_F(CallTalks, BusyBeforeAnAnswerAnswersThatRequest) {
    TheModem().SetAnswer(Answers({{"AT+CFUN?", "\r\nBUSY\r\n"}}));
    other.Ask(0x0544, kRead);
    EXPECT_EQ(Next(other), Answer(other, 0x0544, kRead, 6, ""));
}

TEST_F(CallTalks, BusyInsideAnAnswerIsDropped) {
    TheModem().SetAnswer(Answers({{"AT+CFUN?", "\r\n+CFUN: 1\r\n\r\nBUSY\r\n\r\nOK\r\n"}}));
    other.Ask(0x0544, kRead);
    EXPECT_EQ(Next(other), Answer(other, 0x0544, kRead, 1, I32({1})));
}

TEST_F(CallTalks, ConnectBeforeAnAnswerTakesTheRequestAway) {
    TheModem().SetAnswer(Answers({{"AT+CFUN?", "\r\nVOICE CONNECT\r\n\r\n+CFUN: 1\r\n\r\nOK\r\n"}}));
    other.Ask(0x0544, kRead);
    EXPECT_EQ(Next(call), Report(call, 0x040D, 1, "VOICE CONNECT"));
}

TEST_F(CallTalks, ConnectInsideAnAnswerDoesNotTakeTheRequestAway) {
    TheModem().SetAnswer(Answers({{"AT+CFUN?", "\r\n+CFUN: 1\r\n\r\nVOICE CONNECT\r\n\r\nOK\r\n"}}));
    other.Ask(0x0544, kRead);
    EXPECT_EQ(Next(other), Answer(other, 0x0544, kRead, 1, I32({1})));
    EXPECT_EQ(Next(call), Report(call, 0x040D, 1, "VOICE CONNECT"));
}

TEST_F(CallTalks, WaitingCallIsReportedWithItsLine) {
    Say("\r\n+CCWA: \"5550199\",129,1\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x052C, 1, "+CCWA: \"5550199\",129,1"));
}

TEST_F(CallTalks, VendorReportsOfACallAreForwarded) {
    Say("\r\n^CONN:1,0\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x0541, 1, "^CONN:1,0"));
    Say("\r\n^CEND:1,12,16\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x0542, 1, "^CEND:1,12,16"));
    Say("\r\n+ZCPI: 1,2\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x055E, 1, "+ZCPI: 1,2"));
}

TEST_F(CallTalks, CallsOfAnOtherCardAreReportedTheSame) {
    const OtherCard card;
    Say("\r\nRING\r\n\r\n+CLIP: \"5550123\",129\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x0407, 1, "RING"));
    EXPECT_EQ(Next(call), Report(call, 0x0513, 1, "5550123"));
    Say("\r\n+CCWA: \"5550199\",129,1\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x052C, 1, "+CCWA: \"5550199\",129,1"));
    call.Ask(0x0401, kExec, "5550123");
    EXPECT_EQ(Next(call), DialAnswer(call));
    Say("\r\n+RINGBACK: 1\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x053D, 1, "+RINGBACK: 1"));
    Say("\r\nVOICE CONNECT\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x040D, 1, "VOICE CONNECT"));
    Say("\r\n^CONN:1,0\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x0541, 1, "^CONN:1,0"));
    Say("\r\n^CEND:1,12,16\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x0542, 1, "^CEND:1,12,16"));
    Say("\r\nHANGUP: 16\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x0408, 1, "HANGUP: 16"));
    Say("\r\nVOICE NO CARRIER: 16\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x040E, 1, "VOICE NO CARRIER: 16"));
    Say("\r\nZVCONNECT: 2\r\n");
    EXPECT_TRUE(Log().WaitFor("ZVCONNECT: 2 and cfg set"));
    Say("\r\nZVCONNECT: 0\r\n");
    EXPECT_TRUE(Log().WaitFor("ZVCONNECT: 0 and cfg set"));
}

TEST_F(CallTalks, FurtherLinesOfAForwardingAnswerAreForwarded) {
    TheModem().SetAnswer(
        Answers({{"AT+CCFC=0,2", "\r\n+CCFC: 1,1,\"+15550123\",145\r\n\r\n+CCFC: 0,2\r\n\r\nOK\r\n"}}));
    call.Ask(0x052B, kSet, ForwardingQuery(0));
    EXPECT_EQ(Next(call), Answer(call, 0x052B, kSet, 1, Forwarding(1, 1, "+15550123", 145, 0)));
    EXPECT_EQ(Next(call), Report(call, 0x052B, 2, Forwarding(0, 2, "", 0, 0)));
    EXPECT_EQ(Next(call), Report(call, 0x052B, 2, "OK"));
    EXPECT_EQ(TheModem().Bytes(), "AT+CCFC=0,2\r");

    // Until another answer comes, whatever arrives is taken for a further line.
    Say("\r\nRING\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x052B, 2, "RING"));
    Say("\r\n+CREG: 1\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x052B, 2, "+CREG: 1"));
    Say("\r\n^NOROW: 1\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x052B, 2, ""));
    Settle();
    Say("\r\nRING\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x0407, 1, "RING"));
}

TEST_F(CallTalks, ForwardingOfAnOtherCardIsTheSame) {
    const OtherCard card;
    TheModem().SetAnswer(
        Answers({{"AT+CCFC=0,2", "\r\n+CCFC: 1,1,\"+15550123\",145\r\n\r\n+CCFC: 0,2\r\n\r\nOK\r\n"}}));
    call.Ask(0x052B, kSet, ForwardingQuery(0));
    EXPECT_EQ(Next(call), Answer(call, 0x052B, kSet, 1, Forwarding(1, 1, "+15550123", 145, 0)));
    EXPECT_EQ(Next(call), Report(call, 0x052B, 2, Forwarding(0, 2, "", 0, 0)));
    EXPECT_EQ(Next(call), Report(call, 0x052B, 2, "OK"));
}

TEST_F(CallTalks, ForwardingIsRegisteredAndRefused) {
    TheModem().SetAnswer(Answers({{"AT+CCFC=0,3,+15550123,145,1", "\r\nOK\r\n"},
                                  {"AT+CCFC=2,3,5550123,129,1,0,0,20", "\r\n+CME ERROR: 30\r\n"}}));
    call.Ask(0x052B, kSet, I32({0, 3}) + Text("+15550123", 32) + I32({0, 1, 0}));
    EXPECT_EQ(Next(call), Answer(call, 0x052B, kSet, 1, "OK"));
    call.Ask(0x052B, kSet, I32({2, 3}) + Text("5550123", 32) + I32({145, 1, 20}));
    EXPECT_EQ(Next(call), Answer(call, 0x052B, kSet, 4, "30"));
}

TEST_F(CallTalks, CallWaitingQueryComesAsAReport) {
    TheModem().SetAnswer(Answers({{"AT+CCWA=1,2", "\r\n+CCWA: 1,1\r\n\r\nOK\r\n"}}));
    call.Ask(0x052C, kSet, I32({1, 2}));
    EXPECT_EQ(Next(call), Report(call, 0x052C, 1, "+CCWA: 1,1"));
    EXPECT_EQ(Next(call), Answer(call, 0x052C, kSet, 1, "OK"));
    // From then on reports are taken for further lines of it.
    Say("\r\nRING\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x052C, 2, "RING"));
}

TEST_F(CallTalks, CallerIdentityQueryComesAsAnEmptyReport) {
    TheModem().SetAnswer(Answers({{"AT+CLIP?", "\r\n+CLIP: 1,1\r\n\r\nOK\r\n"}}));
    call.Ask(0x0513, kRead);
    EXPECT_EQ(Next(call), Report(call, 0x0513, 1, ""));
    EXPECT_EQ(Next(call), Answer(call, 0x0513, kRead, 1, I32({0})));
}

TEST_F(CallTalks, CurrentCallsComeWholeThoughEachLineEndsAFrame) {
    TheModem().SetAnswer(Answers(
        {{"AT+CLCC?",
          "\r\n+CLCC: 1,0,0,0,0,\"5550123\",129\r\n+CLCC: 2,1,5,0,0,\"5550199\",129\r\n\r\nOK\r\n"}}));
    call.Ask(0x0518, kRead);
    const std::string list = I32({2}) + I32({1, 0, 0, 0, 0}) + Text("5550123", 32) + I32({129, 0, 0}) +
                             I32({2, 1, 5, 0, 0}) + Text("5550199", 32) + I32({129, 0, 0});
    EXPECT_EQ(Next(call), Answer(call, 0x0518, kRead, 1, list, 1284));
}

// ---- USSD

TEST_F(CallTalks, UssdDialogueRunsToItsEnd) {
    TheModem().SetAnswer(Answers({{"AT+CUSD=1,\"*100#\",15", "\r\nOK\r\n"},
                                  {"AT+CUSD=1,\"1\",15", "\r\nOK\r\n"},
                                  {"AT+CUSD=2", "\r\nOK\r\n"}}));
    ussd.Ask(0x0532, kSet, Ussd(1, "\"*100#\""));
    EXPECT_EQ(Next(ussd), Answer(ussd, 0x0532, kSet, 1, "OK"));
    Say("\r\n+CUSD: 1,\"1 balance, 2 \"\"top up\"\"\",15\r\n");
    EXPECT_EQ(Next(ussd), Report(ussd, 0x0532, 2, "", 824)) << "the text travels in the file";
    EXPECT_EQ(ShowFile("/etc/cusd"),
              FileOf(I32({1}) + Text("1 balance, 2 \"\"top up\"\"", 816) + I32({15}), 824));
    ussd.Ask(0x0532, kSet, Ussd(1, "\"1\""));
    EXPECT_EQ(Next(ussd), Answer(ussd, 0x0532, kSet, 1, "OK"));
    Say("\r\n+CUSD: 0,\"Your balance is 5\",15\r\n");
    EXPECT_EQ(Next(ussd), Report(ussd, 0x0532, 2, "", 824));
    EXPECT_EQ(ShowFile("/etc/cusd"), FileOf(I32({0}) + Text("Your balance is 5", 816) + I32({15}), 824));
    ussd.Ask(0x0532, kSet, Ussd(2, "\"ignored\""));
    EXPECT_EQ(Next(ussd), Answer(ussd, 0x0532, kSet, 1, "OK"));
    EXPECT_EQ(TheModem().Bytes(), "AT+CUSD=1,\"*100#\",15\rAT+CUSD=1,\"1\",15\rAT+CUSD=2\r");
}

TEST_F(CallTalks, UssdEndedByTheNetworkHasAModeAlone) {
    Say("\r\n+CUSD: 2\r\n");
    EXPECT_EQ(Next(ussd), Report(ussd, 0x0532, 2, "", 824));
    EXPECT_EQ(ShowFile("/etc/cusd"), FileOf(I32({2}), 824));
}

TEST_F(CallTalks, UssdTextBeforeTheOkIsReportedAndTheOkAnswers) {
    TheModem().SetAnswer(Answers({{"AT+CUSD=1,\"*100#\",15", "\r\n+CUSD: 0,\"Hello\",15\r\n\r\nOK\r\n"}}));
    ussd.Ask(0x0532, kSet, Ussd(1, "\"*100#\""));
    EXPECT_EQ(Next(ussd), Report(ussd, 0x0532, 2, "", 824));
    EXPECT_EQ(Next(ussd), Answer(ussd, 0x0532, kSet, 1, "OK"));
    EXPECT_EQ(ShowFile("/etc/cusd"), FileOf(I32({0}) + Text("Hello", 816) + I32({15}), 824));
}

TEST_F(CallTalks, UssdErrorIsReportedAndAnswersTheRequest) {
    TheModem().SetAnswer(Answers({{"AT+CUSD=1,\"*100#\",15", "\r\n+CME ERROR: network timeout\r\n"}}));
    ussd.Ask(0x0532, kSet, Ussd(1, "\"*100#\""));
    Received report;
    ASSERT_TRUE(ussd.Receive(report, 10));
    EXPECT_EQ(report.result, 4) << "the one report whose result is not 1";
    report.result = 1;
    EXPECT_EQ(Show(report), Report(ussd, 0x0532, 6, "+CME ERROR: network timeout"));
    EXPECT_EQ(Next(ussd), Answer(ussd, 0x0532, kSet, 4, "+CME ERROR: network timeoutnetwork timeout"));
}

TEST_F(CallTalks, ErrorAfterAUssdAnswerLeavesTheNextRequestWaiting) {
    TheModem().SetAnswer(Answers({{"AT+CUSD=2", "\r\nOK\r\n"}, {"AT+CFUN?", "\r\n+CME ERROR: 10\r\n"}}));
    ussd.Ask(0x0532, kSet, Ussd(2, ""));
    EXPECT_EQ(Next(ussd), Answer(ussd, 0x0532, kSet, 1, "OK"));
    other.Ask(0x0544, kRead);
    ASSERT_TRUE(Log().WaitFor("resolve_auto_report:: the auto report is :10"));
    EXPECT_EQ(Next(other, 0.1), "nothing");
    Say("\r\n+CFUN: 1\r\n\r\nOK\r\n");
    EXPECT_EQ(Next(other), Answer(other, 0x0544, kRead, 1, I32({1})));
    other.Ask(0x0544, kRead);
    EXPECT_EQ(Next(other), Answer(other, 0x0544, kRead, 4, "10")) << "an answer ends it";
}

TEST_F(CallTalks, UssdOfAnOtherCardAnswersTheRequestAndIsNeverReported) {
    const OtherCard card;
    TheModem().SetAnswer(Answers({{"AT+CUSD=1,\"*100#\",15", "\r\n+CUSD: 0,\"Generic\",15\r\n\r\nOK\r\n"},
                                  {"AT+CUSD=1,\"*101#\",15", "\r\n+CME ERROR: network timeout\r\n"},
                                  {"AT+CFUN?", "\r\n+CME ERROR: 10\r\n"}}));
    ussd.Ask(0x0532, kSet, Ussd(1, "\"*100#\""));
    EXPECT_EQ(Next(ussd), Answer(ussd, 0x0532, kSet, 1, "", 824));
    const std::string file = FileOf(I32({0}) + Text("Generic", 816) + I32({15}), 824);
    EXPECT_EQ(ShowFile("/etc/cusd"), file);
    other.Ask(0x0544, kRead);
    EXPECT_EQ(Next(other), Answer(other, 0x0544, kRead, 4, "10"));
    ussd.Ask(0x0532, kSet, Ussd(1, "\"*101#\""));
    EXPECT_EQ(Next(ussd), Answer(ussd, 0x0532, kSet, 4, "network timeout"));
    Say("\r\n+CUSD: 0,\"Later\",15\r\n");
    Settle();
    EXPECT_EQ(ShowFile("/etc/cusd"), file);
}

}  // namespace
