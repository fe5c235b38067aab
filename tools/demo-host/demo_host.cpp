// The demo's host: named explorer.exe so that the add-in agrees to load, it loads Corvane.dll from
// its own folder like Explorer would, then drives the add-in's client bridge (linked in from the
// same sources) against whatever client state is published, and sends the client one command.
#include <windows.h>

#include <cstdio>
#include <string>

#include "client/dpi_tool.h"
#include "client/launcher.h"
#include "client/registry.h"
#include "log/logger.h"
#include "platform/handles.h"
#include "platform/module_path.h"

namespace {

using GetClassObjectFn = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);
using CanUnloadFn = HRESULT(WINAPI*)();
// The helper object Explorer asks for in every window.
constexpr CLSID kBhoClsid = {0x5b1e7c20, 0x3f4a, 0x4d2e, {0x9c, 0x61, 0x0a, 0x8d, 0x2e, 0x47, 0xb9, 0x13}};

void Print(const std::wstring& text) {
  // The console may be a pipe: write UTF-8 so any terminal shows the Chinese texts.
  const std::wstring line = text + L"\n";
  const int size = ::WideCharToMultiByte(CP_UTF8, 0, line.c_str(), static_cast<int>(line.size()), nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<size_t>(size), '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, line.c_str(), static_cast<int>(line.size()), utf8.data(), size, nullptr, nullptr);
  std::fwrite(utf8.data(), 1, utf8.size(), stdout);
  std::fflush(stdout);
}

std::wstring Hex(HRESULT hr) {
  wchar_t text[16];
  _snwprintf_s(text, _TRUNCATE, L"0x%08lX", static_cast<unsigned long>(hr));
  return text;
}

void LoadTheAddIn(const std::wstring& dllPath) {
  Print(L"== Explorer loads the add-in: " + dllPath);
  corvane::unique_hmodule dll(::LoadLibraryW(dllPath.c_str()));
  if (!dll) {
    Print(L"   LoadLibrary failed, error " + std::to_wstring(::GetLastError()));
    return;
  }
  Print(L"   loaded (the host check admitted explorer.exe)");
  auto getClassObject = reinterpret_cast<GetClassObjectFn>(reinterpret_cast<void*>(::GetProcAddress(dll.get(), "DllGetClassObject")));
  auto canUnload = reinterpret_cast<CanUnloadFn>(reinterpret_cast<void*>(::GetProcAddress(dll.get(), "DllCanUnloadNow")));
  if (getClassObject != nullptr) {
    IClassFactory* factory = nullptr;
    const HRESULT hr = getClassObject(kBhoClsid, IID_IClassFactory, reinterpret_cast<void**>(&factory));
    Print(L"   DllGetClassObject(browser helper object) = " + Hex(hr) +
          (hr == CLASS_E_CLASSNOTAVAILABLE ? L" (CLASS_E_CLASSNOTAVAILABLE: the class is not in the table yet)" : L""));
    if (factory != nullptr) factory->Release();
  }
  if (canUnload != nullptr) Print(L"   DllCanUnloadNow = " + Hex(canUnload()));
}

void ReadTheClientState() {
  Print(L"== The client's published state, read through regUtil");
  std::wstring user;
  Print(L"   currentUser: " + (regUtil::getCurrentUser(user) ? user : L"(none)"));
  Print(std::wstring(L"   signed in: ") + (regUtil::checkReadyLogin() ? L"yes" : L"no"));
  std::wstring syncPath;
  Print(L"   sync folder: " + (regUtil::checkReadyLoginAndOpenSync(syncPath) ? syncPath : L"(not ready)"));
  std::wstring logo;
  Print(L"   account picture: " + (regUtil::getLogoPath(logo) ? logo : L"(none)"));
  std::uint64_t total = 0, used = 0;
  if (regUtil::getCloudSpace(total, used)) {
    Print(L"   quota: " + std::to_wstring(used) + L" of " + std::to_wstring(total) + L" bytes used");
  } else {
    Print(L"   quota: (no data)");
  }
  std::wstring adId, adTitle;
  Print(L"   promotion: " + (regUtil::getAdvertisingInfo(adId, adTitle) ? adId + L" \"" + adTitle + L"\"" : L"(none)"));
  double zoom = 1.0;
  const bool published = regUtil::getDpiZoom(1234, zoom);
  Print(L"   zoom for window 1234: " + std::to_wstring(zoom) + (published ? L"" : L" (not published)"));
}

void SendCommands() {
  Print(L"== Commands to the client");
  const std::wstring sent = cx::exeCloudCommandLine(L"setting", L"sync_setting");
  Print(L"   sent: " + (sent.empty() ? L"(refused by the start-up gate)" : sent));
  const std::wstring tool = cx::startDpiTool(reinterpret_cast<HWND>(static_cast<INT_PTR>(1234)));
  Print(L"   DPI tool started: " + tool + L" 1234");
}

}  // namespace

int wmain() {
  ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  const std::wstring folder = corvane::ThisModuleFolder();
  LoadTheAddIn(folder + L"Corvane.dll");
  // The bridge code linked into this host logs to the same folder the add-in uses.
  InitLogger();
  ReadTheClientState();
  SendCommands();
  delete g_pLogger;
  g_pLogger = nullptr;
  Print(L"== Log folder: " + corvane::ClientFolder() + L"log\\Corvane");
  ::CoUninitialize();
  return 0;
}
