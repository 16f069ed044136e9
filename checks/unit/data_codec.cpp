#include <syslog.h>

#include "checks/support/fake_platform.h"
#include "checks/support/log_capture.h"
#include "checks/unit/shapes.h"

// Commands of the data connection and PDP contexts.

namespace {

std::string Context(int32_t cid, const std::string& type, const std::string& apn, const std::string& address,
                    int32_t d_comp, int32_t h_comp) {
    return Bytes()
        .I32(cid)
        .Text(type, 10)
        .Text(apn, 101)
        .Text(address, 33)
        .I32(d_comp)
        .I32(h_comp)
        .Text(std::string(200, 'r'), 200)
        .data;
}

std::string Authentication(int32_t cid, int32_t type, const std::string& text1, const std::string& text2) {
    return Bytes().I32(cid).I32(type).Text(text1, 64).Text(text2, 64).data;
}

}  // namespace

// ---- +CGDCONT
// -------------------------------------------------------------------------------------------

ENCODE_VECTOR(0x0303, Cgdcont, SetWithNameAndAddress) {
    ExpectPrints(0x0303, Context(1, "IP", "internet", "10.0.0.1", 0, 1),
                 "1,\"IP\",\"internet\",\"10.0.0.1\",0,1");
    ExpectPrints(
        0x0303,
        Context(INT32_MIN, std::string(10, 't'), std::string(101, 'a'), std::string(33, 'p'), INT32_MAX, -1),
        "-2147483648,\"" + std::string(10, 't') + "\",\"" + std::string(101, 'a') + "\",\"" +
            std::string(33, 'p') + "\",2147483647,-1");
}
ENCODE_VECTOR(0x0303, Cgdcont, SetWithANameOnly) {
    ExpectPrints(0x0303, Context(11, "IPV6", "internet", "", 22, -33), "11,\"IPV6\",\"internet\",,22,-33");
}
ENCODE_VECTOR(0x0303, Cgdcont, SetWithAnAddressOnly) {
    ExpectPrints(0x0303, Context(12, "IP", "", "10.0.0.1", 23, -34), "12,\"IP\",,\"10.0.0.1\",23,-34");
}
ENCODE_VECTOR(0x0303, Cgdcont, SetWithNeither) {
    ExpectPrints(0x0303, Context(1, "IP", "", "", 0, 0), "1,\"IP\",,,0,0");
    ExpectPrints(0x0303, Context(0, "", "", "", 0, 0), "0,\"\",,,0,0");
    ExpectPrints(0x0303, Context(13, "IP", "", "", 24, -35), "13,\"IP\",,,24,-35");
}
DECODE_VECTOR(0x0303, Cgdcont, SetHasNoParameters) {
    ExpectNoParameters(0x0303, SET);
    ExpectServesOnly(0x0303, {SET, READ});
}
DECODE_VECTOR(0x0303, Cgdcont, ReadLeavesTheLastNumberInTheStore) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        const Decoded got = Decode(0x0303, READ, "1,\"IP\",\"a;b\";2,\"IP\",(\"c\"),(\"d\");5,\"IP\"");
        EXPECT_EQ(got.length, 3564);
        EXPECT_EQ(got.paras.find_first_not_of('\xa5'), std::string::npos) << "the list does not travel";
        EXPECT_EQ(Platform().Get("apn_profile_num"), "5");
        EXPECT_TRUE(
            Logged("Parse_Cgdcont_Res pResLine->strResParas=1,\"IP\",\"a;b\";2,\"IP\",\"c\";\"d\";5,\"IP\"\n",
                   "atdecode"));
        EXPECT_TRUE(Logged("tPara.count=5,apn_profile_num=5\n", "atdecode", LOG_EMERG));
    }
}
TEST(Cgdcont, ReadOfOneLineLeavesTheStoreAlone) {
    StartWith(kModule);
    for (const char* text : {"1,\"IP\",\"internet\"", "", "OK"})
        EXPECT_EQ(Decode(0x0303, READ, text).length, 3564);
    EXPECT_TRUE(Platform().writes.empty());
}
TEST(Cgdcont, ReadDoesNotTakeASemicolonOfATextForTheEndOfALine) {
    StartWith(kModule);
    Decode(0x0303, READ, "1,\"IP\",\"a;b\"");
    EXPECT_TRUE(Platform().writes.empty());
    Decode(0x0303, READ, "1,\"IP\",\"x\";2,\"IP\",\"a;b\"");
    EXPECT_EQ(Platform().Get("apn_profile_num"), "2");
}
TEST(Cgdcont, ReadTakesOneCharacterOnly) {
    StartWith(kModule);
    Decode(0x0303, READ, "1,\"IP\";12,\"IP\"");
    EXPECT_EQ(Platform().Get("apn_profile_num"), "1");
    Decode(0x0303, READ, "1,\"IP\";x");
    EXPECT_EQ(Platform().Get("apn_profile_num"), "x");
    EXPECT_TRUE(Logged("tPara.count=0,apn_profile_num=x\n", "atdecode", LOG_EMERG));
    Decode(0x0303, READ, "1,\"IP\";");
    EXPECT_EQ(Platform().Get("apn_profile_num"), "");
}

