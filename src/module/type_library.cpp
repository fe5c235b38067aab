#include "module/type_library.h"

#include <oleauto.h>
#include <wrl/client.h>

#include <string>

#include "platform/errors.h"
#include "platform/module_path.h"

#if defined(__MINGW32__)
// The mingw-w64 headers leave these out although oleaut32's import library has them.
extern "C" {
__declspec(dllimport) HRESULT WINAPI RegisterTypeLibForUser(ITypeLib* typeLib, OLECHAR* fullPath, OLECHAR* helpDir);
__declspec(dllimport) HRESULT WINAPI UnRegisterTypeLibForUser(REFGUID libId, WORD major, WORD minor, LCID lcid,
                                                              SYSKIND syskind);
}
#endif

namespace corvane::registration {

namespace {

HRESULT LoadOwnTypeLibrary(std::wstring& path, Microsoft::WRL::ComPtr<ITypeLib>& typeLib) {
  path = ThisModulePath();
  if (path.empty()) return HresultFromLastError();
  // Loaded only to be read: registration is ours to do, in the mode asked for.
  return ::LoadTypeLibEx(path.c_str(), REGKIND_NONE, typeLib.ReleaseAndGetAddressOf());
}

}  // namespace

HRESULT RegisterTypeLibrary(bool perUser) {
  std::wstring path;
  Microsoft::WRL::ComPtr<ITypeLib> typeLib;
  CORVANE_RETURN_IF_FAILED(LoadOwnTypeLibrary(path, typeLib));
  return perUser ? ::RegisterTypeLibForUser(typeLib.Get(), path.data(), nullptr)
                 : ::RegisterTypeLib(typeLib.Get(), path.data(), nullptr);
}

HRESULT UnregisterTypeLibrary(bool perUser) {
  std::wstring path;
  Microsoft::WRL::ComPtr<ITypeLib> typeLib;
  CORVANE_RETURN_IF_FAILED(LoadOwnTypeLibrary(path, typeLib));
  TLIBATTR* attributes = nullptr;
  CORVANE_RETURN_IF_FAILED(typeLib->GetLibAttr(&attributes));
  const TLIBATTR copy = *attributes;
  typeLib->ReleaseTLibAttr(attributes);
  return perUser ? ::UnRegisterTypeLibForUser(copy.guid, copy.wMajorVerNum, copy.wMinorVerNum, copy.lcid, copy.syskind)
                 : ::UnRegisterTypeLib(copy.guid, copy.wMajorVerNum, copy.wMinorVerNum, copy.lcid, copy.syskind);
}

}  // namespace corvane::registration
