// The launcher against the Halvex.exe and scalemend.exe stand-ins: what the client receives, where
// it runs, how its processes are counted and when the start-up gate holds a command back. The
// gate's eight-second boundary is a pure rule its fuzzer checks; here every client is young.
#include <gtest/gtest.h>

#include <objbase.h>

#include <algorithm>
#include <cwchar>
#include <tuple>
#include <utility>

#include "client/dpi_tool.h"
#include "client/launcher.h"
#include "client/wmi.h"
#include "debug_capture.h"
#include "log/logger.h"
#include "platform/module_path.h"
#include "standin_session.h"

namespace {

// "cx::canCommandExecute. diff:%lld ret:%d ms:%lld startTime:%lld num:%d" read back: what the gate
// saw when it let a command through (a refusal logs nothing).
struct GateLine { long long diff = -1, ret = -1, ms = -1, startTime = -1, num = -1; };

class Launcher : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
    g_pLogger = new LOGGER::CLogger(4, m_session.Folder() + L"log", L"Corvane");
    ASSERT_FALSE(cx::IsProcessRunning(L"Halvex.exe")) << "a client from elsewhere is running";
  }
  void TearDown() override {
    delete std::exchange(g_pLogger, nullptr);
    ::CoUninitialize();
  }

  std::vector<GateLine> GateLines() const {
    std::vector<GateLine> gates;
    for (const std::wstring& line : m_capture.LinesContaining(L"cx::canCommandExecute. diff:")) {
      GateLine& gate = gates.emplace_back();
      ::swscanf_s(line.c_str() + line.find(L"diff:"), L"diff:%lld ret:%lld ms:%lld startTime:%lld num:%lld", &gate.diff,
                  &gate.ret, &gate.ms, &gate.startTime, &gate.num);
    }
    return gates;
  }

  launchertest::StandinSession m_session;
  testsupport::DebugCapture m_capture;
  const std::wstring m_exe = corvane::ClientFolder() + L"Halvex.exe";
};

}  // namespace

// With no client the command starts it; while that one main process runs, the next command goes
// to it too. A quote in a field reaches the client as given (its folder: the bar's command tests).
TEST_F(Launcher, CommandsReachTheClientVerbatimWhileOneMainProcessRuns) {
  ::SetEnvironmentVariableW(L"HALVEX_STANDIN_LINGER_MS", L"30000");  // the started client stays
  const std::wstring quoted = L" -shellpopwin \"syncdisk|open_folders|C:\\My \"Files\"|D:\\x\"";
  EXPECT_EQ(cx::exeCloudCommandLine(L"syncdisk", L"open_folders", L"C:\\My \"Files\"|D:\\x"), m_exe + quoted);
  const auto first = launchertest::WaitForRecords(m_session.ClientRecord(), 1);
  ASSERT_EQ(first.size(), 1u);
  EXPECT_EQ(first[0].commandLine, launchertest::Received(m_exe, quoted));

  EXPECT_EQ(cx::exeCloudCommandLine(L"setting", L""), m_exe + L" -shellpopwin \"setting\"");
  EXPECT_EQ(launchertest::WaitForRecords(m_session.ClientRecord(), 2).size(), 2u);
  const auto gates = GateLines();
  ASSERT_EQ(gates.size(), 2u);
  EXPECT_EQ(std::tie(gates[0].ret, gates[0].num, gates[0].startTime), std::make_tuple(0LL, 0LL, 0LL));
  // The start time is the client's creation time, as the client itself recorded it.
  EXPECT_EQ(std::tie(gates[1].ret, gates[1].num, gates[1].startTime),
            std::make_tuple(1LL, 1LL, static_cast<long long>(first[0].startMs)));
  EXPECT_LT(gates[1].diff, 8000);
}

