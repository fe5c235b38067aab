// Log throughput: CLogger::Info against a loop that does the work every log line requires by hand
// (format the message and the prefix, send it to the debugger output, the size check's seeks,
// write, flush) on a file of its own, in the same run.
#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <share.h>

#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <string>

#include "bench_util.h"
#include "log/logger.h"

namespace {

constexpr int kLines = 4000;
constexpr int kRounds = 5;

std::wstring TempFolder(const wchar_t* name) {
  wchar_t temp[MAX_PATH] = {};
  ::GetTempPathW(MAX_PATH, temp);
  std::wstring folder = std::wstring(temp) + name;
  ::CreateDirectoryW(folder.c_str(), nullptr);
  return folder + L"\\";
}

// The floor: what any logger honouring the line format, debugger copy, rotation check and
// per-line flush must do.
void FloorLine(FILE* file, int i, const wchar_t* format, ...) {
  va_list args;
  va_start(args, format);
  va_list counting;
  va_copy(counting, args);
  const int length = _vscwprintf(format, counting);
  va_end(counting);
  std::wstring message(static_cast<size_t>(length) + 1, L'\0');
  _vsnwprintf_s(message.data(), message.size(), _TRUNCATE, format, args);
  va_end(args);
  message.resize(static_cast<size_t>(length));

  __time64_t now = 0;
  _time64(&now);
  std::tm local{};
  _localtime64_s(&local, &now);
  FILETIME ft;
  ::GetSystemTimeAsFileTime(&ft);
  wchar_t prefix[160];
  _snwprintf_s(prefix, _TRUNCATE, L"[Info][%04d-%02d-%02d %02d:%02d:%02d.%06d][log_bench.cpp:%d][%d][FloorLine]",
               local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec,
               static_cast<int>((ft.dwLowDateTime / 10) % 1000000), i, static_cast<int>(::GetCurrentThreadId()));
  std::wstring line = prefix + message;
  ::OutputDebugStringW(line.c_str());
  const long position = ftell(file);
  fseek(file, 0, SEEK_END);
  const long size = ftell(file);
  fseek(file, position, SEEK_SET);
  if (size < 0) return;
  line += L"\n";
  fputws(line.c_str(), file);
  fflush(file);
}

}  // namespace

int wmain() {
  const std::wstring ours = TempFolder(L"corvane-bench-log");
  const std::wstring floorFolder = TempFolder(L"corvane-bench-floor");
  LOGGER::CLogger logger(4, ours, L"Bench");
  FILE* floorFile = _wfsopen((floorFolder + L"floor.log").c_str(), L"a+", _SH_DENYNO);
  if (floorFile == nullptr) {
    std::fprintf(stderr, "cannot open the floor's file\n");
    return 1;
  }
  _setmode(_fileno(floorFile), _O_U16TEXT);

  const wchar_t* format = L"poll state user=%s used=%I64u total=%I64u zoom=%d";
  double oursTotal = 0, floorTotal = 0;
  for (int round = 0; round < kRounds; ++round) {
    double t0 = bench::NowMicroseconds();
    for (int i = 0; i < kLines; ++i) FloorLine(floorFile, i, format, L"user_0123456789", 123456789ull, 987654321ull, i);
    double t1 = bench::NowMicroseconds();
    for (int i = 0; i < kLines; ++i)
      logger.Info(static_cast<std::uint32_t>(i), L"C:\\src\\log_bench.cpp", L"Bench::Run", format, L"user_0123456789",
                  123456789ull, 987654321ull, i);
    double t2 = bench::NowMicroseconds();
    floorTotal += t1 - t0;
    oursTotal += t2 - t1;
  }
  fclose(floorFile);
  const double oursRate = kLines * kRounds / (oursTotal / 1e6);
  const double floorRate = kLines * kRounds / (floorTotal / 1e6);
  std::printf("log throughput: CLogger %.0f lines/s, hand-written floor %.0f lines/s, ratio %.2f (goal >= 0.80)\n",
              oursRate, floorRate, oursRate / floorRate);
  return 0;
}
