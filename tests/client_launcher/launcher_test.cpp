// The launcher against the Halvex.exe and scalemend.exe stand-ins: what the client receives, where
// it runs, and when the start-up gate holds a command back.
#include <gtest/gtest.h>

#include <objbase.h>

#include <algorithm>
#include <cstdint>
#include <cwchar>
#include <string>

#include "client/dpi_tool.h"
#include "client/launcher.h"
#include "debug_capture.h"
#include "log/logger.h"
#include "platform/module_path.h"
#include "standin_session.h"

using launchertest::Received;
using launchertest::WaitForRecords;

namespace {

// "cx::canCommandExecute. diff:%lld ret:%d ms:%lld startTime:%lld num:%d" read back.
struct GateLine {
  long long diff = -1, ret = -1, ms = -1, startTime = -1, num = -1;
};

class Launcher : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
    g_pLogger = new LOGGER::CLogger(4, m_session.Folder() + L"log", L"Corvane");
    ASSERT_FALSE(cx::IsProcessRunning(L"Halvex.exe")) << "a client from elsewhere is running";
  }
  void TearDown() override {
    delete g_pLogger;
    g_pLogger = nullptr;
    ::CoUninitialize();
  }

  std::vector<GateLine> GateLines() const {
    std::vector<GateLine> gates;
    for (const std::wstring& line : m_capture.LinesContaining(L"cx::canCommandExecute. diff:")) {
      GateLine gate;
      ::swscanf_s(line.c_str() + line.find(L"diff:"), L"diff:%lld ret:%lld ms:%lld startTime:%lld num:%lld", &gate.diff,
                  &gate.ret, &gate.ms, &gate.startTime, &gate.num);
      gates.push_back(gate);
    }
    return gates;
  }

  launchertest::StandinSession m_session;
  testsupport::DebugCapture m_capture;
  const std::wstring m_exe = corvane::ClientFolder() + L"Halvex.exe";
};

}  // namespace

// Every bar and prompt command is checked as the client receives it; here a quote in a field, which
// must reach the client as it was given.
TEST_F(Launcher, CommandsReachTheClientVerbatimInTheClientFolder) {
  const std::wstring parameters = L" -shellpopwin \"syncdisk|open_folders|C:\\My \"Files\"|D:\\x\"";
  EXPECT_EQ(cx::exeCloudCommandLine(L"syncdisk", L"open_folders", L"C:\\My \"Files\"|D:\\x"), m_exe + parameters);
  const auto records = WaitForRecords(m_session.ClientRecord(), 1);
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].commandLine, Received(m_exe, parameters));
  EXPECT_EQ(records[0].directory + L"\\", corvane::ClientFolder());
  EXPECT_EQ(GateLines().size(), 1u);
}

TEST_F(Launcher, WithNoClientTheCommandIsAllowedAndLogged) {
  const std::uint64_t before = launchertest::NowMs();
  EXPECT_EQ(cx::exeCloudAdvertising(L"7", L"Sale"), m_exe + L" -shellpopwin \"advertising|7|Sale\"");
  const std::uint64_t after = launchertest::NowMs();
  const auto gates = GateLines();
  ASSERT_EQ(gates.size(), 1u);
  EXPECT_EQ(gates[0].ret, 0);
  EXPECT_EQ(gates[0].num, 0);
  EXPECT_EQ(gates[0].startTime, 0);
  EXPECT_EQ(gates[0].diff, gates[0].ms);
  EXPECT_GE(gates[0].ms, static_cast<long long>(before));
  EXPECT_LE(gates[0].ms, static_cast<long long>(after));
  ASSERT_EQ(WaitForRecords(m_session.ClientRecord(), 1).size(), 1u);
}

