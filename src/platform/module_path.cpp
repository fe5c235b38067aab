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

std::wstring ThisModuleFolder() { return core::FolderOf(ThisModulePath()); }

std::wstring ClientFolder() { return core::ParentFolder(ThisModuleFolder()); }

}  // namespace corvane
