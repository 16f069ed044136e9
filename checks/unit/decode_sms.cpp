#include "checks/support/fake_platform.h"
#include "checks/support/log_capture.h"
#include "checks/unit/vectors.h"

// Decoders of the short message service; the message list stands with the lists.

TEST(SmsWithoutAnswer, ReadNothing) {
    ExpectReadsNothing(0x0114);  // +ZTAG
    ExpectReadsNothing(0x0116);  // +CMMS
}

DECODE_VECTOR(0x0104, Cmgf, ReadsOneInteger) {
    ExpectReadsOneInteger(0x0104, {READ});
}

// ---- +CPMS

TEST(Cpms, OtherTypesAreNotServed) {
    for (uint8_t type : {uint8_t{0}, EXEC, TEST_})
        EXPECT_TRUE(Decode(0x0103, type, "1,20,2,40,3,60").Untouched());
    EXPECT_EQ(Decode(0x0103, SET, "1,20,2,40,3,60,7").paras[24], '\xa5');
    EXPECT_EQ(Decode(0x0103, READ, "OK").Record(), Bytes().Text("OK", 12).Zeros(48).data);
    EXPECT_EQ(Decode(0x0103, READ, "OK").paras[60], '\xa5');
    EXPECT_EQ(Decode(0x0103, SET, "99999999999,-99999999999").Record(),
              Bytes().I32(INT32_MAX).I32(INT32_MIN).Zeros(16).data);
}

// ---- +CSCA

DECODE_VECTOR(0x0105, Csca, ReadGivesAddressAndType) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        const auto record = [](const std::string& text) { return Decode(0x0105, READ, text).Record(); };
        EXPECT_EQ(record("\"+49 17\",145"), Bytes().Text("+49 17", 36).Text("145", 36).data);
        EXPECT_EQ(record("\"+4917\""), Bytes().Text("+4917", 36).Zeros(36).data);
        EXPECT_EQ(record("\"+4917\","), Bytes().Text("+4917", 36).Zeros(36).data);
        EXPECT_EQ(record("\"\",129"), Bytes().Text("", 36).Text("129", 36).data);
        EXPECT_EQ(record(""), Bytes().Zeros(72).data);
        const std::string full(32, '4');
        EXPECT_EQ(record("\"" + full + "\"," + full), Bytes().Text(full, 36).Text(full, 36).data);
        EXPECT_EQ(record("\"" + full + "56\",145"), Bytes().Text(full, 36).Text("56", 36).data)
            << "what is left of the address reads as its type";
    }
    EXPECT_EQ(Decode(0x0105, READ, "1,2").paras[72], '\xa5');
    for (uint8_t type : {uint8_t{0}, EXEC, SET, TEST_})
        EXPECT_TRUE(Decode(0x0105, type, "\"+4917\",145").Untouched());
}

// ---- +CMGS

DECODE_VECTOR(0x0108, Cmgs, SetGivesTheReferenceAndEndsTheNote) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        EXPECT_EQ(Decode(0x0108, SET, "12,\"07 91\"").Record(), Bytes().I32(12).Text("07 91", 504).data);
        EXPECT_EQ(Platform().Get("sending_sms"), "0");
        EXPECT_TRUE(Logged("========Parse_Cmgs_Res sending sms end========", "atdecode"));
    }
}
TEST(Cmgs, ReferenceAlone) {
    EXPECT_EQ(Decode(0x0108, SET, "255").Record(), Bytes().I32(255).Zeros(504).data);
    EXPECT_EQ(Decode(0x0108, SET, "99999999999,\"\"").Record(), Bytes().I32(INT32_MAX).Zeros(504).data);
    EXPECT_EQ(Decode(0x0108, SET, "12,").Record(), Bytes().I32(12).Zeros(504).data);
    StartWith(kModule);
    EXPECT_EQ(Decode(0x0108, SET, "OK").Record(), Bytes().Zeros(508).data);
    EXPECT_EQ(Platform().Get("sending_sms"), "0") << "a bare OK ends it, too";
}
TEST(Cmgs, AcknowledgementLongerThanItsField) {
    for (size_t size : {500U, 501U, 504U, 900U})
        EXPECT_EQ(Decode(0x0108, SET, "1,\"" + std::string(size, 'A') + "\"").Record(),
                  Bytes().I32(1).Text(std::string(500, 'A'), 504).data);
    EXPECT_EQ(Decode(0x0108, SET, "1," + std::string(900, 'A')).paras[508], '\xa5');
}
TEST(Cmgs, OnlyASetEndsTheNote) {
    StartWith(kModule);
    for (uint8_t type : {uint8_t{0}, EXEC, READ, TEST_})
        EXPECT_TRUE(Decode(0x0108, type, "12").Untouched());
    EXPECT_TRUE(Platform().writes.empty());
    EXPECT_FALSE(LoggedPart("sending sms"));
}

