#pragma once
// The helper object's DWebBrowserEvents2 sink: an IDispatch that lives inside the helper object and
// hands the events it cares for to it. Like an embedded event sink it counts no references of its
// own; the helper object outlives every connection it advises.
#include <windows.h>
#include <exdisp.h>
#include <oaidl.h>

class CTitleBarBHO;

class CBrowserEventSink final : public IDispatch {
 public:
  // The cookie of a sink that is not advised.
  static constexpr DWORD kNotAdvised = 0xFEFEFEFE;

  explicit CBrowserEventSink(CTitleBarBHO* owner) noexcept : m_pOwner(owner) {}
  CBrowserEventSink(const CBrowserEventSink&) = delete;
  CBrowserEventSink& operator=(const CBrowserEventSink&) = delete;
  virtual ~CBrowserEventSink() = default;

  HRESULT Advise(IUnknown* source);
  HRESULT Unadvise(IUnknown* source);
  bool IsAdvised() const noexcept { return m_dwCookie != kNotAdvised; }
  DWORD Cookie() const noexcept { return m_dwCookie; }

  IFACEMETHODIMP QueryInterface(REFIID riid, void** ppv) override;
  IFACEMETHODIMP_(ULONG) AddRef() override { return 1; }
  IFACEMETHODIMP_(ULONG) Release() override { return 1; }
  IFACEMETHODIMP GetTypeInfoCount(UINT* count) override;
  IFACEMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo** info) override;
  IFACEMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  IFACEMETHODIMP Invoke(DISPID dispId, REFIID riid, LCID, WORD, DISPPARAMS* params, VARIANT* result, EXCEPINFO*,
                        UINT*) override;

 private:
  CTitleBarBHO* m_pOwner;
  DWORD m_dwCookie = kNotAdvised;
};
