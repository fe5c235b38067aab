#pragma once
// The free-threaded marshaler aggregated into an object: marshalling the object to another
// apartment hands over the object itself, never a proxy that waits for the window thread.
// Explorer's browser objects are called this way from the add-in's worker thread.
#include <windows.h>
#include <objbase.h>
#include <wrl/client.h>

namespace explorer_standin {

class FreeThreadedMarshaler {
 public:
  // outer: the object's controlling unknown. The marshaler keeps no reference to it.
  void Aggregate(IUnknown* outer) noexcept { ::CoCreateFreeThreadedMarshaler(outer, m_inner.ReleaseAndGetAddressOf()); }

  // Answers IMarshal after the object's own interfaces said no.
  HRESULT Query(HRESULT ownResult, REFIID riid, void** ppv) noexcept {
    if (ownResult != E_NOINTERFACE || riid != IID_IMarshal || !m_inner) return ownResult;
    return m_inner->QueryInterface(riid, ppv);
  }

 private:
  Microsoft::WRL::ComPtr<IUnknown> m_inner;
};

}  // namespace explorer_standin
