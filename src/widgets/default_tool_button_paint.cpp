#include <algorithm>
#include <memory>

#include "platform/handles.h"
#include "widgets/default_tool_button.h"
#include "widgets/font_maker.h"
#include "platform/gdiplus_headers.h"

namespace widgets {

namespace {

using Gdiplus::Ok;

constexpr Gdiplus::REAL kCornerRadius = 4.0f;
constexpr BYTE kGlowAlpha = 30;

Gdiplus::Color Opaque(COLORREF colour) {
  return Gdiplus::Color(255, GetRValue(colour), GetGValue(colour), GetBValue(colour));
}

bool AddRoundedRect(Gdiplus::GraphicsPath& path, const Gdiplus::RectF& rect, Gdiplus::REAL radius) {
  const Gdiplus::REAL d = std::min({radius * 2.0f, rect.Width, rect.Height});
  if (d <= 0.0f) return path.AddRectangle(rect) == Ok;
  path.AddArc(rect.X, rect.Y, d, d, 180.0f, 90.0f);
  path.AddArc(rect.X + rect.Width - d, rect.Y, d, d, 270.0f, 90.0f);
  path.AddArc(rect.X + rect.Width - d, rect.Y + rect.Height - d, d, d, 0.0f, 90.0f);
  path.AddArc(rect.X, rect.Y + rect.Height - d, d, d, 90.0f, 90.0f);
  return path.CloseFigure() == Ok;
}

// Draws the button into a premultiplied 32-bit buffer; GDI+ keeps alpha only when it is told the
// buffer's format, which a graphics opened on the DC itself would not know.
bool Render(void* bits, int width, int height, int state, const std::wstring& text) {
  Gdiplus::Bitmap surface(width, height, width * 4, PixelFormat32bppPARGB, static_cast<BYTE*>(bits));
  if (surface.GetLastStatus() != Ok) return false;
  Gdiplus::Graphics graphics(&surface);
  if (graphics.GetLastStatus() != Ok) return false;
  graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
  if (graphics.Clear(Gdiplus::Color(0, 0, 0, 0)) != Ok) return false;

  const bool dark = theme::IsDarkTheme();
  const COLORREF background = theme::ToolButtonBackground(dark, state);
  const COLORREF foreground = theme::ToolButtonText(dark, state);

  // The shape leaves one pixel all round for the glow, which is the shape grown by 2 pixels.
  const Gdiplus::RectF shape(1.0f, 1.0f, static_cast<Gdiplus::REAL>(width - 2), static_cast<Gdiplus::REAL>(height - 2));
  if (state == 1) {
    const Gdiplus::RectF glowRect(shape.X - 1.0f, shape.Y - 1.0f, shape.Width + 2.0f, shape.Height + 2.0f);
    Gdiplus::GraphicsPath glowPath;
    if (AddRoundedRect(glowPath, glowRect, kCornerRadius + 1.0f)) {
      Gdiplus::PathGradientBrush glow(&glowPath);
      const Gdiplus::Color edge = dark ? Gdiplus::Color(kGlowAlpha, 255, 255, 255) : Gdiplus::Color(kGlowAlpha, 66, 153, 225);
      INT count = 1;
      glow.SetCenterColor(Gdiplus::Color(0, edge.GetR(), edge.GetG(), edge.GetB()));
      glow.SetSurroundColors(&edge, &count);
      if (glow.GetLastStatus() == Ok) graphics.FillPath(&glow, &glowPath);
    }
  }

  Gdiplus::GraphicsPath shapePath;
  if (shape.Width > 0.0f && shape.Height > 0.0f && AddRoundedRect(shapePath, shape, kCornerRadius)) {
    const Gdiplus::SolidBrush fill(Opaque(background));
    graphics.FillPath(&fill, &shapePath);
  }

  if (!text.empty()) {
    const auto font = imageutil::MakeFont(L"Microsoft YaHei", 10.0f, Gdiplus::FontStyleRegular, Gdiplus::UnitPoint);
    Gdiplus::StringFormat format;
    format.SetAlignment(Gdiplus::StringAlignmentCenter);
    format.SetLineAlignment(Gdiplus::StringAlignmentCenter);
    format.SetFormatFlags(Gdiplus::StringFormatFlagsNoWrap);
    format.SetTrimming(Gdiplus::StringTrimmingEllipsisCharacter);
    const Gdiplus::SolidBrush ink(Opaque(foreground));
    if (font && format.GetLastStatus() == Ok) {
      const Gdiplus::RectF layout(0.0f, 0.0f, static_cast<Gdiplus::REAL>(width), static_cast<Gdiplus::REAL>(height));
      graphics.DrawString(text.c_str(), -1, font.get(), layout, &format, &ink);
    }
  }
  graphics.Flush(Gdiplus::FlushIntentionSync);
  return true;
}

}  // namespace

// Nothing of GDI+ is kept between paints: the Explorer window controller shuts GDI+ down in its
// destructor, before the bar and its buttons (its members) are destroyed.
void PaintDefaultToolButton(HWND window, HDC dc, int state, const std::wstring& text) noexcept {
  try {
    RECT client{};
    if (dc == nullptr || !::GetClientRect(window, &client)) return;
    const int width = client.right - client.left, height = client.bottom - client.top;
    if (width <= 0 || height <= 0) return;

    const corvane::unique_hdc memory(::CreateCompatibleDC(dc));
    if (!memory) return;
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    const corvane::unique_hbitmap buffer(::CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    if (!buffer || bits == nullptr) return;
    const corvane::scoped_select selected(memory.get(), buffer.get());
    if (!Render(bits, width, height, state, text)) return;
    const BLENDFUNCTION blend{AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
    ::AlphaBlend(dc, 0, 0, width, height, memory.get(), 0, 0, width, height, blend);
  } catch (...) {
    // Painting never throws into the window procedure; a failed paint leaves the old pixels.
  }
}

}  // namespace widgets
