#include "work_floor.h"

#include <shlwapi.h>
#include <wrl/client.h>

#include <vector>

#include "bench_util.h"
#include "platform/gdiplus_headers.h"

namespace bench {

namespace {

// Captions the bar renders, short and long, Chinese and figures.
const wchar_t* const kCaptions[] = {L"设置", L"同步进度", L"819GB/2TB", L"开通会员，空间翻倍"};

bool CaptionToMemory(const wchar_t* text, const CLSID& png) {
  Gdiplus::Bitmap probe(1, 1, PixelFormat32bppARGB);
  Gdiplus::Graphics measure(&probe);
  Gdiplus::Font font(L"Microsoft YaHei", 12.0f, Gdiplus::FontStyleRegular, Gdiplus::UnitPixel);
  Gdiplus::RectF bounds;
  if (measure.MeasureString(text, -1, &font, Gdiplus::PointF(0, 0), &bounds) != Gdiplus::Ok) return false;
  Gdiplus::Bitmap canvas(static_cast<INT>(bounds.Width) + 1, static_cast<INT>(bounds.Height) + 1, PixelFormat32bppARGB);
  canvas.SetResolution(96.0f, 96.0f);
  {
    Gdiplus::Graphics graphics(&canvas);
    graphics.SetTextRenderingHint(Gdiplus::TextRenderingHintAntiAlias);
    graphics.Clear(Gdiplus::Color(0, 0, 0, 0));
    const Gdiplus::SolidBrush brush(Gdiplus::Color(255, 102, 102, 102));
    graphics.DrawString(text, -1, &font, Gdiplus::PointF(0, 0), &brush);
  }
  Microsoft::WRL::ComPtr<IStream> stream;
  *stream.ReleaseAndGetAddressOf() = ::SHCreateMemStream(nullptr, 0);
  return stream && canvas.Save(stream.Get(), &png, nullptr) == Gdiplus::Ok;
}

bool FindPng(CLSID& png) {
  UINT count = 0, bytes = 0;
  if (Gdiplus::GetImageEncodersSize(&count, &bytes) != Gdiplus::Ok || bytes == 0) return false;
  std::vector<BYTE> block(bytes);
  auto* codecs = reinterpret_cast<Gdiplus::ImageCodecInfo*>(block.data());
  if (Gdiplus::GetImageEncoders(count, bytes, codecs) != Gdiplus::Ok) return false;
  for (UINT i = 0; i < count; ++i) {
    if (codecs[i].MimeType != nullptr && ::lstrcmpW(codecs[i].MimeType, L"image/png") == 0) {
      png = codecs[i].Clsid;
      return true;
    }
  }
  return false;
}

LRESULT CALLBACK PaintProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message != WM_PAINT) return ::DefWindowProcW(window, message, wParam, lParam);
  PAINTSTRUCT ps{};
  const HDC dc = ::BeginPaint(window, &ps);
  const HDC memory = ::CreateCompatibleDC(dc);
  const HBITMAP buffer = ::CreateCompatibleBitmap(dc, 100, 30);
  const HGDIOBJ old = ::SelectObject(memory, buffer);
  const RECT all{0, 0, 100, 30};
  ::FillRect(memory, &all, static_cast<HBRUSH>(::GetStockObject(WHITE_BRUSH)));
  ::BitBlt(dc, 0, 0, 100, 30, memory, 0, 0, SRCCOPY);
  ::SelectObject(memory, old);
  ::DeleteObject(buffer);
  ::DeleteDC(memory);
  ::EndPaint(window, &ps);
  return 0;
}

template <class Work>
double MedianMs(int rounds, Work&& work) {
  std::vector<double> samples;
  for (int i = 0; i < rounds; ++i) {
    const double t0 = NowMicroseconds();
    work(i);
    samples.push_back((NowMicroseconds() - t0) / 1000.0);
  }
  return Median(samples);
}

}  // namespace

FloorUnits MeasureFloorUnits(HWND parent, const std::wstring& key, const std::wstring& value) {
  FloorUnits units;
  CLSID png{};
  if (FindPng(png)) units.caption = MedianMs(21, [&](int i) { CaptionToMemory(kCaptions[i % 4], png); });

  WNDCLASSW paintClass{};
  paintClass.lpfnWndProc = PaintProc;
  paintClass.hInstance = ::GetModuleHandleW(nullptr);
  paintClass.lpszClassName = L"CorvaneBenchFloor";
  ::RegisterClassW(&paintClass);
  units.window = MedianMs(51, [&](int) {
    const HWND child = ::CreateWindowExW(0, L"CorvaneBenchFloor", L"", WS_CHILD | WS_VISIBLE, 0, 0, 100, 30, parent,
                                         nullptr, paintClass.hInstance, nullptr);
    ::DestroyWindow(child);
  });
  const HWND painted = ::CreateWindowExW(0, L"CorvaneBenchFloor", L"", WS_CHILD | WS_VISIBLE, 0, 0, 100, 30, parent,
                                         nullptr, paintClass.hInstance, nullptr);
  units.paint = MedianMs(51, [&](int) {
    ::InvalidateRect(painted, nullptr, FALSE);
    ::UpdateWindow(painted);
  });
  ::DestroyWindow(painted);

  // The add-in's profile counts each value query on an open key as one read; so does the floor.
  HKEY open = nullptr;
  if (::RegOpenKeyExW(HKEY_CURRENT_USER, key.c_str(), 0, KEY_READ, &open) == ERROR_SUCCESS) {
    units.read = MedianMs(201, [&](int) {
      wchar_t text[64] = {};
      DWORD size = sizeof(text);
      ::RegQueryValueExW(open, value.c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(text), &size);
    });
    ::RegCloseKey(open);
  }
  return units;
}

double FloorMs(const FloorUnits& units, const PhaseWork& work) {
  return static_cast<double>(work.captions) * units.caption + static_cast<double>(work.windows) * units.window +
         static_cast<double>(work.paints) * units.paint + static_cast<double>(work.reads) * units.read;
}

}  // namespace bench
