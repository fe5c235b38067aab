#include "widgets/png_picture.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "widgets/picture_store.h"

namespace imageutil {

namespace {

corvane::unique_hbitmap CreateTopDownDib(int width, int height, void*& bits) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof(info.bmiHeader);
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;  // top-down, the row order GDI+ hands out
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  bits = nullptr;
  corvane::unique_hbitmap picture(::CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
  if (!picture || bits == nullptr) return {};
  return picture;
}

}  // namespace

corvane::unique_hbitmap LoadPngBitmap(const std::wstring& path, bool* worthRetrying) {
  if (worthRetrying != nullptr) *worthRetrying = false;
  try {
    const std::optional<SourcePicture> source = store::ReadPicture(path);
    if (!source) return {};
    // From here on the file is a good picture: what fails is memory or GDI, which may be back by
    // the next paint.
    if (worthRetrying != nullptr) *worthRetrying = true;
    // AlphaBlend with AC_SRC_ALPHA expects premultiplied colours.
    const std::shared_ptr<const Pixels> premultiplied = store::PremultipliedOf(*source);
    if (!premultiplied) return {};
    void* bits = nullptr;
    corvane::unique_hbitmap picture =
        CreateTopDownDib(static_cast<int>(source->picture->width), static_cast<int>(source->picture->height), bits);
    if (!picture) return {};
    std::memcpy(bits, premultiplied->data(), premultiplied->size() * sizeof(std::uint32_t));
    if (worthRetrying != nullptr) *worthRetrying = false;
    return picture;
  } catch (...) {
    return {};
  }
}

corvane::unique_hbitmap CopyPngBitmap(HBITMAP picture) {
  DIBSECTION source{};
  if (picture == nullptr || ::GetObjectW(picture, sizeof(source), &source) != sizeof(source) ||
      source.dsBm.bmBits == nullptr || source.dsBm.bmBitsPixel != 32) {
    return {};
  }
  const int width = source.dsBm.bmWidth, height = source.dsBm.bmHeight;
  void* bits = nullptr;
  corvane::unique_hbitmap copy = CreateTopDownDib(width, height, bits);
  if (!copy) return {};
  ::GdiFlush();
  std::memcpy(bits, source.dsBm.bmBits, static_cast<size_t>(width) * static_cast<size_t>(height) * 4);
  return copy;
}

SIZE GetBitmapSize(HBITMAP bitmap) noexcept {
  BITMAP info{};
  if (bitmap == nullptr || ::GetObjectW(bitmap, sizeof(info), &info) != sizeof(info)) return SIZE{0, 0};
  return SIZE{info.bmWidth, info.bmHeight < 0 ? -info.bmHeight : info.bmHeight};
}

namespace {

bool BlendPicture(HDC dc, HBITMAP picture, const RECT& target, SIZE source) noexcept {
  const int width = target.right - target.left, height = target.bottom - target.top;
  if (dc == nullptr || width <= 0 || height <= 0 || source.cx <= 0 || source.cy <= 0) return false;
  const corvane::unique_hdc sourceDc(::CreateCompatibleDC(dc));
  if (!sourceDc) return false;
  const corvane::scoped_select selected(sourceDc.get(), picture);
  const BLENDFUNCTION blend{AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
  return ::AlphaBlend(dc, target.left, target.top, width, height, sourceDc.get(), 0, 0, source.cx, source.cy, blend) !=
         FALSE;
}

}  // namespace

bool DrawPngBitmap(HDC dc, HBITMAP picture, const RECT& area) noexcept {
  const SIZE size = GetBitmapSize(picture);
  const SIZE shown{std::min<LONG>(size.cx, area.right - area.left), std::min<LONG>(size.cy, area.bottom - area.top)};
  return BlendPicture(dc, picture, RECT{area.left, area.top, area.left + shown.cx, area.top + shown.cy}, shown);
}

bool StretchPngBitmap(HDC dc, HBITMAP picture, const RECT& area) noexcept {
  return BlendPicture(dc, picture, area, GetBitmapSize(picture));
}

}  // namespace imageutil
