#pragma once
// Wine's own explorer.exe as a user would run it: one process with one browser window, driven
// through its address box by tools\shell-nav.exe, and read from outside through its window tree.
#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/handles.h"

namespace e2etest {

class WineExplorer {
 public:
  // Starts <Windows folder>\explorer.exe with no arguments.
  WineExplorer();
  // Closes the window if it is still there, and makes sure the process is gone.
  ~WineExplorer();
  WineExplorer(const WineExplorer&) = delete;
  WineExplorer& operator=(const WineExplorer&) = delete;

  bool Started() const { return static_cast<bool>(m_process); }
  HANDLE Handle() const { return m_process.get(); }
  // The process's browser window ("ExplorerWClass"), or null.
  HWND Window() const;
  // Types the parsing path into the address box and presses Enter; false if shell-nav failed.
  bool Navigate(const std::wstring& path) const;
  bool Running() const;
  bool WaitForExit(DWORD timeoutMs) const;

 private:
  corvane::unique_handle m_process;
  DWORD m_pid = 0;
};

// Polls until the condition holds; false if it still does not after timeoutMs.
bool WaitUntil(const std::function<bool()>& condition, DWORD timeoutMs);

// The first descendant of the given class (any depth), or null.
HWND FindDescendant(HWND root, const wchar_t* className);
std::wstring WindowText(HWND window);
// The texts of a list view's items, read through memory in its own process.
std::vector<std::wstring> ListViewItems(HWND list);

}  // namespace e2etest
