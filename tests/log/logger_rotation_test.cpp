// Rotation at 5 MiB, alone and with several threads writing through it.
#include <gtest/gtest.h>

#include <cwchar>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "log/logger.h"
#include "log_files.h"

namespace {

constexpr std::int64_t kLimit = 5242880;

std::vector<std::wstring> Messages(const std::wstring& path) {
  std::vector<std::wstring> messages;
  for (const auto& text : logtest::ReadLines(path)) {
    logtest::LogLine line;
    messages.push_back(logtest::ParseLogLine(text, line) ? line.message : (text.empty() || text[0] != L'#' ? text : L"#"));
  }
  return messages;
}

using Strings = std::vector<std::wstring>;
using Files = std::vector<Strings>;

// The messages of the current file and of its first two predecessors.
Files Rotated(const std::wstring& path) { return {Messages(path), Messages(path + L".1"), Messages(path + L".2")}; }

// "T<thread> L<index> " and 2,000 copies of a letter that depends on both.
std::wstring WriterMessage(int thread, int index) {
  return L"T" + std::to_wstring(thread) + L" L" + std::to_wstring(index) + L" " +
         std::wstring(2000, static_cast<wchar_t>(L'a' + (thread * 7 + index) % 26));
}

TEST(LoggerRotation, AtTheLimitTheNextLineStartsAFreshFile) {
  const struct {
    std::int64_t fillTo;
    bool rotatesAtOnce;
  } cases[] = {{kLimit - 2, false}, {kLimit, true}, {kLimit + 1000, true}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.fillTo);
    logtest::TempFolder temp;
    LOGGER::CLogger logger(4, temp.Path(), L"Corvane");
    const std::wstring path = logger.Path();
    logtest::WriteUtf16(path + L".1", L"old one\r\n");
    logtest::WriteUtf16(path + L".2", L"old two\r\n");

    logger.Info(1, L"r.cpp", L"F", L"A");
    EXPECT_EQ(Rotated(path), (Files{{L"A"}, {L"old one"}, {L"old two"}}));
    logtest::FillTo(path, c.fillTo);
    logger.Info(2, L"r.cpp", L"F", L"B");
    if (!c.rotatesAtOnce) {
      EXPECT_EQ(Rotated(path), (Files{{L"A", L"#", L"B"}, {L"old one"}, {L"old two"}}))
          << "below the limit nothing moves";
      logger.Info(3, L"r.cpp", L"F", L"C");
      EXPECT_EQ(Rotated(path), (Files{{L"C"}, {L"A", L"#", L"B"}, {L"old one"}}));
    } else {
      EXPECT_EQ(Rotated(path), (Files{{L"B"}, {L"A", L"#"}, {L"old one"}}));
      EXPECT_EQ(logtest::FileSize(path + L".1"), c.fillTo);
    }
    EXPECT_EQ(logger.Path(), path) << "the current file keeps its name";
    EXPECT_FALSE(logtest::FileExists(path + L".3"));
    EXPECT_EQ(logtest::FilesIn(temp.Path()).size(), 3u);
  }
}

TEST(LoggerRotation, NoLineLostOrTornAcrossRotationsUnderThreads) {
  logtest::TempFolder temp;
  LOGGER::CLogger logger(4, temp.Path(), L"Corvane");
  const std::wstring path = logger.Path();
  // Room for about 60 lines before the first rotation; the run then fills a whole file and rotates again.
  constexpr int kThreads = 4, kLines = 360;
  logtest::FillTo(path, kLimit - 256 * 1024);

  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < kLines; ++i) logger.Info(1, L"mt.cpp", L"Writer", L"%s", WriterMessage(t, i).c_str());
    });
  }
  for (auto& thread : threads) thread.join();

  std::map<std::pair<int, int>, int> seen;
  int fillers = 0, torn = 0;
  for (const std::wstring& file : {path + L".2", path + L".1", path}) {
    ASSERT_TRUE(logtest::FileExists(file)) << "two rotations expected";
    size_t before = seen.size();
    for (const std::wstring& message : Messages(file)) {
      int t = -1, i = -1;
      if (message == L"#") {
        ++fillers;
      } else if (::swscanf_s(message.c_str(), L"T%d L%d", &t, &i) == 2 && message == WriterMessage(t, i)) {
        ++seen[{t, i}];
      } else if (++torn <= 3) {
        ADD_FAILURE() << "torn line of " << message.size() << " characters: " << testing::PrintToString(message.substr(0, 80));
      }
    }
    // Lines landed in all three files, so both rotations happened while the threads wrote.
    EXPECT_GT(seen.size(), before) << testing::PrintToString(file);
  }
  EXPECT_EQ(fillers, 1);
  EXPECT_EQ(torn, 0);
  EXPECT_EQ(seen.size(), static_cast<size_t>(kThreads * kLines));
  for (const auto& [key, count] : seen) {
    if (count != 1) ADD_FAILURE() << "T" << key.first << " L" << key.second << " written " << count << " times";
  }
  EXPECT_LT(logtest::FileSize(path), kLimit);
  EXPECT_GE(logtest::FileSize(path + L".1"), kLimit);
}

}  // namespace
