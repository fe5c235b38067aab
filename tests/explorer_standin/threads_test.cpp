// Several Explorer windows in one process, each on its own thread: each gets its own helper
// objects, hook and view windows; closing one touches no other; quit closes them all.
#include <windows.h>

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "probe_protocol.h"
#include "probe_record_reader.h"
#include "probe_registration.h"
#include "scratch_folder.h"
#include "standin_session.h"

namespace standintest {
namespace {

TEST(StandinThreads, EachWindowOnItsOwnThread) {
  ScratchFolder scratch;
  const std::wstring folders[] = {scratch.MakeFolder(L"One"), scratch.MakeFolder(L"Two"), scratch.MakeFolder(L"Three")};
  ProbeRegistration registration({{&probe::kClsidFull}});
  ASSERT_TRUE(registration.Succeeded());
  StandinSession standin(scratch.Root());

  struct Opened {
    HWND frame;
    HWND duiView;
    DWORD thread;
  };
  std::vector<Opened> windows;
  for (int id = 1; id <= 3; ++id) {
    ASSERT_EQ(standin.Open(folders[id - 1]), id) << testing::PrintToString(standin.LogText());
    const HWND frame = standin.Handle(id, L"frame");
    windows.push_back({frame, standin.Handle(id, L"duiview"), ::GetWindowThreadProcessId(frame, nullptr)});
  }
  std::set<DWORD> threads;
  for (const Opened& window : windows) threads.insert(window.thread);
  EXPECT_EQ(threads.size(), 3u);

  const std::vector<ProbeEntry> opened = ReadProbeRecord(standin.RecordPath());
  const std::vector<ProbeEntry> sited = Select(opened, L"setsite", {{L"site", L"1"}});
  ASSERT_EQ(sited.size(), 3u);
  for (size_t index = 0; index < 3; ++index) {
    SCOPED_TRACE(index + 1);
    // Sited on the thread of its own frame, whose view was made there after the siting.
    EXPECT_EQ(sited[index][L"frame"], Decimal(windows[index].frame));
    EXPECT_EQ(sited[index].thread, windows[index].thread);
    const std::vector<ProbeEntry> views = Select(opened, L"cbt", {{L"class", L"DUIViewWndClassName"}});
    size_t seen = 0;
    for (const ProbeEntry& view : views) {
      if (view.thread != windows[index].thread) continue;
      ++seen;
      EXPECT_EQ(view[L"hwnd"], Decimal(windows[index].duiView));
      EXPECT_GT(view.sequence, sited[index].sequence);
    }
    EXPECT_EQ(seen, 1u);
  }

  // Closing the second window ends its thread only; the others still navigate.
  ASSERT_EQ(standin.Command(L"close 2"), L"ok");
  EXPECT_FALSE(::IsWindow(windows[1].frame));
  EXPECT_TRUE(::IsWindow(windows[0].frame));
  EXPECT_TRUE(::IsWindow(windows[2].frame));
  EXPECT_EQ(standin.Command(L"windows"), L"ok 1 3");
  EXPECT_EQ(standin.Command(L"navigate 1 " + folders[2]), L"ok");
  EXPECT_EQ(standin.Command(L"navigate 3 " + folders[0]), L"ok");
  EXPECT_EQ(standin.Command(L"navigate 2 " + folders[0]).compare(0, 6, L"error "), 0);

  const std::vector<ProbeEntry> afterClose = ReadProbeRecord(standin.RecordPath());
  const std::vector<ProbeEntry> quits = Select(afterClose, L"invoke", {{L"dispid", L"253"}});
  ASSERT_EQ(quits.size(), 1u);
  EXPECT_EQ(quits[0].thread, windows[1].thread);
  const std::vector<ProbeEntry> unsited = Select(afterClose, L"setsite", {{L"site", L"0"}});
  ASSERT_EQ(unsited.size(), 1u);
  EXPECT_EQ(unsited[0].thread, windows[1].thread);
  const std::vector<ProbeEntry> navigated = Select(afterClose, L"navigated");
  ASSERT_EQ(navigated.size(), 5u);
  EXPECT_EQ(navigated[3].thread, windows[0].thread);
  EXPECT_EQ(navigated[3][L"url"], folders[2]);
  EXPECT_EQ(navigated[4].thread, windows[2].thread);
  EXPECT_EQ(navigated[4][L"url"], folders[0]);

  // Quit closes the rest, each with OnQuit and SetSite(NULL) on its own thread, and ends the process.
  const std::optional<DWORD> exitCode = standin.Quit();
  ASSERT_TRUE(exitCode.has_value());
  EXPECT_EQ(*exitCode, 0u);
  const std::vector<ProbeEntry> final = ReadProbeRecord(standin.RecordPath());
  std::multiset<DWORD> quitThreads, unsitedThreads;
  for (const ProbeEntry& entry : Select(final, L"invoke", {{L"dispid", L"253"}})) quitThreads.insert(entry.thread);
  for (const ProbeEntry& entry : Select(final, L"setsite", {{L"site", L"0"}})) unsitedThreads.insert(entry.thread);
  const std::multiset<DWORD> all(threads.begin(), threads.end());
  EXPECT_EQ(quitThreads, all);
  EXPECT_EQ(unsitedThreads, all);
  EXPECT_EQ(Select(final, L"destroyed").size(), 3u);
}

}  // namespace
}  // namespace standintest
