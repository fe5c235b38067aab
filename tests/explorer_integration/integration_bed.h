#pragma once
// The test bed for the add-in inside the Explorer stand-in: the helper object registered the way
// Explorer finds it, the client's published state under a scratch Halvex key, a scratch folder tree
// with the sync folder, the client and DPI tool stand-ins recording their starts, and the add-in's
// own log read back.
#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "../client_launcher/standin_session.h"
#include "../explorer_standin/standin_session.h"
#include "client_state.h"
#include "log_files.h"
#include "window_probe.h"

namespace integrationtest {

// Where the bar is, seen from outside the stand-in.
struct BarState {
  HWND bar = nullptr;
  HWND frame = nullptr;      // the window's top-level frame
  bool shown = false;        // visible and a child of the view window
  RECT barInView{};          // in the view window's client coordinates
  RECT listInView{};         // the DirectUIHWND file list, likewise
  RECT view{};               // the view window's client rectangle
  SIZE listPosted{-1, -1};   // the last WM_SIZE posted to the list (not sent by a move), if any
};

class ExplorerIntegration : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // The client's state: signed in with sync on, or the given values; syncPath as the client writes it.
  // Written over in place, where testsupport::PublishClientState clears the key first: the windows
  // read these values every second while a test changes them, and must never meet them missing.
  static void Publish(const std::wstring& login, const std::wstring& openSync, const std::wstring& syncPath) {
    testsupport::WriteClientState(login, openSync, syncPath);
  }

  // A folder's path as the shell spells it (what the add-in reads back from a PIDL).
  static std::wstring ShellPath(const std::wstring& path);

  BarState Bar(int id);
  // Polls until the bar's visibility is `shown` (and, shown, laid out) or timeoutMs passes.
  // A correct bar returns at once; the time only bounds a wrong one (a one-second check plus the
  // layout, under a loaded machine).
  BarState WaitForBar(int id, bool shown, DWORD timeoutMs = 5000);

  // The lines of the add-in's log files made since the test began, in the order written.
  std::vector<std::wstring> LogLines() const;
  // Lines holding `text`.
  size_t CountLog(const std::wstring& text) const;

  std::wstring Navigate(int id, const std::wstring& location);
  // A fresh stand-in Explorer, which takes up the environment as it is now.
  void RestartExplorer();

  // The folder of the Corvane.dll that is registered; the test bed's own unless a fixture sets
  // another (with its CorvaneSkin, and its client folder above it) before SetUp.
  std::wstring m_dllFolder;
  std::unique_ptr<launchertest::StandinSession> m_clients;
  logtest::TempFolder m_scratch;
  std::unique_ptr<standintest::StandinSession> m_explorer;
  std::wstring m_sync;      // the sync folder, as the shell spells it, without a trailing backslash
  std::wstring m_sibling;   // <sync>2: begins with the sync folder's name
  std::wstring m_inside;    // <sync>\Inside
  std::wstring m_other;     // a folder elsewhere

 private:
  std::wstring m_logFolder;
  std::vector<std::wstring> m_logsBefore;
};

using testsupport::RectIn;
using testsupport::WaitUntil;

}  // namespace integrationtest
