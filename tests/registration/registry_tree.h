#pragma once
// A registry key and everything under it, read into plain maps so whole trees compare at once.
#include <windows.h>

#include <map>
#include <optional>
#include <string>

namespace regtest {

// Value name (upper-cased, "" for the default value) -> "sz:<text>" or "dword:0x........" (other
// types as "type<n>").
using Values = std::map<std::wstring, std::wstring>;
// Key path below the root (upper-cased, "" for the root itself) -> its values.
using Tree = std::map<std::wstring, Values>;

std::wstring Sz(const std::wstring& text);
std::wstring Dword(DWORD value);
std::wstring Upper(std::wstring text);

// The tree under hive\path, or nothing when the key does not exist.
std::optional<Tree> ReadTree(HKEY hive, const std::wstring& path);

// One value, rendered as above, or nothing when the key or the value does not exist.
std::optional<std::wstring> ReadValue(HKEY hive, const std::wstring& path, const std::wstring& name);

bool KeyExists(HKEY hive, const std::wstring& path);

}  // namespace regtest
