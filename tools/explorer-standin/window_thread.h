#pragma once
// The thread of one Explorer window: apartment-threaded and OLE-initialised like Explorer's window
// threads, running the window's message loop. Other threads reach the window only through its
// task queue; they read its window handles from a copy published when it opened.
#include <windows.h>

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "explorer_window.h"
#include "platform/handles.h"

namespace explorer_standin {

class WindowThread {
 public:
  using Ended = std::function<void(int id, bool wasOpen)>;

  // ended: called on the window thread as its last act; it must not destroy this object.
  WindowThread(int id, std::wstring location, const RECT& rect, Ended ended);
  WindowThread(const WindowThread&) = delete;
  WindowThread& operator=(const WindowThread&) = delete;
  ~WindowThread();

  // Starts the thread and waits until the window has opened (true) or failed (false and why).
  bool Start(std::wstring& error);
  int Id() const noexcept { return m_id; }
  WindowHandles Handles() const;
  bool HasEnded() const noexcept;
  // Opened and not yet closing: commands can reach it.
  bool IsOpen() const;

  // Runs work on the window thread and waits for its answer. False, with the reason in `reply`,
  // when the window is gone or the work took longer than the timeout.
  bool Run(const std::function<std::wstring(ExplorerWindow&)>& work, DWORD timeoutMs, std::wstring& reply);
  // Asks the window to close and waits until its thread has ended.
  bool Close(DWORD timeoutMs);

 private:
  void Main() noexcept;

  const int m_id;
  const std::wstring m_location;
  const RECT m_rect;
  const Ended m_ended;
  corvane::unique_handle m_opened;    // set when opening succeeded or failed
  corvane::unique_handle m_finished;  // set when the thread is about to end
  mutable std::mutex m_lock;          // guards the four below
  WindowHandles m_handles;
  std::shared_ptr<TaskQueue> m_tasks;
  ExplorerWindow* m_window = nullptr;  // only dereferenced by tasks, on the window thread
  std::wstring m_error;
  std::thread m_thread;
};

}  // namespace explorer_standin
