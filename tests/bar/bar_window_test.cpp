// The bar as a real window under a real owner: measuring, layout by width, the once-a-second
// refresh, the zoom follow-up and the picture ledger.
#include "bar_fixture.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <map>
#include <tuple>

#include "platform/handles.h"
#include "platform/work_profile.h"
#include "widgets/picture_store.h"

namespace bartest {
namespace {

// Pinned owner: H = 40 and a text unit of 10, so the logo is the 38 x 38 square at (10, 1), the
// capacity display starts 20 after it and is six units wide, and everything ends at H - 1.
TEST_F(BarTest, CreationLaysOutFromTheOwnersHeightAndTextUnit) {
  HostedBar hosted(1200, true);
  ASSERT_TRUE(hosted.Start(false));
  // The update timer starts in WM_CREATE, the bar holds one reference, R is 360 before the first re-measure.
  EXPECT_TRUE(hosted.timerWasRunning && hosted.bar.IsCreated() && hosted.bar.IsLogoSubclassed());
  EXPECT_EQ(std::make_tuple(hosted.unknown.m_count.load(), ::GetParent(hosted.Bar()), hosted.bar.GetRightWindow().GetWidth()),
            std::make_tuple(2ul, hosted.owner.GetExplorerHwnd(), 360));

  hosted.Settle();
  // The measuring caption (28 x 14 in this prefix's font) is the text unit; the height rule makes 22 of 14.
  EXPECT_EQ(std::make_tuple(hosted.owner.askedIcon.cx, hosted.owner.askedIcon.cy, hosted.owner.askedHeight),
            std::make_tuple(28L, 14L, 22));
  EXPECT_RECT(RectIn(hosted.Bar(), hosted.owner.GetExplorerHwnd()), 0, 0, 1200, 40);
  EXPECT_RECT(RectIn(hosted.Child(CTitleWindow::IDC_TITLE_LOGO), hosted.Bar()), 10, 1, 48, 39);
  EXPECT_RECT(RectIn(hosted.Child(CTitleWindow::IDC_TITLE_CAPACITY), hosted.Bar()), 68, 0, 128, 39);
  // The right group: buttons from x 10, 20 apart, each centred with the division truncated, 20 to
  // spare after the last; the group flush right.
  const CRightWindow& right = hosted.bar.GetRightWindow();
  int left = 10;
  for (const HWND button : {right.GetSyncProgressButton().m_hWnd, right.GetSettingsButton().m_hWnd,
                            right.GetZhishikuButton().m_hWnd}) {
    const RECT rect = RectIn(button, hosted.Right());
    EXPECT_EQ(std::make_pair(rect.left, rect.top), std::make_pair(LONG{left}, (40 - (rect.bottom - rect.top)) / 2));
    left = rect.right + 20;
  }
  EXPECT_EQ(right.GetWidth(), left);
  EXPECT_RECT(RectIn(hosted.Right(), hosted.Bar()), 1200 - left, 0, 1200, 39);

  // Styles: the bar clips and composites its children.
  EXPECT_EQ(static_cast<DWORD>(::GetWindowLongPtrW(hosted.Bar(), GWL_STYLE)), 0x56000000u);
  EXPECT_TRUE(::GetWindowLongPtrW(hosted.Bar(), GWL_EXSTYLE) & WS_EX_COMPOSITED);
  // Painted into a given DC: the separator along the bottom row in the theme's line colour and
  // nothing above it.
  for (const bool dark : {false, true}) {
    SetDarkTheme(dark);
    const Argb line = Opaque(dark ? RGB(0x3A, 0x3A, 0x3A) : RGB(0xD9, 0xD9, 0xD9));
    const Picture bar = PaintedBy(1200, 40, [&](HDC dc) { ::SendMessageW(hosted.Bar(), WM_PAINT, reinterpret_cast<WPARAM>(dc), 0); });
    EXPECT_EQ(std::make_pair(bar.at(600, 39), bar.at(600, 38) == line), std::make_pair(line, false)) << dark;
  }

  const HWND bar = hosted.Bar();
  hosted.bar.Uninitialize();
  EXPECT_TRUE(!::IsWindow(bar) && hosted.unknown.m_count == 1 && !hosted.bar.IsLogoSubclassed()) << "all go with Uninitialize";
}

TEST_F(BarTest, WidthDecidesWhichChildrenShow) {
  PublishAdvertising(L"ad-1", L"开通会员立享优惠");
  HostedBar hosted(1400, true);
  ASSERT_TRUE(hosted.Start());
  const int r = hosted.bar.GetRightWindow().GetWidth();
  const HWND logo = hosted.Child(CTitleWindow::IDC_TITLE_LOGO), capacity = hosted.Child(CTitleWindow::IDC_TITLE_CAPACITY);
  const HWND promotion = hosted.Child(CTitleWindow::IDC_TITLE_ADVERTISING);
  const RECT promotionRect = RectIn(promotion, hosted.Bar());
  ASSERT_EQ(promotionRect.left, 148) << "20 after the capacity display";
  // Each child shows from the width that leaves 10 pixels between it and the right group.
  const struct {
    int width;
    bool logo, capacity, advertising;
  } cases[] = {
      {r + 57, false, false, false}, {r + 58, true, false, false}, {r + 137, true, false, false},
      {r + 138, true, true, false},  {r + promotionRect.right + 9, true, true, false},
      {r + promotionRect.right + 10, true, true, true}, {r + 10, false, false, false},
  };
  for (const auto& c : cases) {
    hosted.owner.Layout(c.width);
    EXPECT_EQ(std::make_tuple(HasStyle(logo, WS_VISIBLE), HasStyle(capacity, WS_VISIBLE), HasStyle(promotion, WS_VISIBLE),
                              HasStyle(hosted.Right(), WS_VISIBLE)),
              std::make_tuple(c.logo, c.capacity, c.advertising, true)) << c.width;
    EXPECT_EQ(Tie(RectIn(hosted.Right(), hosted.Bar())), std::make_tuple(c.width - r, 0, c.width, 39)) << c.width;
  }
  // Without a promotion the widest bar still hides the entry.
  ::RegDeleteKeyValueW(HKEY_CURRENT_USER, kUserKey.c_str(), L"advertisingId");
  hosted.Tick();
  hosted.owner.Layout(1400);
  EXPECT_FALSE(HasStyle(promotion, WS_VISIBLE));
  // A promotion that appears while the bar is too narrow shows until the next WM_SIZE.
  hosted.owner.Layout(r + 138);
  PublishAdvertising(L"ad-2", L"新活动");
  hosted.Tick();
  EXPECT_TRUE(HasStyle(promotion, WS_VISIBLE));
  ::SendMessageW(hosted.Bar(), WM_SIZE, SIZE_RESTORED, MAKELPARAM(r + 138, 40));
  EXPECT_FALSE(HasStyle(promotion, WS_VISIBLE));
}

TEST_F(BarTest, ZoomChangePostsOneDisplayChangePair) {
  HostedBar hosted(1200);
  PublishZoom(hosted.owner.GetExplorerHwnd(), L"1.0");
  PublishAdvertising(L"ad-1", L"promo");
  ASSERT_TRUE(hosted.Start());
  const int unzoomedHeight = hosted.owner.GetBarHeight();
  // Which captions follow the owner window's zoom: the measuring caption, the promotion, the expand
  // label and the knowledge-base label; the capacity figures and the two button labels do not.
  const std::pair<const wchar_t*, bool> captions[] = {{L"detection.png", true}, {L"advertisingInfo.png", true},
      {L"Expand.png", true}, {L"zsk_dt.png", true}, {L"Capacity.png", false}, {L"Capacityu.png", false},
      {L"Capacityt.png", false}, {L"tb_dt1.png", false}, {L"set_dt1.png", false}};
  std::map<std::wstring, LONG> unzoomed;
  for (const auto& [picture, zoomed] : captions) unzoomed[picture] = PictureSize(SkinFile(picture)).cy;
  // The measuring caption and the promotion are drawn in the promotion's blue.
  EXPECT_EQ(InkColours(SkinFile(L"detection.png")), std::set<std::uint32_t>{0x0091FF});
  EXPECT_EQ(InkColours(SkinFile(L"advertisingInfo.png")), std::set<std::uint32_t>{0x0091FF});

  const struct {
    const wchar_t* published;  // null: the value is removed
    int posts;
    double stored;
  } steps[] = {
      {L"1.0", 0, 1.0}, {L"1.0000000009", 0, 1.0},  // read at creation; within 1e-9
      {L"1.25", 1, 1.25}, {L"1.25", 0, 1.25}, {L"2.0", 1, 2.0},
      {L"2.0000000015", 1, 2.0000000015},  // absolute 1.5e-9 is a change (relatively only 7.5e-10)
      {nullptr, 1, 0.0},                  // disappeared: a change to 0
      {nullptr, 0, 0.0}, {L"0.0000000001", 0, 0.0},  // 1e-10 against 0
      {L"letters", 0, 0.0},                          // unparsable: the fresh 0 stays
  };
  const std::wstring zoomValue = std::to_wstring(reinterpret_cast<std::uintptr_t>(hosted.owner.GetExplorerHwnd()));
  for (size_t i = 0; i < std::size(steps); ++i) {
    steps[i].published ? PublishZoom(hosted.owner.GetExplorerHwnd(), steps[i].published)
                       : static_cast<void>(::RegDeleteKeyValueW(HKEY_CURRENT_USER, kZoomKey.c_str(), zoomValue.c_str()));
    hosted.Tick();
    const std::vector<HWND> posted = TakeQueued(WM_DISPLAYCHANGE);
    const auto count = [&](HWND window) { return static_cast<int>(std::count(posted.begin(), posted.end(), window)); };
    EXPECT_EQ(std::make_tuple(posted.size(), count(hosted.Bar()), count(hosted.Right())),
              std::make_tuple(2u * steps[i].posts, steps[i].posts, steps[i].posts)) << "step " << i;
    EXPECT_DOUBLE_EQ(hosted.bar.GetDpiZoom(), steps[i].stored) << "step " << i;
    Pump();
    if (i != 2) continue;  // re-measured at 1.25
    // Literal heights in this prefix's font: the captions measure 14 px at 1.0 and the zoomed ones
    // 18 at 1.25 (a zoom applied twice, 1.5625, would give about 22); the bar grows from 22 to 28.
    EXPECT_EQ(std::make_pair(unzoomedHeight, hosted.owner.GetBarHeight()), std::make_pair(22, 28));
    for (const auto& [picture, zoomed] : captions) {
      EXPECT_EQ(std::make_pair(unzoomed[picture], PictureSize(SkinFile(picture)).cy), std::make_pair(14L, zoomed ? 18L : 14L))
          << logtest::Utf8(picture);
    }
  }
  EXPECT_EQ(hosted.owner.GetBarHeight(), unzoomedHeight) << "re-measured at 1.0 after the zoom went away";
}

TEST_F(BarTest, TicksRenderOnlyWhatTheClientChanged) {
  PublishSpace(4 * kGiB, kGiB);
  PublishAdvertising(L"a1", L"title-1");
  HostedBar hosted(1400);
  ASSERT_TRUE(hosted.Start());
  const wchar_t* const pictures[] = {L"advertisingInfo.png", L"Capacity.png", L"Capacityu.png", L"Capacityt.png",
                                     L"Capacityut.png", L"Expand.png"};
  // Deletes the promotion and the five capacity pictures, ticks, and tells which came back.
  const auto tick = [&] {
    for (const wchar_t* name : pictures) ::DeleteFileW(SkinFile(name).c_str());
    hosted.Tick();
    std::pair<bool, int> written{FileExists(SkinFile(pictures[0])), 0};
    for (const wchar_t* name : pictures) written.second += name != pictures[0] && FileExists(SkinFile(name)) ? 1 : 0;
    return written;
  };
  EXPECT_EQ(tick(), std::make_pair(false, 0)) << "nothing changed: the figures it already shows render nothing";
  PublishAdvertising(L"a1", L"title-2");
  EXPECT_EQ(tick(), std::make_pair(true, 0)) << "the title changed";
  PublishSpace(4 * kGiB, 2 * kGiB);
  EXPECT_EQ(tick(), std::make_pair(false, 5)) << "the used space changed";
  // A quota of 1 GiB or less reads as no data: the figures shown stay.
  PublishSpace(kGiB, 10);
  EXPECT_EQ(tick(), std::make_pair(false, 0));
  EXPECT_EQ(std::make_pair(hosted.bar.GetCapacity().GetTotalSpace(), hosted.bar.GetCapacity().GetUsedSpace()),
            std::make_pair(4 * kGiB, 2 * kGiB));

  // A published account picture replaces the default logo.
  SetUserValue(L"userLogoPath", SkinFile(L"zsk.png"));
  hosted.Tick();
  EXPECT_EQ(hosted.bar.GetLogoButton().GetImagePath(0), SkinFile(L"zsk.png"));
  // A short account name is not taken, and makes every other reader fail: default logo, no promotion.
  SetUser(L"u012345678");
  hosted.Tick();
  EXPECT_EQ(hosted.bar.GetCurrentUser(), kUser);
  EXPECT_EQ(hosted.bar.GetLogoButton().GetImagePath(0), SkinFile(L"logo1.png"));
  EXPECT_FALSE(HasStyle(hosted.Child(CTitleWindow::IDC_TITLE_ADVERTISING), WS_VISIBLE));
}

// The picture ledger leaves a file alone only when it already holds what the same inputs write:
// a second bar, a zoom change and a theme change with new figures, run with the ledger off and
// on, leave every CorvaneSkin file byte for byte the same after every step.
TEST_F(BarTest, SkippedRendersLeaveTheSameBytesAsRenderingEverything) {
  using Files = std::map<std::wstring, std::vector<std::uint8_t>>;
  const auto run = [&](bool reuse) {
    imageutil::store::SetReuse(false);  // forgets what was recorded
    imageutil::store::SetReuse(reuse);
    SetDarkTheme(false);
    PublishSpace(4 * kGiB, kGiB);
    PublishAdvertising(L"a1", L"title-1");
    std::vector<Files> steps;
    const auto snapshot = [&] {
      Pump();
      const std::wstring folder = corvane::ThisModuleFolder() + L"CorvaneSkin";
      Files& files = steps.emplace_back();
      for (const std::wstring& name : logtest::FilesIn(folder)) files[name] = logtest::ReadBytes(folder + L"\\" + name);
    };
    HostedBar first(1200), second(900);
    PublishZoom(first.owner.GetExplorerHwnd(), L"1.0");
    EXPECT_TRUE(first.Start() && second.Start());
    snapshot();
    PublishZoom(first.owner.GetExplorerHwnd(), L"1.25");
    first.Tick();
    snapshot();
    SetDarkTheme(true);
    PublishSpace(4 * kGiB, 4 * kGiB - 100 * kMiB);
    first.Tick();
    second.Tick();
    snapshot();
    return steps;
  };
  const auto reuses = [] { return corvane::profile::Get(corvane::profile::Work::PictureReused).count; };
  const auto r0 = reuses();
  const std::vector<Files> rendered = run(false);
  const auto r1 = reuses();
  std::vector<Files> reused = run(true);
  imageutil::store::SetReuse(true);
  EXPECT_EQ(r1, r0) << "nothing is reused with the ledger off";
  EXPECT_GT(reuses(), r1) << "the ledger skipped something, or the comparison proves nothing";
  for (size_t step = 0; step < 3; ++step) {
    EXPECT_EQ(rendered[step].size(), reused[step].size()) << "step " << step;
    for (const auto& [name, bytes] : rendered[step]) EXPECT_EQ(reused[step][name], bytes) << logtest::Utf8(name) << ", step " << step;
  }
}

// A window whose picture write is stuck (a scanner, a network disk) holds no other window: while
// another thread's bar waits inside a write (held by the test hook for at most ten seconds), a bar
// on this thread is built in about its normal time.
TEST_F(BarTest, AStuckWriteInOneWindowHoldsNoOther) {
  PublishSpace(4 * kGiB, kGiB);
  const auto build = [] {
    const auto start = std::chrono::steady_clock::now();
    HostedBar hosted(1200);
    EXPECT_TRUE(hosted.Start());
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
  };
  build();  // everything rendered once
  const double normal = build();
  static DWORD s_heldThread = 0;
  static const corvane::unique_handle s_entered(::CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      s_release(::CreateEventW(nullptr, TRUE, FALSE, nullptr));
  static std::atomic<bool> s_left{false};
  imageutil::store::SetWriteHookForTest([](const std::wstring&) {
    if (::GetCurrentThreadId() != s_heldThread) return;
    ::SetEvent(s_entered.get());
    ::WaitForSingleObject(s_release.get(), 10000);
    s_left = true;
  });
  ::DeleteFileW(SkinFile(L"Capacityu.png").c_str());  // so both bars must write it
  std::thread held([] {
    s_heldThread = ::GetCurrentThreadId();
    const HRESULT com = ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    HostedBar(1000).Start();
    if (SUCCEEDED(com)) ::CoUninitialize();
  });
  const bool wasHeld = ::WaitForSingleObject(s_entered.get(), 10000) == WAIT_OBJECT_0;
  const double whileHeld = build();
  const bool stillHeld = !s_left;
  ::SetEvent(s_release.get());
  held.join();
  imageutil::store::SetWriteHookForTest(nullptr);
  ASSERT_TRUE(wasHeld) << "the other bar never wrote";
  EXPECT_TRUE(stillHeld) << "this bar was built only after the held write went on";
  // Generous against a loaded machine; a bar that waits for the held write takes ten seconds.
  EXPECT_LT(whileHeld, 3 * normal + 500) << "normally " << normal << " ms";
}

}  // namespace
}  // namespace bartest
