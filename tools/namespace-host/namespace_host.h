#pragma once
// A stand-in for the Explorer window around a namespace view: it loads Corvane.dll by path, creates
// a namespace folder through the DLL's class factory, asks it for its view and lets the view create
// its window in a plain top-level frame. The frame's shell browser is a fake that records every
// BrowseObject call. The process must be named explorer.exe, or the DLL refuses to load.
#include <windows.h>
#include <shobjidl.h>
#include <wrl/client.h>

#include <span>
#include <string>
#include <vector>

#include "platform/com_object.h"
#include "platform/handles.h"
#include "platform/window.h"

namespace nshost {

struct BrowseCall {
  std::wstring path;  // the PIDL read back as a file-system path ("" when it is none)
  UINT flags = 0;
};

// The hosting browser as much as the view asks of it: its window, and BrowseObject recorded. It
// offers IServiceProvider but serves no web browser, like a host without one.
class CFakeShellBrowser final
    : public corvane::ComObject<CFakeShellBrowser, IShellBrowser, corvane::ComAlias<IOleWindow, IShellBrowser>,
                                IServiceProvider> {
 public:
  explicit CFakeShellBrowser(HWND frame) noexcept : m_frame(frame) {}

  IFACEMETHODIMP GetWindow(HWND* phwnd) override;
  IFACEMETHODIMP ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
  IFACEMETHODIMP InsertMenusSB(HMENU, LPOLEMENUGROUPWIDTHS) override { return E_NOTIMPL; }
  IFACEMETHODIMP SetMenuSB(HMENU, HOLEMENU, HWND) override { return E_NOTIMPL; }
  IFACEMETHODIMP RemoveMenusSB(HMENU) override { return E_NOTIMPL; }
  IFACEMETHODIMP SetStatusTextSB(LPCWSTR) override { return E_NOTIMPL; }
  IFACEMETHODIMP EnableModelessSB(BOOL) override { return E_NOTIMPL; }
  IFACEMETHODIMP TranslateAcceleratorSB(MSG*, WORD) override { return E_NOTIMPL; }
  IFACEMETHODIMP BrowseObject(PCUIDLIST_RELATIVE pidl, UINT flags) override;
  IFACEMETHODIMP GetViewStateStream(DWORD, IStream**) override { return E_NOTIMPL; }
  IFACEMETHODIMP GetControlWindow(UINT, HWND*) override { return E_NOTIMPL; }
  IFACEMETHODIMP SendControlMsg(UINT, UINT, WPARAM, LPARAM, LRESULT*) override { return E_NOTIMPL; }
  IFACEMETHODIMP QueryActiveShellView(IShellView**) override { return E_NOTIMPL; }
  IFACEMETHODIMP OnViewWindowActive(IShellView*) override { return E_NOTIMPL; }
  IFACEMETHODIMP SetToolbarItems(LPTBBUTTONSB, UINT, UINT) override { return E_NOTIMPL; }
  IFACEMETHODIMP QueryService(REFGUID, REFIID, void** ppv) override;

  const std::vector<BrowseCall>& Calls() const noexcept { return m_calls; }

 private:
  HWND m_frame;
  std::vector<BrowseCall> m_calls;
};

class CHostFrame final : public corvane::Window<CHostFrame> {
 public:
  static constexpr const wchar_t* kClassName = L"CorvaneNamespaceHostFrame";
  static std::span<const MessageEntry> MessageMap();
  HWND m_view = nullptr;

 private:
  LRESULT OnSize(UINT, WPARAM, LPARAM lParam, bool&);
};

class NamespaceHost {
 public:
  NamespaceHost() = default;
  NamespaceHost(const NamespaceHost&) = delete;
  NamespaceHost& operator=(const NamespaceHost&) = delete;
  ~NamespaceHost();

  // Loads the DLL (kept loaded until the host goes) and creates one folder of the class.
  HRESULT LoadFolder(const std::wstring& dllPath, const CLSID& clsid);
  // A frame whose client area is width x height at the screen's top-left, and the folder's view in it.
  HRESULT OpenView(int width, int height);
  // DestroyViewWindow, then the view and the frame go.
  void CloseView();

  IShellFolder* Folder() const noexcept { return m_folder.Get(); }
  IShellView* View() const noexcept { return m_view.Get(); }
  HWND Frame() const noexcept { return m_frame.m_hWnd; }
  HWND ViewWindow() const noexcept { return m_viewWindow; }
  const std::vector<BrowseCall>& BrowseCalls() const;

 private:
  corvane::unique_hmodule m_dll;
  Microsoft::WRL::ComPtr<IShellFolder> m_folder;
  Microsoft::WRL::ComPtr<IShellView> m_view;
  Microsoft::WRL::ComPtr<CFakeShellBrowser> m_browser;
  CHostFrame m_frame;
  HWND m_viewWindow = nullptr;
};

// Runs the thread's messages until the deadline; a WM_QUIT along the way is taken and ignored.
void PumpFor(DWORD milliseconds);

}  // namespace nshost
