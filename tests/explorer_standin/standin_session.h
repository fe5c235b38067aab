#pragma once
// One run of the built explorer.exe stand-in, driven through its control channel.
#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <optional>
#include <string>

#include "log_files.h"
#include "platform/handles.h"
#include "platform/module_path.h"
#include "window_probe.h"

namespace standintest {

class StandinSession {
 public:
  // Starts the stand-in with a private pipe and log in `folder`, running until told to quit.
  explicit StandinSession(const std::wstring& folder) {
    static std::atomic<int> counter{0};
    m_pipeName = L"\\\\.\\pipe\\corvane-explorer-test-" + std::to_wstring(::GetCurrentProcessId()) + L"-" +
                 std::to_wstring(++counter);
    m_log = folder + L"\\standin.log";

    // The test bed's explorer.exe, in a folder of its own beside this program's.
    const std::wstring exe = corvane::ClientFolder() + L"explorer\\explorer.exe";
    m_process = testsupport::StartProcess(exe, L"\"" + exe + L"\" \"--pipe=" + m_pipeName + L"\" \"--log=" + m_log +
                                                   L"\" --keep-running");
  }
  StandinSession(const StandinSession&) = delete;
  StandinSession& operator=(const StandinSession&) = delete;
  // Quits the stand-in if it still runs; ends it by force if it does not go.
  ~StandinSession() {
    if (m_process && ::WaitForSingleObject(m_process.get(), 0) == WAIT_TIMEOUT && !Quit()) {
      ADD_FAILURE() << "the stand-in did not end after quit; log:\n" << testing::PrintToString(LogText());
      ::TerminateProcess(m_process.get(), 99);
      ::WaitForSingleObject(m_process.get(), 5000);
    }
  }

  // Connects (retrying while the stand-in starts); false if no channel appeared in time.
  bool Connect() {
    // Given up at once when the stand-in has ended.
    return m_pipe || (testsupport::WaitUntil([&] {
      m_pipe.reset(
          ::CreateFileW(m_pipeName.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
      return m_pipe || (m_process && ::WaitForSingleObject(m_process.get(), 0) == WAIT_OBJECT_0);
    }, 20000) && m_pipe);
  }
  // One command, one reply line; "<no reply>" when the channel broke or stayed silent.
  std::wstring Command(const std::wstring& line) {
    if (!Connect()) return L"<no channel>";
    const std::string bytes = logtest::Utf8(line + L"\n");
    DWORD written = 0;
    if (!::WriteFile(m_pipe.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr)) {
      return L"<no reply>";
    }
    // Polled, so that a stand-in that hangs fails the test instead of hanging it; a byte at a time, so
    // that nothing of a later reply is read with this one.
    std::string reply;
    const ULONGLONG deadline = ::GetTickCount64() + 30000;
    for (char c = 0; c != '\n';) {
      DWORD available = 0, read = 0;
      if (!::PeekNamedPipe(m_pipe.get(), nullptr, 0, nullptr, &available, nullptr)) return L"<no reply>";
      if (available == 0) {
        if (::GetTickCount64() >= deadline) return L"<no reply>";
        ::Sleep(5);
      } else if (!::ReadFile(m_pipe.get(), &c, 1, &read, nullptr)) {
        return L"<no reply>";
      } else if (c != '\n') {
        reply += c;
      }
    }
    return logtest::Wide(reply);
  }

  // Convenience forms: the id of a new window (0 on failure) and a window's part.
  int Open(const std::wstring& location) { return std::stoi(OkValue(L"open " + location)); }
  HWND Handle(int id, const std::wstring& part) {
    const std::wstring handle = OkValue(L"hwnd " + std::to_wstring(id) + L" " + part);
    return reinterpret_cast<HWND>(static_cast<ULONG_PTR>(std::stoull(handle)));
  }

  // Sends quit and waits for the process; its exit code, nullopt if it did not end in time.
  std::optional<DWORD> Quit() {
    if (!m_process) return std::nullopt;
    if (::WaitForSingleObject(m_process.get(), 0) == WAIT_TIMEOUT) {
      EXPECT_EQ(Command(L"quit"), L"ok");
    }
    m_pipe.reset();
    if (::WaitForSingleObject(m_process.get(), 20000) != WAIT_OBJECT_0) return std::nullopt;
    DWORD code = 0;
    ::GetExitCodeProcess(m_process.get(), &code);
    return code;
  }

  std::wstring LogText() const {
    const std::vector<std::uint8_t> bytes = logtest::ReadBytes(m_log, true);
    return logtest::Wide(std::string(bytes.begin(), bytes.end()));
  }

 private:
  // What follows "ok " in the reply to a command that answers with a number; "0" and a failure of
  // the calling test for any other reply.
  std::wstring OkValue(const std::wstring& command) {
    const std::wstring reply = Command(command);
    if (reply.compare(0, 3, L"ok ") == 0) return reply.substr(3);
    ADD_FAILURE() << testing::PrintToString(command) << ": " << testing::PrintToString(reply);
    return L"0";
  }

  std::wstring m_pipeName;
  std::wstring m_log;
  corvane::unique_handle m_process;
  corvane::unique_file m_pipe;
};

}  // namespace standintest
