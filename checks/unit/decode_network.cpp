#include <syslog.h>

#include "checks/support/fake_platform.h"
#include "checks/support/log_capture.h"
#include "checks/unit/shapes.h"

// Decoders of network selection and registration beyond those in decode_vectors.cpp.

TEST(NetworkCommands, WhoseResultSaysEverything) {
    StartWith(kModule);
    for (uint16_t id : IdList{0x0522, 0x0523, 0x052A, 0x0547, 0x050F, 0x055C})
        ExpectServesOnly(id, {});
}

DECODE_VECTOR(0x0501, Zpcb, ReadGivesTheText) {
    ExpectReadsTexts(0x0501, {READ}, {64});
    ExpectServesOnly(0x0501, {READ});
}
DECODE_VECTOR(0x0508, Zdnt, ReadGivesTheText) {
    ExpectReadsTexts(0x0508, {READ}, {64});
    ExpectServesOnly(0x0508, {READ});
}
DECODE_VECTOR(0x0507, Zdon, ReadGivesSevenTexts) {
    ExpectReadsTexts(0x0507, {READ}, {64, 32, 32, 64, 64, 64, 32});
    ExpectServesOnly(0x0507, {READ});
    EXPECT_EQ(Decode(0x0507, READ, "x").length, 380);
}
DECODE_VECTOR(0x0530, Zops, ReadGivesSevenTexts) {
    ExpectReadsTexts(0x0530, {READ}, {64, 32, 32, 64, 64, 64, 32});
    ExpectServesOnly(0x0530, {READ});
    EXPECT_EQ(Decode(0x0530, READ, "x").length, 380);
}
DECODE_VECTOR(0x050B, Zpas, ReadGivesTwoTexts) {
    ExpectReadsTexts(0x050B, {READ}, {64, 32});
    ExpectServesOnly(0x050B, {READ});
    EXPECT_EQ(Decode(0x050B, READ, "\"LTE\",\"CS_PS\"").Record(),
              Bytes().Text("LTE", 68).Text("CS_PS", 36).data);
}
// An empty field disappears between the words with the module's own data cards and is a 9 with others.
TEST(Zpas, AnEmptyFieldBetween) {
    StartWith(kModule);
    EXPECT_EQ(Decode(0x050B, READ, "LTE,,PS").Record(), Bytes().Text("LTE", 68).Text("PS", 36).data);
    StartWith(kOtherCard);
    EXPECT_EQ(Decode(0x050B, READ, "LTE,,PS").Record(), Bytes().Text("LTE", 68).Text("9", 36).data);
}
TEST(Zpas, AFirstTextLongerThanItsWidthRunsIntoTheSecond) {
    StartWith(kModule);
    EXPECT_EQ(Decode(0x050B, READ, "\"" + std::string(64, 'a') + "bc\",\"PS\"").Record(),
              Bytes().Text(std::string(64, 'a'), 68).Text("bc", 36).data);
}
DECODE_VECTOR(0x051D, Zpasr, EveryTypeGivesTheText) {
    ExpectReadsTexts(0x051D, kEvery, {64});
}
DECODE_VECTOR(0x051E, Zdonr, EveryTypeGivesFiveTexts) {
    ExpectReadsTexts(0x051E, kEvery, {64, 32, 32, 32, 32});
    EXPECT_EQ(Decode(0x051E, 0, "x").length, 212);
}
DECODE_VECTOR(0x0529, Zmacr, EveryTypeGivesTheText) {
    StartWith(kModule);
    for (uint8_t type : kEvery) {
        EXPECT_EQ(Decode(0x0529, type, "00:11:22:33:44:55").Record(),
                  Bytes().Text("00:11:22:33:44:55", 32).data);
        EXPECT_EQ(Decode(0x0529, type, "\"a b\",1").Record(), Bytes().Text("a b", 32).data);
        EXPECT_EQ(Decode(0x0529, type, std::string(31, 'm')).Record(),
                  Bytes().Text(std::string(31, 'm'), 32).data);
        EXPECT_EQ(Decode(0x0529, type, std::string(32, 'm')).Record(),
                  Bytes().Text(std::string(31, 'm'), 32).data);
        EXPECT_EQ(Decode(0x0529, type, "").Record(), Bytes().Zeros(32).data);
        EXPECT_EQ(Decode(0x0529, type, "m").paras[32], '\xa5');
    }
}
DECODE_VECTOR(0x0509, Zsnt, ReadGivesThreeValues) {
    ExpectReadsIntegers(0x0509, {READ}, 3, Reading::raw);
    ExpectServesOnly(0x0509, {READ});
}
DECODE_VECTOR(0x0520, Zoprt, ReadGivesTheValue) {
    ExpectReadsIntegers(0x0520, {READ}, 1, Reading::raw);
    ExpectServesOnly(0x0520, {READ});
}
DECODE_VECTOR(0x0637, Zcni, ExecAndReadGiveTheValue) {
    ExpectReadsIntegers(0x0637, kExecAndRead, 1, Reading::raw);
    ExpectServesOnly(0x0637, kExecAndRead);
}
DECODE_VECTOR(0x063E, Znitz, EveryTypeGivesEightValues) {
    ExpectReadsIntegers(0x063E, kEvery, 8, Reading::raw);
}
DECODE_VECTOR(0x0526, Zlacellid, SixHexadecimalValues) {
    StartWith(kModule);
    for (uint8_t type : kExecAndRead) {
        EXPECT_EQ(Decode(0x0526, type, "1A,ff,0x10,0,FFFFFFFF,7").Record(),
                  Integers({0x1a, 0xff, 0x10, 0, -1, 7}));
        EXPECT_EQ(Decode(0x0526, type, "1FFFFFFFF,2").Record(), Integers({-1, 2, 0, 0, 0, 0}));
        EXPECT_EQ(Decode(0x0526, type, "1A,,3").Record(), Integers({0x1a, 0, 0, 0, 0, 0}));
        EXPECT_EQ(Decode(0x0526, type, "").Record(), Integers({0, 0, 0, 0, 0, 0}));
        EXPECT_EQ(Decode(0x0526, type, "1,2,3,4,5,6,7").paras[24], '\xa5');
    }
    ExpectServesOnly(0x0526, kExecAndRead);
}
DECODE_VECTOR(0x0605, Sysinfo, ExecGivesSevenValues) {
    ExpectReadsIntegers(0x0605, {EXEC}, 7, Reading::normalised);
    ExpectServesOnly(0x0605, {EXEC});
    StartWith(kModule);
    Decode(0x0605, EXEC, "2,3,0,17,1,0,6");
    EXPECT_TRUE(
        Logged("srv_status=2,srv_domain=3,roam_status=0,sys_mode=17,sim_state=1,sys_submode=6", "atdecode"));
}
TEST(Sysinfo, AnEmptySixthValue) {
    StartWith(kModule);
    EXPECT_EQ(Decode(0x0605, EXEC, "2,3,0,5,1,,4").Record(), Integers({2, 3, 0, 5, 1, 4, 0}));
    StartWith(kOtherCard);
    EXPECT_EQ(Decode(0x0605, EXEC, "2,3,0,5,1,,4").Record(), Integers({2, 3, 0, 5, 1, 9, 4}));
    EXPECT_TRUE(Logged("double ',' is here!", "atpublic"));
}
DECODE_VECTOR(0x054E, Cind, SetHasNoParameters) {
    ExpectNoParameters(0x054E, SET);
}
DECODE_VECTOR(0x054E, Cind, ReadGivesEightIndicators) {
    ExpectReadsIntegers(0x054E, {READ}, 8, Reading::normalised);
    ExpectServesOnly(0x054E, {SET, READ});
}
DECODE_VECTOR(0x0550, Hrssilvl, EveryTypeGivesTheText) {
    StartWith(kModule);
    for (uint8_t type : kEvery) {
        EXPECT_EQ(Decode(0x0550, type, "80").Record(), Bytes().Text("80", 8).data);
        EXPECT_EQ(Decode(0x0550, type, "\"8 0\"").Record(), Bytes().Text("8 0", 8).data);
        EXPECT_EQ(Decode(0x0550, type, "1234567").Record(), Bytes().Text("1234567", 8).data);
        EXPECT_EQ(Decode(0x0550, type, "12345678").Record(), Bytes().Text("1234567", 8).data);
        EXPECT_EQ(Decode(0x0550, type, "").Record(), Bytes().Zeros(8).data);
        EXPECT_EQ(Decode(0x0550, type, "80").paras[8], '\xa5');
    }
}
DECODE_VECTOR(0x0614, Nwstate, TwoValuesAroundThreeTexts) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        for (uint8_t type : kExecAndRead) {
            EXPECT_EQ(Decode(0x0614, type, "80,\"460 01\",\"LTE\",\"\",-1").Record(),
                      Bytes().I32(80).Text("460 01", 16).Text("LTE", 16).Zeros(16).I32(-1).data);
            EXPECT_EQ(Decode(0x0614, type, "80,0123456789abcde,b,0123456789abcde,99999999999").Record(),
                      Bytes()
                          .I32(80)
                          .Text("0123456789abcde", 16)
                          .Text("b", 16)
                          .Text("0123456789abcde", 16)
                          .I32(INT32_MAX)
                          .data);
            EXPECT_EQ(Decode(0x0614, type, "80,0123456789abcdef,b").Record(),
                      Bytes().I32(80).Text("0123456789abcde", 16).Text("f", 16).Text("b", 16).I32(0).data);
            EXPECT_EQ(Decode(0x0614, type, "80,\"46001\"").Record(),
                      Bytes().I32(80).Text("46001", 16).Zeros(36).data);
            EXPECT_EQ(Decode(0x0614, type, "none").Record(), Bytes().Zeros(56).data);
            EXPECT_EQ(Decode(0x0614, type, "80").paras[56], '\xa5');
        }
    }
    ExpectServesOnly(0x0614, kExecAndRead);
}

