// The control socket of a real modemsim, and modemsim ctl.

#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <cstring>
#include <nlohmann/json.hpp>

#include "checks/modemsim/program.h"

namespace modemsim {
namespace {

// A modem that runs, and what is needed to steer it.
class Running {
  public:
    explicit Running(const std::string& script = "use modem\n", const std::vector<std::string>& options = {})
        : link(directory.File("modem")), modem_(Arguments(script, options)) {
        EXPECT_EQ(modem_.OutLine(), "ready " + link + "\n");
    }

    struct Done {
        int status;
        std::string out;
        std::string err;
    };
    Done Ctl(std::vector<std::string> words, void (*prepare)() = nullptr) const {
        words.insert(words.begin(), {"ctl", "--link", link});
        Program ctl(words, -1, prepare);
        const std::string out = ctl.Out();
        const std::string err = ctl.Err();
        return {ctl.Status(), out, err};
    }
    nlohmann::json State() const { return nlohmann::json::parse(Ctl({"state"}).out, nullptr, false); }
    Program& Modem() { return modem_; }

    Directory directory;
    const std::string link;

  private:
    std::vector<std::string> Arguments(const std::string& script, const std::vector<std::string>& options) {
        std::vector<std::string> arguments = {directory.Write("a.modem", script), "--link", link};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return arguments;
    }

