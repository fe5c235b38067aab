// The add-in inside the Explorer stand-in when its surroundings fail: the client gone, a file where
// the log folder belongs, a skin that cannot be written, has lost its pictures or holds broken ones,
// and no WMI. In each the bar is still made and laid out, the stand-in stays alive, every round trip
// to it stays under a second, and windows opened and closed under the fault cost no GDI or USER
// object.
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <iterator>

#include "core/paths.h"
#include "integration_bed.h"
#include "log_files.h"
#include "platform/handles.h"
#include "platform/module_path.h"

namespace integrationtest {
namespace {

namespace fs = std::filesystem;

constexpr ULONGLONG kHangMs = 1000;
// Opening a window also starts the DPI tool, a process start that Wine stretches past a second on a
// loaded machine; the second applies to everything done in an open window.
constexpr ULONGLONG kOpenMs = 5000;
// Headroom the stand-in may lose across a soak without a leak: other threads of the process (COM,
// the channel) may hold an object or two at the moment of measuring. Every soak opens more windows
// than this, so a leak of one object per window still shows.
constexpr long kSlack = 3;

struct FindChild {
  int id;
  HWND found;
};

BOOL CALLBACK FindChildProc(HWND hwnd, LPARAM lParam) {
  auto* find = reinterpret_cast<FindChild*>(lParam);
  if (::GetDlgCtrlID(hwnd) != find->id) return TRUE;
  find->found = hwnd;
  return FALSE;
}

// A window below parent, at any depth, with the control id.
HWND Descendant(HWND parent, int id) {
  FindChild find{id, nullptr};
  ::EnumChildWindows(parent, &FindChildProc, reinterpret_cast<LPARAM>(&find));
  return find.found;
}

using Bytes = std::vector<std::uint8_t>;

Bytes BytesOf(const std::string& text) { return Bytes(text.begin(), text.end()); }

// Wine takes a program's DLL overrides from the WINEDLLOVERRIDES it was started with, which a Windows
// parent cannot change for its child (Wine's own variables pass from Unix parent to child), or from
// the per-program key, where an empty value disables the DLL: here for programs named explorer.exe.
class WmiProviderDisabled {
 public:
  WmiProviderDisabled() {
    Remove();
    corvane::unique_hkey key;
    EXPECT_EQ(::RegCreateKeyExW(HKEY_CURRENT_USER, kKey, 0, nullptr, 0, KEY_WRITE, nullptr, key.put(), nullptr), ERROR_SUCCESS);
    EXPECT_EQ(::RegSetValueExW(key.get(), L"wbemprox", 0, REG_SZ, reinterpret_cast<const BYTE*>(L""), sizeof(wchar_t)),
              ERROR_SUCCESS);
  }
  ~WmiProviderDisabled() { Remove(); }
  WmiProviderDisabled(const WmiProviderDisabled&) = delete;
  WmiProviderDisabled& operator=(const WmiProviderDisabled&) = delete;

 private:
  static constexpr wchar_t kKey[] = L"Software\\Wine\\AppDefaults\\explorer.exe\\DllOverrides";
  static void Remove() { ::RegDeleteKeyValueW(HKEY_CURRENT_USER, kKey, L"wbemprox"); }
};

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

  // A round trip to the stand-in, which must answer within a second (an open within kOpenMs).
  std::wstring Timed(const std::wstring& line) {
    const bool open = line.compare(0, 5, L"open ") == 0;
    const ULONGLONG start = ::GetTickCount64();
    std::wstring reply = m_explorer->Command(line);
    const ULONGLONG took = ::GetTickCount64() - start;
    EXPECT_LT(took, open ? kOpenMs : kHangMs) << testing::PrintToString(line) << " took " << took << " ms";
    ULONGLONG& slowest = open ? m_slowestOpen : m_slowest;
    slowest = std::max(slowest, took);
    return reply;
  }

  // A message to a window of the bar, which must be handled within a second.
  void TimedSend(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const ULONGLONG start = ::GetTickCount64();
    DWORD_PTR result = 0;
    EXPECT_NE(::SendMessageTimeoutW(window, message, wParam, lParam, SMTO_NORMAL, 10000, &result), 0)
        << "message " << message << " not handled";
    const ULONGLONG took = ::GetTickCount64() - start;
    EXPECT_LT(took, kHangMs) << "message " << message << " took " << took << " ms";
    m_slowest = std::max(m_slowest, took);
  }

  int BarHeight(int id) {
    const BarState state = Bar(id);
    return state.barInView.bottom - state.barInView.top;
  }

