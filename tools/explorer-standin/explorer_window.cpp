#include "explorer_window.h"

#include <utility>

#include "folder_location.h"
#include "standin_log.h"

namespace explorer_standin {

namespace {

constexpr size_t kRowLimit = 60;

}  // namespace

ExplorerWindow::~ExplorerWindow() {
  // A window whose opening failed half-way still gives its helper objects their SetSite(NULL).
  try {
    Close();
  } catch (...) {
  }
}

HRESULT ExplorerWindow::Open(const std::wstring& location, const RECT& rect, std::wstring& error) {
  corvane::unique_pidl first;
  const HRESULT parsed = ParseLocation(location, first);
  if (FAILED(parsed)) {
    error = L"cannot parse location (" + HexResult(parsed) + L")";
    return parsed;
  }
  if (!m_frame.CreateFrame(rect)) {
    error = L"cannot create the frame window";
    return E_FAIL;
  }
  m_handles.frame = m_frame.GetHwnd();
  m_handles.band = m_frame.Band().GetHwnd();
  m_handles.tab = m_frame.Tab().GetHwnd();
  m_handles.status = m_frame.Status();
  m_tasks = std::make_shared<TaskQueue>(m_handles.frame, CabinetFrame::kRunTasksMessage);

  // Navigations asked for on any thread are carried out here, in the order they were asked for.
  std::weak_ptr<TaskQueue> tasks = m_tasks;
  m_browser = corvane::MakeObject<CBrowser>(m_handles.frame, m_handles.status, [this, tasks](corvane::unique_pidl pidl) {
    const std::shared_ptr<TaskQueue> queue = tasks.lock();
    if (!queue) return false;
    auto target = std::make_shared<corvane::unique_pidl>(std::move(pidl));
    return queue->Post([this, target] { Navigate(std::move(*target)); });
  });

  Log(L"window " + std::to_wstring(m_id) + L": frame " + HandleText(m_handles.frame) + L", loading helper objects");
  m_helpers.Load(static_cast<IShellBrowser*>(m_browser.Get()));

  if (!CreateViewWindows()) {
    error = L"cannot create the view windows";
    return E_FAIL;
  }
  ::ShowWindow(m_handles.frame, SW_SHOWNORMAL);
  ::UpdateWindow(m_handles.frame);
  Navigate(std::move(first));
  return S_OK;
}

bool ExplorerWindow::CreateViewWindows() {
  const DWORD childStyle = WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS;
  // The view is made hidden and empty, then placed and shown by the tab in one SetWindowPos.
  if (m_duiView.Create(m_handles.tab, nullptr, nullptr, WS_CHILD | WS_CLIPCHILDREN | WS_CLIPSIBLINGS) == nullptr) return false;
  if (m_directUi.Create(m_duiView.GetHwnd(), nullptr, nullptr, childStyle) == nullptr) return false;
  if (m_notifySink.Create(m_directUi.GetHwnd(), nullptr, nullptr, childStyle) == nullptr) return false;
  if (m_defView.Create(m_notifySink.GetHwnd(), nullptr, nullptr, childStyle) == nullptr) return false;
  if (m_items.Create(m_defView.GetHwnd(), nullptr, nullptr, childStyle) == nullptr) return false;
  m_handles.duiView = m_duiView.GetHwnd();
  m_handles.directUi = m_directUi.GetHwnd();
  m_handles.notifySink = m_notifySink.GetHwnd();
  m_handles.defView = m_defView.GetHwnd();
  m_handles.items = m_items.GetHwnd();
  m_duiView.SetList(m_handles.directUi);
  m_directUi.SetChild(m_handles.notifySink);
  m_notifySink.SetChild(m_handles.defView);
  m_defView.SetChild(m_handles.items);
  m_frame.Tab().SetView(m_handles.duiView);
  return true;
}

HRESULT ExplorerWindow::Navigate(const std::wstring& location) {
  if (m_closing) return E_FAIL;
  corvane::unique_pidl pidl;
  const HRESULT hr = ParseLocation(location, pidl);
  if (FAILED(hr)) {
    Log(L"window " + std::to_wstring(m_id) + L": cannot navigate to \"" + location + L"\": " + HexResult(hr));
    return hr;
  }
  Navigate(std::move(pidl));
  return S_OK;
}

void ExplorerWindow::Navigate(corvane::unique_pidl pidl) {
  if (m_closing || !pidl) return;
  const std::wstring url = ParsingName(pidl.get());
  const std::wstring display = DisplayName(pidl.get());
  // Explorer's address shows a path, or the name of a virtual folder ("This PC"), never "::{…}".
  const std::wstring path = FileSystemPath(pidl.get());
  const std::wstring address = path.empty() ? display : path;
  std::vector<std::wstring> rows = SampleEntries(pidl.get(), kRowLimit);
  const size_t count = rows.size();

  // The new view is in place before anyone hears of the navigation.
  m_browser->SetView(corvane::MakeObject<CShellView>(std::move(pidl), m_handles.defView));
  ::SetWindowTextW(m_handles.frame, display.c_str());
  m_frame.Band().SetAddress(address);
  m_items.SetContent(address, std::move(rows));
  m_frame.SetStatus(std::to_wstring(count) + (count == 1 ? L" item" : L" items"), address);
  Log(L"window " + std::to_wstring(m_id) + L": navigated to " + url);
  m_browser->FireNavigateComplete2(url);
}

void ExplorerWindow::Close() {
  if (m_closing) return;
  m_closing = true;
  Log(L"window " + std::to_wstring(m_id) + L": closing");
  if (m_browser) m_browser->FireOnQuit();
  m_helpers.Unload();
  if (m_browser) m_browser->Shutdown();
  if (m_tasks) m_tasks->Close();
  if (m_frame.IsWindow()) m_frame.DestroyWindow();
}

std::vector<HRESULT> ExplorerWindow::SiteHelpersAgain(bool withSite) {
  if (m_closing || !m_browser) return {};
  return m_helpers.SiteAgain(withSite ? static_cast<IShellBrowser*>(m_browser.Get()) : nullptr);
}

std::wstring ExplorerWindow::CurrentFolder() {
  const Microsoft::WRL::ComPtr<CShellView> view = m_browser ? m_browser->View() : nullptr;
  return view ? ParsingName(view->Pidl()) : std::wstring();
}

void ExplorerWindow::OnTasksPending() {
  if (m_tasks) m_tasks->RunPending();
}

}  // namespace explorer_standin
