#pragma once
// The owner-drawn push button the bar's buttons derive from: a four-state look (0 normal, 1 hover,
// 2 pressed, 3 disabled), its own mouse tracking, BN_CLICKED to the parent on a completed click,
// and a default painting in the theme's colours.
//
// CDefaultToolButtonT is a template on the final class, so that a derived button can bring its own
// message map and window class while reusing these handlers:
//   class CTextToolButton : public CDefaultToolButtonT<CTextToolButton> { kClassName ... };
// Every final class names its own kClassName: one class name, one window procedure.
#include <windows.h>

#include <span>
#include <string>

#include "client/theme.h"
#include "platform/handles.h"
#include "platform/window.h"

namespace widgets {

// The default painting: a memory bitmap, the hover glow (state 1), the filled shape and the
// centred caption, copied to dc with per-pixel alpha. Exposed for the buttons that keep it.
void PaintDefaultToolButton(HWND window, HDC dc, int state, const std::wstring& text) noexcept;

}  // namespace widgets

template <class T>
class CDefaultToolButtonT : public corvane::Window<T> {
  using Base = corvane::Window<T>;

 public:
  using typename Base::MessageEntry;

  enum State : int { kNormal = 0, kHover = 1, kPressed = 2, kDisabled = 3 };

  static std::span<const MessageEntry> MessageMap() {
    static const MessageEntry map[] = {
        {WM_CREATE, &CDefaultToolButtonT::OnCreate},
        {WM_DESTROY, &CDefaultToolButtonT::OnDestroy},
        {WM_PAINT, &CDefaultToolButtonT::OnPaint},
        {WM_MOUSEMOVE, &CDefaultToolButtonT::OnMouseMove},
        {WM_MOUSELEAVE, &CDefaultToolButtonT::OnMouseLeave},
        {WM_LBUTTONDOWN, &CDefaultToolButtonT::OnLButtonDown},
        {WM_LBUTTONUP, &CDefaultToolButtonT::OnLButtonUp},
        {WM_SETFOCUS, &CDefaultToolButtonT::OnSetFocus},
        {WM_KILLFOCUS, &CDefaultToolButtonT::OnKillFocus},
        {WM_ENABLE, &CDefaultToolButtonT::OnEnable},
        {WM_SETTINGCHANGE, &CDefaultToolButtonT::OnSettingChange},
    };
    return map;
  }

  // Enables or disables the button: state 0 or 3, and the window follows when it exists.
  void EnableButton(bool enable) {
    m_bEnabled = enable;
    m_nState = enable ? kNormal : kDisabled;
    if (this->IsWindow()) {
      ::EnableWindow(this->m_hWnd, enable ? TRUE : FALSE);
      this->Invalidate();
    }
  }

  // Whole-window alpha for buttons that need it; MakeLayered must come first.
  virtual void SetAlpha() { ::SetLayeredWindowAttributes(this->m_hWnd, 0, 255, LWA_ALPHA); }
  virtual void MakeLayered() {
    const LONG_PTR exStyle = ::GetWindowLongPtrW(this->m_hWnd, GWL_EXSTYLE);
    ::SetWindowLongPtrW(this->m_hWnd, GWL_EXSTYLE, exStyle | WS_EX_LAYERED);
  }

  static bool IsDarkTheme() noexcept { return theme::IsDarkTheme(); }

  int GetState() const noexcept { return m_nState; }
  bool IsTracking() const noexcept { return m_bTracking; }
  bool IsButtonEnabled() const noexcept { return m_bEnabled; }
  const std::wstring& GetText() const noexcept { return m_strText; }

 protected:
  LRESULT OnCreate(UINT, WPARAM, LPARAM, bool&) { return 0; }
  LRESULT OnDestroy(UINT, WPARAM, LPARAM, bool&) { return 0; }

  LRESULT OnPaint(UINT, WPARAM, LPARAM, bool&) {
    const corvane::scoped_paint paint(this->m_hWnd);
    widgets::PaintDefaultToolButton(this->m_hWnd, paint.dc(), m_nState, m_strText);
    return 0;
  }

  LRESULT OnMouseMove(UINT, WPARAM, LPARAM, bool&) {
    // Only the first move after entering counts: a press followed by more moves must stay pressed,
    // and hover comes back only after a leave and a new entry.
    if (m_bTracking) return 0;
    TRACKMOUSEEVENT tme{sizeof(tme), TME_LEAVE, this->m_hWnd, 0};
    ::TrackMouseEvent(&tme);
    m_bTracking = true;
    if (m_bEnabled && m_nState != kHover && m_nState != kPressed) SetState(kHover);
    return 0;
  }

  LRESULT OnMouseLeave(UINT, WPARAM, LPARAM, bool&) {
    m_bTracking = false;
    if (m_bEnabled) SetState(kNormal);
    return 0;
  }

  LRESULT OnLButtonDown(UINT, WPARAM, LPARAM, bool&) {
    if (m_bEnabled) {
      ::SetCapture(this->m_hWnd);
      SetState(kPressed);
    }
    return 0;
  }

  LRESULT OnLButtonUp(UINT, WPARAM, LPARAM, bool&) {
    if (!m_bEnabled) return 0;
    ::ReleaseCapture();
    POINT cursor{};
    ::GetCursorPos(&cursor);
    ::ScreenToClient(this->m_hWnd, &cursor);
    RECT client{};
    ::GetClientRect(this->m_hWnd, &client);
    if (::PtInRect(&client, cursor)) {
      SetState(kHover);
      const int id = ::GetDlgCtrlID(this->m_hWnd);
      ::SendMessageW(::GetParent(this->m_hWnd), WM_COMMAND, MAKEWPARAM(id, BN_CLICKED),
                     reinterpret_cast<LPARAM>(this->m_hWnd));
    } else {
      SetState(kNormal);
    }
    return 0;
  }

  LRESULT OnSetFocus(UINT, WPARAM, LPARAM, bool&) {
    if (m_bEnabled) SetState(kHover);
    return 0;
  }

  LRESULT OnKillFocus(UINT, WPARAM, LPARAM, bool&) {
    if (m_bEnabled) SetState(kNormal);
    return 0;
  }

  LRESULT OnEnable(UINT, WPARAM wParam, LPARAM, bool&) {
    m_bEnabled = wParam != 0;
    SetState(m_bEnabled ? kNormal : kDisabled);
    return 0;
  }

  LRESULT OnSettingChange(UINT, WPARAM, LPARAM lParam, bool& handled) {
    if (theme::IsSettingChange(lParam, L"ImmersiveColorSet") && this->IsWindow()) this->Invalidate();
    // Other windows of the thread may want the same notification.
    handled = false;
    return 0;
  }

  void SetState(int state) {
    m_nState = state;
    if (this->IsWindow()) this->Invalidate();
  }

  int m_nState = kNormal;
  bool m_bTracking = false;
  bool m_bEnabled = true;
  std::wstring m_strText;
};

// The plain default button.
class CDefaultToolButton final : public CDefaultToolButtonT<CDefaultToolButton> {
 public:
  static constexpr const wchar_t* kClassName = L"CorvaneDefaultToolButton";
};
