// Literal anchors of the bar's pure rules under Wine's msvcrt (the fuzzers compare the same rules
// with references natively, within a tolerance where rounding is involved): the size text's
// rounding, the 500 MiB warning, the truncated share and the x1.6 bar height.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>

#include "core/bar_layout.h"
#include "core/capacity.h"

namespace {

using corvane::core::BarRect;
constexpr std::uint64_t kKiB = 1024, kMiB = kKiB * 1024, kGiB = kMiB * 1024, kTiB = kGiB * 1024;

TEST(CapacityRules, SizeTextsWarningAndShare) {
  const struct {
    std::uint64_t bytes;
    const wchar_t* text;
  } sizes[] = {
      {1023, L"1023B"},      {1536, L"1.5KB"},
      {1024 + 10, L"1.01KB"},               // 1.009765625 rounds up
      {1152, L"1.12KB"},                    // 1.125 exactly: a tie goes to the even digit
      {kMiB - 1, L"1024KB"},                // 1023.999 KiB prints as 1024.00
      {200 * kMiB, L"200MB"},               // trailing zeros stop at the point
      {kGiB + kGiB / 4, L"1.25GB"}, {UINT64_MAX, L"16777216TB"},
  };
  for (const auto& c : sizes) EXPECT_EQ(corvane::core::FormatSize(c.bytes), c.text) << c.bytes;

  const struct {
    std::uint64_t total, used;
    bool warn;
  } warnings[] = {
      {2 * kGiB, 2 * kGiB - 500 * kMiB, true},      // exactly 500 MiB free
      {2 * kGiB, 2 * kGiB - 501 * kMiB, false},     // 501 MiB free
      {2 * kGiB, 2 * kGiB - 501 * kMiB + 1, true},  // a byte short of 501 MiB: 500 whole MiB
      {2 * kGiB, 2 * kGiB + 1, true},               // used above total wraps; caught
      {kTiB, 0, false},
  };
  for (const auto& c : warnings) {
    EXPECT_EQ(corvane::core::IsCapacityWarning(c.total, c.used), c.warn) << c.total << " " << c.used;
  }

  EXPECT_EQ(corvane::core::UsedPercent(3, 2), 66);  // truncated, not rounded
  EXPECT_EQ(corvane::core::UsedPercent(2, 3), 150);  // the control clamps, not the rule
  EXPECT_EQ(corvane::core::UsedPercent(1, UINT64_MAX), INT_MAX);
}

TEST(CapacityRules, BarHeightAndTruncatedCentring) {
  const struct {
    unsigned text;
    int bar;
  } heights[] = {{20, 32}, {25, 40}, {17, 27}, {14, 22}};
  for (const auto& h : heights) EXPECT_EQ(corvane::core::BarHeightFromTextHeight(h.text), h.bar) << h.text;
  // A picture taller than the bar: the division truncates toward zero, -5 / 2 is -2, not -3.
  EXPECT_EQ(corvane::core::ButtonRect(10, 80, 15, 10), (BarRect{10, -2, 90, 13}));
}

}  // namespace
