// What a replayed modem says when, and what it tells of the daemon, in virtual time.

#include "tools/modemsim/player.h"

#include <gtest/gtest.h>

namespace modemsim {
namespace {

using std::chrono::milliseconds;

class Replayed {
  public:
    explicit Replayed(const std::string& lines, PlayerOptions options = {})
        : parsed_(ParseRecording("r", "modem recording 1\n" + lines)),
          player_(parsed_.recording, options, [this](const std::string& text) { told_ += text + "\n"; }) {
        for (const Problem& problem : parsed_.problems)
            ADD_FAILURE() << problem.Text();
        player_.Start(now_);
    }

    // Everything that comes up to `ms` after the start: "TIME BYTES|".
    std::string Until(int ms) {
        std::string all;
        while (true) {
            while (auto action = player_.Take(now_)) {
                all += std::to_string(now_.count() / 1000) + " ";
                all += action->kind == Player::Action::Kind::Send     ? action->bytes
                       : action->kind == Player::Action::Kind::Unplug ? "(unplugged)"
                                                                      : "(plugged)";
                all += "|";
            }
            const auto next = player_.NextTime();
            if (!next || *next > milliseconds(ms)) break;
            now_ = std::max(now_, *next);
        }
        now_ = std::max(now_, Time(milliseconds(ms)));
        return all;
    }
    void Daemon(const std::string& bytes) { player_.Receive(bytes, now_); }
    void Open() { player_.Opened(now_); }
    void Close() { player_.Closed(now_); }

    Player& Core() { return player_; }
    const std::string& Told() const { return told_; }

