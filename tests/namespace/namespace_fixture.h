#pragma once
// The built Corvane.dll in this test program (named explorer.exe so the DLL agrees to load): the
// client's state published under HKCU, the app theme, the Halvex.exe stand-in recording commands,
// and the namespace view hosted in a plain frame with a fake shell browser.
#include <windows.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "../client_launcher/standin_session.h"
#include "../client_registry/saved_value.h"
#include "../explorer_standin/scratch_folder.h"
#include "client_state.h"
#include "log_files.h"
#include "namespace_host.h"

namespace nstest {

using testsupport::ClientState;

// Where the test program's DLL and client stand-in lie.
std::wstring DllPath();
std::wstring ClientExe();
using logtest::Utf8;

class NamespaceTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Publishes the state; kSyncReady names the scratch sync folder.
  void Publish(ClientState state);
  void SetDarkTheme(bool dark) { ASSERT_TRUE(m_theme->Set(dark)); }

  // A folder of the This PC class from the DLL, and its view in a frame of the given client size.
  void OpenView(int width, int height);
  // The prompt window inside the view.
  HWND Prompt() const;

  // The next command at the client stand-in: waits for one more record than `before`.
  std::wstring NextCommand(size_t before);
  size_t CommandCount() const;

  std::unique_ptr<launchertest::StandinSession> m_clients;
  std::unique_ptr<standintest::ScratchFolder> m_scratch;
  std::wstring m_syncFolder;
  std::unique_ptr<nshost::NamespaceHost> m_host;

 private:
  std::optional<registrytest::ThemeOverride> m_theme;
};

}  // namespace nstest
