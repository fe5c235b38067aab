// The PNG button in a real parent window: real clicks and drags, the picture shown per state,
// painting over the theme's background with transparency, the cursor, theme notifications and
// DestroyButton.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <tuple>
#include <utility>
#include <vector>

#include "widget_support.h"
#include "widgets/picture_store.h"
#include "widgets/png_tool_button.h"

using namespace widgettest;

namespace {

constexpr int kId = 2001;
constexpr RECT kButtonRect{20, 20, 70, 50};  // 50 x 30, larger than the 30 x 20 pictures
constexpr BYTE kHalfAlpha = 128;             // the block (20..30, 10..20) of every picture
const Argb kSlotColours[4] = {{255, 200, 30, 30}, {255, 30, 180, 60}, {255, 30, 60, 200}, {255, 200, 190, 40}};

// How many more GDI objects the process can create before the table is full (Wine's
// GetGuiResources answers 0); all freed again. An object kept alive lowers it by one.
int GdiHeadroom() {
  std::vector<HBRUSH> brushes;
  brushes.reserve(70000);
  while (HBRUSH brush = ::CreateSolidBrush(RGB(1, 2, 3))) brushes.push_back(brush);
  for (const HBRUSH brush : brushes) ::DeleteObject(brush);
  return static_cast<int>(brushes.size());
}

class PngToolButton : public ::testing::Test {
 protected:
  void SetUp() override {
    for (int slot = 0; slot < 4; ++slot) {
      m_paths[slot] = m_folder / (L"slot" + std::to_wstring(slot + 1) + L".png");
      const Argb solid = kSlotColours[slot], half{kHalfAlpha, solid.r, solid.g, solid.b};
      WritePng(m_paths[slot], 30, 20, solid, {{RECT{0, 0, 4, 4}, kTransparent}, {RECT{20, 10, 30, 20}, half}});
    }
    ASSERT_TRUE(m_parent.CreateAt(300, 300, 200, 100));
    CreateButton();
  }
  void TearDown() override {
    if (m_button) m_button->DestroyButton();
    ::ReleaseCapture();
  }
  // A fresh button with the cursor away from it and no commands recorded.
  void CreateButton() {
    if (m_button) m_button->DestroyButton();
    m_parent.commands.clear();
    MoveMouseTo(m_parent.m_hWnd, 190, 90);
    m_button = std::make_unique<CPngToolButton>();
    ASSERT_TRUE(m_button->SetImages(m_paths[0], m_paths[1], m_paths[2], m_paths[3]));
    ASSERT_NE(m_button->Create(m_parent.m_hWnd, &kButtonRect, L"vip", WS_CHILD | WS_VISIBLE, 0, kId), nullptr);
    Pump();
  }
  HWND Button() const { return m_button->m_hWnd; }
  // The colour the button shows in the middle of its picture.
  Argb Shown() const {
    const auto picture = CaptureClient(Button());
    return picture ? picture->at(10, 5) : Argb{};
  }

  TempFolder m_folder;
  std::wstring m_paths[4];
  CCommandRecorder m_parent;
  std::unique_ptr<CPngToolButton> m_button;
};

}  // namespace

TEST_F(PngToolButton, RealClicksDragsAndTheSlotShown) {
  struct Step {
    enum Kind { Move, Down, Up } kind;
    int x = 0, y = 0;
    int slot = -1;  // the picture expected after the step, -1 for "not checked"
  };
  const struct {
    const char* name;
    std::vector<Step> steps;
    size_t clicks;
  } scenarios[] = {
      {"press and release inside", {{Step::Move, 10, 5, 1}, {Step::Down, 0, 0, 2}, {Step::Up, 0, 0, 1}}, 1},
      {"press, drag out, release", {{Step::Move, 10, 5, 1}, {Step::Down, 0, 0, 2}, {Step::Move, 100, 5}, {Step::Up}}, 0},
      {"press, out and back in, release",
       {{Step::Move, 10, 5}, {Step::Down}, {Step::Move, -15, 5}, {Step::Move, 12, 6, 2}, {Step::Up}}, 1},
      {"moves inside while pressed stay pressed", {{Step::Move, 10, 5}, {Step::Down}, {Step::Move, 40, 25, 2}, {Step::Up}}, 1},
  };
  for (const auto& scenario : scenarios) {
    SCOPED_TRACE(scenario.name);
    CreateButton();
    EXPECT_EQ(Shown(), kSlotColours[0]);
    for (const Step& step : scenario.steps) {
      if (step.kind == Step::Move) MoveMouseTo(Button(), step.x, step.y);
      if (step.kind != Step::Move) LeftButton(step.kind == Step::Down);
      if (step.slot < 0) continue;
      EXPECT_EQ(std::make_pair(m_button->CurrentSlot(), Shown()), std::make_pair(step.slot, kSlotColours[step.slot]));
    }
    EXPECT_EQ(m_parent.commands, std::vector<CCommandRecorder::Command>(scenario.clicks, {kId, reinterpret_cast<LPARAM>(Button())}));
    EXPECT_EQ(std::make_pair(m_button->IsPressed(), ::GetCapture()), std::make_pair(false, HWND{}));
  }
}