// ---- +ZROAM: the whole text, quotes and all
// -------------------------------------------------------------------------------------------

DECODE_VECTOR(0x0617, Zroam, SetAndReadGiveTheText) {
    ExpectCopiesTheText(0x0617, {SET, READ}, 15, 15);
    EXPECT_FALSE(Logged("Invalid zroam res"));
}
TEST(Zroam, OtherTypesAreNoted) {
    for (uint8_t type : {uint8_t{0}, EXEC, TEST_}) {
        StartWith(kModule);
        EXPECT_TRUE(Decode(0x0617, type, "1").Untouched());
        EXPECT_TRUE(Logged("Invalid zroam res", "atdecode"));
    }
}

// ---- +ZRSSI
// -------------------------------------------------------------------------------------------

namespace {

struct Rssi {
    int32_t slots[6];
    float slot6;
};
std::string SevenSlots(const Rssi& rssi) {
    Bytes bytes;
    for (int32_t slot : rssi.slots)
        bytes.I32(slot);
    return bytes.F32(rssi.slot6).data;
}

void ExpectRssi(const std::string& text, const Rssi& rssi, const std::string& count, const std::string& log) {
    for (const char* mode : {kModule, kOtherCard}) {
        for (uint8_t type : kExecAndRead) {
            StartWith(mode);
            const Decoded got = Decode(0x0601, type, text);
            EXPECT_EQ(got.Record(), SevenSlots(rssi)) << text;
            EXPECT_EQ(got.paras[28], '\xa5');
            EXPECT_EQ(Platform().Get("zrssi_count"), count) << text;
            ASSERT_FALSE(Platform().writes.empty());
            EXPECT_EQ(Platform().writes[0], std::make_pair(std::string("zrssi_count"), std::string("0")));
            EXPECT_TRUE(Logged(log, "atdecode")) << log;
        }
    }
}

}  // namespace

