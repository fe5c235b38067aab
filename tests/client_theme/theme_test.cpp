// The light/dark test on the real registry value, and the WM_SETTINGCHANGE string match.
#include <windows.h>

#include <gtest/gtest.h>

#include <tuple>

#include "../client_registry/saved_value.h"
#include "client/theme.h"

namespace {

// The prefix's own setting is put back afterwards, so other programs see the theme they expect.
TEST(ThemeSetting, DarkOnlyForTheDwordZero) {
  const registrytest::SavedValue value(registrytest::kPersonalizeKey, L"AppsUseLightTheme");
  const DWORD zero = 0, one = 1, two = 2;
  // No data: no value at all.
  const struct { DWORD type; const void* data; DWORD size; bool dark; } cases[] = {
      {REG_NONE, nullptr, 0, false}, {REG_DWORD, &zero, 4, true}, {REG_DWORD, &one, 4, false},
      {REG_DWORD, &two, 4, false},
      // The type restriction rejects everything but a DWORD, even when its bytes would read as 0.
      {REG_SZ, L"0", 4, false}, {REG_BINARY, &zero, 4, false}, {REG_QWORD, "\0\0\0\0\0\0\0", 8, false},
      {REG_DWORD, &zero, 4, true}, {REG_NONE, nullptr, 0, false},  // read afresh, not cached, and after removal
  };
  for (const auto& c : cases) {
    value.Remove();
    ASSERT_TRUE(c.data == nullptr || value.Write(c.type, c.data, c.size));
    EXPECT_EQ(theme::IsDarkTheme(), c.dark) << "row " << (&c - cases);
  }
}

// The tool buttons' palette by state, light and dark (state 7 stands for any other state).
TEST(ThemePalette, ToolButtonColoursByStateAndTheme) {
  const struct { int state; COLORREF lightBack, darkBack, lightText, darkText; } rows[] = {
      {0, RGB(255, 255, 255), RGB(51, 51, 51), RGB(18, 33, 51), RGB(255, 255, 255)},
      {1, RGB(229, 243, 255), RGB(77, 77, 77), RGB(18, 33, 51), RGB(255, 255, 255)},
      {2, RGB(205, 232, 255), RGB(102, 102, 102), RGB(18, 33, 51), RGB(255, 255, 255)},
      {3, RGB(247, 250, 252), RGB(40, 40, 40), RGB(128, 128, 128), RGB(128, 128, 128)},
      {7, RGB(255, 255, 255), RGB(51, 51, 51), RGB(18, 33, 51), RGB(255, 255, 255)},
  };
  for (const auto& r : rows) {
    EXPECT_EQ(std::make_tuple(theme::ToolButtonBackground(false, r.state), theme::ToolButtonBackground(true, r.state),
                              theme::ToolButtonText(false, r.state), theme::ToolButtonText(true, r.state)),
              std::make_tuple(r.lightBack, r.darkBack, r.lightText, r.darkText)) << "state " << r.state;
  }
}

TEST(ThemeSettingChange, ExactCaseSensitiveStringsOnly) {
  // Null, other and lower-case settings are refused in the windows' own tests; here the lengths.
  for (const auto& [text, match] :
       {std::pair{L"ImmersiveColorSet", true}, {L"ImmersiveColorSetX", false}, {L"Immersive", false}})
    EXPECT_EQ(theme::IsSettingChange(reinterpret_cast<LPARAM>(text), L"ImmersiveColorSet"), match) << text;
  EXPECT_FALSE(theme::IsSettingChange(reinterpret_cast<LPARAM>(L"ImmersiveColorSet"), nullptr));
}

}  // namespace
