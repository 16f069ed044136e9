#include "reports/routing.h"

#include <string.h>
#include <syslog.h>

#include "checks/support/report_vector.h"
#include "records/state.h"
#include "reports/report_records.h"

// One vector for each row of the routing table: the exact bytes that leave, and what the row does not take.

namespace {

constexpr uint16_t kCall = 0x1002;
constexpr uint16_t kSim = 0x1003;
constexpr uint16_t kSms = 0x100a;
constexpr uint16_t kTime = 0x100e;
constexpr uint16_t kToolkit = 0x1019;
constexpr uint16_t kData = 0x1022;

class Routing : public ReportVectors {
  protected:
    // Routes a response with this text; its id and type are 0, as those of a report.
    void Route(const std::string& text, const RouteContext& context = {}, uint16_t id = 0) {
        MSG_BUF message = {};
        _BK_AT_RES_T response = {};
        response.usCmdID = id;
        response.usParaLen = static_cast<uint16_t>(text.size());
        ASSERT_LE(text.size(), sizeof response.aucParas);
        memcpy(response.aucParas, text.data(), text.size());
        memcpy(message.aucDataBuf, &response, sizeof response);
        RouteReport(&message, context);
    }

    // The text goes unchanged to `target`.
    void ExpectForward(const std::string& text, uint16_t target, uint16_t id, uint8_t type) {
        SCOPED_TRACE(text);
        Route(text);
        ExpectReport(target, id, type, text);
    }
    // Forwarded, and the request in flight is gone unless the response stood in an answer.
    void ExpectForwardAndClear(const std::string& text, uint16_t id) {
        SCOPED_TRACE(text);
        Pending(0x0604);
        Route(text);
        ExpectReport(kCall, id, 1, text);
        EXPECT_TRUE(Idle());

        Pending(0x0604);
        const MSG_BUF before = g_at_msg;
        Route(text, {.may_prompt = true, .may_clear = false});
        ExpectReport(kCall, id, 1, text);
        EXPECT_EQ(memcmp(&g_at_msg, &before, sizeof before), 0);
        ClearPendingRequest();
    }
    void ExpectRecord(const std::string& text, uint16_t target, uint16_t id, uint8_t type,
                      const Bytes& record) {
        SCOPED_TRACE(text);
        Route(text);
        ExpectReport(target, id, type, record.str());
    }
    void ExpectDropped(const std::string& text) {
        SCOPED_TRACE(text);
        Route(text);
        ExpectNothingSent();
        EXPECT_EQ(modem_.Written(), "");
        EXPECT_TRUE(Platform().writes.empty());
    }