// Renderers ("--type=" on their command line) are no main processes, unless their command line
// cannot be read: the product's WMI reads none but this process's under Wine, so the stand-ins'
// record supplies them. Two young main processes hold every command back, and nothing starts.
TEST_F(Launcher, RenderersDoNotCountButASecondYoungMainProcessHoldsCommandsBack) {
  std::wstring commandLine = L"untouched";
  EXPECT_FALSE(cx::QueryProcessCommandLine(0xFFFFFFFC, commandLine));
  EXPECT_EQ(commandLine, L"untouched");
  ASSERT_TRUE(cx::QueryProcessCommandLine(::GetCurrentProcessId(), commandLine));
  EXPECT_EQ(commandLine, ::GetCommandLineW());

  const cx::CommandLineReader recorded = launchertest::RecordedCommandLines(m_session.ClientRecord());
  const cx::CommandLineReader unknown = [](DWORD, std::wstring&) { return false; };
  std::uint64_t startTime = 42;
  const auto count = [&](const cx::CommandLineReader& reader) {
    int found = -1;
    return std::make_pair(cx::FindClientProcesses(L"HALVEX.exe", startTime, found, reader), found);
  };
  EXPECT_EQ(count(recorded), std::make_pair(false, 0));
  EXPECT_EQ(startTime, 42u);

  m_session.StartClient(L"--children=2 --linger-ms=30000");
  const auto started = launchertest::WaitForRecords(m_session.ClientRecord(), 3);
  ASSERT_EQ(started.size(), 3u);
  // The name is compared whole and without regard to case.
  for (const auto& [name, running] : {std::pair{L"hALVEX.EXE", true}, {L"Halvex", false}, {L"Halvex.exe ", false}})
    EXPECT_EQ(cx::IsProcessRunning(name), running) << name;
  EXPECT_EQ(count(recorded), std::make_pair(true, 1));
  EXPECT_TRUE(std::any_of(started.begin(), started.end(), [&](const auto& r) { return r.startMs == startTime; }));
  EXPECT_FALSE(cx::canCommandExecute(unknown)) << "unreadable command lines count as main processes";
  EXPECT_TRUE(GateLines().empty());
  EXPECT_TRUE(cx::canCommandExecute(recorded));
  ASSERT_EQ(GateLines().size(), 1u);
  EXPECT_EQ(GateLines()[0].num, 1);

  m_session.StartClient(L"--linger-ms=30000");
  const auto four = launchertest::WaitForRecords(m_session.ClientRecord(), 4);
  ASSERT_EQ(four.size(), 4u);
  EXPECT_EQ(count(recorded), std::make_pair(true, 2));
  // The start time is the last match's in the snapshot's order: the newest process here, not the
  // first main process (started well before it).
  EXPECT_EQ(startTime, four[3].startMs);
  EXPECT_LT(four[0].startMs, four[3].startMs);
  m_capture.Clear();
  EXPECT_FALSE(cx::canCommandExecute(recorded)) << "two main processes, the newest younger than eight seconds";
  EXPECT_EQ(cx::exeCloudCommandLine(L"syncdisk", L"open"), L"");
  EXPECT_EQ(cx::startCloudApp(L"show"), L"");
  EXPECT_TRUE(GateLines().empty());
  // ShellExecuteW has created the process by the time it returns, so a start would show already.
  EXPECT_EQ(count(unknown), std::make_pair(true, 4));
}

TEST_F(Launcher, DpiToolGetsTheHandleDigitsBesideTheDll) {
  const std::wstring tool = corvane::ThisModuleFolder() + L"scalemend.exe";
  EXPECT_EQ(cx::startDpiTool(reinterpret_cast<HWND>(static_cast<std::uintptr_t>(0xFFFFFFFF12345678ULL))), tool);
  const auto records = launchertest::WaitForRecords(m_session.DpiRecord(), 1);
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].commandLine, launchertest::Received(tool, L"18446744069720004216"));
  EXPECT_EQ(records[0].directory + L"\\", corvane::ThisModuleFolder());
  EXPECT_EQ(records[0].show, L"1") << "started SW_SHOWNORMAL";
  EXPECT_TRUE(GateLines().empty()) << "the DPI tool is not gated";
}
