#include "registration_state.h"

#include <gtest/gtest.h>

#include "registry_tree.h"

namespace regtest {

namespace {

// The CLSIDs in the form the folder tables write (StringFromGUID2), the others as the scripts do.
constexpr wchar_t kFolder1[] = L"{6E0D3A92-C4B7-4A18-8F25-B93C1D7E5A40}";
constexpr wchar_t kFolder2[] = L"{6E0D3A92-C4B7-4A18-8F25-B93C1D7E5A42}";
constexpr wchar_t kHelper[] = L"{5b1e7c20-3f4a-4d2e-9c61-0a8d2e47b913}";
constexpr wchar_t kView[] = L"{a3c90e58-7b12-4f6d-b8e4-61f25c0d9a47}";
constexpr wchar_t kLibId[] = L"{d27f4b19-0c86-4e3a-a95b-7e14c3f8602d}";
constexpr const wchar_t* kInterfaces[] = {
    L"{3f9d2c41-6b8e-4a07-9e15-c24b7d0a6e93}", L"{b14e6a2d-95c3-4f78-8d02-7a3e1c59f624}",
    L"{e8c27b53-1d4a-4c96-b3f0-5d81a6c2e470}", L"{e8c27b53-1d4a-4c96-b3f0-5d81a6c2e472}"};

constexpr wchar_t kName[] = L"Halvex同步盘";
constexpr wchar_t kExplorer[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\";
constexpr wchar_t kApproved[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Shell Extensions\\Approved";
constexpr wchar_t kNewStartPanel[] =
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\HideDesktopIcons\\NewStartPanel";
constexpr wchar_t kHelperObjects[] =
    L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Browser Helper Objects";
constexpr wchar_t kPolicyClsids[] = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Policies\\Ext\\CLSID";
constexpr wchar_t kUserClasses[] = L"Software\\Classes\\";

const wchar_t* ClsidOf(FolderId folder) { return folder == FolderId::MyComputer ? kFolder1 : kFolder2; }

std::wstring NameSpaceKey(FolderId folder) {
  return std::wstring(kExplorer) + (folder == FolderId::MyComputer ? L"MyComputer" : L"Desktop") +
         L"\\NameSpace\\" + ClsidOf(folder);
}

// The scripts' keys below a classes root ("" for HKCR, "Software\Classes\" under HKCU).
const wchar_t* const kScriptKeys[] = {L"SyncBarBHO.ExplorerBHO.1", L"SyncBarBHO.ExplorerBHO"};

void ExpectTree(HKEY hive, const std::wstring& path, const Tree& expected) {
  const std::optional<Tree> actual = ReadTree(hive, path);
  ASSERT_TRUE(actual.has_value()) << testing::PrintToString(path) << " is missing";
  EXPECT_EQ(*actual, expected) << testing::PrintToString(path);
}

void ExpectNoKey(HKEY hive, const std::wstring& path) {
  EXPECT_FALSE(KeyExists(hive, path)) << testing::PrintToString(path) << " is still there";
}

}  // namespace

void RemoveEverything() {
  for (const std::wstring& root : {std::wstring(), std::wstring(kUserClasses)}) {
    const HKEY hive = root.empty() ? HKEY_CLASSES_ROOT : HKEY_CURRENT_USER;
    for (const wchar_t* clsid : {kFolder1, kFolder2, kHelper, kView}) ::RegDeleteTreeW(hive, (root + L"CLSID\\" + clsid).c_str());
    for (const wchar_t* key : kScriptKeys) ::RegDeleteTreeW(hive, (root + key).c_str());
    ::RegDeleteTreeW(hive, (root + L"TypeLib\\" + kLibId).c_str());
    for (const wchar_t* iid : kInterfaces) ::RegDeleteTreeW(hive, (root + L"Interface\\" + iid).c_str());
  }
  for (const FolderId folder : {FolderId::MyComputer, FolderId::Desktop}) {
    ::RegDeleteTreeW(HKEY_CURRENT_USER, NameSpaceKey(folder).c_str());
    ::RegDeleteKeyValueW(HKEY_CURRENT_USER, kApproved, ClsidOf(folder));
  }
  ::RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kNewStartPanel, kFolder2);
  ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, (std::wstring(kHelperObjects) + L"\\" + kHelper).c_str());
  ::RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kPolicyClsids, kHelper);
}

