#include "folder_location.h"

#include <knownfolders.h>
#include <shlwapi.h>

#include <algorithm>
#include <cwchar>
#include <iterator>

namespace explorer_standin {

namespace {

bool IsThisPcAlias(const std::wstring& location) {
  return ::CompareStringOrdinal(location.c_str(), -1, L"::ThisPC", -1, TRUE) == CSTR_EQUAL;
}

std::wstring NameOf(PCIDLIST_ABSOLUTE pidl, SIGDN kind) {
  corvane::unique_cotaskmem_string name;
  if (pidl == nullptr || FAILED(::SHGetNameFromIDList(pidl, kind, name.put())) || !name) return std::wstring();
  return name.get();
}

}  // namespace

HRESULT ParseLocation(const std::wstring& location, corvane::unique_pidl& pidl) {
  pidl.reset();
  if (location.empty()) return E_INVALIDARG;
  if (IsThisPcAlias(location)) {
    if (SUCCEEDED(::SHGetKnownFolderIDList(FOLDERID_ComputerFolder, 0, nullptr, pidl.put())) && pidl) return S_OK;
    return ::SHGetSpecialFolderLocation(nullptr, CSIDL_DRIVES, pidl.put());
  }
  std::wstring text = location;
  if (text.compare(0, 2, L"::") != 0 && ::PathIsRelativeW(text.c_str())) {
    wchar_t full[MAX_PATH];
    const DWORD length = ::GetFullPathNameW(text.c_str(), MAX_PATH, full, nullptr);
    if (length == 0 || length >= MAX_PATH) return E_INVALIDARG;
    text.assign(full, length);
  }
  SFGAOF attributes = 0;
  const HRESULT hr = ::SHParseDisplayName(text.c_str(), nullptr, pidl.put(), 0, &attributes);
  if (SUCCEEDED(hr) && !pidl) return E_FAIL;
  return hr;
}

std::wstring FileSystemPath(PCIDLIST_ABSOLUTE pidl) {
  wchar_t path[MAX_PATH] = {};
  if (pidl == nullptr || !::SHGetPathFromIDListW(pidl, path)) return std::wstring();
  return path;
}

std::wstring ParsingName(PCIDLIST_ABSOLUTE pidl) {
  const std::wstring path = FileSystemPath(pidl);
  return path.empty() ? NameOf(pidl, SIGDN_DESKTOPABSOLUTEPARSING) : path;
}

std::wstring DisplayName(PCIDLIST_ABSOLUTE pidl) {
  std::wstring name = NameOf(pidl, SIGDN_NORMALDISPLAY);
  return name.empty() ? ParsingName(pidl) : name;
}

std::vector<std::wstring> SampleEntries(PCIDLIST_ABSOLUTE pidl, size_t limit) {
  std::vector<std::wstring> entries;
  const std::wstring path = FileSystemPath(pidl);
  if (path.empty()) {
    // Virtual folders: This PC lists drives; other virtual folders show no rows.
    corvane::unique_pidl thisPc;
    if (FAILED(ParseLocation(L"::ThisPC", thisPc)) || !::ILIsEqual(pidl, thisPc.get())) return entries;
    wchar_t drives[512] = {};
    const DWORD length = ::GetLogicalDriveStringsW(static_cast<DWORD>(std::size(drives)) - 1, drives);
    for (const wchar_t* drive = drives; length != 0 && *drive != L'\0' && entries.size() < limit; drive += wcslen(drive) + 1) {
      entries.emplace_back(drive);
    }
    return entries;
  }
  std::wstring pattern = path;
  if (pattern.back() != L'\\') pattern += L'\\';
  pattern += L'*';
  WIN32_FIND_DATAW data{};
  corvane::unique_find find(::FindFirstFileExW(pattern.c_str(), FindExInfoBasic, &data, FindExSearchNameMatch, nullptr, 0));
  if (!find) return entries;
  std::vector<std::wstring> folders, files;
  do {
    const std::wstring name = data.cFileName;
    if (name == L"." || name == L"..") continue;
    ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? folders : files).push_back(name);
  } while (folders.size() + files.size() < 4 * limit && ::FindNextFileW(find.get(), &data));
  const auto byName = [](const std::wstring& a, const std::wstring& b) { return ::StrCmpLogicalW(a.c_str(), b.c_str()) < 0; };
  std::sort(folders.begin(), folders.end(), byName);
  std::sort(files.begin(), files.end(), byName);
  for (const std::wstring& name : folders) entries.push_back(name + L"\\");
  for (const std::wstring& name : files) entries.push_back(name);
  if (entries.size() > limit) entries.resize(limit);
  return entries;
}

}  // namespace explorer_standin
