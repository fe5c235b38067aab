// The tool button base in a real parent window: its four states under sent mouse messages
// (real input drives the same base in the PNG button's tests), enabling, focus, its default
// painting, and the theme notification of every button kind.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "client/theme.h"
#include "widget_support.h"
#include "widgets/default_tool_button.h"
#include "widgets/png_tool_button.h"
#include "widgets/text_tool_button.h"

using namespace widgettest;

namespace {

constexpr int kId = 1234;
constexpr RECT kButtonRect{20, 20, 120, 60};  // 100 x 40 in the parent

class DefaultToolButton : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(m_parent.CreateAt(300, 300, 260, 120));
    // Away from the button before every scenario.
    MoveMouseTo(m_parent.m_hWnd, 250, 110);
    m_button = std::make_unique<CDefaultToolButton>();
    ASSERT_NE(m_button->Create(m_parent.m_hWnd, &kButtonRect, L"", WS_CHILD | WS_VISIBLE, 0, kId), nullptr);
    Pump();
  }
  void TearDown() override {
    m_button.reset();
    ::ReleaseCapture();
  }
  HWND Button() const { return m_button->m_hWnd; }
  LRESULT Send(UINT message, int x = 50, int y = 20) {
    return ::SendMessageW(Button(), message, message == WM_LBUTTONDOWN ? MK_LBUTTON : 0, MAKELPARAM(x, y));
  }
  // Where the button's WM_LBUTTONUP will find the cursor; no input is generated.
  void PutCursor(int x, int y) const {
    POINT point{x, y};
    ::ClientToScreen(Button(), &point);
    ::SetCursorPos(point.x, point.y);
  }
  CCommandRecorder::Command Click() const {
    return {MAKEWPARAM(kId, BN_CLICKED), reinterpret_cast<LPARAM>(Button())};
  }

  CCommandRecorder m_parent;
  std::unique_ptr<CDefaultToolButton> m_button;
};

}  // namespace

TEST_F(DefaultToolButton, HoverReturnsOnlyAfterLeavingAndEntering) {
  Send(WM_MOUSEMOVE);
  EXPECT_EQ(m_button->GetState(), 1);
  EXPECT_TRUE(m_button->IsTracking());
  Send(WM_LBUTTONDOWN);
  EXPECT_EQ(m_button->GetState(), 2);
  Send(WM_MOUSEMOVE, 55, 22);
  EXPECT_EQ(m_button->GetState(), 2) << "a second move while tracking leaves the press alone";

  PutCursor(-40, 20);
  Send(WM_LBUTTONUP, -40, 20);
  EXPECT_EQ(m_button->GetState(), 0);
  EXPECT_TRUE(m_parent.commands.empty());
  Send(WM_MOUSEMOVE);
  EXPECT_EQ(m_button->GetState(), 0) << "still tracking: no new hover";
  Send(WM_MOUSELEAVE);
  EXPECT_FALSE(m_button->IsTracking());
  Send(WM_MOUSEMOVE);
  EXPECT_EQ(m_button->GetState(), 1);

  // The release reads where the cursor really is, not the message's coordinates.
  Send(WM_LBUTTONDOWN);
  PutCursor(10, 10);
  Send(WM_LBUTTONUP, -40, -40);
  EXPECT_EQ(m_parent.commands, std::vector<CCommandRecorder::Command>{Click()});
  EXPECT_EQ(m_button->GetState(), 1);
}

TEST_F(DefaultToolButton, EnableAndFocusStates) {
  Send(WM_MOUSEMOVE);
  ASSERT_EQ(m_button->GetState(), 1);
  ::EnableWindow(Button(), FALSE);  // WM_ENABLE 0
  EXPECT_EQ(m_button->GetState(), 3);
  EXPECT_FALSE(m_button->IsButtonEnabled());
  // Disabled: mouse and focus change nothing but the tracking flag.
  Send(WM_MOUSELEAVE);
  EXPECT_FALSE(m_button->IsTracking());
  for (UINT message : {WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_LBUTTONUP, WM_SETFOCUS, WM_KILLFOCUS}) {
    Send(message);
    EXPECT_EQ(m_button->GetState(), 3) << message;
  }
  EXPECT_TRUE(m_button->IsTracking());
  EXPECT_TRUE(m_parent.commands.empty());
  EXPECT_EQ(::GetCapture(), nullptr);

  ::EnableWindow(Button(), TRUE);  // WM_ENABLE 1, with the mouse still over it
  EXPECT_EQ(m_button->GetState(), 0);
  EXPECT_TRUE(m_button->IsButtonEnabled());

  m_button->EnableButton(false);
  EXPECT_FALSE(::IsWindowEnabled(Button()));
  EXPECT_EQ(m_button->GetState(), 3);
  m_button->EnableButton(true);
  EXPECT_TRUE(::IsWindowEnabled(Button()));
  EXPECT_EQ(m_button->GetState(), 0);

  ::SetFocus(Button());
  EXPECT_EQ(m_button->GetState(), 1);
  ::SetFocus(m_parent.m_hWnd);
  EXPECT_EQ(m_button->GetState(), 0);

  // Before its window exists the button only records the wish.
  CDefaultToolButton unborn;
  unborn.EnableButton(false);
  EXPECT_EQ(unborn.GetState(), 3);
  EXPECT_FALSE(unborn.IsButtonEnabled());
}

