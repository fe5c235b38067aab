// The namespace view's robustness: view create/destroy cycles and drops of folder lists on the view
// leave the process's GDI and USER headroom, the add-in's live RAII objects, its COM objects and the
// working set where they were; each phase prints its figures before and after, and its time per
// cycle or drop against a floor measured alongside it.
//
// explorer.exe [--cycles=1000] [--drops=1000] [--launched=1000]
//
// It is named explorer.exe (the DLL loads into nothing else) and lies one folder below the DLL,
// loading the benchmark build ..\CorvaneBench.dll, whose extra exports report its live RAII objects
// and its module lock count. The first --launched drops are made signed in and start the Halvex.exe
// stand-in, each waited for until it has recorded its command and gone (a client still starting
// would make the start-up gate refuse the next); the rest are made signed out, where the view reads
// the list and sends nothing.
#include <windows.h>
#include <ole2.h>
#include <tlhelp32.h>

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bench_util.h"
#include "corvane_h.h"
#include "file_list_data.h"
#include "headroom.h"
#include "namespace_host.h"
#include "platform/handles.h"
#include "platform/work_profile.h"
#include "platform/module_path.h"

namespace {

using Microsoft::WRL::ComPtr;

const wchar_t kRoot[] = L"Software\\varnowe\\Halvex";
const wchar_t kUser[] = L"u0123456789";

struct Options {
  int cycles = 1000;
  int drops = 1000;
  int launched = 1000;
};

Options Parse(int argc, wchar_t** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    const std::wstring arg = argv[i];
    const auto value = [&](const wchar_t* name, int& out) {
      const std::wstring prefix = std::wstring(L"--") + name + L"=";
      if (arg.compare(0, prefix.size(), prefix) == 0) out = std::max(0, _wtoi(arg.c_str() + prefix.size()));
    };
    value(L"cycles", options.cycles);
    value(L"drops", options.drops);
    value(L"launched", options.launched);
  }
  options.launched = std::min(options.launched, options.drops);
  return options;
}

std::wstring Parent(std::wstring path) {
  if (!path.empty() && path.back() == L'\\') path.pop_back();
  return path.substr(0, path.rfind(L'\\') + 1);
}

// ---- the add-in's own counters -------------------------------------------------------------------

class AddIn {
 public:
  explicit AddIn(const std::wstring& path) : m_module(::LoadLibraryW(path.c_str())), m_path(path) {
    if (!m_module) return;
    m_live = reinterpret_cast<Counter>(reinterpret_cast<void*>(::GetProcAddress(m_module.get(), "CorvaneLiveObjects")));
    m_locks = reinterpret_cast<Counter>(reinterpret_cast<void*>(::GetProcAddress(m_module.get(), "CorvaneModuleLocks")));
    m_canUnload = reinterpret_cast<CanUnloadFn>(reinterpret_cast<void*>(::GetProcAddress(m_module.get(), "DllCanUnloadNow")));
    m_tally = reinterpret_cast<TallyFn>(reinterpret_cast<void*>(::GetProcAddress(m_module.get(), "CorvaneWorkTally")));
    m_reuse = reinterpret_cast<ReuseFn>(reinterpret_cast<void*>(::GetProcAddress(m_module.get(), "CorvaneSetPictureReuse")));
    m_hold = reinterpret_cast<ReuseFn>(reinterpret_cast<void*>(::GetProcAddress(m_module.get(), "CorvaneHoldPictures")));
  }
  // As inside Explorer, where the window's controller keeps the pictures between views.
  void HoldPictures(bool hold) const {
    if (m_hold != nullptr) m_hold(hold ? TRUE : FALSE);
  }
  void SetPictureReuse(bool reuse) const {
    if (m_reuse != nullptr) m_reuse(reuse ? TRUE : FALSE);
  }
  // The add-in's work profile: per kind, its count and microseconds.
  std::vector<std::pair<LONGLONG, LONGLONG>> Work() const {
    std::vector<std::pair<LONGLONG, LONGLONG>> kinds;
    LONGLONG count = 0, micros = 0;
    while (m_tally != nullptr && m_tally(static_cast<int>(kinds.size()), &count, &micros)) kinds.emplace_back(count, micros);
    return kinds;
  }
  bool Ok() const noexcept { return m_live != nullptr && m_locks != nullptr && m_canUnload != nullptr; }
  const std::wstring& Path() const noexcept { return m_path; }
  long Live() const { return m_live(); }
  long Locks() const { return m_locks(); }
  bool CanUnload() const { return m_canUnload() == S_OK; }

