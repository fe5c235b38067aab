#include "widgets/image_file.h"

#include "platform/work_profile.h"

#include <shlwapi.h>

#include <vector>

#include "platform/handles.h"

namespace imageutil {

namespace {

// Pictures of the skin are a few kilobytes; anything this large is not one of ours.
constexpr LONGLONG kMaxFileBytes = 64LL * 1024 * 1024;

bool ReadWholeFile(const std::wstring& path, std::vector<BYTE>& bytes) {
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

}  // namespace

bool CImageFile::Open(const std::wstring& path) {
  const corvane::profile::Timed timed(corvane::profile::Work::Decode);
  m_bitmap.reset();
  m_stream.Reset();
  std::vector<BYTE> bytes;
  if (!ReadWholeFile(path, bytes)) return false;
  // SHCreateMemStream keeps its own copy of the bytes.
  // The stream is created with one reference, which this owner takes (mingw-w64's Attach adds another).
  *m_stream.ReleaseAndGetAddressOf() = ::SHCreateMemStream(bytes.data(), static_cast<UINT>(bytes.size()));
  if (!m_stream) return false;
  auto bitmap = std::make_unique<Gdiplus::Bitmap>(m_stream.Get());
  if (bitmap->GetLastStatus() != Gdiplus::Ok || bitmap->GetWidth() == 0 || bitmap->GetHeight() == 0) {
    m_stream.Reset();
    return false;
  }
  m_bitmap = std::move(bitmap);
  return true;
}

bool CImageFile::CopyPixels(Gdiplus::PixelFormat format, void* bits, int stride) const {
  if (!m_bitmap || bits == nullptr) return false;
  const Gdiplus::Rect whole(0, 0, static_cast<INT>(Width()), static_cast<INT>(Height()));
  Gdiplus::BitmapData data{};
  data.Width = Width();
  data.Height = Height();
  data.Stride = stride;
  data.PixelFormat = format;
  data.Scan0 = bits;
  if (m_bitmap->LockBits(&whole, Gdiplus::ImageLockModeRead | Gdiplus::ImageLockModeUserInputBuf, format, &data) !=
      Gdiplus::Ok) {
    return false;
  }
  return m_bitmap->UnlockBits(&data) == Gdiplus::Ok;
}

}  // namespace imageutil
