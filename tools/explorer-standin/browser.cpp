#include "browser.h"

#include <exdispid.h>
#include <olectl.h>
#include <shlguid.h>

#include <atomic>
#include <utility>

#include "folder_location.h"
#include "platform/automation.h"
#include "platform/errors.h"
#include "standin_log.h"

namespace explorer_standin {

using Microsoft::WRL::ComPtr;

namespace {

// Navigate2's URL arrives as a BSTR, or by reference to one (script callers pass it that way).
const VARIANT* Dereference(const VARIANT* value) {
  while (value != nullptr && value->vt == (VT_BYREF | VT_VARIANT)) value = value->pvarVal;
  return value;
}

std::atomic<DWORD> g_offThreadViewDelay{0};
std::atomic<long> g_offThreadViewQueries{0};

}  // namespace

CBrowser::CBrowser(HWND frame, HWND status, NavigationRequest request)
    : m_frame(frame), m_status(status), m_request(std::move(request)) {
  m_marshaler.Aggregate(Identity());
}

void CBrowser::SetView(ComPtr<CShellView> view) {
  std::lock_guard<std::mutex> guard(m_lock);
  if (!m_closed) m_view = std::move(view);
}

ComPtr<CShellView> CBrowser::View() {
  std::lock_guard<std::mutex> guard(m_lock);
  return m_view;
}

void CBrowser::Fire(DISPID id, DISPPARAMS& params) {
  for (const ComPtr<IDispatch>& sink : m_sinks.Snapshot()) {
    const HRESULT hr = sink->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params, nullptr, nullptr, nullptr);
    Log(L"event " + std::to_wstring(id) + L" to sink " + HandleText(sink.Get()) + L": " + HexResult(hr));
  }
}

void CBrowser::FireNavigateComplete2(const std::wstring& url) {
  // NavigateComplete2(IDispatch* pDisp, VARIANT* URL): arguments in reverse order, the URL as a
  // reference to a VARIANT holding a BSTR, pDisp the browser that navigated.
  const corvane::unique_bstr text(::SysAllocString(url.c_str()));
  VARIANT urlValue;
  ::VariantInit(&urlValue);
  urlValue.vt = VT_BSTR;
  urlValue.bstrVal = text.get();
  VARIANTARG args[2];
  ::VariantInit(&args[0]);
  ::VariantInit(&args[1]);
  args[0].vt = VT_BYREF | VT_VARIANT;
  args[0].pvarVal = &urlValue;
  args[1].vt = VT_DISPATCH;
  args[1].pdispVal = static_cast<IDispatch*>(static_cast<WebBrowser2Stubs*>(this));
  DISPPARAMS params{args, nullptr, 2, 0};
  Fire(DISPID_NAVIGATECOMPLETE2, params);
}

void CBrowser::FireOnQuit() {
  DISPPARAMS params{nullptr, nullptr, 0, 0};
  Fire(DISPID_ONQUIT, params);
}

void CBrowser::Shutdown() noexcept {
  ComPtr<CShellView> view;
  NavigationRequest request;
  try {
    std::lock_guard<std::mutex> guard(m_lock);
    m_closed = true;
    view = std::move(m_view);
    request = std::move(m_request);
  } catch (...) {
  }
  m_sinks.Clear();
}

HRESULT CBrowser::Request(corvane::unique_pidl pidl) {
  NavigationRequest request;
  {
    std::lock_guard<std::mutex> guard(m_lock);
    if (m_closed || !m_request) return E_FAIL;
    request = m_request;
  }
  return request(std::move(pidl)) ? S_OK : E_FAIL;
}

HRESULT CBrowser::QueryInterface(REFIID riid, void** ppv) {
  return m_marshaler.Query(ComObject::QueryInterface(riid, ppv), riid, ppv);
}

HRESULT CBrowser::GetWindow(HWND* window) {
  if (window == nullptr) return E_POINTER;
  std::lock_guard<std::mutex> guard(m_lock);
  *window = m_closed ? nullptr : m_frame;
  return m_closed ? E_FAIL : S_OK;
}

HRESULT CBrowser::BrowseObject(PCUIDLIST_RELATIVE pidl, UINT flags) {
  return corvane::ComBoundary([&]() -> HRESULT {
    Log(L"IShellBrowser::BrowseObject flags " + HexResult(static_cast<long>(flags)));
    if ((flags & (SBSP_NAVIGATEBACK | SBSP_NAVIGATEFORWARD)) != 0) return E_NOTIMPL;
    corvane::unique_pidl target;
    if ((flags & SBSP_PARENT) != 0) {
      const ComPtr<CShellView> view = View();
      if (!view) return E_FAIL;
      target.reset(::ILCloneFull(view->Pidl()));
      CORVANE_RETURN_IF_NULL_ALLOC(target.get());
      if (!::ILRemoveLastID(target.get())) return E_FAIL;  // already at the desktop
    } else if ((flags & SBSP_RELATIVE) != 0) {
      if (pidl == nullptr) return E_INVALIDARG;
      const ComPtr<CShellView> view = View();
      if (!view) return E_FAIL;
      target.reset(::ILCombine(view->Pidl(), pidl));
      CORVANE_RETURN_IF_NULL_ALLOC(target.get());
    } else {
      if (pidl == nullptr) return E_INVALIDARG;
      target.reset(::ILCloneFull(reinterpret_cast<PCIDLIST_ABSOLUTE>(pidl)));
      CORVANE_RETURN_IF_NULL_ALLOC(target.get());
    }
    return Request(std::move(target));
  });
}

