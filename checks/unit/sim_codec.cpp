#include <string.h>
#include <syslog.h>

#include "checks/support/fake_platform.h"
#include "checks/support/log_capture.h"
#include "checks/unit/shapes.h"
#include "commands/atdecode.h"

// Commands of the SIM, PINs and locks, beyond +CPIN and +CIMI in encode_vectors.cpp and decode_vectors.cpp.

// ---- encoders
// -------------------------------------------------------------------------------------------

TEST(SimCommands, WithoutParameters) {
    StartWith(kModule);
    for (uint16_t id : IdList{0x060E, 0x054C, 0x0613, 0x0531, 0x052E, 0x0527, 0x0205, 0x0111, 0x050C})
        ExpectPrintsNothing(id);
}
TEST(SimReports, AreNotSendable) {
    for (uint16_t id : IdList{0x063A, 0x0629, 0x051C})
        for (uint8_t type : {EXEC, SET, READ, TEST_})
            EXPECT_EQ(Encoded(id, type), "(not sendable)");
}

ENCODE_VECTOR(0x0302, Cpwd, SetPrintsThreeTexts) {
    ExpectPrints(0x0302, Bytes().Text("SC", 10).Text("1234", 10).Text("0000", 10).data,
                 "\"SC\",\"1234\",\"0000\"");
    ExpectPrints(0x0302, Bytes().Zeros(30).data, "\"\",\"\",\"\"");
    ExpectPrints(0x0302, "0123456789abcdefghijABCDEFGHIJ", "\"0123456789\",\"abcdefghij\",\"ABCDEFGHIJ\"");
}
ENCODE_VECTOR(0x0511, Clck, SetWithoutAPassword) {
    ExpectPrints(0x0511, Bytes().Text("SC", 12).I32(2).Zeros(12).data, "\"SC\",2");
    ExpectPrints(0x0511, Bytes().Text("", 12).I32(INT32_MIN).Zeros(12).data, "\"\",-2147483648");
}
ENCODE_VECTOR(0x0511, Clck, SetWithAPassword) {
    ExpectPrints(0x0511, Bytes().Text("SC", 12).I32(1).Text("1234", 12).data, "\"SC\",1,\"1234\"");
    ExpectPrints(0x0511, Bytes().Text("0123456789ab", 12).I32(INT32_MAX).Text("0123456789AB", 12).data,
                 "\"0123456789ab\",2147483647,\"0123456789AB\"");
}
ENCODE_VECTOR(0x0528, Znck, SetPrintsTheCode) {
    ExpectPrints(0x0528, Bytes().Text("12345678", 32).data, "\"12345678\"");
    ExpectPrints(0x0528, std::string(32, '9'), "\"" + std::string(32, '9') + "\"");
    ExpectPrints(0x0528, Bytes().Zeros(32).data, "\"\"");
}
ENCODE_VECTOR(0x0545, Crsm, SetPrintsFiveValues) {
    ExpectPrintsIntegers(0x0545, 5);
}
ENCODE_VECTOR(0x0638, Zuinit, SetPrintsFourValues) {
    ExpectPrintsIntegers(0x0638, 4);
}
ENCODE_VECTOR(0x0639, Zustat, SetPrintsTheValue) {
    ExpectPrintsIntegers(0x0639, 1);
}

// ---- decoders of numbers and texts
// -------------------------------------------------------------------------------------------

