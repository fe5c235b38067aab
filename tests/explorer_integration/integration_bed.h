#pragma once
// The test bed for the add-in inside the Explorer stand-in: the helper object registered the way
// Explorer finds it, the client's published state under a scratch Halvex key, a scratch folder tree
// with the sync folder, the client and DPI tool stand-ins recording their starts, and the add-in's
// own log read back.
#include <windows.h>
#include <shlobj.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "../client_launcher/standin_session.h"
#include "../explorer_standin/standin_session.h"
#include "client_state.h"
#include "core/paths.h"
#include "host_process.h"
#include "log_files.h"
#include "platform/handles.h"
#include "platform/module_path.h"
#include "window_probe.h"

namespace integrationtest {

using testsupport::RectIn;
using testsupport::WaitUntil;

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
  void SetUp() override {
    testsupport::ClearClientState();
    if (m_dllFolder.empty()) m_dllFolder = corvane::ThisModuleFolder();
    m_logFolder = corvane::core::ParentFolder(m_dllFolder) + L"log\\Corvane\\";
    m_logsBefore = logtest::FilesIn(m_logFolder);
    // The client and DPI tool stand-ins inherit their record files from the stand-in Explorer; the
    // client stays alive a while, as the real one does, so a running client is seen as running.
    m_clients = std::make_unique<launchertest::StandinSession>();
    ::SetEnvironmentVariableW(L"HALVEX_STANDIN_LINGER_MS", L"60000");

    m_sync = ShellPath(m_scratch.MakeFolder(L"Sync"));
    m_sibling = ShellPath(m_scratch.MakeFolder(L"Sync2"));
    m_inside = ShellPath(m_scratch.MakeFolder(L"Sync\\Inside"));
    m_other = ShellPath(m_scratch.MakeFolder(L"Elsewhere"));
    Publish(L"1", L"1", m_sync);

    // The helper object is registered as an installer registers it: Wine's regsvr32 on the built DLL
    // (machine-wide, since Explorer finds helper objects there only).
    EXPECT_TRUE(moduletest::Regsvr32(L"/s", m_dllFolder + L"Corvane.dll").finished);

    RestartExplorer();
  }
  void TearDown() override {
    if (m_explorer) {
      const auto code = m_explorer->Quit();
      EXPECT_TRUE(code.has_value() && *code == 0) << "the stand-in did not end cleanly; log:\n"
                                                   << testing::PrintToString(m_explorer->LogText());
      m_explorer.reset();
    }
    EXPECT_TRUE(moduletest::Regsvr32(L"/s /u", m_dllFolder + L"Corvane.dll").finished);
    testsupport::ClearClientState();
    m_clients.reset();
  }

  // The client's state: signed in with sync on, or the given values; syncPath as the client writes it.
  // Written over in place, where testsupport::PublishClientState clears the key first: the windows
  // read these values every second while a test changes them, and must never meet them missing.
  static void Publish(const std::wstring& login, const std::wstring& openSync, const std::wstring& syncPath) {
    testsupport::WriteClientState(login, openSync, syncPath);
  }

  // A folder's path as the shell spells it (what the add-in reads back from a PIDL).
  static std::wstring ShellPath(const std::wstring& path) {
    corvane::unique_pidl pidl;
    if (FAILED(::SHParseDisplayName(path.c_str(), nullptr, pidl.put(), 0, nullptr))) return path;
    wchar_t buffer[MAX_PATH] = {};
    return ::SHGetPathFromIDListW(pidl.get(), buffer) ? std::wstring(buffer) : path;
  }

  BarState Bar(int id) {
    BarState state{.frame = m_explorer->Handle(id, L"frame")};
    const HWND view = m_explorer->Handle(id, L"duiview");
    const HWND list = m_explorer->Handle(id, L"directui");
    if (view == nullptr) return state;
    // Shown, the bar is a child of the view window; hidden, it is parked under the frame.
    state.bar = ::FindWindowExW(view, nullptr, L"CorvaneTitleWindow", nullptr);
    if (state.bar == nullptr) state.bar = ::FindWindowExW(state.frame, nullptr, L"CorvaneTitleWindow", nullptr);
    if (state.bar == nullptr) return state;
    state.shown = ::IsWindowVisible(state.bar) && ::GetParent(state.bar) == view;
    state.barInView = RectIn(state.bar, view);
    state.listInView = RectIn(list, view);
    ::GetClientRect(view, &state.view);
    if (const auto posted = reinterpret_cast<ULONG_PTR>(::GetPropW(list, L"CorvanePostedSize"))) {
      state.listPosted = SIZE{LOWORD(posted - 1), HIWORD(posted - 1)};
    }
    return state;
  }
  // Polls until the bar's visibility is `shown` (and, shown, laid out) or timeoutMs passes.
  // A correct bar returns at once; the time only bounds a wrong one (a one-second check plus the
  // layout, under a loaded machine).
  BarState WaitForBar(int id, bool shown, DWORD timeoutMs = 5000) {
    BarState state;
    WaitUntil([&] {
      state = Bar(id);
      // Laid out as well, not merely the bar's visibility changed: the WM_SIZE the layout posts after
      // the move handled, and the list below the bar, or back at the top of a view whose bar is hidden.
      return state.bar != nullptr && state.shown == shown &&
             state.listPosted.cx == state.listInView.right - state.listInView.left &&
             state.listPosted.cy == state.listInView.bottom - state.listInView.top &&
             state.listInView.top == (shown ? state.barInView.bottom : 0);
    }, timeoutMs);
    return state;
  }

  // The lines of the add-in's log files made since the test began, in the order written.
  std::vector<std::wstring> LogLines() const {
    std::vector<std::wstring> lines;
    for (const std::wstring& name : logtest::FilesIn(m_logFolder)) {
      if (std::find(m_logsBefore.begin(), m_logsBefore.end(), name) != m_logsBefore.end()) continue;
      // Read while the add-in may be writing: a half-written last character is left out.
      const std::vector<std::uint8_t> bytes = logtest::ReadBytes(m_logFolder + name, true);
      const std::wstring text(reinterpret_cast<const wchar_t*>(bytes.data()), bytes.size() / 2);
      for (std::wstring& line : logtest::SplitCrLf(text)) lines.push_back(std::move(line));
    }
    return lines;
  }
  // Lines holding `text`.
  size_t CountLog(const std::wstring& text) const {
    return static_cast<size_t>(
        std::ranges::count_if(LogLines(), [&](const std::wstring& line) { return line.find(text) != line.npos; }));
  }

  std::wstring Navigate(int id, const std::wstring& location) {
    return m_explorer->Command(L"navigate " + std::to_wstring(id) + L" " + location);
  }
  // A fresh stand-in Explorer, which takes up the environment as it is now.
  void RestartExplorer() {
    ASSERT_TRUE(!m_explorer || m_explorer->Quit().has_value());
    m_explorer = std::make_unique<standintest::StandinSession>(m_scratch.Path());
    ASSERT_TRUE(m_explorer->Connect()) << "the stand-in's channel did not appear";
  }

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

}  // namespace integrationtest
