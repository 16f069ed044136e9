#include <stdio.h>
#include <time.h>

#include <chrono>
#include <memory>

#include "checks/dialogue/conversation.h"
#include "checks/dialogue/preload.h"
#include "checks/dialogue/usage.h"
#include "platform/platform.h"

// The time of day jumps, as it does when a router learns it from the network: nothing of the daemon's may
// depend on it.

namespace {

constexpr int64_t kDay = 86'400;
const std::string kTimedOut = "Waiting for AT response time out(timeout=1000)!!discard...";

class ClockFaults : public testing::Test, protected Router {
  protected:
    void SetUp() override {
        if (getenv("CLOCK_SHIFTER") == nullptr) GTEST_SKIP() << "nothing can be preloaded here";
        const Preload library("CLOCK_SHIFTER");
        world_ = std::make_unique<World>(PlainAnswer);
    }
    void TearDown() override {
        if (world_ == nullptr) return;
        ASSERT_TRUE(world_->daemon.Running());
        EXPECT_LT(BusyShare(world_->daemon.Pid(), 1), kSpinning);
        EXPECT_EQ(Leftovers(), "");
        cfg_set("WatchDog_Setting_Option", "");
    }

    // A request that the modem leaves alone.
    void AskInVain() {
        world_->modem.SetAnswer(Silence);
        world_->modem.ForgetLines();
        other.Ask(0x0604, kExec);
        ASSERT_TRUE(world_->modem.WaitForLine("AT+CSQ"));
        // The jump comes when the response thread has looked at the request for a while.
        world_->log.Forget();
        EXPECT_FALSE(world_->log.WaitFor(kTimedOut, 0.3));
    }

    void StartWatchDog() {
        cfg_set("WatchDog_Setting_Option", "on");
        world_->modem.SetAnswer(Answers({{"AT+ZDOGREF", "\r\nOK\r\n"}}));
        for (int i = 0; i < 2; ++i)
            EXPECT_EQ(other.Exchange(0x062E, kExec).result, 1);
        EXPECT_TRUE(world_->log.WaitFor("TIMER_AT_STATE_DETECT"));
    }

    SharedNumber<int64_t> shift_{"/tmp/clock_shift"};
    std::unique_ptr<World> world_;
};

TEST_F(ClockFaults, ShifterShiftsTheTimeOfDay) {
    const Preload library("CLOCK_SHIFTER");
    shift_.Set(-kDay);
    FILE* date = popen("date +%s", "r");
    ASSERT_NE(date, nullptr);
    long seen = 0;
    ASSERT_EQ(fscanf(date, "%ld", &seen), 1);
    pclose(date);
    EXPECT_NEAR(static_cast<double>(seen), static_cast<double>(::time(nullptr) - kDay), 60);
}

TEST_F(ClockFaults, RequestThatWaitsIsNotTimedOutByAJump) {
    for (const int64_t jump : {kDay, -kDay}) {
        SCOPED_TRACE(jump);
        ASSERT_NO_FATAL_FAILURE(AskInVain());
        shift_.Set(jump);
        EXPECT_FALSE(world_->log.WaitFor(kTimedOut, 2));
        world_->modem.Say(PlainAnswer("AT+CSQ"));
        EXPECT_EQ(Next(other), Answer(other, 0x0604, kExec, 1, I32({20, 0})));
    }
}

TEST_F(ClockFaults, TimeOutComesInItsTimeInSpiteOfAJumpBack) {
    ASSERT_NO_FATAL_FAILURE(AskInVain());
    const auto asked = std::chrono::steady_clock::now();
    shift_.Set(-kDay);
    Received answer;
    ASSERT_TRUE(other.Receive(answer, 30));
    EXPECT_EQ(answer.result, 5);
    EXPECT_GT(std::chrono::duration<double>(std::chrono::steady_clock::now() - asked).count(), 9.5);
}

TEST_F(ClockFaults, IdleServerDoesNotMindAJump) {
    for (const int64_t jump : {kDay, -kDay, int64_t{0}}) {
        SCOPED_TRACE(jump);
        shift_.Set(jump);
        EXPECT_EQ(other.Exchange(0x0604, kExec).I32(0), 20);
        world_->modem.Say("\r\n+CREG: 1\r\n");
        EXPECT_EQ(Next(sim), Report(sim, 0x052D, 6, I32({1}) + Text("", 32)));
    }
}

TEST_F(ClockFaults, WatchDogIsNotRousedByAJump) {
    StartWatchDog();
    shift_.Set(kDay);
    EXPECT_FALSE(world_->log.WaitFor("DetectAtTimer<<<", 2));
    EXPECT_EQ(other.Exchange(0x0604, kExec).I32(0), 20);
}

// A suite of its own, because it takes the minute that it is about.
class WatchDogFaults : public ClockFaults {};

TEST_F(WatchDogFaults, ComesAfterAMinuteInSpiteOfAJumpBack) {
    StartWatchDog();
    const auto started = std::chrono::steady_clock::now();
    shift_.Set(-kDay);
    EXPECT_TRUE(world_->log.WaitFor("DetectAtTimer<<<WatchDogSet=on!", 90));
    EXPECT_GT(std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count(), 55);
    EXPECT_TRUE(world_->log.WaitFor("at-server check modem is normal !!!")) << "the modem spoke before";
}

}  // namespace