  private:
    std::string told_;
    ParsedRecording parsed_;
    Time now_{0};
    Player player_;
};

constexpr char kTalk[] =
    "0.1 -> A\\r\n"  // line 2
    "0.2 <- a1|\n"
    "0.25 <- a2|\n"
    "5.0 <- report|\n"
    "9.0 -> B\\r\n"  // line 6
    "9.1 <- b|\n"
    "10.0 -> C\\r\n"  // line 8
    "10.1 <- c|\n";

TEST(Player, SaysWhatWasSaidWhenItWasSaid) {
    Replayed modem(kTalk);
    EXPECT_EQ(modem.Until(1000), "") << "the daemon speaks first";
    modem.Daemon("A\r");
    EXPECT_EQ(modem.Until(20'000), "1100 a1||1150 a2||5900 report||");
    modem.Daemon("B\r");
    EXPECT_EQ(modem.Until(30'000), "20100 b||");
    EXPECT_FALSE(modem.Core().Over());
    modem.Daemon("C\r");
    EXPECT_EQ(modem.Until(40'000), "30100 c||");
    EXPECT_TRUE(modem.Core().Over());
    EXPECT_EQ(modem.Told(), "");
    EXPECT_EQ(modem.Core().LinesCame(), 3U);
}

TEST(Player, IsFasterWhenAsked) {
    Replayed modem(kTalk, {.speed = 10});
    modem.Daemon("A\r");
    EXPECT_EQ(modem.Until(1000), "10 a1||15 a2||490 report||");
    Replayed fast(kTalk, {.speed = 0});
    fast.Daemon("A\r");
    EXPECT_EQ(fast.Until(1000), "0 a1||0 a2||0 report||");
}

TEST(Player, DoesNotCareHowTheDaemonsLinesAreCut) {
    const std::string whole = "A\rB\rC\r";
    const std::string cut_there = "0 -> A\n0 -> \\rB\\rC\n0.1 -> \\r\n0.2 <- x\n";
    for (std::size_t at = 0; at <= whole.size(); ++at) {
        Replayed modem(cut_there);
        modem.Daemon(whole.substr(0, at));
        modem.Daemon(whole.substr(at));
        EXPECT_EQ(modem.Until(1000), "100 x|");
        EXPECT_EQ(modem.Told(), "");
    }
}

TEST(Player, EarlierLineBringsWhatCameBeforeItAtOnce) {
    Replayed modem(kTalk);
    modem.Daemon("A\r");
    EXPECT_EQ(modem.Until(300), "100 a1||150 a2||");
    modem.Daemon("B\r");
    EXPECT_EQ(modem.Until(301), "300 report||");
    EXPECT_EQ(modem.Until(500), "400 b||");
    EXPECT_EQ(modem.Told(), "");
}

TEST(Player, GoesOnAtTheNextLineThatMatches) {
    Replayed modem(kTalk);
    modem.Daemon("A\r");
    modem.Until(6000);
    modem.Daemon("C\r");
    EXPECT_EQ(modem.Until(7000), "6100 c||");
    EXPECT_EQ(modem.Told(),
              "r:6: expected 'B\\r', the daemon sent 'C\\r', goes on at line 8 (lines left out: 1)\n");
    EXPECT_TRUE(modem.Core().Over());
    EXPECT_EQ(modem.Core().LinesCame(), 2U);
}

TEST(Player, GoesBackToALineThatCameBefore) {
    Replayed modem(kTalk);
    modem.Daemon("A\r");
    modem.Until(6000);
    modem.Daemon("A\r");
    EXPECT_EQ(modem.Told(), "r:6: expected 'B\\r', the daemon sent 'A\\r', goes back to line 2\n");
    EXPECT_EQ(modem.Until(7000), "6100 a1||6150 a2||");
}

TEST(Player, AnswersErrorToALineItDoesNotHave) {
    Replayed modem(kTalk);
    modem.Daemon("A\r");
    EXPECT_EQ(modem.Until(300), "100 a1||150 a2||");
    modem.Daemon("XYZ\r");
    EXPECT_EQ(modem.Until(6000), "300 \r\nERROR\r\n|4900 report||") << "nothing else moves";
    EXPECT_EQ(modem.Told(),
              "r:6: expected 'B\\r', the daemon sent 'XYZ\\r', which the recording does not have: answered "
              "ERROR\n");
    modem.Daemon("B\r");
    EXPECT_EQ(modem.Until(7000), "6100 b||");
}

TEST(Player, TakesTheSameCommandWithOtherParametersForIt) {
    Replayed modem("0 -> AT+CMGR=3\\r\n0 <- three\n1 -> 0011\\x1a\n1 <- sent\n2 -> ATD123;\\r\n2 <- call\n");
    modem.Daemon("at+cmgr=4\r");
    EXPECT_EQ(modem.Until(1), "0 three|");
    modem.Daemon("0022\x1A");
    EXPECT_EQ(modem.Until(2), "1 sent|");
    modem.Daemon("ATD456;\r");
    EXPECT_EQ(modem.Until(3), "2 call|");
    EXPECT_EQ(modem.Told(),
              "r:2: expected 'AT+CMGR=3\\r', the daemon sent 'at+cmgr=4\\r', which is taken for it\n"
              "r:4: expected '0011\\x1A', the daemon sent '0022\\x1A', which is taken for it\n"
              "r:6: expected 'ATD123;\\r', the daemon sent 'ATD456;\\r', which is taken for it\n");
}

TEST(Player, StrictEndsAtTheFirstDeviation) {
    Replayed modem(kTalk, {.strict = true});
    modem.Daemon("B\r");
    EXPECT_TRUE(modem.Core().Over());
    EXPECT_EQ(modem.Until(60'000), "");
    EXPECT_EQ(modem.Core().Deviations(), 1U);
    modem.Core().Break();
    EXPECT_EQ(modem.Core().Deviations(), 1U);
}

TEST(Player, WaitsForALineAsLongAsItWasToldTo) {
    Replayed modem(kTalk, {.patience = milliseconds(500)});
    EXPECT_EQ(modem.Until(499), "");
    EXPECT_EQ(modem.Until(600), "600 a1||") << "100 ms after it was given up";
    EXPECT_EQ(modem.Told(), "r:2: expected 'A\\r', nothing came within 500 ms: goes on without it\n");
    EXPECT_TRUE(modem.Until(60'000).ends_with(" c||"));
    EXPECT_EQ(modem.Core().Deviations(), 3U);
    EXPECT_EQ(modem.Core().LinesCame(), 0U);
}

TEST(Player, TellsWhatIsMissingWhenItIsEnded) {
    Replayed modem(kTalk);
    modem.Daemon("A\r");
    modem.Core().Break();
    EXPECT_EQ(modem.Told(), "r:6: expected 'B\\r', the replay was ended before it came (lines missing: 2)\n");
    Replayed done("0 -> A\\r\n0 <- a\n9 <- late\n");
    done.Daemon("A\r");
    done.Core().Break();
    EXPECT_EQ(done.Told(), "");
}

TEST(Player, DaemonThatCloseAndOpensItsPortIsFollowed) {
    const std::string restart =
        "0 -- open\n0.1 -> A\\r\n0.2 <- a\n1 -- close\n1.5 <- unheard\n2 -- open\n2.1 -> A\\r\n2.2 <- b\n9 "
        "-- close\n9 -- end\n";
    Replayed modem(restart);
    EXPECT_EQ(modem.Until(5000), "");
    modem.Open();
    modem.Daemon("A\r");
    EXPECT_EQ(modem.Until(6000), "5100 a|") << "the rest waits for the daemon to close its port";
    modem.Close();
    EXPECT_EQ(modem.Until(7000), "6500 unheard|");
    EXPECT_FALSE(modem.Core().Over());
    modem.Open();
    modem.Daemon("A\r");
    EXPECT_EQ(modem.Until(8000), "7100 b|");
    EXPECT_TRUE(modem.Core().Over()) << "it need not close it at the end";
    EXPECT_EQ(modem.Told(), "");

    Replayed goes_on(restart);
    goes_on.Open();
    goes_on.Daemon("A\r");
    goes_on.Until(500);
    goes_on.Daemon("A\r");
    EXPECT_EQ(goes_on.Until(1000), "600 b|");
    EXPECT_EQ(goes_on.Told(),
              "r:5: expected the daemon to close its port, the daemon sent 'A\\r', goes on at line 8\n");
}

TEST(Player, ModemThatVanishedVanishesAndComesBack) {
    Replayed modem(
        "0 -- open\n0.1 -> A\\r\n0.2 <- a\n1 -- gone\n3 -- back\n3.1 -- open\n3.2 -> B\\r\n3.3 <- b\n");
    modem.Open();
    modem.Daemon("A\r");
    EXPECT_EQ(modem.Until(10'000), "100 a|900 (unplugged)|2900 (plugged)|");
    modem.Open();
    modem.Daemon("B\r");
    EXPECT_EQ(modem.Until(20'000), "10100 b|");
    EXPECT_TRUE(modem.Core().Over());
}

TEST(Player, RedactedRecordingTakesAnyNumberOfThatLength) {
    const std::string redacted =
        "redacted\n0 -> ATD58134099871;\\r\n0 <- \\r\\nOK\\r\\n\n1 -> AT+CMGS=5\\r\n1 <- \\r\\n> \n"
        "2 -> 00110000112233445566\\x1a\n2 <- \\r\\nOK\\r\\n\n3 -> AT+CSQ\\r\n3 <- x\n";
    Replayed modem(redacted);
    modem.Daemon("ATD07700900123;\r");
    EXPECT_EQ(modem.Until(1), "0 \r\nOK\r\n|");
    modem.Daemon("AT+CMGS=5\r");
    modem.Until(2);
    modem.Daemon("0011AABBCCDDEEFF0000\x1A");
    modem.Until(3);
    modem.Daemon("AT+CSQ\r");
    EXPECT_EQ(modem.Until(4), "3 x|");
    EXPECT_EQ(modem.Told(), "");
    Replayed longer(redacted);
    longer.Daemon("ATD0770090012;\r");
    EXPECT_EQ(longer.Core().Deviations(), 1U) << "another length";
    Replayed other(redacted);
    other.Daemon("AT+CSQ=1\r");
    EXPECT_EQ(other.Core().Deviations(), 1U) << "what is not private is compared";
}

}  // namespace
}  // namespace modemsim