DECODE_VECTOR(0x0302, Cpwd, SetHasNoParameters) {
    ExpectNoParameters(0x0302, SET);
    ExpectServesOnly(0x0302, {SET});
}
TEST(Zustat, TheResultSaysEverything) {
    ExpectServesOnly(0x0639, {});
}
DECODE_VECTOR(0x050C, Zimsi, ExecAndReadGiveTheIdentity) {
    ExpectReadsTexts(0x050C, kExecAndRead, {32});
    ExpectServesOnly(0x050C, kExecAndRead);
    EXPECT_EQ(Decode(0x050C, EXEC, std::string(40, '4')).Record(),
              Bytes().Text(std::string(32, '4'), 36).data);
}
DECODE_VECTOR(0x0527, Zsec, ExecAndReadGiveTwoValues) {
    ExpectReadsIntegers(0x0527, kExecAndRead, 2, Reading::normalised);
    ExpectServesOnly(0x0527, kExecAndRead);
}
DECODE_VECTOR(0x0528, Znck, SetAndReadGiveTheValue) {
    ExpectReadsIntegers(0x0528, {SET, READ}, 1, Reading::raw);
    ExpectServesOnly(0x0528, {SET, READ});
}
DECODE_VECTOR(0x0531, Zpinpuk, TestGivesTwoValues) {
    ExpectReadsIntegers(0x0531, {TEST_}, 2, Reading::raw);
    ExpectServesOnly(0x0531, {TEST_});
}
DECODE_VECTOR(0x051C, Zusimr, EveryTypeGivesTheValue) {
    ExpectReadsIntegers(0x051C, kEvery, 1, Reading::raw);
}
DECODE_VECTOR(0x0205, Zusim, AllButTestGiveTheValue) {
    ExpectReadsIntegers(0x0205, {EXEC, SET, READ}, 1, Reading::normalised);
    ExpectServesOnly(0x0205, {EXEC, SET, READ});
}
DECODE_VECTOR(0x0613, Pinnum, ReadGivesFourValues) {
    ExpectReadsIntegers(0x0613, {READ}, 4, Reading::raw);
    ExpectServesOnly(0x0613, {READ});
}
DECODE_VECTOR(0x054C, Cpinc, ExecGivesFourValues) {
    ExpectReadsIntegers(0x054C, {EXEC}, 4, Reading::raw);
    ExpectServesOnly(0x054C, {EXEC});
    Decode(0x054C, EXEC, "3,2,10,9");
    EXPECT_TRUE(Logged("CPINC==pResLine->strResParas=3,2,10,9", "atdecode"));
    EXPECT_TRUE(Logged("tPara.PinNum1:3,tPara.PinNum2:2,tPara.PukNum1:10,tPara.PukNum2:9", "atdecode"));
}
DECODE_VECTOR(0x0638, Zuinit, SetAndReadGiveFourValues) {
    ExpectReadsIntegers(0x0638, {SET, READ}, 4, Reading::normalised);
    ExpectServesOnly(0x0638, {SET, READ});
    Decode(0x0638, SET, "1,2,3,4");
    EXPECT_TRUE(Logged("==ZUINIT===pResLine->strResParas=1 2 3 4", "atdecode"));
    EXPECT_TRUE(Logged("tPara.uiccstate:1,tPara.appmode:2,tPara.iccid:3,tPara.phase:4", "atdecode"));
}
DECODE_VECTOR(0x063A, Zurdy, EveryTypeGivesTwoValues) {
    ExpectReadsIntegers(0x063A, kEvery, 2, Reading::raw);
    Decode(0x063A, 0, "2,1");
    EXPECT_TRUE(Logged("tPara.appmode:2 ,tPara.initresult:1", "atdecode"));
}
DECODE_VECTOR(0x0545, Crsm, SetGivesTheStatusAndTheData) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        EXPECT_EQ(Decode(0x0545, SET, "144,0,\"0A1B\"").Record(),
                  Bytes().I32(144).I32(0).Text("0A1B", 64).data);
        EXPECT_EQ(Decode(0x0545, SET, "144,0").Record(), Bytes().I32(144).Zeros(68).data);
        EXPECT_EQ(Decode(0x0545, SET, "144,0,\"\"").Record(), Bytes().I32(144).Zeros(68).data);
        EXPECT_EQ(Decode(0x0545, SET, "144,0,").Record(), Bytes().I32(144).Zeros(68).data);
        EXPECT_EQ(Decode(0x0545, SET, "-99999999999,99999999999").Record(),
                  Bytes().I32(INT32_MIN).I32(INT32_MAX).Zeros(64).data);
        EXPECT_EQ(Decode(0x0545, SET, "OK").Record(), Bytes().Zeros(72).data);
        EXPECT_EQ(Decode(0x0545, SET, "144,0").paras[72], '\xa5');
        for (size_t length : {34U, 35U, 64U})
            EXPECT_EQ(Decode(0x0545, SET, "144,0,\"" + std::string(length, 'A') + "\"").Record(),
                      Bytes().I32(144).I32(0).Text(std::string(34, 'A'), 64).data);
    }
    ExpectServesOnly(0x0545, {SET});
}
DECODE_VECTOR(0x052E, Zlklist, ReadAndTestGiveTheText) {
    ExpectCopiesTheText(0x052E, {READ, TEST_}, 512, 128);
    ExpectServesOnly(0x052E, {READ, TEST_});
}
TEST(Pin, ZlklistAnnounces128AndCpin32WhateverTheText) {
    for (size_t length : {0U, 1U, 31U, 32U, 127U, 128U, 129U, 511U, 512U, 3000U}) {
        EXPECT_EQ(Decode(0x052E, READ, std::string(length, 'z')).length, 128);
        EXPECT_EQ(Decode(0x0301, READ, std::string(length, 'z')).length, 32);
    }
}

