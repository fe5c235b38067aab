// The benchmark build of the add-in exports its live-object count, so a benchmark can read it
// inside the Explorer stand-in (its "counter" command). The shipped DLL has no such export.
#include <windows.h>

#include "live_objects.h"

extern "C" LONG WINAPI CorvaneLiveObjects() { return bench::LiveObjects{}.Total(); }
