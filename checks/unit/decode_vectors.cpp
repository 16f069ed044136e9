#include <syslog.h>

#include "checks/support/fake_platform.h"
#include "checks/support/log_capture.h"
#include "checks/unit/vectors.h"

// Decoders of the commands that a router needs first.

namespace {

std::string I32(int32_t value) {
    return Bytes().I32(value).data;
}

// A decoder that reads one integer for a read, and serves nothing else.
void ExpectOneIntegerForARead(uint16_t id) {
    StartWith(kModule);
    EXPECT_EQ(Decode(id, READ, "5").Record(), I32(5));
    EXPECT_EQ(Decode(id, READ, " 5 ,7").Record(), I32(5));
    EXPECT_EQ(Decode(id, READ, "99999999999").Record(), I32(INT32_MAX));
    EXPECT_EQ(Decode(id, READ, "-99999999999").Record(), I32(INT32_MIN));
    EXPECT_EQ(Decode(id, READ, "").Record(), I32(0));
    EXPECT_EQ(Decode(id, READ, "OK").Record(), I32(0));
    EXPECT_EQ(Decode(id, READ, "5").paras[4], '\xa5');
    EXPECT_TRUE(Decode(id, EXEC, "5").Untouched());
    EXPECT_TRUE(Decode(id, TEST_, "5").Untouched());
}

}  // namespace

DECODE_VECTOR(0x0001, At, ExecHasNoParameters) {
    EXPECT_EQ(Decode(0x0001, EXEC, "OK").length, 0);
    for (uint8_t type : {SET, READ, TEST_})
        EXPECT_TRUE(Decode(0x0001, type, "OK").Untouched());
}

TEST(NoneKind, DecodersChangeNothing) {
    for (uint16_t id : {uint16_t{0x0401}, uint16_t{0x0404}, uint16_t{0x0403}})
        for (uint8_t type : {EXEC, SET, READ, TEST_})
            EXPECT_TRUE(Decode(id, type, "1,2").Untouched());
}

// ---- +CSQ
// ----------------------------------------------------------------------------------------------------------

DECODE_VECTOR(0x0604, Csq, TheCommaEndsTheReading) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        EXPECT_EQ(Decode(0x0604, EXEC, "20,99").Record(), Bytes().I32(20).I32(0).data);
    }
}
TEST(Csq, BlankSeparatedGivesBoth) {
    EXPECT_EQ(Decode(0x0604, EXEC, "20 99").Record(), Bytes().I32(20).I32(99).data);
}
TEST(Csq, NothingToRead) {
    EXPECT_EQ(Decode(0x0604, EXEC, "OK").Record(), Bytes().I32(0).I32(0).data);
}
TEST(Csq, ExecOnly) {
    for (uint8_t type : {SET, READ, TEST_})
        EXPECT_TRUE(Decode(0x0604, type, "20,99").Untouched());
}

// ---- identities
// ----------------------------------------------------------------------------------------------------

DECODE_VECTOR(0x0603, Cgsn, FifteenDigits) {
    EXPECT_EQ(Decode(0x0603, EXEC, "864213050001234").Record(), Bytes().Text("864213050001234", 32).data);
}
TEST(Cgsn, ThirtyTwoCharactersHaveNoNul) {
    const std::string full(32, '8');
    EXPECT_EQ(Decode(0x0603, EXEC, full + "999").Record(), full);
    EXPECT_EQ(Decode(0x0603, READ, full).Record(), full);
    EXPECT_EQ(Decode(0x0603, EXEC, full).paras[32], '\xa5');
    EXPECT_TRUE(Decode(0x0603, SET, full).Untouched());
}
TEST(Cgsn, RawText) {
    EXPECT_EQ(Decode(0x0603, EXEC, "\"1\",2").Record(), Bytes().Text("\"1\",2", 32).data);
}

DECODE_VECTOR(0x0111, Cimi, FifteenDigits) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        EXPECT_EQ(Decode(0x0111, EXEC, "460011234567890").Record(), Bytes().Text("460011234567890", 36).data);
        EXPECT_EQ(Decode(0x0111, EXEC, "\"46001 12\"").Record(), Bytes().Text("46001 12", 36).data);
    }
}
TEST(Cimi, LongerThanTheFieldIsCutAtTheWidth) {
    EXPECT_EQ(Decode(0x0111, EXEC, std::string(40, '4')).Record(),
              Bytes().Text(std::string(32, '4'), 36).data);
}
TEST(Cimi, ExecOnly) {
    for (uint8_t type : {SET, READ, TEST_})
        EXPECT_TRUE(Decode(0x0111, type, "46001").Untouched());
}

