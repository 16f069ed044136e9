#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>

#include "checks/dialogue/target.h"
#include "checks/dialogue/world.h"
#include "platform/platform.h"

// What the daemon does before it takes its first request.

namespace {

std::string Config(const char* key) {
    const char* value = cfg_get(key);
    return value != nullptr ? value : "(missing)";
}

TEST(Startup, WritesItsDefaultsAndThenWhatItFound) {
    cfg_set("AT_Test", "on");
    cfg_set("usb_reset", "activated");
    World world(PlainAnswer);
    EXPECT_EQ(Config("AT_Test"), "off");
    EXPECT_EQ(Config("usb_reset"), "inactivated");
    EXPECT_EQ(Config("call_cs_status"), "");
    EXPECT_EQ(Config("volte_cs_status"), "");
    EXPECT_EQ(Config("HardResetModemWatchDog"), "");
    EXPECT_EQ(Config("tsp_modem_start_fail"), "0");
    EXPECT_EQ(Config("data_card_mode"), "KVX_LTE");
    EXPECT_EQ(Config("lte_dial_mode"), "ndis");
    EXPECT_EQ(Config("port_stat"), "port_open");
}

TEST(Startup, LogsItsStepsInOrder) {
    World world(PlainAnswer);
    // The response thread logs on its own.
    static constexpr const char* kSteps[] = {
        "AT Server Start ",
        " AT Server initialization...",
        "Open serial port SUCCESE!",
        "Creating public message queue.",
        "Creating public message queue success! At_Serv_MsgID=0x",
        "Creating AT collection thread success!",
        "Server initialization completed.",
        "AT Server is running.",
        "AT Command statistics:[send/received/report/lost/-msgNum-] (0/0/0/0/0)\n",
        "Resolve AT OK!....time used (",
        "Listening message queue...",
    };
    ASSERT_TRUE(world.log.WaitFor("Listening message queue..."));
    size_t step = 0;
    for (const auto& line : world.log.Lines())
        if (step < std::size(kSteps) && line.text.rfind(kSteps[step], 0) == 0 && line.module == "at_server")
            ++step;
    EXPECT_EQ(step, std::size(kSteps)) << "missing: " << kSteps[step < std::size(kSteps) ? step : 0];
    EXPECT_EQ(world.log.Lines().front().level, 2);
}

// The queue is there a second before anything answers.
TEST(Startup, PausesBeforeTheResponseThread) {
    World world(PlainAnswer);
    ASSERT_TRUE(world.log.WaitFor("Creating AT collection thread success!"));
    std::chrono::steady_clock::time_point queue{};
    std::chrono::steady_clock::time_point thread{};
    for (const auto& line : world.log.Lines()) {
        if (line.text.rfind("Creating public message queue success!", 0) == 0) queue = line.at;
        if (line.text == "Creating AT collection thread success!") thread = line.at;
    }
    // The collector may have been late for the first of them.
    EXPECT_GT(std::chrono::duration<double>(thread - queue).count(), 0.5);
}

TEST(Startup, SwitchesThePortToRawWithHardwareFlowControl) {
    World world(PlainAnswer);
    termios settings{};
    const int port = open("/dev/ttyUSB1", O_RDWR | O_NOCTTY);
    ASSERT_GE(port, 0);
    ASSERT_EQ(tcgetattr(port, &settings), 0);
    close(port);
    EXPECT_EQ(cfgetospeed(&settings), static_cast<speed_t>(B115200));
    EXPECT_TRUE(settings.c_cflag & CRTSCTS);
    EXPECT_TRUE(settings.c_cflag & CLOCAL);
    EXPECT_FALSE(settings.c_lflag & (ICANON | ECHO));
}

TEST(Startup, MakesTheWatchDogDirectoryWhenTheOptionIsOn) {
    cfg_set("WatchDog_Setting_Option", "on");
    {
        World world(PlainAnswer);
        struct stat made {};
        EXPECT_EQ(stat("/etc_rw/config/WatchDog", &made), 0);
        EXPECT_TRUE(S_ISDIR(made.st_mode));
        const mode_t mask = umask(0);
        umask(mask);
        EXPECT_EQ(made.st_mode & 0777, 0777 & ~mask);
        EXPECT_EQ(world.log.Count("watchdog does not exist,socreate it."), 1);
    }
    {
        World world(PlainAnswer);
        EXPECT_EQ(world.log.Count("watchdog does not exist,socreate it."), 0);
    }
    cfg_set("WatchDog_Setting_Option", "");
    rmdir("/etc_rw/config/WatchDog");
}

TEST(Startup, WaitsForAModemThatComesLateAndGivesItTime) {
    LogCollector log;
    Daemon daemon;
    ASSERT_TRUE(log.WaitFor("[error]:No.0 Open serial port error! "));
    EXPECT_EQ(ServerQueue(), -1);
    Modem modem(PlainAnswer);
    ASSERT_TRUE(log.WaitFor("Modem need enough time to initialize.\n"));
    EXPECT_EQ(ServerQueue(), -1) << "the queue comes after the pause";
    ASSERT_TRUE(log.WaitFor("AT response thread  is running ...", 10));
    Module module(0x1234);
    EXPECT_EQ(module.Exchange(0x0604, AT_CMD_TYPE_EXEC).I32(0), 20);
}

TEST(Startup, QueueThatBelongsToOthersEndsTheDaemon) {
    const int taken = msgget(AT_MODULE_SERVER, IPC_CREAT | IPC_EXCL | 0);
    ASSERT_GE(taken, 0);
    if (msgget(AT_MODULE_SERVER, 0600) >= 0) {
        msgctl(taken, IPC_RMID, nullptr);
        GTEST_SKIP() << "this user may use every queue";
    }
    LogCollector log;
    Modem modem(PlainAnswer);
    {
        Daemon daemon;
        EXPECT_EQ(daemon.WaitForExit(10), 255);
    }
    EXPECT_TRUE(log.WaitFor("[error]:Create At_Serv_MsgID queue faild!error code:42499"));
    EXPECT_TRUE(log.WaitFor("create message  queue error!"));
    msgctl(taken, IPC_RMID, nullptr);
}

TEST(Startup, ThreadThatFindsNoRoomEndsTheDaemon) {
    // A thread's stack is as large as the limit allows the first one to grow.
    if (TargetIsEmulated() || getenv("HEAP_COUNTER") == nullptr)
        GTEST_SKIP() << "sanitizers and emulators have a layout of their own";
    rlimit usual{};
    ASSERT_EQ(getrlimit(RLIMIT_STACK, &usual), 0);
    const rlimit huge{rlim_t{1} << 47, usual.rlim_max};
    if (setrlimit(RLIMIT_STACK, &huge) != 0) GTEST_SKIP() << "the limit cannot be raised here";
    LogCollector log;
    Modem modem(PlainAnswer);
    Daemon daemon;
    ASSERT_EQ(setrlimit(RLIMIT_STACK, &usual), 0);
    EXPECT_EQ(daemon.WaitForExit(10), 255);
    EXPECT_TRUE(log.WaitFor("[error]:Create resolve_at_response_thread faild!error code:42500"));
    EXPECT_TRUE(log.WaitFor("create at collect thread error!"));
}

// A suite of its own, because it takes the 50 seconds that it is about.
TEST(AbsentModem, EndsTheDaemonAfter101Attempts) {
    LogCollector log;
    Daemon daemon;
    EXPECT_EQ(daemon.WaitForExit(90), 255);
    EXPECT_EQ(log.Count("Open serial port error! "), 101);
    EXPECT_EQ(log.Count("[error]:No.0 Open serial port error! "), 1);
    EXPECT_EQ(log.Count("[error]:No.100 Open serial port error! "), 1);
    EXPECT_EQ(log.Count("May be modem no inserted, exit now......"), 1);
    EXPECT_EQ(log.Count("Init failure! Reset modem from usb host! "), 1);
    EXPECT_EQ(log.Count("Open serial port failed!"), 1);
    EXPECT_EQ(Config("usb_reset"), "activated");
    EXPECT_EQ(Config("port_stat"), "port_close");
    EXPECT_EQ(ServerQueue(), -1);
}

}  // namespace
