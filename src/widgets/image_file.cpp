#include "widgets/image_file.h"

#include <shlwapi.h>
#include <wrl/client.h>

#include <atomic>
#include <limits>

#include "platform/handles.h"
#include "platform/work_profile.h"
#include "widgets/image_helpers.h"

namespace imageutil {

namespace {

using Gdiplus::Ok;

// Pictures of the skin are a few kilobytes; anything this large is not one of ours.
constexpr LONGLONG kMaxFileBytes = 64LL * 1024 * 1024;

// The PNG encoder's class: GDI+'s built-in codecs keep their CLSIDs across a shutdown and restart,
// so it is looked up until found once and then kept for the process. Two threads that both look it
// up store the same value.
bool PngEncoder(CLSID& clsid) {
  static std::atomic<bool> known{false};
  static CLSID found{};
  static std::atomic_flag storing = ATOMIC_FLAG_INIT;
  if (known.load(std::memory_order_acquire)) {
    clsid = found;
    return true;
  }
  if (GetEncoderClsid(L"image/png", &clsid) < 0) return false;
  if (!storing.test_and_set()) {
    found = clsid;
    known.store(true, std::memory_order_release);
  }
  return true;
}

// Copies a bitmap's pixels in `format` into rows of a caller's buffer.
bool CopyPixels(Gdiplus::Bitmap& bitmap, Gdiplus::PixelFormat format, UINT width, UINT height, std::uint32_t* rows) {
  const Gdiplus::Rect whole(0, 0, static_cast<INT>(width), static_cast<INT>(height));
  Gdiplus::BitmapData data{};
  data.Width = width;
  data.Height = height;
  data.Stride = static_cast<INT>(width * 4);
  data.PixelFormat = format;
  data.Scan0 = rows;
  if (bitmap.LockBits(&whole, Gdiplus::ImageLockModeRead | Gdiplus::ImageLockModeUserInputBuf, format, &data) != Ok) {
    return false;
  }
  return bitmap.UnlockBits(&data) == Ok;
}

}  // namespace

std::unique_ptr<Gdiplus::Bitmap> DecodedPicture::View() const {
  auto view = std::make_unique<Gdiplus::Bitmap>(static_cast<INT>(width), static_cast<INT>(height),
                                                static_cast<INT>(width * 4), PixelFormat32bppARGB,
                                                reinterpret_cast<BYTE*>(const_cast<std::uint32_t*>(argb.data())));
  if (view->GetLastStatus() != Ok) return nullptr;
  return view;
}

bool ReadWholeFile(const std::wstring& path, Bytes& bytes) {
  const corvane::profile::Timed timed(corvane::profile::Work::FileRead);
  // Every sharing mode: the bar may be rewriting or replacing the file while a button reads it.
  const corvane::unique_file file(::CreateFileW(path.c_str(), GENERIC_READ,
                                                FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                                OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) return false;
  LARGE_INTEGER size{};
  if (!::GetFileSizeEx(file.get(), &size) || size.QuadPart <= 0 || size.QuadPart > kMaxFileBytes) return false;
  bytes.resize(static_cast<size_t>(size.QuadPart));
  DWORD read = 0;
  return ::ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr) && read == bytes.size();
}

bool WriteWholeFile(const std::wstring& path, const Bytes& bytes) {
  if (bytes.size() > std::numeric_limits<DWORD>::max()) return false;
  const corvane::profile::Timed timed(corvane::profile::Work::FileWrite);
  // Readers keep their every-mode sharing; a second writer of the same name at the same moment
  // fails its open instead of interleaving its bytes with ours.
  const corvane::unique_file file(::CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                                nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) return false;
  DWORD written = 0;
  return ::WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
         written == bytes.size();
}

std::shared_ptr<DecodedPicture> DecodePicture(const Bytes& bytes) {
  const corvane::profile::Timed timed(corvane::profile::Work::Decode);
  if (bytes.empty() || bytes.size() > std::numeric_limits<UINT>::max()) return nullptr;
  // SHCreateMemStream keeps its own copy of the bytes for as long as the bitmap reads them. It is
  // created with one reference, which this owner takes (mingw-w64's Attach would add another).
  Microsoft::WRL::ComPtr<IStream> stream;
  *stream.ReleaseAndGetAddressOf() = ::SHCreateMemStream(bytes.data(), static_cast<UINT>(bytes.size()));
  if (!stream) return nullptr;
  Gdiplus::Bitmap bitmap(stream.Get());
  if (bitmap.GetLastStatus() != Ok) return nullptr;
  return PixelsOf(bitmap);
}

std::shared_ptr<DecodedPicture> PixelsOf(Gdiplus::Bitmap& bitmap) {
  auto picture = std::make_shared<DecodedPicture>();
  picture->width = bitmap.GetWidth();
  picture->height = bitmap.GetHeight();
  if (picture->width == 0 || picture->height == 0) return nullptr;
  picture->argb.resize(static_cast<std::size_t>(picture->width) * picture->height);
  if (!CopyPixels(bitmap, PixelFormat32bppARGB, picture->width, picture->height, picture->argb.data())) return nullptr;
  return picture;
}

std::shared_ptr<const Pixels> Premultiply(const DecodedPicture& picture) {
  const corvane::profile::Timed timed(corvane::profile::Work::Premultiply);
  const std::unique_ptr<Gdiplus::Bitmap> view = picture.View();
  if (!view) return nullptr;
  auto rows = std::make_shared<Pixels>(picture.argb.size());
  if (!CopyPixels(*view, PixelFormat32bppPARGB, picture.width, picture.height, rows->data())) return nullptr;
  return rows;
}

bool EncodePng(Gdiplus::Bitmap& bitmap, Bytes& png) {
  const corvane::profile::Timed timed(corvane::profile::Work::Encode);
  CLSID encoder{};
  if (!PngEncoder(encoder)) return false;
  Microsoft::WRL::ComPtr<IStream> stream;
  *stream.ReleaseAndGetAddressOf() = ::SHCreateMemStream(nullptr, 0);
  if (!stream || bitmap.Save(stream.Get(), &encoder, nullptr) != Ok) return false;
  STATSTG stat{};
  if (FAILED(stream->Stat(&stat, STATFLAG_NONAME)) || stat.cbSize.QuadPart == 0 ||
      stat.cbSize.QuadPart > static_cast<ULONGLONG>(kMaxFileBytes)) {
    return false;
  }
  png.resize(static_cast<size_t>(stat.cbSize.QuadPart));
  const LARGE_INTEGER start{};
  ULONG read = 0;
  return SUCCEEDED(stream->Seek(start, STREAM_SEEK_SET, nullptr)) &&
         stream->Read(png.data(), static_cast<ULONG>(png.size()), &read) == S_OK && read == png.size();
}

}  // namespace imageutil
