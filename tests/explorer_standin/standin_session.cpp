#include "standin_session.h"

#include <gtest/gtest.h>

#include <atomic>

#include "probe_protocol.h"

namespace standintest {

namespace {

constexpr DWORD kConnectTimeoutMs = 20000;
constexpr DWORD kReplyTimeoutMs = 30000;

std::wstring ProgramFolder() {
  wchar_t self[MAX_PATH] = {};
  const DWORD length = ::GetModuleFileNameW(nullptr, self, MAX_PATH);
  const std::wstring path(self, length);
  return path.substr(0, path.rfind(L'\\') + 1);
}

std::wstring FullPath(const std::wstring& path) {
  wchar_t full[MAX_PATH] = {};
  const DWORD length = ::GetFullPathNameW(path.c_str(), MAX_PATH, full, nullptr);
  return length != 0 && length < MAX_PATH ? std::wstring(full, length) : path;
}

std::string ToUtf8(const std::wstring& text) {
  if (text.empty()) return std::string();
  const int size = ::WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr, nullptr);
  std::string out(static_cast<size_t>(size > 0 ? size : 0), '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), out.data(), size, nullptr, nullptr);
  return out;
}

std::wstring FromUtf8(const std::string& text) {
  if (text.empty()) return std::wstring();
  const int size = ::MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
  std::wstring out(static_cast<size_t>(size > 0 ? size : 0), L'\0');
  ::MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), out.data(), size);
  return out;
}

}  // namespace

std::wstring StandinPath() { return FullPath(ProgramFolder() + L"..\\explorer\\explorer.exe"); }
std::wstring ProbePath() { return FullPath(ProgramFolder() + L"..\\explorer\\probe\\CorvaneExplorerProbe.dll"); }

StandinSession::StandinSession(const std::wstring& folder, bool keepRunning, const std::vector<std::wstring>& extra) {
  static std::atomic<int> counter{0};
  m_pipeName = L"\\\\.\\pipe\\corvane-explorer-test-" + std::to_wstring(::GetCurrentProcessId()) + L"-" + std::to_wstring(++counter);
  m_record = folder + L"\\probe-record.txt";
  m_log = folder + L"\\standin.log";
  ::DeleteFileW(m_record.c_str());
  // The stand-in, and the probe inside it, inherit the record's place.
  ::SetEnvironmentVariableW(probe::kRecordVariable, m_record.c_str());

  const std::wstring exe = StandinPath();
  std::wstring commandLine = L"\"" + exe + L"\" \"--pipe=" + m_pipeName + L"\" \"--log=" + m_log + L"\"";
  if (keepRunning) commandLine += L" --keep-running";
  for (const std::wstring& argument : extra) commandLine += L" \"" + argument + L"\"";
  STARTUPINFOW startup{sizeof(startup)};
  PROCESS_INFORMATION info{};
  if (!::CreateProcessW(exe.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &info)) {
    ADD_FAILURE() << "CreateProcess " << testing::PrintToString(exe) << ": " << ::GetLastError();
    return;
  }
  m_process.reset(info.hProcess);
  ::CloseHandle(info.hThread);
}

StandinSession::~StandinSession() {
  if (!m_process) return;
  if (::WaitForSingleObject(m_process.get(), 0) == WAIT_TIMEOUT && !Quit()) {
    ADD_FAILURE() << "the stand-in did not end after quit; log:\n" << testing::PrintToString(LogText());
    ::TerminateProcess(m_process.get(), 99);
    ::WaitForSingleObject(m_process.get(), 5000);
  }
}

bool StandinSession::Connect() {
  if (m_pipe) return true;
  const ULONGLONG deadline = ::GetTickCount64() + kConnectTimeoutMs;
  while (::GetTickCount64() < deadline) {
    m_pipe.reset(::CreateFileW(m_pipeName.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    if (m_pipe) {
      m_pending.clear();
      return true;
    }
    if (m_process && ::WaitForSingleObject(m_process.get(), 0) == WAIT_OBJECT_0) return false;
    if (::GetLastError() == ERROR_PIPE_BUSY) {
      ::WaitNamedPipeW(m_pipeName.c_str(), 1000);
    } else {
      ::Sleep(50);
    }
  }
  return false;
}

void StandinSession::Disconnect() noexcept { m_pipe.reset(); }

bool StandinSession::ReadLine(std::string& line, DWORD timeoutMs) {
  const ULONGLONG deadline = ::GetTickCount64() + timeoutMs;
  for (;;) {
    const size_t end = m_pending.find('\n');
    if (end != std::string::npos) {
      line = m_pending.substr(0, end);
      m_pending.erase(0, end + 1);
      return true;
    }
    // Polled, so that a stand-in that hangs fails the test instead of hanging it.
    DWORD available = 0;
    if (!::PeekNamedPipe(m_pipe.get(), nullptr, 0, nullptr, &available, nullptr)) return false;
    if (available == 0) {
      if (::GetTickCount64() >= deadline) return false;
      ::Sleep(5);
      continue;
    }
    char buffer[4096];
    DWORD read = 0;
    if (!::ReadFile(m_pipe.get(), buffer, available < sizeof buffer ? available : sizeof buffer, &read, nullptr)) return false;
    m_pending.append(buffer, read);
  }
}

std::wstring StandinSession::Command(const std::wstring& line) {
  if (!Connect()) return L"<no channel>";
  const std::string bytes = ToUtf8(line + L"\n");
  DWORD written = 0;
  if (!::WriteFile(m_pipe.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr)) return L"<no reply>";
  std::string reply;
  if (!ReadLine(reply, kReplyTimeoutMs)) return L"<no reply>";
  return FromUtf8(reply);
}

int StandinSession::Open(const std::wstring& location) {
  const std::wstring reply = Command(L"open " + location);
  if (reply.compare(0, 3, L"ok ") != 0) {
    ADD_FAILURE() << "open " << testing::PrintToString(location) << ": " << testing::PrintToString(reply);
    return 0;
  }
  return std::stoi(reply.substr(3));
}

HWND StandinSession::Handle(int id, const std::wstring& part) {
  const std::wstring reply = Command(L"hwnd " + std::to_wstring(id) + L" " + part);
  if (reply.compare(0, 3, L"ok ") != 0) {
    ADD_FAILURE() << "hwnd " << id << " " << testing::PrintToString(part) << ": " << testing::PrintToString(reply);
    return nullptr;
  }
  return reinterpret_cast<HWND>(static_cast<ULONG_PTR>(std::stoull(reply.substr(3))));
}

std::optional<DWORD> StandinSession::Quit() {
  if (!m_process) return std::nullopt;
  if (::WaitForSingleObject(m_process.get(), 0) == WAIT_TIMEOUT) {
    const std::wstring reply = Command(L"quit");
    EXPECT_EQ(reply, L"ok");
  }
  Disconnect();
  return WaitForExit(20000);
}

std::optional<DWORD> StandinSession::WaitForExit(DWORD timeoutMs) {
  if (!m_process || ::WaitForSingleObject(m_process.get(), timeoutMs) != WAIT_OBJECT_0) return std::nullopt;
  DWORD code = 0;
  ::GetExitCodeProcess(m_process.get(), &code);
  return code;
}

std::wstring StandinSession::LogText() const {
  std::string bytes;
  const corvane::unique_file file(::CreateFileW(m_log.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
  if (!file) return std::wstring();
  char buffer[4096];
  DWORD read = 0;
  while (::ReadFile(file.get(), buffer, sizeof buffer, &read, nullptr) && read > 0) bytes.append(buffer, read);
  return FromUtf8(bytes);
}

}  // namespace standintest
