// The title window's reactions to the client: the once-a-second refresh of the published state,
// the re-measure after a zoom or display change, and the promotion click.
#include <cmath>

#include "bar/detection_caption.h"
#include "bar/title_window.h"
#include "client/launcher.h"
#include "client/registry.h"
#include "core/bar_layout.h"
#include "log/logger.h"

LRESULT CTitleWindow::OnTimer(UINT, WPARAM wParam, LPARAM, bool&) {
  if (wParam != TIMER_CLOUD_UPDATE_INFO) return 0;

  std::wstring user;
  regUtil::getCurrentUser(user);
  if (user.size() >= 11 && user != m_strCurrentUser) {
    m_strCurrentUser = user;
    m_btnLogo.SetAccessibleName(m_strCurrentUser);
  }

  std::wstring logo = kDefaultLogo;
  regUtil::getLogoPath(logo);
  if (logo != m_strLogoPath) {
    ApplyLogoPath(logo);
    if (m_btnLogo.IsWindow()) {
      bar::MoveTo(m_btnLogo.m_hWnd, m_rcLogo);
      bar::RedrawNow(m_btnLogo.m_hWnd);
    }
  }

  std::uint64_t total = 0, used = 0;
  if (regUtil::getCloudSpace(total, used)) {
    m_nTotalSpace = total;
    m_nUsedSpace = used;
    // The display itself ignores figures it already shows.
    m_capacity.SetSpace(total, used);
  }

  std::wstring advertisingId, advertisingTitle;
  regUtil::getAdvertisingInfo(advertisingId, advertisingTitle);
  if (advertisingId != m_strAdvertisingId || advertisingTitle != m_strAdvertisingTitle) {
    m_strAdvertisingId = advertisingId;
    m_strAdvertisingTitle = advertisingTitle;
    RenderAdvertising();
    ComputeAdvertisingRect();
    if (m_btnAdvertising.IsWindow()) {
      bar::MoveTo(m_btnAdvertising.m_hWnd, m_rcAdvertising);
      bar::RedrawNow(m_btnAdvertising.m_hWnd);
      // Shown without asking the width rule; the next WM_SIZE applies it again.
      ::ShowWindow(m_btnAdvertising.m_hWnd, m_strAdvertisingId.empty() ? SW_HIDE : SW_SHOW);
    }
  }

  // A fresh 0.0: a zoom that has disappeared counts as a change to 0. The difference is taken
  // absolutely, not with core::IsNearlyEqual's relative test: at the zooms a client publishes
  // (about 1 to 3) the two agree, and the absolute form has no special case at 0.
  double zoom = 0.0;
  regUtil::getDpiZoom(ZoomWindow(), zoom);
  if (std::fabs(zoom - m_dDpiZoom) > 1e-9) {
    m_dDpiZoom = zoom;
    ::PostMessageW(m_hWnd, WM_DISPLAYCHANGE, 0, 0);
    ::PostMessageW(m_rightWindow.m_hWnd, WM_DISPLAYCHANGE, 0, 0);
  }

  LOG_DEBUG(L"CTitleWindow::OnTimer",
            L"TIMER_CLOUD_UPDATE_INFO invoked currentUser= %s, logoPath = %s, advertisingId = %s, "
            L"advertisingTitle = %s, totalSpace = %llu, usedSpace = %llu",
            user.c_str(), logo.c_str(), advertisingId.c_str(), advertisingTitle.c_str(),
            static_cast<unsigned long long>(total), static_cast<unsigned long long>(used));
  return 0;
}

LRESULT CTitleWindow::OnDisplayChange(UINT, WPARAM, LPARAM, bool& handled) {
  handled = false;
  if (m_pOwner == nullptr) return 0;

  const std::wstring detectionPng = m_strModuleFolder + bar::kDetectionPicture;
  RenderTextToPng(bar::DetectionCaption(ZoomWindow()), detectionPng);
  UINT width = 0, height = 0;
  // Without a measurement the owner keeps the unit and height it has.
  if (GetImageSize(detectionPng, width, height)) {
    m_pOwner->SetIconSize(static_cast<int>(width), static_cast<int>(height));
    m_pOwner->SetBarHeight(corvane::core::BarHeightFromTextHeight(height));
  }

  RenderAdvertising();

  ComputeLogoRect();
  ComputeCapacityRect();
  ComputeAdvertisingRect();
  m_capacity.SetSize(m_rcCapacity.right - m_rcCapacity.left, m_rcCapacity.bottom - m_rcCapacity.top);
  if (m_btnAdvertising.IsWindow()) {
    bar::MoveTo(m_btnAdvertising.m_hWnd, m_rcAdvertising);
    bar::RedrawNow(m_btnAdvertising.m_hWnd);
  }
  if (m_btnLogo.IsWindow()) bar::MoveTo(m_btnLogo.m_hWnd, m_rcLogo);
  if (m_capacity.IsWindow()) bar::MoveTo(m_capacity.m_hWnd, m_rcCapacity);
  m_capacity.Refresh();
  return 0;
}

LRESULT CTitleWindow::OnAdvertisingClick(UINT, WPARAM, LPARAM lParam, bool&) {
  std::wstring advertisingId, advertisingTitle;
  if (regUtil::getAdvertisingInfo(advertisingId, advertisingTitle)) {
    m_strAdvertisingId = advertisingId;
    m_strAdvertisingTitle = advertisingTitle;
  }
  RECT rect{};
  ::GetWindowRect(reinterpret_cast<HWND>(lParam), &rect);
  // Owned by the bar itself, and flag 0: the promotion entry (the capacity expand entry passes 1).
  const std::wstring command = cx::exeCloudCommandLine(L"vip", L"show", rect.left, rect.bottom, m_hWnd, 0);
  LOG_INFO(L"CTitleWindow::OnAdvertisingClick", L"call cx::exeCloudCommandLine = %s.", command.c_str());
  return 0;
}
