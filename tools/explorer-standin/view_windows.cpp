#include "view_windows.h"

#include <utility>

#include "client/theme.h"

namespace explorer_standin {

namespace {

// Explorer's view follows the apps theme: so does the stand-in's, so that what the add-in draws
// over it (the bar takes its parent's background) is seen as in a dark Explorer.
enum class ViewColour { Background, Band };

COLORREF ViewRgb(ViewColour colour) {
  const bool dark = theme::IsDarkTheme();
  if (colour == ViewColour::Band) return dark ? RGB(43, 43, 43) : ::GetSysColor(COLOR_BTNFACE);
  return dark ? RGB(25, 25, 25) : ::GetSysColor(COLOR_WINDOW);
}

void FillView(HDC dc, const RECT& rect, ViewColour colour) {
  ::SetDCBrushColor(dc, ViewRgb(colour));
  ::FillRect(dc, &rect, static_cast<HBRUSH>(::GetStockObject(DC_BRUSH)));
}

COLORREF ViewText() { return theme::IsDarkTheme() ? RGB(255, 255, 255) : ::GetSysColor(COLOR_WINDOWTEXT); }

constexpr int kTitleHeight = 30;
constexpr int kRowHeight = 22;

RECT ClientRect(HWND window) {
  RECT rect{};
  ::GetClientRect(window, &rect);
  return rect;
}

}  // namespace

std::span<const DuiViewWindow::MessageEntry> DuiViewWindow::MessageMap() {
  static constexpr MessageEntry map[] = {
      {WM_SIZE, &DuiViewWindow::OnSize},
      {WM_ERASEBKGND, &DuiViewWindow::OnEraseBackground},
  };
  return map;
}

LRESULT DuiViewWindow::OnSize(UINT, WPARAM, LPARAM lParam, bool&) {
  if (m_list == nullptr) return 0;
  // The list follows the view's width and bottom edge but keeps its top where it was put: the
  // add-in moves it down inside this window to make room for its bar, on every position change of
  // this window, and that must not be undone here.
  RECT list{};
  ::GetWindowRect(m_list, &list);
  ::MapWindowPoints(nullptr, m_hWnd, reinterpret_cast<POINT*>(&list), 2);
  const int width = LOWORD(lParam), height = HIWORD(lParam);
  const int top = list.top < 0 ? 0 : (list.top > height ? height : list.top);
  ::SetWindowPos(m_list, nullptr, 0, top, width, height - top, SWP_NOZORDER | SWP_NOACTIVATE);
  return 0;
}

LRESULT DuiViewWindow::OnEraseBackground(UINT, WPARAM wParam, LPARAM, bool&) {
  const RECT client = ClientRect(m_hWnd);
  FillView(reinterpret_cast<HDC>(wParam), client, ViewColour::Background);
  return 1;
}

std::span<const DirectUiWindow::MessageEntry> DirectUiWindow::MessageMap() {
  static constexpr MessageEntry map[] = {
      {WM_SIZE, &DirectUiWindow::OnSize},
      {WM_PAINT, &DirectUiWindow::OnPaint},
      {WM_ERASEBKGND, &DirectUiWindow::OnEraseBackground},
  };
  return map;
}

void DirectUiWindow::SetContent(const std::wstring& title, std::vector<std::wstring> rows) {
  m_title = title;
  m_rows = std::move(rows);
  Invalidate();
}

LRESULT DirectUiWindow::OnSize(UINT, WPARAM, LPARAM, bool&) {
  // Laid out from the client area, not the message: the add-in posts WM_SIZE after moving the list.
  if (m_child != nullptr) {
    const RECT client = ClientRect(m_hWnd);
    ::SetWindowPos(m_child, nullptr, 0, 0, client.right, client.bottom, SWP_NOZORDER | SWP_NOACTIVATE);
  }
  Invalidate();
  return 0;
}

LRESULT DirectUiWindow::OnEraseBackground(UINT, WPARAM, LPARAM, bool&) { return 1; }

LRESULT DirectUiWindow::OnPaint(UINT, WPARAM, LPARAM, bool&) {
  const corvane::scoped_paint paint(m_hWnd);
  Paint(paint.dc());
  return 0;
}

void DirectUiWindow::Paint(HDC dc) {
  const RECT client = ClientRect(m_hWnd);
  FillView(dc, client, ViewColour::Background);
  if (m_child != nullptr) return;  // a container: its child paints

  if (!m_font) {
    NONCLIENTMETRICSW metrics{sizeof(metrics)};
    ::SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0);
    m_font.reset(::CreateFontIndirectW(&metrics.lfMessageFont));
  }
  const corvane::scoped_select font(dc, m_font ? static_cast<HGDIOBJ>(m_font.get()) : ::GetStockObject(DEFAULT_GUI_FONT));
  ::SetBkMode(dc, TRANSPARENT);

  RECT title{0, 0, client.right, kTitleHeight};
  FillView(dc, title, ViewColour::Band);
  ::SetTextColor(dc, ViewText());
  RECT titleText{12, 0, client.right - 12, kTitleHeight};
  ::DrawTextW(dc, m_title.c_str(), static_cast<int>(m_title.size()), &titleText,
              DT_SINGLELINE | DT_VCENTER | DT_PATH_ELLIPSIS | DT_NOPREFIX);

  ::SetTextColor(dc, ViewText());
  int top = kTitleHeight + 4;
  for (size_t index = 0; index < m_rows.size() && top < client.bottom; ++index, top += kRowHeight) {
    if (index % 2 == 1) {
      RECT stripe{0, top, client.right, top + kRowHeight};
      ::FillRect(dc, &stripe, ::GetSysColorBrush(COLOR_BTNFACE));
    }
    const bool folder = !m_rows[index].empty() && m_rows[index].back() == L'\\';
    RECT icon{14, top + 5, 26, top + kRowHeight - 5};
    ::FillRect(dc, &icon, ::GetSysColorBrush(folder ? COLOR_HIGHLIGHT : COLOR_BTNSHADOW));
    RECT text{36, top, client.right - 12, top + kRowHeight};
    ::DrawTextW(dc, m_rows[index].c_str(), static_cast<int>(m_rows[index].size()), &text,
                DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | DT_NOPREFIX);
  }
  if (m_rows.empty()) {
    RECT text{36, top, client.right - 12, top + kRowHeight};
    ::DrawTextW(dc, L"This folder is empty.", -1, &text, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
  }
}

}  // namespace explorer_standin
