// The benchmark build of the add-in exports its live-object count, so a benchmark can read it
// inside the Explorer stand-in (its "counter" command), and its module lock count, so a benchmark
// can tell which COM objects are still alive while it keeps the DLL loaded, and its work profile.
// The shipped DLL has no such exports.
#include <windows.h>

#include <optional>

#include "live_objects.h"
#include "platform/module_lock.h"
#include "platform/work_profile.h"
#include "widgets/picture_store.h"

extern "C" LONG WINAPI CorvaneLiveObjects() { return bench::LiveObjects{}.Total(); }
extern "C" LONG WINAPI CorvaneModuleLocks() { return corvane::ModuleLock::Value(); }

// The add-in's work profile, one kind at a time (kinds as in platform/work_profile.h); false past
// the last kind.
extern "C" BOOL WINAPI CorvaneWorkTally(int kind, LONGLONG* count, LONGLONG* microseconds) {
  if (kind < 0 || kind >= static_cast<int>(corvane::profile::Work::kCount) || count == nullptr ||
      microseconds == nullptr) {
    return FALSE;
  }
  const corvane::profile::Tally tally = corvane::profile::Get(static_cast<corvane::profile::Work>(kind));
  *count = tally.count;
  *microseconds = tally.microseconds;
  return TRUE;
}

// Switches the picture ledger and the decoded-picture cache, so a benchmark can measure the add-in
// with and without them in one run.
extern "C" void WINAPI CorvaneSetPictureReuse(BOOL reuse) { imageutil::store::SetReuse(reuse != FALSE); }

// Holds the pictures as the Explorer window controller around a namespace view does in Explorer
// (without it, every view is the process's last and its pictures go with it).
extern "C" void WINAPI CorvaneHoldPictures(BOOL hold) {
  static std::optional<imageutil::store::Use> held;
  if (hold) {
    held.emplace();
  } else {
    held.reset();
  }
}
