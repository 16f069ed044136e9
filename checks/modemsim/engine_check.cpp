// The engine in virtual time: bytes in, timed bytes out.

#include "tools/modemsim/engine.h"

#include <gtest/gtest.h>

#include "checks/modemsim/virtual_modem.h"

namespace modemsim {
namespace {

Scenario Script(const std::string& text) {
    ParseResult result = ParseScenario("test.modem", text);
    for (const Problem& problem : result.problems)
        ADD_FAILURE() << problem.Text();
    return result.scenario;
}

constexpr char kOk[] = "\r\nOK\r\n";
constexpr char kError[] = "\r\nERROR\r\n";

TEST(Engine, LineIsAnsweredByItsRule) {
    VirtualModem modem(Script("on AT+CSQ\n    | +CSQ: 20,99\n    | OK\n"));
    EXPECT_EQ(modem.Ask("AT+CSQ\r"), "\r\n+CSQ: 20,99\r\n\r\nOK\r\n");
    EXPECT_EQ(modem.Notes(), std::vector<std::string>{"rule test.modem:1"});
}

TEST(Engine, LineWithoutRuleGetsError) {
    VirtualModem modem(Script("on AT\n    | OK\n"));
    EXPECT_EQ(modem.Ask("AT+CSQ\r"), kError);
}

TEST(Engine, NothingIsSaidBeforeTheLineEnds) {
    VirtualModem modem(Script("on AT\n    | OK\n"));
    EXPECT_EQ(modem.Ask("A"), "");
    EXPECT_EQ(modem.Ask("T"), "");
    EXPECT_EQ(modem.Ask("\r"), kOk);
}

TEST(Engine, LineFeedsAndEmptyLinesBetweenLinesAreIgnored) {
    VirtualModem modem(Script("on AT\n    | OK\n"));
    EXPECT_EQ(modem.Ask("\r\nAT\r\n\r\nAT\r\n"), std::string(kOk) + kOk);
}

TEST(Engine, SilentRuleSaysNothing) {
    VirtualModem modem(Script("on AT\n    silent\n"));
    EXPECT_EQ(modem.Ask("AT\r"), "");
    EXPECT_EQ(modem.Ask("AT+X\r"), kError);
}

TEST(Engine, RulesForALineAreUsedInTurnAndTheLastRepeats) {
    VirtualModem modem(Script("on AT\n    | 1\non AT\n    | 2\n"));
    EXPECT_EQ(modem.Ask("AT\r"), "\r\n1\r\n");
    EXPECT_EQ(modem.Ask("AT\r"), "\r\n2\r\n");
    EXPECT_EQ(modem.Ask("AT\r"), "\r\n2\r\n");
}

TEST(Engine, ExactLineComesBeforePatternsAndTheCloserPatternBeforeTheWider) {
    VirtualModem modem(Script(
        "on *\n    | any\non AT+C*\n    | wide\non AT+CPBR=*\n    | close\non AT+CPBR=1\n    | exact\n"));
    EXPECT_EQ(modem.Ask("AT+CPBR=1\r"), "\r\nexact\r\n");
    EXPECT_EQ(modem.Ask("AT+CPBR=2\r"), "\r\nclose\r\n");
    EXPECT_EQ(modem.Ask("AT+CSQ\r"), "\r\nwide\r\n");
    EXPECT_EQ(modem.Ask("ATZ\r"), "\r\nany\r\n");
}

TEST(Engine, LatencyRunsFromTheEndOfTheLine) {
    VirtualModem modem(Script("latency 20ms\non AT\n    | OK\n"));
    modem.Until(100);
    modem.Core().Receive("AT", modem.Now());
    modem.Until(150);
    modem.Core().Receive("\r", modem.Now());
    EXPECT_EQ(modem.Until(169), std::vector<Sent>{});
    EXPECT_EQ(modem.Until(170), (std::vector<Sent>{{170, kOk}}));
}

TEST(Engine, WaitDelaysWhatFollows) {
    VirtualModem modem(Script("on AT\n    | 1\n    wait 3s\n    | OK\n"));
    modem.Core().Receive("AT\r", modem.Now());
    EXPECT_EQ(modem.Until(10'000), (std::vector<Sent>{{0, "\r\n1\r\n"}, {3000, kOk}}));
}

TEST(Engine, AnswerIsCutIntoPiecesWithGaps) {
    VirtualModem modem(Script("pieces 1,3,2 gap 4ms\non AT\n    send \"abcdefghi\"\n"));
    modem.Core().Receive("AT\r", modem.Now());
    EXPECT_EQ(modem.Until(1000), (std::vector<Sent>{{0, "a"}, {4, "bcd"}, {8, "ef"}, {12, "gh"}, {16, "i"}}));
}

TEST(Engine, PiecesOfARuleHoldForItsAnswerAlone) {
    VirtualModem modem(
        Script("on AT\n    send \"ab\"\n    pieces 1\n    send \"cd\"\n    pieces whole\n    send \"ef\"\non "
               "ATZ\n    | OK\n"));
    modem.Core().Receive("AT\r", modem.Now());
    EXPECT_EQ(modem.Until(1000), (std::vector<Sent>{{0, "ab"}, {0, "c"}, {1, "d"}, {1, "ef"}}));
    modem.Core().Receive("ATZ\r", modem.Now());
    EXPECT_EQ(modem.Until(2000), (std::vector<Sent>{{1000, kOk}}));
}

TEST(Engine, PieceTakenLateKeepsTheGapBehindIt) {
    Engine engine(Script("pieces 1 gap 5ms\non AT\n    send \"abc\"\n"));
    using std::chrono::milliseconds;
    engine.Receive("AT\r", Time(0));
    ASSERT_TRUE(engine.Take(milliseconds(3)));
    EXPECT_EQ(engine.NextTime(), milliseconds(8));
    EXPECT_FALSE(engine.Take(milliseconds(7)));
    ASSERT_TRUE(engine.Take(milliseconds(20)));
    EXPECT_EQ(engine.NextTime(), milliseconds(25));
}

TEST(Engine, PaceIsBytesPerSecond) {
    VirtualModem modem(Script("pace 1000\non AT\n    repeat 200 \"x\"\n"));
    modem.Core().Receive("AT\r", modem.Now());
    const std::vector<Sent> sent = modem.Until(1000);
    ASSERT_EQ(sent.size(), 4U);
    EXPECT_EQ(sent[0].ms, 64);
    EXPECT_EQ(sent[0].bytes.size(), 64U);
    EXPECT_EQ(sent[3].ms, 200);
    EXPECT_EQ(sent[3].bytes.size(), 8U);
}

TEST(Engine, EchoIsTheLineAndItsCarriageReturn) {
    VirtualModem modem(Script("echo on\nlatency 5ms\non AT\n    | OK\n"));
    modem.Core().Receive("AT\r", modem.Now());
    EXPECT_EQ(modem.Until(100), (std::vector<Sent>{{0, "AT\r"}, {5, kOk}}));
}

TEST(Engine, EchoComesEvenWhenTheAnswerDoesNot) {
    VirtualModem modem(Script("echo on\non *\n    silent\n"));
    EXPECT_EQ(modem.Ask("AT\r"), "AT\r");
}

TEST(Engine, EchoIsSwitchedByARule) {
    VirtualModem modem(Script("echo on\non ATE0\n    echo off\n    | OK\non ATE1\n    echo on\n    | OK\n"));
    EXPECT_EQ(modem.Ask("ATE0\r"), "ATE0\r\r\nOK\r\n");
    EXPECT_EQ(modem.Ask("ATE1\r"), kOk);
    EXPECT_EQ(modem.Ask("ATE1\r"), "ATE1\r\r\nOK\r\n");
}

TEST(Engine, PromptWaitsForTheTextAndItsEnd) {
    VirtualModem modem(
        Script("on AT+CMGS=*\n    prompt\n    wait 1s\n    | +CMGS: 7\n    | OK\non AT\n    | OK\n"));
    EXPECT_EQ(modem.Ask("AT+CMGS=12\r"), "\r\n> ");
    EXPECT_EQ(modem.Ask("0011\r22"), "");
    EXPECT_EQ(modem.Ask("\x1A", 999), "");
    EXPECT_EQ(modem.Ask("", 1), "\r\n+CMGS: 7\r\n\r\nOK\r\n");
    EXPECT_EQ(modem.Ask("AT\r"), kOk);
}

TEST(Engine, EscapeCancelsThePrompt) {
    VirtualModem modem(
        Script("on AT+CMGS=*\n    prompt\n    | +CMGS: 7\n    | OK\n"
               "report after AT+CMGS=*\n    | +CMTI: \"SM\",1\non AT\n    | OK\n"));
    EXPECT_EQ(modem.Ask("AT+CMGS=12\r"), "\r\n> ");
    EXPECT_EQ(modem.Ask("0011\x1B"), kOk);
    EXPECT_EQ(modem.Ask("AT\r"), kOk);
}

TEST(Engine, TextAfterAPromptIsEchoedWithoutItsEnd) {
    VirtualModem modem(Script("echo on\non AT+CMGS=*\n    prompt\n    | OK\n"));
    EXPECT_EQ(modem.Ask("AT+CMGS=1\r"), "AT+CMGS=1\r\r\n> ");
    EXPECT_EQ(modem.Ask("00\x1A"), "00\r\nOK\r\n");
}

TEST(Engine, TextWithoutAPromptIsDropped) {
    VirtualModem modem(Script("on AT\n    | OK\n"));
    EXPECT_EQ(modem.Ask("0011\x1A"), "");
    EXPECT_EQ(modem.Ask("AT\r"), kOk);
    EXPECT_EQ(modem.Notes().front(), "a message text without a prompt is dropped");
}

TEST(Engine, ReportComesWhilePromptWaits) {
    VirtualModem modem(Script("on AT+CMGS=*\n    prompt\n    | OK\nreport at 2s\n    | RING\n"));
    EXPECT_EQ(modem.Ask("AT+CMGS=1\r", 1000), "\r\n> ");
    EXPECT_EQ(modem.Ask("", 5000), "\r\nRING\r\n");
    EXPECT_EQ(modem.Ask("\x1A"), kOk);
}

TEST(Engine, ReportsCountFromTheStart) {
    VirtualModem modem(Script("report at 2s\n    | RING\nreport at 1s every 3s times 3\n    | +CREG: 1\n"));
    EXPECT_EQ(modem.Until(60'000), (std::vector<Sent>{{1000, "\r\n+CREG: 1\r\n"},
                                                      {2000, "\r\nRING\r\n"},
                                                      {4000, "\r\n+CREG: 1\r\n"},
                                                      {7000, "\r\n+CREG: 1\r\n"}}));
    EXPECT_FALSE(modem.Core().NextTime());
}

TEST(Engine, ReportWithoutCountGoesOn) {
    VirtualModem modem(Script("report every 1s\n    | RING\n"));
    EXPECT_EQ(modem.Until(100'000).size(), 100U);
    EXPECT_TRUE(modem.Core().NextTime());
}

TEST(Engine, ReportsCountFromTheFirstLineWhenAsked) {
    VirtualModem modem(Script("clock first-line\non *\n    silent\nreport at 1s\n    | RING\n"));
    EXPECT_EQ(modem.Until(5000), std::vector<Sent>{});
    modem.Core().Receive("AT\rAT\r", modem.Now());
    EXPECT_EQ(modem.Until(60'000), (std::vector<Sent>{{6000, "\r\nRING\r\n"}}));
}

TEST(Engine, ReportAfterALineCountsFromTheEndOfItsAnswer) {
    VirtualModem modem(
        Script("on ATA\n    wait 2s\n    | OK\nreport 500ms after ATA\n    | VOICE CONNECT\n"));
    modem.Core().Receive("ATA\r", modem.Now());
    EXPECT_EQ(modem.Until(60'000), (std::vector<Sent>{{2000, kOk}, {2500, "\r\nVOICE CONNECT\r\n"}}));
    modem.Core().Receive("ATA\r", modem.Now());
    EXPECT_EQ(modem.Until(120'000).size(), 2U);
}

TEST(Engine, ReportsAfterTheClosestLineBegin) {
    VirtualModem modem(
        Script("on *\n    | OK\nreport after ATD*\n    | RINGBACK\n"
               "report after ATD12;\n    | BUSY\nreport 1s after atd12;\n    | +CREG: 1\n"));
    EXPECT_EQ(modem.Ask("ATD12;\r"), "\r\nOK\r\n\r\nBUSY\r\n\r\n+CREG: 1\r\n");
    EXPECT_EQ(modem.Ask("ATD123;\r"), "\r\nOK\r\n\r\nRINGBACK\r\n");
}

TEST(Engine, ReportEndsWithTheLineThatEndsIt) {
    VirtualModem modem(Script("on *\n    | OK\nreport every 1s\n    | RING\n    until ATA\n"));
    EXPECT_EQ(modem.Until(2500).size(), 2U);
    modem.Core().Receive("AT\r", modem.Now());
    EXPECT_EQ(modem.Until(3500), (std::vector<Sent>{{2500, kOk}, {3000, "\r\nRING\r\n"}}));
    modem.Core().Receive("ATA\r", modem.Now());
    EXPECT_EQ(modem.Until(60'000), (std::vector<Sent>{{3500, kOk}}));
}

TEST(Engine, RepeatedReportBeginsAnewWithItsLine) {
    VirtualModem modem(Script("on AT\n    | OK\nreport 1s every 1s times 2 after AT\n    | RING\n"));
    modem.Ask("AT\r", 1500);
    EXPECT_EQ(modem.Ask("AT\r"), std::string(kOk) + "\r\nRING\r\n\r\nRING\r\n");
}

TEST(Engine, ReportNeverCutsATextThatIsUnderWay) {
    VirtualModem modem(
        Script("on AT\n    pieces 1 gap 10ms\n    send \"abcd\"\n    wait 50ms\n    send \"ef\"\n"
               "report at 15ms\n    | RING\n"));
    modem.Core().Receive("AT\r", modem.Now());
    EXPECT_EQ(modem.TextUntil(1000), "abcd\r\nRING\r\nef");
}

TEST(Engine, LinesDuringAnAnswerWaitTheirTurn) {
    VirtualModem modem(Script("on AT+COPS=?\n    wait 4s\n    | +COPS: ()\n    | OK\non AT\n    | OK\n"));
    modem.Core().Receive("AT+COPS=?\rAT\r", modem.Now());
    EXPECT_EQ(modem.Until(60'000), (std::vector<Sent>{{4000, "\r\n+COPS: ()\r\n\r\nOK\r\n"}, {4000, kOk}}));
}

TEST(Engine, LinesBeyondTheLimitAreDropped) {
    VirtualModem modem(Script("on AT\n    wait 1s\n    | OK\n"));
    std::string lines;
    for (std::size_t i = 0; i < kMaxWaitingLines + 2; ++i)
        lines += "AT\r";
    EXPECT_EQ(modem.Ask(lines, 600'000).size(), (kMaxWaitingLines + 1) * (sizeof kOk - 1));
}

TEST(Engine, OverlongLineGetsError) {
    VirtualModem modem(Script("on *\n    | OK\n"));
    EXPECT_EQ(modem.Ask(std::string(kMaxInput, 'A') + "\r"), kOk);
    EXPECT_EQ(modem.Ask(std::string(kMaxInput + 1, 'A') + "\r"), kError);
    EXPECT_EQ(modem.Ask(std::string(100'000, 'A') + "\r"), kError);
    EXPECT_EQ(modem.Ask("AT\r"), kOk);
}

TEST(Engine, UnplugEndsEverything) {
    VirtualModem modem(Script("on AT\n    | OK\n    wait 1s\n    unplug\nreport every 3s\n    | RING\n"));
    modem.Core().Receive("AT\r", modem.Now());
    EXPECT_EQ(modem.TextUntil(999), kOk);
    EXPECT_FALSE(modem.Core().Unplugged());
    EXPECT_EQ(modem.TextUntil(60'000), "");
    EXPECT_TRUE(modem.Core().Unplugged());
    EXPECT_FALSE(modem.Core().NextTime());
    EXPECT_EQ(modem.Ask("AT\r"), "");
}

TEST(Engine, LongAnswerComesWhole) {
    VirtualModem modem(Script("on AT\n    repeat 12500 \"12345678\"\n    | OK\n"));
    const std::string answer = modem.Ask("AT\r");
    EXPECT_EQ(answer.size(), 100'000 + sizeof kOk - 1);
    EXPECT_TRUE(answer.ends_with(kOk));
}

// Whatever way the host's bytes arrive, the dialogue is the same.
TEST(Engine, EverySplitOfTheInputGivesTheSameDialogue) {
    const std::string script =
        "echo on\non AT\n    | OK\non AT+CMGS=*\n    prompt\n    | +CMGS: 1\n    | OK\non ATD*\n    silent\n";
    const std::string input = "AT\rAT+CMGS=2\r";
    const std::string body =
        "00\x1A"
        "ATD1;\rAT\r";
    const auto ask = [&](std::initializer_list<std::string> chunks) {
        VirtualModem modem(Script(script));
        std::string text;
        for (const std::string& chunk : chunks)
            text += modem.Ask(chunk);
        return text;
    };
    const std::string expected =
        "AT\r\r\nOK\r\nAT+CMGS=2\r\r\n> 00\r\n+CMGS: 1\r\n\r\nOK\r\nATD1;\rAT\r\r\nOK\r\n";
    for (std::size_t at = 0; at <= input.size(); ++at)
        EXPECT_EQ(ask({input.substr(0, at), input.substr(at), body}), expected) << at;
    for (std::size_t at = 0; at <= body.size(); ++at)
        EXPECT_EQ(ask({input, body.substr(0, at), body.substr(at)}), expected) << at;
}

}  // namespace
}  // namespace modemsim
