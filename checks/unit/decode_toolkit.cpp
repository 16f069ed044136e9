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
