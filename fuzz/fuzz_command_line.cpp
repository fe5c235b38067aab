// The client's command lines: the fixed frame around the fields, the fields joined by "|" in order
// and unescaped, numbers written so that they read back, and a split at "|" that gives back the
// fields whenever none of them holds a "|" itself.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/command_line.h"
#include "core/numbers.h"
#include "fuzz_support.h"

namespace {

using namespace corvane::core;
using corvane::fuzz::Widen;

__extension__ typedef unsigned __int128 Wide;

constexpr std::wstring_view kOpening = L" -shellpopwin \"";

std::vector<std::wstring> Split(std::wstring_view inner) {
  std::vector<std::wstring> fields;
  for (;;) {
    const auto bar = inner.find(L'|');
    fields.emplace_back(inner.substr(0, bar));
    if (bar == std::wstring_view::npos) return fields;
    inner.remove_prefix(bar + 1);
  }
}

void CheckLine(const std::wstring& line, const std::vector<std::wstring>& fields) {
  FUZZ_CHECK(line.starts_with(kOpening));
  FUZZ_CHECK(line.size() >= kOpening.size() + 1 && line.back() == L'"');
  const std::wstring_view inner = std::wstring_view(line).substr(kOpening.size(), line.size() - kOpening.size() - 1);
  std::wstring joined;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (i != 0) joined.push_back(L'|');
    joined += fields[i];
  }
  FUZZ_CHECK(inner == joined);
  bool anyBar = false;
  for (const auto& field : fields) anyBar = anyBar || field.find(L'|') != std::wstring::npos;
  if (!anyBar) FUZZ_CHECK(Split(inner) == fields);
}

// Unsigned digits read back exactly (the handle may exceed what the signed parser takes).
bool ReadsAs(const std::wstring& digits, std::uint64_t value) {
  if (digits.empty() || digits.size() > 20 || (digits.size() > 1 && digits[0] == L'0')) return false;
  Wide total = 0;
  for (const wchar_t c : digits) {
    if (c < L'0' || c > L'9') return false;
    total = total * 10 + static_cast<unsigned>(c - L'0');
  }
  return total == value;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const auto shape = input.ConsumeIntegralInRange<int>(0, 7);
  const std::wstring word = Widen(input.ConsumeRandomLengthString(64));
  const std::wstring action = Widen(input.ConsumeRandomLengthString(64));
  const std::wstring text = Widen(input.ConsumeRandomLengthString(256));
  const auto x = input.ConsumeIntegral<std::int32_t>();
  const auto y = input.ConsumeIntegral<std::int32_t>();
  const auto owner = input.ConsumeIntegral<std::uint64_t>();
  const auto flag = input.ConsumeIntegral<std::uint32_t>();

  const std::wstring xs = std::to_wstring(x);
  const std::wstring ys = std::to_wstring(y);
  FUZZ_CHECK(ParseDecimalInt32(xs) == x && ParseDecimalInt32(ys) == y);

  switch (shape) {
    case 0:
      CheckLine(CommandParameters(word, action),
                action.empty() ? std::vector<std::wstring>{word} : std::vector<std::wstring>{word, action});
      break;
    case 1:
      CheckLine(CommandParameters(word, action, x, y), {word, action, xs, ys});
      break;
    case 2: {
      const std::wstring line = CommandParameters(word, action, x, y, owner);
      CheckLine(line, {word, action, xs, ys, std::to_wstring(owner)});
      FUZZ_CHECK(ReadsAs(line.substr(line.rfind(L'|') + 1, line.size() - line.rfind(L'|') - 2), owner));
      break;
    }
    case 3:
      CheckLine(CommandParameters(word, action, x, y, text), {word, action, xs, ys, text});
      break;
    case 4: {
      const std::wstring line = CommandParameters(word, action, x, y, owner, flag);
      CheckLine(line, {word, action, xs, ys, std::to_wstring(owner), std::to_wstring(flag)});
      FUZZ_CHECK(ReadsAs(line.substr(line.rfind(L'|') + 1, line.size() - line.rfind(L'|') - 2), flag));
      break;
    }
    case 5:
      CheckLine(CommandParameters(word, action, text), {word, action, text});
      break;
    case 6:
      CheckLine(AdvertisingParameters(action, text), {L"advertising", action, text});
      break;
    default:
      FUZZ_CHECK(ReadsAs(DpiToolParameters(owner), owner));
      CheckLine(ShellPopWinParameters({}), {L""});
      CheckLine(ShellPopWinParameters({word}), {word});
      break;
  }
  return 0;
}
