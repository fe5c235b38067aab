#pragma once
// One Explorer window's browser object: the site given to the helper objects. Like Explorer's, it
// answers IServiceProvider (the web browser and the shell browser are this same object here),
// IWebBrowser2 with DWebBrowserEvents2 through IConnectionPointContainer, and IShellBrowser with the
// active view. It may be called from any thread; navigation itself is carried to the window thread.
#include <windows.h>
#include <exdisp.h>
#include <ocidl.h>
#include <servprov.h>
#include <shobjidl.h>
#include <wrl/client.h>

#include <functional>
#include <mutex>
#include <string>

#include "connection_point.h"
#include "free_threaded.h"
#include "platform/com_object.h"
#include "platform/handles.h"
#include "shell_view.h"
#include "web_browser_stubs.h"

namespace explorer_standin {

class CBrowser final
    : public corvane::ComObject<CBrowser, IShellBrowser, IServiceProvider, IConnectionPointContainer,
                                corvane::ComAlias<IOleWindow, IShellBrowser>,
                                corvane::ComAlias<IWebBrowser2, WebBrowser2Stubs>,
                                corvane::ComAlias<IWebBrowserApp, WebBrowser2Stubs>,
                                corvane::ComAlias<IWebBrowser, WebBrowser2Stubs>,
                                corvane::ComAlias<IDispatch, WebBrowser2Stubs>>,
      public WebBrowser2Stubs {
 public:
  // Hands a navigation to the window thread; false when the window no longer takes any.
  using NavigationRequest = std::function<bool(corvane::unique_pidl)>;

  CBrowser(HWND frame, HWND status, NavigationRequest request);

  // On the window thread.
  void SetView(Microsoft::WRL::ComPtr<CShellView> view);
  Microsoft::WRL::ComPtr<CShellView> View();
  void FireNavigateComplete2(const std::wstring& url);
  void FireOnQuit();
  // The window has closed: no view, no navigation, and sinks that were never unadvised are let go.
  void Shutdown() noexcept;
  // For every window of the process: QueryActiveShellView called from another thread than the
  // window's waits this long first, as Explorer's does when the window thread is busy. 0 at start;
  // setting 0 also ends a wait in progress.
  static void SetOffThreadViewDelay(DWORD milliseconds) noexcept;
  // True once an off-thread view query is being held (at once if one is), false after the time.
  static bool WaitForHeldViewQuery(DWORD milliseconds) noexcept;
  // Off-thread view queries begun so far, in every window: a check has ended once the next began.
  static long OffThreadViewQueries() noexcept;

  // IUnknown, for the interfaces of both bases.
  IFACEMETHODIMP QueryInterface(REFIID riid, void** ppv) override;
  IFACEMETHODIMP_(ULONG) AddRef() override { return ComObject::AddRef(); }
  IFACEMETHODIMP_(ULONG) Release() override { return ComObject::Release(); }

  // IOleWindow
  IFACEMETHODIMP GetWindow(HWND* window) override;
  IFACEMETHODIMP ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }

  // IShellBrowser
  IFACEMETHODIMP InsertMenusSB(HMENU, LPOLEMENUGROUPWIDTHS) override { return E_NOTIMPL; }
  IFACEMETHODIMP SetMenuSB(HMENU, HOLEMENU, HWND) override { return E_NOTIMPL; }
  IFACEMETHODIMP RemoveMenusSB(HMENU) override { return E_NOTIMPL; }
  IFACEMETHODIMP SetStatusTextSB(LPCWSTR) override { return E_NOTIMPL; }
  IFACEMETHODIMP EnableModelessSB(BOOL) override { return E_NOTIMPL; }
  IFACEMETHODIMP TranslateAcceleratorSB(MSG*, WORD) override { return E_NOTIMPL; }
  IFACEMETHODIMP BrowseObject(PCUIDLIST_RELATIVE pidl, UINT flags) override;
  IFACEMETHODIMP GetViewStateStream(DWORD, IStream** stream) override;
  IFACEMETHODIMP GetControlWindow(UINT id, HWND* window) override;
  IFACEMETHODIMP SendControlMsg(UINT, UINT, WPARAM, LPARAM, LRESULT*) override { return E_NOTIMPL; }
  IFACEMETHODIMP QueryActiveShellView(IShellView** view) override;
  IFACEMETHODIMP OnViewWindowActive(IShellView*) override { return E_NOTIMPL; }
  IFACEMETHODIMP SetToolbarItems(LPTBBUTTONSB, UINT, UINT) override { return E_NOTIMPL; }

  // IServiceProvider
  IFACEMETHODIMP QueryService(REFGUID service, REFIID riid, void** ppv) override;

  // IConnectionPointContainer
  IFACEMETHODIMP EnumConnectionPoints(IEnumConnectionPoints** points) override;
  IFACEMETHODIMP FindConnectionPoint(REFIID riid, IConnectionPoint** point) override;

  // IWebBrowser2: the two members the stand-in offers.
  IFACEMETHODIMP get_HWND(SHANDLE_PTR* window) override;
  IFACEMETHODIMP Navigate2(VARIANT* url, VARIANT* flags, VARIANT* target, VARIANT* postData, VARIANT* headers) override;

 private:
  void Fire(DISPID id, DISPPARAMS& params);
  HRESULT Request(corvane::unique_pidl pidl);

  const HWND m_frame;
  const HWND m_status;
  std::mutex m_lock;  // guards the three below
  Microsoft::WRL::ComPtr<CShellView> m_view;
  NavigationRequest m_request;
  bool m_closed = false;
  EventSinks m_sinks;
  FreeThreadedMarshaler m_marshaler;
};

}  // namespace explorer_standin
