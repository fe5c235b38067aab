#include "core/host_check.h"

#include <string>

namespace corvane::core {

wchar_t AsciiLower(wchar_t c) noexcept {
  return (c >= L'A' && c <= L'Z') ? static_cast<wchar_t>(c - L'A' + L'a') : c;
}

bool IsAllowedHost(std::wstring_view hostPath) {
  // The path ends at its first null, as the system's buffer would.
  hostPath = hostPath.substr(0, hostPath.find(L'\0'));
  const auto slash = hostPath.rfind(L'\\');
  if (slash == std::wstring_view::npos) return false;
  std::wstring tail(hostPath.substr(slash));
  for (wchar_t& c : tail) c = AsciiLower(c);
  return tail == L"\\explorer.exe" || tail == L"\\regsvr32.exe";
}

}  // namespace corvane::core
