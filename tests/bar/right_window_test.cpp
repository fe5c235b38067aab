// The right button group: its run-time pictures, the images per theme, the re-measure and the
// settings menu.
#include "bar_fixture.h"

#include <tuple>
#include <utility>
#include <vector>

namespace bartest {
namespace {

TEST_F(BarTest, RightGroupPicturesFollowTheirLabelsAndTheTheme) {
  HostedBar hosted(1200);
  ASSERT_TRUE(hosted.Start());
  // A re-measure renders the pictures again and asks the bar to place the group.
  ::DeleteFileW(SkinFile(L"tb_dd1.png").c_str());
  ::DeleteFileW(SkinFile(L"zsks.png").c_str());
  ::SendMessageW(hosted.Right(), WM_DISPLAYCHANGE, 0, 0);
  EXPECT_EQ(TakeQueued(WM_TITLE_PLACE_RIGHT), std::vector<HWND>{hosted.Bar()});
  // The last placement is one pair for the process, not one per bar: a second bar of the same size
  // skips placing its own group; one of another size places it.
  {
    HostedBar same(1200), other(1000);
    ASSERT_TRUE(same.Start() && other.Start());
    const RECT first = RectIn(hosted.Right(), hosted.Bar()), skipped = RectIn(same.Right(), same.Bar()),
               placed = RectIn(other.Right(), other.Bar());
    EXPECT_RECT(first, 1008, 0, 1200, 21);
    EXPECT_RECT(placed, 808, 0, 1000, 21);
    EXPECT_NE(Tie(skipped), Tie(first)) << "placed although the process's last placement was the same";
  }
  // The deleted pictures are back: each icon brought to its label's height (and joined to it).
  for (const auto& [label, icon] : {std::pair{L"tb_dt1.png", L"tb_dd1.png"}, std::pair{L"set_dt2.png", L"set_dd2.png"},
                                    std::pair{L"zsk_dt.png", L"zsks.png"}}) {
    const SIZE text = PictureSize(SkinFile(label)), scaled = PictureSize(SkinFile(icon));
    EXPECT_TRUE(text.cy > 0 && scaled.cy == text.cy) << logtest::Utf8(icon);
  }
  // The labels' inks; the two light-theme ones differ by two in red.
  for (const auto& [name, ink] : {std::pair{L"tb_dt1.png", 0x122133u}, std::pair{L"set_dt1.png", 0x102133u},
                                  std::pair{L"tb_dt2.png", 0xFFFFFFu}, std::pair{L"set_dt2.png", 0xFFFFFFu},
                                  std::pair{L"tb_dt3.png", 0x0091FFu}, std::pair{L"set_dt3.png", 0x0091FFu},
                                  std::pair{L"zsk_dt.png", 0x5C7EFFu}}) {
    EXPECT_EQ(InkColours(SkinFile(name)), std::set<std::uint32_t>{ink}) << logtest::Utf8(name);
  }

  // The three buttons' slots (the file names of their four slots each, space separated); only the
  // two theme settings swap the files, another setting or none changes nothing.
  const CRightWindow& right = hosted.bar.GetRightWindow();
  const auto shown = [&] {
    std::wstring names;
    for (const CPngToolButton* button : {&right.GetSyncProgressButton(), &right.GetSettingsButton(), &right.GetZhishikuButton()}) {
      for (int slot = 0; slot < 4; ++slot) names += button->GetImagePath(slot).substr(button->GetImagePath(slot).rfind(L'\\') + 1) + L" ";
    }
    return names;
  };
  const std::wstring light = L"tb_dd1.png tb_dd3.png tb_dd3.png tb_dd1.png set_dd1.png set_dd3.png set_dd3.png set_dd1.png zsks.png zsks.png zsks.png zsks.png ";
  const std::wstring dark = L"tb_dd2.png tb_dd3.png tb_dd3.png tb_dd2.png set_dd2.png set_dd3.png set_dd3.png set_dd2.png zsks.png zsks.png zsks.png zsks.png ";
  wchar_t other[] = L"Policy", element[] = L"WindowsThemeElement", immersive[] = L"ImmersiveColorSet", *none = nullptr;
  for (const auto& [darkTheme, setting, expected] : {std::tuple{false, none, &light}, std::tuple{true, other, &light},
                                                     std::tuple{true, none, &light}, std::tuple{true, element, &dark},
                                                     std::tuple{false, immersive, &light}}) {
    SetDarkTheme(darkTheme);
    ::SendMessageW(hosted.Right(), WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(setting));
    EXPECT_EQ(shown(), *expected) << (setting == nullptr ? "(null)" : logtest::Utf8(setting));
  }
}

// TrackPopupMenu is modal: a thread timer closes the menu from inside its loop and notes where
// the menu window stood.
RECT g_menuRect{};
void CALLBACK CloseMenu(HWND, UINT, UINT_PTR timer, DWORD) {
  if (const HWND menu = ::FindWindowW(L"#32768", nullptr)) ::GetWindowRect(menu, &g_menuRect);
  ::KillTimer(nullptr, timer);
  ::EndMenu();
}

TEST_F(BarTest, SettingsMenuIsBuiltOnceAndOpensAtTheButtonsBottomLeft) {
  HostedBar hosted(900);
  ASSERT_TRUE(hosted.Start());
  const CRightWindow& right = hosted.bar.GetRightWindow();
  const HWND settings = right.GetSettingsButton().m_hWnd;
  const auto click = [&] {
    g_menuRect = RECT{};
    ::SetTimer(nullptr, 0, 10, &CloseMenu);
    ::SendMessageW(hosted.Right(), WM_COMMAND, MAKEWPARAM(CRightWindow::IDC_RIGHT_SETTINGS, BN_CLICKED), reinterpret_cast<LPARAM>(settings));
    Pump();
  };
  EXPECT_EQ(right.GetSettingsMenu(), nullptr) << "built on first use";
  click();
  const HMENU menu = right.GetSettingsMenu();
  ASSERT_NE(menu, nullptr);
  std::vector<std::pair<UINT, std::wstring>> items;
  for (int i = 0; i < ::GetMenuItemCount(menu); ++i) {
    wchar_t label[64] = {};
    ::GetMenuStringW(menu, static_cast<UINT>(i), label, 64, MF_BYPOSITION);
    items.emplace_back(::GetMenuItemID(menu, i), label);
  }
  EXPECT_EQ(items, (decltype(items){{1001, L"同步盘设置"}, {1002, L"同步盘操作记录"}, {1003, L"智能客服"}}));
  const RECT button = RectIn(settings, HWND_DESKTOP);
  EXPECT_EQ(std::make_pair(g_menuRect.left, g_menuRect.top), std::make_pair(button.left, button.bottom))
      << "the menu opens at the settings button's left, under its bottom";

  click();
  EXPECT_EQ(std::make_pair(right.GetSettingsMenu(), ::GetMenuItemCount(menu)), std::make_pair(menu, 3))
      << "a second click reuses the menu and adds nothing to it";
}

}  // namespace
}  // namespace bartest
