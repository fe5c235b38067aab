#include "client/launcher.h"

#include <shellapi.h>

#include <cstdint>

#include "client/process.h"
#include "client/wmi.h"
#include "core/command_line.h"
#include "core/launch_gate.h"
#include "log/logger.h"
#include "platform/module_path.h"
#include "platform/work_profile.h"

namespace cx {

namespace {

constexpr wchar_t kClientExe[] = L"Halvex.exe";

std::uint64_t NowUnixMs() noexcept {
  FILETIME now{};
  ::GetSystemTimeAsFileTime(&now);
  return corvane::core::UnixMsFromFileTime((static_cast<std::uint64_t>(now.dwHighDateTime) << 32) |
                                           now.dwLowDateTime);
}

std::uint64_t WindowNumber(HWND hwnd) noexcept {
  return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(hwnd));
}

// Starts the client with the parameters once the gate allows it. Parameters are built by the
// caller so that nothing here knows the command shapes.
std::wstring Launch(const std::wstring& parameters) {
  if (!canCommandExecute()) return std::wstring();
  const std::wstring folder = corvane::ClientFolder();
  const std::wstring exe = folder + kClientExe;
  // A missing client is not detected here: the command is simply lost, as the client would have
  // lost it had it been unable to start.
  const corvane::profile::Timed timed(corvane::profile::Work::ProcessStart);
  static_cast<void>(::ShellExecuteW(nullptr, L"open", exe.c_str(), parameters.empty() ? nullptr : parameters.c_str(),
                                    folder.c_str(), SW_SHOWNORMAL));
  return exe + parameters;
}

template <class Build>
std::wstring LaunchBuilt(Build&& build) noexcept {
  try {
    return Launch(build());
  } catch (...) {
    return std::wstring();
  }
}

}  // namespace

bool canCommandExecute() noexcept { return canCommandExecute(&QueryProcessCommandLine); }

bool canCommandExecute(const CommandLineReader& readCommandLine) noexcept {
  std::uint64_t startTime = 0;
  int num = 0;
  const bool ret = FindClientProcesses(kClientExe, startTime, num, readCommandLine);
  const std::uint64_t now = NowUnixMs();
  const corvane::core::LaunchGateDecision decision = corvane::core::DecideLaunch(ret, num, now, startTime);
  if (!decision.allowed) return false;
  LOG_INFO(L"cx::canCommandExecute", L"cx::canCommandExecute. diff:%lld ret:%d ms:%lld startTime:%lld num:%d",
           static_cast<long long>(decision.diffMs), ret ? 1 : 0, static_cast<long long>(now),
           static_cast<long long>(startTime), num);
  return true;
}

std::wstring exeCloudCommandLine(std::wstring_view word, std::wstring_view action) noexcept {
  return LaunchBuilt([&] { return corvane::core::CommandParameters(word, action); });
}

std::wstring exeCloudCommandLine(std::wstring_view word, std::wstring_view action, int x, int y) noexcept {
  return LaunchBuilt([&] { return corvane::core::CommandParameters(word, action, x, y); });
}

std::wstring exeCloudCommandLine(std::wstring_view word, std::wstring_view action, int x, int y, HWND hwnd) noexcept {
  return LaunchBuilt([&] { return corvane::core::CommandParameters(word, action, x, y, WindowNumber(hwnd)); });
}

std::wstring exeCloudCommandLine(std::wstring_view word, std::wstring_view action, int x, int y,
                                 std::wstring_view text) noexcept {
  return LaunchBuilt([&] { return corvane::core::CommandParameters(word, action, x, y, text); });
}

std::wstring exeCloudCommandLine(std::wstring_view word, std::wstring_view action, int x, int y, HWND hwnd,
                                 UINT flag) noexcept {
  return LaunchBuilt(
      [&] { return corvane::core::CommandParameters(word, action, x, y, WindowNumber(hwnd), flag); });
}

std::wstring exeCloudCommandLine(std::wstring_view word, std::wstring_view action, std::wstring_view list) noexcept {
  return LaunchBuilt([&] { return corvane::core::CommandParameters(word, action, list); });
}

std::wstring exeCloudAdvertising(std::wstring_view id, std::wstring_view title) noexcept {
  return LaunchBuilt([&] { return corvane::core::AdvertisingParameters(id, title); });
}

std::wstring startCloudApp(std::wstring_view /*word*/) noexcept {
  return LaunchBuilt([] { return std::wstring(); });
}

}  // namespace cx
