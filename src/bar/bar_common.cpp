#include "bar/bar_common.h"

#include <uxtheme.h>

#include "client/theme.h"
#include "platform/handles.h"

namespace bar {

COLORREF BackgroundColor(bool dark) noexcept { return theme::BarBackground(dark); }

namespace {

// The stock DC pen and brush take any colour, so a theme change needs no new GDI object.
void DrawSeparator(HDC dc, const RECT& client, bool dark) noexcept {
  const corvane::scoped_select pen(dc, ::GetStockObject(DC_PEN));
  ::SetDCPenColor(dc, theme::SeparatorLine(dark));
  ::MoveToEx(dc, client.left, client.bottom - 1, nullptr);
  ::LineTo(dc, client.right, client.bottom - 1);
}

}  // namespace

void Paint(HWND window, HDC givenDc, PaintStyle style) noexcept {
  const bool dark = theme::IsDarkTheme();
  RECT client{};
  ::GetClientRect(window, &client);
  if (givenDc != nullptr) {
    if (style.parentBackground) ::DrawThemeParentBackground(window, givenDc, &client);
    if (style.separator) DrawSeparator(givenDc, client, dark);
    return;
  }

  const corvane::scoped_paint paint(window);
  const int width = client.right - client.left, height = client.bottom - client.top;
  if (paint.dc() == nullptr || width <= 0 || height <= 0) return;
  const corvane::unique_hdc memory(::CreateCompatibleDC(paint.dc()));
  const corvane::unique_hbitmap buffer(::CreateCompatibleBitmap(paint.dc(), width, height));
  if (!memory || !buffer) return;
  {
    const corvane::scoped_select selected(memory.get(), buffer.get());
    ::SetDCBrushColor(memory.get(), BackgroundColor(dark));
    ::FillRect(memory.get(), &client, static_cast<HBRUSH>(::GetStockObject(DC_BRUSH)));
    if (style.parentBackground) ::DrawThemeParentBackground(window, memory.get(), &client);
    if (style.separator) DrawSeparator(memory.get(), client, dark);
    ::BitBlt(paint.dc(), 0, 0, width, height, memory.get(), 0, 0, SRCCOPY);
  }
}

void MoveTo(HWND window, const RECT& rect) noexcept {
  ::SetWindowPos(window, nullptr, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void RedrawNow(HWND window) noexcept {
  if (window != nullptr && ::IsWindow(window)) {
    ::RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
  }
}

std::uint64_t WindowNumber(HWND window) noexcept {
  return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(window));
}

std::wstring SkinPath(const std::wstring& moduleFolder, const wchar_t* relativeName) {
  return moduleFolder + relativeName;
}

}  // namespace bar
