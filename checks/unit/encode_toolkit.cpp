#include "checks/support/log_capture.h"
#include "checks/unit/vectors.h"

// Encoders of the SIM toolkit.

TEST(ToolkitWithoutParameters, PrintsNone) {
    for (uint16_t id : std::initializer_list<uint16_t>{0x0701, 0x070E})  // +ZSTM, +ZDISTR
        for (uint8_t type : {EXEC, SET, READ, TEST_})
            EXPECT_EQ(Encoded(id, type, "1"), "") << id;
}
TEST(ToolkitReports, AreNotSendable) {
    for (uint16_t id : std::initializer_list<uint16_t>{0x0702, 0x0705, 0x0706, 0x0711, 0x0709, 0x070A, 0x070C,
                                                       0x070F, 0x0630, 0x0632})
        EXPECT_EQ(Encoded(id, EXEC), "(not sendable)") << id;
}

ENCODE_VECTOR(0x0703, Zselm, PrintsOneInteger) {
    ExpectPrintsOneInteger(0x0703);
}
ENCODE_VECTOR(0x0704, Zseli, PrintsOneInteger) {
    ExpectPrintsOneInteger(0x0704);
}
ENCODE_VECTOR(0x0707, Zbk, PrintsOneInteger) {
    ExpectPrintsOneInteger(0x0707);
}

// ---- +ZINPR, +ZINKR

namespace {

std::string Input(int32_t value, const std::string& text) {
    return Bytes().I32(value).Text(text, 512).data;
}

void ExpectInput(uint16_t id) {
    EXPECT_EQ(Encoded(id, SET, Input(1, "a \"b\",c")), "1,a \"b\",c");
    EXPECT_EQ(Encoded(id, SET, Input(0, "")), "0,");
    EXPECT_EQ(Encoded(id, SET, Input(1, std::string(509, 'x'))), "1," + std::string(509, 'x'));
    // The line's parameters end at 511 characters.
    EXPECT_EQ(Encoded(id, SET, Input(1, std::string(510, 'x'))), "1," + std::string(509, 'x'));
    EXPECT_EQ(Encoded(id, SET, Input(INT32_MIN, std::string(512, 'x'))),
              "-2147483648," + std::string(499, 'x'));
    ExpectSetOfThisSizeOnly(id, Input(1, "a"));
}

}  // namespace

ENCODE_VECTOR(0x070B, Zinpr, PrintsNumberAndText) {
    ExpectInput(0x070B);
}
ENCODE_VECTOR(0x070D, Zinkr, PrintsNumberAndText) {
    ExpectInput(0x070D);
}

// ---- +ZUTP

ENCODE_VECTOR(0x062F, Zutp, PrintsTheTextAsGiven) {
    EXPECT_EQ(Encoded(0x062F, SET, Bytes().Text("1,\"FF 7F\"", 128).data), "1,\"FF 7F\"");
    EXPECT_EQ(Encoded(0x062F, SET, std::string(128, 'F')), std::string(128, 'F'));
    EXPECT_EQ(Encoded(0x062F, SET, Bytes().Zeros(128).data), "");
    ExpectSetOfThisSizeOnly(0x062F, Bytes().Text("1", 128).data);
}

// ---- +ZUTR

namespace {

std::string Response(int32_t cmdtype, int32_t qualifier, int32_t number, int32_t result,
                     const std::string& addresult, int32_t codemode, const std::string& text) {
    return Bytes()
        .I32(cmdtype)
        .I32(qualifier)
        .I32(number)
        .I32(result)
        .Text(addresult, 12)
        .I32(codemode)
        .Text(text, 128)
        .data;
}

}  // namespace

ENCODE_VECTOR(0x0631, Zutr, PrintsAndLogsEveryField) {
    StartWith(kModule);
    EXPECT_EQ(Encoded(0x0631, SET, Response(35, 1, 2, 3, "04", 5, "six, 7")), "35,1,2,3,04,5,\"six, 7\"");
    EXPECT_TRUE(
        Logged("Make_ZUTR_Cmd enter  tPara.cmdtype=35,tPara.cmdqualifier=1,tPara.cmdnum=2,tPara.result=3,"
               "tPara.addresult=04,tPara.codemode=5,tPara.inputtxtn=six, 7",
               "atencode"));
    EXPECT_EQ(Encoded(0x0631, SET, Response(0, 0, 0, 0, "", 0, "")), "0,0,0,0,,0,\"\"");
}
TEST(Zutr, TextsThatFillTheirArrays) {
    StartWith(kModule);
    const std::string text(128, 'x');
    EXPECT_EQ(Encoded(0x0631, SET,
                      Response(INT32_MIN, INT32_MIN, INT32_MIN, INT32_MIN, "0123456789AB", INT32_MIN, text)),
              "-2147483648,-2147483648,-2147483648,-2147483648,0123456789AB,-2147483648,\"" + text + "\"");
    EXPECT_TRUE(
        LoggedPart("tPara.addresult=0123456789AB,tPara.codemode=-2147483648,tPara.inputtxtn=" + text));
    EXPECT_FALSE(LoggedPart(text + "x"));
}
TEST(Zutr, ARefusedRequestIsNotLogged) {
    ExpectSetOfThisSizeOnly(0x0631, Response(35, 1, 2, 3, "04", 5, "six"));
    StartWith(kModule);
    EXPECT_EQ(Encoded(0x0631, SET, std::string(159, '1')), "");
    EXPECT_EQ(Encoded(0x0631, READ, std::string(160, '1')), "");
    EXPECT_FALSE(LoggedPart("Make_ZUTR_Cmd"));
}
