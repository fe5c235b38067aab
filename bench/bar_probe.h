#pragma once
// What the bar benchmark watches besides the clock: the files of a folder (a rendered picture is a
// rewritten file), the paint messages reaching a window tree, pending update regions, and the live
// objects of the project's own handle owners (live_objects.h).
#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "live_objects.h"
#include "platform/handles.h"
#include "platform/subclass.h"

namespace bench {

// ---- files -------------------------------------------------------------------------------------

struct FileStamp {
  std::uint64_t size = 0;
  std::uint64_t lastWrite = 0;  // 100 ns units
  bool operator==(const FileStamp&) const = default;
};
using FolderSnapshot = std::map<std::wstring, FileStamp>;

inline FolderSnapshot Snapshot(const std::wstring& folder) {
  FolderSnapshot files;
  WIN32_FIND_DATAW data{};
  const corvane::unique_find find(::FindFirstFileW((folder + L"\\*").c_str(), &data));
  if (!find) return files;
  do {
    if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) continue;
    files[data.cFileName] = FileStamp{
        (static_cast<std::uint64_t>(data.nFileSizeHigh) << 32) | data.nFileSizeLow,
        (static_cast<std::uint64_t>(data.ftLastWriteTime.dwHighDateTime) << 32) | data.ftLastWriteTime.dwLowDateTime};
  } while (::FindNextFileW(find.get(), &data));
  return files;
}

// Files added, removed or rewritten (size or last-write time) from one snapshot to the next.
inline int ChangedFiles(const FolderSnapshot& before, const FolderSnapshot& after) {
  int changed = 0;
  for (const auto& [name, stamp] : before) {
    const auto found = after.find(name);
    if (found == after.end() || !(found->second == stamp)) ++changed;
  }
  for (const auto& entry : after) {
    if (before.find(entry.first) == before.end()) ++changed;
  }
  return changed;
}

inline std::uint64_t LastWrite(const std::wstring& path) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  if (!::GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data)) return 0;
  return (static_cast<std::uint64_t>(data.ftLastWriteTime.dwHighDateTime) << 32) | data.ftLastWriteTime.dwLowDateTime;
}

// ---- windows -----------------------------------------------------------------------------------

// A root window and all its descendants.
inline std::vector<HWND> TreeWindows(HWND root) {
  std::vector<HWND> windows{root};
  ::EnumChildWindows(
      root,
      [](HWND window, LPARAM list) -> BOOL {
        reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&windows));
  return windows;
}

// Windows of the tree with something invalid that no WM_PAINT has dealt with yet.
inline int PendingUpdates(HWND root) {
  int pending = 0;
  for (HWND window : TreeWindows(root)) {
    if (::GetUpdateRect(window, nullptr, FALSE)) ++pending;
  }
  return pending;
}

struct PaintCounts {
  long paint = 0;
  long erase = 0;
  long frame = 0;  // WM_NCPAINT
  long Total() const noexcept { return paint + erase + frame; }
};

// Counts the paint messages one window receives, whether dispatched from the queue or sent by
// UpdateWindow/RedrawWindow, then lets the window handle them as before.
class PaintCounter final : public corvane::SubclassWindow<PaintCounter, PaintCounts> {
 public:
  PaintCounter() noexcept : SubclassWindow(0xBE4C) {}
  LRESULT OnSubclassMessage(UINT message, WPARAM, LPARAM, bool& handled) noexcept {
    handled = false;
    PaintCounts* counts = GetOwner();
    if (counts == nullptr) return 0;
    if (message == WM_PAINT) ++counts->paint;
    if (message == WM_ERASEBKGND) ++counts->erase;
    if (message == WM_NCPAINT) ++counts->frame;
    return 0;
  }
};

// A counter on every window of a tree as it is now, removed again when this goes.
class TreePaintCounter {
 public:
  explicit TreePaintCounter(HWND root) {
    for (HWND window : TreeWindows(root)) {
      auto counter = std::make_unique<PaintCounter>();
      if (counter->Subclass(window, &m_counts)) m_counters.push_back(std::move(counter));
    }
  }
  TreePaintCounter(const TreePaintCounter&) = delete;
  TreePaintCounter& operator=(const TreePaintCounter&) = delete;

  const PaintCounts& Counts() const noexcept { return m_counts; }
  void Reset() noexcept { m_counts = PaintCounts{}; }
  int Windows() const noexcept { return static_cast<int>(m_counters.size()); }

 private:
  PaintCounts m_counts;
  std::vector<std::unique_ptr<PaintCounter>> m_counters;
};

// ---- memory -----------------------------------------------------------------------------------

// Bytes in busy blocks of every heap of the process: a leak of a few hundred bytes per picture shows
// here long before the working set moves past its page-sized noise.
inline std::uint64_t HeapBytesInUse() {
  HANDLE heaps[256];
  const DWORD count = std::min<DWORD>(::GetProcessHeaps(256, heaps), 256);
  std::uint64_t busy = 0;
  for (DWORD i = 0; i < count; ++i) {
    // Held for the walk, so that another thread's allocation cannot move the entries under it.
    struct Lock {
      HANDLE heap;
      ~Lock() { ::HeapUnlock(heap); }
    };
    if (!::HeapLock(heaps[i])) continue;
    const Lock lock{heaps[i]};
    PROCESS_HEAP_ENTRY entry{};
    while (::HeapWalk(heaps[i], &entry)) {
      if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) busy += entry.cbData;
    }
  }
  return busy;
}

}  // namespace bench
