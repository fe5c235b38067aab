// A log folder that cannot be used: lines still reach the debugger, and every later line retries
// the open under a longer name.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "debug_capture.h"
#include "log/logger.h"
#include "log_files.h"

namespace {

TEST(LoggerFailedOpen, DebuggerStillGetsLinesAndEachWriteRetriesALongerName) {
  logtest::TempFolder temp;
  // A file where the log folder's parent should be: neither the folder nor the log can be made.
  const std::wstring blocker = temp.Path() + L"\\b";
  logtest::WriteUtf16(blocker, L"x");
  const std::wstring folder = blocker + L"\\s\\";
  testsupport::DebugCapture capture;
  LOGGER::CLogger logger(4, blocker + L"\\s", L"T");
  EXPECT_EQ(logger.Folder(), folder);
  const std::wstring first = logger.Path();
  EXPECT_TRUE(logtest::IsLogFileName(logtest::FileNameOf(first), L"T", 1)) << testing::PrintToString(first);

  logger.Info(1, L"f.cpp", L"F", L"lost %d", 1);
  const std::wstring second = logger.Path();
  EXPECT_EQ(second.substr(0, first.size()), first) << "the earlier name stays in front";
  EXPECT_TRUE(logtest::IsLogFileName(logtest::FileNameOf(second), L"T", 2)) << testing::PrintToString(second);
  EXPECT_FALSE(logtest::FileExists(second));
  ASSERT_EQ(capture.LinesContaining(L"lost 1").size(), 1u);

  // The folder becomes usable: the next line opens a file under the next, longer name.
  ASSERT_TRUE(::DeleteFileW(blocker.c_str()));
  ASSERT_TRUE(std::filesystem::create_directories(blocker + L"\\s"));
  logger.Info(2, L"f.cpp", L"F", L"kept %d", 2);
  const std::wstring third = logger.Path();
  EXPECT_EQ(third.substr(0, second.size()), second);
  EXPECT_TRUE(logtest::IsLogFileName(logtest::FileNameOf(third), L"T", 3)) << testing::PrintToString(third);
  EXPECT_EQ(logtest::FilesIn(folder), std::vector<std::wstring>{logtest::FileNameOf(third)});
  const std::vector<logtest::LogLine> lines = logtest::ReadLogLines(third);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].message, L"kept 2");
  EXPECT_EQ(capture.LinesContaining(L"kept 2").size(), 1u);

  // Once open, the file stays: no more renaming.
  logger.Info(3, L"f.cpp", L"F", L"kept %d", 3);
  EXPECT_EQ(logger.Path(), third);
  EXPECT_EQ(logtest::ReadLines(third).size(), 2u);
}

}  // namespace
