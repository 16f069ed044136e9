#include "server/watchdog.h"

#include <gtest/gtest.h>
#include <syslog.h>

#include <set>

#include "checks/support/fake_platform.h"
#include "checks/support/fake_shell.h"
#include "checks/support/log_capture.h"
#include "records/state.h"

namespace {

using Writes = std::vector<std::pair<std::string, std::string>>;

class Watchdog : public testing::Test {
  protected:
    void SetUp() override {
        Platform().Reset();
        Platform().config["WatchDog_Setting_Option"] = "on";
        Shell().Reset();
        ClearLog();
        no_at_count = 0;
        AtStatistics.read = 0;
        AtStatistics.written = 0;
    }
    void Period() { EXPECT_EQ(DetectAtTimer(nullptr), 0); }
};

TEST_F(Watchdog, ThreeSilentPeriodsAndOneWithDataDoNotTrigger) {
    for (int i = 0; i < 3; i++)
        Period();
    EXPECT_EQ(no_at_count, 3);
    AtStatistics.read = 1;
    Period();
    EXPECT_EQ(no_at_count, 0);
    EXPECT_EQ(AtStatistics.read, 0U);
    EXPECT_TRUE(Logged("at-server check modem is normal !!!\n", "at_server"));
    for (int i = 0; i < 3; i++)
        Period();
    EXPECT_TRUE(Shell().commands.empty());
    EXPECT_TRUE(Platform().writes.empty());
}

TEST_F(Watchdog, FourSilentPeriodsTriggerAndAFifthTriggersAgain) {
    Platform().config["at_abnormal_reboot_count"] = "7";
    for (int i = 0; i < 4; i++)
        Period();
    EXPECT_EQ(Shell().commands, std::vector<std::string>{"touch /etc_rw/config/WatchDog/at_abnormal7.xml"});
    EXPECT_EQ(Platform().writes,
              (Writes{{"at_abnormal_reboot_count", "8"}, {"HardResetModemWatchDog", "start"}}));
    EXPECT_TRUE(Logged("no_at_count=4!\n", "at_server"));
    EXPECT_TRUE(Logged("at-server check modem is abnormal,reset modem!!!\n", "at_server"));
    Period();
    EXPECT_EQ(no_at_count, 5);
    ASSERT_EQ(Shell().commands.size(), 2U);
    EXPECT_EQ(Shell().commands[1], "touch /etc_rw/config/WatchDog/at_abnormal8.xml");
    EXPECT_EQ(Platform().Get("at_abnormal_reboot_count"), "9");
}

TEST_F(Watchdog, MissingRebootCountIsZero) {
    for (int i = 0; i < 4; i++)
        Period();
    EXPECT_EQ(Shell().commands, std::vector<std::string>{"touch /etc_rw/config/WatchDog/at_abnormal0.xml"});
    EXPECT_EQ(Platform().Get("at_abnormal_reboot_count"), "1");
    EXPECT_TRUE(Logged("at_abnormal_reboot_count=,num=0!\n", "at_server", LOG_INFO));
}

TEST_F(Watchdog, DataAfterATriggerEndsTheRepeats) {
    for (int i = 0; i < 4; i++)
        Period();
    AtStatistics.read = 3;
    Period();
    Period();
    EXPECT_EQ(no_at_count, 1);
    EXPECT_EQ(Shell().commands.size(), 1U);
}

TEST_F(Watchdog, ActiveCallNeverTriggersHoweverLong) {
    Platform().config["call_cs_status"] = "call_active";
    for (int i = 0; i < 50; i++)
        Period();
    EXPECT_EQ(no_at_count, 0);
    EXPECT_EQ(AtStatistics.read, 50U);
    EXPECT_TRUE(Shell().commands.empty());
    EXPECT_TRUE(Platform().writes.empty());
}

TEST_F(Watchdog, ModemUpdateNeverTriggersHoweverLong) {
    Platform().config["led_modem_updating"] = "1";
    for (int i = 0; i < 50; i++)
        Period();
    EXPECT_EQ(no_at_count, 0);
    EXPECT_TRUE(Shell().commands.empty());
}

TEST_F(Watchdog, OtherCallAndUpdateStatesAreNoExemption) {
    Platform().config["call_cs_status"] = "call_idle";
    Platform().config["led_modem_updating"] = "0";
    for (int i = 0; i < 4; i++)
        Period();
    EXPECT_EQ(Shell().commands.size(), 1U);
}

TEST_F(Watchdog, ExemptPeriodLeavesItsCountForTheNextOne) {
    Platform().config["call_cs_status"] = "call_active";
    Period();
    Platform().config["call_cs_status"] = "call_idle";
    Period();
    EXPECT_EQ(no_at_count, 0);
    Period();
    EXPECT_EQ(no_at_count, 1);
}

TEST_F(Watchdog, OffReadsTheTwoKeysAndWritesNothing) {
    for (const char* option : {"off", "", "ON", "on ", "onward"}) {
        Platform().config["WatchDog_Setting_Option"] = option;
        Platform().config["at_abnormal_reboot_count"] = "3";
        AtStatistics.read = 5;
        ClearLog();
        Platform().keep_reads = true;
        Platform().reads.clear();
        for (int i = 0; i < 6; i++)
            Period();
        const std::set<std::string> keys(Platform().reads.begin(), Platform().reads.end());
        EXPECT_EQ(keys, (std::set<std::string>{"WatchDog_Setting_Option", "at_abnormal_reboot_count"}));
        EXPECT_EQ(Platform().reads.size(), 12U);
        EXPECT_EQ(no_at_count, 0);
        EXPECT_EQ(AtStatistics.read, 5U);
        EXPECT_EQ(LoggedLines().size(), 6U) << option;
        EXPECT_TRUE(Logged("at_abnormal_reboot_count=3,num=3!\n", "at_server", LOG_INFO));
    }
    EXPECT_TRUE(Shell().commands.empty());
    EXPECT_TRUE(Platform().writes.empty());
}

TEST_F(Watchdog, OptionIsLogged) {
    Period();
    EXPECT_TRUE(Logged("DetectAtTimer<<<WatchDogSet=on!\n", "at_server", LOG_INFO));
}

TEST_F(Watchdog, SettingsLongerThanTheirBuffersAreCut) {
    Platform().config["WatchDog_Setting_Option"] = "on" + std::string(200, ' ');
    Platform().config["at_abnormal_reboot_count"] = std::string(200, '9');
    Period();
    EXPECT_EQ(no_at_count, 0);
    Platform().config["WatchDog_Setting_Option"] = "on";
    for (int i = 0; i < 4; i++)
        Period();
    ASSERT_EQ(Shell().commands.size(), 1U);
    EXPECT_EQ(Platform().Get("HardResetModemWatchDog"), "start");
}

TEST_F(Watchdog, FailedShellAndStoreAreNoReasonToStop) {
    Shell().status = 256;
    Platform().fail_writes = true;
    for (int i = 0; i < 5; i++)
        Period();
    EXPECT_EQ(Shell().commands.size(), 2U);
    EXPECT_EQ(no_at_count, 5);
}

}  // namespace
