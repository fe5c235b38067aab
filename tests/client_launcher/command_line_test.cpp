// The exact parameter strings the add-in sends. They are fuzzed against a reference in the native
// build; these rows are literal anchors, and the numbers here are the ones the Wine build writes
// with its own C library (64-bit handles, the extreme ints). The start-up gate is plain unsigned
// arithmetic, which no C library touches: its fuzzer's exact reference is its test.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "core/command_line.h"

namespace core = corvane::core;

TEST(CommandParameters, EveryShapeJoinsItsFieldsUnescaped) {
  using core::CommandParameters;
  const std::uint64_t big = 0xFFFFFFFF12345678ULL;  // a 64-bit window number, not truncated
  const struct { std::wstring actual; const wchar_t* fields; } cases[] = {
      {CommandParameters(L"setting", L""), L"setting"},  // an empty action is left out
      {CommandParameters(L"w", L"a", -1, std::numeric_limits<std::int32_t>::min()), L"w|a|-1|-2147483648"},
      {CommandParameters(L"zhishiku", L"show", 10, -20, big), L"zhishiku|show|10|-20|18446744069720004216"},
      {CommandParameters(L"account", L"hide", 5, 6, std::wstring_view(L"x|y \"z\"")), L"account|hide|5|6|x|y \"z\""},
      {CommandParameters(L"vip", L"on", 300, 40, big, 4294967295u), L"vip|on|300|40|18446744069720004216|4294967295"},
      {CommandParameters(L"syncdisk", L"", L"list"), L"syncdisk||list"},  // but kept here
  };
  for (const auto& c : cases) EXPECT_EQ(c.actual, L" -shellpopwin \"" + std::wstring(c.fields) + L"\"");
  EXPECT_EQ(core::DpiToolParameters(big), L"18446744069720004216");
}
