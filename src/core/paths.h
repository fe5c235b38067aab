#pragma once
#include <string>
#include <string_view>

namespace corvane::core {

// The folder part of a full path: everything up to and including the last backslash
// (empty when there is none).
std::wstring FolderOf(std::wstring_view path);

// The parent of a folder, ending in its separator. Trailing backslashes and slashes are ignored;
// a drive root ("C:"), a UNC share root ("\\server\share") or nothing at all is kept as given.
// C:\Program Files\App\shell\ -> C:\Program Files\App\ .
std::wstring ParentFolder(std::wstring_view folder);

// Appends a backslash unless the text already ends in one.
std::wstring WithTrailingBackslash(std::wstring text);

}  // namespace corvane::core
