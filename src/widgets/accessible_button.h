#pragma once
// What a screen reader learns of a picture button. The bar's and the prompt's buttons show their
// meaning only as a picture, and their window texts are empty or placeholders, so assistive
// technology would announce "button" or nothing. Each button answers WM_GETOBJECT (OBJID_CLIENT)
// with this object: a push button named after what its picture shows, unavailable while disabled,
// hot while hovered, pressed while held, whose default action "Press" does what a click does.
// Everything else (place, parent, navigation, focus) is the system's standard object for the window.
#include <windows.h>
#include <oleacc.h>

#include <memory>
#include <string>

namespace accessibility {

// Implemented by a picture button; asked on every call, so the answers are always current.
class IButtonFace {
 public:
  virtual std::wstring AccessibleName() const = 0;
  virtual bool IsAccessiblyHot() const = 0;
  virtual bool IsAccessiblyPressed() const = 0;
  // Sends the owner exactly the WM_COMMAND a click sends.
  virtual void PressLikeAClick() = 0;

 protected:
  ~IButtonFace() = default;
};

// The button's end of the link: it lives as long as the button and cuts the link when the button
// goes, so an accessible object a client still holds answers "gone" instead of touching freed memory.
class CButtonAccessibility {
 public:
  explicit CButtonAccessibility(IButtonFace& face);
  ~CButtonAccessibility();
  CButtonAccessibility(const CButtonAccessibility&) = delete;
  CButtonAccessibility& operator=(const CButtonAccessibility&) = delete;

  // The WM_GETOBJECT answer for the button's window: an accessible object for OBJID_CLIENT, and 0
  // (the system's default) for anything else or on failure.
  LRESULT OnGetObject(HWND window, WPARAM wParam, LPARAM lParam) noexcept;
  // Tells listeners that the name changed; call after the name's source changed and differs.
  static void RaiseNameChange(HWND window) noexcept;

 private:
  std::shared_ptr<IButtonFace*> m_face;
};

}  // namespace accessibility
