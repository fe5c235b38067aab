#include "window_probe.h"

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

}  // namespace testsupport
