// The light/dark test on the real registry value, and the WM_SETTINGCHANGE string match.
#include <windows.h>

#include <gtest/gtest.h>

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

TEST(ThemeSettingChange, ExactCaseSensitiveStringsOnly) {
  // Null, other and lower-case settings are refused in the windows' own tests; here the lengths.
  for (const auto& [text, match] :
       {std::pair{L"ImmersiveColorSet", true}, {L"ImmersiveColorSetX", false}, {L"Immersive", false}})
    EXPECT_EQ(theme::IsSettingChange(reinterpret_cast<LPARAM>(text), L"ImmersiveColorSet"), match) << text;
  EXPECT_FALSE(theme::IsSettingChange(reinterpret_cast<LPARAM>(L"ImmersiveColorSet"), nullptr));
}

}  // namespace