    static std::string CmgsParas(int32_t length, const std::string& pdu) {
        return Bytes().Int(length).str() + pdu + std::string(500 - std::min<size_t>(500, pdu.size()), '\0');
    }
    static std::string CmgwParas(int32_t length, int32_t status, const std::string& pdu) {
        return Bytes().Int(length).str() + CmgsParas(status, pdu);
    }
};

// --- the frame
// --------------------------------------------------------------------------------------------------------

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
    ExpectReport(kSim, 0x052D, 6, Bytes().Int(5).Zeros(32).str());
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

// --- further lines of +CCFC and +CCWA
// ---------------------------------------------------------------------------------

TEST_F(Routing, AfterACcfcAnswerEveryReportIsAFurtherLine) {
    g_last_atcmd = 0x052B;
    ExpectForward("RING", kCall, 0x052B, 2);
    ExpectForward("+CCFC: 1,1,\"123\",129", kCall, 0x052B, 2);
    ExpectForward("+CREG: 1", kCall, 0x052B, 2);
    ExpectForward("", kCall, 0x052B, 2);
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
    EXPECT_TRUE(Logged("---.>>>>>>>>>>g_last_atcmd == AT_CCWA_CMD", "response"));
}

TEST_F(Routing, AfterAnyOtherAnswerReportsAreRoutedByTheirText) {
    for (uint16_t last : {uint16_t{0x052A}, uint16_t{0x052D}, uint16_t{0x0108}, uint16_t{0}}) {
        g_last_atcmd = last;
        ExpectForward("RING", kCall, 0x0407, 1);
    }
}

// --- rows 1 to 4: SIM refresh and new messages
// ------------------------------------------------------------------------

TEST_F(Routing, ZrefreshCarriesFileIdAndText) {
    ExpectRecord("+ZREFRESH: \"6F07\",\"abc\"", kSms, 0x011A, 1, Bytes().Text("6F07", 36).Text("abc", 36));
    ExpectRecord("ZREFRESH: 1 2", kSms, 0x011A, 1, Bytes().Text("1", 36).Text("2", 36));
}

TEST_F(Routing, ZrefreshTextsAreCutAt32Characters) {
    const std::string full(32, 'a');
    ExpectRecord("ZREFRESH: " + full + ",b", kSms, 0x011A, 1, Bytes().Text(full, 36).Text("b", 36));
    ExpectRecord("ZREFRESH: " + full + "x,b", kSms, 0x011A, 1, Bytes().Text(full, 36).Text("x", 36));
}

TEST_F(Routing, ZrefreshWithoutFieldsIsSentEmpty) {
    ExpectRecord("ZREFRESH: ", kSms, 0x011A, 1, Bytes().Zeros(72));
    ExpectDropped("ZREFRESH:1,2");
}

TEST_F(Routing, CmtiCarriesMemoryAndIndex) {
    ExpectRecord("\r\n+CMTI: \"SM\",8\r\n", kSms, 0x0110, 1, Bytes().Text("SM", 12).Int(8));
    EXPECT_TRUE(Logged("tPara.memory:SM    tPara.index:8 ", "response"));
    ExpectRecord("+CMTI: \"SM\"", kSms, 0x0110, 1, Bytes().Text("SM", 12).Int(0));
    ExpectRecord("+CMTI: \"SM\",99999999999", kSms, 0x0110, 1, Bytes().Text("SM", 12).Int(INT32_MAX));
    ExpectRecord("+CMTI: " + std::string(10, 'm') + " 3", kSms, 0x0110, 1,
                 Bytes().Text(std::string(10, 'm'), 12).Int(3));
    ExpectRecord("+CMTI: " + std::string(11, 'm') + " 3", kSms, 0x0110, 1,
                 Bytes().Text(std::string(10, 'm'), 12).Int(0));
    ExpectDropped("+CMTI:\"SM\",8");
}

TEST_F(Routing, CmtiKeepsTheMarkersOfItsMemory) {
    ExpectRecord("+CMTI: \"\",8", kSms, 0x0110, 1, Bytes().Text("\xFD", 12).Int(8));
    ExpectRecord("+CMTI: \"S M\",8", kSms, 0x0110, 1, Bytes().Text("S\xFEM", 12).Int(8));
}

TEST_F(Routing, ZvmtiCarriesMemoryAndIndex) {
    ExpectRecord("+ZVMTI: \"ME\",3", kSms, 0x0117, 1, Bytes().Text("ME", 12).Int(3));
    ExpectDropped("+ZVMT: \"ME\",3");
}

TEST_F(Routing, CdsiCarriesMemoryAndIndex) {
    ExpectRecord("+CDSI: \"SR\",51", kSms, 0x0112, 1, Bytes().Text("SR", 12).Int(51));
    ExpectDropped("+CDS: 26");
}

TEST_F(Routing, EarlierRowWinsWhereverItStands) {
    ExpectRecord("+CMTI: \"SM\",8;ZREFRESH: a b", kSms, 0x011A, 1, Bytes().Text("a", 36).Text("b", 36));
    ExpectRecord("+CDSI: \"SR\",1;+ZVMTI: \"ME\",2", kSms, 0x0117, 1, Bytes().Text("ME", 12).Int(2));
}

TEST_F(Routing, RecordIsReadFromTheFirstPlaceOfTheLiteralOutsideQuotes) {
    ExpectRecord("\"+CREG: 9\",+CREG: 1", kSim, 0x052D, 6, Bytes().Int(1).Zeros(32));
    ExpectRecord("+CREG: 1 ;+CREG: 2", kSim, 0x052D, 6, Bytes().Int(1).Text(";+CREG:", 16).Text("2", 16));
}

// --- rows 5 to 7: messages being sent
// ---------------------------------------------------------------------------------

TEST_F(Routing, ResponseOfCmgsIsForwarded) {
    Pending(0x0108, CmgsParas(3, "AABBCC"));
    Route("17", {}, 0x0108);
    ExpectReport(kSms, 0x0108, 2, "17");
    EXPECT_EQ(modem_.Written(), "");
    // The new-message rows stand before it.
    Route("+CMTI: \"SM\",8", {}, 0x0108);
    ExpectReport(kSms, 0x0110, 1, Bytes().Text("SM", 12).Int(8).str());
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
    Pending(0x0108, Bytes().Int(1).str() + std::string(628, 'B'));
    Route("> ");
    EXPECT_EQ(modem_.Written(), std::string(500, 'B') + "\x1A");
    Pending(0x0108, CmgsParas(1, std::string(501, 'B')));
    Route("> ");
    EXPECT_EQ(modem_.Written(), std::string(500, 'B') + "\x1A");
    Pending(0x010A, Bytes().Int(1).Int(2).str() + std::string(624, 'B'));
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
    ExpectRecord("+CMTI: \"SM\",8", kSms, 0x0110, 1, Bytes().Text("SM", 12).Int(8));
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

TEST_F(Routing, PromptThatCannotBeAnsweredIsLogged) {
    Pending(0x0108, CmgsParas(1, "AA"));
    modem_.Break();
    Route("> ");
    EXPECT_TRUE(Logged("[error]:Send AT command Error!error code:42505", "at_server"));
    EXPECT_FALSE(Idle());
}

// --- rows 8 to 22: calls
// ----------------------------------------------------------------------------------------------

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

// --- rows 23 and 24: class messages and voice mail
// --------------------------------------------------------------------

TEST_F(Routing, ZclasCarriesLengthAndPdu) {
    ExpectRecord("+ZCLAS: 26,\"00AABB\"", kSms, 0x0521, 1, Bytes().Int(26).Text("00AABB", 500));
    ExpectRecord("+ZCLAS: 26\r\n00AABB\r\n", kSms, 0x0521, 1, Bytes().Int(26).Text("00AABB", 500));
    ExpectRecord("+ZCLAS: 26,\"a b\tc\"", kSms, 0x0521, 1, Bytes().Int(26).Text("a b\tc", 500));
    ExpectRecord("+ZCLAS: 26,\"\"", kSms, 0x0521, 1, Bytes().Int(26).Text("", 500));
    ExpectRecord("+ZCLAS: x", kSms, 0x0521, 1, Bytes().Zeros(504));
    ExpectDropped("+ZCLAS:26");
}

TEST_F(Routing, ZclasPduIsCutToItsField) {
    for (size_t length : {size_t{499}, size_t{500}, size_t{620}}) {
        const std::string pdu(length, 'A');
        ExpectRecord("+ZCLAS: 1," + pdu, kSms, 0x0521, 1, Bytes().Int(1).Text(pdu.substr(0, 499), 500));
    }
}

TEST_F(Routing, ZvmailCarriesItsFlag) {
    ExpectRecord("+ZVMAIL: 1", kSms, 0x0118, 1, Bytes().Int(1));
    ExpectRecord("ZVMAIL: 0", kSms, 0x0118, 1, Bytes().Int(0));
    ExpectRecord("ZVMAIL: \"2\"", kSms, 0x0118, 1, Bytes().Int(2));
    ExpectRecord("ZVMAIL: x", kSms, 0x0118, 1, Bytes().Int(0));
    ExpectDropped("ZVMAIL:1");
}

// --- rows 25 to 28: the end of something
// ------------------------------------------------------------------------------

TEST_F(Routing, ConnEndsTheRequest) {
    ExpectForwardAndClear("^CONN:1,0", 0x0541);
    ExpectDropped("^CON");
}

TEST_F(Routing, CendEndsTheRequest) {
    ExpectForwardAndClear("^CEND:1,0,104", 0x0542);
    ExpectForwardAndClear("^CEND:1;^CONN:1", 0x0541);
    ExpectDropped("^CEN");
}

TEST_F(Routing, ZcpiEndsTheRequest) {
    ExpectForwardAndClear("+ZCPI: 1,2", 0x055E);
    ExpectForwardAndClear("+ZCPI OK", 0x055E);
    ExpectDropped("+ZCP: 1");
}

TEST_F(Routing, OkOfTheProbeGoesToTheSimModule) {
    Pending(0x0001);
    g_atd_warting = 1;
    ExpectForward("OK", kSim, 0x0001, 1);
    EXPECT_TRUE(Idle());
    EXPECT_EQ(g_atd_warting, 1U);
}

TEST_F(Routing, OkOfNobodyIsAHangUp) {
    g_atd_warting = 1;
    ExpectForward("OK", kCall, 0x0408, 1);
    EXPECT_EQ(g_atd_warting, 0U);
    EXPECT_TRUE(Idle());
    Pending(0x0604);
    g_atd_warting = 1;
    ExpectForward("\r\nOK\r\n", kCall, 0x0408, 1);
    EXPECT_EQ(g_atd_warting, 0U);
    EXPECT_TRUE(Idle());
    ExpectDropped("O");
}

TEST_F(Routing, OkClearsWhateverTheContextSays) {
    Pending(0x0604);
    Route("OK", {.may_prompt = false, .may_clear = false});
    ExpectReport(kCall, 0x0408, 1, "OK");
    EXPECT_TRUE(Idle());
}

// --- rows 29 to 40: network, connection, SIM
// --------------------------------------------------------------------------

TEST_F(Routing, HrssilvlCarriesTwoCharacters) {
    ExpectRecord("^HRSSILVL:80", kSim, 0x0550, 1, Bytes().Text("80", 8));
    ExpectRecord("^HRSSILVL: 5\r\n", kSim, 0x0550, 1, Bytes().Text("5", 8));
    ExpectRecord("^HRSSILVL:123456789", kSim, 0x0550, 1, Bytes().Text("12", 8));
    ExpectRecord("^HRSSILVL:\"80\"", kSim, 0x0550, 1, Bytes().Text("\"8", 8));  // read as it stands
    ExpectRecord("^HRSSILVL:", kSim, 0x0550, 1, Bytes().Zeros(8));
    ExpectForwardAndClear("^HRSSILVL:OK^CONN", 0x0541);
    ExpectDropped("^HRSSILVL");
}

TEST_F(Routing, ZconstatCarriesItsState) {
    ExpectRecord("\r\n+ZCONSTAT: 1,1\r\n", kData, 0x0625, 1, Bytes().Int(1));
    EXPECT_TRUE(Logged("ZCONSTAT stat:1", "response"));
    ExpectRecord("+ZCONSTAT: 0", kData, 0x0625, 1, Bytes().Int(0));
    ExpectRecord("+ZCONSTAT: -5", kData, 0x0625, 1, Bytes().Int(-5));
    ExpectRecord("+ZCONSTAT: \"1\"", kData, 0x0625, 1, Bytes().Int(0));  // read as it stands
    ExpectDropped("+ZCONSTAT:1");
    EXPECT_TRUE(Platform().writes.empty());
}

TEST_F(Routing, ZgipdnsCarriesTheAddresses) {
    ExpectRecord("+ZGIPDNS: 1,2,\"IPV4V6\",\"10.0.0.2\",\"10.0.0.1\",\"192.0.2.1\",\"192.0.2.2\"\r\n", kData,
                 0x0627, 1,
                 Bytes()
                     .Int(1)
                     .Int(2)
                     .Text("IPV4V6", 10)
                     .Text("10.0.0.2", 60)
                     .Text("10.0.0.1", 60)
                     .Text("192.0.2.1", 60)
                     .Text("192.0.2.2", 60)
                     .Zeros(2));
    ExpectDropped("+ZGIPDNS:1,2");
}

TEST_F(Routing, ZgipdnsEmptyAndBlankTextsAreRestored) {
    ExpectRecord("+ZGIPDNS: 1,2,\"\",\"a b\",\"\",\"c\td\",\"\"", kData, 0x0627, 1,
                 Bytes()
                     .Int(1)
                     .Int(2)
                     .Text("", 10)
                     .Text("a b", 60)
                     .Text("", 60)
                     .Text("c\td", 60)
                     .Text("", 60)
                     .Zeros(2));
}

TEST_F(Routing, ZgipdnsTextsAreCutToTheirFields) {
    const std::string full(59, 'a');
    ExpectRecord("+ZGIPDNS: 1,2,12345678," + full + "," + full + "," + full + "," + full + "xyz", kData,
                 0x0627, 1,
                 Bytes()
                     .Int(1)
                     .Int(2)
                     .Text("12345678", 10)
                     .Text(full, 60)
                     .Text(full, 60)
                     .Text(full, 60)
                     .Text(full, 60)
                     .Zeros(2));
    ExpectRecord("+ZGIPDNS: 1,2,123456789,b", kData, 0x0627, 1,
                 Bytes().Int(1).Int(2).Text("12345678", 10).Text("9", 60).Text("b", 60).Zeros(122));
}

TEST_F(Routing, ZgipdnsWithMissingFields) {
    ExpectRecord("+ZGIPDNS: 1", kData, 0x0627, 1, Bytes().Int(1).Zeros(256));
    ExpectRecord("+ZGIPDNS: x,2", kData, 0x0627, 1, Bytes().Zeros(260));
}

TEST_F(Routing, ZiccidCarriesTheTextAsItStands) {
    ExpectRecord("+ZICCID: 89860012345678901234\r\n", kSim, 0x0629, 6,
                 Bytes().Text("89860012345678901234", 64));
    ExpectRecord("+ZICCID: \"8986\"", kSim, 0x0629, 6, Bytes().Text("\"8986\"", 64));
    ExpectRecord("+ZICCID: " + std::string(63, '8'), kSim, 0x0629, 6, Bytes().Text(std::string(63, '8'), 64));
    ExpectRecord("+ZICCID: " + std::string(64, '8'), kSim, 0x0629, 6, Bytes().Text(std::string(63, '8'), 64));
    ExpectDropped("+ZICCID:8986");
}

TEST_F(Routing, CregQuotedLacAndCell) {
    ExpectRecord("+CREG: 1,\"1A2B\",\"00C3D4E5\"", kSim, 0x052D, 6,
                 Bytes().Int(1).Text("1A2B", 16).Text("00C3D4E5", 16));
    ExpectRecord("\r\n+CREG: 0\r\n", kSim, 0x052D, 6, Bytes().Int(0).Zeros(32));
    ExpectRecord("+CREG: 1,\"\",\"\"", kSim, 0x052D, 6, Bytes().Int(1).Zeros(32));
    ExpectRecord("+CREG: 1," + std::string(15, 'a') + "," + std::string(16, 'b'), kSim, 0x052D, 6,
                 Bytes().Int(1).Text(std::string(15, 'a'), 16).Text(std::string(15, 'b'), 16));
    ExpectDropped("+CREG:1");
}

TEST_F(Routing, CregAfterCsregIsRegistration) {
    // +CREG: stands in no other row's literal, +CGREG: and +CEREG: neither.
    ExpectRecord("+CGREG: 1;+CREG: 2", kSim, 0x052D, 6, Bytes().Int(2).Zeros(32));
    ExpectRecord("+CEREG: 1;+CGREG: 2", kSim, 0x0553, 6, Bytes().Int(2).Zeros(56));
}

TEST_F(Routing, CgregCarriesAllItsFields) {
    ExpectRecord("+CGREG: 1,\"1A2B\",\"00C3D4E5\",7,\"01\",3", kSim, 0x0553, 6,
                 Bytes().Int(1).Text("1A2B", 16).Text("00C3D4E5", 16).Int(7).Text("01", 16).Int(3));
    ExpectRecord("+CGREG: 1,\"\",\"c d\",7,\"\",3", kSim, 0x0553, 6,
                 Bytes().Int(1).Text("", 16).Text("c d", 16).Int(7).Text("", 16).Int(3));
    ExpectRecord("+CGREG: 2", kSim, 0x0553, 6, Bytes().Int(2).Zeros(56));
    ExpectDropped("+CGREG:2");
}

TEST_F(Routing, CeregCarriesAllItsFields) {
    ExpectRecord("+CEREG: 5,\"1A2B\",\"00C3D4E5\",7,4", kSim, 0x0552, 6,
                 Bytes().Int(5).Text("1A2B", 16).Text("00C3D4E5", 16).Int(7).Int(4));
    ExpectRecord("+CEREG: 5,\"\",\"x\",7", kSim, 0x0552, 6,
                 Bytes().Int(5).Text("", 16).Text("x", 16).Int(7).Int(0));
    ExpectDropped("+CEREG:2");
}

TEST_F(Routing, CeregEmptyFieldDependsOnTheCard) {
    // A module's own modem: the missing cell disappears, so that the next value takes its place.
    Platform().config["data_card_mode"] = "KVX_LTE";
    ExpectRecord("+CEREG: 5,\"1A2B\",,7,4", kSim, 0x0552, 6,
                 Bytes().Int(5).Text("1A2B", 16).Text("7", 16).Int(4).Int(0));
    // Other cards: it becomes a 9.
    Platform().config["data_card_mode"] = "other";
    Route("+CEREG: 5,\"1A2B\",,7,4");
    ASSERT_EQ(Queues().sent.size(), 1U);
    const _BK_AT_RES_T response = Queues().sent[0].Response();
    EXPECT_STREQ(reinterpret_cast<const char*>(response.aucParas) + 20, "9");
}

TEST_F(Routing, ZnitzCarriesEightNumbers) {
    ExpectRecord("+ZNITZ: 26,11,21,13,24,15,32,1", kTime, 0x063E, 1,
                 Bytes().Int(26).Int(11).Int(21).Int(13).Int(24).Int(15).Int(32).Int(1));
    ExpectRecord("+ZNITZ: \"26\" -1", kTime, 0x063E, 1, Bytes().Int(26).Int(-1).Zeros(24));
    ExpectRecord("+ZNITZ: 26/11/21", kTime, 0x063E, 1, Bytes().Int(26).Zeros(28));
    ExpectDropped("+ZNITZ:26");
}

TEST_F(Routing, ZupciDisplayTextIsDecoded) {
    ExpectRecord("+ZUPCI: 35,1,2,3,\"hello world\"", kSim, 0x0630, 6,
                 Bytes().Int(35).Int(1).Int(2).Int(3).Text("hello world", 512));
    ExpectRecord("+ZUPCI: 35,1,2,3,\"\"", kSim, 0x0630, 6,
                 Bytes().Int(35).Int(1).Int(2).Int(3).Text("", 512));
    ExpectRecord("+ZUPCI: 35", kSim, 0x0630, 6, Bytes().Int(35).Zeros(524));
}

TEST_F(Routing, ZupciOtherCommandsCarryTheirNumberAlone) {
    ExpectRecord("+ZUPCI: 33,1,2,3,\"hello\"", kSim, 0x0630, 6, Bytes().Int(33).Zeros(524));
    ExpectRecord("+ZUPCI: 36,1", kSim, 0x0630, 6, Bytes().Int(36).Zeros(524));
    ExpectRecord("+ZUPCI: x", kSim, 0x0630, 6, Bytes().Zeros(528));
    ExpectRecord("+ZUPCI: \"35\",1", kSim, 0x0630, 6, Bytes().Zeros(528));  // the number is read as it stands
    ExpectDropped("+ZUPCI:35");
}

TEST_F(Routing, ZupciTextIsCutToItsField) {
    const std::string text(600, 't');
    ExpectRecord("+ZUPCI: 35,1,2,3," + text, kSim, 0x0630, 6,
                 Bytes().Int(35).Int(1).Int(2).Int(3).Text(text.substr(0, 511), 512));
}

TEST_F(Routing, ZuendIsNotZend) {
    ExpectRecord("+ZUEND: 4", kSim, 0x0632, 6, Bytes().Int(4));
    ExpectRecord("+ZUEND: \"4\"", kSim, 0x0632, 6, Bytes().Int(4));
    ExpectRecord("+ZEND +ZUEND: 2", kSim, 0x0632, 6, Bytes().Int(2));
    ExpectDropped("+ZUEND:4");
}

TEST_F(Routing, Zend) {
    ExpectForward("+ZEND", kToolkit, 0x0708, 1);
    ExpectForward("+ZEND: 0;+ZSIMREFRESH", kToolkit, 0x0708, 1);
    ExpectDropped("ZEND");
}

TEST_F(Routing, Zsimrefresh) {
    ExpectForward("+ZSIMREFRESH: 1", kSim, 0x0646, 6);
    ExpectDropped("+ZSIMREFRES");
}

// --- long and crooked texts
// -------------------------------------------------------------------------------------------

TEST_F(Routing, TextThatNormalisingLengthensBeyondItsLineIsReadAsItStands) {
    // 600 commas become more than 1023 blanks in module mode, so the line is left alone: "1" is read up to
    // the comma.
    Platform().config["data_card_mode"] = "KVX_LTE";
    const std::string commas(15, ',');
    ExpectRecord("+CREG: 1" + std::string(600, ','), kSim, 0x052D, 6,
                 Bytes().Int(1).Text(commas, 16).Text(commas, 16));
}

TEST_F(Routing, LengthenedTextStaysInItsLine) {
    Platform().config["data_card_mode"] = "KVX_LTE";
    ExpectRecord("+CREG: 1" + std::string(400, ',') + "\"1A\",\"2B\"", kSim, 0x052D, 6,
                 Bytes().Int(1).Text("1A", 16).Text("2B", 16));
}

TEST_F(Routing, BytesBeyondAsciiAreText) {
    ExpectDropped("\x80\xFF\xFE\xFD");
    ExpectForward("\xFFRING\xFE", kCall, 0x0407, 1);
}

}  // namespace
