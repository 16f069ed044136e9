#include "checks/support/log_capture.h"
#include "checks/unit/vectors.h"

// Decoders of calls and supplementary services; the call list stands with the lists, USSD in a file of its
// own.

namespace {

std::string Forwarding(int32_t status, int32_t classx, const std::string& number, int32_t type,
                       int32_t time) {
    return Bytes().I32(status).I32(classx).Text(number, 32).I32(type).I32(time).data;
}

// What the answer's words say alone, for a set.
void ExpectResultTest(uint16_t id, size_t size) {
    const Decoded ok = Decode(id, SET, "OK");
    EXPECT_EQ(ok.length, 2);
    EXPECT_EQ(ok.paras.find_first_not_of('\xa5'), std::string::npos);
    EXPECT_TRUE(Decode(id, SET, "retry operation").Untouched());
    EXPECT_TRUE(Decode(id, SET, "network rejected request").Untouched());
    for (const char* text : {"OK ", " OK", "ok", "OKOK", "retry operation ", "Retry operation", "retry",
                             "network rejected request,1", "network timeout", ""}) {
        const Decoded got = Decode(id, SET, text);
        EXPECT_EQ(got.Record(), std::string(size, '\0')) << text;
    }
}

}  // namespace

TEST(CallsWithoutAnswer, ReadNothing) {
    // D, A, +CHUP, +ZVOCLOOPBK, +VTS, ^CONN, ^CEND, +CDV, +CHV, +CLIR, +ZCHUPD, +ZCPI
    for (uint16_t id : std::initializer_list<uint16_t>{0x0401, 0x0404, 0x0403, 0x0411, 0x0409, 0x0541, 0x0542,
                                                       0x040F, 0x0410, 0x053C, 0x0551, 0x055E})
        ExpectReadsNothing(id);
}

// ---- One integer

DECODE_VECTOR(0x0514, Clvl, ReadsOneInteger) {
    ExpectReadsOneInteger(0x0514, {READ});
}
DECODE_VECTOR(0x0519, Cmvl, ReadsOneInteger) {
    ExpectReadsOneInteger(0x0519, {READ});
}
// Pinned: a read is answered with zeros, because its line goes out as a report and the OK alone is left.
DECODE_VECTOR(0x0513, Clip, ReadsOneInteger) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        ExpectReadsOneInteger(0x0513, {READ});
        EXPECT_EQ(Decode(0x0513, READ, "\"1\",2").Record(), Bytes().I32(1).data) << "normalised";
    }
}
DECODE_VECTOR(0x0413, Zvconnect, ReadsOneIntegerUnderEveryType) {
    ExpectReadsOneInteger(0x0413, {0, EXEC, SET, READ, TEST_, 5, 7, 8, 200});
    EXPECT_EQ(Decode(0x0413, 0, "\"1\"").Record(), Bytes().I32(0).data) << "raw";
}

// ---- +ZCALL

DECODE_VECTOR(0x0525, Zcall, OneCharacter) {
    for (uint8_t type : {EXEC, SET, READ}) {
        EXPECT_EQ(Decode(0x0525, type, "1").Record(), "1");
        EXPECT_EQ(Decode(0x0525, type, "1,2").Record(), "1");
        EXPECT_EQ(Decode(0x0525, type, " 1").Record(), " ") << "a blank is a character, too";
        EXPECT_EQ(Decode(0x0525, type, "").Record(), std::string(1, '\0'));
        EXPECT_EQ(Decode(0x0525, type, "12").paras[1], '\xa5');
    }
    EXPECT_TRUE(Decode(0x0525, TEST_, "1").Untouched());
    EXPECT_TRUE(Decode(0x0525, 0, "1").Untouched());
}

// ---- +CCFC

