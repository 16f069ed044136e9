#include <gtest/gtest.h>
#include <string.h>

#include <memory>
#include <string>
#include <vector>

#include "checks/support/fake_platform.h"
#include "checks/support/fake_queue.h"
#include "checks/support/log_capture.h"
#include "checks/unit/vectors.h"
#include "codec/atcode.h"
#include "records/state.h"

// The two scans of a framed response: result class, name and parameter text, and the reports that leave from
// inside.

namespace {

using std::string;

constexpr uint16_t kUssd = 0x0532;

struct Scanned {
    int returned;
    int result;
    string name;
    string paras;
    bool operator==(const Scanned&) const = default;
};

void PrintTo(const Scanned& scanned, std::ostream* out) {
    *out << "{returned " << scanned.returned << ", result " << scanned.result << ", name \"" << scanned.name
         << "\", paras \"" << scanned.paras.substr(0, 200) << "\"}";
}

// A response line with a guard behind it.
struct Guarded {
    AT_RES_LINE_T line;
    char guard[16];
};

std::unique_ptr<Guarded> NewLine() {
    auto guarded = std::make_unique<Guarded>();
    memset(guarded.get(), 0, sizeof *guarded);
    return guarded;
}

Scanned Result(int returned, const Guarded& guarded) {
    for (const char byte : guarded.guard)
        EXPECT_EQ(byte, 0);
    return {returned, guarded.line.Result, guarded.line.strCmdName, guarded.line.strResParas};
}

class Scan : public testing::Test {
  protected:
    void SetUp() override {
        StartWith(kModule);
        Queues().Reset();
        Queues().CreateModules();
        g_last_atcmd = 0;
    }
    void TearDown() override { g_last_atcmd = 0; }

    static Scanned Module(const string& text) {
        auto guarded = NewLine();
        const int returned = Bk_PreParse_At_Res_Lines(&guarded->line, text.c_str());
        return Result(returned, *guarded);
    }
    static Scanned Generic(const string& text) {
        auto guarded = NewLine();
        const int returned = Bk_PreParse_At_Res_Generic(&guarded->line, text.c_str());
        return Result(returned, *guarded);
    }
    // One line for the worker of named lines, onto what was scanned before.
    static Scanned Named(const string& line, const string& name = "", const string& paras = "") {
        auto guarded = NewLine();
        strcpy(guarded->line.strCmdName, name.c_str());
        strcpy(guarded->line.strResParas, paras.c_str());
        const int returned = Bk_PreParse_At_Res_Message(&guarded->line, line.c_str());
        return Result(returned, *guarded);
    }
    static Scanned Unnamed(const string& line, const string& name = "", const string& paras = "",
                           const string& rest = "") {
        auto guarded = NewLine();
        strcpy(guarded->line.strCmdName, name.c_str());
        strcpy(guarded->line.strResParas, paras.c_str());
        const int returned =
            Bk_PreParse_Result_Line(&guarded->line, line.c_str(), rest.empty() ? line.c_str() : rest.c_str());
        return Result(returned, *guarded);
    }
};

using ModuleScan = Scan;
using ModuleLine = Scan;
using ResultLine = Scan;
using GenericScan = Scan;
using UssdError = Scan;
using ToolkitEvent = Scan;

// The 652 bytes of a report, laid out by hand.
std::vector<unsigned char> ReportBytes(uint16_t target, uint16_t id, uint8_t type, uint8_t result,
                                       const string& paras) {
    std::vector<unsigned char> bytes(652, 0);
    const auto put = [&bytes](size_t at, auto value) { memcpy(&bytes[at], &value, sizeof value); };
    put(0, target);
    put(2, uint16_t{0x1000});
    put(4, uint16_t{0x0302});
    put(6, uint16_t{518});
    put(8, id);
    put(10, type);
    put(11, result);
    put(12, static_cast<uint16_t>(paras.size()));
    memcpy(&bytes[14], paras.data(), paras.size());
    memcpy(&bytes[648], "::::", 4);
    return bytes;
}

void ExpectOneReport(uint16_t target, uint16_t id, uint8_t type, uint8_t result, const string& paras) {
    ASSERT_EQ(Queues().sent.size(), 1u);
    EXPECT_EQ(Queues().sent[0].key, target);
    EXPECT_EQ(Queues().sent[0].type, 1);
    EXPECT_EQ(Queues().sent[0].body, ReportBytes(target, id, type, result, paras));
}

constexpr const char* kUssdErrorTexts[] = {
    "+CME ERROR: retry operation",
    "+CME ERROR: network timeout",
    "+CME ERROR: unknown network message",
    "+CME ERROR: service not available",
    "+CME ERROR: unknown subscriber",
    "+CME ERROR: network rejected request",
    "+CME ERROR: incorrect password",
    "+CME ERROR: unknown class specified",
    "+CME ERROR: unknown",
    "+CME ERROR: deflected to own number",
    "+CME ERROR: invalid deflected to number",
};

}  // namespace

