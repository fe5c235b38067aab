#pragma once
// The parameter strings handed to the client and to its DPI tool. The client splits the quoted part
// at "|" itself; nothing here is escaped, so a field holding "|" or a quote reaches it unchanged.
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace corvane::core {

// " -shellpopwin \"f1|f2|...\"": the leading blank lets the caller glue it straight to the
// executable's path.
std::wstring ShellPopWinParameters(std::initializer_list<std::wstring_view> fields);

// word, then "|action" only when there is an action.
std::wstring CommandParameters(std::wstring_view word, std::wstring_view action);
// word|action|x|y
std::wstring CommandParameters(std::wstring_view word, std::wstring_view action, std::int32_t x, std::int32_t y);
// word|action|x|y|owner, the owner window as an unsigned number.
std::wstring CommandParameters(std::wstring_view word, std::wstring_view action, std::int32_t x, std::int32_t y,
                               std::uint64_t owner);
// word|action|x|y|text
std::wstring CommandParameters(std::wstring_view word, std::wstring_view action, std::int32_t x, std::int32_t y,
                               std::wstring_view text);
// word|action|x|y|owner|flag
std::wstring CommandParameters(std::wstring_view word, std::wstring_view action, std::int32_t x, std::int32_t y,
                               std::uint64_t owner, std::uint32_t flag);
// word|action|list
std::wstring CommandParameters(std::wstring_view word, std::wstring_view action, std::wstring_view list);

// advertising|id|title
std::wstring AdvertisingParameters(std::wstring_view id, std::wstring_view title);

// The DPI tool takes the window handle's unsigned digits and nothing else.
std::wstring DpiToolParameters(std::uint64_t window);

}  // namespace corvane::core
