#include "widget_support.h"

#include <gtest/gtest.h>

#include <memory>
#include <ostream>

#include "client_keys.h"
#include "platform/gdiplus_session.h"
#include "platform/handles.h"
#include "widgets/image_helpers.h"

namespace widgettest {

namespace {

// GDI+ for the whole program, as the Explorer window controller provides it in Explorer.
class GdiplusEnvironment : public ::testing::Environment {
 public:
  void SetUp() override {
    m_session = std::make_unique<corvane::GdiplusSession>();
    ASSERT_TRUE(m_session->ok());
  }
  void TearDown() override { m_session.reset(); }

 private:
  std::unique_ptr<corvane::GdiplusSession> m_session;
};
[[maybe_unused]] ::testing::Environment* const g_gdiplus = ::testing::AddGlobalTestEnvironment(new GdiplusEnvironment);

}  // namespace

void PrintTo(const Argb& pixel, std::ostream* os) {
  *os << "ARGB(" << int(pixel.a) << ", " << int(pixel.r) << ", " << int(pixel.g) << ", " << int(pixel.b) << ")";
}

void WritePng(const std::wstring& path, int width, int height, Argb fill, const std::vector<Block>& blocks) {
  Gdiplus::Bitmap bitmap(width, height, PixelFormat32bppARGB);
  ASSERT_EQ(bitmap.GetLastStatus(), Gdiplus::Ok);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const POINT point{x, y};
      Argb pixel = fill;
      for (const Block& block : blocks) {
        if (::PtInRect(&block.rect, point)) pixel = block.colour;
      }
      ASSERT_EQ(bitmap.SetPixel(x, y, Gdiplus::Color(pixel.a, pixel.r, pixel.g, pixel.b)), Gdiplus::Ok);
    }
  }
  CLSID png{};
  ASSERT_GE(GetEncoderClsid(L"image/png", &png), 0);
  ASSERT_EQ(bitmap.Save(path.c_str(), &png, nullptr), Gdiplus::Ok);
}

std::optional<Picture> ReadPicture(const std::wstring& path) {
  Gdiplus::Bitmap bitmap(path.c_str());
  if (bitmap.GetLastStatus() != Gdiplus::Ok) return std::nullopt;
  Picture picture;
  picture.width = static_cast<int>(bitmap.GetWidth());
  picture.height = static_cast<int>(bitmap.GetHeight());
  picture.pixels.reserve(static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height));
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      Gdiplus::Color colour;
      if (bitmap.GetPixel(x, y, &colour) != Gdiplus::Ok) return std::nullopt;
      picture.pixels.push_back(Argb{colour.GetA(), colour.GetR(), colour.GetG(), colour.GetB()});
    }
  }
  return picture;
}

PublishedZoom::PublishedZoom(std::uint64_t windowNumber, const std::wstring& text)
    : m_name(std::to_wstring(windowNumber)) {
  EXPECT_EQ(::RegSetKeyValueW(HKEY_CURRENT_USER, testsupport::kZoomKey, m_name.c_str(), REG_SZ, text.c_str(),
                              static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))),
            ERROR_SUCCESS);
}

PublishedZoom::~PublishedZoom() { ::RegDeleteKeyValueW(HKEY_CURRENT_USER, testsupport::kZoomKey, m_name.c_str()); }

std::span<const CCommandRecorder::MessageEntry> CCommandRecorder::MessageMap() {
  static const MessageEntry map[] = {
      {WM_COMMAND, &CCommandRecorder::OnCommand},
      {WM_ERASEBKGND, &CCommandRecorder::OnEraseBkgnd},
  };
  return map;
}

bool CCommandRecorder::CreateAt(int x, int y, int width, int height) {
  const RECT rect{x, y, x + width, y + height};
  if (Create(nullptr, &rect, L"widget test parent", WS_POPUP, WS_EX_TOPMOST | WS_EX_TOOLWINDOW) == nullptr) return false;
  ::SetWindowPos(m_hWnd, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_SHOWWINDOW | SWP_NOACTIVATE);
  ::UpdateWindow(m_hWnd);
  return true;
}

LRESULT CCommandRecorder::OnCommand(UINT, WPARAM wParam, LPARAM lParam, bool&) {
  commands.push_back({wParam, lParam});
  return 0;
}

LRESULT CCommandRecorder::OnEraseBkgnd(UINT, WPARAM wParam, LPARAM, bool&) {
  RECT client{};
  ::GetClientRect(m_hWnd, &client);
  ::SetDCBrushColor(reinterpret_cast<HDC>(wParam), kParentColour);
  ::FillRect(reinterpret_cast<HDC>(wParam), &client, static_cast<HBRUSH>(::GetStockObject(DC_BRUSH)));
  return 1;
}

void PrintTo(const CCommandRecorder::Command& command, std::ostream* os) {
  *os << "{wParam 0x" << std::hex << command.wParam << ", lParam 0x" << command.lParam << std::dec << "}";
}

void Pump(int rounds) {
  for (int round = 0; round < rounds; ++round) {
    MSG msg;
    while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
      ::TranslateMessage(&msg);
      ::DispatchMessageW(&msg);
    }
    if (round + 1 < rounds) ::Sleep(15);
  }
}

COLORREF ToColorRef(const Argb& pixel) { return RGB(pixel.r, pixel.g, pixel.b); }

Argb Opaque(COLORREF colour) { return Argb{255, GetRValue(colour), GetGValue(colour), GetBValue(colour)}; }

std::optional<Picture> CaptureClient(HWND window) {
  ::RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_ALLCHILDREN);
  RECT client{};
  ::GetClientRect(window, &client);
  const int width = client.right, height = client.bottom;
  if (width <= 0 || height <= 0) return std::nullopt;
  const corvane::scoped_window_dc source(window);
  const corvane::unique_hdc memory(::CreateCompatibleDC(source.get()));
  BITMAPINFO info{};
  info.bmiHeader = {sizeof(info.bmiHeader), width, -height, 1, 32, BI_RGB};
  void* bits = nullptr;
  const corvane::unique_hbitmap target(::CreateDIBSection(source.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
  if (!source || !memory || !target || bits == nullptr) return std::nullopt;
  {
    const corvane::scoped_select selected(memory.get(), target.get());
    if (!::BitBlt(memory.get(), 0, 0, width, height, source.get(), 0, 0, SRCCOPY)) return std::nullopt;
  }
  ::GdiFlush();
  Picture picture;
  picture.width = width;
  picture.height = height;
  const auto* pixels = static_cast<const BYTE*>(bits);
  for (int i = 0; i < width * height; ++i) {
    // The screen has no alpha: what is shown is opaque.
    picture.pixels.push_back(Argb{255, pixels[i * 4 + 2], pixels[i * 4 + 1], pixels[i * 4 + 0]});
  }
  return picture;
}

void MoveMouseTo(HWND window, int x, int y) {
  POINT point{x, y};
  ::ClientToScreen(window, &point);
  ::SetCursorPos(point.x, point.y);
  Pump();
}

void LeftButton(bool down) {
  INPUT input{};
  input.type = INPUT_MOUSE;
  input.mi.dwFlags = down ? MOUSEEVENTF_LEFTDOWN : MOUSEEVENTF_LEFTUP;
  ::SendInput(1, &input, sizeof(input));
  Pump();
}

}  // namespace widgettest
