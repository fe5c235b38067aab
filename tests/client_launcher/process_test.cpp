// Finding the client's processes: the snapshot walk, the counting rule and the WMI query.
#include <gtest/gtest.h>

#include <objbase.h>

#include <algorithm>

#include "client/process.h"
#include "client/wmi.h"
#include "standin_session.h"

namespace {

class ClientProcesses : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
    ASSERT_FALSE(cx::IsProcessRunning(L"Halvex.exe")) << "a client from elsewhere is running";
  }
  void TearDown() override { ::CoUninitialize(); }

  launchertest::StandinSession m_session;
};

}  // namespace

// Wine's WMI knows only the calling process's command line, so that is the one asked for here.
TEST_F(ClientProcesses, WmiReportsTheRawCommandLine) {
  std::wstring commandLine = L"untouched";
  ASSERT_TRUE(cx::QueryProcessCommandLine(::GetCurrentProcessId(), commandLine));
  EXPECT_EQ(commandLine, ::GetCommandLineW());

  commandLine = L"untouched";
  EXPECT_FALSE(cx::QueryProcessCommandLine(0xFFFFFFFC, commandLine));
  EXPECT_EQ(commandLine, L"untouched");
}

TEST_F(ClientProcesses, RunningIsAskedByExecutableNameWithoutRegardToCase) {
  EXPECT_FALSE(cx::IsProcessRunning(L"Halvex.exe"));
  m_session.StartClient(L"--linger-ms=30000");
  ASSERT_EQ(launchertest::WaitForRecords(m_session.ClientRecord(), 1).size(), 1u);
  const struct {
    const wchar_t* name;
    bool running;
  } cases[] = {{L"Halvex.exe", true}, {L"hALVEX.EXE", true}, {L"Halvex", false}, {L"Halvex.exe ", false},
               {L"NoSuchProgram.exe", false}};
  for (const auto& c : cases) EXPECT_EQ(cx::IsProcessRunning(c.name), c.running) << c.name;
}

TEST_F(ClientProcesses, RenderersAreNotCountedUnlessTheirCommandLineIsUnknown) {
  const cx::CommandLineReader recorded = launchertest::RecordedCommandLines(m_session.ClientRecord());
  const cx::CommandLineReader unknown = [](DWORD, std::wstring&) { return false; };
  std::uint64_t startTime = 42;
  int count = -1;
  EXPECT_FALSE(cx::FindClientProcesses(L"Halvex.exe", startTime, count, recorded));
  EXPECT_EQ(count, 0);
  EXPECT_EQ(startTime, 42u);

  const struct {
    const wchar_t* arguments;
    size_t processes;
    int mainWhenRead;
  } stages[] = {{L"--children=3 --linger-ms=30000", 4, 1}, {L"--linger-ms=30000", 5, 2}};
  for (const auto& stage : stages) {
    m_session.StartClient(stage.arguments);
    const auto records = launchertest::WaitForRecords(m_session.ClientRecord(), stage.processes);
    ASSERT_EQ(records.size(), stage.processes);
    const auto isStandinStart = [&](std::uint64_t ms) {
      return std::any_of(records.begin(), records.end(), [&](const auto& r) { return r.startMs == ms; });
    };
    ASSERT_TRUE(cx::FindClientProcesses(L"HALVEX.exe", startTime, count, recorded));
    EXPECT_EQ(count, stage.mainWhenRead);
    EXPECT_TRUE(isStandinStart(startTime)) << startTime;
    ASSERT_TRUE(cx::FindClientProcesses(L"Halvex.exe", startTime, count, unknown));
    EXPECT_EQ(count, static_cast<int>(stage.processes));
  }
}
