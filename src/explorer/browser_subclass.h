#pragma once
// The platform's subclass shape with the window's shell browser kept beside it: the view and
// status-bar wrappers hold the browser of the Explorer window whose inner window they subclass.
#include <windows.h>
#include <shobjidl.h>
#include <wrl/client.h>

#include "platform/subclass.h"

class CExplorerWindow;

template <class Derived>
class CBrowserSubclass : public corvane::SubclassWindow<Derived, CExplorerWindow> {
  using Base = corvane::SubclassWindow<Derived, CExplorerWindow>;

 public:
  explicit CBrowserSubclass(UINT_PTR subclassId) noexcept : Base(subclassId) {}

  // Keeps the browser and subclasses the window for owner.
  BOOL SubclassWindow(const Microsoft::WRL::ComPtr<IShellBrowser>& shellBrowser, HWND hwnd, CExplorerWindow* owner) {
    m_spShellBrowser = shellBrowser;
    return Base::Subclass(hwnd, owner) ? TRUE : FALSE;
  }

  // The browser goes with the subclass: a detached controller must not keep Explorer's objects.
  void UnsubclassWindow() noexcept {
    if (Base::IsSubclassed()) Base::Unsubclass();
    m_spShellBrowser.Reset();
  }

  bool IsManaging() const noexcept { return Base::IsSubclassed(); }

 protected:
  Microsoft::WRL::ComPtr<IShellBrowser> m_spShellBrowser;
};
