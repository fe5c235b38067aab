#pragma once
// File-to-file picture operations on GDI+: a caption rendered to a transparent PNG at the client's
// zoom, two PNGs joined side by side, a PNG stretched to a size, and the PNG encoder lookup.
// GDI+ must already be running (the Explorer window controller starts it); nothing here starts it.
// Every source file is read into memory and closed before the call returns, so a button that shows
// a picture never stops the bar from writing the same file name again.
#include <windows.h>

#include <cstdint>
#include <memory>
#include <string>

#include "platform/gdiplus_headers.h"

namespace imageutil {

// The description of a caption picture.
struct TextImageStyle {
  std::wstring text;                          // an empty caption produces no picture
  Gdiplus::ARGB color = 0xFF000000;           // opaque black
  float fontSize = 20.0f;                     // pixels, before the zoom
  std::wstring fontName = L"Microsoft YaHei";
  INT fontStyle = 0;                          // Gdiplus::FontStyle bits
  float padX = 0.0f;                          // left offset of the text, added to the width
  float padY = 0.0f;                          // top offset of the text, added to the height
  std::uint64_t zoomWindow = 0;               // window number whose published zoom applies
};

// Renders style.text into a 32-bit transparent PNG at 96 DPI, sized to the measured text plus the
// padding. False (and no file) for an empty caption or any GDI+ failure; an existing file is
// overwritten.
bool RenderTextToPng(const TextImageStyle& style, const std::wstring& outPath);

// Joins two pictures: left at x 0, right at (left width - overlap), both centred vertically, the
// right one moved down by rightYOffset and drawn last. An overlap wider than the left picture
// counts as 0. Returns outPath, or an empty string on any failure.
std::wstring CombinePngHorizontally(const std::wstring& leftPath, const std::wstring& rightPath,
                                    const std::wstring& outPath, int overlap, int rightYOffset);

// Width and height of a picture file; false with the outputs untouched when it cannot be loaded.
bool GetImageSize(const std::wstring& path, UINT& width, UINT& height);

// Scales srcPath to exactly width x height (aspect ratio not kept) and saves it as PNG. A missing
// source returns false before anything is written.
bool StretchPngToFile(const std::wstring& srcPath, const std::wstring& dstPath, int width, int height);

// Index of the first installed encoder whose MIME type equals mimeType exactly, its CLSID copied
// out; -1 when there is none.
int GetEncoderClsid(const wchar_t* mimeType, CLSID* clsid);

}  // namespace imageutil

using imageutil::CombinePngHorizontally;
using imageutil::GetEncoderClsid;
using imageutil::GetImageSize;
using imageutil::RenderTextToPng;
using imageutil::StretchPngToFile;
using imageutil::TextImageStyle;
