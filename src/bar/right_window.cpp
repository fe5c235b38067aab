#include "bar/right_window.h"

#include <utility>

#include "bar/bar_common.h"
#include "client/launcher.h"
#include "client/theme.h"
#include "core/bar_layout.h"
#include "log/logger.h"
#include "platform/module_path.h"

namespace {

RECT ToRect(const corvane::core::BarRect& r) noexcept { return RECT{r.left, r.top, r.right, r.bottom}; }

}  // namespace

std::span<const CRightWindow::MessageEntry> CRightWindow::MessageMap() {
  static const MessageEntry map[] = {
      {WM_CREATE, &CRightWindow::OnNothing},
      {WM_DESTROY, &CRightWindow::OnNothing},
      {WM_SIZE, &CRightWindow::OnSize},
      {WM_PAINT, &CRightWindow::OnPaint},
      // The back-buffered paint covers the whole window; there is nothing to erase.
      {WM_ERASEBKGND, &CRightWindow::OnNothing},
      {WM_SETTINGCHANGE, &CRightWindow::OnSettingChange},
      {WM_DISPLAYCHANGE, &CRightWindow::OnDisplayChange},
      {WM_COMMAND, &CRightWindow::onCommand},
      {WM_COMMAND, &CRightWindow::OnSyncProgressClick, IDC_RIGHT_SYNCPROGRESS, BN_CLICKED},
      {WM_COMMAND, &CRightWindow::OnSettingsClick, IDC_RIGHT_SETTINGS, BN_CLICKED},
      {WM_COMMAND, &CRightWindow::OnZhishikuClick, IDC_RIGHT_ZHISHIKU, BN_CLICKED},
  };
  return map;
}

CRightWindow::CRightWindow() : m_strModuleFolder(corvane::ThisModuleFolder()) {}

bool CRightWindow::Create(HWND parent, IBarOwner* owner) {
  m_hParent = parent;
  m_pOwner = owner;
  if (corvane::Window<CRightWindow>::Create(parent, nullptr, L"", WS_CHILD | WS_VISIBLE, 0, 0) == nullptr) return false;
  BuildPictures();
  // R stays at its first value until the first re-measure (WM_DISPLAYCHANGE), which follows the
  // bar's creation at once; until then the title window places the group 360 pixels wide.
  ComputeButtonRects();
  constexpr DWORD kButtonStyle = WS_CHILD | WS_VISIBLE;
  m_btnSyncProgress.Create(m_hWnd, &m_rcButtons[0], L"", kButtonStyle, 0, IDC_RIGHT_SYNCPROGRESS);
  m_btnSettings.Create(m_hWnd, &m_rcButtons[1], L"", kButtonStyle, 0, IDC_RIGHT_SETTINGS);
  m_btnZhishiku.Create(m_hWnd, &m_rcButtons[2], L"", kButtonStyle, 0, IDC_RIGHT_ZHISHIKU);
  m_btnZhishiku.SetHandCursor(1);
  MoveButtons();
  return true;
}

void CRightWindow::Place(int x, int y, int width, int height) noexcept {
  ::SetWindowPos(m_hWnd, nullptr, x, y, width, height, SWP_NOZORDER);
}

void CRightWindow::Destroy() {
  DestroyWindow();
  m_btnSyncProgress.DestroyButton();
  m_btnSettings.DestroyButton();
  m_btnZhishiku.DestroyButton();
}

void CRightWindow::ComputeButtonRects() {
  const int barHeight = m_pOwner != nullptr ? m_pOwner->GetBarHeight() : 0;
  using corvane::core::ButtonRect;
  const auto sync = ButtonRect(10, m_btnSyncProgress.GetImageWidth(), m_btnSyncProgress.GetImageHeight(), barHeight);
  const auto settings =
      ButtonRect(sync.right + m_nGap, m_btnSettings.GetImageWidth(), m_btnSettings.GetImageHeight(), barHeight);
  const auto zhishiku =
      ButtonRect(settings.right + m_nGap, m_btnZhishiku.GetImageWidth(), m_btnZhishiku.GetImageHeight(), barHeight);
  m_rcButtons = {ToRect(sync), ToRect(settings), ToRect(zhishiku)};
}

void CRightWindow::MoveButtons() {
  CPngToolButton* const buttons[] = {&m_btnSyncProgress, &m_btnSettings, &m_btnZhishiku};
  for (size_t i = 0; i < m_rcButtons.size(); ++i) {
    if (buttons[i]->IsWindow()) bar::MoveTo(buttons[i]->m_hWnd, m_rcButtons[i]);
  }
}