// ---- +CMGW, +CMGD, +CNMI

DECODE_VECTOR(0x010A, Cmgw, SetGivesThePlace) {
    ExpectReadsOneInteger(0x010A, {SET});
    StartWith(kModule);
    Decode(0x010A, SET, "17");
    EXPECT_TRUE(Logged("Parse_Cmgw_Res==tPara.index=17", "atdecode"));
}
TEST(Cmgd, SetOnlyAndWhateverTheText) {
    for (const char* text : {"OK", "", "1,2"}) {
        EXPECT_EQ(Decode(0x010B, SET, text).length, 0);
        EXPECT_EQ(Decode(0x010B, SET, text).paras.find_first_not_of('\xa5'), std::string::npos);
        for (uint8_t type : {uint8_t{0}, EXEC, READ, TEST_})
            EXPECT_TRUE(Decode(0x010B, type, text).Untouched());
    }
}
DECODE_VECTOR(0x010E, Cnmi, ReadGivesFiveIntegers) {
    EXPECT_EQ(Decode(0x010E, READ, "1,2,3,4,5").Record(), Bytes().I32(1).I32(2).I32(3).I32(4).I32(5).data);
    EXPECT_EQ(Decode(0x010E, READ, "1,2").Record(), Bytes().I32(1).I32(2).Zeros(12).data);
    EXPECT_EQ(Decode(0x010E, READ, "1,,3").Record(), Bytes().I32(1).Zeros(16).data);
    EXPECT_EQ(Decode(0x010E, READ, "\"1\",2").Record(), Bytes().Zeros(20).data) << "raw";
    EXPECT_EQ(Decode(0x010E, READ, "99999999999,-99999999999,0,0,1").Record(),
              Bytes().I32(INT32_MAX).I32(INT32_MIN).Zeros(8).I32(1).data);
    EXPECT_EQ(Decode(0x010E, READ, "1,2,3,4,5,6").paras[20], '\xa5');
    for (uint8_t type : {uint8_t{0}, EXEC, SET, TEST_})
        EXPECT_TRUE(Decode(0x010E, type, "1,2,3,4,5").Untouched());
}

// ---- +CMTI, +ZVMTI, +CDSI

namespace {

void ExpectNewMessage(uint16_t id) {
    for (const char* mode : {kModule, kOtherCard})
        for (uint8_t type = 0; type <= 4; ++type) {
            StartWith(mode);
            EXPECT_EQ(Decode(id, type, "\"S M\",17").Record(), Bytes().Text("S M", 12).I32(17).data);
            EXPECT_TRUE(Logged("tPara.memory:S M    tPara.index:17 ", "atdecode"));
            EXPECT_EQ(Decode(id, type, "\"\",17").Record(), Bytes().Zeros(12).I32(17).data);
            EXPECT_EQ(Decode(id, type, "\"SM\"").Record(), Bytes().Text("SM", 12).I32(0).data);
            EXPECT_EQ(Decode(id, type, "").Record(), Bytes().Zeros(16).data);
            EXPECT_EQ(Decode(id, type, "\"0123456789\",99999999999").Record(),
                      Bytes().Text("0123456789", 12).I32(INT32_MAX).data);
            EXPECT_EQ(Decode(id, type, "\"0123456789A\",17").Record(),
                      Bytes().Text("0123456789", 12).I32(0).data);
            EXPECT_EQ(Decode(id, type, "\"SM\",17").paras[16], '\xa5');
        }
}

}  // namespace

