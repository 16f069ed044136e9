#include "checks/support/log_capture.h"
#include "checks/unit/vectors.h"

// Encoders of calls and supplementary services.

namespace {

std::string I32(int32_t value) {
    return Bytes().I32(value).data;
}

std::string Forwarding(int32_t reason, int32_t mode, const std::string& number, int32_t type, int32_t classx,
                       int32_t time) {
    return Bytes().I32(reason).I32(mode).Text(number, 32).I32(type).I32(classx).I32(time).data;
}

}  // namespace

// ---- Commands without parameters

TEST(CallsWithoutParameters, PrintNone) {
    for (uint16_t id : std::initializer_list<uint16_t>{0x0404, 0x0403, 0x0410, 0x0518,
                                                       0x0551})  // A, +CHUP, +CHV, +CLCC, +ZCHUPD
        for (uint8_t type : {EXEC, SET, READ, TEST_})
            EXPECT_EQ(Encoded(id, type, "1"), "") << id;
}
TEST(CallsWithoutParameters, ReportsAreNotSendable) {
    for (uint16_t id : std::initializer_list<uint16_t>{0x053D, 0x0541, 0x0542, 0x055E, 0x0413})
        EXPECT_EQ(Encoded(id, EXEC), "(not sendable)") << id;
}

// ---- +CDV

ENCODE_VECTOR(0x040F, Cdv, NumberAndSemicolon) {
    StartWith(kModule);
    EXPECT_EQ(Encoded(0x040F, EXEC, "10086"), "10086;");
    EXPECT_TRUE(Logged("call_num  buf= 8", "atencode"));
}
TEST(Cdv, ThirtyFiveCharactersAtMost) {
    EXPECT_EQ(Encoded(0x040F, EXEC, std::string(36, '7')), std::string(35, '7') + ";");
    EXPECT_EQ(Encoded(0x040F, EXEC, std::string(632, '7'), 65535), std::string(35, '7') + ";");
}
TEST(Cdv, NoNumber) {
    EXPECT_EQ(Encoded(0x040F, EXEC, ""), ";");
    EXPECT_EQ(Encoded(0x040F, EXEC,
                      std::string("\0"
                                  "1",
                                  2)),
              ";");
}
TEST(Cdv, ExecOnly) {
    for (uint8_t type : {SET, READ, TEST_})
        EXPECT_EQ(Encoded(0x040F, type, "10086"), "");
}

// ---- Texts that are printed as they stand

ENCODE_VECTOR(0x0409, Vts, PrintsTheTonesAsGiven) {
    EXPECT_EQ(Encoded(0x0409, SET, Bytes().Text("1,\"#\"", 10).data), "1,\"#\"");
    EXPECT_EQ(Encoded(0x0409, SET, "0123456789"), "0123456789") << "a text that fills its array";
    ExpectSetOfThisSizeOnly(0x0409, Bytes().Text("5", 10).data);
}
TEST(Vts, NoTonesPrintNothing) {
    EXPECT_EQ(Encoded(0x0409, SET, Bytes().Zeros(10).data), "");
    EXPECT_EQ(Encoded(0x0409, SET, Bytes().Zeros(1).Text("12", 9).data), "");
}

ENCODE_VECTOR(0x0411, Zvocloopbk, PrintsTheTextAsGivenAndLogsIt) {
    StartWith(kModule);
    EXPECT_EQ(Encoded(0x0411, SET, Bytes().Text("1,2", 10).data), "1,2");
    EXPECT_TRUE(Logged("pCmd->usParaLen= 10 pCmd->aucParas= 1,2 ", "atencode"));
    EXPECT_TRUE(Logged("pCmdLine->strCmdParas= 1,2 ", "atencode"));
    EXPECT_EQ(Encoded(0x0411, SET, "0123456789"), "0123456789") << "a text that fills its array";
    ExpectSetOfThisSizeOnly(0x0411, Bytes().Text("5", 10).data);
}
TEST(Zvocloopbk, ARefusedRequestIsLoggedWithoutAResult) {
    StartWith(kModule);
    EXPECT_EQ(Encoded(0x0411, SET, "1,2", 3), "");
    EXPECT_TRUE(Logged("pCmd->usParaLen= 3 pCmd->aucParas= 1,2 ", "atencode"));
    EXPECT_EQ(Encoded(0x0411, SET, std::string(632, 'x'), 65535), "");
    EXPECT_TRUE(Logged("pCmd->usParaLen= 65535 pCmd->aucParas= " + std::string(632, 'x') + " ", "atencode"));
    EXPECT_FALSE(LoggedPart("pCmdLine->strCmdParas="));
}

// ---- Integers

