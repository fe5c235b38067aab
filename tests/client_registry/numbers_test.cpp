// The real-number rule behind the zoom reader; no Windows header, so this also builds natively. It
// leans on the C++ library's conversion, which the Wine build takes from its own library and
// locales, and the fuzzer only round-trips it, so its values are pinned here. The integer widths
// compare characters with no library call: their fuzzer's exact reference reading is their test,
// and the registry readers' tests pin what the flags and sizes make of them under Wine.
#include <gtest/gtest.h>

#include <clocale>
#include <optional>
#include <string>

#include "core/numbers.h"

namespace {

// The same under the C locale and under every installed one with a decimal comma (Wine has them;
// the native build may have none).
TEST(ParseDecimalReal, DecimalAndExponentFormsOnlyInAnyLocale) {
  const struct { std::wstring text; std::optional<double> expected; } cases[] = {
      {L"1.25", 1.25}, {L" \t1.5", 1.5}, {L".5", 0.5}, {L"5.", 5.0}, {L"2e-1", 0.2}, {L"2E+1", 20.0},
      {L"2e", 2.0},    // no exponent digits: the 'e' is trailing text
      {L"1,25", 1.0},  // the decimal point is '.', never the locale's comma
      {L"0x10", 0.0},  // no hexadecimal: "x10" is trailing text
      {L"inf", std::nullopt}, {L"1e400", std::nullopt}, {L"1e-400", std::nullopt},  // nor out of range
  };
  const std::string previous = std::setlocale(LC_NUMERIC, nullptr);
  [[maybe_unused]] int commaLocales = 0;
  for (const char* locale : {"C", "de-DE", "German_Germany.1252", "de_DE.UTF-8", "de_DE"}) {
    if (std::setlocale(LC_NUMERIC, locale) == nullptr) continue;
    commaLocales += std::string(std::localeconv()->decimal_point) == "," ? 1 : 0;
    for (const auto& c : cases)
      EXPECT_EQ(corvane::core::ParseDecimalReal(c.text), c.expected) << locale << ", row " << (&c - cases);
  }
  std::setlocale(LC_NUMERIC, previous.c_str());
#ifdef _WIN32
  EXPECT_GT(commaLocales, 0) << "no locale with a decimal comma could be set: the comma rows proved nothing";
#endif
}

TEST(IsNearlyEqual, RelativeWhenBothNonZeroAbsoluteOtherwise) {
  const struct { double a, b, epsilon; bool equal; } cases[] = {
      {1.0, 1.0 + 1e-10, 1e-9, true},     {1.0, 1.0 + 1e-8, 1e-9, false},
      {1000.0, 1000.0005, 1e-6, true},    // relative: 5e-7 of b, though 5e-4 apart
      {1e-12, 2e-12, 1e-9, false},        // relative: 50 % apart, though 1e-12 apart
      {0.0, 1e-10, 1e-9, true},           {0.0, 0.0, 1e-9, true},
      {0.0, 2e-9, 1e-9, false},           {1e-10, 0.0, 1e-9, true},  // absolute when either is 0
      {-2.0, 2.0, 1e-9, false},           {1.25, 1.0, 0.25, true},   // |a-b|/|b| = 0.25 exactly
      {3.0, 4.0, 0.3, true},              {4.0, 3.0, 0.3, false},    // relative to b, not a
  };
  for (const auto& c : cases)
    EXPECT_EQ(corvane::core::IsNearlyEqual(c.a, c.b, c.epsilon), c.equal) << c.a << " vs " << c.b << " within " << c.epsilon;
}

}  // namespace