DECODE_VECTOR(0x0601, Zrssi, OneValueIs2g) {
    ExpectRssi("-75", {{-75, 0, 0, 0, 0, 0}, 0}, "1", "tPara is 2G:-75 0\n");
    ExpectRssi("99999999999", {{INT32_MAX, 0, 0, 0, 0, 0}, 0}, "1", "tPara is 2G:2147483647 0\n");
    ExpectRssi("", {{0, 0, 0, 0, 0, 0}, 0}, "1", "tPara is 2G:0 0\n");
    ExpectRssi("OK", {{0, 0, 0, 0, 0, 0}, 0}, "1", "tPara is 2G:0 0\n");
}
TEST(Pin, ZrssiOf3gLeavesTheFirstSlotZero) {
    ExpectRssi("-75,-8", {{0, -75, -8, 0, 0, 0}, 0}, "2", "tPara is 3G:-75 -8\n");
    ExpectRssi("-75,", {{0, -75, 0, 0, 0, 0}, 0}, "2", "tPara is 3G:-75 0\n");
    ExpectRssi("(25,90)", {{0, 0, 0, 0, 0, 0}, 0}, "2", "tPara is 3G:0 0\n");
}
TEST(Zrssi, ThreeValuesAreWcdma) {
    ExpectRssi("-75,-8,30", {{-75, 30, -8, 0, 0, 0}, 0}, "3", "tPara is KVX_WCDMA:-75,-8,30\n");
    ExpectRssi("-75,,30", {{-75, 0, 0, 0, 0, 0}, 0}, "3", "tPara is KVX_WCDMA:-75,0,0\n");
}
TEST(Zrssi, FourValuesAre4g) {
    ExpectRssi("-95,-8,-12,20.5", {{-12, 0, 0, -95, -8, 0}, 20.5F}, "4", "tPara is 4G:-95,-8,-12,20\n");
    ExpectRssi("-95,-8,-12,-0.25", {{-12, 0, 0, -95, -8, 0}, -0.25F}, "4", "tPara is 4G:-95,-8,-12,0\n");
    ExpectRssi("-95,-8,-12,1e30", {{-12, 0, 0, -95, -8, 0}, 1e30F}, "4", "tPara is 4G:-95,-8,-12,0\n");
    ExpectRssi("-95,-8,-12,", {{-12, 0, 0, -95, -8, 0}, 0}, "4", "tPara is 4G:-95,-8,-12,0\n");
    ExpectRssi(",,,", {{0, 0, 0, 0, 0, 0}, 0}, "4", "tPara is 4G:0,0,0,0\n");
}
TEST(Zrssi, MoreValuesAreAnError) {
    ExpectRssi("1,2,3,4,5", {{0, 0, 0, 0, 0, 0}, 0}, "0", "AT+ZRSSI returns error\n");
    EXPECT_TRUE(Logged("AT+ZRSSI returns error\n", "atdecode", LOG_ERR));
    EXPECT_EQ(Platform().writes.size(), 1U);
}
TEST(Zrssi, OtherTypesDoNothing) {
    StartWith(kModule);
    ExpectServesOnly(0x0601, kExecAndRead);
    EXPECT_TRUE(Platform().writes.empty());
}

