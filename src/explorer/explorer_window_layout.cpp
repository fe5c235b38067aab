// The controller's running part: the frame's messages, the once-a-second folder check on the timer
// thread, and the layout that puts the bar above the file list.
#include <shlobj.h>

#include "client/dpi_tool.h"
#include "client/launcher.h"
#include "client/process.h"
#include "client/registry.h"
#include "explorer/explorer_window.h"
#include "log/logger.h"
#include "platform/automation.h"

namespace {

int HandleNumber(HWND hwnd) noexcept { return static_cast<int>(reinterpret_cast<INT_PTR>(hwnd)); }

}  // namespace

LRESULT CExplorerWindow::OnFrameMessage(UINT message, WPARAM, LPARAM lParam, bool& handled) {
  switch (message) {
    case WM_BROWSE_OBJECT:
      handled = true;
      return OnBrowseObject(reinterpret_cast<PCIDLIST_ABSOLUTE>(lParam), 0) ? 1 : 0;
    case WM_DISPLAYCHANGE:
    case WM_MOVE:
      // Only noted: the next check starts the DPI tool once, however many moves came in between.
      m_bPosChanged = true;
      return 0;
    case WM_REFRESH_TITLE:
      handled = true;
      OnRefreshTitle();
      return 0;
    default:
      // WM_SETTINGCHANGE included: the frame only passes it on. The bar and its children read the
      // theme afresh at every paint, and their own theme handlers run if Explorer hands it down.
      return 0;
  }
}

void CExplorerWindow::OnRefreshTitle() {
  RefreshWindows();
  if (!m_bShowTitle) {
    LOG_INFO(L"CExplorerWindow::ExplorerSubclassProc", L"ExplorerWindow HWND = %d hide TitleWindow", HandleNumber(m_hExplorer));
    return;
  }
  if (!IsProcessRunning(L"Halvex.exe")) {
    cx::startCloudApp(L"show");
    LOG_INFO(L"CExplorerWindow::ExplorerSubclassProc", L"Halvex process not exits, call cx::startCloudApp");
  }
  LOG_INFO(L"CExplorerWindow::ExplorerSubclassProc", L"ExplorerWindow HWND = %d show TitleWindow", HandleNumber(m_hExplorer));
}

void CExplorerWindow::RefreshWindows() {
  if (m_hShellTab == nullptr) return;
  // Read as the layout has always read it; the status bar does not change the layout.
  static_cast<void>(m_statusBar.IsStatusBarShown());
  const HWND view = m_DuiViewWnd.GetHwnd();
  RECT rc{};
  ::GetWindowRect(view, &rc);
  ::MapWindowPoints(nullptr, m_hShellTab, reinterpret_cast<POINT*>(&rc), 2);
  // Neither moved nor sized: the view subclass turns the message into a layout pass and the view
  // keeps its place.
  WINDOWPOS wp{};
  wp.hwnd = view;
  wp.hwndInsertAfter = nullptr;
  wp.x = rc.left;
  wp.y = rc.top;
  wp.cx = rc.right - rc.left;
  wp.cy = rc.bottom - rc.top;
  wp.flags = SWP_NOSIZE | SWP_NOMOVE;
  ::SendMessageW(view, WM_WINDOWPOSCHANGING, 0, reinterpret_cast<LPARAM>(&wp));
  ::RedrawWindow(m_hShellTab, nullptr, nullptr, RDW_INVALIDATE | RDW_INTERNALPAINT | RDW_UPDATENOW);
  ::UpdateWindow(m_hShellTab);
  LOG_INFO(L"CExplorerWindow::RefreshWindows", L"RefreshWindows: WM_WINDOWPOSCHANGING sent to m_DuiViewWnd.");
}

