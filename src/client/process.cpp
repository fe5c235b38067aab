#include "client/process.h"

#include <tlhelp32.h>

#include <cstdio>

#include "client/wmi.h"
#include "core/launch_gate.h"
#include "platform/handles.h"

namespace cx {

namespace {

bool SameExeName(const wchar_t* a, const std::wstring& b) noexcept {
  return ::CompareStringOrdinal(a, -1, b.c_str(), static_cast<int>(b.size()), TRUE) == CSTR_EQUAL;
}

corvane::unique_handle OpenForTimes(DWORD pid) noexcept {
  corvane::unique_handle process(::OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, pid));
  // Processes of higher integrity only grant the limited right.
  if (!process) process.reset(::OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, pid));
  return process;
}

bool CreationTimeMs(DWORD pid, std::uint64_t& startTimeMs) noexcept {
  const corvane::unique_handle process = OpenForTimes(pid);
  if (!process) return false;
  FILETIME creation{}, exit{}, kernel{}, user{};
  if (!::GetProcessTimes(process.get(), &creation, &exit, &kernel, &user)) return false;
  const std::uint64_t fileTime = (static_cast<std::uint64_t>(creation.dwHighDateTime) << 32) | creation.dwLowDateTime;
  startTimeMs = corvane::core::UnixMsFromFileTime(fileTime);
  return true;
}

}  // namespace

bool FindClientProcesses(const std::wstring& exeName, std::uint64_t& startTimeMs, int& count) noexcept {
  return FindClientProcesses(exeName, startTimeMs, count, &QueryProcessCommandLine);
}

bool FindClientProcesses(const std::wstring& exeName, std::uint64_t& startTimeMs, int& count,
                         const CommandLineReader& readCommandLine) noexcept {
  count = 0;
  try {
    DWORD lastMatch = 0;
    bool matched = false;
    {
      const corvane::unique_snapshot snapshot(::CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
      if (!snapshot) return false;
      PROCESSENTRY32W entry{};
      entry.dwSize = sizeof(entry);
      if (!::Process32FirstW(snapshot.get(), &entry)) return false;
      do {
        if (!SameExeName(entry.szExeFile, exeName)) continue;
        matched = true;
        lastMatch = entry.th32ProcessID;
        std::wstring commandLine;
        if (!readCommandLine(entry.th32ProcessID, commandLine) ||
            !corvane::core::IsClientHelperCommandLine(commandLine)) {
          ++count;
        }
      } while (::Process32NextW(snapshot.get(), &entry));
    }
    if (!matched) return false;
    return CreationTimeMs(lastMatch, startTimeMs);
  } catch (...) {
    return false;
  }
}

bool IsProcessRunning(const std::wstring& exeName) noexcept {
  const corvane::unique_snapshot snapshot(::CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
  if (!snapshot) {
    std::fputws(L"Failed to create snapshot of processes.\n", stderr);
    return false;
  }
  PROCESSENTRY32W entry{};
  entry.dwSize = sizeof(entry);
  if (!::Process32FirstW(snapshot.get(), &entry)) {
    std::fputws(L"Failed to retrieve the first process.\n", stderr);
    return false;
  }
  do {
    if (SameExeName(entry.szExeFile, exeName)) return true;
  } while (::Process32NextW(snapshot.get(), &entry));
  return false;
}

}  // namespace cx
