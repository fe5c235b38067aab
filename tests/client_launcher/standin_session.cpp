#include "standin_session.h"

#include <algorithm>
#include <bit>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/launch_gate.h"
#include "platform/module_path.h"
#include "window_probe.h"

namespace launchertest {

namespace {

constexpr const wchar_t* kVariables[] = {L"HALVEX_STANDIN_RECORD", L"HALVEX_STANDIN_LINGER_MS",
                                         L"HALVEX_STANDIN_CHILDREN", L"SCALEMEND_STANDIN_RECORD"};

}  // namespace

std::vector<StartRecord> ReadRecords(const std::wstring& path) {
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

std::vector<StartRecord> WaitForRecords(const std::wstring& path, size_t count, DWORD timeoutMs) {
  std::vector<StartRecord> records;
  testsupport::WaitUntil([&] { return (records = ReadRecords(path)).size() >= count; }, timeoutMs);
  return records;
}

cx::CommandLineReader RecordedCommandLines(std::wstring path) {
  return [path = std::move(path)](DWORD pid, std::wstring& commandLine) {
    const auto records = ReadRecords(path);
    const auto found = std::find_if(records.begin(), records.end(), [&](const auto& r) { return r.pid == pid; });
    if (found != records.end()) commandLine = found->commandLine;
    return found != records.end();
  };
}

bool WaitForNoClient(DWORD timeoutMs) {
  return testsupport::WaitUntil([] { return !cx::IsProcessRunning(L"Halvex.exe"); }, timeoutMs);
}

StandinSession::StandinSession() {
  for (const wchar_t* name : kVariables) {
    wchar_t value[1024] = {};
    const DWORD length = ::GetEnvironmentVariableW(name, value, 1024);
    m_savedEnvironment.emplace_back(name, length == 0 || length >= 1024 ? L"" : std::wstring(value, length));
    ::SetEnvironmentVariableW(name, nullptr);
  }
  ::SetEnvironmentVariableW(L"HALVEX_STANDIN_RECORD", m_clientRecord.c_str());
  ::SetEnvironmentVariableW(L"SCALEMEND_STANDIN_RECORD", m_dpiRecord.c_str());
}

StandinSession::~StandinSession() {
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

void StandinSession::StartClient(const std::wstring& arguments) {
  const std::wstring exe = corvane::ClientFolder() + L"Halvex.exe";
  const std::wstring commandLine = L"\"" + exe + L"\" --record=\"" + m_clientRecord + L"\" " + arguments;
  m_started.push_back(testsupport::StartProcess(exe, commandLine));
}

}  // namespace launchertest
