#pragma once
// The control channel's text commands, one per line, one reply line each: "ok", "ok <value>" or
// "error <reason>". Ids are window ids from "open"; numbers may be decimal or 0x-hexadecimal.
//
//   open <location>                    → ok <id>       opens a window on its own thread
//   navigate <id> <location>           → ok            returns after NavigateComplete2 was fired
//   close <id>                         → ok            returns after the window's thread has ended
//   hwnd <id> <part>                   → ok <handle>   part: frame band tab duiview directui
//                                                      notifysink defview items status
//   folder <id>                        → ok <name>     the folder shown (path, or "::{…}")
//   move <id> <x> <y> / size <id> <w> <h> → ok         moves or resizes the frame
//   post <id> <msg> <wparam> <lparam>  → ok            PostMessage to the frame
//   send <id> <msg> <wparam> <lparam>  → ok <result>   SendMessage to the frame
//   sync <id>                          → ok            returns once work queued before it has run
//   resite <id>                        → ok <hresult>… SetSite(browser) again on each helper object
//   unsite <id>                        → ok <hresult>… SetSite(NULL) on each, no OnQuit; kept loaded
//   connections                        → ok <advised> <unadvised> <refused>  event-sink calls so far
//   footprint                          → ok <gdi> <user> <working set>  headroom left and bytes
//   counter <dll name> <export>        → ok <value>    a loaded DLL's exported LONG WINAPI f(void)
//   windows                            → ok <id> ...
//   sleep <ms>                         → ok
//   canunload <dll name>               → ok <hresult>  DllCanUnloadNow of a loaded DLL, "ok unloaded" if none
//   freeunused <id>                    → ok            CoFreeUnusedLibrariesEx(0, 0) on the window's thread
//   viewdelay <ms>                     → ok            QueryActiveShellView off the window thread waits first;
//                                                      0 also ends a wait in progress
//   viewheld <ms>                      → ok 1|0        waits until such a query is being held (1), or the time passes
//   viewqueries                        → ok <count>    such queries begun so far, held or not
//   quit                               → ok            closes every window, then the process ends
//
// For post and send, lparam may be "pidl:<location>": a fresh absolute PIDL made in the stand-in.
// With send it is freed if the frame answers 0 (the receiver refused it) and otherwise left to the
// receiver; with post the receiver owns it, and one that ignores the message leaks it.
#include <string>

#include "window_set.h"

namespace explorer_standin {

struct Reply {
  std::wstring text;
  bool quit = false;
};

class CommandInterpreter {
 public:
  explicit CommandInterpreter(WindowSet& windows) noexcept : m_windows(windows) {}

  Reply Execute(const std::wstring& line);

 private:
  WindowSet& m_windows;
};

}  // namespace explorer_standin
