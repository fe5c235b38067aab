#include "core/paths.h"

namespace corvane::core {

namespace {

bool IsSeparator(wchar_t c) noexcept { return c == L'\\' || c == L'/'; }

bool IsDriveRoot(std::wstring_view s) noexcept {
  return s.size() == 2 && s[1] == L':' && ((s[0] >= L'A' && s[0] <= L'Z') || (s[0] >= L'a' && s[0] <= L'z'));
}

// "\\server\share" with nothing after the share.
bool IsUncRoot(std::wstring_view s) noexcept {
  if (s.size() < 5 || s[0] != L'\\' || s[1] != L'\\') return false;
  const auto serverEnd = s.find_first_of(L"\\/", 2);
  if (serverEnd == std::wstring_view::npos || serverEnd == 2) return false;
  const auto share = s.substr(serverEnd + 1);
  return !share.empty() && share.find_first_of(L"\\/") == std::wstring_view::npos;
}

}  // namespace

std::wstring FolderOf(std::wstring_view path) {
  const auto slash = path.rfind(L'\\');
  return slash == std::wstring_view::npos ? std::wstring() : std::wstring(path.substr(0, slash + 1));
}

std::wstring ParentFolder(std::wstring_view folder) {
  std::wstring_view trimmed = folder;
  while (!trimmed.empty() && IsSeparator(trimmed.back())) trimmed.remove_suffix(1);
  if (trimmed.empty() || IsUncRoot(trimmed) || IsDriveRoot(trimmed)) return std::wstring(folder);
  const auto cut = trimmed.find_last_of(L"\\/");
  if (cut == std::wstring_view::npos) return std::wstring(folder);
  return std::wstring(trimmed.substr(0, cut + 1));
}

std::wstring WithTrailingBackslash(std::wstring text) {
  if (text.empty() || text.back() != L'\\') text.push_back(L'\\');
  return text;
}

}  // namespace corvane::core
