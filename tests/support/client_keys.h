#pragma once
// Where the client publishes its state under HKCU, spelled once for every test. Plain constant arrays:
// they are constant-initialised, so a global built from them at start-up never sees them empty (clang
// for the mingw target does not keep the order of inline variables' dynamic initialisers).
namespace testsupport {

inline constexpr wchar_t kClientKey[] = L"Software\\varnowe\\Halvex";
inline constexpr wchar_t kTestUser[] = L"u0123456789";  // 11 characters: the shortest valid user
inline constexpr wchar_t kTestUserKey[] = L"Software\\varnowe\\Halvex\\u0123456789";
inline constexpr wchar_t kZoomKey[] = L"Software\\varnowe\\Halvex\\dpiZoom";

}  // namespace testsupport
