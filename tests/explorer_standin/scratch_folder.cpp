#include "scratch_folder.h"

#include <windows.h>

#include <atomic>
#include <filesystem>
#include <system_error>

namespace standintest {

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
  std::error_code error;
  std::filesystem::remove_all(m_root, error);
  std::filesystem::create_directory(m_root, error);
}

ScratchFolder::~ScratchFolder() {
  std::error_code error;
  std::filesystem::remove_all(m_root, error);
}

std::wstring ScratchFolder::MakeFolder(const std::wstring& relative) const {
  const std::wstring path = m_root + L"\\" + relative;
  std::error_code error;
  std::filesystem::create_directories(path, error);
  return path;
}

}  // namespace standintest
