#pragma once
// What the bar's three windows share: the private message, the background colours and the small
// window operations each of them repeats.
#include <windows.h>

#include <cstdint>
#include <string>

// Sent to the title window when the right button group was re-measured.
inline constexpr UINT WM_TITLE_PLACE_RIGHT = WM_USER + 239;

namespace bar {

// The bar's background; light RGB(255, 255, 255), dark RGB(32, 32, 32).
COLORREF BackgroundColor(bool dark) noexcept;

// How a bar window paints. With a DC given in wParam only the parent's themed background (and the
// separator) is drawn into it, unbuffered; otherwise the window is painted through a back buffer
// filled with the background colour.
struct PaintStyle {
  bool parentBackground = true;  // DrawThemeParentBackground over the fill
  bool separator = false;        // the 1-pixel line one pixel above the bottom edge
};
void Paint(HWND window, HDC givenDc, PaintStyle style) noexcept;

// SetWindowPos to a rectangle of the parent's client area, z-order and activation left alone.
void MoveTo(HWND window, const RECT& rect) noexcept;
// RedrawWindow with RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW when the window exists.
void RedrawNow(HWND window) noexcept;

// The number of a window as the client's zoom value names and command lines write it.
std::uint64_t WindowNumber(HWND window) noexcept;

// A skin-relative name such as "CorvaneSkin\\Capacity.png" under the module's folder.
std::wstring SkinPath(const std::wstring& moduleFolder, const wchar_t* relativeName);

}  // namespace bar