void CExplorerWindow::OnDuiViewPosChanging(const RECT& rc) {
  if (rc.bottom - rc.top <= 0) return;
  const HWND bar = m_titleWindow.m_hWnd;
  const HWND list = m_DirectUiWnd.GetHwnd();
  RECT view = rc;
  if (m_bShowTitle) {
    RECT barRect = rc;
    barRect.bottom = rc.top + m_nBarHeight;
    view.top = barRect.bottom;
    ::SetParent(bar, m_DuiViewWnd.GetHwnd());
    ::ShowWindow(bar, SW_SHOW);
    m_titleWindow.MovePosition(barRect);
  } else {
    // Parked under the frame while hidden, so it outlives a view window Explorer replaces.
    ::SetParent(bar, m_hExplorer);
    ::ShowWindow(bar, SW_HIDE);
  }
  ::SetWindowPos(list, nullptr, view.left, view.top, view.right - view.left, view.bottom - view.top,
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
  ::RedrawWindow(m_hExplorer, nullptr, nullptr, RDW_INVALIDATE | RDW_INTERNALPAINT | RDW_UPDATENOW);
  ::PostMessageW(list, WM_SIZE, 0, MAKELPARAM(view.right - view.left, view.bottom - view.top));
}

// The timer thread's check. It touches no window: changes reach the window thread as posts.
void CExplorerWindow::CheckFolder() {
  // The window thread may be destroying the bar right now (a closing window stops this thread only
  // after the bar has gone), so the bar's existence is read through its atomic flag.
  if (!m_titleWindow.IsLive()) return;
  std::wstring syncPath;
  // Only the path decides; the reader's own result is not consulted.
  static_cast<void>(regUtil::checkReadyLoginAndOpenSync(syncPath));
  if (syncPath.empty()) {
    LOG_INFO(L"CExplorerWindow::CheckFolder", L"ExplorerWindow HWND = %d call checkReadyLoginAndOpenSync return false.",
             HandleNumber(m_hExplorer));
    if (m_bShowTitle) {
      m_bShowTitle = false;
      ::PostMessageW(m_hExplorer, WM_REFRESH_TITLE, 0, 0);
      LOG_INFO(L"CExplorerWindow::CheckFolder", L"ExplorerWindow HWND = %d hide TitleWindow", HandleNumber(m_hExplorer));
    }
  } else {
    std::wstring curPath;
    // A reference of this thread's own: the window thread may replace the member meanwhile.
    const Microsoft::WRL::ComPtr<IShellBrowser> shellBrowser = m_spShellBrowser;
    if (!GetCurrentFolderPath(shellBrowser, curPath)) {
      if (m_bShowTitle) {
        m_bShowTitle = false;
        ::PostMessageW(m_hExplorer, WM_REFRESH_TITLE, 0, 0);
        LOG_INFO(L"CExplorerWindow::CheckFolder", L"ExplorerWindow HWND = %d hide TitleWindow", HandleNumber(m_hExplorer));
      }
    } else {
      if (curPath != m_strCurrentPath) {
        LOG_INFO(L"CExplorerWindow::CheckFolder", L"ExplorerWindow HWND = %d call GetCurrentFolderPath = %s.",
                 HandleNumber(m_hExplorer), curPath.c_str());
        m_strCurrentPath = curPath;
      }
      if (curPath.back() != L'\\') curPath.push_back(L'\\');
      // Case-sensitive, and only the current path gains a backslash: the sync path is taken exactly
      // as the client publishes it.
      const bool show = curPath.size() >= syncPath.size() && curPath.compare(0, syncPath.size(), syncPath) == 0;
      if (show != m_bShowTitle) {
        m_bShowTitle = show;
        ::PostMessageW(m_hExplorer, WM_REFRESH_TITLE, 0, 0);
      }
    }
  }
  if (m_bPosChanged) {
    m_bPosChanged = false;
    cx::startDpiTool(m_hExplorer);
  }
}

bool CExplorerWindow::GetCurrentFolderPath(const Microsoft::WRL::ComPtr<IShellBrowser>& shellBrowser, std::wstring& path) {
  if (!shellBrowser) return false;
  Microsoft::WRL::ComPtr<IShellView> view;
  if (FAILED(shellBrowser->QueryActiveShellView(&view)) || !view) return false;
  Microsoft::WRL::ComPtr<IFolderView> folderView;
  if (FAILED(view.As(&folderView))) return false;
  Microsoft::WRL::ComPtr<IPersistFolder2> folder;
  if (FAILED(folderView->GetFolder(IID_PPV_ARGS(&folder))) || !folder) return false;
  corvane::unique_pidl pidl;
  if (FAILED(folder->GetCurFolder(pidl.put())) || !pidl) return false;
  wchar_t buffer[MAX_PATH] = {};
  if (!::SHGetPathFromIDListW(pidl.get(), buffer)) return false;
  path = buffer;
  return true;
}

bool CExplorerWindow::OnBrowseObject(PCIDLIST_ABSOLUTE pidl, UINT) {
  LOG_INFO(L"CExplorerWindow::OnBrowseObject", L"ExplorerWindow OnBrowseObject() invoked!");
  if (pidl == nullptr || !m_spWebBrowser2) {
    LOG_INFO(L"CExplorerWindow::OnBrowseObject", L"Invalid PIDL or m_spWebBrowser2 is NULL");
    return false;
  }
  wchar_t path[MAX_PATH] = {};
  if (!::SHGetPathFromIDListW(pidl, path)) {
    LOG_INFO(L"CExplorerWindow::OnBrowseObject", L"Failed to get path from PIDL");
    return false;
  }
  corvane::unique_variant url;
  VARIANT* slot = url.put();
  slot->vt = VT_BSTR;
  slot->bstrVal = ::SysAllocString(path);
  if (slot->bstrVal == nullptr) return false;
  corvane::unique_variant flags, targetFrame, postData, headers;
  const HRESULT hr = m_spWebBrowser2->Navigate2(slot, flags.put(), targetFrame.put(), postData.put(), headers.put());
  if (FAILED(hr)) {
    // The PIDL stays the sender's: only a navigation that went ahead takes it over.
    LOG_INFO(L"CExplorerWindow::OnBrowseObject", L"Navigate2 failed with HRESULT: 0x%08X", static_cast<unsigned>(hr));
    return false;
  }
  corvane::unique_pidl taken(const_cast<PIDLIST_ABSOLUTE>(pidl));
  LOG_INFO(L"CExplorerWindow::OnBrowseObject", L"Successfully navigated to path: %s", path);
  return true;
}
