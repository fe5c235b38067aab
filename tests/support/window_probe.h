#pragma once
// Looking at windows from a test: where one sits inside another, and waiting for a condition; and
// starting the programs whose windows a test looks at.
#include <windows.h>

#include <functional>
#include <string>

#include "platform/handles.h"

namespace testsupport {

// The window's rectangle in the client coordinates of another (HWND_DESKTOP: screen coordinates).
RECT RectIn(HWND window, HWND parent);
// Polls condition every 20 ms until it holds or timeoutMs passes; its last answer.
bool WaitUntil(const std::function<bool()>& condition, DWORD timeoutMs);
// CreateProcessW of exe with this command line, inheriting handles only when startup hands some over;
// the process, or nothing and a failure of the calling test.
corvane::unique_handle StartProcess(const std::wstring& exe, std::wstring commandLine,
                                    STARTUPINFOW startup = {sizeof(STARTUPINFOW)}, DWORD flags = 0);

}  // namespace testsupport