// ---- encoders
// -------------------------------------------------------------------------------------------

TEST(DataCommands, WithoutParameters) {
    StartWith(kModule);
    ExpectPrintsNothing(0x060F);
}
TEST(DataReports, AreNotSendable) {
    for (uint16_t id : IdList{0x0627, 0x063B, 0x0625, 0x0626})
        for (uint8_t type : {EXEC, SET, READ, TEST_})
            EXPECT_EQ(Encoded(id, type), "(not sendable)");
}
ENCODE_VECTOR(0x0612, Cgatt, SetPrintsTheState) {
    ExpectPrintsIntegers(0x0612, 1);
}
ENCODE_VECTOR(0x061E, Zeact, SetPrintsTheValue) {
    ExpectPrintsIntegers(0x061E, 1);
}
ENCODE_VECTOR(0x0647, Zdhcplease, SetPrintsTheValue) {
    ExpectPrintsIntegers(0x0647, 1);
}
ENCODE_VECTOR(0x0620, Zgaat, SetPrintsTheValue) {
    ExpectPrintsIntegers(0x0620, 1);
}
ENCODE_VECTOR(0x0623, Zgact, SetPrintsTwoValues) {
    ExpectPrintsIntegers(0x0623, 2);
}
ENCODE_VECTOR(0x0624, Cgact, SetPrintsStateAndContext) {
    ExpectPrintsIntegers(0x0624, 2);
}
ENCODE_VECTOR(0x0628, Qcpbmpref, SetPrintsTheValueAndLogsIt) {
    ExpectPrintsIntegers(0x0628, 1);
    StartWith(kModule);
    Encoded(0x0628, SET, I32(1));
    EXPECT_TRUE(Logged("send AT$QCPBMPREF=1\n", "atencode"));
    ClearLog();
    Encoded(0x0628, SET, "1");
    Encoded(0x0628, READ, I32(1));
    EXPECT_TRUE(LoggedLines().empty());
}
ENCODE_VECTOR(0x0412, Qcpdpimscfge, SetPrintsFourValuesAndLogsThem) {
    ExpectPrintsIntegers(0x0412, 4);
    StartWith(kModule);
    Encoded(0x0412, SET, Integers({1, 2, 3, 4}));
    EXPECT_TRUE(Logged("send AT$QCPDPIMSCFGE=1,2,3,4\n", "atencode"));
}
ENCODE_VECTOR(0x0616, Qcpdpp, SetWithoutAuthenticationNeverPrintsTheTexts) {
    ExpectPrints(0x0616, Authentication(1, 0, "name", "secret"), "1,0");
    ExpectPrints(0x0616, Authentication(INT32_MIN, 0, "", ""), "-2147483648,0");
}
ENCODE_VECTOR(0x0616, Qcpdpp, SetWithAuthentication) {
    ExpectPrints(0x0616, Authentication(1, 2, "name", "secret"), "1,2,\"name\",\"secret\"");
    ExpectPrints(0x0616, Authentication(1, -1, "", ""), "1,-1,\"\",\"\"");
    ExpectPrints(0x0616, Authentication(1, INT32_MAX, std::string(64, 'n'), std::string(64, 's')),
                 "1,2147483647,\"" + std::string(64, 'n') + "\",\"" + std::string(64, 's') + "\"");
}
ENCODE_VECTOR(0x063C, Zflag, SetPrintsTheTextAsGiven) {
    ExpectPrints(0x063C, Bytes().Text("\"usb\"", 12).I32(-5).data, "\"usb\",-5");
    ExpectPrints(0x063C, Bytes().Text("0123456789ab", 12).I32(INT32_MAX).data, "0123456789ab,2147483647");
    ExpectPrints(0x063C, Bytes().Zeros(16).data, ",0");
}
ENCODE_VECTOR(0x061C, Zset, SetWithAValueOfAtLeastOne) {
    ExpectPrints(0x061C, Bytes().Text("mode", 20).I32(1).data, "\"mode\",1");
    ExpectPrints(0x061C, Bytes().Text(std::string(20, 'm'), 20).I32(INT32_MAX).data,
                 "\"" + std::string(20, 'm') + "\",2147483647");
}
ENCODE_VECTOR(0x061C, Zset, SetWithALesserValuePrintsTheTextAlone) {
    for (int32_t value : {0, -1, INT32_MIN})
        ExpectPrints(0x061C, Bytes().Text("mode", 20).I32(value).data, "\"mode\"");
}

