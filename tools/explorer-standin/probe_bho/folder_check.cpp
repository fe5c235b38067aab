#include "folder_check.h"

#include <shlobj.h>
#include <wrl/client.h>

#include "on_worker.h"
#include "platform/handles.h"

namespace probe {

using Microsoft::WRL::ComPtr;

FolderReport CheckFolder(IShellBrowser* browser) {
  FolderReport report;
  if (browser == nullptr) return report;
  ComPtr<IShellView> view;
  report.hr = browser->QueryActiveShellView(view.GetAddressOf());
  if (FAILED(report.hr) || !view) return report;
  view->GetWindow(&report.viewWindow);
  ComPtr<IFolderView> folderView;
  report.hr = view.As(&folderView);
  if (FAILED(report.hr)) return report;
  ComPtr<IPersistFolder2> folder;
  report.hr = folderView->GetFolder(IID_PPV_ARGS(folder.GetAddressOf()));
  if (FAILED(report.hr) || !folder) return report;
  corvane::unique_pidl pidl;
  report.hr = folder->GetCurFolder(pidl.put());
  if (FAILED(report.hr) || !pidl) return report;
  report.havePidl = true;
  wchar_t path[MAX_PATH] = {};
  report.havePath = ::SHGetPathFromIDListW(pidl.get(), path) != FALSE;
  if (report.havePath) report.path = path;
  return report;
}

std::optional<FolderReport> CheckFolderOnWorker(IShellBrowser* browser, DWORD timeoutMs) {
  ComPtr<IShellBrowser> held(browser);
  return OnWorker(timeoutMs, [held] { return CheckFolder(held.Get()); });
}

std::optional<FolderReport> CheckFolderMarshalled(IShellBrowser* browser, DWORD timeoutMs, bool& sameObject) {
  sameObject = false;
  IStream* stream = nullptr;  // consumed by CoGetInterfaceAndReleaseStream on the worker
  if (FAILED(::CoMarshalInterThreadInterfaceInStream(IID_IShellBrowser, browser, &stream))) return std::nullopt;
  ComPtr<IUnknown> identity;
  browser->QueryInterface(IID_PPV_ARGS(identity.GetAddressOf()));
  struct Outcome {
    FolderReport report;
    bool same = false;
  };
  const auto outcome = OnWorker(timeoutMs, [stream, identity]() {
    Outcome result;
    const HRESULT init = ::CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    {
      ComPtr<IShellBrowser> unmarshalled;
      if (SUCCEEDED(::CoGetInterfaceAndReleaseStream(stream, IID_PPV_ARGS(unmarshalled.GetAddressOf())))) {
        ComPtr<IUnknown> otherIdentity;
        unmarshalled->QueryInterface(IID_PPV_ARGS(otherIdentity.GetAddressOf()));
        result.same = otherIdentity.Get() == identity.Get();
        result.report = CheckFolder(unmarshalled.Get());
      }
    }
    if (SUCCEEDED(init)) ::CoUninitialize();
    return result;
  });
  if (!outcome) return std::nullopt;
  sameObject = outcome->same;
  return outcome->report;
}

}  // namespace probe
