// The pure text rules behind the registry readers; no Windows header, so this also builds natively.
// The integer rule is also fuzzed against a reference reading; these are its boundaries. The sync
// path steps are fuzzed exactly and read through the sync-path reader's own test.
#include <gtest/gtest.h>

#include <clocale>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "core/numbers.h"

namespace {

using corvane::core::ParseDecimalInt32;
using corvane::core::ParseDecimalInt64;
using corvane::core::ParseDecimalReal;

TEST(ParseDecimalInt32, BlanksSignsTrailingTextAndRange) {
  struct Case {
    std::wstring text;
    std::int32_t expected;
  } const cases[] = {
      {L"", 0},
      {L"\t\r\n\v\f 42x", 42},
      {L"+7", 7},
      {L"-7", -7},
      {L"--7", 0},
      {L"2147483647", 2147483647},
      {L"2147483648", 0},
      {L"-2147483648", std::numeric_limits<std::int32_t>::min()},
      {L"-2147483649", 0},
      {L"00000000002147483647", 2147483647},  // leading zeros do not count toward the range
      {L"4294967297", 0},  // would read as 1 if it wrapped
      {L"\u00a01", 0},  // a no-break space is not a blank
      {L"\uff11", 0},   // nor is a full-width digit a digit
      {std::wstring(L"1\0" L"2", 3), 1},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ParseDecimalInt32(c.text), c.expected) << "text of " << c.text.size() << " characters, first "
                                                     << (c.text.empty() ? 0 : static_cast<int>(c.text[0]));
  }
}

TEST(ParseDecimalInt64, SixtyFourBitRange) {
  struct Case {
    std::wstring text;
    std::int64_t expected;
  } const cases[] = {
      {L"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
      {L"9223372036854775808", 0},
      {L"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
      {L"-9223372036854775809", 0},
      {L"18446744073709551617", 0},  // 2^64 + 1 must not wrap to 1
      {L"5GB", 5},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ParseDecimalInt64(c.text), c.expected) << c.text.size();
  }
}

TEST(ParseDecimalReal, DecimalAndExponentFormsOnly) {
  struct Case {
    std::wstring text;
    std::optional<double> expected;
  } const cases[] = {
      {L"1.25", 1.25},
      {L" \t1.5", 1.5},
      {L".5", 0.5},
      {L"5.", 5.0},
      {L"2e-1", 0.2},
      {L"2E+1", 20.0},
      {L"2e", 2.0},  // no exponent digits: the 'e' is trailing text
      {L"1,25", 1.0},  // the decimal point is '.', never the locale's comma
      {L"0x10", 0.0},  // no hexadecimal: "x10" is trailing text
      {L"", std::nullopt},
      {L".", std::nullopt},
      {L"e5", std::nullopt},
      {L"inf", std::nullopt},
      {L"nan", std::nullopt},
      {L"1e400", std::nullopt},
      {L"1e-400", std::nullopt},
      {L"\uff11.5", std::nullopt},
  };
  for (const auto& c : cases) {
    const auto parsed = ParseDecimalReal(c.text);
    ASSERT_EQ(parsed.has_value(), c.expected.has_value()) << "text of " << c.text.size() << " characters";
    if (parsed) {
      EXPECT_DOUBLE_EQ(*parsed, *c.expected) << c.text.size();
    }
  }
}

TEST(ParseDecimalReal, IgnoresTheLocaleDecimalComma) {
  const std::string previous = std::setlocale(LC_NUMERIC, nullptr);
  const char* const commaLocales[] = {"de-DE", "German_Germany.1252", "de_DE.UTF-8", "de_DE"};
  const char* chosen = nullptr;
  for (const char* name : commaLocales) {
    if (std::setlocale(LC_NUMERIC, name) != nullptr) {
      chosen = name;
      break;
    }
  }
  const auto dotted = ParseDecimalReal(L"1.25");
  const auto comma = ParseDecimalReal(L"1,25");
  std::setlocale(LC_NUMERIC, previous.c_str());
  if (chosen == nullptr) GTEST_SKIP() << "no locale with a decimal comma is installed";
  ASSERT_TRUE(dotted.has_value());
  EXPECT_DOUBLE_EQ(*dotted, 1.25);
  ASSERT_TRUE(comma.has_value());
  EXPECT_DOUBLE_EQ(*comma, 1.0);
}

TEST(UnsignedDecimal, WindowNumbersAsValueNames) {
  EXPECT_EQ(corvane::core::UnsignedDecimal(0), L"0");
  EXPECT_EQ(corvane::core::UnsignedDecimal(65602), L"65602");
  EXPECT_EQ(corvane::core::UnsignedDecimal(std::numeric_limits<std::uint64_t>::max()), L"18446744073709551615");
}

}  // namespace
