// shell-nav: a small driver for Wine's explorer.exe (class "ExplorerWClass").
//
//   shell-nav navigate <parsing path> [timeout ms]
//       waits for an Explorer window, types the path into its address box and presses Enter, and
//       waits for the window's folder view to change.
//   shell-nav resize <width> <height>
//       moves the Explorer window to the top-left corner at that size.
//   shell-nav close [timeout ms]
//       asks every Explorer window to close and waits until none is left.
//   shell-nav tree [timeout ms]
//       waits for an Explorer window and prints its descendants, one per line in UTF-8:
//       <depth>\t<class>\t<visible 0|1>\t<left,top,right,bottom in screen pixels>\t<text>
//
// Exit codes: 0 done, 1 bad usage, 4 no Explorer window, no address box or no new view within the
// timeout.
#include <windows.h>

#include <cstdio>
#include <algorithm>
#include <cwchar>
#include <string>

namespace {

constexpr const wchar_t* kExplorerClass = L"ExplorerWClass";

void Print(const std::wstring& line) {
  const std::wstring withEnd = line + L"\n";
  const int size = ::WideCharToMultiByte(CP_UTF8, 0, withEnd.data(), static_cast<int>(withEnd.size()), nullptr, 0,
                                         nullptr, nullptr);
  if (size <= 0) return;
  std::string out(static_cast<size_t>(size), '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, withEnd.data(), static_cast<int>(withEnd.size()), out.data(), size, nullptr,
                        nullptr);
  DWORD written = 0;
  ::WriteFile(::GetStdHandle(STD_OUTPUT_HANDLE), out.data(), static_cast<DWORD>(out.size()), &written, nullptr);
}

HWND WaitForWindow(const wchar_t* className, HWND parent, DWORD timeoutMs) {
  const ULONGLONG end = ::GetTickCount64() + timeoutMs;
  for (;;) {
    HWND found = parent == nullptr ? ::FindWindowW(className, nullptr) : ::FindWindowExW(parent, nullptr, className, nullptr);
    if (found != nullptr) return found;
    if (::GetTickCount64() >= end) return nullptr;
    ::Sleep(50);
  }
}

// The address box's edit: ComboBoxEx32 → ComboBox → Edit, somewhere below the Explorer window.
HWND FindAddressEdit(HWND explorer) {
  struct Search {
    HWND edit = nullptr;
  } search;
  ::EnumChildWindows(
      explorer,
      [](HWND child, LPARAM param) -> BOOL {
        wchar_t name[64] = {};
        ::GetClassNameW(child, name, 64);
        if (std::wcscmp(name, L"ComboBoxEx32") != 0) return TRUE;
        HWND combo = ::FindWindowExW(child, nullptr, L"ComboBox", nullptr);
        HWND edit = combo != nullptr ? ::FindWindowExW(combo, nullptr, L"Edit", nullptr) : nullptr;
        if (edit == nullptr) return TRUE;
        reinterpret_cast<Search*>(param)->edit = edit;
        return FALSE;
      },
      reinterpret_cast<LPARAM>(&search));
  return search.edit;
}

// The window's current folder view (the browser control's first child), or null before the first.
HWND CurrentView(HWND explorer) {
  HWND browser = nullptr;
  ::EnumChildWindows(
      explorer,
      [](HWND child, LPARAM param) -> BOOL {
        wchar_t name[64] = {};
        ::GetClassNameW(child, name, 64);
        if (std::wcscmp(name, L"ExplorerBrowserControl") != 0) return TRUE;
        *reinterpret_cast<HWND*>(param) = child;
        return FALSE;
      },
      reinterpret_cast<LPARAM>(&browser));
  return browser != nullptr ? ::GetWindow(browser, GW_CHILD) : nullptr;
}

bool WaitForNewView(HWND explorer, HWND old, ULONGLONG end) {
  for (;;) {
    HWND view = CurrentView(explorer);
    if (view != nullptr && view != old) return true;
    if (::GetTickCount64() >= end) return false;
    ::Sleep(50);
  }
}

int Navigate(const wchar_t* path, DWORD timeoutMs) {
  HWND explorer = WaitForWindow(kExplorerClass, nullptr, timeoutMs);
  if (explorer == nullptr) return 4;
  const ULONGLONG end = ::GetTickCount64() + timeoutMs;
  HWND edit = nullptr;
  // A new window browses to the desktop by itself, at times more than once; a path typed before
  // that has settled is lost. Settled: the same view for a second.
  HWND settled = nullptr;
  ULONGLONG since = 0;
  for (;;) {
    edit = FindAddressEdit(explorer);
    HWND view = CurrentView(explorer);
    const ULONGLONG now = ::GetTickCount64();
    if (view != settled) {
      settled = view;
      since = now;
    }
    if (edit != nullptr && view != nullptr && now - since >= 1000) break;
    if (now >= end) return 4;
    ::Sleep(50);
  }
  // The address box now and then lets a typed path go unheard (before it has ever had the focus):
  // type it again until the view changes.
  for (int attempt = 0; attempt < 3; ++attempt) {
    HWND old = CurrentView(explorer);
    ::SendMessageW(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(path));
    // The address box acts on Enter in its edit, as when the user types the path.
    ::PostMessageW(edit, WM_KEYDOWN, VK_RETURN, 1);
    ::PostMessageW(edit, WM_CHAR, L'\r', 1);
    ::PostMessageW(edit, WM_KEYUP, VK_RETURN, 0xC0000001);
    if (WaitForNewView(explorer, old, std::min(end, ::GetTickCount64() + 2000))) return 0;
  }
  return 4;
}

void PrintTree(HWND parent, int depth) {
  for (HWND child = ::GetWindow(parent, GW_CHILD); child != nullptr; child = ::GetWindow(child, GW_HWNDNEXT)) {
    wchar_t name[128] = {};
    wchar_t text[256] = {};
    ::GetClassNameW(child, name, 128);
    ::GetWindowTextW(child, text, 256);
    RECT rect = {};
    ::GetWindowRect(child, &rect);
    wchar_t line[512];
    std::swprintf(line, 512, L"%d\t%ls\t%d\t%ld,%ld,%ld,%ld\t%ls", depth, name, ::IsWindowVisible(child) ? 1 : 0,
                  rect.left, rect.top, rect.right, rect.bottom, text);
    Print(line);
    PrintTree(child, depth + 1);
  }
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  if (argc < 2) return 1;
  const std::wstring command = argv[1];
  if (command == L"navigate" && argc >= 3) {
    return Navigate(argv[2], argc >= 4 ? static_cast<DWORD>(std::wcstoul(argv[3], nullptr, 10)) : 10000);
  }
  if (command == L"resize" && argc >= 4) {
    HWND explorer = WaitForWindow(kExplorerClass, nullptr, 10000);
    if (explorer == nullptr) return 4;
    ::SetWindowPos(explorer, nullptr, 0, 0, std::wcstol(argv[2], nullptr, 10), std::wcstol(argv[3], nullptr, 10),
                   SWP_NOZORDER | SWP_NOACTIVATE);
    return 0;
  }
  if (command == L"close") {
    const ULONGLONG end = ::GetTickCount64() + (argc >= 3 ? std::wcstoul(argv[2], nullptr, 10) : 10000);
    for (HWND explorer; (explorer = ::FindWindowW(kExplorerClass, nullptr)) != nullptr;) {
      ::PostMessageW(explorer, WM_CLOSE, 0, 0);
      if (::GetTickCount64() >= end) return 4;
      ::Sleep(100);
    }
    return 0;
  }
  if (command == L"tree") {
    HWND explorer = WaitForWindow(kExplorerClass, nullptr, argc >= 3 ? static_cast<DWORD>(std::wcstoul(argv[2], nullptr, 10)) : 10000);
    if (explorer == nullptr) return 4;
    PrintTree(explorer, 0);
    return 0;
  }
  return 1;
}
