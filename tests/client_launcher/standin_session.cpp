#include "standin_session.h"

#include <atomic>
#include <filesystem>
#include <fstream>

#include "platform/module_path.h"

namespace launchertest {

namespace {

constexpr const wchar_t* kVariables[] = {L"HALVEX_STANDIN_RECORD", L"HALVEX_STANDIN_LINGER_MS",
                                         L"HALVEX_STANDIN_CHILDREN", L"SCALEMEND_STANDIN_RECORD"};

std::wstring FromUtf8(const std::string& text) {
  if (text.empty()) return std::wstring();
  const int size = ::MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
  std::wstring wide(static_cast<size_t>(size), L'\0');
  ::MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), wide.data(), size);
  return wide;
}

std::uint64_t CreationMs(HANDLE process) {
  FILETIME creation{}, exit{}, kernel{}, user{};
  if (!::GetProcessTimes(process, &creation, &exit, &kernel, &user)) return 0;
  const std::uint64_t fileTime = (static_cast<std::uint64_t>(creation.dwHighDateTime) << 32) | creation.dwLowDateTime;
  return (fileTime - 116444736000000000ULL) / 10000;
}

std::wstring Variable(const wchar_t* name) {
  wchar_t value[1024] = {};
  const DWORD length = ::GetEnvironmentVariableW(name, value, 1024);
  return length == 0 || length >= 1024 ? std::wstring() : std::wstring(value, length);
}

}  // namespace

std::vector<StartRecord> ReadRecords(const std::wstring& path) {
  std::vector<StartRecord> records;
  std::ifstream file(std::filesystem::path(path), std::ios::binary);
  std::string line;
  while (std::getline(file, line)) {
    const std::wstring wide = FromUtf8(line);
    const auto tab1 = wide.find(L'\t');
    const auto tab2 = wide.find(L'\t', tab1 + 1);
    const auto tab3 = wide.find(L'\t', tab2 + 1);
    if (tab1 == std::wstring::npos || tab2 == std::wstring::npos || tab3 == std::wstring::npos) continue;
    StartRecord record;
    record.pid = static_cast<DWORD>(std::stoul(wide.substr(0, tab1)));
    record.startMs = std::stoull(wide.substr(tab1 + 1, tab2 - tab1 - 1));
    record.directory = wide.substr(tab2 + 1, tab3 - tab2 - 1);
    record.commandLine = wide.substr(tab3 + 1);
    records.push_back(std::move(record));
  }
  return records;
}

std::vector<StartRecord> WaitForRecords(const std::wstring& path, size_t count, DWORD timeoutMs) {
  const ULONGLONG deadline = ::GetTickCount64() + timeoutMs;
  for (;;) {
    std::vector<StartRecord> records = ReadRecords(path);
    if (records.size() >= count || ::GetTickCount64() >= deadline) return records;
    ::Sleep(20);
  }
}

cx::CommandLineReader RecordedCommandLines(std::wstring path) {
  return [path = std::move(path)](DWORD pid, std::wstring& commandLine) {
    for (const StartRecord& record : ReadRecords(path)) {
      if (record.pid != pid) continue;
      commandLine = record.commandLine;
      return true;
    }
    return false;
  };
}

std::uint64_t NowMs() {
  FILETIME now{};
  ::GetSystemTimeAsFileTime(&now);
  return ((static_cast<std::uint64_t>(now.dwHighDateTime) << 32 | now.dwLowDateTime) - 116444736000000000ULL) / 10000;
}

bool WaitForNoClient(DWORD timeoutMs) {
  const ULONGLONG deadline = ::GetTickCount64() + timeoutMs;
  while (cx::IsProcessRunning(L"Halvex.exe")) {
    if (::GetTickCount64() >= deadline) return false;
    ::Sleep(20);
  }
  return true;
}

std::wstring Received(const std::wstring& exe, const std::wstring& parameters) {
  return L"\"" + exe + L"\"" + (parameters.empty() ? L"" : L" " + parameters);
}

StandinSession::StandinSession() {
  static std::atomic<int> sessions{0};
  wchar_t temp[MAX_PATH] = {};
  ::GetTempPathW(MAX_PATH, temp);
  m_folder = std::wstring(temp) + L"corvane-launcher-" + std::to_wstring(::GetCurrentProcessId()) + L"-" +
             std::to_wstring(++sessions) + L"\\";
  std::filesystem::remove_all(m_folder);
  std::filesystem::create_directories(m_folder);
  m_clientRecord = m_folder + L"halvex-record.txt";
  m_dpiRecord = m_folder + L"scalemend-record.txt";
  for (const wchar_t* name : kVariables) {
    m_savedEnvironment.emplace_back(name, Variable(name));
    ::SetEnvironmentVariableW(name, nullptr);
  }
  ::SetEnvironmentVariableW(L"HALVEX_STANDIN_RECORD", m_clientRecord.c_str());
  ::SetEnvironmentVariableW(L"SCALEMEND_STANDIN_RECORD", m_dpiRecord.c_str());
}

StandinSession::~StandinSession() {
  for (corvane::unique_handle& process : m_started) {
    ::TerminateProcess(process.get(), 1);
    ::WaitForSingleObject(process.get(), 5000);
  }
  KillRecorded(m_clientRecord);
  KillRecorded(m_dpiRecord);
  for (const auto& [name, value] : m_savedEnvironment) {
    ::SetEnvironmentVariableW(name.c_str(), value.empty() ? nullptr : value.c_str());
  }
  std::error_code ignored;
  std::filesystem::remove_all(m_folder, ignored);
}

// Children and processes the launcher started are known only by their records; the creation time
// makes sure a reused process id is left alone.
void StandinSession::KillRecorded(const std::wstring& record) {
  for (const StartRecord& started : ReadRecords(record)) {
    const corvane::unique_handle process(
        ::OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION, FALSE, started.pid));
    if (!process || CreationMs(process.get()) != started.startMs) continue;
    ::TerminateProcess(process.get(), 1);
    ::WaitForSingleObject(process.get(), 5000);
  }
}

std::pair<std::wstring, DWORD> StandinSession::StartClient(const std::wstring& arguments) {
  const std::wstring exe = corvane::ClientFolder() + L"Halvex.exe";
  std::wstring commandLine = L"\"" + exe + L"\" --record=\"" + m_clientRecord + L"\" " + arguments;
  const std::wstring given = commandLine;
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION info{};
  if (!::CreateProcessW(exe.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &info)) {
    return {given, 0};
  }
  const corvane::unique_handle thread(info.hThread);
  m_started.emplace_back(info.hProcess);
  return {given, info.dwProcessId};
}

}  // namespace launchertest
