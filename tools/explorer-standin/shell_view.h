#pragma once
// The active view of one navigation and the folder it shows. Explorer makes a new view for every
// navigation; so does the stand-in. Both objects are immutable once made, which is what makes them
// safe to call from any thread (the add-in's folder check runs on a worker thread).
#include <windows.h>
#include <shobjidl.h>
#include <wrl/client.h>

#include "free_threaded.h"
#include "platform/com_object.h"
#include "platform/handles.h"

namespace explorer_standin {

// What IFolderView::GetFolder hands out: IPersistFolder2 with the absolute PIDL of the folder shown.
class CShownFolder final
    : public corvane::ComObject<CShownFolder, IPersistFolder2, corvane::ComAlias<IPersistFolder, IPersistFolder2>,
                                corvane::ComAlias<IPersist, IPersistFolder2>> {
 public:
  explicit CShownFolder(corvane::unique_pidl pidl) noexcept;

  IFACEMETHODIMP QueryInterface(REFIID riid, void** ppv) override;
  IFACEMETHODIMP GetClassID(CLSID* clsid) override;
  IFACEMETHODIMP Initialize(PCIDLIST_ABSOLUTE pidl) override;
  IFACEMETHODIMP GetCurFolder(PIDLIST_ABSOLUTE* pidl) override;

 private:
  const corvane::unique_pidl m_pidl;
  FreeThreadedMarshaler m_marshaler;
};

class CShellView final
    : public corvane::ComObject<CShellView, IShellView, IFolderView, corvane::ComAlias<IOleWindow, IShellView>> {
 public:
  // window: the SHELLDLL_DefView window showing the items.
  CShellView(corvane::unique_pidl pidl, HWND window);

  PCIDLIST_ABSOLUTE Pidl() const noexcept { return m_pidl.get(); }

  IFACEMETHODIMP QueryInterface(REFIID riid, void** ppv) override;

  // IOleWindow
  IFACEMETHODIMP GetWindow(HWND* window) override;
  IFACEMETHODIMP ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }

  // IShellView: the stand-in makes its own view windows, so the window-making methods are not offered.
  IFACEMETHODIMP TranslateAccelerator(MSG*) override { return S_FALSE; }
  IFACEMETHODIMP EnableModeless(BOOL) override { return E_NOTIMPL; }
  IFACEMETHODIMP UIActivate(UINT) override { return S_OK; }
  IFACEMETHODIMP Refresh() override { return S_OK; }
  IFACEMETHODIMP CreateViewWindow(IShellView*, LPCFOLDERSETTINGS, IShellBrowser*, RECT*, HWND* window) override;
  IFACEMETHODIMP DestroyViewWindow() override { return E_NOTIMPL; }
  IFACEMETHODIMP GetCurrentInfo(LPFOLDERSETTINGS) override { return E_NOTIMPL; }
  IFACEMETHODIMP AddPropertySheetPages(DWORD, LPFNSVADDPROPSHEETPAGE, LPARAM) override { return E_NOTIMPL; }
  IFACEMETHODIMP SaveViewState() override { return E_NOTIMPL; }
  IFACEMETHODIMP SelectItem(PCUITEMID_CHILD, SVSIF) override { return E_NOTIMPL; }
  IFACEMETHODIMP GetItemObject(UINT, REFIID, void** ppv) override;

  // IFolderView: only the folder is offered.
  IFACEMETHODIMP GetCurrentViewMode(UINT*) override { return E_NOTIMPL; }
  IFACEMETHODIMP SetCurrentViewMode(UINT) override { return E_NOTIMPL; }
  IFACEMETHODIMP GetFolder(REFIID riid, void** ppv) override;
  IFACEMETHODIMP Item(int, PITEMID_CHILD*) override { return E_NOTIMPL; }
  IFACEMETHODIMP ItemCount(UINT, int*) override { return E_NOTIMPL; }
  IFACEMETHODIMP Items(UINT, REFIID, void** ppv) override;
  IFACEMETHODIMP GetSelectionMarkedItem(int*) override { return E_NOTIMPL; }
  IFACEMETHODIMP GetFocusedItem(int*) override { return E_NOTIMPL; }
  IFACEMETHODIMP GetItemPosition(PCUITEMID_CHILD, POINT*) override { return E_NOTIMPL; }
  IFACEMETHODIMP GetSpacing(POINT*) override { return E_NOTIMPL; }
  IFACEMETHODIMP GetDefaultSpacing(POINT*) override { return E_NOTIMPL; }
  IFACEMETHODIMP GetAutoArrange() override { return E_NOTIMPL; }
  IFACEMETHODIMP SelectItem(int, DWORD) override { return E_NOTIMPL; }
  IFACEMETHODIMP SelectAndPositionItems(UINT, PCUITEMID_CHILD_ARRAY, POINT*, DWORD) override { return E_NOTIMPL; }

 private:
  const corvane::unique_pidl m_pidl;
  const HWND m_window;
  Microsoft::WRL::ComPtr<CShownFolder> m_folder;
  FreeThreadedMarshaler m_marshaler;
};

}  // namespace explorer_standin