// ---- decoders
// -------------------------------------------------------------------------------------------

TEST(DataCommands, WhoseResultSaysEverything) {
    StartWith(kModule);
    for (uint16_t id : IdList{0x060F, 0x0623, 0x0624, 0x0616, 0x061E, 0x0620, 0x0628, 0x0412, 0x0647})
        ExpectServesOnly(id, {});
}
DECODE_VECTOR(0x0612, Cgatt, SetHasNoParameters) {
    ExpectNoParameters(0x0612, SET);
    ExpectServesOnly(0x0612, {SET, READ});
}
DECODE_VECTOR(0x0612, Cgatt, ReadGivesTheStateAsText) {
    StartWith(kModule);
    const auto read = [](const std::string& text) {
        const Decoded got = Decode(0x0612, READ, text);
        EXPECT_EQ(got.length, 4);
        EXPECT_EQ(got.paras[12], '\xa5');
        return got.paras.substr(0, 12);
    };
    EXPECT_EQ(read("1"), Bytes().Text("1", 12).data);
    EXPECT_EQ(read(" 0 "), Bytes().Text("0", 12).data);
    EXPECT_EQ(read("007"), Bytes().Text("7", 12).data);
    EXPECT_EQ(read(""), Bytes().Text("0", 12).data);
    EXPECT_EQ(read("\"1\""), Bytes().Text("0", 12).data);
    EXPECT_EQ(read("99999999999"), Bytes().Text("2147483647", 12).data);
    EXPECT_EQ(read("-99999999999"), Bytes().Text("-2147483648", 12).data);
}
DECODE_VECTOR(0x0625, Zconstat, EveryTypeGivesTheState) {
    ExpectReadsIntegers(0x0625, kEvery, 1, Reading::raw);
}
DECODE_VECTOR(0x0626, Cgev, EveryTypeGivesTheEvent) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        for (uint8_t type : kEvery) {
            EXPECT_EQ(Decode(0x0626, type, "\"NW DETACH\"").Record(), Bytes().Text("NW DETACH", 32).data);
            EXPECT_EQ(Decode(0x0626, type, "NW DETACH").Record(), Bytes().Text("NW", 32).data);
            EXPECT_EQ(Decode(0x0626, type, "\"\"").Record(), Bytes().Zeros(32).data);
            EXPECT_EQ(Decode(0x0626, type, "").Record(), Bytes().Zeros(32).data);
            EXPECT_EQ(Decode(0x0626, type, std::string(31, 'e')).Record(),
                      Bytes().Text(std::string(31, 'e'), 32).data);
            EXPECT_EQ(Decode(0x0626, type, "\"" + std::string(31, 'e') + " \"").Record(),
                      std::string(31, 'e') + " ");
            EXPECT_EQ(Decode(0x0626, type, std::string(33, 'e')).Record(), std::string(32, 'e'));
            EXPECT_EQ(Decode(0x0626, type, "e").paras[32], '\xa5');
        }
    }
}

