#include <string.h>
#include <syslog.h>

#include "checks/support/fake_platform.h"
#include "checks/support/log_capture.h"
#include "checks/unit/shapes.h"
#include "commands/atencode.h"

// Encoders of network selection, radio modes and bands.

TEST(NetworkCommands, WithoutParameters) {
    StartWith(kModule);
    for (uint16_t id : IdList{0x0501, 0x0507, 0x0508, 0x050B, 0x0601, 0x0522, 0x0523, 0x0526, 0x0604, 0x0605,
                              0x0530, 0x0533, 0x054D, 0x054E, 0x0614, 0x0637, 0x0645, 0x063E, 0x0560})
        ExpectPrintsNothing(id);
}

TEST(NetworkReports, AreNotSendable) {
    for (uint16_t id : IdList{0x0529, 0x051D, 0x051E, 0x0550})
        for (uint8_t type : {EXEC, SET, READ, TEST_})
            EXPECT_EQ(Encoded(id, type), "(not sendable)");
}

TEST(Registration, SetPrintsTheWholeRangeOfIntegers) {
    for (uint16_t id : IdList{0x052D, 0x0553, 0x0552, 0x0544})
        ExpectPrintsIntegers(id, 1);
}
TEST(Cops, SetPrintsTheWholeRangeOfIntegers) {
    StartWith(kModule);
    ExpectSetOfThisSizeOnly(0x0517, Bytes().I32(1).I32(2).Text("\"46001\"", 64).I32(7).data);
    EXPECT_EQ(Encoded(0x0517, SET,
                      Bytes().I32(INT32_MIN).I32(INT32_MAX).Text(std::string(64, 'o'), 64).I32(-1).data),
              "-2147483648,2147483647," + std::string(64, 'o') + ",-1");
}

ENCODE_VECTOR(0x0509, Zsnt, SetPrintsThreeValues) {
    ExpectPrintsIntegers(0x0509, 3);
}
ENCODE_VECTOR(0x0520, Zoprt, SetPrintsTheValue) {
    ExpectPrintsIntegers(0x0520, 1);
}
ENCODE_VECTOR(0x052A, Zmac, SetPrintsTheValue) {
    ExpectPrintsIntegers(0x052A, 1);
}
ENCODE_VECTOR(0x050F, Zcin, SetPrintsTwoValues) {
    ExpectPrintsIntegers(0x050F, 2);
}
ENCODE_VECTOR(0x055C, Zums, SetPrintsTheTextQuoted) {
    ExpectPrints(0x055C, Bytes().Text("a,b", 32).data, "\"a,b\"");
    ExpectPrints(0x055C, Bytes().Zeros(32).data, "\"\"");
    ExpectPrints(0x055C, std::string(32, 'u'), "\"" + std::string(32, 'u') + "\"");
}

ENCODE_VECTOR(0x0547, Zbandi, SetPrintsTheValue) {
    ExpectPrintsIntegers(0x0547, 1);
}
ENCODE_VECTOR(0x0540, Prefmode, SetPrintsTheMode) {
    ExpectPrintsIntegers(0x0540, 1);
}
ENCODE_VECTOR(0x054F, Prefnettype, SetPrintsTheType) {
    ExpectPrintsIntegers(0x054F, 1);
}
ENCODE_VECTOR(0x0611, Band, SetPrintsTheBand) {
    ExpectPrintsIntegers(0x0611, 1);
}
ENCODE_VECTOR(0x061D, Zrap, SetPrintsTheValue) {
    ExpectPrintsIntegers(0x061D, 1);
}
ENCODE_VECTOR(0x052F, Ddtm, SetPrintsTwoValues) {
    ExpectPrintsIntegers(0x052F, 2);
}
ENCODE_VECTOR(0x0615, Ipsys, SetPrintsTwoValues) {
    ExpectPrintsIntegers(0x0615, 2);
}
ENCODE_VECTOR(0x061F, Sysconfig, SetPrintsFourValues) {
    ExpectPrintsIntegers(0x061F, 4);
}
ENCODE_VECTOR(0x054B, Syscfg, SetPrintsTheBandAsGiven) {
    ExpectPrints(0x054B, Bytes().I32(-12).I32(-1).Text("\"3FFF,FF\"", 32).I32(INT32_MIN).I32(INT32_MAX).data,
                 "-12,-1,\"3FFF,FF\",-2147483648,2147483647");
    ExpectPrints(0x054B, Bytes().I32(2).I32(3).Zeros(32).I32(4).I32(5).data, "2,3,,4,5");
    ExpectPrints(0x054B, Bytes().I32(2).I32(3).Text(std::string(32, 'B'), 32).I32(4).I32(5).data,
                 "2,3," + std::string(32, 'B') + ",4,5");
}

