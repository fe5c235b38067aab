#pragma once
// Looking at windows from a test: where one sits inside another, and waiting for a condition.
#include <windows.h>

#include <functional>

namespace testsupport {

// The window's rectangle in the client coordinates of another (HWND_DESKTOP: screen coordinates).
RECT RectIn(HWND window, HWND parent);
// Polls condition every 20 ms until it holds or timeoutMs passes; its last answer.
bool WaitUntil(const std::function<bool()>& condition, DWORD timeoutMs);

}  // namespace testsupport