 private:
  using Counter = LONG(WINAPI*)();
  using CanUnloadFn = HRESULT(WINAPI*)();
  using TallyFn = BOOL(WINAPI*)(int, LONGLONG*, LONGLONG*);
  using ReuseFn = void(WINAPI*)(BOOL);
  // Held for the whole run: each host's own load and unload then only moves the reference count, so
  // the counters stay readable between cycles.
  corvane::unique_hmodule m_module;
  std::wstring m_path;
  Counter m_live = nullptr;
  Counter m_locks = nullptr;
  CanUnloadFn m_canUnload = nullptr;
  TallyFn m_tally = nullptr;
  ReuseFn m_reuse = nullptr;
  ReuseFn m_hold = nullptr;
};

struct Snapshot {
  std::size_t workingSet = 0;
  bench::Headroom room;
  long live = 0;
  long locks = 0;
};

Snapshot Take(const AddIn& addIn) {
  nshost::PumpFor(0);
  Snapshot s;
  s.workingSet = bench::WorkingSetBytes();  // before the headroom probe touches tens of thousands of objects
  s.room = bench::MeasureHeadroom();
  s.live = addIn.Live();
  s.locks = addIn.Locks();
  return s;
}

// Halfway as well as at the end: a one-time cost shows in the first half only, a leak in both.
void PrintChange(const Snapshot& before, const Snapshot& half, const Snapshot& after) {
  std::printf("  before -> halfway -> after:\n");
  std::printf("  GDI headroom %ld -> %ld -> %ld (lost %ld, then %ld), USER headroom %ld -> %ld -> %ld (lost %ld, then %ld)\n",
              before.room.gdi, half.room.gdi, after.room.gdi, before.room.gdi - half.room.gdi,
              half.room.gdi - after.room.gdi, before.room.user, half.room.user, after.room.user,
              before.room.user - half.room.user, half.room.user - after.room.user);
  std::printf("  live RAII objects in the add-in %ld -> %ld -> %ld, its module locks %ld -> %ld -> %ld\n", before.live,
              half.live, after.live, before.locks, half.locks, after.locks);
  std::printf("  working set %.1f -> %.1f -> %.1f MB\n", before.workingSet / 1048576.0, half.workingSet / 1048576.0,
              after.workingSet / 1048576.0);
}

void PrintTimes(const char* what, const std::vector<double>& ours, const std::vector<double>& floor,
                const char* floorName) {
  const double o = bench::Median(ours), f = bench::Median(floor);
  std::printf("  %s: median %.0f us (floor, %s: %.0f us), ratio %.1f\n", what, o, floorName, f, f > 0 ? o / f : 0.0);
}

// ---- the client's state and the stand-in ---------------------------------------------------------

