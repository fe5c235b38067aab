#include "widgets/file_stamp.h"

namespace imageutil {

FileStamp StampOf(const std::wstring& path) noexcept {
  FileStamp stamp;
  WIN32_FILE_ATTRIBUTE_DATA data{};
  if (!::GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data)) return stamp;
  if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return stamp;
  stamp.exists = true;
  stamp.size = (static_cast<ULONGLONG>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
  stamp.lastWrite = data.ftLastWriteTime;
  return stamp;
}

bool SameStamp(const FileStamp& a, const FileStamp& b) noexcept {
  return a.exists && b.exists && a.size == b.size && a.lastWrite.dwLowDateTime == b.lastWrite.dwLowDateTime &&
         a.lastWrite.dwHighDateTime == b.lastWrite.dwHighDateTime;
}

std::wstring StampText(const FileStamp& stamp) {
  if (!stamp.exists) return L"-";
  return std::to_wstring(stamp.size) + L"@" + std::to_wstring(stamp.lastWrite.dwHighDateTime) + L"." +
         std::to_wstring(stamp.lastWrite.dwLowDateTime);
}

}  // namespace imageutil
