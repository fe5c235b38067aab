// The host check against a reference reading of its rule, under a locale whose case mapping goes
// beyond ASCII: only ASCII letters may fold, so a look-alike from another script never passes.
#include <clocale>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/host_check.h"
#include "fuzz_support.h"

namespace {

using namespace corvane::core;
using corvane::fuzz::Widen;

// Equal when `actual` is `expected` (lower-case ASCII) with any ASCII letters in upper case.
bool EqualsAsciiNoCase(std::wstring_view actual, std::wstring_view expected) {
  if (actual.size() != expected.size()) return false;
  for (std::size_t i = 0; i < actual.size(); ++i) {
    const wchar_t e = expected[i];
    const bool letter = e >= L'a' && e <= L'z';
    if (actual[i] != e && !(letter && actual[i] == e - (L'a' - L'A'))) return false;
  }
  return true;
}

bool Reference(std::wstring_view path) {
  const auto end = path.find(L'\0');
  if (end != std::wstring_view::npos) path = path.substr(0, end);
  const auto slash = path.rfind(L'\\');
  if (slash == std::wstring_view::npos) return false;
  const std::wstring_view tail = path.substr(slash);
  return EqualsAsciiNoCase(tail, L"\\explorer.exe") || EqualsAsciiNoCase(tail, L"\\regsvr32.exe");
}

wchar_t SwapAsciiCase(wchar_t c) {
  if (c >= L'a' && c <= L'z') return static_cast<wchar_t>(c - L'a' + L'A');
  if (c >= L'A' && c <= L'Z') return static_cast<wchar_t>(c - L'A' + L'a');
  return c;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  // A full Unicode case mapping, as a user's locale may bring into the host process.
  if (std::setlocale(LC_ALL, "C.UTF-8") == nullptr) std::setlocale(LC_ALL, "");
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::wstring path = Widen({reinterpret_cast<const char*>(data), size});

  const bool allowed = IsAllowedHost(path);
  FUZZ_CHECK(allowed == Reference(path));

  // Only ASCII letters change, by exactly the case distance.
  for (const wchar_t c : path) {
    const wchar_t lower = AsciiLower(c);
    FUZZ_CHECK(lower == ((c >= L'A' && c <= L'Z') ? c + (L'a' - L'A') : c));
  }

  // The case of ASCII letters never matters.
  std::wstring swapped = path;
  for (wchar_t& c : swapped) c = SwapAsciiCase(c);
  FUZZ_CHECK(IsAllowedHost(swapped) == allowed);

  // Whatever comes before the last backslash never matters either.
  const std::wstring head = path.substr(0, path.find(L'\0'));
  FUZZ_CHECK(IsAllowedHost(head + L"\\EXPLORER.exe"));
  FUZZ_CHECK(IsAllowedHost(head + L"\\RegSvr32.EXE"));
  FUZZ_CHECK(!IsAllowedHost(head + L"\\explorer.exe.bak"));
  FUZZ_CHECK(!IsAllowedHost(head + L"\\myexplorer.exe"));
  FUZZ_CHECK(!IsAllowedHost(head + L"\\explorer.exe\\"));
  return 0;
}