// ---- +CLCK
// -------------------------------------------------------------------------------------------

DECODE_VECTOR(0x0511, Clck, SetGivesStatusAndClass) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        EXPECT_EQ(Decode(0x0511, SET, "1,7").Record(), Integers({1, 7}));
        EXPECT_TRUE(Logged("Parse_Clck_Res: strResParas 1,7, len 3.", "atdecode", LOG_ERR));
        EXPECT_EQ(Decode(0x0511, SET, "1").Record(), Integers({1, 0}));
        EXPECT_EQ(Decode(0x0511, SET, "").Record(), Integers({0, 0}));
        EXPECT_TRUE(Logged("Parse_Clck_Res: strResParas , len 0.", "atdecode", LOG_ERR));
        EXPECT_EQ(Decode(0x0511, SET, "\"1\",99999999999").Record(), Integers({1, INT32_MAX}));
        EXPECT_EQ(Decode(0x0511, SET, "OK ").Record(), Integers({0, 0}));
        EXPECT_EQ(Decode(0x0511, SET, "retry operation now").Record(), Integers({0, 0}));
        EXPECT_EQ(Decode(0x0511, SET, "1,7,9").paras[8], '\xa5');
    }
    ExpectServesOnly(0x0511, {SET});
}
TEST(Clck, SetOkHasLengthTwoAndNoRecord) {
    StartWith(kModule);
    const Decoded got = Decode(0x0511, SET, "OK");
    EXPECT_EQ(got.length, 2);
    EXPECT_EQ(got.paras.find_first_not_of('\xa5'), std::string::npos);
    EXPECT_TRUE(LoggedLines().empty());
}
TEST(Clck, SetFailureTextsHaveNoParameters) {
    StartWith(kModule);
    EXPECT_TRUE(Decode(0x0511, SET, "retry operation").Untouched());
    EXPECT_TRUE(Decode(0x0511, SET, "network rejected request").Untouched());
    EXPECT_TRUE(LoggedLines().empty());
}

// ---- ^CPIN
// -------------------------------------------------------------------------------------------

