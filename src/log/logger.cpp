#include "log/logger.h"

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <shlobj.h>

#include <cmath>
#include <ctime>
#include <mutex>
#include <string>

#include "core/paths.h"
#include "platform/module_path.h"

LOGGER::CLogger* g_pLogger = nullptr;

namespace LOGGER {

namespace {

// Tags exist once per width for the life of the process.
const char* const kTagsA[] = {"", "[Fatal]", "[Error]", "[Warning]", "[Info]", "[Debug]"};
const wchar_t* const kTagsW[] = {L"", L"[Fatal]", L"[Error]", L"[Warning]", L"[Info]", L"[Debug]"};
constexpr int kDebug = 5;

template <class Ch>
const Ch* Tag(int level) noexcept;
template <>
const char* Tag<char>(int level) noexcept { return kTagsA[level]; }
template <>
const wchar_t* Tag<wchar_t>(int level) noexcept { return kTagsW[level]; }

corvane::core::LogTime LocalNow() noexcept {
  __time64_t now = 0;
  _time64(&now);
  std::tm local{};
  if (_localtime64_s(&local, &now) != 0) return {};
  return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
}

// A fresh GUID without braces, or nothing when none can be made.
std::wstring NewGuidText() {
  GUID guid{};
  if (FAILED(::CoCreateGuid(&guid))) return std::wstring();
  wchar_t text[64] = {};
  if (::StringFromGUID2(guid, text, 64) == 0) return std::wstring();
  return std::wstring(corvane::core::GuidWithoutBraces(text));
}

std::wstring NewFileNameSuffix() { return corvane::core::LogFileSuffix(LocalNow(), NewGuidText()); }

FILE* OpenShared(const std::wstring& path) noexcept {
  FILE* file = _wfsopen(path.c_str(), L"a+", _SH_DENYNO);
  // Wide lines go out as UTF-16LE, "\n" as CR LF, with no byte-order mark.
  if (file != nullptr) _setmode(_fileno(file), _O_U16TEXT);
  return file;
}

// The two printf families, Windows meaning: %s takes a string of the format's own width.
int CountFormatted(const char* format, va_list args) { return _vscprintf(format, args); }
int CountFormatted(const wchar_t* format, va_list args) { return _vscwprintf(format, args); }
int FormatInto(char* buffer, size_t size, const char* format, va_list args) {
  return _vsnprintf_s(buffer, size, _TRUNCATE, format, args);
}
int FormatInto(wchar_t* buffer, size_t size, const wchar_t* format, va_list args) {
  return _vsnwprintf_s(buffer, size, _TRUNCATE, format, args);
}

template <class Ch>
std::basic_string<Ch> FormatMessageText(const Ch* format, va_list args) {
  if (format == nullptr) return {};
  va_list counting;
  va_copy(counting, args);
  const int length = CountFormatted(format, counting);
  va_end(counting);
  if (length <= 0) return {};
  std::basic_string<Ch> text(static_cast<size_t>(length) + 1, Ch(0));
  va_list formatting;
  va_copy(formatting, args);
  const int written = FormatInto(text.data(), text.size(), format, formatting);
  va_end(formatting);
  if (written <= 0) return {};
  text.resize(static_cast<size_t>(written));
  return text;
}

void SendToDebugger(const std::string& line) noexcept { ::OutputDebugStringA(line.c_str()); }
void SendToDebugger(const std::wstring& line) noexcept { ::OutputDebugStringW(line.c_str()); }

std::wstring ToWide(const std::string& line) {
  if (line.empty()) return std::wstring();
  const int length = ::MultiByteToWideChar(CP_ACP, 0, line.data(), static_cast<int>(line.size()), nullptr, 0);
  if (length <= 0) return std::wstring();
  std::wstring wide(static_cast<size_t>(length), L'\0');
  ::MultiByteToWideChar(CP_ACP, 0, line.data(), static_cast<int>(line.size()), wide.data(), length);
  return wide;
}
const std::wstring& ToWide(const std::wstring& line) { return line; }

}  // namespace

CLogger::CLogger(int level, std::wstring folder, std::wstring name)
    : m_maxFileSize(0x500000), m_backupCount(2), m_file(nullptr), m_level(level), m_folder(std::move(folder)),
      m_fileName(std::move(name)) {
  if (m_folder.empty()) {
    wchar_t host[MAX_PATH] = {};
    ::GetModuleFileNameW(nullptr, host, MAX_PATH);
    m_folder = corvane::core::FolderOf(host);
  }
  m_folder = corvane::core::WithTrailingBackslash(std::move(m_folder));
  // An existing folder is fine, and a folder that cannot be made shows up as a failed open.
  ::SHCreateDirectoryExW(nullptr, m_folder.c_str(), nullptr);
  m_fileName += NewFileNameSuffix();
  m_path = m_folder + m_fileName;
  m_file = OpenShared(m_path);
}

CLogger::~CLogger() {
  if (m_file != nullptr) {
    fclose(m_file);
    m_file = nullptr;
  }
}

template <class Ch>
void CLogger::Write(int levelNumber, const Ch* tag, std::uint32_t line, const Ch* file, const Ch* function,
                    const Ch* format, va_list args) noexcept {
  try {
    if (levelNumber != kDebug && m_level < levelNumber) return;
    const std::basic_string<Ch> message = FormatMessageText(format, args);
    if (message.empty()) return;

    FILETIME now{};
    ::GetSystemTimeAsFileTime(&now);
    const std::uint64_t ticks = (static_cast<std::uint64_t>(now.dwHighDateTime) << 32) | now.dwLowDateTime;
    std::basic_string<Ch> text(tag);
    text += corvane::core::LogTimePrefix<Ch>(LocalNow(), corvane::core::MicrosecondFraction(ticks));
    text += corvane::core::LogLocation<Ch>(file, static_cast<int>(line), static_cast<int>(::GetCurrentThreadId()),
                                           function);
    text += message;

    SendToDebugger(text);
    if (levelNumber == kDebug) return;  // debug lines never reach the file
    WriteToFile(ToWide(text));
  } catch (...) {
    // A line that cannot be built is lost; logging never fails its caller.
  }
}

bool CLogger::OpenFile() noexcept {
  try {
    // Each retry lengthens the name: the earlier name stays in front of the new time stamp and GUID.
    m_fileName += NewFileNameSuffix();
    m_path = m_folder + m_fileName;
    m_file = OpenShared(m_path);
    return m_file != nullptr;
  } catch (...) {
    return false;
  }
}

void CLogger::RotateIfNeeded() noexcept {
  if (m_file == nullptr) return;
  const long position = ftell(m_file);
  fseek(m_file, 0, SEEK_END);
  const long size = ftell(m_file);
  fseek(m_file, position, SEEK_SET);
  if (size < 0 || static_cast<std::uint64_t>(size) < m_maxFileSize) return;

  fclose(m_file);
  m_file = nullptr;
  // Failures to delete or rename leave the older copies as they are; the current file still moves on.
  for (std::uint64_t i = m_backupCount - 1; i >= 1; --i) {
    const std::wstring older = corvane::core::RotatedName(m_path, static_cast<unsigned>(i + 1));
    ::DeleteFileW(older.c_str());
    ::MoveFileW(corvane::core::RotatedName(m_path, static_cast<unsigned>(i)).c_str(), older.c_str());
  }
  const std::wstring first = corvane::core::RotatedName(m_path, 1);
  ::DeleteFileW(first.c_str());
  ::MoveFileW(m_path.c_str(), first.c_str());
  m_file = OpenShared(m_path);
}

void CLogger::WriteToFile(const std::wstring& line) noexcept {
  try {
    std::lock_guard<corvane::critical_section> guard(m_lock);
    if (m_file == nullptr && !OpenFile()) return;
    RotateIfNeeded();
    // A reopen that failed during rotation drops this line; the next one retries with a longer name.
    if (m_file == nullptr) return;
    const std::wstring withNewline = line + L"\n";
    fputws(withNewline.c_str(), m_file);
    fflush(m_file);
  } catch (...) {
    // The line is lost; the guard has released the lock.
  }
}

#define CORVANE_DEFINE_WRITER(Name, Number, Ch)                                                                 \
  void CLogger::Name(std::uint32_t line, const Ch* file, const Ch* function, const Ch* format, ...) {          \
    va_list args;                                                                                              \
    va_start(args, format);                                                                                    \
    Write<Ch>(Number, Tag<Ch>(Number), line, file, function, format, args);                                    \
    va_end(args);                                                                                              \
  }

CORVANE_DEFINE_WRITER(Fatal, LevelFatal, char)
CORVANE_DEFINE_WRITER(Error, LevelError, char)
CORVANE_DEFINE_WRITER(Warning, LevelWarning, char)
CORVANE_DEFINE_WRITER(Info, LevelInfo, char)
CORVANE_DEFINE_WRITER(Debug, kDebug, char)
CORVANE_DEFINE_WRITER(Fatal, LevelFatal, wchar_t)
CORVANE_DEFINE_WRITER(Error, LevelError, wchar_t)
CORVANE_DEFINE_WRITER(Warning, LevelWarning, wchar_t)
CORVANE_DEFINE_WRITER(Info, LevelInfo, wchar_t)
CORVANE_DEFINE_WRITER(Debug, kDebug, wchar_t)

#undef CORVANE_DEFINE_WRITER

}  // namespace LOGGER

void InitLogger() {
  try {
    const std::wstring folder = corvane::core::ParentFolder(corvane::ThisModuleFolder()) + L"log\\Corvane";
    g_pLogger = new LOGGER::CLogger(LOGGER::LevelInfo, folder, L"Corvane");
  } catch (...) {
    g_pLogger = nullptr;
  }
}
