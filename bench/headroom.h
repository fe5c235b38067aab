#pragma once
// Leak measurement that works where GetGuiResources does not (Wine answers 0): count how many more
// GDI and USER objects the process can still create before creation fails, then free them again.
// A soak that leaks n objects lowers the headroom by n.
#include <windows.h>
#include <psapi.h>

#include <cstddef>
#include <vector>

namespace bench {

struct Headroom {
  long gdi = 0;   // solid brushes that could still be created
  long user = 0;  // menus that could still be created
};

inline Headroom MeasureHeadroom() {
  Headroom room;
  std::vector<HBRUSH> brushes;
  brushes.reserve(70000);
  for (;;) {
    HBRUSH brush = ::CreateSolidBrush(RGB(1, 2, 3));
    if (brush == nullptr) break;
    brushes.push_back(brush);
  }
  room.gdi = static_cast<long>(brushes.size());
  for (HBRUSH brush : brushes) ::DeleteObject(brush);

  std::vector<HMENU> menus;
  menus.reserve(70000);
  for (;;) {
    HMENU menu = ::CreateMenu();
    if (menu == nullptr) break;
    menus.push_back(menu);
  }
  room.user = static_cast<long>(menus.size());
  for (HMENU menu : menus) ::DestroyMenu(menu);
  return room;
}

inline std::size_t WorkingSetBytes() {
  PROCESS_MEMORY_COUNTERS counters{};
  counters.cb = sizeof(counters);
  if (!::GetProcessMemoryInfo(::GetCurrentProcess(), &counters, sizeof(counters))) return 0;
  return counters.WorkingSetSize;
}

}  // namespace bench