DECODE_VECTOR(0x060E, CpinV, SetHasNoParameters) {
    ExpectNoParameters(0x060E, SET);
    ExpectServesOnly(0x060E, {SET, READ});
}
DECODE_VECTOR(0x060E, CpinV, ReadGivesFiveCounters) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        EXPECT_EQ(Decode(0x060E, READ, "READY,1,10,3,9,2").Record(), Integers({1, 10, 3, 9, 2}));
        EXPECT_TRUE(Logged("=====pResLine->strResParas=READY,1,10,3,9,2", "atdecode"));
        EXPECT_TRUE(
            Logged("tPara.retr_times:1,tPara.num_puk1:10,tPara.num_pin1:3,tPara.num_puk2:9,tPara.num_pin2:2",
                   "atdecode"));
        EXPECT_EQ(Decode(0x060E, READ, "SIM PIN,3,10,3,10,3").Record(), Integers({3, 10, 3, 10, 3}));
        EXPECT_EQ(Decode(0x060E, READ, "\"SIM, PIN\",3").Record(), Integers({0, 0, 0, 0, 0}));
        EXPECT_EQ(Decode(0x060E, READ, "READY,99999999999,-99999999999").Record(),
                  Integers({INT32_MAX, INT32_MIN, 0, 0, 0}));
        EXPECT_EQ(Decode(0x060E, READ, "READY").Record(), Integers({0, 0, 0, 0, 0}));
        EXPECT_EQ(Decode(0x060E, READ, "SIM PUK,").Record(), Integers({0, 0, 0, 0, 0}));
        EXPECT_EQ(Decode(0x060E, READ, "1,2,NOT READY 7,8").Record(), Integers({7, 8, 0, 0, 0}));
        EXPECT_EQ(Decode(0x060E, READ, "\"READY\",1,10,3,9,2").Record(), Integers({1, 10, 3, 9, 2}));
        EXPECT_EQ(Decode(0x060E, READ, "READY,1,2,3,4,5,6").paras[20], '\xa5');
    }
}
TEST(Pin, CpinVEmptyFieldMovesTheCountersForward) {
    StartWith(kModule);
    EXPECT_EQ(Decode(0x060E, READ, "READY,,10,3,10,3").Record(), Integers({10, 3, 10, 3, 0}));
    StartWith(kOtherCard);
    EXPECT_EQ(Decode(0x060E, READ, "READY,,10,3,10,3").Record(), Integers({9, 10, 3, 10, 3}));
}
TEST(CpinV, ReadWithNeitherReadyNorACommaHasNoParameters) {
    StartWith(kModule);
    for (const char* text : {"SIM PIN", "ready", "READ", "", "OK"}) {
        EXPECT_TRUE(Decode(0x060E, READ, text).Untouched()) << text;
        EXPECT_TRUE(Logged(std::string("Invalid strResParas ") + text, "atdecode"));
    }
}
// Normalising may lengthen the line, and there is no room for that at the end of the text.
TEST(CpinV, CountersAtTheVeryEndOfALongText) {
    StartWith(kModule);
    const std::string tail = "READY,\"\"\"\"\"\"\"\"\"\"\"\",";
    const std::string text = std::string(sizeof(AT_RES_LINE_T::strResParas) - 1 - tail.size(), 'x') + tail;
    EXPECT_EQ(Decode(0x060E, READ, text).Record(), Integers({0, 0, 0, 0, 0}));
}

// ---- +ZICCID
// -------------------------------------------------------------------------------------------

TEST(Pin, ZiccidIsOnlyLogged) {
    StartWith(kModule);
    for (uint8_t type : kEvery)
        EXPECT_TRUE(Decode(0x0629, type, "8986011234567890").Untouched());
}
TEST(Ziccid, LogsTheTextOfTheResponseOrElseOfTheLine) {
    StartWith(kModule);
    static AT_RES_LINE_T line;
    strcpy(line.strResParas, "8986011234567890");
    _BK_AT_RES_T response = {};
    Parse_ZICCID_Res(&response, &line);
    EXPECT_TRUE(Logged("ziccid is 8986011234567890", "atdecode"));
    strcpy(reinterpret_cast<char*>(response.aucParas), "+ZICCID: 89");
    Parse_ZICCID_Res(&response, &line);
    EXPECT_TRUE(Logged("ziccid is +ZICCID: 89", "atdecode"));
    memset(response.aucParas, '8', sizeof response.aucParas);
    Parse_ZICCID_Res(&response, &line);
    EXPECT_TRUE(Logged("ziccid is " + std::string(634, '8'), "atdecode"));
    EXPECT_FALSE(LoggedPart("is null"));
    Parse_ZICCID_Res(nullptr, &line);
    EXPECT_TRUE(Logged("Parse_ZICCID_Res input para is null", "atdecode"));
    ClearLog();
    Parse_ZICCID_Res(&response, nullptr);
    EXPECT_TRUE(Logged("Parse_ZICCID_Res input para is null", "atdecode"));
}
