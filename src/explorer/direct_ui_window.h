#pragma once
// Explorer's "DirectUIHWND" file list inside the view window. The controller moves it with
// SetWindowPos; the subclass itself passes every message on.
#include "explorer/browser_subclass.h"

class CDirectUiWindow final : public CBrowserSubclass<CDirectUiWindow> {
 public:
  static constexpr UINT_PTR kSubclassId = 0x20190805;

  CDirectUiWindow() noexcept : CBrowserSubclass(kSubclassId) {}

  LRESULT OnSubclassMessage(UINT, WPARAM, LPARAM, bool&) { return 0; }
  // Not called from the procedure: the list's own position changes must never start a layout pass,
  // or moving it down would lay it out again. Kept for a layout driven from the list one day.
  void OnWindowPosChanging(WINDOWPOS* wp);
};
