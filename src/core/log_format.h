#pragma once
// The text shapes of the log: file-name suffix, time prefix, location, rotation names.
#include <cstdint>
#include <string>
#include <string_view>

namespace corvane::core {

struct LogTime {
  int year, month, day, hour, minute, second;
};

// "%04d%02d%02d%02d%02d%02d_%s.log": appended to the logger's name, with no separator before it.
std::wstring LogFileSuffix(const LogTime& time, std::wstring_view guid);

// "[%04d-%02d-%02d %02d:%02d:%02d.%06d]".
template <class Ch>
std::basic_string<Ch> LogTimePrefix(const LogTime& time, int microseconds);

// "[%s:%d][%d][%s]" with the part of the source path after its last backslash.
template <class Ch>
std::basic_string<Ch> LogLocation(const Ch* sourcePath, int line, int threadId, const Ch* function);

// The sub-second part of a FILETIME reading, in microseconds: split into 32-bit seconds and
// microseconds since 1970, recombined and reduced through double arithmetic with truncation.
int MicrosecondFraction(std::uint64_t fileTime100ns) noexcept;

// A GUID as StringFromGUID2 writes it, without its braces.
std::wstring_view GuidWithoutBraces(std::wstring_view braced) noexcept;

// The n-th rotated copy of a log file: path + "." + n.
std::wstring RotatedName(std::wstring_view path, unsigned n);

// A compile-time path made of '/' separators (as cross compilers write __FILE__) cut to its last
// component, so the log shows the same file name whatever compiler built the module.
template <class Ch>
constexpr const Ch* SourceName(const Ch* path) noexcept {
  const Ch* name = path;
  for (const Ch* p = path; *p != Ch(0); ++p) {
    if (*p == Ch('/')) name = p + 1;
  }
  return name;
}

}  // namespace corvane::core
