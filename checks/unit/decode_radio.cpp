#include "checks/support/fake_platform.h"
#include "checks/support/log_capture.h"
#include "checks/unit/shapes.h"

// Decoders of radio modes and bands.

DECODE_VECTOR(0x061F, Sysconfig, ReadGivesFourValues) {
    ExpectReadsIntegers(0x061F, {READ}, 4, Reading::raw);
    ExpectServesOnly(0x061F, {READ});
}
DECODE_VECTOR(0x0540, Prefmode, ReadGivesTheMode) {
    ExpectReadsIntegers(0x0540, {READ}, 1, Reading::raw);
    ExpectServesOnly(0x0540, {READ});
}
DECODE_VECTOR(0x054F, Prefnettype, ReadGivesTheType) {
    ExpectReadsIntegers(0x054F, {READ}, 1, Reading::raw);
    ExpectServesOnly(0x054F, {READ});
}
DECODE_VECTOR(0x052F, Ddtm, ReadGivesTwoValues) {
    ExpectReadsIntegers(0x052F, {READ}, 2, Reading::raw);
    ExpectServesOnly(0x052F, {READ});
}
DECODE_VECTOR(0x0615, Ipsys, ReadGivesTwoValues) {
    ExpectReadsIntegers(0x0615, {READ}, 2, Reading::raw);
    ExpectServesOnly(0x0615, {READ});
}
DECODE_VECTOR(0x0533, Drap, ExecAndReadGiveFourValues) {
    ExpectReadsIntegers(0x0533, kExecAndRead, 4, Reading::normalised);
    ExpectServesOnly(0x0533, kExecAndRead);
}
DECODE_VECTOR(0x0645, Zsleepmod, ExecGivesTheMode) {
    ExpectReadsIntegers(0x0645, {EXEC}, 1, Reading::raw);
    ExpectServesOnly(0x0645, {EXEC});
}
DECODE_VECTOR(0x0560, Zpowermode, ReadGivesTheMode) {
    ExpectReadsIntegers(0x0560, {READ}, 1, Reading::raw);
    ExpectServesOnly(0x0560, {READ});
}
DECODE_VECTOR(0x061D, Zrap, SetGivesFourValues) {
    ExpectReadsIntegers(0x061D, {SET}, 4, Reading::raw);
}
DECODE_VECTOR(0x061D, Zrap, ReadGivesFiveValues) {
    ExpectReadsIntegers(0x061D, {READ}, 5, Reading::raw);
    ExpectServesOnly(0x061D, {SET, READ});
}

DECODE_VECTOR(0x054B, Syscfg, ReadGivesTheBandBetweenValues) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        EXPECT_EQ(Decode(0x054B, READ, "2,-1,\"3F FF\",99999999999,4").Record(),
                  Bytes().I32(2).I32(-1).Text("3F FF", 32).I32(INT32_MAX).I32(4).data);
        EXPECT_EQ(Decode(0x054B, READ, "2,3,\"\",1,4").Record(),
                  Bytes().I32(2).I32(3).Zeros(32).I32(1).I32(4).data);
        EXPECT_EQ(Decode(0x054B, READ, "2,3," + std::string(31, 'B') + ",1,4").Record(),
                  Bytes().I32(2).I32(3).Text(std::string(31, 'B'), 32).I32(1).I32(4).data);
        EXPECT_EQ(Decode(0x054B, READ, "2,3," + std::string(32, 'B') + ",1,4").Record(),
                  Bytes().I32(2).I32(3).Text(std::string(31, 'B'), 32).Zeros(8).data);
        EXPECT_EQ(Decode(0x054B, READ, "2,3").Record(), Bytes().I32(2).I32(3).Zeros(40).data);
        EXPECT_EQ(Decode(0x054B, READ, "2,3,B,1,4").paras[48], '\xa5');
    }
    ExpectServesOnly(0x054B, {READ});
}

DECODE_VECTOR(0x054D, Qcsysmode, SetHasNoParameters) {
    ExpectNoParameters(0x054D, SET);
}
DECODE_VECTOR(0x054D, Qcsysmode, ReadGivesTheText) {
    ExpectCopiesTheText(0x054D, {READ}, 32, 32);
    ExpectServesOnly(0x054D, {SET, READ});
}

