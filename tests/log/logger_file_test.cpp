// The logger on real files: name, encoding, line shape, levels and message building.
#include <gtest/gtest.h>

#include <string>

#include "debug_capture.h"
#include "log/logger.h"
#include "log_files.h"

namespace {

using logtest::LogLine;

std::wstring Tid() { return std::to_wstring(::GetCurrentThreadId()); }

TEST(LoggerFile, NameFolderAndTimeStamp) {
  logtest::TempFolder temp;
  // Missing parents are created and the folder gets its backslash.
  const std::wstring folder = temp.Path() + L"\\a\\b";
  const std::int64_t before = logtest::LocalStamp();
  LOGGER::CLogger logger(4, folder, L"Corvane");
  const std::int64_t after = logtest::LocalStamp();

  EXPECT_EQ(logger.Folder(), folder + L"\\");
  const std::wstring name = logtest::FileNameOf(logger.Path());
  EXPECT_EQ(logger.Path(), folder + L"\\" + name);
  EXPECT_TRUE(logtest::IsLogFileName(name, L"Corvane", 1)) << testing::PrintToString(name);
  const std::int64_t stamp = std::stoll(name.substr(7, 14));
  EXPECT_GE(stamp, before);
  EXPECT_LE(stamp, after);
  // The file is there from construction on, and empty.
  EXPECT_EQ(logtest::FilesIn(folder), std::vector<std::wstring>{name});
  EXPECT_EQ(logtest::FileSize(logger.Path()), 0);

  // Two loggers never share a file, even within one second.
  LOGGER::CLogger second(4, folder + L"\\", L"Corvane");
  EXPECT_EQ(second.Folder(), folder + L"\\");
  EXPECT_NE(second.Path(), logger.Path());
}

TEST(LoggerFile, Utf16LinesWithCrLfEachOnDiskAtOnce) {
  logtest::TempFolder temp;
  testsupport::DebugCapture capture;
  LOGGER::CLogger logger(4, temp.Path(), L"Corvane");

  const std::int64_t before = logtest::LocalStamp();
  logger.Info(812, L"C:\\src\\bar\\titlewindow.cpp", L"CTitleWindow::OnTimer", L"value %s %d %I64u", L"wide", 42,
              static_cast<unsigned long long>(5000000000ull));
  const std::int64_t after = logtest::LocalStamp();

  // Read through a handle of our own while the logger keeps its file open.
  const std::vector<std::uint8_t> bytes = logtest::ReadBytes(logger.Path());
  ASSERT_GE(bytes.size(), 4u);
  EXPECT_FALSE(bytes[0] == 0xFF && bytes[1] == 0xFE) << "no byte-order mark";
  EXPECT_EQ(bytes[0], '[');
  EXPECT_EQ(bytes[1], 0);
  std::wstring text = logtest::ReadUtf16(logger.Path());
  ASSERT_GE(text.size(), 2u);
  EXPECT_EQ(text.substr(text.size() - 2), L"\r\n");
  std::vector<std::wstring> lines = logtest::SplitCrLf(text);
  ASSERT_EQ(lines.size(), 1u);

  LogLine line;
  ASSERT_TRUE(logtest::ParseLogLine(lines[0], line)) << testing::PrintToString(lines[0]);
  EXPECT_EQ(line.tag, L"Info");
  EXPECT_GE(line.stamp, before);
  EXPECT_LE(line.stamp, after);
  EXPECT_EQ(line.file, L"titlewindow.cpp");
  EXPECT_EQ(line.line, L"812");
  EXPECT_EQ(line.thread, Tid());
  EXPECT_EQ(line.function, L"CTitleWindow::OnTimer");
  EXPECT_EQ(line.message, L"value wide 42 5000000000");
  // The debugger gets the same line, without a line end.
  EXPECT_EQ(capture.Lines(), std::vector<std::wstring>{lines[0]});

  // Text outside ASCII and the Latin-1 range stays UTF-16; the next line is on disk at once too.
  logger.Info(9, L"x.cpp", L"F", L"%s", L"\u4e2d\u6587 \u00c9t\u00e9 \u20ac \U0001F600");
  lines = logtest::SplitCrLf(logtest::ReadUtf16(logger.Path()));
  ASSERT_EQ(lines.size(), 2u);
  ASSERT_TRUE(logtest::ParseLogLine(lines[1], line));
  EXPECT_EQ(line.message, L"\u4e2d\u6587 \u00c9t\u00e9 \u20ac \U0001F600");
}

TEST(LoggerFile, LevelsDecideWhatReachesTheFile) {
  const struct {
    int level;
    std::vector<std::wstring> fileTags;
  } cases[] = {
      {4, {L"Fatal", L"Error", L"Warning", L"Info"}},
      {2, {L"Fatal", L"Error"}},
      {0, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.level);
    logtest::TempFolder temp;
    testsupport::DebugCapture capture;
    LOGGER::CLogger logger(c.level, temp.Path(), L"Corvane");
    for (int width = 0; width < 2; ++width) {
      if (width == 0) {
        logger.Fatal(1, L"w.cpp", L"F", L"wide %d", 1);
        logger.Error(2, L"w.cpp", L"F", L"wide %d", 2);
        logger.Warning(3, L"w.cpp", L"F", L"wide %d", 3);
        logger.Info(4, L"w.cpp", L"F", L"wide %d", 4);
        logger.Debug(5, L"w.cpp", L"F", L"wide %d", 5);
      } else {
        logger.Fatal(1, "n.cpp", "F", "narrow %d", 1);
        logger.Error(2, "n.cpp", "F", "narrow %d", 2);
        logger.Warning(3, "n.cpp", "F", "narrow %d", 3);
        logger.Info(4, "n.cpp", "F", "narrow %d", 4);
        logger.Debug(5, "n.cpp", "F", "narrow %d", 5);
      }
    }
    std::vector<std::wstring> expectedFile, expectedDebugger;
    for (const wchar_t* width : {L"wide", L"narrow"}) {
      for (const auto& tag : c.fileTags) {
        expectedFile.push_back(tag + L"|" + width);
        expectedDebugger.push_back(tag + L"|" + width);
      }
      expectedDebugger.push_back(std::wstring(L"Debug|") + width);
    }
    auto summary = [](const std::vector<std::wstring>& lines) {
      std::vector<std::wstring> out;
      for (const auto& text : lines) {
        LogLine line;
        if (!logtest::ParseLogLine(text, line)) {
          out.push_back(L"unparsed: " + text);
          continue;
        }
        out.push_back(line.tag + L"|" + line.message.substr(0, line.message.find(L' ')));
      }
      return out;
    };
    const std::wstring text = logtest::ReadUtf16(logger.Path());
    EXPECT_EQ(summary(logtest::SplitCrLf(text)), expectedFile);
    EXPECT_EQ(summary(capture.Lines()), expectedDebugger);
  }
}

TEST(LoggerFile, EmptyMessagesWriteNothing) {
  logtest::TempFolder temp;
  testsupport::DebugCapture capture;
  LOGGER::CLogger logger(4, temp.Path(), L"Corvane");
  logger.Info(1, L"a.cpp", L"F", nullptr);
  logger.Info(2, L"a.cpp", L"F", L"");
  logger.Debug(5, L"a.cpp", L"F", L"%s", L"");
  logger.Error(6, "a.cpp", "F", nullptr);
  logger.Error(7, "a.cpp", "F", "%s", "");
  logger.Debug(8, "a.cpp", "F", "");
  EXPECT_EQ(logtest::FileSize(logger.Path()), 0);
  EXPECT_TRUE(capture.Lines().empty());
}

// Where the location is cut is the log format's own rule; here only that a missing source file
// name, in either width, still gives a line.
TEST(LoggerFile, NoSourceFileNameStillGivesALine) {
  logtest::TempFolder temp;
  LOGGER::CLogger logger(4, temp.Path(), L"Corvane");
  logger.Info(13, static_cast<const wchar_t*>(nullptr), L"D", L"x");
  logger.Info(14, static_cast<const char*>(nullptr), "E", "x");
  const std::vector<std::wstring> lines = logtest::SplitCrLf(logtest::ReadUtf16(logger.Path()));
  ASSERT_EQ(lines.size(), 2u);
  LogLine line;
  for (size_t i = 0; i < 2; ++i) {
    ASSERT_TRUE(logtest::ParseLogLine(lines[i], line)) << testing::PrintToString(lines[i]);
    EXPECT_EQ(line.file, L"");
    EXPECT_EQ(line.line, std::to_wstring(13 + i));
  }
}

TEST(LoggerFile, NarrowLinesAreConvertedFromTheAnsiCodePage) {
  logtest::TempFolder temp;
  testsupport::DebugCapture capture;
  LOGGER::CLogger logger(4, temp.Path(), L"Corvane");
  // Every byte from 0x20 up, through the narrow %s: the ANSI code page decides what each becomes.
  std::string bytes;
  for (int b = 0x20; b <= 0xFF; ++b) bytes.push_back(static_cast<char>(b));
  logger.Info(3, "C:\\src\\n.cpp", "N::F", "[%s] %d", bytes.c_str(), 17);

  wchar_t converted[512] = {};
  const int count = ::MultiByteToWideChar(CP_ACP, 0, bytes.data(), static_cast<int>(bytes.size()), converted, 512);
  ASSERT_GT(count, 0);
  const std::wstring expected = L"[" + std::wstring(converted, static_cast<size_t>(count)) + L"] 17";
  if (::GetACP() == 1252) {
    // 0x80 is the euro sign and 0x82 0x83 are U+201A U+0192 there, not their byte values.
    EXPECT_EQ(expected.substr(0x80 - 0x20 + 1, 4), L"\u20ac\u0081\u201a\u0192");
  }

  const std::vector<std::wstring> lines = logtest::SplitCrLf(logtest::ReadUtf16(logger.Path()));
  ASSERT_EQ(lines.size(), 1u);
  LogLine line;
  ASSERT_TRUE(logtest::ParseLogLine(lines[0], line)) << testing::PrintToString(lines[0]);
  EXPECT_EQ(line.file, L"n.cpp");
  EXPECT_EQ(line.function, L"N::F");
  EXPECT_EQ(line.thread, Tid());
  EXPECT_EQ(line.message, expected) << "code page " << ::GetACP();
}

TEST(LoggerFile, MessagesHaveNoLengthLimit) {
  logtest::TempFolder temp;
  LOGGER::CLogger logger(4, temp.Path(), L"Corvane");
  std::wstring wide(100000, L'w');
  for (size_t i = 0; i < wide.size(); i += 1000) wide[i] = L'\u00e9';
  std::string narrow(100001, 'n');
  narrow.back() = 'Z';
  logger.Info(1, L"a.cpp", L"F", L"<%s>", wide.c_str());
  logger.Warning(2, "a.cpp", "F", "<%s>", narrow.c_str());
  const std::vector<std::wstring> lines = logtest::SplitCrLf(logtest::ReadUtf16(logger.Path()));
  ASSERT_EQ(lines.size(), 2u);
  LogLine line;
  ASSERT_TRUE(logtest::ParseLogLine(lines[0], line));
  EXPECT_TRUE(line.message == L"<" + wide + L">") << "length " << line.message.size();
  ASSERT_TRUE(logtest::ParseLogLine(lines[1], line));
  EXPECT_TRUE(line.message == L"<" + std::wstring(narrow.begin(), narrow.end()) + L">")
      << "length " << line.message.size();
}

}  // namespace
