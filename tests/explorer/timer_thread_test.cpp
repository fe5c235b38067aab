// The folder check's worker: the first call at once, Stop waking a long wait and waiting for a
// running call, exceptions kept inside, Start and Stop safe to repeat, the destructor stopping.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <stdexcept>
#include <thread>

#include "explorer/timer_thread.h"
#include "window_probe.h"

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

// Ten seconds: far beyond anything asked of the timer here.
bool WaitFor(const std::function<bool()>& done) { return testsupport::WaitUntil(done, 10000); }

// A second Start while running and a second Stop do nothing; the integration tests' re-site and
// close repeat both. Here: a Start with no callback yet, a restart after Stop, and the destructor
// stopping a running timer.
TEST(TimerThread, CallsAtOnceStopEndsAMinuteLongWaitRestartsAndTheDestructorStops) {
  std::atomic<int> calls{0};
  {
    TimerThread timer;
    timer.SetInterval(60000);
    timer.Start();
    timer.Stop();
    timer.SetCallback([&] { ++calls; });
    timer.Start();
    ASSERT_TRUE(WaitFor([&] { return calls.load() == 1; })) << "the first call does not wait for the interval";
    const auto stopping = Clock::now();
    timer.Stop();
    EXPECT_LT(Clock::now() - stopping, 10s) << "Stop waited out the interval instead of waking the worker";
    EXPECT_EQ(calls.load(), 1);
    timer.SetInterval(5);
    timer.Start();
    EXPECT_TRUE(WaitFor([&] { return calls.load() >= 3; })) << "no restart";
  }
  const int afterDestruction = calls.load();
  std::this_thread::sleep_for(30ms);
  EXPECT_EQ(calls.load(), afterDestruction) << "a call after the timer was destroyed";
}

TEST(TimerThread, ThrowingCallbacksGoOnAndStopWaitsForTheRunningOne) {
  TimerThread timer;
  std::atomic<int> calls{0};
  std::atomic<bool> finished{false};
  timer.SetCallback([&] {
    finished = false;
    if (++calls == 3) std::this_thread::sleep_for(200ms);
    finished = true;
    throw std::runtime_error("one bad round");
  });
  timer.SetInterval(5);
  timer.Start();
  ASSERT_TRUE(WaitFor([&] { return calls.load() == 3; })) << "a throwing round ended the timer";
  timer.Stop();
  EXPECT_TRUE(finished.load()) << "Stop returned while the callback still ran";
  EXPECT_EQ(calls.load(), 3);
}

}  // namespace
