#include "explorer/browser_event_sink.h"

#include <exdispid.h>
#include <ocidl.h>
#include <wrl/client.h>

#include "explorer/title_bar_bho.h"
#include "platform/errors.h"

namespace {

HRESULT FindEventPoint(IUnknown* source, Microsoft::WRL::ComPtr<IConnectionPoint>& point) {
  if (source == nullptr) return E_POINTER;
  Microsoft::WRL::ComPtr<IConnectionPointContainer> container;
  CORVANE_RETURN_IF_FAILED(source->QueryInterface(IID_PPV_ARGS(&container)));
  return container->FindConnectionPoint(DIID_DWebBrowserEvents2, &point);
}

// The argument of a VT_I4 or by-reference VT_I4 parameter, 0 otherwise.
long LongArgument(const VARIANTARG& argument) noexcept {
  if (argument.vt == VT_I4) return argument.lVal;
  if (argument.vt == (VT_I4 | VT_BYREF) && argument.plVal != nullptr) return *argument.plVal;
  return 0;
}

VARIANT_BOOL BoolArgument(const VARIANTARG& argument) noexcept {
  if (argument.vt == VT_BOOL) return argument.boolVal;
  if (argument.vt == (VT_BOOL | VT_BYREF) && argument.pboolVal != nullptr) return *argument.pboolVal;
  return VARIANT_FALSE;
}

}  // namespace

HRESULT CBrowserEventSink::Advise(IUnknown* source) {
  Microsoft::WRL::ComPtr<IConnectionPoint> point;
  CORVANE_RETURN_IF_FAILED(FindEventPoint(source, point));
  DWORD cookie = 0;
  CORVANE_RETURN_IF_FAILED(point->Advise(this, &cookie));
  m_dwCookie = cookie;
  return S_OK;
}

HRESULT CBrowserEventSink::Unadvise(IUnknown* source) {
  Microsoft::WRL::ComPtr<IConnectionPoint> point;
  CORVANE_RETURN_IF_FAILED(FindEventPoint(source, point));
  const HRESULT hr = point->Unadvise(m_dwCookie);
  // Reset whatever the source answered, so that the next unadvise is not attempted twice.
  m_dwCookie = kNotAdvised;
  return hr;
}

IFACEMETHODIMP CBrowserEventSink::QueryInterface(REFIID riid, void** ppv) {
  if (ppv == nullptr) return E_POINTER;
  if (riid == IID_IUnknown || riid == IID_IDispatch || riid == DIID_DWebBrowserEvents2) {
    *ppv = static_cast<IDispatch*>(this);
    return S_OK;
  }
  *ppv = nullptr;
  return E_NOINTERFACE;
}

IFACEMETHODIMP CBrowserEventSink::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 0;
  return S_OK;
}

IFACEMETHODIMP CBrowserEventSink::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
  if (info != nullptr) *info = nullptr;
  return E_NOTIMPL;
}

IFACEMETHODIMP CBrowserEventSink::Invoke(DISPID dispId, REFIID, LCID, WORD, DISPPARAMS* params, VARIANT* result,
                                         EXCEPINFO*, UINT*) {
  return corvane::ComBoundary([&]() -> HRESULT {
    if (result != nullptr) ::VariantInit(result);
    switch (dispId) {
      case DISPID_BEFORENAVIGATE2:
        m_pOwner->OnBeforeNavigate2();
        break;
      case DISPID_NAVIGATECOMPLETE2:
        m_pOwner->OnNavigateComplete2();
        break;
      case DISPID_COMMANDSTATECHANGE:
        // Arguments arrive last to first: rgvarg[1] is the command, rgvarg[0] the enable flag.
        if (params != nullptr && params->cArgs >= 2) {
          m_pOwner->OnCommandStateChange(LongArgument(params->rgvarg[1]), BoolArgument(params->rgvarg[0]));
        }
        break;
      case DISPID_ONQUIT:
        m_pOwner->OnQuit();
        break;
      default:
        break;
    }
    return S_OK;
  });
}
