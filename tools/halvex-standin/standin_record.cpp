#include "standin_record.h"

#include <shellapi.h>

#include <cwchar>

#include "platform/handles.h"

namespace standin {

namespace {

void FreeLocal(LPWSTR* block) noexcept { ::LocalFree(block); }
using unique_argv = corvane::unique_resource<corvane::null_handle_traits<LPWSTR*, FreeLocal>>;

std::string ToUtf8(const std::wstring& text) {
  if (text.empty()) return std::string();
  const int size = ::WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0,
                                         nullptr, nullptr);
  std::string utf8(static_cast<size_t>(size), '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), utf8.data(), size, nullptr, nullptr);
  return utf8;
}

unsigned long long CreationTimeMs() noexcept {
  FILETIME creation{}, exit{}, kernel{}, user{};
  if (!::GetProcessTimes(::GetCurrentProcess(), &creation, &exit, &kernel, &user)) return 0;
  ULARGE_INTEGER value{};
  value.LowPart = creation.dwLowDateTime;
  value.HighPart = creation.dwHighDateTime;
  // FILETIME counts 100 ns steps since 1601; 11644473600 seconds lie between 1601 and 1970.
  return (value.QuadPart - 11644473600ULL * 10000000ULL) / 10000ULL;
}

std::wstring CurrentDirectory() {
  const DWORD size = ::GetCurrentDirectoryW(0, nullptr);
  if (size == 0) return std::wstring();
  std::wstring folder(size, L'\0');
  const DWORD length = ::GetCurrentDirectoryW(size, folder.data());
  folder.resize(length < size ? length : 0);
  return folder;
}

}  // namespace

std::wstring OwnFolder() {
  wchar_t path[MAX_PATH] = {};
  const DWORD length = ::GetModuleFileNameW(nullptr, path, MAX_PATH);
  std::wstring folder(path, length);
  return folder.substr(0, folder.rfind(L'\\') + 1);
}

std::optional<std::wstring> Environment(const wchar_t* name) {
  const DWORD size = ::GetEnvironmentVariableW(name, nullptr, 0);
  if (size == 0) return std::nullopt;
  std::wstring value(size, L'\0');
  const DWORD length = ::GetEnvironmentVariableW(name, value.data(), size);
  value.resize(length < size ? length : 0);
  return value;
}

std::vector<std::wstring> Arguments() {
  int count = 0;
  const unique_argv argv(::CommandLineToArgvW(::GetCommandLineW(), &count));
  std::vector<std::wstring> arguments;
  for (int i = 0; argv && i < count; ++i) arguments.emplace_back(argv.get()[i]);
  return arguments;
}

std::optional<std::wstring> Option(const std::vector<std::wstring>& arguments, std::wstring_view prefix) {
  std::optional<std::wstring> value;
  for (const std::wstring& argument : arguments) {
    if (std::wstring_view(argument).substr(0, prefix.size()) == prefix) value = argument.substr(prefix.size());
  }
  return value;
}

unsigned long Number(const std::wstring& text) {
  if (text.empty() || text.find_first_not_of(L"0123456789") != std::wstring::npos) return 0;
  return std::wcstoul(text.c_str(), nullptr, 10);
}

bool AppendStartRecord(const std::wstring& path) {
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  ::GetStartupInfoW(&startup);
  const std::wstring show =
      (startup.dwFlags & STARTF_USESHOWWINDOW) != 0 ? std::to_wstring(startup.wShowWindow) : std::wstring(L"-");
  const std::wstring line = std::to_wstring(::GetCurrentProcessId()) + L'\t' + std::to_wstring(CreationTimeMs()) +
                            L'\t' + show + L'\t' + CurrentDirectory() + L'\t' + ::GetCommandLineW() + L'\n';
  const std::string bytes = ToUtf8(line);

  const corvane::unique_handle mutex(::CreateMutexW(nullptr, FALSE, L"Local\\CorvaneStandinRecord"));
  const DWORD wait = mutex ? ::WaitForSingleObject(mutex.get(), 10000) : WAIT_FAILED;
  const bool locked = wait == WAIT_OBJECT_0 || wait == WAIT_ABANDONED;
  bool written = false;
  {
    // Append-only access makes every write land at the current end of the file, even without the
    // mutex (a reader may have the file open meanwhile).
    const corvane::unique_file file(::CreateFileW(path.c_str(), FILE_APPEND_DATA,
                                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                                  OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD done = 0;
    written = file && ::WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &done, nullptr) &&
              done == bytes.size();
  }
  if (locked) ::ReleaseMutex(mutex.get());
  return written;
}

}  // namespace standin
