#include "scratch_folder.h"

#include <windows.h>
#include <shlobj.h>

#include <atomic>

#include "platform/handles.h"

namespace standintest {

namespace {

void RemoveTree(const std::wstring& folder) {
  WIN32_FIND_DATAW data{};
  corvane::unique_find find(::FindFirstFileW((folder + L"\\*").c_str(), &data));
  if (find) {
    do {
      const std::wstring name = data.cFileName;
      if (name == L"." || name == L"..") continue;
      const std::wstring path = folder + L"\\" + name;
      if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        RemoveTree(path);
      } else {
        ::DeleteFileW(path.c_str());
      }
    } while (::FindNextFileW(find.get(), &data));
  }
  find.reset();
  ::RemoveDirectoryW(folder.c_str());
}

}  // namespace

ScratchFolder::ScratchFolder() {
  static std::atomic<int> counter{0};
  wchar_t temp[MAX_PATH + 1] = {};
  const DWORD length = ::GetTempPathW(MAX_PATH + 1, temp);
  // The long form: the shell hands back long names, and the tests compare paths exactly.
  wchar_t full[MAX_PATH] = {};
  const DWORD fullLength = ::GetLongPathNameW(std::wstring(temp, length).c_str(), full, MAX_PATH);
  std::wstring base = fullLength != 0 && fullLength < MAX_PATH ? std::wstring(full, fullLength) : std::wstring(temp, length);
  if (!base.empty() && base.back() == L'\\') base.pop_back();
  m_root = base + L"\\corvane-standin-" + std::to_wstring(::GetCurrentProcessId()) + L"-" + std::to_wstring(++counter);
  RemoveTree(m_root);
  ::CreateDirectoryW(m_root.c_str(), nullptr);
}

ScratchFolder::~ScratchFolder() { RemoveTree(m_root); }

std::wstring ScratchFolder::MakeFolder(const std::wstring& relative) const {
  const std::wstring path = m_root + L"\\" + relative;
  ::SHCreateDirectoryExW(nullptr, path.c_str(), nullptr);
  return path;
}

}  // namespace standintest
