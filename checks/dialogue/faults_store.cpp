#include <errno.h>
#include <sys/stat.h>

#include <memory>

#include "checks/dialogue/conversation.h"
#include "checks/dialogue/preload.h"
#include "checks/dialogue/usage.h"
#include "platform/platform.h"

// The configuration directory goes read-only.

namespace {

class StoreFaults : public testing::Test, protected Router {
  protected:
    void SetUp() override {
        if (getenv("DISK_BREAKER") == nullptr) GTEST_SKIP() << "nothing can be preloaded here";
    }
    void Start() {
        const Preload library("DISK_BREAKER");
        world_ = std::make_unique<World>(PlainAnswer);
        descriptors_ = UsageOf(world_->daemon.Pid()).descriptors;
    }
    void TearDown() override {
        if (world_ != nullptr && world_->daemon.Running()) {
            EXPECT_EQ(UsageOf(world_->daemon.Pid()).descriptors, descriptors_);
        }
    }

    SharedNumber<int32_t> error_{"/tmp/disk_error"};
    std::unique_ptr<World> world_;
    int descriptors_ = 0;
};

TEST_F(StoreFaults, StoreThatGoesReadOnlyKeepsItsValuesAndStopsNothing) {
    Start();
    cfg_set("call_cs_status", "call_idle");
    cfg_set("sms_cmgr_send", "0");
    error_.Set(EROFS);
    world_->modem.Say("\r\nRING\r\n\r\nZVCONNECT: 1\r\n");
    EXPECT_EQ(Next(call), Report(call, 0x0407, 1, "RING"));
    EXPECT_TRUE(world_->log.WaitFor("ZVCONNECT: 1 and cfg set"));
    world_->modem.SetAnswer(Answers({{"AT+CMGR=8", "\r\n+CMS ERROR: 321\r\n"}}));
    sms.Ask(0x0107, kSet, I32({8}));
    EXPECT_EQ(Next(sms), Answer(sms, 0x0107, kSet, 3, "321"));
    EXPECT_EQ(other.Exchange(0x0604, kExec).I32(0), 20);
    EXPECT_EQ(ConfigValue("call_cs_status"), "call_idle");
    EXPECT_EQ(ConfigValue("sms_cmgr_send"), "0");
    EXPECT_EQ(world_->log.Count("cannot store "), 1) << "told once";
    EXPECT_LT(BusyShare(world_->daemon.Pid(), 1), kSpinning);

    error_.Set(0);
    world_->modem.Say("\r\nZVCONNECT: 1\r\n");
    EXPECT_TRUE(WaitUntil([] { return ConfigValue("call_cs_status") == "call_active"; }));
    cfg_set("call_cs_status", "call_idle");
}

TEST_F(StoreFaults, LostPortIsNotMarkedInAReadOnlyStore) {
    Start();
    error_.Set(EROFS);
    world_->modem.Unplug();
    other.Ask(0x0604, kExec);
    EXPECT_TRUE(world_->log.WaitFor("Postponed failure! Reset modem from usb host! "));
    EXPECT_LT(BusyShare(world_->daemon.Pid(), 1), kSpinning);
    EXPECT_EQ(ConfigValue("port_stat"), "port_open");
    EXPECT_EQ(ConfigValue("usb_reset"), "inactivated");
    Received answer;
    ASSERT_TRUE(other.Receive(answer, 20));
    EXPECT_EQ(answer.result, 5);

    error_.Set(0);
    other.Ask(0x0604, kExec);
    EXPECT_TRUE(WaitUntil([] { return ConfigValue("usb_reset") == "activated"; }));
    EXPECT_EQ(ConfigValue("port_stat"), "port_close");
}

TEST_F(StoreFaults, DaemonThatStartsWithAReadOnlyDirectoryServesUntilAListIsToBeKept) {
    error_.Set(EROFS);
    Start();
    EXPECT_EQ(other.Exchange(0x0604, kExec).I32(0), 20);
    world_->modem.Say("\r\n+CREG: 1\r\n");
    EXPECT_EQ(Next(sim), Report(sim, 0x052D, 6, I32({1}) + Text("", 32)));
    EXPECT_LT(BusyShare(world_->daemon.Pid(), 1), kSpinning);

    world_->modem.SetAnswer(Answers({{"AT+CMGL=4", "\r\n+CMGL: 1,0,,2\r\nA1B2\r\n\r\nOK\r\n"}}));
    sms.Ask(0x0106, kSet, I32({4}));
    EXPECT_EQ(world_->daemon.WaitForExit(10), 1);
    EXPECT_TRUE(world_->log.WaitFor("fopen( /etc_rw/config/smsbak , 'w+') error!"));
}

}  // namespace
