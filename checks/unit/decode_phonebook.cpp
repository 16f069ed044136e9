#include <stdio.h>
#include <stdlib.h>

#include "checks/support/log_capture.h"
#include "checks/unit/vectors.h"

// Decoders of the phonebook.

namespace {

const std::string kBook = "/etc_rw/config/Phonebak";

std::string Entry(int32_t index, const std::string& number, int32_t type, const std::string& text) {
    return Bytes().I32(index).Text(number, 84).I32(type).Text(text, 128).data;
}
std::string LongEntry(int32_t index, const std::string& number, const std::string& name,
                      const std::string& text2, const std::string& text3, const std::string& text4) {
    return Bytes()
        .I32(index)
        .Text(number, 84)
        .Text(name, 64)
        .Text(text2, 84)
        .Text(text3, 84)
        .Text(text4, 132)
        .data;
}

// The list that a text leaves in the file: the count and the entries that are not all zero at its end.
void ExpectList(uint16_t id, size_t size, const std::string& text, int32_t count,
                const std::string& entries) {
    const Decoded got = Decode(id, SET, text);
    EXPECT_EQ(got.length, static_cast<int>(size));
    EXPECT_EQ(got.paras[0], '\0');
    EXPECT_EQ(got.paras.find_first_not_of('\xa5', 1), std::string::npos);
    std::string expected = Bytes().I32(count).data + entries;
    expected.resize(size, '\0');
    EXPECT_EQ(Files().Content(kBook), expected);
}
void ExpectEntries(const std::string& text, int32_t count, const std::string& entries) {
    ExpectList(0x0202, 22004, text, count, entries);
}
void ExpectLongEntries(const std::string& text, int32_t count, const std::string& entries) {
    ExpectList(0x0206, 45204, text, count, entries);
}

}  // namespace

TEST(Cscs, ReadsNothing) {
    ExpectReadsNothing(0x0208);
}

namespace {

void ExpectNoParametersForASet(uint16_t id) {
    for (const char* text : {"OK", "", "1,2"}) {
        EXPECT_EQ(Decode(id, SET, text).length, 0);
        EXPECT_EQ(Decode(id, SET, text).paras.find_first_not_of('\xa5'), std::string::npos);
        for (uint8_t type : {uint8_t{0}, EXEC, READ, TEST_})
            EXPECT_TRUE(Decode(id, type, text).Untouched());
    }
}

}  // namespace

DECODE_VECTOR(0x0204, Cpbw, SetHasNoParameters) {
    ExpectNoParametersForASet(0x0204);
}
DECODE_VECTOR(0x0207, Zcpbw, SetHasNoParameters) {
    ExpectNoParametersForASet(0x0207);
}

// ---- +CPBS

DECODE_VECTOR(0x0201, Cpbs, SetHasNoParameters) {
    for (uint8_t result : {uint8_t{1}, uint8_t{2}})
        EXPECT_EQ(Decode(0x0201, SET, "OK", result).length, 0);
    EXPECT_EQ(Decode(0x0201, SET, "\"SM\",5,250").paras.find_first_not_of('\xa5'), std::string::npos);
}

namespace {

std::string StorageFor(const std::string& text) {
    const Decoded got = Decode(0x0201, READ, text);
    EXPECT_EQ(got.length, kUntouchedLength) << text;
    EXPECT_EQ(got.paras.find_first_not_of('\xa5', 15), std::string::npos) << text;
    return got.paras.substr(0, 15);
}
std::string Storage(const std::string& storage, const std::string& used, const std::string& total) {
    return Bytes().Text(storage, 5).Text(used, 5).Text(total, 5).data;
}

}  // namespace

