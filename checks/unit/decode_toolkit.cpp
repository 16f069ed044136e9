#include "checks/support/log_capture.h"
#include "checks/unit/vectors.h"

// SIM toolkit reports pass through as text.

namespace {

void ExpectWholeText(uint16_t id) {
    const std::string text = "1,\"Menu; a\",,0";
    for (uint8_t type = 0; type <= 4; ++type) {
        const Decoded got = Decode(id, type, text);
        EXPECT_EQ(got.length, 14);
        EXPECT_EQ(got.paras.substr(0, 16), text + std::string("\0\xa5", 2));
    }
    EXPECT_EQ(Decode(id, SET, std::string(40, 'x')).length, 40);
    EXPECT_EQ(Decode(id, SET, "").length, 0);
    EXPECT_EQ(Decode(id, SET, "").paras.substr(0, 2), std::string("\0\xa5", 2));
    for (int size : {633, 634, 5000}) {
        const Decoded got = Decode(id, SET, std::string(static_cast<size_t>(size), 'x'));
        EXPECT_EQ(got.length, 633);
        EXPECT_EQ(got.paras, std::string(633, 'x') + std::string(1, '\0'));
    }
}

}  // namespace

DECODE_VECTOR(0x0702, Zsti, WholeText) {
    ExpectWholeText(0x0702);
}
DECODE_VECTOR(0x0703, Zselm, WholeText) {
    ExpectWholeText(0x0703);
}
DECODE_VECTOR(0x0704, Zseli, WholeText) {
    ExpectWholeText(0x0704);
}
DECODE_VECTOR(0x0705, Zsmsr, WholeText) {
    ExpectWholeText(0x0705);
}
DECODE_VECTOR(0x0706, Zdist, WholeText) {
    ExpectWholeText(0x0706);
}
DECODE_VECTOR(0x0711, Zfdist, WholeText) {
    ExpectWholeText(0x0711);
}
DECODE_VECTOR(0x0707, Zbk, WholeText) {
    ExpectWholeText(0x0707);
}
DECODE_VECTOR(0x0709, Zpstm, WholeText) {
    ExpectWholeText(0x0709);
}
DECODE_VECTOR(0x070A, Zginp, WholeText) {
    ExpectWholeText(0x070A);
}
DECODE_VECTOR(0x070C, Zgink, WholeText) {
    ExpectWholeText(0x070C);
}

TEST(ToolkitWithoutAnswer, ReadsNothing) {
    // +ZINPR, +ZINKR, +ZDISTR, +ZUnsupport, +ZUTP, +ZUTR
    for (uint16_t id : std::initializer_list<uint16_t>{0x070B, 0x070D, 0x070E, 0x070F, 0x062F, 0x0631})
        ExpectReadsNothing(id);
}

// ---- +ZSTM

DECODE_VECTOR(0x0701, Zstm, ExecGivesTheWholeText) {
    const Decoded got = Decode(0x0701, EXEC, "1,\"Menu; a\",,0");
    EXPECT_EQ(got.length, 14);
    EXPECT_EQ(got.paras.substr(0, 16), "1,\"Menu; a\",,0" + std::string("\0\xa5", 2));
    EXPECT_EQ(Decode(0x0701, EXEC, "").length, 0);
    EXPECT_EQ(Decode(0x0701, EXEC, std::string(5000, 'x')).length, 633);
    EXPECT_EQ(Decode(0x0701, EXEC, std::string(5000, 'x')).paras,
              std::string(633, 'x') + std::string(1, '\0'));
}
DECODE_VECTOR(0x0701, Zstm, OtherTypesAreNotServed) {
    for (uint8_t type : {uint8_t{0}, SET, READ, TEST_, uint8_t{5}, uint8_t{9}, uint8_t{255}})
        EXPECT_TRUE(Decode(0x0701, type, "1,\"Menu\"").Untouched()) << int{type};
}

// ---- +ZUPCI

namespace {

std::string Command(int32_t cmdtype, int32_t value1, int32_t value2, int32_t value3, const std::string& txt) {
    return Bytes().I32(cmdtype).I32(value1).I32(value2).I32(value3).Text(txt, 512).data;
}

}  // namespace

DECODE_VECTOR(0x0630, Zupci, EverythingUnderEveryType) {
    for (const char* mode : {kModule, kOtherCard})
        for (uint8_t type = 0; type <= 4; ++type) {
            StartWith(mode);
            EXPECT_EQ(Decode(0x0630, type, "35,1,2,3,\"Hello, \tyou\"").Record(),
                      Command(35, 1, 2, 3, "Hello, \tyou"));
            EXPECT_TRUE(Logged("tPara.cmdtype:35", "atdecode"));
            EXPECT_EQ(Decode(0x0630, type, "33,41,-52,63,\"x\"").Record(), Command(33, 41, -52, 63, "x"))
                << "the decoder reads the text of any command";
            EXPECT_EQ(Decode(0x0630, type, "35,1").Record(), Command(35, 1, 0, 0, ""));
            EXPECT_EQ(Decode(0x0630, type, "35,1,2,3,\"\"").Record(), Command(35, 1, 2, 3, ""));
            EXPECT_EQ(Decode(0x0630, type, "35,1,2,3,").Record(), Command(35, 1, 2, 3, ""));
            EXPECT_EQ(Decode(0x0630, type, "").Record(), Command(0, 0, 0, 0, ""));
            EXPECT_EQ(Decode(0x0630, type, "99999999999,-99999999999,x").Record(),
                      Command(INT32_MAX, INT32_MIN, 0, 0, ""));
        }
}
TEST(Zupci, ATextLongerThanItsFieldIsCut) {
    StartWith(kModule);
    for (size_t size : {511U, 512U, 900U}) {
        const Decoded got = Decode(0x0630, 0, "35,1,2,3,\"" + std::string(size, 'x') + "\"");
        EXPECT_EQ(got.Record(), Command(35, 1, 2, 3, std::string(511, 'x')));
        EXPECT_EQ(got.paras[528], '\xa5');
    }
}

// ---- +ZUEND

DECODE_VECTOR(0x0632, Zuend, OneIntegerUnderEveryType) {
    ExpectReadsOneInteger(0x0632, {0, EXEC, SET, READ, TEST_, 5});
}
