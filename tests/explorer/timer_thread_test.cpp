// The periodic worker: first call at once, stop wakes a wait, stop waits for a running call,
// exceptions stay inside, a new interval applies from the next wait.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include "explorer/timer_thread.h"

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

template <class Predicate>
bool WaitFor(Predicate done, std::chrono::milliseconds limit = 2000ms) {
  const auto end = Clock::now() + limit;
  while (!done()) {
    if (Clock::now() > end) return false;
    std::this_thread::sleep_for(1ms);
  }
  return true;
}

}  // namespace

TEST(TimerThread, CallsAtOnceThenStopInterruptsALongWait) {
  TimerThread timer;
  std::atomic<int> calls{0};
  timer.SetCallback([&] { ++calls; });
  timer.SetInterval(60000);
  const auto started = Clock::now();
  timer.Start();
  ASSERT_TRUE(WaitFor([&] { return calls.load() == 1; })) << "the first call does not wait for the interval";
  timer.Stop();
  EXPECT_LT(Clock::now() - started, 1500ms) << "stop must wake the worker out of its minute-long wait";
  EXPECT_EQ(calls.load(), 1);
}

TEST(TimerThread, StopWaitsForTheRunningCallbackToEnd) {
  TimerThread timer;
  std::atomic<bool> inside{false}, finished{false};
  timer.SetCallback([&] {
    inside = true;
    std::this_thread::sleep_for(300ms);
    finished = true;
  });
  timer.Start();
  ASSERT_TRUE(WaitFor([&] { return inside.load(); }));
  timer.Stop();
  EXPECT_TRUE(finished.load()) << "Stop returned while the callback still ran";
}

TEST(TimerThread, ThrowingCallbackKeepsTheTimerAlive) {
  TimerThread timer;
  std::atomic<int> calls{0};
  timer.SetCallback([&] {
    ++calls;
    throw std::runtime_error("one bad round");
  });
  timer.SetInterval(5);
  timer.Start();
  EXPECT_TRUE(WaitFor([&] { return calls.load() >= 3; }));
  timer.Stop();
}

TEST(TimerThread, PeriodFollowsTheEndOfTheCallAndNewIntervalsApplyNextWait) {
  TimerThread timer;
  std::mutex mutex;
  std::vector<Clock::time_point> starts;
  timer.SetCallback([&] {
    std::lock_guard<std::mutex> lock(mutex);
    starts.push_back(Clock::now());
    std::this_thread::sleep_for(50ms);
  });
  timer.SetInterval(100);
  timer.Start();
  ASSERT_TRUE(WaitFor([&] {
    std::lock_guard<std::mutex> lock(mutex);
    return starts.size() >= 2;
  }));
  timer.SetInterval(10);
  ASSERT_TRUE(WaitFor([&] {
    std::lock_guard<std::mutex> lock(mutex);
    return starts.size() >= 6;
  }));
  timer.Stop();
  std::lock_guard<std::mutex> lock(mutex);
  // Start-to-start is the call's own 50 ms plus the interval, never less.
  EXPECT_GE(starts[1] - starts[0], 145ms);
  EXPECT_LT(starts[5] - starts[4], 145ms) << "the shorter interval was not taken up";
  EXPECT_GE(starts[5] - starts[4], 55ms);
}

TEST(TimerThread, EmptyCallbackWaitsRestartWorksAndTheDestructorStops) {
  std::atomic<int> calls{0};
  {
    TimerThread timer;
    timer.SetInterval(5);
    timer.Start();
    timer.Start();  // a second start while running does nothing
    std::this_thread::sleep_for(30ms);
    timer.Stop();
    timer.Stop();  // and a second stop neither

    timer.SetCallback([&] { ++calls; });
    timer.Start();
    EXPECT_TRUE(WaitFor([&] { return calls.load() >= 2; }));
    timer.Stop();
    const int afterStop = calls.load();
    std::this_thread::sleep_for(30ms);
    EXPECT_EQ(calls.load(), afterStop) << "no call after Stop returned";
    timer.Start();  // left running for the destructor
  }
  const int afterDestruction = calls.load();
  std::this_thread::sleep_for(30ms);
  EXPECT_EQ(calls.load(), afterDestruction);
}
