#include "test/inifile.h"

#include <gtest/gtest.h>
#include <limits.h>
#include <string.h>

#include <string>

#include "checks/support/work_directory.h"

namespace {

class IniFile : public testing::Test {
  protected:
    ~IniFile() override { CloseIniFile(file_); }

    void Open(const std::string& content) {
        directory_.Write("a.ini", content);
        file_ = OpenIniFile("a.ini");
        ASSERT_NE(file_, nullptr);
    }

    // The value, or "(none)".
    std::string Value(const char* section, const char* key) {
        char out[kIniLineSize] = {};
        int result = GetIniString(file_, section, key, out);
        if (result == 0) return out;
        EXPECT_EQ(result, 1);
        EXPECT_STREQ(out, "");
        return "(none)";
    }

    WorkDirectory directory_;
    INI_FILE_T* file_ = nullptr;
};

TEST_F(IniFile, ValueKeepsItsNewline) {
    Open("[S]\nkeyvalue\n");
    EXPECT_EQ(Value("S", "key"), "value\n");
}

TEST_F(IniFile, EachCharacterRemovedInFrontRepeatsTheLastOne) {
    Open("[S]\nAT_ITEM1 = x\nAT_ITEM2=x\nAT_ITEM3\t=\t=x\n");
    EXPECT_EQ(Value("S", "AT_ITEM1"), "x\n\n\n\n");
    EXPECT_EQ(Value("S", "AT_ITEM2"), "x\n\n");
    EXPECT_EQ(Value("S", "AT_ITEM3"), "x\n\n\n\n\n");
}

TEST_F(IniFile, LastLineWithoutNewlineRepeatsItsLastCharacter) {
    Open("[S]\nkey= ab");
    EXPECT_EQ(Value("S", "key"), "abbb");
}

TEST_F(IniFile, KeyWithoutValueIsItsNewline) {
    Open("[S]\none\ntwo=\n");
    EXPECT_EQ(Value("S", "one"), "\n");
    EXPECT_EQ(Value("S", "two"), "\n\n");
}

TEST_F(IniFile, KeyAtTheEndOfTheFileWithNothingBehindItIsNotFound) {
    Open("[S]\nkey");
    EXPECT_EQ(Value("S", "key"), "(none)");
    EXPECT_EQ(Value("S", "ke"), "y");
}

TEST_F(IniFile, ValueOfPaddingOnlyEnds) {
    Open("[S]\nkey= \t=");
    EXPECT_EQ(Value("S", "key"), "====");
}

TEST_F(IniFile, PaddingBehindTheValueStays) {
    Open("[S]\nkey=a = b\n");
    EXPECT_EQ(Value("S", "key"), "a = b\n\n");
}

TEST_F(IniFile, KeyIsMatchedByPrefix) {
    Open("[S]\nAT_ITEM10=ten\nAT_ITEM1=one\n");
    EXPECT_EQ(Value("S", "AT_ITEM1"), "0=ten\n");
    EXPECT_EQ(Value("S", "AT_ITEM10"), "ten\n\n");
}

TEST_F(IniFile, KeyInTheMiddleOfALineIsNotFound) {
    Open("[S]\n key=1\nxkey=2\n");
    EXPECT_EQ(Value("S", "key"), "(none)");
}

TEST_F(IniFile, SectionEndsAtTheNextBracketLine) {
    Open("[A]\na=1\n[B]\nb=2\n");
    EXPECT_EQ(Value("A", "a"), "1\n\n");
    EXPECT_EQ(Value("B", "b"), "2\n\n");
    EXPECT_EQ(Value("A", "b"), "(none)");
    EXPECT_EQ(Value("B", "a"), "(none)");
}

TEST_F(IniFile, SectionNameInsideAnotherLineStartsTheSectionThere) {
    Open("[A]\na=see [B] below\nb=1\n[B]\nb=2\n");
    EXPECT_EQ(Value("B", "b"), "1\n\n");
    // but it ends none
    EXPECT_EQ(Value("A", "a"), "see [B] below\n\n");
    EXPECT_EQ(Value("A", "b"), "1\n\n");
}

TEST_F(IniFile, OnlyALineThatBeginsWithABracketEndsTheSection) {
    Open("[A]\na=[1]\n [B]\nb]=2\nc=3\n[\nd=4\n");
    EXPECT_EQ(Value("A", "a"), "[1]\n\n");
    EXPECT_EQ(Value("A", "c"), "3\n\n");
    EXPECT_EQ(Value("A", "d"), "(none)");
}

TEST_F(IniFile, SectionNameIsCaseSensitiveAndWhole) {
    Open("[ABC]\nk=1\n");
    EXPECT_EQ(Value("abc", "k"), "(none)");
    EXPECT_EQ(Value("AB", "k"), "(none)");
    EXPECT_EQ(Value("ABC", "k"), "1\n\n");
}

TEST_F(IniFile, CommentsAreSkippedInFrontOfAndInsideASection) {
    Open("#[S]\n#k=0\nk=1\n[S]\n#k=2\nk=3\n");
    EXPECT_EQ(Value("S", "k"), "3\n\n");
    EXPECT_EQ(Value("S", "#k"), "(none)");
}

TEST_F(IniFile, NoSections) {
    Open("k=1\nl=2\n");
    EXPECT_EQ(Value("S", "k"), "(none)");
    EXPECT_EQ(Value("", "k"), "(none)");
}

TEST_F(IniFile, EmptyFile) {
    Open("");
    EXPECT_EQ(Value("S", "k"), "(none)");
}

TEST_F(IniFile, EveryLookUpStartsAtTheFirstLine) {
    Open("[S]\na=1\nb=2\n");
    EXPECT_EQ(Value("S", "b"), "2\n\n");
    EXPECT_EQ(Value("S", "a"), "1\n\n");
    EXPECT_EQ(Value("T", "a"), "(none)");
    EXPECT_EQ(Value("S", "missing"), "(none)");
    EXPECT_EQ(Value("S", "a"), "1\n\n");
}

TEST_F(IniFile, LineOfExactly1023Characters) {
    std::string text(kIniLineSize - 1 - 2 - 1, 'v');  // the key, its '=' and the newline make it 1023
    Open("[S]\nk=" + text + "\nl=after\n");
    EXPECT_EQ(Value("S", "k"), text + "\n\n");
    EXPECT_EQ(Value("S", "l"), "after\n\n");
}

TEST_F(IniFile, LongerLineIsReadInPieces) {
    std::string text(kIniLineSize - 1 - 2, 'v');  // with "k=" 1023: the newline is a line of its own
    Open("[S]\nk=" + text + "\nl=after\n");
    EXPECT_EQ(Value("S", "k"), text + "v");
    EXPECT_EQ(Value("S", "l"), "after\n\n");
}

TEST_F(IniFile, SecondPieceOfALongLineIsALineToo) {
    std::string text(kIniLineSize - 1 - 2, 'v');
    Open("[S]\nk=" + text + "l=inside\nl=after\n");
    EXPECT_EQ(Value("S", "l"), "inside\n\n");
}

TEST_F(IniFile, FileLongerThanTheReadBuffer) {
    std::string content = "[S]\n";
    for (int i = 1000; i < 2000; i++)
        content += "item" + std::to_string(i) + "=" + std::to_string(i * 7) + "\n";
    Open(content);
    for (int i = 1000; i < 2000; i += 37)
        EXPECT_EQ(Value("S", ("item" + std::to_string(i)).c_str()), std::to_string(i * 7) + "\n\n");
}

TEST_F(IniFile, NulInALineEndsItsText) {
    Open(std::string("[S]\nk=a\0b\nl=1\n", 14));
    EXPECT_EQ(Value("S", "k"), "aa");
    EXPECT_EQ(Value("S", "l"), "1\n\n");
}

TEST_F(IniFile, SectionNameOrKeyLongerThanALineIsNotFound) {
    Open("[S]\nk=1\n");
    std::string name(3'000, 'S');
    EXPECT_EQ(Value(name.c_str(), "k"), "(none)");
    EXPECT_EQ(Value("S", name.c_str()), "(none)");
}

TEST_F(IniFile, NullArguments) {
    Open("[S]\nk=1\n");
    char out[kIniLineSize] = {};
    EXPECT_EQ(GetIniString(nullptr, "S", "k", out), 1);
    EXPECT_EQ(GetIniString(file_, nullptr, "k", out), 1);
    EXPECT_EQ(GetIniString(file_, "S", nullptr, out), 1);
    EXPECT_EQ(GetIniString(file_, "S", "k", nullptr), 1);
    EXPECT_EQ(GetIniInterger(file_, "S", "k", nullptr), 1);
    EXPECT_STREQ(out, "");
}

TEST_F(IniFile, IntegerReadsLeadingDigits) {
    Open("[S]\na=12 items\nb=-3\nc=x\nd=99999999999999999999\ne=-99999999999999999999\nf = 0x10\n");
    int number = 77;
    EXPECT_EQ(GetIniInterger(file_, "S", "a", &number), 0);
    EXPECT_EQ(number, 12);
    EXPECT_EQ(GetIniInterger(file_, "S", "b", &number), 0);
    EXPECT_EQ(number, -3);
    EXPECT_EQ(GetIniInterger(file_, "S", "c", &number), 0);
    EXPECT_EQ(number, 0);
    EXPECT_EQ(GetIniInterger(file_, "S", "d", &number), 0);
    EXPECT_EQ(number, INT_MAX);
    EXPECT_EQ(GetIniInterger(file_, "S", "e", &number), 0);
    EXPECT_EQ(number, INT_MIN);
    EXPECT_EQ(GetIniInterger(file_, "S", "f", &number), 0);
    EXPECT_EQ(number, 0);
}

TEST_F(IniFile, IntegerThatIsMissingLeavesTheNumber) {
    Open("[S]\na=12\n");
    int number = 77;
    EXPECT_EQ(GetIniInterger(file_, "S", "b", &number), 1);
    EXPECT_EQ(number, 77);
}

TEST_F(IniFile, FileThatDoesNotExist) {
    EXPECT_EQ(OpenIniFile("nowhere.ini"), nullptr);
    EXPECT_EQ(OpenIniFile(nullptr), nullptr);
}

TEST_F(IniFile, OneFileIsOpenAtATime) {
    Open("[S]\nk=1\n");
    EXPECT_EQ(OpenIniFile("a.ini"), nullptr);
    EXPECT_EQ(Value("S", "k"), "1\n\n");
    CloseIniFile(file_);
    CloseIniFile(file_);  // closing twice closes nobody else's descriptor
    file_ = OpenIniFile("a.ini");
    ASSERT_NE(file_, nullptr);
    EXPECT_EQ(Value("S", "k"), "1\n\n");
}

TEST_F(IniFile, DirectoryHasNoLines) {
    directory_.Write("d/file", "");
    file_ = OpenIniFile("d");
    ASSERT_NE(file_, nullptr);
    EXPECT_EQ(Value("S", "k"), "(none)");
}

}  // namespace
