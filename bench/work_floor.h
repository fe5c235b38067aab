#pragma once
// The floor under a bar phase: the work the rules require, done directly without the add-in around
// it and timed in the same run. Each kind is timed once as a unit (median of many), and a phase's
// floor is the units times what that phase had to do: its distinct captions rendered and encoded
// in memory (no file), its window creations, its paints and its registry reads.
#include <windows.h>

#include <cstdint>
#include <string>

namespace bench {

struct FloorUnits {
  double caption = 0;  // ms: a bar caption measured, drawn and encoded as PNG in memory
  double window = 0;   // ms: a child window created and destroyed
  double paint = 0;    // ms: a double-buffered WM_PAINT of a 100 x 30 child
  double read = 0;     // ms: one registry value queried on an open key
};

struct PhaseWork {
  std::int64_t captions = 0, windows = 0, paints = 0, reads = 0;
};

// Under an existing top-level window (the children go there); `key` and `value` name a published
// REG_SZ under HKCU that exists for the run.
FloorUnits MeasureFloorUnits(HWND parent, const std::wstring& key, const std::wstring& value);
double FloorMs(const FloorUnits& units, const PhaseWork& work);

}  // namespace bench