DECODE_VECTOR(0x0611, Band, SetHasNoParameters) {
    ExpectNoParameters(0x0611, SET);
}
DECODE_VECTOR(0x0611, Band, ReadGivesTheNumber) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        EXPECT_EQ(Decode(0x0611, READ, "\"-3\"").Record(), Bytes().I32(-3).Zeros(32).data);
        EXPECT_EQ(Decode(0x0611, READ, "99999999999").Record(), Bytes().I32(INT32_MAX).Zeros(32).data);
        EXPECT_EQ(Decode(0x0611, READ, "").Record(), Bytes().Zeros(36).data);
        EXPECT_EQ(Decode(0x0611, READ, "GSM").Record(), Bytes().Zeros(36).data);
        EXPECT_EQ(Decode(0x0611, READ, "3").paras[36], '\xa5');
    }
    ExpectServesOnly(0x0611, {SET, READ});
}
// Only a comma inside a quoted text survives normalising.
TEST(Band, ACommaInsideQuotesIsRead) {
    StartWith(kModule);
    EXPECT_EQ(Decode(0x0611, READ, "\"3,GSM 900\",x").Record(), Bytes().I32(3).Text("GSM 900", 32).data);
    EXPECT_EQ(Decode(0x0611, READ, "\"3," + std::string(40, 'G') + "\"").Record(),
              Bytes().I32(3).Text(std::string(31, 'G'), 32).data);
}
TEST(Pin, BandStopsAtTheFirstComma) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        EXPECT_EQ(Decode(0x0611, READ, "3, \"GSM 900\"").Record(), Bytes().I32(3).Zeros(32).data);
        EXPECT_EQ(Decode(0x0611, READ, "3,GSM").Record(), Bytes().I32(3).Zeros(32).data);
    }
}

// ---- locks
// -------------------------------------------------------------------------------------------

DECODE_VECTOR(0x0618, Zlockband, SetAndReadGiveTheValue) {
    ExpectReadsIntegers(0x0618, {SET, READ}, 1, Reading::raw);
    ExpectServesOnly(0x0618, {SET, READ});
    for (const char* bandmode : {"", "1", "22", "4"}) {
        Platform().config["bandmode"] = bandmode;
        EXPECT_EQ(Decode(0x0618, SET, "7").Record(), I32(7));
    }
}
TEST(Zlockband, SetInBandModeTwoHasNoParameters) {
    StartWith(kModule);
    Platform().config["bandmode"] = "2";
    EXPECT_TRUE(Decode(0x0618, SET, "7").Untouched());
    EXPECT_EQ(Decode(0x0618, READ, "7").Record(), I32(7));
}

DECODE_VECTOR(0x0619, Zlockf, SetGivesTheFirstValue) {
    StartWith(kModule);
    EXPECT_EQ(Decode(0x0619, SET, "5").Record(), Integers({5, 0}));
    EXPECT_EQ(Decode(0x0619, SET, "5,6").Record(), Integers({5, 0}));
    EXPECT_EQ(Decode(0x0619, SET, "-99999999999").Record(), Integers({INT32_MIN, 0}));
    EXPECT_EQ(Decode(0x0619, SET, "OK").Record(), Integers({0, 0}));
    EXPECT_EQ(Decode(0x0619, SET, "5").paras[8], '\xa5');
}
DECODE_VECTOR(0x0619, Zlockf, ReadGivesTwoValues) {
    ExpectReadsIntegers(0x0619, {READ}, 2, Reading::raw);
    ExpectServesOnly(0x0619, {SET, READ});
}

DECODE_VECTOR(0x055F, Znlockband, ReadGivesTwoMasks) {
    StartWith(kModule);
    EXPECT_EQ(Decode(0x055F, READ, "80000000005,ABCDEF").Record(),
              Bytes().U64(0x80000000005ULL).U64(0xabcdef).data);
    EXPECT_EQ(Decode(0x055F, READ, "0xffffffffffffffff,0").Record(), Bytes().U64(~0ULL).U64(0).data);
    EXPECT_EQ(Decode(0x055F, READ, "1ffffffffffffffff,1").Record(), Bytes().U64(~0ULL).U64(1).data);
    EXPECT_EQ(Decode(0x055F, READ, "5").Record(), Bytes().U64(5).U64(0).data);
    EXPECT_EQ(Decode(0x055F, READ, "").Record(), Bytes().Zeros(16).data);
    EXPECT_EQ(Decode(0x055F, READ, "\"5\",6").Record(), Bytes().Zeros(16).data);
    EXPECT_EQ(Decode(0x055F, READ, "5,6").paras[16], '\xa5');
    ExpectServesOnly(0x055F, {READ});
}