// Pinned: quotes stay, and the length is left alone.
DECODE_VECTOR(0x0201, Cpbs, ReadGivesThreeShortTexts) {
    StartWith(kModule);
    EXPECT_EQ(StorageFor("\"SM\",5,250"), Storage("\"SM\"", "5", "250"));
    EXPECT_TRUE(Logged("Parse_Cpbs_Rsp tPara.usedEntries is 5 tPara.totalEntries is 250.", "atdecode"));
}
TEST(Cpbs, ReadTextsAreCutAtFourCharactersEachByItself) {
    EXPECT_EQ(StorageFor("\"SM1\",12345,67890"), Storage("\"SM1", "1234", "6789"));
    EXPECT_EQ(StorageFor("SM12,1234,5678"), Storage("SM12", "1234", "5678"));
    EXPECT_EQ(StorageFor(std::string(700, 'S') + ",1,2"), Storage("SSSS", "1", "2"));
}
TEST(Cpbs, ReadWithMissingFields) {
    EXPECT_EQ(StorageFor("\"SM\""), Storage("\"SM\"", "", ""));
    EXPECT_EQ(StorageFor("\"SM\",5"), Storage("\"SM\"", "5", ""));
    EXPECT_EQ(StorageFor("\"SM\",,250"), Storage("\"SM\"", "", "250"));
    EXPECT_EQ(StorageFor(",5,250"), Storage("", "5", "250"));
    EXPECT_EQ(StorageFor("\"SM\",5,250,9"), Storage("\"SM\"", "5", "250"));
    EXPECT_EQ(StorageFor(""), Storage("", "", ""));
    EXPECT_EQ(StorageFor("OK"), Storage("OK", "", ""));
}
TEST(Cpbs, ReadOfAnythingButOkGivesNothing) {
    StartWith(kModule);
    for (uint8_t result : {uint8_t{0}, uint8_t{2}, uint8_t{4}, uint8_t{11}})
        EXPECT_TRUE(Decode(0x0201, READ, "\"SM\",5,250", result).Untouched());
    EXPECT_FALSE(LoggedPart("Parse_Cpbs_Rsp"));
}
TEST(Cpbs, OtherTypesAreNotServed) {
    for (uint8_t type : {uint8_t{0}, EXEC, TEST_})
        EXPECT_TRUE(Decode(0x0201, type, "\"SM\",5,250").Untouched());
}

// ---- +CPBR

