#pragma once
// A window as assistive technology sees it: the accessible object the system hands out for its
// client area (through oleacc, as a screen reader asks), read and pressed.
#include <windows.h>

#include <string>

namespace testsupport {

struct Accessible {
  bool found = false;
  LONG role = 0;
  std::wstring name;
  LONG state = 0;
  std::wstring action;  // the default action's name
};

// AccessibleObjectFromWindow(OBJID_CLIENT) and what it answers for CHILDID_SELF.
Accessible AccessibleOf(HWND window);
// Its accDoDefaultAction; the HRESULT.
HRESULT PressAccessibly(HWND window);

// Counts EVENT_OBJECT_NAMECHANGE raised for one window's client object while it lives (an
// out-of-context hook: the events arrive through this thread's messages, so pump before counting).
class NameChangeCounter {
 public:
  explicit NameChangeCounter(HWND window);
  ~NameChangeCounter();
  NameChangeCounter(const NameChangeCounter&) = delete;
  NameChangeCounter& operator=(const NameChangeCounter&) = delete;
  int Count() const;

 private:
  HWINEVENTHOOK m_hook = nullptr;
};

}  // namespace testsupport
