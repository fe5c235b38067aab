#include "core/log_format.h"

#include <cmath>

namespace corvane::core {

namespace {

// Zero-padded decimal of at least `width` digits, with a minus sign for negatives (printf's %0Nd).
template <class Ch>
void AppendPadded(std::basic_string<Ch>& out, long long value, int width) {
  const bool negative = value < 0;
  unsigned long long magnitude = negative ? 0ull - static_cast<unsigned long long>(value) : static_cast<unsigned long long>(value);
  Ch digits[24];
  int count = 0;
  do {
    digits[count++] = static_cast<Ch>('0' + magnitude % 10);
    magnitude /= 10;
  } while (magnitude != 0);
  if (negative) out.push_back(Ch('-'));
  for (int pad = count + (negative ? 1 : 0); pad < width; ++pad) out.push_back(Ch('0'));
  while (count > 0) out.push_back(digits[--count]);
}

template <class Ch>
void AppendText(std::basic_string<Ch>& out, const char* ascii) {
  for (; *ascii != '\0'; ++ascii) out.push_back(static_cast<Ch>(*ascii));
}

}  // namespace

std::wstring LogFileSuffix(const LogTime& t, std::wstring_view guid) {
  std::wstring out;
  AppendPadded(out, t.year, 4);
  AppendPadded(out, t.month, 2);
  AppendPadded(out, t.day, 2);
  AppendPadded(out, t.hour, 2);
  AppendPadded(out, t.minute, 2);
  AppendPadded(out, t.second, 2);
  out.push_back(L'_');
  out.append(guid);
  out.append(L".log");
  return out;
}

template <class Ch>
std::basic_string<Ch> LogTimePrefix(const LogTime& t, int microseconds) {
  std::basic_string<Ch> out;
  out.push_back(Ch('['));
  AppendPadded(out, t.year, 4);
  out.push_back(Ch('-'));
  AppendPadded(out, t.month, 2);
  out.push_back(Ch('-'));
  AppendPadded(out, t.day, 2);
  out.push_back(Ch(' '));
  AppendPadded(out, t.hour, 2);
  out.push_back(Ch(':'));
  AppendPadded(out, t.minute, 2);
  out.push_back(Ch(':'));
  AppendPadded(out, t.second, 2);
  out.push_back(Ch('.'));
  AppendPadded(out, microseconds, 6);
  out.push_back(Ch(']'));
  return out;
}

template <class Ch>
std::basic_string<Ch> LogLocation(const Ch* sourcePath, int line, int threadId, const Ch* function) {
  std::basic_string<Ch> out;
  out.push_back(Ch('['));
  if (sourcePath != nullptr) {
    const std::basic_string_view<Ch> path(sourcePath);
    const auto slash = path.rfind(Ch('\\'));
    out.append(slash == std::basic_string_view<Ch>::npos ? path : path.substr(slash + 1));
  }
  out.push_back(Ch(':'));
  AppendPadded(out, line, 0);
  AppendText(out, "][");
  AppendPadded(out, threadId, 0);
  AppendText(out, "][");
  if (function != nullptr) out.append(function);
  out.push_back(Ch(']'));
  return out;
}

template std::string LogTimePrefix<char>(const LogTime&, int);
template std::wstring LogTimePrefix<wchar_t>(const LogTime&, int);
template std::string LogLocation<char>(const char*, int, int, const char*);
template std::wstring LogLocation<wchar_t>(const wchar_t*, int, int, const wchar_t*);

int MicrosecondFraction(std::uint64_t fileTime100ns) noexcept {
  constexpr std::uint64_t kEpochOffset = 116444736000000000ull;  // 1601 to 1970 in 100 ns units
  const std::uint64_t micros = (fileTime100ns - kEpochOffset) / 10;
  const auto seconds = static_cast<std::uint32_t>(micros / 1000000);
  const auto subMicros = static_cast<std::uint32_t>(micros % 1000000);
  const double combined = static_cast<double>(seconds) * 1000000.0 + static_cast<double>(subMicros);
  const double wholeSeconds = std::floor(combined / 1000000.0);
  const auto fraction = static_cast<int>(combined - wholeSeconds * 1000000.0);
  return fraction < 0 ? 0 : (fraction > 999999 ? 999999 : fraction);
}

std::wstring_view GuidWithoutBraces(std::wstring_view braced) noexcept {
  if (braced.size() < 2) return {};
  return braced.substr(1, braced.size() - 2);
}

std::wstring RotatedName(std::wstring_view path, unsigned n) {
  std::wstring out(path);
  out.push_back(L'.');
  AppendPadded(out, n, 0);
  return out;
}

}  // namespace corvane::core