LRESULT CRightWindow::OnSize(UINT, WPARAM, LPARAM, bool&) {
  MoveButtons();
  return 0;
}

LRESULT CRightWindow::OnPaint(UINT, WPARAM, LPARAM, bool&) {
  bar::Paint(m_hWnd, nullptr, bar::PaintStyle{false, false});
  return 0;
}

LRESULT CRightWindow::OnSettingChange(UINT, WPARAM, LPARAM lParam, bool& handled) {
  if (!theme::IsSettingChange(lParam, L"ImmersiveColorSet") && !theme::IsSettingChange(lParam, L"WindowsThemeElement")) {
    handled = false;
    return 0;
  }
  ApplyThemeImages();
  MoveButtons();
  return 0;
}

LRESULT CRightWindow::OnDisplayChange(UINT, WPARAM, LPARAM, bool&) {
  BuildPictures();
  ComputeButtonRects();
  m_nWidth = m_rcButtons[2].right + 20;
  // The title window owns the group's place; it re-reads R when this arrives.
  ::PostMessageW(m_hParent, WM_TITLE_PLACE_RIGHT, 0, 0);
  CPngToolButton* const buttons[] = {&m_btnSyncProgress, &m_btnSettings, &m_btnZhishiku};
  for (size_t i = 0; i < m_rcButtons.size(); ++i) {
    if (!buttons[i]->IsWindow()) continue;
    bar::MoveTo(buttons[i]->m_hWnd, m_rcButtons[i]);
    bar::RedrawNow(buttons[i]->m_hWnd);
  }
  return 0;
}

LRESULT CRightWindow::onCommand(UINT, WPARAM wParam, LPARAM, bool& handled) {
  const wchar_t* argument = nullptr;
  switch (LOWORD(wParam)) {
    case IDM_SYNC_SETTING:
      argument = L"sync_setting";
      break;
    case IDM_SYNC_OPERATE:
      argument = L"sync_operate";
      break;
    case IDM_AI_CUSTOM:
      argument = L"ai_custom";
      break;
    default:
      // The button entries after this one take the rest.
      handled = false;
      return 0;
  }
  const std::wstring command = cx::exeCloudCommandLine(L"setting", argument);
  LOG_INFO(L"CRightWindow::onCommand", L"call cx::exeCloudCommandLine = %s.", command.c_str());
  return 0;
}

LRESULT CRightWindow::OnSyncProgressClick(UINT, WPARAM, LPARAM, bool&) {
  const std::wstring command = cx::exeCloudCommandLine(L"syncprogress", L"show", -1, -1, m_btnSyncProgress.m_hWnd);
  LOG_INFO(L"CRightWindow::OnSyncProgressClick", L"call cx::exeCloudCommandLine = %s.", command.c_str());
  return 0;
}

LRESULT CRightWindow::OnSettingsClick(UINT, WPARAM, LPARAM, bool&) {
  RECT rect{};
  ::GetWindowRect(m_btnSettings.m_hWnd, &rect);
  if (!m_hMenu) {
    corvane::unique_hmenu menu(::CreatePopupMenu());
    if (menu && ::AppendMenuW(menu.get(), MF_STRING, IDM_SYNC_SETTING, L"同步盘设置") &&
        ::AppendMenuW(menu.get(), MF_STRING, IDM_SYNC_OPERATE, L"同步盘操作记录") &&
        ::AppendMenuW(menu.get(), MF_STRING, IDM_AI_CUSTOM, L"智能客服")) {
      m_hMenu = std::move(menu);
    }
  }
  // Owned by the group window, so the choice comes back here as WM_COMMAND for onCommand.
  if (m_hMenu) ::TrackPopupMenu(m_hMenu.get(), TPM_RIGHTBUTTON, rect.left, rect.bottom, 0, m_hWnd, nullptr);
  return 0;
}

LRESULT CRightWindow::OnZhishikuClick(UINT, WPARAM, LPARAM, bool&) {
  // Anchored under the settings button, not under the knowledge-base button: the client places its
  // pop-up to line up with the settings menu, which opens at the same point.
  RECT rect{};
  ::GetWindowRect(m_btnSettings.m_hWnd, &rect);
  const std::wstring command = cx::exeCloudCommandLine(L"zhishiku", L"show", rect.left, rect.bottom, m_btnZhishiku.m_hWnd);
  LOG_INFO(L"CRightWindow::OnZhishikuClick", L"call cx::exeCloudCommandLine = %s.", command.c_str());
  return 0;
}
