// The stand-in's soft timers. Timers cannot be stopped, so each check uses ids of its own and leaves a timer
// that is periodic replaced by one that fires once.

#include <gtest/gtest.h>
#include <limits.h>
#include <pthread.h>
#include <signal.h>
#include <sys/wait.h>
#include <syslog.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

#include "checks/support/log_capture.h"
#include "platform/platform.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

struct Count {
    std::atomic<int> calls{0};
    std::atomic<pthread_t> thread{};
    std::atomic<bool> signals_blocked{false};
};

int Increment(void* arg) {
    auto* count = static_cast<Count*>(arg);
    count->thread = pthread_self();
    sigset_t blocked;
    pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
    count->signals_blocked = sigismember(&blocked, SIGTERM) == 1 && sigismember(&blocked, SIGINT) == 1;
    ++count->calls;
    return 0;
}

bool Eventually(const std::function<bool()>& condition) {
    auto limit = Clock::now() + std::chrono::seconds(10);
    while (!condition()) {
        if (Clock::now() > limit) return false;
        std::this_thread::sleep_for(milliseconds(1));
    }
    return true;
}

TEST(SoftTimer, OnceFiresAfterItsPeriodAndNotAgain) {
    Count once;
    Count later;
    auto start = Clock::now();
    ASSERT_EQ(CreateSoftTimer(1, 0, 30, Increment, &once), 0);
    ASSERT_EQ(CreateSoftTimer(2, 0, 120, Increment, &later), 0);
    ASSERT_TRUE(Eventually([&] { return once.calls == 1; }));
    EXPECT_GE(Clock::now() - start, milliseconds(30));
    ASSERT_TRUE(Eventually([&] { return later.calls == 1; }));
    EXPECT_GE(Clock::now() - start, milliseconds(120));
    EXPECT_EQ(once.calls, 1);
}

TEST(SoftTimer, PeriodicFiresAgainAndAgainAtItsPeriod) {
    Count count;
    Count end;
    auto start = Clock::now();
    ASSERT_EQ(CreateSoftTimer(3, 1, 20, Increment, &count), 0);
    ASSERT_TRUE(Eventually([&] { return count.calls >= 6; }));
    EXPECT_GE(Clock::now() - start, milliseconds(6 * 20));
    ASSERT_EQ(CreateSoftTimer(3, 0, 1, Increment, &end), 0);
    ASSERT_TRUE(Eventually([&] { return end.calls == 1; }));
}

TEST(SoftTimer, TheSameIdReplacesTheRunningOne) {
    Count old;
    Count now;
    Count other;
    ASSERT_EQ(CreateSoftTimer(4, 1, 5, Increment, &old), 0);
    ASSERT_EQ(CreateSoftTimer(5, 1, 5, Increment, &other), 0);
    ASSERT_TRUE(Eventually([&] { return old.calls >= 2; }));
    ASSERT_EQ(CreateSoftTimer(4, 1, 5, Increment, &now), 0);
    ASSERT_TRUE(Eventually([&] { return now.calls >= 1; }));
    int old_calls = old.calls;
    int other_calls = other.calls;
    ASSERT_TRUE(Eventually([&] { return now.calls >= 5 && other.calls > other_calls; }));
    EXPECT_EQ(old.calls, old_calls);
    for (int id : {4, 5}) {
        Count end;
        ASSERT_EQ(CreateSoftTimer(id, 0, 1, Increment, &end), 0);
        ASSERT_TRUE(Eventually([&] { return end.calls == 1; }));
    }
}

TEST(SoftTimer, ANearerTimerDoesNotWaitForAFarOne) {
    Count far;
    Count near;
    ASSERT_EQ(CreateSoftTimer(6, 0, UINT_MAX, Increment, &far), 0);
    ASSERT_EQ(CreateSoftTimer(7, 0, 5, Increment, &near), 0);
    ASSERT_TRUE(Eventually([&] { return near.calls == 1; }));
    EXPECT_EQ(far.calls, 0);
    ASSERT_EQ(CreateSoftTimer(6, 0, 1, Increment, &far), 0);
    ASSERT_TRUE(Eventually([&] { return far.calls == 1; }));
}

