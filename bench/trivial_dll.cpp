// The baseline for the load benchmark: a DLL with the same class-object export and nothing else.
#include <windows.h>

extern "C" HRESULT WINAPI DllGetClassObject(REFCLSID, REFIID, void** ppv) {
  if (ppv != nullptr) *ppv = nullptr;
  return CLASS_E_CLASSNOTAVAILABLE;
}

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD, LPVOID) { return TRUE; }
