// Corvane.dll registered and removed for real. Wine's regsvr32.exe exits with 0 whatever the
// exports return, so the stand-in named regsvr32.exe calls them (as regsvr32 does for /s, /u and
// /i:user /n) and prints their results, each sequence in one process (the per-user choice lasts
// for the process). Wine's own regsvr32 registers the folder for wine_explorer_test.
// Every key and value registration may write is read as one line, "KEY|NAME=data" (names in
// capitals: the registry ignores their case), so a whole state compares at once with the lines
// the registration scripts and folder tables should leave.
#include <gtest/gtest.h>

#include <olectl.h>
#include <shellapi.h>

#include <algorithm>
#include <cwctype>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "host_process.h"
#include "platform/handles.h"
#include "platform/module_path.h"

namespace {

constexpr wchar_t kFirst[] = L"{6E0D3A92-C4B7-4A18-8F25-B93C1D7E5A40}";   // under My Computer
constexpr wchar_t kSecond[] = L"{6E0D3A92-C4B7-4A18-8F25-B93C1D7E5A42}";  // on the desktop
constexpr wchar_t kHelper[] = L"{5b1e7c20-3f4a-4d2e-9c61-0a8d2e47b913}";
constexpr wchar_t kView[] = L"{a3c90e58-7b12-4f6d-b8e4-61f25c0d9a47}";
constexpr wchar_t kLibId[] = L"{d27f4b19-0c86-4e3a-a95b-7e14c3f8602d}";
constexpr const wchar_t* kInterfaces[] = {
    L"{3f9d2c41-6b8e-4a07-9e15-c24b7d0a6e93}", L"{b14e6a2d-95c3-4f78-8d02-7a3e1c59f624}",
    L"{e8c27b53-1d4a-4c96-b3f0-5d81a6c2e470}", L"{e8c27b53-1d4a-4c96-b3f0-5d81a6c2e472}"};
const std::wstring kExplorer = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\";
const std::wstring kApproved = L"Software\\Microsoft\\Windows\\CurrentVersion\\Shell Extensions\\Approved";
const std::wstring kNewStartPanel = kExplorer + L"HideDesktopIcons\\NewStartPanel";
const std::wstring kHelperObjects = kExplorer + L"Browser Helper Objects";
const std::wstring kPolicy = L"Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\Ext\\CLSID";

std::wstring Dll() { return corvane::ThisModuleFolder() + L"Corvane.dll"; }

// Where registration may write: a whole key, a key that need only be there, or a value of a shared key;
// or a tree only cleared away, never read (the type library's and interfaces' own).
enum class Read { kTree, kKey, kValue, kCleared };
struct Place {
  HKEY hive;
  std::wstring path;
  Read read;
  std::wstring value;
};

std::vector<Place> Places() {
  std::vector<Place> places = {{HKEY_LOCAL_MACHINE, kHelperObjects + L"\\" + kHelper, Read::kTree},
                               {HKEY_LOCAL_MACHINE, kPolicy, Read::kValue, kHelper},
                               {HKEY_LOCAL_MACHINE, kHelperObjects, Read::kKey},
                               {HKEY_LOCAL_MACHINE, kPolicy, Read::kKey},
                               {HKEY_CLASSES_ROOT, L"TypeLib\\" + std::wstring(kLibId) + L"\\1.0", Read::kKey}};
  for (const wchar_t* iid : kInterfaces) places.push_back({HKEY_CLASSES_ROOT, L"Interface\\" + std::wstring(iid), Read::kKey});
  for (const std::wstring root : {L"", L"Software\\Classes\\"}) {
    const HKEY hive = root.empty() ? HKEY_CLASSES_ROOT : HKEY_CURRENT_USER;
    for (const wchar_t* key : {L"SyncBarBHO.ExplorerBHO.1", L"SyncBarBHO.ExplorerBHO"}) places.push_back({hive, root + key, Read::kTree});
    for (const wchar_t* clsid : {kHelper, kView, kFirst, kSecond}) places.push_back({hive, root + L"CLSID\\" + clsid, Read::kTree});
    places.push_back({hive, root + L"TypeLib\\" + kLibId, Read::kCleared});
    for (const wchar_t* iid : kInterfaces) places.push_back({hive, root + L"Interface\\" + iid, Read::kCleared});
  }
  for (const wchar_t* clsid : {kFirst, kSecond}) {
    const std::wstring parent = clsid == kFirst ? L"MyComputer" : L"Desktop";
    places.push_back({HKEY_CURRENT_USER, kExplorer + parent + L"\\NameSpace\\" + clsid, Read::kTree});
    places.push_back({HKEY_CURRENT_USER, kApproved, Read::kValue, clsid});
    places.push_back({HKEY_LOCAL_MACHINE, kNewStartPanel, Read::kValue, clsid});
  }
  return places;
}

void RemoveEverything() {
  for (const Place& place : Places()) {
    if (place.read == Read::kTree || place.read == Read::kCleared) ::RegDeleteTreeW(place.hive, place.path.c_str());
    if (place.read == Read::kValue) ::RegDeleteKeyValueW(place.hive, place.path.c_str(), place.value.c_str());
  }
}

std::optional<std::wstring> ValueData(HKEY key, const wchar_t* name) {
  DWORD type = 0, size = 0;
  if (::RegQueryValueExW(key, name, nullptr, &type, nullptr, &size) != ERROR_SUCCESS) return std::nullopt;
  std::vector<BYTE> data(size);
  ::RegQueryValueExW(key, name, nullptr, &type, data.data(), &size);
  // DWORDs in decimal.
  if (type == REG_DWORD && size == sizeof(DWORD)) return L"dword:" + std::to_wstring(*reinterpret_cast<const DWORD*>(data.data()));
  if (type != REG_SZ) return L"type" + std::to_wstring(type) + L" size" + std::to_wstring(size);
  std::wstring text(reinterpret_cast<const wchar_t*>(data.data()), size / sizeof(wchar_t));
  // The stored size counts the terminating zero; a value written without one shows as it is.
  if (!text.empty() && text.back() == L'\0') text.pop_back();
  return L"sz:" + text;
}

void ReadTree(HKEY key, const std::wstring& path, std::vector<std::wstring>& lines) {
  wchar_t name[16384];
  DWORD length = 0, count = 0;
  for (; length = 16384, ::RegEnumValueW(key, count, name, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS; ++count) {
    lines.push_back(path + L"|" + name + L"=" + ValueData(key, name).value_or(L"?"));
  }
  if (count == 0) lines.push_back(path + L"|");  // a key without values
  for (DWORD i = 0; length = 16384, ::RegEnumKeyExW(key, i, name, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS; ++i) {
    corvane::unique_hkey child;
    if (::RegOpenKeyExW(key, name, 0, KEY_READ, child.put()) == ERROR_SUCCESS) ReadTree(child.get(), path + L"\\" + name, lines);
  }
}

// Names in capitals, data as it is; sorted.
std::vector<std::wstring> Normal(std::vector<std::wstring> lines) {
  for (std::wstring& line : lines) {
    for (size_t i = 0; i < line.size() && line[i] != L'='; ++i) line[i] = static_cast<wchar_t>(std::towupper(line[i]));
  }
  std::sort(lines.begin(), lines.end());
  return lines;
}

std::vector<std::wstring> Snapshot() {
  std::vector<std::wstring> lines;
  for (const Place& place : Places()) {
    corvane::unique_hkey key;
    if (::RegOpenKeyExW(place.hive, place.path.c_str(), 0, KEY_READ, key.put()) != ERROR_SUCCESS) continue;
    const std::wstring name = (place.hive == HKEY_CLASSES_ROOT ? L"HKCR\\" : place.hive == HKEY_CURRENT_USER ? L"HKCU\\" : L"HKLM\\") + place.path;
    if (place.read == Read::kTree) ReadTree(key.get(), name, lines);
    if (place.read == Read::kKey) lines.push_back(name);
    const auto data = place.read == Read::kValue ? ValueData(key.get(), place.value.c_str()) : std::nullopt;
    if (data) lines.push_back(name + L"|" + place.value + L"=" + *data);
  }
  return Normal(lines);
}

enum class State { kNothing, kMachine, kUser, kSecondFolderOnly };

std::vector<std::wstring> Expected(State state) {
  const std::wstring dll = Dll();
  // The NoRemove parents outlive unregistration.
  std::vector<std::wstring> lines = {L"HKLM\\" + kHelperObjects, L"HKLM\\" + kPolicy};
  if (state == State::kMachine || state == State::kUser) {
    const std::wstring c = state == State::kUser ? L"HKCU\\Software\\Classes\\" : L"HKCR\\";
    const std::wstring helper = c + L"CLSID\\" + kHelper, view = c + L"CLSID\\" + kView;
    lines.insert(lines.end(), {
        c + L"SyncBarBHO.ExplorerBHO.1|=sz:SyncBarBHO Class",
        c + L"SyncBarBHO.ExplorerBHO.1\\CLSID|=sz:" + kHelper,
        c + L"SyncBarBHO.ExplorerBHO|=sz:SyncBarBHO Class",
        c + L"SyncBarBHO.ExplorerBHO\\CLSID|=sz:" + kHelper,
        c + L"SyncBarBHO.ExplorerBHO\\CurVer|=sz:SyncBarBHO.ExplorerBHO.1",
        helper + L"|=sz:SyncBarBHO Class",
        helper + L"\\ProgID|=sz:SyncBarBHO.ExplorerBHO.1",
        helper + L"\\VersionIndependentProgID|=sz:SyncBarBHO.ExplorerBHO",
        view + L"|=sz:MyShellView class",
        view + L"\\Version|=sz:1.0",
        // The script names HKLM itself, so these are machine-wide in either scope.
        L"HKLM\\" + kHelperObjects + L"\\" + kHelper + L"|",
        L"HKLM\\" + kPolicy + L"|" + kHelper + L"=sz:2",
        // Wine registers a per-user type library machine-wide too.
        L"HKCR\\TypeLib\\" + std::wstring(kLibId) + L"\\1.0",
    });
    for (const wchar_t* iid : kInterfaces) lines.push_back(L"HKCR\\Interface\\" + std::wstring(iid));
    for (const std::wstring& key : {helper, view}) {
      lines.insert(lines.end(), {key + L"\\Programmable|", key + L"\\InprocServer32|=sz:" + dll,
                                 key + L"\\InprocServer32|ThreadingModel=sz:Apartment", key + L"\\TypeLib|=sz:" + kLibId});
    }
  }
  for (const bool second : {false, true}) {
    if (state == State::kNothing || (state == State::kSecondFolderOnly && !second)) continue;
    const std::wstring clsid = second ? kSecond : kFirst, key = L"HKCR\\CLSID\\" + clsid;
    lines.insert(lines.end(), {
        key + L"|=sz:Halvex同步盘",
        key + L"|InfoTip=sz:浏览Halvex同步文件夹",
        key + L"|LocalizedString=sz:Halvex同步盘",
        key + L"|System.ItemAuthors=sz:双击进入Halvex同步盘",
        key + L"|TileInfo=sz:prop:System.ItemAuthors",
        key + L"\\InprocServer32|=sz:" + dll,
        key + L"\\InprocServer32|ThreadingModel=sz:Apartment",
        key + L"\\DefaultIcon|=sz:" + dll + L",0",
        key + L"\\TypeLib|=sz:{D27F4B19-0C86-4E3A-A95B-7E14C3F8602D}",
        key + L"\\ShellFolder|Attributes=dword:" + (second ? L"536870928" : L"2684354560"),
        L"HKCU\\" + kExplorer + (second ? L"Desktop" : L"MyComputer") + L"\\NameSpace\\" + clsid + L"|=sz:Halvex同步盘",
        L"HKCU\\" + kApproved + L"|" + clsid + L"=sz:Halvex同步盘",
    });
    if (second) {
      lines.insert(lines.end(), {key + L"|System.IsPinnedToNameSpaceTree=dword:1",
                                 key + L"|SortOrderIndex=dword:66",
                                 L"HKLM\\" + kNewStartPanel + L"|" + clsid + L"=dword:1"});
    }
  }
  return Normal(lines);
}

// The stand-in's results, one per call, in order.
std::vector<HRESULT> CallExports(const std::wstring& calls) {
  const moduletest::HostRun run =
      moduletest::RunHost(corvane::ThisModuleFolder() + L"hosts\\regsvr\\regsvr32.exe", Dll(), calls);
  // RunHost reports a start or wait that failed.
  EXPECT_EQ(run.exitCode, 0u) << testing::PrintToString(run.output);
  std::vector<HRESULT> results;
  std::wistringstream lines(run.output);
  for (std::wstring line; std::getline(lines, line);) {
    if (line.starts_with(L"Dll")) results.push_back(static_cast<HRESULT>(std::stoul(line.substr(line.find(L"=0x") + 3), nullptr, 16)));
  }
  return results;
}

// Each case starts from nothing; the last leaves nothing behind.
class Registration : public testing::Test {
  void TearDown() override { RemoveEverything(); }
};

TEST_F(Registration, ExportResultsAndWhereTheyWrite) {
  const HRESULT failed = SELFREG_E_CLASS;
  const struct {
    const wchar_t* calls;
    std::vector<HRESULT> results;
    State after;
  } cases[] = {
      // Never registered: nothing to remove is reported as a failed removal.
      {L"unregister", {failed}, State::kNothing},
      {L"register register", {S_OK, S_OK}, State::kMachine},
      {L"register unregister unregister", {S_OK, S_OK, failed}, State::kNothing},
      {L"install:1:USER", {S_OK}, State::kUser},
      {L"install:1:users", {S_OK}, State::kMachine},
      {L"install:1:use", {S_OK}, State::kMachine},
      {L"install:1", {S_OK}, State::kMachine},
      // Per-user mode, once chosen, holds for the rest of the process.
      {L"install:1:User install:0", {S_OK, S_OK}, State::kNothing},
      {L"install:1:User register", {S_OK, S_OK}, State::kUser},
      // Uninstalling only unregisters and reports that.
      {L"install:0:user", {failed}, State::kNothing},
      {L"register install:0:users", {S_OK, S_OK}, State::kNothing},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(c.calls)));
    RemoveEverything();
    EXPECT_EQ(CallExports(c.calls), c.results);
    EXPECT_EQ(Snapshot(), Expected(c.after));
  }
  // The folders' DefaultIcon names the DLL's icon 0, so the DLL must hold exactly that one.
  EXPECT_EQ(::ExtractIconExW(Dll().c_str(), -1, nullptr, nullptr, 0), 1u);
}

// Registered, then a key or value of the registration removed by hand: only a missing NameSpace key
// fails the removal. Or a key made impossible to create (a non-volatile key cannot be created under
// a volatile one, even by an administrator): the registration rolls back.
TEST_F(Registration, MissingAndUncreatableKeys) {
  const std::wstring firstClass = L"CLSID\\" + std::wstring(kFirst), hidden = kExplorer + L"HideDesktopIcons";
  const struct {
    HKEY hive;
    std::wstring path;
    const wchar_t* value;  // null: the whole key is removed or blocked
    const wchar_t* calls;  // null: registered, the key or value removed, then unregistered
    HRESULT result;
    State after = State::kNothing;
  } cases[] = {
      {HKEY_CURRENT_USER, kExplorer + L"MyComputer\\NameSpace\\" + kFirst, nullptr, nullptr, SELFREG_E_CLASS},
      {HKEY_CURRENT_USER, kExplorer + L"Desktop\\NameSpace\\" + kSecond, nullptr, nullptr, SELFREG_E_CLASS},
      {HKEY_CLASSES_ROOT, firstClass, nullptr, nullptr, S_OK},
      {HKEY_CURRENT_USER, kApproved, kFirst, nullptr, S_OK},
      {HKEY_LOCAL_MACHINE, kNewStartPanel, kSecond, nullptr, S_OK},
      // The first folder's walk stops at InprocServer32 and unregisters everything; the second
      // folder is registered afterwards all the same. DllInstall rolls that back too.
      {HKEY_CLASSES_ROOT, firstClass, nullptr, L"register", SELFREG_E_CLASS, State::kSecondFolderOnly},
      {HKEY_CLASSES_ROOT, firstClass, nullptr, L"install:1", SELFREG_E_CLASS},
      // The second folder's last entry: nothing is left.
      {HKEY_LOCAL_MACHINE, hidden, nullptr, L"register", SELFREG_E_CLASS},
      {HKEY_LOCAL_MACHINE, hidden, nullptr, L"install:1:user", SELFREG_E_CLASS},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.path + L"|" + (c.value ? c.value : L"") + L" " + (c.calls ? c.calls : L"")));
    RemoveEverything();
    corvane::unique_hkey blocker;
    if (c.calls != nullptr) {
      ::RegDeleteTreeW(c.hive, c.path.c_str());
      ASSERT_EQ(::RegCreateKeyExW(c.hive, c.path.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr,
                                  blocker.put(), nullptr), ERROR_SUCCESS);
    } else {
      ASSERT_EQ(CallExports(L"register"), std::vector<HRESULT>{S_OK});
      c.value ? ::RegDeleteKeyValueW(c.hive, c.path.c_str(), c.value) : ::RegDeleteTreeW(c.hive, c.path.c_str());
    }
    EXPECT_EQ(CallExports(c.calls ? c.calls : L"unregister"), std::vector<HRESULT>{c.result});
    EXPECT_EQ(Snapshot(), Expected(c.after));
    if (c.calls != nullptr) ::RegDeleteTreeW(c.hive, c.path.c_str());
  }
}

}  // namespace
