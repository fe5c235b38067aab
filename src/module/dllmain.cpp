// Process entry: the logger comes first, then the check that keeps the add-in out of every
// process but Explorer and the registration tool.
#include <windows.h>

#include "core/host_check.h"
#include "log/logger.h"
#include "module/corvane_module.h"
#include "platform/window.h"

namespace {

BOOL OnProcessAttach(DWORD reason, LPVOID reserved) {
  InitLogger();
  LOG_INFO(L"DllMain", L"DLL PROCESS ATTACH");

  wchar_t hostPath[MAX_PATH] = {};
  if (::GetModuleFileNameW(nullptr, hostPath, MAX_PATH) == 0) return FALSE;
  // "ower app" is the log's established wording; tools grep for it as it stands.
  LOG_INFO(L"DllMain", L"ower app = %s", hostPath);

  // Refusing here unloads the DLL; the logger stays until the detach Windows sends after it.
  if (!corvane::core::IsAllowedHost(hostPath)) return FALSE;
  return g_CorvaneModule.DllMain(reason, reserved);
}

BOOL OnProcessDetach(DWORD reason, LPVOID reserved) {
  wchar_t text[MAX_PATH] = {};
  ::lstrcpynW(text, L"DLL_PROCESS_DETACH", MAX_PATH);
  ::OutputDebugStringW(text);
  LOG_INFO(L"DllMain", L"DLL PROCESS DETACH");
  if (g_pLogger != nullptr) {
    delete g_pLogger;
    g_pLogger = nullptr;
  }
  // A class left registered would point into this module after it is unmapped.
  corvane::UnregisterModuleWindowClasses();
  return g_CorvaneModule.DllMain(reason, reserved);
}

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID reserved) {
  try {
    switch (reason) {
      case DLL_PROCESS_ATTACH:
        return OnProcessAttach(reason, reserved);
      case DLL_PROCESS_DETACH:
        return OnProcessDetach(reason, reserved);
      default:
        return g_CorvaneModule.DllMain(reason, reserved);
    }
  } catch (...) {
    // A loader callback must not throw; failing the attach is the safe answer.
    return reason == DLL_PROCESS_ATTACH ? FALSE : TRUE;
  }
}
