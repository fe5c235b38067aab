// The built Corvane.dll in stand-in hosts: which hosts it agrees to run in, what its entry points
// answer there, and the attach and detach lines it logs.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "host_process.h"
#include "log_files.h"

namespace {


struct HostCase {
  const wchar_t* host;  // under <program folder>\hosts\ .
  bool admitted;
};

std::wstring LogFolder() {
  // <client>\shell\ holds the DLL; its log goes to <client>\log\Corvane\ .
  std::wstring shell = moduletest::ProgramFolder();
  shell.pop_back();
  return shell.substr(0, shell.rfind(L'\\') + 1) + L"log\\Corvane\\";
}

// Runs one host and checks its answers, then the log lines of the DLL instance it loaded.
void CheckHost(const HostCase& c) {
  SCOPED_TRACE(testing::PrintToString(std::wstring(c.host)));
  const std::wstring hostPath = moduletest::ProgramFolder() + L"hosts\\" + c.host;
  const std::wstring dllPath = moduletest::ProgramFolder() + L"Corvane.dll";
  const std::wstring logFolder = LogFolder();
  const std::vector<std::wstring> before = logtest::FilesIn(logFolder);

  const moduletest::HostRun run = moduletest::RunHost(hostPath, dllPath);
  ASSERT_TRUE(run.finished);
  // The host must see itself under the very name it was started by, capitals included.
  ASSERT_EQ(run.values.count(L"host"), 1u) << testing::PrintToString(run.output);
  EXPECT_EQ(run.values.at(L"host"), hostPath);

  if (c.admitted) {
    EXPECT_EQ(run.exitCode, 0u) << testing::PrintToString(run.output);
    const std::vector<std::pair<std::wstring, std::wstring>> expected = {
        {L"load", L"ok"},
        {L"DllGetClassObject", L"0x80040111 object=null"},  // CLASS_E_CLASSNOTAVAILABLE
        {L"DllCanUnloadNow", L"0x00000000"},
        {L"free", L"ok"},
    };
    for (const auto& [key, value] : expected) {
      EXPECT_EQ(run.values.count(key) ? run.values.at(key) : L"(missing)", value) << key;
    }
  } else {
    EXPECT_EQ(run.exitCode, 2u) << testing::PrintToString(run.output);
    // The loader reports the entry point's refusal, not a missing or broken file.
    EXPECT_EQ(run.values.count(L"load") ? run.values.at(L"load") : L"", L"failed error=1114");  // ERROR_DLL_INIT_FAILED
  }

  // Among the files that appeared during the run, exactly one names this host.
  std::vector<std::wstring> ours;
  std::vector<std::wstring> lines;
  for (const std::wstring& name : logtest::FilesIn(logFolder)) {
    if (std::find(before.begin(), before.end(), name) != before.end()) continue;
    // Other programs' files come and go in the same folder.
    std::vector<std::wstring> candidate = logtest::SplitCrLf(logtest::ReadUtf16(logFolder + name, true));
    if (std::any_of(candidate.begin(), candidate.end(),
                    [&](const std::wstring& line) { return line.ends_with(L"]ower app = " + hostPath); })) {
      ours.push_back(name);
      lines = std::move(candidate);
    }
  }
  ASSERT_EQ(ours.size(), 1u);
  std::vector<std::wstring> messages;
  for (const std::wstring& text : lines) {
    logtest::LogLine line;
    EXPECT_TRUE(logtest::ParseLogLine(text, line)) << testing::PrintToString(text);
    EXPECT_EQ(line.tag, L"Info");
    EXPECT_EQ(line.file, L"dllmain.cpp");
    EXPECT_EQ(line.function, L"DllMain");
    messages.push_back(line.message);
  }
  // A refused attach is followed by the detach that deletes the logger, as for a freed DLL.
  const std::vector<std::wstring> expected = {L"DLL PROCESS ATTACH", L"ower app = " + hostPath, L"DLL PROCESS DETACH"};
  EXPECT_EQ(messages, expected);
  ::DeleteFileW((logFolder + ours.front()).c_str());
}

TEST(DllHost, ExplorerAndTheRegistrationToolLoadIt) {
  const HostCase cases[] = {
      {L"plain\\explorer.exe", true},
      {L"upper\\EXPLORER.EXE", true},
      {L"regsvr\\regsvr32.exe", true},
      {L"\u8d44\u6e90\u7ba1\u7406\u5668\\explorer.exe", true},
  };
  for (const HostCase& c : cases) CheckHost(c);
}

TEST(DllHost, EveryOtherHostIsRefused) {
  const HostCase cases[] = {
      {L"other\\myexplorer.exe", false},
      // U+0145: a narrowing lower-case would turn it into 'e'.
      {L"other\\\u0145XPLORER.EXE", false},
  };
  for (const HostCase& c : cases) CheckHost(c);
}

TEST(DllHost, ADllPathPast260CharactersStillLogsBesideTheClient) {
  // <client>\shell\Corvane.dll of 265 characters: the 260-character read cuts into the file name,
  // and the folder before its last backslash is still the DLL's own.
  const logtest::TempFolder scratch;
  const std::wstring tail = L"\\shell\\Corvane.dll";
  const std::wstring client = scratch.Path() + L"\\" + std::wstring(265 - scratch.Path().size() - 1 - tail.size(), L'c');
  const std::wstring dll = client + tail;
  ASSERT_EQ(dll.size(), 265u);
  if (!::CreateDirectoryW(client.c_str(), nullptr) || !::CreateDirectoryW((client + L"\\shell").c_str(), nullptr) ||
      !::CopyFileW((moduletest::ProgramFolder() + L"Corvane.dll").c_str(), dll.c_str(), TRUE) ||
      !::CreateDirectoryW((client + L"\\log").c_str(), nullptr) ||
      !::CreateDirectoryW((client + L"\\log\\Corvane").c_str(), nullptr)) {
    GTEST_SKIP() << "this system refuses paths past 260 characters";
  }
  const std::wstring hostPath = moduletest::ProgramFolder() + L"hosts\\plain\\explorer.exe";
  const moduletest::HostRun run = moduletest::RunHost(hostPath, dll);
  ASSERT_TRUE(run.finished);
  EXPECT_EQ(run.values.count(L"load") ? run.values.at(L"load") : L"", L"ok") << testing::PrintToString(run.output);
  const std::vector<std::wstring> logs = logtest::FilesIn(client + L"\\log\\Corvane");
  ASSERT_EQ(logs.size(), 1u);
  const std::vector<std::wstring> lines = logtest::SplitCrLf(logtest::ReadUtf16(client + L"\\log\\Corvane\\" + logs[0]));
  EXPECT_TRUE(std::any_of(lines.begin(), lines.end(),
                          [&](const std::wstring& line) { return line.ends_with(L"]ower app = " + hostPath); }));
}

}  // namespace