ENCODE_VECTOR(0x0514, Clvl, PrintsOneInteger) {
    ExpectPrintsOneInteger(0x0514);
}
ENCODE_VECTOR(0x0519, Cmvl, PrintsOneInteger) {
    ExpectPrintsOneInteger(0x0519);
}
ENCODE_VECTOR(0x0513, Clip, PrintsOneInteger) {
    ExpectPrintsOneInteger(0x0513);
}
ENCODE_VECTOR(0x053C, Clir, PrintsOneInteger) {
    ExpectPrintsOneInteger(0x053C);
}
ENCODE_VECTOR(0x053E, Chld, PrintsOneIntegerThatIsLogged) {
    ExpectPrintsOneInteger(0x053E);
    StartWith(kModule);
    EXPECT_EQ(Encoded(0x053E, SET, I32(2)), "2");
    EXPECT_TRUE(Logged("call_hold  pCmdLine->strCmdParas = 2", "atencode"));
    ClearLog();
    EXPECT_EQ(Encoded(0x053E, SET, "2"), "");
    EXPECT_FALSE(LoggedPart("call_hold")) << "only what was printed is logged";
}
ENCODE_VECTOR(0x052C, Ccwa, TwoIntegers) {
    EXPECT_EQ(Encoded(0x052C, SET, Bytes().I32(1).I32(2).data), "1,2");
    EXPECT_EQ(Encoded(0x052C, SET, Bytes().I32(INT32_MIN).I32(INT32_MAX).data), "-2147483648,2147483647");
    ExpectSetOfThisSizeOnly(0x052C, Bytes().I32(1).I32(2).data);
}

// ---- +ZCALL

// Pinned: the record is taken and never printed.
TEST(Zcall, NeverPrints) {
    for (uint8_t type : {EXEC, SET, READ, TEST_})
        EXPECT_EQ(Encoded(0x0525, type, "1"), "");
    EXPECT_EQ(Encoded(0x0525, SET, ""), "");
    EXPECT_EQ(Encoded(0x0525, SET, "12"), "");
}

// ---- +CCFC

ENCODE_VECTOR(0x052B, Ccfc, AllButARegistrationPrintsReasonAndMode) {
    for (int32_t mode : {0, 1, 2, 4, -1, INT32_MAX})
        for (int32_t reason : {0, 2}) {
            EXPECT_EQ(Encoded(0x052B, SET, Forwarding(reason, mode, "+4912", 145, 1, 20)),
                      std::to_string(reason) + "," + std::to_string(mode));
        }
}
ENCODE_VECTOR(0x052B, Ccfc, RegistrationPrintsTheNumberUnquoted) {
    EXPECT_EQ(Encoded(0x052B, SET, Forwarding(0, 3, "+4912", 0, 1, 20)), "0,3,+4912,145,1");
    EXPECT_EQ(Encoded(0x052B, SET, Forwarding(1, 3, "10086", 0, 7, 0)), "1,3,10086,129,7");
    EXPECT_EQ(Encoded(0x052B, SET, Forwarding(3, 3, "", 0, 255, 5)), "3,3,,129,255");
}
ENCODE_VECTOR(0x052B, Ccfc, RegistrationForNoReplyPrintsTheTime) {
    EXPECT_EQ(Encoded(0x052B, SET, Forwarding(2, 3, "+4912", 0, 1, 20)), "2,3,+4912,145,1,0,0,20");
    EXPECT_EQ(Encoded(0x052B, SET, Forwarding(2, 3, "4912", 0, 1, 0)), "2,3,4912,129,1,0,0,0");
    EXPECT_EQ(Encoded(0x052B, SET, Forwarding(2, 3, "4912", 0, INT32_MIN, INT32_MAX)),
              "2,3,4912,129,-2147483648,0,0,2147483647");
}
// Pinned: the type is told from the number, whatever the record says.
TEST(Ccfc, TheTypeOfTheRecordIsOverwritten) {
    EXPECT_EQ(Encoded(0x052B, SET, Forwarding(0, 3, "10086", 145, 1, 0)), "0,3,10086,129,1");
    EXPECT_EQ(Encoded(0x052B, SET, Forwarding(0, 3, "+10086", 129, 1, 0)), "0,3,+10086,145,1");
    EXPECT_EQ(Encoded(0x052B, SET, Forwarding(0, 3, "0+1", 145, 1, 0)), "0,3,0+1,129,1");
    EXPECT_EQ(Encoded(0x052B, SET, Forwarding(0, 3, "\"+1\"", 145, 1, 0)), "0,3,\"+1\",129,1");
}
TEST(Ccfc, ANumberThatFillsItsArray) {
    const std::string number = "+" + std::string(31, '4');
    EXPECT_EQ(Encoded(0x052B, SET, Forwarding(0, 3, number, -1, 1, 0)), "0,3," + number + ",145,1");
}
TEST(Ccfc, SetOfItsSizeOnly) {
    ExpectSetOfThisSizeOnly(0x052B, Forwarding(2, 3, "+4912", 0, 1, 20));
    ExpectSetOfThisSizeOnly(0x052B, Forwarding(0, 2, "", 0, 0, 0));
}

// ---- +CUSD

TEST(Cusd, TwoAloneEndsTheDialogueWhateverElseTheRecordHolds) {  // pinned
    EXPECT_EQ(Encoded(0x0532, SET, I32(2) + std::string(36, 'x') + I32(-1)), "2");
    EXPECT_EQ(Encoded(0x0532, SET, I32(-2) + std::string(36, 'x') + I32(-1)),
              "-2," + std::string(36, 'x') + ",-1");
    ExpectSetOfThisSizeOnly(0x0532, Bytes().I32(2).Zeros(40).data);
    ExpectSetOfThisSizeOnly(0x0532, Bytes().I32(1).Text("\"*100#\"", 36).I32(15).data);
}
