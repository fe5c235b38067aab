#include "widget_support.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/gdiplus_session.h"
#include "platform/handles.h"
#include "widgets/image_helpers.h"

namespace widgettest {

namespace {

// GDI+ for the whole program, as the Explorer window controller provides it in Explorer.
struct GdiplusEnvironment : ::testing::Environment {
  void SetUp() override { ASSERT_TRUE(session.emplace().ok()); }
  void TearDown() override { session.reset(); }
  std::optional<corvane::GdiplusSession> session;
};
[[maybe_unused]] ::testing::Environment* const g_gdiplus = ::testing::AddGlobalTestEnvironment(new GdiplusEnvironment);

}  // namespace

void WritePng(const std::wstring& path, int width, int height, Argb fill, const std::vector<Block>& blocks) {
  Gdiplus::Bitmap bitmap(width, height, PixelFormat32bppARGB);
  for (int i = 0; i < width * height; ++i) {
    Argb pixel = fill;
    for (const auto& [rect, colour] : blocks) pixel = ::PtInRect(&rect, POINT{i % width, i / width}) ? colour : pixel;
    ASSERT_EQ(bitmap.SetPixel(i % width, i / width, Gdiplus::Color(pixel.a, pixel.r, pixel.g, pixel.b)), Gdiplus::Ok);
  }
  CLSID png{};
  ASSERT_GE(GetEncoderClsid(L"image/png", &png), 0);
  ASSERT_EQ(bitmap.Save(path.c_str(), &png, nullptr), Gdiplus::Ok);
}

FILETIME LastWriteTime(const std::wstring& path) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  return ::GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data) ? data.ftLastWriteTime : FILETIME{};
}

bool SetLastWriteTime(const std::wstring& path, const FILETIME& time) {
  const corvane::unique_file file(::CreateFileW(path.c_str(), FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                                nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  return file && ::SetFileTime(file.get(), nullptr, nullptr, &time) != FALSE;
}

std::optional<Picture> ReadPicture(const std::wstring& path) {
  Gdiplus::Bitmap bitmap(path.c_str());
  if (bitmap.GetLastStatus() != Gdiplus::Ok) return std::nullopt;
  Picture picture{static_cast<int>(bitmap.GetWidth()), static_cast<int>(bitmap.GetHeight()), {}};
  for (int i = 0; i < picture.width * picture.height; ++i) {
    Gdiplus::Color colour;
    if (bitmap.GetPixel(i % picture.width, i / picture.width, &colour) != Gdiplus::Ok) return std::nullopt;
    picture.pixels.push_back(Argb{colour.GetA(), colour.GetR(), colour.GetG(), colour.GetB()});
  }
  return picture;
}

std::set<std::uint32_t> InkColours(const std::wstring& path, int from, int to) {
  std::set<std::uint32_t> colours;
  const auto picture = ReadPicture(path);
  for (int y = 0; picture && y < picture->height; ++y) {
    for (int x = from; x < std::min(to, picture->width); ++x) {
      if (picture->at(x, y).a >= 128) colours.insert(Rgb(picture->at(x, y)));
    }
  }
  return colours;
}

Picture PaintedBy(int width, int height, const std::function<void(HDC)>& paint) {
  const corvane::unique_hdc dc(::CreateCompatibleDC(nullptr));
  BITMAPINFO info{};
  info.bmiHeader = {sizeof(info.bmiHeader), width, -height, 1, 32, BI_RGB};
  void* bits = nullptr;
  const corvane::unique_hbitmap target(::CreateDIBSection(dc.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
  Picture picture{width, height, {}};
  if (!target) return picture;
  const corvane::scoped_select selected(dc.get(), target.get());
  auto* pixels = static_cast<DWORD*>(bits);
  std::fill(pixels, pixels + width * height, 0x0A141Eu);
  paint(dc.get());
  ::GdiFlush();
  // The DIB's alpha byte is not a picture's: what is painted counts as opaque.
  for (int i = 0; i < width * height; ++i) picture.pixels.push_back(Opaque(RGB(pixels[i] >> 16, pixels[i] >> 8, pixels[i])));
  return picture;
}

std::optional<Picture> CaptureClient(HWND window) {
  ::RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_ALLCHILDREN);
  RECT client{};
  ::GetClientRect(window, &client);
  const corvane::scoped_window_dc source(window);
  if (client.right <= 0 || client.bottom <= 0 || !source) return std::nullopt;
  bool copied = false;
  Picture picture = PaintedBy(client.right, client.bottom, [&](HDC dc) {
    copied = ::BitBlt(dc, 0, 0, client.right, client.bottom, source.get(), 0, 0, SRCCOPY) != FALSE;
  });
  return copied ? std::optional(picture) : std::nullopt;
}

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

LRESULT CCommandRecorder::OnEraseBkgnd(UINT, WPARAM wParam, LPARAM, bool&) {
  RECT client{};
  ::GetClientRect(m_hWnd, &client);
  ::SetDCBrushColor(reinterpret_cast<HDC>(wParam), RGB(255, 0, 255));
  ::FillRect(reinterpret_cast<HDC>(wParam), &client, static_cast<HBRUSH>(::GetStockObject(DC_BRUSH)));
  return 1;
}

void Pump(int rounds) {
  for (int round = 0; round < rounds; ++round) {
    if (round > 0) ::Sleep(15);
    MSG msg;
    while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
      ::TranslateMessage(&msg);
      ::DispatchMessageW(&msg);
    }
  }
}

void MoveMouseTo(HWND window, int x, int y) {
  POINT point{x, y};
  ::ClientToScreen(window, &point);
  ::SetCursorPos(point.x, point.y);
  Pump(3);
}

void LeftButton(bool down) {
  INPUT input{};
  input.type = INPUT_MOUSE;
  input.mi.dwFlags = down ? MOUSEEVENTF_LEFTDOWN : MOUSEEVENTF_LEFTUP;
  ::SendInput(1, &input, sizeof(input));
  Pump(3);
}

}  // namespace widgettest
