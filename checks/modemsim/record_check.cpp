// The recorder, the replayer and the redactor as programs: real processes between real ptys.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <termios.h>

#include <algorithm>
#include <functional>
#include <optional>

#include "checks/modemsim/program.h"
#include "tools/modemsim/recording.h"

namespace modemsim {
namespace {

constexpr char kScript[] =
    "on AT\n    | OK\n"
    "on AT+CIMI\n    | 001010123456789\n    | OK\n"
    "report 20ms after AT+CLIP=1\n    | +CLIP: \"+447700900123\",145\n"
    "on AT+CLIP=1\n    | OK\n"
    "on AT+GO\n    unplug\n";

// What a recording says, times left out: "-- open;-> AT\r;..." in the escaped form.
std::string Story(const std::string& path) {
    const ParsedRecording parsed = LoadRecording(path);
    for (const Problem& problem : parsed.problems)
        ADD_FAILURE() << problem.Text();
    std::string story;
    for (const Entry& entry : parsed.recording.entries) {
        if (entry.kind == Entry::Kind::Header || entry.kind == Entry::Kind::Comment) continue;
        const std::string line = FormatEntry(entry);
        story += line.substr(line.find(' ', line.find('.')) + 1);
        story.back() = ';';
    }
    return story;
}

bool Eventually(const std::function<bool()>& condition) {
    const auto end = Clock::now() + kBound;
    while (!condition()) {
        if (Clock::now() > end) return false;
        poll(nullptr, 0, 2);
    }
    return true;
}

// A simulated modem, and a recorder in front of it.
class Recorded : public testing::Test {
  protected:
    Recorded() { StartModem(kScript); }

    void StartModem(const std::string& script) {
        modem_.emplace(std::vector<std::string>{directory_.Write("a.modem", script), "--link", device_});
        ASSERT_EQ(modem_->OutLine(), "ready " + device_ + "\n");
    }
    // In an orderly way: the number of a pty whose link stays behind may be given to another program.
    void StopModem() {
        modem_->Signal(SIGTERM);
        ASSERT_EQ(modem_->Status(), 0);
        modem_.reset();
    }
    std::vector<std::string> Arguments(const std::vector<std::string>& more = {}) const {
        std::vector<std::string> all = {"record", "--device", device_, "--link", link_, file_};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }
    void StartRecorder(const std::vector<std::string>& more = {}) {
        recorder_.emplace(Arguments(more));
        ASSERT_EQ(recorder_->OutLine(), "ready " + link_ + "\n");
    }
    int End(int number = SIGTERM) {
        recorder_->Signal(number);
        return recorder_->Status();
    }
    bool Says(const std::string& part) {
        return Eventually([&] { return Content(file_).find(part) != std::string::npos; });
    }

