#include "client_state.h"

#include <windows.h>

#include <gtest/gtest.h>

namespace testsupport {

namespace {

const wchar_t kRoot[] = L"Software\\varnowe\\Halvex";
const wchar_t kUser[] = L"u0123456789";

void SetText(const std::wstring& subkey, const wchar_t* name, const std::wstring& text) {
  ASSERT_EQ(::RegSetKeyValueW(HKEY_CURRENT_USER, subkey.c_str(), name, REG_SZ, text.c_str(),
                              static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))),
            ERROR_SUCCESS);
}

}  // namespace

void PublishClientState(ClientState state, const std::wstring& syncPath) {
  ClearClientState();
  const std::wstring userKey = std::wstring(kRoot) + L"\\" + kUser;
  SetText(kRoot, L"currentUser", kUser);
  SetText(userKey, L"bLogin", state == ClientState::kSignedOut ? L"0" : L"1");
  SetText(userKey, L"bOpenSync", state == ClientState::kSyncReady ? L"1" : L"0");
  SetText(userKey, L"syncPath", syncPath);
}

void ClearClientState() { ::RegDeleteTreeW(HKEY_CURRENT_USER, kRoot); }

}  // namespace testsupport
