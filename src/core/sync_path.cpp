#include "core/sync_path.h"

#include <algorithm>

namespace corvane::core {

bool DropOneTrailingBackslash(std::wstring& path) noexcept {
  if (path.empty() || path.back() != L'\\') return false;
  path.pop_back();
  return true;
}

void SlashesToBackslashes(std::wstring& path) noexcept { std::replace(path.begin(), path.end(), L'/', L'\\'); }

}  // namespace corvane::core