    Directory directory_;
    const std::string device_ = directory_.File("device");
    const std::string link_ = directory_.File("link");
    const std::string file_ = directory_.File("session.rec");
    std::optional<Program> modem_;
    std::optional<Program> recorder_;
};

TEST_F(Recorded, SessionIsWrittenAsItPassed) {
    StartRecorder();
    {
        const Host host(link_);
        EXPECT_EQ(host.Ask("AT\r", "OK\r\n"), "\r\nOK\r\n");
        EXPECT_EQ(host.Ask("AT+CLIP=1\r", ",145\r\n"), "\r\nOK\r\n\r\n+CLIP: \"+447700900123\",145\r\n");
    }
    ASSERT_TRUE(Says("-- close"));
    EXPECT_EQ(End(SIGINT), 0);
    EXPECT_FALSE(LinkStands(link_));
    EXPECT_EQ(Story(file_),
              "-- open;-> AT\\r;<- \\r\\nOK\\r\\n;-> AT+CLIP=1\\r;<- \\r\\nOK\\r\\n;<- \\r\\n+CLIP: "
              "\"+447700900123\",145\\r\\n;-- close;-- end;");
    const std::string text = Content(file_);
    EXPECT_TRUE(text.starts_with("modem recording 1\nprogram modemsim ")) << text;
    EXPECT_NE(text.find("\ndevice " + device_ + "\nstarted 20"), std::string::npos);
    EXPECT_NE(text.find("\nsettings 115200 8N1 rtscts\n"), std::string::npos);
    EXPECT_EQ(fs::status(file_).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    // The report came 20 ms after the answer, and so says the recording.
    const auto entries = LoadRecording(file_).recording.entries;
    EXPECT_GE(entries[entries.size() - 3].at - entries[entries.size() - 4].at, std::chrono::milliseconds(19));
}

TEST_F(Recorded, EveryByteGoesThroughBothWays) {
    std::string all;
    for (int byte = 1; byte < 256; ++byte)
        all += static_cast<char>(byte);
    StopModem();
    std::string script = "on AT\n    send \"";
    for (const char c : all) {
        char code[8];
        snprintf(code, sizeof code, "\\x%02X", static_cast<unsigned char>(c));
        script += code;
    }
    StartModem("on *\n    silent\n" + script + ".\"\n");
    StartRecorder();
    const Host host(link_);
    EXPECT_EQ(host.Ask("AT\r", "\xFF."), all + ".");
    host.Send(all);
    std::string to;
    std::string from;
    EXPECT_TRUE(Eventually([&] {
        to.clear();
        from.clear();
        for (const Entry& entry : LoadRecording(file_).recording.entries) {
            if (entry.kind == Entry::Kind::ToModem) to += entry.text;
            if (entry.kind == Entry::Kind::FromModem) from += entry.text;
        }
        return to.size() >= all.size() + 3;
    }));
    EXPECT_EQ(End(), 0);
    EXPECT_EQ(to, "AT\r" + all);
    EXPECT_EQ(from, all + ".");
}

TEST_F(Recorded, PiecesStayApart) {
    StopModem();
    StartModem("pieces 3 gap 30ms\non AT\n    | OK\n");
    StartRecorder();
    EXPECT_EQ(Host(link_).Ask("AT\r", "OK\r\n"), "\r\nOK\r\n");
    EXPECT_EQ(End(), 0);
    const std::string story = Story(file_);
    EXPECT_NE(story.find("<- \\r\\nO;<- K\\r\\n;"), std::string::npos) << story;
}

TEST_F(Recorded, WhatTheDaemonWritesBeforeItClosesIsToldBeforeThat) {
    StartRecorder();
    const auto kinds = [&] {
        std::vector<Entry::Kind> all;
        for (const Entry& entry : LoadRecording(file_).recording.entries)
            if (entry.kind != Entry::Kind::Header && entry.kind != Entry::Kind::FromModem)
                all.push_back(entry.kind);
        return all;
    };
    std::vector<Entry::Kind> expected;
    for (int i = 0; i < 20; ++i) {
        Host(link_).Send("ATX\r");
        expected.insert(expected.end(), {Entry::Kind::Open, Entry::Kind::ToModem, Entry::Kind::Close});
        ASSERT_TRUE(Eventually([&] { return kinds().size() >= expected.size(); }));
        ASSERT_EQ(kinds(), expected);
    }
    EXPECT_EQ(End(), 0);
}

TEST_F(Recorded, WhatTheModemSaysToAClosedPortIsWrittenButNotHeard) {
    StopModem();
    StartModem("on AT\n    | OK\non AT+X\n    | EARLY\n");
    StartRecorder();
    Host(device_).Send("AT+X\r");  // past the recorder
    ASSERT_TRUE(Says("EARLY"));
    EXPECT_EQ(Host(link_).Ask("AT\r", "OK\r\n"), "\r\nOK\r\n");
    EXPECT_EQ(End(), 0);
    EXPECT_TRUE(Story(file_).starts_with("<- \\r\\nEARLY\\r\\n;-- open;")) << Story(file_);
}

TEST_F(Recorded, KilledRecorderHasWrittenWhatPassed) {
    StartRecorder();
    EXPECT_EQ(Host(link_).Ask("AT\r", "OK\r\n"), "\r\nOK\r\n");
    recorder_->Signal(SIGKILL);
    EXPECT_EQ(recorder_->Status(), 128 + SIGKILL);
    EXPECT_TRUE(Story(file_).starts_with("-- open;-> AT\\r;<- \\r\\nOK\\r\\n;")) << Story(file_);
    fs::remove(link_);
    StartRecorder({"--force"});
    EXPECT_EQ(End(), 0);
    EXPECT_EQ(Story(file_), "-- end;");
}

TEST_F(Recorded, SettingsOfTheDaemonReachTheModem) {
    StartRecorder();
    const Host host(link_);
    const auto speed_of_device = [&] {
        const Host device(device_);
        termios line = {};
        tcgetattr(device.Fd(), &line);
        return cfgetospeed(&line);
    };
    EXPECT_EQ(speed_of_device(), static_cast<speed_t>(B115200));
    termios line = {};
    ASSERT_EQ(tcgetattr(host.Fd(), &line), 0);
    cfsetspeed(&line, B57600);
    line.c_cflag &= ~static_cast<tcflag_t>(CRTSCTS);
    ASSERT_EQ(tcsetattr(host.Fd(), TCSANOW, &line), 0);
    EXPECT_TRUE(Says("-- settings 57600 8N1 none\n"));
    EXPECT_TRUE(Eventually([&] { return speed_of_device() == static_cast<speed_t>(B57600); }));
    EXPECT_EQ(host.Ask("AT\r", "OK\r\n"), "\r\nOK\r\n");
}

TEST_F(Recorded, ModemThatVanishesAndComesBackIsTold) {
    StartRecorder();
    {
        const Host host(link_);
        EXPECT_EQ(host.Ask("AT\r", "OK\r\n"), "\r\nOK\r\n");
        host.Send("AT+GO\r");
        EXPECT_EQ(modem_->Status(), 0);
        ASSERT_TRUE(Says("-- gone\n"));
        EXPECT_TRUE(host.IsHungUp()) << "the daemon's port is dead, as it would be without us";
    }
    EXPECT_TRUE(Eventually([&] { return LinkStands(link_); }));
    EXPECT_EQ(open(link_.c_str(), O_RDWR | O_NOCTTY), -1) << "there is no port now";
    StartModem(kScript);
    ASSERT_TRUE(Says("-- back\n"));
    EXPECT_EQ(Host(link_).Ask("AT\r", "OK\r\n"), "\r\nOK\r\n");
    ASSERT_TRUE(Says("-- close"));
    EXPECT_EQ(End(), 0);
    EXPECT_EQ(Story(file_),
              "-- open;-> AT\\r;<- \\r\\nOK\\r\\n;-> AT+GO\\r;-- gone;-- back;-- open;-> AT\\r;<- "
              "\\r\\nOK\\r\\n;-- close;-- end;");
    EXPECT_NE(recorder_->Err().find("modemsim: " + device_ + " is gone, waiting until it is back\n"),
              std::string::npos);
}

TEST_F(Recorded, NothingIsLeftWhenItEndsWhileTheModemIsAway) {
    StartRecorder();
    Host(link_).Send("AT+GO\r");
    ASSERT_TRUE(Says("-- gone\n"));
    EXPECT_EQ(End(), 0);
    EXPECT_FALSE(LinkStands(link_));
}

TEST_F(Recorded, FullDiskIsToldAndTheModemStaysInService) {
    rlimit old = {};
    getrlimit(RLIMIT_FSIZE, &old);
    rlimit small = old;
    small.rlim_cur = 400;
    setrlimit(RLIMIT_FSIZE, &small);
    recorder_.emplace(Arguments());
    setrlimit(RLIMIT_FSIZE, &old);
    ASSERT_EQ(recorder_->OutLine(), "ready " + link_ + "\n");
    const Host host(link_);
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(host.Ask("AT\r", "OK\r\n"), "\r\nOK\r\n");
    EXPECT_EQ(End(), 4);
    EXPECT_EQ(
        recorder_->Err(),
        "modemsim: " + file_ + ": File too large: the recording ends here, but the modem stays in service\n");
    const std::string text = Content(file_);
    EXPECT_LE(text.size(), 400U);
    EXPECT_GT(text.size(), 350U);
    EXPECT_EQ(text.back(), '\n');
    EXPECT_TRUE(LoadRecording(file_).Ok());
}

TEST_F(Recorded, FullDiskFromTheStartIsMisuse) {
    recorder_.emplace(
        std::vector<std::string>{"record", "--device", device_, "--link", link_, "--force", "/dev/full"});
    EXPECT_EQ(recorder_->Status(), 2);
    EXPECT_EQ(recorder_->Err(), "modemsim: /dev/full: No space left on device\n");
    EXPECT_FALSE(LinkStands(link_));
}

TEST_F(Recorded, MisuseIsToldAndLeavesNothing) {
    const auto refused = [&](const std::vector<std::string>& arguments) {
        Program program(arguments);
        EXPECT_EQ(program.Status(), 2);
        return program.Err();
    };
    directory_.Write("session.rec", "precious");
    EXPECT_EQ(refused(Arguments()),
              "modemsim: " + file_ + " exists: take another name, or --force to replace it\n");
    EXPECT_EQ(Content(file_), "precious");
    EXPECT_FALSE(LinkStands(link_));
    EXPECT_EQ(refused({"record", "--device", directory_.File("no"), "--link", link_, directory_.File("x")}),
              "modemsim: cannot open " + directory_.File("no") + ": No such file or directory\n");
    EXPECT_EQ(refused({"record", "--device", file_, "--link", link_, directory_.File("x")}),
              "modemsim: " + file_ + " cannot be set up as a modem's line: Inappropriate ioctl for device\n");
    EXPECT_EQ(refused({"record", "--device", device_, "--link", device_, directory_.File("x")}),
              "modemsim: the daemon opens " + device_ +
                  ", so the modem needs another name: move its node first (docs/recording.md says how)\n");
    EXPECT_EQ(refused({"record", "--device", device_, "--link", file_, directory_.File("x")}),
              "modemsim: " + file_ + " exists: it is left alone\n");
    EXPECT_EQ(refused({"record", "--device", device_, "--link", link_, directory_.File("no/x")}),
              "modemsim: cannot create " + directory_.File("no/x") + ": No such file or directory\n");
    EXPECT_FALSE(fs::exists(directory_.File("x")));
    EXPECT_NE(refused({"record", "--link", link_, directory_.File("x")}).find("--device is required"),
              std::string::npos);
}

TEST_F(Recorded, NothingPrivateReachesTheFileWhenItIsToBeRedacted) {
    StopModem();
    // The identity and the number come in pieces that cut them.
    StartModem("pieces 7 gap 5ms\n" + std::string(kScript));
    StartRecorder({"--redact"});
    {
        const Host host(link_);
        EXPECT_EQ(host.Ask("AT+CIMI\r", "OK\r\n"), "\r\n001010123456789\r\n\r\nOK\r\n")
            << "the daemon gets it all";
        host.Ask("AT+CLIP=1\r", ",145\r\n");
        EXPECT_EQ(Content(file_).find("\\r\\n00101"), std::string::npos);
    }
    ASSERT_TRUE(Says("-- close"));
    EXPECT_EQ(End(), 0);
    const ParsedRecording parsed = LoadRecording(file_);
    EXPECT_TRUE(parsed.recording.redacted);
    std::string from;
    std::size_t pieces = 0;
    for (const Entry& entry : parsed.recording.entries) {
        if (entry.kind != Entry::Kind::FromModem) continue;
        from += entry.text;
        ++pieces;
    }
    EXPECT_GT(pieces, 4U);
    EXPECT_EQ(from.size(),
              std::string("\r\n001010123456789\r\n\r\nOK\r\n\r\nOK\r\n\r\n+CLIP: \"+447700900123\",145\r\n")
                  .size());
    EXPECT_EQ(from.find("001010123456789"), std::string::npos);
    EXPECT_EQ(from.find("447700900123"), std::string::npos);
    EXPECT_NE(from.find("\r\n+CLIP: \"+"), std::string::npos);
}

TEST_F(Recorded, UnfinishedLineIsRedactedWhenItEnds) {
    StopModem();
    const std::string log = directory_.File("log");
    modem_.emplace(std::vector<std::string>{"silent", "--link", device_, "--log", log});
    ASSERT_EQ(modem_->OutLine(), "ready " + device_ + "\n");
    StartRecorder({"--redact"});
    const Host host(link_);
    host.Send("AT+CLIP=1\r");
    ASSERT_TRUE(Says("AT+CLIP=1"));
    host.Send("AT+CPIN=\"12345678");
    ASSERT_TRUE(Eventually([&] { return Content(log).find("12345678") != std::string::npos; }));
    EXPECT_EQ(End(), 0);
    EXPECT_EQ(Content(file_).find("12345678"), std::string::npos);
    EXPECT_EQ(LoadRecording(file_).recording.entries.back().kind, Entry::Kind::End);
}

TEST(Redact, WritesARecordingWithoutPrivateData) {
    Directory directory;
    const std::string file =
        directory.Write("a.rec",
                        "modem recording 1\n# of Bob\n0.1 -> ATD0770090\n0.2 -> 0123;\\r\n"
                        "0.3 <- \\r\\nOK\\r\\n\n0.4 -- end\n");
    const std::string out = directory.File("b.rec");
    Program redact({"redact", file, out});
    EXPECT_EQ(redact.Status(), 0);
    EXPECT_EQ(redact.Err(),
              "modemsim: comments stand as they were (lines: 1): look whether they tell anything private\n");
    const ParsedRecording parsed = LoadRecording(out);
    ASSERT_TRUE(parsed.Ok());
    EXPECT_TRUE(parsed.recording.redacted);
    const auto& entries = parsed.recording.entries;
    ASSERT_EQ(entries.size(), 7U);
    EXPECT_EQ(entries[2].text, "# of Bob");
    EXPECT_EQ(entries[3].text.size(), 10U);
    EXPECT_EQ(entries[4].text.size(), 6U);
    EXPECT_NE(entries[3].text + entries[4].text, "ATD07700900123;\r");
    EXPECT_EQ(entries[5].text, "\r\nOK\r\n");
    Program again({"redact", file, out});
    EXPECT_EQ(again.Status(), 2);
    EXPECT_EQ(again.Err(), "modemsim: " + out + " exists: take another name, or --force to replace it\n");
    Program forced({"redact", out, out + "2", "--force"});
    EXPECT_EQ(forced.Status(), 0);
    EXPECT_EQ(Story(out + "2").size(), Story(out).size());
    Program to_output({"redact", file, "-"});
    EXPECT_TRUE(to_output.Out().starts_with("modem recording 1\nredacted\n# of Bob\n"));
    Program full({"redact", file, "/dev/full", "--force"});
    EXPECT_EQ(full.Status(), 4);
    EXPECT_EQ(full.Err(), "modemsim: /dev/full: No space left on device: the recording is not complete\n");
    Program broken({"redact", directory.Write("c.rec", "modem recording 1\n0 -> A\\q\n"), "-"});
    EXPECT_EQ(broken.Status(), 2);
    EXPECT_EQ(broken.Out(), "");
    EXPECT_TRUE(broken.Err().starts_with(directory.File("c.rec") + ":2: unknown escape"));
}

// A recording with a report, a pause and a cut answer.
constexpr char kTalk[] =
    "modem recording 1\n0 -- open\n0.1 -> AT\\r\n0.11 <- \\r\\nO\n0.111 <- K\\r\n0.112 <- \\n\n"
    "0.2 <- \\r\\nRING\\r\\n\n0.3 -> ATA\\r\n0.31 <- \\r\\nOK\\r\\n\n0.9 -- close\n1 -- end\n";

TEST(Replay, PlaysTheModemAndKeepsItsPieces) {
    Directory directory;
    const std::string link = directory.File("link");
    for (const std::string& way : {std::string("--fast"), std::string("--speed=2")}) {
        Program replay({"replay", directory.Write("a.rec", kTalk), "--link", link, way});
        ASSERT_EQ(replay.OutLine(), "ready " + link + "\n");
        {
            const Host host(link);
            host.Send("AT\r");
            // Each piece waits until the one before it was read.
            std::vector<std::string> reads;
            for (int i = 0; i < 4; ++i) {
                ASSERT_TRUE(Readable(host.Fd(), Clock::now() + kBound));
                char buffer[100];
                reads.emplace_back(buffer, static_cast<std::size_t>(read(host.Fd(), buffer, sizeof buffer)));
            }
            EXPECT_EQ(reads, (std::vector<std::string>{"\r\nO", "K\r", "\n", "\r\nRING\r\n"}));
            EXPECT_EQ(host.Ask("ATA\r", "OK\r\n"), "\r\nOK\r\n");
            EXPECT_EQ(replay.Status(), 0);
        }
        EXPECT_EQ(replay.Out(), directory.File("a.rec") + ": lines that came: 2 of 2, deviations: 0\n");
        EXPECT_EQ(replay.Err(), "");
        EXPECT_FALSE(LinkStands(link));
    }
}

TEST(Replay, TellsWhatTheDaemonDidOtherwise) {
    Directory directory;
    const std::string link = directory.File("link");
    const std::string file = directory.Write("a.rec", kTalk);
    Program replay({"replay", file, "--link", link});
    ASSERT_EQ(replay.OutLine(), "ready " + link + "\n");
    {
        const Host host(link);
        EXPECT_EQ(host.Ask("ATX\r", "R\r\n"), "\r\nERROR\r\n");
        host.Ask("AT\r", "RING\r\n");
        replay.Signal(SIGINT);
        EXPECT_EQ(replay.Status(), 3);
    }
    EXPECT_EQ(replay.Out(), file + ": lines that came: 1 of 2, deviations: 2\n");
    EXPECT_EQ(replay.Err(),
              file +
                  ":3: expected 'AT\\r', the daemon sent 'ATX\\r', which the recording does not have: "
                  "answered ERROR\n" +
                  file + ":8: expected 'ATA\\r', the replay was ended before it came (lines missing: 1)\n");
    EXPECT_FALSE(LinkStands(link));

    Program strict({"replay", file, "--link", link, "--strict"});
    ASSERT_EQ(strict.OutLine(), "ready " + link + "\n");
    Host(link).Send("ATA\r");
    EXPECT_EQ(strict.Status(), 3);
    Program impatient({"replay", file, "--link", link, "--fast", "--patience", "0.05"});
    EXPECT_EQ(impatient.Status(), 3);
    EXPECT_TRUE(impatient.Err().ends_with(
        file + ":8: expected 'ATA\\r', nothing came within 50 ms: goes on without it\n"));
}

TEST(Replay, ModemVanishesAndComesBackAsItDid) {
    Directory directory;
    const std::string link = directory.File("link");
    Program replay(
        {"replay",
         directory.Write("a.rec",
                         "modem recording 1\n0 -- open\n0 -> AT\\r\n0 <- one\n0.1 -- gone\n0.4 -- back\n"
                         "0.5 -- open\n0.6 -> AT\\r\n0.6 <- two\n"),
         "--link", link});
    ASSERT_EQ(replay.OutLine(), "ready " + link + "\n");
    const Host first(link);
    EXPECT_EQ(first.Ask("AT\r", "one"), "one");
    EXPECT_TRUE(first.IsHungUp());
    ASSERT_TRUE(Eventually([&] { return LinkStands(link); }));
    EXPECT_EQ(Host(link).Ask("AT\r", "two"), "two");
    EXPECT_EQ(replay.Status(), 0);
}

TEST(Replay, BrokenRecordingIsRefusedWithItsLine) {
    Directory directory;
    const std::string link = directory.File("link");
    const std::string file =
        directory.Write("a.rec", "modem recording 1\n0 -> AT\\r\nnonsense\n0.1 <- \\x\n");
    Program replay({"replay", file, "--link", link});
    EXPECT_EQ(replay.Status(), 2);
    EXPECT_EQ(replay.Err(), file + ":3: the line does not begin with a time\n" + file +
                                ":4: \\x needs two hexadecimal digits\n");
    EXPECT_FALSE(LinkStands(link));
    Program check({"replay", "--check", directory.Write("b.rec", kTalk)});
    EXPECT_EQ(check.Status(), 0);
    EXPECT_EQ(check.Out(), directory.File("b.rec") + ": 2 lines of the daemon, 1.0 s\n");
}

TEST(Replay, ARecordingOfAReplayIsTheRecording) {
    Directory directory;
    const std::string device = directory.File("device");
    const std::string link = directory.File("link");
    const std::string again = directory.File("again.rec");
    Program replay({"replay", directory.Write("a.rec", kTalk), "--link", device, "--fast"});
    ASSERT_EQ(replay.OutLine(), "ready " + device + "\n");
    Program record({"record", "--device", device, "--link", link, again});
    ASSERT_EQ(record.OutLine(), "ready " + link + "\n");
    {
        const Host host(link);
        host.Ask("AT\r", "RING\r\n");
        host.Ask("ATA\r", "OK\r\n");
    }
    record.Signal(SIGTERM);
    EXPECT_EQ(record.Status(), 0);
    const std::string story = Story(again);
    EXPECT_TRUE(
        story.starts_with("-- open;-> AT\\r;<- \\r\\nO;<- K\\r;<- \\n;<- \\r\\nRING\\r\\n;-> ATA\\r;<- "
                          "\\r\\nOK\\r\\n;"))
        << story;
}

TEST(Recording, SubcommandsExplainThemselves) {
    for (const char* name : {"record", "replay", "redact"}) {
        Program help({name, "--help"});
        EXPECT_EQ(help.Status(), 0);
        const std::string text = help.Out();
        EXPECT_NE(text.find("docs/recording.md"), std::string::npos);
        EXPECT_NE(text.find("Exit status: 0"), std::string::npos);
        EXPECT_NE(text.find("modemsim " + std::string(name)), std::string::npos) << text;
        Program version({name, "--version"});
        EXPECT_EQ(version.Status(), 0);
        EXPECT_TRUE(version.Out().starts_with("modemsim "));
        Program nothing({name});
        EXPECT_EQ(nothing.Status(), 2);
        EXPECT_NE(nothing.Err(), "");
    }
}

}  // namespace
}  // namespace modemsim
