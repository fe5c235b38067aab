#include "core/bar_layout.h"

namespace corvane::core {

int BarHeightFromTextHeight(unsigned textHeight) noexcept { return static_cast<int>(textHeight * 1.6); }

BarRect LogoRect(int barHeight) noexcept { return {10, 1, barHeight + 8, barHeight - 1}; }

BarRect CapacityRect(const BarRect& logo, int gap, int unitWidth, int barHeight) noexcept {
  const int left = logo.right + gap;
  return {left, 0, left + 6 * unitWidth, barHeight - 1};
}

BarRect AdvertisingRect(const BarRect& capacity, int gap, int imageWidth, int imageHeight, int barHeight) noexcept {
  const int top = (barHeight - imageHeight) / 2;
  const int left = capacity.right + gap;
  return {left, top, left + imageWidth, top + imageHeight};
}

BarRect ButtonRect(int left, int imageWidth, int imageHeight, int barHeight) noexcept {
  const int top = (barHeight - imageHeight) / 2;
  return {left, top, left + imageWidth, top + imageHeight};
}

BarVisibility VisibleChildren(int barWidth, int rightWidth, const BarRect& logo, const BarRect& capacity,
                              const BarRect& advertising, bool hasAdvertising) noexcept {
  if (barWidth < rightWidth + logo.right + 10) return {false, false, false};
  if (barWidth < rightWidth + capacity.right + 10) return {true, false, false};
  if (barWidth < rightWidth + advertising.right + 10) return {true, true, false};
  return {true, true, hasAdvertising};
}

}  // namespace corvane::core
