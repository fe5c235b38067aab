#include "core/capacity.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace corvane::core {

namespace {

constexpr std::uint64_t kKiB = 1024;
constexpr std::uint64_t kMiB = kKiB * 1024;
constexpr std::uint64_t kGiB = kMiB * 1024;
constexpr std::uint64_t kTiB = kGiB * 1024;

// "%.2f" of value with trailing zeros and then a trailing point removed, followed by unit.
// std::to_chars in fixed notation rounds exactly like printf does on the binary value.
std::wstring Fraction(double value, const wchar_t* unit) {
  char digits[64];
  const auto [end, error] = std::to_chars(digits, digits + sizeof(digits), value, std::chars_format::fixed, 2);
  std::wstring text;
  if (error == std::errc()) text.assign(digits, end);
  while (!text.empty() && text.back() == L'0') text.pop_back();
  while (!text.empty() && text.back() == L'.') text.pop_back();
  return text + unit;
}

}  // namespace

std::wstring FormatSize(std::uint64_t bytes) {
  const auto value = static_cast<double>(bytes);
  if (bytes < kKiB) return std::to_wstring(bytes) + L"B";
  if (bytes < kMiB) return Fraction(value / static_cast<double>(kKiB), L"KB");
  if (bytes < kGiB) return Fraction(value / static_cast<double>(kMiB), L"MB");
  if (bytes >= kTiB) return Fraction(value / static_cast<double>(kTiB), L"TB");
  return Fraction(value / static_cast<double>(kGiB), L"GB");
}

bool IsCapacityWarning(std::uint64_t total, std::uint64_t used) noexcept {
  return ((total - used) >> 20) <= 500 || total <= used;
}

int UsedPercent(std::uint64_t total, std::uint64_t used) noexcept {
  if (total == 0) return 0;
  const double percent = std::trunc(static_cast<double>(used) / static_cast<double>(total) * 100.0);
  // A used figure far above total would overflow the conversion.
  if (percent >= static_cast<double>(std::numeric_limits<int>::max())) return std::numeric_limits<int>::max();
  return static_cast<int>(percent);
}

}  // namespace corvane::core
