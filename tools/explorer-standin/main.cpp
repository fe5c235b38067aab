// explorer.exe, the stand-in: see README.md beside this file and options.h for the command line,
// command_interpreter.h for the control channel's commands.
#include <windows.h>
#include <commctrl.h>
#include <ole2.h>
#include <shellapi.h>

#include <string>
#include <vector>

#include "command_interpreter.h"
#include "control_pipe.h"
#include "options.h"
#include "platform/handles.h"
#include "standin_log.h"
#include "window_set.h"

namespace explorer_standin {
namespace {

std::vector<std::wstring> Arguments() {
  std::vector<std::wstring> arguments;
  int count = 0;
  LPWSTR* list = ::CommandLineToArgvW(::GetCommandLineW(), &count);
  if (list == nullptr) return arguments;
  for (int index = 1; index < count; ++index) arguments.emplace_back(list[index]);
  ::LocalFree(list);
  return arguments;
}

std::wstring TempFolder() {
  wchar_t path[MAX_PATH + 1] = {};
  const DWORD length = ::GetTempPathW(MAX_PATH + 1, path);
  return length != 0 && length <= MAX_PATH ? std::wstring(path, length) : std::wstring(L".\\");
}

std::string ReadFileBytes(const std::wstring& path) {
  std::string bytes;
  const corvane::unique_file file(::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
  if (!file) return bytes;
  char buffer[4096];
  DWORD read = 0;
  while (::ReadFile(file.get(), buffer, sizeof buffer, &read, nullptr) && read > 0) bytes.append(buffer, read);
  return bytes;
}

// A script is a file of control commands, one per line; blank lines and lines starting "#" are
// skipped. It runs to its end or to "quit"; the replies go to the log.
bool RunScript(const std::wstring& path, CommandInterpreter& interpreter) {
  std::string bytes = ReadFileBytes(path);
  if (bytes.compare(0, 3, "\xEF\xBB\xBF") == 0) bytes.erase(0, 3);
  Log(L"script " + path + L" (" + std::to_wstring(bytes.size()) + L" bytes)");
  size_t start = 0;
  while (start < bytes.size()) {
    size_t end = bytes.find('\n', start);
    if (end == std::string::npos) end = bytes.size();
    std::string line = bytes.substr(start, end - start);
    start = end + 1;
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.pop_back();
    if (line.empty() || line[0] == '#') continue;
    const int size = ::MultiByteToWideChar(CP_UTF8, 0, line.data(), static_cast<int>(line.size()), nullptr, 0);
    std::wstring command(static_cast<size_t>(size > 0 ? size : 0), L'\0');
    ::MultiByteToWideChar(CP_UTF8, 0, line.data(), static_cast<int>(line.size()), command.data(), size);
    Log(L"script> " + command);
    const Reply reply = interpreter.Execute(command);
    Log(L"script< " + reply.text);
    if (reply.quit) return true;
  }
  return false;
}

int Run() {
  std::wstring error;
  const auto options = ParseOptions(Arguments(), ::GetCurrentProcessId(), TempFolder(), error);
  if (!options) {
    // No console to complain to: the default log is the one place left.
    OpenLog(TempFolder() + L"corvane-explorer-" + std::to_wstring(::GetCurrentProcessId()) + L".log");
    Log(L"explorer stand-in: " + error);
    return 2;
  }
  OpenLog(options->log);
  Log(L"explorer stand-in started, process " + std::to_wstring(::GetCurrentProcessId()));

  INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_BAR_CLASSES | ICC_STANDARD_CLASSES};
  ::InitCommonControlsEx(&controls);

  const corvane::unique_handle exitEvent(::CreateEventW(nullptr, TRUE, FALSE, nullptr));
  if (!exitEvent) return 3;
  WindowSet windows(options->width, options->height, options->keepRunning, exitEvent.get());
  CommandInterpreter interpreter(windows);
  ControlPipe pipe(options->pipe, [&interpreter](const std::wstring& line) { return interpreter.Execute(line); },
                   [&exitEvent] { ::SetEvent(exitEvent.get()); });
  if (!pipe.Start(error)) {
    Log(error);
    return 4;
  }

  bool quit = false;
  for (const std::wstring& location : options->open) {
    const Reply reply = interpreter.Execute(L"open " + location);
    Log(L"--open=" + location + L": " + reply.text);
  }
  if (!options->script.empty()) quit = RunScript(options->script, interpreter);
  // Started with windows to show but none could be opened: nothing is left for a user to close.
  const bool nothingOpen = !options->keepRunning && (!options->open.empty() || !options->script.empty()) &&
                           windows.Ids().empty();
  if (!quit && !nothingOpen) ::WaitForSingleObject(exitEvent.get(), INFINITE);

  pipe.Stop();
  windows.CloseAll();
  Log(L"explorer stand-in ends");
  CloseLog();
  return 0;
}

}  // namespace
}  // namespace explorer_standin

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
  try {
    return explorer_standin::Run();
  } catch (...) {
    explorer_standin::Log(L"explorer stand-in stopped on an exception");
    return 1;
  }
}