// A button-up this button did not capture (the capture was taken away while pressed) is no click,
// and the press it leaves behind is only cleared by a captured release: a further press is ignored
// and takes no capture. (The bar never disables or focuses its buttons.)
TEST_F(PngToolButton, AReleaseWithoutTheCaptureIsNoClick) {
  ::SendMessageW(Button(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(10, 5));
  EXPECT_EQ(::GetCapture(), Button());
  ::ReleaseCapture();
  ::SendMessageW(Button(), WM_LBUTTONUP, 0, MAKELPARAM(10, 5));
  EXPECT_TRUE(m_button->IsPressed());
  ::SendMessageW(Button(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(10, 5));
  EXPECT_EQ(::GetCapture(), nullptr);
  ::SendMessageW(Button(), WM_LBUTTONUP, 0, MAKELPARAM(10, 5));
  EXPECT_EQ(std::make_pair(m_parent.commands.size(), m_button->CurrentSlot()), std::make_pair(size_t{0}, 2));
}

TEST_F(PngToolButton, PaintsPicturesOverTheThemeBackgroundWithTransparency) {
  ThemeOverride theme(false);
  // Slot 1's (200, 30, 30) at half alpha over each theme's background, within 2.
  for (const auto& [dark, background, blended] : {std::tuple{false, RGB(255, 255, 255), Argb{255, 228, 143, 143}},
                                                  std::tuple{true, RGB(32, 32, 32), Argb{255, 117, 31, 31}}}) {
    SCOPED_TRACE(dark ? "dark" : "light");
    theme.Set(dark);
    const auto shown = CaptureClient(Button());
    ASSERT_TRUE(shown);
    // The 30 x 20 picture is stretched across the 50 x 30 client: its half-transparent block lands
    // on (33..50, 15..30).
    EXPECT_EQ(shown->at(1, 1), Opaque(background)) << "a transparent corner shows the background, not black";
    EXPECT_EQ(std::make_pair(shown->at(10, 5), shown->at(25, 12)), std::make_pair(kSlotColours[0], kSlotColours[0]));
    // Blended within 2 in the block's far corner: the picture reaches the corner of the client.
    const Argb corner = shown->at(49, 29);
    EXPECT_TRUE(std::abs(corner.r - blended.r) <= 2 && std::abs(corner.g - blended.g) <= 2 && std::abs(corner.b - blended.b) <= 2)
        << ::testing::PrintToString(corner);
  }
  // A slot whose file is missing paints only the background.
  ASSERT_FALSE(m_button->SetImages(m_folder / L"missing.png", m_paths[1], m_paths[2], m_paths[3]));
  EXPECT_TRUE(m_button->HasImage(1));
  EXPECT_EQ(Shown(), Opaque(RGB(32, 32, 32)));

  // The bar gives one file to all four slots: it is decoded once and copied, and the copies show.
  // (Which paths and sizes the buttons take, the bar's tests read back from its buttons.)
  ASSERT_TRUE(m_button->SetImages(m_paths[2], m_paths[2], m_paths[2], m_paths[2]));
  MoveMouseTo(Button(), 10, 5);
  EXPECT_EQ(std::make_pair(m_button->CurrentSlot(), Shown()), std::make_pair(1, kSlotColours[2]));

  // The client replaces the picture with another of the same byte size, copied so that it keeps
  // the old file's time: the next SetImages shows the new one.
  const std::wstring copy = m_folder / L"copy.png";
  WritePng(copy, 30, 20, kSlotColours[0], {{RECT{0, 0, 4, 4}, kTransparent}});
  WritePng(m_paths[2], 30, 20, kSlotColours[3], {{RECT{0, 0, 4, 4}, kTransparent}});
  ASSERT_TRUE(m_button->SetImages(m_paths[2], m_paths[2], m_paths[2], m_paths[2]));
  EXPECT_EQ(Shown(), kSlotColours[3]);
  ASSERT_EQ(ReadBytes(copy).size(), ReadBytes(m_paths[2]).size()) << "the same byte size, for this check";
  const FILETIME shownTime = LastWriteTime(m_paths[2]);
  ASSERT_TRUE(::CopyFileW(copy.c_str(), m_paths[2].c_str(), FALSE) && SetLastWriteTime(m_paths[2], shownTime));
  ASSERT_TRUE(m_button->SetImages(m_paths[2], m_paths[2], m_paths[2], m_paths[2]));
  EXPECT_EQ(Shown(), kSlotColours[0]) << "the old picture is still shown";

  // A picture that could not be made ready for painting once (memory ran short) is tried again at
  // the next paint instead of leaving the button blank for good.
  const std::wstring fresh = m_folder / L"fresh.png";
  WritePng(fresh, 30, 20, kSlotColours[1]);
  imageutil::store::FailConversionsForTest(2);  // slots 1 and 2 fail: the hovered one is shown
  m_button->SetImages(fresh, fresh, fresh, fresh);
  imageutil::store::FailConversionsForTest(0);
  EXPECT_FALSE(m_button->HasImage(1)) << "the fault was not met";
  EXPECT_EQ(Shown(), kSlotColours[1]);
}

TEST_F(PngToolButton, CursorAndThemeNotifications) {
  const HCURSOR hand = ::LoadCursorW(nullptr, IDC_HAND), arrow = ::LoadCursorW(nullptr, IDC_ARROW);
  ASSERT_NE(hand, arrow);
  for (const auto& [flag, expected] : {std::pair{1, hand}, std::pair{0, arrow}, std::pair{2, arrow}, std::pair{1, hand}}) {
    m_button->SetHandCursor(flag);
    ::SetCursor(nullptr);
    ::SendMessageW(Button(), WM_MOUSEMOVE, 0, MAKELPARAM(10, 5));
    EXPECT_EQ(::GetCursor(), expected) << "flag " << flag;
  }
  EXPECT_EQ(::SendMessageW(Button(), WM_ERASEBKGND, 0, 0), 1);

  // Both theme settings repaint, by their exact names only.
  wchar_t immersive[] = L"ImmersiveColorSet", element[] = L"WindowsThemeElement", lower[] = L"immersivecolorset";
  for (const auto& [setting, repaint] : {std::pair{immersive, true}, std::pair{element, true}, std::pair{lower, false},
                                         std::pair<wchar_t*, bool>{nullptr, false}}) {
    ::ValidateRect(Button(), nullptr);
    EXPECT_EQ(::SendMessageW(Button(), WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(setting)), 0);
    EXPECT_EQ(::GetUpdateRect(Button(), nullptr, FALSE) != FALSE, repaint) << (setting ? logtest::Utf8(setting) : "(null)");
  }
}

TEST_F(PngToolButton, DestroyButtonTakesWindowAndPictures) {
  const HWND window = Button();
  m_button->DestroyButton();
  EXPECT_EQ(std::make_pair(::IsWindow(window), Button()), std::make_pair(FALSE, HWND{}));
  for (int slot = 0; slot < 4; ++slot) EXPECT_FALSE(m_button->HasImage(slot));
  m_button->DestroyButton();  // twice is harmless

  // Every picture is given back to GDI: thirty more shown and destroyed buttons leave the table as
  // it was (one picture kept per button would cost thirty). The measure moves by a few objects of
  // Wine's own from run to run, hence a warm-up round first and a margin well below thirty.
  CreateButton();
  m_button->DestroyButton();
  const int before = GdiHeadroom();
  for (int i = 0; i < 30; ++i) CreateButton();
  m_button->DestroyButton();
  EXPECT_GT(before, 1000) << "the measure itself works";
  EXPECT_GE(GdiHeadroom(), before - 10) << "before " << before;
}
