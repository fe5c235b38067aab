#pragma once
// Light or dark, asked of the registry at every use, and the colours of both.
#include <windows.h>

namespace theme {

// Dark exactly when HKCU\...\Themes\Personalize "AppsUseLightTheme" is the DWORD 0; a missing value,
// another type or any error means light.
bool IsDarkTheme() noexcept;

// The palette; painting code asks IsDarkTheme() each time and picks a row.
COLORREF LoginBackground(bool dark) noexcept;
// The bar and everything drawn on it: RGB(255, 255, 255) light, RGB(32, 32, 32) dark.
COLORREF BarBackground(bool dark) noexcept;
COLORREF SeparatorLine(bool dark) noexcept;
// Tool button states: 0 normal, 1 hover, 2 pressed, 3 disabled; any other state paints as normal.
COLORREF ToolButtonBackground(bool dark, int state) noexcept;
COLORREF ToolButtonText(bool dark, int state) noexcept;

// True for the WM_SETTINGCHANGE strings that announce a theme change to a window: lParam must be a
// string equal to one of the given names, exactly and case-sensitively.
bool IsSettingChange(LPARAM lParam, const wchar_t* name) noexcept;

}  // namespace theme

using theme::IsDarkTheme;
