#include "debug_capture.h"

#include <atomic>

#include "log_files.h"

#ifndef DBG_PRINTEXCEPTION_WIDE_C
#define DBG_PRINTEXCEPTION_WIDE_C 0x4001000AL
#endif
#ifndef DBG_PRINTEXCEPTION_C
#define DBG_PRINTEXCEPTION_C 0x40010006L
#endif

namespace testsupport {

namespace {
std::atomic<DebugCapture*> g_active{nullptr};
}

DebugCapture::DebugCapture() {
  g_active.store(this);
  m_handler = ::AddVectoredExceptionHandler(1, &DebugCapture::Handler);
}

DebugCapture::~DebugCapture() {
  if (m_handler != nullptr) ::RemoveVectoredExceptionHandler(m_handler);
  g_active.store(nullptr);
}

LONG CALLBACK DebugCapture::Handler(EXCEPTION_POINTERS* info) {
  DebugCapture* self = g_active.load();
  const EXCEPTION_RECORD* record = info->ExceptionRecord;
  const bool wide = record->ExceptionCode == static_cast<DWORD>(DBG_PRINTEXCEPTION_WIDE_C);
  if (self == nullptr || record->NumberParameters < 2 ||
      (!wide && record->ExceptionCode != static_cast<DWORD>(DBG_PRINTEXCEPTION_C))) {
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

std::vector<std::wstring> DebugCapture::Lines() const {
  std::lock_guard<std::mutex> lock(m_mutex);
  return m_lines;
}

std::vector<std::wstring> DebugCapture::LinesContaining(const std::wstring& text) const {
  std::vector<std::wstring> lines = Lines();
  std::erase_if(lines, [&](const std::wstring& line) { return line.find(text) == std::wstring::npos; });
  return lines;
}

void DebugCapture::Clear() {
  std::lock_guard<std::mutex> lock(m_mutex);
  m_lines.clear();
}

}  // namespace testsupport
