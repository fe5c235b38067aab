#pragma once
// The process-wide file logger: UTF-16 lines, flushed one by one, rotated at 5 MiB,
// every line also sent to the debugger output.
#include <windows.h>

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <string>

#include "core/log_format.h"
#include "platform/handles.h"

namespace LOGGER {

enum Level : int { LevelFatal = 1, LevelError = 2, LevelWarning = 3, LevelInfo = 4 };

class CLogger {
 public:
  CLogger(int level, std::wstring folder, std::wstring name);
  virtual ~CLogger();
  CLogger(const CLogger&) = delete;
  CLogger& operator=(const CLogger&) = delete;

  void Fatal(std::uint32_t line, const char* file, const char* function, const char* format, ...);
  void Error(std::uint32_t line, const char* file, const char* function, const char* format, ...);
  void Warning(std::uint32_t line, const char* file, const char* function, const char* format, ...);
  void Info(std::uint32_t line, const char* file, const char* function, const char* format, ...);
  void Debug(std::uint32_t line, const char* file, const char* function, const char* format, ...);

  void Fatal(std::uint32_t line, const wchar_t* file, const wchar_t* function, const wchar_t* format, ...);
  void Error(std::uint32_t line, const wchar_t* file, const wchar_t* function, const wchar_t* format, ...);
  void Warning(std::uint32_t line, const wchar_t* file, const wchar_t* function, const wchar_t* format, ...);
  void Info(std::uint32_t line, const wchar_t* file, const wchar_t* function, const wchar_t* format, ...);
  void Debug(std::uint32_t line, const wchar_t* file, const wchar_t* function, const wchar_t* format, ...);

  // For tests and diagnostics: where the current file is.
  const std::wstring& Path() const noexcept { return m_path; }
  const std::wstring& Folder() const noexcept { return m_folder; }

 private:
  template <class Ch>
  void Write(int levelNumber, const Ch* tag, std::uint32_t line, const Ch* file, const Ch* function,
             const Ch* format, va_list args) noexcept;
  void WriteToFile(const std::wstring& line) noexcept;
  bool OpenFile() noexcept;
  void RotateIfNeeded() noexcept;

  std::uint64_t m_maxFileSize;
  std::uint64_t m_backupCount;
  FILE* m_file;
  int m_level;
  std::wstring m_folder;
  std::wstring m_fileName;
  std::wstring m_path;
  corvane::critical_section m_lock;
};

}  // namespace LOGGER

// The process-wide logger; created by InitLogger at DLL attach and deleted at detach.
extern LOGGER::CLogger* g_pLogger;

// Creates g_pLogger for the module containing this code: <parent of the module's folder>\log\Corvane.
void InitLogger();

#define CORVANE_WIDEN2(x) L##x
#define CORVANE_WIDEN(x) CORVANE_WIDEN2(x)
#define CORVANE_WFILE ::corvane::core::SourceName(CORVANE_WIDEN(__FILE__))

// LOG_INFO(L"CTitleWindow::OnTimer", L"format %s", arg): the function name is written out by hand.
// A missing logger (before attach, after detach) makes the call a no-op.
#define LOG_INFO(function, ...)                                                                         \
  do {                                                                                                  \
    if (LOGGER::CLogger* corvane_log_ = g_pLogger) corvane_log_->Info(__LINE__, CORVANE_WFILE, function, __VA_ARGS__); \
  } while (false)
#define LOG_DEBUG(function, ...)                                                                         \
  do {                                                                                                   \
    if (LOGGER::CLogger* corvane_log_ = g_pLogger) corvane_log_->Debug(__LINE__, CORVANE_WFILE, function, __VA_ARGS__); \
  } while (false)
