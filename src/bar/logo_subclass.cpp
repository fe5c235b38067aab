#include "bar/logo_subclass.h"

#include <string>

#include "bar/title_window.h"
#include "client/launcher.h"
#include "log/logger.h"

namespace {

// The pop-up is anchored at the logo's bottom-left; its extra text carries the other corner,
// "right;top", so the client can place the pop-up on either side.
struct Anchor {
  RECT rect{};
  std::wstring extra;
};

Anchor LogoAnchor(HWND logo) {
  Anchor anchor;
  ::GetWindowRect(logo, &anchor.rect);
  anchor.extra = std::to_wstring(anchor.rect.right) + L";" + std::to_wstring(anchor.rect.top);
  return anchor;
}

}  // namespace

LRESULT CLogoSubclass::OnSubclassMessage(UINT message, WPARAM, LPARAM, bool& handled) {
  if (message == WM_MOUSEMOVE) {
    OnMouseMove();
  } else if (message == WM_MOUSELEAVE) {
    OnMouseLeave();
  }
  handled = false;
  return 0;
}

void CLogoSubclass::OnMouseMove() {
  CTitleWindow* title = GetOwner();
  // A refused command leaves the logo unmarked, so the next move tries again.
  if (title == nullptr || title->m_bLogoHovered || !cx::canCommandExecute()) return;
  const Anchor anchor = LogoAnchor(m_hWnd);
  title->m_bLogoHovered = true;
  ::InvalidateRect(m_hWnd, nullptr, TRUE);
  const std::wstring command =
      cx::exeCloudCommandLine(L"accountInfo", L"show", anchor.rect.left, anchor.rect.bottom, anchor.extra);
  // Written without the full stop the other command lines carry; log readers match this line as is.
  LOG_INFO(L"CTitleWindow::BtnLogoSubclassProc", L"call cx::exeCloudCommandLine = %s", command.c_str());
  TRACKMOUSEEVENT tme{sizeof(tme), TME_LEAVE, m_hWnd, 0};
  ::TrackMouseEvent(&tme);
}

void CLogoSubclass::OnMouseLeave() {
  CTitleWindow* title = GetOwner();
  // The hovered mark is not consulted: a leave always asks to hide, in case a pop-up is up.
  if (title == nullptr || !cx::canCommandExecute()) return;
  const Anchor anchor = LogoAnchor(m_hWnd);
  title->m_bLogoHovered = false;
  ::InvalidateRect(m_hWnd, nullptr, TRUE);
  const std::wstring command =
      cx::exeCloudCommandLine(L"accountInfo", L"hide", anchor.rect.left, anchor.rect.bottom, anchor.extra);
  LOG_INFO(L"CTitleWindow::BtnLogoSubclassProc", L"call cx::exeCloudCommandLine = %s.", command.c_str());
}
