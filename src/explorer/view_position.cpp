#include "explorer/view_position.h"

#include "explorer/explorer_window.h"
#include "log/logger.h"

namespace explorer {

void LayoutFromWindowPos(const wchar_t* function, WINDOWPOS* wp, bool managing, CExplorerWindow* owner) {
  if (wp == nullptr) return;
  // Both wrappers write this text: the file list's copy was taken from the view's and never renamed.
  LOG_INFO(function, L"CDuiViewWindow::OnWindowPosChanging(x = %d, y = %d, cx = %d, cy = %d),m_bManaging = %d", wp->x,
           wp->y, wp->cx, wp->cy, managing ? 1 : 0);
  if (!managing) return;
  // The flags are not looked at: RefreshWindows sends SWP_NOSIZE | SWP_NOMOVE with the real
  // rectangle precisely to get a layout pass.
  RECT rc{wp->x, wp->y, wp->x + wp->cx, wp->y + wp->cy};
  if (rc.bottom - rc.top > 0 && owner != nullptr) owner->OnDuiViewPosChanging(rc);
  wp->x = rc.left;
  wp->y = rc.top;
  wp->cx = rc.right - rc.left;
  wp->cy = rc.bottom - rc.top;
}

}  // namespace explorer
