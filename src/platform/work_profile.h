#pragma once
// Counts and times the kinds of work that make the add-in slow or fast, process-wide, so a
// benchmark can say where a window's time goes (renders, decodes, file writes, fonts, registry
// reads, windows, process starts). Two relaxed atomic additions per item: cheap enough to stay in
// the shipped code, where the numbers describe the real thing.
#include <windows.h>

#include <cstdint>

namespace corvane::profile {

enum class Work : int {
  CaptionRender,    // a caption measured, drawn and saved
  Join,             // two pictures joined and saved
  Stretch,          // a picture stretched and saved
  PictureReused,    // a render, join or stretch found its file already holding its output
  SizeQuery,        // a picture's size asked of its file
  Decode,           // a picture file read and decoded
  FileRead,         // a picture file read whole
  Premultiply,      // a decoded picture converted to premultiplied rows for painting
  Encode,           // a picture encoded as PNG in memory
  FileWrite,        // a picture file written (left alone when it already held the same bytes)
  EncoderLookup,    // the PNG encoder searched for
  FontCreate,       // a GDI+ font made
  FamilyCreate,     // a GDI+ font family made
  WindowCreate,     // a window of ours created (its WM_CREATE included)
  Paint,            // a WM_PAINT of one of our windows
  RegistryRead,     // a registry value read
  ProcessStart,     // a process started
  kCount
};

struct Tally {
  std::int64_t count = 0;
  std::int64_t microseconds = 0;
};

void Add(Work work, std::int64_t microseconds) noexcept;
Tally Get(Work work) noexcept;
const wchar_t* NameOf(Work work) noexcept;

// Times its own lifetime as one item of `work`; Work::kCount times nothing.
class Timed {
 public:
  explicit Timed(Work work) noexcept;
  ~Timed();
  Timed(const Timed&) = delete;
  Timed& operator=(const Timed&) = delete;

 private:
  Work m_work;
  LARGE_INTEGER m_start{};
};

}  // namespace corvane::profile
