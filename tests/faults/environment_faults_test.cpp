// The add-in inside the Explorer stand-in when its surroundings fail: the client gone, a file where
// the log folder belongs, a skin that cannot be written, has lost its pictures or holds broken ones,
// and no WMI. In each a window still gets its bar laid out, follows navigation and closes, and the
// stand-in goes on answering (a hang shows as a channel reply that never comes).
#include <cstdint>
#include <filesystem>
#include <iterator>

#include "../client_registry/saved_value.h"
#include "core/paths.h"
#include "integration_bed.h"
#include "log_files.h"
#include "platform/handles.h"
#include "platform/module_path.h"

namespace integrationtest {
namespace {

namespace fs = std::filesystem;

// A window below parent, at any depth, with the control id.
HWND Descendant(HWND parent, int id) {
  std::pair<int, HWND> find{id, nullptr};
  ::EnumChildWindows(parent, [](HWND hwnd, LPARAM lParam) -> BOOL {
    auto* find = reinterpret_cast<std::pair<int, HWND>*>(lParam);
    find->second = ::GetDlgCtrlID(hwnd) == find->first ? hwnd : nullptr;
    return find->second == nullptr;
  }, reinterpret_cast<LPARAM>(&find));
  return find.second;
}

using Bytes = std::vector<std::uint8_t>;

// A message to a window of the bar, handled on the stand-in's window thread.
void Send(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  DWORD_PTR result = 0;
  EXPECT_NE(::SendMessageTimeoutW(window, message, wParam, lParam, SMTO_NORMAL, 10000, &result), 0)
      << "message " << message << " not handled";
}

void Click(HWND window) {
  Send(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(2, 2));
  Send(window, WM_LBUTTONUP, 0, MAKELPARAM(2, 2));
}

// The add-in runs from a private copy of the installation (DLL, skin and DPI tool in Halvex\shell,
// the client above it), registered in place of the test bed's DLL.
class EnvironmentFault : public ExplorerIntegration {
 protected:
  void SetUp() override {
    const std::wstring bed = corvane::ThisModuleFolder();
    m_dllFolder = m_install.MakeFolder(L"Halvex\\shell") + L"\\";
    std::error_code error;
    fs::copy(fs::path(bed + L"CorvaneSkin"), fs::path(m_dllFolder + L"CorvaneSkin"), fs::copy_options::recursive, error);
    ASSERT_FALSE(error) << error.message();
    for (const wchar_t* name : {L"Corvane.dll", L"scalemend.exe"}) {
      ASSERT_TRUE(::CopyFileW((bed + name).c_str(), (m_dllFolder + name).c_str(), FALSE));
    }
    ASSERT_TRUE(::CopyFileW((corvane::ClientFolder() + L"Halvex.exe").c_str(), ClientExe().c_str(), FALSE));
    ExplorerIntegration::SetUp();
  }

  std::wstring ClientExe() const { return corvane::core::ParentFolder(m_dllFolder) + L"Halvex.exe"; }
  std::wstring Skin() const { return m_dllFolder + L"CorvaneSkin\\"; }

  // A window on the sync folder: its bar laid out (barHeight tall, unless 0), navigated away and
  // back, and closed.
  void ExpectAWindowWorks(int barHeight = 0) {
    const int id = m_explorer->Open(m_sync);
    ASSERT_NE(id, 0);
    const BarState state = WaitForBar(id, true, 5000);
    ASSERT_TRUE(state.shown);
    if (barHeight != 0) {
      EXPECT_EQ(state.barInView.bottom - state.barInView.top, barHeight);
    }
    ExpectFollowsAndCloses(id);
  }

  void ExpectFollowsAndCloses(int id) {
    EXPECT_EQ(Navigate(id, m_other), L"ok");
    EXPECT_FALSE(WaitForBar(id, false).shown);
    EXPECT_EQ(Navigate(id, m_inside), L"ok");
    EXPECT_TRUE(WaitForBar(id, true).shown);
    EXPECT_EQ(m_explorer->Command(L"close " + std::to_wstring(id)), L"ok");
  }

