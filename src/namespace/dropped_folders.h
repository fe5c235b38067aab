#pragma once
// Folders handed to the view (dropped or pasted) become one command for the client: up to five go
// by path, more than that are refused by the client's own "open_invaild" command.
#include <windows.h>
#include <shellapi.h>

#include <optional>
#include <string>
#include <vector>

namespace droppedfolders {

// The existing folders among the dropped paths, in drop order; files and empty entries are skipped.
std::vector<std::wstring> CollectFolders(HDROP drop);

// Sends the command for the folders and returns the command line that came back, for the caller's
// log line (empty when the start-up gate refused it); nothing is sent, and nothing returned, for no
// folders.
std::optional<std::wstring> SendFolders(const std::vector<std::wstring>& folders);

}  // namespace droppedfolders
