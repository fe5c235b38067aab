#include "explorer/direct_ui_window.h"

#include "explorer/view_position.h"

void CDirectUiWindow::OnWindowPosChanging(WINDOWPOS* wp) {
  explorer::LayoutFromWindowPos(L"CDirectUiWindow::OnWindowPosChanging", wp, IsManaging(), GetOwner());
}
