#pragma once
// Collects what this process sends to the debugger output (OutputDebugStringA/W) while it lives.
// OutputDebugString raises a printing exception that a vectored handler sees first; the handler
// records the text and lets the system go on as if no one had looked.
#include <windows.h>

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

#include "log_files.h"

namespace testsupport {

class DebugCapture {
 public:
  DebugCapture() {
    Active().store(this);
    m_handler = ::AddVectoredExceptionHandler(1, &DebugCapture::Handler);
  }
  ~DebugCapture() {
    if (m_handler != nullptr) ::RemoveVectoredExceptionHandler(m_handler);
    Active().store(nullptr);
  }
  DebugCapture(const DebugCapture&) = delete;
  DebugCapture& operator=(const DebugCapture&) = delete;

  // Every captured line, oldest first (narrow lines converted from the ANSI code page).
  std::vector<std::wstring> Lines() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_lines;
  }
  // Captured lines containing the given text.
  std::vector<std::wstring> LinesContaining(const std::wstring& text) const {
    std::vector<std::wstring> lines = Lines();
    std::erase_if(lines, [&](const std::wstring& line) { return line.find(text) == std::wstring::npos; });
    return lines;
  }
  void Clear() {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_lines.clear();
  }

 private:
  // The capture that takes the lines: the latest one made.
  static std::atomic<DebugCapture*>& Active() {
    static std::atomic<DebugCapture*> active{nullptr};
    return active;
  }

  // DBG_PRINTEXCEPTION_WIDE_C and DBG_PRINTEXCEPTION_C, which the mingw-w64 headers do not define.
  static constexpr DWORD kPrintWide = 0x4001000A;
  static constexpr DWORD kPrintNarrow = 0x40010006;

  static LONG CALLBACK Handler(EXCEPTION_POINTERS* info) {
    DebugCapture* self = Active().load();
    const EXCEPTION_RECORD* record = info->ExceptionRecord;
    const bool wide = record->ExceptionCode == kPrintWide;
    if (self == nullptr || record->NumberParameters < 2 || (!wide && record->ExceptionCode != kPrintNarrow)) {
      return EXCEPTION_CONTINUE_SEARCH;
    }
    try {
      const auto length = static_cast<size_t>(record->ExceptionInformation[0]);
      const size_t chars = length > 0 ? length - 1 : 0;  // without the terminator
      const auto text = record->ExceptionInformation[1];
      std::wstring line = wide ? std::wstring(reinterpret_cast<const wchar_t*>(text), chars)
                               : logtest::Wide(std::string_view(reinterpret_cast<const char*>(text), chars), CP_ACP);
      std::lock_guard<std::mutex> lock(self->m_mutex);
      // Unhandled, the system repeats a wide line as a narrow one; that copy is skipped.
      if (!wide && self->m_sawWide && !self->m_lines.empty() && self->m_lines.back() == line) {
        self->m_sawWide = false;
      } else {
        self->m_sawWide = self->m_sawWide || wide;
        self->m_lines.push_back(std::move(line));
      }
    } catch (...) {
    }
    return EXCEPTION_CONTINUE_SEARCH;
  }

  PVOID m_handler = nullptr;
  mutable std::mutex m_mutex;
  std::vector<std::wstring> m_lines;
  bool m_sawWide = false;
};

}  // namespace testsupport
