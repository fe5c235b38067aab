#pragma once
// Locations as the stand-in's users write them, and the shell's names for a folder's PIDL.
// Every PIDL here comes from Wine's own shell, so the add-in sees real ones.
#include <windows.h>
#include <shlobj.h>

#include <string>
#include <vector>

#include "platform/handles.h"

namespace explorer_standin {

// "::ThisPC" (any case) names This PC; anything else goes to SHParseDisplayName, after making a
// relative file path absolute. Parsing names such as "::{GUID}" are passed on as they are.
HRESULT ParseLocation(const std::wstring& location, corvane::unique_pidl& pidl);

// The file-system path, empty for a virtual folder (SHGetPathFromIDListW fails for those).
std::wstring FileSystemPath(PCIDLIST_ABSOLUTE pidl);
// The desktop-absolute parsing name: the path for file-system folders, "::{…}" for virtual ones.
std::wstring ParsingName(PCIDLIST_ABSOLUTE pidl);
// What Explorer puts in the title bar.
std::wstring DisplayName(PCIDLIST_ABSOLUTE pidl);

// A few entries to show in the file list: names in a file-system folder, drives in This PC.
std::vector<std::wstring> SampleEntries(PCIDLIST_ABSOLUTE pidl, size_t limit);

}  // namespace explorer_standin
