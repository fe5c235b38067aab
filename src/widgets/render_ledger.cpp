#include "widgets/render_ledger.h"

#include <atomic>
#include <map>
#include <mutex>

#include "platform/work_profile.h"
#include "widgets/decoded_pictures.h"

namespace imageutil {

namespace {

struct Entry {
  std::wstring inputs;
  FileStamp stamp;
};

// Explorer's window threads render concurrently. Bounded: the bar writes a few dozen names, so a
// ledger past this size is forgotten whole rather than searched for the oldest entry.
constexpr size_t kMaxEntries = 256;

std::mutex g_lock;
std::mutex g_writes;
std::map<std::wstring, Entry>& Entries() {
  static std::map<std::wstring, Entry> entries;
  return entries;
}
std::atomic<bool> g_reuse{true};

}  // namespace

std::unique_lock<std::mutex> LockPictureWrites() { return std::unique_lock<std::mutex>(g_writes); }

bool IsCurrent(const std::wstring& outPath, const std::wstring& inputs) noexcept {
  try {
    if (!g_reuse.load()) return false;
    FileStamp recorded;
    {
      const std::lock_guard<std::mutex> guard(g_lock);
      const auto found = Entries().find(outPath);
      if (found == Entries().end() || found->second.inputs != inputs) return false;
      recorded = found->second.stamp;
    }
    if (!SameStamp(recorded, StampOf(outPath))) return false;
    corvane::profile::Add(corvane::profile::Work::PictureReused, 0);
    return true;
  } catch (...) {
    return false;
  }
}

void Record(const std::wstring& outPath, const std::wstring& inputs, bool written) noexcept {
  try {
    if (!g_reuse.load()) return;
    const FileStamp stamp = written ? StampOf(outPath) : FileStamp{};
    const std::lock_guard<std::mutex> guard(g_lock);
    auto& entries = Entries();
    if (!stamp.exists) {
      entries.erase(outPath);
      return;
    }
    if (entries.size() >= kMaxEntries && entries.find(outPath) == entries.end()) entries.clear();
    entries[outPath] = Entry{inputs, stamp};
  } catch (...) {
    // Without an entry the next call simply renders.
  }
}

void SetReuse(bool reuse) noexcept {
  g_reuse.store(reuse);
  ForgetDecodedPictures();
  const std::lock_guard<std::mutex> guard(g_lock);
  Entries().clear();
}

bool IsReuseOn() noexcept { return g_reuse.load(); }

}  // namespace imageutil
