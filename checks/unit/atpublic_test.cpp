#include "text/atpublic.h"

#include <gtest/gtest.h>
#include <string.h>
#include <time.h>

#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "checks/support/fake_modem.h"
#include "checks/support/fake_platform.h"
#include "checks/support/log_capture.h"

namespace {

using std::string;

void SetCardMode(const char* mode) {
    Platform().Reset();
    Platform().config["data_card_mode"] = mode;
}

// Where `sub` is found, as an offset.
std::optional<size_t> Found(const string& text, const char* sub) {
    const char* at = Find_Sub_Str(text.c_str(), sub);
    if (at == nullptr) return std::nullopt;
    return static_cast<size_t>(at - text.c_str());
}

// The search in its plainest form.
std::optional<size_t> PlainFound(const string& text, const string& sub) {
    bool quoted = false;
    for (size_t at = 0; at + sub.size() <= text.size(); ++at) {
        if (text[at] == '"') quoted = !quoted;
        if (!quoted && text.compare(at, sub.size(), sub) == 0) return at;
    }
    return std::nullopt;
}

string ParaLine(const string& text) {
    std::vector<char> line(text.begin(), text.end());
    line.resize(std::max<size_t>(text.size() + 1, kParaLineSize), '\0');
    PreProc_Res_ParaLine(line.data());
    return line.data();
}

template <typename Function>
string InPlace(Function function, const string& text) {
    std::vector<char> line(text.begin(), text.end());
    line.push_back('\0');
    function(line.data());
    return line.data();
}

std::unique_ptr<AT_PARAS_LIST_T> Split(const string& text) {
    auto list = std::make_unique<AT_PARAS_LIST_T>();
    PreProc_Res_ParaList(list.get(), text.c_str());
    return list;
}

int64_t Milliseconds() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
}

}  // namespace

TEST(FindSubStr, NullArgumentsFindNothing) {
    EXPECT_EQ(Find_Sub_Str(static_cast<const char*>(nullptr), "OK"), nullptr);
    EXPECT_EQ(Find_Sub_Str("OK", nullptr), nullptr);
}

TEST(FindSubStr, TextOfItsOwnLengthIsFoundAtItsStart) {
    EXPECT_EQ(Found("OK", "OK"), 0u);
}

TEST(FindSubStr, LongerTextIsNotFound) {
    EXPECT_EQ(Found("OK", "OK\r\n"), std::nullopt);
    EXPECT_EQ(Found("", "O"), std::nullopt);
}

TEST(FindSubStr, FirstOfSeveralIsFound) {
    EXPECT_EQ(Found("xOKOK", "OK"), 1u);
}

TEST(FindSubStr, QuotedTextIsNotFound) {
    EXPECT_EQ(Found("+CPBR: 1,\"BROOK OK\"", "OK"), std::nullopt);
}

TEST(FindSubStr, TextBehindAQuotedOneIsFound) {
    EXPECT_EQ(Found("\"OK\" OK", "OK"), 5u);
}

TEST(FindSubStr, OpenQuoteHidesTheRest) {
    EXPECT_EQ(Found("a\"b\r\nOK\r\n", "OK"), std::nullopt);
    EXPECT_EQ(Found("a\"b\"\r\nOK\r\n", "OK"), 6u);
}

TEST(FindSubStr, MatchMayRunIntoAQuote) {
    EXPECT_EQ(Found("a=\"b\"", "=\"b"), 1u);
}

TEST(FindSubStr, QuoteFirstIsFoundAtAClosingQuoteOnly) {
    EXPECT_EQ(Found("\"a\"b", "\"a"), std::nullopt);
    EXPECT_EQ(Found("\"a\"b", "\"b"), 2u);
    EXPECT_EQ(Found("\"\"", "\""), 1u);
}

TEST(FindSubStr, EmptyTextIsFoundAtTheEnd) {
    EXPECT_EQ(Found("ab", ""), 2u);
    EXPECT_EQ(Found("", ""), 0u);
}

