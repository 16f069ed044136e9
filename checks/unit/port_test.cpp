#include "port/com.h"

#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/select.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "checks/support/fake_modem.h"
#include "checks/support/fake_platform.h"
#include "checks/support/log_capture.h"
#include "port/transmit.h"
#include "records/state.h"

namespace {

using std::string;

int g_last_action = -1;  // of tcsetattr

constexpr tcflag_t kSpeedBits = CBAUD;

}  // namespace

// The linker takes it before the C library's own.
extern "C" int tcsetattr(int fd, int action, const termios* settings) {
    g_last_action = action;
    using Function = int (*)(int, int, const termios*);
    static const auto real = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "tcsetattr"));
    return real(fd, action, settings);
}

namespace {

termios Built(const PORT_INFO_T& info) {
    termios settings;
    memset(&settings, 0xA5, sizeof settings);  // nothing of what was there may stay
    PortBuildSettings(info, settings);
    return settings;
}

PORT_INFO_T Info() {
    return {.cReserved0 = '0',
            .ulSpeed = 115200,
            .cDataBits = '8',
            .acReserved9 = {'0', '0'},
            .cFlowControl = '1',
            .cDevice = '0',
            .cParity = '0',
            .cStopBits = '1',
            .acReserved15 = {}};
}

// The two ends of a pseudo-terminal; the port is raw and does not block.
struct Terminal {
    int modem = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    int port = -1;

    Terminal() {
        EXPECT_EQ(grantpt(modem), 0);
        EXPECT_EQ(unlockpt(modem), 0);
        char name[64];
        EXPECT_EQ(ptsname_r(modem, name, sizeof name), 0);
        port = open(name, O_RDWR | O_NOCTTY | O_NONBLOCK);
        EXPECT_GE(port, 0);
    }
    ~Terminal() {
        close(port);
        close(modem);
    }
};

// Reads until nothing has come for a tenth of a second; returns how much came.
size_t Drain(int fd) {
    size_t drained = 0;
    char text[65'536];
    for (;;) {
        pollfd readable = {fd, POLLIN, 0};
        if (poll(&readable, 1, 100) <= 0) return drained;
        const ssize_t length = read(fd, text, sizeof text);
        if (length <= 0) return drained;
        drained += static_cast<size_t>(length);
    }
}

struct Pipe {
    int in = -1;
    int out = -1;
    Pipe() {
        int ends[2];
        EXPECT_EQ(pipe2(ends, O_NONBLOCK), 0);
        out = ends[0];
        in = ends[1];
    }
    ~Pipe() {
        if (in >= 0) close(in);
        if (out >= 0) close(out);
    }
};

int64_t Microseconds() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t{now.tv_sec} * 1'000'000 + now.tv_nsec / 1000;
}

}  // namespace

TEST(PortInfo, Defaults) {
    EXPECT_EQ(g_sPortInfo.cReserved0, '0');
    EXPECT_EQ(g_sPortInfo.ulSpeed, 115200u);
    EXPECT_EQ(g_sPortInfo.cDataBits, '8');
    EXPECT_EQ(string(g_sPortInfo.acReserved9, 2), "00");
    EXPECT_EQ(g_sPortInfo.cFlowControl, '1');
    EXPECT_EQ(g_sPortInfo.cDevice, '0');
    EXPECT_EQ(g_sPortInfo.cParity, '0');
    EXPECT_EQ(g_sPortInfo.cStopBits, '1');
    EXPECT_EQ(string(g_sPortInfo.acReserved15, 5), string(5, '\0'));
}

TEST(PortDeviceName, ThreeLettersHaveADevice) {
    ClearLog();
    EXPECT_STREQ(PortDeviceName('0'), "/dev/ttyUSB0");
    EXPECT_STREQ(PortDeviceName('1'), "/dev/ttyUSB1");
    EXPECT_STREQ(PortDeviceName('2'), "/dev/ttyUSB2");
    EXPECT_TRUE(LoggedLines().empty());
}

