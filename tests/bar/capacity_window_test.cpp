// The capacity display inside a real bar: its colours by theme and warning, the progress share,
// the joined two-colour caption and the placement of its children.
#include "bar_fixture.h"

#include <tuple>
#include <utility>

#include "log_files.h"
#include "widgets/image_helpers.h"

namespace bartest {
namespace {

constexpr std::uint32_t kWhite = 0xFFFFFF, kSlate = 0x4D5966, kRed = 0xFB5248, kBlue = 0x0091FF;

TEST_F(BarTest, CapacityColoursFollowThemeAndWarning) {
  HostedBar hosted(1400);
  ASSERT_TRUE(hosted.Start());
  const CDiskCapacityWnd& capacity = hosted.bar.GetCapacity();
  const std::uint64_t warnUsed = 2 * kGiB - 500 * kMiB, normalUsed = 2 * kGiB - 501 * kMiB;
  const struct {
    bool dark;
    std::uint64_t used;
    std::uint32_t combined, usedText, totalText, expand, progress;
  } rows[] = {  // the figures change with every row: a tick alone renders nothing new
      {true, normalUsed, kWhite, kWhite, kWhite, kBlue, kBlue},
      {true, warnUsed, kRed, kRed, kWhite, kRed, kRed},
      {false, normalUsed, kSlate, kSlate, kSlate, kBlue, kBlue},
      {false, warnUsed, kRed, kRed, kSlate, kRed, kRed},
  };
  const auto ink = [](const wchar_t* name) { return InkColours(SkinFile(name)); };
  for (const auto& row : rows) {
    SetDarkTheme(row.dark);
    PublishSpace(2 * kGiB, row.used);
    hosted.Tick();
    const std::string name = std::string(row.dark ? "dark" : "light") + (row.used == warnUsed ? " warn" : " normal");
    EXPECT_EQ(ink(L"Capacity.png"), std::set<std::uint32_t>{row.combined}) << name;
    EXPECT_EQ(ink(L"Capacityu.png"), std::set<std::uint32_t>{row.usedText}) << name;
    EXPECT_EQ(ink(L"Capacityt.png"), std::set<std::uint32_t>{row.totalText}) << name;
    EXPECT_EQ(ink(L"Expand.png"), std::set<std::uint32_t>{row.expand}) << name;
    EXPECT_EQ(capacity.GetProgress().GetColor() & 0xFFFFFFu, row.progress) << name;
    EXPECT_EQ(capacity.GetProgress().GetPos(), 75) << name;  // 1548 or 1547 MiB of 2048
    EXPECT_EQ(capacity.GetProgress().GetMax(), 100) << name;
  }

  // Texts and sides of the last row (light, a warning): each caption holds exactly the picture of
  // its text at 12 px; the join has the red used figure left and the slate "/total" drawn over its
  // last 4 columns.
  const logtest::TempFolder oracle;
  const struct {
    const wchar_t* picture;
    const wchar_t* text;
    Gdiplus::ARGB colour;
  } texts[] = {
      {L"Capacityu.png", L"1.51GB", 0xFF000000 | kRed},
      {L"Capacityt.png", L"/2GB", 0xFF000000 | kSlate},
      {L"Capacity.png", L"1.51GB/2GB", 0xFF000000 | kRed},
  };
  for (const auto& caption : texts) {
    imageutil::TextImageStyle style;
    style.text = caption.text;
    style.color = caption.colour;
    style.fontSize = 12.0f;
    ASSERT_TRUE(imageutil::RenderTextToPng(style, oracle / caption.picture));
    EXPECT_EQ(logtest::ReadBytes(SkinFile(caption.picture)), logtest::ReadBytes(oracle / caption.picture))
        << logtest::Utf8(caption.text);
  }
  const SIZE used = PictureSize(SkinFile(L"Capacityu.png")), total = PictureSize(SkinFile(L"Capacityt.png"));
  EXPECT_EQ(PictureSize(SkinFile(L"Capacityut.png")).cx, used.cx + total.cx - 4);
  EXPECT_EQ(capacity.GetTextButton().GetImagePath(0), SkinFile(L"Capacityut.png"));
  EXPECT_EQ(InkColours(SkinFile(L"Capacityut.png"), 0, used.cx - 4), std::set<std::uint32_t>{kRed});
  EXPECT_EQ(InkColours(SkinFile(L"Capacityut.png"), used.cx), std::set<std::uint32_t>{kSlate});

  // A theme change reaches the display through WM_SETTINGCHANGE without new figures.
  SetDarkTheme(true);
  wchar_t immersive[] = L"ImmersiveColorSet";
  ::SendMessageW(capacity.m_hWnd, WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(immersive));
  EXPECT_EQ(ink(L"Capacityt.png"), std::set<std::uint32_t>{kWhite});
}

TEST_F(BarTest, CapacityWithoutPublishedFiguresShowsZeroInWarningColours) {
  HostedBar hosted(1400, true);
  ASSERT_TRUE(hosted.Start());
  const CDiskCapacityWnd& capacity = hosted.bar.GetCapacity();
  EXPECT_EQ(capacity.GetTotalSpace(), 0u) << "the placeholders are replaced by what was read: nothing";
  EXPECT_EQ(capacity.GetProgress().GetPos(), 0);
  EXPECT_EQ(capacity.GetProgress().GetColor() & 0xFFFFFFu, kRed);
  EXPECT_EQ(InkColours(SkinFile(L"Capacityu.png")), std::set<std::uint32_t>{kRed});

  // Children of the 60-pixel display under H = 40: the joined caption at its picture's size, the
  // expand entry flush right, the progress bar from y 30 to 37 (7 high, 3 above the bottom).
  const SIZE joined = PictureSize(SkinFile(L"Capacityut.png")), expand = PictureSize(SkinFile(L"Expand.png"));
  ASSERT_GT(expand.cx, 0) << "the expand label was rendered";
  const RECT textRect = RectIn(capacity.GetTextButton().m_hWnd, capacity.m_hWnd);
  EXPECT_EQ(textRect.right - textRect.left, joined.cx);
  EXPECT_EQ(textRect.bottom - textRect.top, joined.cy);
  const RECT expandRect = RectIn(capacity.GetExpandButton().m_hWnd, capacity.m_hWnd);
  EXPECT_EQ(std::make_pair(expandRect.left, expandRect.right), std::make_pair(60 - expand.cx, 60L));
  const RECT progressRect = RectIn(capacity.GetProgress().m_hWnd, capacity.m_hWnd);
  EXPECT_EQ(std::make_tuple(progressRect.top, progressRect.right, progressRect.bottom), std::make_tuple(30L, 60L, 37L));
}

}  // namespace
}  // namespace bartest