DECODE_VECTOR(0x0202, Cpbr, SetWritesTheEntriesIntoTheFile) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        ExpectEntries("1,\"+4912\",145,\"Ann B\";7,\"10086\",129,\"C;D,\tE\"", 2,
                      Entry(1, "+4912", 145, "Ann B") + Entry(7, "10086", 129, "C;D,\tE"));
        for (const char* text :
             {"pResLine->strResParas---->>>>1,\"+4912\",145,\"Ann B\";7,\"10086\",129,\"C;D,\tE\"",
              " tParasList.nCount---->>>>2", "write to Phonebak file OK, len=22004!", "BakPhoneBook OK!"})
            EXPECT_TRUE(Logged(text, "atdecode")) << text;
    }
}
TEST(Cpbr, EmptyAndMissingTexts) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        ExpectEntries("1,\"\",129,\"\"", 1, Entry(1, "", 129, ""));
        ExpectEntries("1,\"4912\",129,", 1, Entry(1, "4912", 129, ""));
        ExpectEntries("1,\"4912\",129", 1, Entry(1, "4912", 129, ""));
        ExpectEntries("1", 1, Entry(1, "", 0, ""));
    }
}
// An empty field disappears with the module's own cards and reads as 9 with others.
TEST(Cpbr, MissingTypeInBothModes) {
    StartWith(kModule);
    ExpectEntries("1,\"4912\",,\"Ann\"", 1, Entry(1, "4912", 0, ""));
    StartWith(kOtherCard);
    ExpectEntries("1,\"4912\",,\"Ann\"", 1, Entry(1, "4912", 9, "Ann"));
}
TEST(Cpbr, ALineThatDoesNotMatchLeavesItsEntryZero) {
    StartWith(kModule);
    ExpectEntries("x;2,\"4912\",y,\"Ann\";99999999999,\"1\",-99999999999,\"B\"", 3,
                  Entry(0, "", 0, "") + Entry(2, "4912", 0, "") + Entry(INT32_MAX, "1", INT32_MIN, "B"));
}
TEST(Cpbr, NoEntries) {
    StartWith(kModule);
    ExpectEntries("OK", 0, "");
    ExpectEntries("", 0, "");
    EXPECT_TRUE(Logged(" tParasList.nCount---->>>>0", "atdecode"));
}
TEST(Cpbr, AHundredEntriesAtMost) {
    for (int entries : {99, 100, 101, 150}) {
        StartWith(kModule);
        std::string text;
        for (int i = 1; i <= entries; ++i)
            text += (i > 1 ? ";" : "") + std::to_string(i) + ",\"4\",129,\"A\"";
        EXPECT_EQ(Decode(0x0202, SET, text).length, 22004);
        const int kept = std::min(entries, 100);
        const std::string file = Files().Content(kBook);
        ASSERT_EQ(file.size(), 22004U);
        EXPECT_EQ(file.substr(0, 4), Bytes().I32(kept).data);
        EXPECT_EQ(file.substr(4 + static_cast<size_t>(kept - 1) * 220, 220), Entry(kept, "4", 129, "A"));
    }
}
TEST(Cpbr, TextsLongerThanTheirFields) {
    StartWith(kModule);
    const std::string number(80, '4');
    const std::string name(120, 'n');
    ExpectEntries("1,\"" + number + "\",129,\"" + name + "\"", 1, Entry(1, number, 129, name));
    ExpectEntries("1,\"" + number + "\",129,\"" + name + "nn\"", 1, Entry(1, number, 129, name));
    ExpectEntries("1,\"" + number + "5\",129,\"A\"", 1, Entry(1, number, 5, "129"));
}
TEST(Cpbr, NothingOfAnEarlierListIsLeft) {
    StartWith(kModule);
    ExpectLongEntries("1,\"1\",\"name\",\"b\",\"c\",\"d\";2,\"2\",\"name\",\"b\",\"c\",\"d\"", 2,
                      LongEntry(1, "1", "name", "b", "c", "d") + LongEntry(2, "2", "name", "b", "c", "d"));
    ExpectEntries("7,\"4\",129,\"A\"", 1, Entry(7, "4", 129, "A"));
}
DECODE_VECTOR(0x0202, Cpbr, TestGivesTheRanges) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        const auto record = [](const std::string& text) { return Decode(0x0202, TEST_, text).Record(); };
        EXPECT_EQ(record("(1-250),40,14"), Bytes().I32(1).I32(250).I32(40).I32(14).data);
        EXPECT_EQ(record("(1-250),40"), Bytes().I32(1).I32(250).I32(40).I32(0).data);
        EXPECT_EQ(record("(1,250),40,14"), Bytes().I32(1).Zeros(12).data);
        EXPECT_EQ(record("1-250,40,14"), Bytes().Zeros(16).data);
        EXPECT_EQ(record("(1--2),99999999999,7"), Bytes().I32(1).I32(-2).I32(INT32_MAX).I32(7).data);
        EXPECT_EQ(record("OK"), Bytes().Zeros(16).data);
        EXPECT_EQ(Decode(0x0202, TEST_, "(1-250),40,14").paras[16], '\xa5');
    }
    EXPECT_EQ(Files().Content(kBook), "(none)");
}
TEST(Cpbr, ExecAndReadAreNotServed) {
    StartWith(kModule);
    for (uint8_t type : {uint8_t{0}, EXEC, READ})
        EXPECT_TRUE(Decode(0x0202, type, "1,\"4\",129,\"A\"").Untouched());
    EXPECT_EQ(Files().Content(kBook), "(none)");
}

// ---- +ZCPBR

