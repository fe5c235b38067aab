#include "widgets/image_helpers.h"

#include <algorithm>
#include <cmath>
#include <cwchar>
#include <vector>

#include "client/registry.h"
#include "widgets/font_maker.h"
#include "widgets/image_file.h"

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
  bool SavePng(const std::wstring& path) {
    graphics.reset();
    CLSID png{};
    if (GetEncoderClsid(L"image/png", &png) < 0) return false;
    return bitmap->Save(path.c_str(), &png, nullptr) == Ok;
  }
};

}  // namespace

int GetEncoderClsid(const wchar_t* mimeType, CLSID* clsid) {
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

bool RenderTextToPng(const TextImageStyle& style, const std::wstring& outPath) {
  if (style.text.empty()) return false;

  double zoom = 96.0 / 96.0;
  regUtil::getDpiZoom(style.zoomWindow, zoom);  // nothing published: the zoom stays 1.0
  const double emSize = static_cast<double>(style.fontSize) * zoom;

  Gdiplus::Bitmap probe(1, 1, PixelFormat32bppARGB);
  if (probe.GetLastStatus() != Ok) return false;
  Gdiplus::Graphics measure(&probe);
  if (measure.GetLastStatus() != Ok) return false;
  const std::unique_ptr<Gdiplus::Font> font =
      MakeFont(style.fontName, static_cast<Gdiplus::REAL>(emSize), style.fontStyle, Gdiplus::UnitPixel);
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
  return canvas.SavePng(outPath);
}

std::wstring CombinePngHorizontally(const std::wstring& leftPath, const std::wstring& rightPath,
                                    const std::wstring& outPath, int overlap, int rightYOffset) {
  CImageFile left, right;
  if (!left.Open(leftPath) || !right.Open(rightPath)) return {};
  const INT leftWidth = static_cast<INT>(left.Width()), leftHeight = static_cast<INT>(left.Height());
  const INT rightWidth = static_cast<INT>(right.Width()), rightHeight = static_cast<INT>(right.Height());
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
  if (!canvas.SavePng(outPath)) return {};
  return outPath;
}

bool GetImageSize(const std::wstring& path, UINT& width, UINT& height) {
  CImageFile file;
  if (!file.Open(path)) return false;
  width = file.Width();
  height = file.Height();
  return true;
}

bool StretchPngToFile(const std::wstring& srcPath, const std::wstring& dstPath, int width, int height) {
  if (::GetFileAttributesW(srcPath.c_str()) == INVALID_FILE_ATTRIBUTES) {
    const DWORD error = ::GetLastError();
    if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) return false;
    // Any other error (access, sharing) goes on: the load decides.
  }
  CImageFile source;
  if (!source.Open(srcPath)) return false;
  Canvas canvas;
  if (!canvas.Create(width, height)) return false;
  const Gdiplus::Rect target(0, 0, width, height);
  if (canvas.graphics->DrawImage(source.get(), target, 0, 0, static_cast<INT>(source.Width()),
                                 static_cast<INT>(source.Height()), Gdiplus::UnitPixel) != Ok) {
    return false;
  }
  return canvas.SavePng(dstPath);
}

}  // namespace imageutil
