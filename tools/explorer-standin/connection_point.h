#pragma once
// DWebBrowserEvents2 as Explorer's browser object offers it: one connection point on the
// container, IDispatch sinks advised on it, events fired through IDispatch::Invoke.
#include <windows.h>
#include <ocidl.h>
#include <wrl/client.h>

#include <map>
#include <mutex>
#include <vector>

#include "platform/com_object.h"

namespace explorer_standin {

// Connection calls made on every browser of the process since it started, so a test can see that an
// add-in advised once and unadvised once, even after the window that counted them has closed.
struct ConnectionTally {
  long advised = 0;     // Advise calls that connected a sink
  long unadvised = 0;   // Unadvise calls that disconnected one
  long refused = 0;     // Unadvise calls for a cookie that was not connected
};
ConnectionTally CountedConnections() noexcept;

// The advised sinks of one browser. Advise and Unadvise may come from any thread; firing happens
// on the window thread on a copy of the list, so a sink may unadvise from inside its own event.
class EventSinks {
 public:
  HRESULT Advise(IUnknown* sink, DWORD* cookie);
  HRESULT Unadvise(DWORD cookie);
  std::vector<Microsoft::WRL::ComPtr<IDispatch>> Snapshot();
  void Clear() noexcept;

 private:
  std::mutex m_lock;
  std::map<DWORD, Microsoft::WRL::ComPtr<IDispatch>> m_sinks;
  DWORD m_nextCookie = 1;
};

// A connection point made on demand by FindConnectionPoint. It holds its container (the browser),
// which holds the sinks, so no reference cycle keeps either alive.
class CConnectionPoint final : public corvane::ComObject<CConnectionPoint, IConnectionPoint> {
 public:
  CConnectionPoint(IConnectionPointContainer* container, EventSinks& sinks) noexcept
      : m_container(container), m_sinks(sinks) {}

  IFACEMETHODIMP GetConnectionInterface(IID* iid) override;
  IFACEMETHODIMP GetConnectionPointContainer(IConnectionPointContainer** container) override;
  IFACEMETHODIMP Advise(IUnknown* sink, DWORD* cookie) override;
  IFACEMETHODIMP Unadvise(DWORD cookie) override;
  IFACEMETHODIMP EnumConnections(IEnumConnections** connections) override;

 private:
  Microsoft::WRL::ComPtr<IConnectionPointContainer> m_container;
  EventSinks& m_sinks;  // lives in the container, which m_container keeps alive
};

}  // namespace explorer_standin
