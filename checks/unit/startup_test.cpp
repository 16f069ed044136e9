#include "server/startup.h"

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <string.h>
#include <sys/ipc.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "checks/support/fake_modem.h"
#include "checks/support/fake_platform.h"
#include "checks/support/fake_queue.h"
#include "checks/support/log_capture.h"
#include "port/com.h"
#include "records/state.h"

namespace {

using std::string;
using Writes = std::vector<std::pair<string, string>>;

const Writes kDefaults = {
    {"port_stat", "port_close"},   {"usb_reset", "inactivated"}, {"data_card_mode", ""},
    {"call_cs_status", ""},        {"volte_cs_status", ""},      {"HardResetModemWatchDog", ""},
    {"tsp_modem_start_fail", "0"}, {"AT_Test", "off"},
};
const Writes kPortOpen = {
    {"data_card_mode", "KVX_LTE"}, {"lte_dial_mode", "ndis"}, {"port_stat", "port_open"}};

bool IsNullDevice(int fd) {
    struct stat state;
    return fstat(fd, &state) == 0 && S_ISCHR(state.st_mode) && state.st_rdev == makedev(1, 3);
}

size_t TimesLogged(const string& part) {
    size_t count = 0;
    for (const LogLine& line : LoggedLines())
        count += line.text.find(part) != string::npos;
    return count;
}

class Startup : public testing::Test {
  protected:
    void SetUp() override {
        Platform().Reset();
        Queues().Reset();
        Device().Reset();
        Device().skip_waits = true;
        ClearLog();
        g_iFdCom = -1;
    }
    void TearDown() override {
        if (g_iFdCom >= 0) close(g_iFdCom);
        g_iFdCom = -1;
        Device().Reset();
        ClearPendingRequest();
    }
};

using Init = Startup;
using OpenPort = Startup;
using ServerQueue = Startup;
using ResponseThread = Startup;

// Runs InitServer with the standard streams put back afterwards.
void InitKeepingStreams() {
    int kept[3];
    for (int fd = 0; fd < 3; ++fd)
        kept[fd] = dup(fd);
    InitServer();
    for (int fd = 0; fd < 3; ++fd) {
        dup2(kept[fd], fd);
        close(kept[fd]);
    }
}

}  // namespace

TEST_F(Init, RequestInFlightIsZeroAndIdle) {
    memset(&g_at_msg, 0x55, sizeof g_at_msg);
    InitKeepingStreams();
    MSG_BUF idle = {};
    idle.lMsgType = -1;
    EXPECT_EQ(memcmp(&g_at_msg, &idle, sizeof idle), 0);
}

TEST_F(Init, BannersAreCritical) {
    InitKeepingStreams();
    ASSERT_GE(LoggedLines().size(), 2u);
    EXPECT_EQ(LoggedLines()[0].text, "AT Server Start ");
    EXPECT_EQ(LoggedLines()[1].text, " AT Server initialization...");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(LoggedLines()[static_cast<size_t>(i)].level, 2);
        EXPECT_EQ(LoggedLines()[static_cast<size_t>(i)].module, "at_server");
    }
}

TEST_F(Init, DefaultsAreWrittenInOrder) {
    Platform().config["AT_Test"] = "on";
    InitKeepingStreams();
    EXPECT_EQ(Platform().writes, kDefaults);
}

