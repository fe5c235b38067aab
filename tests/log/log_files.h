#pragma once
// Files and folders for the logger tests (and the other tests that need a fresh folder): a fresh
// folder per test, and files read back the way another process would see them while the logger
// still holds them open.
#include <windows.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace logtest {

// A new, empty folder under the temporary folder (its long form: the shell hands back long names, and
// tests compare paths exactly), deleted with everything in it at the end.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  // Full path, without a trailing backslash.
  const std::wstring& Path() const noexcept { return m_path; }
  std::wstring operator/(const std::wstring& name) const { return m_path + L"\\" + name; }
  // Creates <path>\<relative> (and its parents); returns its full path.
  std::wstring MakeFolder(const std::wstring& relative) const;

 private:
  std::wstring m_path;
};

bool FileExists(const std::wstring& path);
std::vector<std::wstring> FilesIn(const std::wstring& folder);

std::int64_t FileSize(const std::wstring& path);
// A missing file fails the calling test unless it is `optional` (another process may delete it).
std::vector<std::uint8_t> ReadBytes(const std::wstring& path, bool optional = false);
// The file as UTF-16LE code units (an odd byte count fails the calling test).
std::wstring ReadUtf16(const std::wstring& path, bool optional = false);
// Lines ended by CR LF; text after the last CR LF is returned as a last, unterminated line.
std::vector<std::wstring> SplitCrLf(const std::wstring& text);
// The file's lines (UTF-16LE, CR LF).
inline std::vector<std::wstring> ReadLines(const std::wstring& path) { return SplitCrLf(ReadUtf16(path)); }
// Writes a file of these bytes, or of UTF-16LE text, replacing what was there.
void WriteBytes(const std::wstring& path, const std::vector<std::uint8_t>& bytes);
void WriteUtf16(const std::wstring& path, const std::wstring& text);
// Appends UTF-16LE filler lines through a handle of its own until the file has `size` bytes.
void FillTo(const std::wstring& path, std::int64_t size);

// Local time as one number, yyyymmddhhmmss.
std::int64_t LocalStamp();

// One log line split into its parts.
struct LogLine {
  std::wstring tag;
  std::int64_t stamp = 0;  // yyyymmddhhmmss
  std::wstring file;
  std::wstring line;
  std::wstring thread;
  std::wstring function;
  std::wstring message;
};
// Parses "[Tag][YYYY-MM-DD hh:mm:ss.uuuuuu][file:LINE][TID][Function]message"; false if the shape
// is anything else.
bool ParseLogLine(const std::wstring& text, LogLine& out);
// A log file's lines, parsed; a line of any other shape fails the calling test.
std::vector<LogLine> ReadLogLines(const std::wstring& path);

// True when the file name is <prefix><14 digits>_<36-character upper-case GUID>.log repeated
// `parts` times after the prefix.
bool IsLogFileName(const std::wstring& name, const std::wstring& prefix, int parts);

inline std::wstring FileNameOf(const std::wstring& path) { return std::filesystem::path(path).filename().wstring(); }

// For texts with Chinese letters in assertions (gtest prints UTF-8 bytes safely) and in files, and
// back from UTF-8 (pipes, record files) or from another code page (the debugger's narrow lines).
std::string Utf8(const std::wstring& text);
std::wstring Wide(std::string_view text, UINT codePage = CP_UTF8);

}  // namespace logtest
