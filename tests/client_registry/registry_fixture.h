#pragma once
// A scratch Halvex key tree, a fresh temporary folder, a logger over it and a capture of the
// debugger output, so that each test sees exactly the log lines its own calls produced.
#include <windows.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "client_state.h"
#include "debug_capture.h"
#include "log/logger.h"
#include "log_files.h"

namespace registrytest {

inline const std::wstring kRoot = testsupport::kClientKey;
inline const std::wstring kUser = testsupport::kTestUser;
inline const std::wstring kUserKey = testsupport::kTestUserKey;
inline const std::wstring kZoomKey = testsupport::kZoomKey;
using testsupport::SetText;

class RegistryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    DeleteHalvexTree();
    g_pLogger = new LOGGER::CLogger(4, m_scratch / L"log", L"Corvane");
  }
  void TearDown() override {
    delete std::exchange(g_pLogger, nullptr);
    DeleteHalvexTree();
  }

  static void DeleteHalvexTree() { testsupport::ClearClientState(); }
  // Arbitrary bytes under any type, for values the client never writes but the readers must survive.
  static void SetRaw(const std::wstring& subkey, const std::wstring& name, DWORD type, const void* data, DWORD bytes) {
    ASSERT_EQ(::RegSetKeyValueW(HKEY_CURRENT_USER, subkey.c_str(), name.c_str(), type, data, bytes), ERROR_SUCCESS);
  }
  static void SetUser(const std::wstring& user) { SetText(kRoot, L"currentUser", user); }
  // A value of the test user's own key, given as text.
  static void SetUserValue(const std::wstring& name, const std::wstring& text) { SetText(kUserKey, name, text); }

  // A folder or a small file under this test's temporary folder (name may contain backslashes).
  std::wstring MakeFolder(const std::wstring& name) const { return m_scratch.MakeFolder(name); }
  std::wstring MakeFile(const std::wstring& name) const {
    std::ofstream(std::filesystem::path(m_scratch / name)) << "png";
    return m_scratch / name;
  }

  // The lines logged under [function], in order.
  std::vector<logtest::LogLine> LogOf(const std::wstring& function) const {
    std::vector<logtest::LogLine> found;
    for (const std::wstring& text : m_capture.Lines()) {
      logtest::LogLine line;
      if (logtest::ParseLogLine(text, line) && line.function == function) found.push_back(line);
    }
    return found;
  }
  void ClearLog() { m_capture.Clear(); }

 private:
  testsupport::DebugCapture m_capture;
  logtest::TempFolder m_scratch;
};

}  // namespace registrytest
