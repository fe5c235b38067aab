// The add-in under load and races inside the Explorer stand-in: the client's state changing under
// the windows' reads, windows closed while their folder check runs, requests to unload while windows
// hold the module, and thirty windows writing the log through many rotations. Each ends with the
// stand-in answering, no command taking a second or more, and no GDI or USER object lost.
#include <algorithm>
#include <cstdio>
#include <map>
#include <set>
#include <thread>

#include "integration_bed.h"
#include "log_files.h"
#include "platform/handles.h"
#include "platform/module_path.h"

namespace integrationtest {
namespace {

constexpr ULONGLONG kHangMs = 1000;
// Objects a test may end up holding beyond its start (a cached picture or font); a leak per window,
// per check or per state change loses far more.
constexpr long kSlack = 16;

std::wstring Id(int id) { return std::to_wstring(id); }

// Values under one key, written in order; an empty text deletes the value.
using Values = std::vector<std::pair<const wchar_t*, std::wstring>>;

corvane::unique_hkey CreateKey(const std::wstring& path) {
  corvane::unique_hkey key;
  ::RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, key.put(), nullptr);
  return key;
}

void Write(HKEY key, const Values& values) noexcept {
  for (const auto& [name, text] : values) {
    if (text.empty()) {
      ::RegDeleteValueW(key, name);
    } else {
      ::RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                       static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    }
  }
}

class LoadFaults : public ExplorerIntegration {
 protected:
  // One command, its round trip counted towards the slowest.
  std::wstring Timed(const std::wstring& command) {
    const ULONGLONG start = ::GetTickCount64();
    std::wstring reply = m_explorer->Command(command);
    const ULONGLONG took = ::GetTickCount64() - start;
    if (took > m_slowest) {
      m_slowest = took;
      m_slowestCommand = command;
    }
    ++m_commands;
    return reply;
  }

  void ExpectNoHang() const {
    EXPECT_LT(m_slowest, kHangMs) << "slowest of " << m_commands << " commands: "
                                  << testing::PrintToString(m_slowestCommand);
    std::printf("%d commands, slowest %llu ms\n", m_commands, m_slowest);
  }

  static void ExpectFlat(const Headroom& before, const Headroom& after) {
    std::printf("headroom GDI %ld -> %ld, USER %ld -> %ld\n", before.gdi, after.gdi, before.user, after.user);
    EXPECT_LE(before.gdi - after.gdi, kSlack) << "GDI objects lost";
    EXPECT_LE(before.user - after.user, kSlack) << "USER objects lost";
  }

  // Everything the bars read once a second, present and valid: they then log nothing.
  Values Account() const {
    const std::wstring skin = corvane::ThisModuleFolder() + L"CorvaneSkin\\";
    return {{L"bLogin", L"1"},           {L"bOpenSync", L"1"},          {L"syncPath", m_sync},
            {L"totalSpace", L"2147483648"}, {L"usedSpace", L"1073741824"}, {L"advertisingId", L"a1"},
            {L"advertisingTitle", L"Spring offer"}, {L"userLogoPath", skin + L"logo1.png"}};
  }

