#include "namespace/main_window.h"

#include <string>

#include "client/launcher.h"
#include "client/registry.h"
#include "client/theme.h"
#include "log/logger.h"
#include "namespace/my_shell_view.h"
#include "namespace/prompt_layout.h"
#include "platform/module_path.h"
#include "widgets/png_picture.h"

namespace {

struct ButtonSetup {
  int id;
  const wchar_t* name;
  const wchar_t* label;  // what the skin's picture says, for screen readers
  int width, height;
  const wchar_t* normal;
  const wchar_t* dark;
  const wchar_t* hover;
  const wchar_t* hoverDark;  // "" for none
  const wchar_t* disabled;
  const wchar_t* disabledDark;
};

// Buttons 2 and 3 use their "_hover_dark" picture as the light disabled picture; that is the skin's
// own pairing and it is kept.
constexpr ButtonSetup kButtons[] = {
    {CMainWindow::IDC_BTN_LOGIN, L"a001XXX", L"登录", 124, 40, L"CorvaneSkin\\btn_login.png", L"CorvaneSkin\\btn_login_dark.png",
     L"CorvaneSkin\\btn_login_hover.png", L"", L"CorvaneSkin\\btn_login_unable.png", L""},
    {CMainWindow::IDC_BTN_SYNC, L"a002XXX", L"开启同步", 437, 122, L"CorvaneSkin\\btn_setting.png",
     L"CorvaneSkin\\btn_setting_dark.png", L"CorvaneSkin\\btn_setting_hover.png",
     L"CorvaneSkin\\btn_setting_hover_dark.png", L"CorvaneSkin\\btn_setting_hover_dark.png",
     L"CorvaneSkin\\btn_setting_unable_dark.png"},
    {CMainWindow::IDC_BTN_SYNC, L"a003XXX", L"开启同步", 874, 244, L"CorvaneSkin\\btn_settingX.png",
     L"CorvaneSkin\\btn_settingX_dark.png", L"CorvaneSkin\\btn_settingX_hover.png",
     L"CorvaneSkin\\btn_settingX_hover_dark.png", L"CorvaneSkin\\btn_settingX_hover_dark.png",
     L"CorvaneSkin\\btn_settingX_unable_dark.png"},
    {CMainWindow::IDC_BTN_SYNC, L"a004XXX", L"打开同步设置", 157, 40, L"CorvaneSkin\\btn_setting01.png",
     L"CorvaneSkin\\btn_setting01_dark.png", L"CorvaneSkin\\btn_setting01_hover.png", L"",
     L"CorvaneSkin\\btn_setting01_unable.png", L""},
};

// Light and dark background picture of each layout, in promptlayout::Background order after kNone.
constexpr const wchar_t* kBackgrounds[3][2] = {
    {L"CorvaneSkin\\bk_login.png", L"CorvaneSkin\\bk_login_dark.png"},
    {L"CorvaneSkin\\bk_setting.png", L"CorvaneSkin\\bk_setting_dark.png"},
    {L"CorvaneSkin\\bk_settingX.png", L"CorvaneSkin\\bk_settingX_dark.png"},
};

}  // namespace

std::span<const CMainWindow::MessageEntry> CMainWindow::MessageMap() {
  static constexpr MessageEntry map[] = {
      {WM_CREATE, &CMainWindow::OnCreate},
      {WM_PAINT, &CMainWindow::OnPaint},
      {WM_SIZE, &CMainWindow::OnSize},
      {WM_DESTROY, &CMainWindow::OnDestroy},
      {WM_ERASEBKGND, &CMainWindow::OnEraseBkgnd},
      {WM_SETTINGCHANGE, &CMainWindow::OnSettingChange},
      {WM_TIMER, &CMainWindow::OnTimer},
      {WM_COMMAND, &CMainWindow::OnBtnLoginClick, IDC_BTN_LOGIN},
      {WM_COMMAND, &CMainWindow::OnBtnSyncClick, IDC_BTN_SYNC},
      {kStateChanged, &CMainWindow::OnStateChanged},
  };
  return map;
}

void CMainWindow::ApplyTheme() {
  m_hBackground.reset(::CreateSolidBrush(theme::LoginBackground(IsDarkTheme())));
  m_bDark = IsDarkTheme();
  for (CCustomButton& button : m_buttons) button.SetDarkMode(m_bDark);
}

void CMainWindow::RefreshPaintedState() {
  m_bLogin = regUtil::checkReadyLogin();
  std::wstring syncPath;
  m_bSyncReady = regUtil::checkReadyLoginAndOpenSync(syncPath);
}

void CMainWindow::LoadBackgrounds() {
  const std::wstring folder = corvane::ThisModuleFolder();
  for (size_t layout = 0; layout < m_backgrounds.size(); ++layout) {
    for (size_t dark = 0; dark < 2; ++dark) {
      m_backgrounds[layout][dark] = imageutil::LoadPngBitmap(folder + kBackgrounds[layout][dark]);
    }
  }
}

