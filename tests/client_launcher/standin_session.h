#pragma once
// A test's view of the Halvex.exe and scalemend.exe stand-ins: private record files, the settings
// the launcher's children inherit through the environment, and the guarantee that every stand-in
// the test started is gone when the session ends.
#include <windows.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "client/process.h"
#include "core/launch_gate.h"
#include "log_files.h"
#include "platform/handles.h"
#include "platform/module_path.h"
#include "window_probe.h"

namespace launchertest {

// One line of a record file: pid TAB start ms TAB current directory TAB raw command line.
struct StartRecord {
  DWORD pid = 0;
  std::uint64_t startMs = 0;
  std::wstring show, directory, commandLine;  // show: the starter's wShowWindow, "-" for none
};

inline std::vector<StartRecord> ReadRecords(const std::wstring& path) {
  std::vector<StartRecord> records;
  std::ifstream file(std::filesystem::path(path), std::ios::binary);
  for (std::string line; std::getline(file, line);) {
    std::wistringstream fields(logtest::Wide(line));
    StartRecord record;
    if ((fields >> record.pid >> record.startMs) && fields.get() == L'\t' && std::getline(fields, record.show, L'\t') &&
        std::getline(fields, record.directory, L'\t') && std::getline(fields, record.commandLine)) {
      records.push_back(std::move(record));
    }
  }
  return records;
}
// Polls until the file holds at least count records or timeoutMs passes; returns what is there.
inline std::vector<StartRecord> WaitForRecords(const std::wstring& path, size_t count, DWORD timeoutMs = 15000) {
  std::vector<StartRecord> records;
  testsupport::WaitUntil([&] { return (records = ReadRecords(path)).size() >= count; }, timeoutMs);
  return records;
}

// Reads command lines from a record file instead of WMI: Wine's WMI answers only for the calling
// process, so every other process's command line would read as unknown.
inline cx::CommandLineReader RecordedCommandLines(std::wstring path) {
  return [path = std::move(path)](DWORD pid, std::wstring& commandLine) {
    const auto records = ReadRecords(path);
    const auto found = std::find_if(records.begin(), records.end(), [&](const auto& r) { return r.pid == pid; });
    if (found != records.end()) commandLine = found->commandLine;
    return found != records.end();
  };
}

// Polls until no Halvex.exe is left; false after timeoutMs.
inline bool WaitForNoClient(DWORD timeoutMs = 10000) {
  return testsupport::WaitUntil([] { return !cx::IsProcessRunning(L"Halvex.exe"); }, timeoutMs);
}
// How the client sees a command: ShellExecuteW quotes the program and adds one blank.
inline std::wstring Received(const std::wstring& exe, const std::wstring& parameters) {
  return L"\"" + exe + L"\"" + (parameters.empty() ? L"" : L" " + parameters);
}

class StandinSession {
 public:
  StandinSession() {
    for (const wchar_t* name : {L"HALVEX_STANDIN_RECORD", L"HALVEX_STANDIN_LINGER_MS", L"HALVEX_STANDIN_CHILDREN",
                                L"SCALEMEND_STANDIN_RECORD"}) {
      wchar_t value[1024] = {};
      const DWORD length = ::GetEnvironmentVariableW(name, value, 1024);
      m_savedEnvironment.emplace_back(name, length == 0 || length >= 1024 ? L"" : std::wstring(value, length));
      ::SetEnvironmentVariableW(name, nullptr);
    }
    ::SetEnvironmentVariableW(L"HALVEX_STANDIN_RECORD", m_clientRecord.c_str());
    ::SetEnvironmentVariableW(L"SCALEMEND_STANDIN_RECORD", m_dpiRecord.c_str());
  }
  ~StandinSession() {
    const auto end = [](HANDLE process) { ::TerminateProcess(process, 1); ::WaitForSingleObject(process, 5000); };
    for (corvane::unique_handle& process : m_started) end(process.get());
    // Children and processes the launcher started are known only by their records; the creation time
    // makes sure a reused process id is left alone.
    for (const std::wstring* record : {&m_clientRecord, &m_dpiRecord}) {
      for (const StartRecord& started : ReadRecords(*record)) {
        const corvane::unique_handle process(
            ::OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION, FALSE, started.pid));
        FILETIME creation{}, exit{}, kernel{}, user{};
        if (process && ::GetProcessTimes(process.get(), &creation, &exit, &kernel, &user) &&
            corvane::core::UnixMsFromFileTime(std::bit_cast<std::uint64_t>(creation)) == started.startMs) {
          end(process.get());
        }
      }
    }
    for (const auto& [name, value] : m_savedEnvironment) {
      ::SetEnvironmentVariableW(name.c_str(), value.empty() ? nullptr : value.c_str());
    }
  }
  StandinSession(const StandinSession&) = delete;
  StandinSession& operator=(const StandinSession&) = delete;

  std::wstring Folder() const { return m_folder.Path() + L"\\"; }
  const std::wstring& ClientRecord() const { return m_clientRecord; }
  const std::wstring& DpiRecord() const { return m_dpiRecord; }

  // Starts Halvex.exe directly: "<exe>" --record="<client record>" <arguments>.
  void StartClient(const std::wstring& arguments) {
    const std::wstring exe = corvane::ClientFolder() + L"Halvex.exe";
    const std::wstring commandLine = L"\"" + exe + L"\" --record=\"" + m_clientRecord + L"\" " + arguments;
    m_started.push_back(testsupport::StartProcess(exe, commandLine));
  }

 private:
  logtest::TempFolder m_folder;
  std::wstring m_clientRecord = Folder() + L"halvex-record.txt", m_dpiRecord = Folder() + L"scalemend-record.txt";
  std::vector<std::pair<std::wstring, std::wstring>> m_savedEnvironment;
  std::vector<corvane::unique_handle> m_started;
};

}  // namespace launchertest
