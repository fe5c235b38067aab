#include "namespace/my_shell_view.h"

#include <shlobj.h>

#include <cstring>

#include "client/registry.h"
#include "log/logger.h"
#include "namespace/dropped_folders.h"
#include "platform/automation.h"
#include "platform/errors.h"

namespace {

// The only thing the view accepts: a file list in global memory.
FORMATETC DropFormat() noexcept { return FORMATETC{CF_HDROP, nullptr, DVASPECT_CONTENT, -1, TYMED_HGLOBAL}; }

DWORD DropEffect(bool accept, DWORD offered) noexcept { return accept ? (offered & DROPEFFECT_COPY) : DROPEFFECT_NONE; }

// The low bit is part of the prompt's style as the system has always created it.
constexpr DWORD kMainWindowStyle = WS_CHILD | WS_VISIBLE | 1;

}  // namespace

std::span<const CMyShellView::MessageEntry> CMyShellView::MessageMap() {
  static constexpr MessageEntry map[] = {
      {WM_CREATE, &CMyShellView::OnCreate},
      {WM_SIZE, &CMyShellView::OnSize},
      {WM_SETFOCUS, &CMyShellView::OnSetFocus},
      {WM_PASTE, &CMyShellView::OnPaste},
      {WM_KEYDOWN, &CMyShellView::OnKeyDown},
      {WM_DESTROY, &CMyShellView::OnDestroy},
  };
  return map;
}

IFACEMETHODIMP CMyShellView::GetWindow(HWND* phwnd) {
  if (phwnd == nullptr) return E_POINTER;
  *phwnd = m_hWnd;
  return S_OK;
}

IFACEMETHODIMP CMyShellView::CreateViewWindow(IShellView*, LPCFOLDERSETTINGS, IShellBrowser* browser, RECT* rect,
                                              HWND* phwnd) {
  return corvane::ComBoundary([&]() -> HRESULT {
    if (phwnd == nullptr) return E_POINTER;
    *phwnd = nullptr;
    m_spShellBrowser = browser;
    // The web browser serves only NavigateTo; a host without one still gets its view.
    m_spWebBrowser2.Reset();
    Microsoft::WRL::ComPtr<IServiceProvider> services;
    if (browser != nullptr && SUCCEEDED(browser->QueryInterface(IID_PPV_ARGS(&services)))) {
      services->QueryService(SID_SWebBrowserApp, IID_PPV_ARGS(&m_spWebBrowser2));
    }
    m_hWndParent = nullptr;
    if (browser != nullptr) browser->GetWindow(&m_hWndParent);
    if (Create(m_hWndParent, rect, nullptr, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS) == nullptr) {
      return E_FAIL;
    }
    *phwnd = m_hWnd;
    return S_OK;
  });
}

IFACEMETHODIMP CMyShellView::DestroyViewWindow() {
  return corvane::ComBoundary([&]() -> HRESULT {
    DestroyWindow();
    return S_OK;
  });
}

IFACEMETHODIMP CMyShellView::GetItemObject(UINT, REFIID, void** ppv) {
  if (ppv != nullptr) *ppv = nullptr;
  return E_NOTIMPL;
}

IFACEMETHODIMP CMyShellView::DragEnter(IDataObject* data, DWORD, POINTL, DWORD* effect) {
  return corvane::ComBoundary([&]() -> HRESULT {
    m_spDataObject = data;
    FORMATETC format = DropFormat();
    m_bAcceptDrop = data != nullptr && data->QueryGetData(&format) == S_OK;
    if (effect != nullptr) *effect = DropEffect(m_bAcceptDrop, *effect);
    return S_OK;
  });
}

IFACEMETHODIMP CMyShellView::DragOver(DWORD, POINTL, DWORD* effect) {
  if (effect != nullptr) *effect = DropEffect(m_bAcceptDrop, *effect);
  return S_OK;
}

IFACEMETHODIMP CMyShellView::DragLeave() {
  m_spDataObject.Reset();
  return S_OK;
}

IFACEMETHODIMP CMyShellView::Drop(IDataObject* data, DWORD, POINTL, DWORD* effect) {
  try {
    FORMATETC format = DropFormat();
    STGMEDIUM medium{};
    if (data != nullptr && SUCCEEDED(data->GetData(&format, &medium))) {
      const auto drop = static_cast<HDROP>(medium.hGlobal);
      try {
        if (regUtil::checkReadyLogin()) {
          if (const auto command = droppedfolders::SendFolders(droppedfolders::CollectFolders(drop))) {
            LOG_INFO(L"CMyShellView::Drop", L"call cx::exeCloudCommandLine = %s.", command->c_str());
          }
        }
      } catch (...) {
        // The drop handle is finished below all the same.
      }
      // DragFinish frees the medium's memory, as the system has always released it.
      ::DragFinish(drop);
    }
  } catch (...) {
    // Whatever happened, the source is told the copy was taken.
  }
  m_spDataObject.Reset();
  if (effect != nullptr) *effect = DROPEFFECT_COPY;
  return S_OK;
}

