// The benchmark build of the add-in exports its live-object count, so a benchmark can read it
// inside the Explorer stand-in (its "counter" command), and its module lock count, so a benchmark
// can tell which COM objects are still alive while it keeps the DLL loaded. The shipped DLL has
// no such exports.
#include <windows.h>

#include "live_objects.h"
#include "platform/module_lock.h"

extern "C" LONG WINAPI CorvaneLiveObjects() { return bench::LiveObjects{}.Total(); }
extern "C" LONG WINAPI CorvaneModuleLocks() { return corvane::ModuleLock::Value(); }