TEST(PortDeviceName, OthersAreLogged) {
    for (const char letter : {'3', '/', 'a', ' '}) {
        ClearLog();
        EXPECT_EQ(PortDeviceName(letter), nullptr);
        EXPECT_TRUE(Logged(string("Unknown tty ") + letter + "\n", "com", 3));
    }
}

TEST(PortBuildSettings, DefaultsAreRawWithHardwareFlowControl) {
    ClearLog();
    const termios settings = Built(g_sPortInfo);
    EXPECT_EQ(settings.c_cflag & ~kSpeedBits, tcflag_t{CS8 | CLOCAL | CREAD | CRTSCTS});
    EXPECT_EQ(settings.c_iflag, 0u);
    EXPECT_EQ(settings.c_oflag, 0u);
    EXPECT_EQ(settings.c_lflag, 0u);
    EXPECT_EQ(settings.c_cc[VMIN], 1);
    EXPECT_EQ(settings.c_cc[VTIME], 1);
    EXPECT_EQ(cfgetispeed(&settings), speed_t{B115200});
    EXPECT_EQ(cfgetospeed(&settings), speed_t{B115200});
    EXPECT_TRUE(LoggedLines().empty());
}

TEST(PortBuildSettings, EverySpeed) {
    const struct {
        uint32_t speed;
        speed_t constant;
    } kSpeeds[] = {{2400, B2400},   {4800, B4800},   {9600, B9600},     {19200, B19200},
                   {38400, B38400}, {57600, B57600}, {115200, B115200}, {230400, B9600},
                   {0, B9600},      {1200, B9600},   {115201, B9600},   {UINT32_MAX, B9600}};
    for (const auto& [speed, constant] : kSpeeds) {
        PORT_INFO_T info = Info();
        info.ulSpeed = speed;
        const termios settings = Built(info);
        EXPECT_EQ(cfgetispeed(&settings), constant) << speed;
        EXPECT_EQ(cfgetospeed(&settings), constant) << speed;
    }
}

TEST(PortBuildSettings, FlowControl) {
    PORT_INFO_T info = Info();
    info.cFlowControl = '0';
    EXPECT_EQ(Built(info).c_cflag & CRTSCTS, 0u);
    EXPECT_EQ(Built(info).c_iflag, 0u);
    info.cFlowControl = '2';
    EXPECT_EQ(Built(info).c_cflag & CRTSCTS, 0u);
    EXPECT_EQ(Built(info).c_iflag, tcflag_t{IXON | IXOFF | IXANY});
}

TEST(PortBuildSettings, UnknownFlowControlIsLoggedAndChangesNothing) {
    for (const char letter : {'3', 'x', '/'}) {
        ClearLog();
        PORT_INFO_T info = Info();
        info.cFlowControl = letter;
        EXPECT_EQ(Built(info).c_cflag & CRTSCTS, 0u);
        EXPECT_EQ(Built(info).c_iflag, 0u);
        EXPECT_TRUE(Logged(string("Unknown fctl ") + letter + "\n", "com", 3));
    }
}

TEST(PortBuildSettings, EveryDataBitsLetterMeansEight) {
    ClearLog();
    for (const char letter : {'4', '5', '6', '7', '8', '9', 'x'}) {
        PORT_INFO_T info = Info();
        info.cDataBits = letter;
        EXPECT_EQ(Built(info).c_cflag & CSIZE, tcflag_t{CS8}) << letter;
    }
    EXPECT_TRUE(LoggedLines().empty());
}

TEST(PortBuildSettings, Parity) {
    PORT_INFO_T info = Info();
    EXPECT_EQ(Built(info).c_cflag & (PARENB | PARODD), 0u);
    info.cParity = '1';
    EXPECT_EQ(Built(info).c_cflag & (PARENB | PARODD), tcflag_t{PARENB});
    info.cParity = '2';
    EXPECT_EQ(Built(info).c_cflag & (PARENB | PARODD), tcflag_t{PARENB | PARODD});
    ClearLog();
    info.cParity = '3';
    EXPECT_EQ(Built(info).c_cflag & (PARENB | PARODD), 0u);
    EXPECT_TRUE(Logged("Unknown parity 3\n", "com", 3));
}

