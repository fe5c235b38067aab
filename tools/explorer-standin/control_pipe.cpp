#include "control_pipe.h"

#include <string>
#include <utility>

#include "standin_log.h"

namespace explorer_standin {

namespace {

constexpr DWORD kBufferSize = 4096;
constexpr size_t kLineLimit = 65536;
constexpr DWORD kHangUpWaitMs = 3000;

std::wstring FromUtf8(const std::string& text) {
  if (text.empty()) return std::wstring();
  const int size = ::MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
  std::wstring out(static_cast<size_t>(size > 0 ? size : 0), L'\0');
  ::MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), out.data(), size);
  return out;
}

std::string ToUtf8(const std::wstring& text) {
  if (text.empty()) return std::string();
  const int size = ::WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr, nullptr);
  std::string out(static_cast<size_t>(size > 0 ? size : 0), '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), out.data(), size, nullptr, nullptr);
  return out;
}

}  // namespace

ControlPipe::ControlPipe(std::wstring name, Handler handler, std::function<void()> onQuit)
    : m_name(std::move(name)), m_handler(std::move(handler)), m_onQuit(std::move(onQuit)) {}

bool ControlPipe::Start(std::wstring& error) {
  m_stop.reset(::CreateEventW(nullptr, TRUE, FALSE, nullptr));
  m_io.reset(::CreateEventW(nullptr, TRUE, FALSE, nullptr));
  m_pipe.reset(::CreateNamedPipeW(m_name.c_str(), PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED | FILE_FLAG_FIRST_PIPE_INSTANCE,
                                  PIPE_TYPE_BYTE | PIPE_READMODE_BYTE | PIPE_WAIT, 1, kBufferSize, kBufferSize, 0, nullptr));
  if (!m_stop || !m_io || !m_pipe) {
    error = L"cannot create the pipe " + m_name + L" (error " + std::to_wstring(::GetLastError()) + L")";
    return false;
  }
  m_thread = std::thread([this] { Serve(); });
  Log(L"control channel " + m_name);
  return true;
}

void ControlPipe::Stop() noexcept {
  {
    std::lock_guard<std::mutex> settled(m_commandLock);
    if (m_stop) ::SetEvent(m_stop.get());
  }
  if (m_thread.joinable() && m_thread.get_id() != std::this_thread::get_id()) m_thread.join();
}

bool ControlPipe::Complete(BOOL started, OVERLAPPED& overlapped, DWORD& transferred) {
  transferred = 0;
  if (!started && ::GetLastError() != ERROR_IO_PENDING) return false;
  const HANDLE events[] = {overlapped.hEvent, m_stop.get()};
  if (::WaitForMultipleObjects(2, events, FALSE, INFINITE) != WAIT_OBJECT_0) {
    ::CancelIoEx(m_pipe.get(), &overlapped);
    ::GetOverlappedResult(m_pipe.get(), &overlapped, &transferred, TRUE);
    return false;
  }
  return ::GetOverlappedResult(m_pipe.get(), &overlapped, &transferred, FALSE) != FALSE;
}

bool ControlPipe::WriteLine(const std::wstring& text) {
  const std::string bytes = ToUtf8(text + L"\n");
  size_t written = 0;
  while (written < bytes.size()) {
    OVERLAPPED overlapped{};
    overlapped.hEvent = m_io.get();
    ::ResetEvent(m_io.get());
    DWORD done = 0;
    const BOOL started = ::WriteFile(m_pipe.get(), bytes.data() + written, static_cast<DWORD>(bytes.size() - written), nullptr, &overlapped);
    if (!Complete(started, overlapped, done) || done == 0) return false;
    written += done;
  }
  return true;
}

bool ControlPipe::ServeClient() {
  std::string pending;
  char buffer[kBufferSize];
  for (;;) {
    OVERLAPPED overlapped{};
    overlapped.hEvent = m_io.get();
    ::ResetEvent(m_io.get());
    DWORD read = 0;
    const BOOL started = ::ReadFile(m_pipe.get(), buffer, sizeof buffer, nullptr, &overlapped);
    if (!Complete(started, overlapped, read) || read == 0) return false;  // hung up, or stopping
    pending.append(buffer, read);
    if (pending.size() > kLineLimit) {
      WriteLine(L"error line too long");
      return false;
    }
    for (size_t end; (end = pending.find('\n')) != std::string::npos;) {
      std::string line = pending.substr(0, end);
      pending.erase(0, end + 1);
      if (!line.empty() && line.back() == '\r') line.pop_back();
      if (line.empty()) continue;
      const std::wstring command = FromUtf8(line);
      Log(L"> " + command);
      // A command that ends the last window ends the process: Stop waits for this lock, so the
      // reply is written and read before the pipe goes away.
      std::unique_lock<std::mutex> inFlight(m_commandLock);
      Reply reply;
      try {
        reply = m_handler(command);
      } catch (...) {
        reply = Reply{L"error the command failed"};
      }
      Log(L"< " + reply.text);
      if (!WriteLine(reply.text)) return reply.quit;
      // Disconnecting discards unread data; wait until the client has taken the reply.
      ::FlushFileBuffers(m_pipe.get());
      inFlight.unlock();
      if (reply.quit) {
        // Give the client time to read the reply before the process, and the pipe, go away.
        OVERLAPPED wait{};
        wait.hEvent = m_io.get();
        ::ResetEvent(m_io.get());
        const BOOL reading = ::ReadFile(m_pipe.get(), buffer, sizeof buffer, nullptr, &wait);
        if (reading || ::GetLastError() == ERROR_IO_PENDING) {
          if (::WaitForSingleObject(m_io.get(), kHangUpWaitMs) != WAIT_OBJECT_0) ::CancelIoEx(m_pipe.get(), &wait);
          DWORD ignored = 0;
          ::GetOverlappedResult(m_pipe.get(), &wait, &ignored, TRUE);
        }
        return true;
      }
    }
  }
}

void ControlPipe::Serve() noexcept {
  try {
    for (;;) {
      OVERLAPPED overlapped{};
      overlapped.hEvent = m_io.get();
      ::ResetEvent(m_io.get());
      const BOOL connected = ::ConnectNamedPipe(m_pipe.get(), &overlapped);
      DWORD ignored = 0;
      if (!connected && ::GetLastError() == ERROR_PIPE_CONNECTED) {
        // The client connected between creation and this call: already done.
      } else if (!Complete(connected, overlapped, ignored)) {
        if (::WaitForSingleObject(m_stop.get(), 0) == WAIT_OBJECT_0) return;
        ::DisconnectNamedPipe(m_pipe.get());
        continue;
      }
      Log(L"control client connected");
      const bool quit = ServeClient();
      ::DisconnectNamedPipe(m_pipe.get());
      Log(L"control client gone");
      if (quit) {
        if (m_onQuit) m_onQuit();
        return;
      }
      if (::WaitForSingleObject(m_stop.get(), 0) == WAIT_OBJECT_0) return;
    }
  } catch (...) {
    Log(L"control channel stopped on an exception");
  }
}

}  // namespace explorer_standin
