// A session of the real daemon with a modem goes through the recorder. What it recorded is then played to
// other daemons, which must send their modules the same messages.

#include <gtest/gtest.h>

#include <sstream>

#include "checks/dialogue/conversation.h"
#include "checks/modemsim/program.h"
#include "tools/modemsim/recording.h"

namespace {

using modemsim::Content;
using modemsim::Program;

constexpr char kPort[] = "/dev/ttyUSB1";

// Answers and reports of every kind that carries something private, in pieces that cut it.
constexpr char kModem[] = R"(
pieces 23 gap 3ms
on AT+CSQ
    | +CSQ: 21,99
    | OK
on AT+CIMI
    | 001010123456789
    | OK
on AT+CGSN
    | 001015012345671
    | OK
on AT+CREG?
    | +CREG: 2,1,"1A2B","00C3D4E5"
    | OK
on AT+CMGR=1
    | +CMGR: 0,,50
    | 0791447700090000040C9144770009103200006211028003510023C7F79B0C6ABFE5EEB4FB1C0251E5E1B41BC42E87EDE539284C07E574B09A0B
    | OK
on AT+CMGR=*
    | +CMS ERROR: 321
on AT+CPBR=1,9
    | +CPBR: 1,"+447700900123",145,"Anna Example"
    | +CPBR: 5,"07700900789",129,"Depot, Leeds"
    | OK
on AT+CPIN="12345678"
    wait 50ms
    | OK
on AT+CMGS=*
    prompt
    wait 100ms
    | +CMGS: 17
    | OK
on AT+CREG=2
    | OK
report 50ms after AT+CREG=2
    | +CREG: 2
    wait 50ms
    | +CREG: 1,"1A2C","00C3D4F7"
on AT+CLIP=1
    | OK
report 50ms after AT+CLIP=1
    | RING
    wait 20ms
    | +CLIP: "+447700900123",145,,,,0
    wait 50ms
    | STOPRING
on ATD*
    | OK
report 100ms after ATD*
    | RINGBACK
on AT+CHUP
    | OK
report 50ms after AT+CHUP
    | HANGUP: 16
on AT+CUSD=*
    | OK
report 50ms after AT+CUSD=*
    | +CUSD: 0,"Your balance is 12.34. Call 07700900123.",15
on AT+ZGACT=*
    | OK
report 50ms after AT+ZGACT=*
    | +ZGIPDNS: 1,1,"IP","10.64.12.34","10.64.12.33","192.0.2.53","198.51.100.53"
    | +ZCONSTAT: 1
)";

// What must not be found in a redacted recording, nor in what a daemon makes of it.
constexpr const char* kPrivate[] = {
    "001010123456789", "001015012345671", "00C3D4",  "447700900123", "07700900789", "44770009", "Anna",
    "Example",         "Leeds",           "balance", "10.64.12.3",   "192.0.2.53",  "12345678", "E8329BFD",
    "C7F79B0C",
};

// What modules ask in the session, and everything that they are sent and find in files, in its order.
class Session : Router {
  public:
    std::string Run() {
        LogCollector log;
        Daemon daemon;
        EXPECT_TRUE(log.WaitFor("AT response thread  is running ...", 20));
        Ask(0x0604, kExec);                                      // +CSQ
        Ask(0x0111, kExec);                                      // +CIMI
        Ask(0x0603, kExec);                                      // +CGSN
        Ask(0x052D, kRead);                                      // +CREG?
        Ask(0x0301, kSet, Text("12345678", 32) + Text("", 32));  // +CPIN="12345678"
        Ask(0x0107, kSet, I32({1}));                             // +CMGR=1
        Ask(0x0107, kSet, I32({42}));                            // a message that is not there
        Ask(0x0202, kSet, I32({1, 9}));                          // +CPBR=1,9
        all_ += ShowFile("/etc_rw/config/Phonebak") + "\n";
        const std::string message = "0011000C914477000910320000AA0BE8329BFD06DDDF723619";
        Ask(0x0108, kSet, I32({18}) + Text(message, 500));  // +CMGS
        Ask(0x052D, kSet, I32({2}));                        // +CREG=2, and the cell changes
        Hear(sim, 2);
        Ask(0x0513, kSet, I32({1}));  // +CLIP=1, and somebody calls
        Hear(call, 3);
        Ask(0x0401, kExec, "07700900123");  // dial
        Hear(call, 1);
        Ask(0x0403, kExec);  // +CHUP
        Hear(call, 1);
        Ask(0x0532, kSet, I32({1}) + Text("\"*100#\"", 36) + I32({15}));  // +CUSD
        Hear(ussd, 1);
        all_ += ShowFile("/etc/cusd") + "\n";
        Ask(0x0623, kSet, I32({1, 1}));  // +ZGACT, and addresses come
        Hear(data, 2);
        EXPECT_EQ(Leftovers(), "");
        return all_;
    }