TEST(Cgreg, ReadTextsAreCutAtFifteen) {
    StartWith(kModule);
    const std::string text(15, 'A');
    EXPECT_EQ(Decode(0x0553, READ, "2,1,\"" + text + "\",\"" + text + "\",7,\"" + text + "A\",3").Record(),
              Bytes().I32(2).I32(1).Text(text, 16).Text(text, 16).I32(7).Text(text, 16).I32(0).data);
    EXPECT_EQ(Decode(0x0553, READ, "2,1,\"1A\",\"" + text + "B\",7").Record(),
              Bytes().I32(2).I32(1).Text("1A", 16).Text(text, 16).Zeros(24).data);
    ExpectServesOnly(0x0553, {READ});
}
TEST(Cereg, ReadTextsAreCutAtFifteen) {
    StartWith(kModule);
    const std::string text(15, 'A');
    EXPECT_EQ(Decode(0x0552, READ, "2,1,\"" + text + "\",\"" + text + "\",7,1").Record(),
              Bytes().I32(2).I32(1).Text(text, 16).Text(text, 16).I32(7).I32(1).data);
    EXPECT_EQ(Decode(0x0552, READ, "2,1,\"1A\",\"" + text + "B\",7").Record(),
              Bytes().I32(2).I32(1).Text("1A", 16).Text(text, 16).Zeros(8).data);
    ExpectServesOnly(0x0552, {READ});
}

TEST(Pin, CsqOnACommaLeavesTheErrorRateZero) {
    StartWith(kModule);
    EXPECT_EQ(Decode(0x0604, EXEC, "20,99").Record(), Integers({20, 0}));
}
