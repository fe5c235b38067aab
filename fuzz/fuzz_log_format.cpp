// The log's text shapes against the C library's printf for the same formats, over every int (the
// time fields come from the system clock, but nothing stops a caller from passing any value), the
// wide and narrow forms agreeing, and the naming helpers cutting only where they say.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include "core/log_format.h"
#include "fuzz_support.h"

namespace {

using namespace corvane::core;
using corvane::fuzz::Widen;
using corvane::fuzz::WidenAscii;

int Field(FuzzedDataProvider& input) {
  return input.ConsumeBool() ? input.ConsumeIntegralInRange<int>(-100, 10000) : input.ConsumeIntegral<int>();
}

template <class... Args>
std::string Printf(const char* format, Args... args) {
  char buffer[256];
  const int n = std::snprintf(buffer, sizeof(buffer), format, args...);
  FUZZ_CHECK(n >= 0 && static_cast<std::size_t>(n) < sizeof(buffer));
  return std::string(buffer, static_cast<std::size_t>(n));
}

// Text with no null in it, as the location's C strings are.
std::string CText(FuzzedDataProvider& input, std::size_t limit) {
  std::string text = input.ConsumeRandomLengthString(limit);
  return text.substr(0, text.find('\0'));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const LogTime time{Field(input), Field(input), Field(input), Field(input), Field(input), Field(input)};
  const int micros = Field(input);
  const int line = Field(input);
  const int thread = Field(input);
  const auto fileTime = input.ConsumeIntegral<std::uint64_t>();
  const auto rotation = input.ConsumeIntegral<unsigned>();
  const std::string guid = CText(input, 64);
  const std::string function = CText(input, 64);
  const std::string source = CText(input, 256);

  const std::string stamp = Printf("%04d%02d%02d%02d%02d%02d", time.year, time.month, time.day, time.hour,
                                   time.minute, time.second);
  const std::wstring wideGuid = Widen(guid);
  FUZZ_CHECK(LogFileSuffix(time, wideGuid) == WidenAscii(stamp) + L"_" + wideGuid + L".log");

  const std::string prefix = Printf("[%04d-%02d-%02d %02d:%02d:%02d.%06d]", time.year, time.month, time.day,
                                    time.hour, time.minute, time.second, micros);
  FUZZ_CHECK(LogTimePrefix<char>(time, micros) == prefix);
  FUZZ_CHECK(LogTimePrefix<wchar_t>(time, micros) == WidenAscii(prefix));

  // The location names the source file by what follows its last backslash.
  const std::string_view path(source);
  const auto slash = path.rfind('\\');
  const std::string_view file = slash == std::string_view::npos ? path : path.substr(slash + 1);
  const std::string location = LogLocation<char>(source.c_str(), line, thread, function.c_str());
  FUZZ_CHECK(location == "[" + std::string(file) + Printf(":%d][%d][", line, thread) + function + "]");
  FUZZ_CHECK(LogLocation<char>(nullptr, line, thread, nullptr) == Printf("[:%d][%d][]", line, thread));
  const std::wstring wideSource(source.begin(), source.end());
  const std::wstring wideFunction(function.begin(), function.end());
  FUZZ_CHECK(LogLocation<wchar_t>(wideSource.c_str(), line, thread, wideFunction.c_str()) ==
             std::wstring(location.begin(), location.end()));

  // The double arithmetic holds every microsecond exactly: the fraction is the exact remainder.
  constexpr std::uint64_t kEpoch = 116444736000000000ull;
  const int fraction = MicrosecondFraction(fileTime);
  FUZZ_CHECK(fraction >= 0 && fraction <= 999999);
  FUZZ_CHECK(static_cast<std::uint64_t>(fraction) == (fileTime - kEpoch) / 10 % 1000000);

  const std::wstring_view inner = GuidWithoutBraces(wideGuid);
  if (wideGuid.size() < 2) {
    FUZZ_CHECK(inner.empty());
  } else {
    FUZZ_CHECK(inner.size() == wideGuid.size() - 2 && inner.data() == wideGuid.data() + 1);
  }

  FUZZ_CHECK(RotatedName(wideSource, rotation) == wideSource + L"." + std::to_wstring(rotation));

  // The compile-time name: what follows the last '/', a suffix of the path.
  const char* name = SourceName(source.c_str());
  const std::string_view named(name);
  FUZZ_CHECK(path.ends_with(named) && named.find('/') == std::string_view::npos);
  FUZZ_CHECK(named.size() == path.size() || path[path.size() - named.size() - 1] == '/');
  return 0;
}
