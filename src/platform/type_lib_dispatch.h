#pragma once
// IDispatch for a dual interface, driven by the module's own type library (TYPELIB 1 of the file
// this code is linked into). A class lists DualInterface<IFoo> among its COM entries and gets the
// four IDispatch methods of IFoo; the type library is loaded on first use and never registered.
#include <windows.h>
#include <oaidl.h>
#include <wrl/client.h>

namespace corvane {

class TypeLibDispatch {
 public:
  explicit TypeLibDispatch(const IID& iid) noexcept : m_iid(iid) {}

  HRESULT GetTypeInfoCount(UINT* count) noexcept;
  HRESULT GetTypeInfo(UINT index, LCID lcid, ITypeInfo** info) noexcept;
  HRESULT GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID lcid, DISPID* ids) noexcept;
  // object is the dual interface pointer the type information describes.
  HRESULT Invoke(void* object, DISPID id, REFIID riid, LCID lcid, WORD flags, DISPPARAMS* params, VARIANT* result,
                 EXCEPINFO* exception, UINT* argError) noexcept;

 private:
  HRESULT TypeInfo(ITypeInfo** info) noexcept;

  const IID& m_iid;
  Microsoft::WRL::ComPtr<ITypeInfo> m_typeInfo;
};

template <class Interface>
class DualInterface : public Interface {
 public:
  using ImplementedInterface = Interface;

  IFACEMETHODIMP GetTypeInfoCount(UINT* count) override { return m_dispatch.GetTypeInfoCount(count); }
  IFACEMETHODIMP GetTypeInfo(UINT index, LCID lcid, ITypeInfo** info) override {
    return m_dispatch.GetTypeInfo(index, lcid, info);
  }
  IFACEMETHODIMP GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID lcid, DISPID* ids) override {
    return m_dispatch.GetIDsOfNames(riid, names, count, lcid, ids);
  }
  IFACEMETHODIMP Invoke(DISPID id, REFIID riid, LCID lcid, WORD flags, DISPPARAMS* params, VARIANT* result,
                        EXCEPINFO* exception, UINT* argError) override {
    return m_dispatch.Invoke(static_cast<Interface*>(this), id, riid, lcid, flags, params, result, exception,
                             argError);
  }

 private:
  TypeLibDispatch m_dispatch{__uuidof(Interface)};
};

}  // namespace corvane
