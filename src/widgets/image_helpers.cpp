#include "widgets/image_helpers.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <cwchar>
#include <vector>

#include "client/registry.h"
#include "platform/work_profile.h"
#include "widgets/font_maker.h"
#include "widgets/picture_store.h"

namespace imageutil {

namespace {

using Gdiplus::Ok;

constexpr Gdiplus::REAL kDpi = 96.0f;

// A blank 32-bit picture at 96 DPI with a graphics on it, cleared to transparent.
struct Canvas {
  std::unique_ptr<Gdiplus::Bitmap> bitmap;
  std::unique_ptr<Gdiplus::Graphics> graphics;

  bool Create(INT width, INT height) {
    if (width <= 0 || height <= 0) return false;
    bitmap = std::make_unique<Gdiplus::Bitmap>(width, height, PixelFormat32bppARGB);
    if (bitmap->GetLastStatus() != Ok || bitmap->SetResolution(kDpi, kDpi) != Ok) return false;
    graphics = std::make_unique<Gdiplus::Graphics>(bitmap.get());
    if (graphics->GetLastStatus() != Ok) return false;
    return graphics->Clear(Gdiplus::Color(0, 0, 0, 0)) == Ok;
  }

  // The graphics goes first: GDI+ wants it released before its bitmap is saved or freed.
  bool SavePng(const std::wstring& path, const std::wstring& inputs, const Sources& sources) {
    graphics.reset();
    return store::WritePng(path, inputs, sources, *bitmap);
  }
};

// Exact text of a number's bits: inputs that differ in the last bit are different inputs.
template <class T>
std::wstring Bits(T value) {
  std::uint64_t bits = 0;
  static_assert(sizeof(T) <= sizeof(bits));
  std::memcpy(&bits, &value, sizeof(T));
  return std::to_wstring(bits);
}

bool RenderCaption(const TextImageStyle& style, Gdiplus::REAL emSize, const std::wstring& outPath,
                   const std::wstring& inputs) {
  const corvane::profile::Timed timed(corvane::profile::Work::CaptionRender);
  Gdiplus::Bitmap probe(1, 1, PixelFormat32bppARGB);
  if (probe.GetLastStatus() != Ok) return false;
  Gdiplus::Graphics measure(&probe);
  if (measure.GetLastStatus() != Ok) return false;
  const std::unique_ptr<Gdiplus::Font> font = MakeFont(style.fontName, emSize, style.fontStyle, Gdiplus::UnitPixel);
  if (!font) return false;
  Gdiplus::RectF bounds;
  if (measure.MeasureString(style.text.c_str(), -1, font.get(), Gdiplus::PointF(0.0f, 0.0f), &bounds) != Ok) return false;

  const INT width = static_cast<INT>(std::ceil(bounds.Width + style.padX));
  const INT height = static_cast<INT>(std::ceil(bounds.Height + style.padY));
  Canvas canvas;
  if (!canvas.Create(width, height)) return false;
  if (canvas.graphics->SetTextRenderingHint(Gdiplus::TextRenderingHintAntiAlias) != Ok) return false;
  const Gdiplus::SolidBrush brush{Gdiplus::Color(style.color)};
  if (brush.GetLastStatus() != Ok) return false;
  if (canvas.graphics->DrawString(style.text.c_str(), -1, font.get(), Gdiplus::PointF(style.padX, style.padY), &brush) !=
      Ok) {
    return false;
  }
  return canvas.SavePng(outPath, inputs, {});
}

std::wstring Combine(const DecodedPicture& leftPicture, const DecodedPicture& rightPicture, const std::wstring& outPath,
                     int overlap, int rightYOffset, const std::wstring& inputs, const Sources& sources) {
  const corvane::profile::Timed timed(corvane::profile::Work::Join);
  const std::unique_ptr<Gdiplus::Bitmap> left = leftPicture.View(), right = rightPicture.View();
  if (!left || !right) return {};
  const INT leftWidth = static_cast<INT>(leftPicture.width), leftHeight = static_cast<INT>(leftPicture.height);
  const INT rightWidth = static_cast<INT>(rightPicture.width), rightHeight = static_cast<INT>(rightPicture.height);
  if (overlap > leftWidth) overlap = 0;

  const INT width = leftWidth + rightWidth - overlap;
  const INT height = std::max(leftHeight, rightHeight);
  Canvas canvas;
  if (!canvas.Create(width, height)) return {};
  if (canvas.graphics->DrawImage(left.get(), 0, (height - leftHeight) / 2, leftWidth, leftHeight) != Ok) return {};
  // Drawn last, the right picture covers the overlapping columns.
  if (canvas.graphics->DrawImage(right.get(), leftWidth - overlap, (height - rightHeight) / 2 + rightYOffset,
                                 rightWidth, rightHeight) != Ok) {
    return {};
  }
  if (!canvas.SavePng(outPath, inputs, sources)) return {};
  return outPath;
}

bool Stretch(const DecodedPicture& picture, const std::wstring& dstPath, int width, int height,
             const std::wstring& inputs, const Sources& sources) {
  const corvane::profile::Timed timed(corvane::profile::Work::Stretch);
  const std::unique_ptr<Gdiplus::Bitmap> source = picture.View();
  if (!source) return false;
  Canvas canvas;
  if (!canvas.Create(width, height)) return false;
  const Gdiplus::Rect target(0, 0, width, height);
  if (canvas.graphics->DrawImage(source.get(), target, 0, 0, static_cast<INT>(picture.width),
                                 static_cast<INT>(picture.height), Gdiplus::UnitPixel) != Ok) {
    return false;
  }
  return canvas.SavePng(dstPath, inputs, sources);
}

}  // namespace

int GetEncoderClsid(const wchar_t* mimeType, CLSID* clsid) {
  const corvane::profile::Timed timed(corvane::profile::Work::EncoderLookup);
  if (mimeType == nullptr || clsid == nullptr) return -1;
  UINT count = 0, bytes = 0;
  if (Gdiplus::GetImageEncodersSize(&count, &bytes) != Ok || bytes == 0) return -1;
  // The descriptions are followed by the strings they point at, all in one block of that size.
  std::vector<BYTE> block(bytes);
  auto* encoders = reinterpret_cast<Gdiplus::ImageCodecInfo*>(block.data());
  if (Gdiplus::GetImageEncoders(count, bytes, encoders) != Ok) return -1;
  for (UINT i = 0; i < count; ++i) {
    if (encoders[i].MimeType != nullptr && std::wcscmp(encoders[i].MimeType, mimeType) == 0) {
      *clsid = encoders[i].Clsid;
      return static_cast<int>(i);
    }
  }
  return -1;
}

// Each helper reads its sources once, asks the picture store whether the output already holds
// what these inputs produce, and otherwise draws and hands the picture to the store to write.

bool RenderTextToPng(const TextImageStyle& style, const std::wstring& outPath) {
  if (style.text.empty()) return false;

  double zoom = 96.0 / 96.0;
  regUtil::getDpiZoom(style.zoomWindow, zoom);  // nothing published: the zoom stays 1.0
  const double emSize = static_cast<double>(style.fontSize) * zoom;

  const std::wstring inputs = L"text|" + style.text + L"|" + style.fontName + L"|" + std::to_wstring(style.color) + L"|" +
                              Bits(style.fontSize) + L"|" + std::to_wstring(style.fontStyle) + L"|" + Bits(style.padX) +
                              L"|" + Bits(style.padY) + L"|" + Bits(emSize);
  if (store::Holds(outPath, inputs)) return true;
  return RenderCaption(style, static_cast<Gdiplus::REAL>(emSize), outPath, inputs);
}

std::wstring CombinePngHorizontally(const std::wstring& leftPath, const std::wstring& rightPath,
                                    const std::wstring& outPath, int overlap, int rightYOffset) {
  const std::optional<SourcePicture> left = store::ReadPicture(leftPath);
  if (!left) return {};
  const std::optional<SourcePicture> right = store::ReadPicture(rightPath);
  if (!right) return {};
  const std::wstring inputs = L"join|" + std::to_wstring(overlap) + L"|" + std::to_wstring(rightYOffset);
  const Sources sources{left->bytes, right->bytes};
  if (store::Holds(outPath, inputs, sources)) return outPath;
  return Combine(*left->picture, *right->picture, outPath, overlap, rightYOffset, inputs, sources);
}

bool StretchPngToFile(const std::wstring& srcPath, const std::wstring& dstPath, int width, int height) {
  if (::GetFileAttributesW(srcPath.c_str()) == INVALID_FILE_ATTRIBUTES) {
    const DWORD error = ::GetLastError();
    if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) return false;
    // Any other error (access, sharing) goes on: the load decides.
  }
  const std::optional<SourcePicture> source = store::ReadPicture(srcPath);
  if (!source) return false;
  const std::wstring inputs = L"stretch|" + std::to_wstring(width) + L"|" + std::to_wstring(height);
  const Sources sources{source->bytes};
  if (store::Holds(dstPath, inputs, sources)) return true;
  return Stretch(*source->picture, dstPath, width, height, inputs, sources);
}

bool GetImageSize(const std::wstring& path, UINT& width, UINT& height) {
  const corvane::profile::Timed timed(corvane::profile::Work::SizeQuery);
  const std::optional<SourcePicture> source = store::ReadPicture(path);
  if (!source) return false;
  width = source->picture->width;
  height = source->picture->height;
  return true;
}

}  // namespace imageutil
