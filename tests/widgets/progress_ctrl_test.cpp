// The progress control: range and position rules, and what it paints for a position, an empty
// range and a colour change, in both themes.
#include <windows.h>

#include <gtest/gtest.h>

#include <climits>

#include "widget_support.h"
#include "widgets/progress_ctrl.h"

using namespace widgettest;

namespace {

const Argb kTrack{255, 232, 248, 255};
const Argb kDefaultFill{255, 65, 127, 249};

class ProgressCtrl : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(m_parent.CreateAt(300, 450, 260, 40));
    const RECT rect{10, 10, 210, 19};  // 200 x 9: a track 7 pixels high
    ASSERT_NE(m_progress.Create(m_parent.m_hWnd, &rect, L"", WS_CHILD | WS_VISIBLE, 0, 3003), nullptr);
  }
  // The columns on the track's middle row that show `colour`, and where the fill from x 3 ends.
  static int Columns(const Picture& picture, const Argb& colour) {
    int count = 0;
    for (int x = 0; x < picture.width; ++x) count += picture.at(x, 3) == colour ? 1 : 0;
    return count;
  }
  static int FillEnd(const Picture& picture, const Argb& fill) {
    int x = 3;
    while (x < picture.width && picture.at(x, 3) == fill) ++x;
    return x;
  }

  CCommandRecorder m_parent;
  CMyProgressCtrl m_progress;
};

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
    EXPECT_EQ(m_progress.GetPos(), c.stored) << c.minimum << ".." << c.maximum << " pos " << c.position;
    EXPECT_EQ(m_progress.FillWidth(c.width), c.fill) << c.minimum << ".." << c.maximum << " pos " << c.position;
  }
}

TEST_F(ProgressCtrl, PaintsTrackAndFillWhateverTheTheme) {
  ThemeOverride theme(false);
  for (const bool dark : {false, true}) {
    SCOPED_TRACE(dark ? "dark" : "light");
    theme.Set(dark);  // the track ignores it
    // 30 of 100: the fill ends near x 60 (0: no fill); the two bottom rows carry only the bar's colour (never
    // the parent's or stale pixels). Position 0 and empty ranges leave only the track.
    const struct {
      int minimum, maximum, position, fillEnd;
    } rows[] = {{0, 100, 30, 60}, {0, 100, 0, 0}, {40, 40, 40, 0}, {60, 20, 50, 0}};
    for (const auto& row : rows) {
      m_progress.SetRange(row.minimum, row.maximum);
      m_progress.SetPos(row.position);
      const auto shown = CaptureClient(m_progress.m_hWnd);
      ASSERT_TRUE(shown);
      // The fill's columns: none, or up to its end near the expected column.
      EXPECT_NEAR(row.fillEnd == 0 ? Columns(*shown, kDefaultFill) : FillEnd(*shown, kDefaultFill), row.fillEnd, row.fillEnd == 0 ? 0 : 1)
          << row.minimum << ".." << row.maximum;
      EXPECT_EQ(shown->at(100, 3), kTrack);
      EXPECT_GT(Columns(*shown, kTrack), 130);
      for (int x = 0; x < shown->width; x += 20) {
        EXPECT_EQ(shown->at(x, 7), Opaque(dark ? RGB(32, 32, 32) : RGB(255, 255, 255))) << x;
        EXPECT_EQ(shown->at(x, 8), Opaque(dark ? RGB(32, 32, 32) : RGB(255, 255, 255))) << x;
      }
    }
  }
}

TEST_F(ProgressCtrl, ColourShowsOnlyAfterTheNextRepaint) {
  const Argb red{255, 230, 60, 60};
  m_progress.SetRange(0, 100);
  m_progress.SetPos(50);
  ::UpdateWindow(m_progress.m_hWnd);
  ::ValidateRect(m_progress.m_hWnd, nullptr);
  m_progress.SetColor(0xFFE63C3C);
  EXPECT_EQ(m_progress.GetColor(), 0xFFE63C3Cu);
  EXPECT_FALSE(::GetUpdateRect(m_progress.m_hWnd, nullptr, FALSE)) << "SetColor alone does not invalidate";

  m_progress.SetPos(75);
  EXPECT_TRUE(::GetUpdateRect(m_progress.m_hWnd, nullptr, FALSE));
  const auto shown = CaptureClient(m_progress.m_hWnd);
  ASSERT_TRUE(shown);
  EXPECT_NEAR(FillEnd(*shown, red), 150, 1);
  EXPECT_EQ(Columns(*shown, kDefaultFill), 0);

  // A radius of 0 gives square ends.
  m_progress.SetRadius(0);
  const auto square = CaptureClient(m_progress.m_hWnd);
  ASSERT_TRUE(square);
  EXPECT_EQ(square->at(0, 0), red);
  EXPECT_EQ(square->at(199, 0), kTrack);
  EXPECT_EQ(::SendMessageW(m_progress.m_hWnd, WM_ERASEBKGND, 0, 0), 1);
}