DECODE_VECTOR(0x0110, Cmti, MemoryAndPlace) {
    ExpectNewMessage(0x0110);
}
DECODE_VECTOR(0x0117, Zvmti, MemoryAndPlace) {
    ExpectNewMessage(0x0117);
}
// Pinned: nothing is read; the live report is read where it is routed.
DECODE_VECTOR(0x0112, Cdsi, SixteenZeros) {
    for (uint8_t type = 0; type <= 4; ++type) {
        StartWith(kModule);
        EXPECT_EQ(Decode(0x0112, type, "\"SM\",17").Record(), Bytes().Zeros(16).data);
        EXPECT_EQ(Decode(0x0112, type, "\"SM\",17").paras[16], '\xa5');
        EXPECT_TRUE(Logged("tPara.memory:    tPara.index:0 ", "atdecode"));
    }
}

// ---- +ZVMAIL

// Pinned: a read is answered with zeros, because its line goes out as a report and the OK alone is left.
DECODE_VECTOR(0x0118, Zvmail, ReadGivesTheFlag) {
    ExpectReadsOneInteger(0x0118, {READ});
    StartWith(kModule);
    EXPECT_EQ(Decode(0x0118, READ, "1,2").Record(), Bytes().I32(1).data);
    EXPECT_TRUE(Logged("AT_ZVMAIL_READ:tPara.flag=1", "atdecode"));
    EXPECT_EQ(Decode(0x0118, READ, "OK").Record(), Bytes().I32(0).data);
    EXPECT_TRUE(Logged("AT_ZVMAIL_READ:tPara.flag=0", "atdecode"));
}

// ---- +ZCLAS

DECODE_VECTOR(0x0521, Zclas, LengthAndPdu) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        for (uint8_t type = 0; type <= 4; ++type) {
            const auto record = [&](const std::string& text) { return Decode(0x0521, type, text).Record(); };
            EXPECT_EQ(record("23,\"0791 AB\""), Bytes().I32(23).Text("0791 AB", 500).data);
            EXPECT_EQ(record("23,0791AB"), Bytes().I32(23).Text("0791AB", 500).data);
            EXPECT_EQ(record("23,\"\""), Bytes().I32(23).Zeros(500).data);
            EXPECT_EQ(record("23"), Bytes().I32(23).Zeros(500).data);
            EXPECT_EQ(record("-99999999999,A"), Bytes().I32(INT32_MIN).Text("A", 500).data);
        }
    }
}
TEST(Zclas, APduLongerThanItsFieldIsCut) {
    for (size_t size : {499U, 500U, 700U, 701U, 900U}) {
        const Decoded got = Decode(0x0521, 0, "23,\"" + std::string(size, 'A') + "\"");
        EXPECT_EQ(got.Record(), Bytes().I32(23).Text(std::string(499, 'A'), 500).data);
        EXPECT_EQ(got.paras[504], '\xa5');
    }
}

// ---- +CMGR

namespace {

// The 752 bytes; the first 512 of them are carried.
std::string ReadMessage(int32_t stat, const std::string& alpha, int32_t length, const std::string& pdu) {
    return Bytes().I32(0).I32(stat).Text(alpha, 36).I32(length).Text(pdu, 704).data;
}

void ExpectRead(const std::string& text, const std::string& record) {
    const Decoded got = Decode(0x0107, SET, text);
    EXPECT_EQ(got.length, 752) << text;
    EXPECT_EQ(got.paras.substr(0, 512), record.substr(0, 512)) << text;
    EXPECT_EQ(got.paras.find_first_not_of('\xa5', 512), std::string::npos) << text;
}

}  // namespace

