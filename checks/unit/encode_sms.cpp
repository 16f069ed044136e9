#include "checks/support/fake_platform.h"
#include "checks/support/log_capture.h"
#include "checks/unit/vectors.h"

// Encoders of the short message service.

TEST(SmsReports, AreNotSendable) {
    for (uint16_t id : std::initializer_list<uint16_t>{0x0110, 0x0112, 0x0117, 0x0521})
        EXPECT_EQ(Encoded(id, EXEC), "(not sendable)") << id;
}

ENCODE_VECTOR(0x0104, Cmgf, PrintsOneInteger) {
    ExpectPrintsOneInteger(0x0104);
}
ENCODE_VECTOR(0x0106, Cmgl, PrintsOneInteger) {
    ExpectPrintsOneInteger(0x0106);
}
ENCODE_VECTOR(0x0107, Cmgr, PrintsOneInteger) {
    ExpectPrintsOneInteger(0x0107);
}
ENCODE_VECTOR(0x0116, Cmms, PrintsOneInteger) {
    ExpectPrintsOneInteger(0x0116);
}
ENCODE_VECTOR(0x0114, Ztag, PrintsTwoIntegers) {
    EXPECT_EQ(Encoded(0x0114, SET, Bytes().I32(3).I32(0).data), "3,0");
    EXPECT_EQ(Encoded(0x0114, SET, Bytes().I32(INT32_MIN).I32(INT32_MAX).data), "-2147483648,2147483647");
    ExpectSetOfThisSizeOnly(0x0114, Bytes().I32(3).I32(0).data);
}
ENCODE_VECTOR(0x010E, Cnmi, PrintsFiveIntegers) {
    EXPECT_EQ(Encoded(0x010E, SET, Bytes().I32(1).I32(2).I32(3).I32(4).I32(5).data), "1,2,3,4,5");
    EXPECT_EQ(Encoded(0x010E, SET, Bytes().I32(INT32_MIN).I32(INT32_MAX).I32(0).I32(-1).I32(INT32_MIN).data),
              "-2147483648,2147483647,0,-1,-2147483648");
    ExpectSetOfThisSizeOnly(0x010E, Bytes().Zeros(20).data);
}
TEST(Cpms, EmptyStoragesStayQuoted) {
    EXPECT_EQ(Encoded(0x0103, SET, Bytes().Text("SM", 10).Zeros(20).data), "\"SM\",\"\",\"\"");
    ExpectSetOfThisSizeOnly(0x0103, Bytes().Zeros(30).data);
}
// Pinned: the blank behind the comma.
TEST(Cmgd, PrintsABlankBehindTheCommaWhateverTheNumbers) {
    EXPECT_EQ(Encoded(0x010B, SET, Bytes().I32(INT32_MIN).I32(INT32_MAX).data), "-2147483648, 2147483647");
    EXPECT_EQ(Encoded(0x010B, SET, Bytes().I32(0).I32(4).data), "0, 4");
    ExpectSetOfThisSizeOnly(0x010B, Bytes().I32(3).I32(0).data);
}

// ---- +ZVMAIL

TEST(Zvmail, TakesNoParameters) {
    for (uint8_t type : {EXEC, SET, READ, TEST_})
        EXPECT_EQ(Encoded(0x0118, type, "1"), "");
}

// ---- +CSCA

ENCODE_VECTOR(0x0105, Csca, PrintsTheAddressQuoted) {
    EXPECT_EQ(Encoded(0x0105, SET, Bytes().Text("+4917", 64).data), "\"+4917\"");
    EXPECT_EQ(Encoded(0x0105, SET, Bytes().Zeros(64).data), "\"\"");
    EXPECT_EQ(Encoded(0x0105, SET, std::string(64, '4')), "\"" + std::string(64, '4') + "\"");
    ExpectSetOfThisSizeOnly(0x0105, Bytes().Text("+4917", 64).data);
}

// ---- +CMGS

ENCODE_VECTOR(0x0108, Cmgs, PrintsTheLengthAndNotesThatAMessageIsOnItsWay) {
    StartWith(kModule);
    EXPECT_EQ(Encoded(0x0108, SET, Bytes().I32(23).Text("0791AB", 500).data), "23");
    EXPECT_EQ(Platform().Get("sending_sms"), "1");
    EXPECT_EQ(Platform().writes.size(), 1U);
    EXPECT_TRUE(Logged("========Make_Cmgs_Cmd sending sms start========", "atencode"));
    EXPECT_EQ(Encoded(0x0108, SET, Bytes().I32(INT32_MIN).data + std::string(500, 'F')), "-2147483648");
}
TEST(Cmgs, ARefusedRequestNotesNothing) {
    StartWith(kModule);
    const std::string record = Bytes().I32(23).Text("0791AB", 500).data;
    ExpectSetOfThisSizeOnly(0x0108, record);
    StartWith(kModule);
    EXPECT_EQ(Encoded(0x0108, SET, record.substr(1)), "");
    EXPECT_EQ(Encoded(0x0108, SET, record + "x"), "");
    for (uint8_t type : {EXEC, READ, TEST_})
        EXPECT_EQ(Encoded(0x0108, type, record), "");
    EXPECT_TRUE(Platform().writes.empty());
    EXPECT_FALSE(LoggedPart("sending sms"));
}

// ---- +CMGW

ENCODE_VECTOR(0x010A, Cmgw, PrintsLengthAndStatus) {
    StartWith(kModule);
    EXPECT_EQ(Encoded(0x010A, SET, Bytes().I32(23).I32(2).Text("0791AB", 500).data), "23,2");
    EXPECT_EQ(Encoded(0x010A, SET, Bytes().I32(INT32_MAX).I32(INT32_MIN).data + std::string(500, 'F')),
              "2147483647,-2147483648");
    ExpectSetOfThisSizeOnly(0x010A, Bytes().I32(23).I32(2).Zeros(500).data);
    EXPECT_TRUE(Platform().writes.empty()) << "storing is not sending";
}
