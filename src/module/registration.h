#pragma once
// Registration of the COM server: the class scripts and the type library, then the two namespace
// folders' tables. The exported Dll* entry points wrap these.
#include <windows.h>

namespace corvane::registration {

// Per-user mode, once set, lasts for the rest of the process: the scripts' HKCR then means the
// current user's classes and the type library is registered for the current user only.
void SetPerUser(bool perUser) noexcept;
bool IsPerUser() noexcept;

// The class scripts (REGISTRY 101, 106-109) and TYPELIB 1, in the module's object-map order.
HRESULT RegisterModule();
HRESULT UnregisterModule();

// S_OK, or SELFREG_E_CLASS when any part failed; every part runs either way.
HRESULT RegisterServer();
HRESULT UnregisterServer();

// install: register (rolling back on failure) or unregister; "user" selects per-user mode.
HRESULT Install(bool install, const wchar_t* commandLine);

}  // namespace corvane::registration