HRESULT CMyShellView::BrowseTo(const std::wstring& path) {
  corvane::unique_pidl pidl;
  const HRESULT parsed = ::SHParseDisplayName(path.c_str(), nullptr, pidl.put(), 0, nullptr);
  if (FAILED(parsed)) return parsed;
  if (!m_spShellBrowser) return S_FALSE;
  // The window showing the prompt is the one that leaves the folder, whatever the user's
  // open-in-new-window setting: same browser (1), and no other flag (relative, mode) set.
  return m_spShellBrowser->BrowseObject(pidl.get(), SBSP_SAMEBROWSER);
}

HRESULT CMyShellView::NavigateTo(const std::wstring& path) {
  corvane::unique_pidl pidl;
  const HRESULT parsed = ::SHParseDisplayName(path.c_str(), nullptr, pidl.put(), 0, nullptr);
  if (FAILED(parsed)) return parsed;
  if (!m_spWebBrowser2) return S_FALSE;
  const UINT size = ::ILGetSize(pidl.get());
  SAFEARRAY* bytes = ::SafeArrayCreateVector(VT_UI1, 0, size);
  CORVANE_RETURN_IF_NULL_ALLOC(bytes);
  corvane::unique_variant location;
  VARIANT* slot = location.put();
  slot->vt = VT_ARRAY | VT_UI1;
  slot->parray = bytes;
  void* data = nullptr;
  CORVANE_RETURN_IF_FAILED(::SafeArrayAccessData(bytes, &data));
  std::memcpy(data, pidl.get(), size);
  ::SafeArrayUnaccessData(bytes);
  VARIANT empty;
  ::VariantInit(&empty);
  return m_spWebBrowser2->Navigate2(slot, &empty, &empty, &empty, &empty);
}

bool CMyShellView::processPaste() {
  if (!::IsClipboardFormatAvailable(CF_HDROP)) return false;
  if (!::OpenClipboard(m_hWnd)) return false;
  // The two early returns below leave the clipboard open, as the routine always has; it is kept
  // as it stands while nothing calls it.
  if (!regUtil::checkReadyLogin()) return false;
  const auto drop = static_cast<HDROP>(::GetClipboardData(CF_HDROP));
  if (drop == nullptr) return false;
  const std::vector<std::wstring> folders = droppedfolders::CollectFolders(drop);
  ::CloseClipboard();
  if (const auto command = droppedfolders::SendFolders(folders)) {
    LOG_INFO(L"CMyShellView::processPaste", L"call cx::exeCloudCommandLine = %s.", command->c_str());
  }
  return true;
}

LRESULT CMyShellView::OnCreate(UINT, WPARAM, LPARAM, bool&) {
  // A window that cannot take drops still shows its prompt.
  m_dropRegistration.Register(m_hWnd, static_cast<IDropTarget*>(this));
  m_mainWindow.SetOwner(this);
  RECT promptRect{0, 0, 600, 400};
  m_mainWindow.Create(m_hWnd, &promptRect, L"Halvex同步盘", kMainWindowStyle);
  RECT client{};
  ::GetClientRect(m_hWnd, &client);
  m_mainWindow.SetSize(client.right - client.left, client.bottom - client.top);
  return 0;
}

LRESULT CMyShellView::OnSize(UINT, WPARAM, LPARAM lParam, bool&) {
  if (!m_mainWindow.IsWindow()) return 0;
  const int width = LOWORD(lParam);
  const int height = HIWORD(lParam);
  m_mainWindow.SetSize(width, height);
  std::wstring syncPath;
  if (!regUtil::checkReadyLoginAndOpenSync(syncPath)) {
    ::ShowWindow(m_mainWindow.m_hWnd, SW_SHOW);
    ::MoveWindow(m_mainWindow.m_hWnd, 0, 0, width, height, TRUE);
  } else {
    ::ShowWindow(m_mainWindow.m_hWnd, SW_HIDE);
  }
  return 0;
}

LRESULT CMyShellView::OnPaste(UINT, WPARAM, LPARAM, bool&) {
  // Paste stops here: processPaste exists, but the product has not switched it on.
  ::OutputDebugStringW(L"CMyShellView::OnPaste called\n");
  return 0;
}

LRESULT CMyShellView::OnKeyDown(UINT, WPARAM wParam, LPARAM, bool& handled) {
  // 'v' (118) is also VK_F7, so Ctrl+F7 posts a paste too; the check has always read both codes.
  if ((wParam == 'V' || wParam == 'v') && ::GetKeyState(VK_CONTROL) < 0) ::PostMessageW(m_hWnd, WM_PASTE, 0, 0);
  handled = false;
  return 0;
}

LRESULT CMyShellView::OnDestroy(UINT, WPARAM, LPARAM, bool& handled) {
  // Revoked while the window still exists: OLE's reference on the view goes with it.
  m_dropRegistration.reset();
  handled = false;
  return 0;
}
