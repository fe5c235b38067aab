// The bar's layout arithmetic over the whole int range (window widths come from the system, picture
// sizes from picture files): no overflow, every coordinate the exact value where that fits the int
// range and the nearest end of the range where it does not, pictures centred, and children that
// appear in order and never disappear as the bar grows.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstdint>
#include <limits>

#include "core/bar_layout.h"
#include "fuzz_support.h"

namespace {

using namespace corvane::core;

constexpr std::int64_t kMin = std::numeric_limits<int>::min();
constexpr std::int64_t kMax = std::numeric_limits<int>::max();

bool Is(int actual, std::int64_t exact) { return actual == std::clamp(exact, kMin, kMax); }
bool InRange(std::int64_t value) { return value >= kMin && value <= kMax; }

// Mostly small values, as real layouts have, with the extremes still reachable.
int Pixels(FuzzedDataProvider& input) {
  switch (input.ConsumeIntegralInRange<int>(0, 3)) {
    case 0:
      return input.ConsumeIntegralInRange<int>(-64, 512);
    case 1:
      return input.ConsumeIntegralInRange<int>(-(1 << 16), 1 << 16);
    default:
      return input.ConsumeIntegral<int>();
  }
}

BarRect AnyRect(FuzzedDataProvider& input) { return {Pixels(input), Pixels(input), Pixels(input), Pixels(input)}; }

void CheckCentred(const BarRect& r, std::int64_t top, std::int64_t imageHeight, std::int64_t barHeight) {
  if (!InRange(top) || !InRange(top + imageHeight)) return;
  // Truncating division: the picture sits half a pixel high or low, towards zero, never further.
  const std::int64_t room = barHeight - imageHeight;
  FUZZ_CHECK(2 * std::int64_t{r.top} == room - room % 2);
  FUZZ_CHECK(std::int64_t{r.bottom} - r.top == imageHeight);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const auto textHeight = input.ConsumeIntegral<unsigned>();
  const int barHeight = Pixels(input);
  const int gap = Pixels(input);
  const int unitWidth = Pixels(input);
  const int imageWidth = Pixels(input);
  const int imageHeight = Pixels(input);
  const int left = Pixels(input);

  // trunc(textHeight x 1.6) is floor(8 textHeight / 5): 1.6 is stored a hair high, never low enough
  // to lose a whole pixel.
  FUZZ_CHECK(Is(BarHeightFromTextHeight(textHeight), std::int64_t{textHeight} * 8 / 5));

  const BarRect logo = LogoRect(barHeight);
  FUZZ_CHECK(logo.left == 10 && logo.top == 1);
  FUZZ_CHECK(Is(logo.right, std::int64_t{barHeight} + 8) && Is(logo.bottom, std::int64_t{barHeight} - 1));

  const BarRect capacity = CapacityRect(logo, gap, unitWidth, barHeight);
  const std::int64_t capacityLeft = std::int64_t{logo.right} + gap;
  FUZZ_CHECK(Is(capacity.left, capacityLeft) && capacity.top == 0);
  FUZZ_CHECK(Is(capacity.right, capacityLeft + 6 * std::int64_t{unitWidth}));
  FUZZ_CHECK(Is(capacity.bottom, std::int64_t{barHeight} - 1));

  const BarRect advertising = AdvertisingRect(capacity, gap, imageWidth, imageHeight, barHeight);
  const std::int64_t adLeft = std::int64_t{capacity.right} + gap;
  const std::int64_t adTop = (std::int64_t{barHeight} - imageHeight) / 2;
  FUZZ_CHECK(Is(advertising.left, adLeft) && Is(advertising.right, adLeft + imageWidth));
  FUZZ_CHECK(Is(advertising.top, adTop) && Is(advertising.bottom, adTop + imageHeight));
  if (InRange(adLeft) && InRange(adLeft + imageWidth))
    FUZZ_CHECK(std::int64_t{advertising.right} - advertising.left == imageWidth);
  CheckCentred(advertising, adTop, imageHeight, barHeight);

  const BarRect button = ButtonRect(left, imageWidth, imageHeight, barHeight);
  FUZZ_CHECK(button.left == left && Is(button.right, std::int64_t{left} + imageWidth));
  FUZZ_CHECK(Is(button.top, adTop) && Is(button.bottom, adTop + imageHeight));
  CheckCentred(button, adTop, imageHeight, barHeight);

  // Which children fit, over arbitrary rectangles as well as the ones computed above.
  const bool computed = input.ConsumeBool();
  const BarRect l = computed ? logo : AnyRect(input);
  const BarRect c = computed ? capacity : AnyRect(input);
  const BarRect a = computed ? advertising : AnyRect(input);
  const int barWidth = Pixels(input);
  const int rightWidth = Pixels(input);
  const bool hasAdvertising = input.ConsumeBool();
  const BarVisibility shown = VisibleChildren(barWidth, rightWidth, l, c, a, hasAdvertising);
  // A child fits when the bar is at least as wide as the right group, the child's right edge and
  // ten pixels; the threshold itself shows it. Children drop out right to left.
  const auto fits = [&](const BarRect& r) { return std::int64_t{barWidth} >= std::int64_t{rightWidth} + r.right + 10; };
  FUZZ_CHECK(shown.logo == fits(l));
  FUZZ_CHECK(shown.capacity == (shown.logo && fits(c)));
  FUZZ_CHECK(shown.advertising == (shown.capacity && fits(a) && hasAdvertising));
  // A wider bar never hides a child that a narrower one showed.
  const int wider = static_cast<int>(std::min<std::int64_t>(kMax, std::int64_t{barWidth} + input.ConsumeIntegral<std::uint16_t>()));
  const BarVisibility more = VisibleChildren(wider, rightWidth, l, c, a, hasAdvertising);
  FUZZ_CHECK(more.logo >= shown.logo && more.capacity >= shown.capacity && more.advertising >= shown.advertising);
  return 0;
}
