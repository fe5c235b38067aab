#include "client/reg_util.h"

#include <cstdio>

#include "client/reg_util_key.h"
#include "core/numbers.h"
#include "platform/handles.h"
#include "platform/work_profile.h"

namespace regUtil {

namespace {

void PrintFailure(const char* text) noexcept {
  std::fputs(text, stderr);
  std::fputs("\n", stderr);
}

DWORD FileAttributes(const std::wstring& path) noexcept {
  return path.empty() ? INVALID_FILE_ATTRIBUTES : ::GetFileAttributesW(path.c_str());
}

}  // namespace

bool KeyExists(const std::wstring& subkey) noexcept { return CReadKey(subkey.c_str()).IsOpen(); }

bool ValueExists(const std::wstring& subkey, const std::wstring& name) noexcept {
  return CReadKey(subkey.c_str()).HasValue(name.c_str());
}

std::wstring ReadRegistryValue(const std::wstring& subkey, const std::wstring& name) noexcept {
  try {
    const CReadKey key(subkey.c_str());
    if (!key.IsOpen()) {
      PrintFailure("Failed to open registry key.");
      return std::wstring();
    }
    return key.ReadText(name.c_str());
  } catch (...) {
    // Only an allocation for a huge value can fail here; it reads as no value.
    return std::wstring();
  }
}

std::uint32_t ReadRegistryDword(const std::wstring& subkey, const std::wstring& name) noexcept {
  const corvane::unique_hkey key = OpenUserKey(subkey.c_str(), KEY_READ);
  if (!key) {
    PrintFailure("Failed to open registry key.");
    return 0;
  }
  DWORD value = 0;
  DWORD size = sizeof(value);
  // No type test: any four bytes are taken as the number.
  const corvane::profile::Timed timed(corvane::profile::Work::RegistryRead);
  if (::RegQueryValueExW(key.get(), name.c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(&value), &size) !=
          ERROR_SUCCESS ||
      size != sizeof(value)) {
    return 0;
  }
  return value;
}

void WriteRegistryValue(const std::wstring& subkey, const std::wstring& name, const std::wstring& text) noexcept {
  corvane::unique_hkey key;
  if (KeyExists(subkey)) {
    key = OpenUserKey(subkey.c_str(), KEY_ALL_ACCESS);
    if (!key) {
      PrintFailure("Failed to open registry key.");
      return;
    }
  } else {
    HKEY created = nullptr;
    if (::RegCreateKeyExW(HKEY_CURRENT_USER, subkey.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                          nullptr, &created, nullptr) != ERROR_SUCCESS) {
      PrintFailure("Failed to create registry key.");
      return;
    }
    key.reset(created);
  }
  const auto bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t) + sizeof(wchar_t));
  if (::RegSetValueExW(key.get(), name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()), bytes) !=
      ERROR_SUCCESS) {
    PrintFailure("Failed to write registry value.");
  }
}

bool IsDirectory(const std::wstring& path) noexcept {
  const DWORD attributes = FileAttributes(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool IsFile(const std::wstring& path) noexcept {
  const DWORD attributes = FileAttributes(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

std::int32_t StrToInt(const std::wstring& text) noexcept { return corvane::core::ParseDecimalInt32(text); }

std::int64_t StrToInt64(const std::wstring& text) noexcept { return corvane::core::ParseDecimalInt64(text); }

}  // namespace regUtil