// ---- single integers
// -----------------------------------------------------------------------------------------------

DECODE_VECTOR(0x0104, Cmgf, ReadGivesTheMode) {
    ExpectOneIntegerForARead(0x0104);
}
DECODE_VECTOR(0x0514, Clvl, ReadGivesTheLevel) {
    ExpectOneIntegerForARead(0x0514);
}
DECODE_VECTOR(0x0544, Cfun, ReadGivesTheFunction) {
    ExpectOneIntegerForARead(0x0544);
}
DECODE_VECTOR(0x0544, Cfun, SetHasNoParameters) {
    EXPECT_EQ(Decode(0x0544, SET, "OK").length, 0);
}
TEST(Cmgf, SetIsNotServed) {
    EXPECT_TRUE(Decode(0x0104, SET, "OK").Untouched());
}

DECODE_VECTOR(0x010B, Cmgd, SetHasNoParameters) {
    EXPECT_EQ(Decode(0x010B, SET, "OK").length, 0);
    EXPECT_TRUE(Decode(0x010B, TEST_, "(1,2),(0-4)").Untouched());
}

// ---- +CPIN
// ---------------------------------------------------------------------------------------------------------

DECODE_VECTOR(0x0301, Cpin, ReadGivesTheTextInThirtyTwoBytes) {
    EXPECT_EQ(Decode(0x0301, READ, "READY").Record(), Bytes().Text("READY", 32).data);
    EXPECT_EQ(Decode(0x0301, READ, "SIM PIN").Record(), Bytes().Text("SIM PIN", 32).data);
    EXPECT_EQ(Decode(0x0301, READ, "\"a,b\"").Record(), Bytes().Text("\"a,b\"", 32).data);
    EXPECT_EQ(Decode(0x0301, READ, "").Record(), Bytes().Zeros(32).data);
}
TEST(Cpin, ReadIsCutAtThirtyOneCharacters) {
    EXPECT_EQ(Decode(0x0301, READ, std::string(31, 'S')).Record(),
              Bytes().Text(std::string(31, 'S'), 32).data);
    EXPECT_EQ(Decode(0x0301, READ, std::string(40, 'S')).Record(),
              Bytes().Text(std::string(31, 'S'), 32).data);
}
DECODE_VECTOR(0x0301, Cpin, SetHasNoParameters) {
    EXPECT_EQ(Decode(0x0301, SET, "OK").length, 0);
}
TEST(Cpin, ExecAndTestAreNotServed) {
    EXPECT_TRUE(Decode(0x0301, EXEC, "READY").Untouched());
    EXPECT_TRUE(Decode(0x0301, TEST_, "READY").Untouched());
}

// ---- +CPMS
// ---------------------------------------------------------------------------------------------------------

DECODE_VECTOR(0x0103, Cpms, SetGivesSixIntegers) {
    EXPECT_EQ(Decode(0x0103, SET, "1,20,2,40,3,60").Record(),
              Bytes().I32(1).I32(20).I32(2).I32(40).I32(3).I32(60).data);
}
TEST(Cpms, SetWithMissingLastFields) {
    EXPECT_EQ(Decode(0x0103, SET, "1,20,2").Record(), Bytes().I32(1).I32(20).I32(2).Zeros(12).data);
    EXPECT_EQ(Decode(0x0103, SET, "OK").Record(), Bytes().Zeros(24).data);
}
DECODE_VECTOR(0x0103, Cpms, ReadGivesThreeGroups) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        EXPECT_EQ(Decode(0x0103, READ, "\"SM\",1,20,\"ME\",2,40,\"S M\",3,60").Record(), Bytes()
                                                                                             .Text("SM", 12)
                                                                                             .I32(1)
                                                                                             .I32(20)
                                                                                             .Text("ME", 12)
                                                                                             .I32(2)
                                                                                             .I32(40)
                                                                                             .Text("S M", 12)
                                                                                             .I32(3)
                                                                                             .I32(60)
                                                                                             .data);
    }
}
TEST(Cpms, ReadWithTwoStoragesLeavesTheThirdZero) {
    EXPECT_EQ(Decode(0x0103, READ, "\"SM\",1,20,\"ME\",2,40").Record(),
              Bytes().Text("SM", 12).I32(1).I32(20).Text("ME", 12).I32(2).I32(40).Zeros(20).data);
}
TEST(Cpms, ReadWithAnEmptyStorageName) {
    EXPECT_EQ(Decode(0x0103, READ, "\"\",1,20,\"ME\",2,40").Record(),
              Bytes().Text("", 12).I32(1).I32(20).Text("ME", 12).I32(2).I32(40).Zeros(20).data);
}
TEST(Cpms, ReadNameLongerThanItsWidth) {
    EXPECT_EQ(Decode(0x0103, READ, "\"0123456789A\",1,20").Record(),
              Bytes().Text("0123456789", 12).Zeros(48).data);
}

