#include "namespace/dropped_folders.h"

#include "client/launcher.h"
#include "client/reg_util.h"

namespace droppedfolders {

namespace {
// The client takes at most this many folders in one "open_folders" command.
constexpr size_t kMaxFolders = 5;
}  // namespace

std::vector<std::wstring> CollectFolders(HDROP drop) {
  std::vector<std::wstring> folders;
  const UINT count = ::DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0);
  for (UINT i = 0; i < count; ++i) {
    wchar_t path[MAX_PATH] = {};
    ::DragQueryFileW(drop, i, path, MAX_PATH);
    if (path[0] == L'\0') continue;
    if (regUtil::IsDirectory(path)) folders.emplace_back(path);
  }
  return folders;
}

std::optional<std::wstring> SendFolders(const std::vector<std::wstring>& folders) {
  if (folders.empty()) return std::nullopt;
  // "open_invaild" is the client's own word, spelled as the client expects it.
  if (folders.size() > kMaxFolders) return cx::exeCloudCommandLine(L"syncdisk", L"open_invaild");
  std::wstring joined;
  for (const std::wstring& folder : folders) {
    if (!joined.empty()) joined += L'|';
    joined += folder;
  }
  return cx::exeCloudCommandLine(L"syncdisk", L"open_folders", joined);
}

}  // namespace droppedfolders
