// The COM server entry points named in Corvane.def.
#include <windows.h>

#include "module/corvane_module.h"

extern "C" HRESULT WINAPI DllGetClassObject(REFCLSID clsid, REFIID riid, void** ppv) {
  return g_CorvaneModule.DllGetClassObject(clsid, riid, ppv);
}

extern "C" HRESULT WINAPI DllCanUnloadNow() { return g_CorvaneModule.DllCanUnloadNow(); }

// Registration writes the class scripts, the type library and the namespace folder tables; until
// those exist the entry points say so instead of pretending success.
extern "C" HRESULT WINAPI DllRegisterServer() { return E_NOTIMPL; }

extern "C" HRESULT WINAPI DllUnregisterServer() { return E_NOTIMPL; }

extern "C" HRESULT WINAPI DllInstall(BOOL, LPCWSTR) { return E_NOTIMPL; }