TEST(SoftTimer, CallbacksRunOnOneThreadOfTheServiceWithoutSignals) {
    Count first;
    Count second;
    ASSERT_EQ(CreateSoftTimer(8, 0, 1, Increment, &first), 0);
    ASSERT_EQ(CreateSoftTimer(9, 0, 2, Increment, &second), 0);
    ASSERT_TRUE(Eventually([&] { return first.calls == 1 && second.calls == 1; }));
    EXPECT_FALSE(pthread_equal(first.thread, pthread_self()));
    EXPECT_TRUE(pthread_equal(first.thread, second.thread));
    EXPECT_TRUE(first.signals_blocked);
}

int StartAgain(void* arg) {
    auto* count = static_cast<Count*>(arg);
    if (++count->calls < 3) CreateSoftTimer(10, 0, 1, StartAgain, count);
    return 0;
}

TEST(SoftTimer, ACallbackMayStartItsOwnTimer) {
    Count count;
    ASSERT_EQ(CreateSoftTimer(10, 0, 1, StartAgain, &count), 0);
    ASSERT_TRUE(Eventually([&] { return count.calls == 3; }));
}

TEST(SoftTimer, WithoutCallbackOrPeriodIsRefused) {
    Count count;
    ClearLog();
    EXPECT_NE(CreateSoftTimer(11, 1, 10, nullptr, nullptr), 0);
    EXPECT_TRUE(Logged("soft timer 11 was not started: it has no callback", "platform", LOG_ERR));
    EXPECT_NE(CreateSoftTimer(12, 1, 0, Increment, &count), 0);
    EXPECT_TRUE(Logged("soft timer 12 was not started: it has no period", "platform", LOG_ERR));
}

TEST(SoftTimer, ThirtyTwoRunAtOnceAndOneMoreIsRefused) {
    Count count;
    for (int i = 0; i < 32; ++i)
        ASSERT_EQ(CreateSoftTimer(100 + i, 0, 60'000, Increment, &count), 0) << i;
    ClearLog();
    EXPECT_NE(CreateSoftTimer(132, 0, 60'000, Increment, &count), 0);
    EXPECT_TRUE(
        Logged("soft timer 132 was not started: 32 are running, and that is the most", "platform", LOG_ERR));
    // A running one can still be replaced; those that fired make room.
    for (int i = 0; i < 32; ++i)
        EXPECT_EQ(CreateSoftTimer(100 + i, 0, 1, Increment, &count), 0) << i;
    ASSERT_TRUE(Eventually([&] { return count.calls == 32; }));
    EXPECT_EQ(CreateSoftTimer(132, 0, 1, Increment, &count), 0);
    ASSERT_TRUE(Eventually([&] { return count.calls == 33; }));
}

#ifndef __SANITIZE_THREAD__  // the thread sanitizer allows no new thread in a forked child
TEST(SoftTimer, AForkedChildHasNoTimersAndCanStartItsOwn) {
    Count count;
    ASSERT_EQ(CreateSoftTimer(14, 1, 5, Increment, &count), 0);
    ASSERT_TRUE(Eventually([&] { return count.calls >= 1; }));
    pid_t child = fork();
    if (child == 0) {
        int inherited = count.calls;
        Count own;
        bool started = CreateSoftTimer(15, 1, 5, Increment, &own) == 0;
        _exit(started && Eventually([&] { return own.calls >= 4; }) && count.calls == inherited ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    Count end;
    ASSERT_EQ(CreateSoftTimer(14, 0, 1, Increment, &end), 0);
    ASSERT_TRUE(Eventually([&] { return end.calls == 1; }));
}
#endif

}  // namespace
