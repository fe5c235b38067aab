#pragma once
// A test's view of the Halvex.exe and scalemend.exe stand-ins: private record files, the settings
// the launcher's children inherit through the environment, and the guarantee that every stand-in
// the test started is gone when the session ends.
#include <windows.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "client/process.h"
#include "log_files.h"
#include "platform/handles.h"

namespace launchertest {

// One line of a record file: pid TAB start ms TAB current directory TAB raw command line.
struct StartRecord {
  DWORD pid = 0;
  std::uint64_t startMs = 0;
  std::wstring show, directory, commandLine;  // show: the starter's wShowWindow, "-" for none
};

std::vector<StartRecord> ReadRecords(const std::wstring& path);
// Polls until the file holds at least count records or timeoutMs passes; returns what is there.
std::vector<StartRecord> WaitForRecords(const std::wstring& path, size_t count, DWORD timeoutMs = 15000);

// Reads command lines from a record file instead of WMI: Wine's WMI answers only for the calling
// process, so every other process's command line would read as unknown.
cx::CommandLineReader RecordedCommandLines(std::wstring path);

// Polls until no Halvex.exe is left; false after timeoutMs.
bool WaitForNoClient(DWORD timeoutMs = 10000);
// How the client sees a command: ShellExecuteW quotes the program and adds one blank.
inline std::wstring Received(const std::wstring& exe, const std::wstring& parameters) {
  return L"\"" + exe + L"\"" + (parameters.empty() ? L"" : L" " + parameters);
}

class StandinSession {
 public:
  StandinSession();
  ~StandinSession();
  StandinSession(const StandinSession&) = delete;
  StandinSession& operator=(const StandinSession&) = delete;

  std::wstring Folder() const { return m_folder.Path() + L"\\"; }
  const std::wstring& ClientRecord() const { return m_clientRecord; }
  const std::wstring& DpiRecord() const { return m_dpiRecord; }

  // Starts Halvex.exe directly: "<exe>" --record="<client record>" <arguments>.
  void StartClient(const std::wstring& arguments);

 private:
  logtest::TempFolder m_folder;
  std::wstring m_clientRecord = Folder() + L"halvex-record.txt", m_dpiRecord = Folder() + L"scalemend-record.txt";
  std::vector<std::pair<std::wstring, std::wstring>> m_savedEnvironment;
  std::vector<corvane::unique_handle> m_started;
};

}  // namespace launchertest
