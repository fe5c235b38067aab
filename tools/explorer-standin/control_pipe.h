#pragma once
// The control channel: a named pipe taking one client at a time. A client writes command lines
// (UTF-8, ending in "\n") and reads one reply line for each. When a client goes, the next may
// connect. After the reply to "quit" the channel waits briefly for the client to read it and hang
// up, then reports the quit.
#include <windows.h>

#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include "command_interpreter.h"
#include "platform/handles.h"

namespace explorer_standin {

class ControlPipe {
 public:
  using Handler = std::function<Reply(const std::wstring& line)>;

  // onQuit: called on the channel's thread after the reply to a quit command was written.
  ControlPipe(std::wstring name, Handler handler, std::function<void()> onQuit);
  ControlPipe(const ControlPipe&) = delete;
  ControlPipe& operator=(const ControlPipe&) = delete;
  ~ControlPipe() { Stop(); }

  // Creates the pipe, so that clients can connect from now on, and starts serving it.
  bool Start(std::wstring& error);
  void Stop() noexcept;

 private:
  void Serve() noexcept;
  // Waits for an overlapped operation; false when it failed or the channel is stopping.
  bool Complete(BOOL started, OVERLAPPED& overlapped, DWORD& transferred);
  bool WriteLine(const std::wstring& text);
  // One client, until it hangs up; true when it asked to quit.
  bool ServeClient();

  const std::wstring m_name;
  const Handler m_handler;
  const std::function<void()> m_onQuit;
  corvane::unique_file m_pipe;
  corvane::unique_handle m_stop;
  corvane::unique_handle m_io;
  std::thread m_thread;
  std::mutex m_commandLock;
};

}  // namespace explorer_standin
