// Explorer's "ShowStatusBar" setting as the status-bar helper reads it, on the real registry value,
// which is saved first and put back afterwards.
#include <windows.h>

#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "explorer/status_bar.h"

namespace {

const wchar_t kAdvanced[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Advanced";
const wchar_t kValue[] = L"ShowStatusBar";

class ShowStatusBarSetting : public ::testing::Test {
 protected:
  void SetUp() override {
    DWORD type = 0, size = 0;
    if (::RegGetValueW(HKEY_CURRENT_USER, kAdvanced, kValue, RRF_RT_ANY, &type, nullptr, &size) == ERROR_SUCCESS) {
      m_saved.emplace(size);
      ASSERT_EQ(::RegGetValueW(HKEY_CURRENT_USER, kAdvanced, kValue, RRF_RT_ANY, &type, m_saved->data(), &size),
                ERROR_SUCCESS);
      m_savedType = type;
    }
  }
  void TearDown() override {
    Remove();
    if (m_saved) {
      ::RegSetKeyValueW(HKEY_CURRENT_USER, kAdvanced, kValue, m_savedType, m_saved->data(),
                        static_cast<DWORD>(m_saved->size()));
    }
  }
  static void Remove() { ::RegDeleteKeyValueW(HKEY_CURRENT_USER, kAdvanced, kValue); }

 private:
  std::optional<std::vector<BYTE>> m_saved;
  DWORD m_savedType = REG_NONE;
};

TEST_F(ShowStatusBarSetting, MissingValueReadsAsHiddenAndEveryCallReadsAfresh) {
  const CStatusBar statusBar;
  const DWORD zero = 0, one = 1;
  struct Case {
    const char* what;
    const DWORD* value;  // null: the value is removed, the key stays
    bool shown;
  };
  const Case cases[] = {
      {"DWORD 1", &one, true},
      // Explorer itself shows its status bar when the value is missing; the add-in reads it as off.
      {"missing", nullptr, false},
      {"DWORD 0", &zero, false},
      {"DWORD 1 again", &one, true},
      {"missing again", nullptr, false},
  };
  for (const Case& c : cases) {
    if (c.value != nullptr) {
      ASSERT_EQ(::RegSetKeyValueW(HKEY_CURRENT_USER, kAdvanced, kValue, REG_DWORD, c.value, sizeof(DWORD)), ERROR_SUCCESS);
    } else {
      Remove();
    }
    EXPECT_EQ(statusBar.IsStatusBarShown(), c.shown) << c.what;
  }
}

}  // namespace