DECODE_VECTOR(0x063B, Zpbic, EveryTypeGivesTheResult) {
    StartWith(kModule);
    for (uint8_t type : kEvery) {
        EXPECT_EQ(Decode(0x063B, type, "\"1\"").Record(), Integers({1, 0}));
        EXPECT_EQ(Decode(0x063B, type, "99999999999").Record(), Integers({INT32_MAX, 0}));
        EXPECT_EQ(Decode(0x063B, type, "").Record(), Integers({0, 0}));
        EXPECT_EQ(Decode(0x063B, type, "1").paras[8], '\xa5');
    }
}
// Only a comma inside a quoted text survives normalising.
TEST(Zpbic, ACommaInsideQuotesIsRead) {
    StartWith(kModule);
    EXPECT_EQ(Decode(0x063B, 0, "\"1,2\"").Record(), Integers({1, 2}));
    EXPECT_EQ(Decode(0x063B, 0, "\"1 2\"").Record(), Integers({1, 0}));
}
TEST(Pin, ZpbicStopsAtTheFirstComma) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        EXPECT_EQ(Decode(0x063B, 0, "1,2").Record(), Integers({1, 0}));
    }
}
DECODE_VECTOR(0x063C, Zflag, ReadGivesTheDevice) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        EXPECT_EQ(Decode(0x063C, READ, "\"u s b\"").Record(), Bytes().Text("u s b", 12).I32(0).data);
        EXPECT_EQ(Decode(0x063C, READ, "\"\"").Record(), Bytes().Zeros(16).data);
        EXPECT_EQ(Decode(0x063C, READ, "01234567890").Record(), Bytes().Text("01234567890", 12).I32(0).data);
        EXPECT_EQ(Decode(0x063C, READ, "01234567890ab").Record(),
                  Bytes().Text("01234567890", 12).I32(0).data);
        EXPECT_EQ(Decode(0x063C, READ, "").Record(), Bytes().Zeros(16).data);
        EXPECT_EQ(Decode(0x063C, READ, "usb").paras[16], '\xa5');
    }
    ExpectServesOnly(0x063C, {READ});
}
// The width ends a long text before a comma that quotes have kept.
TEST(Zflag, ACommaInsideQuotesBehindALongText) {
    StartWith(kModule);
    EXPECT_EQ(Decode(0x063C, READ, "\"01234567890,5\"").Record(),
              Bytes().Text("01234567890", 12).I32(5).data);
    EXPECT_EQ(Decode(0x063C, READ, "\"01234567890,x\"").Record(),
              Bytes().Text("01234567890", 12).I32(0).data);
    EXPECT_EQ(Decode(0x063C, READ, "\"0123456789,5\"").Record(), Bytes().Text("0123456789,", 12).I32(0).data);
}
TEST(Pin, ZflagStopsAtTheFirstComma) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        EXPECT_EQ(Decode(0x063C, READ, "\"usb\",5").Record(), Bytes().Text("usb", 12).I32(0).data);
        EXPECT_EQ(Decode(0x063C, READ, "usb, 5").Record(), Bytes().Text("usb", 12).I32(0).data);
    }
}
DECODE_VECTOR(0x061C, Zset, SetGivesTextAndValue) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        EXPECT_EQ(Decode(0x061C, SET, "\"m o\",5").Record(), Bytes().Text("m o", 20).I32(5).data);
        EXPECT_EQ(Decode(0x061C, SET, "\"\",5").Record(), Bytes().Zeros(20).I32(5).data);
        EXPECT_EQ(Decode(0x061C, SET, "mode").Record(), Bytes().Text("mode", 20).I32(0).data);
        EXPECT_EQ(Decode(0x061C, SET, std::string(19, 'm') + ",-99999999999").Record(),
                  Bytes().Text(std::string(19, 'm'), 20).I32(INT32_MIN).data);
        EXPECT_EQ(Decode(0x061C, SET, std::string(20, 'm') + ",5").Record(),
                  Bytes().Text(std::string(19, 'm'), 20).I32(0).data);
        EXPECT_EQ(Decode(0x061C, SET, "").Record(), Bytes().Zeros(24).data);
        EXPECT_EQ(Decode(0x061C, SET, "OK,5").Record(), Bytes().Text("OK", 20).I32(5).data);
        EXPECT_EQ(Decode(0x061C, SET, "mode,5").paras[24], '\xa5');
    }
    ExpectServesOnly(0x061C, {SET});
}
TEST(Zset, SetOkIsOnlyLogged) {
    StartWith(kModule);
    EXPECT_TRUE(Decode(0x061C, SET, "OK").Untouched());
    EXPECT_TRUE(Logged("Parse_ZSET_Res pResLine->strResParas=OK", "atdecode"));
}

