#include "accessible_probe.h"

#include <oleacc.h>
#include <wrl/client.h>

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

std::wstring Take(BSTR text) {
  std::wstring value = text != nullptr ? std::wstring(text, ::SysStringLen(text)) : std::wstring();
  ::SysFreeString(text);
  return value;
}

HWND g_watched = nullptr;
int g_nameChanges = 0;

void CALLBACK OnEvent(HWINEVENTHOOK, DWORD event, HWND window, LONG object, LONG child, DWORD, DWORD) {
  if (event == EVENT_OBJECT_NAMECHANGE && window == g_watched && object == OBJID_CLIENT && child == CHILDID_SELF) {
    ++g_nameChanges;
  }
}

}  // namespace

Accessible AccessibleOf(HWND window) {
  Accessible seen;
  const auto object = ObjectOf(window);
  if (!object) return seen;
  seen.found = true;
  VARIANT value{};
  if (SUCCEEDED(object->get_accRole(Self(), &value)) && value.vt == VT_I4) seen.role = value.lVal;
  ::VariantClear(&value);
  if (SUCCEEDED(object->get_accState(Self(), &value)) && value.vt == VT_I4) seen.state = value.lVal;
  ::VariantClear(&value);
  BSTR text = nullptr;
  if (SUCCEEDED(object->get_accName(Self(), &text))) seen.name = Take(text);
  text = nullptr;
  if (SUCCEEDED(object->get_accDefaultAction(Self(), &text))) seen.action = Take(text);
  return seen;
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
