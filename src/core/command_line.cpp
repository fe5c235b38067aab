#include "core/command_line.h"

namespace corvane::core {

std::wstring ShellPopWinParameters(std::initializer_list<std::wstring_view> fields) {
  std::wstring text = L" -shellpopwin \"";
  bool first = true;
  for (std::wstring_view field : fields) {
    if (!first) text.push_back(L'|');
    text.append(field);
    first = false;
  }
  text.push_back(L'"');
  return text;
}

std::wstring CommandParameters(std::wstring_view word, std::wstring_view action) {
  if (action.empty()) return ShellPopWinParameters({word});
  return ShellPopWinParameters({word, action});
}

std::wstring CommandParameters(std::wstring_view word, std::wstring_view action, std::int32_t x, std::int32_t y) {
  return ShellPopWinParameters({word, action, std::to_wstring(x), std::to_wstring(y)});
}

std::wstring CommandParameters(std::wstring_view word, std::wstring_view action, std::int32_t x, std::int32_t y,
                               std::uint64_t owner) {
  return ShellPopWinParameters({word, action, std::to_wstring(x), std::to_wstring(y), std::to_wstring(owner)});
}

std::wstring CommandParameters(std::wstring_view word, std::wstring_view action, std::int32_t x, std::int32_t y,
                               std::wstring_view text) {
  return ShellPopWinParameters({word, action, std::to_wstring(x), std::to_wstring(y), text});
}

std::wstring CommandParameters(std::wstring_view word, std::wstring_view action, std::int32_t x, std::int32_t y,
                               std::uint64_t owner, std::uint32_t flag) {
  return ShellPopWinParameters(
      {word, action, std::to_wstring(x), std::to_wstring(y), std::to_wstring(owner), std::to_wstring(flag)});
}

std::wstring CommandParameters(std::wstring_view word, std::wstring_view action, std::wstring_view list) {
  return ShellPopWinParameters({word, action, list});
}

std::wstring AdvertisingParameters(std::wstring_view id, std::wstring_view title) {
  return ShellPopWinParameters({L"advertising", id, title});
}

std::wstring DpiToolParameters(std::uint64_t window) { return std::to_wstring(window); }

}  // namespace corvane::core