TEST(FindSubStr, EqualsThePlainSearchOnRandomText) {
    std::mt19937 random(20261121);
    const char letters[] = "ab\"\r\n";
    for (int round = 0; round < 100'000; ++round) {
        string text, sub;
        for (auto i = random() % 16; i > 0; --i)
            text += letters[random() % 5];
        for (auto i = 1 + random() % 3; i > 0; --i)
            sub += letters[random() % 5];
        ASSERT_EQ(Found(text, sub.c_str()), PlainFound(text, sub)) << text << " / " << sub;
    }
}

TEST(Findnum, TextBetweenTheFirstTwoQuotes) {
    char number[32] = {};
    EXPECT_EQ(findnum("+CLIP: \"+441234\",145,\"x\"", number), number);
    EXPECT_STREQ(number, "+441234");
}

TEST(Findnum, AddsNoTerminator) {
    char number[32] = "123456";
    findnum("\"ab\"", number);
    EXPECT_STREQ(number, "ab3456");
}

TEST(Findnum, EmptyQuotesChangeNothing) {
    char number[32] = "12";
    findnum("\"\"", number);
    EXPECT_STREQ(number, "12");
}

TEST(Findnum, UnclosedQuoteGivesZero) {
    char number[32] = {};
    findnum("+CLIP: \"+44", number);
    EXPECT_STREQ(number, "0");
    char before[32] = "123456";  // no terminator here either
    EXPECT_EQ(findnum("+CLIP: \"+44", before), before);
    EXPECT_STREQ(before, "023456");
}

TEST(Findnum, NoQuoteLeavesTheDestination) {
    char number[32] = "before";
    EXPECT_EQ(findnum("+CLIP: 44", number), number);
    EXPECT_STREQ(number, "before");
}

TEST(Findnum, NullArgumentsDoNothing) {
    char number[4] = "ab";
    EXPECT_EQ(findnum(nullptr, number), number);
    EXPECT_STREQ(number, "ab");
    EXPECT_EQ(findnum("\"1\"", nullptr), nullptr);
}

TEST(CardMode, OnlyTheTwoKindsOfTheModuleCount) {
    for (const char* mode : {"KVX_LTE", "KVX_WCDMA"}) {
        SetCardMode(mode);
        EXPECT_TRUE(IsModuleCardMode()) << mode;
    }
    for (const char* mode : {"", "KVX", "KVX_LTE ", "kvx_lte", "KVX_LTEX", "KVX_WCDM"}) {
        SetCardMode(mode);
        EXPECT_FALSE(IsModuleCardMode()) << mode;
    }
    Platform().Reset();
    EXPECT_FALSE(IsModuleCardMode());
}

class PreProcResParaLine : public testing::TestWithParam<const char*> {
  protected:
    void SetUp() override {
        SetCardMode(GetParam());
        ClearLog();
    }
    bool Module() const { return strncmp(GetParam(), "KVX", 3) == 0; }
    string Chosen(const char* module, const char* other) const { return Module() ? module : other; }
};

INSTANTIATE_TEST_SUITE_P(EachCardMode, PreProcResParaLine,
                         testing::Values("KVX_LTE", "KVX_WCDMA", "", "other"));

TEST_P(PreProcResParaLine, NullAndEmptyAreLeftAlone) {
    PreProc_Res_ParaLine(nullptr);
    EXPECT_EQ(ParaLine(""), "");
}

TEST_P(PreProcResParaLine, PlainFieldsBecomeWords) {
    EXPECT_EQ(ParaLine("1,2,abc"), "1 2 abc");
    EXPECT_FALSE(LoggedPart("double"));
}

TEST_P(PreProcResParaLine, BlanksAndTabsOutsideQuotesStay) {
    EXPECT_EQ(ParaLine("1, 2,\ta"), "1  2 \ta");
}

TEST_P(PreProcResParaLine, QuotedBlanksAndTabsBecomeMarkers) {
    EXPECT_EQ(ParaLine("1,\"Net A\tB\",2"),
              "1 Net\xFE"
              "A\xFC"
              "B 2");
}

