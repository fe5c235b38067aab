#pragma once
// Explorer's "DUIViewWndClassName" window: every position change of it is a layout pass of the
// controller, which puts the bar at its top and moves the file list inside it down.
#include "explorer/browser_subclass.h"

class CDuiViewWindow final : public CBrowserSubclass<CDuiViewWindow> {
 public:
  static constexpr UINT_PTR kSubclassId = 0x20190804;

  CDuiViewWindow() noexcept : CBrowserSubclass(kSubclassId) {}

  LRESULT OnSubclassMessage(UINT message, WPARAM wParam, LPARAM lParam, bool& handled);
  void OnWindowPosChanging(WINDOWPOS* wp);
};
