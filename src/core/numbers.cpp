#include "core/numbers.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>
#include <type_traits>

namespace corvane::core {

namespace {

bool IsBlank(wchar_t c) noexcept {
  return c == L' ' || c == L'\t' || c == L'\n' || c == L'\v' || c == L'\f' || c == L'\r';
}

bool IsDigit(wchar_t c) noexcept { return c >= L'0' && c <= L'9'; }

std::size_t SkipBlanks(std::wstring_view text) noexcept {
  std::size_t i = 0;
  while (i < text.size() && IsBlank(text[i])) ++i;
  return i;
}

// Accumulates in the unsigned type so that the most negative value is reachable without overflow.
template <class Signed>
Signed ParseDecimal(std::wstring_view text) noexcept {
  using Unsigned = std::make_unsigned_t<Signed>;
  std::size_t i = SkipBlanks(text);
  bool negative = false;
  if (i < text.size() && (text[i] == L'+' || text[i] == L'-')) {
    negative = text[i] == L'-';
    ++i;
  }
  const Unsigned limit = negative ? Unsigned(Unsigned(std::numeric_limits<Signed>::max()) + 1u)
                                  : Unsigned(std::numeric_limits<Signed>::max());
  Unsigned magnitude = 0;
  bool anyDigit = false;
  for (; i < text.size() && IsDigit(text[i]); ++i) {
    const auto digit = static_cast<Unsigned>(text[i] - L'0');
    if (magnitude > (limit - digit) / 10u) return 0;
    magnitude = static_cast<Unsigned>(magnitude * 10u + digit);
    anyDigit = true;
  }
  if (!anyDigit) return 0;
  if (!negative) return static_cast<Signed>(magnitude);
  // Two's complement negation of the magnitude, written without signed overflow.
  return magnitude == 0 ? Signed(0) : static_cast<Signed>(-static_cast<Signed>(magnitude - 1u) - 1);
}

std::size_t SkipDigits(std::wstring_view text, std::size_t i) noexcept {
  while (i < text.size() && IsDigit(text[i])) ++i;
  return i;
}

}  // namespace

std::int32_t ParseDecimalInt32(std::wstring_view text) noexcept { return ParseDecimal<std::int32_t>(text); }

std::int64_t ParseDecimalInt64(std::wstring_view text) noexcept { return ParseDecimal<std::int64_t>(text); }

std::optional<double> ParseDecimalReal(std::wstring_view text) {
  const std::size_t start = SkipBlanks(text);
  std::size_t i = start;
  if (i < text.size() && (text[i] == L'+' || text[i] == L'-')) ++i;
  const std::size_t integerEnd = SkipDigits(text, i);
  bool anyDigit = integerEnd > i;
  i = integerEnd;
  if (i < text.size() && text[i] == L'.') {
    const std::size_t fractionEnd = SkipDigits(text, i + 1);
    anyDigit = anyDigit || fractionEnd > i + 1;
    i = fractionEnd;
  }
  if (!anyDigit) return std::nullopt;
  // An exponent counts only when digits follow it; "2e" is 2 followed by ignored text.
  if (i < text.size() && (text[i] == L'e' || text[i] == L'E')) {
    std::size_t e = i + 1;
    if (e < text.size() && (text[e] == L'+' || text[e] == L'-')) ++e;
    const std::size_t exponentEnd = SkipDigits(text, e);
    if (exponentEnd > e) i = exponentEnd;
  }

  // Everything in [start, i) is ASCII by construction; from_chars takes no leading '+'.
  std::string ascii;
  ascii.reserve(i - start);
  for (std::size_t k = start; k < i; ++k) {
    if (k == start && text[k] == L'+') continue;
    ascii.push_back(static_cast<char>(text[k]));
  }
  double value = 0.0;
  const auto [end, error] = std::from_chars(ascii.data(), ascii.data() + ascii.size(), value);
  if (error != std::errc() || end != ascii.data() + ascii.size() || !std::isfinite(value)) return std::nullopt;
  return value;
}

bool IsNearlyEqual(double a, double b, double epsilon) noexcept {
  const double difference = std::fabs(a - b);
  if (a != 0.0 && b != 0.0) return difference / std::fabs(b) <= epsilon;
  return difference <= epsilon;
}

std::wstring UnsignedDecimal(std::uint64_t value) {
  wchar_t digits[20];
  std::size_t count = 0;
  do {
    digits[sizeof(digits) / sizeof(digits[0]) - 1 - count] = static_cast<wchar_t>(L'0' + value % 10u);
    ++count;
    value /= 10u;
  } while (value != 0);
  return std::wstring(digits + (sizeof(digits) / sizeof(digits[0]) - count), count);
}

}  // namespace corvane::core
