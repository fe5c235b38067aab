// The light/dark test on the real registry value, the WM_SETTINGCHANGE string match, and the zoom
// comparison.
#include <windows.h>

#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "client/theme.h"
#include "core/nearly_equal.h"

namespace {

const wchar_t kPersonalize[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize";
const wchar_t kValue[] = L"AppsUseLightTheme";

// Saves the prefix's own setting and puts it back, so other programs see the theme they expect.
class ThemeSetting : public ::testing::Test {
 protected:
  void SetUp() override {
    DWORD type = 0, size = 0;
    if (::RegGetValueW(HKEY_CURRENT_USER, kPersonalize, kValue, RRF_RT_ANY, &type, nullptr, &size) == ERROR_SUCCESS) {
      m_saved.emplace(size);
      ASSERT_EQ(::RegGetValueW(HKEY_CURRENT_USER, kPersonalize, kValue, RRF_RT_ANY, &type, m_saved->data(), &size),
                ERROR_SUCCESS);
      m_savedType = type;
    }
  }
  void TearDown() override {
    Remove();
    if (m_saved) {
      ::RegSetKeyValueW(HKEY_CURRENT_USER, kPersonalize, kValue, m_savedType, m_saved->data(),
                        static_cast<DWORD>(m_saved->size()));
    }
  }
  static void Remove() { ::RegDeleteKeyValueW(HKEY_CURRENT_USER, kPersonalize, kValue); }
  static void Set(DWORD type, const void* data, DWORD size) {
    ASSERT_EQ(::RegSetKeyValueW(HKEY_CURRENT_USER, kPersonalize, kValue, type, data, size), ERROR_SUCCESS);
  }

 private:
  std::optional<std::vector<BYTE>> m_saved;
  DWORD m_savedType = REG_NONE;
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
  wchar_t immersive[] = L"ImmersiveColorSet";
  wchar_t lower[] = L"immersivecolorset";
  wchar_t longer[] = L"ImmersiveColorSetX";
  wchar_t prefix[] = L"Immersive";
  wchar_t empty[] = L"";
  const auto param = [](wchar_t* text) { return reinterpret_cast<LPARAM>(text); };
  EXPECT_TRUE(theme::IsSettingChange(param(immersive), L"ImmersiveColorSet"));
  EXPECT_FALSE(theme::IsSettingChange(param(immersive), L"WindowsThemeElement"));
  EXPECT_FALSE(theme::IsSettingChange(param(lower), L"ImmersiveColorSet"));
  EXPECT_FALSE(theme::IsSettingChange(param(longer), L"ImmersiveColorSet"));
  EXPECT_FALSE(theme::IsSettingChange(param(prefix), L"ImmersiveColorSet"));
  EXPECT_FALSE(theme::IsSettingChange(param(empty), L"ImmersiveColorSet"));
  EXPECT_FALSE(theme::IsSettingChange(0, L"ImmersiveColorSet"));
  EXPECT_FALSE(theme::IsSettingChange(param(immersive), nullptr));
}

TEST(NearlyEqual, RelativeWhenBothNonZeroAbsoluteOtherwise) {
  using corvane::core::IsNearlyEqual;
  struct Case {
    double a, b;
    bool expected;
  } const cases[] = {
      {0.0, 0.0, true},
      {0.0, 1e-10, true},  // absolute: a is zero
      {1e-10, 0.0, true},  // absolute: b is zero
      {0.0, 1e-8, false},
      {1.0, 1.25, false},
      {1.25, 1.0, false},
      {1.0, 1.0, true},
      {1.0, 1.0 + 5e-10, true},
      {1.0, 1.0 + 2e-9, false},
      {1000.0, 1000.0 + 1e-7, true},  // absolute difference above epsilon, relative 1e-10
      {1e-12, 2e-12, false},          // absolute difference tiny, relative 0.5
      {-1.0, -1.0 - 5e-10, true},     // the magnitude of b, not b, divides
      {-1.0, 1.0, false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(IsNearlyEqual(c.a, c.b, 1e-9), c.expected) << c.a << " vs " << c.b;
  }
}

}  // namespace
