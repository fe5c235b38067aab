// The exact parameter strings of every command shape, and the start-up gate's decision.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "core/command_line.h"
#include "core/launch_gate.h"

namespace core = corvane::core;

TEST(CommandParameters, EveryShapeJoinsItsFieldsUnescaped) {
  const std::uint64_t bigHandle = 0xFFFFFFFF12345678ULL;
  const struct {
    std::wstring actual;
    const wchar_t* expected;
  } cases[] = {
      {core::CommandParameters(L"login", L"from_shell"), L" -shellpopwin \"login|from_shell\""},
      {core::CommandParameters(L"setting", L""), L" -shellpopwin \"setting\""},
      {core::CommandParameters(L"a|b", L"c\"d"), L" -shellpopwin \"a|b|c\"d\""},
      {core::CommandParameters(L"w", L"a", -1, std::numeric_limits<std::int32_t>::min()),
       L" -shellpopwin \"w|a|-1|-2147483648\""},
      {core::CommandParameters(L"syncprogress", L"show", -1, -1, std::uint64_t{0x20A4C}),
       L" -shellpopwin \"syncprogress|show|-1|-1|133708\""},
      {core::CommandParameters(L"zhishiku", L"show", 10, -20, bigHandle),
       L" -shellpopwin \"zhishiku|show|10|-20|18446744069720004216\""},
      {core::CommandParameters(L"accountInfo", L"hide", 5, 6, std::wstring_view(L"x|y \"z\"")),
       L" -shellpopwin \"accountInfo|hide|5|6|x|y \"z\"\""},
      {core::CommandParameters(L"vip", L"show", 300, 40, bigHandle, 1u),
       L" -shellpopwin \"vip|show|300|40|18446744069720004216|1\""},
      {core::CommandParameters(L"vip", L"show", -3, 4, std::uint64_t{0}, 4294967295u),
       L" -shellpopwin \"vip|show|-3|4|0|4294967295\""},
      {core::CommandParameters(L"syncdisk", L"open_folders", L"C:\\a b|D:\\c"),
       L" -shellpopwin \"syncdisk|open_folders|C:\\a b|D:\\c\""},
      {core::CommandParameters(L"syncdisk", L"", L"list"), L" -shellpopwin \"syncdisk||list\""},
      {core::AdvertisingParameters(L"42", L"Spring|sale"), L" -shellpopwin \"advertising|42|Spring|sale\""},
      {core::AdvertisingParameters(L"", L""), L" -shellpopwin \"advertising||\""},
      {core::DpiToolParameters(bigHandle), L"18446744069720004216"},
  };
  for (const auto& c : cases) EXPECT_EQ(c.actual, c.expected);
}

TEST(LaunchGate, RefusesOnlyAnUnsettledClientYoungerThanEightSeconds) {
  const std::uint64_t now = 1'700'000'000'000ULL;
  const struct {
    bool found;
    int mainProcesses;
    std::uint64_t startTime;
    bool allowed;
    std::uint64_t diff;
  } cases[] = {
      {false, 0, 0, true, now},                       // no client: the start creates it
      {false, 2, now, true, 0},                       // lookup failed: counts do not matter
      {true, 1, now - 2000, true, 2000},              // one main process, however young
      {true, 2, now - 2000, false, 2000},             // two racing starts
      {true, 0, now - 10, false, 10},                 // only helpers left, still starting
      {true, 3, now - 7999, false, 7999},
      {true, 2, now - 8000, true, 8000},              // settled at exactly eight seconds
      {true, 2, now - 60000, true, 60000},
      {true, 2, now + 5, true, std::uint64_t(0) - 5},  // a future start time reads as very old
  };
  for (const auto& c : cases) {
    const core::LaunchGateDecision decision = core::DecideLaunch(c.found, c.mainProcesses, now, c.startTime);
    EXPECT_EQ(decision.allowed, c.allowed) << "found " << c.found << " num " << c.mainProcesses << " start "
                                           << c.startTime;
    EXPECT_EQ(decision.diffMs, c.diff);
  }
}

TEST(LaunchGate, HelperProcessesAreRecognisedByTheirTypeSwitch) {
  EXPECT_TRUE(core::IsClientHelperCommandLine(L"\"C:\\H\\Halvex.exe\" --type=renderer --lang=en"));
  EXPECT_TRUE(core::IsClientHelperCommandLine(L"x--type=gpu"));
  EXPECT_FALSE(core::IsClientHelperCommandLine(L"\"C:\\H\\Halvex.exe\" -shellpopwin \"show\""));
  EXPECT_FALSE(core::IsClientHelperCommandLine(L"Halvex.exe --TYPE=renderer"));
  EXPECT_FALSE(core::IsClientHelperCommandLine(L"Halvex.exe --type renderer"));
}

TEST(LaunchGate, FileTimesBecomeMillisecondsSince1970) {
  EXPECT_EQ(core::UnixMsFromFileTime(116444736000000000ULL), 0u);
  EXPECT_EQ(core::UnixMsFromFileTime(116444736000009999ULL), 0u);
  // 1700000000 s after 1970 (2023-11-14 22:13:20 UTC) and 123.4567 ms.
  EXPECT_EQ(core::UnixMsFromFileTime(133444736000000000ULL + 1234567ULL), 1700000000123ULL);
}
