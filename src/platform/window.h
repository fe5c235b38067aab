#pragma once
// One base for the add-in's own windows. The class is registered once per module, `this` is stored
// at WM_NCCREATE, and messages go through the derived class's message map: a table of entries read
// in order, like the message tables they implement.
//
//   class CBar : public corvane::Window<CBar> {
//    public:
//     static constexpr const wchar_t* kClassName = L"CorvaneBar";
//     static std::span<const MessageEntry> MessageMap() {
//       static constexpr MessageEntry map[] = {
//           {WM_CREATE, &CBar::OnCreate},
//           {WM_COMMAND, &CBar::OnLogoClick, 2001, BN_CLICKED},
//       };
//       return map;
//     }
//     LRESULT OnCreate(UINT, WPARAM, LPARAM, bool& handled);
//   };
//
// A handler starts with handled = true; clearing it lets the search go on to later entries and,
// failing those, to DefWindowProc. WM_COMMAND entries may name a control id and a notification code.
#include <windows.h>

#include <span>

#include "platform/errors.h"
#include "platform/module_path.h"
#include "platform/work_profile.h"

namespace corvane {

// Registers a window class of this module once; remembered so the module can unregister its
// classes when it unloads (a class left behind would point into a freed module).
ATOM RegisterModuleWindowClass(const wchar_t* className, WNDPROC procedure, HCURSOR cursor, UINT style = CS_DBLCLKS,
                               HBRUSH background = nullptr);
void UnregisterModuleWindowClasses() noexcept;

template <class Derived>
class Window {
 public:
  using Handler = LRESULT (Derived::*)(UINT message, WPARAM wParam, LPARAM lParam, bool& handled);
  struct MessageEntry {
    UINT message;
    Handler handler;
    int id = -1;    // WM_COMMAND only: the control id, -1 for any
    int code = -1;  // WM_COMMAND only: the notification code, -1 for any
  };

  Window() = default;
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;
  virtual ~Window() {
    // The object is going: a window still alive must not call into it any more.
    if (m_hWnd != nullptr) {
      ::SetWindowLongPtrW(m_hWnd, GWLP_USERDATA, 0);
      ::DestroyWindow(m_hWnd);
      m_hWnd = nullptr;
    }
  }

  // Creates the window; rect null means CW_USEDEFAULT for top-level windows and an empty
  // rectangle for children.
  HWND Create(HWND parent, const RECT* rect, const wchar_t* text, DWORD style, DWORD exStyle = 0, UINT_PTR id = 0) {
    if (RegisterModuleWindowClass(Derived::kClassName, &Window::WindowProc, Derived::ClassCursor(), Derived::ClassStyle(),
                                  Derived::ClassBackground()) == 0) {
      return nullptr;
    }
    const bool child = (style & WS_CHILD) != 0;
    int x = child ? 0 : CW_USEDEFAULT, y = child ? 0 : CW_USEDEFAULT;
    int cx = child ? 0 : CW_USEDEFAULT, cy = child ? 0 : CW_USEDEFAULT;
    if (rect != nullptr) {
      x = rect->left;
      y = rect->top;
      cx = rect->right - rect->left;
      cy = rect->bottom - rect->top;
    }
    const profile::Timed timed(profile::Work::WindowCreate);
    return ::CreateWindowExW(exStyle, Derived::kClassName, text, style, x, y, cx, cy, parent,
                             reinterpret_cast<HMENU>(id), ThisModule(), static_cast<Derived*>(this));
  }

  BOOL DestroyWindow() noexcept { return m_hWnd != nullptr ? ::DestroyWindow(m_hWnd) : FALSE; }
  bool IsWindow() const noexcept { return m_hWnd != nullptr && ::IsWindow(m_hWnd) != FALSE; }
  HWND GetHwnd() const noexcept { return m_hWnd; }
  BOOL Invalidate(BOOL erase = TRUE) noexcept { return ::InvalidateRect(m_hWnd, nullptr, erase); }

  // The default cursor of the class; buttons that set their own cursor return null.
  static HCURSOR ClassCursor() noexcept { return ::LoadCursorW(nullptr, IDC_ARROW); }
  // The class style and background brush; windows that follow a system class layout override them.
  static UINT ClassStyle() noexcept { return CS_DBLCLKS; }
  static HBRUSH ClassBackground() noexcept { return nullptr; }

  HWND m_hWnd = nullptr;

 protected:
  // Called after the last message (WM_NCDESTROY) when the window has gone.
  virtual void OnFinalMessage(HWND) {}

 private:
  static LRESULT CALLBACK WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    Derived* self = nullptr;
    if (message == WM_NCCREATE) {
      const auto* create = reinterpret_cast<const CREATESTRUCTW*>(lParam);
      self = static_cast<Derived*>(create->lpCreateParams);
      ::SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
      if (self != nullptr) self->m_hWnd = window;
    } else {
      self = reinterpret_cast<Derived*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
    }
    if (self == nullptr) return ::DefWindowProcW(window, message, wParam, lParam);

    LRESULT result = 0;
    bool handled = false;
    try {
      const profile::Timed timed(message == WM_PAINT ? profile::Work::Paint : profile::Work::kCount);
      handled = self->Dispatch(message, wParam, lParam, result);
    } catch (...) {
      // Nothing may leave a window procedure; the message falls back to default processing.
      handled = false;
    }
    if (!handled) result = ::DefWindowProcW(window, message, wParam, lParam);
    if (message == WM_NCDESTROY) {
      ::SetWindowLongPtrW(window, GWLP_USERDATA, 0);
      self->m_hWnd = nullptr;
      try {
        self->OnFinalMessage(window);
      } catch (...) {
      }
    }
    return result;
  }

  bool Dispatch(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    auto* self = static_cast<Derived*>(this);
    for (const MessageEntry& entry : Derived::MessageMap()) {
      if (entry.message != message) continue;
      if (message == WM_COMMAND) {
        if (entry.id != -1 && entry.id != static_cast<int>(LOWORD(wParam))) continue;
        if (entry.code != -1 && entry.code != static_cast<int>(HIWORD(wParam))) continue;
      }
      bool handled = true;
      const LRESULT value = (self->*entry.handler)(message, wParam, lParam, handled);
      if (handled) {
        result = value;
        return true;
      }
    }
    return false;
  }
};

}  // namespace corvane