  // A window opened on the sync folder, its bar shown and laid out, navigated away and back, and
  // closed: once to warm up, then `cycles` times. Every round trip stays under a second, and the
  // GDI and USER headroom of the stand-in is where it was after the warm-up.
  void ExpectCyclesHealthy(int cycles) {
    const auto cycle = [&] {
      const std::wstring opened = Timed(L"open " + m_sync);
      ASSERT_EQ(opened.compare(0, 3, L"ok "), 0) << testing::PrintToString(opened);
      const std::wstring id = opened.substr(3);
      ASSERT_TRUE(WaitForBar(std::stoi(id), true, 5000).shown);
      // Measured from the caption picture as it is on disk: a bar laid out before its caption was
      // measured takes its height a moment later.
      int height = 0;
      EXPECT_TRUE(WaitUntil([&] { return (height = BarHeight(std::stoi(id))) == ExpectedBarHeight(); }, 3000))
          << "bar height " << height << ", caption says " << ExpectedBarHeight();
      EXPECT_EQ(Timed(L"navigate " + id + L" " + m_other), L"ok");
      EXPECT_EQ(Timed(L"navigate " + id + L" " + m_inside), L"ok");
      EXPECT_EQ(Timed(L"sync " + id), L"ok");
      EXPECT_EQ(Timed(L"folder " + id), L"ok " + m_inside);
      EXPECT_EQ(Timed(L"close " + id), L"ok");
    };
    cycle();
    const Headroom before = Footprint();
    for (int i = 0; i < cycles && !HasFatalFailure(); ++i) cycle();
    const Headroom after = Footprint();
    EXPECT_LE(before.gdi - after.gdi, kSlack) << "GDI objects lost over " << cycles << " windows";
    EXPECT_LE(before.user - after.user, kSlack) << "USER objects lost over " << cycles << " windows";
    EXPECT_EQ(Timed(L"windows"), L"ok") << "the stand-in no longer answers";
    std::cout << "[ cycles   ] " << cycles << " windows: slowest open " << m_slowestOpen << " ms, other round trip "
              << m_slowest << " ms; headroom GDI " << before.gdi << " -> " << after.gdi << ", USER "
              << before.user << " -> " << after.user << std::endl;
  }

  standintest::ScratchFolder m_install;
  ULONGLONG m_slowestOpen = 0;
  ULONGLONG m_slowest = 0;
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
    const auto count = [&] {
      const std::vector<std::wstring> lines = LogLines();
      return std::count_if(lines.begin(), lines.end(), [&](const std::wstring& line) { return line.find(logged) != std::wstring::npos; });
    };
    const auto before = count();
    if (action.message == kClick) {
      TimedSend(action.window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(2, 2));
      TimedSend(action.window, WM_LBUTTONUP, 0, MAKELPARAM(2, 2));
    } else {
      TimedSend(action.window, action.message, action.wParam, MAKELPARAM(3, 3));
    }
    EXPECT_TRUE(WaitUntil([&] { return count() > before; }, 2000)) << "no log line for the command";
  }
  EXPECT_FALSE(WaitUntil([&] { return !launchertest::ReadRecords(m_clients->ClientRecord()).empty(); }, 1500))
      << "a client started although none is installed";
  EXPECT_EQ(Timed(L"close " + std::to_wstring(id)), L"ok");
  ExpectCyclesHealthy(10);
}

TEST_F(EnvironmentFault, AFileWhereTheLogFolderBelongsLeavesTheAddInWorking) {
  // Registration already made the folder and logged into it; the stand-in has not loaded the DLL yet.
  const fs::path logs = corvane::core::ParentFolder(m_dllFolder) + L"log";
  std::error_code error;
  const std::wstring blocker = (logs / L"Corvane").wstring();
  fs::remove_all(blocker, error);
  logtest::WriteBytes(blocker, BytesOf("in the way"));
  ASSERT_TRUE(fs::is_regular_file(blocker));

  const int id = m_explorer->Open(m_sync);
  ASSERT_NE(id, 0);
  EXPECT_TRUE(WaitForBar(id, true).shown);
  EXPECT_EQ(Timed(L"navigate " + std::to_wstring(id) + L" " + m_other), L"ok");
  EXPECT_FALSE(WaitForBar(id, false).shown);
  EXPECT_EQ(Timed(L"navigate " + std::to_wstring(id) + L" " + m_inside), L"ok");
  EXPECT_TRUE(WaitForBar(id, true).shown);
  EXPECT_EQ(Timed(L"close " + std::to_wstring(id)), L"ok");
  ExpectCyclesHealthy(10);

  EXPECT_EQ(logtest::ReadBytes(blocker), BytesOf("in the way"));
  EXPECT_EQ(std::distance(fs::directory_iterator(logs), fs::directory_iterator()), 1) << "written beside the log folder";
}

