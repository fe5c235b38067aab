#include "core/launch_gate.h"

namespace corvane::core {

LaunchGateDecision DecideLaunch(bool found, int mainProcesses, std::uint64_t nowMs, std::uint64_t startTimeMs) noexcept {
  const std::uint64_t diff = nowMs - startTimeMs;
  // With no client at all the start creates the only one; with exactly one main process the
  // client has settled; past the settle time a racing start has long been resolved.
  const bool refused = found && diff < kClientSettleMs && mainProcesses != 1;
  return LaunchGateDecision{!refused, diff};
}

bool IsClientHelperCommandLine(std::wstring_view commandLine) noexcept {
  return commandLine.find(L"--type=") != std::wstring_view::npos;
}

std::uint64_t UnixMsFromFileTime(std::uint64_t fileTime100ns) noexcept {
  constexpr std::uint64_t kUnixEpochAsFileTime = 116444736000000000ULL;
  return (fileTime100ns - kUnixEpochAsFileTime) / 10000;
}

}  // namespace corvane::core
