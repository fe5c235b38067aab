#include "widgets/accessible_button.h"

#include <wrl/client.h>

#include "platform/com_object.h"
#include "platform/errors.h"

namespace accessibility {

namespace {

using Microsoft::WRL::ComPtr;

bool IsSelf(const VARIANT& child) noexcept { return child.vt == VT_I4 && child.lVal == CHILDID_SELF; }

// Answers for the button itself; every other question, and every question about anything but
// CHILDID_SELF, goes to the system's standard object for the same window.
class CButtonAccessible final
    : public corvane::ComObject<CButtonAccessible, IAccessible, corvane::ComAlias<IDispatch, IAccessible>> {
 public:
  CButtonAccessible(HWND window, std::shared_ptr<IButtonFace*> face, ComPtr<IAccessible> standard)
      : m_window(window), m_face(std::move(face)), m_standard(std::move(standard)) {}

  // IDispatch: the standard object's.
  IFACEMETHODIMP GetTypeInfoCount(UINT* count) override { return m_standard->GetTypeInfoCount(count); }
  IFACEMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override {
    return m_standard->GetTypeInfo(index, locale, info);
  }
  IFACEMETHODIMP GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override {
    return m_standard->GetIDsOfNames(riid, names, count, locale, ids);
  }
  IFACEMETHODIMP Invoke(DISPID id, REFIID riid, LCID locale, WORD flags, DISPPARAMS* params, VARIANT* result,
                        EXCEPINFO* exception, UINT* argument) override {
    return m_standard->Invoke(id, riid, locale, flags, params, result, exception, argument);
  }

  IFACEMETHODIMP get_accName(VARIANT child, BSTR* name) override {
    if (!IsSelf(child)) return m_standard->get_accName(child, name);
    if (name == nullptr) return E_POINTER;
    *name = nullptr;
    return corvane::ComBoundary([&]() -> HRESULT {
      IButtonFace* face = Face();
      if (face == nullptr) return CO_E_OBJNOTCONNECTED;
      const std::wstring text = face->AccessibleName();
      if (text.empty()) return S_FALSE;
      *name = ::SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
      return *name != nullptr ? S_OK : E_OUTOFMEMORY;
    });
  }
  IFACEMETHODIMP get_accRole(VARIANT child, VARIANT* role) override {
    if (!IsSelf(child)) return m_standard->get_accRole(child, role);
    if (role == nullptr) return E_POINTER;
    role->vt = VT_I4;
    role->lVal = ROLE_SYSTEM_PUSHBUTTON;
    return S_OK;
  }
  IFACEMETHODIMP get_accState(VARIANT child, VARIANT* state) override {
    if (!IsSelf(child)) return m_standard->get_accState(child, state);
    if (state == nullptr) return E_POINTER;
    IButtonFace* face = Face();
    if (face == nullptr) return CO_E_OBJNOTCONNECTED;
    // The window's own states (focusable, focused, invisible) with the button's on top.
    const HRESULT standard = m_standard->get_accState(child, state);
    LONG bits = SUCCEEDED(standard) && state->vt == VT_I4 ? state->lVal : 0;
    bits &= ~(STATE_SYSTEM_UNAVAILABLE | STATE_SYSTEM_HOTTRACKED | STATE_SYSTEM_PRESSED);
    if (!::IsWindowEnabled(m_window)) bits |= STATE_SYSTEM_UNAVAILABLE;
    if (face->IsAccessiblyHot()) bits |= STATE_SYSTEM_HOTTRACKED;
    if (face->IsAccessiblyPressed()) bits |= STATE_SYSTEM_PRESSED;
    state->vt = VT_I4;
    state->lVal = bits;
    return S_OK;
  }
  IFACEMETHODIMP get_accDefaultAction(VARIANT child, BSTR* action) override {
    if (!IsSelf(child)) return m_standard->get_accDefaultAction(child, action);
    if (action == nullptr) return E_POINTER;
    *action = ::SysAllocString(L"Press");
    return *action != nullptr ? S_OK : E_OUTOFMEMORY;
  }
  IFACEMETHODIMP accDoDefaultAction(VARIANT child) override {
    if (!IsSelf(child)) return m_standard->accDoDefaultAction(child);
    return corvane::ComBoundary([&]() -> HRESULT {
      IButtonFace* face = Face();
      if (face == nullptr) return CO_E_OBJNOTCONNECTED;
      // A disabled button does nothing when clicked either.
      if (!::IsWindowEnabled(m_window)) return S_FALSE;
      face->PressLikeAClick();
      return S_OK;
    });
  }

  IFACEMETHODIMP get_accParent(IDispatch** parent) override { return m_standard->get_accParent(parent); }
  IFACEMETHODIMP get_accChildCount(long* count) override { return m_standard->get_accChildCount(count); }
  IFACEMETHODIMP get_accChild(VARIANT child, IDispatch** dispatch) override {
    return m_standard->get_accChild(child, dispatch);
  }
  IFACEMETHODIMP get_accValue(VARIANT child, BSTR* value) override { return m_standard->get_accValue(child, value); }
  IFACEMETHODIMP get_accDescription(VARIANT child, BSTR* text) override {
    return m_standard->get_accDescription(child, text);
  }
  IFACEMETHODIMP get_accHelp(VARIANT child, BSTR* help) override { return m_standard->get_accHelp(child, help); }
  IFACEMETHODIMP get_accHelpTopic(BSTR* file, VARIANT child, long* topic) override {
    return m_standard->get_accHelpTopic(file, child, topic);
  }
  IFACEMETHODIMP get_accKeyboardShortcut(VARIANT child, BSTR* shortcut) override {
    return m_standard->get_accKeyboardShortcut(child, shortcut);
  }
  IFACEMETHODIMP get_accFocus(VARIANT* child) override { return m_standard->get_accFocus(child); }
  IFACEMETHODIMP get_accSelection(VARIANT* children) override { return m_standard->get_accSelection(children); }
  IFACEMETHODIMP accSelect(long flags, VARIANT child) override { return m_standard->accSelect(flags, child); }
  IFACEMETHODIMP accLocation(long* left, long* top, long* width, long* height, VARIANT child) override {
    return m_standard->accLocation(left, top, width, height, child);
  }
  IFACEMETHODIMP accNavigate(long direction, VARIANT start, VARIANT* end) override {
    return m_standard->accNavigate(direction, start, end);
  }
  IFACEMETHODIMP accHitTest(long x, long y, VARIANT* child) override { return m_standard->accHitTest(x, y, child); }
  IFACEMETHODIMP put_accName(VARIANT, BSTR) override { return DISP_E_MEMBERNOTFOUND; }
  IFACEMETHODIMP put_accValue(VARIANT, BSTR) override { return DISP_E_MEMBERNOTFOUND; }

 private:
  // Null once the button is gone or its window destroyed.
  IButtonFace* Face() const noexcept { return m_face && ::IsWindow(m_window) ? *m_face : nullptr; }

  HWND m_window;
  std::shared_ptr<IButtonFace*> m_face;
  ComPtr<IAccessible> m_standard;
};

}  // namespace

CButtonAccessibility::CButtonAccessibility(IButtonFace& face) : m_face(std::make_shared<IButtonFace*>(&face)) {}

CButtonAccessibility::~CButtonAccessibility() { *m_face = nullptr; }

LRESULT CButtonAccessibility::OnGetObject(HWND window, WPARAM wParam, LPARAM lParam) noexcept {
  if (static_cast<LONG>(lParam) != static_cast<LONG>(OBJID_CLIENT)) return 0;
  return corvane::Barrier(LRESULT{0}, [&]() -> LRESULT {
    ComPtr<IAccessible> standard;
    if (FAILED(::CreateStdAccessibleObject(window, OBJID_CLIENT, IID_PPV_ARGS(&standard))) || !standard) return 0;
    const ComPtr<CButtonAccessible> object = corvane::MakeObject<CButtonAccessible>(window, m_face, standard);
    ComPtr<IAccessible> answer;
    if (FAILED(object.As(&answer))) return 0;
    // LresultFromObject takes its own reference; ours goes when `answer` does. A negative result is
    // an error code, which the system treats as no object: the default answer is then given.
    const LRESULT result = ::LresultFromObject(__uuidof(IAccessible), wParam, answer.Get());
    return result < 0 ? 0 : result;
  });
}

void CButtonAccessibility::RaiseNameChange(HWND window) noexcept {
  if (window != nullptr && ::IsWindow(window)) {
    ::NotifyWinEvent(EVENT_OBJECT_NAMECHANGE, window, OBJID_CLIENT, CHILDID_SELF);
  }
}

}  // namespace accessibility
