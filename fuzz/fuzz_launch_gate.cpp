// The start-up gate: its decision and its unsigned age, the helper test on arbitrary command
// lines, and FILETIME conversion round trips.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/launch_gate.h"
#include "fuzz_support.h"

namespace {

using namespace corvane::core;
using corvane::fuzz::Widen;

constexpr std::uint64_t kUnixEpochAsFileTime = 116444736000000000ull;
// The settle time the client gets after its newest start, written out here: a reference that read
// the product's own constant would follow it wherever it went.
constexpr std::uint64_t kSettleMs = 8000;

bool HoldsHelperSwitch(std::wstring_view line) {
  constexpr std::wstring_view kSwitch = L"--type=";
  return std::search(line.begin(), line.end(), kSwitch.begin(), kSwitch.end()) != line.end();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const bool found = input.ConsumeBool();
  const int mainProcesses = input.ConsumeIntegralInRange<int>(-2, 6);
  const auto now = input.ConsumeIntegral<std::uint64_t>();
  const auto age = input.ConsumeBool() ? input.ConsumeIntegralInRange<std::uint64_t>(0, 20000)
                                       : input.ConsumeIntegral<std::uint64_t>();
  const auto fileTime = input.ConsumeIntegral<std::uint64_t>();
  const std::wstring line = Widen(input.ConsumeRemainingBytesAsString());

  // The gate: the age wraps like the system's tick arithmetic, and only a young start with other
  // than exactly one main process holds a command back.
  const LaunchGateDecision decision = DecideLaunch(found, mainProcesses, now, now - age);
  FUZZ_CHECK(decision.diffMs == age);
  FUZZ_CHECK(decision.allowed == (!found || mainProcesses == 1 || age >= kSettleMs));
  if (found && mainProcesses != 1 && age < kSettleMs) {
    // The same start, settled: allowed from the settle time on.
    FUZZ_CHECK(DecideLaunch(found, mainProcesses, now - age + kSettleMs, now - age).allowed);
    FUZZ_CHECK(!DecideLaunch(found, mainProcesses, now - age + kSettleMs - 1, now - age).allowed);
  }

  FUZZ_CHECK(IsClientHelperCommandLine(line) == HoldsHelperSwitch(line));
  FUZZ_CHECK(IsClientHelperCommandLine(line.substr(0, line.size() / 2) + L"--type=renderer" +
                                       line.substr(line.size() / 2)));

  // FILETIME to Unix milliseconds: whole milliseconds in unsigned arithmetic, and every reading
  // inside one millisecond gives that millisecond.
  const std::uint64_t ms = UnixMsFromFileTime(fileTime);
  FUZZ_CHECK(ms == (fileTime - kUnixEpochAsFileTime) / 10000);
  const std::uint64_t start = kUnixEpochAsFileTime + (ms % (UINT64_MAX / 10000 - kUnixEpochAsFileTime / 10000)) * 10000;
  FUZZ_CHECK(UnixMsFromFileTime(start) == (start - kUnixEpochAsFileTime) / 10000);
  FUZZ_CHECK(UnixMsFromFileTime(start + 9999) == UnixMsFromFileTime(start));

  return 0;
}
