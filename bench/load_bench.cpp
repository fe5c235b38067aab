// LoadLibrary + DllGetClassObject + FreeLibrary of Corvane.dll in a host named explorer.exe,
// against the same host loading a trivial DLL with the same export.
#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

#include "bench_util.h"

namespace {

using GetClassObjectFn = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);
// The helper object's class: served once it exists, refused with CLASS_E_CLASSNOTAVAILABLE before.
constexpr CLSID kBhoClsid = {0x5b1e7c20, 0x3f4a, 0x4d2e, {0x9c, 0x61, 0x0a, 0x8d, 0x2e, 0x47, 0xb9, 0x13}};

bool LoadCallFree(const std::wstring& path, HRESULT& result) {
  HMODULE module = ::LoadLibraryW(path.c_str());
  if (module == nullptr) return false;
  auto get = reinterpret_cast<GetClassObjectFn>(reinterpret_cast<void*>(::GetProcAddress(module, "DllGetClassObject")));
  IClassFactory* factory = nullptr;
  result = get != nullptr ? get(kBhoClsid, IID_IClassFactory, reinterpret_cast<void**>(&factory)) : E_NOINTERFACE;
  if (factory != nullptr) factory->Release();
  ::FreeLibrary(module);
  return true;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: explorer.exe <Corvane.dll> <trivial.dll> [rounds]\n");
    return 2;
  }
  const int rounds = argc > 3 ? _wtoi(argv[3]) : 200;
  ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  HRESULT corvaneResult = S_OK, trivialResult = S_OK;
  std::vector<double> ours, floor;
  bool loaded = true;
  bench::Interleave(
      rounds, [&] { loaded = LoadCallFree(argv[1], corvaneResult) && loaded; },
      [&] { loaded = LoadCallFree(argv[2], trivialResult) && loaded; }, ours, floor);
  if (!loaded) {
    std::fprintf(stderr, "a DLL failed to load\n");
    return 1;
  }
  const double o = bench::Median(ours), f = bench::Median(floor);
  std::printf("load + DllGetClassObject + free: Corvane.dll %.0f us, trivial DLL %.0f us (median of %d), ratio %.2f"
              " (DllGetClassObject answered 0x%08lX)\n",
              o, f, rounds, o / f, static_cast<unsigned long>(corvaneResult));
  ::CoUninitialize();
  return 0;
}
