// bar-host: the bar in a plain window, for looking at it and taking screenshots without Explorer.
// It starts GDI+ and COM like the Explorer window controller's host, owns the bar through the
// same owner interface, and logs to the client folder's log\Corvane like the add-in. The client
// state it shows is whatever is published under HKCU\Software\varnowe\Halvex (the demo script
// publishes a sample state); the bar polls it once a second.
//
//   bar-host [--width=900] [--height=240] [--x=10] [--y=10] [--zoom=1.25] [--dark] [--seconds=N]
//            [--accessible-tree=<file>]
//
// --zoom publishes the factor for the host's own window under the dpiZoom key, as the client's DPI
// tool would, and removes it at exit. --dark switches the app theme to dark and puts the previous
// setting back at exit. --seconds closes the window after N seconds (default: stays open).
#include <windows.h>

#include <cstdint>
#include <cstdio>
#include <cwchar>
#include <optional>
#include <string>
#include <vector>

#include "accessible_tree.h"
#include "host_window.h"
#include "log/logger.h"
#include "platform/gdiplus_session.h"

namespace {

const wchar_t kZoomKey[] = L"Software\\varnowe\\Halvex\\dpiZoom";
const wchar_t kPersonalize[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize";
const wchar_t kThemeValue[] = L"AppsUseLightTheme";

struct Options {
  int width = 900;
  int height = 240;
  int x = 10;
  int y = 10;
  std::wstring zoom;
  bool dark = false;
  unsigned seconds = 0;
  std::wstring accessibleTree;  // a file to write the bar's accessible tree to, once it is laid out
};

bool ReadNumber(const wchar_t* argument, const wchar_t* name, long& value) {
  const size_t length = std::wcslen(name);
  if (std::wcsncmp(argument, name, length) != 0) return false;
  value = std::wcstol(argument + length, nullptr, 10);
  return true;
}

std::optional<Options> ParseOptions(int argc, wchar_t** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    const wchar_t* argument = argv[i];
    long number = 0;
    if (ReadNumber(argument, L"--width=", number)) {
      options.width = static_cast<int>(number);
    } else if (ReadNumber(argument, L"--height=", number)) {
      options.height = static_cast<int>(number);
    } else if (ReadNumber(argument, L"--x=", number)) {
      options.x = static_cast<int>(number);
    } else if (ReadNumber(argument, L"--y=", number)) {
      options.y = static_cast<int>(number);
    } else if (ReadNumber(argument, L"--seconds=", number)) {
      options.seconds = number > 0 ? static_cast<unsigned>(number) : 0;
    } else if (std::wcsncmp(argument, L"--zoom=", 7) == 0) {
      options.zoom = argument + 7;
    } else if (std::wcscmp(argument, L"--dark") == 0) {
      options.dark = true;
    } else if (std::wcsncmp(argument, L"--accessible-tree=", 18) == 0) {
      options.accessibleTree = argument + 18;
    } else {
      return std::nullopt;
    }
  }
  if (options.width <= 0 || options.height <= 0) return std::nullopt;
  return options;
}

// The app theme switched for the life of the host and put back afterwards.
class ThemeSwitch {
 public:
  ThemeSwitch() {
    DWORD type = 0, size = 0;
    if (::RegGetValueW(HKEY_CURRENT_USER, kPersonalize, kThemeValue, RRF_RT_ANY, &type, nullptr, &size) == ERROR_SUCCESS) {
      m_saved.emplace(size);
      ::RegGetValueW(HKEY_CURRENT_USER, kPersonalize, kThemeValue, RRF_RT_ANY, &type, m_saved->data(), &size);
      m_savedType = type;
    }
    const DWORD dark = 0;
    ::RegSetKeyValueW(HKEY_CURRENT_USER, kPersonalize, kThemeValue, REG_DWORD, &dark, sizeof(dark));
  }
  ~ThemeSwitch() {
    ::RegDeleteKeyValueW(HKEY_CURRENT_USER, kPersonalize, kThemeValue);
    if (m_saved) {
      ::RegSetKeyValueW(HKEY_CURRENT_USER, kPersonalize, kThemeValue, m_savedType, m_saved->data(),
                        static_cast<DWORD>(m_saved->size()));
    }
  }
  ThemeSwitch(const ThemeSwitch&) = delete;
  ThemeSwitch& operator=(const ThemeSwitch&) = delete;

