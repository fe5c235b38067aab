#include "explorer/title_bar_bho.h"

#include <shlguid.h>

#include "log/logger.h"
#include "platform/errors.h"

CTitleBarBHO::~CTitleBarBHO() = default;

IFACEMETHODIMP CTitleBarBHO::SetSite(IUnknown* site) {
  return corvane::ComBoundary([&] { return SetSiteBody(site); });
}

HRESULT CTitleBarBHO::SetSiteBody(IUnknown* site) {
  LOG_INFO(L"CTitleBarBHO::SetSite", L"CTitleBarBHO SetSite(%p) invoked", static_cast<void*>(site));
  m_spUnkSite = site;
  if (site != nullptr) {
    Microsoft::WRL::ComPtr<IServiceProvider> provider;
    if (FAILED(site->QueryInterface(IID_PPV_ARGS(&provider)))) return S_OK;
    // Only the pointers are looked at, not the results.
    provider->QueryService(SID_SWebBrowserApp, IID_PPV_ARGS(m_spWebBrowser2.ReleaseAndGetAddressOf()));
    provider->QueryService(SID_SShellBrowser, IID_PPV_ARGS(m_spShellBrowser.ReleaseAndGetAddressOf()));
    if (!m_spWebBrowser2 || !m_spShellBrowser) return E_FAIL;
    if (!m_explorerWindow.OnExplorerAttach(m_spWebBrowser2.Get(), m_spShellBrowser.Get())) return E_FAIL;
    if (m_sink.IsAdvised()) return S_OK;
    // A browser that refuses the sink still gets its bar; events are not needed for it.
    static_cast<void>(m_sink.Advise(m_spWebBrowser2.Get()));
    return S_OK;
  }
  if (m_spWebBrowser2 && m_sink.IsAdvised()) static_cast<void>(m_sink.Unadvise(m_spWebBrowser2.Get()));
  m_explorerWindow.OnExplorerDetach();
  m_spShellBrowser.Reset();
  m_spWebBrowser2.Reset();
  return S_OK;
}

IFACEMETHODIMP CTitleBarBHO::GetSite(REFIID riid, void** ppv) {
  return corvane::ComBoundary([&]() -> HRESULT {
    if (ppv == nullptr) return E_POINTER;
    *ppv = nullptr;
    if (!m_spUnkSite) return E_FAIL;
    return m_spUnkSite->QueryInterface(riid, ppv);
  });
}

void CTitleBarBHO::OnNavigateComplete2() {
  LOG_INFO(L"CTitleBarBHO::OnNavigateComplete2", L"CTitleBarBHO::OnNavigateComplete2()");
}

void CTitleBarBHO::OnCommandStateChange(long, VARIANT_BOOL) {}

void CTitleBarBHO::OnQuit() {
  LOG_INFO(L"CTitleBarBHO::OnQuit", L"CTitleBarBHO OnQuit() invoked");
  if (m_spWebBrowser2 && m_sink.IsAdvised()) static_cast<void>(m_sink.Unadvise(m_spWebBrowser2.Get()));
}
