// Sync-folder normalisation and the folder arithmetic on paths: the normalised form is idempotent
// and has the promised shape, and FolderOf / ParentFolder only ever cut at a separator.
#include <cstdint>
#include <string>
#include <string_view>

#include "core/paths.h"
#include "core/sync_path.h"
#include "fuzz_support.h"

namespace {

using namespace corvane::core;
using corvane::fuzz::Widen;

bool IsSeparator(wchar_t c) { return c == L'\\' || c == L'/'; }

// The steps the client bridge takes on the published folder, minus the existence test.
std::wstring Normalised(std::wstring path) {
  DropOneTrailingBackslash(path);
  SlashesToBackslashes(path);
  return WithTrailingBackslash(std::move(path));
}

// What ParentFolder keeps as it is: nothing (or separators only), a text with no separator, a drive
// root ("C:") or a UNC share root (two backslashes, then a server and a share, both non-empty),
// trailing separators aside. Read here by splitting into levels.
bool KeptAsGiven(std::wstring_view path) {
  while (!path.empty() && IsSeparator(path.back())) path.remove_suffix(1);
  if (path.empty() || path.find_first_of(L"\\/") == std::wstring_view::npos) return true;
  const bool letter = !path.empty() && ((path[0] >= L'a' && path[0] <= L'z') || (path[0] >= L'A' && path[0] <= L'Z'));
  if (path.size() == 2 && letter && path[1] == L':') return true;
  if (!path.starts_with(L"\\\\")) return false;
  std::size_t levels = 0;
  std::wstring_view rest = path.substr(2);
  for (;;) {
    const auto cut = rest.find_first_of(L"\\/");
    if (rest.substr(0, cut).empty()) return false;
    ++levels;
    if (cut == std::wstring_view::npos) break;
    rest.remove_prefix(cut + 1);
  }
  return levels == 2;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::wstring path = Widen({reinterpret_cast<const char*>(data), size});

  // Each step on its own.
  std::wstring slashes = path;
  SlashesToBackslashes(slashes);
  FUZZ_CHECK(slashes.size() == path.size());
  for (std::size_t i = 0; i < path.size(); ++i)
    FUZZ_CHECK(slashes[i] == (path[i] == L'/' ? L'\\' : path[i]));

  std::wstring dropped = path;
  const bool didDrop = DropOneTrailingBackslash(dropped);
  FUZZ_CHECK(didDrop == (!path.empty() && path.back() == L'\\'));
  FUZZ_CHECK(dropped == (didDrop ? path.substr(0, path.size() - 1) : path));

  const std::wstring trailing = WithTrailingBackslash(path);
  FUZZ_CHECK(!trailing.empty() && trailing.back() == L'\\');
  FUZZ_CHECK(trailing == path || trailing == path + L'\\');
  FUZZ_CHECK(WithTrailingBackslash(trailing) == trailing);

  // The whole normalisation: one trailing backslash dropped, then slashes turned, then one
  // appended where none ends the text, so slashes only ever count after the drop.
  const std::wstring normal = Normalised(path);
  FUZZ_CHECK(normal.find(L'/') == std::wstring::npos);
  FUZZ_CHECK(!normal.empty() && normal.back() == L'\\');
  std::wstring expected = dropped;
  for (wchar_t& c : expected) c = c == L'/' ? L'\\' : c;
  if (expected.empty() || expected.back() != L'\\') expected.push_back(L'\\');
  FUZZ_CHECK(normal == expected);
  // A published path that ends in one backslash is a fixed point; with more trailing separators
  // in the value each pass takes one, so repeating it settles on exactly one.
  if (!normal.ends_with(L"\\\\")) {
    FUZZ_CHECK(Normalised(normal) == normal);
  } else {
    FUZZ_CHECK(Normalised(normal) == normal.substr(0, normal.size() - 1));
  }

  // FolderOf: a prefix ending in the last backslash, or nothing when there is none.
  const std::wstring folder = FolderOf(path);
  FUZZ_CHECK(path.starts_with(folder));
  FUZZ_CHECK(folder.empty() ? path.find(L'\\') == std::wstring::npos : folder.back() == L'\\');
  FUZZ_CHECK(path.find(L'\\', folder.size()) == std::wstring::npos);
  FUZZ_CHECK(FolderOf(folder) == folder);

  // ParentFolder: either the input unchanged (a root, or nothing to climb) or a strictly shorter
  // prefix ending in a separator, with exactly one non-empty level cut off.
  const std::wstring parent = ParentFolder(path);
  FUZZ_CHECK(path.starts_with(parent));
  FUZZ_CHECK((parent == path) == KeptAsGiven(path));
  if (parent != path) {
    FUZZ_CHECK(parent.size() < path.size());
    FUZZ_CHECK(IsSeparator(parent.back()));
    std::wstring_view level = std::wstring_view(path).substr(parent.size());
    while (!level.empty() && IsSeparator(level.back())) level.remove_suffix(1);
    FUZZ_CHECK(!level.empty());
    FUZZ_CHECK(level.find_first_of(L"\\/") == std::wstring_view::npos);
  }
  // Climbing always ends: every step that changes the text shortens it.
  std::wstring climb = path;
  for (std::size_t steps = 0;; ++steps) {
    FUZZ_CHECK(steps <= path.size());
    std::wstring up = ParentFolder(climb);
    if (up == climb) break;
    climb = std::move(up);
  }
  return 0;
}
