#pragma once
// Where the client publishes its state under HKCU, spelled once for every test, and that state as
// Halvex writes it, for tests that load the add-in into a host and need it to see a signed-out,
// signed-in or sync-ready user. Plain constant arrays: they are constant-initialised, so a global
// built from them at start-up never sees them empty (clang for the mingw target does not keep the
// order of inline variables' dynamic initialisers).
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

namespace testsupport {

inline constexpr wchar_t kClientKey[] = L"Software\\varnowe\\Halvex";
inline constexpr wchar_t kTestUser[] = L"u0123456789";  // 11 characters: the shortest valid user
inline constexpr wchar_t kTestUserKey[] = L"Software\\varnowe\\Halvex\\u0123456789";
inline constexpr wchar_t kZoomKey[] = L"Software\\varnowe\\Halvex\\dpiZoom";

enum class ClientState { kSignedOut, kSignedInNoSync, kSyncReady };

// A REG_SZ value under HKCU, its terminator included, as the client writes its values.
inline void SetText(const std::wstring& subkey, const std::wstring& name, const std::wstring& text) {
  ASSERT_EQ(::RegSetKeyValueW(HKEY_CURRENT_USER, subkey.c_str(), name.c_str(), REG_SZ, text.c_str(),
                              static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))), ERROR_SUCCESS);
}

// One current user with these values, each written over in place.
inline void WriteClientState(const std::wstring& login, const std::wstring& openSync, const std::wstring& syncPath) {
  SetText(kClientKey, L"currentUser", kTestUser);
  SetText(kTestUserKey, L"bLogin", login);
  SetText(kTestUserKey, L"bOpenSync", openSync);
  SetText(kTestUserKey, L"syncPath", syncPath);
}

inline void ClearClientState() { ::RegDeleteTreeW(HKEY_CURRENT_USER, kClientKey); }

// Replaces the whole Halvex key with one current user in the given state; syncPath is published in
// every state, as the client leaves it there when sync is switched off.
inline void PublishClientState(ClientState state, const std::wstring& syncPath) {
  ClearClientState();
  WriteClientState(state == ClientState::kSignedOut ? L"0" : L"1", state == ClientState::kSyncReady ? L"1" : L"0",
                   syncPath);
}

}  // namespace testsupport
