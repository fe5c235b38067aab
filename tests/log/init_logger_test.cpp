// Where the logger puts its file when no folder is given explicitly.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <tuple>
#include <utility>

#include "log/logger.h"
#include "platform/module_path.h"
#include "log_files.h"

namespace {

// Deletes the process-wide logger and its file however the test ends.
struct GlobalLoggerCleanup {
  std::wstring file;
  ~GlobalLoggerCleanup() {
    delete std::exchange(g_pLogger, nullptr);
    if (!file.empty()) ::DeleteFileW(file.c_str());
  }
};

TEST(InitLogger, LogsUnderTheClientFolderAndMacrosStopAfterDeletion) {
  ASSERT_EQ(g_pLogger, nullptr);
  GlobalLoggerCleanup cleanup;
  InitLogger();
  ASSERT_NE(g_pLogger, nullptr);
  cleanup.file = g_pLogger->Path();

  // This program runs from <client>\shell, like the DLL.
  const std::wstring shell = corvane::ThisModuleFolder();
  const std::wstring client = shell.substr(0, shell.rfind(L'\\', shell.size() - 2) + 1);
  EXPECT_EQ(g_pLogger->Folder(), client + L"log\\Corvane\\");
  const std::wstring path = g_pLogger->Path();
  EXPECT_TRUE(logtest::IsLogFileName(logtest::FileNameOf(path), L"Corvane", 1)) << testing::PrintToString(path);

  const std::wstring line = std::to_wstring(__LINE__); LOG_INFO(L"InitLoggerTest", L"client folder %s", L"ok");
  const std::vector<logtest::LogLine> lines = logtest::ReadLogLines(path);
  ASSERT_EQ(lines.size(), 1u);
  // The macro shows the source file's own name, the line and the function.
  EXPECT_EQ(std::tie(lines[0].tag, lines[0].file, lines[0].line, lines[0].function, lines[0].message),
            std::make_tuple(L"Info", L"init_logger_test.cpp", line, L"InitLoggerTest", L"client folder ok"));

  delete std::exchange(g_pLogger, nullptr);
  LOG_INFO(L"InitLoggerTest", L"after deletion");
  LOG_DEBUG(L"InitLoggerTest", L"after deletion");
  EXPECT_EQ(logtest::ReadLines(path).size(), 1u);
}

TEST(LoggerFolder, AnEmptyFolderMeansTheProgramsOwnFolder) {
  auto logger = std::make_unique<LOGGER::CLogger>(4, L"", L"EmptyFolder");
  const std::wstring path = logger->Path();
  EXPECT_EQ(logger->Folder(), corvane::ThisModuleFolder());
  EXPECT_TRUE(logtest::FileExists(path));
  logger.reset();
  ::DeleteFileW(path.c_str());
}

}  // namespace