TEST_P(PreProcResParaLine, QuotedCommaStays) {
    EXPECT_EQ(ParaLine("\"a,b\",c"), "a,b c");
    EXPECT_EQ(ParaLine("\"a,,b\""), "a,,b");
    EXPECT_FALSE(LoggedPart("double"));
}

TEST_P(PreProcResParaLine, EmptyQuotesBecomeTheMarker) {
    EXPECT_EQ(ParaLine("0,\"\""), "0 \xFD");
    EXPECT_EQ(ParaLine("\"\""), "\xFD");
    EXPECT_EQ(ParaLine("\"\",1"), "\xFD 1");
}

TEST_P(PreProcResParaLine, ClosingQuoteBeforeAQuoteBecomesTheMarkerToo) {
    EXPECT_EQ(ParaLine("\"a\"\"b\""),
              "a\xFD"
              "b");
    EXPECT_EQ(ParaLine("\"\"\"\""), "\xFD\xFD\xFD");
}

TEST_P(PreProcResParaLine, TrailingCommaBecomesTheMarker) {
    EXPECT_EQ(ParaLine("2,"), "2 \xFD");
    EXPECT_EQ(ParaLine(","), " \xFD");
}

TEST_P(PreProcResParaLine, TrailingCommaInAnOpenQuoteStays) {
    EXPECT_EQ(ParaLine("\"2,"), "2,");
}

TEST_P(PreProcResParaLine, EmptyFieldDependsOnTheCardMode) {
    EXPECT_EQ(ParaLine("a,,b"), Chosen("a   b", "a 9 b"));
    EXPECT_EQ(Logged("double ',' is here!", "atpublic", 6), !Module());
}

TEST_P(PreProcResParaLine, SeveralEmptyFieldsDependOnTheCardMode) {
    EXPECT_EQ(ParaLine("a,,,b"), Chosen("a     b", "a 9 9 b"));
    EXPECT_EQ(ParaLine(",,b"), Chosen("   b", " 9 b"));
    EXPECT_EQ(ParaLine("a,,"), Chosen("a   \xFD", "a 9 \xFD"));
}

TEST_P(PreProcResParaLine, NameWithABlankAndAnEmptyField) {
    EXPECT_EQ(ParaLine("1,\"Net A\",,2"), Chosen("1 Net\xFE"
                                                 "A   2",
                                                 "1 Net\xFE"
                                                 "A 9 2"));
}

TEST_P(PreProcResParaLine, LineOf1023CharactersIsTaken) {
    const string text = "1," + string(1021, 'a');
    EXPECT_EQ(ParaLine(text), "1 " + string(1021, 'a'));
}

TEST_P(PreProcResParaLine, LineOf1024CharactersIsLeftAlone) {
    const string text = "\"1\"," + string(1020, 'a');
    EXPECT_EQ(ParaLine(text), text);
    EXPECT_EQ(ParaLine("\"\"," + string(2000, 'a')), "\"\"," + string(2000, 'a'));
}

// k commas and what follows give 2k - 1 characters, so one letter at each end decides which side of the limit
// is hit.
TEST_P(PreProcResParaLine, GrowsUpTo1023Characters) {
    const string result = ParaLine("a" + string(511, ',') + "b");
    EXPECT_EQ(result.size(), 1023u);
    EXPECT_EQ(result.substr(0, 4), Chosen("a   ", "a 9 "));
    EXPECT_EQ(result.back(), 'b');
}

TEST_P(PreProcResParaLine, ResultOf1024CharactersGivesUp) {
    const string text = string(512, ',') + "b";
    EXPECT_EQ(ParaLine(text), text);
}

TEST_P(PreProcResParaLine, ResultOf1025CharactersGivesUp) {
    const string text = "a" + string(512, ',') + "b";
    EXPECT_EQ(ParaLine(text), text);
}

TEST_P(PreProcResParaLine, MarkerOfATrailingCommaCountsToo) {
    EXPECT_EQ(ParaLine(string(1021, 'a') + ","), string(1021, 'a') + " \xFD");
    EXPECT_EQ(ParaLine(string(1022, 'a') + ","), string(1022, 'a') + ",");
}

