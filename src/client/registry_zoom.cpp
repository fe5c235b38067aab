// The zoom factor the client publishes per Explorer window.
#include "client/registry.h"
#include "client/reg_util_key.h"
#include "core/numbers.h"
#include "log/logger.h"

namespace regUtil {

bool getDpiZoom(std::uint64_t windowNumber, double& zoom) noexcept {
  constexpr const wchar_t* kFunction = L"regUtil::getDpiZoom";
  try {
    const std::wstring name = corvane::core::UnsignedDecimal(windowNumber);
    const CReadKey key(L"Software\\varnowe\\Halvex\\dpiZoom");
    const std::optional<DWORD> size = key.ValueSize(name.c_str());
    if (!size) {
      LOG_DEBUG(kFunction,
                L"HKEY_CURRENT_USER\\Software\\varnowe\\Halvex\\dpiZoom not exist or "
                L"HKEY_CURRENT_USER\\Software\\varnowe\\Halvex\\dpiZoom\\%s not exist",
                name.c_str());
      return false;
    }
    const std::wstring text = key.ReadText(name.c_str(), size);
    // A text that is not a number still counts as published: the caller keeps its current zoom.
    if (const auto parsed = corvane::core::ParseDecimalReal(text)) zoom = *parsed;
    LOG_DEBUG(kFunction, L"dpiZoom = %s", text.c_str());
    return true;
  } catch (...) {
    return false;
  }
}

}  // namespace regUtil
