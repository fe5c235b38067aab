// Explorer's "ShowStatusBar" setting as the status-bar helper reads it, on the real registry value,
// which is saved first and put back afterwards.
#include <windows.h>

#include <gtest/gtest.h>

#include "../client_registry/saved_value.h"
#include "explorer/status_bar.h"

namespace {

TEST(ShowStatusBarSetting, MissingValueReadsAsHiddenAndEveryCallReadsAfresh) {
  registrytest::SavedValue value{L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Advanced", L"ShowStatusBar"};
  const CStatusBar statusBar;
  // Explorer itself shows its status bar when the value is missing; the add-in reads it as off.
  const struct {
    int value;  // -1: the value removed, the key kept
    bool shown;
  } cases[] = {{1, true}, {-1, false}, {1, true}, {0, false}};
  for (const auto& c : cases) {
    if (c.value < 0) {
      value.Remove();
    } else {
      ASSERT_TRUE(value.WriteDword(static_cast<DWORD>(c.value)));
    }
    EXPECT_EQ(statusBar.IsStatusBarShown(), c.shown) << c.value;
  }
}

}  // namespace
