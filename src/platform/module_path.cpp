#include "platform/module_path.h"

#include "core/paths.h"

namespace corvane {

HMODULE ThisModule() noexcept {
  HMODULE module = nullptr;
  // The address of this very function lies in the module we want, whichever module linked it.
  if (!::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            reinterpret_cast<LPCWSTR>(&ThisModule), &module)) {
    return nullptr;
  }
  return module;
}

std::wstring ThisModulePath() {
  wchar_t buffer[MAX_PATH] = {};
  const DWORD length = ::GetModuleFileNameW(ThisModule(), buffer, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return std::wstring();
  return std::wstring(buffer, length);
}

std::wstring ThisModuleFolder() {
  // Read into MAX_PATH characters like every path of the add-in. A longer path comes back cut to
  // its first 259 characters, and the folder is what precedes the last backslash of that text: the
  // right folder while only the file name was cut, else an ancestor of it, but always absolute (an
  // empty folder would turn the log and skin folders into paths relative to Explorer's directory).
  wchar_t buffer[MAX_PATH] = {};
  const DWORD length = ::GetModuleFileNameW(ThisModule(), buffer, MAX_PATH);
  if (length == 0) return std::wstring();
  return core::FolderOf(std::wstring(buffer, length < MAX_PATH ? length : MAX_PATH - 1));
}

std::wstring ClientFolder() { return core::ParentFolder(ThisModuleFolder()); }

}  // namespace corvane