TEST(PortBuildSettings, StopBits) {
    for (const char letter : {'0', '1', '3', 'x'}) {
        PORT_INFO_T info = Info();
        info.cStopBits = letter;
        EXPECT_EQ(Built(info).c_cflag & CSTOPB, 0u) << letter;
    }
    PORT_INFO_T info = Info();
    info.cStopBits = '2';
    EXPECT_EQ(Built(info).c_cflag & CSTOPB, tcflag_t{CSTOPB});
}

TEST(PortApplySettings, ReplacesWhatTheDeviceHadAndThrowsAwayInput) {
    Terminal terminal;
    ASSERT_EQ(write(terminal.modem, "old\n", 4), 4);
    EXPECT_EQ(PortApplySettings(terminal.port, g_sPortInfo), 0);
    termios now;
    ASSERT_EQ(tcgetattr(terminal.port, &now), 0);
    EXPECT_EQ(now.c_lflag, 0u);
    EXPECT_EQ(now.c_oflag, 0u);
    EXPECT_EQ(now.c_iflag, 0u);
    EXPECT_EQ(cfgetospeed(&now), speed_t{B115200});
    char text[16];
    EXPECT_EQ(PortRecv(terminal.port, text, sizeof text), 0);
}

TEST(PortApplySettings, DoesNotWaitForOutputThatTheModemDoesNotTake) {
    Terminal terminal;
    g_last_action = -1;
    EXPECT_EQ(PortApplySettings(terminal.port, g_sPortInfo), 0);
    EXPECT_EQ(g_last_action, TCSANOW);
}

TEST(PortApplySettings, ResultIsThatOfTheDevice) {
    Pipe pipe;
    EXPECT_EQ(PortApplySettings(pipe.in, g_sPortInfo), -1);
    EXPECT_EQ(PortApplySettings(-1, g_sPortInfo), -1);
}

TEST(PortInit, DeviceThatCannotBeOpened) {
    Device().Reset();
    g_iFdCom = 99;
    EXPECT_EQ(PortInit(), -1);
    EXPECT_LT(g_iFdCom, 0);
    g_iFdCom = -1;
}

// What is opened refuses every setting.
TEST(PortInit, RefusedSettingsAreNoFailure) {
    Device().Reset();
    Device().present = true;
    g_sPortInfo.cDevice = '2';
    EXPECT_EQ(PortInit(), 0);
    g_sPortInfo.cDevice = '0';
    EXPECT_EQ(Device().openings, 1);
    EXPECT_EQ(Device().flags, O_RDWR | O_NOCTTY);
    EXPECT_GE(g_iFdCom, 0);
    PortClose(g_iFdCom);
    EXPECT_EQ(fcntl(g_iFdCom, F_GETFD), -1);
    g_iFdCom = -1;
    Device().Reset();
}

TEST(PortSend, WholeBuffer) {
    Pipe pipe;
    EXPECT_EQ(PortSend(pipe.in, "AT\r", 3), 3);
    char text[8] = "";
    EXPECT_EQ(read(pipe.out, text, sizeof text), 3);
    EXPECT_STREQ(text, "AT\r");
    EXPECT_EQ(PortSend(pipe.in, "", 0), 0);
}

TEST(PortSend, ShortWriteFails) {
    Pipe pipe;
    const string text(2'000'000, 'x');
    EXPECT_EQ(PortSend(pipe.in, text.data(), static_cast<unsigned>(text.size())), -1);
}

TEST(PortSend, FullDeviceAndClosedDescriptorFail) {
    Pipe pipe;
    const string text(2'000'000, 'x');
    PortSend(pipe.in, text.data(), static_cast<unsigned>(text.size()));
    EXPECT_EQ(PortSend(pipe.in, "AT\r", 3), -1);
    EXPECT_EQ(PortSend(-1, "AT\r", 3), -1);
}

