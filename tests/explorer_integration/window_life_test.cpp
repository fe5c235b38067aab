// A window's life with the add-in: navigation asked of the frame, the DPI tool's starts, and the
// detach that leaves the process healthy and the module free to unload.
#include "integration_bed.h"

#include "platform/module_path.h"

namespace integrationtest {
namespace {

std::wstring Digits(HWND hwnd) { return std::to_wstring(reinterpret_cast<ULONG_PTR>(hwnd)); }

// DPI tool starts for this frame: its command line ends in the frame handle's digits.
size_t DpiStartsFor(const std::wstring& record, HWND frame) {
  size_t count = 0;
  const std::wstring suffix = L" " + Digits(frame);
  for (const auto& start : launchertest::ReadRecords(record)) {
    const std::wstring& line = start.commandLine;
    if (line.size() >= suffix.size() && line.compare(line.size() - suffix.size(), suffix.size(), suffix) == 0) ++count;
  }
  return count;
}

TEST_F(ExplorerIntegration, BrowseObjectNavigatesOnlyToFileSystemFolders) {
  const int id = m_explorer->Open(m_other);
  ASSERT_NE(id, 0);
  const std::wstring send = L"send " + std::to_wstring(id) + L" " + std::to_wstring(kBrowseObject) + L" 0 pidl:";

  EXPECT_EQ(m_explorer->Command(send + m_inside), L"ok 1");
  ASSERT_EQ(m_explorer->Command(L"sync " + std::to_wstring(id)), L"ok");
  EXPECT_EQ(m_explorer->Command(L"folder " + std::to_wstring(id)), L"ok " + m_inside);
  EXPECT_TRUE(WaitForBar(id, true).shown) << "the navigated window shows the sync folder";
  EXPECT_EQ(CountLog(L"Successfully navigated to path: " + m_inside), 1u);

  // No file-system path: refused, the PIDL stays the sender's and the window stays where it was.
  EXPECT_EQ(m_explorer->Command(send + L"::ThisPC"), L"ok 0");
  ASSERT_EQ(m_explorer->Command(L"sync " + std::to_wstring(id)), L"ok");
  EXPECT_EQ(m_explorer->Command(L"folder " + std::to_wstring(id)), L"ok " + m_inside);
  EXPECT_EQ(CountLog(L"Failed to get path from PIDL"), 1u);
  // A null PIDL is refused before anything is read from it.
  EXPECT_EQ(m_explorer->Command(L"send " + std::to_wstring(id) + L" " + std::to_wstring(kBrowseObject) + L" 0 0"), L"ok 0");
  EXPECT_EQ(CountLog(L"Invalid PIDL or m_spWebBrowser2 is NULL"), 1u);
}

TEST_F(ExplorerIntegration, DpiToolStartsOnAttachOnBarCreationAndOnceAfterMoves) {
  const std::wstring record = m_clients->DpiRecord();
  const int id = m_explorer->Open(m_sync);
  ASSERT_NE(id, 0);
  const HWND frame = m_explorer->Handle(id, L"frame");
  ASSERT_TRUE(WaitForBar(id, true).shown);
  // Attach and the bar's creation: two starts, each with the frame's handle. The frame's first
  // placement after attach is a move of its own and may add one more at the next check.
  ASSERT_TRUE(WaitUntil([&] { return DpiStartsFor(record, frame) >= 2; }, 5000));
  size_t settled = 0;
  ASSERT_TRUE(WaitUntil(
      [&] {
        const size_t now = DpiStartsFor(record, frame);
        ::Sleep(1300);
        settled = DpiStartsFor(record, frame);
        return settled == now;
      },
      6000));
  EXPECT_LE(settled, 3u) << "started again without a move";
  for (const auto& start : launchertest::ReadRecords(record)) {
    EXPECT_EQ(start.commandLine, launchertest::Received(corvane::ThisModuleFolder() + L"scalemend.exe", Digits(frame)));
  }

  // Many moves between two checks: one start at the next check.
  for (int i = 0; i < 6; ++i) {
    ASSERT_EQ(m_explorer->Command(L"move " + std::to_wstring(id) + L" " + std::to_wstring(40 + 10 * i) + L" 60"), L"ok");
  }
  EXPECT_TRUE(WaitUntil([&] { return DpiStartsFor(record, frame) >= settled + 1; }, 2500));
  ::Sleep(2200);
  EXPECT_EQ(DpiStartsFor(record, frame), settled + 1);

  // A second burst later: one more.
  ASSERT_EQ(m_explorer->Command(L"move " + std::to_wstring(id) + L" 20 20"), L"ok");
  ASSERT_EQ(m_explorer->Command(L"move " + std::to_wstring(id) + L" 30 30"), L"ok");
  EXPECT_TRUE(WaitUntil([&] { return DpiStartsFor(record, frame) >= settled + 2; }, 2500));
  ::Sleep(1200);
  EXPECT_EQ(DpiStartsFor(record, frame), settled + 2);
}

// The browser's connection point counts every Advise and Unadvise of the process: a sink advised a
// second time, or an Unadvise repeated after OnQuit, shows in these figures.
TEST_F(ExplorerIntegration, EventSinkAdvisedOnceAndUnadvisedOnceAcrossResiteAndQuit) {
  const int id = m_explorer->Open(m_sync);
  ASSERT_NE(id, 0);
  ASSERT_TRUE(WaitForBar(id, true).shown);
  EXPECT_EQ(m_explorer->Command(L"connections"), L"ok 1 0 0");

  // A second site while sited: the controller attaches again, the sink stays advised once.
  EXPECT_EQ(m_explorer->Command(L"resite " + std::to_wstring(id)), L"ok 0x00000000");
  EXPECT_EQ(m_explorer->Command(L"connections"), L"ok 1 0 0");
  EXPECT_EQ(CountLog(L"ExplorerWindow OnExplorerAttach() invoked!"), 2u);
  EXPECT_TRUE(WaitForBar(id, true).shown) << "the bar was lost by the second attach";

  // Closing fires OnQuit, which unadvises, then SetSite(NULL), which must find nothing to unadvise.
  ASSERT_EQ(m_explorer->Command(L"close " + std::to_wstring(id)), L"ok");
  EXPECT_EQ(CountLog(L"CTitleBarBHO OnQuit() invoked"), 1u);
  EXPECT_EQ(CountLog(L"CTitleBarBHO SetSite(0000000000000000) invoked"), 1u);
  EXPECT_EQ(m_explorer->Command(L"connections"), L"ok 1 1 0") << "advised, unadvised, refused unadvises";
}

TEST_F(ExplorerIntegration, CloseDetachesJoinsTheTimerAndLetsTheModuleUnload) {
  const int id = m_explorer->Open(m_sync);
  ASSERT_NE(id, 0);
  ASSERT_TRUE(WaitForBar(id, true).shown);
  // The helper object is alive: the module must stay.
  EXPECT_EQ(m_explorer->Command(L"canunload Corvane.dll"), L"ok 0x00000001");

  // With no sync path the check logs every second, which shows the timer thread at work.
  Publish(L"1", L"1", L"");
  ASSERT_TRUE(WaitForBar(id, false).bar != nullptr);
  const std::wstring tick = L"call checkReadyLoginAndOpenSync return false.";
  ASSERT_TRUE(WaitUntil([&] { return CountLog(tick) >= 2; }, 3000));

  ASSERT_EQ(m_explorer->Command(L"close " + std::to_wstring(id)), L"ok");
  const size_t ticksAtClose = CountLog(tick);
  ::Sleep(2200);
  EXPECT_EQ(CountLog(tick), ticksAtClose) << "the folder check still runs after the window closed";

  EXPECT_EQ(CountLog(L"ExplorerWindow OnExplorerAttach() invoked!"), 2u) << "attach, and detach with the same text";
  EXPECT_EQ(CountLog(L"ExplorerWindow UninstallExplorerHook() remove explorer WH_CBT hook!"), 1u);
  EXPECT_EQ(CountLog(L"CTitleWindow::DestroyBarWnd() invoked"), 1u);
  EXPECT_EQ(CountLog(L"CTitleBarBHO OnQuit() invoked"), 1u);
  EXPECT_EQ(CountLog(L"CTitleBarBHO SetSite(0000000000000000) invoked"), 1u);
  EXPECT_EQ(m_explorer->Command(L"windows"), L"ok");
  // Either COM has already unloaded it, which it does only on S_OK, or it answers S_OK now.
  const std::wstring unload = m_explorer->Command(L"canunload Corvane.dll");
  EXPECT_TRUE(unload == L"ok 0x00000000" || unload == L"ok unloaded") << testing::PrintToString(unload);

  // The process goes on: a new window gets a new helper object and its bar.
  Publish(L"1", L"1", m_sync);
  const int again = m_explorer->Open(m_inside);
  ASSERT_NE(again, 0);
  EXPECT_TRUE(WaitForBar(again, true).shown);
  EXPECT_EQ(CountLog(L"ExplorerWindow OnExplorerAttach() invoked!"), 3u);
}

}  // namespace
}  // namespace integrationtest
