#pragma once
// The process's Explorer windows, by id (1, 2, 3, … never reused). Each has its own thread, as
// Explorer's windows have. When the last one closes the process ends, unless told to keep running.
#include <windows.h>

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "window_thread.h"

namespace explorer_standin {

class WindowSet {
 public:
  // lastClosed: an event set when the last window has closed and the process should end.
  WindowSet(int width, int height, bool keepRunning, HANDLE lastClosed) noexcept
      : m_width(width), m_height(height), m_keepRunning(keepRunning), m_lastClosed(lastClosed) {}
  WindowSet(const WindowSet&) = delete;
  WindowSet& operator=(const WindowSet&) = delete;
  ~WindowSet() { CloseAll(); }

  // The new window's id, or 0 and the reason.
  int Open(const std::wstring& location, std::wstring& error);
  std::shared_ptr<WindowThread> Find(int id);
  bool Close(int id, std::wstring& error);
  void CloseAll() noexcept;
  std::vector<int> Ids();

 private:
  void OnEnded(int id, bool wasOpen) noexcept;
  // Takes out windows whose threads have ended (a user closed them); they are joined outside the lock.
  std::vector<std::shared_ptr<WindowThread>> TakeEnded();

  const int m_width;
  const int m_height;
  const bool m_keepRunning;
  const HANDLE m_lastClosed;
  std::mutex m_lock;
  std::map<int, std::shared_ptr<WindowThread>> m_windows;
  int m_nextId = 1;
};

}  // namespace explorer_standin
