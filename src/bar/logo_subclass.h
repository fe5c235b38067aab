#pragma once
// The logo button's subclass procedure: hovering the account picture asks the client to show its
// account pop-up beside it, leaving asks it to hide the pop-up again.
#include <windows.h>

#include "platform/subclass.h"

class CTitleWindow;

class CLogoSubclass final : public corvane::SubclassWindow<CLogoSubclass, CTitleWindow> {
 public:
  CLogoSubclass() noexcept : SubclassWindow(0) {}

  // Every message goes on to the button's own procedure afterwards.
  LRESULT OnSubclassMessage(UINT message, WPARAM wParam, LPARAM lParam, bool& handled);

 private:
  void OnMouseMove();
  void OnMouseLeave();
};
