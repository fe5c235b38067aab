#pragma once
// The client's DPI tool, scalemend.exe beside the DLL: given a window handle, it works out the
// window's zoom and publishes it for the bar.
#include <windows.h>

#include <string>

namespace cx {

// Starts the tool with the handle's unsigned digits as its only parameter, unguarded and
// unchecked. Returns the tool's path.
std::wstring startDpiTool(HWND hwnd) noexcept;

}  // namespace cx

// Callers outside the launcher use these names unqualified.
using cx::startDpiTool;