 private:
  std::optional<std::vector<BYTE>> m_saved;
  DWORD m_savedType = REG_NONE;
};

// The zoom published for one window, as the client's DPI tool would, and removed again.
class PublishedZoom {
 public:
  PublishedZoom(HWND window, const std::wstring& zoom) : m_name(std::to_wstring(reinterpret_cast<std::uintptr_t>(window))) {
    ::RegSetKeyValueW(HKEY_CURRENT_USER, kZoomKey, m_name.c_str(), REG_SZ, zoom.c_str(),
                      static_cast<DWORD>((zoom.size() + 1) * sizeof(wchar_t)));
  }
  ~PublishedZoom() { ::RegDeleteKeyValueW(HKEY_CURRENT_USER, kZoomKey, m_name.c_str()); }
  PublishedZoom(const PublishedZoom&) = delete;
  PublishedZoom& operator=(const PublishedZoom&) = delete;

 private:
  std::wstring m_name;
};

int Run(const Options& options) {
  const corvane::GdiplusSession gdiplus;
  if (!gdiplus.ok()) {
    std::fputs("bar-host: GDI+ did not start\n", stderr);
    return 1;
  }
  std::optional<ThemeSwitch> theme;
  if (options.dark) theme.emplace();

  CHostWindow host;
  if (!host.CreateFrame(options.x, options.y, options.width, options.height)) {
    std::fputs("bar-host: the window could not be created\n", stderr);
    return 1;
  }
  std::optional<PublishedZoom> zoom;
  if (!options.zoom.empty()) zoom.emplace(host.m_hWnd, options.zoom);
  if (!host.CreateBar()) {
    std::fputs("bar-host: the bar could not be created\n", stderr);
    return 1;
  }
  ::ShowWindow(host.m_hWnd, SW_SHOWNORMAL);
  host.CloseAfter(options.seconds);

  MSG msg{};
  bool reported = false;
  while (::GetMessageW(&msg, nullptr, 0, 0) > 0) {
    ::TranslateMessage(&msg);
    ::DispatchMessageW(&msg);
    if (!reported && ::GetQueueStatus(QS_ALLINPUT) == 0 && host.Bar().IsWindow()) {
      // Once the first re-measure has been handled, tell the caller what to look for.
      reported = true;
      std::printf("bar-host: window %llu, bar %llu, bar height %d, right group width %d\n",
                  static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(host.m_hWnd)),
                  static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(host.Bar().m_hWnd)),
                  host.GetBarHeight(), host.Bar().GetRightWindow().GetWidth());
      std::fflush(stdout);
      if (!options.accessibleTree.empty()) WriteAccessibleTree(host.Bar().m_hWnd, options.accessibleTree);
    }
  }
  return 0;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  const std::optional<Options> options = ParseOptions(argc, argv);
  if (!options) {
    std::fputs("usage: bar-host [--width=900] [--height=240] [--x=10] [--y=10] [--zoom=1.25] [--dark] [--seconds=N]"
               " [--accessible-tree=<file>]\n",
               stderr);
    return 2;
  }
  // The launcher's start-up gate asks WMI, which needs COM on this thread, as Explorer's threads have.
  const HRESULT com = ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  InitLogger();
  int result = 1;
  try {
    result = Run(*options);
  } catch (...) {
    std::fputs("bar-host: unexpected failure\n", stderr);
  }
  delete g_pLogger;
  g_pLogger = nullptr;
  if (SUCCEEDED(com)) ::CoUninitialize();
  return result;
}
