#include <gtest/gtest.h>
#include <stdio.h>
#include <string.h>

#include <random>
#include <string>

#include "text/scan.h"

namespace {

struct Sample {
    int32_t a;
    int32_t b;
    char s[8];
    char t[8];
    uint64_t u;
    float f;
    char c[3];
};
constexpr FieldRef kA = AT_FIELD_REF(Sample, a);
constexpr FieldRef kB = AT_FIELD_REF(Sample, b);
constexpr FieldRef kS = AT_FIELD_REF(Sample, s);
constexpr FieldRef kT = AT_FIELD_REF(Sample, t);
constexpr FieldRef kU = AT_FIELD_REF(Sample, u);
constexpr FieldRef kF = AT_FIELD_REF(Sample, f);
constexpr FieldRef kC = {offsetof(Sample, c), 3, FieldType::bytes};

// Into a record that does not stand at an aligned address.
int Scan(const char* text, const char* format, std::initializer_list<FieldRef> fields, Sample& sample) {
    alignas(8) unsigned char place[sizeof(Sample) + 2];
    memset(place, 0, sizeof place);
    place[sizeof place - 1] = 0xc3;
    const int count = ScanRecord(text, format, {fields.begin(), fields.size()}, place + 1);
    memcpy(&sample, place + 1, sizeof sample);
    EXPECT_EQ(place[0], 0);
    EXPECT_EQ(place[sizeof place - 1], 0xc3);
    return count;
}

}  // namespace

TEST(ScanRecord, LiteralsBlanksAndConversionsInOrder) {
    Sample got;
    EXPECT_EQ(Scan("+CREG: 1 1A2B 00C3D4E5", "+CREG: %d %7s %7s", {kA, kS, kT}, got), 3);
    EXPECT_EQ(got.a, 1);
    EXPECT_STREQ(got.s, "1A2B");
    EXPECT_STREQ(got.t, "00C3D4E");
}

TEST(ScanRecord, StopsAtTheFirstMismatch) {
    Sample got;
    EXPECT_EQ(Scan("20,99", "%d%d", {kA, kB}, got), 1);
    EXPECT_EQ(got.a, 20);
    EXPECT_EQ(got.b, 0);
    EXPECT_EQ(Scan("1;2", "%d,%d", {kA, kB}, got), 1);
    EXPECT_EQ(Scan("x1", "%d", {kA}, got), 0);
    EXPECT_EQ(Scan("", "%d", {kA}, got), 0);
    EXPECT_EQ(Scan("- 1", "%d", {kA}, got), 0);
}

TEST(ScanRecord, WhiteSpaceInTheFormatMatchesAnyRun) {
    Sample got;
    EXPECT_EQ(Scan("1 \t\r\n 2", "%d %d", {kA, kB}, got), 2);
    EXPECT_EQ(Scan("(1-2),3", "(%d-%d)", {kA, kB}, got), 2);
    EXPECT_EQ(Scan("1,2", "%d, %d\n", {kA, kB}, got), 2);
    EXPECT_EQ(got.b, 2);
}

TEST(ScanRecord, IntegersSaturate) {
    Sample got;
    EXPECT_EQ(Scan("2147483647 -2147483648", "%d %d", {kA, kB}, got), 2);
    EXPECT_EQ(got.a, INT32_MAX);
    EXPECT_EQ(got.b, INT32_MIN);
    EXPECT_EQ(Scan("2147483648 -2147483649", "%d %d", {kA, kB}, got), 2);
    EXPECT_EQ(got.a, INT32_MAX);
    EXPECT_EQ(got.b, INT32_MIN);
    EXPECT_EQ(Scan("99999999999999999999999 -99999999999999999999999", "%d %d", {kA, kB}, got), 2);
    EXPECT_EQ(got.a, INT32_MAX);
    EXPECT_EQ(got.b, INT32_MIN);
    EXPECT_EQ(Scan("123456789A 1", "%x %d", {kA, kB}, got), 2);
    EXPECT_EQ(got.a, -1);
    EXPECT_EQ(got.b, 1);
    EXPECT_EQ(Scan("1ffffffffffffffff", "%llx", {kU}, got), 1);
    EXPECT_EQ(got.u, UINT64_MAX);
    EXPECT_EQ(Scan("8000000000000001", "%llx", {kU}, got), 1);
    EXPECT_EQ(got.u, 0x8000000000000001ULL);
}

