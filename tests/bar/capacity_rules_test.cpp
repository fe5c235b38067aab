// Literal anchors of the bar's pure rules under Wine's msvcrt (the fuzzers compare the same rules
// with references natively, within a tolerance where rounding is involved): the size text's
// rounding, the 500 MiB warning, the truncated share and the x1.6 bar height.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <tuple>
#include <utility>

#include "core/bar_layout.h"
#include "core/capacity.h"

namespace {

using corvane::core::BarRect;
constexpr std::uint64_t kKiB = 1024, kMiB = kKiB * 1024, kGiB = kMiB * 1024, kTiB = kGiB * 1024;

TEST(CapacityRules, SizeTextsWarningAndShare) {
  using Size = std::pair<std::uint64_t, const wchar_t*>;
  for (const auto& [bytes, text] : {Size{1023, L"1023B"}, Size{1536, L"1.5KB"},
                                    Size{1024 + 10, L"1.01KB"},      // 1.009765625 rounds up
                                    Size{1152, L"1.12KB"},           // 1.125 exactly: a tie goes to the even digit
                                    Size{kMiB - 1, L"1024KB"},       // 1023.999 KiB prints as 1024.00
                                    Size{200 * kMiB, L"200MB"},      // trailing zeros stop at the point
                                    Size{kGiB + kGiB / 4, L"1.25GB"}, Size{UINT64_MAX, L"16777216TB"}}) {
    EXPECT_EQ(corvane::core::FormatSize(bytes), text) << bytes;
  }
  // At most 500 whole MiB free warns (the display's tests hold 500 and 501 MiB free).
  using Space = std::tuple<std::uint64_t, std::uint64_t, bool>;
  for (const auto& [total, used, warn] : {Space{2 * kGiB, 2 * kGiB - 501 * kMiB + 1, true},  // a byte short of 501 MiB
                                          Space{2 * kGiB, 2 * kGiB + 1, true},               // used above total wraps; caught
                                          Space{kTiB, 0, false}}) {
    EXPECT_EQ(corvane::core::IsCapacityWarning(total, used), warn) << total << " " << used;
  }

  EXPECT_EQ(corvane::core::UsedPercent(3, 2), 66);  // truncated, not rounded
  EXPECT_EQ(corvane::core::UsedPercent(2, 3), 150);  // the control clamps, not the rule
  EXPECT_EQ(corvane::core::UsedPercent(1, UINT64_MAX), INT_MAX);
}

TEST(CapacityRules, BarHeightAndTruncatedCentring) {
  for (const auto& [text, bar] : {std::pair{20u, 32}, std::pair{25u, 40}, std::pair{17u, 27}, std::pair{14u, 22}}) {
    EXPECT_EQ(corvane::core::BarHeightFromTextHeight(text), bar) << text;
  }
  // A picture taller than the bar: the division truncates toward zero, -5 / 2 is -2, not -3.
  EXPECT_EQ(corvane::core::ButtonRect(10, 80, 15, 10), (BarRect{10, -2, 90, 13}));
}

}  // namespace
