#pragma once
// The client's published state, read afresh from HKCU\Software\varnowe\Halvex at every call.
// Each reader validates what it finds, logs it under its own name and reports through a bool and
// out-parameters, which it touches only on success (getDpiZoom: only when the text parses).
// Stateless and thread-agnostic; nothing here throws.
#include <cstdint>
#include <string>

#include "client/reg_util.h"

namespace regUtil {

// The root key and "currentUser" exist; the text is returned however short it is.
bool getCurrentUser(std::wstring& currentUser) noexcept;

// A valid user whose "bLogin" reads as 1.
bool checkReadyLogin() noexcept;

// A valid user signed in ("bLogin" 1) with sync switched off ("bOpenSync" below 1).
bool checkReadyLoginNotOpenSync() noexcept;

// A valid user signed in with sync on and a "syncPath" naming an existing folder; the path comes
// back with backslashes and exactly one trailing backslash added when it had none.
bool checkReadyLoginAndOpenSync(std::wstring& syncPath) noexcept;

// A valid user whose "userLogoPath" names an existing file.
bool getLogoPath(std::wstring& userLogoPath) noexcept;

// A valid user whose "totalSpace" is above 1 GiB (compared unsigned); anything less is "no data".
bool getCloudSpace(std::uint64_t& total, std::uint64_t& used) noexcept;

// A valid user with a non-empty "advertisingId" and "advertisingTitle".
bool getAdvertisingInfo(std::wstring& advertisingId, std::wstring& advertisingTitle) noexcept;

// The zoom the client publishes for a window under the "dpiZoom" key, the window's number written
// in decimal as the value name. True whenever the value exists; an unparsable text leaves zoom as
// the caller initialised it.
bool getDpiZoom(std::uint64_t windowNumber, double& zoom) noexcept;

}  // namespace regUtil
