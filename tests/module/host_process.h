#pragma once
// Runs a copy of the host stand-in, or Wine's regsvr32, on the built DLL.
#include <windows.h>

#include <map>
#include <string>

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
HostRun RunHost(const std::wstring& host, const std::wstring& dll, const std::wstring& calls = std::wstring());

// Wine's own regsvr32.exe with the given switches on a DLL (by default the Corvane.dll beside this
// program).
HostRun Regsvr32(const std::wstring& switches, const std::wstring& dll = std::wstring());

}  // namespace moduletest
