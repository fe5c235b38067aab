#pragma once
// The one place that knows a picture's identity, process-wide: its file's bytes. Every Explorer
// window shows and renders the same skin pictures, so
// - a source file is read whole once per use, and its decoded pixels are shared by every caller
//   that read the same bytes (keyed by a hash of them, confirmed byte for byte);
// - an output is encoded in memory and written only when the file does not already hold exactly
//   those bytes;
// - what each output was made from is recorded with the bytes it produced, so a render is skipped
//   only when the file holds, now, exactly the bytes these inputs produced here.
// Sizes and times never decide anything: two writes within one clock tick, or a copied file that
// keeps its source's time, are told apart by their bytes. No lock is held while reading, decoding,
// converting, encoding or writing, so a window whose disk is slow delays no other window. A
// failure is never remembered: the next call tries again. Everything cached counts against one
// bound, the least recently used entries go first, and all of it is given back when the last
// window that uses pictures is gone.
#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/gdiplus_headers.h"
#include "widgets/image_file.h"

namespace imageutil {

// A picture file as read now.
struct SourcePicture {
  std::uint64_t hash = 0;               // of the file's bytes: equal bytes, equal hash
  std::shared_ptr<const Bytes> bytes;   // the file's bytes, its identity
  std::shared_ptr<const DecodedPicture> picture;
};
using Sources = std::vector<std::shared_ptr<const Bytes>>;

namespace store {

// Reads the whole file and decodes it (or takes the pixels decoded from the same bytes before).
// Nothing when the file cannot be read or decoded.
std::optional<SourcePicture> ReadPicture(const std::wstring& path) noexcept;

// The picture's rows premultiplied, as AlphaBlend wants them; converted once per content while
// cached. Null when the conversion failed (the next call converts again).
std::shared_ptr<const Pixels> PremultipliedOf(const SourcePicture& source) noexcept;

// True when outPath holds, now, exactly the bytes that `inputs` and the source files' bytes
// produced when it was last written here.
bool Holds(const std::wstring& outPath, const std::wstring& inputs, const Sources& sources = {}) noexcept;

// Encodes picture as PNG and leaves it in outPath: written when the file holds anything else,
// left alone when it already holds exactly these bytes. Records that `inputs` and `sources`
// produced them. False on any failure (nothing recorded).
bool WritePng(const std::wstring& outPath, const std::wstring& inputs, const Sources& sources,
              Gdiplus::Bitmap& picture) noexcept;

// Off: every picture is decoded from its file, every output rendered and written, nothing is
// recorded, as without this store (the equivalence test and the benchmarks compare both ways). On
// by default; switching forgets everything.
void SetReuse(bool reuse) noexcept;
bool IsReuseOn() noexcept;

// Bytes held now (file bytes, ARGB and premultiplied rows, recorded outputs).
std::size_t CachedBytes() noexcept;
// The bound on CachedBytes.
// The whole skin decoded, with the premultiplied rows of every picture painted, is about 31 MiB;
// a bound below the pictures a prompt and a bar cycle through would miss on every one of them.
constexpr std::size_t kMaxCachedBytes = 48u << 20;

// Held by every window that shows or renders pictures; when the last one goes, everything cached
// is given back (a process with no bar and no view left keeps no pixels).
class Use {
 public:
  Use() noexcept;
  ~Use();
  Use(const Use&) = delete;
  Use& operator=(const Use&) = delete;
};

// Test hooks, off unless a test sets them: the next `count` premultiply conversions fail, and a
// function called on the writing thread just before an output file is opened for writing (a test
// holds one window's write there).
void FailConversionsForTest(int count) noexcept;
using WriteHook = void (*)(const std::wstring& outPath);
void SetWriteHookForTest(WriteHook hook) noexcept;

}  // namespace store

}  // namespace imageutil
