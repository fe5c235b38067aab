// The capacity display inside a real bar: its colours by theme and warning, the progress share,
// the joined two-colour caption and the placement of its children.
#include "bar_fixture.h"

#include <algorithm>

#include "core/capacity.h"
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
  } rows[] = {
      {true, warnUsed, kRed, kRed, kWhite, kRed, kRed},
      {true, normalUsed, kWhite, kWhite, kWhite, kBlue, kBlue},
      {false, warnUsed, kRed, kRed, kSlate, kRed, kRed},
      {false, normalUsed, kSlate, kSlate, kSlate, kBlue, kBlue},
  };
  for (const auto& row : rows) {
    SetDarkTheme(row.dark);
    PublishSpace(2 * kGiB, row.used);
    hosted.Tick();
    const std::string name = std::string(row.dark ? "dark" : "light") + (row.used == warnUsed ? " warn" : " normal");
    EXPECT_EQ(InkColours(SkinFile(L"Capacity.png")), std::set<std::uint32_t>{row.combined}) << name;
    EXPECT_EQ(InkColours(SkinFile(L"Capacityu.png")), std::set<std::uint32_t>{row.usedText}) << name;
    EXPECT_EQ(InkColours(SkinFile(L"Capacityt.png")), std::set<std::uint32_t>{row.totalText}) << name;
    EXPECT_EQ(InkColours(SkinFile(L"Expand.png")), std::set<std::uint32_t>{row.expand}) << name;
    EXPECT_EQ(capacity.GetProgress().GetColor() & 0xFFFFFFu, row.progress) << name;
    EXPECT_EQ(capacity.GetProgress().GetPos(), corvane::core::UsedPercent(2 * kGiB, row.used)) << name;
    EXPECT_EQ(capacity.GetProgress().GetMax(), 100) << name;
  }

  // The joined caption: used on the left, "/total" drawn over the last 4 columns of it.
  const SIZE used = PictureSize(SkinFile(L"Capacityu.png")), total = PictureSize(SkinFile(L"Capacityt.png"));
  const SIZE joined = PictureSize(SkinFile(L"Capacityut.png"));
  EXPECT_EQ(joined.cx, used.cx + total.cx - 4);
  EXPECT_EQ(joined.cy, std::max(used.cy, total.cy));
  EXPECT_EQ(capacity.GetTextButton().GetImagePath(0), SkinFile(L"Capacityut.png"));

  // Texts and sides: 2 GiB - 500 MiB of 2 GiB in light theme, a warning. Each caption holds exactly
  // the picture of its text at 12 px; the join has the red used figure left, the slate total right.
  SetDarkTheme(false);
  PublishSpace(2 * kGiB, warnUsed);
  hosted.Tick();
  const logtest::TempFolder oracle;
  const struct {
    const wchar_t* picture;
    const wchar_t* text;
    Gdiplus::ARGB colour;
  } texts[] = {
      {L"Capacityu.png", L"1.51GB", 0xFFFB5248},
      {L"Capacityt.png", L"/2GB", 0xFF4D5966},
      {L"Capacity.png", L"1.51GB/2GB", 0xFFFB5248},
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
  const LONG usedWidth = PictureSize(SkinFile(L"Capacityu.png")).cx;
  EXPECT_EQ(InkColours(SkinFile(L"Capacityut.png"), 0, usedWidth - 4), std::set<std::uint32_t>{kRed});
  EXPECT_EQ(InkColours(SkinFile(L"Capacityut.png"), usedWidth), std::set<std::uint32_t>{kSlate});
  PublishSpace(2 * kGiB, normalUsed);
  hosted.Tick();

  // A theme change reaches the display through WM_SETTINGCHANGE without new figures.
  SetDarkTheme(true);
  wchar_t immersive[] = L"ImmersiveColorSet";
  ::SendMessageW(capacity.m_hWnd, WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(immersive));
  EXPECT_EQ(InkColours(SkinFile(L"Capacity.png")), std::set<std::uint32_t>{kWhite});
}

TEST_F(BarTest, CapacityWithoutPublishedFiguresShowsZeroInWarningColours) {
  HostedBar hosted(1400);
  ASSERT_TRUE(hosted.Start());
  const CDiskCapacityWnd& capacity = hosted.bar.GetCapacity();
  EXPECT_EQ(capacity.GetTotalSpace(), 0u) << "the placeholders are replaced by what was read: nothing";
  EXPECT_EQ(capacity.GetProgress().GetPos(), 0);
  EXPECT_EQ(capacity.GetProgress().GetColor() & 0xFFFFFFu, kRed);
  EXPECT_EQ(InkColours(SkinFile(L"Capacityu.png")), std::set<std::uint32_t>{kRed});

  // Children: the joined caption at its picture's size, the expand entry flush right, the
  // progress bar 7 pixels high, 10 above the bar's bottom.
  const int width = hosted.bar.GetCapacityRect().right - hosted.bar.GetCapacityRect().left;
  const int h = hosted.owner.GetBarHeight();
  const CPngToolButton& text = capacity.GetTextButton();
  const CPngToolButton& expand = capacity.GetExpandButton();
  const RECT textRect = RectIn(text.m_hWnd, capacity.m_hWnd);
  EXPECT_EQ(textRect.right - textRect.left, text.GetImageWidth());
  EXPECT_EQ(textRect.bottom - textRect.top, text.GetImageHeight());
  const RECT expandRect = RectIn(expand.m_hWnd, capacity.m_hWnd);
  EXPECT_EQ(expandRect.right, width);
  EXPECT_EQ(expandRect.right - expandRect.left, expand.GetImageWidth());
  EXPECT_GT(expand.GetImageWidth(), 0) << "the expand label was rendered";
  const RECT progressRect = RectIn(capacity.GetProgress().m_hWnd, capacity.m_hWnd);
  EXPECT_EQ(progressRect.top, h - 10);
  EXPECT_EQ(progressRect.bottom, h - 3);
  EXPECT_EQ(progressRect.right, width);
}

}  // namespace
}  // namespace bartest
