// The pure rules behind the bar: size texts, the low-space warning, the used share, and the
// layout arithmetic (bar height, child rectangles, which children fit a width).
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <string>

#include "core/bar_layout.h"
#include "core/capacity.h"

namespace {

using corvane::core::BarRect;
using corvane::core::BarVisibility;
using corvane::core::FormatSize;

constexpr std::uint64_t kKiB = 1024, kMiB = kKiB * 1024, kGiB = kMiB * 1024, kTiB = kGiB * 1024;

TEST(FormatSize, UnitsFractionsAndTrimming) {
  const struct {
    std::uint64_t bytes;
    const wchar_t* text;
  } cases[] = {
      {0, L"0B"},
      {1023, L"1023B"},
      {1024, L"1KB"},
      {1536, L"1.5KB"},
      {1024 + 10, L"1.01KB"},              // 1.009765625 rounds up to 1.01
      {1152, L"1.12KB"},                   // 1.125 exactly: a tie goes to the even digit
      {kMiB - 1, L"1024KB"},               // 1023.999 KiB prints as 1024.00
      {kMiB, L"1MB"},
      {200 * kMiB, L"200MB"},              // trailing zeros stop at the point
      {kGiB, L"1GB"},
      {kGiB + kGiB / 4, L"1.25GB"},
      {kTiB - 1, L"1024GB"},
      {kTiB, L"1TB"},
      {kTiB + kTiB / 2, L"1.5TB"},
      {UINT64_MAX, L"16777216TB"},         // taken as unsigned, never negative
  };
  for (const auto& c : cases) EXPECT_EQ(FormatSize(c.bytes), c.text) << c.bytes;
}

TEST(CapacityWarning, FiveHundredMibOrLessFreeOrUsedAtTotal) {
  const struct {
    std::uint64_t total, used;
    bool warn;
  } cases[] = {
      {2 * kGiB, 2 * kGiB - 500 * kMiB, true},       // exactly 500 MiB free
      {2 * kGiB, 2 * kGiB - 501 * kMiB, false},      // 501 MiB free
      {2 * kGiB, 2 * kGiB - 501 * kMiB + 1, true},   // a byte short of 501 MiB: 500 whole MiB
      {2 * kGiB, 2 * kGiB - 500 * kMiB - 1, true},   // 500 MiB and a byte
      {0, 0, true},
      {2 * kGiB, 2 * kGiB, true},
      {2 * kGiB, 2 * kGiB + 1, true},                // used above total wraps; caught
      {0, 5, true},
      {kTiB, 0, false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(corvane::core::IsCapacityWarning(c.total, c.used), c.warn) << c.total << " " << c.used;
  }
}

TEST(CapacityWarning, UsedPercentTruncatesAndIsBounded) {
  EXPECT_EQ(corvane::core::UsedPercent(0, 0), 0);
  EXPECT_EQ(corvane::core::UsedPercent(3, 1), 33);
  EXPECT_EQ(corvane::core::UsedPercent(3, 2), 66);
  EXPECT_EQ(corvane::core::UsedPercent(2, 3), 150);  // the control clamps, not the rule
  EXPECT_EQ(corvane::core::UsedPercent(1, UINT64_MAX), INT_MAX);
}

TEST(BarLayout, HeightFromTextLineAndTruncatedCentring) {
  const struct {
    unsigned text;
    int bar;
  } heights[] = {{20, 32}, {25, 40}, {17, 27}, {14, 22}, {0, 0}};
  for (const auto& h : heights) EXPECT_EQ(corvane::core::BarHeightFromTextHeight(h.text), h.bar) << h.text;
  EXPECT_EQ(corvane::core::LogoRect(32), (BarRect{10, 1, 40, 31})) << "a 30 x 30 logo at (10, 1)";
  // A picture taller than the bar: the division truncates toward zero, -5 / 2 is -2, not -3.
  const BarRect capacity{60, 0, 210, 9};
  EXPECT_EQ(corvane::core::AdvertisingRect(capacity, 20, 90, 15, 10), (BarRect{230, -2, 320, 13}));
  EXPECT_EQ(corvane::core::ButtonRect(10, 80, 15, 10), (BarRect{10, -2, 90, 13}));
}

TEST(BarLayout, AbsurdSizesEndAtTheIntRange) {
  // A text line no font has and sums past INT_MAX: the nearest end of the range, never a wrap.
  EXPECT_EQ(corvane::core::BarHeightFromTextHeight(UINT_MAX), INT_MAX);
  EXPECT_EQ(corvane::core::BarHeightFromTextHeight(1342177279), 2147483646);
  EXPECT_EQ(corvane::core::BarHeightFromTextHeight(1342177280), INT_MAX);
  EXPECT_EQ(corvane::core::LogoRect(INT_MAX), (BarRect{10, 1, INT_MAX, INT_MAX - 1}));
  EXPECT_EQ(corvane::core::LogoRect(INT_MIN), (BarRect{10, 1, INT_MIN + 8, INT_MIN}));
  const BarRect logo{10, 1, 40, 31};
  EXPECT_EQ(corvane::core::CapacityRect(logo, 8, INT_MAX / 2, 32), (BarRect{48, 0, INT_MAX, 31}));
  EXPECT_EQ(corvane::core::ButtonRect(INT_MAX - 10, 80, INT_MAX, INT_MIN), (BarRect{INT_MAX - 10, INT_MIN + 1, INT_MAX, 0}));
  // The width thresholds compare without overflow: nothing fits a bar narrower than its right group.
  const BarRect distant{0, 0, INT_MAX, 0};
  EXPECT_EQ(corvane::core::VisibleChildren(INT_MAX, INT_MAX, logo, distant, distant, true), (BarVisibility{false, false, false}));
  EXPECT_EQ(corvane::core::VisibleChildren(INT_MAX, 100, logo, logo, distant, true), (BarVisibility{true, true, false}));
}

}  // namespace
