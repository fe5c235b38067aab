#include "explorer/frame_subclass.h"

#include "explorer/explorer_window.h"

LRESULT CExplorerFrame::OnSubclassMessage(UINT message, WPARAM wParam, LPARAM lParam, bool& handled) {
  CExplorerWindow* owner = GetOwner();
  if (owner == nullptr) return 0;
  return owner->OnFrameMessage(message, wParam, lParam, handled);
}
