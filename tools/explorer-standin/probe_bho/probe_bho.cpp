#include "probe_bho.h"

#include <commctrl.h>
#include <exdispid.h>
#include <shlguid.h>
#include <shlobj.h>

#include <vector>

#include "platform/automation.h"
#include "platform/errors.h"
#include "probe_protocol.h"
#include "probe_record.h"

namespace probe {

using Microsoft::WRL::ComPtr;

namespace {

constexpr UINT_PTR kSubclassId = 0x50524F42;

HWND FindDescendant(HWND parent, const wchar_t* className) {
  struct Search {
    const wchar_t* name;
    HWND found;
  } search{className, nullptr};
  ::EnumChildWindows(
      parent,
      [](HWND window, LPARAM context) -> BOOL {
        auto* s = reinterpret_cast<Search*>(context);
        if (ClassOf(window) != s->name) return TRUE;
        s->found = window;
        return FALSE;
      },
      reinterpret_cast<LPARAM>(&search));
  return search.found;
}

std::wstring Apartment() {
  APTTYPE type{};
  APTTYPEQUALIFIER qualifier{};
  if (FAILED(::CoGetApartmentType(&type, &qualifier))) return L"none";
  switch (type) {
    case APTTYPE_STA:
    case APTTYPE_MAINSTA:
      return L"sta";
    case APTTYPE_MTA:
      return L"mta";
    default:
      return L"other";
  }
}

std::wstring Flag(bool value) { return value ? L"1" : L"0"; }

}  // namespace

CProbeBho::CProbeBho(const wchar_t* name, bool full) : m_name(name), m_full(full) {
  Record(L"created", {{L"name", m_name}});
}

CProbeBho::~CProbeBho() { Record(L"destroyed", {{L"name", m_name}}); }

HRESULT CProbeBho::GetSite(REFIID riid, void** site) {
  if (site == nullptr) return E_POINTER;
  *site = nullptr;
  return m_site ? m_site->QueryInterface(riid, site) : E_FAIL;
}

HRESULT CProbeBho::SetSite(IUnknown* site) {
  return corvane::ComBoundary([&]() -> HRESULT {
    if (site == nullptr) {
      Record(L"setsite", {{L"name", m_name}, {L"site", L"0"}});
      if (m_full) Detach();
      m_site.Reset();
      return S_OK;
    }
    m_site = site;
    if (m_full) {
      Attach();
    } else {
      Record(L"setsite", {{L"name", m_name}, {L"site", L"1"}, {L"apt", Apartment()}});
    }
    return S_OK;
  });
}

void CProbeBho::Attach() {
  ComPtr<IServiceProvider> services;
  const HRESULT sp = m_site.As(&services);
  HRESULT web = E_NOINTERFACE, shell = E_NOINTERFACE;
  if (SUCCEEDED(sp)) {
    web = services->QueryService(SID_SWebBrowserApp, IID_PPV_ARGS(m_web.ReleaseAndGetAddressOf()));
    shell = services->QueryService(SID_SShellBrowser, IID_PPV_ARGS(m_shell.ReleaseAndGetAddressOf()));
  }
  SHANDLE_PTR frameValue = 0;
  const HRESULT frameHr = m_web ? m_web->get_HWND(&frameValue) : E_FAIL;
  m_frame = reinterpret_cast<HWND>(frameValue);
  HWND shellWindow = nullptr, status = nullptr;
  HRESULT statusHr = E_FAIL, viewHr = E_FAIL;
  if (m_shell) {
    m_shell->GetWindow(&shellWindow);
    statusHr = m_shell->GetControlWindow(FCW_STATUS, &status);
    ComPtr<IShellView> view;
    viewHr = m_shell->QueryActiveShellView(view.GetAddressOf());
  }
  DWORD frameThread = m_frame != nullptr ? ::GetWindowThreadProcessId(m_frame, nullptr) : 0;

  m_hook.reset(::SetWindowsHookExW(WH_CBT, &CProbeBho::HookProc, nullptr, ::GetCurrentThreadId()));
  HRESULT advise = E_FAIL;
  ComPtr<IConnectionPointContainer> container;
  ComPtr<IConnectionPoint> point;
  if (m_web && SUCCEEDED(m_web.As(&container)) &&
      SUCCEEDED(container->FindConnectionPoint(DIID_DWebBrowserEvents2, point.GetAddressOf()))) {
    m_sink = corvane::MakeObject<CProbeSink>(this);
    advise = point->Advise(static_cast<DWebBrowserEvents2*>(m_sink.Get()), &m_cookie);
  }
  m_subclassed = m_frame != nullptr && ::SetWindowSubclass(m_frame, &CProbeBho::FrameProc, kSubclassId, reinterpret_cast<DWORD_PTR>(this));

  Record(L"setsite", {{L"name", m_name},
                      {L"site", L"1"},
                      {L"apt", Apartment()},
                      {L"sp", Hex(sp)},
                      {L"web", Hex(web)},
                      {L"shell", Hex(shell)},
                      {L"hwndhr", Hex(frameHr)},
                      {L"frame", Decimal(m_frame)},
                      {L"framethread", Flag(frameThread == ::GetCurrentThreadId())},
                      {L"shellwindow", Decimal(shellWindow)},
                      {L"statushr", Hex(statusHr)},
                      {L"status", Decimal(status)},
                      {L"statusclass", ClassOf(status)},
                      {L"statusparent", Decimal(status != nullptr ? ::GetParent(status) : nullptr)},
                      {L"band", Decimal(FindDescendant(m_frame, L"WorkerW"))},
                      {L"tab", Decimal(FindDescendant(m_frame, L"ShellTabWindowClass"))},
                      {L"duiview", Decimal(FindDescendant(m_frame, L"DUIViewWndClassName"))},
                      {L"activeview", Hex(viewHr)},
                      {L"hook", Flag(static_cast<bool>(m_hook))},
                      {L"advise", Hex(advise)},
                      {L"subclass", Flag(m_subclassed)}});
}

void CProbeBho::Unadvise(const wchar_t* when) {
  if (m_cookie == 0 || !m_web) return;
  ComPtr<IConnectionPointContainer> container;
  ComPtr<IConnectionPoint> point;
  HRESULT hr = m_web.As(&container);
  if (SUCCEEDED(hr)) hr = container->FindConnectionPoint(DIID_DWebBrowserEvents2, point.GetAddressOf());
  if (SUCCEEDED(hr)) hr = point->Unadvise(m_cookie);
  Record(L"unadvise", {{L"name", m_name}, {L"when", when}, {L"hr", Hex(hr)}});
  m_cookie = 0;
}

void CProbeBho::Detach() {
  Unadvise(L"setsite");
  if (m_sink) m_sink->Disconnect();
  m_sink.Reset();
  if (m_subclassed) ::RemoveWindowSubclass(m_frame, &CProbeBho::FrameProc, kSubclassId);
  m_subclassed = false;
  m_hook.reset();
  m_shell.Reset();
  m_web.Reset();
}

void CProbeBho::OnEvent(DISPID id, IDispatch* source, const std::wstring& url) {
  if (id == DISPID_ONQUIT) {
    Unadvise(L"onquit");
    return;
  }
  if (id != DISPID_NAVIGATECOMPLETE2) return;
  ComPtr<IUnknown> sourceIdentity, webIdentity;
  if (source != nullptr) source->QueryInterface(IID_PPV_ARGS(sourceIdentity.GetAddressOf()));
  if (m_web) m_web.As(&webIdentity);
  Record(L"navigated", {{L"name", m_name},
                        {L"samebrowser", Flag(sourceIdentity && sourceIdentity == webIdentity)},
                        {L"url", url}});
}

// Subclassed only to show the frame can be, from SetSite on the window thread; it changes nothing.
LRESULT CALLBACK CProbeBho::FrameProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR self) noexcept {
  if (message == WM_NCDESTROY) {
    ::RemoveWindowSubclass(window, &CProbeBho::FrameProc, kSubclassId);
    reinterpret_cast<CProbeBho*>(self)->m_subclassed = false;
  }
  return ::DefSubclassProc(window, message, wParam, lParam);
}

LRESULT CALLBACK CProbeBho::HookProc(int code, WPARAM wParam, LPARAM lParam) noexcept {
  if (code == HCBT_CREATEWND) {
    try {
      const auto* create = reinterpret_cast<const CBT_CREATEWNDW*>(lParam)->lpcs;
      const HWND window = reinterpret_cast<HWND>(wParam);
      const bool named = !IS_INTRESOURCE(create->lpszClass);
      Record(L"cbt", {{L"class", ClassOf(window)},
                      {L"named", Flag(named)},
                      {L"createclass", named ? std::wstring(create->lpszClass) : std::wstring()},
                      {L"hwnd", Decimal(window)},
                      {L"parent", Decimal(create->hwndParent)},
                      {L"parentclass", ClassOf(create->hwndParent)}});
    } catch (...) {
    }
  }
  return ::CallNextHookEx(nullptr, code, wParam, lParam);
}

}  // namespace probe
