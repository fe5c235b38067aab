#include "options.h"

#include <cwchar>

namespace explorer_standin {

namespace {

constexpr std::wstring_view kPipePrefix = L"\\\\.\\pipe\\";

bool Value(const std::wstring& argument, std::wstring_view name, std::wstring& value) {
  if (argument.size() < name.size() || argument.compare(0, name.size(), name) != 0) return false;
  value = argument.substr(name.size());
  return true;
}

bool Size(const std::wstring& text, int& out) {
  if (text.empty()) return false;
  wchar_t* end = nullptr;
  const long value = std::wcstol(text.c_str(), &end, 10);
  if (end == nullptr || *end != L'\0' || value < 100 || value > 10000) return false;
  out = static_cast<int>(value);
  return true;
}

}  // namespace

std::optional<Options> ParseOptions(const std::vector<std::wstring>& arguments, unsigned long processId,
                                    const std::wstring& tempFolder, std::wstring& error) {
  Options options;
  for (const std::wstring& argument : arguments) {
    std::wstring value;
    if (Value(argument, L"--open=", value) && !value.empty()) {
      options.open.push_back(value);
    } else if (Value(argument, L"--width=", value)) {
      if (!Size(value, options.width)) {
        error = L"bad width: " + argument;
        return std::nullopt;
      }
    } else if (Value(argument, L"--height=", value)) {
      if (!Size(value, options.height)) {
        error = L"bad height: " + argument;
        return std::nullopt;
      }
    } else if (Value(argument, L"--script=", value) && !value.empty()) {
      options.script = value;
    } else if (Value(argument, L"--pipe=", value) && !value.empty()) {
      options.pipe = value.compare(0, kPipePrefix.size(), kPipePrefix) == 0 ? value : std::wstring(kPipePrefix) + value;
    } else if (Value(argument, L"--log=", value) && !value.empty()) {
      options.log = value;
    } else if (argument == L"--keep-running") {
      options.keepRunning = true;
    } else {
      error = L"unknown argument: " + argument;
      return std::nullopt;
    }
  }
  const std::wstring pid = std::to_wstring(processId);
  if (options.pipe.empty()) options.pipe = std::wstring(kPipePrefix) + L"corvane-explorer-" + pid;
  if (options.log.empty()) options.log = tempFolder + L"corvane-explorer-" + pid + L".log";
  return options;
}

}  // namespace explorer_standin
