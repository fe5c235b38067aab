#include "widgets/decoded_pictures.h"

#include <map>
#include <mutex>

#include "widgets/image_file.h"
#include "widgets/file_stamp.h"
#include "widgets/render_ledger.h"

namespace imageutil {

namespace {

struct Entry {
  FileStamp stamp;
  std::shared_ptr<const DecodedPicture> picture;
};

// The bar's and the prompt's pictures together stay well below this; past it the cache starts afresh.
constexpr std::size_t kMaxPixelBytes = 32u << 20;

std::mutex g_lock;
std::size_t g_pixelBytes = 0;
std::map<std::wstring, Entry>& Entries() {
  static std::map<std::wstring, Entry> entries;
  return entries;
}

std::shared_ptr<const DecodedPicture> Decode(const std::wstring& path) {
  CImageFile file;
  if (!file.Open(path)) return nullptr;
  auto picture = std::make_shared<DecodedPicture>();
  picture->width = file.Width();
  picture->height = file.Height();
  picture->premultiplied.resize(static_cast<std::size_t>(picture->width) * picture->height);
  if (!file.CopyPixels(PixelFormat32bppPARGB, picture->premultiplied.data(), static_cast<int>(picture->width * 4))) {
    return nullptr;
  }
  return picture;
}

}  // namespace

std::shared_ptr<const DecodedPicture> DecodedPictureOf(const std::wstring& path) noexcept try {
  const FileStamp stamp = StampOf(path);
  if (!stamp.exists) return nullptr;
  if (!IsReuseOn()) return Decode(path);
  {
    const std::lock_guard<std::mutex> guard(g_lock);
    const auto found = Entries().find(path);
    if (found != Entries().end() && SameStamp(found->second.stamp, stamp)) return found->second.picture;
  }
  std::shared_ptr<const DecodedPicture> picture = Decode(path);
  // The stamp read before the decode keys it: a file rewritten meanwhile is stamped anew next time.
  if (!picture || !SameStamp(stamp, StampOf(path))) return picture;
  const std::size_t bytes = picture->premultiplied.size() * sizeof(std::uint32_t);
  const std::lock_guard<std::mutex> guard(g_lock);
  auto& entries = Entries();
  if (const auto old = entries.find(path); old != entries.end()) {
    g_pixelBytes -= old->second.picture->premultiplied.size() * sizeof(std::uint32_t);
    entries.erase(old);
  }
  if (g_pixelBytes + bytes > kMaxPixelBytes) {
    entries.clear();
    g_pixelBytes = 0;
  }
  if (bytes <= kMaxPixelBytes) {
    entries[path] = Entry{stamp, picture};
    g_pixelBytes += bytes;
  }
  return picture;
} catch (...) {
  return nullptr;
}

void ForgetDecodedPictures() noexcept {
  const std::lock_guard<std::mutex> guard(g_lock);
  Entries().clear();
  g_pixelBytes = 0;
}

}  // namespace imageutil
