// A stand-in host process for Corvane.dll's host check. Copies of this program run under the names
// the check decides on (explorer.exe, regsvr32.exe, other names); each loads the DLL given on its
// command line and, once loaded, calls the class-factory entry points, then frees it.
// With calls after the DLL path it makes those calls instead, in order, each in this one process:
//   register | unregister | install:<0|1>[:<command line>]   (no command line: a null pointer)
// Output, one "key=value" per line in UTF-8:
//   host=<path this process reports for itself>
//   load=ok | load=failed error=<Win32 error>
//   DllGetClassObject=0x........ object=null|set (a class it never serves),
//   class <name>=0x........ object=null|set (each class the registration writes, by its CLSID),
//   DllCanUnloadNow=0x........
//   or one DllRegisterServer=, DllUnregisterServer= or DllInstall=0x........ line per call
//   free=ok | free=failed
// Exit code: 0 loaded and freed, 2 the load failed, 3 an entry point is missing or the free failed,
// 1 bad usage.
#include <windows.h>
#include <unknwn.h>
#include <wrl/client.h>

#include <cstdio>
#include <string>

#include "platform/handles.h"

namespace {

// Never served by the module.
constexpr CLSID kUnknownClsid = {0x0badc0de, 0x1234, 0x4abc, {0x9d, 0xef, 0x01, 0x23, 0x45, 0x67, 0x89, 0xab}};

// The classes the DLL registers, written out here rather than taken from its headers, so that a
// class missing from its table shows.
struct ServedClass {
  const char* name;
  CLSID clsid;
};
constexpr ServedClass kServedClasses[] = {
    {"TitleBarBHO", {0x5b1e7c20, 0x3f4a, 0x4d2e, {0x9c, 0x61, 0x0a, 0x8d, 0x2e, 0x47, 0xb9, 0x13}}},
    {"MyShellView", {0xa3c90e58, 0x7b12, 0x4f6d, {0xb8, 0xe4, 0x61, 0xf2, 0x5c, 0x0d, 0x9a, 0x47}}},
    {"MyShellFolder", {0x6e0d3a92, 0xc4b7, 0x4a18, {0x8f, 0x25, 0xb9, 0x3c, 0x1d, 0x7e, 0x5a, 0x40}}},
    {"MyShellFolder1", {0x6e0d3a92, 0xc4b7, 0x4a18, {0x8f, 0x25, 0xb9, 0x3c, 0x1d, 0x7e, 0x5a, 0x42}}},
};

void Print(const std::string& line) {
  const std::string withEnd = line + "\n";
  DWORD written = 0;
  ::WriteFile(::GetStdHandle(STD_OUTPUT_HANDLE), withEnd.data(), static_cast<DWORD>(withEnd.size()), &written, nullptr);
}

std::string Utf8(const std::wstring& text) {
  if (text.empty()) return std::string();
  const int size = ::WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr, nullptr);
  std::string out(static_cast<size_t>(size > 0 ? size : 0), '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), out.data(), size, nullptr, nullptr);
  return out;
}

std::string Hex(HRESULT hr) {
  char text[16] = {};
  std::snprintf(text, sizeof text, "0x%08lX", static_cast<unsigned long>(hr));
  return text;
}

template <class Fn>
Fn Export(HMODULE module, const char* name) {
  return reinterpret_cast<Fn>(reinterpret_cast<void*>(::GetProcAddress(module, name)));
}

// The registration calls named on the command line; false when one is unknown or missing.
bool RunCalls(HMODULE library, int count, wchar_t** calls) {
  using NoArgumentFn = HRESULT(WINAPI*)();
  using InstallFn = HRESULT(WINAPI*)(BOOL, LPCWSTR);
  const auto registerServer = Export<NoArgumentFn>(library, "DllRegisterServer");
  const auto unregisterServer = Export<NoArgumentFn>(library, "DllUnregisterServer");
  const auto install = Export<InstallFn>(library, "DllInstall");
  if (registerServer == nullptr || unregisterServer == nullptr || install == nullptr) return false;
  for (int i = 0; i < count; ++i) {
    const std::wstring call = calls[i];
    if (call == L"register") {
      Print("DllRegisterServer=" + Hex(registerServer()));
    } else if (call == L"unregister") {
      Print("DllUnregisterServer=" + Hex(unregisterServer()));
    } else if (call.starts_with(L"install:") && call.size() >= 9) {
      const BOOL doInstall = call[8] == L'1';
      const std::wstring commandLine = call.size() > 10 ? call.substr(10) : std::wstring();
      Print("DllInstall=" + Hex(install(doInstall, call.size() > 9 ? commandLine.c_str() : nullptr)));
    } else {
      Print("unknown call " + Utf8(call));
      return false;
    }
  }
  return true;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  if (argc < 2) {
    Print("usage: <host>.exe <full path of the DLL> [register|unregister|install:<0|1>[:<command line>]]...");
    return 1;
  }
  wchar_t self[MAX_PATH] = {};
  ::GetModuleFileNameW(nullptr, self, MAX_PATH);
  Print("host=" + Utf8(self));

  corvane::unique_hmodule library(::LoadLibraryW(argv[1]));
  if (!library) {
    Print("load=failed error=" + std::to_string(::GetLastError()));
    return 2;
  }
  Print("load=ok");

  if (argc > 2) {
    if (!RunCalls(library.get(), argc - 2, argv + 2)) {
      Print("missing export or bad call");
      return 3;
    }
    const bool freed = ::FreeLibrary(library.release()) != FALSE;
    Print(freed ? "free=ok" : "free=failed");
    return freed ? 0 : 3;
  }

  using GetClassObjectFn = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);
  using NoArgumentFn = HRESULT(WINAPI*)();
  const auto getClassObject = Export<GetClassObjectFn>(library.get(), "DllGetClassObject");
  const auto canUnloadNow = Export<NoArgumentFn>(library.get(), "DllCanUnloadNow");
  if (getClassObject == nullptr || canUnloadNow == nullptr) {
    Print("missing export");
    return 3;
  }
  // A sentinel that a well-behaved refusal overwrites with null.
  void* object = &object;
  const HRESULT classResult = getClassObject(kUnknownClsid, IID_IClassFactory, &object);
  Print("DllGetClassObject=" + Hex(classResult) + " object=" + (object == nullptr ? "null" : "set"));
  for (const ServedClass& served : kServedClasses) {
    Microsoft::WRL::ComPtr<IClassFactory> factory;
    const HRESULT result =
        getClassObject(served.clsid, IID_IClassFactory, reinterpret_cast<void**>(factory.ReleaseAndGetAddressOf()));
    Print(std::string("class ") + served.name + "=" + Hex(result) + " object=" + (factory ? "set" : "null"));
  }
  Print("DllCanUnloadNow=" + Hex(canUnloadNow()));

  // The free is what is being observed here, so its result is reported rather than left to the owner.
  const bool freed = ::FreeLibrary(library.release()) != FALSE;
  Print(freed ? "free=ok" : "free=failed");
  return freed ? 0 : 3;
}
