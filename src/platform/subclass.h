#pragma once
// One shape for every window the add-in subclasses but does not own: the window, the subclass id,
// a guard against re-entering the installation, and the owner that the derived class reports to.
// The subclass is removed on WM_NCDESTROY so a dying window never keeps our procedure; the window
// handle itself stays held until Unsubclass, because owners test it to know what they subclassed.
//
//   class CStatusBar : public corvane::SubclassWindow<CStatusBar, CExplorerWindow> {
//     LRESULT OnSubclassMessage(UINT, WPARAM, LPARAM, bool& handled);  // handled = false by default
//   };
#include <windows.h>
#include <commctrl.h>

namespace corvane {

template <class Derived, class Owner>
class SubclassWindow {
 public:
  explicit SubclassWindow(UINT_PTR subclassId) noexcept : m_uSubclassId(subclassId) {}
  SubclassWindow(const SubclassWindow&) = delete;
  SubclassWindow& operator=(const SubclassWindow&) = delete;
  virtual ~SubclassWindow() { Unsubclass(); }

  // Installs the subclass; false when the window is missing, already ours, or Windows refuses.
  // One window is held at a time: a window held before lets go of our procedure first, since
  // nothing would remove it once the wrapper has moved on (its data would outlive the wrapper).
  bool Subclass(HWND window, Owner* owner) noexcept {
    if (window == nullptr || m_bManaging) return false;
    m_bManaging = true;
    if (m_bInstalled && m_hWnd != window) Unsubclass();
    const bool installed = ::SetWindowSubclass(window, &SubclassWindow::Procedure, m_uSubclassId,
                                               reinterpret_cast<DWORD_PTR>(this)) != FALSE;
    if (installed) {
      m_hWnd = window;
      m_pOwner = owner;
      m_bInstalled = true;
    }
    m_bManaging = false;
    return installed;
  }

  // Removes the subclass (if the window still carries it) and forgets the window.
  void Unsubclass() noexcept {
    if (m_bInstalled && m_hWnd != nullptr) {
      ::RemoveWindowSubclass(m_hWnd, &SubclassWindow::Procedure, m_uSubclassId);
    }
    m_bInstalled = false;
    m_hWnd = nullptr;
    m_pOwner = nullptr;
  }

  HWND GetHwnd() const noexcept { return m_hWnd; }
  bool IsSubclassed() const noexcept { return m_bInstalled; }
  Owner* GetOwner() const noexcept { return m_pOwner; }
  UINT_PTR GetSubclassId() const noexcept { return m_uSubclassId; }

 protected:
  LRESULT DefaultProcedure(UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    return ::DefSubclassProc(m_hWnd, message, wParam, lParam);
  }

  HWND m_hWnd = nullptr;
  UINT_PTR m_uSubclassId;
  bool m_bManaging = false;
  bool m_bInstalled = false;
  Owner* m_pOwner = nullptr;

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                    DWORD_PTR data) noexcept {
    auto* self = reinterpret_cast<SubclassWindow*>(data);
    LRESULT result = 0;
    bool handled = false;
    try {
      result = static_cast<Derived*>(self)->OnSubclassMessage(message, wParam, lParam, handled);
    } catch (...) {
      // Nothing may leave a subclass procedure; the window's own procedure takes the message.
      handled = false;
    }
    if (!handled) result = ::DefSubclassProc(window, message, wParam, lParam);
    if (message == WM_NCDESTROY) {
      ::RemoveWindowSubclass(window, &SubclassWindow::Procedure, id);
      // Only the window held now clears the flag: an older window dying must not make the wrapper
      // forget the subclass it still has on the current one.
      if (window == self->m_hWnd) self->m_bInstalled = false;
    }
    return result;
  }
};

}  // namespace corvane
