#pragma once
// The text steps that turn the client's published sync folder into the form the folder check
// compares against. The existence test between them needs the file system and lives in the client
// bridge; the final trailing backslash is WithTrailingBackslash (core/paths.h).
#include <string>

namespace corvane::core {

// Removes exactly one trailing backslash; true when it did. A value written with two keeps one,
// which the final step then leaves alone.
bool DropOneTrailingBackslash(std::wstring& path) noexcept;

// The client may write forward slashes ("D:/Sync/"); Explorer's paths use backslashes.
void SlashesToBackslashes(std::wstring& path) noexcept;

}  // namespace corvane::core
