// The scenario parser: what it makes of good text, and what it says about bad text.

#include "tools/modemsim/scenario.h"

#include <gtest/gtest.h>

#include <map>

#include "tools/modemsim/words.h"

namespace modemsim {
namespace {

using std::chrono::milliseconds;

// Parses with the files given, of which "main.modem" is the scenario.
ParseResult ParseFiles(const std::map<std::string, std::string>& files) {
    return ParseScenario("main.modem", files.at("main.modem"),
                         [&](const std::string& path, std::string& reason) -> std::optional<std::string> {
                             const auto file = files.find(path);
                             if (file == files.end()) {
                                 reason = "no such file";
                                 return std::nullopt;
                             }
                             return file->second;
                         });
}

ParseResult Parse(const std::string& text) {
    return ParseFiles({{"main.modem", text}});
}

std::string Problems(const std::string& text) {
    std::string all;
    for (const Problem& problem : Parse(text).problems)
        all += problem.Text() + "\n";
    return all;
}

// The bytes of the first rule's answer, its steps joined.
std::string AnswerBytes(const std::string& body) {
    const ParseResult result = Parse("on AT\n" + body);
    EXPECT_TRUE(result.Ok()) << Problems("on AT\n" + body);
    std::string bytes;
    if (result.Ok()) {
        for (const Step& step : result.scenario.groups.at(0).rules.at(0).steps)
            bytes += step.text;
    }
    return bytes;
}

std::string ReportBytes(const std::string& body) {
    const ParseResult result = Parse("report at 1s\n" + body);
    EXPECT_TRUE(result.Ok()) << Problems("report at 1s\n" + body);
    return result.Ok() ? result.scenario.reports.at(0).steps.at(0).text : std::string();
}

TEST(Scenario, EmptyTextIsAScenarioWithoutRules) {
    const ParseResult result = Parse("");
    EXPECT_TRUE(result.Ok());
    EXPECT_EQ(result.scenario.RuleCount(), 0U);
    EXPECT_FALSE(result.scenario.echo);
    EXPECT_EQ(result.scenario.latency, Time(0));
}

TEST(Scenario, SettingsAreRead) {
    const ParseResult result = Parse(
        "# a comment\n\n  # one that is indented\n"
        "echo on\nlatency 1.5s\npace 960\npieces 1,5,20 gap 3ms\nclock first-line\n");
    ASSERT_TRUE(result.Ok());
    EXPECT_TRUE(result.scenario.echo);
    EXPECT_EQ(result.scenario.latency, milliseconds(1500));
    EXPECT_EQ(result.scenario.pace, 960U);
    EXPECT_EQ(result.scenario.pieces.sizes, (std::vector<std::size_t>{1, 5, 20}));
    EXPECT_EQ(result.scenario.pieces.gap, milliseconds(3));
    EXPECT_TRUE(result.scenario.clock_at_first_line);
}

TEST(Scenario, WindowsLineEndsAreTaken) {
    const ParseResult result = Parse("echo on\r\non AT\r\n    | OK\r\n");
    ASSERT_TRUE(result.Ok());
    EXPECT_EQ(result.scenario.groups[0].rules[0].steps[0].text, "\r\nOK\r\n");
}

TEST(Scenario, LastLineNeedsNoLineBreak) {
    EXPECT_EQ(AnswerBytes("    | OK"), "\r\nOK\r\n");
}

TEST(Scenario, ResultCodeAloneIsFramedByLineBreaks) {
    EXPECT_EQ(AnswerBytes("    | +CME ERROR: 10\n"), "\r\n+CME ERROR: 10\r\n");
}

TEST(Scenario, LinesOfOneAnswerShareALineBreakAndTheResultHasItsOwn) {
    EXPECT_EQ(AnswerBytes("    | +CMGL: 1,1,,2\n    | ABCD\n    | +CMGL: 2,1,,2\n    | EF01\n    | OK\n"),
              "\r\n+CMGL: 1,1,,2\r\nABCD\r\n+CMGL: 2,1,,2\r\nEF01\r\n\r\nOK\r\n");
}

TEST(Scenario, EmptyAnswerLineBeforeTheResultChangesNothing) {
    EXPECT_EQ(AnswerBytes("    | +CSQ: 1,99\n    |\n    | OK\n"), "\r\n+CSQ: 1,99\r\n\r\nOK\r\n");
    EXPECT_EQ(AnswerBytes("    |\n    | OK\n"), "\r\nOK\r\n");
}

TEST(Scenario, EmptyAnswerLineSetsALineApart) {
    EXPECT_EQ(AnswerBytes("    | +CSQ: 1,99\n    |\n    | ^RSSI:18\n    | OK\n"),
              "\r\n+CSQ: 1,99\r\n\r\n^RSSI:18\r\n\r\nOK\r\n");
}

TEST(Scenario, AnswerLinesAreLiteralButForOneBlank) {
    EXPECT_EQ(AnswerBytes("    |   \\r # two blanks in front \n"), "\r\n  \\r # two blanks in front \r\n");
    EXPECT_EQ(AnswerBytes("    |OK\n"), "\r\nOK\r\n");
}

TEST(Scenario, LineAfterAPromptIsFramedAnew) {
    EXPECT_EQ(AnswerBytes("    prompt\n    | +CMGS: 1\n    | OK\n"), "\r\n+CMGS: 1\r\n\r\nOK\r\n");
}

TEST(Scenario, LineAfterAWaitIsFramedAnew) {
    EXPECT_EQ(AnswerBytes("    | OK\n    wait 1s\n    | RINGBACK\n"), "\r\nOK\r\n\r\nRINGBACK\r\n");
}

TEST(Scenario, SendIsTakenAsItIs) {
    EXPECT_EQ(AnswerBytes("    send \"\\r\\nA\\t\\\"\\\\\\x00\\xfe\"\n"),
              std::string("\r\nA\t\"\\\0\xFE", 8));
}

TEST(Scenario, SendAndLinesGoTogether) {
    EXPECT_EQ(AnswerBytes("    send \"\\r\\nO\"\n    send \"K\\r\\n\"\n    | ERROR\n"),
              "\r\nOK\r\n\r\nERROR\r\n");
}

TEST(Scenario, RepeatIsTheTextSoManyTimes) {
    EXPECT_EQ(AnswerBytes("    repeat 3 \"ab\"\n"), "ababab");
}

TEST(Scenario, ReportLinesWithASignAreSetApart) {
    EXPECT_EQ(ReportBytes("    | RING\n    | +CLIP: \"1\",129\n"), "\r\nRING\r\n\r\n+CLIP: \"1\",129\r\n");
    EXPECT_EQ(ReportBytes("    | +CDS: 2\n    | ABCD\n"), "\r\n+CDS: 2\r\nABCD\r\n");
}

TEST(Scenario, RulesForOneLineStandTogetherInTheirOrder) {
    const ParseResult result = Parse("on AT\n    | OK\non AT+X\n    | OK\non at\n    | ERROR\n");
    ASSERT_TRUE(result.Ok());
    ASSERT_EQ(result.scenario.groups.size(), 2U);
    EXPECT_EQ(result.scenario.groups[0].rules.size(), 2U);
    EXPECT_EQ(result.scenario.groups[0].rules[1].place.line, 5U);
}

TEST(Scenario, ReportHeadsAreRead) {
    const ParseResult result = Parse(
        "report at 2s\n    | RING\n"
        "report at 2s every 3s times 4\n    | RING\n"
        "report every 250ms\n    | RING\n"
        "report after ATD*\n    | RING\n    until AT+CHUP\n    until ATH\n"
        "report 1s every 2s times 3 after AT+CMGD=3, 0\n    | RING\n");
    ASSERT_TRUE(result.Ok());
    const auto& reports = result.scenario.reports;
    ASSERT_EQ(reports.size(), 5U);
    EXPECT_EQ(reports[0].delay, milliseconds(2000));
    EXPECT_EQ(reports[0].every, Time(0));
    EXPECT_EQ(reports[1].every, milliseconds(3000));
    EXPECT_EQ(reports[1].times, 4U);
    EXPECT_EQ(reports[2].delay, milliseconds(250));
    EXPECT_EQ(reports[2].times, 0U);
    EXPECT_EQ(reports[3].delay, Time(0));
    EXPECT_EQ(reports[3].after->Text(), "ATD*");
    EXPECT_EQ(reports[3].until.size(), 2U);
    EXPECT_EQ(reports[4].delay, milliseconds(1000));
    EXPECT_EQ(reports[4].after->Text(), "AT+CMGD=3, 0");
    EXPECT_FALSE(reports[2].after);
}

TEST(Scenario, IncludedRulesAreReplacedByTheIncludersOwn) {
    const ParseResult result =
        ParseFiles({{"main.modem", "include dir/base.modem\necho on\non AT\n    | ERROR\n"},
                    {"dir/base.modem", "include more.modem\necho off\non AT\n    | OK\non AT\n    | OK\n"},
                    {"dir/more.modem", "on AT+X\n    | OK\n"}});
    ASSERT_TRUE(result.Ok());
    EXPECT_TRUE(result.scenario.echo);
    ASSERT_EQ(result.scenario.groups.size(), 2U);
    ASSERT_EQ(result.scenario.groups[1].rules.size(), 1U);
    EXPECT_EQ(result.scenario.groups[1].rules[0].steps[0].text, "\r\nERROR\r\n");
    EXPECT_EQ(result.scenario.Describe(result.scenario.groups[0].rules[0].place), "more.modem:1");
}

TEST(Scenario, ProblemInAnIncludedFileNamesThatFile) {
    const ParseResult result = ParseFiles({{"main.modem", "include a.modem\n"}, {"a.modem", "\nbad\n"}});
    ASSERT_EQ(result.problems.size(), 1U);
    EXPECT_EQ(result.problems[0].file, "a.modem");
    EXPECT_EQ(result.problems[0].line, 2U);
}

TEST(Scenario, FileThatIncludesItselfIsRefused) {
    const ParseResult result = ParseFiles({{"main.modem", "include main.modem\n"}});
    ASSERT_EQ(result.problems.size(), 1U);
    EXPECT_EQ(result.problems[0].Text(), "main.modem:1: files include each other more than 8 deep");
}

TEST(Scenario, FileThatIncludesItselfManyTimesEndsSoon) {
    std::string text;
    for (int i = 0; i < 100; ++i)
        text += "include main.modem\n";
    EXPECT_EQ(ParseFiles({{"main.modem", text}}).problems.size(), kMaxProblems);
}

TEST(Scenario, MissingFileIsNamed) {
    const ParseResult result = LoadScenario("/nonexistent/x.modem");
    ASSERT_EQ(result.problems.size(), 1U);
    EXPECT_EQ(result.problems[0].Text(), "/nonexistent/x.modem: No such file or directory");
}

TEST(Scenario, DirectoryAndDeviceAreNoScenario) {
    EXPECT_EQ(LoadScenario("/tmp").problems.at(0).Text(), "/tmp: not a file");
    EXPECT_EQ(LoadScenario("/dev/zero").problems.at(0).Text(), "/dev/zero: not a file");
}

TEST(Scenario, FileThatIsTooLongIsRefusedWhole) {
    EXPECT_EQ(Problems(std::string(kMaxScenarioBytes, '\n')), "");
    EXPECT_EQ(Problems(std::string(kMaxScenarioBytes + 1, '\n')),
              "main.modem: the file is longer than 4194304 bytes\n");
}

TEST(Scenario, IncludedReportsAfterTheSameLineAreReplaced) {
    const ParseResult result = ParseFiles(
        {{"main.modem", "include a.modem\nreport after ATD*\n    | BUSY\nreport 1s after ATD*\n    | RING\n"},
         {"a.modem",
          "report after atd*\n    | RINGBACK\nreport at 1s\n    | RING\nreport after ATA\n    | RING\n"}});
    ASSERT_TRUE(result.Ok());
    ASSERT_EQ(result.scenario.reports.size(), 4U);
    EXPECT_FALSE(result.scenario.reports[0].after);
    EXPECT_EQ(result.scenario.reports[1].after->Text(), "ATA");
    EXPECT_EQ(result.scenario.reports[2].steps[0].text, "\r\nBUSY\r\n");
}

TEST(Scenario, ProblemsAreReportedTogetherUpToALimit) {
    EXPECT_EQ(
        Problems("foo\nbar\non AT\n    | OK\n"),
        "main.modem:1: unknown word 'foo' (known here: include echo latency pace pieces clock on report use "
        "seed do fault)\n"
        "main.modem:2: unknown word 'bar' (known here: include echo latency pace pieces clock on report use "
        "seed do fault)\n");
    std::string many;
    for (int i = 0; i < 100; ++i)
        many += "bad\n";
    EXPECT_EQ(Parse(many).problems.size(), kMaxProblems);
}

TEST(Scenario, RefusedHeadDoesNotBringErrorsForItsBody) {
    EXPECT_EQ(Problems("on AT\\q\n    | OK\n    nonsense\n"),
              "main.modem:1: unknown escape in a command line: only \\* and \\\\ are known here\n");
}

struct Malformed {
    const char* name;
    std::string text;
    std::string problem;  // without the file
};

void PrintTo(const Malformed& malformed, std::ostream* out) {
    *out << malformed.name;
}

class MalformedScenario : public testing::TestWithParam<Malformed> {};

TEST_P(MalformedScenario, IsRefusedWithLineAndReason) {
    EXPECT_EQ(Problems(GetParam().text), "main.modem:" + GetParam().problem + "\n");
}

const std::string kRule = "on AT\n    ";
const std::string kReport = "report at 1s\n    ";

INSTANTIATE_TEST_SUITE_P(
    Scenario, MalformedScenario,
    testing::Values(
        Malformed{"KeywordMisspelt", "latecy 5ms\n", "1: unknown word 'latecy', did you mean 'latency'?"},
        Malformed{"ReportMisspelt", "\nreprot at 1s\n    | RING\n",
                  "2: unknown word 'reprot', did you mean 'report'?"},
        Malformed{"StepMisspelt", kRule + "promt\n", "2: unknown word 'promt', did you mean 'prompt'?"},
        Malformed{"StepUnknown", kRule + "xylophone\n",
                  "2: unknown word 'xylophone' (known here: | send repeat wait pieces echo prompt silent "
                  "until unplug modem do fault)"},
        Malformed{"UseNothing", "use\n", "1: 'modem' is missing: there is nothing else to use"},
        Malformed{"UseOther", "use modm\n", "1: 'modem' is missing: there is nothing else to use"},
        Malformed{"SeedNoNumber", "seed x\n", "1: 'x' is not a number"},
        Malformed{"OrderMissing", "do\n",
                  "1: an order is missing; known are ring answer busy hangup message ussd network sim signal "
                  "data raw send unplug replug fault state help quit"},
        Malformed{"OrderMisspelt", kRule + "do rnig 121\n", "2: unknown word 'rnig', did you mean 'ring'?"},
        Malformed{"OrderObjectMisspelt", kRule + "do network loose\n",
                  "2: behind 'network': unknown word 'loose', did you mean 'lose'?"},
        Malformed{"OrderObjectMissing", kRule + "do sim\n", "2: 'sim' needs one of pull insert lock"},
        Malformed{"OrderNumberMissing", kRule + "do ring\n",
                  "2: a telephone number is missing; the order is: ring NUMBER"},
        Malformed{"OrderNumberWrong", kRule + "do ring Anna\n",
                  "2: 'Anna' is no telephone number: digits, and a + in front; the order is: ring NUMBER"},
        Malformed{"OrderTextMissing", kRule + "do message 121\n",
                  "2: a text is missing; the order is: message NUMBER TEXT"},
        Malformed{"OrderTooMuch", kRule + "do hangup now\n", "2: 'now' is too much; the order is: hangup"},
        Malformed{"OrderForControl", kRule + "do quit\n",
                  "2: 'quit' is for the control socket, not for a scenario"},
        Malformed{"OrderWithoutModem", kRule + "do ring 121\n",
                  "2: 'ring' needs the modem with a memory: the scenario must say 'use modem'"},
        Malformed{"StepWithoutModem", kRule + "modem\n",
                  "2: 'modem' needs the modem with a memory: the scenario must say 'use modem'"},
        Malformed{"StepBehindModem", "use modem\n" + kRule + "modem\n    | OK\n",
                  "4: nothing can follow 'modem'"},
        Malformed{"ModemInReport", "use modem\nreport at 1s\n    modem\n",
                  "3: 'modem' belongs to a rule: it answers a line"},
        Malformed{
            "FaultUnknown", "fault dust\n",
            "1: behind 'fault': unknown word 'dust' (known here: delay split glue late mute garbage storm "
            "echo off)"},
        Malformed{"FaultWithoutTime", kRule + "fault delay\n",
                  "2: a time is missing (such as 300ms or 2s); the order is: fault delay TIME"},
        Malformed{"FaultOfNoTime", kRule + "fault glue 0s\n",
                  "2: the time must be above 0; the order is: fault glue TIME"},
        Malformed{"FaultCountTooLarge", kRule + "fault storm 100001\n",
                  "2: '100001' is not in the range 1 to 100000; the order is: fault storm N [TIME]"},
        Malformed{"SignalOutOfRange", kRule + "do signal 32\n",
                  "2: '32' is no signal level: 0 to 31, or 99 for none; the order is: signal LEVEL"},
        Malformed{"UnplugForSomeTime", kRule + "unplug soon\n",
                  "2: 'soon' is not a time (such as 300ms, 1.5s or 2min); the order is: unplug [TIME]"},
        Malformed{"LineTooLong", "#" + std::string(kMaxScenarioLine, 'x') + "\n",
                  "1: the line is longer than 4096 characters"},
        Malformed{"NulByte", std::string("on AT\n    | O\0K\n", 15),
                  "2: the line holds a NUL byte; send \"\\x00\" sends one"},
        Malformed{"ControlCharacter", kRule + "| O\x07K\n",
                  "2: the line holds the control character 7; send \"\\xHH\" sends one"},
        Malformed{"CarriageReturnInside", kRule + "| O\rK\n",
                  "2: the line holds the control character 13; send \"\\xHH\" sends one"},
        Malformed{"IndentedWithoutHead", "    | OK\n",
                  "1: the line is indented, but no 'on' or 'report' stands above it"},
        Malformed{"IndentedBelowASetting", "echo on\n    | OK\n",
                  "2: the line is indented, but no 'on' or 'report' stands above it"},
        Malformed{"AnswerNotIndented", "on AT\n| OK\n",
                  "2: an answer line must be indented below its 'on' or 'report'"},
        Malformed{"OnlyStepNotIndented", "on AT\nwait 5ms\n",
                  "2: 'wait' must be indented below its 'on' or 'report'"},
        Malformed{"StepNotIndented", kRule + "| OK\nwait 5ms\n",
                  "3: 'wait' must be indented below its 'on' or 'report'"},
        Malformed{"SettingIndented", kRule + "latency 5ms\n",
                  "2: 'latency' must start at the beginning of its line"},
        Malformed{"RuleWithoutLine", "on\n    | OK\n", "1: a command line is missing"},
        Malformed{"RuleLineTooLong", "on " + std::string(kMaxPattern + 1, 'A') + "\n    | OK\n",
                  "1: the command line is longer than 1024 characters"},
        Malformed{"PatternEscape", "on AT\\?\n    | OK\n",
                  "1: unknown escape in a command line: only \\* and \\\\ are known here"},
        Malformed{"PatternBackslashAtTheEnd", "on AT\\\n    | OK\n",
                  "1: unknown escape in a command line: only \\* and \\\\ are known here"},
        Malformed{"RuleWithoutAnswer", "echo on\non AT\non AT+X\n    | OK\n",
                  "2: the rule has no answer; 'silent' says so when none is meant"},
        Malformed{"LastRuleWithoutAnswer", "on AT\n",
                  "1: the rule has no answer; 'silent' says so when none is meant"},
        Malformed{"ReportWithoutText", "report at 1s\n", "1: the report has no text"},
        Malformed{"SettingTwice", "echo on\n\necho off\n", "3: 'echo' was already set in line 1"},
        Malformed{"EchoNeither", "echo yes\n", "1: 'on' or 'off' is missing"},
        Malformed{"EchoMore", "echo on please\n", "1: 'please' is too much on this line"},
        Malformed{"LatencyMissing", "latency\n", "1: a time is missing (such as 300ms or 2s)"},
        Malformed{"TimeWithoutUnit", "latency 300\n", "1: '300' is not a time (such as 300ms, 1.5s or 2min)"},
        Malformed{"TimeNegative", "latency -1s\n", "1: '-1s' is not a time (such as 300ms, 1.5s or 2min)"},
        Malformed{"TimeTwoPoints", "latency 1.2.3s\n",
                  "1: '1.2.3s' is not a time (such as 300ms, 1.5s or 2min)"},
        Malformed{"TimeTooFine", "latency 1.2345s\n",
                  "1: '1.2345s' is not a time (such as 300ms, 1.5s or 2min)"},
        Malformed{"TimeTooLong", "latency 86401s\n", "1: '86401s' is longer than 24 hours"},
        Malformed{"TimeJustTooLong", "latency 86400.001s\n", "1: '86400.001s' is longer than 24 hours"},
        Malformed{"TimeOverflow", "latency 99999999999999999999min\n",
                  "1: '99999999999999999999min' is longer than 24 hours"},
        Malformed{"PaceZero", "pace 0\n", "1: '0' is not in the range 1 to 100000000"},
        Malformed{"PaceNoNumber", "pace fast\n", "1: 'fast' is not a number"},
        Malformed{"PaceMissing", "pace\n", "1: a number from 1 to 100000000 is missing"},
        Malformed{"PaceOverflow", "pace 18446744073709551617\n",
                  "1: '18446744073709551617' is not in the range 1 to 100000000"},
        Malformed{"PiecesMissing", "pieces\n",
                  "1: sizes are missing: 'whole', or numbers of bytes such as 1,5,20"},
        Malformed{"PiecesZero", "pieces 1,0\n", "1: '0' is not in the range 1 to 1048576"},
        Malformed{"PiecesCommaAtTheEnd", "pieces 1,\n", "1: a number from 1 to 1048576 is missing"},
        Malformed{"PiecesGapMissing", "pieces 1 gap\n", "1: a time is missing (such as 300ms or 2s)"},
        Malformed{"PiecesTooMany",
                  "pieces 1" +
                      [] {
                          std::string more;
                          for (std::size_t i = 0; i < kMaxPieceSizes; ++i)
                              more += ",1";
                          return more;
                      }() +
                      "\n",
                  "1: more than 64 sizes"},
        Malformed{"ClockUnknown", "clock now\n", "1: 'start' or 'first-line' is missing"},
        Malformed{"IncludeMissing", "include\n", "1: a file name is missing"},
        Malformed{"IncludeNotFound", "include x.modem\n", "1: cannot include x.modem: no such file"},
        Malformed{"IncludeTooLate", "echo on\ninclude x.modem\n",
                  "2: 'include' stands before settings, rules and reports, so that they can replace what it "
                  "brings"},
        Malformed{"SendWithoutQuotes", kRule + "send OK\n", "2: a text in double quotes is missing"},
        Malformed{"SendEmpty", kRule + "send \"\"\n", "2: the text is empty"},
        Malformed{"SendNotClosed", kRule + "send \"OK\n", "2: the closing double quote is missing"},
        Malformed{"SendClosedByAnEscapedQuote", kRule + "send \"OK\\\"\n",
                  "2: the closing double quote is missing"},
        Malformed{"SendMore", kRule + "send \"OK\" \"OK\"\n",
                  "2: ' \"OK\"' stands behind the closing double quote"},
        Malformed{"SendUnknownEscape", kRule + "send \"\\q\"\n",
                  "2: unknown escape '\\q': known are \\r \\n \\t \\\" \\\\ \\xHH"},
        Malformed{"SendEscapeAtTheEnd", kRule + "send \"\\\n",
                  "2: unknown escape at the end: known are \\r \\n \\t \\\" \\\\ \\xHH"},
        Malformed{"SendHalfHex", kRule + "send \"\\x1\"\n", "2: \\x needs two hexadecimal digits"},
        Malformed{"RepeatWithoutCount", kRule + "repeat \"a\"\n", "2: '\"a\"' is not a number"},
        Malformed{"RepeatTooOften", kRule + "repeat 1000001 \"a\"\n",
                  "2: '1000001' is not in the range 1 to 1000000"},
        Malformed{"AnswerTooLong", kRule + "repeat 524289 \"ab\"\n",
                  "2: the answer is longer than 1048576 bytes"},
        Malformed{"AnswerTooLongTogether", kRule + "repeat 524288 \"ab\"\n    | OK\n",
                  "3: the answer is longer than 1048576 bytes"},
        Malformed{"WaitMissing", kRule + "wait\n", "2: a time is missing (such as 300ms or 2s)"},
        Malformed{"WaitMore", kRule + "wait 1s 2s\n", "2: '2s' is too much on this line"},
        Malformed{"PromptTwice", kRule + "prompt\n    prompt\n", "3: a second 'prompt' in one rule"},
        Malformed{"PromptInAReport", kReport + "prompt\n",
                  "2: 'prompt' belongs to a rule: a report waits for nobody"},
        Malformed{"SilentInAReport", kReport + "silent\n", "2: 'silent' belongs to a rule"},
        Malformed{"SilentAfterAText", kRule + "| OK\n    silent\n", "3: 'silent' stands alone in its rule"},
        Malformed{"SilentBeforeAText", kRule + "silent\n    | OK\n", "3: 'silent' stands alone in its rule"},
        Malformed{"UntilInARule", kRule + "until ATH\n", "2: 'until' belongs to a report"},
        Malformed{"UntilWithoutLine", kReport + "until\n", "2: a command line is missing"},
        Malformed{"StepAfterUnplug", kRule + "unplug\n    | OK\n", "3: nothing can follow 'unplug'"},
        Malformed{"ReportWithoutTime", "report\n    | RING\n",
                  "1: a report needs a time: 'at TIME', 'every TIME' or 'after LINE'"},
        Malformed{"ReportTimesWithoutEvery", "report at 1s times 3\n    | RING\n",
                  "1: 'times' needs 'every TIME' in front"},
        Malformed{"ReportEveryZero", "report every 0s\n    | RING\n", "1: 'every' needs a time above 0"},
        Malformed{"ReportTimesZero", "report every 1s times 0\n    | RING\n",
                  "1: '0' is not in the range 1 to 1000000"},
        Malformed{"ReportAfterNothing", "report 1s after\n    | RING\n", "1: a command line is missing"},
        Malformed{"ReportWordMisspelt", "report at 1s evry 2s\n    | RING\n",
                  "1: unknown word 'evry', did you mean 'every'?"}),
    [](const auto& row) { return row.param.name; });

TEST(Scenario, TextsAtTheirLimitsAreTaken) {
    EXPECT_EQ(Problems("#" + std::string(kMaxScenarioLine - 1, 'x') + "\n"), "");
    EXPECT_EQ(Problems("on " + std::string(kMaxPattern, 'A') + "\n    | OK\n"), "");
    EXPECT_EQ(Problems(kRule + "repeat 524288 \"ab\"\n"), "");
    EXPECT_EQ(Problems("latency 86400s\n"), "");
    EXPECT_EQ(Problems("pace 100000000\n"), "");
}

TEST(Scenario, RulesAndReportsAreCounted) {
    std::string rules;
    for (std::size_t i = 0; i < kMaxRules; ++i)
        rules += "on AT\n    | OK\n";
    EXPECT_EQ(Problems(rules), "");
    EXPECT_EQ(Problems(rules + "on AT\n    | OK\n"), "main.modem:8193: more than 4096 rules\n");
    std::string reports;
    for (std::size_t i = 0; i < kMaxReports; ++i)
        reports += "report at 1s\n    | RING\n";
    EXPECT_EQ(Problems(reports), "");
    EXPECT_EQ(Problems(reports + "report at 1s\n    | RING\n"), "main.modem:1025: more than 512 reports\n");
}

bool Matches(const std::string& pattern, const std::string& line) {
    std::string reason;
    const auto compiled = Pattern::Compile(pattern, reason);
    EXPECT_TRUE(compiled) << reason;
    return compiled && compiled->Matches(line);
}

TEST(Pattern, LineWithoutStarsIsTheWholeLine) {
    EXPECT_TRUE(Matches("AT+CSQ", "AT+CSQ"));
    EXPECT_TRUE(Matches("AT+CSQ", "at+csq"));
    EXPECT_FALSE(Matches("AT+CSQ", "AT+CSQ?"));
    EXPECT_FALSE(Matches("AT+CSQ", "AT+CS"));
    EXPECT_TRUE(Matches("AT+CREG?", "AT+CREG?"));
    EXPECT_FALSE(Matches("AT+CREG?", "AT+CREGX"));
}

TEST(Pattern, StarIsAnyRunOfCharacters) {
    EXPECT_TRUE(Matches("ATD*", "ATD"));
    EXPECT_TRUE(Matches("ATD*;", "ATD123;"));
    EXPECT_FALSE(Matches("ATD*;", "ATD123"));
    EXPECT_TRUE(Matches("*", ""));
    EXPECT_TRUE(Matches("*,2", "AT+CCWA=1,2"));
    EXPECT_FALSE(Matches("AB*BA", "ABA"));
    EXPECT_TRUE(Matches("AB*BA", "ABBA"));
    EXPECT_TRUE(Matches("A*B*C", "AxxBxBxC"));
    EXPECT_FALSE(Matches("A*B*C", "AxxCxB"));
    EXPECT_FALSE(Matches("A*BC*C", "ABC"));
    EXPECT_TRUE(Matches("A**C", "AC"));
}

TEST(Pattern, EscapedStarIsAStar) {
    EXPECT_TRUE(Matches("ATD\\*99#", "ATD*99#"));
    EXPECT_FALSE(Matches("ATD\\*99#", "ATD199#"));
    EXPECT_TRUE(Matches("AT\\\\Q", "AT\\Q"));
}

TEST(Words, NearestIsNotGuessedWhenFarOff) {
    constexpr std::string_view kKnown[] = {"echo", "latency"};
    EXPECT_EQ(Nearest("ehco", kKnown), "echo");
    EXPECT_EQ(Nearest(std::string(100000, 'e'), kKnown), "");
    EXPECT_EQ(Nearest("ech", kKnown), "echo");
    EXPECT_EQ(Nearest("latnecy", kKnown), "latency");
    EXPECT_EQ(Nearest("bandwidth", kKnown), "");
}

TEST(Words, FractionsOfTimesAreExact) {
    std::string reason;
    EXPECT_EQ(ReadTime("0.001ms", reason), Time(1));
    EXPECT_EQ(ReadTime("0.5min", reason), Time(30'000'000));
    EXPECT_EQ(ReadTime("1.05s", reason), Time(1'050'000));
    EXPECT_EQ(ReadTime("0ms", reason), Time(0));
}

}  // namespace
}  // namespace modemsim
