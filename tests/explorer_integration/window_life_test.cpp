// A window's life with the add-in: navigation asked of the frame, the DPI tool's starts, the event
// sink across sites, and the detach that leaves the process healthy and the module free to unload
// only once no window holds it.
#include <algorithm>

#include "integration_bed.h"
#include "platform/module_path.h"

namespace integrationtest {
namespace {

std::wstring Digits(HWND hwnd) { return std::to_wstring(reinterpret_cast<ULONG_PTR>(hwnd)); }
std::wstring Id(int id) { return std::to_wstring(id); }

// DPI tool starts for this frame: the tool beside the DLL, given the frame handle's digits.
size_t DpiStartsFor(const std::wstring& record, HWND frame) {
  const auto starts = launchertest::ReadRecords(record);
  const std::wstring expected = launchertest::Received(corvane::ThisModuleFolder() + L"scalemend.exe", Digits(frame));
  return static_cast<size_t>(
      std::count_if(starts.begin(), starts.end(), [&](const auto& start) { return start.commandLine == expected; }));
}

// The line a folder check of this frame logs on every round while no sync path is published.
std::wstring Round(HWND frame) {
  return L"ExplorerWindow HWND = " + Digits(frame) + L" call checkReadyLoginAndOpenSync return false.";
}

TEST_F(ExplorerIntegration, BrowseObjectNavigatesOnlyToFileSystemFolders) {
  const int id = m_explorer->Open(m_other);
  ASSERT_NE(id, 0);
  // Explorer's private message that asks the frame to browse to a PIDL.
  const std::wstring send = L"send " + Id(id) + L" " + std::to_wstring(WM_USER + 218) + L" 0 ";

  EXPECT_EQ(m_explorer->Command(send + L"pidl:" + m_inside), L"ok 1");
  ASSERT_EQ(m_explorer->Command(L"sync " + Id(id)), L"ok");
  EXPECT_EQ(m_explorer->Command(L"folder " + Id(id)), L"ok " + m_inside);
  EXPECT_TRUE(WaitForBar(id, true).shown) << "the navigated window shows the sync folder";

  // No file-system path, or no PIDL: refused, the PIDL stays the sender's, the window stays.
  EXPECT_EQ(m_explorer->Command(send + L"pidl:::ThisPC"), L"ok 0");
  EXPECT_EQ(m_explorer->Command(send + L"0"), L"ok 0");
  ASSERT_EQ(m_explorer->Command(L"sync " + Id(id)), L"ok");
  EXPECT_EQ(m_explorer->Command(L"folder " + Id(id)), L"ok " + m_inside);
  // Each request and its outcome logged once.
  EXPECT_EQ(std::make_tuple(CountLog(L"ExplorerWindow OnBrowseObject() invoked!"),
                            CountLog(L"Successfully navigated to path: " + m_inside), CountLog(L"Failed to get path from PIDL"),
                            CountLog(L"Invalid PIDL or m_spWebBrowser2 is NULL")),
            std::make_tuple(3u, 1u, 1u, 1u));
}

TEST_F(ExplorerIntegration, DpiToolStartsOnAttachOnBarCreationAndOnceAfterMoves) {
  const std::wstring record = m_clients->DpiRecord();
  const int id = m_explorer->Open(m_sync);
  ASSERT_NE(id, 0);
  const HWND frame = m_explorer->Handle(id, L"frame");
  ASSERT_TRUE(WaitForBar(id, true).shown);
  // Inside the sync folder each check first asks the stand-in for the view, off the window thread:
  // the count of those queries tells how many checks have run, and holding one holds its check just
  // before it looks at the moves.
  const auto queries = [&] {
    const std::wstring reply = m_explorer->Command(L"viewqueries");
    return reply.compare(0, 3, L"ok ") == 0 ? std::stol(reply.substr(3)) : -1L;
  };
  const auto checksPass = [&](long count) {
    const long target = queries() + count;
    return WaitUntil([&] { return queries() >= target; }, 5000);
  };
  // Attach and the bar's creation start it, each with the frame's handle; the frame's own first
  // placement is a move and may add one at the next check, which two checks have passed.
  ASSERT_TRUE(checksPass(2));
  const size_t settled = DpiStartsFor(record, frame);
  EXPECT_GE(settled, 2u);
  EXPECT_LE(settled, 3u);

  // Many moves while one check is held, then a second burst later: one start for each burst.
  for (const int moves : {6, 2}) {
    const size_t before = DpiStartsFor(record, frame);
    ASSERT_EQ(m_explorer->Command(L"viewdelay 10000"), L"ok");
    ASSERT_EQ(m_explorer->Command(L"viewheld 5000"), L"ok 1");
    for (int i = 0; i < moves; ++i) {
      ASSERT_EQ(m_explorer->Command(L"move " + Id(id) + L" " + std::to_wstring(40 + 10 * i) + L" 60"), L"ok");
    }
    ASSERT_EQ(m_explorer->Command(L"viewdelay 0"), L"ok");
    EXPECT_TRUE(WaitUntil([&] { return DpiStartsFor(record, frame) > before; }, 3000));
    ASSERT_TRUE(checksPass(2));
    EXPECT_EQ(DpiStartsFor(record, frame), before + 1) << moves << " moves";
  }
}

// The browser's connection point counts every Advise and Unadvise of the process: a sink advised a
// second time, an Unadvise repeated after OnQuit, or one missing when the site goes without OnQuit,
// shows in these figures.
TEST_F(ExplorerIntegration, EventSinkAdvisedOnceAndUnadvisedOnceHoweverTheSiteGoes) {
  const int id = m_explorer->Open(m_sync);
  ASSERT_NE(id, 0);
  ASSERT_TRUE(WaitForBar(id, true).shown);
  EXPECT_EQ(m_explorer->Command(L"connections"), L"ok 1 0 0");

  // A second site while sited: the controller attaches again, the sink stays advised once.
  EXPECT_EQ(m_explorer->Command(L"resite " + Id(id)), L"ok 0x00000000");
  EXPECT_EQ(m_explorer->Command(L"connections"), L"ok 1 0 0");
  EXPECT_TRUE(WaitForBar(id, true).shown) << "the bar was lost by the second attach";

  // Closing fires OnQuit, which unadvises (the browser accepts it inside its own event), then
  // SetSite(NULL), which must find nothing to unadvise.
  ASSERT_EQ(m_explorer->Command(L"close " + Id(id)), L"ok");
  EXPECT_EQ(m_explorer->Command(L"connections"), L"ok 1 1 0") << "advised, unadvised, refused unadvises";
  const std::vector<std::wstring> lines = LogLines();
  const auto at = [&](const std::wstring& text) {
    return std::find_if(lines.begin(), lines.end(), [&](const std::wstring& line) { return line.find(text) != line.npos; });
  };
  EXPECT_LT(at(L"CTitleBarBHO OnQuit() invoked"), at(L"CTitleBarBHO SetSite(0000000000000000) invoked"));

  // The site taken away with no OnQuit before it: SetSite(NULL) itself unadvises, and the later
  // close finds nothing left to unadvise.
  const int second = m_explorer->Open(m_sync);
  ASSERT_NE(second, 0);
  EXPECT_EQ(m_explorer->Command(L"connections"), L"ok 2 1 0");
  EXPECT_EQ(m_explorer->Command(L"unsite " + Id(second)), L"ok 0x00000000");
  EXPECT_EQ(m_explorer->Command(L"connections"), L"ok 2 2 0");
  ASSERT_EQ(m_explorer->Command(L"close " + Id(second)), L"ok");
  EXPECT_EQ(m_explorer->Command(L"connections"), L"ok 2 2 0");
}

TEST_F(ExplorerIntegration, EachWindowHasItsOwnBarAndOnlyTheLastToCloseLetsTheModuleGo) {
  const int first = m_explorer->Open(m_sync);
  ASSERT_NE(first, 0);
  const BarState firstBar = WaitForBar(first, true);
  ASSERT_TRUE(firstBar.shown);
  // Opened after the first is settled: its creation hook then acts on its own, newest controller.
  const int second = m_explorer->Open(m_inside);
  ASSERT_NE(second, 0);
  const BarState secondBar = WaitForBar(second, true);
  ASSERT_TRUE(secondBar.shown);
  EXPECT_NE(secondBar.bar, firstBar.bar);
  EXPECT_NE(::GetWindowThreadProcessId(secondBar.frame, nullptr), ::GetWindowThreadProcessId(firstBar.frame, nullptr))
      << "each window has a thread of its own, as in Explorer";
  EXPECT_EQ(m_explorer->Command(L"canunload Corvane.dll"), L"ok 0x00000001");

  // Each window follows its own folder.
  ASSERT_EQ(Navigate(first, m_other), L"ok");
  EXPECT_FALSE(WaitForBar(first, false).shown);
  ASSERT_EQ(Navigate(second, m_sibling), L"ok");
  EXPECT_FALSE(WaitForBar(second, false).shown);
  ASSERT_EQ(Navigate(first, m_sync), L"ok");
  EXPECT_TRUE(WaitForBar(first, true).shown);
  EXPECT_FALSE(Bar(second).shown);

  // Closing the newer window stops its check: the older window's rounds go on while its own do not.
  Publish(L"1", L"1", L"");
  ASSERT_TRUE(WaitUntil([&] { return CountLog(Round(secondBar.frame)) >= 2; }, 3000));
  ASSERT_EQ(m_explorer->Command(L"close " + Id(second)), L"ok");
  const size_t closedRounds = CountLog(Round(secondBar.frame)), keptRounds = CountLog(Round(firstBar.frame));
  ASSERT_TRUE(WaitUntil([&] { return CountLog(Round(firstBar.frame)) >= keptRounds + 2; }, 3000));
  EXPECT_EQ(CountLog(Round(secondBar.frame)), closedRounds) << "the folder check still runs after the window closed";

  // COM asked to free what the remaining window's apartment does not use: the add-in is in use
  // there, and goes on working.
  EXPECT_EQ(m_explorer->Command(L"freeunused " + Id(first)), L"ok");
  EXPECT_EQ(m_explorer->Command(L"canunload Corvane.dll"), L"ok 0x00000001") << "one window still open";
  Publish(L"1", L"1", m_sync);
  ASSERT_TRUE(WaitForBar(first, true).shown);

  // A close that meets a running check. The check asks for the view from the timer thread, held
  // there for two seconds; once the stand-in says the next check's query is being held, a close
  // meets that check, and the new folder it then notes is logged after the detach began.
  ASSERT_EQ(m_explorer->Command(L"viewdelay 2000"), L"ok");
  ASSERT_EQ(Navigate(first, m_sibling), L"ok");
  const std::wstring noted = L"ExplorerWindow HWND = " + Digits(firstBar.frame) + L" call GetCurrentFolderPath = ";
  ASSERT_TRUE(WaitUntil([&] { return CountLog(noted + m_sibling + L".") == 1; }, 8000));
  ASSERT_EQ(m_explorer->Command(L"viewheld 5000"), L"ok 1");
  ASSERT_EQ(Navigate(first, m_other), L"ok");
  ASSERT_EQ(m_explorer->Command(L"close " + Id(first)), L"ok");
  ASSERT_EQ(m_explorer->Command(L"viewdelay 0"), L"ok");
  const std::vector<std::wstring> lines = LogLines();
  const auto detach = std::find_if(lines.rbegin(), lines.rend(), [](const std::wstring& line) {
    return line.find(L"CTitleBarBHO SetSite(0000000000000000) invoked") != line.npos;
  });
  EXPECT_TRUE(std::any_of(lines.rbegin(), detach, [&](const std::wstring& line) { return line.find(noted + m_other + L".") != line.npos; }))
      << "the close did not meet a running check";

  // Each window attached once and detached once, in every step. The detach logs the attach's
  // wording, so that line comes twice per window.
  EXPECT_EQ(m_explorer->Command(L"windows"), L"ok");
  EXPECT_EQ(m_explorer->Command(L"connections"), L"ok 2 2 0");
  EXPECT_EQ(CountLog(L"ExplorerWindow OnExplorerAttach() invoked!"), 4u);
  for (const wchar_t* step : {L"ExplorerWindow InstallExplorerHook() set explorer WH_CBT hook!",
                              L"ExplorerWindow Subclass StatusBar...", L"CStatusBar subclass statusbar... ",
                              L"ExplorerWindow UninstallExplorerHook() remove explorer WH_CBT hook!",
                              L"CTitleWindow::DestroyBarWnd() invoked", L"CTitleBarBHO OnQuit() invoked",
                              L"CTitleBarBHO SetSite(0000000000000000) invoked"}) {
    EXPECT_EQ(CountLog(step), 2u) << testing::PrintToString(std::wstring(step));
  }
  // Either COM has already unloaded it, which it does only on S_OK, or it answers S_OK now.
  const std::wstring unload = m_explorer->Command(L"canunload Corvane.dll");
  EXPECT_TRUE(unload == L"ok 0x00000000" || unload == L"ok unloaded") << testing::PrintToString(unload);

  // The process goes on: a new window gets a new helper object and its bar.
  const int again = m_explorer->Open(m_inside);
  ASSERT_NE(again, 0);
  EXPECT_TRUE(WaitForBar(again, true).shown);
}

}  // namespace
}  // namespace integrationtest