// ---- registration
// --------------------------------------------------------------------------------------------------

DECODE_VECTOR(0x052D, Creg, ReadWithLocation) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        EXPECT_EQ(Decode(0x052D, READ, "2,1,\"1A2B\",\"00C3D4E5\"").Record(),
                  Bytes().I32(2).I32(1).Text("1A2B", 16).Text("00C3D4E5", 16).data);
    }
}
TEST(Creg, ReadWithNOneHasNoLocation) {
    EXPECT_EQ(Decode(0x052D, READ, "1,5,\"1A2B\",\"00C3D4E5\"").Record(),
              Bytes().I32(1).I32(5).Zeros(32).data);
    EXPECT_EQ(Decode(0x052D, READ, "0,1").Record(), Bytes().I32(0).I32(1).Zeros(32).data);
}
TEST(Creg, ReadTextsAreCutAtFifteen) {
    EXPECT_EQ(Decode(0x052D, READ, "2,1,\"0123456789ABCDE\",\"0123456789ABCDEF\"").Record(),
              Bytes().I32(2).I32(1).Text("0123456789ABCDE", 16).Text("0123456789ABCDE", 16).data);
}
TEST(Creg, ReadOnly) {
    for (uint8_t type : {EXEC, SET, TEST_})
        EXPECT_TRUE(Decode(0x052D, type, "2,1").Untouched());
}
DECODE_VECTOR(0x0553, Cgreg, ReadWithEverything) {
    StartWith(kModule);
    EXPECT_EQ(Decode(0x0553, READ, "2,1,\"1A2B\",\"00C3D4E5\",7,\"01\",3").Record(),
              Bytes().I32(2).I32(1).Text("1A2B", 16).Text("00C3D4E5", 16).I32(7).Text("01", 16).I32(3).data);
    EXPECT_TRUE(Logged("tPara.stat=1,tPara.stat=1\n", "atdecode"));
}
TEST(Cgreg, ReadWithMissingLastFields) {
    EXPECT_EQ(Decode(0x0553, READ, "0,1").Record(), Bytes().I32(0).I32(1).Zeros(56).data);
    EXPECT_EQ(Decode(0x0553, READ, "2,1,\"1A2B\",\"C3\",7").Record(),
              Bytes().I32(2).I32(1).Text("1A2B", 16).Text("C3", 16).I32(7).Zeros(20).data);
}
DECODE_VECTOR(0x0552, Cereg, ReadWithEverything) {
    EXPECT_EQ(Decode(0x0552, READ, "2,5,\"1A2B\",\"00C3D4E5\",7,1").Record(),
              Bytes().I32(2).I32(5).Text("1A2B", 16).Text("00C3D4E5", 16).I32(7).I32(1).data);
    EXPECT_EQ(Decode(0x0552, READ, "2,5,\"\",\"\",7").Record(),
              Bytes().I32(2).I32(5).Zeros(32).I32(7).I32(0).data);
}

// ---- +COPS
// ---------------------------------------------------------------------------------------------------------

