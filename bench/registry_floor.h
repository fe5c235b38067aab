#pragma once
// The registry floor: the bare registry opens and queries, file-attribute checks and debugger lines
// that one window's second of polling needs (the bar's client-state tick and the folder check),
// written by hand, and, where the caller gives the folder's ID list, the folder check's own shell
// work: a copy of the ID list (as IPersistFolder2::GetCurFolder hands one out) turned into a path.
// Benchmarks compare the add-in's own cost against it in the same run.
#include <windows.h>
#include <shlobj.h>

#include <cstdio>
#include <ctime>
#include <cwchar>
#include <string>

#include "platform/handles.h"

namespace bench::registry_floor {

inline const std::wstring kRoot = L"Software\\varnowe\\Halvex";
inline const std::wstring kUser = L"bench_user_000001";

inline void Put(const std::wstring& key, const wchar_t* name, const std::wstring& text) {
  corvane::unique_hkey handle;
  if (::RegCreateKeyExW(HKEY_CURRENT_USER, key.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, handle.put(), nullptr) ==
      ERROR_SUCCESS) {
    ::RegSetValueExW(handle.get(), name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                     static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
  }
}

// The floor's reading of one value: the size, then the data.
inline std::wstring Query(HKEY key, const wchar_t* name) {
  DWORD size = 0;
  if (::RegQueryValueExW(key, name, nullptr, nullptr, nullptr, &size) != ERROR_SUCCESS || size == 0) return {};
  std::wstring text(size / 2 + 2, L'\0');
  ::RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(text.data()), &size);
  text.resize(wcslen(text.c_str()));
  return text;
}

// A debugger line with the logger's prefix shape, formatted by hand.
inline void DebugLine(const wchar_t* format, const std::wstring& a, const std::wstring& b = L"") {
  __time64_t now = 0;
  _time64(&now);
  std::tm local{};
  _localtime64_s(&local, &now);
  wchar_t line[1024];
  int n = _snwprintf_s(line, _TRUNCATE, L"[Debug][%04d-%02d-%02d %02d:%02d:%02d.%06d][registry_floor.h:1][%d][Floor]",
                       local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min,
                       local.tm_sec, 0, static_cast<int>(::GetCurrentThreadId()));
  if (n < 0) n = 0;
  _snwprintf_s(line + n, 1024 - n, _TRUNCATE, format, a.c_str(), b.c_str());
  ::OutputDebugStringW(line);
}

// Every reader opens the root key and reads the user, then opens the user's key.
struct FloorReader {
  corvane::unique_hkey root, user;
  std::wstring currentUser;
  bool Open() {
    if (::RegOpenKeyExW(HKEY_CURRENT_USER, kRoot.c_str(), 0, KEY_READ, root.put()) != ERROR_SUCCESS) return false;
    currentUser = Query(root.get(), L"currentUser");
    return ::RegOpenKeyExW(HKEY_CURRENT_USER, (kRoot + L"\\" + currentUser).c_str(), 0, KEY_READ, user.put()) ==
           ERROR_SUCCESS;
  }
};

inline void FloorPoll(PCIDLIST_ABSOLUTE folder = nullptr) {
  {  // current user
    corvane::unique_hkey root;
    ::RegOpenKeyExW(HKEY_CURRENT_USER, kRoot.c_str(), 0, KEY_READ, root.put());
    DebugLine(L"currentUser = %s", Query(root.get(), L"currentUser"));
  }
  {  // logo
    FloorReader r;
    r.Open();
    const std::wstring logo = Query(r.user.get(), L"userLogoPath");
    DebugLine(L"userLogoPath = %s", logo);
    ::GetFileAttributesW(logo.c_str());
  }
  {  // capacity
    FloorReader r;
    r.Open();
    DebugLine(L"totalSpace value = %s, usedSpace value = %s", Query(r.user.get(), L"totalSpace"),
              Query(r.user.get(), L"usedSpace"));
  }
  {  // advertising
    FloorReader r;
    r.Open();
    DebugLine(L"advertisingId value = %s, advertisingTitle value = %s", Query(r.user.get(), L"advertisingId"),
              Query(r.user.get(), L"advertisingTitle"));
  }
  {  // zoom
    corvane::unique_hkey zoom;
    ::RegOpenKeyExW(HKEY_CURRENT_USER, (kRoot + L"\\dpiZoom").c_str(), 0, KEY_READ, zoom.put());
    DebugLine(L"dpiZoom = %s", Query(zoom.get(), L"4242"));
  }
  {  // the folder check
    FloorReader r;
    r.Open();
    DebugLine(L"bLogin value = %s, bOpenSync value = %s", Query(r.user.get(), L"bLogin"), Query(r.user.get(), L"bOpenSync"));
    const std::wstring sync = Query(r.user.get(), L"syncPath");
    DebugLine(L"syncPath = %s", sync);
    ::GetFileAttributesW(sync.c_str());
    if (folder != nullptr) {
      const corvane::unique_pidl copy(::ILCloneFull(folder));
      wchar_t path[MAX_PATH] = {};
      ::SHGetPathFromIDListW(copy.get(), path);
    }
  }
}

// The client's state as a signed-in client with sync on publishes it, under the floor's user.
inline void PublishClientState(const std::wstring& sync, const std::wstring& logo) {
  ::RegDeleteTreeW(HKEY_CURRENT_USER, kRoot.c_str());
  Put(kRoot, L"currentUser", kUser);
  const std::wstring userKey = kRoot + L"\\" + kUser;
  Put(userKey, L"bLogin", L"1");
  Put(userKey, L"bOpenSync", L"1");
  Put(userKey, L"syncPath", sync);
  Put(userKey, L"userLogoPath", logo);
  Put(userKey, L"totalSpace", L"2199023255552");
  Put(userKey, L"usedSpace", L"879609302220");
  Put(userKey, L"advertisingId", L"bench-ad");
  Put(userKey, L"advertisingTitle", L"开通会员，空间翻倍");
  Put(kRoot + L"\\dpiZoom", L"4242", L"1.25");
}

}  // namespace bench::registry_floor
