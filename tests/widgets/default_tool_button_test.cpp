// The tool button base (the PNG button's template keeps its own state) and its default painting:
// the state each message leaves, and the palette by theme and state.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "widget_support.h"
#include "widgets/default_tool_button.h"

using namespace widgettest;

TEST(DefaultToolButton, StatesAndPalette) {
  CCommandRecorder parent;
  ASSERT_TRUE(parent.CreateAt(300, 300, 260, 120));
  CDefaultToolButton button;
  const RECT place{20, 20, 120, 60};
  ASSERT_NE(button.Create(parent.m_hWnd, &place, L"", WS_CHILD | WS_VISIBLE, 0, 1234), nullptr);
  // Hover only on the first move after entering; the release reads where the cursor really is
  // (cursor: client point, or none); a disabled button ignores mouse and focus.
  const struct {
    UINT message;
    WPARAM wParam;
    POINT cursor;
    int state;
    size_t clicks;
  } steps[] = {
      {WM_MOUSEMOVE, 0, {}, 1, 0},         {WM_LBUTTONDOWN, 0, {}, 2, 0},  {WM_MOUSEMOVE, 0, {}, 2, 0},
      {WM_LBUTTONUP, 0, {-40, 20}, 0, 0},  {WM_MOUSEMOVE, 0, {}, 0, 0},    {WM_MOUSELEAVE, 0, {}, 0, 0},
      {WM_MOUSEMOVE, 0, {}, 1, 0},         {WM_LBUTTONDOWN, 0, {}, 2, 0},  {WM_LBUTTONUP, 0, {10, 10}, 1, 1},
      {WM_ENABLE, 0, {}, 3, 1},            {WM_MOUSELEAVE, 0, {}, 3, 1},   {WM_MOUSEMOVE, 0, {}, 3, 1},
      {WM_LBUTTONDOWN, 0, {}, 3, 1},       {WM_LBUTTONUP, 0, {10, 10}, 3, 1}, {WM_SETFOCUS, 0, {}, 3, 1},
      {WM_ENABLE, 1, {}, 0, 1},            {WM_SETFOCUS, 0, {}, 1, 1},     {WM_KILLFOCUS, 0, {}, 0, 1},
  };
  for (size_t i = 0; i < std::size(steps); ++i) {
    const auto& step = steps[i];
    POINT cursor = step.cursor;  // placed without pumping: no real input reaches the button
    ::ClientToScreen(button.m_hWnd, &cursor);
    if (step.message == WM_LBUTTONUP) ::SetCursorPos(cursor.x, cursor.y);
    ::SendMessageW(button.m_hWnd, step.message, step.wParam, MAKELPARAM(-40, -40));
    EXPECT_EQ(button.GetState(), step.state) << "step " << i;
    EXPECT_EQ(parent.commands.size(), step.clicks) << "step " << i;
  }

  // The palette as the client's designers fixed it: background and text by theme and state (the
  // edge column is left to the glow, which only hover draws).
  ThemeOverride theme(false);
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
    theme.Set(row.dark);
    const Picture shown = PaintedBy(100, 40, [&](HDC dc) {
      widgets::PaintDefaultToolButton(button.m_hWnd, dc, row.state, L"Hg");
    });
    const std::string name = (row.dark ? "dark " : "light ") + std::to_string(row.state);
    EXPECT_EQ(shown.at(8, 20), Opaque(row.background)) << name;
    EXPECT_EQ(shown.at(92, 30), Opaque(row.background)) << name;
    EXPECT_EQ(shown.at(0, 20) == Opaque(kUnpainted), row.state != 1) << name;
    int nearest = 1 << 30;
    for (int y = 0; y < 40; ++y) {
      for (int x = 30; x < 70; ++x) {
        const Argb p = shown.at(x, y);
        nearest = std::min(nearest, std::abs(p.r - GetRValue(row.text)) + std::abs(p.g - GetGValue(row.text)) +
                                        std::abs(p.b - GetBValue(row.text)));
      }
    }
    EXPECT_LE(nearest, 45) << name << ": no pixel near the text colour";
  }
}
