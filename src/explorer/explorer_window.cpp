#include "explorer/explorer_window.h"

#include "client/dpi_tool.h"
#include "log/logger.h"
#include "platform/errors.h"
#include "platform/module_path.h"
#include "platform/gdiplus_headers.h"
#include "widgets/image_helpers.h"

CExplorerWindow* g_pExplorerWindow = nullptr;

namespace {

// One token for the process: each controller starts GDI+ into it and shuts it down with whatever it
// holds then, so a later window's start overwrites an earlier one's token.
ULONG_PTR g_gdiplusToken = 0;

constexpr wchar_t kDuiViewClass[] = L"DUIViewWndClassName";
constexpr wchar_t kDirectUiClass[] = L"DirectUIHWND";

struct FindChildContext {
  const wchar_t* className;
  const wchar_t* windowText;
  HWND found;
};

BOOL CALLBACK FindChildProc(HWND hwnd, LPARAM lParam) noexcept {
  auto* context = reinterpret_cast<FindChildContext*>(lParam);
  wchar_t className[256] = {};
  ::GetClassNameW(hwnd, className, 256);
  if (::lstrcmpiW(className, context->className) != 0) return TRUE;
  if (context->windowText != nullptr) {
    wchar_t text[256] = {};
    ::GetWindowTextW(hwnd, text, 256);
    if (::lstrcmpiW(text, context->windowText) != 0) return TRUE;
  }
  context->found = hwnd;
  return FALSE;
}

}  // namespace

CExplorerWindow::ProcessGdiplus::ProcessGdiplus() noexcept {
  Gdiplus::GdiplusStartupInput input;
  Gdiplus::GdiplusStartup(&g_gdiplusToken, &input, nullptr);
}

CExplorerWindow::ProcessGdiplus::~ProcessGdiplus() { Gdiplus::GdiplusShutdown(g_gdiplusToken); }

CExplorerWindow::CExplorerWindow() {
  // Never cleared, not even by the destructor: the hook works on the newest controller only.
  g_pExplorerWindow = this;
}

CExplorerWindow::~CExplorerWindow() {
  // Detach stops the timer; a controller destroyed without one must not leave a check running on it.
  m_timer.Stop();
}

bool CExplorerWindow::OnExplorerAttach(IWebBrowser2* webBrowser, IShellBrowser* shellBrowser) {
  LOG_INFO(L"CExplorerWindow::OnExplorerAttach", L"ExplorerWindow OnExplorerAttach() invoked!");
  m_spWebBrowser2 = webBrowser;
  m_spShellBrowser = shellBrowser;
  m_hExplorer = nullptr;

  // A failing step returns with what was done left in place; SetSite(NULL) detaches it all.
  SHANDLE_PTR frame = 0;
  if (!m_spWebBrowser2 || m_spWebBrowser2->get_HWND(&frame) != S_OK) return false;
  m_hExplorer = reinterpret_cast<HWND>(frame);
  if (!InstallExplorerHook()) return false;
  if (FindChildWindow(m_hExplorer, L"WorkerW", nullptr) == nullptr) return false;
  m_hShellTab = FindChildWindow(m_hExplorer, L"ShellTabWindowClass", nullptr);
  if (m_hShellTab == nullptr) return false;
  SubclassStatusBar();  // a window without a status bar still gets the bar
  if (!m_frame.Subclass(m_hExplorer, this)) return false;

  UINT width = 0, height = 0;
  imageutil::GetImageSize(corvane::ThisModuleFolder() + L"CorvaneSkin\\detection.png", width, height);
  SetIconSize(static_cast<int>(width), static_cast<int>(height));
  m_nBarHeight = static_cast<int>(static_cast<double>(height) * 1.6);

  cx::startDpiTool(m_hExplorer);

  m_timer.SetCallback([this] { CheckFolder(); });
  m_timer.SetInterval(1000);
  m_timer.Start();
  return true;
}

void CExplorerWindow::OnExplorerDetach() {
  // The attach text, as the detach has always logged it.
  LOG_INFO(L"CExplorerWindow::OnExplorerDetach", L"ExplorerWindow OnExplorerAttach() invoked!");
  UninstallExplorerHook();
  // Destroys the bar window and lets go of the browser the bar was given.
  m_titleWindow.Uninitialize();
  m_DuiViewWnd.UnsubclassWindow();
  m_DirectUiWnd.UnsubclassWindow();
  m_statusBar.Uninitialize();
  m_frame.Unsubclass();
  // Joined: a running check ends before the interfaces it uses are released.
  m_timer.Stop();
  m_spShellBrowser.Reset();
  m_spWebBrowser2.Reset();
  m_hExplorer = nullptr;
}

