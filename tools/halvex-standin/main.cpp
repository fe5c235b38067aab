// Halvex.exe for tests and demonstrations: a stand-in for the cloud client that records how it was
// started, may stay alive for a while and may start renderer children like the real client does.
//
// Settings, each read from the environment first and overridden by an option on its own command
// line (the launcher starts it with the real protocol command line, so tests reach it through the
// environment; tests that start it directly pass options):
//   HALVEX_STANDIN_RECORD     --record=<path>     record file; default <own folder>\halvex-record.txt
//   HALVEX_STANDIN_LINGER_MS  --linger-ms=<ms>    how long to stay alive after recording; default 0
//   HALVEX_STANDIN_CHILDREN   --children=<n>      renderer children to start; default 0
// Unknown arguments (the " -shellpopwin ..." command) are ignored. A process started with an
// argument beginning "--type=" is a child: it records itself but never starts children.
// Children are started as  "<own path>" --type=renderer --record="<path>" --linger-ms=<ms>
// after the parent has written its own record, so the parent's line comes first.
#include <windows.h>

#include <string>
#include <vector>

#include "platform/handles.h"
#include "standin_record.h"

namespace {

struct Settings {
  std::wstring record;
  unsigned long lingerMs = 0;
  unsigned long children = 0;
  bool isChild = false;
};

std::wstring Setting(const std::vector<std::wstring>& arguments, std::wstring_view option, const wchar_t* variable,
                     std::wstring fallback) {
  if (auto value = standin::Option(arguments, option)) return *value;
  if (auto value = standin::Environment(variable)) return *value;
  return fallback;
}

Settings ReadSettings() {
  const std::vector<std::wstring> arguments = standin::Arguments();
  Settings settings;
  settings.record = Setting(arguments, L"--record=", L"HALVEX_STANDIN_RECORD", standin::OwnFolder() + L"halvex-record.txt");
  settings.lingerMs = standin::Number(Setting(arguments, L"--linger-ms=", L"HALVEX_STANDIN_LINGER_MS", L"0"));
  settings.children = standin::Number(Setting(arguments, L"--children=", L"HALVEX_STANDIN_CHILDREN", L"0"));
  settings.isChild = standin::Option(arguments, L"--type=").has_value();
  return settings;
}

bool StartChild(const Settings& settings) {
  const std::wstring self = standin::OwnFolder() + L"Halvex.exe";
  std::wstring commandLine = L"\"" + self + L"\" --type=renderer --record=\"" + settings.record +
                             L"\" --linger-ms=" + std::to_wstring(settings.lingerMs);
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION info{};
  if (!::CreateProcessW(self.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &info)) {
    return false;
  }
  const corvane::unique_handle process(info.hProcess);
  const corvane::unique_handle thread(info.hThread);
  return true;
}

int Run() {
  const Settings settings = ReadSettings();
  if (!standin::AppendStartRecord(settings.record)) return 2;
  int failed = 0;
  if (!settings.isChild) {
    for (unsigned long i = 0; i < settings.children; ++i) {
      if (!StartChild(settings)) failed = 3;
    }
  }
  if (settings.lingerMs != 0) ::Sleep(settings.lingerMs);
  return failed;
}

}  // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
  try {
    return Run();
  } catch (...) {
    return 1;
  }
}
