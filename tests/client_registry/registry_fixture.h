#pragma once
// A scratch Halvex key tree, a fresh temporary folder, a logger over it and a capture of the
// debugger output, so that each test sees exactly the log lines its own calls produced.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "client_keys.h"
#include "debug_capture.h"
#include "log_files.h"

namespace registrytest {

inline const std::wstring kRoot = testsupport::kClientKey;
inline const std::wstring kUser = testsupport::kTestUser;
inline const std::wstring kUserKey = testsupport::kTestUserKey;
inline const std::wstring kZoomKey = testsupport::kZoomKey;

// One log line reduced to what the rules fix: its level tag and the message after the location.
struct LogLine {
  std::wstring tag;
  std::wstring message;
  bool operator==(const LogLine&) const = default;
};
void PrintTo(const LogLine& line, std::ostream* os);

LogLine Info(std::wstring message);
LogLine Debug(std::wstring message);

class RegistryTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  static void DeleteHalvexTree();
  static void SetText(const std::wstring& subkey, const std::wstring& name, const std::wstring& text);
  // Arbitrary bytes under any type, for values the client never writes but the readers must survive.
  static void SetRaw(const std::wstring& subkey, const std::wstring& name, DWORD type, const void* data, DWORD bytes);
  static void SetUser(const std::wstring& user) { SetText(kRoot, L"currentUser", user); }
  // A signed-in user with sync on, values given as text.
  static void SetUserValue(const std::wstring& name, const std::wstring& text) { SetText(kUserKey, name, text); }

  // A folder created under this test's temporary folder (name may contain backslashes).
  std::wstring MakeFolder(const std::wstring& name) const;
  std::wstring MakeFile(const std::wstring& name) const;
  const std::wstring& Scratch() const { return m_scratch.Path(); }

  // The lines logged under [function], in order.
  std::vector<LogLine> LogOf(const std::wstring& function) const;
  void ClearLog() { m_capture.Clear(); }

 private:
  testsupport::DebugCapture m_capture;
  logtest::TempFolder m_scratch;
};

}  // namespace registrytest