  private:
    void Ask(uint16_t command, uint8_t type, const std::string& record = {}) {
        other.Ask(command, type, record);
        Hear(other, 1);
    }
    void Hear(const Module& module, int count) {
        while (count-- > 0)
            all_ += Next(module, 20) + "\n";
    }

    std::string all_;
};

// Messages with every letter and digit of their bytes made alike: fields, lengths and the rest stay.
std::string Shape(const std::string& messages) {
    std::istringstream lines(messages);
    std::string shape;
    for (std::string line; std::getline(lines, line); shape += line + "\n") {
        const size_t guard = line.find("guard ");
        const size_t end = line.rfind(" and ");
        for (size_t at = guard == std::string::npos ? 0 : line.find(": ", guard); at < end; ++at)
            if (isalnum(static_cast<unsigned char>(line[at])) != 0) line[at] = '0';
    }
    return shape;
}

void ExpectNothingPrivate(const std::string& text) {
    for (const char* secret : kPrivate)
        EXPECT_EQ(text.find(secret), std::string::npos) << secret;
}

class Recordings : public testing::Test {
  protected:
    // Everything starts with a session with the modem itself.
    static void SetUpTestSuite() {
        directory_ = new modemsim::Directory;
        const std::string device = directory_->File("modem");
        Program modem({directory_->Write("a.modem", kModem), "--link", device});
        ASSERT_EQ(modem.OutLine(), "ready " + device + "\n");
        Program recorder({"record", "--device", device, "--link", kPort, File()});
        ASSERT_EQ(recorder.OutLine(), "ready /dev/ttyUSB1\n");
        *messages_ = Session().Run();
        recorder.Signal(SIGINT);
        ASSERT_EQ(recorder.Status(), 0);
    }
    static void TearDownTestSuite() { delete directory_; }

    static std::string File() { return directory_->File("session.rec"); }
    static const std::string& Messages() { return *messages_; }

    // The same session with a modem that a recording plays.
    static std::string Replayed(const std::string& file, const std::string& way) {
        Program replay({"replay", file, way, "--patience", "20"});
        EXPECT_EQ(replay.OutLine(), "ready /dev/ttyUSB1\n");
        std::string messages = Session().Run();
        EXPECT_EQ(replay.Status(), 0);
        EXPECT_TRUE(replay.Out().ends_with(": lines that came: 16 of 16, deviations: 0\n"));
        EXPECT_EQ(replay.Err(), "");
        return messages;
    }

    static modemsim::Directory* directory_;
    static std::string* messages_;
};

modemsim::Directory* Recordings::directory_ = nullptr;
std::string* Recordings::messages_ = new std::string;

TEST_F(Recordings, GiveTheSameMessagesAgain) {
    for (const char* part : {"id 0111", "001010123456789", "C7F79B0C", "Anna Example", "RINGBACK",
                             "HANGUP: 16", "Your balance", "198.51.100.53"})
        EXPECT_NE(Messages().find(part), std::string::npos) << part;
    EXPECT_EQ(Replayed(File(), "--speed=1"), Messages());
    EXPECT_EQ(Replayed(File(), "--fast"), Messages());
}

TEST_F(Recordings, GiveMessagesOfTheSameShapeWhenTheyAreRedacted) {
    const std::string redacted = directory_->File("redacted.rec");
    Program redact({"redact", File(), redacted});
    ASSERT_EQ(redact.Status(), 0);
    ExpectNothingPrivate(Content(redacted));
    const std::string messages = Replayed(redacted, "--fast");
    EXPECT_EQ(Shape(messages), Shape(Messages()));
    ExpectNothingPrivate(messages);
}

// The one that the documentation shows was made in this way.
TEST_F(Recordings, ShippedOneIsSuchASession) {
    const std::string shipped = RECORDINGS "/example.rec";
    ExpectNothingPrivate(Content(shipped));
    EXPECT_EQ(Shape(Replayed(shipped, "--fast")), Shape(Messages()));
}

}  // namespace
