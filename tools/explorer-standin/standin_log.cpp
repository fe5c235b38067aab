#include "standin_log.h"

#include <windows.h>

#include <mutex>
#include <string>

#include "platform/handles.h"

namespace explorer_standin {

namespace {

std::mutex& LogLock() {
  static std::mutex lock;
  return lock;
}

corvane::unique_file& LogFile() {
  static corvane::unique_file file;
  return file;
}

std::string ToUtf8(const std::wstring& text) {
  if (text.empty()) return std::string();
  const int size = ::WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr, nullptr);
  std::string out(static_cast<size_t>(size > 0 ? size : 0), '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), out.data(), size, nullptr, nullptr);
  return out;
}

}  // namespace

bool OpenLog(const std::wstring& path) {
  std::lock_guard<std::mutex> guard(LogLock());
  LogFile().reset(::CreateFileW(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  return static_cast<bool>(LogFile());
}

void CloseLog() noexcept {
  try {
    std::lock_guard<std::mutex> guard(LogLock());
    LogFile().reset();
  } catch (...) {
  }
}

void Log(const std::wstring& text) noexcept {
  try {
    SYSTEMTIME now{};
    ::GetLocalTime(&now);
    wchar_t prefix[64];
    _snwprintf_s(prefix, _TRUNCATE, L"%02u:%02u:%02u.%03u [%5lu] ", now.wHour, now.wMinute, now.wSecond,
                 now.wMilliseconds, ::GetCurrentThreadId());
    const std::string line = ToUtf8(prefix + text + L"\r\n");
    std::lock_guard<std::mutex> guard(LogLock());
    if (!LogFile()) return;
    DWORD written = 0;
    ::WriteFile(LogFile().get(), line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
  } catch (...) {
    // A log line that cannot be written is lost; the stand-in carries on.
  }
}

std::wstring HexResult(long hr) {
  wchar_t text[16];
  _snwprintf_s(text, _TRUNCATE, L"0x%08lX", static_cast<unsigned long>(hr));
  return text;
}

std::wstring HandleText(const void* handle) {
  return std::to_wstring(reinterpret_cast<ULONG_PTR>(handle));
}

}  // namespace explorer_standin
