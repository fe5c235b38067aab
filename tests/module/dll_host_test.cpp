// The built Corvane.dll in stand-in hosts: which hosts it agrees to run in, what its entry points
// answer there, and the attach and detach lines it logs beside the client.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "host_process.h"
#include "log_files.h"
#include "platform/module_path.h"

namespace {

// The messages of the one log file, among those new since `before`, that names this host.
std::vector<std::wstring> LogOfHost(const std::wstring& folder, const std::vector<std::wstring>& before,
                                    const std::wstring& hostPath) {
  std::vector<std::wstring> messages;
  for (const std::wstring& name : logtest::FilesIn(folder)) {
    const std::wstring path = folder + L"\\" + name;
    // Other programs' files come and go in the same folder.
    if (std::find(before.begin(), before.end(), name) != before.end() ||
        logtest::ReadUtf16(path, true).find(L"]ower app = " + hostPath + L"\r\n") == std::wstring::npos) {
      continue;
    }
    EXPECT_TRUE(messages.empty()) << "a second log file names the host";
    for (const logtest::LogLine& line : logtest::ReadLogLines(path)) messages.push_back(line.message);
    ::DeleteFileW(path.c_str());
  }
  return messages;
}

TEST(DllHost, ExplorerAndTheRegistrationToolAreTheOnlyHosts) {
  const struct {
    const wchar_t* host;  // under <program folder>\hosts\ .
    bool admitted;
  } cases[] = {
      {L"plain\\explorer.exe", true},
      {L"upper\\EXPLORER.EXE", true},
      {L"regsvr\\regsvr32.exe", true},
      {L"\u8d44\u6e90\u7ba1\u7406\u5668\\explorer.exe", true},
      {L"other\\myexplorer.exe", false},
      // U+0145: a narrowing lower-case would turn it into 'e'.
      {L"other\\\u0145XPLORER.EXE", false},
  };
  // <client>\shell\ holds the DLL; its log goes to <client>\log\Corvane\ .
  const std::wstring logFolder = corvane::ClientFolder() + L"log\\Corvane";
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(c.host)));
    const std::wstring hostPath = corvane::ThisModuleFolder() + L"hosts\\" + c.host;
    const std::vector<std::wstring> before = logtest::FilesIn(logFolder);
    moduletest::HostRun run = moduletest::RunHost(hostPath, corvane::ThisModuleFolder() + L"Corvane.dll");
    ASSERT_TRUE(run.finished);
    // The host must see itself under the very name it was started by, capitals included.
    EXPECT_EQ(run.values[L"host"], hostPath) << testing::PrintToString(run.output);
    EXPECT_EQ(run.exitCode, c.admitted ? 0u : 2u);
    // A refused load is the entry point's refusal (ERROR_DLL_INIT_FAILED), not a missing or broken file.
    EXPECT_EQ(run.values[L"load"], c.admitted ? L"ok" : L"failed error=1114");
    if (c.admitted) {
      EXPECT_EQ(run.values[L"DllGetClassObject"], L"0x80040111 object=null");  // CLASS_E_CLASSNOTAVAILABLE
      // Every class the registration writes is served (and its factory released before the unload ask).
      for (const wchar_t* name : {L"class TitleBarBHO", L"class MyShellView", L"class MyShellFolder", L"class MyShellFolder1"})
        EXPECT_EQ(run.values[name], L"0x00000000 object=set") << testing::PrintToString(std::wstring(name));
      EXPECT_EQ(run.values[L"DllCanUnloadNow"], L"0x00000000");
      EXPECT_EQ(run.values[L"free"], L"ok");
    }
    // A refused attach is followed by the detach that deletes the logger, as for a freed DLL.
    EXPECT_EQ(LogOfHost(logFolder, before, hostPath),
              (std::vector<std::wstring>{L"DLL PROCESS ATTACH", L"ower app = " + hostPath, L"DLL PROCESS DETACH"}));
  }
}

TEST(DllHost, ADllPathPast260CharactersStillLogsBesideTheClient) {
  // <client>\shell\Corvane.dll of 265 characters: the 260-character read cuts into the file name,
  // and the folder before its last backslash is still the DLL's own.
  const logtest::TempFolder scratch;
  const std::wstring client = scratch.Path() + L"\\" + std::wstring(265 - scratch.Path().size() - 19, L'c');
  std::error_code error;
  for (const wchar_t* folder : {L"\\shell", L"\\log\\Corvane"}) std::filesystem::create_directories(client + folder, error);
  ASSERT_TRUE(::CopyFileW((corvane::ThisModuleFolder() + L"Corvane.dll").c_str(), (client + L"\\shell\\Corvane.dll").c_str(),
                          TRUE));
  const std::wstring host = corvane::ThisModuleFolder() + L"hosts\\plain\\explorer.exe";
  EXPECT_EQ(moduletest::RunHost(host, client + L"\\shell\\Corvane.dll").values[L"load"], L"ok");
  const std::vector<std::wstring> logs = logtest::FilesIn(client + L"\\log\\Corvane");
  ASSERT_EQ(logs.size(), 1u);
  EXPECT_NE(logtest::ReadUtf16(client + L"\\log\\Corvane\\" + logs[0]).find(L"]ower app = " + host + L"\r\n"), std::wstring::npos);
}

}  // namespace
