#pragma once
// Explorer's top-level frame: the private messages of the controller arrive here, and moves and
// display changes are noted for the next DPI check.
#include "platform/subclass.h"

class CExplorerWindow;

class CExplorerFrame final : public corvane::SubclassWindow<CExplorerFrame, CExplorerWindow> {
 public:
  explicit CExplorerFrame(UINT_PTR subclassId) noexcept : SubclassWindow(subclassId) {}

  LRESULT OnSubclassMessage(UINT message, WPARAM wParam, LPARAM lParam, bool& handled);
};
