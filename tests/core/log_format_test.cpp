// The text shapes of the log. The fuzzer checks every field against printf over the whole int range,
// natively; these anchors also run on the Windows build (16-bit wchar_t, msvcrt) and pin what the
// fuzzer's reference cannot: non-ASCII names passing through unchanged.
#include <gtest/gtest.h>

#include <string>

#include "core/log_format.h"

namespace {

namespace core = corvane::core;

TEST(LogFormat, FileNameLinePrefixLocationAndRotatedNames) {
  EXPECT_EQ(core::LogFileSuffix({999, 12, 31, 23, 59, 5}, L"6F9619FF-8B86-D011-B42D-00C04FC964FF"),
            L"09991231235905_6F9619FF-8B86-D011-B42D-00C04FC964FF.log");
  EXPECT_EQ(core::LogTimePrefix<char>({45, 6, 7, 8, 9, 10}, 4050), "[0045-06-07 08:09:10.004050]");
  EXPECT_EQ(core::LogTimePrefix<wchar_t>({2027, 1, 2, 3, 4, 5}, 7), L"[2027-01-02 03:04:05.000007]");
  EXPECT_EQ(core::LogLocation<char>("C:\\src/bar\\x.cpp", 812, 5312, "CTitleWindow::OnTimer"),
            "[x.cpp:812][5312][CTitleWindow::OnTimer]");
  EXPECT_EQ(core::LogLocation<wchar_t>(nullptr, 55, -1, nullptr), L"[:55][-1][]");
  EXPECT_EQ(core::LogLocation<wchar_t>(L"C:\\\u6e90\\\u6587\u4ef6.cpp", 1, 2, L"\u00c9::f"),
            L"[\u6587\u4ef6.cpp:1][2][\u00c9::f]");
  constexpr unsigned long long kEpoch = 116444736000000000ull;  // 1970-01-01 in FILETIME units
  EXPECT_EQ(core::MicrosecondFraction(kEpoch + 9), 0);          // 900 ns is not yet a microsecond
  EXPECT_EQ(core::MicrosecondFraction(kEpoch + 17634000001234567ull), 123456);
  EXPECT_EQ(core::GuidWithoutBraces(L"{6F9619FF-8B86-D011-B42D-00C04FC964FF}"), L"6F9619FF-8B86-D011-B42D-00C04FC964FF");
  EXPECT_EQ(core::RotatedName(L"C:\\log\\Corvane1.log", 10), L"C:\\log\\Corvane1.log.10");
  EXPECT_STREQ(core::SourceName(L"/work/src/bar/titlewindow.cpp"), L"titlewindow.cpp");
  // A backslash path (MSVC's __FILE__) is left for the location to cut.
  EXPECT_STREQ(core::SourceName(L"C:\\src\\dllmain.cpp"), L"C:\\src\\dllmain.cpp");
}

}  // namespace
