#pragma once
// A process's command line as WMI reports it.
#include <windows.h>

#include <string>

namespace cx {

// Asks ROOT\CIMV2 for Win32_Process.CommandLine of pid. False when WMI fails or the command line
// is not readable (a process of another user, one that has ended). The calling thread must have
// COM initialised; the query blocks until WMI answers.
bool QueryProcessCommandLine(DWORD pid, std::wstring& commandLine) noexcept;

}  // namespace cx

// Callers outside the launcher use these names unqualified.
using cx::QueryProcessCommandLine;
