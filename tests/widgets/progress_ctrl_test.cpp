// The progress control: range and position rules, and what it paints for a position, an empty
// range and a colour change, in both themes.
#include <windows.h>

#include <gtest/gtest.h>

#include <climits>

#include "widget_support.h"
#include "widgets/progress_ctrl.h"

using namespace widgettest;

namespace {

const Argb kTrack{255, 232, 248, 255}, kDefaultFill{255, 65, 127, 249}, kRed{255, 230, 60, 60};

class ProgressCtrl : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(m_parent.CreateAt(300, 450, 260, 40));
    const RECT rect{10, 10, 210, 19};  // 200 x 9: a track 7 pixels high
    ASSERT_NE(m_progress.Create(m_parent.m_hWnd, &rect, L"", WS_CHILD | WS_VISIBLE, 0, 3003), nullptr);
  }

  CCommandRecorder m_parent;
  CMyProgressCtrl m_progress;
};

// Where the fill from x 3 on the track's middle row ends (3: no fill).
int FillEnd(const Picture& picture, const Argb& fill) {
  int x = 3;
  while (x < picture.width && picture.at(x, 3) == fill) ++x;
  return x;
}

}  // namespace

// The position is raised to the minimum first, then lowered to the maximum (an inverted range
// ends at the maximum); the fill is the share truncated in double, so no range overflows.
TEST_F(ProgressCtrl, PositionClampAndFillWidth) {
  const struct {
    int minimum, maximum, position, stored, width, fill;
  } cases[] = {
      {0, 100, 150, 100, 200, 200}, {0, 100, -5, 0, 200, 0},     {10, 20, 5, 10, 200, 0},   {10, 20, 25, 20, 200, 200},
      {50, 10, 30, 10, 200, 0},     {50, 10, 70, 10, 200, 0},     {0, 100, 50, 50, 200, 100}, {0, 3, 2, 2, 100, 66},
      {-50, 50, 0, 0, 200, 100},    {5, 5, 5, 5, 200, 0},         {INT_MIN + 1, INT_MAX, 0, 0, 100, 50},
  };
  for (const auto& c : cases) {
    m_progress.SetRange(c.minimum, c.maximum);
    m_progress.SetPos(c.position);
    EXPECT_EQ(std::make_pair(m_progress.GetPos(), m_progress.FillWidth(c.width)), std::make_pair(c.stored, c.fill))
        << c.minimum << ".." << c.maximum << " pos " << c.position;
  }
}

// The track ignores the theme; the two bottom rows carry only the theme's background (never the
// parent's or stale pixels). Position 0 and empty ranges leave only the track.
TEST_F(ProgressCtrl, PaintsTrackAndFillWhateverTheTheme) {
  ThemeOverride theme(false);
  const struct {
    bool dark;
    int minimum, maximum, position, fillEnd;
  } rows[] = {{false, 0, 100, 30, 60}, {true, 0, 100, 30, 60}, {true, 0, 100, 0, 3}, {false, 40, 40, 40, 3}, {true, 60, 20, 50, 3}};
  for (const auto& row : rows) {
    theme.Set(row.dark);
    m_progress.SetRange(row.minimum, row.maximum);
    m_progress.SetPos(row.position);
    const auto shown = CaptureClient(m_progress.m_hWnd);
    ASSERT_TRUE(shown);
    const std::string name = std::to_string(row.minimum) + ".." + std::to_string(row.maximum) + (row.dark ? " dark" : " light");
    EXPECT_NEAR(FillEnd(*shown, kDefaultFill), row.fillEnd, row.fillEnd == 3 ? 0 : 1) << name;
    EXPECT_EQ(std::make_pair(shown->at(100, 3), shown->at(195, 3)), std::make_pair(kTrack, kTrack)) << name;
    const Argb background = Opaque(row.dark ? RGB(32, 32, 32) : RGB(255, 255, 255));
    for (int x = 0; x < shown->width; x += 20) {
      EXPECT_EQ(std::make_pair(shown->at(x, 7), shown->at(x, 8)), std::make_pair(background, background)) << name << " x " << x;
    }
  }
}

TEST_F(ProgressCtrl, ANewPositionRepaintsInTheColourSet) {
  m_progress.SetRange(0, 100);
  m_progress.SetPos(50);
  ::ValidateRect(m_progress.m_hWnd, nullptr);
  m_progress.SetColor(0xFFE63C3C);
  EXPECT_FALSE(::GetUpdateRect(m_progress.m_hWnd, nullptr, FALSE)) << "a new colour alone waits for the next repaint";
  m_progress.SetPos(75);
  EXPECT_TRUE(::GetUpdateRect(m_progress.m_hWnd, nullptr, FALSE)) << "a new position repaints";
  // With a radius of 0 the ends are square: the fill from the very corner, the track to the last column.
  m_progress.SetRadius(0);
  const auto shown = CaptureClient(m_progress.m_hWnd);
  ASSERT_TRUE(shown);
  EXPECT_NEAR(FillEnd(*shown, kRed), 150, 1);
  EXPECT_EQ(std::make_tuple(shown->at(0, 0), shown->at(199, 0), shown->at(151, 3)), std::make_tuple(kRed, kTrack, kTrack));
  EXPECT_EQ(::SendMessageW(m_progress.m_hWnd, WM_ERASEBKGND, 0, 0), 1);
}
