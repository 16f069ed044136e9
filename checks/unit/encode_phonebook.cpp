#include "checks/unit/vectors.h"

// Encoders of the phonebook.

ENCODE_VECTOR(0x0201, Cpbs, PrintsTheStorageQuoted) {
    EXPECT_EQ(Encoded(0x0201, SET, Bytes().Text("SM", 20).data), "\"SM\"");
    EXPECT_EQ(Encoded(0x0201, SET, Bytes().Zeros(20).data), "\"\"");
    EXPECT_EQ(Encoded(0x0201, SET, std::string(20, 'S')), "\"" + std::string(20, 'S') + "\"");
    ExpectSetOfThisSizeOnly(0x0201, Bytes().Text("SM", 20).data);
}
ENCODE_VECTOR(0x0208, Cscs, PrintsTheCharacterSetQuoted) {
    EXPECT_EQ(Encoded(0x0208, SET, Bytes().Text("UCS2", 10).data), "\"UCS2\"");
    EXPECT_EQ(Encoded(0x0208, SET, Bytes().Zeros(10).data), "\"\"");
    EXPECT_EQ(Encoded(0x0208, SET, "0123456789"), "\"0123456789\"");
    ExpectSetOfThisSizeOnly(0x0208, Bytes().Text("GSM", 10).data);
}

// ---- +CPBR, +ZCPBR

namespace {

void ExpectOneIndex(uint16_t id) {
    EXPECT_EQ(Encoded(id, SET, Bytes().I32(5).I32(0).data), "5");
    EXPECT_EQ(Encoded(id, SET, Bytes().I32(0).I32(0).data), "0");
    EXPECT_EQ(Encoded(id, SET, Bytes().I32(INT32_MIN).I32(0).data), "-2147483648");
    ExpectSetOfThisSizeOnly(id, Bytes().I32(5).I32(0).data);
}
void ExpectTwoIndexes(uint16_t id) {
    EXPECT_EQ(Encoded(id, SET, Bytes().I32(1).I32(100).data), "1,100");
    EXPECT_EQ(Encoded(id, SET, Bytes().I32(0).I32(-1).data), "0,-1");
    EXPECT_EQ(Encoded(id, SET, Bytes().I32(INT32_MAX).I32(INT32_MIN).data), "2147483647,-2147483648");
    ExpectSetOfThisSizeOnly(id, Bytes().I32(1).I32(100).data);
}

}  // namespace

ENCODE_VECTOR(0x0202, Cpbr, WithoutALastIndex) {
    ExpectOneIndex(0x0202);
}
ENCODE_VECTOR(0x0202, Cpbr, WithALastIndex) {
    ExpectTwoIndexes(0x0202);
}
ENCODE_VECTOR(0x0206, Zcpbr, WithoutALastIndex) {
    ExpectOneIndex(0x0206);
}
ENCODE_VECTOR(0x0206, Zcpbr, WithALastIndex) {
    ExpectTwoIndexes(0x0206);
}

// ---- +CPBW

namespace {

std::string Entry(int32_t index, const std::string& number, int32_t type, const std::string& text) {
    return Bytes().I32(index).Text(number, 84).I32(type).Text(text, 128).data;
}
std::string Cpbw(int32_t index, const std::string& number, int32_t type, const std::string& text) {
    return Encoded(0x0204, SET, Entry(index, number, type, text));
}

}  // namespace

ENCODE_VECTOR(0x0204, Cpbw, WithoutNumberAndTextPrintsTheIndexAlone) {
    EXPECT_EQ(Cpbw(5, "", 0, ""), "5");
    EXPECT_EQ(Cpbw(5, "", 145, ""), "5");
    EXPECT_EQ(Cpbw(-1, "", 0, ""), "-1");
}
ENCODE_VECTOR(0x0204, Cpbw, WithoutAnythingPrintsNothing) {
    EXPECT_EQ(Cpbw(0, "", 0, ""), "");
    EXPECT_EQ(Cpbw(0, "", 145, ""), "");
}
ENCODE_VECTOR(0x0204, Cpbw, IndexAndType) {
    EXPECT_EQ(Cpbw(5, "+4912", 145, "Ann, B"), "5,\"+4912\",145,\"Ann, B\"");
    EXPECT_EQ(Cpbw(5, "", 145, "Ann"), "5,\"\",145,\"Ann\"") << "a text alone is an entry";
    EXPECT_EQ(Cpbw(5, "4912", 129, ""), "5,\"4912\",129,\"\"") << "a number alone is an entry";
    EXPECT_EQ(Cpbw(INT32_MIN, "1", INT32_MAX, "A"), "-2147483648,\"1\",2147483647,\"A\"");
}
ENCODE_VECTOR(0x0204, Cpbw, IndexWithoutType) {
    EXPECT_EQ(Cpbw(5, "4912", 0, "Ann"), "5,\"4912\",,\"Ann\"");
}
ENCODE_VECTOR(0x0204, Cpbw, TypeWithoutIndex) {
    EXPECT_EQ(Cpbw(0, "4912", 129, "Ann"), ",\"4912\",129,\"Ann\"");
}
ENCODE_VECTOR(0x0204, Cpbw, NeitherIndexNorType) {
    EXPECT_EQ(Cpbw(0, "4912", 0, "Ann"), ",\"4912\",,\"Ann\"");
    EXPECT_EQ(Cpbw(0, "", 0, "Ann"), ",\"\",,\"Ann\"");
}
TEST(Cpbw, TextsThatFillTheirArrays) {
    const std::string number(84, '4');
    const std::string text(128, 'A');
    EXPECT_EQ(Cpbw(5, number, 145, text), "5,\"" + number + "\",145,\"" + text + "\"");
    EXPECT_EQ(Cpbw(0, number, 0, text), ",\"" + number + "\",,\"" + text + "\"");
}
TEST(Cpbw, SetOfItsSizeOnly) {
    ExpectSetOfThisSizeOnly(0x0204, Entry(5, "4912", 129, "Ann"));
    ExpectSetOfThisSizeOnly(0x0204, Entry(5, "", 0, ""));
}