TEST_F(Init, StandardStreamsAreTheNullDevice) {
    EXPECT_EXIT(
        {
            InitServer();
            for (int fd = 0; fd < 3; ++fd)
                if (!IsNullDevice(fd)) _exit(1 + fd);
            if ((fcntl(0, F_GETFL) & O_ACCMODE) != O_RDONLY) _exit(4);
            if ((fcntl(1, F_GETFL) & O_ACCMODE) != O_WRONLY) _exit(5);
            if ((fcntl(2, F_GETFL) & O_ACCMODE) != O_WRONLY) _exit(6);
            _exit(0);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(Init, StandardStreamsThatWereClosedAreTheNullDeviceToo) {
    EXPECT_EXIT(
        {
            for (int fd = 0; fd < 3; ++fd)
                close(fd);
            InitServer();
            for (int fd = 0; fd < 3; ++fd)
                if (!IsNullDevice(fd)) _exit(1 + fd);
            if ((fcntl(1, F_GETFL) & O_ACCMODE) != O_WRONLY) _exit(5);
            _exit(0);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(Init, WatchdogDirectoryIsNotTouchedWhileTheOptionIsOff) {
    for (const char* option : {"", "off", "ON"}) {
        SetUp();
        Platform().config["WatchDog_Setting_Option"] = option;
        InitKeepingStreams();
        EXPECT_FALSE(LoggedPart("watchdog does not exist")) << option;
    }
}

// Outside a sandbox the directory above it is missing as well.
TEST_F(Init, WatchdogDirectoryThatCannotBeMadeIsLoggedAndStartUpGoesOn) {
    if (access("/etc_rw/config", F_OK) == 0) GTEST_SKIP() << "this machine has /etc_rw/config";
    Platform().config["WatchDog_Setting_Option"] = "on";
    InitKeepingStreams();
    EXPECT_TRUE(Logged("watchdog does not exist,socreate it.\n", "at_server", 6));
    EXPECT_TRUE(Logged("failed to create watchdog dir.\n", "at_server", 3));
    EXPECT_EQ(Platform().writes, kDefaults);
}

TEST_F(OpenPort, FirstAttempt) {
    Device().present = true;
    EXPECT_EQ(OpenModemPort(), 0);
    EXPECT_EQ(Device().openings, 1);
    EXPECT_EQ(Device().waited_ms, 0);
    EXPECT_TRUE(Logged("Open serial port SUCCESE!", "at_server"));
    EXPECT_FALSE(LoggedPart("Modem need enough time"));
    EXPECT_FALSE(LoggedPart("does not keep"));
    EXPECT_EQ(Platform().writes, kPortOpen);
}

TEST_F(OpenPort, StoreThatDoesNotKeepTheKindOfModemIsTold) {
    Device().present = true;
    Platform().fail_writes = true;
    EXPECT_EQ(OpenModemPort(), 0) << "it goes on";
    EXPECT_TRUE(
        Logged("[error]:The configuration store does not keep data_card_mode=KVX_LTE! Answers will be "
               "read wrongly. Can the store be written?",
               "at_server", 3));
    close(g_iFdCom);
    ClearLog();
    Platform().config["data_card_mode"] = "KVX_LTE";
    EXPECT_EQ(OpenModemPort(), 0);
    EXPECT_FALSE(LoggedPart("does not keep")) << "somebody else has put it there";
}

TEST_F(OpenPort, SecondAttemptWaitsForTheModemToGetReady) {
    Device().present = true;
    Device().absent_openings = 1;
    EXPECT_EQ(OpenModemPort(), 0);
    EXPECT_EQ(Device().openings, 2);
    EXPECT_EQ(Device().waited_ms, 500 + 3000);
    EXPECT_TRUE(Logged("[error]:No.0 Open serial port error! ", "at_server"));
    EXPECT_FALSE(LoggedPart("No.1 Open"));
    EXPECT_TRUE(Logged("Modem need enough time to initialize.\n", "at_server"));
    EXPECT_TRUE(Logged("Open serial port SUCCESE!", "at_server"));
    EXPECT_EQ(Platform().writes, kPortOpen);
}

TEST_F(OpenPort, LastAttemptMaySucceed) {
    Device().present = true;
    Device().absent_openings = 100;
    EXPECT_EQ(OpenModemPort(), 0);
    EXPECT_EQ(Device().openings, 101);
    EXPECT_EQ(Device().waited_ms, 50'000 + 3000);
    EXPECT_TRUE(Logged("[error]:No.99 Open serial port error! ", "at_server"));
    EXPECT_FALSE(LoggedPart("No.100 "));
}

TEST_F(OpenPort, ModemThatNeverAppearsEndsAfter101Attempts) {
    EXPECT_EQ(OpenModemPort(), -1);
    EXPECT_EQ(Device().openings, 101);
    EXPECT_EQ(Device().waited_ms, 50'000);
    EXPECT_EQ(TimesLogged("Open serial port error! "), 101u);
    ASSERT_GE(LoggedLines().size(), 3u);
    const size_t last = LoggedLines().size();
    EXPECT_EQ(LoggedLines()[last - 3].text, "[error]:No.100 Open serial port error! ");
    EXPECT_EQ(LoggedLines()[last - 2].text, "May be modem no inserted, exit now......");
    EXPECT_EQ(LoggedLines()[last - 1].text, "Init failure! Reset modem from usb host! ");
    EXPECT_EQ(Platform().writes, (Writes{{"usb_reset", "activated"}}));
}

TEST_F(ServerQueue, IsCreated) {
    const int queue = CreateServerQueue();
    EXPECT_EQ(Queues().flags, IPC_CREAT | 0600) << "nobody else may put requests into it";
    EXPECT_NE(queue, -1);
    EXPECT_EQ(Queues().waiting.count(0x1000), 1u);
    ASSERT_EQ(LoggedLines().size(), 2u);
    EXPECT_EQ(LoggedLines()[0].text, "Creating public message queue.");
    char expected[128];
    snprintf(expected, sizeof expected, "Creating public message queue success! At_Serv_MsgID=0x%0x\n",
             static_cast<unsigned>(queue));
    EXPECT_EQ(LoggedLines()[1].text, expected);
}

TEST_F(ServerQueue, ExistingOneIsUsed) {
    Queues().Put(0x1000, 1, {1, 2, 3});
    EXPECT_NE(CreateServerQueue(), -1);
    EXPECT_EQ(Queues().waiting[0x1000].size(), 1u);
}

TEST_F(ServerQueue, FailureIsLogged) {
    Queues().fail_get = ENOSPC;
    EXPECT_EQ(CreateServerQueue(), -1);
    EXPECT_TRUE(Logged("[error]:Create At_Serv_MsgID queue faild!error code:42499", "at_server", 3));
}

// The thread never ends: it runs in a process of its own.
TEST_F(ResponseThread, IsStarted) {
    EXPECT_EXIT(
        {
            if (StartResponseThread() != 0) _exit(1);
            if (!Logged("Creating AT collection thread success!", "at_server")) _exit(2);
            for (int i = 0; i < 10'000; ++i) {
                if (Logged("AT response thread  is running ...", "at_server", 6)) _exit(0);
                usleep(1'000);
            }
            _exit(3);
        },
        testing::ExitedWithCode(0), "");
}

#ifdef __GLIBC__
TEST_F(ResponseThread, FailureIsLogged) {
    EXPECT_EXIT(
        {
            pthread_attr_t huge;
            pthread_attr_init(&huge);
            pthread_attr_setstacksize(&huge, SIZE_MAX / 4 & ~size_t{0xFFFF});
            if (pthread_setattr_default_np(&huge) != 0) _exit(1);
            if (StartResponseThread() != -1) _exit(2);
            _exit(Logged("[error]:Create resolve_at_response_thread faild!error code:42500", "at_server")
                      ? 0
                      : 3);
        },
        testing::ExitedWithCode(0), "");
}
#endif
