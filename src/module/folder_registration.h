#pragma once
// The namespace folders' registry entries: written from a table per folder, removed by fixed steps.
#include <windows.h>

#include <vector>

namespace corvane::registration {

struct FolderEntry {
  HKEY hive;
  const wchar_t* keyFormat;    // at most one "%s"
  const wchar_t* keyArgument;  // the folder's CLSID string, or L"" for keys without "%s"
  const wchar_t* valueName;    // nullptr for the default value
  const void* data;            // REG_SZ: a format whose "%s" is the module path; REG_DWORD: a DWORD
  DWORD type;                  // REG_SZ or REG_DWORD
};

// Which folder a table or a removal is about.
enum class NamespaceFolder { MyComputer, Desktop };

// The folder's table, in writing order, with `clsid` and `libid` (braced upper-case forms) bound
// where the entries name them; the strings must outlive the table.
std::vector<FolderEntry> FolderTable(NamespaceFolder folder, const wchar_t* clsid, const wchar_t* libid);

// Writes the folder's table; a key that cannot be created stops the walk and unregisters the whole
// server. SELFREG_E_CLASS or a formatting failure on error.
HRESULT RegisterFolder(NamespaceFolder folder);

// S_OK, or SELFREG_E_CLASS when a removal step failed (all steps run).
HRESULT UnregisterFolder(NamespaceFolder folder);

}  // namespace corvane::registration
