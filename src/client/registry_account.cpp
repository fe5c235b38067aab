// What the bar shows about the account: its picture, its quota and the current promotion.
#include "client/registry.h"
#include "client/registry_user.h"

namespace regUtil {

using detail::CUserValues;
using detail::Level;

bool getLogoPath(std::wstring& userLogoPath) noexcept {
  constexpr const wchar_t* kFunction = L"regUtil::getLogoPath";
  try {
    CUserValues values;
    // Deliberately the bLogin wording, although userLogoPath is the value tested.
    if (!values.Open(kFunction, Level::Debug, {L"userLogoPath"}, L"%s not exist or %s\\bLogin not exist")) {
      return false;
    }
    std::wstring path = values.Read(L"userLogoPath");
    LOG_DEBUG(kFunction, L"userLogoPath = %s", path.c_str());
    if (!IsFile(path)) {
      LOG_DEBUG(kFunction, L"userLogoPath value is invalid file");
      return false;
    }
    userLogoPath = std::move(path);
    return true;
  } catch (...) {
    return false;
  }
}

bool getCloudSpace(std::uint64_t& total, std::uint64_t& used) noexcept {
  constexpr const wchar_t* kFunction = L"regUtil::getCloudSpace";
  // A quota of 1 GiB or less (or an unreadable one) is not real account data.
  constexpr std::uint64_t kMinimumTotal = 0x40000000;
  try {
    CUserValues values;
    if (!values.Open(kFunction, Level::Info, {L"totalSpace", L"usedSpace"},
                     L"%s not exist or %s\\totalSpace not exist or %s\\usedSpace not exis")) {
      return false;
    }
    const std::wstring totalText = values.Read(L"totalSpace");
    const std::wstring usedText = values.Read(L"usedSpace");
    // Negative texts wrap to huge unsigned numbers and therefore pass the quota test.
    const auto totalBytes = static_cast<std::uint64_t>(StrToInt64(totalText));
    const auto usedBytes = static_cast<std::uint64_t>(StrToInt64(usedText));
    LOG_DEBUG(kFunction, L"%s\\totalSpace value = %s, %s\\usedSpace value = %s", values.Path(), totalText.c_str(),
              values.Path(), usedText.c_str());
    if (totalBytes <= kMinimumTotal) return false;
    total = totalBytes;
    used = usedBytes;
    return true;
  } catch (...) {
    return false;
  }
}

bool getAdvertisingInfo(std::wstring& advertisingId, std::wstring& advertisingTitle) noexcept {
  constexpr const wchar_t* kFunction = L"regUtil::getAdvertisingInfo";
  try {
    CUserValues values;
    if (!values.Open(kFunction, Level::Info, {L"advertisingId", L"advertisingTitle"},
                     L"%s not exist or %s\\advertisingId not exist or %s\\advertisingTitle not exis")) {
      return false;
    }
    std::wstring id = values.Read(L"advertisingId");
    std::wstring title = values.Read(L"advertisingTitle");
    LOG_DEBUG(kFunction, L"%s\\advertisingId value = %s, %s\\advertisingTitle value = %s", values.Path(), id.c_str(),
              values.Path(), title.c_str());
    if (id.empty() || title.empty()) return false;
    advertisingId = std::move(id);
    advertisingTitle = std::move(title);
    return true;
  } catch (...) {
    return false;
  }
}

}  // namespace regUtil
