#include "checks/support/fake_platform.h"
#include "checks/support/log_capture.h"
#include "checks/unit/vectors.h"

// Encoders of the commands that a router needs first: registration, signal, SIM, message storage, calls.

namespace {
std::string I32(int32_t value) {
    return Bytes().I32(value).data;
}
}  // namespace

TEST(At, ExecTakesNoParameters) {
    EXPECT_EQ(Encoded(0x0001, EXEC), "");
}

TEST(Cimi, TakesNoParameters) {
    EXPECT_EQ(Encoded(0x0111, EXEC), "");
    EXPECT_EQ(Encoded(0x0111, SET, I32(1)), "");
}

TEST(NoneKind, NullArgumentsAreLogged) {
    StartWith(kModule);
    int index = 0;
    ASSERT_EQ(Bk_Find_Cmd_By_Id(0x0604, &index), 0);
    g_astAtCmdTable[index].pfnMakeCmd(nullptr, nullptr);
    EXPECT_TRUE(Logged("pCmdLine or pCmd is null!", "atencode"));
}

// ---- D
// -------------------------------------------------------------------------------------------------------------

ENCODE_VECTOR(0x0401, Dial, NumberAndSemicolon) {
    StartWith(kModule);
    EXPECT_EQ(Encoded(0x0401, EXEC, "10086"), "10086;");
    EXPECT_TRUE(Logged("call_num  buf= 1", "atencode"));
    EXPECT_TRUE(Logged("call_num  buf= 6", "atencode"));
}
TEST(Dial, TheNumberEndsAtItsFirstNul) {
    EXPECT_EQ(Encoded(0x0401, EXEC,
                      std::string("+49\0"
                                  "123",
                                  7)),
              "+49;");
}
TEST(Dial, NoNumber) {
    EXPECT_EQ(Encoded(0x0401, EXEC, ""), ";");
    EXPECT_EQ(Encoded(0x0401, EXEC, std::string(1, '\0')), ";");
}
TEST(Dial, ThirtyFiveCharactersAtMost) {
    const std::string number(35, '7');
    EXPECT_EQ(Encoded(0x0401, EXEC, number), number + ";");
    EXPECT_EQ(Encoded(0x0401, EXEC, number + "8"), number + ";");
    EXPECT_EQ(Encoded(0x0401, EXEC, std::string(632, '7'), 65535), number + ";");
}
TEST(Dial, LengthShorterThanTheText) {
    EXPECT_EQ(Encoded(0x0401, EXEC, "10086", 3), "100;");
}
TEST(Dial, ExecOnly) {
    for (uint8_t type : {SET, READ, TEST_})
        EXPECT_EQ(Encoded(0x0401, type, "10086"), "");
}

// ---- +CPMS
// ---------------------------------------------------------------------------------------------------------

ENCODE_VECTOR(0x0103, Cpms, SetPrintsThreeStorages) {
    EXPECT_EQ(Encoded(0x0103, SET, Bytes().Text("SM", 10).Text("ME", 10).Text("MT", 10).data),
              "\"SM\",\"ME\",\"MT\"");
}
TEST(Cpms, SetRecordOneByteShortGivesTheBareLine) {
    EXPECT_EQ(Encoded(0x0103, SET, std::string(29, 'S')), "");
}
TEST(Cpms, SetRecordOneByteLongGivesTheBareLine) {
    EXPECT_EQ(Encoded(0x0103, SET, std::string(31, 'S')), "");
}
TEST(Cpms, SetTextsWithoutNulEndWithTheirArrays) {
    EXPECT_EQ(Encoded(0x0103, SET, "0123456789abcdefghijABCDEFGHIJ"),
              "\"0123456789\",\"abcdefghij\",\"ABCDEFGHIJ\"");
}
TEST(Cpms, OtherTypesGiveTheBareLine) {
    const std::string record = Bytes().Text("SM", 10).Text("SM", 10).Text("SM", 10).data;
    for (uint8_t type : {EXEC, READ, TEST_})
        EXPECT_EQ(Encoded(0x0103, type, record), "");
}

// ---- +CPIN
// ---------------------------------------------------------------------------------------------------------

