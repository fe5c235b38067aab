// The namespace view from the built Corvane.dll, hosted in this test program (named explorer.exe so
// the DLL agrees to load) in a plain frame with a fake shell browser: the login prompt's faces by
// state, size and theme, what its buttons and a drop of folders send to the client (the Halvex.exe
// stand-in records every command), and the step into the sync folder.
#include <windows.h>

#include <tuple>
#include <wrl/client.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "accessible_probe.h"
#include "../client_launcher/standin_session.h"
#include "../client_registry/saved_value.h"
#include "client_state.h"
#include "core/paths.h"
#include "corvane_h.h"
#include "debug_capture.h"
#include "file_list_data.h"
#include "log_files.h"
#include "namespace/main_window.h"
#include "namespace_host.h"
#include "platform/com_object.h"
#include "platform/handles.h"
#include "platform/module_path.h"
#include "widget_support.h"
#include "window_probe.h"

namespace {

using logtest::Utf8;
using Microsoft::WRL::ComPtr;
using testsupport::ClientState;

HWND Button(HWND prompt, int index) {
  const wchar_t* const names[] = {L"a001XXX", L"a002XXX", L"a003XXX", L"a004XXX"};
  return ::FindWindowExW(prompt, nullptr, L"CorvaneCustomButton", names[index]);
}

using testsupport::RectIn;

// The object's reference count, read through an AddRef/Release pair.
ULONG References(IUnknown* object) {
  object->AddRef();
  return object->Release();
}

class ViewTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(SUCCEEDED(::OleInitialize(nullptr))); }
  void TearDown() override {
    m_host.reset();
    nshost::PumpFor(0);
    testsupport::ClearClientState();
    EXPECT_TRUE(launchertest::WaitForNoClient());
    ::OleUninitialize();
  }

  // Publishes the state (kSyncReady names the scratch sync folder), then opens a folder of the
  // This PC class from the DLL and its view in a topmost frame of the given client size.
  void OpenView(ClientState state, int width, int height) {
    m_host.reset();
    testsupport::PublishClientState(state, m_syncFolder);
    m_host = std::make_unique<nshost::NamespaceHost>();
    // This program lies in <client>\shell\namespace-tests\, the DLL in <client>\shell\.
    ASSERT_EQ(m_host->LoadFolder(corvane::core::ParentFolder(corvane::ThisModuleFolder()) + L"Corvane.dll", CLSID_MyShellFolder), S_OK);
    ASSERT_EQ(m_host->OpenView(width, height), S_OK);
    // The face tests read the screen; other tests' windows on the same display must not cover it.
    ::SetWindowPos(m_host->Frame(), HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    // The poll is driven by Poll(); the real one-second timer would tick in at random.
    ::KillTimer(Prompt(), CMainWindow::kPollTimer);
    ::RedrawWindow(m_host->Frame(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    nshost::PumpFor(0);
  }
  HWND Prompt() const { return ::FindWindowExW(m_host->ViewWindow(), nullptr, L"CorvaneMainWindow", nullptr); }
  // One round of the prompt's one-second poll, and the state post it makes, handled.
  WPARAM Poll() {
    ::SendMessageW(Prompt(), WM_TIMER, CMainWindow::kPollTimer, 0);
    MSG posted{};
    EXPECT_TRUE(::PeekMessageW(&posted, Prompt(), CMainWindow::kStateChanged, CMainWindow::kStateChanged, PM_REMOVE));
    ::DispatchMessageW(&posted);
    return posted.wParam;
  }

  size_t CommandCount() const { return launchertest::ReadRecords(m_clients.ClientRecord()).size(); }
  // The next command at the client stand-in, as the client reads its command line.
  std::string NextCommand(size_t before) {
    const auto records = launchertest::WaitForRecords(m_clients.ClientRecord(), before + 1);
    EXPECT_EQ(records.size(), before + 1);
    // One client at a time: a second start within 8 seconds would close the start-up gate.
    EXPECT_TRUE(launchertest::WaitForNoClient());
    return records.size() > before ? Utf8(records.back().commandLine) : "";
  }
  static std::string Command(const std::wstring& fields) {
    const std::wstring client = corvane::core::ParentFolder(corvane::ClientFolder()) + L"Halvex.exe";
    return Utf8(launchertest::Received(client, L" -shellpopwin \"" + fields + L"\""));
  }

  launchertest::StandinSession m_clients;
  logtest::TempFolder m_scratch;
  const std::wstring m_syncFolder = m_scratch.MakeFolder(L"同步盘");
  std::unique_ptr<nshost::NamespaceHost> m_host;
  registrytest::ThemeOverride m_theme{false};
};

TEST_F(ViewTest, PromptFacesByStateSizeAndTheme) {
  const struct {
    ClientState state;
    int width, height, button;
    RECT buttonRect;  // in the prompt's client coordinates
    RECT background;  // the only place outside the button where anything is painted; empty for none
    bool dark;
    const wchar_t* fields;  // what a click on the shown button sends
    // Two pixels (0xRRGGBB) where the theme's own picture is drawn one to one: the background's at
    // its (380, 100) and the button's at its (10, 20); light and dark pictures differ in both.
    std::pair<POINT, DWORD> probes[2];
  } faces[] = {
      {ClientState::kSignedOut, 759, 800, 0, {317, 380, 441, 420}, {}, false, L"login|from_shell"},
      {ClientState::kSignedOut, 760, 414, 0, {318, 374, 442, 414}, {0, 0, 760, 414}, true, L"login|from_shell",
       {{{380, 100}, 0x5DBCF3}, {{328, 394}, 0x4CC2FF}}},
      {ClientState::kSignedOut, 1001, 601, 0, {438, 467, 562, 507}, {120, 93, 880, 507}, false, L"login|from_shell",
       {{{500, 193}, 0x449FEA}, {{448, 487}, 0x0067C0}}},
      {ClientState::kSignedInNoSync, 900, 900, 2, {13, 645, 887, 889}, {13, 10, 887, 889}, true, L"syncdisk|open"},
      {ClientState::kSignedInNoSync, 873, 900, 1, {218, 551, 655, 673}, {218, 226, 655, 673}, false, L"syncdisk|open"},
      {ClientState::kSignedInNoSync, 436, 900, 3, {140, 430, 297, 470}, {}, true, L"syncdisk|open"},
  };
  for (const auto& face : faces) {
    SCOPED_TRACE(testing::Message() << face.width << "x" << face.height << (face.dark ? " dark" : " light"));
    ASSERT_TRUE(m_theme.Set(face.dark));
    OpenView(face.state, face.width, face.height);
    const HWND prompt = Prompt();
    ASSERT_NE(prompt, nullptr);
    // A hidden prompt hides its buttons too, and the button's place follows the prompt's size.
    for (int i = 0; i < 4; ++i) {
      ASSERT_NE(Button(prompt, i), nullptr) << i;
      EXPECT_EQ(::IsWindowVisible(Button(prompt, i)) != FALSE, i == face.button) << "button " << i;
      EXPECT_EQ(::GetDlgCtrlID(Button(prompt, i)), i == 0 ? 1001 : 1002);
    }
    const RECT shown = RectIn(Button(prompt, face.button), prompt);
    EXPECT_TRUE(::EqualRect(&shown, &face.buttonRect)) << shown.left << "," << shown.top << "," << shown.right;
    // Painted pixels (not the theme's brush): inside the button, in the picture's place, nowhere else.
    const auto pixels = widgettest::CaptureClient(prompt);
    ASSERT_TRUE(pixels && pixels->width == face.width && pixels->height == face.height);
    size_t inButton = 0, inPicture = 0, elsewhere = 0;
    for (int i = 0; i < face.width * face.height; ++i) {
      const POINT at{i % face.width, i / face.width};
      if (widgettest::Rgb(pixels->at(at.x, at.y)) == (face.dark ? 0x202020u : 0xFFFFFFu)) continue;
      ++(::PtInRect(&face.buttonRect, at) ? inButton : ::PtInRect(&face.background, at) ? inPicture : elsewhere);
    }
    for (const auto& [at, colour] : face.probes) {
      if (colour != 0) {
        EXPECT_EQ(widgettest::Rgb(pixels->at(at.x, at.y)), colour) << at.x << "," << at.y;
      }
    }
    EXPECT_EQ(std::make_tuple(inButton > 0, inPicture > 0, elsewhere),
              std::make_tuple(true, !::IsRectEmpty(&face.background), size_t{0}));
    // A screen reader reads the button as the words its picture shows.
    const wchar_t* const labels[] = {L"登录", L"开启同步", L"开启同步", L"打开同步设置"};
    const testsupport::Accessible seen = testsupport::AccessibleOf(Button(prompt, face.button));
    EXPECT_EQ(std::make_tuple(seen.role, seen.name, seen.action),
              std::make_tuple(static_cast<LONG>(ROLE_SYSTEM_PUSHBUTTON), std::wstring(labels[face.button]), std::wstring(L"Press")));
    // A press and release inside the button, as the mouse delivers them; in the dark faces, a screen
    // reader's "Press", which must send the same command.
    const size_t before = CommandCount();
    if (face.dark) {
      EXPECT_EQ(testsupport::PressAccessibly(Button(prompt, face.button)), S_OK);
    } else {
      ::SendMessageW(Button(prompt, face.button), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
      ::SendMessageW(Button(prompt, face.button), WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
    }
    EXPECT_EQ(NextCommand(before), Command(face.fields));
  }
}

TEST_F(ViewTest, PromptTakesTheThemeAtAColourSetChangeOnly) {
  OpenView(ClientState::kSignedOut, 600, 400);
  ASSERT_TRUE(m_theme.Set(true));
  const auto corner = [&](const wchar_t* setting) {
    ::SendMessageW(Prompt(), WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(setting));
    // The setting handler leaves repainting to whoever changed the setting; the capture repaints.
    const auto pixels = widgettest::CaptureClient(Prompt());
    return pixels ? widgettest::Rgb(pixels->at(5, 5)) : 0u;
  };
  EXPECT_EQ(corner(L"immersivecolorset"), 0xFFFFFFu) << "the setting's name is compared exactly";
  EXPECT_EQ(corner(L"ImmersiveColorSet"), 0x202020u);
}

TEST_F(ViewTest, SyncReadyBrowsesIntoTheSyncFolderAndHidesThePrompt) {
  OpenView(ClientState::kSignedInNoSync, 800, 600);
  EXPECT_EQ(Poll(), 0u);
  EXPECT_TRUE(m_host->BrowseCalls().empty());
  testsupport::PublishClientState(ClientState::kSyncReady, m_syncFolder);
  EXPECT_EQ(Poll(), 1u);
  ASSERT_EQ(m_host->BrowseCalls().size(), 1u);
  EXPECT_EQ(std::make_pair(m_host->BrowseCalls().front().path, m_host->BrowseCalls().front().flags),
            std::make_pair(m_syncFolder, 1u)) << "SBSP_SAMEBROWSER and nothing else";
  // Signed out, the poll keeps the sync-ready value it had: it still posts 1, yet nothing browses,
  // because the step into the folder asks the registry again.
  testsupport::PublishClientState(ClientState::kSignedOut, m_syncFolder);
  EXPECT_EQ(Poll(), 1u);
  EXPECT_EQ(m_host->BrowseCalls().size(), 1u);

  // The view decides the prompt's visibility when it is sized.
  testsupport::PublishClientState(ClientState::kSyncReady, m_syncFolder);
  ::SetWindowPos(m_host->Frame(), nullptr, 0, 0, 820, 600, SWP_NOMOVE | SWP_NOZORDER);
  EXPECT_FALSE(::IsWindowVisible(Prompt()));
  testsupport::PublishClientState(ClientState::kSignedOut, m_syncFolder);
  ::SetWindowPos(m_host->Frame(), nullptr, 0, 0, 840, 620, SWP_NOMOVE | SWP_NOZORDER);
  EXPECT_TRUE(::IsWindowVisible(Prompt()));
  const RECT prompt = RectIn(Prompt(), m_host->ViewWindow());
  EXPECT_EQ(std::make_pair(prompt.right - prompt.left, prompt.bottom - prompt.top), std::make_pair(840L, 620L));
}

// A drag is offered, moved over the view and taken back, offered again and dropped: the view accepts
// only a copy of a file list, holds the data object from DragEnter to DragLeave or Drop, and sends
// the dropped folders (at most five) while the user is signed in.
TEST_F(ViewTest, DroppedFoldersBecomeOneCommand) {
  std::vector<std::wstring> folders, files = {m_scratch / L"a.txt", m_scratch / L"b.txt"};
  for (int i = 1; i <= 6; ++i) folders.push_back(m_scratch.MakeFolder(L"文件夹 " + std::to_wstring(i)));
  for (const std::wstring& file : files) ASSERT_TRUE(corvane::unique_file(::CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr)));
  std::wstring fiveFields = L"syncdisk|open_folders";
  for (int i = 0; i < 5; ++i) fiveFields += L"|" + folders[i];
  const DWORD all = DROPEFFECT_COPY | DROPEFFECT_MOVE | DROPEFFECT_LINK;
  const struct {
    const char* what;
    ClientState state;
    std::vector<std::wstring> paths;
    bool fileList;   // offered as CF_HDROP
    DWORD offered, accepted;
    const wchar_t* fields;  // null: nothing is sent
  } cases[] = {
      {"five folders among files", ClientState::kSignedInNoSync, {files[0], folders[0], folders[1], files[1], folders[2], folders[3], folders[4]}, true, all, DROPEFFECT_COPY, fiveFields.c_str()},
      {"six folders", ClientState::kSignedInNoSync, folders, true, DROPEFFECT_COPY | DROPEFFECT_LINK, DROPEFFECT_COPY, L"syncdisk|open_invaild"},
      {"files only", ClientState::kSignedInNoSync, files, true, all, DROPEFFECT_COPY, nullptr},
      {"signed out", ClientState::kSignedOut, {folders[0], folders[1]}, true, all, DROPEFFECT_COPY, nullptr},
      {"move only", ClientState::kSignedInNoSync, {folders[0]}, true, DROPEFFECT_MOVE, DROPEFFECT_NONE, nullptr},
      {"not a file list", ClientState::kSignedInNoSync, {folders[0]}, false, DROPEFFECT_COPY, DROPEFFECT_NONE, nullptr},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    OpenView(c.state, 600, 400);
    ComPtr<IDropTarget> target;
    ASSERT_EQ(m_host->View()->QueryInterface(IID_PPV_ARGS(&target)), S_OK);
    auto data = corvane::MakeObject<nshost::CFileListData>(c.paths, c.fileList);
    const ULONG references = References(data.Get());
    const size_t before = CommandCount();
    const testsupport::DebugCapture capture;
    // A drag the view refuses is never dropped: the system takes it back instead.
    for (const bool drop : {false, c.accepted != DROPEFFECT_NONE}) {
      DWORD effect = c.offered;
      ASSERT_EQ(target->DragEnter(data.Get(), MK_LBUTTON, POINTL{10, 10}, &effect), S_OK);
      EXPECT_EQ(effect, c.accepted) << "enter";
      EXPECT_EQ(References(data.Get()), references + 1) << "held from DragEnter";
      effect = c.offered;
      EXPECT_EQ(target->DragOver(MK_LBUTTON, POINTL{12, 12}, &effect), S_OK);
      EXPECT_EQ(effect, c.accepted) << "over";
      effect = DROPEFFECT_MOVE;
      EXPECT_EQ(drop ? target->Drop(data.Get(), 0, POINTL{12, 12}, &effect) : target->DragLeave(), S_OK);
      EXPECT_EQ(References(data.Get()), references) << "let go by " << (drop ? "Drop" : "DragLeave");
      EXPECT_EQ(effect, drop ? DROPEFFECT_COPY : DROPEFFECT_MOVE) << "a drop is taken as a copy";
    }
    // The launcher's gate logs every command to the debugger before the client starts: no line, no command.
    EXPECT_EQ(capture.LinesContaining(L"cx::canCommandExecute.").size(), c.fields != nullptr ? 1u : 0u);
    if (c.fields != nullptr) { EXPECT_EQ(NextCommand(before), Command(c.fields)); }
  }
}

}  // namespace
