#include "bar_fixture.h"

namespace bartest {

TestOwner::TestOwner(int clientWidth, bool pinned) : width(clientWidth), m_pinned(pinned) {
  const RECT place{20, 20, 40 + clientWidth, 240};
  // Never shown: under Wine without a window manager, destroying a mapped top-level window waits
  // two seconds for a withdrawal that never comes. The bar and its children keep their own styles.
  m_frame.Create(nullptr, &place, L"Corvane bar test", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN);
}

void TestOwner::SetBarHeight(int height) {
  askedHeight = height;
  if (m_pinned) return;
  m_nBarHeight = height;
  // The controller lays its window out again whenever the bar's height changes.
  if (bar != nullptr && bar->IsWindow()) bar->MovePosition(RECT{0, 0, width, m_nBarHeight});
}

void TestOwner::Layout(int newWidth) {
  width = newWidth;
  if (bar != nullptr) bar->MovePosition(RECT{0, 0, width, m_nBarHeight});
  Pump();
}

bool HostedBar::Start(bool settle) {
  if (!bar.Initialize(&unknown, &owner, owner.GetExplorerHwnd())) return false;
  owner.bar = &bar;
  timerWasRunning = ::KillTimer(bar.m_hWnd, CTitleWindow::TIMER_CLOUD_UPDATE_INFO) != FALSE;
  if (settle) Settle();
  return true;
}

void HostedBar::Settle() {
  ::PostMessageW(bar.m_hWnd, WM_DISPLAYCHANGE, 0, 0);
  ::PostMessageW(bar.GetRightHwnd(), WM_DISPLAYCHANGE, 0, 0);
  owner.Layout(owner.width);
}

std::vector<HWND> TakeQueued(UINT message) {
  std::vector<MSG> taken;
  MSG msg{};
  while (::PeekMessageW(&msg, nullptr, message, message, PM_REMOVE)) taken.push_back(msg);
  std::vector<HWND> windows;
  for (const MSG& queued : taken) {
    windows.push_back(queued.hwnd);
    ::DispatchMessageW(&queued);
  }
  return windows;
}

}  // namespace bartest