TEST_F(ModuleScan, NullArgumentsAreRefused) {
    auto guarded = NewLine();
    AT_RES_LINE_T* line = &guarded->line;
    EXPECT_EQ(Bk_PreParse_At_Res_Lines(nullptr, "OK\r\n"), -1);
    EXPECT_EQ(Bk_PreParse_At_Res_Lines(line, nullptr), -1);
    EXPECT_EQ(Bk_PreParse_At_Res_Generic(nullptr, "OK\r\n"), -1);
    EXPECT_EQ(Bk_PreParse_At_Res_Generic(line, nullptr), -1);
    EXPECT_EQ(Bk_PreParse_At_Res_Message(nullptr, "+CSQ: 1"), -1);
    EXPECT_EQ(Bk_PreParse_At_Res_Message(line, nullptr), -1);
    EXPECT_EQ(Bk_PreParse_Result_Line(nullptr, "OK", "OK"), -1);
    EXPECT_EQ(Bk_PreParse_Result_Line(line, nullptr, "OK"), -1);
    EXPECT_EQ(Bk_PreParse_Result_Line(line, "OK", nullptr), -1);
    EXPECT_FALSE(Bk_Check_Ussd_Error(nullptr, kUssdErrorTexts[0]));
    EXPECT_FALSE(Bk_Check_Ussd_Error(line, nullptr));
    EXPECT_EQ(Result(0, *guarded), (Scanned{0, 0, "", ""}));
}

TEST_F(ModuleScan, AnswerWithItsOk) {
    EXPECT_EQ(Module("\r\n+CSQ: 20,99\r\n\r\nOK\r\n"), (Scanned{0, 1, "+CSQ", "20,99"}));
}

TEST_F(ModuleScan, OkAlone) {
    EXPECT_EQ(Module("\r\nOK\r\n"), (Scanned{0, 1, "", "OK"}));
}

TEST_F(ModuleScan, LineBeforeTheFirstBreakCountsAndTextBehindTheLastDoesNot) {
    EXPECT_EQ(Module("+CSQ: 20\r\nOK"), (Scanned{0, 0, "+CSQ", "20"}));
    EXPECT_EQ(Module("OK"), (Scanned{0, 0, "", ""}));
    EXPECT_EQ(Module(""), (Scanned{0, 0, "", ""}));
}

TEST_F(ModuleScan, QuotedLineBreakSplitsNoLine) {
    EXPECT_EQ(Module("+CPBR: 1,\"a\r\nOK\r\n\"\r\nOK\r\n"), (Scanned{0, 1, "+CPBR", "1,\"a\r\nOK\r\n\""}));
}

TEST_F(ModuleScan, ListWithPdusBecomesOneText) {
    EXPECT_EQ(Module("\r\n+CMGL: 1,1,,23\r\n0891AA\r\n+CMGL: 2,0,,24\r\n0891BB\r\n\r\nOK\r\n"),
              (Scanned{0, 1, "+CMGL", "1,1,,23,\"0891AA\";2,0,,24,\"0891BB\""}));
}

TEST_F(ModuleScan, LineOfAnotherNameIsDroppedAndTheScanGoesOn) {
    EXPECT_EQ(Module("+CSQ: 20\r\n+CREG: 1\r\n+CSQ: 21\r\nOK\r\n"), (Scanned{0, 1, "+CSQ", "20;21"}));
}

TEST_F(ModuleScan, BareAnswer) {
    EXPECT_EQ(Module("\r\n490154203237518\r\n\r\nOK\r\n"), (Scanned{0, 1, "", "490154203237518"}));
}

TEST_F(ModuleScan, BareLineBeforeANamedOneIsDropped) {
    EXPECT_EQ(Module("49015\r\n+CSQ: 1\r\nOK\r\n"), (Scanned{0, 1, "+CSQ", "1"}));
}

