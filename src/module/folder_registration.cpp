#include "module/folder_registration.h"

#include <objbase.h>
#include <olectl.h>
#include <wchar.h>

#include <cstdarg>

#include "corvane_h.h"
#include "module/registration.h"
#include "platform/handles.h"
#include "platform/module_path.h"

namespace corvane::registration {

namespace {

constexpr wchar_t kName[] = L"Halvex同步盘";
constexpr wchar_t kInfoTip[] = L"浏览Halvex同步文件夹";
constexpr wchar_t kAuthors[] = L"双击进入Halvex同步盘";
constexpr wchar_t kTileInfo[] = L"prop:System.ItemAuthors";
constexpr wchar_t kModulePath[] = L"%s";
constexpr wchar_t kIcon[] = L"%s,0";
constexpr wchar_t kApartment[] = L"Apartment";

constexpr wchar_t kClsidKey[] = L"CLSID\\%s";
constexpr wchar_t kInprocKey[] = L"CLSID\\%s\\InprocServer32";
constexpr wchar_t kIconKey[] = L"CLSID\\%s\\DefaultIcon";
constexpr wchar_t kTypeLibKey[] = L"CLSID\\%s\\TypeLib";
constexpr wchar_t kShellFolderKey[] = L"CLSID\\%s\\ShellFolder";
constexpr wchar_t kMyComputerKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\MyComputer\\NameSpace\\%s";
constexpr wchar_t kDesktopKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Desktop\\NameSpace\\%s";
constexpr wchar_t kApprovedKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Shell Extensions\\Approved";
constexpr wchar_t kNewStartPanelKey[] =
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\HideDesktopIcons\\NewStartPanel";

constexpr DWORD kOne = 1;
constexpr DWORD kSortOrderIndex = 66;
constexpr DWORD kMyComputerAttributes = 0xA0000000;  // SFGAO_FOLDER | SFGAO_HASSUBFOLDER
constexpr DWORD kDesktopAttributes = 0x20000010;     // SFGAO_FOLDER | SFGAO_CANRENAME

constexpr int kBuffer = 260;

// Formats with the Windows meaning of "%s" (a wide string); truncation is a failure.
HRESULT Format(wchar_t* buffer, size_t size, const wchar_t* format, ...) {
  va_list args;
  va_start(args, format);
  const int written = _vsnwprintf_s(buffer, size, _TRUNCATE, format, args);
  va_end(args);
  return written < 0 ? HRESULT_FROM_WIN32(ERROR_INSUFFICIENT_BUFFER) : S_OK;
}

const GUID& ClsidOf(NamespaceFolder folder) {
  return folder == NamespaceFolder::MyComputer ? CLSID_MyShellFolder : CLSID_MyShellFolder1;
}

HRESULT NotFoundIsSuccess(HRESULT hr) { return hr == HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND) ? S_OK : hr; }

}  // namespace

std::vector<FolderEntry> FolderTable(NamespaceFolder folder, const wchar_t* clsid, const wchar_t* libid) {
  if (folder == NamespaceFolder::MyComputer) {
    return {
        {HKEY_CLASSES_ROOT, kClsidKey, clsid, nullptr, kName, REG_SZ},
        {HKEY_CLASSES_ROOT, kClsidKey, clsid, L"InfoTip", kInfoTip, REG_SZ},
        {HKEY_CLASSES_ROOT, kClsidKey, clsid, L"LocalizedString", kName, REG_SZ},
        {HKEY_CLASSES_ROOT, kClsidKey, clsid, L"System.ItemAuthors", kAuthors, REG_SZ},
        {HKEY_CLASSES_ROOT, kClsidKey, clsid, L"TileInfo", kTileInfo, REG_SZ},
        {HKEY_CLASSES_ROOT, kInprocKey, clsid, nullptr, kModulePath, REG_SZ},
        {HKEY_CLASSES_ROOT, kInprocKey, clsid, L"ThreadingModel", kApartment, REG_SZ},
        {HKEY_CLASSES_ROOT, kIconKey, clsid, nullptr, kIcon, REG_SZ},
        {HKEY_CLASSES_ROOT, kTypeLibKey, clsid, nullptr, libid, REG_SZ},
        {HKEY_CLASSES_ROOT, kShellFolderKey, clsid, L"Attributes", &kMyComputerAttributes, REG_DWORD},
        {HKEY_CURRENT_USER, kMyComputerKey, clsid, nullptr, kName, REG_SZ},
        {HKEY_CURRENT_USER, kApprovedKey, L"", clsid, kName, REG_SZ},
    };
  }
  return {
      {HKEY_CLASSES_ROOT, kClsidKey, clsid, nullptr, kName, REG_SZ},
      {HKEY_CLASSES_ROOT, kClsidKey, clsid, L"InfoTip", kInfoTip, REG_SZ},
      {HKEY_CLASSES_ROOT, kClsidKey, clsid, L"LocalizedString", kName, REG_SZ},
      {HKEY_CLASSES_ROOT, kClsidKey, clsid, L"System.ItemAuthors", kAuthors, REG_SZ},
      {HKEY_CLASSES_ROOT, kClsidKey, clsid, L"TileInfo", kTileInfo, REG_SZ},
      {HKEY_CLASSES_ROOT, kClsidKey, clsid, L"System.IsPinnedToNamespaceTree", &kOne, REG_DWORD},
      {HKEY_CLASSES_ROOT, kClsidKey, clsid, L"SortOrderIndex", &kSortOrderIndex, REG_DWORD},
      {HKEY_CLASSES_ROOT, kInprocKey, clsid, nullptr, kModulePath, REG_SZ},
      {HKEY_CLASSES_ROOT, kInprocKey, clsid, L"ThreadingModel", kApartment, REG_SZ},
      {HKEY_CLASSES_ROOT, kIconKey, clsid, nullptr, kIcon, REG_SZ},
      {HKEY_CLASSES_ROOT, kTypeLibKey, clsid, nullptr, libid, REG_SZ},
      {HKEY_CLASSES_ROOT, kShellFolderKey, clsid, L"Attributes", &kDesktopAttributes, REG_DWORD},
      {HKEY_CURRENT_USER, kDesktopKey, clsid, nullptr, kName, REG_SZ},
      {HKEY_CURRENT_USER, kApprovedKey, L"", clsid, kName, REG_SZ},
      {HKEY_LOCAL_MACHINE, kNewStartPanelKey, L"", clsid, &kOne, REG_DWORD},
  };
}

