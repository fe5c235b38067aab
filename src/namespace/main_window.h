#pragma once
// The login prompt inside the namespace view: a login face while the user is signed out, a
// sync-settings face while signed in with sync off. It polls the client state every second and,
// once sync is ready, has its owner view browse into the sync folder.
#include <windows.h>

#include <array>
#include <cstdint>
#include <span>

#include "namespace/custom_button.h"
#include "platform/handles.h"
#include "platform/window.h"

class CMyShellView;

class CMainWindow final : public corvane::Window<CMainWindow> {
 public:
  static constexpr const wchar_t* kClassName = L"CorvaneMainWindow";
  static constexpr UINT_PTR kPollTimer = 1;
  static constexpr UINT kStateChanged = WM_USER + 239;
  static constexpr int IDC_BTN_LOGIN = 1001;
  // Buttons 2 to 4 share one id on purpose: whichever settings face shows, a click is the same command.
  static constexpr int IDC_BTN_SYNC = 1002;
  static std::span<const MessageEntry> MessageMap();

  CMainWindow() = default;

  void SetOwner(CMyShellView* owner) noexcept { m_pOwner = owner; }
  // Stores the size the layout works from; the placing happens at the next paint.
  void SetSize(int width, int height) noexcept {
    m_nWidth = width;
    m_nHeight = height;
  }

  const CCustomButton& Button(int index) const { return m_buttons.at(static_cast<size_t>(index)); }
  bool IsDark() const noexcept { return m_bDark; }

 private:
  LRESULT OnCreate(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnPaint(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnSize(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnDestroy(UINT, WPARAM, LPARAM, bool& handled);
  LRESULT OnEraseBkgnd(UINT, WPARAM wParam, LPARAM, bool&);
  LRESULT OnSettingChange(UINT, WPARAM, LPARAM lParam, bool& handled);
  LRESULT OnTimer(UINT, WPARAM wParam, LPARAM, bool&);
  LRESULT OnBtnLoginClick(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnBtnSyncClick(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnStateChanged(UINT, WPARAM wParam, LPARAM, bool&);

  void ApplyTheme();
  void RefreshPaintedState();
  void LoadBackgrounds();

  CMyShellView* m_pOwner = nullptr;
  // Login, medium settings, large settings, small settings.
  std::array<CCustomButton, 4> m_buttons;
  corvane::unique_hbrush m_hBackground;
  bool m_bDark = false;
  bool m_bLogin = false;
  bool m_bSyncReady = false;
  std::uint32_t m_nPolledLogin = 0;
  std::uint32_t m_nPolledSyncReady = 0;
  std::uint32_t m_nCounter = 0;
  int m_nWidth = 0;
  int m_nHeight = 0;
  // The background pictures, light and dark, by layout (login, medium, large): loaded once.
  std::array<std::array<corvane::unique_hbitmap, 2>, 3> m_backgrounds;
};