TEST(PreProcResParaLineEx, GroupsBecomeSemicolonSeparated) {
    EXPECT_EQ(InPlace(PreProc_Res_ParaLineEx, "(1,2),(3,4)"), "1,2;3,4");
    EXPECT_EQ(InPlace(PreProc_Res_ParaLineEx, "(1),(2),(3)"), "1;2;3");
}

TEST(PreProcResParaLineEx, ClosingBracketWithoutACommaIsDropped) {
    EXPECT_EQ(InPlace(PreProc_Res_ParaLineEx, "(1-3) ,5"), "1-3 ,5");
    EXPECT_EQ(InPlace(PreProc_Res_ParaLineEx, "((1)),2"), "1;2");
    EXPECT_EQ(InPlace(PreProc_Res_ParaLineEx, "(),"), ";");
}

TEST(PreProcResParaLineEx, TextWithoutBracketsStays) {
    EXPECT_EQ(InPlace(PreProc_Res_ParaLineEx, "1,2"), "1,2");
    EXPECT_EQ(InPlace(PreProc_Res_ParaLineEx, ""), "");
    PreProc_Res_ParaLineEx(nullptr);
}

TEST(PreProcCopsRes, CutsBehindTheFirstSemicolonBeforeAComma) {
    EXPECT_EQ(InPlace(PreProcCopsRes_Res_ParaLine, "2,\"A\";1,\"B\";,0-4,0-2;,x"), "2,\"A\";1,\"B\";");
    EXPECT_EQ(InPlace(PreProcCopsRes_Res_ParaLine, ";,"), ";");
}

TEST(PreProcCopsRes, TextWithoutThePairStays) {
    EXPECT_EQ(InPlace(PreProcCopsRes_Res_ParaLine, "2,\"A\";1,\"B\";"), "2,\"A\";1,\"B\";");
    EXPECT_EQ(InPlace(PreProcCopsRes_Res_ParaLine, ""), "");
    PreProcCopsRes_Res_ParaLine(nullptr);
}

TEST(RestoreStringPara, LoneEmptyMarkerBecomesTheEmptyText) {
    EXPECT_EQ(InPlace(Restore_String_Para, "\xFD"), "");
}

TEST(RestoreStringPara, EmptyMarkerInsideAWordStays) {
    EXPECT_EQ(InPlace(Restore_String_Para, "\xFD\xFD"), "\xFD\xFD");
    EXPECT_EQ(InPlace(Restore_String_Para, "a\xFD"), "a\xFD");
    EXPECT_EQ(InPlace(Restore_String_Para, "\xFD\xFE"), "\xFD ");
}

TEST(RestoreStringPara, BlanksAndTabsComeBack) {
    EXPECT_EQ(InPlace(Restore_String_Para,
                      "Net\xFE"
                      "A\xFC"
                      "B\xFE"),
              "Net A\tB ");
}

TEST(RestoreStringPara, OtherTextStays) {
    EXPECT_EQ(InPlace(Restore_String_Para, "\xFB\xFF word"), "\xFB\xFF word");
    EXPECT_EQ(InPlace(Restore_String_Para, ""), "");
    Restore_String_Para(nullptr);
}

TEST(PreProcResParaList, SplitsAtSemicolons) {
    auto list = Split("a;b;c");
    ASSERT_EQ(list->nCount, 3);
    EXPECT_STREQ(list->strParasLine[0], "a");
    EXPECT_STREQ(list->strParasLine[1], "b");
    EXPECT_STREQ(list->strParasLine[2], "c");
}

TEST(PreProcResParaList, QuotedSemicolonDoesNotSplit) {
    auto list = Split("1,\"a;b\";2");
    ASSERT_EQ(list->nCount, 2);
    EXPECT_STREQ(list->strParasLine[0], "1,\"a;b\"");
    EXPECT_STREQ(list->strParasLine[1], "2");
}

