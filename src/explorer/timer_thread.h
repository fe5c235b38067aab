#pragma once
// Runs one callback periodically on a thread of its own: at once on Start, then each interval
// after the previous call ended. Stop wakes a waiting worker and waits for a running callback.
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

class TimerThread {
 public:
  TimerThread() = default;
  TimerThread(const TimerThread&) = delete;
  TimerThread& operator=(const TimerThread&) = delete;
  virtual ~TimerThread();

  void SetCallback(std::function<void()> callback);
  void SetInterval(unsigned int milliseconds);
  void Start();
  // Must not be called from the callback of this same timer.
  void Stop();

 private:
  void Run() noexcept;

  std::thread m_thread;
  std::atomic<bool> m_bStop{false};
  std::mutex m_mutex;
  std::condition_variable m_cv;
  std::function<void()> m_callback;
  std::chrono::milliseconds m_interval{1000};
  bool m_bRunning = false;
};
