#include "probe_record.h"

#include <mutex>

#include "platform/handles.h"
#include "probe_protocol.h"

namespace probe {

namespace {

std::mutex& RecordLock() {
  static std::mutex lock;
  return lock;
}

std::string ToUtf8(const std::wstring& text) {
  if (text.empty()) return std::string();
  const int size = ::WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr, nullptr);
  std::string out(static_cast<size_t>(size > 0 ? size : 0), '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), out.data(), size, nullptr, nullptr);
  return out;
}

std::wstring RecordPath() {
  wchar_t path[MAX_PATH] = {};
  const DWORD length = ::GetEnvironmentVariableW(kRecordVariable, path, MAX_PATH);
  return length != 0 && length < MAX_PATH ? std::wstring(path, length) : std::wstring();
}

}  // namespace

void Record(const wchar_t* event, const std::vector<Field>& fields) noexcept {
  try {
    static const std::wstring path = RecordPath();
    if (path.empty()) return;
    std::lock_guard<std::mutex> guard(RecordLock());
    static unsigned long sequence = 0;
    std::wstring line = std::to_wstring(++sequence) + L"\t" + std::to_wstring(::GetCurrentThreadId()) + L"\t" + event;
    for (const Field& field : fields) line += std::wstring(L"\t") + field.first + L"=" + field.second;
    const std::string bytes = ToUtf8(line + L"\n");
    const corvane::unique_file file(::CreateFileW(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                                  nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) return;
    DWORD written = 0;
    ::WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
  } catch (...) {
    // An observation that cannot be written is missing from the record; the test notices.
  }
}

std::wstring Hex(HRESULT hr) {
  wchar_t text[16];
  _snwprintf_s(text, _TRUNCATE, L"0x%08lX", static_cast<unsigned long>(hr));
  return text;
}

std::wstring Decimal(const void* handle) { return std::to_wstring(reinterpret_cast<ULONG_PTR>(handle)); }

std::wstring ClassOf(HWND window) {
  wchar_t name[256] = {};
  if (window == nullptr || ::GetClassNameW(window, name, 256) == 0) return std::wstring();
  return name;
}

}  // namespace probe