// ---- +ZGIPDNS
// -------------------------------------------------------------------------------------------

namespace {
std::string Addresses(int32_t cid_num, int32_t cid1) {
    return Bytes().I32(cid_num).I32(cid1).Zeros(252).data;
}
}  // namespace

DECODE_VECTOR(0x0627, Zgipdns, EveryTypeGivesTheFirstNumber) {
    for (uint8_t type : kEvery) {
        StartWith(kModule);
        EXPECT_EQ(Decode(0x0627, type, "7").Record(), Addresses(0, 7));
        EXPECT_EQ(Decode(0x0627, type, "\"-99999999999\"").Record(), Addresses(0, INT32_MIN));
        EXPECT_EQ(Decode(0x0627, type, "").Record(), Addresses(0, 0));
        EXPECT_EQ(Decode(0x0627, type, "7").paras[260], '\xa5');
    }
}
TEST(Pin, ZgipdnsStopsAtTheFirstComma) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        EXPECT_EQ(Decode(0x0627, 0, "1,2,\"IP\",\"10.0.0.2\",\"10.0.0.1\",\"8.8.8.8\",\"8.8.4.4\"").Record(),
                  Addresses(0, 1));
        int logged = 0;
        for (const LogLine& line : LoggedLines())
            logged +=
                line.text ==
                "ZGIPONS====>tPara.cid1=1,tPara.cid_num=0,tPara.gateway=,tPara.PDP_addr=,tPara.PDP_type=,"
                "tPara.primary_dns=,tPara.secondary_dns= \n";
        EXPECT_EQ(logged, 2) << "before and after the texts are restored";
    }
}
// Inside one quoted text commas and blanks survive: the only way to the other fields. The gateway's text
// takes what is left, unless the field ends before it.
TEST(Zgipdns, CommasInsideQuotesAreRead) {
    StartWith(kModule);
    EXPECT_EQ(Decode(0x0627, 0, "\"1,2,g w\"").Record(),
              Bytes().I32(2).I32(1).Zeros(70).Text("g w", 60).Zeros(122).data);
    EXPECT_TRUE(LoggedPart("tPara.gateway=g\xfew,"));
    EXPECT_TRUE(LoggedPart("tPara.gateway=g w,"));
    EXPECT_EQ(Decode(0x0627, 0, "\"1,2," + std::string(70, 'g') + "\"").Record(),
              Bytes().I32(2).I32(1).Zeros(70).Text(std::string(59, 'g'), 60).Zeros(122).data);
    // Each word as long as its field takes, so that the field's width ends it, then the comma.
    const auto word = [](char letter, size_t length) { return std::string(length, letter); };
    EXPECT_EQ(Decode(0x0627, 0,
                     "\"1,2," + word('g', 59) + "," + word('a', 59) + "," + word('t', 9) + "," +
                         word('p', 59) + "," + word('s', 59) + "\"")
                  .Record(),
              Bytes()
                  .I32(2)
                  .I32(1)
                  .Text(word('t', 9), 10)
                  .Text(word('a', 59), 60)
                  .Text(word('g', 59), 60)
                  .Text(word('p', 59), 60)
                  .Text(word('s', 59), 60)
                  .Zeros(2)
                  .data);
}
