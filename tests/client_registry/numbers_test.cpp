// The pure text rules behind the registry readers; no Windows header, so this also builds natively.
// Both integer widths are fuzzed against a reference reading in the native build; these rows are
// the anchors, and what the Wine build (16-bit wchar_t, its own C library and locales) must read
// the same way. The real rule is only round-tripped by the fuzzer, so its values are pinned here.
#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "core/numbers.h"

namespace {

TEST(ParseDecimal, BlanksSignsTrailingTextAndEachWidthsRange) {
  constexpr auto kMin32 = std::numeric_limits<std::int32_t>::min();
  constexpr auto kMin64 = std::numeric_limits<std::int64_t>::min();
  const struct { std::wstring text; std::int32_t as32; std::int64_t as64; } cases[] = {
      {L"\t\r\n\v\f 42x", 42, 42}, {L"--7", 0, 0},
      {L"\u00a01", 0, 0}, {L"\uff11", 0, 0},  // a no-break space is no blank, a full-width digit no digit
      {L"2147483648", 0, 2147483648LL}, {L"-2147483648", kMin32, -2147483648LL},
      {L"4294967297", 0, 4294967297LL},  // would read as 1 if it wrapped
      {L"-9223372036854775808", 0, kMin64}, {L"18446744073709551617", 0, 0},  // 2^64 + 1 must not wrap to 1
      {std::wstring(L"1\0" L"2", 3), 1, 1},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(corvane::core::ParseDecimalInt32(c.text), c.as32) << "row " << (&c - cases);
    EXPECT_EQ(corvane::core::ParseDecimalInt64(c.text), c.as64) << "row " << (&c - cases);
  }
}

TEST(ParseDecimalReal, DecimalAndExponentFormsOnly) {
  const struct { std::wstring text; std::optional<double> expected; } cases[] = {
      {L"1.25", 1.25}, {L" \t1.5", 1.5}, {L".5", 0.5}, {L"5.", 5.0}, {L"2e-1", 0.2}, {L"2E+1", 20.0},
      {L"2e", 2.0},    // no exponent digits: the 'e' is trailing text
      {L"1,25", 1.0},  // the decimal point is '.', never the locale's comma
      {L"0x10", 0.0},  // no hexadecimal: "x10" is trailing text
      {L"e5", std::nullopt},    {L"inf", std::nullopt},    {L"nan", std::nullopt},
      {L"1e400", std::nullopt}, {L"1e-400", std::nullopt}, {L"\uff11.5", std::nullopt},
  };
  for (const auto& c : cases) EXPECT_EQ(corvane::core::ParseDecimalReal(c.text), c.expected) << "row " << (&c - cases);
}

TEST(ParseDecimalReal, IgnoresTheLocaleDecimalComma) {
  const std::string previous = std::setlocale(LC_NUMERIC, nullptr);
  const char* const commaLocales[] = {"de-DE", "German_Germany.1252", "de_DE.UTF-8", "de_DE"};
  const bool chosen = std::any_of(std::begin(commaLocales), std::end(commaLocales),
                                  [](const char* name) { return std::setlocale(LC_NUMERIC, name) != nullptr; });
  const auto dotted = corvane::core::ParseDecimalReal(L"1.25");
  const auto comma = corvane::core::ParseDecimalReal(L"1,25");
  std::setlocale(LC_NUMERIC, previous.c_str());
  if (!chosen) GTEST_SKIP() << "no locale with a decimal comma is installed";
  EXPECT_EQ(dotted, std::optional<double>(1.25));
  EXPECT_EQ(comma, std::optional<double>(1.0));
}

}  // namespace