LRESULT CMainWindow::OnCreate(UINT, WPARAM, LPARAM, bool&) {
  m_hBackground.reset(::CreateSolidBrush(theme::LoginBackground(IsDarkTheme())));
  for (size_t i = 0; i < m_buttons.size(); ++i) {
    const ButtonSetup& setup = kButtons[i];
    CCustomButton& button = m_buttons[i];
    RECT rect{0, 0, setup.width, setup.height};
    button.Create(m_hWnd, &rect, setup.name, WS_CHILD | WS_VISIBLE, 0, static_cast<UINT_PTR>(setup.id));
    button.SetName(setup.name);
    button.SetAccessibleName(setup.label);
    button.SetSize(setup.width, setup.height);
    button.SetImages(setup.normal, setup.dark, setup.hover);
    button.SetHoverDarkImage(setup.hoverDark);
    button.SetDisabledImages(setup.disabled, setup.disabledDark);
  }
  LoadBackgrounds();
  m_bDark = IsDarkTheme();
  for (CCustomButton& button : m_buttons) button.SetDarkMode(m_bDark);
  RefreshPaintedState();
  ::SetTimer(m_hWnd, kPollTimer, 1000, nullptr);
  m_nCounter = 0;
  return 0;
}

LRESULT CMainWindow::OnPaint(UINT, WPARAM, LPARAM, bool&) {
  RefreshPaintedState();
  corvane::scoped_paint paint(m_hWnd);
  const promptlayout::Placement place = promptlayout::Place(m_bLogin, m_bSyncReady, m_nWidth, m_nHeight);
  // Signed in with sync ready: nothing to draw, the view hides the prompt.
  if (place.button < 0) return 0;
  if (place.background != promptlayout::Background::kNone) {
    const size_t layout = static_cast<size_t>(place.background) - 1;
    const HBITMAP picture = m_backgrounds[layout][m_bDark ? 1 : 0].get();
    const SIZE size = imageutil::GetBitmapSize(picture);
    const RECT area{place.backgroundX, place.backgroundY, place.backgroundX + size.cx, place.backgroundY + size.cy};
    imageutil::DrawPngBitmap(paint.dc(), picture, area);
  }
  for (size_t i = 0; i < m_buttons.size(); ++i) {
    const HWND button = m_buttons[i].m_hWnd;
    if (static_cast<int>(i) != place.button) {
      ::ShowWindow(button, SW_HIDE);
      continue;
    }
    ::MoveWindow(button, place.x, place.y, place.width, place.height, TRUE);
    ::ShowWindow(button, SW_SHOW);
  }
  return 0;
}

LRESULT CMainWindow::OnSize(UINT, WPARAM, LPARAM, bool&) {
  Invalidate(TRUE);
  return 0;
}

LRESULT CMainWindow::OnDestroy(UINT, WPARAM, LPARAM, bool& handled) {
  ::KillTimer(m_hWnd, kPollTimer);
  // The prompt has always posted a quit on its way out although it lives on Explorer's thread; the
  // host's loop sees a WM_QUIT it did not ask for. Kept as it stands.
  ::PostQuitMessage(0);
  m_hBackground.reset();
  handled = false;
  return 0;
}

LRESULT CMainWindow::OnEraseBkgnd(UINT, WPARAM wParam, LPARAM, bool&) {
  RECT client{};
  ::GetClientRect(m_hWnd, &client);
  ::FillRect(reinterpret_cast<HDC>(wParam), &client, m_hBackground.get());
  return 1;
}

LRESULT CMainWindow::OnSettingChange(UINT, WPARAM, LPARAM lParam, bool& handled) {
  // The new colours show at the next paint; this handler does not ask for one.
  if (theme::IsSettingChange(lParam, L"ImmersiveColorSet")) ApplyTheme();
  handled = false;
  return 0;
}

LRESULT CMainWindow::OnTimer(UINT, WPARAM wParam, LPARAM, bool&) {
  if (wParam != kPollTimer) return 0;
  m_nPolledLogin = regUtil::checkReadyLogin() ? 1 : 0;
  if (m_nPolledLogin != 0) {
    std::wstring syncPath;
    m_nPolledSyncReady = regUtil::checkReadyLoginAndOpenSync(syncPath) ? 1 : 0;
  } else {
    m_nPolledLogin = 0;
  }
  ::PostMessageW(m_hWnd, kStateChanged, m_nPolledSyncReady != 0 ? 1 : 0, 0);
  return 0;
}

LRESULT CMainWindow::OnStateChanged(UINT, WPARAM wParam, LPARAM, bool&) {
  if (wParam != 0) {
    std::wstring syncPath;
    if (regUtil::checkReadyLoginAndOpenSync(syncPath) && !syncPath.empty() && m_pOwner != nullptr) {
      m_pOwner->BrowseTo(syncPath);
    }
  }
  if ((m_nPolledLogin != 0) == m_bLogin && (m_nPolledSyncReady != 0) == m_bSyncReady) return 0;
  for (CCustomButton& button : m_buttons) button.Enable(true);
  Invalidate(TRUE);
  return 0;
}

LRESULT CMainWindow::OnBtnLoginClick(UINT, WPARAM, LPARAM, bool&) {
  const std::wstring command = cx::exeCloudCommandLine(L"login", L"from_shell");
  LOG_INFO(L"CMainWindow::OnBtnLoginClick", L"call cx::exeCloudCommandLine = %s.", command.c_str());
  Invalidate(TRUE);
  return 0;
}

LRESULT CMainWindow::OnBtnSyncClick(UINT, WPARAM, LPARAM, bool&) {
  const std::wstring command = cx::exeCloudCommandLine(L"syncdisk", L"open");
  LOG_INFO(L"CMainWindow::OnBtnSyncClick", L"call cx::exeCloudCommandLine = %s.", command.c_str());
  return 0;
}
