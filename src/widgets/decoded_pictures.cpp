#include "widgets/decoded_pictures.h"

#include <map>
#include <mutex>

#include "widgets/file_stamp.h"
#include "widgets/image_file.h"
#include "widgets/render_ledger.h"

namespace imageutil {

namespace {

struct Entry {
  FileStamp stamp;
  std::shared_ptr<const DecodedPicture> picture;
};

// The bar's and the prompt's pictures together stay well below this; past it the cache starts afresh.
constexpr std::size_t kMaxPixelBytes = 24u << 20;

std::mutex g_lock;
std::size_t g_pixelBytes = 0;
std::map<std::wstring, Entry>& Entries() {
  static std::map<std::wstring, Entry> entries;
  return entries;
}

std::size_t BytesOf(const DecodedPicture& picture) { return picture.argb.size() * sizeof(std::uint32_t); }

// Copies the pixels of a GDI+ bitmap as 32-bit ARGB.
std::shared_ptr<DecodedPicture> PixelsOf(Gdiplus::Bitmap& bitmap) {
  auto picture = std::make_shared<DecodedPicture>();
  picture->width = bitmap.GetWidth();
  picture->height = bitmap.GetHeight();
  if (picture->width == 0 || picture->height == 0) return nullptr;
  picture->argb.resize(static_cast<std::size_t>(picture->width) * picture->height);
  const Gdiplus::Rect whole(0, 0, static_cast<INT>(picture->width), static_cast<INT>(picture->height));
  Gdiplus::BitmapData data{};
  data.Width = picture->width;
  data.Height = picture->height;
  data.Stride = static_cast<INT>(picture->width * 4);
  data.PixelFormat = PixelFormat32bppARGB;
  data.Scan0 = picture->argb.data();
  if (bitmap.LockBits(&whole, Gdiplus::ImageLockModeRead | Gdiplus::ImageLockModeUserInputBuf, PixelFormat32bppARGB,
                      &data) != Gdiplus::Ok) {
    return nullptr;
  }
  if (bitmap.UnlockBits(&data) != Gdiplus::Ok) return nullptr;
  return picture;
}

void Enter(const std::wstring& path, const FileStamp& stamp, std::shared_ptr<const DecodedPicture> picture) {
  const std::size_t bytes = BytesOf(*picture);
  const std::lock_guard<std::mutex> guard(g_lock);
  auto& entries = Entries();
  if (const auto old = entries.find(path); old != entries.end()) {
    g_pixelBytes -= BytesOf(*old->second.picture);
    entries.erase(old);
  }
  if (g_pixelBytes + bytes > kMaxPixelBytes) {
    entries.clear();
    g_pixelBytes = 0;
  }
  if (bytes > kMaxPixelBytes) return;
  entries[path] = Entry{stamp, std::move(picture)};
  g_pixelBytes += bytes;
}

}  // namespace

std::unique_ptr<Gdiplus::Bitmap> DecodedPicture::View() const {
  auto view = std::make_unique<Gdiplus::Bitmap>(static_cast<INT>(width), static_cast<INT>(height),
                                                static_cast<INT>(width * 4), PixelFormat32bppARGB,
                                                reinterpret_cast<BYTE*>(const_cast<std::uint32_t*>(argb.data())));
  if (view->GetLastStatus() != Gdiplus::Ok) return nullptr;
  return view;
}

const std::vector<std::uint32_t>* DecodedPicture::Premultiplied() const {
  std::call_once(m_premultiplyOnce, [this] {
    const std::unique_ptr<Gdiplus::Bitmap> view = View();
    if (!view) return;
    std::vector<std::uint32_t> pixels(argb.size());
    const Gdiplus::Rect whole(0, 0, static_cast<INT>(width), static_cast<INT>(height));
    Gdiplus::BitmapData data{};
    data.Width = width;
    data.Height = height;
    data.Stride = static_cast<INT>(width * 4);
    data.PixelFormat = PixelFormat32bppPARGB;
    data.Scan0 = pixels.data();
    if (view->LockBits(&whole, Gdiplus::ImageLockModeRead | Gdiplus::ImageLockModeUserInputBuf, PixelFormat32bppPARGB,
                       &data) != Gdiplus::Ok ||
        view->UnlockBits(&data) != Gdiplus::Ok) {
      return;
    }
    m_premultiplied = std::move(pixels);
    m_premultipliedOk = true;
  });
  return m_premultipliedOk ? &m_premultiplied : nullptr;
}

std::shared_ptr<const DecodedPicture> DecodedPictureOf(const std::wstring& path) noexcept try {
  const FileStamp stamp = StampOf(path);
  if (!stamp.exists) return nullptr;
  if (IsReuseOn()) {
    const std::lock_guard<std::mutex> guard(g_lock);
    const auto found = Entries().find(path);
    if (found != Entries().end() && SameStamp(found->second.stamp, stamp)) return found->second.picture;
  }
  CImageFile file;
  if (!file.Open(path)) return nullptr;
  std::shared_ptr<const DecodedPicture> picture = PixelsOf(*file.get());
  // The stamp read before the decode keys it: a file rewritten meanwhile is decoded again next time.
  if (picture && IsReuseOn() && SameStamp(stamp, StampOf(path))) Enter(path, stamp, picture);
  return picture;
} catch (...) {
  return nullptr;
}

void EnterWrittenPicture(const std::wstring& path, Gdiplus::Bitmap& picture) noexcept {
  try {
    if (!IsReuseOn()) return;
    const FileStamp stamp = StampOf(path);
    std::shared_ptr<const DecodedPicture> pixels = PixelsOf(picture);
    if (stamp.exists && pixels) Enter(path, stamp, std::move(pixels));
  } catch (...) {
    // Without an entry the file is decoded when it is next needed.
  }
}

void ForgetDecodedPictures() noexcept {
  const std::lock_guard<std::mutex> guard(g_lock);
  Entries().clear();
  g_pixelBytes = 0;
}

}  // namespace imageutil
