#include <syslog.h>

#include "checks/unit/routing_vectors.h"

// What every report goes through, messages being sent, and calls.

namespace {

using namespace routing;

// --- the frame -------------------------------------------------------------------------------------------

TEST_F(Routing, NullIsLogged) {
    RouteReport(nullptr, {});
    EXPECT_TRUE(Logged("resolve_auto_report::NULL == pRes\n", "response"));
    resolve_auto_report(nullptr);
    ExpectNothingSent();
}

TEST_F(Routing, TextIsLogged) {
    Route("\r\nNOTHING\r\n");
    EXPECT_TRUE(Logged("resolve_auto_report:: the auto report is :\r\nNOTHING\r\n", "response"));
}

TEST_F(Routing, ResolveAutoReportAllowsEverything) {
    Pending(0x0604);
    MSG_BUF message = {};
    _BK_AT_RES_T response = {};
    response.usParaLen = 7;
    memcpy(response.aucParas, "CONNECT", 7);
    memcpy(message.aucDataBuf, &response, sizeof response);
    resolve_auto_report(&message);
    ExpectReport(kCall, 0x040D, 1, "CONNECT");
    EXPECT_TRUE(Idle());
}

TEST_F(Routing, UnknownReportsAreDroppedSilently) {
    for (const char* text :
         {"", "NO CARRIER", "+CGEV: NW DETACH", "^RSSI: 17", "ERROR", "+ZMAC: 1", "> ", "BUSY"})
        ExpectDropped(text);
}

TEST_F(Routing, LiteralInsideQuotesIsNone) {
    ExpectDropped("+X: \"RING\"");
    ExpectDropped("\"+CREG: 1");
    ExpectForward("\"a\"RING", kCall, 0x0407, 1);
}

TEST_F(Routing, ReportThatCannotBeSentIsLogged) {
    Queues().Reset();
    Route("RING");
    ExpectNothingSent();
    EXPECT_TRUE(Logged("send_msg_buf ::get target msg id 0x1002 failed!\n"));
    EXPECT_TRUE(Logged("ERROR: send_auto_report send msg failed.\n", "response", LOG_ERR));
    Queues().CreateModules();
    Queues().fail_send = 11;
    Pending(0x0604);
    Route("CONNECT");  // the request is cleared all the same
    EXPECT_TRUE(Idle());
}

TEST_F(Routing, FullTextWithoutTerminatorIsBounded) {
    std::string text(634, 'x');
    Route(text);
    ExpectNothingSent();
    text.replace(630, 4, "RING");
    ExpectForward(text, kCall, 0x0407, 1);
    text.replace(630, 4, "xRIN");
    Route(text);
    ExpectNothingSent();
    text.replace(626, 8, "+CREG: 5");
    Route(text);
    ExpectReport(kSim, 0x052D, 6, ReportBytes().Int(5).Zeros(32).str());
}

TEST_F(Routing, TextBehindANulIsNotLookedAt) {
    Route(std::string("x\0RING", 6));
    ExpectNothingSent();
}

TEST_F(Routing, ForwardedLengthBeyondTheMessageIsCarriedAndItsBytesAreCut) {
    MSG_BUF message = {};
    _BK_AT_RES_T response = {};
    memset(response.aucParas, 'y', sizeof response.aucParas);
    memcpy(response.aucParas, "RING", 4);
    response.usParaLen = 1284;
    memcpy(message.aucDataBuf, &response, sizeof response);
    RouteReport(&message, {});
    ASSERT_EQ(Queues().sent.size(), 1U);
    const _BK_AT_RES_T sent = Queues().sent[0].Response();
    EXPECT_EQ(sent.usParaLen, 1284);
    EXPECT_EQ(memcmp(sent.aucParas, response.aucParas, sizeof sent.aucParas), 0);
}

// --- further lines of +CCFC and +CCWA --------------------------------------------------------------------

TEST_F(Routing, AfterACcfcAnswerEveryReportIsAFurtherLine) {
    g_last_atcmd = 0x052B;
    ExpectForward("RING", kCall, 0x052B, 2);
    ExpectForward("+CCFC: 1,1,\"123\",129", kCall, 0x052B, 2);
    ExpectForward("+CREG: 1", kCall, 0x052B, 2);
    ExpectForward("", kCall, 0x052B, 2);
    EXPECT_TRUE(Logged("resolve_auto_report:: the auto report is :RING", "response"));
    EXPECT_TRUE(Logged("---.>>>>>>>>>>g_last_atcmd == AT_CCFC_CMD", "response"));
    Pending(0x0108, CmgsParas(1, "AA"));
    ExpectForward("> ", kCall, 0x052B, 2);
    EXPECT_EQ(modem_.Written(), "");
    EXPECT_FALSE(Idle());
}

TEST_F(Routing, AfterACcwaAnswerEveryReportIsAFurtherLine) {
    g_last_atcmd = 0x052C;
    ExpectForward("CONNECT", kCall, 0x052C, 2);
    ExpectForward("+CCWA: 1,1", kCall, 0x052C, 2);
    EXPECT_TRUE(Logged("resolve_auto_report:: the auto report is :CONNECT", "response"));
    EXPECT_TRUE(Logged("---.>>>>>>>>>>g_last_atcmd == AT_CCWA_CMD", "response"));
}

TEST_F(Routing, AfterAnyOtherAnswerReportsAreRoutedByTheirText) {
    for (uint16_t last : {uint16_t{0x052A}, uint16_t{0x052D}, uint16_t{0x0108}, uint16_t{0}}) {
        g_last_atcmd = last;
        ExpectForward("RING", kCall, 0x0407, 1);
    }
}

// --- rows 1 to 4: SIM refresh and new messages -----------------------------------------------------------

TEST_F(Routing, ZrefreshCarriesFileIdAndText) {
    ExpectRecord("+ZREFRESH: \"6F07\",\"abc\"", kSms, 0x011A, 1,
                 ReportBytes().Text("6F07", 36).Text("abc", 36));
    ExpectRecord("ZREFRESH: 1 2", kSms, 0x011A, 1, ReportBytes().Text("1", 36).Text("2", 36));
}

TEST_F(Routing, ZrefreshKeepsTheMarkersOfItsTexts) {
    ExpectRecord("ZREFRESH: \"\",\"x y\"", kSms, 0x011A, 1,
                 ReportBytes().Text("\xFD", 36).Text("x\xFEy", 36));
    ExpectRecord("ZREFRESH: \"x y\",\"\"", kSms, 0x011A, 1,
                 ReportBytes().Text("x\xFEy", 36).Text("\xFD", 36));
}

TEST_F(Routing, ZrefreshTextsAreCutAt32Characters) {
    const std::string full(32, 'a');
    ExpectRecord("ZREFRESH: " + full + ",b", kSms, 0x011A, 1, ReportBytes().Text(full, 36).Text("b", 36));
    ExpectRecord("ZREFRESH: " + full + "x,b", kSms, 0x011A, 1, ReportBytes().Text(full, 36).Text("x", 36));
}

TEST_F(Routing, ZrefreshWithoutFieldsIsSentEmpty) {
    ExpectRecord("ZREFRESH: ", kSms, 0x011A, 1, ReportBytes().Zeros(72));
    ExpectDropped("ZREFRESH:1,2");
}

TEST_F(Routing, CmtiCarriesMemoryAndIndex) {
    ExpectRecord("\r\n+CMTI: \"SM\",8\r\n", kSms, 0x0110, 1, ReportBytes().Text("SM", 12).Int(8));
    EXPECT_TRUE(Logged("tPara.memory:SM    tPara.index:8 ", "response"));
    ExpectRecord("+CMTI: \"SM\"", kSms, 0x0110, 1, ReportBytes().Text("SM", 12).Int(0));
    ExpectRecord("+CMTI: \"SM\",99999999999", kSms, 0x0110, 1, ReportBytes().Text("SM", 12).Int(INT32_MAX));
    ExpectRecord("+CMTI: " + std::string(10, 'm') + " 3", kSms, 0x0110, 1,
                 ReportBytes().Text(std::string(10, 'm'), 12).Int(3));
    ExpectRecord("+CMTI: " + std::string(11, 'm') + " 3", kSms, 0x0110, 1,
                 ReportBytes().Text(std::string(10, 'm'), 12).Int(0));
    ExpectDropped("+CMTI:\"SM\",8");
}

TEST_F(Routing, CmtiKeepsTheMarkersOfItsMemory) {
    ExpectRecord("+CMTI: \"\",8", kSms, 0x0110, 1, ReportBytes().Text("\xFD", 12).Int(8));
    ExpectRecord("+CMTI: \"S M\",8", kSms, 0x0110, 1, ReportBytes().Text("S\xFEM", 12).Int(8));
}

TEST_F(Routing, ZvmtiCarriesMemoryAndIndex) {
    ExpectRecord("+ZVMTI: \"ME\",3", kSms, 0x0117, 1, ReportBytes().Text("ME", 12).Int(3));
    ExpectDropped("+ZVMT: \"ME\",3");
}

TEST_F(Routing, CdsiCarriesMemoryAndIndex) {
    ExpectRecord("+CDSI: \"SR\",51", kSms, 0x0112, 1, ReportBytes().Text("SR", 12).Int(51));
    ExpectDropped("+CDS: 26");
}

TEST_F(Routing, EarlierRowWinsWhereverItStands) {
    ExpectRecord("+CMTI: \"SM\",8;ZREFRESH: a b", kSms, 0x011A, 1, ReportBytes().Text("a", 36).Text("b", 36));
    ExpectRecord("+CDSI: \"SR\",1;+ZVMTI: \"ME\",2", kSms, 0x0117, 1, ReportBytes().Text("ME", 12).Int(2));
}

TEST_F(Routing, RecordIsReadFromTheFirstPlaceOfTheLiteralOutsideQuotes) {
    ExpectRecord("\"+CREG: 9\",+CREG: 1", kSim, 0x052D, 6, ReportBytes().Int(1).Zeros(32));
    ExpectRecord("+CREG: 1 ;+CREG: 2", kSim, 0x052D, 6,
                 ReportBytes().Int(1).Text(";+CREG:", 16).Text("2", 16));
}

// --- rows 5 to 7: messages being sent --------------------------------------------------------------------

TEST_F(Routing, ResponseOfCmgsIsForwarded) {
    Pending(0x0108, CmgsParas(3, "AABBCC"));
    Route("17", {}, 0x0108);
    ExpectReport(kSms, 0x0108, 2, "17");
    EXPECT_EQ(modem_.Written(), "");
    // The new-message rows stand before it.
    Route("+CMTI: \"SM\",8", {}, 0x0108);
    ExpectReport(kSms, 0x0110, 1, ReportBytes().Text("SM", 12).Int(8).str());
    // The response's id decides, not what is pending.
    ClearPendingRequest();
    Route("RING", {}, 0x0108);
    ExpectReport(kSms, 0x0108, 2, "RING");
    Route("RING", {}, 0x010A);
    ExpectReport(kCall, 0x0407, 1, "RING");
}

TEST_F(Routing, PromptOfCmgsIsAnsweredWithThePdu) {
    Pending(0x0108, CmgsParas(3, "AABBCC"));
    Route("> ");
    EXPECT_EQ(modem_.Written(), "AABBCC\x1A");
    EXPECT_TRUE(Logged("-->>>>>>mLstcmd == AT_CMGS_CMD--msg_tmp=AABBCC\x1A", "response"));
    ExpectNothingSent();
    EXPECT_EQ(PendingRequest()->usCmdID, 0x0108);
}

TEST_F(Routing, PromptOfCmgwIsAnsweredWithThePdu) {
    Pending(0x010A, CmgwParas(3, 2, "AABBCC"));
    Route("> ");
    EXPECT_EQ(modem_.Written(), "AABBCC\x1A");
    EXPECT_TRUE(Logged("-->>>>>>mLstcmd == AT_CMGW_CMD--msg_tmp=AABBCC\x1A", "response"));
    ExpectNothingSent();
}

TEST_F(Routing, PduOfAnyLength) {
    for (size_t length : {size_t{0}, size_t{1}, size_t{499}, size_t{500}}) {
        const std::string pdu(length, 'A');
        Pending(0x0108, CmgsParas(1, pdu));
        Route("> ");
        EXPECT_EQ(modem_.Written(), pdu + "\x1A");
        Pending(0x010A, CmgwParas(1, 0, pdu));
        Route("> ");
        EXPECT_EQ(modem_.Written(), pdu + "\x1A");
    }
}

TEST_F(Routing, PduWithoutTerminatorEndsWithItsArray) {
    // What a requester wrote behind the record must not reach the modem.
    Pending(0x0108, ReportBytes().Int(1).str() + std::string(628, 'B'));
    Route("> ");
    EXPECT_EQ(modem_.Written(), std::string(500, 'B') + "\x1A");
    Pending(0x0108, CmgsParas(1, std::string(501, 'B')));
    Route("> ");
    EXPECT_EQ(modem_.Written(), std::string(500, 'B') + "\x1A");
    Pending(0x010A, ReportBytes().Int(1).Int(2).str() + std::string(624, 'B'));
    Route("> ");
    EXPECT_EQ(modem_.Written(), std::string(500, 'B') + "\x1A");
}

TEST_F(Routing, WhileCmgsIsPendingEveryLaterReportWritesThePduAgain) {
    Pending(0x0108, CmgsParas(1, "AA"));
    for (const char* text :
         {"RING", "+CREG: 1", "OK", "", "+CLIP: \"1\"", "CONNECT", "+CGEV:", "\"+CGEV: \""}) {
        Route(text);
        EXPECT_EQ(modem_.Written(), "AA\x1A") << text;
    }
    ExpectNothingSent();
    EXPECT_FALSE(Idle());
}

TEST_F(Routing, WhileCmgsIsPendingNewMessageRowsStandFirst) {
    Pending(0x0108, CmgsParas(1, "AA"));
    ExpectRecord("+CMTI: \"SM\",8", kSms, 0x0110, 1, ReportBytes().Text("SM", 12).Int(8));
    EXPECT_EQ(modem_.Written(), "");
}

TEST_F(Routing, CgevIsNotThePromptOfCmgsButThatOfCmgw) {
    Pending(0x0108, CmgsParas(1, "AA"));
    Route("+CGEV: NW DETACH");
    EXPECT_EQ(modem_.Written(), "");
    ExpectNothingSent();
    ExpectForward("+CGEV: RING", kCall, 0x0407, 1);  // the later rows are looked at
    Pending(0x010A, CmgwParas(1, 0, "BB"));
    Route("+CGEV: NW DETACH");
    EXPECT_EQ(modem_.Written(), "BB\x1A");
}

TEST_F(Routing, OtherPendingCommandsAnswerNoPrompt) {
    for (uint16_t id : {uint16_t{0}, uint16_t{0x0107}, uint16_t{0x0109}, uint16_t{0x010B}}) {
        Pending(id, CmgsParas(1, "AA"));
        Route("> ");
        EXPECT_EQ(modem_.Written(), "");
        ExpectForward("RING", kCall, 0x0407, 1);
    }
}

TEST_F(Routing, KnownReportIsNeverThePrompt) {
    const RouteContext known = {.may_prompt = false, .may_clear = true};
    Pending(0x0108, CmgsParas(1, "AA"));
    Route("RING", known);
    ExpectReport(kCall, 0x0407, 1, "RING");
    Route("> ", known);
    ExpectNothingSent();
    Route("17", known, 0x0108);  // the response's own id still decides
    ExpectReport(kSms, 0x0108, 2, "17");
    Pending(0x010A, CmgwParas(1, 0, "BB"));
    Route("RING", known);
    ExpectReport(kCall, 0x0407, 1, "RING");
    EXPECT_EQ(modem_.Written(), "");
    Route("CONNECT", known);
    ExpectReport(kCall, 0x040D, 1, "CONNECT");
    EXPECT_TRUE(Idle());
}

TEST_F(Routing, MessageTextIsNoLineThatIsCounted) {
    const uint32_t written = g_at_statistics.send;
    Pending(0x0108, CmgsParas(1, "AA"));
    Route("> ");
    EXPECT_EQ(modem_.Written(), "AA\x1A");
    Pending(0x010A, CmgwParas(1, 0, "BB"));
    Route("> ");
    EXPECT_EQ(modem_.Written(), "BB\x1A");
    EXPECT_EQ(g_at_statistics.send, written);
}

TEST_F(Routing, PromptThatCannotBeAnsweredIsLoggedAndThePortStaysOpen) {
    modem_.Break();
    g_at_processing = 5;
    for (const auto& [id, paras] :
         {std::pair{uint16_t{0x0108}, CmgsParas(1, "AA")}, {uint16_t{0x010A}, CmgwParas(1, 0, "AA")}}) {
        ClearLog();
        Platform().config["port_stat"] = "port_open";
        Pending(id, paras);
        Route("> ");
        EXPECT_TRUE(Logged("[error]:Send AT command Error!error code:42505", "at_server"));
        EXPECT_EQ(Platform().Get("port_stat"), "port_open");
        EXPECT_TRUE(Platform().writes.empty());
        EXPECT_EQ(g_at_processing, 5U);  // the request that sends the message is still being served
        EXPECT_FALSE(Idle());
    }
    g_at_processing = 0;
}

// --- rows 8 to 22: calls ---------------------------------------------------------------------------------

TEST_F(Routing, RingbackWithColon) {
    ExpectForward("RINGBACK: 1", kCall, 0x053D, 1);
}

TEST_F(Routing, RingbackLocalIsNoRing) {
    ExpectForward("RINGBACKLOCAL", kCall, 0x053D, 1);
}

TEST_F(Routing, RingbackIsNoRing) {
    ExpectForward("RINGBACK", kCall, 0x053D, 1);
    ExpectForward("RINGBAC", kCall, 0x0407, 1);
}

TEST_F(Routing, VoiceNoCarrierInItsThreeForms) {
    ExpectForward("VOICE NO CARRIER : 1", kCall, 0x040E, 1);
    ExpectForward("VOICE NO CARRIER: 1", kCall, 0x040E, 1);
    ExpectForward("VOICE NO CARRIER 1", kCall, 0x040E, 1);
    ExpectDropped("VOICE NO CARRIER");
    ExpectDropped("VOICE NO CARRIER:1");
    ExpectDropped("NO CARRIER ");
}

TEST_F(Routing, StopRingIsNoRing) {
    ExpectForward("STOPRING", kCall, 0x040C, 1);
    ExpectForward("STOP RING", kCall, 0x0407, 1);
}

TEST_F(Routing, Ring) {
    ExpectForward("\r\nRING\r\n", kCall, 0x0407, 1);
    ExpectForward("+CLIP: \"1\";RING", kCall, 0x0407, 1);  // before the calling number
    ExpectDropped("RIN");
    ExpectDropped("ring");
}

TEST_F(Routing, ClipPutsTheNumberAtTheStart) {
    Route("+CLIP: \"13800138000\",129");
    ExpectReport(kCall, 0x0513, 1, "13800138000");
    EXPECT_TRUE(Logged("+CLIP: dest =13800138000\n", "response"));
}

TEST_F(Routing, ClipWithoutClosingQuoteIsZero) {
    Route("+CLIP: \"138");
    ExpectReport(kCall, 0x0513, 1, "0");
}

TEST_F(Routing, ClipWithoutNumberIsEmpty) {
    Route("+CLIP: ,129");
    ExpectReport(kCall, 0x0513, 1, "");
    Route("+CLIP: \"\",129");
    ExpectReport(kCall, 0x0513, 1, "");
    ExpectDropped("+CLIP:\"1\"");
}

TEST_F(Routing, ClipNumberIsReadBehindTheName) {
    Route("\"9\"+CLIP: \"1\",129,\"2\"");
    ExpectReport(kCall, 0x0513, 1, "1");
}

TEST_F(Routing, ClipNumberOfAnyLength) {
    const std::string number(634 - 8, '5');
    Route("+CLIP: \"" + number);
    ExpectReport(kCall, 0x0513, 1, "0");
    Route("+CLIP: \"" + number.substr(1) + "\"");
    ExpectReport(kCall, 0x0513, 1, number.substr(1));
}

TEST_F(Routing, Ccwa) {
    ExpectForward("+CCWA: \"138\",129,1", kCall, 0x052C, 1);
    ExpectDropped("+CCWA:1");
}

TEST_F(Routing, VoiceConnectEndsTheRequest) {
    ExpectForwardAndClear("VOICE CONNECT", 0x040D);
    ExpectForward("VOICE CONNEC ANSWER", kCall, 0x040A, 1);
}

TEST_F(Routing, AnswerEndsTheRequest) {
    ExpectForwardAndClear("ANSWER", 0x040A);
    ExpectForwardAndClear("NO ANSWER", 0x040A);
    ExpectForwardAndClear("ANSWER CONNECT", 0x040A);
    ExpectDropped("ANSWE");
}

TEST_F(Routing, ZvconnectIdle) {
    Route("ZVCONNECT: 0");
    EXPECT_EQ(Platform().writes, (std::vector<std::pair<std::string, std::string>>{
                                     {"call_cs_status", "call_idle"}, {"volte_cs_status", "call_idle"}}));
    EXPECT_TRUE(Logged("ZVCONNECT: 0 and cfg set", "response"));
    ExpectNothingSent();
}

TEST_F(Routing, ZvconnectActive) {
    Route("+ZVCONNECT: 1\r\n");
    EXPECT_EQ(Platform().writes,
              (std::vector<std::pair<std::string, std::string>>{{"call_cs_status", "call_active"}}));
    EXPECT_TRUE(Logged("ZVCONNECT: 1 and cfg set", "response"));
    ExpectNothingSent();
}

TEST_F(Routing, ZvconnectActiveOverLte) {
    Route("ZVCONNECT: 2,7");
    EXPECT_EQ(Platform().writes, (std::vector<std::pair<std::string, std::string>>{
                                     {"call_cs_status", "call_active"}, {"volte_cs_status", "call_active"}}));
    EXPECT_TRUE(Logged("ZVCONNECT: 2 and cfg set", "response"));
    ExpectNothingSent();
}

TEST_F(Routing, ZvconnectOtherValuesDoNothing) {
    Pending(0x0604);
    for (const char* text : {"ZVCONNECT: 3", "ZVCONNECT: -1", "ZVCONNECT: x",
                             "ZVCONNECT: ", "ZVCONNECT: 4294967296", "ZVCONNECT: \"1\""})
        ExpectDropped(text);
    EXPECT_FALSE(LoggedPart("cfg set"));
    EXPECT_FALSE(Idle());
}

TEST_F(Routing, ConnectEndsTheRequest) {
    ExpectForwardAndClear("CONNECT", 0x040D);
    ExpectForwardAndClear("ZVCONNECT:1", 0x040D);  // the row before wants the blank
    ExpectDropped("CONNEC");
}

TEST_F(Routing, Hangup) {
    Pending(0x0604);
    g_atd_warting = 1;
    ExpectForward("HANGUP: 1", kCall, 0x0408, 1);
    EXPECT_FALSE(Idle());
    EXPECT_EQ(g_atd_warting, 1U);
    ExpectDropped("HANGUP");
}

}  // namespace
