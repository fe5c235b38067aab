// The exact parameter strings the add-in sends, and the start-up gate's decision. Both are fuzzed
// against references in the native build; these rows are literal anchors, and the numbers here are
// the ones the Wine build writes with its own C library (64-bit handles, the extreme ints).
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "core/command_line.h"
#include "core/launch_gate.h"

namespace core = corvane::core;

TEST(CommandParameters, EveryShapeJoinsItsFieldsUnescaped) {
  const std::uint64_t bigHandle = 0xFFFFFFFF12345678ULL;  // a 64-bit window number, not truncated
  const struct { std::wstring actual; const wchar_t* expected; } cases[] = {
      {core::CommandParameters(L"setting", L""), L" -shellpopwin \"setting\""},  // an empty action is left out
      {core::CommandParameters(L"w", L"a", -1, std::numeric_limits<std::int32_t>::min()),
       L" -shellpopwin \"w|a|-1|-2147483648\""},
      {core::CommandParameters(L"zhishiku", L"show", 10, -20, bigHandle),
       L" -shellpopwin \"zhishiku|show|10|-20|18446744069720004216\""},
      {core::CommandParameters(L"accountInfo", L"hide", 5, 6, std::wstring_view(L"x|y \"z\"")),
       L" -shellpopwin \"accountInfo|hide|5|6|x|y \"z\"\""},
      {core::CommandParameters(L"vip", L"show", 300, 40, bigHandle, 4294967295u),
       L" -shellpopwin \"vip|show|300|40|18446744069720004216|4294967295\""},
      {core::CommandParameters(L"syncdisk", L"", L"list"), L" -shellpopwin \"syncdisk||list\""},  // but kept here
      {core::DpiToolParameters(bigHandle), L"18446744069720004216"},
  };
  for (const auto& c : cases) EXPECT_EQ(c.actual, c.expected);
}

TEST(LaunchGate, RefusesOnlyAnUnsettledClientYoungerThanEightSeconds) {
  const std::uint64_t now = 1'700'000'000'000ULL;
  const struct { bool found; int mainProcesses; std::uint64_t startTime; bool allowed; std::uint64_t diff; } cases[] = {
      {true, 1, now - 2000, true, 2000},  // one main process, however young
      {true, 0, now - 10, false, 10},     // only helpers left, still starting
      {true, 3, now - 7999, false, 7999},
      {true, 2, now - 8000, true, 8000},               // settled at exactly eight seconds
      {true, 2, now + 5, true, std::uint64_t(0) - 5},  // a future start time reads as very old
  };
  for (const auto& c : cases) {
    const core::LaunchGateDecision decision = core::DecideLaunch(c.found, c.mainProcesses, now, c.startTime);
    EXPECT_EQ(decision.allowed, c.allowed) << "row " << (&c - cases);
    EXPECT_EQ(decision.diffMs, c.diff) << "row " << (&c - cases);
  }
  // Helpers are told by their type switch, exactly as written; process times come as FILETIMEs,
  // here 1700000000 s after 1970 (2023-11-14 22:13:20 UTC) and 123.4567 ms.
  EXPECT_TRUE(core::IsClientHelperCommandLine(L"\"C:\\H\\Halvex.exe\" --type=renderer --lang=en"));
  EXPECT_FALSE(core::IsClientHelperCommandLine(L"Halvex.exe --TYPE=renderer"));
  EXPECT_EQ(core::UnixMsFromFileTime(133444736000000000ULL + 1234567ULL), 1700000000123ULL);
}
