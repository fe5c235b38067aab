#pragma once
// The view of the namespace folder: a plain window that hosts the login prompt while the client is
// not ready, takes folders dropped on it for the client, and lets the prompt move the hosting
// Explorer window into the sync folder.
#include <windows.h>
#include <exdisp.h>
#include <oleidl.h>
#include <shobjidl.h>
#include <wrl/client.h>

#include <span>
#include <string>

#include "corvane_h.h"
#include "namespace/main_window.h"
#include "platform/com_object.h"
#include "platform/gdiplus_session.h"
#include "platform/handles.h"
#include "platform/type_lib_dispatch.h"
#include "platform/window.h"
#include "widgets/picture_store.h"

class CMyShellView : public corvane::ComObject<CMyShellView, IShellView, corvane::ComAlias<IOleWindow, IShellView>,
                                               IDropTarget, corvane::DualInterface<IMyShellView>,
                                               corvane::ComAlias<IDispatch, IMyShellView>>,
                     public corvane::Window<CMyShellView> {
 public:
  static constexpr const wchar_t* kClassName = L"CorvaneShellView";
  static UINT ClassStyle() noexcept { return CS_HREDRAW | CS_VREDRAW | CS_DBLCLKS; }
  static HBRUSH ClassBackground() noexcept { return reinterpret_cast<HBRUSH>(static_cast<INT_PTR>(COLOR_WINDOW + 1)); }
  static std::span<const MessageEntry> MessageMap();

  CMyShellView() = default;
  ~CMyShellView() override = default;

  // IOleWindow
  IFACEMETHODIMP GetWindow(HWND* phwnd) override;
  IFACEMETHODIMP ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }

  // IShellView
  IFACEMETHODIMP TranslateAccelerator(MSG*) override { return E_NOTIMPL; }
  IFACEMETHODIMP EnableModeless(BOOL) override { return E_NOTIMPL; }
  IFACEMETHODIMP UIActivate(UINT) override { return S_OK; }
  IFACEMETHODIMP Refresh() override { return S_OK; }
  IFACEMETHODIMP CreateViewWindow(IShellView* previous, LPCFOLDERSETTINGS settings, IShellBrowser* browser, RECT* rect,
                                  HWND* phwnd) override;
  IFACEMETHODIMP DestroyViewWindow() override;
  IFACEMETHODIMP GetCurrentInfo(LPFOLDERSETTINGS) override { return S_OK; }
  IFACEMETHODIMP AddPropertySheetPages(DWORD, LPFNSVADDPROPSHEETPAGE, LPARAM) override { return E_NOTIMPL; }
  IFACEMETHODIMP SaveViewState() override { return E_NOTIMPL; }
  IFACEMETHODIMP SelectItem(PCUITEMID_CHILD, SVSIF) override { return E_NOTIMPL; }
  IFACEMETHODIMP GetItemObject(UINT, REFIID, void** ppv) override;

  // IDropTarget
  IFACEMETHODIMP DragEnter(IDataObject* data, DWORD keyState, POINTL point, DWORD* effect) override;
  IFACEMETHODIMP DragOver(DWORD keyState, POINTL point, DWORD* effect) override;
  IFACEMETHODIMP DragLeave() override;
  IFACEMETHODIMP Drop(IDataObject* data, DWORD keyState, POINTL point, DWORD* effect) override;

  // For the prompt window: move the hosting Explorer window to a path.
  HRESULT BrowseTo(const std::wstring& path);
  // The same through the web browser; nothing calls it at present.
  HRESULT NavigateTo(const std::wstring& path);
  // Sends the folders on the clipboard to the client; not wired to any message (see OnPaste).
  bool processPaste();

  const CMainWindow& GetMainWindow() const noexcept { return m_mainWindow; }

 private:
  LRESULT OnCreate(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnSize(UINT, WPARAM, LPARAM lParam, bool&);
  LRESULT OnSetFocus(UINT, WPARAM, LPARAM, bool&) { return 0; }
  LRESULT OnPaste(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnKeyDown(UINT, WPARAM wParam, LPARAM, bool& handled);
  LRESULT OnDestroy(UINT, WPARAM, LPARAM, bool& handled);

  // The prompt draws with GDI+. Explorer's window controller has it running, a plain host may not:
  // the view holds its own start for as long as it lives (GDI+ counts nested starts).
  corvane::GdiplusSession m_gdiplus;
  // The prompt's pictures stay cached while a view lives; the last view or bar gives them back.
  imageutil::store::Use m_pictureUse;
  HWND m_hWndParent = nullptr;
  Microsoft::WRL::ComPtr<IShellBrowser> m_spShellBrowser;
  Microsoft::WRL::ComPtr<IWebBrowser2> m_spWebBrowser2;
  CMainWindow m_mainWindow;
  Microsoft::WRL::ComPtr<IDataObject> m_spDataObject;
  bool m_bAcceptDrop = false;
  corvane::scoped_drag_drop m_dropRegistration;
};
