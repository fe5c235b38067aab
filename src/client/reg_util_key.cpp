#include "client/reg_util_key.h"

#include <cwchar>

#include "log/logger.h"
#include "platform/work_profile.h"

namespace regUtil {

corvane::unique_hkey OpenUserKey(const wchar_t* subkey, REGSAM access) noexcept {
  HKEY key = nullptr;
  if (::RegOpenKeyExW(HKEY_CURRENT_USER, subkey, 0, access, &key) != ERROR_SUCCESS) return corvane::unique_hkey();
  return corvane::unique_hkey(key);
}

CReadKey::CReadKey(const wchar_t* subkey) noexcept : m_key(OpenUserKey(subkey, KEY_READ)) {}

std::optional<DWORD> CReadKey::ValueSize(const wchar_t* name) const noexcept {
  if (!m_key) return std::nullopt;
  DWORD type = 0;
  DWORD size = 0;
  const corvane::profile::Timed timed(corvane::profile::Work::RegistryRead);
  if (::RegQueryValueExW(m_key.get(), name, nullptr, &type, nullptr, &size) != ERROR_SUCCESS) return std::nullopt;
  return size;
}

std::wstring CReadKey::ReadText(const wchar_t* name, std::optional<DWORD> knownSize) const {
  if (!m_key) return std::wstring();
  if (!knownSize) knownSize = ValueSize(name);
  if (!knownSize || *knownSize == 0) return std::wstring();
  const DWORD size = *knownSize;
  // Two spare characters, all zero, keep the text terminated even when the stored data has no
  // null of its own or ends in half a character.
  const std::size_t half = size / 2;
  std::wstring buffer(half + 2, L'\0');
  DWORD read = size;
  const corvane::profile::Timed timed(corvane::profile::Work::RegistryRead);
  if (::RegQueryValueExW(m_key.get(), name, nullptr, nullptr, reinterpret_cast<BYTE*>(buffer.data()), &read) !=
      ERROR_SUCCESS) {
    return std::wstring();
  }
  const std::size_t length = std::wcslen(buffer.c_str());
  if (length > half) {
    // Only an odd byte count whose last byte is not zero gets here: that byte became a character.
    LOG_DEBUG(L"ReadRegistryValue", L"RegQueryValue after value = %s,%d,%d", buffer.c_str(), static_cast<int>(size),
              static_cast<int>(half));
  }
  buffer.resize(length);
  return buffer;
}

}  // namespace regUtil
