#pragma once
#include <string_view>

namespace corvane::core {

// The add-in runs only inside Explorer and the registration tool. The file name is compared from
// its last backslash, after lower-casing ASCII letters only ("\EXPLORER.EXE" passes, "\myexplorer.exe"
// and any path without a backslash fail; letters outside ASCII are compared unchanged).
bool IsAllowedHost(std::wstring_view hostPath);

// ASCII-only lower-casing, the same on every platform whatever the C library's locale says.
wchar_t AsciiLower(wchar_t c) noexcept;

}  // namespace corvane::core
