#pragma once
// What the bar needs from the window that hosts it. In Explorer that is the window controller; tests
// and the bar host program implement it over a plain window. Nothing here names an Explorer type.
#include <windows.h>

class IBarOwner {
 public:
  // The bar's height H in pixels; every layout of the bar reads it afresh.
  virtual int GetBarHeight() const = 0;
  // Stores a re-measured height and lays the owner's window out again around the bar.
  virtual void SetBarHeight(int height) = 0;

  // The text unit: width and height of the rendered "CorvaneSkin\detection.png".
  virtual void GetIconSize(int& width, int& height) const = 0;
  virtual void SetIconSize(int width, int height) = 0;

  // The owner's window: the bar's first parent, and the window whose number names the client's
  // published zoom.
  virtual HWND GetExplorerHwnd() const = 0;

 protected:
  IBarOwner() = default;
  IBarOwner(const IBarOwner&) = default;
  IBarOwner& operator=(const IBarOwner&) = default;
  // Never deleted through this interface: the bar does not own its owner.
  ~IBarOwner() = default;
};
