#include "checks/unit/routing_vectors.h"

// Reports that carry records: messages, network, connection, SIM.

namespace {

using namespace routing;

// --- rows 23 and 24: class messages and voice mail -------------------------------------------------------

TEST_F(Routing, ZclasCarriesLengthAndPdu) {
    ExpectRecord("+ZCLAS: 26,\"00AABB\"", kSms, 0x0521, 1, ReportBytes().Int(26).Text("00AABB", 500));
    ExpectRecord("+ZCLAS: 26\r\n00AABB\r\n", kSms, 0x0521, 1, ReportBytes().Int(26).Text("00AABB", 500));
    ExpectRecord("+ZCLAS: 26,\"a b\tc\"", kSms, 0x0521, 1, ReportBytes().Int(26).Text("a b\tc", 500));
    ExpectRecord("+ZCLAS: 26,\"\"", kSms, 0x0521, 1, ReportBytes().Int(26).Text("", 500));
    ExpectRecord("+ZCLAS: x", kSms, 0x0521, 1, ReportBytes().Zeros(504));
    ExpectDropped("+ZCLAS:26");
}

TEST_F(Routing, ZclasPduIsCutToItsField) {
    for (size_t length : {size_t{499}, size_t{500}, size_t{620}}) {
        const std::string pdu(length, 'A');
        ExpectRecord("+ZCLAS: 1," + pdu, kSms, 0x0521, 1, ReportBytes().Int(1).Text(pdu.substr(0, 499), 500));
    }
}

TEST_F(Routing, ZvmailCarriesItsFlag) {
    ExpectRecord("+ZVMAIL: 1", kSms, 0x0118, 1, ReportBytes().Int(1));
    ExpectRecord("ZVMAIL: 0", kSms, 0x0118, 1, ReportBytes().Int(0));
    ExpectRecord("ZVMAIL: \"2\"", kSms, 0x0118, 1, ReportBytes().Int(2));
    ExpectRecord("ZVMAIL: x", kSms, 0x0118, 1, ReportBytes().Int(0));
    ExpectDropped("ZVMAIL:1");
}

// --- rows 25 to 28: the end of something -----------------------------------------------------------------

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

TEST_F(Routing, OkInsideAnAnswerDoesNotClear) {
    // A report that stood inside an answer can hold the word; the answer is still coming.
    Pending(0x0604);
    Route("OK", {.may_prompt = false, .may_clear = false});
    ExpectReport(kCall, 0x0408, 1, "OK");
    EXPECT_FALSE(Idle());
}

// --- rows 29 to 40: network, connection, SIM -------------------------------------------------------------

TEST_F(Routing, HrssilvlCarriesTwoCharacters) {
    ExpectRecord("^HRSSILVL:80", kSim, 0x0550, 1, ReportBytes().Text("80", 8));
    ExpectRecord("^HRSSILVL: 5\r\n", kSim, 0x0550, 1, ReportBytes().Text("5", 8));
    ExpectRecord("^HRSSILVL:123456789", kSim, 0x0550, 1, ReportBytes().Text("12", 8));
    ExpectRecord("^HRSSILVL:\"80\"", kSim, 0x0550, 1, ReportBytes().Text("\"8", 8));  // read as it stands
    ExpectRecord("^HRSSILVL:", kSim, 0x0550, 1, ReportBytes().Zeros(8));
    ExpectForwardAndClear("^HRSSILVL:OK^CONN", 0x0541);
    ExpectDropped("^HRSSILVL");
}

TEST_F(Routing, ZconstatCarriesItsState) {
    ExpectRecord("\r\n+ZCONSTAT: 1,1\r\n", kData, 0x0625, 1, ReportBytes().Int(1));
    EXPECT_TRUE(Logged("ZCONSTAT stat:1", "response"));
    ExpectRecord("+ZCONSTAT: 0", kData, 0x0625, 1, ReportBytes().Int(0));
    ExpectRecord("+ZCONSTAT: -5", kData, 0x0625, 1, ReportBytes().Int(-5));
    ExpectRecord("+ZCONSTAT: \"1\"", kData, 0x0625, 1, ReportBytes().Int(0));  // read as it stands
    ExpectDropped("+ZCONSTAT:1");
    EXPECT_TRUE(Platform().writes.empty());
}

TEST_F(Routing, ZgipdnsCarriesTheAddresses) {
    ExpectRecord("+ZGIPDNS: 1,2,\"IPV4V6\",\"10.0.0.2\",\"10.0.0.1\",\"192.0.2.1\",\"192.0.2.2\"\r\n", kData,
                 0x0627, 1,
                 ReportBytes()
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
                 ReportBytes()
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
                 ReportBytes()
                     .Int(1)
                     .Int(2)
                     .Text("12345678", 10)
                     .Text(full, 60)
                     .Text(full, 60)
                     .Text(full, 60)
                     .Text(full, 60)
                     .Zeros(2));
    ExpectRecord("+ZGIPDNS: 1,2,123456789,b", kData, 0x0627, 1,
                 ReportBytes().Int(1).Int(2).Text("12345678", 10).Text("9", 60).Text("b", 60).Zeros(122));
}

TEST_F(Routing, ZgipdnsWithMissingFields) {
    ExpectRecord("+ZGIPDNS: 1", kData, 0x0627, 1, ReportBytes().Int(1).Zeros(256));
    ExpectRecord("+ZGIPDNS: x,2", kData, 0x0627, 1, ReportBytes().Zeros(260));
}

TEST_F(Routing, ZiccidCarriesTheTextAsItStands) {
    ExpectRecord("+ZICCID: 89860012345678901234\r\n", kSim, 0x0629, 6,
                 ReportBytes().Text("89860012345678901234", 64));
    ExpectRecord("+ZICCID: \"8986\"", kSim, 0x0629, 6, ReportBytes().Text("\"8986\"", 64));
    ExpectRecord("+ZICCID: " + std::string(63, '8'), kSim, 0x0629, 6,
                 ReportBytes().Text(std::string(63, '8'), 64));
    ExpectRecord("+ZICCID: " + std::string(64, '8'), kSim, 0x0629, 6,
                 ReportBytes().Text(std::string(63, '8'), 64));
    ExpectDropped("+ZICCID:8986");
}

TEST_F(Routing, CregQuotedLacAndCell) {
    ExpectRecord("+CREG: 1,\"1A2B\",\"00C3D4E5\"", kSim, 0x052D, 6,
                 ReportBytes().Int(1).Text("1A2B", 16).Text("00C3D4E5", 16));
    ExpectRecord("\r\n+CREG: 0\r\n", kSim, 0x052D, 6, ReportBytes().Int(0).Zeros(32));
    ExpectRecord("+CREG: 1,\"\",\"\"", kSim, 0x052D, 6, ReportBytes().Int(1).Zeros(32));
    ExpectRecord("+CREG: 1," + std::string(15, 'a') + "," + std::string(16, 'b'), kSim, 0x052D, 6,
                 ReportBytes().Int(1).Text(std::string(15, 'a'), 16).Text(std::string(15, 'b'), 16));
    ExpectDropped("+CREG:1");
}

TEST_F(Routing, CregAfterCsregIsRegistration) {
    // +CREG: stands in no other row's literal, +CGREG: and +CEREG: neither.
    ExpectRecord("+CGREG: 1;+CREG: 2", kSim, 0x052D, 6, ReportBytes().Int(2).Zeros(32));
    ExpectRecord("+CEREG: 1;+CGREG: 2", kSim, 0x0553, 6, ReportBytes().Int(2).Zeros(56));
}

TEST_F(Routing, CgregCarriesAllItsFields) {
    ExpectRecord("+CGREG: 1,\"1A2B\",\"00C3D4E5\",7,\"01\",3", kSim, 0x0553, 6,
                 ReportBytes().Int(1).Text("1A2B", 16).Text("00C3D4E5", 16).Int(7).Text("01", 16).Int(3));
    ExpectRecord("+CGREG: 1,\"\",\"c d\",7,\"\",3", kSim, 0x0553, 6,
                 ReportBytes().Int(1).Text("", 16).Text("c d", 16).Int(7).Text("", 16).Int(3));
    ExpectRecord("+CGREG: 2", kSim, 0x0553, 6, ReportBytes().Int(2).Zeros(56));
    ExpectDropped("+CGREG:2");
}

TEST_F(Routing, CeregCarriesAllItsFields) {
    ExpectRecord("+CEREG: 5,\"1A2B\",\"00C3D4E5\",7,4", kSim, 0x0552, 6,
                 ReportBytes().Int(5).Text("1A2B", 16).Text("00C3D4E5", 16).Int(7).Int(4));
    ExpectRecord("+CEREG: 5,\"\",\"x\",7", kSim, 0x0552, 6,
                 ReportBytes().Int(5).Text("", 16).Text("x", 16).Int(7).Int(0));
    ExpectDropped("+CEREG:2");
}

TEST_F(Routing, CeregEmptyFieldDependsOnTheCard) {
    // A module's own modem: the missing cell disappears, so that the next value takes its place.
    Platform().config["data_card_mode"] = "KVX_LTE";
    ExpectRecord("+CEREG: 5,\"1A2B\",,7,4", kSim, 0x0552, 6,
                 ReportBytes().Int(5).Text("1A2B", 16).Text("7", 16).Int(4).Int(0));
    // Other cards: it becomes a 9.
    Platform().config["data_card_mode"] = "other";
    Route("+CEREG: 5,\"1A2B\",,7,4");
    ASSERT_EQ(Queues().sent.size(), 1U);
    const _BK_AT_RES_T response = Queues().sent[0].Response();
    EXPECT_STREQ(reinterpret_cast<const char*>(response.aucParas) + 20, "9");
}

TEST_F(Routing, ZnitzCarriesEightNumbers) {
    ExpectRecord("+ZNITZ: 26,11,21,13,24,15,32,1", kTime, 0x063E, 1,
                 ReportBytes().Int(26).Int(11).Int(21).Int(13).Int(24).Int(15).Int(32).Int(1));
    ExpectRecord("+ZNITZ: \"26\" -1", kTime, 0x063E, 1, ReportBytes().Int(26).Int(-1).Zeros(24));
    ExpectRecord("+ZNITZ: 26/11/21", kTime, 0x063E, 1, ReportBytes().Int(26).Zeros(28));
    ExpectDropped("+ZNITZ:26");
}

TEST_F(Routing, ZupciDisplayTextIsDecoded) {
    ExpectRecord("+ZUPCI: 35,1,2,3,\"hello world\"", kSim, 0x0630, 6,
                 ReportBytes().Int(35).Int(1).Int(2).Int(3).Text("hello world", 512));
    ExpectRecord("+ZUPCI: 35,1,2,3,\"\"", kSim, 0x0630, 6,
                 ReportBytes().Int(35).Int(1).Int(2).Int(3).Text("", 512));
    ExpectRecord("+ZUPCI: 35", kSim, 0x0630, 6, ReportBytes().Int(35).Zeros(524));
}

TEST_F(Routing, ZupciOtherCommandsCarryTheirNumberAlone) {
    ExpectRecord("+ZUPCI: 33,1,2,3,\"hello\"", kSim, 0x0630, 6, ReportBytes().Int(33).Zeros(524));
    ExpectRecord("+ZUPCI: 36,1", kSim, 0x0630, 6, ReportBytes().Int(36).Zeros(524));
    ExpectRecord("+ZUPCI: x", kSim, 0x0630, 6, ReportBytes().Zeros(528));
    ExpectRecord("+ZUPCI: \"35\",1", kSim, 0x0630, 6,
                 ReportBytes().Zeros(528));  // the number is read as it stands
    ExpectDropped("+ZUPCI:35");
}

TEST_F(Routing, ZupciTextIsCutToItsField) {
    const std::string text(600, 't');
    ExpectRecord("+ZUPCI: 35,1,2,3," + text, kSim, 0x0630, 6,
                 ReportBytes().Int(35).Int(1).Int(2).Int(3).Text(text.substr(0, 511), 512));
}

TEST_F(Routing, ZuendIsNotZend) {
    ExpectRecord("+ZUEND: 4", kSim, 0x0632, 6, ReportBytes().Int(4));
    ExpectRecord("+ZUEND: \"4\"", kSim, 0x0632, 6, ReportBytes().Int(4));
    ExpectRecord("+ZEND +ZUEND: 2", kSim, 0x0632, 6, ReportBytes().Int(2));
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

// --- long and crooked texts ------------------------------------------------------------------------------

TEST_F(Routing, TextThatNormalisingLengthensBeyondItsLineIsReadAsItStands) {
    // 600 commas become more than 1023 blanks in module mode, so the line is left alone: "1" is read up to
    // the comma.
    Platform().config["data_card_mode"] = "KVX_LTE";
    const std::string commas(15, ',');
    ExpectRecord("+CREG: 1" + std::string(600, ','), kSim, 0x052D, 6,
                 ReportBytes().Int(1).Text(commas, 16).Text(commas, 16));
}

TEST_F(Routing, LengthenedTextStaysInItsLine) {
    Platform().config["data_card_mode"] = "KVX_LTE";
    ExpectRecord("+CREG: 1" + std::string(400, ',') + "\"1A\",\"2B\"", kSim, 0x052D, 6,
                 ReportBytes().Int(1).Text("1A", 16).Text("2B", 16));
}

TEST_F(Routing, BytesBeyondAsciiAreText) {
    ExpectDropped("\x80\xFF\xFE\xFD");
    ExpectForward("\xFFRING\xFE", kCall, 0x0407, 1);
}

}  // namespace