  logtest::TempFolder m_install;
};

TEST_F(EnvironmentFault, WithoutTheClientEveryBarActionIsLoggedAndNothingStarts) {
  ASSERT_TRUE(::DeleteFileW(ClientExe().c_str()));
  const int id = m_explorer->Open(m_sync);
  ASSERT_NE(id, 0);
  const BarState state = WaitForBar(id, true);
  ASSERT_TRUE(state.shown);
  EXPECT_TRUE(WaitUntil([&] { return CountLog(L"Halvex process not exits, call cx::startCloudApp") >= 1; }, 3000));

  const HWND syncProgress = Descendant(state.bar, 4001);
  ASSERT_NE(syncProgress, nullptr);
  const HWND right = ::GetParent(syncProgress);
  constexpr UINT kClick = 0;
  const struct {
    const char* what;
    HWND window;
    UINT message;
    WPARAM wParam;
    const wchar_t* fields;
  } actions[] = {
      {"logo hover", Descendant(state.bar, 2001), WM_MOUSEMOVE, 0, L"accountInfo|show|"},
      {"logo leave", Descendant(state.bar, 2001), WM_MOUSELEAVE, 0, L"accountInfo|hide|"},
      {"promotion click", Descendant(state.bar, 2003), kClick, 0, L"vip|show|"},
      {"expand click", Descendant(state.bar, 3001), kClick, 0, L"vip|show|"},
      {"sync progress click", syncProgress, kClick, 0, L"syncprogress|show|-1|-1|"},
      {"knowledge base click", Descendant(state.bar, 4003), kClick, 0, L"zhishiku|show|"},
      {"sync settings", right, WM_COMMAND, 1001, L"setting|sync_setting\""},
      {"sync records", right, WM_COMMAND, 1002, L"setting|sync_operate\""},
      {"customer service", right, WM_COMMAND, 1003, L"setting|ai_custom\""},
  };
  for (const auto& action : actions) {
    SCOPED_TRACE(action.what);
    ASSERT_NE(action.window, nullptr);
    const std::wstring logged = L"call cx::exeCloudCommandLine = " + ClientExe() + L" -shellpopwin \"" + action.fields;
    const size_t before = CountLog(logged);
    if (action.message == kClick) {
      Click(action.window);
    } else {
      Send(action.window, action.message, action.wParam, MAKELPARAM(3, 3));
    }
    EXPECT_TRUE(WaitUntil([&] { return CountLog(logged) > before; }, 2000)) << "no log line for the command";
  }
  ExpectFollowsAndCloses(id);
  // Read after the window's whole life: a client started by any of the actions has long written its
  // record by now.
  EXPECT_TRUE(launchertest::ReadRecords(m_clients->ClientRecord()).empty()) << "a client started although none is installed";
}

TEST_F(EnvironmentFault, AFileWhereTheLogFolderBelongsLeavesTheAddInWorking) {
  // Registration already made the folder and logged into it; the stand-in has not loaded the DLL yet.
  const fs::path logs = corvane::core::ParentFolder(m_dllFolder) + L"log";
  std::error_code error;
  const std::wstring blocker = (logs / L"Corvane").wstring();
  fs::remove_all(blocker, error);
  const Bytes inTheWay(10, 'x');
  logtest::WriteBytes(blocker, inTheWay);
  ASSERT_TRUE(fs::is_regular_file(blocker));

  ExpectAWindowWorks();
  EXPECT_EQ(logtest::ReadBytes(blocker), inTheWay);
  EXPECT_EQ(std::distance(fs::directory_iterator(logs), fs::directory_iterator()), 1) << "written beside the log folder";
}

TEST_F(EnvironmentFault, ABrokenSkinStillGivesALaidOutBar) {
  std::vector<std::pair<std::wstring, Bytes>> pictures;
  for (const auto& entry : fs::directory_iterator(fs::path(Skin()))) {
    if (entry.path().extension() == L".png") pictures.emplace_back(entry.path().wstring(), logtest::ReadBytes(entry.path().wstring()));
  }
  ASSERT_GT(pictures.size(), 20u);
  {
    SCOPED_TRACE("unwritable");
    // Nothing in the folder can be written: the caption picture that sets the bar's height cannot
    // be rendered, so the bar takes its height from the one on disk, here the 28-pixel logo: 1.6
    // times that, truncated.
    const std::wstring detection = Skin() + L"detection.png";
    ASSERT_TRUE(::CopyFileW((Skin() + L"logo1.png").c_str(), detection.c_str(), FALSE));
    const Bytes before = logtest::ReadBytes(detection);
    std::vector<corvane::unique_file> held;
    for (const auto& picture : pictures) {
      held.emplace_back(::CreateFileW(picture.first.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
      ASSERT_TRUE(held.back()) << picture.first;
    }
    const corvane::unique_file probe(::CreateFileW(detection.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                                   nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_FALSE(probe) << "the pictures can still be written";
    ExpectAWindowWorks(44);
    EXPECT_EQ(logtest::ReadBytes(detection), before);
  }
  {
    SCOPED_TRACE("no pictures");
    for (const auto& picture : pictures) fs::remove(picture.first);
    ExpectAWindowWorks();
  }
  {
    SCOPED_TRACE("broken pictures");
    // Every other picture cut in half, the rest noise behind a PNG signature.
    size_t i = 0;
    for (const auto& picture : pictures) {
      const Bytes& bytes = picture.second;
      const bool cut = i++ % 2 == 0;
      Bytes broken(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(cut ? bytes.size() / 2 : 8));
      if (!cut) broken.resize(8 + bytes.size(), 0x5A);
      logtest::WriteBytes(picture.first, broken);
    }
    ExpectAWindowWorks();
  }
}

TEST_F(EnvironmentFault, WithoutWmiEveryClientProcessCountsAsAMainProcess) {
  // A fresh stand-in in which WMI's provider cannot load. (That the gate asks WMI when it can is
  // the launcher tests' concern.) Wine takes a program's DLL overrides from the WINEDLLOVERRIDES it
  // was started with, which a Windows parent cannot change for its child, or from the per-program
  // key, where an empty value disables the DLL: here for programs named explorer.exe.
  const registrytest::SavedValue noWmi{L"Software\\Wine\\AppDefaults\\explorer.exe\\DllOverrides", L"wbemprox"};
  ASSERT_TRUE(noWmi.Write(REG_SZ, L"", sizeof(wchar_t)));
  RestartExplorer();
  const int id = m_explorer->Open(m_sync);
  ASSERT_NE(id, 0);
  const BarState state = WaitForBar(id, true);
  ASSERT_TRUE(state.shown);
  const HWND syncProgress = Descendant(state.bar, 4001);
  ASSERT_NE(syncProgress, nullptr);
  ASSERT_EQ(launchertest::WaitForRecords(m_clients->ClientRecord(), 1).size(), 1u);
  const size_t gateLines = CountLog(L" num:1");
  Click(syncProgress);
  EXPECT_EQ(launchertest::WaitForRecords(m_clients->ClientRecord(), 2).size(), 2u) << "one client: the command goes";
  EXPECT_EQ(CountLog(L" num:1"), gateLines + 1);
  EXPECT_EQ(m_explorer->Command(L"canunload wbemprox.dll"), L"ok unloaded") << "WMI was there after all";

  // A helper of the client started just now: its "--type=" cannot be read, so it counts as a second
  // main process and the gate holds the command back; the click logs the command it did not give
  // (an empty one) before it returns, so nothing started after it.
  m_clients->StartClient(L"--type=renderer");
  ASSERT_EQ(launchertest::WaitForRecords(m_clients->ClientRecord(), 3).size(), 3u);
  const size_t refusedBefore = CountLog(L"call cx::exeCloudCommandLine = .");
  Click(syncProgress);
  EXPECT_EQ(CountLog(L"call cx::exeCloudCommandLine = ."), refusedBefore + 1);
  ExpectFollowsAndCloses(id);
  EXPECT_EQ(launchertest::ReadRecords(m_clients->ClientRecord()).size(), 3u) << "the command went through the gate";
}

}  // namespace
}  // namespace integrationtest