TEST_F(ModuleScan, LineOf1023CharactersIsWholeAndALongerOneIsCut) {
    const string head = "+ZSEC: ";
    EXPECT_EQ(Module(head + string(1016, 'x') + "\r\n").paras, string(1016, 'x'));
    EXPECT_EQ(Module(head + string(1017, 'x') + "\r\n").paras, string(1016, 'x'));
    EXPECT_EQ(Module(head + string(50'000, 'x') + "\r\nOK\r\n"), (Scanned{0, 1, "+ZSEC", string(1016, 'x')}));
}

TEST_F(ModuleScan, FinalResultBehindTheCutIsNotSeen) {
    EXPECT_EQ(Module(string(1021, 'x') + "OK\r\n").result, 1);
    EXPECT_EQ(Module(string(1022, 'x') + "OK\r\n").result, 0);
}

// Each line of one character and its break, three bytes, becomes four.
TEST_F(ModuleScan, GrownTextStopsAtTheEndOfItsBuffer) {
    string text = "+CMGL: 1\r\n";
    while (text.size() + 3 <= 102'399)
        text += "x\r\n";
    const Scanned scanned = Module(text);
    EXPECT_EQ(scanned.name, "+CMGL");
    EXPECT_EQ(scanned.paras.size(), 102'400u);
    EXPECT_EQ(scanned.paras.substr(0, 9), "1,\"x\",\"x\"");
}

TEST_F(ModuleScan, JoinedTextStopsAtTheEndOfItsBuffer) {
    string text;
    while (text.size() < 120'000)
        text += "+CMGL: " + string(1000, 'x') + "\r\n";
    EXPECT_EQ(Module(text).paras.size(), 102'400u);
    EXPECT_EQ(Generic(text).paras.size(), 102'400u);
}

// Each of them asks whether a named line follows.
TEST_F(ModuleScan, ManyBareLinesKeepOrLoseThemselvesTogether) {
    string lines;
    for (int i = 0; i < 20'000; ++i)
        lines += "x\r\n";
    EXPECT_EQ(Module(lines + "OK\r\n"), (Scanned{0, 1, "", string(20'000, 'x')}));
    EXPECT_EQ(Module(lines + "+CSQ: 1\r\n"), (Scanned{0, 0, "+CSQ", "1"}));
    EXPECT_EQ(Module("HANGUP: 1\r\n" + lines), (Scanned{0, 0, "", "HANGUP: 1" + string(20'000, 'x')}));
    EXPECT_EQ(Module(lines + "HANGUP: 1\r\ny\r\n\"a: b\"\r\n"), (Scanned{0, 0, "", "HANGUP: 1y\"a: b\""}));
}

TEST_F(ModuleLine, WithoutColonAndBlankIsRefused) {
    for (const char* line : {"", "OK", "+CSQ:1", "+CSQ", "\"a: b\""})
        EXPECT_EQ(Named(line), (Scanned{-1, 0, "", ""})) << line;
}

TEST_F(ModuleLine, ErrorsGiveTheirClassAndText) {
    EXPECT_EQ(Named("+CMS ERROR: 305"), (Scanned{0, 3, "", "305"}));
    EXPECT_EQ(Named("CMS ERROR: 305"), (Scanned{0, 3, "", "305"}));
    EXPECT_EQ(Named("+CME ERROR: 10"), (Scanned{0, 4, "", "10"}));
    EXPECT_EQ(Named("CME ERROR: "), (Scanned{0, 4, "", ""}));
}

TEST_F(ModuleLine, ErrorTextIsAppended) {
    EXPECT_EQ(Named("+CME ERROR: 10", "+CSQ", "20"), (Scanned{0, 4, "+CSQ", "2010"}));
}

TEST_F(ModuleLine, ErrorIsElevenAfterAUssdAnswerOnly) {
    g_last_atcmd = kUssd;
    EXPECT_EQ(Named("+CME ERROR: 10").result, 11);
    EXPECT_EQ(Named("+CMS ERROR: 10").result, 3);
    g_last_atcmd = 0x0604;
    EXPECT_EQ(Named("+CME ERROR: 10").result, 4);
}

TEST_F(ModuleLine, EndedCallsKeepTheirWholeLine) {
    for (const char* line : {"VOICE NO CARRIER : 16", "HANGUP: 1", "+HANGUP: +ZSTI: 1"})
        EXPECT_EQ(Named(line), (Scanned{0, 0, "", line})) << line;
    EXPECT_TRUE(Queues().sent.empty());
}

TEST_F(ModuleLine, VoiceNoCarrierWithoutTheBlankIsAName) {
    EXPECT_EQ(Named("VOICE NO CARRIER: 16"), (Scanned{0, 0, "VOICE NO CARRIER", "16"}));
}

TEST_F(ModuleLine, ReportsThatAreRoutedByTextKeepTheirWholeLine) {
    for (const char* name : {"+CLIP", "+CCWA", "+RINGBACK", "ZVCONNECT", "+CMTI", "ZREFRESH", "+ZVMTI",
                             "ZVMAIL", "+CDSI", "+ZCLAS", "+ZCONSTAT", "+CGEV", "+ZNITZ"}) {
        const string line = string(name) + ": 1,2";
        EXPECT_EQ(Named(line), (Scanned{0, 0, "", line}));
        EXPECT_EQ(Named("+" + line), (Scanned{0, 0, "", "+" + line}));
        EXPECT_EQ(Named(line, "+CSQ", "20"), (Scanned{0, 0, "+CSQ", "20" + line}));
    }
}

TEST_F(ModuleLine, QuotedReportNameIsNone) {
    EXPECT_EQ(Named("+ZSEC: \"+CLIP\""), (Scanned{0, 0, "+ZSEC", "\"+CLIP\""}));
    EXPECT_EQ(Named("+ZSEC: \"+ZSTI\""), (Scanned{0, 0, "+ZSEC", "\"+ZSTI\""}));
    EXPECT_TRUE(Queues().sent.empty());
}

TEST_F(ModuleLine, FirstNameIsTakenAndTheSameNameJoins) {
    EXPECT_EQ(Named("+ZSEC: 1"), (Scanned{0, 0, "+ZSEC", "1"}));
    EXPECT_EQ(Named("+ZSEC: 2", "+ZSEC", "1"), (Scanned{0, 0, "+ZSEC", "1;2"}));
    EXPECT_EQ(Named("+ZSEC: ", "+ZSEC", "1"), (Scanned{0, 0, "+ZSEC", "1;"}));
}

TEST_F(ModuleLine, AnotherNameIsRefused) {
    for (const char* line : {"+ZSE: 2", "+ZSECX: 2", "+zsec: 2", " +ZSEC: 2"})
        EXPECT_EQ(Named(line, "+ZSEC", "1"), (Scanned{-1, 0, "+ZSEC", "1"})) << line;
}

TEST_F(ModuleLine, NameIsCutAt63Characters) {
    EXPECT_EQ(Named(string(63, 'N') + ": 1").name, string(63, 'N'));
    EXPECT_EQ(Named(string(64, 'N') + ": 1").name, string(63, 'N'));
    EXPECT_EQ(Named(string(900, 'N') + ": 1"), (Scanned{0, 0, string(63, 'N'), "1"}));
    EXPECT_EQ(Named(string(900, 'N') + ": 2", string(63, 'N'), "1").paras, "1;2");
}

TEST_F(ModuleLine, NameEndsAtTheFirstColonWithABlank) {
    EXPECT_EQ(Named("+ZSEC:1: 2: 3"), (Scanned{0, 0, "+ZSEC:1", "2: 3"}));
}

TEST_F(ModuleLine, LockedBandIsKeptUnderItsMode) {
    Platform().config["bandmode"] = "2";
    EXPECT_EQ(Named("+ZLOCKBAND: 41,5"), (Scanned{0, 0, "", "+ZLOCKBAND: 41,5"}));
    EXPECT_EQ(Platform().writes, (decltype(Platform().writes){{"LTE_band", " 41"}}));
}

TEST_F(ModuleLine, LockedFrequencyIsKeptUnderItsMode) {
    Platform().config["bandmode"] = "4";
    EXPECT_EQ(Named("+ZLOCKF: 38,5"), (Scanned{0, 0, "", "+ZLOCKF: 38,5"}));
    EXPECT_EQ(Platform().writes, (decltype(Platform().writes){{"LTE_Band", " 38"}}));
}

TEST_F(ModuleLine, KeptBandStopsAtTheEndOfTheLine) {
    Platform().config["bandmode"] = "2";
    Named("+ZLOCKBAND: 4");
    EXPECT_EQ(Platform().config["LTE_band"], " 4");
    Named("+ZLOCKBAND: ");
    EXPECT_EQ(Platform().config["LTE_band"], " ");
}

TEST_F(ModuleLine, LockUnderAnotherModeIsAnOrdinaryLine) {
    for (const char* mode : {"", "1", "22", "4"}) {
        Platform().config["bandmode"] = mode;
        EXPECT_EQ(Named("+ZLOCKBAND: 41"), (Scanned{0, 0, "+ZLOCKBAND", "41"})) << mode;
    }
    for (const char* mode : {"", "2", "44"}) {
        Platform().config["bandmode"] = mode;
        EXPECT_EQ(Named("+ZLOCKF: 38"), (Scanned{0, 0, "+ZLOCKF", "38"})) << mode;
    }
    EXPECT_TRUE(Platform().writes.empty());
}

TEST_F(ModuleLine, UssdResultIsReportedAndItsLineStands) {
    EXPECT_EQ(Named("+CUSD: 0,\"hello\",15", "", "before"), (Scanned{0, 0, "", "+CUSD: 0,\"hello\",15"}));
    ASSERT_EQ(Queues().sent.size(), 1u);
    const auto expected = ReportBytes(0x101C, kUssd, 2, 1, string(512, '\0'));
    auto body = Queues().sent[0].body;
    // Everything but the length, which is that of the record in the file; of its text nothing is carried.
    uint16_t length;
    memcpy(&length, &body[12], 2);
    EXPECT_EQ(length, 824);
    memcpy(&body[12], &expected[12], 2);
    EXPECT_EQ(body, expected);
    EXPECT_EQ(Files().Content("/etc/cusd").size(), 824u);
}

TEST_F(ToolkitEvent, EachIsReportedAtOnceWithItsExactBytes) {
    const struct {
        const char* line;
        const char* text;
        uint16_t id;
    } kEvents[] = {
        {"+ZPSTM: 1,\"Menu\"", "1,\"Menu\"", 0x0709},
        {"+ZMTime: 12", "12", 0x0710},
        {"+ZDIST: 1,4,\"00\"", "1,4,\"00\"", 0x0706},
        {"+ZFDIST: 7", "7", 0x0711},
        {"+ZUnsupport: 5", "rt: 5", 0x0711},
        {"+ZSMSR: 1", "1", 0x0705},
        {"+ZSTI: 3", "3", 0x0702},
        {"+ZGINP: 4", "4", 0x070A},
        {"+ZGINK: 5", "5", 0x070C},
    };
    for (const auto& event : kEvents) {
        Queues().sent.clear();
        EXPECT_EQ(Named(event.line, "", "before"), (Scanned{0, 0, "", ""})) << event.line;
        ExpectOneReport(0x1019, event.id, 2, 1, event.text);
    }
}

TEST_F(ToolkitEvent, SkipStopsAtTheEndOfAShortLine) {
    Named("ZPSTM: ");
    ExpectOneReport(0x1019, 0x0709, 2, 1, "");
}

TEST_F(ToolkitEvent, SkipCountsFromTheStartOfTheLine) {
    Named("xx+ZSTI: 3");
    ExpectOneReport(0x1019, 0x0702, 2, 1, ": 3");
}

TEST_F(ToolkitEvent, LongerNameIsTakenForTheShorterOne) {
    Named("+ZDISTR: 1");
    ExpectOneReport(0x1019, 0x0706, 2, 1, " 1");
}

TEST_F(ToolkitEvent, NamesWithoutTheirPlusAreNone) {
    for (const char* name : {"ZMTime", "ZDIST", "ZFDIST", "ZUnsupport", "ZSMSR", "ZSTI", "ZGINP", "ZGINK"})
        EXPECT_EQ(Named(string(name) + ": 1"), (Scanned{0, 0, name, "1"}));
    EXPECT_TRUE(Queues().sent.empty());
}

TEST_F(ToolkitEvent, TextIsCutAt633Characters) {
    Named("+ZDIST: " + string(633, 'x'));
    ExpectOneReport(0x1019, 0x0706, 2, 1, string(633, 'x'));
    Queues().sent.clear();
    Named("+ZDIST: " + string(634, 'x'));
    ExpectOneReport(0x1019, 0x0706, 2, 1, string(633, 'x'));
}

TEST_F(ToolkitEvent, TextOfFortyCharactersHasLengthForty) {
    Named("+ZDIST: " + string(40, 'x'));
    ExpectOneReport(0x1019, 0x0706, 2, 1, string(40, 'x'));
}

TEST_F(ToolkitEvent, ModuleWithoutAQueueChangesNothingElse) {
    Queues().Reset();
    EXPECT_EQ(Named("+ZSTI: 3"), (Scanned{0, 0, "", ""}));
    EXPECT_TRUE(Logged("ERROR: send_auto_report send msg failed.\n", "response", 3));
}

TEST_F(UssdError, EachTextIsReportedAndArrivesTwiceInTheAnswer) {
    for (const string text : kUssdErrorTexts) {
        Queues().sent.clear();
        EXPECT_EQ(Named(text, "", "before"), (Scanned{0, 4, "", text + text.substr(12)})) << text;
        ExpectOneReport(0x101C, kUssd, 6, 4, text);
    }
}

TEST_F(UssdError, OnlyWholeTextsCount) {
    for (const char* line :
         {"+CME ERROR: retry", "+CME ERROR: unknown ", "+CME ERROR: Unknown", " +CME ERROR: unknown",
          "CME ERROR: unknown", "+CME ERROR: 10", "+CMS ERROR: unknown"}) {
        auto guarded = NewLine();
        EXPECT_FALSE(Bk_Check_Ussd_Error(&guarded->line, line)) << line;
        EXPECT_EQ(Result(0, *guarded), (Scanned{0, 0, "", ""}));
        EXPECT_EQ(Named(line).paras, string(line).substr(string(line).find(": ") + 2));
    }
    EXPECT_TRUE(Queues().sent.empty());
}

TEST_F(UssdError, CheckLeavesTheLineAlone) {
    auto guarded = NewLine();
    strcpy(guarded->line.strResParas, "before");
    EXPECT_TRUE(Bk_Check_Ussd_Error(&guarded->line, "+CME ERROR: unknown"));
    EXPECT_EQ(Result(0, *guarded), (Scanned{0, 0, "", "+CME ERROR: unknown"}));
}

TEST_F(UssdError, ReportComesBeforeTheResultEleven) {
    g_last_atcmd = kUssd;
    EXPECT_EQ(Module("\r\n+CME ERROR: network timeout\r\n"),
              (Scanned{0, 11, "", "+CME ERROR: network timeoutnetwork timeout"}));
    ExpectOneReport(0x101C, kUssd, 6, 4, "+CME ERROR: network timeout");
}

TEST_F(ResultLine, OkWinsAndIsTheTextWhereThereIsNone) {
    EXPECT_EQ(Unnamed("OK"), (Scanned{0, 1, "", "OK"}));
    EXPECT_EQ(Unnamed("OK", "", "text"), (Scanned{0, 1, "", "text"}));
    EXPECT_EQ(Unnamed("BOOK ERROR BUSY RINGBACK"), (Scanned{0, 1, "", "OK"}));
    EXPECT_EQ(Unnamed("\"OK\""), (Scanned{0, 0, "", "\"OK\""}));
    EXPECT_EQ(Unnamed("ok"), (Scanned{0, 0, "", "ok"}));
}

TEST_F(ResultLine, ErrorComesNext) {
    EXPECT_EQ(Unnamed("ERROR"), (Scanned{0, 2, "", ""}));
    EXPECT_EQ(Unnamed("ERROR RINGBACK BUSY", "", "text"), (Scanned{0, 2, "", "text"}));
}

TEST_F(ResultLine, CallProgressKeepsItsLine) {
    for (const char* line : {"RINGBACK", "RINGBACKLOCAL", "NO CARRIER", "VOICE NO CARRIER",
                             "VOICE NO CARRIER 16", "NO CARRIER BUSY", "RINGBACK not support"})
        EXPECT_EQ(Unnamed(line), (Scanned{0, 0, "", line})) << line;
    EXPECT_EQ(Unnamed("RINGBACK", "+CSQ", "20"), (Scanned{0, 0, "+CSQ", "20RINGBACK"}));
}

TEST_F(ResultLine, BusyThenNotSupport) {
    EXPECT_EQ(Unnamed("BUSY"), (Scanned{0, 6, "", ""}));
    EXPECT_EQ(Unnamed("BUSY not support"), (Scanned{0, 6, "", ""}));
    EXPECT_EQ(Unnamed("command not support"), (Scanned{0, 2, "", ""}));
    EXPECT_EQ(Unnamed("not support +ZEND"), (Scanned{0, 2, "", ""}));
}

TEST_F(ResultLine, UpperCaseNotSupportIsNoResult) {
    EXPECT_EQ(Unnamed("COMMAND NOT SUPPORT"), (Scanned{0, 0, "", "COMMAND NOT SUPPORT"}));
}

TEST_F(ResultLine, EndOfToolkitAndRefreshKeepTheirLine) {
    for (const char* line : {"+ZEND", "+ZSIMREFRESH"}) {
        EXPECT_EQ(Unnamed(line), (Scanned{0, 0, "", line}));
        EXPECT_EQ(Unnamed(line, "+CSQ", "20"), (Scanned{0, 0, "+CSQ", "20" + string(line)}));
    }
}

TEST_F(ResultLine, OtherTextBehindANameIsQuoted) {
    EXPECT_EQ(Unnamed("0891", "+CMGR", "1,,23"), (Scanned{0, 0, "+CMGR", "1,,23,\"0891\""}));
    EXPECT_EQ(Unnamed("0891", "+CMGR", ""), (Scanned{0, 0, "+CMGR", ",\"0891\""}));
}

TEST_F(ResultLine, OtherTextWithoutANameStandsUnlessANamedLineFollows) {
    EXPECT_EQ(Unnamed("490154", "", "a", "490154\r\nOK\r\n"), (Scanned{0, 0, "", "a490154"}));
    EXPECT_EQ(Unnamed("490154", "", "a", "490154\r\n+CSQ: 1\r\n"), (Scanned{0, 0, "", "a"}));
    EXPECT_EQ(Unnamed("490154", "", "a", "490154\r\n\"x: y\"\r\n"), (Scanned{0, 0, "", "a490154"}));
    EXPECT_EQ(Unnamed("490154", "", "a", "490154\r\n^RSSI:17\r\n"), (Scanned{0, 0, "", "a490154"}));
}

TEST_F(GenericScan, LogsTheTextFirst) {
    Generic("\r\nOK\r\n");
    ASSERT_FALSE(LoggedLines().empty());
    EXPECT_NE(LoggedLines()[0].text.find("\r\nOK\r\n"), string::npos);
    EXPECT_EQ(LoggedLines()[0].module, "atcode");
}

TEST_F(GenericScan, AnswerWithItsOk) {
    EXPECT_EQ(Generic("\r\n+CSQ: 20,99\r\n\r\nOK\r\n"), (Scanned{0, 1, "+CSQ", "20,99"}));
    EXPECT_EQ(Generic("+CSQ: 20\r\n+CSQ: 21\r\nx\r\nOK\r\n"), (Scanned{0, 1, "+CSQ", "20;21,\"x\""}));
}

TEST_F(GenericScan, VendorReportsKeepTheirWholeLine) {
    for (const char* name : {"^CONN", "^CEND", "+ZCPI", "^HRSSILVL", "^MODE", "^RSSI", "^SIMST", "^SRVST",
                             "^BOOT", "^STIN", "^DSFLOWRPT"}) {
        ClearLog();
        const string line = string(name) + ":1,2";
        EXPECT_EQ(Generic(line + "\r\n"), (Scanned{0, 0, "", line}));
        EXPECT_TRUE(Logged("==test4== paras is " + line, "atcode"));
    }
}

TEST_F(GenericScan, OtherVendorLinesAreNamedAndBeginRightBehindTheColon) {
    EXPECT_EQ(Generic("^ORIG:1,2\r\n"), (Scanned{0, 0, "^ORIG", "1,2"}));
    EXPECT_EQ(Generic("^ORIG:\r\n"), (Scanned{0, 0, "^ORIG", ""}));
    EXPECT_EQ(Generic("^ORIG:1\r\n^ORIG: 2\r\n"), (Scanned{0, 0, "^ORIG", "1;2"}));
    EXPECT_EQ(Generic("+CME ERROR:10\r\n"), (Scanned{0, 0, "+CME ERROR", "10"}));
    EXPECT_FALSE(LoggedPart("==test4=="));
}

TEST_F(GenericScan, ModelMarkerKeepsItsWholeLine) {
    EXPECT_EQ(Generic("MODEL:XW_T352\r\n"), (Scanned{0, 0, "", "MODEL:XW_T352"}));
    EXPECT_EQ(Generic("^RSSI:XW_T352\r\n"), (Scanned{0, 0, "", "^RSSI:XW_T352"}));
    EXPECT_EQ(Generic("MODEL: XW_T352\r\n"), (Scanned{0, 0, "MODEL", "XW_T352"}));
}

TEST_F(GenericScan, QuotedColonMakesNoName) {
    EXPECT_EQ(Generic("\"a:b\"\r\n"), (Scanned{0, 0, "", "\"a:b\""}));
}

TEST_F(GenericScan, ErrorsGiveTheirClassAndNothingIsReported) {
    g_last_atcmd = kUssd;
    EXPECT_EQ(Generic("+CME ERROR: 10\r\n"), (Scanned{0, 4, "", "10"}));
    EXPECT_EQ(Generic("+CMS ERROR: 305\r\n"), (Scanned{0, 3, "", "305"}));
    EXPECT_EQ(Generic("+CME ERROR: unknown\r\n"), (Scanned{0, 4, "", "unknown"}));
    EXPECT_TRUE(Queues().sent.empty());
}

TEST_F(GenericScan, ReportsThatAreRoutedByTextKeepTheirWholeLine) {
    for (const char* name : {"VOICE NO CARRIER ",
                             "HANGUP",
                             "+ZPSTM",
                             "+ZMTime",
                             "+ZDIST",
                             "+ZFDIST",
                             "+ZUnsupport",
                             "+ZSMSR",
                             "+ZSTI",
                             "+ZGINP",
                             "+ZGINK",
                             "+CLIP",
                             "+CCWA",
                             "+RINGBACK",
                             "ZVCONNECT",
                             "+CMTI",
                             "+CDSI",
                             "+ZVMTI",
                             "+ZCONV",
                             "+ZCONSTAT",
                             "+CGEV",
                             "+ZGIPDNS",
                             "+ZPBIC",
                             "^MODE"}) {
        const string line = string(name) + ": 1,2";
        EXPECT_EQ(Generic(line + "\r\n"), (Scanned{0, 0, "", line}));
    }
    EXPECT_TRUE(Queues().sent.empty());
}

TEST_F(GenericScan, NamesThatOnlyTheModuleScanKeepsWholeAreNamed) {
    for (const char* name :
         {"ZREFRESH", "ZVMAIL", "+ZCLAS", "+ZNITZ", "+CUSD", "+ZLOCKBAND", "+ZLOCKF", "^CONN", "+ZCPI"}) {
        Platform().config["bandmode"] = "2";
        EXPECT_EQ(Generic(string(name) + ": 1\r\n"), (Scanned{0, 0, name, "1"}));
    }
    EXPECT_TRUE(Queues().sent.empty());
    EXPECT_TRUE(Platform().writes.empty());
}

TEST_F(GenericScan, LineOfAnotherNameEndsTheScan) {
    EXPECT_EQ(Generic("+CSQ: 20\r\n+CREG: 1\r\nOK\r\n"), (Scanned{-1, 0, "+CSQ", "20"}));
    EXPECT_EQ(Generic("+CSQ: 20\r\n^ORIG:1\r\nOK\r\n"), (Scanned{-1, 0, "+CSQ", "20"}));
}

TEST_F(GenericScan, UnnamedLinesAreScannedAlike) {
    EXPECT_EQ(Generic("490154\r\nOK\r\n"), (Scanned{0, 1, "", "490154"}));
    EXPECT_EQ(Generic("490154\r\n+CSQ: 1\r\n"), (Scanned{0, 0, "+CSQ", "1"}));
    EXPECT_EQ(Generic("490154\r\n^ORIG:1\r\n"), (Scanned{0, 0, "^ORIG", "4901541"}));
    EXPECT_EQ(Generic("BUSY\r\n").result, 6);
    EXPECT_EQ(Generic("ERROR\r\n").result, 2);
}

TEST_F(GenericScan, LongLinesAndNamesAreCut) {
    EXPECT_EQ(Generic(string(64, 'N') + ":" + string(2000, 'x') + "\r\n"),
              (Scanned{0, 0, string(63, 'N'), string(1023 - 65, 'x')}));
}
