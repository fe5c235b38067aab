#include "platform/type_lib_dispatch.h"

#include <oleauto.h>

#include <string>

#include "platform/module_path.h"

namespace corvane {

HRESULT TypeLibDispatch::TypeInfo(ITypeInfo** info) noexcept {
  try {
    if (!m_typeInfo) {
      const std::wstring path = ThisModulePath();
      if (path.empty()) return TYPE_E_CANTLOADLIBRARY;
      Microsoft::WRL::ComPtr<ITypeLib> library;
      // REGKIND_NONE: reading our own resource must not write the registry behind the installer's back.
      const HRESULT hr = ::LoadTypeLibEx(path.c_str(), REGKIND_NONE, &library);
      if (FAILED(hr)) return hr;
      const HRESULT found = library->GetTypeInfoOfGuid(m_iid, &m_typeInfo);
      if (FAILED(found)) return found;
    }
    *info = m_typeInfo.Get();
    (*info)->AddRef();
    return S_OK;
  } catch (...) {
    return E_FAIL;
  }
}

HRESULT TypeLibDispatch::GetTypeInfoCount(UINT* count) noexcept {
  if (count == nullptr) return E_POINTER;
  *count = 1;
  return S_OK;
}

HRESULT TypeLibDispatch::GetTypeInfo(UINT index, LCID, ITypeInfo** info) noexcept {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  return TypeInfo(info);
}

HRESULT TypeLibDispatch::GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID, DISPID* ids) noexcept {
  if (riid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  Microsoft::WRL::ComPtr<ITypeInfo> info;
  const HRESULT hr = TypeInfo(&info);
  if (FAILED(hr)) return hr;
  return ::DispGetIDsOfNames(info.Get(), names, count, ids);
}

HRESULT TypeLibDispatch::Invoke(void* object, DISPID id, REFIID riid, LCID, WORD flags, DISPPARAMS* params,
                                VARIANT* result, EXCEPINFO* exception, UINT* argError) noexcept {
  if (riid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  Microsoft::WRL::ComPtr<ITypeInfo> info;
  const HRESULT hr = TypeInfo(&info);
  if (FAILED(hr)) return hr;
  return ::DispInvoke(object, info.Get(), id, flags, params, result, exception, argError);
}

}  // namespace corvane
