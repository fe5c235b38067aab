#pragma once
// The type library the module carries as TYPELIB 1, registered from the module's own path.
#include <windows.h>

namespace corvane::registration {

HRESULT RegisterTypeLibrary(bool perUser);
HRESULT UnregisterTypeLibrary(bool perUser);

}  // namespace corvane::registration
