#pragma once
// The bar's layout arithmetic: its height from the measured text line, the rectangles of its
// children and which of them fit a given width. All values are physical pixels. A coordinate
// beyond the int range (only absurd sizes get there) is the nearest end of the range.
namespace corvane::core {

struct BarRect {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;
  bool operator==(const BarRect&) const = default;
};

// trunc(textHeight x 1.6): a 20-pixel text line gives a 32-pixel bar (at most INT_MAX).
int BarHeightFromTextHeight(unsigned textHeight) noexcept;

// A square of side H - 2 at (10, 1).
BarRect LogoRect(int barHeight) noexcept;
// gap to the right of the logo, six text units wide, down to H - 1.
BarRect CapacityRect(const BarRect& logo, int gap, int unitWidth, int barHeight) noexcept;
// A picture of imageWidth x imageHeight, gap to the right of the capacity display, centred
// vertically with a truncating division (which may be negative).
BarRect AdvertisingRect(const BarRect& capacity, int gap, int imageWidth, int imageHeight, int barHeight) noexcept;
// A button picture at left, centred vertically like the advertising entry.
BarRect ButtonRect(int left, int imageWidth, int imageHeight, int barHeight) noexcept;

// Which of the bar's own children fit beside the right group of width rightWidth, every
// comparison strict: a width exactly at a threshold shows the child.
struct BarVisibility {
  bool logo = false;
  bool capacity = false;
  bool advertising = false;
  bool operator==(const BarVisibility&) const = default;
};
BarVisibility VisibleChildren(int barWidth, int rightWidth, const BarRect& logo, const BarRect& capacity,
                              const BarRect& advertising, bool hasAdvertising) noexcept;

}  // namespace corvane::core