TEST(ScanRecord, TextsAreBoundedByTheirArrays) {
    Sample got;
    EXPECT_EQ(Scan("123456789 x", "%s %s", {kS, kT}, got), 2);
    EXPECT_STREQ(got.s, "1234567");
    EXPECT_STREQ(got.t, "x");
    EXPECT_EQ(Scan("abcdef", "%c%2c", {kC, kC}, got), 2);
    EXPECT_EQ(std::string(got.c, 3), std::string("bc\0", 3));
    EXPECT_EQ(Scan("abcdef", "%3s", {kC}, got), 1);
    EXPECT_EQ(std::string(got.c, 3), "abc");
}

TEST(ScanRecord, AWidthLeavesTheRestToTheNextConversion) {
    Sample got;
    EXPECT_EQ(Scan("12345678", "%5s %d", {kS, kA}, got), 2);
    EXPECT_STREQ(got.s, "12345");
    EXPECT_EQ(got.a, 678);
    EXPECT_EQ(Scan("12345", "%2d%1d", {kA, kB}, got), 2);
    EXPECT_EQ(got.a, 12);
    EXPECT_EQ(got.b, 3);
}

TEST(ScanRecord, ASetTakesUpToItsEnd) {
    Sample got;
    EXPECT_EQ(Scan("SM,5", "%4[^,],%4[^,]", {kS, kT}, got), 2);
    EXPECT_STREQ(got.s, "SM");
    EXPECT_STREQ(got.t, "5");
    EXPECT_EQ(Scan(",5", "%4[^,],%4[^,]", {kS, kT}, got), 0);
}

TEST(ScanRecord, Floats) {
    Sample got;
    EXPECT_EQ(Scan("3,20.5", "%d,%f", {kA, kF}, got), 2);
    EXPECT_FLOAT_EQ(got.f, 20.5F);
    EXPECT_EQ(Scan("3,x", "%d,%f", {kA, kF}, got), 1);
}

TEST(ScanRecord, NothingToDo) {
    Sample got;
    EXPECT_EQ(ScanRecord(nullptr, "%d", {}, &got), 0);
    EXPECT_EQ(ScanRecord("1", nullptr, {}, &got), 0);
    EXPECT_EQ(ScanRecord("1", "%d", {}, &got), 0);  // more conversions than fields
    EXPECT_EQ(Scan("1", "%u", {kA}, got), 0);       // a conversion that is not ours
    EXPECT_EQ(Scan("1", "%", {kA}, got), 0);
    EXPECT_EQ(Scan("1", "%d", {kS}, got), 0);  // a field of another type
}

// The C library's sscanf is the judge, wherever nothing overflows and every width is given.
TEST(ScanRecord, ReadsAsTheCLibraryDoes) {
    std::mt19937 random(7);
    const char alphabet[] = "0123456789 ,;-+xaF\t\"(.";
    const char* formats[] = {"%d,%d %7s %7s",         "%3d %d%7s%7s",
                             "(%d-%d),%7[^,],%7[^ ]", "%x,%x,%7s %7[0123456789a]",
                             " %d , %d ;%7s\n%7s",    "%d%%%d%7s%7s"};
    for (int round = 0; round < 200'000; ++round) {
        std::string text;
        const size_t length = random() % 24;
        int digits = 0;
        while (text.size() < length) {
            char next = alphabet[random() % (sizeof alphabet - 1)];
            digits = (isalnum(next) != 0) ? digits + 1 : 0;
            if (digits > 7) next = ',';  // no overflow
            if (next == 'x' && random() % 4 != 0) next = '0';
            text += next;
        }
        // What follows "0x" is read differently by different C libraries.
        const char* format = formats[random() % std::size(formats)];
        if (text.find('x') != std::string::npos) continue;
        int a = 0, b = 0;
        char s[8] = "", t[8] = "";
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
        const int wanted = std::max(0, sscanf(text.c_str(), format, &a, &b, s, t));
#pragma GCC diagnostic pop
        Sample got;
        ASSERT_EQ(Scan(text.c_str(), format, {kA, kB, kS, kT}, got), wanted) << format << " on " << text;
        ASSERT_EQ(got.a, a) << format << " on " << text;
        ASSERT_EQ(got.b, b) << format << " on " << text;
        ASSERT_STREQ(got.s, s) << format << " on " << text;
        ASSERT_STREQ(got.t, t) << format << " on " << text;
    }
}

