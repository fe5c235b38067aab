// The PNG button in a real parent window: picture slots and paths, real clicks and drags, the
// picture shown per state, painting over the theme's background with transparency, the cursor,
// and DestroyButton.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

#include "widget_support.h"
#include "widgets/png_tool_button.h"

using namespace widgettest;

namespace {

constexpr int kId = 2001;
constexpr RECT kButtonRect{20, 20, 70, 50};  // 50 x 30, larger than the 30 x 20 pictures
constexpr RECT kCorner{0, 0, 4, 4};          // transparent in every picture
constexpr RECT kHalf{20, 10, 30, 20};        // half transparent in every picture
constexpr BYTE kHalfAlpha = 128;

const Argb kSlotColours[4] = {{255, 200, 30, 30}, {255, 30, 180, 60}, {255, 30, 60, 200}, {255, 200, 190, 40}};

long LiveBitmaps() { return corvane::unique_hbitmap::Live(); }

// What a picture pixel of `colour` and alpha `alpha` looks like over `background`.
Argb Blend(const Argb& colour, BYTE alpha, COLORREF background) {
  const auto mix = [alpha](int c, int b) { return static_cast<BYTE>((c * alpha + b * (255 - alpha) + 127) / 255); };
  return Argb{255, mix(colour.r, GetRValue(background)), mix(colour.g, GetGValue(background)),
              mix(colour.b, GetBValue(background))};
}

bool Near(const Argb& a, const Argb& b, int tolerance) {
  return std::abs(a.r - b.r) <= tolerance && std::abs(a.g - b.g) <= tolerance && std::abs(a.b - b.b) <= tolerance;
}

class PngToolButton : public ::testing::Test {
 protected:
  void SetUp() override {
    for (int slot = 0; slot < 4; ++slot) {
      m_paths[slot] = m_folder / (L"slot" + std::to_wstring(slot + 1) + L".png");
      Argb half = kSlotColours[slot];
      half.a = kHalfAlpha;
      WritePng(m_paths[slot], 30, 20, kSlotColours[slot], {{kCorner, kTransparent}, {kHalf, half}});
    }
    ASSERT_TRUE(m_parent.CreateAt(300, 300, 200, 100));
    MoveMouseTo(m_parent.m_hWnd, 190, 90);
    CreateButton();
  }
  void TearDown() override {
    if (m_button) m_button->DestroyButton();
    m_button.reset();
    ::ReleaseCapture();
  }
  void CreateButton() {
    m_button = std::make_unique<CPngToolButton>();
    ASSERT_TRUE(m_button->SetImages(m_paths[0], m_paths[1], m_paths[2], m_paths[3]));
    ASSERT_NE(m_button->Create(m_parent.m_hWnd, &kButtonRect, L"vip", WS_CHILD | WS_VISIBLE, 0, kId), nullptr);
    Pump();
  }
  void Reset() {
    TearDown();
    m_parent.DestroyWindow();
    Pump();
    m_parent.commands.clear();
    ASSERT_TRUE(m_parent.CreateAt(300, 300, 200, 100));
    MoveMouseTo(m_parent.m_hWnd, 190, 90);
    CreateButton();
  }
  HWND Button() const { return m_button->m_hWnd; }
  CCommandRecorder::Command Click() const { return {kId, reinterpret_cast<LPARAM>(Button())}; }
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
  struct Scenario {
    const char* name;
    std::vector<Step> steps;
    size_t clicks;
  };
  const Scenario scenarios[] = {
      {"press and release inside", {{Step::Move, 10, 5, 1}, {Step::Down, 0, 0, 2}, {Step::Up, 0, 0, 1}}, 1},
      {"press, drag out, release",
       {{Step::Move, 10, 5, 1}, {Step::Down, 0, 0, 2}, {Step::Move, 100, 5}, {Step::Up}},
       0},
      {"press, out and back in, release",
       {{Step::Move, 10, 5}, {Step::Down}, {Step::Move, -15, 5}, {Step::Move, 12, 6, 2}, {Step::Up}},
       1},
      {"moves inside while pressed stay pressed", {{Step::Move, 10, 5}, {Step::Down}, {Step::Move, 40, 25, 2}, {Step::Up}}, 1},
  };
  for (const Scenario& scenario : scenarios) {
    SCOPED_TRACE(scenario.name);
    Reset();
    EXPECT_EQ(Shown(), kSlotColours[0]);
    for (const Step& step : scenario.steps) {
      if (step.kind == Step::Move) MoveMouseTo(Button(), step.x, step.y);
      if (step.kind == Step::Down) LeftButton(true);
      if (step.kind == Step::Up) LeftButton(false);
      if (step.slot >= 0) {
        EXPECT_EQ(m_button->CurrentSlot(), step.slot);
        EXPECT_EQ(Shown(), kSlotColours[step.slot]);
      }
    }
    EXPECT_EQ(m_parent.commands, std::vector<CCommandRecorder::Command>(scenario.clicks, Click()));
    EXPECT_FALSE(m_button->IsPressed());
    EXPECT_EQ(::GetCapture(), nullptr);
  }
}

TEST_F(PngToolButton, DisabledFocusedAndUncapturedButtons) {
  // Focused but not hovered: the hover picture.
  ::SetFocus(Button());
  EXPECT_FALSE(m_button->IsHovered());
  EXPECT_EQ(m_button->CurrentSlot(), 1);
  EXPECT_EQ(Shown(), kSlotColours[1]);
  ::SetFocus(m_parent.m_hWnd);
  EXPECT_EQ(Shown(), kSlotColours[0]);

  // Disabled: the fourth picture whatever the flags say, and real clicks go nowhere.
  m_parent.commands.clear();
  MoveMouseTo(Button(), 10, 5);
  ::EnableWindow(Button(), FALSE);
  EXPECT_EQ(m_button->CurrentSlot(), 3);
  EXPECT_EQ(Shown(), kSlotColours[3]);
  LeftButton(true);
  LeftButton(false);
  EXPECT_TRUE(m_parent.commands.empty());
  ::EnableWindow(Button(), TRUE);
  EXPECT_EQ(m_button->CurrentSlot(), 1) << "the hovered flag survived the disabled spell";

  // A button-up this button did not capture is no click, and the press it leaves behind is only
  // cleared by a captured release: a further press is ignored and takes no capture.
  ::SendMessageW(Button(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(10, 5));
  EXPECT_TRUE(m_button->IsPressed());
  EXPECT_EQ(::GetCapture(), Button());
  ::ReleaseCapture();
  ::SendMessageW(Button(), WM_LBUTTONUP, 0, MAKELPARAM(10, 5));
  EXPECT_TRUE(m_parent.commands.empty());
  EXPECT_TRUE(m_button->IsPressed());
  ::SendMessageW(Button(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(10, 5));
  EXPECT_EQ(::GetCapture(), nullptr);
  ::SendMessageW(Button(), WM_LBUTTONUP, 0, MAKELPARAM(10, 5));
  EXPECT_TRUE(m_parent.commands.empty());
  EXPECT_EQ(m_button->CurrentSlot(), 2);
}

TEST_F(PngToolButton, PaintsPictureOverTheThemeBackgroundWithTransparency) {
  ThemeOverride theme(false);
  for (const bool dark : {false, true}) {
    SCOPED_TRACE(dark ? "dark" : "light");
    theme.Set(dark);
    const COLORREF background = dark ? RGB(32, 32, 32) : RGB(255, 255, 255);
    const auto shown = CaptureClient(Button());
    ASSERT_TRUE(shown);
    // The 30 x 20 picture is stretched across the 50 x 30 client: its half-transparent block
    // (20..30, 10..20) lands on (33..50, 15..30).
    EXPECT_EQ(shown->at(1, 1), Opaque(background)) << "a transparent corner shows the background, not black";
    EXPECT_EQ(shown->at(10, 5), kSlotColours[0]);
    EXPECT_EQ(shown->at(25, 12), kSlotColours[0]) << "left of the stretched half block";
    EXPECT_TRUE(Near(shown->at(49, 29), Blend(kSlotColours[0], kHalfAlpha, background), 2)) << "the picture reaches the far corner";
    const Argb half = shown->at(42, 24);
    EXPECT_TRUE(Near(half, Blend(kSlotColours[0], kHalfAlpha, background), 2))
        << ::testing::PrintToString(half) << " vs " << ::testing::PrintToString(Blend(kSlotColours[0], kHalfAlpha, background));
  }
  // A slot whose file is missing paints only the background.
  ASSERT_FALSE(m_button->SetImages(m_folder / L"missing.png", m_paths[1], m_paths[2], m_paths[3]));
  EXPECT_FALSE(m_button->HasImage(0));
  EXPECT_TRUE(m_button->HasImage(1));
  EXPECT_EQ(Shown(), Opaque(RGB(32, 32, 32)));
}

// Relative names ("CorvaneSkin\\...") are resolved under the module folder: the bar's tests read
// the logo button's path back.
TEST_F(PngToolButton, AbsolutePathsTheFirstSlotsSizeAndOneFileForAllSlots) {
  WritePng(m_folder / L"small.png", 5, 5, kSlotColours[1]);
  CPngToolButton button;
  EXPECT_TRUE(button.SetImages(m_paths[0], m_folder / L"small.png", m_folder / L"missing.png", m_paths[3]));
  EXPECT_EQ(button.GetImagePath(0), m_paths[0]);
  EXPECT_EQ(button.GetImageWidth(), 30);
  EXPECT_EQ(button.GetImageHeight(), 20);
  EXPECT_TRUE(button.HasImage(1));
  EXPECT_FALSE(button.HasImage(2));

  // One file in every slot is decoded once and copied: the copies show as well.
  ASSERT_TRUE(button.SetImages(m_paths[2], m_paths[2], m_paths[2], m_paths[2]));
  const RECT rect{100, 20, 130, 40};
  ASSERT_NE(button.Create(m_parent.m_hWnd, &rect, L"", WS_CHILD | WS_VISIBLE, 0, 2003), nullptr);
  ::EnableWindow(button.m_hWnd, FALSE);
  const auto shown = CaptureClient(button.m_hWnd);
  ASSERT_TRUE(shown);
  EXPECT_EQ(shown->at(10, 5), kSlotColours[2]);
  button.DestroyButton();
}

TEST_F(PngToolButton, CursorFollowsTheHandFlag) {
  const HCURSOR hand = ::LoadCursorW(nullptr, IDC_HAND), arrow = ::LoadCursorW(nullptr, IDC_ARROW);
  ASSERT_NE(hand, arrow);
  for (const auto& [flag, expected] : {std::pair{1, hand}, std::pair{0, arrow}, std::pair{2, arrow}, std::pair{1, hand}}) {
    m_button->SetHandCursor(flag);
    ::SetCursor(nullptr);
    ::SendMessageW(Button(), WM_MOUSEMOVE, 0, MAKELPARAM(10, 5));
    EXPECT_EQ(::GetCursor(), expected) << "flag " << flag;
  }
  EXPECT_EQ(::SendMessageW(Button(), WM_ERASEBKGND, 0, 0), 1);
}

TEST_F(PngToolButton, DestroyButtonTakesWindowAndPictures) {
  const HWND window = Button();
  const long before = LiveBitmaps();
  m_button->DestroyButton();
  EXPECT_FALSE(::IsWindow(window));
  EXPECT_EQ(Button(), nullptr);
  for (int slot = 0; slot < 4; ++slot) EXPECT_FALSE(m_button->HasImage(slot));
  EXPECT_EQ(LiveBitmaps(), before - 4);
  m_button->DestroyButton();  // twice is harmless
  EXPECT_EQ(LiveBitmaps(), before - 4);
}