void SetText(const std::wstring& subkey, const wchar_t* name, const std::wstring& text) {
  ::RegSetKeyValueW(HKEY_CURRENT_USER, subkey.c_str(), name, REG_SZ, text.c_str(),
                    static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}

// Signed in with sync off: the prompt stays, and dropped folders go to the client.
void Publish(bool signedIn, const std::wstring& syncFolder) {
  ::RegDeleteTreeW(HKEY_CURRENT_USER, kRoot);
  const std::wstring userKey = std::wstring(kRoot) + L"\\" + kUser;
  SetText(kRoot, L"currentUser", kUser);
  SetText(userKey, L"bLogin", signedIn ? L"1" : L"0");
  SetText(userKey, L"bOpenSync", L"0");
  SetText(userKey, L"syncPath", syncFolder);
}

int ClientsRunning() {
  const corvane::unique_snapshot snapshot(::CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
  if (!snapshot) return 0;
  PROCESSENTRY32W entry{};
  entry.dwSize = sizeof(entry);
  int count = 0;
  for (BOOL more = ::Process32FirstW(snapshot.get(), &entry); more; more = ::Process32NextW(snapshot.get(), &entry)) {
    if (::CompareStringOrdinal(entry.szExeFile, -1, L"Halvex.exe", -1, TRUE) == CSTR_EQUAL) ++count;
  }
  return count;
}

// One line per start of the stand-in.
std::size_t Records(const std::wstring& path) {
  std::ifstream file(std::filesystem::path(path), std::ios::binary);
  return static_cast<std::size_t>(std::count(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>(), '\n'));
}

template <class Done>
bool PumpUntil(DWORD timeoutMs, Done&& done) {
  const ULONGLONG deadline = ::GetTickCount64() + timeoutMs;
  while (!done()) {
    if (::GetTickCount64() >= deadline) return false;
    nshost::PumpFor(5);
  }
  return true;
}

// ---- the soaks -----------------------------------------------------------------------------------

void ViewCycles(const AddIn& addIn, int cycles) {
  int failed = 0, lockedAfter = 0;
  const auto ours = [&] {
    {
      nshost::NamespaceHost host;
      if (FAILED(host.LoadFolder(addIn.Path(), CLSID_MyShellFolder)) || FAILED(host.OpenView(600, 400))) ++failed;
      ::UpdateWindow(host.Frame());
      nshost::PumpFor(0);
    }
    nshost::PumpFor(0);
    // No folder, view or prompt may outlive its cycle.
    if (addIn.Locks() != 0) ++lockedAfter;
  };
  // The same frame with a plain child in the view's place: what any view costs its host.
  const auto floor = [] {
    nshost::CHostFrame frame;
    RECT rect{0, 0, 600, 400};
    frame.Create(nullptr, &rect, L"floor", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN);
    const HWND child = ::CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE, 0, 0, 600, 400, frame.m_hWnd,
                                         nullptr, nullptr, nullptr);
    ::UpdateWindow(frame.m_hWnd);
    nshost::PumpFor(0);
    if (child != nullptr) ::DestroyWindow(child);
    frame.DestroyWindow();
    nshost::PumpFor(0);
  };
  // GDI+, the prompt's pictures and the window classes come once, on either side.
  for (int i = 0; i < 5; ++i) ours();
  floor();
  // d. Where one view's time goes: the add-in's work profile per cycle, and the cycle against its
  // floor, with the picture caches off (every picture decoded from its file), on with each view the
  // process's only window (its pictures go with it), and on with the pictures held between views as
  // the Explorer window around a view holds them; in this one run. The soak below runs held.
  for (const auto& [reuse, hold] : {std::pair{false, false}, std::pair{true, false}, std::pair{true, true}}) {
    addIn.SetPictureReuse(reuse);
    addIn.HoldPictures(hold);
    ours();
    const auto w0 = addIn.Work();
    std::vector<double> o, f;
    bench::Interleave(20, ours, floor, o, f);
    const auto w1 = addIn.Work();
    std::printf("view profile, picture reuse %s, per cycle (20 cycles): median %.1f ms, floor %.1f ms, ratio %.1f;",
                reuse ? (hold ? "on, held between views" : "on, each view alone") : "off", bench::Median(o) / 1000.0,
                bench::Median(f) / 1000.0,
                bench::Median(f) > 0 ? bench::Median(o) / bench::Median(f) : 0.0);
    for (size_t k = 0; k < w1.size() && k < w0.size(); ++k) {
      const LONGLONG count = w1[k].first - w0[k].first;
      if (count == 0) continue;
      std::printf(" %ls %.1f (%.2f ms);", corvane::profile::NameOf(static_cast<corvane::profile::Work>(k)), count / 20.0,
                  (w1[k].second - w0[k].second) / 20000.0);
    }
    std::printf("\n");
  }
  const Snapshot before = Take(addIn);
  std::vector<double> oursSamples, floorSamples;
  const double start = bench::NowMicroseconds();
  bench::Interleave(cycles / 2, ours, floor, oursSamples, floorSamples);
  const Snapshot half = Take(addIn);
  bench::Interleave(cycles - cycles / 2, ours, floor, oursSamples, floorSamples);
  const double seconds = (bench::NowMicroseconds() - start) / 1e6;
  const Snapshot after = Take(addIn);
  std::printf("view cycles: %d x (CreateViewObject, CreateViewWindow in a frame, paint, DestroyViewWindow, release),"
              " %d failed, %.1f s with the floor\n", cycles, failed, seconds);
  PrintChange(before, half, after);
  std::printf("  cycles that left a COM object of the add-in alive: %d\n", lockedAfter);
  PrintTimes("per cycle", oursSamples, floorSamples, "frame with a plain child");
  addIn.HoldPictures(false);
}

struct DropScene {
  std::vector<std::wstring> folders;  // six
  std::vector<std::wstring> files;    // two
  std::wstring record;
};

enum class DropKind { kSomeFolders, kSixFolders, kFilesOnly };

DropKind KindOf(int i) { return static_cast<DropKind>(i % 3); }

// 1 to 5 folders with files between them, six folders, or files only.
std::vector<std::wstring> DropPaths(const DropScene& scene, int i) {
  switch (KindOf(i)) {
    case DropKind::kSomeFolders: {
      std::vector<std::wstring> paths{scene.files[0]};
      const int count = 1 + (i / 3) % 5;
      for (int f = 0; f < count; ++f) paths.push_back(scene.folders[static_cast<size_t>(f)]);
      paths.push_back(scene.files[1]);
      return paths;
    }
    case DropKind::kSixFolders:
      return scene.folders;
    case DropKind::kFilesOnly:
      break;
  }
  return scene.files;
}

struct DropTally {
  int wrongEffect = 0;
  int dataHeld = 0;  // the view kept a reference on the source's data after the drop
  std::vector<double> drop, floor;
};

void DropOnce(IDropTarget* target, const std::vector<std::wstring>& paths, DropTally& tally) {
  // What any target of a file list does: take the list, read each path, ask what it is, free it.
  {
    const auto data = corvane::MakeObject<nshost::CFileListData>(paths, true);
    const double t0 = bench::NowMicroseconds();
    FORMATETC format{CF_HDROP, nullptr, DVASPECT_CONTENT, -1, TYMED_HGLOBAL};
    STGMEDIUM medium{};
    if (SUCCEEDED(data->GetData(&format, &medium))) {
      const auto drop = static_cast<HDROP>(medium.hGlobal);
      const UINT count = ::DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0);
      for (UINT n = 0; n < count; ++n) {
        wchar_t path[MAX_PATH] = {};
        ::DragQueryFileW(drop, n, path, MAX_PATH);
        ::GetFileAttributesW(path);
      }
      ::DragFinish(drop);
    }
    tally.floor.push_back(bench::NowMicroseconds() - t0);
  }
  const auto data = corvane::MakeObject<nshost::CFileListData>(paths, true);
  const double t0 = bench::NowMicroseconds();
  DWORD effect = DROPEFFECT_COPY | DROPEFFECT_MOVE | DROPEFFECT_LINK;
  target->DragEnter(data.Get(), MK_LBUTTON, POINTL{10, 10}, &effect);
  effect = DROPEFFECT_COPY;
  target->DragOver(MK_LBUTTON, POINTL{12, 12}, &effect);
  effect = DROPEFFECT_COPY | DROPEFFECT_MOVE;
  target->Drop(data.Get(), 0, POINTL{12, 12}, &effect);
  tally.drop.push_back(bench::NowMicroseconds() - t0);
  if (effect != DROPEFFECT_COPY) ++tally.wrongEffect;
  data->AddRef();
  if (data->Release() != 1) ++tally.dataHeld;
}