// What the other side has already taken over stays, the rest of what the device accepted goes.
TEST(PortSend, ShortWriteThrowsAwayWhatTheDeviceHadTaken) {
    const string text(1'000'000, 'x');
    Terminal untouched;
    ASSERT_EQ(PortApplySettings(untouched.port, g_sPortInfo), 0);
    ASSERT_GT(write(untouched.port, text.data(), text.size()), 8'192);
    const size_t accepted = Drain(untouched.modem);

    Terminal terminal;
    ASSERT_EQ(PortApplySettings(terminal.port, g_sPortInfo), 0);
    EXPECT_EQ(PortSend(terminal.port, text.data(), static_cast<unsigned>(text.size())), -1);
    EXPECT_LT(Drain(terminal.modem), accepted / 2);
    EXPECT_EQ(PortSend(terminal.port, "AT\r", 3), 3);
    EXPECT_EQ(Drain(terminal.modem), 3u);
}

TEST(PortRecv, NothingWaiting) {
    Pipe pipe;
    char text[8];
    const int64_t begin = Microseconds();
    EXPECT_EQ(PortRecv(pipe.out, text, sizeof text), 0);
    const int64_t waited = Microseconds() - begin;
    EXPECT_GE(waited, 200);
    EXPECT_LT(waited, 100'000);
}

TEST(PortRecv, WhatIsWaitingUpToTheSize) {
    Pipe pipe;
    ASSERT_EQ(write(pipe.in, "abcdef", 6), 6);
    char text[8] = "";
    EXPECT_EQ(PortRecv(pipe.out, text, 4, 115200), 4);
    EXPECT_STREQ(text, "abcd");
    EXPECT_EQ(PortRecv(pipe.out, text, 4), 2);
}

TEST(PortRecv, TakesAWholeReadAtOnce) {
    Pipe pipe;
    ASSERT_GE(fcntl(pipe.in, F_SETPIPE_SZ, 1 << 18), 1 << 18);
    const string sent(102'401, 'x');
    ASSERT_EQ(write(pipe.in, sent.data(), sent.size()), 102'401);
    string received(102'400, '\0');
    EXPECT_EQ(PortRecv(pipe.out, received.data(), 102'400), 102'400);
    EXPECT_EQ(received, sent.substr(1));
    EXPECT_EQ(PortRecv(pipe.out, received.data(), 102'400), 1);
}

TEST(PortRecv, ClosedOtherEndGivesZero) {
    Pipe pipe;
    close(pipe.in);
    pipe.in = -1;
    char text[8];
    EXPECT_EQ(PortRecv(pipe.out, text, sizeof text), 0);
}

TEST(PortRecv, ClosedDescriptorGivesTheErrorOfRead) {
    char text[8];
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    close(ends[1]);
    for (const int fd : {ends[0], -1, INT32_MIN}) {
        errno = 0;
        EXPECT_EQ(PortRecv(fd, text, sizeof text), -1);
        EXPECT_EQ(errno, EBADF);
    }
}

TEST(PortRecv, DescriptorThatSelectCannotTakeGoesStraightToRead) {
    char text[8] = "";
    for (const int fd : {FD_SETSIZE, FD_SETSIZE + 1, 1'000'000, INT32_MAX}) {
        errno = 0;
        EXPECT_EQ(PortRecv(fd, text, sizeof text), -1);
        EXPECT_EQ(errno, EBADF);
    }
    rlimit limit;
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    const rlimit before = limit;
    limit.rlim_cur = std::max<rlim_t>(limit.rlim_cur, 2048);
    if (limit.rlim_cur > limit.rlim_max || setrlimit(RLIMIT_NOFILE, &limit) != 0)
        GTEST_SKIP() << "no descriptor above " << FD_SETSIZE << " allowed here";
    Pipe pipe;
    const int high = fcntl(pipe.out, F_DUPFD, FD_SETSIZE + 100);
    ASSERT_GE(high, FD_SETSIZE);
    ASSERT_EQ(write(pipe.in, "abc", 3), 3);
    EXPECT_EQ(PortRecv(high, text, sizeof text), 3);
    EXPECT_STREQ(text, "abc");
    PortClose(high);
    setrlimit(RLIMIT_NOFILE, &before);
}

class SendLine : public testing::Test {
  protected:
    void SetUp() override {
        Platform().Reset();
        ClearLog();
        g_at_statistics.send = 0;
        AtStatistics.written = 0;
        g_at_send_time = 1;
        g_at_processing = 5;
    }
    void TearDown() override {
        g_at_statistics.send = 0;
        AtStatistics.written = 0;
        g_at_processing = 0;
    }
    FakeModem modem_;
};

TEST_F(SendLine, NullIsRefused) {
    EXPECT_EQ(send_at_cmd(nullptr), 1);
    EXPECT_TRUE(Logged("send AT buf para is NULL!", "at_server"));
    EXPECT_EQ(modem_.Heard(), "");
}

TEST_F(SendLine, LineIsWrittenAsItStands) {
    EXPECT_EQ(send_at_cmd("AT+CSQ\r"), 0);
    EXPECT_EQ(modem_.Heard(), "AT+CSQ\r");
    EXPECT_TRUE(Logged("Send AT command SUCCESS!", "at_server", 7));
    EXPECT_EQ(g_at_statistics.send, 0u);
}

TEST_F(SendLine, FailedWriteIsLogged) {
    modem_.Unplug();
    EXPECT_EQ(send_at_cmd("AT+CSQ\r"), 1);
    EXPECT_TRUE(Logged("[error]:Send AT command Error!error code:42505", "at_server", 3));
    EXPECT_EQ(g_at_processing, 5u);
}

TEST_F(SendLine, SuccessIsCountedAndTimed) {
    send_resolve_at("AT\r");
    EXPECT_EQ(modem_.Heard(), "AT\r");
    EXPECT_EQ(g_at_statistics.send, 1u);
    EXPECT_NE(g_at_send_time, 1u);
    EXPECT_TRUE(Logged("Send AT Command SUCCESS! Waiting for AT response.", "at_server", 6));
    EXPECT_EQ(g_at_processing, 5u);
    EXPECT_TRUE(Platform().writes.empty());
}

TEST_F(SendLine, WatchdogCounterMovesOnlyWhileItIsOn) {
    for (const char* option : {"", "off", "On", "on "}) {
        Platform().config["WatchDog_Setting_Option"] = option;
        send_resolve_at("AT\r");
        EXPECT_EQ(AtStatistics.written, 0u) << option;
    }
    Platform().config["WatchDog_Setting_Option"] = "on";
    send_resolve_at("AT\r");
    EXPECT_EQ(AtStatistics.written, 1u);
    modem_.Unplug();
    send_resolve_at("AT\r");
    EXPECT_EQ(AtStatistics.written, 1u);
}

TEST_F(SendLine, FailureClosesThePortAndAsksForAReset) {
    modem_.Unplug();
    g_at_msg.lMsgType = 9;
    send_resolve_at("AT\r");
    EXPECT_EQ(g_at_statistics.send, 0u);
    EXPECT_EQ(g_at_send_time, 1u);
    EXPECT_EQ(g_at_processing, 0u);
    EXPECT_EQ(g_at_msg.lMsgType, 9);
    EXPECT_EQ(Platform().writes,
              (decltype(Platform().writes){{"port_stat", "port_close"}, {"usb_reset", "activated"}}));
    EXPECT_TRUE(Logged("[error]:Send Error,error code : 42505\t (---make sure the serial port is OK!!!)\n ",
                       "at_server"));
    EXPECT_TRUE(Logged("Postponed failure! Reset modem from usb host! ", "at_server"));
    ClearPendingRequest();
}