TEST(PreProcResParaList, EmptyPieceInTheMiddleIsALineAndAtTheEndIsNone) {
    auto list = Split("a;;b;");
    ASSERT_EQ(list->nCount, 3);
    EXPECT_STREQ(list->strParasLine[1], "");
    EXPECT_STREQ(list->strParasLine[2], "b");
    EXPECT_EQ(Split(";")->nCount, 1);
}

TEST(PreProcResParaList, EmptyTextHasNoLines) {
    EXPECT_EQ(Split("")->nCount, 0);
}

TEST(PreProcResParaList, OkAloneHasNoLines) {
    EXPECT_EQ(Split("OK")->nCount, 0);
    EXPECT_EQ(Split("OK;")->nCount, 1);
    EXPECT_EQ(Split("OKAY")->nCount, 1);
    EXPECT_EQ(Split("ok")->nCount, 1);
}

TEST(PreProcResParaList, TakesAHundredLines) {
    for (int lines : {99, 100, 101, 200}) {
        string text;
        for (int i = 0; i < lines; ++i)
            text += (i > 0 ? ";" : "") + std::to_string(i);
        auto list = Split(text);
        EXPECT_EQ(list->nCount, std::min(lines, 100)) << lines;
        EXPECT_EQ(list->strParasLine[list->nCount - 1], std::to_string(std::min(lines, 100) - 1));
    }
}

TEST(PreProcResParaList, PieceOf1023CharactersIsTaken) {
    auto list = Split("a;" + string(1023, 'x') + ";b");
    ASSERT_EQ(list->nCount, 3);
    EXPECT_EQ(list->strParasLine[1], string(1023, 'x'));
    EXPECT_EQ(Split("a;" + string(1023, 'x'))->nCount, 2);
}

TEST(PreProcResParaList, PieceOf1024CharactersStopsIt) {
    auto list = Split("a;" + string(1024, 'x') + ";b");
    ASSERT_EQ(list->nCount, 1);
    EXPECT_STREQ(list->strParasLine[0], "a");
    EXPECT_EQ(Split("a;" + string(1024, 'x'))->nCount, 1);
    EXPECT_EQ(Split(string(1024, 'x'))->nCount, 0);
}

TEST(PreProcResParaList, NullArgumentsDoNothing) {
    auto list = std::make_unique<AT_PARAS_LIST_T>();
    PreProc_Res_ParaList(list.get(), nullptr);
    EXPECT_EQ(list->nCount, 0);
    PreProc_Res_ParaList(nullptr, "a;b");
}

TEST(KvxSleep, WaitsHalfASecond) {
    const int64_t begin = Milliseconds();
    kvx_sleep(500);
    const int64_t waited = Milliseconds() - begin;
    EXPECT_GE(waited, 499);
    EXPECT_LT(waited, 1'000);
}

TEST(KvxSleep, WaitsASecondAndAHalf) {
    const int64_t begin = Milliseconds();
    kvx_sleep(1'500);
    const int64_t waited = Milliseconds() - begin;
    EXPECT_GE(waited, 1'499);
    EXPECT_LT(waited, 2'000);
}

TEST(KvxSleep, CarriesSecondsWhereTheKernelWantsThem) {
    Device().Reset();
    Device().refuse_long_waits = true;
    Device().skip_waits = true;
    kvx_sleep(999);
    EXPECT_EQ(Device().refused_waits, 0);
    EXPECT_EQ(Device().waited_ms, 999);
    kvx_sleep(1'500);
    EXPECT_EQ(Device().refused_waits, 1);
    EXPECT_EQ(Device().waited_ms, 999 + 1'500);
    Device().Reset();
}

TEST(AtTimeStamp, IsTheLocalTime) {
    const time_t before = time(nullptr);
    const string text = AtTimeStamp();
    const time_t after = time(nullptr);
    bool matches = false;
    for (time_t moment = before; moment <= after; ++moment) {
        tm local;
        localtime_r(&moment, &local);
        char expected[32];
        snprintf(expected, sizeof expected, "%4d/%02d/%02d %02d:%02d:%02d", (local.tm_year + 1900) % 10'000,
                 local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
        matches = matches || text == expected;
    }
    EXPECT_TRUE(matches) << text;
}
