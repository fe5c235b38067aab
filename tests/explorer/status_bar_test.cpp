// Explorer's "ShowStatusBar" setting as the status-bar helper reads it, on the real registry value,
// which is saved first and put back afterwards.
#include <windows.h>

#include <gtest/gtest.h>

#include "../client_registry/saved_value.h"
#include "explorer/status_bar.h"

namespace {

const wchar_t kAdvanced[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Advanced";

class ShowStatusBarSetting : public ::testing::Test {
 protected:
  registrytest::SavedValue m_value{kAdvanced, L"ShowStatusBar"};
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
      ASSERT_TRUE(m_value.WriteDword(*c.value));
    } else {
      m_value.Remove();
    }
    EXPECT_EQ(statusBar.IsStatusBarShown(), c.shown) << c.what;
  }
}

}  // namespace
