#include "explorer/dui_view_window.h"

#include "explorer/view_position.h"

LRESULT CDuiViewWindow::OnSubclassMessage(UINT message, WPARAM wParam, LPARAM lParam, bool& handled) {
  if (message != WM_WINDOWPOSCHANGING) return 0;
  // Explorer's own handling comes first; the layout then sees the position it settled on.
  const LRESULT result = DefaultProcedure(message, wParam, lParam);
  OnWindowPosChanging(reinterpret_cast<WINDOWPOS*>(lParam));
  handled = true;
  return result;
}

void CDuiViewWindow::OnWindowPosChanging(WINDOWPOS* wp) {
  explorer::LayoutFromWindowPos(L"CDuiViewWindow::OnWindowPosChanging", wp, IsManaging(), GetOwner());
}