void ExpectScriptsRegistered(Scope scope, const std::wstring& dll) {
  const HKEY hive = scope == Scope::Machine ? HKEY_CLASSES_ROOT : HKEY_CURRENT_USER;
  const std::wstring root = scope == Scope::Machine ? L"" : kUserClasses;
  ExpectTree(hive, root + L"SyncBarBHO.ExplorerBHO.1",
             {{L"", {{L"", Sz(L"SyncBarBHO Class")}}}, {L"CLSID", {{L"", Sz(kHelper)}}}});
  ExpectTree(hive, root + L"SyncBarBHO.ExplorerBHO",
             {{L"", {{L"", Sz(L"SyncBarBHO Class")}}},
              {L"CLSID", {{L"", Sz(kHelper)}}},
              {L"CURVER", {{L"", Sz(L"SyncBarBHO.ExplorerBHO.1")}}}});
  ExpectTree(hive, root + L"CLSID\\" + kHelper,
             {{L"", {{L"", Sz(L"SyncBarBHO Class")}}},
              {L"PROGID", {{L"", Sz(L"SyncBarBHO.ExplorerBHO.1")}}},
              {L"VERSIONINDEPENDENTPROGID", {{L"", Sz(L"SyncBarBHO.ExplorerBHO")}}},
              {L"PROGRAMMABLE", {}},
              {L"INPROCSERVER32", {{L"", Sz(dll)}, {L"THREADINGMODEL", Sz(L"Apartment")}}},
              {L"TYPELIB", {{L"", Sz(kLibId)}}}});
  ExpectTree(hive, root + L"CLSID\\" + kView,
             {{L"", {{L"", Sz(L"MyShellView class")}}},
              {L"PROGRAMMABLE", {}},
              {L"INPROCSERVER32", {{L"", Sz(dll)}, {L"THREADINGMODEL", Sz(L"Apartment")}}},
              {L"TYPELIB", {{L"", Sz(kLibId)}}},
              {L"VERSION", {{L"", Sz(L"1.0")}}}});
  // The script names HKLM itself, so these are machine-wide in either scope.
  ExpectTree(HKEY_LOCAL_MACHINE, std::wstring(kHelperObjects) + L"\\" + kHelper, {{L"", {}}});
  EXPECT_EQ(ReadValue(HKEY_LOCAL_MACHINE, kPolicyClsids, kHelper), Sz(L"2"));
  // The other scope holds nothing of the scripts.
  const HKEY otherHive = scope == Scope::Machine ? HKEY_CURRENT_USER : HKEY_CLASSES_ROOT;
  const std::wstring otherRoot = scope == Scope::Machine ? kUserClasses : L"";
  for (const wchar_t* key : kScriptKeys) ExpectNoKey(otherHive, otherRoot + key);
  ExpectNoKey(otherHive, otherRoot + L"CLSID\\" + kHelper);
  ExpectNoKey(otherHive, otherRoot + L"CLSID\\" + kView);
}

void ExpectScriptsAbsent() {
  for (const std::wstring& root : {std::wstring(), std::wstring(kUserClasses)}) {
    const HKEY hive = root.empty() ? HKEY_CLASSES_ROOT : HKEY_CURRENT_USER;
    for (const wchar_t* key : kScriptKeys) ExpectNoKey(hive, root + key);
    ExpectNoKey(hive, root + L"CLSID\\" + kHelper);
    ExpectNoKey(hive, root + L"CLSID\\" + kView);
  }
  ExpectNoKey(HKEY_LOCAL_MACHINE, std::wstring(kHelperObjects) + L"\\" + kHelper);
  EXPECT_EQ(ReadValue(HKEY_LOCAL_MACHINE, kPolicyClsids, kHelper), std::nullopt);
  // NoRemove keys outlive unregistration.
  EXPECT_TRUE(KeyExists(HKEY_LOCAL_MACHINE, kHelperObjects));
  EXPECT_TRUE(KeyExists(HKEY_LOCAL_MACHINE, kPolicyClsids));
}

