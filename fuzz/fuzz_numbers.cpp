// Registry number parsing: both integer widths against a reference reading of the same rule, the
// real parser's round trip through its shortest form, and the unsigned digits of window handles.
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <string>

#include "core/numbers.h"
#include "fuzz_support.h"

namespace {

using namespace corvane::core;
using corvane::fuzz::Widen;
using corvane::fuzz::WidenAscii;

__extension__ typedef __int128 Wide;

bool IsBlank(wchar_t c) { return c == L' ' || (c >= L'\t' && c <= L'\r'); }
bool IsDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

struct Reading {
  bool anyDigit = false;
  bool tooLarge = false;  // the magnitude passed 2^64
  Wide value = 0;
  std::size_t end = 0;  // one past the last digit
};

// Blanks, one sign, the longest run of ASCII digits: the documented rule, read independently.
Reading ReadInteger(const std::wstring& text) {
  Reading r;
  std::size_t i = 0;
  while (i < text.size() && IsBlank(text[i])) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == L'+' || text[i] == L'-')) negative = text[i++] == L'-';
  for (; i < text.size() && IsDigit(text[i]); ++i) {
    r.anyDigit = true;
    if (!r.tooLarge) r.value = r.value * 10 + (text[i] - L'0');
    if (r.value > (Wide(1) << 64)) r.tooLarge = true;
  }
  if (negative) r.value = -r.value;
  r.end = i;
  return r;
}

template <class T>
T Expected(const Reading& r) {
  if (!r.anyDigit || r.tooLarge) return 0;
  if (r.value < std::numeric_limits<T>::min() || r.value > std::numeric_limits<T>::max()) return 0;
  return static_cast<T>(r.value);
}

bool SameReal(const std::optional<double>& a, const std::optional<double>& b) {
  if (a.has_value() != b.has_value()) return false;
  return !a || (*a == *b && std::signbit(*a) == std::signbit(*b));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::wstring text = Widen({reinterpret_cast<const char*>(data), size});

  const Reading reading = ReadInteger(text);
  const std::int64_t v64 = ParseDecimalInt64(text);
  const std::int32_t v32 = ParseDecimalInt32(text);
  FUZZ_CHECK(v64 == Expected<std::int64_t>(reading));
  FUZZ_CHECK(v32 == Expected<std::int32_t>(reading));
  // Leading blanks are skipped and trailing text is ignored.
  FUZZ_CHECK(ParseDecimalInt64(L" \t" + text) == v64);
  FUZZ_CHECK(ParseDecimalInt64(text + L"x9") == v64);
  // What parses also writes back: the decimal form reads as the same number.
  if (v64 != 0) FUZZ_CHECK(ParseDecimalInt64(std::to_wstring(v64)) == v64);
  if (v64 > 0) FUZZ_CHECK(UnsignedDecimal(static_cast<std::uint64_t>(v64)) == std::to_wstring(v64));

  const std::optional<double> real = ParseDecimalReal(text);
  if (real) {
    FUZZ_CHECK(std::isfinite(*real));
    // The shortest form that reads back exactly must read back exactly here too.
    char shortest[64];
    const auto [end, error] = std::to_chars(shortest, shortest + sizeof(shortest), *real);
    FUZZ_CHECK(error == std::errc());
    FUZZ_CHECK(SameReal(ParseDecimalReal(WidenAscii({shortest, static_cast<std::size_t>(end - shortest)})), real));
  }
  FUZZ_CHECK(SameReal(ParseDecimalReal(L"\r\n " + text), real));
  FUZZ_CHECK(SameReal(ParseDecimalReal(text + L"x"), real));
  // A plain integer (no point or exponent after it) is the same number read either way.
  const bool plainInteger = reading.anyDigit && (reading.end == text.size() ||
                                                 (text[reading.end] != L'.' && text[reading.end] != L'e' &&
                                                  text[reading.end] != L'E'));
  if (plainInteger && v64 != 0) FUZZ_CHECK(real && *real == static_cast<double>(v64));
  if (!reading.anyDigit && (reading.end == text.size() || text[reading.end] != L'.')) FUZZ_CHECK(!real);

  // The input's first eight bytes as a window handle.
  std::uint64_t handle = 0;
  std::memcpy(&handle, data, size < sizeof(handle) ? size : sizeof(handle));
  const std::wstring digits = UnsignedDecimal(handle);
  FUZZ_CHECK(digits == std::to_wstring(handle));
  FUZZ_CHECK(!digits.empty() && digits.size() <= 20 && (digits.size() == 1 || digits[0] != L'0'));
  for (const wchar_t c : digits) FUZZ_CHECK(IsDigit(c));
  if (handle <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
    FUZZ_CHECK(ParseDecimalInt64(digits) == static_cast<std::int64_t>(handle));
  return 0;
}
