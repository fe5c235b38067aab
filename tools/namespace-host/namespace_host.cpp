#include "namespace_host.h"

#include <shlobj.h>

namespace nshost {

IFACEMETHODIMP CFakeShellBrowser::GetWindow(HWND* phwnd) {
  if (phwnd == nullptr) return E_POINTER;
  *phwnd = m_frame;
  return S_OK;
}

IFACEMETHODIMP CFakeShellBrowser::BrowseObject(PCUIDLIST_RELATIVE pidl, UINT flags) {
  try {
    wchar_t path[MAX_PATH] = {};
    if (pidl == nullptr || !::SHGetPathFromIDListW(reinterpret_cast<PCIDLIST_ABSOLUTE>(pidl), path)) path[0] = L'\0';
    m_calls.push_back(BrowseCall{path, flags});
    return S_OK;
  } catch (...) {
    return E_FAIL;
  }
}

IFACEMETHODIMP CFakeShellBrowser::QueryService(REFGUID, REFIID, void** ppv) {
  if (ppv != nullptr) *ppv = nullptr;
  return E_NOINTERFACE;
}

std::span<const CHostFrame::MessageEntry> CHostFrame::MessageMap() {
  static constexpr MessageEntry map[] = {{WM_SIZE, &CHostFrame::OnSize}};
  return map;
}

LRESULT CHostFrame::OnSize(UINT, WPARAM, LPARAM lParam, bool&) {
  if (m_view != nullptr) ::MoveWindow(m_view, 0, 0, LOWORD(lParam), HIWORD(lParam), TRUE);
  return 0;
}

NamespaceHost::~NamespaceHost() {
  CloseView();
  m_folder.Reset();
}

HRESULT NamespaceHost::LoadFolder(const std::wstring& dllPath, const CLSID& clsid) {
  m_dll.reset(::LoadLibraryW(dllPath.c_str()));
  if (!m_dll) return HRESULT_FROM_WIN32(::GetLastError());
  using GetClassObject = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);
  const auto get = reinterpret_cast<GetClassObject>(
      reinterpret_cast<void*>(::GetProcAddress(m_dll.get(), "DllGetClassObject")));
  if (get == nullptr) return E_NOINTERFACE;
  Microsoft::WRL::ComPtr<IClassFactory> factory;
  CORVANE_RETURN_IF_FAILED(get(clsid, IID_PPV_ARGS(&factory)));
  return factory->CreateInstance(nullptr, IID_PPV_ARGS(&m_folder));
}

HRESULT NamespaceHost::OpenView(int width, int height) {
  if (!m_folder) return E_UNEXPECTED;
  RECT frame{0, 0, width, height};
  ::AdjustWindowRectEx(&frame, WS_POPUP, FALSE, 0);
  if (m_frame.Create(nullptr, &frame, L"Halvex同步盘", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN) == nullptr) {
    return corvane::HresultFromLastError();
  }
  m_browser = corvane::MakeObject<CFakeShellBrowser>(m_frame.m_hWnd);
  CORVANE_RETURN_IF_FAILED(m_folder->CreateViewObject(m_frame.m_hWnd, IID_PPV_ARGS(&m_view)));
  FOLDERSETTINGS settings{FVM_DETAILS, 0};
  RECT viewRect{0, 0, width, height};
  CORVANE_RETURN_IF_FAILED(m_view->CreateViewWindow(nullptr, &settings, m_browser.Get(), &viewRect, &m_viewWindow));
  m_frame.m_view = m_viewWindow;
  return S_OK;
}

void NamespaceHost::CloseView() {
  if (m_view) m_view->DestroyViewWindow();
  m_view.Reset();
  m_viewWindow = nullptr;
  m_frame.m_view = nullptr;
  m_frame.DestroyWindow();
  m_browser.Reset();
}

const std::vector<BrowseCall>& NamespaceHost::BrowseCalls() const {
  static const std::vector<BrowseCall> none;
  return m_browser ? m_browser->Calls() : none;
}

void PumpFor(DWORD milliseconds) {
  const ULONGLONG deadline = ::GetTickCount64() + milliseconds;
  for (;;) {
    MSG msg;
    while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
      if (msg.message == WM_QUIT) continue;
      ::TranslateMessage(&msg);
      ::DispatchMessageW(&msg);
    }
    const ULONGLONG now = ::GetTickCount64();
    if (now >= deadline) return;
    ::MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(deadline - now), QS_ALLINPUT);
  }
}

}  // namespace nshost
