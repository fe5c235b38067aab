// The built Corvane.dll as an installer leaves it: registered by Wine's regsvr32 and opened in Wine's
// own explorer.exe by its parsing path, so that shell32 creates the folder, asks it for its view and
// gives the view Explorer's own window.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "client_state.h"
#include "host_process.h"
#include "log_files.h"
#include "platform/handles.h"
#include "platform/module_path.h"
#include "window_probe.h"

namespace {

using testsupport::ClientState;

constexpr wchar_t kFolderPath[] = L"::{20D04FE0-3AEA-1069-A2D8-08002B30309D}\\::{6e0d3a92-c4b7-4a18-8f25-b93c1d7e5a40}";
constexpr UINT_PTR kPollTimer = 1;  // the prompt's one-second poll
constexpr DWORD kWait = 15000;

// Wine's own explorer.exe as a user would run it: one process with one browser window, driven
// through its address box by tools\shell-nav.exe, and read from outside through its window tree.
class WineExplorer {
 public:
  WineExplorer() {
    wchar_t windows[MAX_PATH] = {};
    ::GetWindowsDirectoryW(windows, MAX_PATH);
    const std::wstring exe = std::wstring(windows) + L"\\explorer.exe";
    m_process = testsupport::StartProcess(exe, L"\"" + exe + L"\"");
  }
  // Closes the window if it is still there, and makes sure the process is gone.
  ~WineExplorer() {
    if (HWND window = Window(); window != nullptr) ::PostMessageW(window, WM_CLOSE, 0, 0);
    if (!WaitForExit(5000)) {
      ::TerminateProcess(m_process.get(), 1);
      WaitForExit(5000);
    }
  }

  HANDLE Handle() const { return m_process.get(); }
  // The process's browser window, or null.
  HWND Window() const {
    for (HWND w = ::FindWindowExW(nullptr, nullptr, L"ExplorerWClass", nullptr); w != nullptr;
         w = ::FindWindowExW(nullptr, w, L"ExplorerWClass", nullptr)) {
      DWORD pid = 0;
      ::GetWindowThreadProcessId(w, &pid);
      if (m_process && pid == ::GetProcessId(m_process.get())) return w;
    }
    return nullptr;
  }
  bool WaitForExit(DWORD timeoutMs) const {
    return !m_process || ::WaitForSingleObject(m_process.get(), timeoutMs) == WAIT_OBJECT_0;
  }

 private:
  corvane::unique_handle m_process;
};

using testsupport::WaitUntil;

// The first descendant of the given class (any depth), or null.
HWND FindDescendant(HWND root, const wchar_t* className) {
  if (root == nullptr) return nullptr;
  if (HWND child = ::FindWindowExW(root, nullptr, className, nullptr); child != nullptr) return child;
  for (HWND child = ::GetWindow(root, GW_CHILD); child != nullptr; child = ::GetWindow(child, GW_HWNDNEXT)) {
    if (HWND found = FindDescendant(child, className); found != nullptr) return found;
  }
  return nullptr;
}

class WineExplorerTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(moduletest::Regsvr32(L"/s").finished); }
  void TearDown() override {
    m_explorer.reset();
    testsupport::ClearClientState();
    // Other tests expect a registry without the add-in.
    EXPECT_TRUE(moduletest::Regsvr32(L"/s /u").finished);
  }

  void Open(ClientState state) {
    testsupport::PublishClientState(state, m_syncFolder);
    m_explorer = std::make_unique<WineExplorer>();
    // A failed start shows as no window.
    ASSERT_TRUE(WaitUntil([&] { return m_explorer->Window() != nullptr; }, kWait));
    // A new window may not act on the first Enter in its address box yet: type the path again
    // until our view is there.
    bool opened = false;
    for (int attempt = 0; attempt < 3 && !opened; ++attempt) {
      // shell-nav (in the client folder's tools folder, one level up from this program) types the
      // parsing path into the address box and presses Enter.
      const moduletest::HostRun run = moduletest::RunHost(corvane::ThisModuleFolder() + L"..\\tools\\shell-nav.exe",
                                                          L"navigate", L"\"" + std::wstring(kFolderPath) + L"\"");
      ASSERT_TRUE(run.finished && run.exitCode == 0);
      opened = WaitUntil([&] { return FindDescendant(m_explorer->Window(), L"CorvaneShellView") != nullptr; }, 5000);
    }
    ASSERT_TRUE(opened);
  }

  logtest::TempFolder m_scratch;
  const std::wstring m_syncFolder = m_scratch.MakeFolder(L"同步盘");
  std::unique_ptr<WineExplorer> m_explorer;
};

