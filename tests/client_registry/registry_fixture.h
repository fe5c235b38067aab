#pragma once
// A scratch Halvex key tree, a fresh temporary folder, a logger over it and a capture of the
// debugger output, so that each test sees exactly the log lines its own calls produced.
#include <windows.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "client_keys.h"
#include "debug_capture.h"
#include "log_files.h"

namespace registrytest {

inline const std::wstring kRoot = testsupport::kClientKey;
inline const std::wstring kUser = testsupport::kTestUser;
inline const std::wstring kUserKey = testsupport::kTestUserKey;
inline const std::wstring kZoomKey = testsupport::kZoomKey;

// One log line reduced to its level tag ("[Info]") and the message after the location.
struct LogLine {
  std::wstring tag, message;
};

class RegistryTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  static void DeleteHalvexTree() { ::RegDeleteTreeW(HKEY_CURRENT_USER, kRoot.c_str()); }
  static void SetText(const std::wstring& subkey, const std::wstring& name, const std::wstring& text) {
    SetRaw(subkey, name, REG_SZ, text.c_str(), static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
  }
  // Arbitrary bytes under any type, for values the client never writes but the readers must survive.
  static void SetRaw(const std::wstring& subkey, const std::wstring& name, DWORD type, const void* data, DWORD bytes) {
    ASSERT_EQ(::RegSetKeyValueW(HKEY_CURRENT_USER, subkey.c_str(), name.c_str(), type, data, bytes), ERROR_SUCCESS);
  }
  static void SetUser(const std::wstring& user) { SetText(kRoot, L"currentUser", user); }
  // A value of the test user's own key, given as text.
  static void SetUserValue(const std::wstring& name, const std::wstring& text) { SetText(kUserKey, name, text); }

  // A folder or a small file under this test's temporary folder (name may contain backslashes).
  std::wstring MakeFolder(const std::wstring& name) const {
    std::filesystem::create_directories(m_scratch / name);
    return m_scratch / name;
  }
  std::wstring MakeFile(const std::wstring& name) const {
    std::ofstream(std::filesystem::path(m_scratch / name)) << "png";
    return m_scratch / name;
  }

  // The lines logged under [function], in order.
  std::vector<LogLine> LogOf(const std::wstring& function) const;
  void ClearLog() { m_capture.Clear(); }

 private:
  testsupport::DebugCapture m_capture;
  logtest::TempFolder m_scratch;
};

}  // namespace registrytest
