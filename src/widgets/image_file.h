#pragma once
// The picture codec and file access under the picture store: whole files read and written in one
// call each (a file is never kept open, so a button showing a picture never stops the bar from
// writing the same name again), pictures decoded from bytes in memory, encoded to PNG in memory,
// and converted to premultiplied rows.
#include <windows.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/gdiplus_headers.h"

namespace imageutil {

using Bytes = std::vector<BYTE>;
using Pixels = std::vector<std::uint32_t>;

struct DecodedPicture {
  UINT width = 0;
  UINT height = 0;
  Pixels argb;  // top-down rows of 32-bit ARGB, as the PNG decoder hands them out

  // A GDI+ bitmap over these pixels (no copy), drawn and converted exactly like the decoded file.
  std::unique_ptr<Gdiplus::Bitmap> View() const;
};

// The whole file; false when it is missing, a folder, unreadable, empty or far too large for a
// picture of ours.
bool ReadWholeFile(const std::wstring& path, Bytes& bytes);
// Replaces the file's contents with bytes (created when missing); false on any failure.
bool WriteWholeFile(const std::wstring& path, const Bytes& bytes);

// The picture the bytes hold, as 32-bit ARGB rows; null when GDI+ cannot decode them.
std::shared_ptr<DecodedPicture> DecodePicture(const Bytes& bytes);
// A bitmap's pixels copied as 32-bit ARGB rows; null on failure.
std::shared_ptr<DecodedPicture> PixelsOf(Gdiplus::Bitmap& bitmap);
// The picture's rows premultiplied by GDI+; null on failure.
std::shared_ptr<const Pixels> Premultiply(const DecodedPicture& picture);
// The bitmap as the PNG encoder saves it; false when there is no encoder or it fails.
bool EncodePng(Gdiplus::Bitmap& bitmap, Bytes& png);

}  // namespace imageutil
