#include "explorer/timer_thread.h"

TimerThread::~TimerThread() { Stop(); }

void TimerThread::SetCallback(std::function<void()> callback) {
  std::lock_guard<std::mutex> lock(m_mutex);
  m_callback = std::move(callback);
}

void TimerThread::SetInterval(unsigned int milliseconds) {
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_interval = std::chrono::milliseconds(milliseconds);
  }
  m_cv.notify_all();
}

void TimerThread::Start() {
  if (m_bRunning) return;
  m_bRunning = true;
  m_bStop.store(false);
  m_thread = std::thread([this] { Run(); });
}

void TimerThread::Stop() {
  if (!m_bRunning) return;
  {
    // Taking the mutex orders the stop flag with a worker that is about to wait.
    std::lock_guard<std::mutex> lock(m_mutex);
    m_bStop.store(true);
  }
  m_cv.notify_all();
  if (m_thread.joinable()) m_thread.join();
  m_bRunning = false;
  m_bStop.store(false);
}

void TimerThread::Run() noexcept {
  for (;;) {
    if (m_bStop.load()) return;
    std::function<void()> callback;
    try {
      std::lock_guard<std::mutex> lock(m_mutex);
      callback = m_callback;
    } catch (...) {
      // A callback that cannot be copied is skipped this round.
    }
    if (callback) {
      try {
        callback();
      } catch (...) {
        // The work of one round failing must not end the timer, nor leave the thread.
      }
    }
    std::unique_lock<std::mutex> lock(m_mutex);
    if (m_cv.wait_for(lock, m_interval, [this] { return m_bStop.load(); })) return;
  }
}
