#include "platform/window.h"

#include <mutex>
#include <string>
#include <vector>

namespace corvane {

namespace {

std::mutex& ClassesLock() {
  static std::mutex lock;
  return lock;
}

std::vector<std::wstring>& RegisteredClasses() {
  static std::vector<std::wstring> classes;
  return classes;
}

}  // namespace

ATOM RegisterModuleWindowClass(const wchar_t* className, WNDPROC procedure, HCURSOR cursor, UINT style,
                               HBRUSH background) {
  std::lock_guard<std::mutex> guard(ClassesLock());
  WNDCLASSEXW existing{sizeof(existing)};
  if (const ATOM atom = static_cast<ATOM>(::GetClassInfoExW(ThisModule(), className, &existing))) return atom;
  WNDCLASSEXW wc{sizeof(wc)};
  wc.style = style;
  wc.lpfnWndProc = procedure;
  wc.hInstance = ThisModule();
  wc.hCursor = cursor;
  wc.hbrBackground = background;
  wc.lpszClassName = className;
  const ATOM atom = ::RegisterClassExW(&wc);
  if (atom != 0) RegisteredClasses().emplace_back(className);
  return atom;
}

void UnregisterModuleWindowClasses() noexcept {
  try {
    std::lock_guard<std::mutex> guard(ClassesLock());
    for (const std::wstring& name : RegisteredClasses()) ::UnregisterClassW(name.c_str(), ThisModule());
    RegisteredClasses().clear();
  } catch (...) {
  }
}

}  // namespace corvane
