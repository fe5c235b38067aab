#include "client/theme.h"

#include <cwchar>

#include "platform/work_profile.h"

namespace theme {

bool IsDarkTheme() noexcept {
  DWORD value = 1;
  DWORD size = sizeof(value);
  const corvane::profile::Timed timed(corvane::profile::Work::RegistryRead);
  const LSTATUS status = ::RegGetValueW(HKEY_CURRENT_USER, L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize",
                                        L"AppsUseLightTheme", RRF_RT_REG_DWORD, nullptr, &value, &size);
  return status == ERROR_SUCCESS && value == 0;
}

COLORREF LoginBackground(bool dark) noexcept { return dark ? RGB(0x20, 0x20, 0x20) : RGB(0xFF, 0xFF, 0xFF); }

COLORREF BarBackground(bool dark) noexcept { return dark ? RGB(32, 32, 32) : RGB(255, 255, 255); }

COLORREF SeparatorLine(bool dark) noexcept { return dark ? RGB(0x3A, 0x3A, 0x3A) : RGB(0xD9, 0xD9, 0xD9); }

COLORREF ToolButtonBackground(bool dark, int state) noexcept {
  switch (state) {
    case 1:
      return dark ? RGB(77, 77, 77) : RGB(229, 243, 255);
    case 2:
      return dark ? RGB(102, 102, 102) : RGB(205, 232, 255);
    case 3:
      return dark ? RGB(40, 40, 40) : RGB(247, 250, 252);
    default:
      return dark ? RGB(51, 51, 51) : RGB(255, 255, 255);
  }
}

COLORREF ToolButtonText(bool dark, int state) noexcept {
  if (state == 3) return RGB(128, 128, 128);
  return dark ? RGB(255, 255, 255) : RGB(18, 33, 51);
}


bool IsSettingChange(LPARAM lParam, const wchar_t* name) noexcept {
  const auto* text = reinterpret_cast<const wchar_t*>(lParam);
  // An exact, case-sensitive match: lstrcmpW would compare by locale and let look-alike strings through.
  return text != nullptr && name != nullptr && std::wcscmp(text, name) == 0;
}

}  // namespace theme
