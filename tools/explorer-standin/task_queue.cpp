#include "task_queue.h"

#include <utility>

#include "standin_log.h"

namespace explorer_standin {

bool TaskQueue::Post(std::function<void()> task) {
  bool wake = false;
  {
    std::lock_guard<std::mutex> guard(m_lock);
    if (m_closed) return false;
    wake = m_tasks.empty();
    m_tasks.push_back(std::move(task));
  }
  // One wake-up covers everything queued before the window thread takes the first task.
  if (wake && !::PostMessageW(m_target, m_message, 0, 0)) {
    std::lock_guard<std::mutex> guard(m_lock);
    m_tasks.clear();
    m_closed = true;
    return false;
  }
  return true;
}

void TaskQueue::RunPending() noexcept {
  for (;;) {
    std::function<void()> task;
    try {
      std::lock_guard<std::mutex> guard(m_lock);
      if (m_tasks.empty()) return;
      task = std::move(m_tasks.front());
      m_tasks.pop_front();
    } catch (...) {
      return;
    }
    try {
      task();
    } catch (...) {
      Log(L"a queued task threw; it is dropped");
    }
  }
}

void TaskQueue::Close() noexcept {
  std::deque<std::function<void()>> dropped;
  try {
    std::lock_guard<std::mutex> guard(m_lock);
    m_closed = true;
    dropped.swap(m_tasks);
  } catch (...) {
  }
  // Dropped outside the lock: destroying a task may wake a thread that waits for it.
}

}  // namespace explorer_standin