  ULONGLONG m_slowest = 0;
  std::wstring m_slowestCommand;
  int m_commands = 0;
};

TEST_F(LoadFaults, ClientStateFlippingEveryMillisecondForAMinute) {
  const Values settled = Account();
  Write(CreateKey(kTestUserKey).get(), settled);
  const int ids[] = {m_explorer->Open(m_sync), m_explorer->Open(m_inside), m_explorer->Open(m_other),
                     m_explorer->Open(m_sibling)};
  for (const int id : ids) ASSERT_NE(id, 0);
  const auto expectSettled = [&](bool signedIn) {
    for (int i = 0; i < 4; ++i) {
      const bool shown = signedIn && i < 2;  // the first two show the sync folder
      EXPECT_EQ(WaitForBar(ids[i], shown, 5000).shown, shown) << "window " << ids[i];
    }
  };
  expectSettled(true);
  ::Sleep(2500);  // the bars' once-a-second reads take up the account
  const Headroom before = Footprint();

  // Signed in and out, sync on and off, the sync folder here, elsewhere, spelled with slashes or
  // missing, quotas valid, negative and unreadable, promotions and pictures coming and going, and
  // the user itself too short to count.
  const std::wstring skin = corvane::ThisModuleFolder() + L"CorvaneSkin\\";
  std::wstring slashed = m_sync;
  std::replace(slashed.begin(), slashed.end(), L'\\', L'/');
  struct Flip {
    Values root, user;
  };
  const Values signedUp = {{L"currentUser", kTestUser}};
  const std::vector<Flip> flips = {
      {signedUp, settled},
      {signedUp,
       {{L"bLogin", L"0"}, {L"syncPath", m_other}, {L"totalSpace", L"0"}, {L"advertisingId", L""}, {L"userLogoPath", L""}}},
      {signedUp,
       {{L"bLogin", L"1"}, {L"bOpenSync", L"0"}, {L"syncPath", m_inside + L"\\"}, {L"totalSpace", L"-5"},
        {L"usedSpace", L"x"}, {L"advertisingId", L"a2"}, {L"advertisingTitle", std::wstring(300, L'W')},
        {L"userLogoPath", skin + L"btn_login.png"}}},
      {{{L"currentUser", L"u01"}},
       {{L"bOpenSync", L"1"}, {L"syncPath", L""}, {L"usedSpace", L""}, {L"userLogoPath", skin + L"none.png"}}},
      {signedUp, {{L"syncPath", slashed + L"/"}, {L"totalSpace", L"99999999999999"}, {L"usedSpace", L"99999999999999"}}},
  };
  const corvane::unique_hkey root = CreateKey(kClientKey);
  const corvane::unique_hkey user = CreateKey(kTestUserKey);
  long written = 0;
  {
    // Nothing in the writer allocates or throws: the table and the keys are made beforehand.
    std::jthread writer([&](std::stop_token stop) {
      for (size_t i = 0; !stop.stop_requested(); ++i, ++written) {
        Write(root.get(), flips[i % flips.size()].root);
        Write(user.get(), flips[i % flips.size()].user);
        ::Sleep(1);
      }
    });
    // Two windows stay, in and out of the sync folder; two keep moving in and out of it.
    const ULONGLONG end = ::GetTickCount64() + 60000;
    for (int i = 0; ::GetTickCount64() < end && !HasFailure(); ++i) {
      EXPECT_EQ(Timed(L"navigate " + Id(ids[2]) + L" " + (i % 2 ? m_sync : m_other)), L"ok");
      EXPECT_EQ(Timed(L"navigate " + Id(ids[3]) + L" " + (i % 2 ? m_sibling : m_inside)), L"ok");
      for (const int id : ids) EXPECT_EQ(Timed(L"sync " + Id(id)), L"ok");
      ::Sleep(20);
    }
  }
  std::printf("%ld flips of the client state\n", written);
  EXPECT_GT(written, 20000) << "the state did not flip every millisecond or so";

  // Stopped in a known state, the bars follow it: shown in the sync folder only, then nowhere.
  Write(root.get(), signedUp);
  Write(user.get(), settled);
  EXPECT_EQ(Timed(L"navigate " + Id(ids[2]) + L" " + m_other), L"ok");
  EXPECT_EQ(Timed(L"navigate " + Id(ids[3]) + L" " + m_sibling), L"ok");
  expectSettled(true);
  ::Sleep(2500);
  ExpectFlat(before, Footprint());
  Write(user.get(), {{L"bLogin", L"0"}});
  expectSettled(false);
  ExpectNoHang();
}

TEST_F(LoadFaults, WindowsClosedWhileTheirFolderCheckRunsLeaveNothingBehind) {
  // The check asks the browser for its view from the timer thread; made to take 300 ms there, a
  // close at any moment has about one chance in four to meet a check that is running.
  ASSERT_EQ(m_explorer->Command(L"viewdelay 300"), L"ok");
  constexpr int kRounds = 3, kWindows = 4;
  struct Opened {
    int id;
    std::wstring thread, frame;
  };
  std::vector<Opened> closed;
  Headroom before;
  // Round 0 warms up what the add-in and Wine keep for the process (logger, GDI+, font caches).
  for (int round = 0; round <= kRounds; ++round) {
    if (round == 1) before = Footprint();
    std::vector<Opened> opened;
    for (int w = 0; w < kWindows; ++w) {
      const int id = m_explorer->Open(w % 2 == 0 ? m_sync : m_other);
      ASSERT_NE(id, 0);
      const HWND frame = m_explorer->Handle(id, L"frame");
      opened.push_back({id, std::to_wstring(::GetWindowThreadProcessId(frame, nullptr)),
                        std::to_wstring(static_cast<int>(reinterpret_cast<INT_PTR>(frame)))});
    }
    // Navigations meet checks too; and a new folder just before the close gives the check that meets
    // the close a change to act on.
    for (int i = 0; i < 6; ++i) {
      for (const Opened& window : opened) {
        EXPECT_EQ(Timed(L"navigate " + Id(window.id) + L" " + (i % 2 ? m_sync : m_sibling)), L"ok");
      }
      ::Sleep(100);
    }
    for (int w = 0; w < kWindows; ++w) {
      EXPECT_EQ(Timed(L"navigate " + Id(opened[w].id) + L" " + (w % 2 == 0 ? m_other : m_inside)), L"ok");
      EXPECT_EQ(Timed(L"close " + Id(opened[w].id)), L"ok");
    }
    if (round > 0) closed.insert(closed.end(), opened.begin(), opened.end());
  }

  EXPECT_EQ(m_explorer->Command(L"windows"), L"ok");
  const std::wstring opens = std::to_wstring(closed.size() + kWindows);
  EXPECT_EQ(m_explorer->Command(L"connections"), L"ok " + opens + L" " + opens + L" 0");
  EXPECT_EQ(std::to_wstring(CountLog(L"CTitleBarBHO SetSite(0000000000000000) invoked")), opens);
  EXPECT_EQ(std::to_wstring(CountLog(L"CTitleWindow::DestroyBarWnd() invoked")), opens);
  // A check that noted the new folder after its window's site was taken away ran into the close.
  // Each load of the module has a file of its own, and within one, each window a thread of its own.
  int overlapped = 0;
  for (const std::wstring& file : NewLogFiles()) {
    const std::vector<std::wstring> lines = logtest::SplitCrLf(logtest::ReadUtf16(file, true));
    const auto has = [](const std::wstring& text) {
      return [&text](const std::wstring& line) { return line.find(text) != line.npos; };
    };
    for (const Opened& window : closed) {
      const std::wstring detach =
          L"][" + window.thread + L"][CTitleBarBHO::SetSite]CTitleBarBHO SetSite(0000000000000000)";
      const std::wstring check = L"HWND = " + window.frame + L" call GetCurrentFolderPath";
      if (std::any_of(std::find_if(lines.begin(), lines.end(), has(detach)), lines.end(), has(check))) ++overlapped;
    }
  }
  std::printf("%zu windows closed, %d of them while a folder check ran\n", closed.size(), overlapped);

  // Nothing runs on: no check, and the module is free to go.
  Publish(L"1", L"1", L"");
  const size_t checks = CountLog(L"call checkReadyLoginAndOpenSync return false.");
  ::Sleep(1500);
  EXPECT_EQ(CountLog(L"call checkReadyLoginAndOpenSync return false."), checks) << "a closed window's check still runs";
  const std::wstring unload = m_explorer->Command(L"canunload Corvane.dll");
  EXPECT_TRUE(unload == L"ok 0x00000000" || unload == L"ok unloaded") << testing::PrintToString(unload);
  ExpectFlat(before, Footprint());
  ExpectNoHang();
}

TEST_F(LoadFaults, ModuleRefusesToUnloadWhileAnyWindowHoldsIt) {
  const int ids[] = {m_explorer->Open(m_sync), m_explorer->Open(m_inside), m_explorer->Open(m_other)};
  for (const int id : ids) ASSERT_NE(id, 0);
  for (int first = 0; first < 3; ++first) {
    // Every window still open asks COM to free its apartment's unused libraries: the add-in is in use.
    for (int i = first; i < 3; ++i) EXPECT_EQ(Timed(L"freeunused " + Id(ids[i])), L"ok");
    EXPECT_EQ(Timed(L"canunload Corvane.dll"), L"ok 0x00000001") << 3 - first << " windows open";
    // And the add-in still works in them: the bar follows the folder.
    EXPECT_EQ(Timed(L"navigate " + Id(ids[first]) + L" " + m_other), L"ok");
    EXPECT_FALSE(WaitForBar(ids[first], false, 5000).shown);
    EXPECT_EQ(Timed(L"navigate " + Id(ids[first]) + L" " + m_inside), L"ok");
    EXPECT_TRUE(WaitForBar(ids[first], true, 5000).shown);
    EXPECT_EQ(Timed(L"close " + Id(ids[first])), L"ok");
  }
  const std::wstring unload = Timed(L"canunload Corvane.dll");
  EXPECT_TRUE(unload == L"ok 0x00000000" || unload == L"ok unloaded") << testing::PrintToString(unload);
  ExpectNoHang();
}

TEST_F(LoadFaults, ThirtyWindowsLogEveryLineOnceThroughManyRotations) {
  // The logger rotates at 5 MiB. Before each burst the file is filled (by another writer, as the share
  // allows) to just below that, so the burst's lines, written from thirty window threads at once,
  // rotate it part-way through. A burst is one browse request per window and folder, each logged
  // with its own folder: "Successfully navigated to path: <folder>".
  constexpr std::int64_t kLimit = 5242880, kRoom = 32 * 1024;
  constexpr int kWindows = 30, kBursts = 5, kPosts = 3;
  Write(CreateKey(kTestUserKey).get(), Account());
  const std::wstring parent = ShellPath(m_scratch->MakeFolder(L"Logs"));
  std::vector<std::vector<std::wstring>> folders(kBursts);
  for (int b = 0; b < kBursts; ++b) {
    for (int i = 0; i < kWindows * kPosts; ++i) {
      const std::wstring name = L"b" + Id(b) + L"n" + Id(i);
      m_scratch->MakeFolder(L"Logs\\" + name);
      folders[b].push_back(parent + L"\\" + name);
    }
  }
  std::vector<int> ids;
  for (int w = 0; w < kWindows; ++w) {
    ids.push_back(m_explorer->Open(m_other));
    ASSERT_NE(ids.back(), 0);
  }
  // Quiet once each window's check has noted the folder it last went to.
  std::wstring current;
  const auto quiet = [&](const std::vector<std::wstring>& last) {
    return WaitUntil(
        [&] {
          const std::wstring text = logtest::ReadUtf16(current, true);
          return std::all_of(last.begin(), last.end(), [&](const std::wstring& f) {
            return text.find(L"call GetCurrentFolderPath = " + f + L".") != text.npos;
          });
        },
        10000);
  };
  ASSERT_TRUE(WaitUntil(
      [&] {
        for (const std::wstring& file : NewLogFiles()) {
          const std::wstring text = logtest::ReadUtf16(file, true);
          if (text.find(L"GetCurrentFolderPath = " + m_other + L".") != std::wstring::npos) current = file;
        }
        return !current.empty();
      },
      10000));
  // The rotated copies are mostly the test's filler: removed however the test ends. The current
  // file goes with the stand-in's run, as every run's does.
  const struct Rotated {
    const std::wstring& current;
    ~Rotated() {
      ::DeleteFileW((current + L".1").c_str());
      ::DeleteFileW((current + L".2").c_str());
    }
  } rotated{current};
  ASSERT_TRUE(WaitUntil([&] { return CountLog(L"GetCurrentFolderPath = " + m_other + L".") == kWindows; }, 10000));
  const Headroom before = Footprint();

  for (int b = 0; b < kBursts; ++b) {
    ASSERT_LT(logtest::FileSize(current), kLimit - kRoom) << "burst " << b - 1 << " did not rotate the log";
    logtest::FillTo(current, kLimit - kRoom);
    for (int i = 0; i < kWindows * kPosts; ++i) {
      const std::wstring message = L" " + std::to_wstring(kBrowseObject) + L" 0 pidl:" + folders[b][i];
      ASSERT_EQ(Timed(L"post " + Id(ids[i % kWindows]) + message), L"ok");
    }
    // The browse requests, then the navigations they asked for.
    for (int pass = 0; pass < 2; ++pass) {
      for (const int id : ids) ASSERT_EQ(Timed(L"sync " + Id(id)), L"ok");
    }
    ASSERT_TRUE(quiet({folders[b].end() - kWindows, folders[b].end()}))
        << "burst " << b << ": a window's last folder never reached the log";
  }

  // Across the current file, .1 and .2: no torn line, every browse line at most once; the last two
  // bursts whole, the one before cut by the size cap only, older ones gone.
  std::map<std::wstring, int> seen;
  std::set<std::wstring> threads;
  int torn = 0, lastInCurrent = 0;
  const std::wstring browsed = L"Successfully navigated to path: ";
  for (const std::wstring& file : {current, current + L".1", current + L".2"}) {
    for (const std::wstring& text : logtest::SplitCrLf(logtest::ReadUtf16(file))) {
      logtest::LogLine line;
      if (text.find_first_not_of(L'#') == std::wstring::npos) continue;  // filler
      if (!logtest::ParseLogLine(text, line)) {
        if (++torn <= 3) ADD_FAILURE() << "torn line in " << testing::PrintToString(file) 
                                       << ": " << testing::PrintToString(text);
        continue;
      }
      if (line.message.rfind(browsed, 0) != 0) continue;
      ++seen[line.message.substr(browsed.size())];
      threads.insert(line.thread);
      if (file == current && line.message.find(L"\\b" + Id(kBursts - 1) + L"n") != std::wstring::npos) ++lastInCurrent;
    }
  }
  EXPECT_EQ(torn, 0);
  for (int b = 0; b < kBursts; ++b) {
    int present = 0;
    for (const std::wstring& folder : folders[b]) {
      const int count = seen.count(folder) != 0 ? seen[folder] : 0;
      EXPECT_LE(count, 1) << testing::PrintToString(folder);
      present += count;
    }
    std::printf("burst %d: %d of %d lines kept\n", b, present, kWindows * kPosts);
    if (b >= kBursts - 2) {
      EXPECT_EQ(present, kWindows * kPosts) << "burst " << b;
    } else if (b < kBursts - 3) {
      EXPECT_EQ(present, 0) << "burst " << b << " outlived three files";
    }
  }
  EXPECT_EQ(threads.size(), static_cast<size_t>(kWindows)) << "browse lines come from every window's thread";
  EXPECT_GT(lastInCurrent, 0) << "the last burst rotated part-way through";
  EXPECT_LT(lastInCurrent, kWindows * kPosts) << "the last burst rotated part-way through";
  ExpectFlat(before, Footprint());
  ExpectNoHang();
}

}  // namespace
}  // namespace integrationtest
