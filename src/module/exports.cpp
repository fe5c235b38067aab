// The COM server entry points named in Corvane.def. Each is an exception barrier: nothing thrown
// inside reaches the installer or Explorer.
#include <windows.h>

#include "module/corvane_module.h"
#include "module/registration.h"
#include "platform/errors.h"

extern "C" HRESULT WINAPI DllGetClassObject(REFCLSID clsid, REFIID riid, void** ppv) {
  return corvane::ComBoundary([&] { return g_CorvaneModule.DllGetClassObject(clsid, riid, ppv); });
}

extern "C" HRESULT WINAPI DllCanUnloadNow() {
  return corvane::ComBoundary([] { return g_CorvaneModule.DllCanUnloadNow(); });
}

extern "C" HRESULT WINAPI DllRegisterServer() {
  return corvane::ComBoundary([] { return corvane::registration::RegisterServer(); });
}

extern "C" HRESULT WINAPI DllUnregisterServer() {
  return corvane::ComBoundary([] { return corvane::registration::UnregisterServer(); });
}

extern "C" HRESULT WINAPI DllInstall(BOOL install, LPCWSTR commandLine) {
  return corvane::ComBoundary([&] { return corvane::registration::Install(install != FALSE, commandLine); });
}