DECODE_VECTOR(0x0517, Cops, SetHasNoParameters) {
    EXPECT_EQ(Decode(0x0517, SET, "OK").length, 0);
}
DECODE_VECTOR(0x0517, Cops, ReadGivesTheOperator) {
    StartWith(kModule);
    EXPECT_EQ(Decode(0x0517, READ, "0,0,\"Net A\",7").Record(),
              Bytes().I32(0).I32(0).Text("Net A", 68).I32(7).data);
    EXPECT_TRUE(
        Logged("pResLine->strResParas=0 0 Net\xfe"
               "A 7\n",
               "atdecode"));
    EXPECT_EQ(Decode(0x0517, READ, "2").Record(), Bytes().I32(2).Zeros(76).data);
    EXPECT_EQ(Decode(0x0517, READ, "0,0,\"" + std::string(67, 'n') + "\",7").Record(),
              Bytes().I32(0).I32(0).Text(std::string(67, 'n'), 68).I32(7).data);
    EXPECT_EQ(Decode(0x0517, READ, "0,0,\"" + std::string(68, 'n') + "\",7").Record(),
              Bytes().I32(0).I32(0).Text(std::string(67, 'n'), 68).I32(0).data);
}
DECODE_VECTOR(0x0517, Cops, TestWritesTheListIntoItsFile) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        const Decoded got =
            Decode(0x0517, TEST_,
                   "(2,\"Net A\",\"A\",\"46001\",\"7\"),(1,\"Net;B\",\"B\",\"46002\",\"2\"),,(0-4),(0-2)");
        EXPECT_EQ(got.length, 12804);
        EXPECT_EQ(got.paras.find_first_not_of('\xa5'), std::string::npos);
        EXPECT_EQ(Files().Content("/etc_rw/config/copslist"), Bytes()
                                                                  .I32(2)
                                                                  .I32(2)
                                                                  .Text("Net A", 68)
                                                                  .Text("A", 20)
                                                                  .Text("46001", 12)
                                                                  .Text("7", 24)
                                                                  .I32(1)
                                                                  .Text("Net;B", 68)
                                                                  .Text("B", 20)
                                                                  .Text("46002", 12)
                                                                  .Text("2", 24)
                                                                  .Zeros(98 * 128)
                                                                  .data);
        EXPECT_EQ(Platform().Get("manual_searching_netwrok"), "0");
        EXPECT_TRUE(Logged("========Parse_COPS_Res manual search network end========\n", "atdecode"));
    }
}
TEST(Cops, TestWithoutOperatorsWritesAnEmptyList) {
    StartWith(kModule);
    EXPECT_EQ(Decode(0x0517, TEST_, "OK").length, 12804);
    EXPECT_EQ(Files().Content("/etc_rw/config/copslist"), Bytes().Zeros(12804).data);
}
TEST(Cops, TestOfAHundredAndOneOperatorsTakesAHundred) {
    StartWith(kModule);
    std::string text;
    for (int i = 0; i < 101; ++i)
        text += (i != 0 ? ",(" : "(") + std::to_string(i) + ",\"N\",\"N\",\"1\",7)";
    Decode(0x0517, TEST_, text);
    const std::string file = Files().Content("/etc_rw/config/copslist");
    EXPECT_EQ(file.substr(0, 8), Bytes().I32(100).I32(0).data);
    EXPECT_EQ(file.substr(4 + 99 * 128, 4), I32(99));
}
TEST(Cops, TestTextsAreCutAtTheirWidths) {
    StartWith(kModule);
    Decode(0x0517, TEST_,
           "(2,\"" + std::string(64, 'l') + "\",\"" + std::string(16, 's') + "\",\"0123456789\",\"" +
               std::string(21, 'a') + "\")");
    EXPECT_EQ(Files().Content("/etc_rw/config/copslist").substr(0, 132), Bytes()
                                                                             .I32(1)
                                                                             .I32(2)
                                                                             .Text(std::string(64, 'l'), 68)
                                                                             .Text(std::string(16, 's'), 20)
                                                                             .Text("0123456789", 12)
                                                                             .Text(std::string(20, 'a'), 24)
                                                                             .data);
}
TEST(Cops, TestWithoutAFileStillAnswers) {
    StartWith(kModule);
    Files().refused = "/etc_rw/config/copslist";
    EXPECT_EQ(Decode(0x0517, TEST_, "(2,\"N\",\"N\",\"46001\",7)").length, 12804);
    EXPECT_TRUE(Logged("Parse_Cops_Res open file failed.", "atdecode", LOG_CRIT));
}
