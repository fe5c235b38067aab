#pragma once
// The browser helper object Explorer creates for every window: it hands the window's web browser
// and shell browser to the window's controller and listens to the browser's events.
#include <windows.h>
#include <exdisp.h>
#include <ocidl.h>
#include <shobjidl.h>
#include <wrl/client.h>

#include "corvane_h.h"
#include "explorer/browser_event_sink.h"
#include "explorer/explorer_window.h"
#include "platform/com_object.h"

class CTitleBarBHO : public corvane::ComObject<CTitleBarBHO, IObjectWithSite> {
 public:
  static constexpr bool kAggregatable = true;

  CTitleBarBHO() = default;
  ~CTitleBarBHO() override;

  // IObjectWithSite
  IFACEMETHODIMP SetSite(IUnknown* site) override;
  IFACEMETHODIMP GetSite(REFIID riid, void** ppv) override;

  // DWebBrowserEvents2, through the event sink. Virtual, as the events are dispatched to them.
  virtual void OnBeforeNavigate2() {}
  virtual void OnNavigateComplete2();
  virtual void OnCommandStateChange(long command, VARIANT_BOOL enable);
  virtual void OnQuit();

  bool IsAdvised() const noexcept { return m_sink.IsAdvised(); }
  const CExplorerWindow& GetExplorerWindow() const noexcept { return m_explorerWindow; }

 private:
  HRESULT SetSiteBody(IUnknown* site);

  Microsoft::WRL::ComPtr<IShellBrowser> m_spShellBrowser;
  Microsoft::WRL::ComPtr<IWebBrowser2> m_spWebBrowser2;
  CExplorerWindow m_explorerWindow;
  Microsoft::WRL::ComPtr<IUnknown> m_spUnkSite;
  CBrowserEventSink m_sink{this};
};
