#pragma once
// Pictures for painting: a PNG loaded into a premultiplied 32-bit DIB section of the caller's own
// (the decoded pixels are shared process-wide by the file's content), drawn with its per-pixel
// transparency by AlphaBlend. The file is not kept open, so it can be re-rendered while a button
// shows the old picture.
#include <windows.h>

#include <string>

#include "platform/handles.h"

namespace imageutil {

// Top-down 32-bit DIB section with premultiplied alpha; null when the file cannot be loaded. When it
// is null although the file held a good picture (memory or GDI ran short), *worthRetrying is set.
corvane::unique_hbitmap LoadPngBitmap(const std::wstring& path, bool* worthRetrying = nullptr);

// A second, independent copy of a picture from LoadPngBitmap (cheaper than decoding the file again).
corvane::unique_hbitmap CopyPngBitmap(HBITMAP picture);

// Width and height of a bitmap; {0, 0} for null.
SIZE GetBitmapSize(HBITMAP bitmap) noexcept;

// Draws a picture from LoadPngBitmap at the top-left of area, at its own size and clipped to area,
// blending it over what dc already holds. False when nothing could be drawn.
bool DrawPngBitmap(HDC dc, HBITMAP picture, const RECT& area) noexcept;

// Draws the whole picture scaled to fill area (aspect ratio not kept), blending it over dc.
bool StretchPngBitmap(HDC dc, HBITMAP picture, const RECT& area) noexcept;

}  // namespace imageutil
