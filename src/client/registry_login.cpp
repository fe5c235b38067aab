// The sign-in and sync state: who is signed in, whether sync is on, and where the sync folder is.
#include "client/registry.h"
#include "client/registry_user.h"
#include "core/paths.h"
#include "core/sync_path.h"

namespace regUtil {

using detail::CUserValues;
using detail::Level;

namespace {

// Both sync readers open the same two flags with the same message (cut short at "exis", as the
// log has always shown it, so tools that match it keep working) and log them the same way.
bool OpenLoginAndSync(const wchar_t* function, CUserValues& values, std::wstring& login, std::wstring& openSync) {
  if (!values.Open(function, Level::Info, {L"bLogin", L"bOpenSync"},
                   L"%s not exist or %s\\bLogin not exist or %s\\bOpenSync not exis")) {
    return false;
  }
  login = values.Read(L"bLogin");
  openSync = values.Read(L"bOpenSync");
  LOG_DEBUG(function, L"%s\\bLogin value = %s, %s\\bOpenSync value = %s", values.Path(), login.c_str(),
            values.Path(), openSync.c_str());
  return true;
}

}  // namespace

bool getCurrentUser(std::wstring& currentUser) noexcept {
  constexpr const wchar_t* kFunction = L"regUtil::getCurrentUser";
  try {
    std::wstring user;
    if (!detail::ReadCurrentUser(kFunction, Level::Debug, user)) return false;
    currentUser = std::move(user);
    LOG_DEBUG(kFunction, L"currentUser = %s", currentUser.c_str());
    return true;
  } catch (...) {
    return false;
  }
}

bool checkReadyLogin() noexcept {
  constexpr const wchar_t* kFunction = L"regUtil::checkReadyLogin";
  try {
    CUserValues values;
    if (!values.Open(kFunction, Level::Info, {L"bLogin"}, L"%s not exist or %s\\bLogin not exist")) return false;
    const std::wstring login = values.Read(L"bLogin");
    LOG_DEBUG(kFunction, L"%s\\bLogin value = %s", values.Path(), login.c_str());
    return StrToInt(login) == 1;
  } catch (...) {
    return false;
  }
}

bool checkReadyLoginNotOpenSync() noexcept {
  constexpr const wchar_t* kFunction = L"regUtil::checkReadyLoginNotOpenSync";
  try {
    CUserValues values;
    std::wstring login, openSync;
    if (!OpenLoginAndSync(kFunction, values, login, openSync)) return false;
    return StrToInt(login) == 1 && StrToInt(openSync) < 1;
  } catch (...) {
    return false;
  }
}

bool checkReadyLoginAndOpenSync(std::wstring& syncPath) noexcept {
  constexpr const wchar_t* kFunction = L"regUtil::checkReadyLoginAndOpenSync";
  try {
    CUserValues values;
    std::wstring login, openSync;
    if (!OpenLoginAndSync(kFunction, values, login, openSync)) return false;
    if (!(StrToInt(login) == 1 && StrToInt(openSync) >= 1 && values.Has(L"syncPath"))) {
      LOG_DEBUG(kFunction, L"%s\\syncPath value invalid", values.Path());
      return false;
    }

    std::wstring path = values.Read(L"syncPath");
    LOG_DEBUG(kFunction, L"syncPath = %s", path.c_str());
    if (corvane::core::DropOneTrailingBackslash(path)) LOG_DEBUG(kFunction, L"update syncPath = %s", path.c_str());
    corvane::core::SlashesToBackslashes(path);
    if (!IsDirectory(path)) {
      LOG_DEBUG(kFunction, L"syncPath value is invalid dir");
      return false;
    }
    // The folder check compares by prefix, so the published form always ends in a separator.
    syncPath = corvane::core::WithTrailingBackslash(std::move(path));
    return true;
  } catch (...) {
    return false;
  }
}

}  // namespace regUtil
