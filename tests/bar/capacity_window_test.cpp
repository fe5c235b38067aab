// The capacity display inside a real bar: the zero it shows before any figures, its colours by
// theme and warning, the progress share, the joined two-colour caption and its children's places.
#include "bar_fixture.h"

#include <tuple>

#include "accessible_probe.h"

namespace bartest {
namespace {

constexpr std::uint32_t kWhite = 0xFFFFFF, kSlate = 0x4D5966, kRed = 0xFB5248, kBlue = 0x0091FF;
using Inks = std::set<std::uint32_t>;

TEST_F(BarTest, CapacityColoursFollowThemeAndWarning) {
  HostedBar hosted(1400, true);
  ASSERT_TRUE(hosted.Start());
  const CDiskCapacityWnd& capacity = hosted.bar.GetCapacity();
  const auto ink = [](const wchar_t* name) { return InkColours(SkinFile(name)); };
  // The placeholders are replaced by what was read, nothing: zero, in the warning colour.
  EXPECT_EQ(std::make_tuple(capacity.GetTotalSpace(), capacity.GetProgress().GetPos(), capacity.GetProgress().GetColor() & 0xFFFFFFu,
                            ink(L"Capacityu.png")), std::make_tuple(0ULL, 0, kRed, Inks{kRed}));
  const SIZE joined = PictureSize(SkinFile(L"Capacityut.png")), expand = PictureSize(SkinFile(L"Expand.png"));
  // Children of the 60-pixel display under H = 40: the joined caption at its picture's size, the
  // expand entry flush right, the progress bar from y 30 to 37 (7 high, 3 above the bottom).
  const RECT text = RectIn(capacity.GetTextButton().m_hWnd, capacity.m_hWnd);
  EXPECT_EQ(std::make_pair(text.right - text.left, text.bottom - text.top), std::make_pair(joined.cx, joined.cy));
  const RECT expandRect = RectIn(capacity.GetExpandButton().m_hWnd, capacity.m_hWnd);
  EXPECT_TRUE(expand.cx > 0 && expandRect.left == 60 - expand.cx && expandRect.right == 60) << expandRect.left;
  const RECT progress = RectIn(capacity.GetProgress().m_hWnd, capacity.m_hWnd);
  EXPECT_EQ(std::make_tuple(progress.top, progress.right, progress.bottom), std::make_tuple(30L, 60L, 37L));

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
  // A screen reader hears the figures the text button shows, and one name change when they change
  // from 0B/0B to 1.51GB/2GB (both used figures of the rows round to 1.51GB).
  EXPECT_EQ(testsupport::AccessibleOf(capacity.GetTextButton().m_hWnd).name, L"0B/0B");
  const testsupport::NameChangeCounter nameChanges(capacity.GetTextButton().m_hWnd);
  ::ShowWindow(hosted.owner.GetExplorerHwnd(), SW_SHOWNA);  // painted on screen, so it can be captured
  for (const auto& row : rows) {
    SetDarkTheme(row.dark);
    PublishSpace(2 * kGiB, row.used);
    hosted.Tick();
    const std::string name = std::string(row.dark ? "dark" : "light") + (row.used == warnUsed ? " warn" : " normal");
    EXPECT_EQ(std::make_tuple(ink(L"Capacity.png"), ink(L"Capacityu.png"), ink(L"Capacityt.png"), ink(L"Expand.png")),
              std::make_tuple(Inks{row.combined}, Inks{row.usedText}, Inks{row.totalText}, Inks{row.expand})) << name;
    // The bar, the right group and this display each fill their background in the theme's colour.
    for (const HWND window : {hosted.Bar(), hosted.Right(), capacity.m_hWnd}) {
      const auto shot = CaptureClient(window);
      EXPECT_TRUE(shot && shot->at(1, 20) == Opaque(row.dark ? RGB(32, 32, 32) : RGB(255, 255, 255))) << name;
    }
    // 1548 or 1547 MiB of 2048, out of 100.
    EXPECT_EQ(std::make_tuple(capacity.GetProgress().GetColor() & 0xFFFFFFu, capacity.GetProgress().GetPos(),
                              capacity.GetProgress().GetMax()), std::make_tuple(row.progress, 75, 100)) << name;
  }
  Pump();
  EXPECT_EQ(nameChanges.Count(), 1);
  EXPECT_EQ(testsupport::AccessibleOf(capacity.GetTextButton().m_hWnd).name, L"1.51GB/2GB");

  // Sizes of the last row's captions in this prefix's 12-px font: "1.51GB", "/2GB" and
  // "1.51GB/2GB" (the name above); the join has the red used figure left and the slate "/total"
  // drawn over its last 4 columns.
  for (const auto& [picture, width] : {std::pair{L"Capacityu.png", 43L}, {L"Capacityt.png", 30L}, {L"Capacity.png", 69L}}) {
    EXPECT_EQ(std::make_pair(PictureSize(SkinFile(picture)).cx, PictureSize(SkinFile(picture)).cy), std::make_pair(width, 14L))
        << logtest::Utf8(picture);
  }
  const SIZE used = PictureSize(SkinFile(L"Capacityu.png"));
  EXPECT_EQ(capacity.GetTextButton().GetImagePath(0), SkinFile(L"Capacityut.png"));
  EXPECT_EQ(InkColours(SkinFile(L"Capacityut.png"), 0, used.cx - 4), Inks{kRed});
  EXPECT_EQ(InkColours(SkinFile(L"Capacityut.png"), used.cx), Inks{kSlate});

  // A theme change reaches the display through WM_SETTINGCHANGE without new figures.
  SetDarkTheme(true);
  wchar_t immersive[] = L"ImmersiveColorSet";
  ::SendMessageW(capacity.m_hWnd, WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(immersive));
  EXPECT_EQ(ink(L"Capacityt.png"), Inks{kWhite});
}

}  // namespace
}  // namespace bartest
