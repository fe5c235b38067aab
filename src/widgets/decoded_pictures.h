#pragma once
// Picture files decoded once per process and shared: every Explorer window shows the same skin
// pictures, and decoding a PNG costs far more than copying its pixels. An entry is keyed by the
// file's full path, size and last-write time, so a file that changed on disk is read and decoded
// again; nothing is kept past a fixed number of pixel bytes.
#include <windows.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace imageutil {

struct DecodedPicture {
  UINT width = 0;
  UINT height = 0;
  std::vector<std::uint32_t> premultiplied;  // top-down rows of 32-bit PARGB, as AlphaBlend wants them
};

// The picture in the file as it is now; null when it cannot be read or decoded.
std::shared_ptr<const DecodedPicture> DecodedPictureOf(const std::wstring& path) noexcept;
void ForgetDecodedPictures() noexcept;

}  // namespace imageutil
