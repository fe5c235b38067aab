// The add-in inside the Explorer stand-in: steady-state CPU of open windows showing the bar against
// the same windows without the add-in (the stand-in's and the Wine server's CPU, read from Linux's
// /proc through Wine's Z: drive), window open time with and without it, and a soak of navigations
// and open/close cycles with the stand-in's GDI/USER headroom, the add-in's live RAII objects and
// the working set before and after.
//
// explorer_bench [--windows=1,10,30] [--seconds=8] [--opens=8] [--navigations=40] [--cycles=30]
//                [--wineserver=<linux pid>]
// The defaults keep `make bench` to a few minutes; the full soak is --navigations=200 --cycles=200
// (each navigation waits for the once-a-second check, so about five minutes more).
// The add-in is the benchmark build CorvaneBench.dll: the same code, with one more export that
// reports its live-object count.
#include <windows.h>
#include <objbase.h>
#include <shlobj.h>
#include <tlhelp32.h>

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "bench_util.h"
#include "client/dpi_tool.h"
#include "platform/handles.h"
#include "platform/module_path.h"
#include "registry_floor.h"

namespace {

constexpr wchar_t kClsid[] = L"{5B1E7C20-3F4A-4D2E-9C61-0A8D2E47B913}";
constexpr wchar_t kBarClass[] = L"CorvaneTitleWindow";

struct Options {
  std::vector<int> windows{1, 10, 30};
  int seconds = 8;
  int opens = 8;
  int navigations = 40;
  int cycles = 30;
  long wineserver = 0;
};

Options Parse(int argc, wchar_t** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    const std::wstring arg = argv[i];
    const auto value = [&](const wchar_t* name) -> std::optional<int> {
      const std::wstring prefix = std::wstring(L"--") + name + L"=";
      if (arg.compare(0, prefix.size(), prefix) != 0) return std::nullopt;
      return std::max(1, _wtoi(arg.c_str() + prefix.size()));
    };
    if (arg.compare(0, 10, L"--windows=") == 0) {
      options.windows.clear();
      std::wstringstream list(arg.substr(10));
      std::wstring item;
      while (std::getline(list, item, L',')) options.windows.push_back(std::max(1, _wtoi(item.c_str())));
    } else if (auto v = value(L"seconds")) {
      options.seconds = *v;
    } else if (auto o = value(L"opens")) {
      options.opens = *o;
    } else if (auto n = value(L"navigations")) {
      options.navigations = *n;
    } else if (auto c = value(L"cycles")) {
      options.cycles = *c;
    } else if (auto w = value(L"wineserver")) {
      options.wineserver = *w;
    }
  }
  return options;
}

std::string ToUtf8(const std::wstring& text) {
  const int size = ::WideCharToMultiByte(CP_UTF8, 0, text.c_str(), -1, nullptr, 0, nullptr, nullptr);
  std::string out(static_cast<size_t>(std::max(size, 1)) - 1, '\0');
  if (size > 1) ::WideCharToMultiByte(CP_UTF8, 0, text.c_str(), -1, out.data(), size, nullptr, nullptr);
  return out;
}

// ---- Linux CPU time through Z:\proc ---------------------------------------------------------------

