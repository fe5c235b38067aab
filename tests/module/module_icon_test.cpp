// The icon the folders' DefaultIcon ("<module>,0") names: index 0 of the DLL is our drawing, at
// every size Explorer asks for.
#include <gtest/gtest.h>
#include <windows.h>
#include <shellapi.h>

#include "host_process.h"
#include "platform/handles.h"

namespace {

// The colour of one pixel after drawing the icon at `size` on a black square.
COLORREF PixelOnBlack(HICON icon, int size, int x, int y) {
  const corvane::unique_hdc dc(::CreateCompatibleDC(nullptr));
  BITMAPINFO info{};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), size, -size, 1, 32, BI_RGB};
  void* bits = nullptr;
  const corvane::unique_hbitmap bitmap(::CreateDIBSection(dc.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
  if (!bitmap || bits == nullptr) return CLR_INVALID;
  const corvane::scoped_select select(dc.get(), bitmap.get());
  ::DrawIconEx(dc.get(), 0, 0, icon, size, size, 0, nullptr, DI_NORMAL);
  ::GdiFlush();
  const DWORD pixel = static_cast<const DWORD*>(bits)[y * size + x];
  return RGB((pixel >> 16) & 0xFF, (pixel >> 8) & 0xFF, pixel & 0xFF);
}

TEST(ModuleIcon, IndexZeroIsTheDrawnIconAtEverySize) {
  const std::wstring dll = moduletest::ProgramFolder() + L"Corvane.dll";
  EXPECT_EQ(::ExtractIconExW(dll.c_str(), -1, nullptr, nullptr, 0), 1u);
  for (const int size : {16, 32, 48, 256}) {
    SCOPED_TRACE(size);
    HICON raw = nullptr;
    UINT id = 0;
    ASSERT_EQ(::PrivateExtractIconsW(dll.c_str(), 0, size, size, &raw, &id, 1, 0), 1u);
    const corvane::unique_hicon icon(raw);
    ICONINFO iconInfo{};
    ASSERT_TRUE(::GetIconInfo(icon.get(), &iconInfo));
    const corvane::unique_hbitmap color(iconInfo.hbmColor);
    const corvane::unique_hbitmap mask(iconInfo.hbmMask);
    BITMAP bitmap{};
    ASSERT_TRUE(::GetObjectW(color.get(), sizeof bitmap, &bitmap));
    EXPECT_EQ(bitmap.bmWidth, size);
    // The rounded tile leaves the corner clear; above the cloud it is blue; the cloud is white.
    EXPECT_EQ(PixelOnBlack(icon.get(), size, 0, 0), RGB(0, 0, 0));
    const COLORREF edge = PixelOnBlack(icon.get(), size, size / 2, size / 8);
    EXPECT_GT(GetBValue(edge), GetRValue(edge) + 60) << std::hex << edge;
    const COLORREF cloud = PixelOnBlack(icon.get(), size, size * 3 / 10, size * 5 / 8);
    EXPECT_GT(GetRValue(cloud), 200) << std::hex << cloud;
  }
}

}  // namespace
