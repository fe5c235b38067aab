// Which host processes the add-in agrees to run in (also fuzzed against a reference reading).
#include <gtest/gtest.h>

#include <string>

#include "core/host_check.h"

namespace {

using corvane::core::IsAllowedHost;

TEST(HostCheck, AcceptsOnlyExplorerAndTheRegistrationTool) {
  const struct {
    std::wstring path;
    bool allowed;
  } cases[] = {
      {L"C:\\Windows\\explorer.exe", true},
      {L"C:\\Windows\\EXPLORER.EXE", true},
      {L"C:\\Windows\\System32\\regsvr32.exe", true},
      {L"\\explorer.exe", true},
      {L"C:\\\u8d44\u6e90\u7ba1\u7406\u5668\\explorer.exe", true},
      // The system's buffer ends at its first null.
      {std::wstring(L"C:\\Windows\\explorer.exe\0.bak", 28), true},
      // The tail starts at the backslash, so a longer name is a different program.
      {L"C:\\Tools\\myexplorer.exe", false},
      {L"C:\\Windows\\explorer.exe.bak", false},
      {L"C:\\Windows\\explorer.exe ", false},
      {L"C:\\explorer.exe\\notepad.exe", false},
      {L"C:\\Windows\\regsvr64.exe", false},
      // Only a backslash separates.
      {L"C:/Windows/explorer.exe", false},
      {L"explorer.exe", false},
      {L"", false},
      // Letters outside ASCII stay as they are: U+0145 must not turn into 'e' (its low byte is 'E'),
      // nor full-width letters into ASCII ones.
      {L"C:\\Windows\\\u0145XPLORER.EXE", false},
      {L"C:\\Windows\\\uff25xplorer.exe", false},
      {L"C:\\Windows\\\u0130EGSVR32.EXE", false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(IsAllowedHost(c.path), c.allowed) << "host: " << testing::PrintToString(c.path);
  }
}

}  // namespace
