// The bar as a real window under a real owner: measuring, layout by width, the once-a-second
// refresh, the zoom follow-up and the right group's shared placement.
#include "bar_fixture.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <memory>
#include <tuple>

#include "log_files.h"
#include "platform/handles.h"
#include "platform/module_path.h"
#include "platform/work_profile.h"
#include "widgets/render_ledger.h"
#include "widgets/image_helpers.h"

namespace bartest {
namespace {

auto Tie(const RECT& r) { return std::make_tuple(r.left, r.top, r.right, r.bottom); }
#define EXPECT_RECT(actual, l, t, r, b) EXPECT_EQ(Tie(actual), std::make_tuple(l, t, r, b)) << #actual

TEST_F(BarTest, CreationMeasuresTheTextLineAndLaysOutFromIt) {
  HostedBar hosted(1200);
  ASSERT_TRUE(hosted.Start(false));
  EXPECT_TRUE(hosted.timerWasRunning) << "TIMER_CLOUD_UPDATE_INFO starts in WM_CREATE";
  EXPECT_TRUE(hosted.bar.IsCreated());
  EXPECT_TRUE(hosted.bar.IsLogoSubclassed());
  EXPECT_EQ(hosted.unknown.Count(), 2u) << "the bar holds one reference";
  EXPECT_EQ(::GetParent(hosted.Bar()), hosted.owner.GetExplorerHwnd());
  EXPECT_EQ(hosted.bar.GetRightWindow().GetWidth(), 360) << "R before the first re-measure";
  const std::vector<std::wstring> created = {L"CTitleWindow::CreateBarWnd() invoked"};
  EXPECT_EQ(LogOf(L"CTitleWindow::CreateBarWnd"), created);
  EXPECT_EQ(LogOf(L"CTitleWindow::OnCreate"), std::vector<std::wstring>{L"CTitleWindow::OnCreate() invoked"});

  hosted.Settle();
  UINT textWidth = 0, textHeight = 0;
  ASSERT_TRUE(GetImageSize(SkinFile(L"detection.png"), textWidth, textHeight));
  int unitWidth = 0, unitHeight = 0;
  hosted.owner.GetIconSize(unitWidth, unitHeight);
  EXPECT_EQ(unitWidth, static_cast<int>(textWidth));
  EXPECT_EQ(unitHeight, static_cast<int>(textHeight));
  const int h = hosted.owner.GetBarHeight();
  EXPECT_EQ(h, static_cast<int>(textHeight * 1.6));

  EXPECT_RECT(RectIn(hosted.Bar(), hosted.owner.GetExplorerHwnd()), 0, 0, 1200, h);
  EXPECT_RECT(RectIn(hosted.Child(CTitleWindow::IDC_TITLE_LOGO), hosted.Bar()), 10, 1, h + 8, h - 1);
  EXPECT_RECT(RectIn(hosted.Child(CTitleWindow::IDC_TITLE_CAPACITY), hosted.Bar()), h + 28, 0,
              h + 28 + 6 * unitWidth, h - 1);
  const CRightWindow& right = hosted.bar.GetRightWindow();
  const int r = right.GetWidth();
  EXPECT_EQ(r, right.GetButtonRect(2).right + 20);
  EXPECT_RECT(RectIn(hosted.Right(), hosted.Bar()), 1200 - r, 0, 1200, h - 1);
  const HWND buttons[] = {right.GetSyncProgressButton().m_hWnd, right.GetSettingsButton().m_hWnd,
                          right.GetZhishikuButton().m_hWnd};
  for (size_t i = 0; i < 3; ++i) {
    const RECT expected = right.GetButtonRect(i);
    EXPECT_EQ(Tie(RectIn(buttons[i], hosted.Right())), Tie(expected)) << "button " << i;
    EXPECT_EQ(expected.top, (h - (expected.bottom - expected.top)) / 2) << "button " << i << " centred";
  }
  EXPECT_EQ(right.GetButtonRect(0).left, 10);
  EXPECT_EQ(right.GetButtonRect(1).left, right.GetButtonRect(0).right + 20);
  EXPECT_EQ(right.GetButtonRect(2).left, right.GetButtonRect(1).right + 20);

  // Styles: the bar clips and composites its children; its own children are plain visible children.
  EXPECT_EQ(static_cast<DWORD>(::GetWindowLongPtrW(hosted.Bar(), GWL_STYLE)), 0x56000000u);
  EXPECT_EQ(static_cast<DWORD>(::GetWindowLongPtrW(hosted.Bar(), GWL_EXSTYLE)) & WS_EX_COMPOSITED,
            static_cast<DWORD>(WS_EX_COMPOSITED));
  for (const int id : {CTitleWindow::IDC_TITLE_LOGO, CTitleWindow::IDC_TITLE_CAPACITY}) {
    EXPECT_EQ(static_cast<DWORD>(::GetWindowLongPtrW(hosted.Child(id), GWL_STYLE)) & 0xFFFF0000u, 0x50000000u) << id;
  }
  // Painted into a given DC: the separator along the bottom row in the theme's line colour, and
  // nothing of its own above it (the parent's background is the parent's to draw). The capacity
  // display paints no separator.
  for (const bool dark : {false, true}) {
    SetDarkTheme(dark);
    for (const HWND window : {hosted.Bar(), hosted.Child(CTitleWindow::IDC_TITLE_CAPACITY)}) {
      RECT client{};
      ::GetClientRect(window, &client);
      const corvane::unique_hdc dc(::CreateCompatibleDC(nullptr));
      BITMAPINFO info{};
      info.bmiHeader = {sizeof(info.bmiHeader), client.right, -client.bottom, 1, 32, BI_RGB};
      void* bits = nullptr;
      const corvane::unique_hbitmap target(::CreateDIBSection(dc.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
      ASSERT_TRUE(target);
      const corvane::scoped_select selected(dc.get(), target.get());
      auto* pixels = static_cast<DWORD*>(bits);
      std::fill(pixels, pixels + client.right * client.bottom, 0x0A141Eu);
      ::SendMessageW(window, WM_PAINT, reinterpret_cast<WPARAM>(dc.get()), 0);
      ::GdiFlush();
      const DWORD line = dark ? 0x3A3A3Au : 0xD9D9D9u;
      const DWORD bottom = pixels[(client.bottom - 1) * client.right + client.right / 2] & 0xFFFFFFu;
      const DWORD above = pixels[(client.bottom - 2) * client.right + client.right / 2] & 0xFFFFFFu;
      if (window == hosted.Bar()) {
        EXPECT_EQ(bottom, line) << (dark ? "dark" : "light");
      } else {
        EXPECT_NE(bottom, line) << "capacity, " << (dark ? "dark" : "light");
      }
      EXPECT_NE(above, line);
    }
  }
  SetDarkTheme(false);

  const HWND bar = hosted.Bar();
  hosted.bar.Uninitialize();
  EXPECT_FALSE(::IsWindow(bar));
  EXPECT_EQ(hosted.unknown.Count(), 1u) << "the reference goes with Uninitialize";
  EXPECT_FALSE(hosted.bar.IsLogoSubclassed());
  EXPECT_EQ(LogOf(L"CTitleWindow::OnDestroy"), std::vector<std::wstring>{L"CTitleWindow::OnDestroy() invoked"});
}

TEST_F(BarTest, WidthDecidesWhichChildrenShow) {
  PublishAdvertising(L"ad-1", L"开通会员立享优惠");
  HostedBar hosted(1400);
  ASSERT_TRUE(hosted.Start());
  const int r = hosted.bar.GetRightWindow().GetWidth();
  const int h = hosted.owner.GetBarHeight();
  const int logo = hosted.bar.GetLogoRect().right, capacity = hosted.bar.GetCapacityRect().right,
            advertising = hosted.bar.GetAdvertisingRect().right;
  ASSERT_LT(logo, capacity);
  ASSERT_LT(capacity, advertising);

  const struct {
    int width;
    bool logo, capacity, advertising;
  } cases[] = {
      {r + logo + 10 - 1, false, false, false},      {r + logo + 10, true, false, false},
      {r + capacity + 10 - 1, true, false, false},   {r + capacity + 10, true, true, false},
      {r + advertising + 10 - 1, true, true, false}, {r + advertising + 10, true, true, true},
      {r + 10, false, false, false},
  };
  for (const auto& c : cases) {
    hosted.owner.Layout(c.width);
    Pump();
    EXPECT_EQ(HasStyle(hosted.Child(CTitleWindow::IDC_TITLE_LOGO), WS_VISIBLE), c.logo) << c.width;
    EXPECT_EQ(HasStyle(hosted.Child(CTitleWindow::IDC_TITLE_CAPACITY), WS_VISIBLE), c.capacity) << c.width;
    EXPECT_EQ(HasStyle(hosted.Child(CTitleWindow::IDC_TITLE_ADVERTISING), WS_VISIBLE), c.advertising) << c.width;
    EXPECT_TRUE(HasStyle(hosted.Right(), WS_VISIBLE)) << c.width;
    EXPECT_EQ(Tie(RectIn(hosted.Right(), hosted.Bar())), std::make_tuple(c.width - r, 0, c.width, h - 1)) << c.width;
  }

  // Without a promotion the widest bar still hides the entry.
  DeleteValue(kUserKey, L"advertisingId");
  hosted.Tick();
  hosted.owner.Layout(r + advertising + 100);
  Pump();
  EXPECT_FALSE(HasStyle(hosted.Child(CTitleWindow::IDC_TITLE_ADVERTISING), WS_VISIBLE));

  // A promotion that appears while the bar is too narrow shows until the next WM_SIZE.
  hosted.owner.Layout(r + capacity + 10);
  Pump();
  PublishAdvertising(L"ad-2", L"新活动");
  hosted.Tick();
  EXPECT_TRUE(HasStyle(hosted.Child(CTitleWindow::IDC_TITLE_ADVERTISING), WS_VISIBLE));
  ::SendMessageW(hosted.Bar(), WM_SIZE, SIZE_RESTORED, MAKELPARAM(r + capacity + 10, h));
  EXPECT_FALSE(HasStyle(hosted.Child(CTitleWindow::IDC_TITLE_ADVERTISING), WS_VISIBLE));
}

TEST_F(BarTest, ZoomChangePostsOneDisplayChangePair) {
  HostedBar hosted(1200);
  PublishZoom(hosted.owner.GetExplorerHwnd(), L"1.0");
  PublishAdvertising(L"ad-1", L"promo");
  ASSERT_TRUE(hosted.Start());
  EXPECT_EQ(hosted.bar.GetDpiZoom(), 1.0) << "read at creation";
  const int unzoomedHeight = hosted.owner.GetBarHeight();

  // Which captions follow the owner window's zoom: the measuring caption, the promotion, the expand
  // label and the knowledge-base label; the capacity figures and the two button labels do not.
  struct {
    const wchar_t* picture;
    bool zoomed;
    LONG unzoomedHeight = 0;
  } captions[] = {
      {L"detection.png", true},   {L"advertisingInfo.png", true}, {L"Expand.png", true},
      {L"zsk_dt.png", true},      {L"Capacity.png", false},       {L"Capacityu.png", false},
      {L"Capacityt.png", false},  {L"tb_dt1.png", false},         {L"set_dt1.png", false},
  };
  for (auto& caption : captions) caption.unzoomedHeight = PictureSize(SkinFile(caption.picture)).cy;

  const struct {
    const wchar_t* published;  // null: the value is removed
    int posts;
    double stored;
  } steps[] = {
      {L"1.0", 0, 1.0},
      {L"1.0000000009", 0, 1.0},          // within 1e-9
      {L"1.25", 1, 1.25},
      {L"1.25", 0, 1.25},
      {L"2.0", 1, 2.0},
      {L"2.0000000015", 1, 2.0000000015},  // absolute 1.5e-9 is a change (relatively only 7.5e-10)
      {nullptr, 1, 0.0},                  // disappeared: a change to 0
      {nullptr, 0, 0.0},
      {L"0.0000000001", 0, 0.0},          // 1e-10 against 0
      {L"letters", 0, 0.0},               // unparsable: the fresh 0 stays
  };
  for (size_t i = 0; i < std::size(steps); ++i) {
    const auto& step = steps[i];
    if (step.published != nullptr) {
      PublishZoom(hosted.owner.GetExplorerHwnd(), step.published);
    } else {
      DeleteValue(kZoomKey, std::to_wstring(reinterpret_cast<std::uintptr_t>(hosted.owner.GetExplorerHwnd())));
    }
    hosted.Tick();
    const std::vector<HWND> posted = TakeQueued(WM_DISPLAYCHANGE);
    EXPECT_EQ(posted.size(), 2u * step.posts) << "step " << i;
    EXPECT_EQ(CountOf(posted, hosted.Bar()), step.posts) << "step " << i << ", bar";
    EXPECT_EQ(CountOf(posted, hosted.Right()), step.posts) << "step " << i << ", right group";
    Pump();
    EXPECT_DOUBLE_EQ(hosted.bar.GetDpiZoom(), step.stored) << "step " << i;
    if (step.published != nullptr && std::wstring(step.published) == L"1.25" && step.posts == 1) {
      EXPECT_GT(hosted.owner.GetBarHeight(), unzoomedHeight) << "re-measured at 1.25";
      for (const auto& caption : captions) {
        const LONG height = PictureSize(SkinFile(caption.picture)).cy;
        EXPECT_GT(caption.unzoomedHeight, 0) << caption.picture;
        if (caption.zoomed) {
          EXPECT_GT(height, caption.unzoomedHeight) << caption.picture << " follows the zoom";
        } else {
          EXPECT_EQ(height, caption.unzoomedHeight) << caption.picture << " keeps its size";
        }
      }
    }
  }
  EXPECT_EQ(hosted.owner.GetBarHeight(), unzoomedHeight) << "re-measured at 1.0 after the zoom went away";
}

TEST_F(BarTest, TicksRenderOnlyWhatTheClientChanged) {
  // ASCII titles: the debugger output that the log capture reads is narrowed to the ANSI code page.
  PublishSpace(4 * kGiB, kGiB);
  PublishAdvertising(L"a1", L"title-1");
  HostedBar hosted(1400);
  ASSERT_TRUE(hosted.Start());
  const wchar_t* const capacityPictures[] = {L"Capacity.png", L"Capacityu.png", L"Capacityt.png",
                                             L"Capacityut.png", L"Expand.png"};
  const auto removeAll = [&] {
    ::DeleteFileW(SkinFile(L"advertisingInfo.png").c_str());
    for (const wchar_t* name : capacityPictures) ::DeleteFileW(SkinFile(name).c_str());
  };
  const auto capacityWritten = [&] {
    int count = 0;
    for (const wchar_t* name : capacityPictures) count += FileExists(SkinFile(name)) ? 1 : 0;
    return count;
  };

  removeAll();
  hosted.Tick();
  Pump();
  EXPECT_FALSE(FileExists(SkinFile(L"advertisingInfo.png"))) << "nothing changed";
  EXPECT_EQ(capacityWritten(), 0) << "SetSpace with the figures it already shows renders nothing";
  EXPECT_EQ(hosted.bar.GetCapacity().GetUsedSpace(), kGiB);
  const std::vector<std::wstring> firstTicks = LogOf(L"CTitleWindow::OnTimer");
  ASSERT_FALSE(firstTicks.empty());
  EXPECT_EQ(firstTicks.back(),
            L"TIMER_CLOUD_UPDATE_INFO invoked currentUser= u0123456789, logoPath = CorvaneSkin\\logo1.png, "
            L"advertisingId = a1, advertisingTitle = title-1, totalSpace = 4294967296, usedSpace = 1073741824");

  PublishAdvertising(L"a1", L"title-2");
  hosted.Tick();
  EXPECT_TRUE(FileExists(SkinFile(L"advertisingInfo.png"))) << "the title changed";
  EXPECT_EQ(capacityWritten(), 0);

  removeAll();
  PublishSpace(4 * kGiB, 2 * kGiB);
  hosted.Tick();
  EXPECT_FALSE(FileExists(SkinFile(L"advertisingInfo.png")));
  EXPECT_EQ(capacityWritten(), 5) << "the used space changed";
  EXPECT_EQ(hosted.bar.GetCapacity().GetUsedSpace(), 2 * kGiB);

  // A quota of 1 GiB or less reads as no data: the figures shown stay.
  removeAll();
  PublishSpace(kGiB, 10);
  hosted.Tick();
  EXPECT_EQ(capacityWritten(), 0);
  EXPECT_EQ(hosted.bar.GetCapacity().GetTotalSpace(), 4 * kGiB);

  // A published account picture replaces the default logo.
  const std::wstring picture = SkinFile(L"zsk.png");
  SetText(kUserKey, L"userLogoPath", picture);
  hosted.Tick();
  EXPECT_EQ(hosted.bar.GetLogoButton().GetImagePath(0), picture);

  // A short account name is not taken, and makes every other reader fail.
  SetText(kRoot, L"currentUser", L"u012345678");
  hosted.Tick();
  EXPECT_EQ(hosted.bar.GetCurrentUser(), kUser);
  EXPECT_EQ(hosted.bar.GetLogoButton().GetImagePath(0), SkinFile(L"logo1.png"));
  EXPECT_FALSE(HasStyle(hosted.Child(CTitleWindow::IDC_TITLE_ADVERTISING), WS_VISIBLE));
  const std::vector<std::wstring> ticks = LogOf(L"CTitleWindow::OnTimer");
  ASSERT_FALSE(ticks.empty());
  EXPECT_EQ(ticks.back(),
            L"TIMER_CLOUD_UPDATE_INFO invoked currentUser= u012345678, logoPath = CorvaneSkin\\logo1.png, "
            L"advertisingId = , advertisingTitle = , totalSpace = 0, usedSpace = 0");
}

TEST_F(BarTest, RightGroupPlacementCacheIsSharedByAllBars) {
  HostedBar first(1000), second(1100);
  // Each start ends with the right group's WM_TITLE_PLACE_RIGHT: the pair last holds the second's.
  ASSERT_TRUE(first.Start());
  ASSERT_TRUE(second.Start());
  const int r = first.bar.GetRightWindow().GetWidth();
  const int h = first.owner.GetBarHeight();
  ASSERT_EQ(second.bar.GetRightWindow().GetWidth(), r);
  const auto rightLeft = [](const HostedBar& hosted) { return RectIn(hosted.Right(), hosted.Bar()).left; };
  const auto placeFromAway = [](const HostedBar& hosted) {
    ::SetWindowPos(hosted.Right(), nullptr, 0, 0, 10, 10, SWP_NOZORDER | SWP_NOACTIVATE);
    ::SendMessageW(hosted.Bar(), WM_TITLE_PLACE_RIGHT, 0, 0);
  };

  placeFromAway(first);
  EXPECT_EQ(rightLeft(first), 1000 - r) << "differs from the second bar's placement: placed";
  EXPECT_EQ(RectIn(first.Right(), first.Bar()).bottom, h - 1);
  placeFromAway(first);
  EXPECT_EQ(rightLeft(first), 0) << "unchanged since its own placement: skipped";

  second.owner.Layout(1000);
  Pump();
  EXPECT_EQ(rightLeft(second), 1000 - r) << "WM_SIZE places the group without the pair";
  placeFromAway(second);
  EXPECT_EQ(rightLeft(second), 0) << "same x and h as the first bar's last placement: skipped";

  second.owner.Layout(1100);
  Pump();
  placeFromAway(second);
  EXPECT_EQ(rightLeft(second), 1100 - r) << "another width is placed";
  placeFromAway(first);
  EXPECT_EQ(rightLeft(first), 1000 - r) << "the pair now holds the second bar's placement";
}

// The picture ledger leaves a file alone only when it already holds what the same inputs write:
// the same windows, zoom, theme and figure changes, run with the ledger off and on, leave every
// CorvaneSkin file byte for byte the same after every step.
TEST_F(BarTest, SkippedRendersLeaveTheSameBytesAsRenderingEverything) {
  using Files = std::map<std::wstring, std::vector<std::uint8_t>>;
  const auto snapshot = [] {
    Files files;
    const std::wstring folder = corvane::ThisModuleFolder() + L"CorvaneSkin";
    for (const std::wstring& name : logtest::FilesIn(folder)) files[name] = logtest::ReadBytes(folder + L"\\" + name);
    return files;
  };
  const auto run = [&](bool reuse) {
    imageutil::SetReuse(false);  // forgets what was recorded
    imageutil::SetReuse(reuse);
    SetDarkTheme(false);
    PublishSpace(4 * kGiB, kGiB);
    PublishAdvertising(L"a1", L"title-1");
    std::vector<Files> steps;
    auto first = std::make_unique<HostedBar>(1200);
    PublishZoom(first->owner.GetExplorerHwnd(), L"1.0");
    EXPECT_TRUE(first->Start());
    steps.push_back(snapshot());
    auto second = std::make_unique<HostedBar>(900);
    EXPECT_TRUE(second->Start());
    steps.push_back(snapshot());
    PublishZoom(first->owner.GetExplorerHwnd(), L"1.25");
    first->Tick();
    Pump();
    steps.push_back(snapshot());
    SetDarkTheme(true);
    PublishSpace(4 * kGiB, 4 * kGiB - 100 * kMiB);
    first->Tick();
    second->Tick();
    Pump();
    steps.push_back(snapshot());
    PublishZoom(first->owner.GetExplorerHwnd(), L"1.0");
    first->Tick();
    Pump();
    steps.push_back(snapshot());
    second.reset();
    SetDarkTheme(false);
    auto third = std::make_unique<HostedBar>(1400);
    EXPECT_TRUE(third->Start());
    steps.push_back(snapshot());
    return steps;
  };
  using corvane::profile::Work;
  const auto reuses = [] { return corvane::profile::Get(Work::PictureReused).count; };
  const auto r0 = reuses();
  const std::vector<Files> rendered = run(false);
  const auto r1 = reuses();
  const std::vector<Files> reused = run(true);
  const auto r2 = reuses();
  EXPECT_EQ(r1, r0) << "nothing is reused with the ledger off";
  EXPECT_GT(r2 - r1, 20) << "the second bar and the re-measures reuse their unchanged pictures";
  imageutil::SetReuse(true);
  ASSERT_EQ(rendered.size(), reused.size());
  for (size_t step = 0; step < rendered.size(); ++step) {
    ASSERT_EQ(rendered[step].size(), reused[step].size()) << "step " << step;
    for (const auto& [name, bytes] : rendered[step]) {
      const auto found = reused[step].find(name);
      ASSERT_NE(found, reused[step].end()) << logtest::Utf8(name) << ", step " << step;
      EXPECT_TRUE(found->second == bytes) << logtest::Utf8(name) << " differs after step " << step;
    }
  }
  // Not vacuous: the steps rewrote pictures.
  EXPECT_NE(rendered.front().at(L"Expand.png"), rendered[2].at(L"Expand.png")) << "1.25 re-rendered the expand label";
}

}  // namespace
}  // namespace bartest
