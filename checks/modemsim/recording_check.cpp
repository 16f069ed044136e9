// The text form of a recording.

#include "tools/modemsim/recording.h"

#include <gtest/gtest.h>

#include "tools/modemsim/serial.h"

namespace modemsim {
namespace {

constexpr char kHead[] = "modem recording 1\n";

// Everything that is wrong with the text, one line each.
std::string Problems(const std::string& text) {
    std::string all;
    for (const Problem& problem : ParseRecording("r", text).problems)
        all += problem.Text() + "\n";
    return all;
}

std::string Written(const Recording& recording) {
    std::string text;
    for (const Entry& entry : recording.entries)
        text += FormatEntry(entry);
    return text;
}

TEST(Recording, IsReadAndWrittenAsItStands) {
    const std::string text =
        "modem recording 1\n"
        "program modemsim 1.0.0\n"
        "device /dev/modem\n"
        "started 2026-11-21T16:40:02Z\n"
        "settings 115200 8N1 rtscts\n"
        "redacted\n"
        "\n"
        "# what the customer did\n"
        "     0.000000 -- open\n"
        "     0.000001 -- settings 9600 7E2 xonxoff\n"
        "     0.412001 -> AT+CSQ\\r\n"
        "     0.430118 <- \\r\\n+CSQ: 20\n"
        "     0.430118 <- ,99\\r\\n\\\\\\x00\\xFF\\t\n"
        "# a call\n"
        "    61.000000 <- \\r\\n>\\x20\n"
        "  3700.900000 -- gone\n"
        "  3701.000000 -- back\n"
        "123456.000000 -- close\n"
        "123456.000000 -- end\n";
    const ParsedRecording parsed = ParseRecording("r", text);
    ASSERT_TRUE(parsed.Ok()) << Problems(text);
    EXPECT_TRUE(parsed.recording.redacted);
    EXPECT_EQ(Written(parsed.recording), text);
    const auto& entries = parsed.recording.entries;
    ASSERT_EQ(entries.size(), 19U);
    EXPECT_EQ(entries[10].kind, Entry::Kind::ToModem);
    EXPECT_EQ(entries[10].text, "AT+CSQ\r");
    EXPECT_EQ(entries[10].at, Time(412'001));
    EXPECT_EQ(entries[10].line, 11U);
    EXPECT_EQ(entries[12].text, std::string(",99\r\n\\\0\xFF\t", 9));
    EXPECT_EQ(entries[14].text, "\r\n> ");
    EXPECT_EQ(entries[15].at, std::chrono::milliseconds(3'700'900));
}

TEST(Recording, EveryByteComesBackAtEveryPlace) {
    for (int byte = 0; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        for (const std::string& text : {std::string(1, c), std::string("a") + c, c + std::string("a"),
                                        std::string("a") + c + "a", std::string(3, c)}) {
            const std::string line = FormatEntry({Entry::Kind::FromModem, Time(5), text, 0});
            EXPECT_EQ(line.find_first_of("\r\n\t"), line.size() - 1) << byte;
            const ParsedRecording parsed = ParseRecording("r", kHead + line);
            ASSERT_TRUE(parsed.Ok()) << line;
            EXPECT_EQ(parsed.recording.entries.at(1).text, text) << line;
            EXPECT_EQ(parsed.recording.entries.at(1).at, Time(5));
        }
    }
}

TEST(Recording, HandWrittenTimesMayBeShort) {
    const ParsedRecording parsed =
        ParseRecording("r", std::string(kHead) + "0 -> A\\r\n 1.5 <- B\n1.50 -- end\n");
    ASSERT_TRUE(parsed.Ok());
    EXPECT_EQ(parsed.recording.entries[2].at, std::chrono::milliseconds(1500));
}

TEST(Recording, LineBreaksOfMailAndAMissingLastOneDoNoHarm) {
    const ParsedRecording parsed = ParseRecording("r", "modem recording 1\r\n0.1 -> AT\\r\r\n0.2 <- OK");
    ASSERT_TRUE(parsed.Ok());
    EXPECT_EQ(parsed.recording.entries[1].text, "AT\r");
    EXPECT_EQ(parsed.recording.entries[2].text, "OK");
}

TEST(Recording, WhatIsBrokenIsToldWithItsLine) {
    struct Case {
        const char* text;
        const char* problem;
    };
    static constexpr Case kCases[] = {
        {"", "r:1: the file is empty\n"},
        {"on AT\n    | OK\n", "r:1: this is no recording: it does not begin with 'modem recording 1'\n"},
        {"modem recording 2\nsomething new\n",
         "r:1: version '2' of the form, this program reads 1: take the program that made the file\n"},
        {"modem recording 1\ndevise /dev/modem\n", "r:2: unknown word 'devise', did you mean 'device'?\n"},
        {"modem recording 1\ndevice\n", "r:2: nothing stands behind 'device'\n"},
        {"modem recording 1\nredacted twice\n", "r:2: nothing stands behind 'redacted'\n"},
        {"modem recording 1\nsettings 115200 8N1\n",
         "r:2: the settings end with one of none, rtscts, xonxoff, not with ''\n"},
        {"modem recording 1\nsettings 115200 9N1 none\n",
         "r:2: '9N1' is not a form of characters, such as 8N1\n"},
        {"modem recording 1\nsettings fast 8N1 none\n", "r:2: 'fast' is not a number\n"},
        {"modem recording 1\n0.1 -> A\n-> B\n", "r:3: the line does not begin with a time\n"},
        {"modem recording 1\n0.1 -> A\ndevice x\n", "r:3: the line does not begin with a time\n"},
        {"modem recording 1\n0.1234567 -> A\n",
         "r:2: '0.1234567' is not a time in seconds, such as 12.003456\n"},
        {"modem recording 1\n1.x -> A\n", "r:2: '1.x' is not a time in seconds, such as 12.003456\n"},
        {"modem recording 1\n99999999999999999999 -> A\n",
         "r:2: '99999999999999999999' is not in the range 0 to 31622400\n"},
        {"modem recording 1\n2 -> A\n1 -> B\n", "r:3: the time is earlier than that of the line before\n"},
        {"modem recording 1\n1 => A\n",
         "r:2: '=>' stands where the direction is expected: -> to the modem, <- from it, -- an event\n"},
        {"modem recording 1\n1\n",
         "r:2: '' stands where the direction is expected: -> to the modem, <- from it, -- an event\n"},
        {"modem recording 1\n1 ->\n", "r:2: the text that passed is missing\n"},
        {"modem recording 1\n1 -> \n", "r:2: the text that passed is missing\n"},
        {"modem recording 1\n1 <- A\\q\n",
         "r:2: unknown escape '\\q': known are \\r \\n \\t \\\" \\\\ \\xHH\n"},
        {"modem recording 1\n1 <- A\\x4\n", "r:2: \\x needs two hexadecimal digits\n"},
        {"modem recording 1\n1 <- A\\",
         "r:2: unknown escape at the end: known are \\r \\n \\t \\\" \\\\ \\xHH\n"},
        {"modem recording 1\n1 -- opened\n", "r:2: unknown word 'opened', did you mean 'open'?\n"},
        {"modem recording 1\n1 --\n", "r:2: an event is missing behind '--'\n"},
        {"modem recording 1\n1 -- open wide\n", "r:2: 'wide' stands behind 'open'\n"},
        {"modem recording 1\n1 -- settings 1 8N1 both\n",
         "r:2: the settings end with one of none, rtscts, xonxoff, not with 'both'\n"},
        {"modem recording 1\n1 <- A\x01\n", "r:2: a control character stands in the file: is it a text?\n"},
        {"modem recording 1\n1 -> A\n0 -> B\n2 -> \\\n3 -> C\n",
         "r:3: the time is earlier than that of the line before\n"
         "r:4: unknown escape at the end: known are \\r \\n \\t \\\" \\\\ \\xHH\n"},
    };
    for (const Case& c : kCases)
        EXPECT_EQ(Problems(c.text), c.problem) << c.text;
}

TEST(Recording, NoLineIsTooLongAndNoComplaintTooOften) {
    EXPECT_EQ(Problems(kHead + ("1 -> " + std::string(kMaxRecordingLine, 'A')) + "\n"),
              "r:2: the line is longer than 65536 characters\n");
    EXPECT_EQ(Problems(kHead + ("1 -> " + std::string(kMaxRecordingLine - 5, 'A')) + "\n"), "");
    std::string many = kHead;
    for (int i = 0; i < 100; ++i)
        many += "1 ->\n";
    EXPECT_EQ(ParseRecording("r", many).problems.size(), kMaxProblems);
}

TEST(Recording, MissingFileIsToldByItsName) {
    const ParsedRecording parsed = LoadRecording("/nonexistent/file");
    ASSERT_EQ(parsed.problems.size(), 1U);
    EXPECT_EQ(parsed.problems[0].Text(), "/nonexistent/file: No such file or directory");
    EXPECT_EQ(LoadRecording("/dev/null").problems.at(0).Text(), "/dev/null: not a file");
}

TEST(LineSettings, AreTheSameAsTextAndOnALine) {
    for (const char* text : {"115200 8N1 rtscts", "9600 7E2 xonxoff", "4000000 5O1 none", "2400 6N1 none"}) {
        std::string reason;
        const auto settings = ReadLineSettings(text, reason);
        ASSERT_TRUE(settings) << reason;
        EXPECT_EQ(SettingsText(*settings), text);
        termios line = {};
        line.c_lflag = ICANON | ECHO;
        Apply(*settings, line);
        EXPECT_EQ(SettingsText(SettingsOf(line)), text);
        EXPECT_FALSE(line.c_lflag & (ICANON | ECHO));
        EXPECT_TRUE(line.c_cflag & CLOCAL);
        EXPECT_EQ(line.c_cc[VMIN], 1);
    }
}

TEST(LineSettings, UnknownSpeedLeavesTheSpeedAlone) {
    termios line = {};
    cfsetospeed(&line, B57600);
    Apply(LineSettings{.speed = 12345}, line);
    EXPECT_EQ(cfgetospeed(&line), static_cast<speed_t>(B57600));
    cfsetospeed(&line, B0);
    EXPECT_EQ(SettingsOf(line).speed, 0U);
}

}  // namespace
}  // namespace modemsim
