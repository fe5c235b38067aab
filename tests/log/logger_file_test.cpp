// The logger on real files: name, encoding, line shape, levels and message building.
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "debug_capture.h"
#include "log/logger.h"
#include "log_files.h"

namespace {

using logtest::LogLine;

// A logger over a fresh folder, and the debugger output from the test's start.
class LoggerFile : public ::testing::Test {
 protected:
  std::vector<LogLine> Lines() const { return logtest::ReadLogLines(m_logger.Path()); }

  logtest::TempFolder m_temp;
  testsupport::DebugCapture m_capture;
  LOGGER::CLogger m_logger{4, m_temp.Path(), L"Corvane"};
};

TEST_F(LoggerFile, NameFolderAndTimeStamp) {
  // Missing parents are created and the folder gets its backslash.
  const std::wstring folder = m_temp.Path() + L"\\a\\b";
  const std::int64_t before = logtest::LocalStamp();
  LOGGER::CLogger logger(4, folder, L"Corvane");
  const std::int64_t after = logtest::LocalStamp();

  EXPECT_EQ(logger.Folder(), folder + L"\\");
  const std::wstring name = logtest::FileNameOf(logger.Path());
  EXPECT_TRUE(logtest::IsLogFileName(name, L"Corvane", 1)) << testing::PrintToString(name);
  const std::int64_t stamp = std::stoll(name.substr(7, 14));
  EXPECT_GE(stamp, before);
  EXPECT_LE(stamp, after);
  // The file is there from construction on, and empty.
  EXPECT_EQ(logtest::FilesIn(folder), std::vector<std::wstring>{name});
  EXPECT_EQ(logtest::FileSize(logger.Path()), 0);

  // Two loggers never share a file, even within one second.
  LOGGER::CLogger second(4, folder + L"\\", L"Corvane");
  EXPECT_NE(second.Path(), logger.Path());
}

TEST_F(LoggerFile, Utf16LinesWithCrLfEachOnDiskAtOnce) {
  const std::int64_t before = logtest::LocalStamp();
  m_logger.Info(812, L"C:\\src\\bar\\titlewindow.cpp", L"CTitleWindow::OnTimer", L"value %s %d %I64u", L"wide", 42,
                static_cast<unsigned long long>(5000000000ull));
  const std::int64_t after = logtest::LocalStamp();

  // Read through a handle of our own while the logger keeps its file open: no byte-order mark,
  // UTF-16LE, CR LF.
  const std::vector<std::uint8_t> bytes = logtest::ReadBytes(m_logger.Path());
  ASSERT_GE(bytes.size(), 4u);
  EXPECT_EQ(std::make_pair(bytes[0], bytes[1]), std::make_pair(std::uint8_t{'['}, std::uint8_t{0}));
  const std::wstring text = logtest::ReadUtf16(m_logger.Path());
  EXPECT_EQ(text.substr(text.size() - 2), L"\r\n");
  std::vector<LogLine> lines = Lines();
  ASSERT_EQ(lines.size(), 1u);
  const LogLine& line = lines[0];
  EXPECT_GE(line.stamp, before);
  EXPECT_LE(line.stamp, after);
  EXPECT_EQ(std::tie(line.tag, line.file, line.line, line.thread, line.function, line.message),
            std::make_tuple(L"Info", L"titlewindow.cpp", L"812", std::to_wstring(::GetCurrentThreadId()),
                            L"CTitleWindow::OnTimer", L"value wide 42 5000000000"));
  // The debugger gets the same line, without a line end.
  EXPECT_EQ(m_capture.Lines(), std::vector<std::wstring>{logtest::SplitCrLf(text)[0]});

  // Text outside ASCII and the Latin-1 range stays UTF-16; the next line is on disk at once too.
  m_logger.Info(9, L"x.cpp", L"F", L"%s", L"\u4e2d\u6587 \u00c9t\u00e9 \u20ac \U0001F600");
  lines = Lines();
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[1].message, L"\u4e2d\u6587 \u00c9t\u00e9 \u20ac \U0001F600");
}

// The debugger gets what reaches the file and every Debug line, which never reaches the file.
TEST_F(LoggerFile, LevelsDecideWhatReachesTheFile) {
  const struct {
    int level;
    std::wstring file;
    size_t debugger;
  } cases[] = {{4, L"Fatal Error Warning Info ", 6}, {2, L"Fatal Error ", 4}, {0, L"", 2}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.level);
    logtest::TempFolder temp;
    m_capture.Clear();
    LOGGER::CLogger logger(c.level, temp.Path(), L"Corvane");
    logger.Fatal(1, L"w.cpp", L"F", L"wide %d", 1);
    logger.Error(2, L"w.cpp", L"F", L"wide %d", 2);
    logger.Warning(3, "n.cpp", "F", "narrow %d", 3);
    logger.Info(4, "n.cpp", "F", "narrow %d", 4);
    logger.Debug(5, L"w.cpp", L"F", L"wide %d", 5);
    logger.Debug(6, "n.cpp", "F", "narrow %d", 6);
    std::wstring tags;
    for (const LogLine& line : logtest::ReadLogLines(logger.Path())) tags += line.tag + L" ";
    EXPECT_EQ(tags, c.file);
    EXPECT_EQ(m_capture.Lines().size(), c.debugger);
  }
}

TEST_F(LoggerFile, EmptyMissingAndLongTexts) {
  // An empty message writes nothing, anywhere.
  m_logger.Info(1, L"a.cpp", L"F", nullptr);
  m_logger.Debug(5, L"a.cpp", L"F", L"%s", L"");
  m_logger.Error(6, "a.cpp", "F", nullptr);
  m_logger.Error(7, "a.cpp", "F", "%s", "");
  EXPECT_EQ(logtest::FileSize(m_logger.Path()), 0);
  EXPECT_TRUE(m_capture.Lines().empty());

  // A missing source file name still gives a line; messages have no length limit.
  std::wstring wide(100000, L'w');
  for (size_t i = 0; i < wide.size(); i += 1000) wide[i] = L'\u00e9';
  std::string narrow(100001, 'n');
  narrow.back() = 'Z';
  m_logger.Info(13, static_cast<const wchar_t*>(nullptr), L"D", L"<%s>", wide.c_str());
  m_logger.Info(14, static_cast<const char*>(nullptr), "E", "<%s>", narrow.c_str());
  const std::vector<LogLine> lines = Lines();
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0].file, L"");
  EXPECT_EQ(lines[1].line, L"14");
  EXPECT_TRUE(lines[0].message == L"<" + wide + L">") << "length " << lines[0].message.size();
  EXPECT_TRUE(lines[1].message == L"<" + std::wstring(narrow.begin(), narrow.end()) + L">")
      << "length " << lines[1].message.size();
}

TEST_F(LoggerFile, NarrowLinesAreConvertedFromTheAnsiCodePage) {
  m_logger.Info(3, "C:\\src\\n.cpp", "N::F", "[%s] %d", "\x80\x82\x83\xe9", 17);
  const std::vector<LogLine> lines = Lines();
  ASSERT_EQ(lines.size(), 1u);
  // Not the bytes' own values (Latin-1) nor UTF-8: the euro sign and friends of Windows-1252.
  ASSERT_EQ(::GetACP(), 1252u) << "the test prefix runs a Western code page";
  EXPECT_EQ(lines[0].message, L"[\u20ac\u201a\u0192\u00e9] 17");
}

}  // namespace