HRESULT RegisterFolder(NamespaceFolder folder) {
  wchar_t clsid[kBuffer] = {};
  wchar_t libid[kBuffer] = {};
  wchar_t modulePath[kBuffer] = {};
  ::StringFromGUID2(ClsidOf(folder), clsid, kBuffer);
  ::StringFromGUID2(LIBID_CorvaneLib, libid, kBuffer);
  ::GetModuleFileNameW(ThisModule(), modulePath, kBuffer);

  HRESULT hr = S_OK;
  for (const FolderEntry& entry : FolderTable(folder, clsid, libid)) {
    wchar_t keyPath[kBuffer] = {};
    hr = Format(keyPath, kBuffer, entry.keyFormat, entry.keyArgument);
    if (FAILED(hr)) break;
    unique_hkey key;
    if (::RegCreateKeyExW(entry.hive, keyPath, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE, nullptr, key.put(),
                          nullptr) != ERROR_SUCCESS) {
      hr = SELFREG_E_CLASS;
      break;
    }
    // The write's result is ignored on purpose: a value that cannot be written does not fail the
    // registration, only a key that cannot be created does.
    if (entry.type == REG_SZ) {
      wchar_t data[kBuffer] = {};
      hr = Format(data, kBuffer, static_cast<const wchar_t*>(entry.data), modulePath);
      if (FAILED(hr)) break;
      ::RegSetValueExW(key.get(), entry.valueName, 0, REG_SZ, reinterpret_cast<const BYTE*>(data),
                       static_cast<DWORD>((wcslen(data) + 1) * sizeof(wchar_t)));
    } else {
      ::RegSetValueExW(key.get(), entry.valueName, 0, REG_DWORD, static_cast<const BYTE*>(entry.data), sizeof(DWORD));
    }
  }
  // The rollback removes everything registered so far, not only this folder: a half-registered
  // server is worse than none.
  if (FAILED(hr)) UnregisterServer();
  return hr;
}

HRESULT UnregisterFolder(NamespaceFolder folder) {
  wchar_t clsid[kBuffer] = {};
  ::StringFromGUID2(ClsidOf(folder), clsid, kBuffer);

  wchar_t clsidKey[kBuffer] = {};
  HRESULT hrClsid = Format(clsidKey, kBuffer, kClsidKey, clsid);
  if (SUCCEEDED(hrClsid)) hrClsid = NotFoundIsSuccess(HRESULT_FROM_WIN32(::RegDeleteTreeW(HKEY_CLASSES_ROOT, clsidKey)));

  wchar_t nameSpaceKey[kBuffer] = {};
  const wchar_t* nameSpaceFormat = folder == NamespaceFolder::MyComputer ? kMyComputerKey : kDesktopKey;
  HRESULT hrNameSpace = Format(nameSpaceKey, kBuffer, nameSpaceFormat, clsid);
  if (SUCCEEDED(hrNameSpace)) {
    hrNameSpace = HRESULT_FROM_WIN32(::RegDeleteTreeW(HKEY_CURRENT_USER, nameSpaceKey));
    // Deliberately tests the CLSID step's result, not this step's own: that one was already made
    // success, so a missing NameSpace key fails the removal, and DllUnregisterServer on a server
    // that was never registered reports SELFREG_E_CLASS, which is the result installers know.
    if (hrClsid == HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)) hrNameSpace = S_OK;
  }

  wchar_t approvedKey[512] = {};
  HRESULT hrApproved = Format(approvedKey, 512, L"%s", kApprovedKey);
  if (SUCCEEDED(hrApproved)) {
    hrApproved = NotFoundIsSuccess(HRESULT_FROM_WIN32(::RegDeleteKeyValueW(HKEY_CURRENT_USER, approvedKey, clsid)));
  }

  HRESULT hrHidden = S_OK;
  if (folder == NamespaceFolder::Desktop) {
    wchar_t hiddenKey[512] = {};
    hrHidden = Format(hiddenKey, 512, L"%s", kNewStartPanelKey);
    if (SUCCEEDED(hrHidden)) {
      hrHidden = NotFoundIsSuccess(HRESULT_FROM_WIN32(::RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, hiddenKey, clsid)));
    }
  }

  const bool ok = SUCCEEDED(hrClsid) && SUCCEEDED(hrNameSpace) && SUCCEEDED(hrApproved) && SUCCEEDED(hrHidden);
  return ok ? S_OK : SELFREG_E_CLASS;
}

}  // namespace corvane::registration
