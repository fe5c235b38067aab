#include "connection_point.h"

#include <exdisp.h>
#include <olectl.h>

#include <atomic>

#include "platform/errors.h"

namespace explorer_standin {

using Microsoft::WRL::ComPtr;

namespace {

std::atomic<long> g_advised{0};
std::atomic<long> g_unadvised{0};
std::atomic<long> g_refused{0};

}  // namespace

ConnectionTally CountedConnections() noexcept { return ConnectionTally{g_advised.load(), g_unadvised.load(), g_refused.load()}; }

HRESULT EventSinks::Advise(IUnknown* sink, DWORD* cookie) {
  if (cookie == nullptr) return E_POINTER;
  *cookie = 0;
  if (sink == nullptr) return E_POINTER;
  // A sink answers for the event interface itself (as generated sinks do) or at least for IDispatch.
  ComPtr<IDispatch> dispatch;
  if (FAILED(sink->QueryInterface(DIID_DWebBrowserEvents2, reinterpret_cast<void**>(dispatch.ReleaseAndGetAddressOf()))) &&
      FAILED(sink->QueryInterface(IID_PPV_ARGS(dispatch.ReleaseAndGetAddressOf())))) {
    return CONNECT_E_CANNOTCONNECT;
  }
  std::lock_guard<std::mutex> guard(m_lock);
  const DWORD assigned = m_nextCookie++;
  m_sinks.emplace(assigned, std::move(dispatch));
  *cookie = assigned;
  ++g_advised;
  return S_OK;
}

HRESULT EventSinks::Unadvise(DWORD cookie) {
  ComPtr<IDispatch> removed;
  {
    std::lock_guard<std::mutex> guard(m_lock);
    const auto found = m_sinks.find(cookie);
    if (found == m_sinks.end()) {
      ++g_refused;
      return CONNECT_E_NOCONNECTION;
    }
    ++g_unadvised;
    removed = std::move(found->second);
    m_sinks.erase(found);
  }
  // The sink's last reference may go here; outside the lock, as its destructor may call back.
  return S_OK;
}

std::vector<ComPtr<IDispatch>> EventSinks::Snapshot() {
  std::lock_guard<std::mutex> guard(m_lock);
  std::vector<ComPtr<IDispatch>> sinks;
  sinks.reserve(m_sinks.size());
  for (const auto& entry : m_sinks) sinks.push_back(entry.second);
  return sinks;
}

void EventSinks::Clear() noexcept {
  std::map<DWORD, ComPtr<IDispatch>> dropped;
  try {
    std::lock_guard<std::mutex> guard(m_lock);
    dropped.swap(m_sinks);
  } catch (...) {
  }
}

HRESULT CConnectionPoint::GetConnectionInterface(IID* iid) {
  if (iid == nullptr) return E_POINTER;
  *iid = DIID_DWebBrowserEvents2;
  return S_OK;
}

HRESULT CConnectionPoint::GetConnectionPointContainer(IConnectionPointContainer** container) {
  if (container == nullptr) return E_POINTER;
  return m_container.CopyTo(container);
}

HRESULT CConnectionPoint::Advise(IUnknown* sink, DWORD* cookie) {
  return corvane::ComBoundary([&] { return m_sinks.Advise(sink, cookie); });
}

HRESULT CConnectionPoint::Unadvise(DWORD cookie) {
  return corvane::ComBoundary([&] { return m_sinks.Unadvise(cookie); });
}

HRESULT CConnectionPoint::EnumConnections(IEnumConnections** connections) {
  if (connections != nullptr) *connections = nullptr;
  return E_NOTIMPL;
}

}  // namespace explorer_standin
