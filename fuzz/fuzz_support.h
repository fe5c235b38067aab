#pragma once
// What every fuzzer here shares: a property check that stops the run like a crash would, and the
// mapping from libFuzzer's bytes to the wide text the rules take.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <string>
#include <string_view>

namespace corvane::fuzz {

// A broken property is a finding like a crash: say which and abort, so libFuzzer keeps the input.
[[noreturn]] inline void PropertyFailed(const char* file, int line, const char* what) {
  std::fprintf(stderr, "%s:%d: property does not hold: %s\n", file, line, what);
  std::fflush(stderr);
  std::abort();
}

#define FUZZ_CHECK(condition) \
  ((condition) ? static_cast<void>(0) : ::corvane::fuzz::PropertyFailed(__FILE__, __LINE__, #condition))

// Bytes as wide text. Well-formed UTF-8 sequences become their code point, so the seed files stay
// readable and still reach letters outside ASCII; any other byte becomes the code unit of the same
// value. Embedded nulls are kept: the registry and the system hand such text over too.
inline std::wstring Widen(std::string_view bytes) {
  std::wstring text;
  text.reserve(bytes.size());
  std::size_t i = 0;
  while (i < bytes.size()) {
    const auto lead = static_cast<unsigned char>(bytes[i]);
    std::size_t length = 0;
    std::uint32_t point = 0;
    if (lead >= 0xC2 && lead <= 0xDF) {
      length = 2;
      point = lead & 0x1Fu;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
      length = 3;
      point = lead & 0x0Fu;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
      length = 4;
      point = lead & 0x07u;
    }
    bool wellFormed = length != 0 && i + length <= bytes.size();
    for (std::size_t k = 1; wellFormed && k < length; ++k) {
      const auto next = static_cast<unsigned char>(bytes[i + k]);
      wellFormed = (next & 0xC0u) == 0x80u;
      point = (point << 6) | (next & 0x3Fu);
    }
    // A code point beyond the wide character (16 bits on Windows) falls back to its bytes.
    if (wellFormed && point <= static_cast<std::uint32_t>(WCHAR_MAX)) {
      text.push_back(static_cast<wchar_t>(point));
      i += length;
    } else {
      text.push_back(static_cast<wchar_t>(lead));
      ++i;
    }
  }
  return text;
}

// ASCII-only text back to bytes for printf-based references; anything else becomes '?'.
inline std::string Narrow(std::wstring_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (const wchar_t c : text) bytes.push_back(c >= 0 && c < 0x80 ? static_cast<char>(c) : '?');
  return bytes;
}

inline std::wstring WidenAscii(std::string_view ascii) { return std::wstring(ascii.begin(), ascii.end()); }

}  // namespace corvane::fuzz