std::string ReadWhole(const std::wstring& path) {
  std::ifstream file(std::filesystem::path(path), std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

// CPU time of a Linux process in microseconds: the run time of each of its threads from schedstat
// (nanoseconds), which resolves a window's few milliseconds per second where the 10 ms ticks of
// utime and stime do not. Threads that ended take their time with them; nothing ends while sampled.
// `process` is a pid or "self".
std::optional<double> CpuMicroseconds(const std::wstring& process) {
  const std::wstring tasks = L"Z:\\proc\\" + process + L"\\task\\";
  WIN32_FIND_DATAW data{};
  const corvane::unique_find find(::FindFirstFileW((tasks + L"*").c_str(), &data));
  if (!find) return std::nullopt;
  double total = 0;
  bool any = false;
  do {
    if (_wtol(data.cFileName) <= 0) continue;
    const std::string stat = ReadWhole(tasks + data.cFileName + L"\\schedstat");
    if (stat.empty()) continue;
    total += std::atof(stat.c_str()) / 1000.0;
    any = true;
  } while (::FindNextFileW(find.get(), &data));
  return any ? std::optional<double>(total) : std::nullopt;
}

std::optional<double> CpuMicroseconds(long pid) {
  if (pid <= 0) return std::nullopt;
  return CpuMicroseconds(std::to_wstring(pid));
}

// The first Linux process whose name starts with `name` and whose /proc file `file` (cmdline or
// environ, NUL-separated; searched with a NUL in front) contains `needle`.
long FindLinuxProcess(const std::string& name, const wchar_t* file, const std::string& needle) {
  WIN32_FIND_DATAW data{};
  const corvane::unique_find find(::FindFirstFileW(L"Z:\\proc\\*", &data));
  if (!find) return 0;
  do {
    const long pid = _wtol(data.cFileName);
    if (pid <= 0) continue;
    const std::wstring folder = L"Z:\\proc\\" + std::to_wstring(pid) + L"\\";
    if (ReadWhole(folder + L"comm").compare(0, name.size(), name) != 0) continue;
    std::string text(1, '\0');
    text += ReadWhole(folder + file);
    if (text.find(needle) != std::string::npos) return pid;
  } while (::FindNextFileW(find.get(), &data));
  return 0;
}

// Our own Wine server: the one started for this program's prefix.
long FindWineserver() {
  const std::string self = ReadWhole(L"Z:\\proc\\self\\environ");
  const size_t at = self.find("WINEPREFIX=");
  if (at == std::string::npos) return 0;
  const size_t end = self.find('\0', at);
  std::string entry(1, '\0');
  entry += self.substr(at, end == std::string::npos ? std::string::npos : end - at);
  entry += '\0';
  return FindLinuxProcess("wineserver", L"environ", entry);
}

// ---- the stand-in ----------------------------------------------------------------------------------

class Explorer {
 public:
  Explorer(const std::wstring& exe, const std::wstring& folder) {
    const std::wstring pipe = L"\\\\.\\pipe\\corvane-explorer-bench-" + std::to_wstring(::GetCurrentProcessId());
    std::wstring commandLine = L"\"" + exe + L"\" \"--pipe=" + pipe + L"\" \"--log=" + folder + L"\\standin.log\" --keep-running";
    STARTUPINFOW startup{sizeof(startup)};
    PROCESS_INFORMATION info{};
    if (!::CreateProcessW(exe.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &info)) return;
    m_process.reset(info.hProcess);
    ::CloseHandle(info.hThread);
    for (int attempt = 0; attempt < 200 && !m_pipe; ++attempt) {
      m_pipe.reset(::CreateFileW(pipe.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
      if (!m_pipe) ::Sleep(50);
    }
    // Wine keeps the Windows command line as the Linux one, so the private pipe's name finds it.
    m_linuxPid = FindLinuxProcess("explorer", L"cmdline", ToUtf8(pipe));
  }
  Explorer(const Explorer&) = delete;
  Explorer& operator=(const Explorer&) = delete;
  ~Explorer() {
    if (m_pipe) Command(L"quit");
    if (m_process && ::WaitForSingleObject(m_process.get(), 30000) != WAIT_OBJECT_0) ::TerminateProcess(m_process.get(), 99);
  }

  bool Ok() const noexcept { return static_cast<bool>(m_pipe); }
  long LinuxPid() const noexcept { return m_linuxPid; }
  HANDLE Process() const noexcept { return m_process.get(); }

  std::string Command(const std::wstring& line) {
    const std::string bytes = ToUtf8(line) + "\n";
    DWORD written = 0;
    if (!::WriteFile(m_pipe.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr)) return "<broken>";
    std::string reply;
    char c = 0;
    DWORD read = 0;
    while (::ReadFile(m_pipe.get(), &c, 1, &read, nullptr) && read == 1 && c != '\n') reply += c;
    if (!reply.empty() && reply.back() == '\r') reply.pop_back();
    return reply;
  }
  // The value after "ok ", or empty when the reply was not ok.
  std::string Value(const std::wstring& line) {
    const std::string reply = Command(line);
    return reply.compare(0, 3, "ok ") == 0 ? reply.substr(3) : std::string();
  }
  int Open(const std::wstring& location) { return std::atoi(Value(L"open " + location).c_str()); }
  HWND Handle(int id, const wchar_t* part) {
    return reinterpret_cast<HWND>(static_cast<INT_PTR>(std::atoll(Value(L"hwnd " + std::to_wstring(id) + L" " + part).c_str())));
  }
  bool Close(int id) { return Command(L"close " + std::to_wstring(id)) == "ok"; }

 private:
  corvane::unique_handle m_process;
  corvane::unique_file m_pipe;
  long m_linuxPid = 0;
};

// ---- the add-in's registration, state and bar ---------------------------------------------------------

const std::wstring kClassKey = std::wstring(L"SOFTWARE\\Classes\\CLSID\\") + kClsid;
const std::wstring kHelperKey =
    std::wstring(L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Browser Helper Objects\\") + kClsid;

void WriteMachineString(const std::wstring& key, const wchar_t* name, const std::wstring& value) {
  ::RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, REG_SZ, value.c_str(),
                    static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
}

// Explorer (and the stand-in) reads the helper objects at every window's opening.
void SetAddinRegistered(bool registered) {
  ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, kHelperKey.c_str());
  if (!registered) return;
  corvane::unique_hkey helper;
  ::RegCreateKeyExW(HKEY_LOCAL_MACHINE, kHelperKey.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, helper.put(), nullptr);
}

struct FindBar {
  HWND found = nullptr;
};

// The frame's bar, if it is visible inside the view window.
bool BarShown(HWND frame, HWND view) {
  FindBar find;
  ::EnumChildWindows(
      frame,
      [](HWND hwnd, LPARAM param) -> BOOL {
        wchar_t name[64] = {};
        ::GetClassNameW(hwnd, name, 64);
        if (std::wstring(name) != kBarClass) return TRUE;
        reinterpret_cast<FindBar*>(param)->found = hwnd;
        return FALSE;
      },
      reinterpret_cast<LPARAM>(&find));
  return find.found != nullptr && ::IsWindowVisible(find.found) && ::GetParent(find.found) == view;
}

bool WaitForBar(Explorer& explorer, int id, bool shown, DWORD timeoutMs) {
  const HWND frame = explorer.Handle(id, L"frame");
  const HWND view = explorer.Handle(id, L"duiview");
  const ULONGLONG deadline = ::GetTickCount64() + timeoutMs;
  for (;;) {
    if (BarShown(frame, view) == shown) return true;
    if (::GetTickCount64() >= deadline) return false;
    ::Sleep(20);
  }
}

size_t RecordLines(const std::wstring& path) {
  const std::string text = ReadWhole(path);
  return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
}

// The client stand-ins the add-in started linger; they are ended with the run.
void EndClientStandins() {
  const corvane::unique_snapshot snapshot(::CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
  if (!snapshot) return;
  PROCESSENTRY32W entry{sizeof(entry)};
  for (BOOL more = ::Process32FirstW(snapshot.get(), &entry); more; more = ::Process32NextW(snapshot.get(), &entry)) {
    if (_wcsicmp(entry.szExeFile, L"Halvex.exe") != 0) continue;
    const corvane::unique_handle process(::OpenProcess(PROCESS_TERMINATE, FALSE, entry.th32ProcessID));
    if (process) ::TerminateProcess(process.get(), 0);
  }
}

struct Bed {
  std::wstring folder, sync, other, dpiRecord, standin, dll;
  long wineserver = 0;
};

// ---- steady state ------------------------------------------------------------------------------------

// CPU ticks of the stand-in and the Wine server over `seconds`, per second, in microseconds.
struct Cpu {
  double standin = 0, server = 0;
  double Total() const noexcept { return standin + server; }
};

Cpu SampleCpu(const Bed& bed, Explorer& explorer, int seconds) {
  const double t0 = bench::NowMicroseconds();
  const auto s0 = CpuMicroseconds(explorer.LinuxPid()), w0 = CpuMicroseconds(bed.wineserver);
  ::Sleep(static_cast<DWORD>(seconds) * 1000);
  const auto s1 = CpuMicroseconds(explorer.LinuxPid()), w1 = CpuMicroseconds(bed.wineserver);
  const double elapsed = (bench::NowMicroseconds() - t0) / 1e6;
  Cpu cpu;
  if (s0 && s1) cpu.standin = (*s1 - *s0) / elapsed;
  if (w0 && w1) cpu.server = (*w1 - *w0) / elapsed;
  return cpu;
}

// Opens n windows on the sync folder, waits for their bars (with the add-in), measures, closes them.
std::optional<Cpu> SteadyState(const Bed& bed, Explorer& explorer, int n, bool addin, int seconds) {
  SetAddinRegistered(addin);
  std::vector<int> ids;
  bool ok = true;
  for (int i = 0; i < n && ok; ++i) {
    const int id = explorer.Open(bed.sync);
    ok = id != 0;
    if (ok) ids.push_back(id);
  }
  for (const int id : ids) {
    if (addin && ok) ok = WaitForBar(explorer, id, true, 15000);
  }
  ::Sleep(2000);  // the first checks, the DPI tool and the client start settle
  const Cpu cpu = SampleCpu(bed, explorer, seconds);
  for (const int id : ids) explorer.Close(id);
  if (!ok) return std::nullopt;
  return cpu;
}

// One window's second of polling done by hand (registry_floor.h), in CPU microseconds of this
// process and the Wine server, as the windows are counted: wall time on a shared machine also holds
// the waits for a core, which moved the median fivefold between runs.
struct Floor {
  double cpu = 0;   // per poll
  double wall = 0;  // median
};

Floor MeasureFloor(long wineserver, PCIDLIST_ABSOLUTE folder) {
  constexpr int kPolls = 1000;
  std::vector<double> samples;
  const auto self0 = CpuMicroseconds(L"self"), server0 = CpuMicroseconds(wineserver);
  for (int i = 0; i < kPolls; ++i) {
    const double t0 = bench::NowMicroseconds();
    bench::registry_floor::FloorPoll(folder);
    samples.push_back(bench::NowMicroseconds() - t0);
  }
  const auto self1 = CpuMicroseconds(L"self"), server1 = CpuMicroseconds(wineserver);
  Floor floor;
  floor.wall = bench::Median(samples);
  if (self0 && self1) floor.cpu += (*self1 - *self0) / kPolls;
  if (server0 && server1) floor.cpu += (*server1 - *server0) / kPolls;
  return floor;
}

void BenchSteadyState(const Bed& bed, Explorer& explorer, const Options& options) {
  // The floor includes the folder check's shell work: the view's folder as an ID list, turned into
  // a path each second.
  corvane::unique_pidl pidl;
  static_cast<void>(::SHParseDisplayName(bed.sync.c_str(), nullptr, pidl.put(), 0, nullptr));
  const Floor measured = MeasureFloor(bed.wineserver, pidl.get());
  const double floor = measured.cpu;
  std::printf("registry floor: %.1f us CPU per window-second (this process and the Wine server over 1000"
              " hand-written polls, the folder's ID list turned into a path included; wall median %.1f us)\n",
              floor, measured.wall);
  std::printf("steady state, %d s per sample, CPU per second (stand-in + Wine server; Xvfb not counted):\n", options.seconds);
  for (const int n : options.windows) {
    const auto without = SteadyState(bed, explorer, n, false, options.seconds);
    const auto with = SteadyState(bed, explorer, n, true, options.seconds);
    if (!without || !with) {
      std::printf("  %2d windows: could not open the windows or their bars did not show\n", n);
      continue;
    }
    const double perWindow = (with->Total() - without->Total()) / n;
    std::printf("  %2d windows: without add-in %7.0f us/s (stand-in %.0f, server %.0f), with bar %7.0f us/s"
                " (stand-in %.0f, server %.0f); per window %+.0f us/s, %.2f x the floor (goal <= 1.3)\n",
                n, without->Total(), without->standin, without->server, with->Total(), with->standin, with->server,
                perWindow, perWindow / floor);
  }
}

// ---- open time -----------------------------------------------------------------------------------------

double TimedOpenClose(const Bed& bed, Explorer& explorer, size_t* dpiStarts) {
  const size_t before = RecordLines(bed.dpiRecord);
  const double t0 = bench::NowMicroseconds();
  const int id = explorer.Open(bed.sync);
  const double elapsed = bench::NowMicroseconds() - t0;
  if (dpiStarts != nullptr) {
    // The tool records itself once it runs: wait for the starts made during the opening to land.
    size_t seen = RecordLines(bed.dpiRecord);
    for (int quiet = 0; quiet < 10; ++quiet) {
      ::Sleep(30);
      const size_t now = RecordLines(bed.dpiRecord);
      if (now != seen) quiet = 0;
      seen = now;
    }
    *dpiStarts += seen - before;
  }
  if (id != 0) explorer.Close(id);
  return id != 0 ? elapsed : -1.0;
}

void BenchOpenTime(const Bed& bed, Explorer& explorer, const Options& options) {
  std::vector<double> without, with;
  size_t dpiStarts = 0;
  for (int i = 0; i < options.opens; ++i) {
    SetAddinRegistered(false);
    without.push_back(TimedOpenClose(bed, explorer, nullptr));
    SetAddinRegistered(true);
    with.push_back(TimedOpenClose(bed, explorer, &dpiStarts));
  }
  SetAddinRegistered(false);
  // The process start the add-in makes on the window thread, made the same way from here.
  const HWND frame = ::GetDesktopWindow();
  std::vector<double> starts;
  for (int i = 0; i < options.opens; ++i) {
    const double t0 = bench::NowMicroseconds();
    cx::startDpiTool(frame);
    starts.push_back(bench::NowMicroseconds() - t0);
  }
  const double w = bench::Median(with), wo = bench::Median(without), share = w - wo;
  const double perOpen = static_cast<double>(dpiStarts) / options.opens;
  const double startCost = bench::Median(starts);
  std::printf("window open (open command until the first folder is shown; median of %d each):\n", options.opens);
  std::printf("  without add-in %.1f ms, with add-in %.1f ms, ratio %.2f; the add-in's share %.1f ms\n", wo / 1000,
              w / 1000, w / wo, share / 1000);
  std::printf("  of which DPI tool starts: %.1f per open x %.1f ms per ShellExecute of scalemend.exe = %.1f ms;"
              " the rest %.1f ms (goal <= 50 ms)\n",
              perOpen, startCost / 1000, perOpen * startCost / 1000, (share - perOpen * startCost) / 1000);

  // COM frees the add-in when its last window closes, so each open above loads it afresh: every bar
  // is a process's first. With another window open, the add-in stays loaded between opens, as in an
  // Explorer with a window already on screen.
  SetAddinRegistered(true);
  const int kept = explorer.Open(bed.other);
  std::vector<double> withoutKept, withKept;
  size_t keptStarts = 0;
  for (int i = 0; kept != 0 && i < options.opens; ++i) {
    SetAddinRegistered(false);
    withoutKept.push_back(TimedOpenClose(bed, explorer, nullptr));
    SetAddinRegistered(true);
    withKept.push_back(TimedOpenClose(bed, explorer, &keptStarts));
  }
  if (kept != 0) explorer.Close(kept);
  SetAddinRegistered(false);
  if (withKept.empty()) return;
  const double wk = bench::Median(withKept), wok = bench::Median(withoutKept), keptShare = wk - wok;
  const double keptPerOpen = static_cast<double>(keptStarts) / options.opens;
  std::printf("  with another window open (the add-in stays loaded): without add-in %.1f ms, with add-in %.1f ms;"
              " the add-in's share %.1f ms, of which DPI tool starts %.1f ms, the rest %.1f ms\n",
              wok / 1000, wk / 1000, keptShare / 1000, keptPerOpen * startCost / 1000,
              (keptShare - keptPerOpen * startCost) / 1000);
}

// ---- soak -------------------------------------------------------------------------------------------------

struct Footprint {
  long gdi = 0, user = 0, live = 0;
  double workingSetMb = 0;
};

Footprint Measure(Explorer& explorer) {
  Footprint f;
  std::istringstream room(explorer.Value(L"footprint"));
  long long bytes = 0;
  room >> f.gdi >> f.user >> bytes;
  f.workingSetMb = static_cast<double>(bytes) / (1024.0 * 1024.0);
  f.live = std::atol(explorer.Value(L"counter CorvaneBench.dll CorvaneLiveObjects").c_str());
  return f;
}

void BenchSoak(const Bed& bed, Explorer& explorer, const Options& options) {
  SetAddinRegistered(true);
  // One window first, so that what the add-in keeps for the process (logger, GDI+) exists before.
  const int warm = explorer.Open(bed.sync);
  const bool warmed = warm != 0 && WaitForBar(explorer, warm, true, 5000);
  // Read while a bar lives, this also shows that the count reaches us from inside the stand-in.
  const std::string liveWithBar = explorer.Command(L"counter CorvaneBench.dll CorvaneLiveObjects");
  if (warm != 0) explorer.Close(warm);
  if (!warmed) {
    std::puts("soak: the first window showed no bar");
    return;
  }
  ::Sleep(500);
  const Footprint before = Measure(explorer);

  int missed = 0;
  std::vector<double> waits;
  const int id = explorer.Open(bed.other);
  for (int i = 0; i < options.navigations && id != 0; ++i) {
    const bool in = i % 2 == 0;
    if (explorer.Command(L"navigate " + std::to_wstring(id) + L" " + (in ? bed.sync : bed.other)) != "ok") ++missed;
    const double t0 = bench::NowMicroseconds();
    if (!WaitForBar(explorer, id, in, 3000)) ++missed;
    waits.push_back(bench::NowMicroseconds() - t0);
  }
  if (id != 0) explorer.Close(id);
  std::printf("soak: %d navigations in and out of the sync folder, bar followed after %.0f ms median, %d missed\n",
              options.navigations, bench::Median(waits) / 1000, missed + (id == 0 ? options.navigations : 0));

  int failed = 0;
  const double c0 = bench::NowMicroseconds();
  for (int i = 0; i < options.cycles; ++i) {
    const int cycle = explorer.Open(bed.sync);
    if (cycle == 0 || !WaitForBar(explorer, cycle, true, 5000)) ++failed;
    if (cycle != 0 && !explorer.Close(cycle)) ++failed;
  }
  std::printf("soak: %d open/close cycles (each until its bar showed), %d failed, %.1f s\n", options.cycles, failed,
              (bench::NowMicroseconds() - c0) / 1e6);
  ::Sleep(500);
  const Footprint after = Measure(explorer);
  const bool alive = ::WaitForSingleObject(explorer.Process(), 0) == WAIT_TIMEOUT;
  std::printf("  stand-in %s; before -> after, no window open:\n", alive ? "still running" : "ENDED");
  std::printf("  GDI headroom %ld -> %ld (lost %ld), USER headroom %ld -> %ld (lost %ld)\n", before.gdi, after.gdi,
              before.gdi - after.gdi, before.user, after.user, before.user - after.user);
  std::printf("  live RAII objects in the add-in %ld -> %ld (with one window and its bar: %s), working set %.1f -> %.1f MB\n",
              before.live, after.live, liveWithBar.c_str(), before.workingSetMb, after.workingSetMb);
}

std::wstring FullPath(const std::wstring& path) {
  wchar_t full[MAX_PATH] = {};
  const DWORD length = ::GetFullPathNameW(path.c_str(), MAX_PATH, full, nullptr);
  return length != 0 && length < MAX_PATH ? std::wstring(full, length) : path;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  const Options options = Parse(argc, argv);
  const double start = bench::NowMicroseconds();
  // The DPI tool start is timed from an OLE thread, as Explorer's window threads are.
  if (FAILED(::OleInitialize(nullptr))) return 1;

  Bed bed;
  wchar_t temp[MAX_PATH] = {};
  ::GetTempPathW(MAX_PATH, temp);
  bed.folder = std::wstring(temp) + L"corvane-bench-explorer";
  bed.sync = bed.folder + L"\\Sync";
  bed.other = bed.folder + L"\\Elsewhere";
  bed.dpiRecord = bed.folder + L"\\scalemend-record.txt";
  ::CreateDirectoryW(bed.folder.c_str(), nullptr);
  ::CreateDirectoryW(bed.sync.c_str(), nullptr);
  ::CreateDirectoryW(bed.other.c_str(), nullptr);
  ::DeleteFileW(bed.dpiRecord.c_str());
  bed.sync = FullPath(bed.sync);
  bed.other = FullPath(bed.other);
  bench::registry_floor::PublishClientState(bed.sync, bed.folder + L"\\logo.png");

  bed.standin = FullPath(corvane::ThisModuleFolder() + L"..\\explorer\\explorer.exe");
  bed.dll = corvane::ThisModuleFolder() + L"CorvaneBench.dll";
  bed.wineserver = options.wineserver != 0 ? options.wineserver : FindWineserver();
  // Inherited by the stand-in and the processes the add-in starts.
  ::SetEnvironmentVariableW(L"SCALEMEND_STANDIN_RECORD", bed.dpiRecord.c_str());
  ::SetEnvironmentVariableW(L"HALVEX_STANDIN_RECORD", (bed.folder + L"\\halvex-record.txt").c_str());
  ::SetEnvironmentVariableW(L"HALVEX_STANDIN_LINGER_MS", L"3600000");

  WriteMachineString(kClassKey + L"\\InprocServer32", nullptr, bed.dll);
  WriteMachineString(kClassKey + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
  SetAddinRegistered(false);
  {
    Explorer explorer(bed.standin, bed.folder);
    if (!explorer.Ok()) {
      std::puts("explorer_bench: the stand-in's channel did not appear");
    } else {
      std::printf("explorer_bench: stand-in linux pid %ld, wine server linux pid %ld%s\n", explorer.LinuxPid(),
                  bed.wineserver, explorer.LinuxPid() == 0 || bed.wineserver == 0 ? " (CPU of a 0 pid is not counted)" : "");
      std::fflush(stdout);
      BenchSteadyState(bed, explorer, options);
      std::fflush(stdout);
      BenchOpenTime(bed, explorer, options);
      std::fflush(stdout);
      BenchSoak(bed, explorer, options);
    }
  }
  SetAddinRegistered(false);
  ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, kClassKey.c_str());
  ::RegDeleteTreeW(HKEY_CURRENT_USER, bench::registry_floor::kRoot.c_str());
  EndClientStandins();
  ::OleUninitialize();
  std::printf("explorer_bench: whole run %.0f s\n", (bench::NowMicroseconds() - start) / 1e6);
  return 0;
}