DECODE_VECTOR(0x052B, Ccfc, QueryAnswer) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        EXPECT_EQ(Decode(0x052B, SET, "1,1,\"+4912\",145").Record(), Forwarding(1, 1, "+4912", 145, 0));
        EXPECT_TRUE(Logged("pResLine->strResParas=1 1 +4912 145", "atdecode"));
        EXPECT_EQ(Decode(0x052B, SET, "0,7").Record(), Forwarding(0, 7, "", 0, 0));
        EXPECT_EQ(Decode(0x052B, SET, "1,1,\"\",129").Record(), Forwarding(1, 1, "", 129, 0));
        EXPECT_EQ(Decode(0x052B, SET, "1,1,\"4 9\t1\",129").Record(), Forwarding(1, 1, "4 9\t1", 129, 0));
    }
}
TEST(Ccfc, TheTimeBehindAnEmptySubaddress) {
    StartWith(kModule);
    EXPECT_EQ(Decode(0x052B, SET, "1,1,\"4912\",129,,,20").Record(), Forwarding(1, 1, "4912", 129, 20));
    EXPECT_EQ(Decode(0x052B, SET, "1,1,\"4912\",129,20").Record(), Forwarding(1, 1, "4912", 129, 20));
    EXPECT_EQ(Decode(0x052B, SET, "1,1,\"4912\",129,\"\",,20").Record(), Forwarding(1, 1, "4912", 129, 0));
    EXPECT_EQ(Decode(0x052B, SET, "1,1,\"4912\",129,,,").Record(), Forwarding(1, 1, "4912", 129, 0));
}
// With other cards each empty field reads as the digit 9, which takes the place of the time.
TEST(Ccfc, TheTimeBehindAnEmptySubaddressWithOtherCards) {
    StartWith(kOtherCard);
    EXPECT_EQ(Decode(0x052B, SET, "1,1,\"4912\",129,,,20").Record(), Forwarding(1, 1, "4912", 129, 9));
    EXPECT_TRUE(Logged("pResLine->strResParas=1 1 4912 129 9 9 20", "atdecode"));
}
TEST(Ccfc, ResultsAlone) {
    ExpectResultTest(0x052B, 48);
}
TEST(Ccfc, NumbersLongerThanTheirField) {
    StartWith(kModule);
    const std::string digits(31, '4');
    EXPECT_EQ(Decode(0x052B, SET, "1,1,\"" + digits + "\",129").Record(), Forwarding(1, 1, digits, 129, 0));
    EXPECT_EQ(Decode(0x052B, SET, "1,1,\"" + digits + "5\",129").Record(), Forwarding(1, 1, digits, 5, 129))
        << "what is left of the number reads as its type";
    EXPECT_EQ(Decode(0x052B, SET, "1,1,\"" + digits + "x\",129").Record(), Forwarding(1, 1, digits, 0, 0));
}
TEST(Ccfc, UnexpectedShapes) {
    StartWith(kModule);
    EXPECT_EQ(Decode(0x052B, SET, "99999999999,-99999999999").Record(),
              Forwarding(INT32_MAX, INT32_MIN, "", 0, 0));
    EXPECT_EQ(Decode(0x052B, SET, "x,1").Record(), Forwarding(0, 0, "", 0, 0));
    EXPECT_EQ(Decode(0x052B, SET, "1,1,\"49\",145;0,2").Record(), Forwarding(1, 1, "49", 145, 0))
        << "the first line counts";
    EXPECT_EQ(Decode(0x052B, SET, "1,1").paras[48], '\xa5');
}
TEST(Ccfc, SetOnly) {
    for (uint8_t type : {uint8_t{0}, EXEC, READ, TEST_})
        for (const char* text : {"1,1", "OK"})
            EXPECT_TRUE(Decode(0x052B, type, text).Untouched());
}

// ---- +CCWA