TEST_F(DefaultToolButton, DefaultPaintingUsesThePaletteOfStateAndTheme) {
  ThemeOverride theme(false);
  constexpr int kWidth = 100, kHeight = 40;
  // The palette as the client's designers fixed it: background and text by theme and state.
  const struct {
    bool dark;
    int state;
    COLORREF background, text;
  } palette[] = {
      {false, 0, RGB(255, 255, 255), RGB(18, 33, 51)},  {false, 1, RGB(229, 243, 255), RGB(18, 33, 51)},
      {false, 2, RGB(205, 232, 255), RGB(18, 33, 51)},  {false, 3, RGB(247, 250, 252), RGB(128, 128, 128)},
      {false, 9, RGB(255, 255, 255), RGB(18, 33, 51)},  {true, 0, RGB(51, 51, 51), RGB(255, 255, 255)},
      {true, 1, RGB(77, 77, 77), RGB(255, 255, 255)},   {true, 2, RGB(102, 102, 102), RGB(255, 255, 255)},
      {true, 3, RGB(40, 40, 40), RGB(128, 128, 128)},   {true, 9, RGB(51, 51, 51), RGB(255, 255, 255)},
  };
  for (const auto& row : palette) {
    const bool dark = row.dark;
    const int state = row.state;
    theme.Set(dark);
    {
      SCOPED_TRACE(::testing::Message() << (dark ? "dark" : "light") << " state " << state);
      // A 32-bit buffer of a known colour to paint over.
      const corvane::scoped_window_dc screen(Button());
      const corvane::unique_hdc dc(::CreateCompatibleDC(screen.get()));
      BITMAPINFO info{};
      info.bmiHeader = {sizeof(info.bmiHeader), kWidth, -kHeight, 1, 32, BI_RGB};
      void* bits = nullptr;
      const corvane::unique_hbitmap target(::CreateDIBSection(dc.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
      ASSERT_TRUE(target);
      const corvane::scoped_select selected(dc.get(), target.get());
      auto* pixels = static_cast<DWORD*>(bits);
      std::fill(pixels, pixels + kWidth * kHeight, 0xFF0A141Eu);  // (10, 20, 30)

      widgets::PaintDefaultToolButton(Button(), dc.get(), state, L"Hg");
      ::GdiFlush();
      const auto at = [&](int x, int y) {
        const DWORD p = pixels[y * kWidth + x];
        return Argb{255, static_cast<BYTE>(p >> 16), static_cast<BYTE>(p >> 8), static_cast<BYTE>(p)};
      };
      const Argb background = Opaque(row.background);
      EXPECT_EQ(at(8, 20), background);
      EXPECT_EQ(at(92, 30), background);
      // The edge column is left to the glow, which only hover draws.
      const Argb edge = at(0, 20);
      if (state == 1) {
        EXPECT_NE(edge, (Argb{255, 10, 20, 30}));
      } else {
        EXPECT_EQ(edge, (Argb{255, 10, 20, 30}));
      }
      // The darkest (light theme) or brightest (dark theme) ink is the text colour.
      const Argb text = Opaque(row.text);
      int best = 1 << 30;
      for (int y = 0; y < kHeight; ++y) {
        for (int x = 30; x < 70; ++x) {
          const Argb p = at(x, y);
          best = std::min(best, std::abs(p.r - text.r) + std::abs(p.g - text.g) + std::abs(p.b - text.b));
        }
      }
      EXPECT_LE(best, 45) << "no pixel near the text colour";
    }
  }
}

TEST_F(DefaultToolButton, PaintsThroughItsWindow) {
  ThemeOverride theme(true);
  Send(WM_MOUSEMOVE);
  const auto shown = CaptureClient(Button());
  ASSERT_TRUE(shown);
  EXPECT_EQ(shown->at(8, 20), Opaque(RGB(77, 77, 77))) << "dark hover";
  ::EnableWindow(Button(), FALSE);
  const auto disabled = CaptureClient(Button());
  ASSERT_TRUE(disabled);
  EXPECT_EQ(disabled->at(8, 20), Opaque(RGB(40, 40, 40))) << "dark disabled";
}

TEST_F(DefaultToolButton, ThemeNotificationsInvalidate) {
  CPngToolButton png;
  const RECT pngRect{130, 20, 180, 60};
  ASSERT_NE(png.Create(m_parent.m_hWnd, &pngRect, L"", WS_CHILD | WS_VISIBLE, 0, 77), nullptr);
  CTextToolButton text;
  const RECT textRect{190, 20, 250, 60};
  ASSERT_NE(text.Create(m_parent.m_hWnd, &textRect, L"", WS_CHILD | WS_VISIBLE, 0, 78), nullptr);

  wchar_t immersive[] = L"ImmersiveColorSet", element[] = L"WindowsThemeElement", lower[] = L"immersivecolorset";
  struct Case {
    const wchar_t* setting;
    bool base, pngButton;
  };
  const Case cases[] = {
      {immersive, true, true}, {element, false, true}, {lower, false, false}, {nullptr, false, false}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.setting == nullptr ? L"(null)" : c.setting);
    for (const auto& [window, expected] :
         {std::pair{Button(), c.base}, std::pair{text.m_hWnd, c.base}, std::pair{png.m_hWnd, c.pngButton}}) {
      ::ValidateRect(window, nullptr);
      EXPECT_EQ(::SendMessageW(window, WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(c.setting)), 0);
      RECT update{};
      EXPECT_EQ(::GetUpdateRect(window, &update, FALSE) != FALSE, expected);
    }
  }
  png.DestroyButton();
}
