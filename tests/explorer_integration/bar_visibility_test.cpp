// When the bar shows: the sync folder and what lies below it, by the add-in's comparison rule, for
// a signed-in client with sync on; and how it is laid out inside Explorer's view window.
#include "integration_bed.h"

#include <tuple>

#include "platform/module_path.h"

namespace integrationtest {
namespace {

// A strip across the top of the view; the file list gives up exactly that strip. (The strip's
// height is the bar's own rule, pinned where the bar is tested.)
void ExpectLaidOut(const BarState& state) {
  ASSERT_TRUE(state.shown) << "the bar is not visible in the view window";
  EXPECT_EQ(std::make_tuple(state.barInView.left, state.barInView.top, state.barInView.right, state.listInView.top,
                            state.listInView.bottom),
            std::make_tuple(0L, 0L, state.view.right, state.barInView.bottom, state.view.bottom));
  EXPECT_GT(state.barInView.bottom, 20);
  // After moving the list the layout posts it a WM_SIZE of its new size.
  EXPECT_EQ(std::make_pair(state.listPosted.cx, state.listPosted.cy),
            std::make_pair(state.view.right, state.view.bottom - state.barInView.bottom));
}

void ExpectRestored(const BarState& state) {
  ASSERT_NE(state.bar, nullptr) << "the bar was never made";
  EXPECT_FALSE(state.shown) << "the bar is still visible in the view window";
  EXPECT_FALSE(::IsWindowVisible(state.bar));
  EXPECT_EQ(::GetParent(state.bar), state.frame) << "a hidden bar is parked under the frame";
  EXPECT_EQ(std::make_pair(state.listInView.top, state.listInView.bottom), std::make_pair(0L, state.view.bottom));
  EXPECT_EQ(std::make_pair(state.listPosted.cx, state.listPosted.cy), std::make_pair(state.view.right, state.view.bottom));
}

TEST_F(ExplorerIntegration, BarFollowsTheSyncFolderByTheComparisonRule) {
  const int id = m_explorer->Open(m_sync);
  ASSERT_NE(id, 0);
  ExpectLaidOut(WaitForBar(id, true));

  struct Step {
    const char* what;
    std::wstring location;  // navigate here first, unless empty
    std::wstring login, syncPath;
    bool shown;
  };
  const std::wstring upper = m_sync.substr(0, m_sync.size() - 4) + L"SYNC";
  const Step steps[] = {
      {"a folder inside", m_inside, L"1", m_sync, true},
      {"a sibling whose name begins with the sync folder's", m_sibling, L"1", m_sync, false},
      {"the sync folder again", m_sync, L"1", m_sync, true},
      {"a virtual folder", L"::ThisPC", L"1", m_sync, false},
      {"back from the virtual folder", m_inside, L"1", m_sync, true},
      {"a folder elsewhere", m_other, L"1", m_sync, false},
      {"the sync path published with a trailing backslash", m_sync, L"1", m_sync + L"\\", true},
      {"the sync path published in other letter case", L"", L"1", upper, false},
      {"the sync path as the folder is spelt", L"", L"1", m_sync, true},
      {"signed out", L"", L"0", m_sync, false},
      {"signed in again", L"", L"1", m_sync, true},
      {"no sync path", L"", L"1", L"", false},
  };
  for (const Step& step : steps) {
    SCOPED_TRACE(step.what);
    if (!step.location.empty()) {
      ASSERT_EQ(Navigate(id, step.location), L"ok");
    }
    Publish(step.login, L"1", step.syncPath);
    const BarState state = WaitForBar(id, step.shown);
    if (step.shown) {
      ExpectLaidOut(state);
    } else {
      ExpectRestored(state);
    }
  }

  // The client ran from the first show on, so it was started once, with nothing to do.
  const auto starts = launchertest::ReadRecords(m_clients->ClientRecord());
  ASSERT_EQ(starts.size(), 1u);
  EXPECT_EQ(starts[0].commandLine, launchertest::Received(corvane::ClientFolder() + L"Halvex.exe", L""));
}

// Position changes of the view window are layout passes, except those with no height: a minimised
// Explorer sends them, and laying the bar out into an empty rectangle would pull the list up.
TEST_F(ExplorerIntegration, ViewPositionChangeWithoutHeightLaysNothingOut) {
  const int id = m_explorer->Open(m_sync);
  ASSERT_NE(id, 0);
  const BarState laidOut = WaitForBar(id, true);
  ASSERT_TRUE(laidOut.shown);
  const HWND view = m_explorer->Handle(id, L"duiview");
  const HWND list = m_explorer->Handle(id, L"directui");
  const RECT inParent = RectIn(view, ::GetParent(view));
  const int width = inParent.right - inParent.left;
  const int height = inParent.bottom - inParent.top;

  const struct {
    int cy;
    UINT flags;
    bool laysOut;
  } cases[] = {
      {0, SWP_NOSIZE | SWP_NOMOVE, false},
      {0, 0, false},
      {-1, 0, false},
      // Flags are not looked at: a full-height change with SWP_NOSIZE still lays out.
      {height, SWP_NOSIZE | SWP_NOMOVE, true},
  };
  for (const auto& c : cases) {
    // The list put back at the top: only a layout pass moves it down again.
    ASSERT_TRUE(::SetWindowPos(list, nullptr, 0, 0, laidOut.view.right, laidOut.view.bottom, SWP_NOZORDER | SWP_NOACTIVATE));
    WINDOWPOS wp{view, nullptr, inParent.left, inParent.top, width, c.cy, c.flags};
    ::SendMessageW(view, WM_WINDOWPOSCHANGING, 0, reinterpret_cast<LPARAM>(&wp));
    EXPECT_EQ(Bar(id).listInView.top, c.laysOut ? laidOut.listInView.top : 0) << "cy " << c.cy << ", flags " << c.flags;
  }
}

TEST_F(ExplorerIntegration, ClientStartedWhenTheBarShowsWithoutOne) {
  // A client that ends at once is never found running: every show starts it again.
  ::SetEnvironmentVariableW(L"HALVEX_STANDIN_LINGER_MS", L"0");
  RestartExplorer();
  const int id = m_explorer->Open(m_other);
  ASSERT_NE(id, 0);
  // The check has noted the folder, and decided.
  const std::wstring noted = L"HWND = " + std::to_wstring(reinterpret_cast<ULONG_PTR>(m_explorer->Handle(id, L"frame"))) +
                             L" call GetCurrentFolderPath = " + m_other + L".";
  ASSERT_TRUE(WaitUntil([&] { return CountLog(noted) == 1; }, 3000));
  ASSERT_EQ(m_explorer->Command(L"sync " + std::to_wstring(id)), L"ok");
  EXPECT_FALSE(Bar(id).shown);
  EXPECT_TRUE(launchertest::ReadRecords(m_clients->ClientRecord()).empty()) << "started while the bar stays hidden";

  ASSERT_EQ(Navigate(id, m_sync), L"ok");
  EXPECT_TRUE(WaitForBar(id, true).shown);
  EXPECT_EQ(launchertest::WaitForRecords(m_clients->ClientRecord(), 1, 5000).size(), 1u);
  ASSERT_TRUE(launchertest::WaitForNoClient());
  ASSERT_EQ(Navigate(id, m_other), L"ok");
  EXPECT_FALSE(WaitForBar(id, false).shown);
  ASSERT_EQ(Navigate(id, m_inside), L"ok");
  EXPECT_TRUE(WaitForBar(id, true).shown);
  const auto starts = launchertest::WaitForRecords(m_clients->ClientRecord(), 2, 5000);
  ASSERT_EQ(starts.size(), 2u);
  for (const auto& start : starts) EXPECT_EQ(start.commandLine, launchertest::Received(corvane::ClientFolder() + L"Halvex.exe", L""));
}

}  // namespace
}  // namespace integrationtest
