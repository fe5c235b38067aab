#pragma once
// The start-up gate: while a freshly started client has not settled to one main process, a second
// start would race the first and its command would be lost, so commands wait for it.
#include <cstdint>
#include <string_view>

namespace corvane::core {

// How long a client start may still be racing.
inline constexpr std::uint64_t kClientSettleMs = 8000;

struct LaunchGateDecision {
  bool allowed;
  // now - startTime taken as unsigned, so a start time in the future reads as very old.
  std::uint64_t diffMs;
};

// found: a client process exists and startTimeMs is the creation time of the last one listed;
// mainProcesses: how many of them are main processes (not "--type=" helpers).
LaunchGateDecision DecideLaunch(bool found, int mainProcesses, std::uint64_t nowMs, std::uint64_t startTimeMs) noexcept;

// The client's renderer and similar helper processes carry "--type=" on their command line.
bool IsClientHelperCommandLine(std::wstring_view commandLine) noexcept;

// A FILETIME reading (100 ns units since 1601) as milliseconds since 1970, in unsigned arithmetic.
std::uint64_t UnixMsFromFileTime(std::uint64_t fileTime100ns) noexcept;

}  // namespace corvane::core
