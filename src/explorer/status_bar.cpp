#include "explorer/status_bar.h"

#include <shlobj.h>

#include "client/reg_util.h"
#include "log/logger.h"
#include "platform/handles.h"

namespace {

constexpr wchar_t kAdvancedKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Advanced";
constexpr wchar_t kShowStatusBar[] = L"ShowStatusBar";

}  // namespace

BOOL CStatusBar::Initialize(const Microsoft::WRL::ComPtr<IShellBrowser>& shellBrowser, HWND hwnd) {
  LOG_INFO(L"CStatusBar::Initialize", L"CStatusBar subclass statusbar... ");
  return SubclassWindow(shellBrowser, hwnd, nullptr);
}

bool CStatusBar::IsStatusBarShown() const {
  if (!regUtil::KeyExists(kAdvancedKey)) return false;
  if (!regUtil::ValueExists(kAdvancedKey, kShowStatusBar)) return false;
  return regUtil::ReadRegistryDword(kAdvancedKey, kShowStatusBar) != 0;
}

int CStatusBar::PartsCount() const noexcept {
  return static_cast<int>(::SendMessageW(m_hWnd, SB_GETPARTS, 0, 0));
}

void CStatusBar::ToggleStatusBar() {
  if (!m_bNeedToggle) return;
  m_bNeedToggle = false;
  if (PartsCount() > 1) return;
  ::PostMessageW(::GetParent(m_hWnd), WM_COMMAND, kToggleStatusBarCommand, 0);
}

void CStatusBar::ResetStatus() {
  if (!m_bNeedReset) return;
  if (PartsCount() > 1) return;
  LOG_INFO(L"CStatusBar::ResetStatus", L"CStatusBar::ResetStatus hack statusbar space for win 7");
  const HWND parent = ::GetParent(m_hWnd);
  RECT rc{};
  ::GetWindowRect(parent, &rc);
  const int cx = rc.right - rc.left;
  const int cy = rc.bottom - rc.top;
  // Windows 7 lays its status bar out again only when the parent's size really changes.
  ::SetWindowPos(parent, nullptr, 0, 0, cx + 1, cy, SWP_NOMOVE | SWP_NOZORDER);
  ::SetWindowPos(parent, nullptr, 0, 0, cx, cy, SWP_NOMOVE | SWP_NOZORDER);
  if (PartsCount() >= 2) m_bNeedReset = false;
}

bool CStatusBar::GetCurrentFolderFreeSpace(std::uint64_t& freeBytes) const {
  return GetCurrentFolderFreeSpace(m_spShellBrowser.Get(), freeBytes);
}

bool CStatusBar::GetCurrentFolderFreeSpace(IShellBrowser* shellBrowser, std::uint64_t& freeBytes) {
  if (shellBrowser == nullptr) return false;
  Microsoft::WRL::ComPtr<IShellView> view;
  if (FAILED(shellBrowser->QueryActiveShellView(&view)) || !view) return false;
  Microsoft::WRL::ComPtr<IFolderView> folderView;
  if (FAILED(view.As(&folderView))) return false;
  Microsoft::WRL::ComPtr<IPersistFolder2> folder;
  if (FAILED(folderView->GetFolder(IID_PPV_ARGS(&folder)))) return false;
  corvane::unique_pidl pidl;
  if (FAILED(folder->GetCurFolder(pidl.put()))) return false;
  wchar_t path[MAX_PATH] = {};
  if (!::SHGetPathFromIDListW(pidl.get(), path)) return false;
  ULARGE_INTEGER totalFree{};
  if (!::GetDiskFreeSpaceExW(path, nullptr, nullptr, &totalFree)) return false;
  freeBytes = totalFree.QuadPart;
  return true;
}

void CStatusBar::MovePosition(const RECT& rect) {
  ::SetWindowPos(m_hWnd, nullptr, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top,
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
}