DECODE_VECTOR(0x052C, Ccwa, SetGivesStatusAndType) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        EXPECT_EQ(Decode(0x052C, SET, "1,7").Record(), Bytes().I32(1).I32(7).data);
        EXPECT_TRUE(Logged("tPara.wait_status=1", "atdecode"));
        EXPECT_TRUE(Logged("tPara.type=7", "atdecode"));
        EXPECT_EQ(Decode(0x052C, SET, "1").Record(), Bytes().I32(1).I32(0).data);
        EXPECT_EQ(Decode(0x052C, SET, "99999999999,-99999999999").Record(),
                  Bytes().I32(INT32_MAX).I32(INT32_MIN).data);
        EXPECT_EQ(Decode(0x052C, SET, "1,7,3").paras[8], '\xa5');
    }
}
TEST(Ccwa, SetResultsAlone) {
    ExpectResultTest(0x052C, 8);
    StartWith(kModule);
    Decode(0x052C, SET, "OK");
    EXPECT_FALSE(LoggedPart("tPara"));
}
// Pinned: a read's answer is not read.
DECODE_VECTOR(0x052C, Ccwa, ReadGivesZeros) {
    StartWith(kModule);
    for (const char* text : {"1,7", "OK", "", "retry operation"})
        EXPECT_EQ(Decode(0x052C, READ, text).Record(), Bytes().Zeros(8).data) << text;
    EXPECT_EQ(Decode(0x052C, READ, "1,7").paras[8], '\xa5');
    EXPECT_FALSE(LoggedPart("tPara"));
}
TEST(Ccwa, ExecAndTestAreNotServed) {
    for (uint8_t type : {uint8_t{0}, EXEC, TEST_})
        EXPECT_TRUE(Decode(0x052C, type, "1,7").Untouched());
}

// ---- +CHLD

// Pinned: a read's answer is not read.
DECODE_VECTOR(0x053E, Chld, ReadGivesZeros) {
    for (const char* text : {"1,7", "OK", ""})
        EXPECT_EQ(Decode(0x053E, READ, text).Record(), Bytes().Zeros(8).data) << text;
    EXPECT_EQ(Decode(0x053E, READ, "1,7").paras[8], '\xa5');
    for (uint8_t type : {uint8_t{0}, EXEC, SET, TEST_})
        EXPECT_TRUE(Decode(0x053E, type, "1,7").Untouched());
}

// ---- +RINGBACK

TEST(Ringback, OnlyLogs) {
    ExpectReadsNothing(0x053D);
    StartWith(kModule);
    Decode(0x053D, 0, "1");
    EXPECT_TRUE(Logged("ringback is 1", "atdecode"));
}

// ---- +CLCC

TEST(Clcc, WhatTheModemLeavesOutIsZero) {
    StartWith(kModule);
    const auto first = [](const std::string& text) {
        return Decode(0x0518, READ, text).paras.substr(0, 4 + 64);
    };
    const auto call = [](int32_t mpty, const std::string& number, int32_t type) {
        return Bytes().I32(1).I32(1).I32(0).I32(4).I32(0).I32(mpty).Text(number, 32).I32(type).Zeros(8).data;
    };
    EXPECT_EQ(first("1,0,4,0,0"), call(0, "", 0));
    EXPECT_EQ(first("1,0,4,0,1,\"\",128"), call(1, "", 128));
    EXPECT_EQ(first("1,0,4,0,0,\"a b\",129"), call(0, "a b", 129));
    EXPECT_EQ(first("x"), Bytes().I32(1).Zeros(64).data);
}
TEST(Clcc, ExecLeavesAnOldFileWhenThereIsNoCall) {
    StartWith(kModule);
    Decode(0x0518, EXEC, "1,0,4,0,0");
    const std::string before = Files().Content("/etc_rw/config/clcclist");
    EXPECT_EQ(Decode(0x0518, EXEC, "OK").length, 1284);
    EXPECT_EQ(Files().Content("/etc_rw/config/clcclist"), before);
    Decode(0x0518, EXEC, "2,0,4,0,0");
    EXPECT_EQ(Files().Content("/etc_rw/config/clcclist"),
              Bytes().I32(1).I32(2).I32(0).I32(4).Zeros(1284 - 16).data);
}
TEST(Clcc, AReadThatCarriesMoreCallsThanAMessageIsCut) {
    StartWith(kModule);
    std::string text;
    for (int i = 1; i <= 20; ++i)
        text += (i > 1 ? ";" : "") + std::to_string(i) + ",0,0,0,0,\"" + std::string(31, '5') + "\",129";
    const Decoded got = Decode(0x0518, READ, text);
    EXPECT_EQ(got.length, 1284);
    EXPECT_EQ(got.paras.substr(0, 8), Bytes().I32(20).I32(1).data);
    EXPECT_EQ(got.paras.substr(4 + 9 * 64, 24), Bytes().I32(10).Zeros(16).Text("5555", 4).data);
    EXPECT_EQ(got.paras.size(), 634U);
}
