#pragma once
// Finding the client's processes by executable name.
#include <windows.h>

#include <cstdint>
#include <functional>
#include <string>

namespace cx {

// Counts the main processes named exeName (compared without regard to case); a process whose
// command line shows "--type=" is a helper of the client and does not count, one whose command line
// cannot be read does. startTimeMs receives the creation time (ms since 1970) of the last match in
// snapshot order. False when nothing matched or the snapshot, the process or its times could not be
// read; count is valid either way. Uses WMI: the calling thread must have COM initialised.
bool FindClientProcesses(const std::wstring& exeName, std::uint64_t& startTimeMs, int& count) noexcept;

// How a process's command line is read: QueryProcessCommandLine in the product. Wine's WMI reports
// the command line of the calling process only, so tests of the counting rule bring their own.
using CommandLineReader = std::function<bool(DWORD pid, std::wstring& commandLine)>;
bool FindClientProcesses(const std::wstring& exeName, std::uint64_t& startTimeMs, int& count,
                         const CommandLineReader& readCommandLine) noexcept;

// True when some process has the executable name exeName (compared without regard to case).
// Snapshot failures are printed to standard error and read as "not running".
bool IsProcessRunning(const std::wstring& exeName) noexcept;

}  // namespace cx

// Callers outside the launcher use these names unqualified.
using cx::FindClientProcesses;
using cx::IsProcessRunning;