void Drops(const AddIn& addIn, const DropScene& scene, const Options& options) {
  Publish(true, scene.folders[0]);
  auto host = std::make_unique<nshost::NamespaceHost>();
  if (FAILED(host->LoadFolder(addIn.Path(), CLSID_MyShellFolder)) || FAILED(host->OpenView(600, 400))) {
    std::printf("drops: could not open the view\n");
    return;
  }
  ComPtr<IDropTarget> target;
  if (FAILED(host->View()->QueryInterface(IID_PPV_ARGS(&target)))) {
    std::printf("drops: the view is no drop target\n");
    return;
  }
  nshost::PumpFor(100);
  DropTally warm;
  DropOnce(target.Get(), DropPaths(scene, 0), warm);  // the first start loads WMI for the start-up gate
  PumpUntil(15000, [&] { return Records(scene.record) >= 1 && ClientsRunning() == 0; });

  const std::size_t recordedAtStart = Records(scene.record);
  const Snapshot before = Take(addIn);
  Snapshot half;
  // Drops that start the client, and drops the view only reads (files only, or signed out).
  DropTally sending, reading;
  std::vector<double> roundTrips;
  int sent = 0, missed = 0;
  const double start = bench::NowMicroseconds();
  for (int i = 0; i < options.launched; ++i) {
    if (i == options.drops / 2) half = Take(addIn);
    const std::size_t recorded = Records(scene.record);
    const double t0 = bench::NowMicroseconds();
    const bool sends = KindOf(i) != DropKind::kFilesOnly;
    DropOnce(target.Get(), DropPaths(scene, i), sends ? sending : reading);
    if (!sends) continue;
    ++sent;
    if (!PumpUntil(15000, [&] { return Records(scene.record) > recorded; })) ++missed;
    roundTrips.push_back(bench::NowMicroseconds() - t0);
    if (!PumpUntil(10000, [] { return ClientsRunning() == 0; })) ++missed;
  }
  const double launchedSeconds = (bench::NowMicroseconds() - start) / 1e6;
  Publish(false, scene.folders[0]);
  const std::size_t recordedBeforeQuiet = Records(scene.record);
  const double quietStart = bench::NowMicroseconds();
  for (int i = options.launched; i < options.drops; ++i) {
    if (i == options.drops / 2) half = Take(addIn);
    DropOnce(target.Get(), DropPaths(scene, i), reading);
    nshost::PumpFor(0);
  }
  const double quietSeconds = (bench::NowMicroseconds() - quietStart) / 1e6;
  nshost::PumpFor(1000);  // a start the view should not have made would show by now
  const Snapshot after = Take(addIn);

  std::printf("drops: %d on one open view (1-5 folders among files, six folders, files only in turn)\n", options.drops);
  std::printf("  signed in, client stand-in started: %d drops in %.1f s, %d commands expected, %zu recorded, %d missed\n",
              options.launched, launchedSeconds, sent, recordedBeforeQuiet - recordedAtStart, missed);
  if (options.launched < options.drops) {
    std::printf("  signed out: %d drops in %.1f s, %zu commands recorded (none expected)\n",
                options.drops - options.launched, quietSeconds, Records(scene.record) - recordedBeforeQuiet);
  }
  PrintChange(before, half, after);
  std::printf("  drops told anything but a copy: %d, drops after which the view still held the data: %d\n",
              sending.wrongEffect + reading.wrongEffect, sending.dataHeld + reading.dataHeld);
  if (!sending.drop.empty()) {
    PrintTimes("per drop that starts the client (DragEnter, DragOver, Drop)", sending.drop, sending.floor,
               "reading the list");
    std::printf("  per drop that starts the client, until the stand-in recorded the command: median %.0f ms\n",
                bench::Median(roundTrips) / 1000);
  }
  if (!reading.drop.empty()) PrintTimes("per drop the view only reads", reading.drop, reading.floor, "reading the list");

  target.Reset();
  host.reset();
  nshost::PumpFor(0);
}