bool CExplorerWindow::InstallExplorerHook() {
  if (!m_hHook) {
    LOG_INFO(L"CExplorerWindow::InstallExplorerHook", L"ExplorerWindow InstallExplorerHook() set explorer WH_CBT hook!");
    m_hHook.reset(::SetWindowsHookExW(WH_CBT, &CExplorerWindow::HookExplorerProc, nullptr, ::GetCurrentThreadId()));
  }
  return static_cast<bool>(m_hHook);
}

void CExplorerWindow::UninstallExplorerHook() {
  if (!m_hHook) return;
  LOG_INFO(L"CExplorerWindow::UninstallExplorerHook",
           L"ExplorerWindow UninstallExplorerHook() remove explorer WH_CBT hook!");
  m_hHook.reset();
}

LRESULT CALLBACK CExplorerWindow::HookExplorerProc(int code, WPARAM wParam, LPARAM lParam) noexcept {
  corvane::Barrier(0, [&] {
    if (code != HCBT_CREATEWND) return 0;
    const auto* create = reinterpret_cast<const CBT_CREATEWNDW*>(lParam);
    const CREATESTRUCTW* cs = create != nullptr ? create->lpcs : nullptr;
    // An atom in place of the class name is not looked at.
    if (cs == nullptr || reinterpret_cast<ULONG_PTR>(cs->lpszClass) <= 0xFFFF) return 0;
    const HWND hwnd = reinterpret_cast<HWND>(wParam);
    CExplorerWindow* controller = g_pExplorerWindow;
    if (controller == nullptr) return 0;
    if (::lstrcmpiW(cs->lpszClass, kDuiViewClass) == 0) {
      LOG_INFO(L"CExplorerWindow::HookExplorerProc", L"ExplorerWindow treeview DUIViewWndClassName create hooked!");
      controller->SubclassDuiView(hwnd);
    } else if (::lstrcmpiW(cs->lpszClass, kDirectUiClass) == 0) {
      wchar_t parentClass[256] = {};
      ::GetClassNameW(cs->hwndParent, parentClass, 256);
      // Only the file list right under the view; the lists deeper inside are Explorer's own.
      if (::lstrcmpW(parentClass, kDuiViewClass) == 0) {
        LOG_INFO(L"CExplorerWindow::HookExplorerProc", L"ExplorerWindow DirectUIHWND windows create hooked!");
        controller->SubclassDirectUI(hwnd);
      }
    }
    return 0;
  });
  return ::CallNextHookEx(nullptr, code, wParam, lParam);
}

bool CExplorerWindow::SubclassDuiView(HWND hwnd) {
  LOG_INFO(L"CExplorerWindow::SubclassDuiView", L"ExplorerWindow Subclass DuiView...");
  if (!m_titleWindow.IsWindow()) {
    if (!m_titleWindow.Initialize(m_spShellBrowser.Get(), this, hwnd)) return false;
    cx::startDpiTool(m_hExplorer);
    // Both the bar and its right group take up the current scaling.
    ::PostMessageW(m_titleWindow.m_hWnd, WM_DISPLAYCHANGE, 0, 0);
    ::PostMessageW(m_titleWindow.GetRightHwnd(), WM_DISPLAYCHANGE, 0, 0);
  }
  if (m_DuiViewWnd.GetHwnd() != nullptr) return true;
  return m_DuiViewWnd.SubclassWindow(m_spShellBrowser, hwnd, this) != FALSE;
}

void CExplorerWindow::SubclassDirectUI(HWND hwnd) {
  LOG_INFO(L"CExplorerWindow::SubclassDirectUI", L"ExplorerWindow Subclass DirectUI...");
  m_DirectUiWnd.SubclassWindow(m_spShellBrowser, hwnd, this);
}

bool CExplorerWindow::SubclassStatusBar() {
  LOG_INFO(L"CExplorerWindow::SubclassStatusBar", L"ExplorerWindow Subclass StatusBar...");
  if (!m_spShellBrowser) return false;
  HWND status = nullptr;
  if (FAILED(m_spShellBrowser->GetControlWindow(FCW_STATUS, &status))) return false;
  return m_statusBar.Initialize(m_spShellBrowser, status) != FALSE;
}

HWND CExplorerWindow::FindChildWindow(HWND parent, const wchar_t* className, const wchar_t* windowText) {
  FindChildContext context{className, windowText, nullptr};
  ::EnumChildWindows(parent, &FindChildProc, reinterpret_cast<LPARAM>(&context));
  return context.found;
}

void CExplorerWindow::SetBarHeight(int height) {
  m_nBarHeight = height;
  if (m_hExplorer != nullptr) ::PostMessageW(m_hExplorer, WM_REFRESH_TITLE, 0, 0);
}

void CExplorerWindow::GetIconSize(int& width, int& height) const {
  width = m_nIconWidth;
  height = m_nIconHeight;
}

void CExplorerWindow::SetIconSize(int width, int height) {
  m_nIconWidth = width;
  m_nIconHeight = height;
}