void ExpectFolderRegistered(FolderId folder, const std::wstring& dll) {
  const wchar_t* clsid = ClsidOf(folder);
  Values top = {{L"", Sz(kName)},
                {L"INFOTIP", Sz(L"浏览Halvex同步文件夹")},
                {L"LOCALIZEDSTRING", Sz(kName)},
                {L"SYSTEM.ITEMAUTHORS", Sz(L"双击进入Halvex同步盘")},
                {L"TILEINFO", Sz(L"prop:System.ItemAuthors")}};
  if (folder == FolderId::Desktop) {
    top[L"SYSTEM.ISPINNEDTONAMESPACETREE"] = Dword(1);
    top[L"SORTORDERINDEX"] = Dword(66);
  }
  ExpectTree(HKEY_CLASSES_ROOT, std::wstring(L"CLSID\\") + clsid,
             {{L"", top},
              {L"INPROCSERVER32", {{L"", Sz(dll)}, {L"THREADINGMODEL", Sz(L"Apartment")}}},
              {L"DEFAULTICON", {{L"", Sz(dll + L",0")}}},
              {L"TYPELIB", {{L"", Sz(Upper(kLibId))}}},
              {L"SHELLFOLDER",
               {{L"ATTRIBUTES", Dword(folder == FolderId::MyComputer ? 0xA0000000 : 0x20000010)}}}});
  ExpectTree(HKEY_CURRENT_USER, NameSpaceKey(folder), {{L"", {{L"", Sz(kName)}}}});
  EXPECT_EQ(ReadValue(HKEY_CURRENT_USER, kApproved, clsid), Sz(kName));
  EXPECT_EQ(ReadValue(HKEY_LOCAL_MACHINE, kNewStartPanel, clsid),
            folder == FolderId::Desktop ? std::optional<std::wstring>(Dword(1)) : std::nullopt);
}

void ExpectFolderAbsent(FolderId folder) {
  const wchar_t* clsid = ClsidOf(folder);
  ExpectNoKey(HKEY_CLASSES_ROOT, std::wstring(L"CLSID\\") + clsid);
  ExpectNoKey(HKEY_CURRENT_USER, NameSpaceKey(folder));
  EXPECT_EQ(ReadValue(HKEY_CURRENT_USER, kApproved, clsid), std::nullopt);
  EXPECT_EQ(ReadValue(HKEY_LOCAL_MACHINE, kNewStartPanel, clsid), std::nullopt);
}

void ExpectTypeLibrary(bool registered) {
  // Wine registers a per-user type library machine-wide too, so HKCR answers for both scopes.
  EXPECT_EQ(KeyExists(HKEY_CLASSES_ROOT, std::wstring(L"TypeLib\\") + kLibId + L"\\1.0"), registered);
  for (const wchar_t* iid : kInterfaces) {
    EXPECT_EQ(KeyExists(HKEY_CLASSES_ROOT, std::wstring(L"Interface\\") + iid), registered) << testing::PrintToString(std::wstring(iid));
  }
}

void ExpectAllRegistered(Scope scope, const std::wstring& dll) {
  ExpectScriptsRegistered(scope, dll);
  ExpectTypeLibrary(true);
  ExpectFolderRegistered(FolderId::MyComputer, dll);
  ExpectFolderRegistered(FolderId::Desktop, dll);
}

void ExpectNothingLeft() {
  ExpectScriptsAbsent();
  ExpectTypeLibrary(false);
  ExpectFolderAbsent(FolderId::MyComputer);
  ExpectFolderAbsent(FolderId::Desktop);
}

}  // namespace regtest
