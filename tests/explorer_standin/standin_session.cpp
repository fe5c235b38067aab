#include "standin_session.h"

#include <gtest/gtest.h>

#include <atomic>

#include "log_files.h"
#include "platform/module_path.h"

namespace standintest {

namespace {

constexpr DWORD kConnectTimeoutMs = 20000;
constexpr DWORD kReplyTimeoutMs = 30000;

std::wstring FromUtf8(const std::string& text) {
  if (text.empty()) return std::wstring();
  const int size = ::MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
  std::wstring out(static_cast<size_t>(size > 0 ? size : 0), L'\0');
  ::MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), out.data(), size);
  return out;
}

}  // namespace

StandinSession::StandinSession(const std::wstring& folder) {
  static std::atomic<int> counter{0};
  m_pipeName = L"\\\\.\\pipe\\corvane-explorer-test-" + std::to_wstring(::GetCurrentProcessId()) + L"-" + std::to_wstring(++counter);
  m_log = folder + L"\\standin.log";

  // The test bed's explorer.exe, in a folder of its own beside this program's.
  const std::wstring exe = corvane::ClientFolder() + L"explorer\\explorer.exe";
  std::wstring commandLine = L"\"" + exe + L"\" \"--pipe=" + m_pipeName + L"\" \"--log=" + m_log + L"\" --keep-running";
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
    ::Sleep(50);
  }
  return false;
}

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
  const std::string bytes = logtest::Utf8(line + L"\n");
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
  m_pipe.reset();
  if (::WaitForSingleObject(m_process.get(), 20000) != WAIT_OBJECT_0) return std::nullopt;
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
