// The program itself: a real process, a real pty, a real link.

#include "checks/modemsim/posix_regex.h"
#include "checks/modemsim/program.h"

namespace modemsim {
namespace {

constexpr char kScript[] = "on AT\n    | OK\n";

TEST(Modemsim, LinkStandsLineIsAnsweredAndTheSignalRemovesIt) {
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        Directory directory;
        const std::string link = directory.File("modem");
        Program modem({directory.Write("a.modem", kScript), "--link", link});
        ASSERT_EQ(modem.OutLine(), "ready " + link + "\n");
        EXPECT_TRUE(fs::is_symlink(link));
        EXPECT_EQ(Host(link).Ask("AT\r", "OK\r\n"), "\r\nOK\r\n");
        EXPECT_EQ(Host(link).Ask("ATX\r", "ERROR\r\n"), "\r\nERROR\r\n");
        modem.Signal(number);
        EXPECT_EQ(modem.Status(), 0);
        EXPECT_FALSE(LinkStands(link));
    }
}

TEST(Modemsim, DefaultScenarioIsFoundWithoutAName) {
    Directory directory;
    const std::string link = directory.File("modem");
    Program modem({"--link", link});
    ASSERT_EQ(modem.OutLine(), "ready " + link + "\n");
    EXPECT_EQ(Host(link).Ask("AT+CPIN?\r", "OK\r\n"), "\r\n+CPIN: READY\r\n\r\nOK\r\n");
}

TEST(Modemsim, NothingIsTranslatedOrEchoedOnTheWay) {
    Directory directory;
    const std::string link = directory.File("modem");
    Program modem({directory.Write(
                       "a.modem", "on AT\n    send \"\\n\\r\\n\\x03\\x04\\x11\\x13\\x1a\\x7f\\xff\\x00.\"\n"),
                   "--link", link});
    ASSERT_EQ(modem.OutLine(), "ready " + link + "\n");
    EXPECT_EQ(Host(link).Ask("AT\r", "."), std::string("\n\r\n\x03\x04\x11\x13\x1a\x7f\xff\0.", 12));
}

TEST(Modemsim, ReadyIsSaidOnTheDescriptorGiven) {
    Directory directory;
    const std::string link = directory.File("modem");
    int ready[2];
    ASSERT_EQ(pipe2(ready, O_CLOEXEC), 0);
    Program modem(
        {directory.Write("a.modem", kScript), "--link", link, "--ready-fd", std::to_string(ready[1])},
        ready[1]);
    close(ready[1]);
    // Up to the end: the program closes the descriptor once it has said so.
    EXPECT_EQ(ReadUntil(ready[0], std::string("\0", 1)), "ready " + link + "\n");
    close(ready[0]);
    EXPECT_TRUE(fs::is_symlink(link));
    modem.Signal(SIGTERM);
    EXPECT_EQ(modem.Status(), 0);
    EXPECT_EQ(modem.Out(), "");
}

TEST(Modemsim, FileAtTheLinksPlaceIsLeftAlone) {
    Directory directory;
    const std::string link = directory.Write("modem", "precious");
    Program modem({directory.Write("a.modem", kScript), "--link", link});
    EXPECT_EQ(modem.Status(), 2);
    EXPECT_EQ(modem.Err(), "modemsim: " + link + " exists: it is left alone\n");
    EXPECT_EQ(Content(link), "precious");
}

TEST(Modemsim, DirectoryAtTheLinksPlaceIsLeftAlone) {
    Directory directory;
    const std::string link = directory.File("modem");
    fs::create_directory(link);
    Program modem({directory.Write("a.modem", kScript), "--link", link});
    EXPECT_EQ(modem.Status(), 2);
    EXPECT_TRUE(fs::is_directory(link));
}

TEST(Modemsim, RealDeviceAtTheLinksPlaceIsLeftAlone) {
    Directory directory;
    const int master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    char device[64];
    ASSERT_EQ(ptsname_r(master, device, sizeof device), 0);
    Program modem({directory.Write("a.modem", kScript), "--link", device});
    EXPECT_EQ(modem.Status(), 2);
    EXPECT_EQ(modem.Err(), std::string("modemsim: ") + device + " is a real device: it is left alone\n");
    EXPECT_TRUE(fs::is_character_file(device));
    close(master);
}

TEST(Modemsim, LinkToSomethingThatExistsIsLeftAlone) {
    Directory directory;
    const std::string target = directory.Write("target", "x");
    const std::string link = directory.File("modem");
    fs::create_symlink(target, link);
    Program modem({directory.Write("a.modem", kScript), "--link", link});
    EXPECT_EQ(modem.Status(), 2);
    EXPECT_EQ(modem.Err(), "modemsim: " + link + " leads to " + target +
                               ", which exists: remove the link if no modem is there\n");
    EXPECT_EQ(fs::read_symlink(link), target);
}

TEST(Modemsim, LinkOfARunningModemIsLeftAlone) {
    Directory directory;
    const std::string link = directory.File("modem");
    Program first({directory.Write("a.modem", kScript), "--link", link});
    ASSERT_EQ(first.OutLine(), "ready " + link + "\n");
    Program second({directory.File("a.modem"), "--link", link});
    EXPECT_EQ(second.Status(), 2);
    EXPECT_EQ(Host(link).Ask("AT\r", "OK\r\n"), "\r\nOK\r\n");
}

TEST(Modemsim, LinkOfAKilledModemIsReplaced) {
    Directory directory;
    const std::string link = directory.File("modem");
    Program first({directory.Write("a.modem", kScript), "--link", link});
    ASSERT_EQ(first.OutLine(), "ready " + link + "\n");
    first.Signal(SIGKILL);
    EXPECT_EQ(first.Status(), 128 + SIGKILL);
    ASSERT_TRUE(LinkStands(link));
    // The kernel may have given the pty's number to another program meanwhile; then the link is refused,
    // rightly, until that program is gone.
    const auto end = Clock::now() + kBound;
    while (true) {
        Program second({directory.File("a.modem"), "--link", link});
        const std::string ready = second.OutLine();
        if (ready.empty() && Clock::now() < end) {
            ASSERT_EQ(second.Status(), 2);
            ASSERT_NE(second.Err().find("which exists"), std::string::npos);
            continue;
        }
        ASSERT_EQ(ready, "ready " + link + "\n");
        EXPECT_EQ(Host(link).Ask("AT\r", "OK\r\n"), "\r\nOK\r\n");
        break;
    }
}

TEST(Modemsim, LinkThatLeadsNowhereIsReplaced) {
    Directory directory;
    const std::string link = directory.File("modem");
    fs::create_symlink("/dev/pts/99999999", link);
    Program modem({directory.Write("a.modem", kScript), "--link", link});
    ASSERT_EQ(modem.OutLine(), "ready " + link + "\n");
    EXPECT_EQ(Host(link).Ask("AT\r", "OK\r\n"), "\r\nOK\r\n");
}

TEST(Modemsim, LinkThatWasTakenOverStays) {
    Directory directory;
    const std::string link = directory.File("modem");
    Program modem({directory.Write("a.modem", kScript), "--link", link});
    ASSERT_EQ(modem.OutLine(), "ready " + link + "\n");
    fs::remove(link);
    directory.Write("modem", "of somebody else");
    modem.Signal(SIGTERM);
    EXPECT_EQ(modem.Status(), 0);
    EXPECT_EQ(Content(link), "of somebody else");
}

TEST(Modemsim, LinkInAMissingDirectoryIsAnError) {
    Directory directory;
    Program modem({directory.Write("a.modem", kScript), "--link", directory.File("no/modem")});
    EXPECT_EQ(modem.Status(), 2);
    EXPECT_EQ(modem.Err(), "modemsim: cannot make the link " + directory.File("no/modem") +
                               ": No such file or directory\n");
}

TEST(Modemsim, MalformedScenarioIsRefusedBeforeTheLinkIsMade) {
    Directory directory;
    const std::string link = directory.File("modem");
    const std::string script = directory.Write("bad.modem", "on AT\n    | OK\n\nlatecy 5ms\n");
    Program modem({script, "--link", link});
    EXPECT_EQ(modem.Status(), 2);
    EXPECT_EQ(modem.Err(), script + ":4: unknown word 'latecy', did you mean 'latency'?\n");
    EXPECT_FALSE(LinkStands(link));
}

TEST(Modemsim, MissingScenarioIsRefusedWithTheShippedNames) {
    Program modem({"nobody"});
    EXPECT_EQ(modem.Status(), 2);
    const std::string text = modem.Err();
    EXPECT_TRUE(
        text.starts_with("modemsim: there is no file, shipped scenario or subcommand \"nobody\"; shipped "
                         "scenarios: coverage, default, "))
        << text;
    Program file({"/nonexistent/x.modem"});
    EXPECT_EQ(file.Status(), 2);
    EXPECT_EQ(file.Err(), "modemsim: /nonexistent/x.modem: No such file or directory\n");
}

TEST(Modemsim, MisspeltNamesAndOptionsAreRefusedWithWhatWasMeant) {
    struct Case {
        std::vector<std::string> arguments;
        std::string text;
    };
    const std::string no_name = "there is no file, shipped scenario or subcommand ";
    const Case cases[] = {
        {{"flakky"}, no_name + "\"flakky\"; did you mean flaky?; modemsim --help tells more"},
        {{"--seed", "1", "flakky"}, no_name + "\"flakky\"; did you mean flaky?; modemsim --help tells more"},
        {{"reply", "x"}, no_name + "\"reply\"; did you mean replay?; modemsim --help tells more"},
        {{"--lnk", "x"},
         "modemsim has no option \"--lnk\"; did you mean --link or --log?; modemsim --help tells more"},
        {{"silent", "x"}, "modemsim: \"x\" is one word too many; modemsim --help tells what it takes"},
        {{"ctl", "--lnk", "x", "state"},
         "modemsim ctl has no option \"--lnk\"; did you mean --link?; modemsim ctl --help tells more"},
        {{"record", "--devise=x", "y"},
         "modemsim record has no option \"--devise=x\"; did you mean --device?; modemsim record --help tells "
         "more"},
    };
    for (const Case& one : cases) {
        Program modem(one.arguments);
        EXPECT_EQ(modem.Status(), 2) << one.text;
        EXPECT_EQ(modem.Err(), "modemsim: " + one.text + "\n");
    }
}

TEST(Modemsim, OptionsAreExplained) {
    Program help({"--help"});
    EXPECT_EQ(help.Status(), 0);
    const std::string text = help.Out();
    EXPECT_NE(text.find("--link"), std::string::npos);
    for (const char* const line : {"\n  play ", "\n  ctl ", "\n  record ", "\n  replay ", "\n  redact "})
        EXPECT_NE(text.find(line), std::string::npos) << line;
    Program version({"--version"});
    EXPECT_EQ(version.Status(), 0);
    EXPECT_TRUE(!Regex("modemsim [0-9.]+\n").Whole(version.Out()).empty());
    Program unknown({"--nonsense"});
    EXPECT_EQ(unknown.Status(), 2);
    Program check({"silent", "--check"});
    EXPECT_EQ(check.Status(), 0);
    EXPECT_TRUE(check.Out().ends_with("/silent.modem: 1 rules for 1 command lines, 0 reports\n"));
}

TEST(Modemsim, PiecesGoOutOneByOneAndTheLogShowsThem) {
    Directory directory;
    const std::string link = directory.File("modem");
    const std::string log = directory.File("log");
    Program modem(
        {directory.Write("a.modem", "pieces 1,4 gap 2ms\non AT\n    | OK\n"), "--link", link, "--log", log});
    ASSERT_EQ(modem.OutLine(), "ready " + link + "\n");
    EXPECT_EQ(Host(link).Ask("AT\r", "OK\r\n"), "\r\nOK\r\n");
    modem.Signal(SIGTERM);
    ASSERT_EQ(modem.Status(), 0);
    const Regex expected(
        " *[0-9]+ -> AT\\\\r\n *[0-9]+ -- rule a\\.modem:2\n *([0-9]+) <- \\\\r\n *([0-9]+) <- \\\\nOK\\\\r\n"
        " *([0-9]+) <- \\\\n\n");
    const std::string text = Content(log);
    const std::vector<std::string> match = expected.Whole(text);
    ASSERT_EQ(match.size(), 4U) << text;
    // Rounded down to milliseconds, a gap of 2 ms shows as 1 at least.
    EXPECT_GT(std::stol(match.at(2)), std::stol(match.at(1)));
    EXPECT_GT(std::stol(match.at(3)), std::stol(match.at(2)));
}

TEST(Modemsim, LogGoesToStandardOutputToo) {
    Directory directory;
    const std::string link = directory.File("modem");
    Program modem({directory.Write("a.modem", "on *\n    unplug\n"), "--link", link, "--log", "-"});
    ASSERT_EQ(modem.OutLine(), "ready " + link + "\n");
    Host(link).Send("A\\\x01\r");
    EXPECT_EQ(modem.Status(), 0);
    const std::string text = modem.Out();
    const Regex expected(
        " *[0-9]+ -> A\\\\\\\\\\\\x01\\\\r\n *[0-9]+ -- rule a\\.modem:1\n *[0-9]+ -- unplugged\n");
    EXPECT_FALSE(expected.Whole(text).empty()) << text;
}

TEST(Modemsim, LongAnswerPassesThroughTheSmallBufferOfThePty) {
    Directory directory;
    const std::string link = directory.File("modem");
    Program modem({directory.Write("a.modem", "on AT\n    repeat 102400 \"x\"\n    | OK\n"), "--link", link});
    ASSERT_EQ(modem.OutLine(), "ready " + link + "\n");
    const Host host(link);
    // Two answers, so that the second line comes in while the first answer is stuck.
    host.Send("AT\r");
    host.Send("AT\r");
    std::string text = ReadUntil(host.Fd(), "OK\r\n");
    if (text.size() < 150'000) text += ReadUntil(host.Fd(), "OK\r\n");
    const std::string one = std::string(102400, 'x') + "\r\nOK\r\n";
    EXPECT_EQ(text.size(), 2 * one.size());
    EXPECT_TRUE(text == one + one);
}

TEST(Modemsim, SignalEndsAModemThatNobodyReads) {
    Directory directory;
    const std::string link = directory.File("modem");
    const std::string log = directory.File("log");
    Program modem(
        {directory.Write("a.modem", "on AT\n    repeat 102400 \"x\"\n"), "--link", link, "--log", log});
    ASSERT_EQ(modem.OutLine(), "ready " + link + "\n");
    const Host host(link);
    host.Send("AT\r");
    // Stuck once the first bytes have arrived and nobody takes them.
    ASSERT_TRUE(Readable(host.Fd(), Clock::now() + kBound));
    modem.Signal(SIGTERM);
    EXPECT_EQ(modem.Status(), 0);
    EXPECT_FALSE(LinkStands(link));
}

TEST(Modemsim, UnpluggedModemIsGone) {
    Directory directory;
    const std::string link = directory.File("modem");
    Program modem(
        {directory.Write("a.modem", "on AT\n    | OK\n    wait 300ms\n    unplug\n"), "--link", link});
    ASSERT_EQ(modem.OutLine(), "ready " + link + "\n");
    const Host host(link);
    EXPECT_EQ(host.Ask("AT\r", "OK\r\n"), "\r\nOK\r\n");
    EXPECT_EQ(modem.Status(), 0);
    EXPECT_FALSE(LinkStands(link));
    EXPECT_TRUE(host.IsHungUp());
    EXPECT_EQ(write(host.Fd(), "A", 1), -1);
}

TEST(Modemsim, ListThatCannotBePrintedIsNoSuccess) {
    for (const char* const option : {"--list", "--help"}) {
        Program list({option}, -1, FillOutput);
        EXPECT_EQ(list.Status(), 4) << option;
        EXPECT_EQ(list.Err(), kFullOutput) << option;
    }
}

}  // namespace
}  // namespace modemsim
