#include "window_probe.h"

#include <gtest/gtest.h>

namespace testsupport {

RECT RectIn(HWND window, HWND parent) {
  RECT rect{};
  ::GetWindowRect(window, &rect);
  ::MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&rect), 2);
  return rect;
}

bool WaitUntil(const std::function<bool()>& condition, DWORD timeoutMs) {
  for (const ULONGLONG deadline = ::GetTickCount64() + timeoutMs; !condition(); ::Sleep(20)) {
    if (::GetTickCount64() >= deadline) return false;
  }
  return true;
}

corvane::unique_handle StartProcess(const std::wstring& exe, std::wstring line, STARTUPINFOW startup, DWORD flags) {
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
