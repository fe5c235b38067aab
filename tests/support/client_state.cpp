#include "client_state.h"

#include "client_keys.h"

#include <windows.h>

#include <gtest/gtest.h>

namespace testsupport {

namespace {


void SetText(const std::wstring& subkey, const wchar_t* name, const std::wstring& text) {
  ASSERT_EQ(::RegSetKeyValueW(HKEY_CURRENT_USER, subkey.c_str(), name, REG_SZ, text.c_str(),
                              static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))),
            ERROR_SUCCESS);
}

}  // namespace

void PublishClientState(ClientState state, const std::wstring& syncPath) {
  ClearClientState();
  const std::wstring userKey = kTestUserKey;
  SetText(kClientKey, L"currentUser", kTestUser);
  SetText(userKey, L"bLogin", state == ClientState::kSignedOut ? L"0" : L"1");
  SetText(userKey, L"bOpenSync", state == ClientState::kSyncReady ? L"1" : L"0");
  SetText(userKey, L"syncPath", syncPath);
}

void ClearClientState() { ::RegDeleteTreeW(HKEY_CURRENT_USER, kClientKey); }

}  // namespace testsupport
