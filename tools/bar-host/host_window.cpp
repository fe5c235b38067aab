#include "host_window.h"

#include "bar/bar_common.h"
#include "client/theme.h"
#include "platform/handles.h"

namespace {

constexpr UINT_PTR kCloseTimer = 7;

}  // namespace

std::span<const CHostWindow::MessageEntry> CHostWindow::MessageMap() {
  static const MessageEntry map[] = {
      {WM_SIZE, &CHostWindow::OnSize},
      {WM_ERASEBKGND, &CHostWindow::OnEraseBkgnd},
      {WM_PRINTCLIENT, &CHostWindow::OnPrintClient},
      {WM_PAINT, &CHostWindow::OnPaint},
      {WM_TIMER, &CHostWindow::OnTimer},
      {WM_DESTROY, &CHostWindow::OnDestroy},
  };
  return map;
}

bool CHostWindow::CreateFrame(int x, int y, int width, int height) {
  RECT frame{0, 0, width, height};
  ::AdjustWindowRectEx(&frame, WS_OVERLAPPEDWINDOW, FALSE, 0);
  const RECT place{x, y, x + frame.right - frame.left, y + frame.bottom - frame.top};
  return Create(nullptr, &place, L"Corvane bar host", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN) != nullptr;
}

bool CHostWindow::CreateBar() {
  if (!m_bar.Initialize(nullptr, this, m_hWnd)) return false;
  ::PostMessageW(m_bar.m_hWnd, WM_DISPLAYCHANGE, 0, 0);
  ::PostMessageW(m_bar.GetRightHwnd(), WM_DISPLAYCHANGE, 0, 0);
  LayoutBar();
  return true;
}

void CHostWindow::CloseAfter(unsigned seconds) {
  if (seconds != 0) ::SetTimer(m_hWnd, kCloseTimer, seconds * 1000, nullptr);
}

void CHostWindow::SetBarHeight(int height) {
  m_nBarHeight = height;
  LayoutBar();
}

void CHostWindow::GetIconSize(int& width, int& height) const {
  width = m_nIconWidth;
  height = m_nIconHeight;
}

void CHostWindow::SetIconSize(int width, int height) {
  m_nIconWidth = width;
  m_nIconHeight = height;
}

void CHostWindow::LayoutBar() {
  if (!m_bar.IsWindow()) return;
  RECT client{};
  ::GetClientRect(m_hWnd, &client);
  m_bar.MovePosition(RECT{0, 0, client.right, m_nBarHeight});
  m_bar.ShowBar(true);
}

void CHostWindow::FillBackground(HDC dc) const {
  RECT client{};
  ::GetClientRect(m_hWnd, &client);
  ::SetDCBrushColor(dc, bar::BackgroundColor(theme::IsDarkTheme()));
  ::FillRect(dc, &client, static_cast<HBRUSH>(::GetStockObject(DC_BRUSH)));
}

LRESULT CHostWindow::OnSize(UINT, WPARAM, LPARAM, bool&) {
  LayoutBar();
  return 0;
}

LRESULT CHostWindow::OnEraseBkgnd(UINT, WPARAM wParam, LPARAM, bool&) {
  FillBackground(reinterpret_cast<HDC>(wParam));
  return 1;
}

// The bar draws its parent's background through DrawThemeParentBackground, which asks for it here.
LRESULT CHostWindow::OnPrintClient(UINT, WPARAM wParam, LPARAM, bool&) {
  FillBackground(reinterpret_cast<HDC>(wParam));
  return 0;
}

LRESULT CHostWindow::OnPaint(UINT, WPARAM, LPARAM, bool&) {
  const corvane::scoped_paint paint(m_hWnd);
  if (paint.dc() != nullptr) FillBackground(paint.dc());
  return 0;
}

LRESULT CHostWindow::OnTimer(UINT, WPARAM wParam, LPARAM, bool& handled) {
  if (wParam != kCloseTimer) {
    handled = false;
    return 0;
  }
  ::KillTimer(m_hWnd, kCloseTimer);
  DestroyWindow();
  return 0;
}

LRESULT CHostWindow::OnDestroy(UINT, WPARAM, LPARAM, bool&) {
  m_bar.Uninitialize();
  ::PostQuitMessage(0);
  return 0;
}
