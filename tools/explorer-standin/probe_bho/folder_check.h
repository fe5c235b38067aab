#pragma once
// The add-in's way to the folder a window shows: IShellBrowser::QueryActiveShellView → IFolderView
// → GetFolder(IPersistFolder2) → GetCurFolder → SHGetPathFromIDListW, tried on the window thread,
// on a worker thread holding the same pointer (as the add-in's once-a-second check does), and on a
// worker in another apartment that got the pointer by marshalling.
#include <windows.h>
#include <shobjidl.h>

#include <optional>
#include <string>

namespace probe {

struct FolderReport {
  HRESULT hr = E_FAIL;       // the first failing step, or S_OK
  bool havePidl = false;     // GetCurFolder gave a PIDL
  bool havePath = false;     // SHGetPathFromIDListW succeeded
  std::wstring path;
  HWND viewWindow = nullptr;  // IShellView::GetWindow
};

FolderReport CheckFolder(IShellBrowser* browser);

// The caller's thread waits without pumping messages, so a call that needed the window thread
// would not finish: nullopt after the timeout.
std::optional<FolderReport> CheckFolderOnWorker(IShellBrowser* browser, DWORD timeoutMs);

// sameObject: the worker's unmarshalled pointer is the browser itself, not a proxy.
std::optional<FolderReport> CheckFolderMarshalled(IShellBrowser* browser, DWORD timeoutMs, bool& sameObject);

}  // namespace probe