// Signed out, then signed in without sync, in one window: the prompt fills Explorer's view area with
// the face the state asks for, and switches faces at its next poll. Explorer stays up throughout:
// nothing in these states browses away from the folder.
TEST_F(WineExplorerTest, PromptFillsTheViewWithTheFaceOfTheState) {
  ASSERT_NO_FATAL_FAILURE(Open(ClientState::kSignedOut));
  // The one visible button by control id (login 1001, settings 1002) tells the face.
  const struct { const char* state; ClientState published; int button; } steps[] = {
      {"signed out", ClientState::kSignedOut, 1001},
      {"signed in, sync off", ClientState::kSignedInNoSync, 1002},
  };
  for (const auto& step : steps) {
    SCOPED_TRACE(step.state);
    testsupport::PublishClientState(step.published, m_syncFolder);
    HWND prompt = nullptr;
    ASSERT_TRUE(WaitUntil([&] {
      prompt = FindDescendant(m_explorer->Window(), L"CorvaneMainWindow");
      return prompt != nullptr && ::IsWindowVisible(prompt);
    }, kWait));
    // The view is Explorer's: a child of its browser control, beside the navigation pane.
    RECT viewRect{}, promptRect{};
    ::GetWindowRect(::GetParent(prompt), &viewRect);
    ::GetWindowRect(prompt, &promptRect);
    EXPECT_TRUE(::EqualRect(&viewRect, &promptRect));
    EXPECT_GT(viewRect.right - viewRect.left, 200);
    EXPECT_GT(viewRect.bottom - viewRect.top, 200);
    // The poll, driven from here rather than waited for; Wine's window is smaller than the
    // pictures, so each face is its button alone.
    std::vector<int> visible;
    EXPECT_TRUE(WaitUntil([&] {
      ::SendMessageW(prompt, WM_TIMER, kPollTimer, 0);
      visible.clear();
      for (HWND child = ::GetWindow(prompt, GW_CHILD); child != nullptr; child = ::GetWindow(child, GW_HWNDNEXT)) {
        if (::IsWindowVisible(child)) visible.push_back(::GetDlgCtrlID(child));
      }
      return visible == std::vector<int>{step.button};
    }, kWait)) << testing::PrintToString(visible);
    // After two more polls Explorer is still on the folder.
    for (int poll = 0; poll < 2; ++poll) ::SendMessageW(prompt, WM_TIMER, kPollTimer, 0);
    EXPECT_FALSE(m_explorer->WaitForExit(500));
    EXPECT_EQ(FindDescendant(m_explorer->Window(), L"CorvaneMainWindow"), prompt);
  }
}

// Signed in with sync on when the folder opens: at its first poll the prompt sends the window on to
// the sync folder, and Wine's explorer then ends by itself, which it does not do in the other states
// (above). Leaving the folder destroys our view and with it the prompt, whose WM_DESTROY posts
// WM_QUIT to Explorer's window thread; Wine's explorer.exe leaves its message loop on it and exits
// with code 0. A sync switched on while the folder is open takes the same poll (view_test).
TEST_F(WineExplorerTest, SyncOnLeavesTheFolderAndWineExplorerEnds) {
  ASSERT_NO_FATAL_FAILURE(Open(ClientState::kSyncReady));
  EXPECT_TRUE(m_explorer->WaitForExit(kWait));
  DWORD code = 1;
  ::GetExitCodeProcess(m_explorer->Handle(), &code);
  EXPECT_EQ(code, 0u);
}

}  // namespace