HRESULT CBrowser::GetViewStateStream(DWORD, IStream** stream) {
  if (stream != nullptr) *stream = nullptr;
  return E_NOTIMPL;
}

HRESULT CBrowser::GetControlWindow(UINT id, HWND* window) {
  if (window == nullptr) return E_POINTER;
  *window = nullptr;
  if (id != FCW_STATUS) return E_NOTIMPL;
  std::lock_guard<std::mutex> guard(m_lock);
  if (m_closed) return E_FAIL;
  *window = m_status;
  return S_OK;
}

namespace {
// Set while an off-thread view query is being held, so a test can act inside the hold.
HANDLE HeldEvent() noexcept {
  static const HANDLE event = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
  return event;
}
// Set by a delay of 0: a hold in progress ends at once instead of running out its time.
HANDLE ReleaseEvent() noexcept {
  static const HANDLE event = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
  return event;
}
}  // namespace

void CBrowser::SetOffThreadViewDelay(DWORD milliseconds) noexcept {
  g_offThreadViewDelay = milliseconds;
  if (ReleaseEvent() == nullptr) return;
  if (milliseconds == 0) {
    ::SetEvent(ReleaseEvent());
  } else {
    ::ResetEvent(ReleaseEvent());
  }
}

bool CBrowser::WaitForHeldViewQuery(DWORD milliseconds) noexcept {
  return HeldEvent() != nullptr && ::WaitForSingleObject(HeldEvent(), milliseconds) == WAIT_OBJECT_0;
}

long CBrowser::OffThreadViewQueries() noexcept { return g_offThreadViewQueries.load(); }

HRESULT CBrowser::QueryActiveShellView(IShellView** view) {
  if (view == nullptr) return E_POINTER;
  *view = nullptr;
  if (::GetWindowThreadProcessId(m_frame, nullptr) != ::GetCurrentThreadId()) {
    ++g_offThreadViewQueries;
    // Waited out before the lock is taken, so the window thread itself is never held up by it.
    const DWORD delay = g_offThreadViewDelay.load();
    if (delay != 0 && HeldEvent() != nullptr && ReleaseEvent() != nullptr) {
      ::SetEvent(HeldEvent());
      ::WaitForSingleObject(ReleaseEvent(), delay);
      ::ResetEvent(HeldEvent());
    }
  }
  const ComPtr<CShellView> current = View();
  // Before the first navigation has completed there is no view, as in Explorer.
  if (!current) return E_FAIL;
  return current.CopyTo(view);
}

HRESULT CBrowser::QueryService(REFGUID service, REFIID riid, void** ppv) {
  if (ppv == nullptr) return E_POINTER;
  *ppv = nullptr;
  if (service == SID_SWebBrowserApp || service == SID_SShellBrowser || service == SID_STopLevelBrowser) {
    return QueryInterface(riid, ppv);
  }
  return E_NOINTERFACE;
}

HRESULT CBrowser::EnumConnectionPoints(IEnumConnectionPoints** points) {
  if (points != nullptr) *points = nullptr;
  return E_NOTIMPL;
}

HRESULT CBrowser::FindConnectionPoint(REFIID riid, IConnectionPoint** point) {
  return corvane::ComBoundary([&]() -> HRESULT {
    if (point == nullptr) return E_POINTER;
    *point = nullptr;
    if (riid != DIID_DWebBrowserEvents2) return CONNECT_E_NOCONNECTION;
    return corvane::MakeObject<CConnectionPoint>(static_cast<IConnectionPointContainer*>(this), m_sinks).CopyTo(point);
  });
}

HRESULT CBrowser::get_HWND(SHANDLE_PTR* window) {
  if (window == nullptr) return E_POINTER;
  std::lock_guard<std::mutex> guard(m_lock);
  *window = m_closed ? 0 : reinterpret_cast<SHANDLE_PTR>(m_frame);
  return m_closed ? E_FAIL : S_OK;
}

HRESULT CBrowser::Navigate2(VARIANT* url, VARIANT*, VARIANT*, VARIANT*, VARIANT*) {
  return corvane::ComBoundary([&]() -> HRESULT {
    const VARIANT* value = Dereference(url);
    std::wstring location;
    if (value != nullptr && value->vt == VT_BSTR && value->bstrVal != nullptr) {
      location = value->bstrVal;
    } else if (value != nullptr && value->vt == (VT_BYREF | VT_BSTR) && value->pbstrVal != nullptr && *value->pbstrVal != nullptr) {
      location = *value->pbstrVal;
    } else {
      Log(L"IWebBrowser2::Navigate2 refused a URL that is not a string");
      return E_INVALIDARG;
    }
    corvane::unique_pidl pidl;
    const HRESULT hr = ParseLocation(location, pidl);
    Log(L"IWebBrowser2::Navigate2 \"" + location + L"\": " + HexResult(hr));
    // Explorer would accept the call and report a bad location later; the stand-in says so at once.
    CORVANE_RETURN_IF_FAILED(hr);
    return Request(std::move(pidl));
  });
}

}  // namespace explorer_standin