DECODE_VECTOR(0x0206, Zcpbr, SetWritesTheEntriesIntoTheFile) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        ExpectLongEntries(
            "1,\"+4912\",\"Ann B\",\"b;\",\"c,\",\"d\te\";7,\"1\",\"\",\"\",\"\",\"\"", 2,
            LongEntry(1, "+4912", "Ann B", "b;", "c,", "d\te") + LongEntry(7, "1", "", "", "", ""));
        for (const char* text :
             {" tParasList.nCount---->>>>2", "write to Phonebak file OK, len=45204!", "BakPhoneBook OK!"})
            EXPECT_TRUE(Logged(text, "atdecode")) << text;
        EXPECT_TRUE(LoggedPart("pResLine->strResParas---->>>>1,\"+4912\","));
    }
}
TEST(Zcpbr, MissingTexts) {
    StartWith(kModule);
    ExpectLongEntries("1,\"4912\",\"Ann\"", 1, LongEntry(1, "4912", "Ann", "", "", ""));
    ExpectLongEntries("1,\"4912\",\"Ann\",", 1, LongEntry(1, "4912", "Ann", "", "", ""));
    ExpectLongEntries("x;2", 2, LongEntry(0, "", "", "", "", "") + LongEntry(2, "", "", "", "", ""));
    ExpectLongEntries("OK", 0, "");
    ExpectLongEntries("1,\"4912\",,\"b\",\"c\",\"d\"", 1, LongEntry(1, "4912", "b", "c", "d", ""));
    StartWith(kOtherCard);
    ExpectLongEntries("1,\"4912\",,\"b\",\"c\",\"d\"", 1, LongEntry(1, "4912", "9", "b", "c", "d"));
}
TEST(Zcpbr, TextsLongerThanTheirFields) {
    StartWith(kModule);
    const std::string n(80, '4'), name(60, 'n'), b(80, 'b'), c(80, 'c'), d(128, 'd');
    const auto line = [](const std::string& last, std::initializer_list<std::string> texts) {
        std::string text = "1";
        for (const std::string& one : texts)
            text += ",\"" + one + "\"";
        return text + ",\"" + last + "\"";
    };
    ExpectLongEntries(line(d, {n, name, b, c}), 1, LongEntry(1, n, name, b, c, d));
    ExpectLongEntries(line(d + "xyz", {n, name, b, c}), 1, LongEntry(1, n, name, b, c, d));
    ExpectLongEntries(line(d, {n + "5", name, b, c}), 1, LongEntry(1, n, "5", name, b, c));
}
TEST(Zcpbr, AHundredEntriesAtMost) {
    for (int entries : {100, 101, 150}) {
        StartWith(kModule);
        std::string text;
        for (int i = 1; i <= entries; ++i)
            text += (i > 1 ? ";" : "") + std::to_string(i) + ",\"4\",\"A\",\"b\",\"c\",\"d\"";
        EXPECT_EQ(Decode(0x0206, SET, text).length, 45204);
        const std::string file = Files().Content(kBook);
        ASSERT_EQ(file.size(), 45204U);
        EXPECT_EQ(file.substr(0, 4), Bytes().I32(100).data);
        EXPECT_EQ(file.substr(4 + 99 * 452), LongEntry(100, "4", "A", "b", "c", "d"));
    }
}
DECODE_VECTOR(0x0206, Zcpbr, TestGivesTheRanges) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        const auto record = [](const std::string& text) { return Decode(0x0206, TEST_, text).Record(); };
        EXPECT_EQ(record("(1-250),40,14,30,31,32"),
                  Bytes().I32(1).I32(250).I32(40).I32(14).I32(30).I32(31).I32(32).data);
        EXPECT_EQ(record("(1-250),40,14,30"), Bytes().I32(1).I32(250).I32(40).I32(14).I32(30).Zeros(8).data);
        EXPECT_EQ(record(" (1-250)"), Bytes().Zeros(28).data);
        EXPECT_EQ(record("OK"), Bytes().Zeros(28).data);
        EXPECT_EQ(Decode(0x0206, TEST_, "(1-250)").paras[28], '\xa5');
    }
}
TEST(Zcpbr, ExecAndReadAreNotServed) {
    for (uint8_t type : {uint8_t{0}, EXEC, READ})
        EXPECT_TRUE(Decode(0x0206, type, "1,\"4\",\"A\"").Untouched());
}

// ---- The file

TEST(Phonebak, AShortWriteIsLoggedAndAnswered) {
    for (uint16_t id : std::initializer_list<uint16_t>{0x0202, 0x0206}) {
        StartWith(kModule);
        Files().full = kBook;
        EXPECT_EQ(Decode(id, SET, "1,\"4\",129,\"A\"").length, id == 0x0202 ? 22004 : 45204);
        EXPECT_TRUE(Logged("write to Phonebak file faild, len=0!", "atdecode"));
        EXPECT_TRUE(Logged("BakPhoneBook faild!", "atdecode"));
    }
}
TEST(PhonebakDeathTest, AFileThatCannotBeOpenedEndsTheProcess) {
    StartWith(kModule);
    Files().refused = kBook;
    const auto decode = [](uint16_t id) {
        atexit([] { fputs(LoggedLines().back().text.c_str(), stderr); });
        Decode(id, SET, "OK");
    };
    const char* text = "fopen\\( /etc_rw/config/Phonebak , 'w\\+'\\) error!$";
    EXPECT_EXIT(decode(0x0202), testing::ExitedWithCode(1), text);
    EXPECT_EXIT(decode(0x0206), testing::ExitedWithCode(1), text);
}