ENCODE_VECTOR(0x0618, Zlockband, SetCopiesTheText) {
    ExpectPrints(0x0618, Bytes().Text("1,3,\"a b\"", 16).data, "1,3,\"a b\"");
    ExpectPrints(0x0618, "0123456789abcdef", "0123456789abcdef");
    ExpectPrints(0x0618, Bytes().Zeros(16).data, "");
}

ENCODE_VECTOR(0x0619, Zlockf, SetWithoutASecondTextPrintsTheBandAlone) {
    for (const char* bandmode : {"", "3", "4"}) {
        StartWith(kModule);
        Platform().config["bandmode"] = bandmode;
        ExpectPrints(0x0619, Bytes().Text("1300", 16).Zeros(16).data, "1300");
    }
    StartWith(kModule);  // without the key
    ExpectPrints(0x0619, Bytes().Text("1300", 16).Zeros(16).data, "1300");
}
ENCODE_VECTOR(0x0619, Zlockf, SetPrintsBothTexts) {
    StartWith(kModule);
    ExpectPrints(0x0619, Bytes().Text("1300", 16).Text("17", 16).data, "1300,17");
    ExpectPrints(0x0619, Bytes().Zeros(16).Text("17", 16).data, ",17");
    ExpectPrints(0x0619, std::string(16, 'b') + std::string(16, 't'),
                 std::string(16, 'b') + "," + std::string(16, 't'));
}
TEST(Zlockf, SetInBandModeFourPrintsTheBandAlone) {
    StartWith(kModule);
    Platform().config["bandmode"] = "4";
    ExpectPrints(0x0619, Bytes().Text("1300", 16).Text("17", 16).data, "1300");
    ExpectPrints(0x0619, std::string(16, 'b') + std::string(16, 't'), std::string(16, 'b'));
    Platform().config["bandmode"] = "44";
    ExpectPrints(0x0619, Bytes().Text("1300", 16).Text("17", 16).data, "1300,17");
    EXPECT_TRUE(Platform().writes.empty());
}

ENCODE_VECTOR(0x055F, Znlockband, SetPrintsTheMasksInHexadecimal) {
    ExpectPrints(0x055F, Bytes().I32(1).I32(2).U64(0x80000000005ULL).U64(0xABCDEF).data,
                 "1,2,80000000005,abcdef");
    ExpectPrints(0x055F, Bytes().I32(INT32_MIN).I32(INT32_MAX).U64(0).U64(~0ULL).data,
                 "-2147483648,2147483647,0,ffffffffffffffff");
}

TEST(Pin, ZroamIsAlwaysSentBare) {
    StartWith(kModule);
    for (uint8_t type : {EXEC, SET, READ, TEST_}) {
        ClearLog();
        EXPECT_EQ(Encoded(0x0617, type, Bytes().Text("1", 15).data), "");
        EXPECT_TRUE(Logged("Make_Zroam_cmd error", "atencode"));
    }
}
TEST(Zroam, UnderAnotherIdSetAndReadCopyTheText) {
    StartWith(kModule);
    _BK_AT_CMD_T request = {};
    request.usCmdID = 0x0616;
    const auto made = [&](uint8_t type, const std::string& text, uint16_t length) {
        AT_CMD_LINE_T line = {};
        memcpy(request.aucParas, text.data(), text.size());
        request.ucCmdType = type;
        request.usParaLen = length;
        Make_Zroam_cmd(&line, &request);
        return std::string(line.strCmdParas);
    };
    EXPECT_EQ(made(SET, "0123456789abcdef", 15), "0123456789abcde");
    EXPECT_EQ(made(READ, std::string("1\0", 2), 15), "1");
    EXPECT_EQ(made(EXEC, "1", 15), "");
    EXPECT_EQ(made(TEST_, "1", 15), "");
    EXPECT_EQ(made(SET, "1", 14), "");
    EXPECT_EQ(made(SET, "1", 16), "");
    EXPECT_FALSE(Logged("Make_Zroam_cmd error"));
}
