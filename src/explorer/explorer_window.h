#pragma once
// The controller of one Explorer window: finds Explorer's inner windows as they are made, checks
// once a second whether the window shows the client's sync folder, and shows the bar at the top of
// the file view with the file list moved down, or hides it.
#include <windows.h>
#include <exdisp.h>
#include <shobjidl.h>
#include <wrl/client.h>

#include <atomic>
#include <string>

#include "bar/bar_owner.h"
#include "bar/title_window.h"
#include "explorer/direct_ui_window.h"
#include "explorer/dui_view_window.h"
#include "explorer/frame_subclass.h"
#include "explorer/status_bar.h"
#include "explorer/timer_thread.h"
#include "platform/handles.h"

// Sent to the Explorer frame.
inline constexpr UINT WM_BROWSE_OBJECT = WM_USER + 218;  // lParam: absolute PIDL, the receiver's on success
inline constexpr UINT WM_REFRESH_TITLE = WM_USER + 219;  // apply the show flag to the layout

class CExplorerWindow : public IBarOwner {
 public:
  static constexpr UINT_PTR kFrameSubclassId = 0x20190803;
  static constexpr int kDefaultBarHeight = 40;

  CExplorerWindow();
  CExplorerWindow(const CExplorerWindow&) = delete;
  CExplorerWindow& operator=(const CExplorerWindow&) = delete;
  virtual ~CExplorerWindow();

  bool OnExplorerAttach(IWebBrowser2* webBrowser, IShellBrowser* shellBrowser);
  void OnExplorerDetach();

  bool InstallExplorerHook();
  void UninstallExplorerHook();
  bool SubclassDuiView(HWND hwnd);
  void SubclassDirectUI(HWND hwnd);
  bool SubclassStatusBar();

  static LRESULT CALLBACK HookExplorerProc(int code, WPARAM wParam, LPARAM lParam) noexcept;
  // The frame subclass's messages (id kFrameSubclassId).
  LRESULT OnFrameMessage(UINT message, WPARAM wParam, LPARAM lParam, bool& handled);

  bool OnBrowseObject(PCIDLIST_ABSOLUTE pidl, UINT flags);
  void RefreshWindows();
  void OnDuiViewPosChanging(const RECT& rc);
  static bool GetCurrentFolderPath(const Microsoft::WRL::ComPtr<IShellBrowser>& shellBrowser, std::wstring& path);
  static HWND FindChildWindow(HWND parent, const wchar_t* className, const wchar_t* windowText);

  // IBarOwner
  int GetBarHeight() const override { return m_nBarHeight; }
  void SetBarHeight(int height) override;
  void GetIconSize(int& width, int& height) const override;
  void SetIconSize(int width, int height) override;
  HWND GetExplorerHwnd() const override { return m_hExplorer; }

  // What the window's parts are; tests and the helper object look, nothing else changes them.
  bool IsShowTitle() const noexcept { return m_bShowTitle; }
  const CTitleWindow& GetTitleWindow() const noexcept { return m_titleWindow; }

 private:
  void CheckFolder();
  void OnRefreshTitle();

  // GDI+ for the bar's pictures, started into the one process-wide token. Declared first so that it
  // shuts down after every member that may still hold a GDI+ object is gone.
  struct ProcessGdiplus {
    ProcessGdiplus() noexcept;
    ~ProcessGdiplus();
  };

  ProcessGdiplus m_gdiplus;
  // Pictures rendered for this window's bar are cached until the process's last window is gone.
  imageutil::store::Use m_pictureUse;
  TimerThread m_timer;
  // Written by the timer thread and read on the window thread; atomic so the unlocked hand-over
  // is still well defined.
  std::atomic<bool> m_bShowTitle{false};
  std::wstring m_strCurrentPath;
  CTitleWindow m_titleWindow;
  CDuiViewWindow m_DuiViewWnd;
  CDirectUiWindow m_DirectUiWnd;
  CStatusBar m_statusBar;
  int m_nBarHeight = kDefaultBarHeight;
  int m_nIconWidth = 0;
  int m_nIconHeight = 0;
  std::atomic<bool> m_bPosChanged{false};
  HWND m_hExplorer = nullptr;
  const UINT_PTR m_uSubclassId = kFrameSubclassId;
  CExplorerFrame m_frame{kFrameSubclassId};
  HWND m_hShellTab = nullptr;
  Microsoft::WRL::ComPtr<IWebBrowser2> m_spWebBrowser2;
  Microsoft::WRL::ComPtr<IShellBrowser> m_spShellBrowser;
  corvane::unique_hhook m_hHook;
};

// The most recently constructed controller of the process. The CBT hook receives no context and
// always works on this one, whichever window's thread raised it.
extern CExplorerWindow* g_pExplorerWindow;