TEST_F(Launcher, OneYoungMainProcessIsAllowed) {
  m_session.StartClient(L"--linger-ms=30000");
  const auto started = WaitForRecords(m_session.ClientRecord(), 1);
  ASSERT_EQ(started.size(), 1u);

  EXPECT_EQ(cx::exeCloudCommandLine(L"setting", L""), m_exe + L" -shellpopwin \"setting\"");
  const auto gates = GateLines();
  ASSERT_EQ(gates.size(), 1u);
  EXPECT_EQ(gates[0].ret, 1);
  EXPECT_EQ(gates[0].num, 1);
  EXPECT_EQ(gates[0].startTime, static_cast<long long>(started[0].startMs));
  EXPECT_EQ(gates[0].diff, gates[0].ms - gates[0].startTime);
  EXPECT_LT(gates[0].diff, 8000);
  const auto records = WaitForRecords(m_session.ClientRecord(), 2);
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[1].commandLine, Received(m_exe, L" -shellpopwin \"setting\""));
}

// The product's WMI query reads no other process's command line under Wine, so renderers would
// count as main processes there; the stand-ins' record supplies the command lines instead.
TEST_F(Launcher, RenderersOfAYoungClientDoNotHoldCommandsBack) {
  m_session.StartClient(L"--children=2 --linger-ms=30000");
  const auto started = WaitForRecords(m_session.ClientRecord(), 3);
  ASSERT_EQ(started.size(), 3u);

  EXPECT_FALSE(cx::canCommandExecute([](DWORD, std::wstring&) { return false; }))
      << "unreadable command lines count as main processes";
  EXPECT_TRUE(GateLines().empty());
  EXPECT_TRUE(cx::canCommandExecute(launchertest::RecordedCommandLines(m_session.ClientRecord())));
  const auto gates = GateLines();
  ASSERT_EQ(gates.size(), 1u);
  EXPECT_EQ(gates[0].num, 1);
  EXPECT_LT(gates[0].diff, 8000);
}

TEST_F(Launcher, TwoMainProcessesAreRefusedUntilTheNewestIsEightSecondsOld) {
  m_session.StartClient(L"--linger-ms=30000");
  m_session.StartClient(L"--linger-ms=30000");
  const auto started = WaitForRecords(m_session.ClientRecord(), 2);
  ASSERT_EQ(started.size(), 2u);
  const std::uint64_t newest = std::max(started[0].startMs, started[1].startMs);
  ASSERT_LT(launchertest::NowMs() - newest, 6000u) << "the stand-ins took too long to start";

  EXPECT_EQ(cx::exeCloudCommandLine(L"syncdisk", L"open"), L"");
  EXPECT_EQ(cx::startCloudApp(L"show"), L"");
  EXPECT_TRUE(GateLines().empty());
  // ShellExecuteW has created the process by the time it returns, so a start would show already.
  std::uint64_t startTime = 0;
  int all = 0;
  cx::FindClientProcesses(L"Halvex.exe", startTime, all, [](DWORD, std::wstring&) { return false; });
  EXPECT_EQ(all, 2);

  while (launchertest::NowMs() < newest + 8000) ::Sleep(50);
  EXPECT_EQ(cx::exeCloudCommandLine(L"syncdisk", L"open"), m_exe + L" -shellpopwin \"syncdisk|open\"");
  const auto gates = GateLines();
  ASSERT_EQ(gates.size(), 1u);
  EXPECT_EQ(gates[0].ret, 1);
  EXPECT_EQ(gates[0].num, 2);
  EXPECT_GE(gates[0].diff, 8000);
  const auto records = WaitForRecords(m_session.ClientRecord(), 3);
  ASSERT_EQ(records.size(), 3u);
  EXPECT_EQ(records[2].commandLine, Received(m_exe, L" -shellpopwin \"syncdisk|open\""));
}

TEST_F(Launcher, DpiToolGetsTheHandleDigitsBesideTheDll) {
  const std::wstring tool = corvane::ThisModuleFolder() + L"scalemend.exe";
  const HWND window = reinterpret_cast<HWND>(static_cast<std::uintptr_t>(0xFFFFFFFF12345678ULL));
  EXPECT_EQ(cx::startDpiTool(window), tool);
  const auto records = WaitForRecords(m_session.DpiRecord(), 1);
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].commandLine, Received(tool, L"18446744069720004216"));
  EXPECT_EQ(records[0].directory + L"\\", corvane::ThisModuleFolder());
  EXPECT_TRUE(GateLines().empty()) << "the DPI tool is not gated";
}