ENCODE_VECTOR(0x0301, Cpin, SetWithoutNewPinPrintsThePin) {
    EXPECT_EQ(Encoded(0x0301, SET, Bytes().Text("1234", 32).Zeros(32).data), "\"1234\"");
}
ENCODE_VECTOR(0x0301, Cpin, SetWithNewPinPrintsBoth) {
    EXPECT_EQ(Encoded(0x0301, SET, Bytes().Text("12345678", 32).Text("0000", 32).data),
              "\"12345678\",\"0000\"");
}
TEST(Cpin, SetRecordOfTheWrongSize) {
    EXPECT_EQ(Encoded(0x0301, SET, std::string(63, '1')), "");
    EXPECT_EQ(Encoded(0x0301, SET, std::string(65, '1')), "");
}
TEST(Cpin, SetTextsWithoutNul) {
    EXPECT_EQ(Encoded(0x0301, SET, std::string(32, '1') + std::string(32, '2')),
              "\"" + std::string(32, '1') + "\",\"" + std::string(32, '2') + "\"");
}

// ---- single integers
// -----------------------------------------------------------------------------------------------

ENCODE_VECTOR(0x0104, Cmgf, SetPrintsTheMode) {
    EXPECT_EQ(Encoded(0x0104, SET, I32(0)), "0");
    EXPECT_EQ(Encoded(0x0104, SET, I32(INT32_MIN)), "-2147483648");
    EXPECT_EQ(Encoded(0x0104, SET, I32(INT32_MAX)), "2147483647");
    EXPECT_EQ(Encoded(0x0104, SET, "\1\1\1"), "");
}
ENCODE_VECTOR(0x0106, Cmgl, SetPrintsTheStatus) {
    EXPECT_EQ(Encoded(0x0106, SET, I32(4)), "4");
}
ENCODE_VECTOR(0x0514, Clvl, SetPrintsTheLevel) {
    EXPECT_EQ(Encoded(0x0514, SET, I32(7)), "7");
}
ENCODE_VECTOR(0x0544, Cfun, SetPrintsTheFunction) {
    EXPECT_EQ(Encoded(0x0544, SET, I32(4)), "4");
}
ENCODE_VECTOR(0x052D, Creg, SetPrintsN) {
    EXPECT_EQ(Encoded(0x052D, SET, I32(2)), "2");
}
ENCODE_VECTOR(0x0553, Cgreg, SetPrintsN) {
    EXPECT_EQ(Encoded(0x0553, SET, I32(2)), "2");
}
ENCODE_VECTOR(0x0552, Cereg, SetPrintsN) {
    EXPECT_EQ(Encoded(0x0552, SET, I32(2)), "2");
}

ENCODE_VECTOR(0x010B, Cmgd, SetPrintsABlankBehindTheComma) {
    EXPECT_EQ(Encoded(0x010B, SET, Bytes().I32(3).I32(0).data), "3, 0");
    EXPECT_EQ(Encoded(0x010B, SET, I32(3)), "");
}

// ---- +COPS
// ---------------------------------------------------------------------------------------------------------

ENCODE_VECTOR(0x0517, Cops, SetPrintsTheOperatorAsGiven) {
    StartWith(kModule);
    EXPECT_EQ(Encoded(0x0517, SET, Bytes().I32(1).I32(2).Text("\"46001\"", 64).I32(7).data),
              "1,2,\"46001\",7");
    EXPECT_EQ(Encoded(0x0517, SET, Bytes().I32(0).I32(0).Text("", 64).I32(0).data), "0,0,,0");
    EXPECT_EQ(Encoded(0x0517, SET, std::string(75, '1')), "");
    EXPECT_TRUE(Platform().writes.empty());
}
TEST(Cops, TestNotesTheStartOfASearch) {
    StartWith(kModule);
    EXPECT_EQ(Encoded(0x0517, TEST_), "");
    EXPECT_EQ(Platform().Get("manual_searching_netwrok"), "1");
    EXPECT_TRUE(Logged("========Make_COPS_Cmd manual search network start========\n", "atencode"));
}
TEST(Cops, ReadNotesNothing) {
    StartWith(kModule);
    EXPECT_EQ(Encoded(0x0517, READ), "");
    EXPECT_TRUE(Platform().writes.empty());
}
