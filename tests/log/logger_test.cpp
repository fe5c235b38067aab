// The logger on real files under a fresh folder.
#include <gtest/gtest.h>

#include "debug_capture.h"
#include "log/logger.h"

TEST(LoggerDebugOutput, EveryWideAndNarrowLineReachesTheDebugger) {
  testsupport::DebugCapture capture;
  wchar_t temp[MAX_PATH];
  ::GetTempPathW(MAX_PATH, temp);
  LOGGER::CLogger logger(4, std::wstring(temp) + L"corvane-logtest", L"T");
  logger.Debug(7, L"C:\\src\\a.cpp", L"F::G", L"hello %s %d", L"wide", 5);
  logger.Info(8, "C:\\src\\b.cpp", "F::H", "narrow %s", "text");
  auto lines = capture.Lines();
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_NE(lines[0].find(L"[Debug]"), std::wstring::npos);
  EXPECT_NE(lines[0].find(L"[a.cpp:7]"), std::wstring::npos);
  EXPECT_NE(lines[0].find(L"[F::G]hello wide 5"), std::wstring::npos);
  EXPECT_NE(lines[1].find(L"[F::H]narrow text"), std::wstring::npos);
}