TEST_F(EnvironmentFault, ABrokenSkinStillGivesALaidOutBar) {
  std::vector<std::pair<std::wstring, Bytes>> pictures;
  for (const auto& entry : fs::directory_iterator(fs::path(Skin()))) {
    if (entry.path().extension() == L".png") pictures.emplace_back(entry.path().wstring(), logtest::ReadBytes(entry.path().wstring()));
  }
  ASSERT_GT(pictures.size(), 20u);
  const auto opened = [&](const char* what) {
    SCOPED_TRACE(what);
    ExpectCyclesHealthy(5);
    EXPECT_GT(ExpectedBarHeight(), 0);
  };

  {
    // Nothing in the folder can be written: the caption picture that sets the bar's height cannot
    // be rendered, so the bar keeps the height of the one on disk, here a taller picture's.
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
    opened("unwritable");
    EXPECT_EQ(logtest::ReadBytes(detection), before);
    EXPECT_EQ(ExpectedBarHeight(), 28 * 16 / 10);
  }
  {
    for (const auto& picture : pictures) fs::remove(picture.first);
    opened("no pictures");
  }
  {
    // Every other picture cut in half, the rest noise behind a PNG signature.
    size_t i = 0;
    for (const auto& picture : pictures) {
      const Bytes& bytes = picture.second;
      const bool cut = i++ % 2 == 0;
      Bytes broken(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(cut ? bytes.size() / 2 : 8));
      if (!cut) broken.resize(8 + bytes.size(), 0x5A);
      logtest::WriteBytes(picture.first, broken);
    }
    opened("broken pictures");
  }
}

TEST_F(EnvironmentFault, WithoutWmiEveryClientProcessCountsAsAMainProcess) {
  const auto clientRecords = [&] { return launchertest::ReadRecords(m_clients->ClientRecord()).size(); };
  const auto clickSyncProgress = [&](int id) {
    const HWND button = Descendant(WaitForBar(id, true).bar, 4001);
    ASSERT_NE(button, nullptr);
    TimedSend(button, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(2, 2));
    TimedSend(button, WM_LBUTTONUP, 0, MAKELPARAM(2, 2));
  };

  // With WMI: the start-up gate asks it for the running client's command line.
  int id = m_explorer->Open(m_sync);
  ASSERT_NE(id, 0);
  ASSERT_TRUE(WaitForBar(id, true).shown);
  ASSERT_EQ(launchertest::WaitForRecords(m_clients->ClientRecord(), 1).size(), 1u);
  clickSyncProgress(id);
  EXPECT_EQ(launchertest::WaitForRecords(m_clients->ClientRecord(), 2).size(), 2u);
  EXPECT_NE(m_explorer->Command(L"canunload wbemprox.dll"), L"ok unloaded") << "the gate never asked WMI";

  // Without: a fresh stand-in in which WMI's provider cannot load, and no client running.
  m_clients.reset();
  m_clients = std::make_unique<launchertest::StandinSession>();
  ::SetEnvironmentVariableW(L"HALVEX_STANDIN_LINGER_MS", L"60000");
  const WmiProviderDisabled noWmi;
  RestartExplorer();
  id = m_explorer->Open(m_sync);
  ASSERT_NE(id, 0);
  ASSERT_TRUE(WaitForBar(id, true).shown);
  ASSERT_EQ(launchertest::WaitForRecords(m_clients->ClientRecord(), 1).size(), 1u);
  const size_t gateLines = CountLog(L" num:1");
  clickSyncProgress(id);
  EXPECT_EQ(launchertest::WaitForRecords(m_clients->ClientRecord(), 2).size(), 2u) << "one client: the command goes";
  EXPECT_EQ(CountLog(L" num:1"), gateLines + 1);
  EXPECT_EQ(m_explorer->Command(L"canunload wbemprox.dll"), L"ok unloaded") << "WMI was there after all";

  // A helper of the client started just now: its "--type=" cannot be read, so it counts as a second
  // main process and the gate holds the command back.
  m_clients->StartClient(L"--type=renderer");
  ASSERT_EQ(launchertest::WaitForRecords(m_clients->ClientRecord(), 3).size(), 3u);
  const size_t refusedBefore = CountLog(L"call cx::exeCloudCommandLine = .");
  clickSyncProgress(id);
  EXPECT_TRUE(WaitUntil([&] { return CountLog(L"call cx::exeCloudCommandLine = .") == refusedBefore + 1; }, 2000));
  EXPECT_FALSE(WaitUntil([&] { return clientRecords() > 3; }, 1500)) << "the command went through the gate";
  EXPECT_EQ(Timed(L"close " + std::to_wstring(id)), L"ok");
  ExpectCyclesHealthy(10);
}

}  // namespace
}  // namespace integrationtest
