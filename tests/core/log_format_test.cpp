// The text shapes of the log: file-name suffix, line prefix, location, rotation names. The fuzzer
// checks the same shapes against printf over every int; these pin the layout itself.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "core/log_format.h"

namespace {

namespace core = corvane::core;

constexpr wchar_t kGuid[] = L"6F9619FF-8B86-D011-B42D-00C04FC964FF";

TEST(LogFileSuffix, PadsEveryFieldAndEndsInTheGuid) {
  const struct {
    core::LogTime time;
    const wchar_t* guid;
    const wchar_t* suffix;
  } cases[] = {
      {{2026, 11, 15, 22, 10, 5}, kGuid, L"20261115221005_6F9619FF-8B86-D011-B42D-00C04FC964FF.log"},
      {{999, 12, 31, 23, 59, 59}, kGuid, L"09991231235959_6F9619FF-8B86-D011-B42D-00C04FC964FF.log"},
      {{2026, 1, 1, 0, 0, 0}, L"", L"20260101000000_.log"},
  };
  for (const auto& c : cases) EXPECT_EQ(core::LogFileSuffix(c.time, c.guid), c.suffix);
}

TEST(LogTimePrefix, SameShapeInBothWidths) {
  const struct {
    core::LogTime time;
    int micros;
    const char* prefix;
  } cases[] = {
      {{2026, 11, 15, 22, 10, 5}, 123456, "[2026-11-15 22:10:05.123456]"},
      {{2027, 1, 2, 3, 4, 5}, 7, "[2027-01-02 03:04:05.000007]"},
      {{2027, 12, 31, 23, 59, 59}, 999999, "[2027-12-31 23:59:59.999999]"},
      {{45, 6, 7, 8, 9, 10}, 4050, "[0045-06-07 08:09:10.004050]"},
  };
  for (const auto& c : cases) {
    const std::string narrow = c.prefix;
    EXPECT_EQ(core::LogTimePrefix<char>(c.time, c.micros), narrow);
    EXPECT_EQ(core::LogTimePrefix<wchar_t>(c.time, c.micros), std::wstring(narrow.begin(), narrow.end()));
  }
}

TEST(LogLocation, ShowsThePartAfterTheLastBackslash) {
  const struct {
    const char* path;  // nullptr: no path given
    int line, thread;
    const char* function;
    const char* location;
  } cases[] = {
      {"C:\\src\\bar\\titlewindow.cpp", 812, 5312, "CTitleWindow::OnTimer",
       "[titlewindow.cpp:812][5312][CTitleWindow::OnTimer]"},
      {"/src/bar/titlewindow.cpp", 3, 4, "f", "[/src/bar/titlewindow.cpp:3][4][f]"},
      {"C:\\src/bar\\x.cpp", 0, 0, "g", "[x.cpp:0][0][g]"},
      {nullptr, 55, 66, "CLogger::Info", "[:55][66][CLogger::Info]"},
      {"", 5, 6, "", "[:5][6][]"},
      {"a.cpp", 2147483647, -1, "big", "[a.cpp:2147483647][-1][big]"},
  };
  for (const auto& c : cases) {
    const std::string location = c.location;
    const std::string path = c.path != nullptr ? c.path : "";
    const std::wstring widePath(path.begin(), path.end());
    const std::string function = c.function;
    const std::wstring wideFunction(function.begin(), function.end());
    EXPECT_EQ(core::LogLocation<char>(c.path != nullptr ? path.c_str() : nullptr, c.line, c.thread, c.function),
              location);
    EXPECT_EQ(core::LogLocation<wchar_t>(c.path != nullptr ? widePath.c_str() : nullptr, c.line, c.thread,
                                         wideFunction.c_str()),
              std::wstring(location.begin(), location.end()));
  }
}

TEST(LogLocation, PassesNonAsciiNamesThrough) {
  EXPECT_EQ(core::LogLocation<wchar_t>(L"C:\\\u6e90\\\u6587\u4ef6.cpp", 1, 2, L"\u00c9::f"),
            L"[\u6587\u4ef6.cpp:1][2][\u00c9::f]");
}

constexpr std::uint64_t kEpoch = 116444736000000000ull;  // 1970-01-01 in FILETIME units

TEST(MicrosecondFraction, KnownReadings) {
  const struct {
    std::uint64_t fileTime;
    int micros;
  } cases[] = {
      {kEpoch, 0},
      {kEpoch + 9, 0},  // 900 ns is not yet a microsecond
      {kEpoch + 10, 1},
      {kEpoch + 17634000001234567ull, 123456},  // 2025
      {kEpoch + 42949672959999990ull, 999999},  // the last second that fits in 32 bits
  };
  for (const auto& c : cases) EXPECT_EQ(core::MicrosecondFraction(c.fileTime), c.micros) << c.fileTime;
}

TEST(LogNames, GuidBracesAndRotatedCopies) {
  EXPECT_EQ(core::GuidWithoutBraces(L"{6F9619FF-8B86-D011-B42D-00C04FC964FF}"), kGuid);
  EXPECT_EQ(core::GuidWithoutBraces(L"{}"), L"");
  EXPECT_EQ(core::GuidWithoutBraces(L""), L"");

  const std::wstring path = L"C:\\Halvex\\log\\Corvane\\Corvane20261115221005_6F9619FF.log";
  EXPECT_EQ(core::RotatedName(path, 1), path + L".1");
  EXPECT_EQ(core::RotatedName(path, 10), path + L".10");
}

TEST(SourceName, CutsCompilerPathsAtTheLastSlash) {
  static_assert(std::char_traits<char>::compare(core::SourceName("/work/src/log/logger.cpp"), "logger.cpp", 11) == 0);
  EXPECT_STREQ(core::SourceName(L"/work/src/bar/titlewindow.cpp"), L"titlewindow.cpp");
  EXPECT_STREQ(core::SourceName(L"/work/src/"), L"");
  // A backslash path (MSVC's __FILE__) is left for the location to cut.
  EXPECT_STREQ(core::SourceName(L"C:\\src\\dllmain.cpp"), L"C:\\src\\dllmain.cpp");
}

}  // namespace
