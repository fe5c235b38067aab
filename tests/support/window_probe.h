#pragma once
// Looking at windows from a test: where one sits inside another, and waiting for a condition; and
// starting the programs whose windows a test looks at.
#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "platform/handles.h"

namespace testsupport {

// The window's rectangle in the client coordinates of another (HWND_DESKTOP: screen coordinates).
inline RECT RectIn(HWND window, HWND parent) {
  RECT rect{};
  ::GetWindowRect(window, &rect);
  ::MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&rect), 2);
  return rect;
}

// Polls condition every 20 ms until it holds or timeoutMs passes; its last answer.
inline bool WaitUntil(const std::function<bool()>& condition, DWORD timeoutMs) {
  for (const ULONGLONG deadline = ::GetTickCount64() + timeoutMs; !condition(); ::Sleep(20)) {
    if (::GetTickCount64() >= deadline) return false;
  }
  return true;
}

// CreateProcessW of exe with this command line, inheriting handles only when startup hands some over;
// the process, or nothing and a failure of the calling test.
inline corvane::unique_handle StartProcess(const std::wstring& exe, std::wstring line,
                                           STARTUPINFOW startup = {sizeof(STARTUPINFOW)}, DWORD flags = 0) {
  const BOOL inherit = (startup.dwFlags & STARTF_USESTDHANDLES) != 0;
  PROCESS_INFORMATION info{};
  if (!::CreateProcessW(exe.c_str(), line.data(), nullptr, nullptr, inherit, flags, nullptr, nullptr, &startup, &info)) {
    ADD_FAILURE() << "CreateProcess " << testing::PrintToString(exe) << ": " << ::GetLastError();
    return {};
  }
  const corvane::unique_handle thread(info.hThread);
  return corvane::unique_handle(info.hProcess);
}

}  // namespace testsupport
