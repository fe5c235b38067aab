#pragma once
// One Explorer window, living on its own thread (window_thread.h), built in Explorer's order:
// the frame with its band, tab and status bar; the browser helper objects, sited; then the view
// windows, so that a helper object's thread-local creation hook sees them made; then the first
// folder, announced with NavigateComplete2. Closing fires OnQuit, takes the site away from the
// helper objects and releases them, then destroys the windows, which ends the thread's loop.
#include <windows.h>
#include <wrl/client.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "browser.h"
#include "frame_windows.h"
#include "helper_objects.h"
#include "platform/handles.h"
#include "task_queue.h"
#include "view_windows.h"

namespace explorer_standin {

struct WindowHandles {
  HWND frame = nullptr;
  HWND band = nullptr;
  HWND tab = nullptr;
  HWND duiView = nullptr;
  HWND directUi = nullptr;
  HWND notifySink = nullptr;
  HWND defView = nullptr;
  HWND items = nullptr;
  HWND status = nullptr;
};

class ExplorerWindow final : private FrameEvents {
 public:
  explicit ExplorerWindow(int id) noexcept : m_id(id), m_frame(*this) {}
  ExplorerWindow(const ExplorerWindow&) = delete;
  ExplorerWindow& operator=(const ExplorerWindow&) = delete;
  ~ExplorerWindow();

  // All of these run on the window thread.
  HRESULT Open(const std::wstring& location, const RECT& rect, std::wstring& error);
  HRESULT Navigate(const std::wstring& location);
  void Navigate(corvane::unique_pidl pidl);
  void Close();
  // The helper objects' results of a second SetSite with this window's browser, or with NULL
  // (the site taken away while the window stays open, with no OnQuit before it).
  std::vector<HRESULT> SiteHelpersAgain(bool withSite = true);

  std::wstring CurrentFolder();
  const WindowHandles& Handles() const noexcept { return m_handles; }
  std::shared_ptr<TaskQueue> Tasks() const noexcept { return m_tasks; }

 private:
  void OnCloseRequested() override { Close(); }
  void OnTasksPending() override;
  bool CreateViewWindows();

  const int m_id;
  CabinetFrame m_frame;
  DuiViewWindow m_duiView;
  DirectUiWindow m_directUi;
  CtrlNotifySinkWindow m_notifySink;
  DefViewWindow m_defView;
  DirectUiWindow m_items;
  WindowHandles m_handles;
  std::shared_ptr<TaskQueue> m_tasks;
  Microsoft::WRL::ComPtr<CBrowser> m_browser;
  HelperObjects m_helpers;
  bool m_closing = false;
};

}  // namespace explorer_standin
