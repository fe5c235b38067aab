#include "module/registration.h"

#include <olectl.h>
#include <wchar.h>

#include <atomic>

#include "module/folder_registration.h"
#include "module/registrar.h"
#include "module/type_library.h"
#include "platform/module_path.h"

namespace corvane::registration {

namespace {

std::atomic<bool> g_bPerUser{false};

// The module's own script first, then one per class in the class table's order.
constexpr UINT kModuleScript = 101;
constexpr UINT kClassScripts[] = {106, 107, 108, 109};

bool AllSucceeded(HRESULT a, HRESULT b, HRESULT c) { return SUCCEEDED(a) && SUCCEEDED(b) && SUCCEEDED(c); }

}  // namespace

void SetPerUser(bool perUser) noexcept { g_bPerUser = perUser; }

bool IsPerUser() noexcept { return g_bPerUser; }

HRESULT RegisterModule() {
  const bool perUser = IsPerUser();
  const HMODULE module = ThisModule();
  HRESULT hr = registrar::RunScriptResource(module, kModuleScript, true, perUser);
  for (const UINT id : kClassScripts) {
    if (FAILED(hr)) return hr;
    hr = registrar::RunScriptResource(module, id, true, perUser);
  }
  if (FAILED(hr)) return hr;
  return RegisterTypeLibrary(perUser);
}

HRESULT UnregisterModule() {
  const bool perUser = IsPerUser();
  const HMODULE module = ThisModule();
  HRESULT hr = S_OK;
  for (const UINT id : kClassScripts) {
    if (FAILED(hr)) return hr;
    hr = registrar::RunScriptResource(module, id, false, perUser);
  }
  if (FAILED(hr)) return hr;
  hr = UnregisterTypeLibrary(perUser);
  if (FAILED(hr)) return hr;
  return registrar::RunScriptResource(module, kModuleScript, false, perUser);
}

HRESULT RegisterServer() {
  const HRESULT module = RegisterModule();
  const HRESULT first = RegisterFolder(NamespaceFolder::MyComputer);
  const HRESULT second = RegisterFolder(NamespaceFolder::Desktop);
  return AllSucceeded(module, first, second) ? S_OK : SELFREG_E_CLASS;
}

HRESULT UnregisterServer() {
  const HRESULT module = UnregisterModule();
  const HRESULT first = UnregisterFolder(NamespaceFolder::MyComputer);
  const HRESULT second = UnregisterFolder(NamespaceFolder::Desktop);
  return AllSucceeded(module, first, second) ? S_OK : SELFREG_E_CLASS;
}

HRESULT Install(bool install, const wchar_t* commandLine) {
  // Five characters take in the terminating zero, so "user" in any case matches and "users" does not.
  if (commandLine != nullptr && _wcsnicmp(commandLine, L"user", 5) == 0) SetPerUser(true);
  if (!install) return UnregisterServer();
  const HRESULT hr = RegisterServer();
  if (FAILED(hr)) UnregisterServer();
  return hr;
}

}  // namespace corvane::registration