// ---- +ZCPBW

namespace {

struct LongEntry {
    int32_t index = 0;
    std::string number = {};
    int32_t type = 0;
    std::string name = {}, text2 = {}, text3 = {}, text4 = {};
    std::string Record() const {
        return Bytes()
            .I32(index)
            .Text(number, 84)
            .I32(type)
            .Text(name, 64)
            .Text(text2, 84)
            .Text(text3, 84)
            .Text(text4, 132)
            .data;
    }
};
std::string Zcpbw(const LongEntry& entry) {
    return Encoded(0x0207, SET, entry.Record());
}

}  // namespace

ENCODE_VECTOR(0x0207, Zcpbw, WithoutTextsPrintsTheIndexAlone) {
    EXPECT_EQ(Zcpbw({.index = 5}), "5");
    EXPECT_EQ(Zcpbw({.index = 5, .type = 145}), "5");
}
ENCODE_VECTOR(0x0207, Zcpbw, WithoutAnythingPrintsNothing) {
    EXPECT_EQ(Zcpbw({}), "");
    EXPECT_EQ(Zcpbw({.type = 145}), "");
}
ENCODE_VECTOR(0x0207, Zcpbw, IndexAndType) {
    EXPECT_EQ(Zcpbw({5, "+4912", 145, "Ann", "b", "c", "d"}), "5,\"+4912\",145,\"Ann\",\"b\",\"c\",\"d\"");
}
ENCODE_VECTOR(0x0207, Zcpbw, IndexWithoutType) {
    EXPECT_EQ(Zcpbw({5, "4912", 0, "Ann", "b", "c", "d"}), "5,\"4912\",,\"Ann\",\"b\",\"c\",\"d\"");
}
ENCODE_VECTOR(0x0207, Zcpbw, TypeWithoutIndex) {
    EXPECT_EQ(Zcpbw({0, "4912", 129, "Ann", "b", "c", "d"}), ",\"4912\",129,\"Ann\",\"b\",\"c\",\"d\"");
}
ENCODE_VECTOR(0x0207, Zcpbw, NeitherIndexNorType) {
    EXPECT_EQ(Zcpbw({0, "4912", 0, "Ann", "b", "c", "d"}), ",\"4912\",,\"Ann\",\"b\",\"c\",\"d\"");
}
TEST(Zcpbw, AnyOfTheFiveTextsMakesAnEntry) {
    EXPECT_EQ(Zcpbw({.index = 5, .number = "1"}), "5,\"1\",,\"\",\"\",\"\",\"\"");
    EXPECT_EQ(Zcpbw({.index = 5, .name = "a"}), "5,\"\",,\"a\",\"\",\"\",\"\"");
    EXPECT_EQ(Zcpbw({.index = 5, .text2 = "b"}), "5,\"\",,\"\",\"b\",\"\",\"\"");
    EXPECT_EQ(Zcpbw({.index = 5, .text3 = "c"}), "5,\"\",,\"\",\"\",\"c\",\"\"");
    EXPECT_EQ(Zcpbw({.index = 5, .text4 = "d"}), "5,\"\",,\"\",\"\",\"\",\"d\"");
}
TEST(Zcpbw, TextsThatFillTheirArrays) {
    const LongEntry full = {INT32_MIN,
                            std::string(84, '4'),
                            INT32_MIN,
                            std::string(64, 'n'),
                            std::string(84, 'b'),
                            std::string(84, 'c'),
                            std::string(132, 'd')};
    EXPECT_EQ(Zcpbw(full), "-2147483648,\"" + full.number + "\",-2147483648,\"" + full.name + "\",\"" +
                               full.text2 + "\",\"" + full.text3 + "\",\"" + full.text4 + "\"");
}
TEST(Zcpbw, SetOfItsSizeOnly) {
    ExpectSetOfThisSizeOnly(0x0207, LongEntry{5, "4912", 129, "Ann", "b", "c", "d"}.Record());
    ExpectSetOfThisSizeOnly(0x0207, LongEntry{.index = 5}.Record());
}