DECODE_VECTOR(0x0107, Cmgr, StatusNameLengthAndPdu) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        ExpectRead("1,\"Net A\",23,\"0791AB\"", ReadMessage(1, "Net A", 23, "0791AB"));
        for (const char* text : {"pResLine->strResParas=1 Net\xfe"
                                 "A 23 0791AB",
                                 "tPara.stat=1", "tPara.alpha=Net A", "tPara.length=23", "tPara.pdu=0791AB"})
            EXPECT_TRUE(Logged(text, "atdecode")) << text;
        EXPECT_EQ(LoggedLines().back().text, "Parse_Cmgr_Rsp----");
        EXPECT_FALSE(LoggedPart("tPara.stat = 5"));
        ExpectRead("0,\"\",23,\"0791AB\"", ReadMessage(0, "", 23, "0791AB"));
    }
}
TEST(Cmgr, WithoutAName) {
    StartWith(kModule);
    ExpectRead("1,,23,\"0791AB\"", ReadMessage(1, "", 23, "0791AB"));
    EXPECT_FALSE(LoggedPart("tPara.stat = 5"));
}
TEST(Cmgr, WithoutAStatus) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        ExpectRead(",\"Net A\",23,\"0791AB\"", ReadMessage(5, "Net A", 23, "0791AB"));
        EXPECT_TRUE(Logged("tPara.stat = 5,else", "atdecode"));
        EXPECT_FALSE(LoggedPart("P2==P1+1"));
    }
}
TEST(Cmgr, WithoutStatusAndName) {
    StartWith(kModule);
    ExpectRead(",,23,\"0791AB\"", ReadMessage(5, "", 23, "0791AB"));
    EXPECT_TRUE(Logged("tPara.stat = 5,P2==P1+1", "atdecode"));
    EXPECT_FALSE(LoggedPart("tPara.stat = 5,else"));
}
// With other cards an empty field reads as the digit 9, which takes the place of the length.
TEST(Cmgr, MissingFieldsWithOtherCards) {
    StartWith(kOtherCard);
    ExpectRead("1,,23,\"0791AB\"", ReadMessage(1, "", 9, "23"));
    ExpectRead(",,23,\"0791AB\"", ReadMessage(5, "", 9, "23"));
}
TEST(Cmgr, WithoutACommaThereIsNothing) {
    StartWith(kModule);
    for (const char* text : {"OK", "", "1", "x y"})
        EXPECT_TRUE(Decode(0x0107, SET, text).Untouched()) << text;
    EXPECT_FALSE(LoggedPart("Parse_Cmgr_Rsp"));
}
TEST(Cmgr, MissingLastFields) {
    StartWith(kModule);
    ExpectRead("1,\"A\"", ReadMessage(1, "A", 0, ""));
    ExpectRead("1,\"A\",23", ReadMessage(1, "A", 23, ""));
    ExpectRead("1,,23", ReadMessage(1, "", 23, ""));
    ExpectRead("1,", ReadMessage(1, "", 0, ""));
    ExpectRead(",", ReadMessage(5, "", 0, ""));
    ExpectRead(",,", ReadMessage(5, "", 0, ""));
    ExpectRead("x,y,z", ReadMessage(0, "", 0, ""));
    ExpectRead("99999999999,\"A\",-99999999999,\"F\"", ReadMessage(INT32_MAX, "A", INT32_MIN, "F"));
}
TEST(Cmgr, AStatusInWordsIsNotRead) {
    StartWith(kModule);
    ExpectRead("\"REC READ\",\"A\",23,\"0791AB\"", ReadMessage(0, "", 0, ""));
}
TEST(Cmgr, APduOfSixHundredCharactersIsCarriedUpToFourHundredAndSixtyFour) {
    StartWith(kModule);
    for (size_t size : {463U, 464U, 465U, 600U, 700U, 701U}) {
        const std::string pdu(size, 'A');
        const Decoded got = Decode(0x0107, SET, "1,,23,\"" + pdu + "\"");
        EXPECT_EQ(got.length, 752);
        EXPECT_EQ(got.paras.substr(0, 512), ReadMessage(1, "", 23, pdu).substr(0, 512));
        EXPECT_EQ(got.paras[512], '\xa5');
    }
    EXPECT_TRUE(Logged("tPara.pdu=" + std::string(700, 'A'), "atdecode")) << "the record itself has 700";
}
TEST(Cmgr, ANameLongerThanItsField) {
    StartWith(kModule);
    const std::string name(32, 'n');
    ExpectRead("1,\"" + name + "\",23,\"AB\"", ReadMessage(1, name, 23, "AB"));
    ExpectRead("1,\"" + name + "n\",23,\"AB\"", ReadMessage(1, name, 0, ""));
    ExpectRead(",\"" + name + "7\",23,\"AB\"", ReadMessage(5, name, 7, "23"));
}
TEST(Cmgr, SetOnly) {
    for (uint8_t type : {uint8_t{0}, EXEC, READ, TEST_})
        EXPECT_TRUE(Decode(0x0107, type, "1,,23,\"0791AB\"").Untouched());
}
