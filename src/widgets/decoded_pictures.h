#pragma once
// Picture files decoded once per process and shared: every Explorer window shows the same skin
// pictures, and decoding a PNG costs far more than copying its pixels. An entry is keyed by the
// file's full path, size and last-write time, so a file that changed on disk is read and decoded
// again; a picture this process has just written is entered as it was drawn, so it is not decoded
// back. Nothing is kept past a fixed number of pixel bytes (twice that with the premultiplied
// copies of the pictures drawn on screen).
#include <windows.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/gdiplus_headers.h"

namespace imageutil {

struct DecodedPicture {
  UINT width = 0;
  UINT height = 0;
  std::vector<std::uint32_t> argb;  // top-down rows of 32-bit ARGB, as the PNG decoder hands them out

  // A GDI+ bitmap over these pixels (no copy), drawn and converted exactly like the decoded file.
  std::unique_ptr<Gdiplus::Bitmap> View() const;
  // The same rows premultiplied, as AlphaBlend wants them: converted by GDI+ once, on first use.
  // Null when the conversion failed.
  const std::vector<std::uint32_t>* Premultiplied() const;

 private:
  mutable std::once_flag m_premultiplyOnce;
  mutable std::vector<std::uint32_t> m_premultiplied;
  mutable bool m_premultipliedOk = false;
};

// The picture in the file as it is now; null when it cannot be read or decoded.
std::shared_ptr<const DecodedPicture> DecodedPictureOf(const std::wstring& path) noexcept;
// After `picture` was saved to path: enters its pixels under the file's new stamp.
void EnterWrittenPicture(const std::wstring& path, Gdiplus::Bitmap& picture) noexcept;
void ForgetDecodedPictures() noexcept;

}  // namespace imageutil
