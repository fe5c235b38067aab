#pragma once
// The stand-in's command line.
//
//   explorer.exe [--open=<location>]... [--width=<px>] [--height=<px>] [--script=<file>]
//                [--pipe=<name>] [--log=<file>] [--keep-running]
//
// A location is a folder path or "::ThisPC" (or any parsing name the shell accepts, "::{GUID}").
#include <optional>
#include <string>
#include <vector>

namespace explorer_standin {

struct Options {
  std::vector<std::wstring> open;
  int width = 1000;
  int height = 680;
  std::wstring script;
  std::wstring pipe;  // full pipe path, "\\.\pipe\..."
  std::wstring log;
  // Without it the process ends when its last window closes, like a window a user opened.
  bool keepRunning = false;
};

// Parses the arguments after the program name; nullopt and an error text when one is not understood.
std::optional<Options> ParseOptions(const std::vector<std::wstring>& arguments, unsigned long processId,
                                    const std::wstring& tempFolder, std::wstring& error);

}  // namespace explorer_standin
