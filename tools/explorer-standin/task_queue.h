#pragma once
// Work handed to one Explorer window's thread. Other threads (the control channel, a caller of the
// browser object on a worker thread) queue a function and wake the window with a posted message;
// the window thread runs the queue in order. Once closed, queued work is dropped unrun and new work
// is refused, so nothing runs against a window that has gone.
#include <windows.h>

#include <deque>
#include <functional>
#include <mutex>

namespace explorer_standin {

class TaskQueue {
 public:
  TaskQueue(HWND target, UINT message) noexcept : m_target(target), m_message(message) {}
  TaskQueue(const TaskQueue&) = delete;
  TaskQueue& operator=(const TaskQueue&) = delete;

  // False once the queue is closed or the window cannot be woken.
  bool Post(std::function<void()> task);
  // On the window thread, when the wake-up message arrives.
  void RunPending() noexcept;
  void Close() noexcept;

 private:
  std::mutex m_lock;
  std::deque<std::function<void()>> m_tasks;
  bool m_closed = false;
  const HWND m_target;
  const UINT m_message;
};

}  // namespace explorer_standin
