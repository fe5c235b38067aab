#pragma once
// One run of the built explorer.exe stand-in, driven through its control channel.
#include <windows.h>

#include <optional>
#include <string>

#include "platform/handles.h"

namespace standintest {

class StandinSession {
 public:
  // Starts the stand-in with a private pipe and log in `folder`, running until told to quit.
  explicit StandinSession(const std::wstring& folder);
  StandinSession(const StandinSession&) = delete;
  StandinSession& operator=(const StandinSession&) = delete;
  // Quits the stand-in if it still runs; ends it by force if it does not go.
  ~StandinSession();

  // Connects (retrying while the stand-in starts); false if no channel appeared in time.
  bool Connect();
  // One command, one reply line; "<no reply>" when the channel broke or stayed silent.
  std::wstring Command(const std::wstring& line);

  // Convenience forms: the id of a new window (0 on failure) and a window's part.
  int Open(const std::wstring& location);
  HWND Handle(int id, const std::wstring& part);

  // Sends quit and waits for the process; its exit code, nullopt if it did not end in time.
  std::optional<DWORD> Quit();

  std::wstring LogText() const;

 private:
  std::wstring m_pipeName;
  std::wstring m_log;
  corvane::unique_handle m_process;
  corvane::unique_file m_pipe;
};

}  // namespace standintest
