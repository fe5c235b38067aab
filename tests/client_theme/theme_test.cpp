// The light/dark test on the real registry value, the WM_SETTINGCHANGE string match, and the zoom
// comparison.
#include <windows.h>

#include <gtest/gtest.h>

#include "../client_registry/saved_value.h"
#include "client/theme.h"

namespace {

// The prefix's own setting is put back afterwards, so other programs see the theme they expect.
class ThemeSetting : public ::testing::Test {
 protected:
  void Remove() const { m_value.Remove(); }
  void Set(DWORD type, const void* data, DWORD size) const { ASSERT_TRUE(m_value.Write(type, data, size)); }

 private:
  registrytest::SavedValue m_value{registrytest::kPersonalizeKey, L"AppsUseLightTheme"};
};

TEST_F(ThemeSetting, DarkOnlyForTheDwordZero) {
  Remove();
  EXPECT_FALSE(theme::IsDarkTheme()) << "no value";

  const DWORD zero = 0, one = 1, two = 2;
  Set(REG_DWORD, &zero, 4);
  EXPECT_TRUE(theme::IsDarkTheme());
  Set(REG_DWORD, &one, 4);
  EXPECT_FALSE(theme::IsDarkTheme());
  Set(REG_DWORD, &two, 4);
  EXPECT_FALSE(theme::IsDarkTheme());

  // The type restriction rejects everything but a DWORD, even when its bytes would read as 0.
  Set(REG_SZ, L"0", 4);
  EXPECT_FALSE(theme::IsDarkTheme()) << "REG_SZ \"0\"";
  Set(REG_BINARY, &zero, 4);
  EXPECT_FALSE(theme::IsDarkTheme()) << "REG_BINARY 0";
  const unsigned long long wideZero = 0;
  Set(REG_QWORD, &wideZero, 8);
  EXPECT_FALSE(theme::IsDarkTheme()) << "REG_QWORD 0";

  Set(REG_DWORD, &zero, 4);
  EXPECT_TRUE(theme::IsDarkTheme()) << "read afresh, not cached";
  Remove();
  EXPECT_FALSE(theme::IsDarkTheme()) << "read afresh after removal";
}

TEST(ThemeSettingChange, ExactCaseSensitiveStringsOnly) {
  // Null, other and lower-case settings are refused in the windows' own tests; here the lengths.
  wchar_t immersive[] = L"ImmersiveColorSet";
  wchar_t longer[] = L"ImmersiveColorSetX";
  wchar_t prefix[] = L"Immersive";
  const auto param = [](wchar_t* text) { return reinterpret_cast<LPARAM>(text); };
  EXPECT_TRUE(theme::IsSettingChange(param(immersive), L"ImmersiveColorSet"));
  EXPECT_FALSE(theme::IsSettingChange(param(longer), L"ImmersiveColorSet"));
  EXPECT_FALSE(theme::IsSettingChange(param(prefix), L"ImmersiveColorSet"));
  EXPECT_FALSE(theme::IsSettingChange(param(immersive), nullptr));
}

}  // namespace