    Program modem_;
};

// Waits until `condition` holds.
template <typename Condition>
bool Holds(Condition condition) {
    const auto end = Clock::now() + kBound;
    while (!condition()) {
        if (Clock::now() > end) return false;
        poll(nullptr, 0, 5);
    }
    return true;
}

TEST(Control, OrdersReachTheModem) {
    Running running;
    const Host host(running.link);
    EXPECT_EQ(running.Ctl({"message", "+447700900123", "See", "you"}).status, 0);
    EXPECT_EQ(ReadUntil(host.Fd(), "6\r\n"), "\r\n+CMTI: \"SM\",6\r\n");
    EXPECT_EQ(running.Ctl({"ring", "121"}).status, 0);
    EXPECT_EQ(ReadUntil(host.Fd(), "0\r\n"), "\r\nRING\r\n\r\n+CLIP: \"121\",129,,,,0\r\n");
    EXPECT_EQ(running.State()["calls"][0]["state"], "ringing");
    EXPECT_EQ(running.Ctl({"hangup"}).status, 0);
    EXPECT_EQ(ReadUntil(host.Fd(), "G\r\n"), "\r\nSTOPRING\r\n");
    EXPECT_EQ(running.Ctl({"raw", "+ZEND"}).status, 0);
    EXPECT_EQ(ReadUntil(host.Fd(), "END\r\n"), "\r\n+ZEND\r\n");
    // The shell has taken one layer of quotes away.
    EXPECT_EQ(running.Ctl({"send", "\"\\r\\n!\\x21\\r\\n\""}).status, 0);
    EXPECT_EQ(ReadUntil(host.Fd(), "!!\r\n"), "\r\n!!\r\n");
}

TEST(Control, RefusalsAreExplainedWithTheirOwnStatus) {
    Running running;
    auto done = running.Ctl({"hangup"});
    EXPECT_EQ(done.status, 1);
    EXPECT_EQ(done.err, "modemsim: there is no call that could end\n");
    done = running.Ctl({"rnig", "121"});
    EXPECT_EQ(done.status, 2);
    EXPECT_EQ(done.err, "modemsim: unknown word 'rnig', did you mean 'ring'?\n");
    done = running.Ctl({"storm", "5"});
    EXPECT_EQ(done.status, 2);
    EXPECT_EQ(done.err, "modemsim: unknown word 'storm', did you mean 'fault storm'?\n");
    done = running.Ctl({"sim", "remove"});
    EXPECT_EQ(done.status, 2);
    EXPECT_EQ(done.err, "modemsim: behind 'sim': unknown word 'remove' (known here: pull insert lock)\n");
    EXPECT_EQ(running.Ctl({}).status, 2);
    EXPECT_EQ(running.Ctl({"message", "121", "a\nb"}).status, 2);
    done = running.Ctl({"help"});
    EXPECT_EQ(done.status, 0);
    EXPECT_NE(done.out.find("  fault storm N [TIME]"), std::string::npos);
    Program nobody({"ctl", "--link", running.directory.File("nobody"), "state"});
    EXPECT_EQ(nobody.Status(), 3);
    EXPECT_EQ(nobody.Err(), "modemsim: no modemsim is steered at " + running.directory.File("nobody.ctl") +
                                ": No such file or directory; start one, or name its --link or --control\n");
}

// Root is bound by permissions, too, once it has lost this.
void BeBound() {
    prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE, 0, 0, 0);
}

TEST(Control, ModemOfAnotherUserIsNotTakenForNone) {
    const Running running;
    const std::string socket = running.link + ".ctl";
    ASSERT_EQ(chmod(socket.c_str(), 0), 0);
    const auto done = running.Ctl({"state"}, BeBound);
    EXPECT_EQ(done.status, 5);
    EXPECT_EQ(done.err, "modemsim: no permission to steer " + socket + "; run as its user\n");
}

TEST(Control, StateThatCannotBePrintedIsNoSuccess) {
    const Running running;
    const auto done = running.Ctl({"state"}, FillOutput);
    EXPECT_EQ(done.status, 4);
    EXPECT_EQ(done.err, kFullOutput);
}

TEST(Control, UnpluggedModemsLinkGoesAndComesBack) {
    Running running;
    const Host before(running.link);
    EXPECT_EQ(running.Ctl({"unplug"}).status, 0);
    EXPECT_TRUE(Holds([&] { return !LinkStands(running.link); }));
    EXPECT_TRUE(before.IsHungUp());
    EXPECT_EQ(running.State()["plugged_in"], false);
    EXPECT_EQ(running.Ctl({"replug"}).status, 0);
    ASSERT_TRUE(Holds([&] { return LinkStands(running.link); }));
    EXPECT_EQ(Host(running.link).Ask("AT\r", "OK\r\n"), "\r\nOK\r\n");
    EXPECT_EQ(running.Ctl({"unplug", "50ms"}).status, 0);
    ASSERT_TRUE(Holds([&] { return running.State()["plugged_in"] == true; }));
    ASSERT_TRUE(Holds([&] { return LinkStands(running.link); }));
    EXPECT_EQ(Host(running.link).Ask("AT\r", "OK\r\n"), "\r\nOK\r\n");
}

TEST(Control, EndTakesLinkAndSocketAway) {
    for (const int number : {SIGINT, SIGTERM, SIGHUP, 0}) {
        Running running;
        EXPECT_TRUE(LinkStands(running.link + ".ctl"));
        if (number == 0)
            EXPECT_EQ(running.Ctl({"quit"}).status, 0);
        else
            running.Modem().Signal(number);
        EXPECT_EQ(running.Modem().Status(), 0) << number;
        EXPECT_FALSE(LinkStands(running.link)) << number;
        EXPECT_FALSE(LinkStands(running.link + ".ctl")) << number;
    }
}

TEST(Control, EndTakesTheSocketAwayWhileUnplugged) {
    Running running;
    EXPECT_EQ(running.Ctl({"unplug"}).status, 0);
    running.Modem().Signal(SIGINT);
    EXPECT_EQ(running.Modem().Status(), 0);
    EXPECT_FALSE(LinkStands(running.link));
    EXPECT_FALSE(LinkStands(running.link + ".ctl"));
}

TEST(Control, SocketStandsWhereItIsWantedOrNowhere) {
    Directory other;
    Running placed("use modem\n", {"--control", other.File("steer")});
    EXPECT_FALSE(LinkStands(placed.link + ".ctl"));
    Program ctl({"ctl", "--control", other.File("steer"), "signal", "7"});
    EXPECT_EQ(ctl.Status(), 0);
    Running none("use modem\n", {"--no-control"});
    EXPECT_FALSE(LinkStands(none.link + ".ctl"));
    EXPECT_EQ(none.Ctl({"state"}).status, 3);
}

TEST(Control, SocketOfADeadModemIsReplacedAndNothingElse) {
    Running running;
    running.Modem().Signal(SIGKILL);
    EXPECT_EQ(running.Modem().Status(), 128 + SIGKILL);
    ASSERT_TRUE(LinkStands(running.link + ".ctl"));
    EXPECT_EQ(running.Ctl({"state"}).status, 3);
    const std::string script = running.directory.File("a.modem");
    const std::string socket = running.link + ".ctl";
    {
        Program second({script, "--link", running.directory.File("second"), "--control", socket});
        ASSERT_EQ(second.OutLine(), "ready " + running.directory.File("second") + "\n");
        Program third({script, "--link", running.directory.File("third"), "--control", socket});
        EXPECT_EQ(third.Status(), 2);
        EXPECT_EQ(third.Err(), "modemsim: another modemsim is steered at " + socket +
                                   "; choose another place with --control\n");
        EXPECT_FALSE(LinkStands(running.directory.File("third")));
    }
    const std::string file = running.directory.Write("file", "precious");
    Program fourth({script, "--link", running.directory.File("fourth"), "--control", file});
    EXPECT_EQ(fourth.Status(), 2);
    EXPECT_EQ(fourth.Err(),
              "modemsim: " + file +
                  " exists and is no socket: it is left alone; choose another place with --control\n");
    EXPECT_EQ(Content(file), "precious");
}

TEST(Control, PathThatIsTooLongCostsTheControlAlone) {
    Directory directory;
    const std::string link = directory.File(std::string(100, 'm'));
    Program modem({directory.Write("a.modem", "use modem\n"), "--link", link});
    ASSERT_EQ(modem.OutLine(), "ready " + link + "\n");
    EXPECT_EQ(Host(link).Ask("AT\r", "OK\r\n"), "\r\nOK\r\n");
    modem.Signal(SIGTERM);
    EXPECT_EQ(modem.Status(), 0);
    EXPECT_EQ(modem.Err(), "modemsim: the path of the control socket must have 1 to 107 characters: " + link +
                               ".ctl; this modem cannot be steered\n");
}

// What a program sees that speaks to the socket itself.
TEST(Control, SocketTakesLinesAndGivesJson) {
    Running running;
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, (running.link + ".ctl").c_str(), sizeof address.sun_path - 1);
    ASSERT_EQ(connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    const std::string lines = "signal 5\nnonsense\nring \xFF\nstate\n";
    ASSERT_EQ(write(fd, lines.data(), lines.size()), static_cast<ssize_t>(lines.size()));
    std::vector<nlohmann::json> answers;
    std::string text;
    while (answers.size() < 4) {
        text += ReadUntil(fd, "\n");
        ASSERT_FALSE(text.empty());
        for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n')) {
            answers.push_back(nlohmann::json::parse(text.substr(0, end)));
            text.erase(0, end + 1);
        }
    }
    EXPECT_EQ(answers[0], nlohmann::json({{"ok", true}}));
    EXPECT_EQ(answers[1]["ok"], false);
    EXPECT_EQ(answers[2]["ok"], false);
    EXPECT_EQ(answers[3]["state"]["network"]["signal"], 5);
    // A line without an end is given up, and the modem goes on.
    const std::string endless(100'000, 'x');
    EXPECT_GT(send(fd, endless.data(), endless.size(), MSG_NOSIGNAL), 0);
    EXPECT_EQ(running.Ctl({"signal", "6"}).status, 0);
    close(fd);
    EXPECT_EQ(running.State()["network"]["signal"], 6);
}

}  // namespace
}  // namespace modemsim
