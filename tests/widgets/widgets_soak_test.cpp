// Nothing is lost over many buttons and paints: GDI headroom (how many more objects the process can
// still create, since Wine's GetGuiResources is a stub) and the project's own live-handle counters
// come back to where they were.
#include <windows.h>

#include <gtest/gtest.h>

#include <vector>

#include "widget_support.h"
#include "widgets/default_tool_button.h"
#include "widgets/image_helpers.h"
#include "widgets/png_tool_button.h"
#include "widgets/progress_ctrl.h"

using namespace widgettest;

namespace {

// How many more GDI objects the process can create before the table is full; all freed again.
int GdiHeadroom() {
  std::vector<HBRUSH> brushes;
  brushes.reserve(70000);
  while (brushes.size() < 70000) {
    const HBRUSH brush = ::CreateSolidBrush(RGB(1, 2, 3));
    if (brush == nullptr) break;
    brushes.push_back(brush);
  }
  for (const HBRUSH brush : brushes) ::DeleteObject(brush);
  return static_cast<int>(brushes.size());
}

}  // namespace

TEST(WidgetsSoak, FiveHundredButtonsLeaveNoGdiObjectBehind) {
  TempFolder folder;
  const std::wstring paths[] = {folder / L"a.png", folder / L"b.png", folder / L"c.png", folder / L"d.png"};
  for (const std::wstring& path : paths) WritePng(path, 24, 16, Argb{255, 90, 120, 200}, {{RECT{0, 0, 3, 3}, kTransparent}});
  CCommandRecorder parent;
  ASSERT_TRUE(parent.CreateAt(300, 550, 300, 60));

  // The other two controls live through the soak and are repainted every fifth round.
  CDefaultToolButton button;
  const RECT buttonRect{40, 4, 120, 34};
  ASSERT_NE(button.Create(parent.m_hWnd, &buttonRect, L"", WS_CHILD | WS_VISIBLE, 0, 4002), nullptr);
  CMyProgressCtrl progress;
  const RECT progressRect{130, 4, 290, 11};
  ASSERT_NE(progress.Create(parent.m_hWnd, &progressRect, L"", WS_CHILD | WS_VISIBLE, 0, 3003), nullptr);

  const auto round = [&](int i) {
    CPngToolButton png;
    // Half the rounds give one file to every slot, as the logo and the captions do.
    if (i % 2 == 0) {
      png.SetImages(paths[0], paths[0], paths[0], paths[0]);
    } else {
      png.SetImages(paths[0], paths[1], paths[2], paths[3]);
    }
    png.SetCaption(i % 4 < 2 ? L"" : L"cap");
    const RECT pngRect{4, 4, 4 + png.GetImageWidth(), 4 + png.GetImageHeight()};
    ASSERT_NE(png.Create(parent.m_hWnd, &pngRect, L"", WS_CHILD | WS_VISIBLE, 0, 4001), nullptr);
    ::SendMessageW(png.m_hWnd, WM_MOUSEMOVE, 0, MAKELPARAM(3, 3));
    ::UpdateWindow(png.m_hWnd);
    if (i % 5 == 0) {
      ::SendMessageW(button.m_hWnd, i % 10 == 0 ? WM_MOUSEMOVE : WM_MOUSELEAVE, 0, MAKELPARAM(3, 3));
      progress.SetPos(i % 101);
      ::UpdateWindow(button.m_hWnd);
      ::UpdateWindow(progress.m_hWnd);
    }
    if (i % 25 == 0) {
      TextImageStyle style;
      style.text = L"容量 " + std::to_wstring(i);
      ASSERT_TRUE(RenderTextToPng(style, folder / L"text.png"));
      ASSERT_EQ(CombinePngHorizontally(paths[0], folder / L"text.png", folder / L"joined.png", 4, 0), folder / L"joined.png");
      ASSERT_TRUE(StretchPngToFile(paths[1], folder / L"stretched.png", 40, 10));
      ASSERT_TRUE(png.SetImages(folder / L"joined.png", folder / L"stretched.png", paths[2], paths[3]));
      ::RedrawWindow(png.m_hWnd, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    }
    png.DestroyButton();
    Pump(1);
  };

  round(0);  // first use fills caches that stay for the process
  const int headroom = GdiHeadroom();
  const long bitmaps = corvane::unique_hbitmap::Live(), dcs = corvane::unique_hdc::Live();
  ASSERT_GT(headroom, 1000) << "the measure itself must work";

  for (int i = 1; i <= 500; ++i) {
    round(i);
    if (HasFatalFailure()) return;
  }

  EXPECT_EQ(corvane::unique_hbitmap::Live(), bitmaps);
  EXPECT_EQ(corvane::unique_hdc::Live(), dcs);
  // A leak of one object per round would cost 500; a few objects of lazily made caches are allowed.
  EXPECT_GE(GdiHeadroom(), headroom - 8) << "before: " << headroom;
}
