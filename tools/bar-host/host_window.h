#pragma once
// The bar host's top-level window: the bar's owner, holding H and the text unit the way the
// Explorer window controller does, with the bar laid out as a strip across the top of its client
// area and the rest painted like an empty file list.
#include <windows.h>

#include <span>

#include "bar/bar_owner.h"
#include "bar/title_window.h"
#include "platform/window.h"

class CHostWindow final : public corvane::Window<CHostWindow>, public IBarOwner {
 public:
  static constexpr const wchar_t* kClassName = L"CorvaneBarHost";
  static std::span<const MessageEntry> MessageMap();

  // A window whose client area is width x height at (x, y); false when it cannot be created.
  bool CreateFrame(int x, int y, int width, int height);
  // Creates the bar the way the controller does once Explorer's view exists: Initialize, then
  // WM_DISPLAYCHANGE to the bar and its right group so both measure at the current zoom.
  bool CreateBar();
  // Closes the window after the given time; 0 leaves it open until the user closes it.
  void CloseAfter(unsigned seconds);

  int GetBarHeight() const override { return m_nBarHeight; }
  void SetBarHeight(int height) override;
  void GetIconSize(int& width, int& height) const override;
  void SetIconSize(int width, int height) override;
  HWND GetExplorerHwnd() const override { return m_hWnd; }

  const CTitleWindow& Bar() const noexcept { return m_bar; }

 private:
  LRESULT OnSize(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnEraseBkgnd(UINT, WPARAM wParam, LPARAM, bool&);
  LRESULT OnPrintClient(UINT, WPARAM wParam, LPARAM, bool&);
  LRESULT OnPaint(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnTimer(UINT, WPARAM wParam, LPARAM, bool&);
  LRESULT OnDestroy(UINT, WPARAM, LPARAM, bool&);

  void FillBackground(HDC dc) const;
  void LayoutBar();

  CTitleWindow m_bar;
  // The controller's values before its first measurement.
  int m_nBarHeight = 40;
  int m_nIconWidth = 0;
  int m_nIconHeight = 0;
};
