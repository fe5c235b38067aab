#include "probe_sink.h"

#include <exdispid.h>

#include <string>

#include "platform/errors.h"
#include "probe_bho.h"
#include "probe_record.h"

namespace probe {

HRESULT CProbeSink::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 0;
  return S_OK;
}

HRESULT CProbeSink::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
  if (info != nullptr) *info = nullptr;
  return E_NOTIMPL;
}

HRESULT CProbeSink::Invoke(DISPID id, REFIID riid, LCID, WORD flags, DISPPARAMS* params, VARIANT*, EXCEPINFO*, UINT*) {
  return corvane::ComBoundary([&]() -> HRESULT {
    std::wstring url;
    std::wstring urlType = L"-";
    IDispatch* source = nullptr;
    std::wstring sourceType = L"-";
    const UINT count = params != nullptr ? params->cArgs : 0;
    if (id == DISPID_NAVIGATECOMPLETE2 && count == 2) {
      // Arguments arrive last first: rgvarg[0] is URL, rgvarg[1] is pDisp.
      const VARIANT& urlArg = params->rgvarg[0];
      urlType = std::to_wstring(urlArg.vt);
      const VARIANT* value = urlArg.vt == (VT_BYREF | VT_VARIANT) ? urlArg.pvarVal : &urlArg;
      if (value != nullptr && value->vt == VT_BSTR && value->bstrVal != nullptr) url = value->bstrVal;
      sourceType = std::to_wstring(params->rgvarg[1].vt);
      if (params->rgvarg[1].vt == VT_DISPATCH) source = params->rgvarg[1].pdispVal;
    }
    Record(L"invoke", {{L"dispid", std::to_wstring(id)},
                       {L"args", std::to_wstring(count)},
                       {L"named", std::to_wstring(params != nullptr ? params->cNamedArgs : 0)},
                       {L"iidnull", riid == IID_NULL ? L"1" : L"0"},
                       {L"method", (flags & DISPATCH_METHOD) != 0 ? L"1" : L"0"},
                       {L"urlvt", urlType},
                       {L"dispvt", sourceType},
                       {L"url", url}});
    if (m_owner != nullptr) m_owner->OnEvent(id, source, url);
    return S_OK;
  });
}

}  // namespace probe
