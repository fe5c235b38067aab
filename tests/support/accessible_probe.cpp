#include "accessible_probe.h"

#include <oleacc.h>
#include <wrl/client.h>

#include "platform/automation.h"

namespace testsupport {

namespace {

Microsoft::WRL::ComPtr<IAccessible> ObjectOf(HWND window) {
  Microsoft::WRL::ComPtr<IAccessible> object;
  if (FAILED(::AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT), IID_PPV_ARGS(&object)))) return nullptr;
  return object;
}

VARIANT Self() {
  VARIANT self{};
  self.vt = VT_I4;
  self.lVal = CHILDID_SELF;
  return self;
}

// A number or a text the object answers for itself; 0 or "" when it does not.
LONG Number(HRESULT (STDMETHODCALLTYPE IAccessible::*ask)(VARIANT, VARIANT*), IAccessible* object) {
  corvane::unique_variant value;
  return SUCCEEDED((object->*ask)(Self(), value.put())) && value.get().vt == VT_I4 ? value.get().lVal : 0;
}
std::wstring Text(HRESULT (STDMETHODCALLTYPE IAccessible::*ask)(VARIANT, BSTR*), IAccessible* object) {
  corvane::unique_bstr text;
  return SUCCEEDED((object->*ask)(Self(), text.put())) && text ? text.get() : L"";
}

HWND g_watched = nullptr;
int g_nameChanges = 0;

void CALLBACK OnEvent(HWINEVENTHOOK, DWORD, HWND window, LONG object, LONG child, DWORD, DWORD) {
  if (window == g_watched && object == OBJID_CLIENT && child == CHILDID_SELF) ++g_nameChanges;
}

}  // namespace

Accessible AccessibleOf(HWND window) {
  const auto object = ObjectOf(window);
  if (!object) return {};
  return Accessible{true, Number(&IAccessible::get_accRole, object.Get()), Text(&IAccessible::get_accName, object.Get()),
                    Number(&IAccessible::get_accState, object.Get()), Text(&IAccessible::get_accDefaultAction, object.Get())};
}

HRESULT PressAccessibly(HWND window) {
  const auto object = ObjectOf(window);
  return object ? object->accDoDefaultAction(Self()) : E_NOINTERFACE;
}

NameChangeCounter::NameChangeCounter(HWND window) {
  g_watched = window;
  g_nameChanges = 0;
  m_hook = ::SetWinEventHook(EVENT_OBJECT_NAMECHANGE, EVENT_OBJECT_NAMECHANGE, nullptr, OnEvent,
                             ::GetCurrentProcessId(), ::GetCurrentThreadId(), WINEVENT_OUTOFCONTEXT);
}

NameChangeCounter::~NameChangeCounter() {
  if (m_hook != nullptr) ::UnhookWinEvent(m_hook);
  g_watched = nullptr;
}

int NameChangeCounter::Count() const { return m_hook != nullptr ? g_nameChanges : -1; }

}  // namespace testsupport
