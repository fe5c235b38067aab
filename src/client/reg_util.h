#pragma once
// Generic registry and file-system helpers on HKEY_CURRENT_USER. Key paths are relative to the
// hive. Failures to open, create or write a key are printed to standard error, not to the log:
// these helpers sit below every caller's own log line.
#include <windows.h>

#include <cstdint>
#include <string>

namespace regUtil {

// The key opens with KEY_READ.
bool KeyExists(const std::wstring& subkey) noexcept;
// The key opens with KEY_READ and the value is there (any type, any size).
bool ValueExists(const std::wstring& subkey, const std::wstring& name) noexcept;

// The value's bytes taken as UTF-16 text whatever its registry type, up to the first null;
// data stored without a terminating null still reads whole. Empty on any failure.
std::wstring ReadRegistryValue(const std::wstring& subkey, const std::wstring& name) noexcept;

// The value's four bytes; 0 when the key does not open, the value is missing or not exactly 4 bytes.
std::uint32_t ReadRegistryDword(const std::wstring& subkey, const std::wstring& name) noexcept;

// Writes the text as REG_SZ with its terminating null, creating the key when needed.
void WriteRegistryValue(const std::wstring& subkey, const std::wstring& name, const std::wstring& text) noexcept;

// The path is not empty and names an existing folder (IsDirectory) or a non-folder (IsFile).
bool IsDirectory(const std::wstring& path) noexcept;
bool IsFile(const std::wstring& path) noexcept;

// Decimal integers as the client writes them: leading blanks and a sign allowed, trailing text
// ignored, 0 when there is no number or it does not fit.
std::int32_t StrToInt(const std::wstring& text) noexcept;
std::int64_t StrToInt64(const std::wstring& text) noexcept;

}  // namespace regUtil
