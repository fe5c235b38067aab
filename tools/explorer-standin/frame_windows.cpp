#include "frame_windows.h"

#include <commctrl.h>

namespace explorer_standin {

namespace {

constexpr UINT kStatusId = 0xA001;

RECT ClientRect(HWND window) {
  RECT rect{};
  ::GetClientRect(window, &rect);
  return rect;
}

void Fill(HDC dc, const RECT& rect, int colorIndex) {
  ::FillRect(dc, &rect, ::GetSysColorBrush(colorIndex));
}

}  // namespace

// WorkerW: a plain band with an address box, enough to look like Explorer's in a screenshot.
std::span<const WorkerBand::MessageEntry> WorkerBand::MessageMap() {
  static constexpr MessageEntry map[] = {
      {WM_PAINT, &WorkerBand::OnPaint},
      {WM_ERASEBKGND, &WorkerBand::OnEraseBackground},
  };
  return map;
}

void WorkerBand::SetAddress(const std::wstring& address) {
  m_address = address;
  Invalidate();
}

LRESULT WorkerBand::OnEraseBackground(UINT, WPARAM, LPARAM, bool&) { return 1; }

LRESULT WorkerBand::OnPaint(UINT, WPARAM, LPARAM, bool&) {
  const corvane::scoped_paint paint(m_hWnd);
  const RECT client = ClientRect(m_hWnd);
  Fill(paint.dc(), client, COLOR_BTNFACE);
  // The band says what the window is: a test double, in every screenshot it appears in.
  static constexpr wchar_t kLabel[] = L"Explorer stand-in (test double)";
  constexpr int kLabelWidth = 200;
  RECT box{8, 7, client.right - 16 - kLabelWidth, client.bottom - 7};
  Fill(paint.dc(), box, COLOR_WINDOW);
  ::FrameRect(paint.dc(), &box, ::GetSysColorBrush(COLOR_BTNSHADOW));
  const corvane::scoped_select font(paint.dc(), ::GetStockObject(DEFAULT_GUI_FONT));
  ::SetBkMode(paint.dc(), TRANSPARENT);
  ::SetTextColor(paint.dc(), ::GetSysColor(COLOR_WINDOWTEXT));
  RECT text{box.left + 8, box.top, box.right - 8, box.bottom};
  ::DrawTextW(paint.dc(), m_address.c_str(), static_cast<int>(m_address.size()), &text,
              DT_SINGLELINE | DT_VCENTER | DT_PATH_ELLIPSIS | DT_NOPREFIX);
  ::SetTextColor(paint.dc(), ::GetSysColor(COLOR_GRAYTEXT));
  RECT label{client.right - 8 - kLabelWidth, box.top, client.right - 8, box.bottom};
  ::DrawTextW(paint.dc(), kLabel, -1, &label, DT_SINGLELINE | DT_VCENTER | DT_RIGHT | DT_END_ELLIPSIS | DT_NOPREFIX);
  return 0;
}

std::span<const ShellTab::MessageEntry> ShellTab::MessageMap() {
  static constexpr MessageEntry map[] = {
      {WM_SIZE, &ShellTab::OnSize},
  };
  return map;
}

void ShellTab::SetView(HWND view) {
  m_view = view;
  const RECT client = ClientRect(m_hWnd);
  // A real position change, shown at the same time: the add-in lays its bar out on the view's
  // WM_WINDOWPOSCHANGING, so the first placement must go through SetWindowPos like every later one.
  ::SetWindowPos(m_view, nullptr, 0, 0, client.right, client.bottom, SWP_NOZORDER | SWP_NOACTIVATE | SWP_SHOWWINDOW);
}

LRESULT ShellTab::OnSize(UINT, WPARAM, LPARAM lParam, bool&) {
  if (m_view != nullptr) {
    ::SetWindowPos(m_view, nullptr, 0, 0, LOWORD(lParam), HIWORD(lParam), SWP_NOZORDER | SWP_NOACTIVATE);
  }
  return 0;
}

std::span<const CabinetFrame::MessageEntry> CabinetFrame::MessageMap() {
  static constexpr MessageEntry map[] = {
      {WM_CREATE, &CabinetFrame::OnCreate},
      {WM_SIZE, &CabinetFrame::OnSize},
      {WM_ERASEBKGND, &CabinetFrame::OnEraseBackground},
      {WM_CLOSE, &CabinetFrame::OnClose},
      {WM_DESTROY, &CabinetFrame::OnDestroy},
      {kRunTasksMessage, &CabinetFrame::OnRunTasks},
  };
  return map;
}

bool CabinetFrame::CreateFrame(const RECT& rect) {
  return Create(nullptr, &rect, L"Explorer", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN) != nullptr && m_status != nullptr;
}

void CabinetFrame::SetStatus(const std::wstring& count, const std::wstring& location) {
  ::SendMessageW(m_status, SB_SETTEXTW, 0, reinterpret_cast<LPARAM>(count.c_str()));
  ::SendMessageW(m_status, SB_SETTEXTW, 1, reinterpret_cast<LPARAM>(location.c_str()));
}

LRESULT CabinetFrame::OnCreate(UINT, WPARAM, LPARAM, bool&) {
  const DWORD childStyle = WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS;
  if (m_band.Create(m_hWnd, nullptr, nullptr, childStyle) == nullptr) return -1;
  if (m_tab.Create(m_hWnd, nullptr, nullptr, childStyle) == nullptr) return -1;
  m_status = ::CreateWindowExW(0, STATUSCLASSNAMEW, nullptr, WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP, 0, 0, 0, 0, m_hWnd,
                               reinterpret_cast<HMENU>(static_cast<UINT_PTR>(kStatusId)), corvane::ThisModule(), nullptr);
  if (m_status == nullptr) return -1;
  // Two parts, as Explorer's own status bar has (item count, then the rest).
  const int parts[] = {220, -1};
  ::SendMessageW(m_status, SB_SETPARTS, 2, reinterpret_cast<LPARAM>(parts));
  return 0;
}

LRESULT CabinetFrame::OnSize(UINT, WPARAM, LPARAM, bool&) {
  Layout();
  return 0;
}

void CabinetFrame::Layout() {
  const RECT client = ClientRect(m_hWnd);
  ::SendMessageW(m_status, WM_SIZE, 0, 0);  // the status bar puts itself at the bottom
  RECT status{};
  if (::IsWindowVisible(m_status)) ::GetWindowRect(m_status, &status);
  const int statusHeight = status.bottom - status.top;
  const int tabHeight = client.bottom - kBandHeight - statusHeight;
  ::SetWindowPos(m_band.GetHwnd(), nullptr, 0, 0, client.right, kBandHeight, SWP_NOZORDER | SWP_NOACTIVATE);
  ::SetWindowPos(m_tab.GetHwnd(), nullptr, 0, kBandHeight, client.right, tabHeight > 0 ? tabHeight : 0,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

LRESULT CabinetFrame::OnEraseBackground(UINT, WPARAM wParam, LPARAM, bool&) {
  Fill(reinterpret_cast<HDC>(wParam), ClientRect(m_hWnd), COLOR_BTNFACE);
  return 1;
}

LRESULT CabinetFrame::OnClose(UINT, WPARAM, LPARAM, bool&) {
  m_events.OnCloseRequested();
  return 0;
}

LRESULT CabinetFrame::OnDestroy(UINT, WPARAM, LPARAM, bool&) {
  ::PostQuitMessage(0);
  return 0;
}

LRESULT CabinetFrame::OnRunTasks(UINT, WPARAM, LPARAM, bool&) {
  m_events.OnTasksPending();
  return 0;
}

}  // namespace explorer_standin
