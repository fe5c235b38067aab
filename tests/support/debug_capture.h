#pragma once
// Collects what this process sends to the debugger output (OutputDebugStringA/W) while it lives.
// OutputDebugString raises a printing exception that a vectored handler sees first; the handler
// records the text and lets the system go on as if no one had looked.
#include <windows.h>

#include <mutex>
#include <string>
#include <vector>

namespace testsupport {

class DebugCapture {
 public:
  DebugCapture();
  ~DebugCapture();
  DebugCapture(const DebugCapture&) = delete;
  DebugCapture& operator=(const DebugCapture&) = delete;

  // Every captured line, oldest first (narrow lines converted from the ANSI code page).
  std::vector<std::wstring> Lines() const;
  // Captured lines containing the given text.
  std::vector<std::wstring> LinesContaining(const std::wstring& text) const;
  void Clear();

 private:
  static LONG CALLBACK Handler(EXCEPTION_POINTERS* info);
  void Add(std::wstring line);

  PVOID m_handler = nullptr;
  mutable std::mutex m_mutex;
  std::vector<std::wstring> m_lines;
  bool m_sawWide = false;
};

}  // namespace testsupport