DropScene MakeScene(const std::wstring& root) {
  DropScene scene;
  ::CreateDirectoryW(root.c_str(), nullptr);
  for (int i = 1; i <= 6; ++i) {
    scene.folders.push_back(root + L"文件夹 " + std::to_wstring(i));
    ::CreateDirectoryW(scene.folders.back().c_str(), nullptr);
  }
  for (const wchar_t* name : {L"a.txt", L"b.txt"}) {
    scene.files.push_back(root + name);
    const corvane::unique_file file(
        ::CreateFileW(scene.files.back().c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  }
  scene.record = root + L"halvex-record.txt";
  return scene;
}

void RemoveScene(const std::wstring& root, const DropScene& scene) {
  for (const std::wstring& folder : scene.folders) ::RemoveDirectoryW(folder.c_str());
  for (const std::wstring& file : scene.files) ::DeleteFileW(file.c_str());
  ::DeleteFileW(scene.record.c_str());
  ::RemoveDirectoryW(root.c_str());
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  const Options options = Parse(argc, argv);
  if (FAILED(::OleInitialize(nullptr))) return 1;
  const double start = bench::NowMicroseconds();
  int result = 0;
  {
    const AddIn addIn(Parent(corvane::ThisModuleFolder()) + L"CorvaneBench.dll");
    if (!addIn.Ok()) {
      std::printf("namespace_bench: CorvaneBench.dll or its counters not found\n");
      result = 1;
    } else {
      wchar_t temp[MAX_PATH] = {};
      ::GetTempPathW(MAX_PATH, temp);
      const std::wstring root = std::wstring(temp) + L"corvane-nsbench-" + std::to_wstring(::GetCurrentProcessId()) + L"\\";
      const DropScene scene = MakeScene(root);
      // The stand-in the launcher starts finds its record file and stays no longer than it must.
      ::SetEnvironmentVariableW(L"HALVEX_STANDIN_RECORD", scene.record.c_str());
      ::SetEnvironmentVariableW(L"HALVEX_STANDIN_LINGER_MS", L"0");
      Publish(false, scene.folders[0]);
      // The probe's first run grows Wine's handle tables for good (about 7 MB of working set), which
      // would read as the first soak's growth.
      bench::MeasureHeadroom();

      ViewCycles(addIn, options.cycles);
      Drops(addIn, scene, options);
      std::printf("end: module locks %ld, DllCanUnloadNow %s\n", addIn.Locks(), addIn.CanUnload() ? "S_OK" : "S_FALSE");

      ::RegDeleteTreeW(HKEY_CURRENT_USER, kRoot);
      RemoveScene(root, scene);
    }
  }
  std::printf("namespace_bench: whole run %.0f s\n", (bench::NowMicroseconds() - start) / 1e6);
  ::OleUninitialize();
  return result;
}
