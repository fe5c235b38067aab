#include "core/bar_layout.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace corvane::core {

namespace {

// Sizes come from font metrics, the window and picture files; worked in 64 bits, a sum of extreme
// values ends at the nearest end of the int range instead of wrapping (undefined for int).
int Saturated(std::int64_t value) noexcept {
  return static_cast<int>(std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(),
                                                   std::numeric_limits<int>::max()));
}

BarRect CentredRect(std::int64_t left, int imageWidth, int imageHeight, int barHeight) noexcept {
  const std::int64_t top = (std::int64_t{barHeight} - imageHeight) / 2;
  return {Saturated(left), Saturated(top), Saturated(left + imageWidth), Saturated(top + imageHeight)};
}

bool Fits(int barWidth, int rightWidth, const BarRect& child) noexcept {
  return std::int64_t{barWidth} >= std::int64_t{rightWidth} + child.right + 10;
}

}  // namespace

int BarHeightFromTextHeight(unsigned textHeight) noexcept {
  const double height = textHeight * 1.6;
  return height >= static_cast<double>(std::numeric_limits<int>::max()) ? std::numeric_limits<int>::max()
                                                                        : static_cast<int>(height);
}

BarRect LogoRect(int barHeight) noexcept {
  return {10, 1, Saturated(std::int64_t{barHeight} + 8), Saturated(std::int64_t{barHeight} - 1)};
}

BarRect CapacityRect(const BarRect& logo, int gap, int unitWidth, int barHeight) noexcept {
  const std::int64_t left = std::int64_t{logo.right} + gap;
  return {Saturated(left), 0, Saturated(left + 6 * std::int64_t{unitWidth}), Saturated(std::int64_t{barHeight} - 1)};
}

BarRect AdvertisingRect(const BarRect& capacity, int gap, int imageWidth, int imageHeight, int barHeight) noexcept {
  return CentredRect(std::int64_t{capacity.right} + gap, imageWidth, imageHeight, barHeight);
}

BarRect ButtonRect(int left, int imageWidth, int imageHeight, int barHeight) noexcept {
  return CentredRect(left, imageWidth, imageHeight, barHeight);
}

BarVisibility VisibleChildren(int barWidth, int rightWidth, const BarRect& logo, const BarRect& capacity,
                              const BarRect& advertising, bool hasAdvertising) noexcept {
  if (!Fits(barWidth, rightWidth, logo)) return {false, false, false};
  if (!Fits(barWidth, rightWidth, capacity)) return {true, false, false};
  if (!Fits(barWidth, rightWidth, advertising)) return {true, true, false};
  return {true, true, hasAdvertising};
}

}  // namespace corvane::core
