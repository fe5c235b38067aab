// namespace-host: the namespace folder's view in a plain frame, for looking at the login prompt and
// taking screenshots without Explorer. Named explorer.exe so that Corvane.dll agrees to load; it
// loads ..\Corvane.dll (the DLL of the installation it sits in) unless told otherwise. The prompt
// shows whatever client state and app theme the registry holds.
//
//   explorer.exe [--width=900] [--height=600] [--seconds=N] [--folder1] [--dll=path]
//                [--accessible-tree=<file>]
//
// --accessible-tree writes the view's accessible tree (as oleacc gives it) to the file once the
// prompt has been laid out.
// --folder1 opens the navigation-pane class instead of the This PC one. Every BrowseObject the view
// asks for is printed as "BrowseObject=<path>|<flags>" when the host closes.
#include <windows.h>
#include <ole2.h>

#include <cstdio>
#include <cwchar>
#include <string>

#include "accessible_tree.h"
#include "corvane_h.h"
#include "namespace_host.h"
#include "platform/module_path.h"

namespace {

bool ReadNumber(const wchar_t* argument, const wchar_t* name, long& value) {
  const size_t length = std::wcslen(name);
  if (std::wcsncmp(argument, name, length) != 0) return false;
  value = std::wcstol(argument + length, nullptr, 10);
  return true;
}

std::string Utf8(const std::wstring& text) {
  const int size = ::WideCharToMultiByte(CP_UTF8, 0, text.c_str(), -1, nullptr, 0, nullptr, nullptr);
  std::string out(size > 0 ? static_cast<size_t>(size) : 1u, '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, text.c_str(), -1, out.data(), size, nullptr, nullptr);
  out.resize(out.size() - 1);
  return out;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  long width = 900, height = 600, seconds = 0;
  bool folder1 = false;
  std::wstring treeFile;
  std::wstring folder = corvane::ThisModuleFolder();
  folder.pop_back();
  std::wstring dll = folder.substr(0, folder.rfind(L'\\') + 1) + L"Corvane.dll";
  for (int i = 1; i < argc; ++i) {
    long number = 0;
    if (ReadNumber(argv[i], L"--width=", number)) {
      width = number;
    } else if (ReadNumber(argv[i], L"--height=", number)) {
      height = number;
    } else if (ReadNumber(argv[i], L"--seconds=", number)) {
      seconds = number;
    } else if (std::wcscmp(argv[i], L"--folder1") == 0) {
      folder1 = true;
    } else if (std::wcsncmp(argv[i], L"--dll=", 6) == 0) {
      dll = argv[i] + 6;
    } else if (std::wcsncmp(argv[i], L"--accessible-tree=", 18) == 0) {
      treeFile = argv[i] + 18;
    } else {
      std::fprintf(stderr, "usage: explorer.exe [--width=N] [--height=N] [--seconds=N] [--folder1] [--dll=path]"
                           " [--accessible-tree=file]\n");
      return 2;
    }
  }
  if (FAILED(::OleInitialize(nullptr))) return 1;
  int rc = 0;
  {
    nshost::NamespaceHost host;
    HRESULT hr = host.LoadFolder(dll, folder1 ? CLSID_MyShellFolder1 : CLSID_MyShellFolder);
    if (SUCCEEDED(hr)) hr = host.OpenView(static_cast<int>(width), static_cast<int>(height));
    std::printf("open=0x%08lX\n", static_cast<unsigned long>(hr));
    if (SUCCEEDED(hr)) {
      if (!treeFile.empty()) {
        nshost::PumpFor(500);
        WriteAccessibleTree(host.Frame(), treeFile);
      }
      if (seconds > 0) {
        nshost::PumpFor(static_cast<DWORD>(seconds) * 1000);
      } else {
        while (::IsWindow(host.Frame())) nshost::PumpFor(500);
      }
      for (const nshost::BrowseCall& call : host.BrowseCalls()) {
        std::printf("BrowseObject=%s|%u\n", Utf8(call.path).c_str(), call.flags);
      }
    } else {
      rc = 1;
    }
  }
  ::OleUninitialize();
  return rc;
}
