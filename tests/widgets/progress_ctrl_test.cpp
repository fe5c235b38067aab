// The progress control: range and position rules, and what it paints for a position, an empty
// range and a colour change, in both themes.
#include <windows.h>

#include <gtest/gtest.h>

#include <climits>
#include <tuple>

#include "widget_support.h"
#include "client/theme.h"
#include "widgets/progress_ctrl.h"

using namespace widgettest;

namespace {

const Argb kTrack{255, 232, 248, 255};
const Argb kDefaultFill{255, 65, 127, 249};
const Argb kParent = Opaque(CCommandRecorder::kParentColour);

class ProgressCtrl : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(m_parent.CreateAt(300, 450, 260, 40));
    const RECT rect{10, 10, 210, 19};  // 200 x 9: a track 7 pixels high
    ASSERT_NE(m_progress.Create(m_parent.m_hWnd, &rect, L"", WS_CHILD | WS_VISIBLE, 0, 3003), nullptr);
  }
  // The columns on the track's middle row that show `colour`.
  static int Columns(const Picture& picture, const Argb& colour) {
    int count = 0;
    for (int x = 0; x < picture.width; ++x) count += picture.at(x, 3) == colour ? 1 : 0;
    return count;
  }
  // The first column of the middle row that is not the fill colour.
  static int FillEnd(const Picture& picture, const Argb& fill) {
    int x = 3;
    while (x < picture.width && picture.at(x, 3) == fill) ++x;
    return x;
  }

  CCommandRecorder m_parent;
  CMyProgressCtrl m_progress;
};

}  // namespace

TEST_F(ProgressCtrl, PositionIsClampedMinimumFirst) {
  struct Case {
    int minimum, maximum, position, stored;
  };
  const Case cases[] = {
      {0, 100, 150, 100}, {0, 100, -5, 0}, {10, 20, 5, 10}, {10, 20, 25, 20},
      // An inverted range: raised to the minimum, then lowered to the maximum.
      {50, 10, 30, 10}, {50, 10, 70, 10},
  };
  for (const Case& c : cases) {
    m_progress.SetRange(c.minimum, c.maximum);
    m_progress.SetPos(c.position);
    EXPECT_EQ(m_progress.GetPos(), c.stored) << c.minimum << ".." << c.maximum << " pos " << c.position;
  }
}

TEST_F(ProgressCtrl, FillWidthIsTheTruncatedShareInDouble) {
  struct Case {
    int minimum, maximum, position, width, fill;
  };
  const Case cases[] = {
      {0, 100, 50, 200, 100},  {0, 3, 2, 100, 66},  {-50, 50, 0, 200, 100},
      {0, 100, 0, 200, 0},     {0, 100, 100, 200, 200}, {5, 5, 5, 200, 0},   {9, 1, 1, 200, 0},
      // The range overflows an int; the share does not.
      {INT_MIN + 1, INT_MAX, 0, 100, 50},
  };
  for (const Case& c : cases) {
    m_progress.SetRange(c.minimum, c.maximum);
    m_progress.SetPos(c.position);
    EXPECT_EQ(m_progress.FillWidth(c.width), c.fill) << c.minimum << ".." << c.maximum << " pos " << c.position;
  }
}

TEST_F(ProgressCtrl, PaintsTrackAndFillWhateverTheTheme) {
  ThemeOverride theme(false);
  for (const bool dark : {false, true}) {
    SCOPED_TRACE(dark ? "dark" : "light");
    theme.Set(dark);  // the track ignores it
    m_progress.SetRange(0, 100);
    m_progress.SetPos(30);
    auto shown = CaptureClient(m_progress.m_hWnd);
    ASSERT_TRUE(shown);
    EXPECT_NEAR(FillEnd(*shown, kDefaultFill), 60, 1);
    EXPECT_GT(Columns(*shown, kDefaultFill), 50);
    EXPECT_GT(Columns(*shown, kTrack), 130);
    EXPECT_EQ(shown->at(100, 3), kTrack);
    // The two bottom rows carry no track, only the bar's colour (never stale pixels).
    const Argb bar = Opaque(dark ? RGB(32, 32, 32) : RGB(255, 255, 255));
    for (int x = 0; x < shown->width; x += 20) {
      EXPECT_EQ(shown->at(x, 7), bar) << x;
      EXPECT_EQ(shown->at(x, 8), bar) << x;
      EXPECT_NE(shown->at(x, 8), kParent) << x;
    }

    // Position 0 and an empty range leave only the track.
    for (const auto& [minimum, maximum, position] : {std::tuple{0, 100, 0}, std::tuple{40, 40, 40}, std::tuple{60, 20, 50}}) {
      m_progress.SetRange(minimum, maximum);
      m_progress.SetPos(position);
      shown = CaptureClient(m_progress.m_hWnd);
      ASSERT_TRUE(shown);
      EXPECT_EQ(Columns(*shown, kDefaultFill), 0) << minimum << ".." << maximum;
      EXPECT_EQ(shown->at(2, 3), kTrack);
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
  RECT update{};
  EXPECT_FALSE(::GetUpdateRect(m_progress.m_hWnd, &update, FALSE)) << "SetColor alone does not invalidate";

  m_progress.SetPos(75);
  EXPECT_TRUE(::GetUpdateRect(m_progress.m_hWnd, &update, FALSE));
  const auto shown = CaptureClient(m_progress.m_hWnd);
  ASSERT_TRUE(shown);
  EXPECT_NEAR(FillEnd(*shown, red), 150, 1);
  EXPECT_EQ(Columns(*shown, kDefaultFill), 0);

  // A larger radius still gives a solid middle; a radius of 0 gives square ends.
  m_progress.SetRadius(0);
  const auto square = CaptureClient(m_progress.m_hWnd);
  ASSERT_TRUE(square);
  EXPECT_EQ(square->at(0, 0), red);
  EXPECT_EQ(square->at(199, 0), kTrack);
  EXPECT_EQ(::SendMessageW(m_progress.m_hWnd, WM_ERASEBKGND, 0, 0), 1);
}
