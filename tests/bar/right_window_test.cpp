// The right button group: its run-time pictures, the images per theme, the re-measure and the
// settings menu.
#include "bar_fixture.h"

#include <cmath>

namespace bartest {
namespace {

std::vector<std::wstring> Slots(const CPngToolButton& button) {
  std::vector<std::wstring> names;
  for (int slot = 0; slot < 4; ++slot) {
    const std::wstring& path = button.GetImagePath(slot);
    names.push_back(path.substr(path.rfind(L'\\') + 1));
  }
  return names;
}

TEST_F(BarTest, RightGroupJoinsIconsScaledToTheirLabels) {
  HostedBar hosted(1200);
  ASSERT_TRUE(hosted.Start());
  const struct {
    const wchar_t* text;
    const wchar_t* icon;
    const wchar_t* scaled;
    const wchar_t* joined;
  } pictures[] = {
      {L"tb_dt1.png", L"tb_normal.png", L"tb_normals.png", L"tb_dd1.png"},
      {L"set_dt2.png", L"setting_normal1.png", L"setting_normal1s.png", L"set_dd2.png"},
      {L"zsk_dt.png", L"zsk.png", L"zsks.png", nullptr},
  };
  for (const auto& p : pictures) {
    const SIZE text = PictureSize(SkinFile(p.text)), icon = PictureSize(SkinFile(p.icon));
    const SIZE scaled = PictureSize(SkinFile(p.scaled));
    ASSERT_GT(icon.cy, 0) << "skin artwork missing";
    EXPECT_EQ(scaled.cy, text.cy) << "the icon is brought to the label's height";
    EXPECT_EQ(scaled.cx, std::lround(static_cast<double>(icon.cx) * text.cy / icon.cy)) << "and keeps its shape";
    if (p.joined == nullptr) continue;
    const SIZE joined = PictureSize(SkinFile(p.joined));
    EXPECT_EQ(joined.cx, scaled.cx + text.cx) << "joined without overlap";
    EXPECT_EQ(joined.cy, text.cy);
  }
  // The labels' inks; the two light-theme ones differ by two in red.
  const struct {
    const wchar_t* name;
    std::uint32_t ink;
  } inks[] = {{L"tb_dt1.png", 0x122133}, {L"set_dt1.png", 0x102133}, {L"set_dt2.png", 0xFFFFFF},
              {L"tb_dt3.png", 0x0091FF}, {L"zsk_dt.png", 0x5C7EFF}};
  for (const auto& label : inks) EXPECT_EQ(InkColours(SkinFile(label.name)), std::set<std::uint32_t>{label.ink});

  const CRightWindow& right = hosted.bar.GetRightWindow();
  EXPECT_EQ(right.GetSyncProgressButton().GetImageWidth(), PictureSize(SkinFile(L"tb_dd1.png")).cx);
  EXPECT_EQ(right.GetZhishikuButton().GetImageWidth(), PictureSize(SkinFile(L"zsks.png")).cx);
}

TEST_F(BarTest, RightGroupImagesFollowTheTheme) {
  HostedBar hosted(1200);
  ASSERT_TRUE(hosted.Start());
  const CRightWindow& right = hosted.bar.GetRightWindow();
  using Names = std::vector<std::wstring>;
  const Names lightSync{L"tb_dd1.png", L"tb_dd3.png", L"tb_dd3.png", L"tb_dd1.png"};
  const Names darkSync{L"tb_dd2.png", L"tb_dd3.png", L"tb_dd3.png", L"tb_dd2.png"};
  const Names lightSettings{L"set_dd1.png", L"set_dd3.png", L"set_dd3.png", L"set_dd1.png"};
  const Names darkSettings{L"set_dd2.png", L"set_dd3.png", L"set_dd3.png", L"set_dd2.png"};
  const Names zhishiku(4, L"zsks.png");
  EXPECT_EQ(Slots(right.GetSyncProgressButton()), lightSync);
  EXPECT_EQ(Slots(right.GetSettingsButton()), lightSettings);
  EXPECT_EQ(Slots(right.GetZhishikuButton()), zhishiku);

  wchar_t other[] = L"Policy", element[] = L"WindowsThemeElement", immersive[] = L"ImmersiveColorSet";
  const auto announce = [&](wchar_t* text) {
    ::SendMessageW(hosted.Right(), WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(text));
  };
  SetDarkTheme(true);
  announce(other);
  EXPECT_EQ(Slots(right.GetSyncProgressButton()), lightSync) << "another setting changes nothing";
  ::SendMessageW(hosted.Right(), WM_SETTINGCHANGE, 0, 0);
  EXPECT_EQ(Slots(right.GetSyncProgressButton()), lightSync) << "no string changes nothing";
  announce(element);
  EXPECT_EQ(Slots(right.GetSyncProgressButton()), darkSync);
  EXPECT_EQ(Slots(right.GetSettingsButton()), darkSettings);
  EXPECT_EQ(Slots(right.GetZhishikuButton()), zhishiku);
  SetDarkTheme(false);
  announce(immersive);
  EXPECT_EQ(Slots(right.GetSyncProgressButton()), lightSync);
  EXPECT_EQ(Slots(right.GetSettingsButton()), lightSettings);
}

TEST_F(BarTest, RightGroupReMeasureRebuildsAndAsksTheBarToPlaceIt) {
  HostedBar hosted(1200);
  ASSERT_TRUE(hosted.Start());
  ::DeleteFileW(SkinFile(L"tb_dd1.png").c_str());
  ::DeleteFileW(SkinFile(L"zsks.png").c_str());
  ::SendMessageW(hosted.Right(), WM_DISPLAYCHANGE, 0, 0);
  EXPECT_TRUE(FileExists(SkinFile(L"tb_dd1.png")));
  EXPECT_TRUE(FileExists(SkinFile(L"zsks.png")));
  EXPECT_EQ(TakeQueued(WM_TITLE_PLACE_RIGHT), std::vector<HWND>{hosted.Bar()});
}

// TrackPopupMenu is modal: a thread timer closes the menu from inside its loop and notes where
// the menu window stood.
RECT g_menuRect{};
void CALLBACK CloseMenu(HWND, UINT, UINT_PTR timer, DWORD) {
  if (const HWND menu = ::FindWindowW(L"#32768", nullptr)) ::GetWindowRect(menu, &g_menuRect);
  ::KillTimer(nullptr, timer);
  ::EndMenu();
}

void ClickSettings(const HostedBar& hosted) {
  g_menuRect = RECT{};
  ::SetTimer(nullptr, 0, 200, &CloseMenu);
  const HWND settings = hosted.bar.GetRightWindow().GetSettingsButton().m_hWnd;
  ::SendMessageW(hosted.Right(), WM_COMMAND, MAKEWPARAM(CRightWindow::IDC_RIGHT_SETTINGS, BN_CLICKED),
                 reinterpret_cast<LPARAM>(settings));
  Pump();
}

TEST_F(BarTest, SettingsMenuIsBuiltOnceAndOpensAtTheButtonsBottomLeft) {
  HostedBar hosted(900);
  ASSERT_TRUE(hosted.Start());
  const CRightWindow& right = hosted.bar.GetRightWindow();
  EXPECT_EQ(right.GetSettingsMenu(), nullptr) << "built on first use";

  ClickSettings(hosted);
  const HMENU menu = right.GetSettingsMenu();
  ASSERT_NE(menu, nullptr);
  const struct {
    UINT id;
    const wchar_t* label;
  } items[] = {{1001, L"同步盘设置"}, {1002, L"同步盘操作记录"}, {1003, L"智能客服"}};
  ASSERT_EQ(::GetMenuItemCount(menu), 3);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(::GetMenuItemID(menu, i), items[i].id);
    wchar_t label[64] = {};
    ::GetMenuStringW(menu, static_cast<UINT>(i), label, 64, MF_BYPOSITION);
    EXPECT_STREQ(label, items[i].label);
  }
  RECT settings{};
  ::GetWindowRect(right.GetSettingsButton().m_hWnd, &settings);
  EXPECT_EQ(g_menuRect.left, settings.left) << "the menu opened at the settings button's left";
  EXPECT_EQ(g_menuRect.top, settings.bottom) << "and under its bottom";

  ClickSettings(hosted);
  EXPECT_EQ(right.GetSettingsMenu(), menu) << "a second click reuses the menu";
  EXPECT_EQ(::GetMenuItemCount(menu), 3);
}

}  // namespace
}  // namespace bartest
