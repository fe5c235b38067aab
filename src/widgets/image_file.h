#pragma once
// A picture file decoded from a copy of its bytes: the file is read and closed at once, and the
// decoded bitmap lives on the in-memory stream that GDI+ needs for as long as the bitmap exists.
#include <windows.h>
#include <wrl/client.h>

#include <memory>
#include <string>

#include "platform/gdiplus_headers.h"

namespace imageutil {

class CImageFile {
 public:
  // False when the file cannot be read or GDI+ cannot decode it.
  bool Open(const std::wstring& path);
  Gdiplus::Bitmap* get() const noexcept { return m_bitmap.get(); }
  UINT Width() const { return m_bitmap ? m_bitmap->GetWidth() : 0; }
  UINT Height() const { return m_bitmap ? m_bitmap->GetHeight() : 0; }
  // Copies the pixels, converted to format, into a caller's buffer of Height() rows of stride bytes.
  bool CopyPixels(Gdiplus::PixelFormat format, void* bits, int stride) const;

 private:
  Microsoft::WRL::ComPtr<IStream> m_stream;   // declared first: released after the bitmap
  std::unique_ptr<Gdiplus::Bitmap> m_bitmap;
};

}  // namespace imageutil
