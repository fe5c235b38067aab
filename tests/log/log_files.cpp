#include "log_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <regex>
#include <system_error>

#include "platform/handles.h"

namespace logtest {

namespace {

std::atomic<int> g_folderCount{0};

corvane::unique_file OpenShared(const std::wstring& path, DWORD access, DWORD disposition) {
  return corvane::unique_file(::CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                            nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
}

void WriteAll(HANDLE file, const void* data, size_t size) {
  DWORD written = 0;
  ASSERT_TRUE(::WriteFile(file, data, static_cast<DWORD>(size), &written, nullptr)) << ::GetLastError();
  ASSERT_EQ(written, size);
}

}  // namespace

TempFolder::TempFolder() {
  wchar_t temp[MAX_PATH + 1] = {}, full[MAX_PATH + 1] = {};
  ::GetTempPathW(MAX_PATH + 1, temp);
  const DWORD length = ::GetLongPathNameW(temp, full, MAX_PATH + 1);
  // Short names: the logger's retry names grow by 55 characters at a time.
  const std::wstring name = L"cv" + std::to_wstring(::GetCurrentProcessId()) + L"-" + std::to_wstring(g_folderCount++);
  m_path = (std::filesystem::path(length != 0 && length <= MAX_PATH ? full : temp) / name).wstring();
  std::error_code error;
  std::filesystem::remove_all(m_path, error);
  std::filesystem::create_directories(m_path, error);
  EXPECT_FALSE(error) << error.message();
}

TempFolder::~TempFolder() {
  std::error_code error;
  std::filesystem::remove_all(m_path, error);
}

std::wstring TempFolder::MakeFolder(const std::wstring& relative) const {
  std::error_code error;
  std::filesystem::create_directories(*this / relative, error);
  return *this / relative;
}

bool FileExists(const std::wstring& path) {
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

std::vector<std::wstring> FilesIn(const std::wstring& folder) {
  std::vector<std::wstring> names;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
    if (entry.is_regular_file()) names.push_back(entry.path().filename().wstring());
  }
  return names;
}

std::int64_t FileSize(const std::wstring& path) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  if (!::GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data)) return -1;
  return (static_cast<std::int64_t>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
}

std::vector<std::uint8_t> ReadBytes(const std::wstring& path, bool optional) {
  const corvane::unique_file file = OpenShared(path, GENERIC_READ, OPEN_EXISTING);
  EXPECT_TRUE(file || optional) << "cannot open " << testing::PrintToString(path) << ": " << ::GetLastError();
  std::vector<std::uint8_t> bytes(file ? static_cast<size_t>(::GetFileSize(file.get(), nullptr)) : 0);
  DWORD read = 0;
  if (!bytes.empty() && (!::ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr) || read < bytes.size())) {
    bytes.resize(read);
  }
  return bytes;
}

std::wstring ReadUtf16(const std::wstring& path, bool optional) {
  const std::vector<std::uint8_t> bytes = ReadBytes(path, optional);
  EXPECT_EQ(bytes.size() % 2, 0u) << testing::PrintToString(path);
  return std::wstring(reinterpret_cast<const wchar_t*>(bytes.data()), bytes.size() / 2);  // wchar_t is UTF-16LE here
}

std::vector<std::wstring> SplitCrLf(const std::wstring& text) {
  std::vector<std::wstring> lines;
  for (size_t start = 0, end = 0; start < text.size(); start = end + 2) {
    end = std::min(text.find(L"\r\n", start), text.size());
    lines.push_back(text.substr(start, end - start));
  }
  return lines;
}

void WriteBytes(const std::wstring& path, const std::vector<std::uint8_t>& bytes) {
  const corvane::unique_file file = OpenShared(path, GENERIC_WRITE, CREATE_ALWAYS);
  ASSERT_TRUE(file) << ::GetLastError();
  WriteAll(file.get(), bytes.data(), bytes.size());
}

void WriteUtf16(const std::wstring& path, const std::wstring& text) {
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());  // wchar_t is UTF-16LE here
  WriteBytes(path, std::vector<std::uint8_t>(bytes, bytes + text.size() * sizeof(wchar_t)));
}

void FillTo(const std::wstring& path, std::int64_t size) {
  const std::int64_t missing = size - FileSize(path);
  ASSERT_GE(missing, 4) << "too little room for a filler line";
  ASSERT_EQ(missing % 2, 0);
  const corvane::unique_file file = OpenShared(path, FILE_APPEND_DATA, OPEN_EXISTING);
  ASSERT_TRUE(file) << ::GetLastError();
  std::vector<std::uint8_t> bytes(static_cast<size_t>(missing), 0);
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) bytes[i] = '#';
  // The filler is one valid line: '#' characters, then CR LF.
  bytes[bytes.size() - 4] = '\r';
  bytes[bytes.size() - 2] = '\n';
  WriteAll(file.get(), bytes.data(), bytes.size());
}

std::int64_t LocalStamp() {
  SYSTEMTIME now{};
  ::GetLocalTime(&now);
  return ((((now.wYear * 100LL + now.wMonth) * 100 + now.wDay) * 100 + now.wHour) * 100 + now.wMinute) * 100 +
         now.wSecond;
}

bool ParseLogLine(const std::wstring& text, LogLine& out) {
  // Each bracket holds no ']'; the location's line number is the digits after its last colon. The
  // message, of any length, is what follows the brackets (the regex library recurses per character).
  static const std::wregex kShape(LR"(\[([^\]]*)\]\[(\d{4})-(\d\d)-(\d\d) (\d\d):(\d\d):(\d\d)\.\d{6}\])"
                                  LR"(\[([^\]]*):(\d+)\]\[(\d+)\]\[([^\]]*)\])");
  std::wsmatch parts;
  if (!std::regex_search(text, parts, kShape, std::regex_constants::match_continuous)) return false;
  const std::wstring stamp = parts.str(2) + parts.str(3) + parts.str(4) + parts.str(5) + parts.str(6) + parts.str(7);
  out = LogLine{parts.str(1), std::stoll(stamp), parts.str(8), parts.str(9), parts.str(10), parts.str(11),
                parts.suffix()};
  return true;
}

std::vector<LogLine> ReadLogLines(const std::wstring& path) {
  std::vector<LogLine> lines;
  for (const std::wstring& text : ReadLines(path)) {
    EXPECT_TRUE(ParseLogLine(text, lines.emplace_back())) << testing::PrintToString(text);
  }
  return lines;
}

bool IsLogFileName(const std::wstring& name, const std::wstring& prefix, int parts) {
  const std::wregex shape(prefix + LR"((\d{14}_[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}\.log){)" +
                          std::to_wstring(parts) + L"}");
  return std::regex_match(name, shape);
}

std::string Utf8(const std::wstring& text) {
  const int size = ::WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr,
                                         nullptr);
  std::string out(static_cast<size_t>(size > 0 ? size : 0), '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), out.data(), size, nullptr, nullptr);
  return out;
}

std::wstring Wide(std::string_view text, UINT codePage) {
  const int size = ::MultiByteToWideChar(codePage, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
  std::wstring out(static_cast<size_t>(size > 0 ? size : 0), L'\0');
  ::MultiByteToWideChar(codePage, 0, text.data(), static_cast<int>(text.size()), out.data(), size);
  return out;
}

}  // namespace logtest
