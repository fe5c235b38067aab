#pragma once
// Runs a copy of the host stand-in, or Wine's regsvr32, on the built DLL.
#include <windows.h>

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>

#include "log_files.h"
#include "platform/handles.h"
#include "platform/module_path.h"
#include "window_probe.h"

namespace moduletest {

struct HostRun {
  DWORD exitCode = 0;
  bool finished = false;
  // "key=value" lines of the host's output, split at the first '='.
  std::map<std::wstring, std::wstring> values;
  std::wstring output;
};

// Starts `host` with the DLL path as its argument, followed by `calls` when given, and waits for it
// (a few seconds at most).
inline HostRun RunHost(const std::wstring& host, const std::wstring& dll, const std::wstring& calls = std::wstring()) {
  HostRun run;
  SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
  corvane::unique_handle readEnd, writeEnd;
  if (!::CreatePipe(readEnd.put(), writeEnd.put(), &inherit, 0)) {
    ADD_FAILURE() << "CreatePipe: " << ::GetLastError();
    return run;
  }
  ::SetHandleInformation(readEnd.get(), HANDLE_FLAG_INHERIT, 0);

  const STARTUPINFOW startup{.cb = sizeof(STARTUPINFOW), .dwFlags = STARTF_USESTDHANDLES,
                             .hStdOutput = writeEnd.get(), .hStdError = writeEnd.get()};
  const std::wstring commandLine = L"\"" + host + L"\" \"" + dll + L"\"" + (calls.empty() ? L"" : L" " + calls);
  const corvane::unique_handle process = testsupport::StartProcess(host, commandLine, startup, CREATE_NO_WINDOW);
  if (!process) return run;
  // Only the child holds the write end now, so the pipe ends when it exits.
  writeEnd.reset();

  // The output is a few hundred bytes, far below the pipe's buffer: waiting first cannot block the child,
  // and after the wait everything it wrote is in the pipe.
  if (::WaitForSingleObject(process.get(), 20000) != WAIT_OBJECT_0) {
    ::TerminateProcess(process.get(), 99);
    ADD_FAILURE() << testing::PrintToString(host) << " did not finish";
    return run;
  }
  ::GetExitCodeProcess(process.get(), &run.exitCode);
  run.finished = true;

  std::string bytes;
  char buffer[4096];
  // Only what the child wrote is read: a helper it started (Wine starts its desktop process for a
  // program that touches the window station) may inherit the write end and keep the pipe open.
  DWORD read = 0, available = 0;
  while (::PeekNamedPipe(readEnd.get(), nullptr, 0, nullptr, &available, nullptr) && available > 0 &&
         ::ReadFile(readEnd.get(), buffer, sizeof buffer, &read, nullptr) && read > 0) {
    bytes.append(buffer, read);
  }
  run.output = logtest::Wide(bytes);
  std::wistringstream lines(run.output);
  for (std::wstring line; std::getline(lines, line);) {
    if (const size_t equals = line.find(L'='); equals != std::wstring::npos) {
      run.values[line.substr(0, equals)] = line.substr(equals + 1);
    }
  }
  return run;
}

// Wine's own regsvr32.exe with the given switches on a DLL (by default the Corvane.dll beside this
// program).
inline HostRun Regsvr32(const std::wstring& switches, const std::wstring& dll = std::wstring()) {
  wchar_t system[MAX_PATH] = {};
  ::GetSystemDirectoryW(system, MAX_PATH);
  const std::wstring target = dll.empty() ? corvane::ThisModuleFolder() + L"Corvane.dll" : dll;
  return RunHost(std::wstring(system) + L"\\regsvr32.exe", target, switches);
}

}  // namespace moduletest
