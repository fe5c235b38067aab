#pragma once
// Commands for the client: each starts Halvex.exe with " -shellpopwin \"word|action|...\"" and the
// running client instance picks the command up. Every launcher returns the executable's path
// followed by the parameters (for the caller's log line), or an empty string when the start-up gate
// refused the command. The calling thread must have COM initialised (the gate asks WMI).
#include <windows.h>

#include <string>
#include <string_view>

#include "client/process.h"

namespace cx {

// False while a client started less than 8 seconds ago has not settled to exactly one main process.
bool canCommandExecute() noexcept;
// The same gate with another way to read the processes' command lines (see FindClientProcesses).
bool canCommandExecute(const CommandLineReader& readCommandLine) noexcept;

std::wstring exeCloudCommandLine(std::wstring_view word, std::wstring_view action) noexcept;
std::wstring exeCloudCommandLine(std::wstring_view word, std::wstring_view action, int x, int y) noexcept;
std::wstring exeCloudCommandLine(std::wstring_view word, std::wstring_view action, int x, int y, HWND hwnd) noexcept;
std::wstring exeCloudCommandLine(std::wstring_view word, std::wstring_view action, int x, int y,
                                 std::wstring_view text) noexcept;
std::wstring exeCloudCommandLine(std::wstring_view word, std::wstring_view action, int x, int y, HWND hwnd,
                                 UINT flag) noexcept;
std::wstring exeCloudCommandLine(std::wstring_view word, std::wstring_view action, std::wstring_view list) noexcept;

std::wstring exeCloudAdvertising(std::wstring_view id, std::wstring_view title) noexcept;

// Starts the client with no parameters at all; word is accepted for the callers' sake and unused.
// Returns the executable's path, or empty when refused.
std::wstring startCloudApp(std::wstring_view word) noexcept;

}  // namespace cx