TEST(ScanRecord, APercentSignMatchesItselfBehindBlanks) {
    Sample got;
    EXPECT_EQ(Scan("7%8", "%d%%%d", {kA, kB}, got), 2);
    EXPECT_EQ(got.b, 8);
    EXPECT_EQ(Scan("7 \t%8", "%d%%%d", {kA, kB}, got), 2);
    EXPECT_EQ(Scan("7,8", "%d%%%d", {kA, kB}, got), 1);
    EXPECT_EQ(Scan("7", "%d%%%d", {kA, kB}, got), 1);
}

TEST(PrintRecord, ACharacterIsTheFirstOfItsField) {
    Sample sample = {0, 0, "ab", "", 0, 0, {'x', 'y', 'z'}};
    const FieldRef fields[] = {kS, kC};
    char out[8];
    EXPECT_EQ(PrintRecord(out, "%c,%c", fields, &sample), 3U);
    EXPECT_STREQ(out, "a,x");
}

TEST(PrintRecord, AllConversions) {
    Sample sample = {INT32_MIN, 42, "ab", "cd", 0x10000000000000f0ULL, 0, {}};
    const FieldRef fields[] = {kA, kS, kU, kB, kT, kA};
    char out[100];
    const size_t length = PrintRecord(out, "%d,\"%s\",%llx%%%x;%s %d", fields, &sample);
    EXPECT_STREQ(out, "-2147483648,\"ab\",10000000000000f0%2a;cd -2147483648");
    EXPECT_EQ(length, strlen(out));
}

TEST(PrintRecord, IsCutAndTerminated) {
    Sample sample = {1234567, 0, "", "", 0, 0, {}};
    memset(sample.s, 'x', sizeof sample.s);
    memset(sample.t, 'y', sizeof sample.t);
    const FieldRef fields[] = {kA, kS};
    for (size_t size = 1; size < 20; ++size) {
        std::string out(size + 1, '!');
        const std::string whole = "1234567,xxxxxxxx";
        EXPECT_EQ(PrintRecord({out.data(), size}, "%d,%s", fields, &sample),
                  std::min(size - 1, whole.size()));
        EXPECT_STREQ(out.c_str(), whole.substr(0, size - 1).c_str());
        EXPECT_EQ(out[size], '!');
    }
    EXPECT_EQ(PrintRecord({}, "%d", fields, &sample), 0U);
}

TEST(Formats, FitTheirFieldsOrNot) {
    const FieldRef fields[] = {kA, kS};
    EXPECT_TRUE(ScanFits("%d %7s", fields));
    EXPECT_FALSE(ScanFits("%d %8s", fields));
    EXPECT_FALSE(ScanFits("%d %s", fields));
    EXPECT_FALSE(ScanFits("%d", fields));
    EXPECT_FALSE(ScanFits("%7s %d", fields));
    EXPECT_EQ(LongestPrint("%d,\"%s\"", fields), 11 + 8 + 3);
    EXPECT_EQ(LongestPrint("%d", fields), -1);
    EXPECT_EQ(LongestPrint("%s%d", fields), -1);
}
