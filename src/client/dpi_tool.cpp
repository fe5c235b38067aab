#include "client/dpi_tool.h"

#include <shellapi.h>

#include <cstdint>

#include "core/command_line.h"
#include "platform/module_path.h"
#include "platform/work_profile.h"

namespace cx {

std::wstring startDpiTool(HWND hwnd) noexcept {
  try {
    const std::wstring folder = corvane::ThisModuleFolder();
    const std::wstring exe = folder + L"scalemend.exe";
    const std::wstring parameters =
        corvane::core::DpiToolParameters(static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(hwnd)));
    // Nothing depends on the tool having run: the zoom simply keeps its last published value.
    const corvane::profile::Timed timed(corvane::profile::Work::ProcessStart);
    static_cast<void>(
        ::ShellExecuteW(nullptr, L"open", exe.c_str(), parameters.c_str(), folder.c_str(), SW_SHOWNORMAL));
    return exe;
  } catch (...) {
    return std::wstring();
  }
}

}  // namespace cx
