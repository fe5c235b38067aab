#pragma once
// A file's identity as the picture caches need it: whether it exists, its size and last-write time.
// Two equal stamps mean the file was not rewritten in between.
#include <windows.h>

#include <string>

namespace imageutil {

struct FileStamp {
  bool exists = false;
  ULONGLONG size = 0;
  FILETIME lastWrite{};
};

// The stamp of a file as it is now; exists false when it is missing or a folder.
FileStamp StampOf(const std::wstring& path) noexcept;
// Both exist with the same size and last-write time.
bool SameStamp(const FileStamp& a, const FileStamp& b) noexcept;
// The stamp as text, for keys built of several inputs.
std::wstring StampText(const FileStamp& stamp);

}  // namespace imageutil
