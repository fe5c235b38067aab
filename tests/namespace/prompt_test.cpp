// The login prompt inside the view, hosted by the built DLL: which button shows where, where the
// background picture lands, what the buttons send to the client, and the step into the sync folder.
#include <algorithm>
#include <utility>
#include <vector>

#include "debug_capture.h"
#include "namespace_fixture.h"
#include "platform/handles.h"

namespace nstest {
namespace {

const wchar_t* const kButtonNames[] = {L"a001XXX", L"a002XXX", L"a003XXX", L"a004XXX"};

HWND Button(HWND prompt, int index) {
  return ::FindWindowExW(prompt, nullptr, L"CorvaneCustomButton", kButtonNames[index]);
}

RECT RectIn(HWND window, HWND parent) {
  RECT rect{};
  ::GetWindowRect(window, &rect);
  ::MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&rect), 2);
  return rect;
}

// The client area of a window as 0x00RRGGBB pixels, row by row.
std::vector<DWORD> Capture(HWND window, int width, int height) {
  std::vector<DWORD> pixels(static_cast<size_t>(width) * height);
  corvane::scoped_window_dc screen(window);
  corvane::unique_hdc memory(::CreateCompatibleDC(screen.get()));
  BITMAPINFO info{};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), width, -height, 1, 32, BI_RGB};
  void* bits = nullptr;
  corvane::unique_hbitmap dib(::CreateDIBSection(screen.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
  if (!dib) return pixels;
  {
    corvane::scoped_select selected(memory.get(), dib.get());
    ::BitBlt(memory.get(), 0, 0, width, height, screen.get(), 0, 0, SRCCOPY);
  }
  const auto* source = static_cast<const DWORD*>(bits);
  std::transform(source, source + pixels.size(), pixels.begin(), [](DWORD p) { return p & 0xFFFFFF; });
  return pixels;
}

// The bounding box of the pixels that differ from the background colour, inside or outside a rectangle.
RECT PaintedBox(const std::vector<DWORD>& pixels, int width, int height, DWORD background, const RECT& area,
                bool inside) {
  RECT box{width, height, 0, 0};
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const POINT at{x, y};
      if ((::PtInRect(&area, at) != FALSE) != inside) continue;
      if (pixels[static_cast<size_t>(y) * width + x] == background) continue;
      box = {std::min<LONG>(box.left, x), std::min<LONG>(box.top, y), std::max<LONG>(box.right, x + 1),
             std::max<LONG>(box.bottom, y + 1)};
    }
  }
  return box;
}

bool IsEmptyBox(const RECT& box) { return box.right <= box.left || box.bottom <= box.top; }
bool Contains(const RECT& outer, const RECT& inner) {
  return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right && inner.bottom <= outer.bottom;
}

struct FaceCase {
  ClientState state;
  int width, height;
  int button;        // the one visible button
  RECT buttonRect;   // in the prompt's client coordinates
  RECT background;   // where the picture may paint; empty for no picture
};

const FaceCase kFaces[] = {
    {ClientState::kSignedOut, 759, 800, 0, {317, 380, 441, 420}, {}},
    {ClientState::kSignedOut, 760, 414, 0, {318, 374, 442, 414}, {0, 0, 760, 414}},
    {ClientState::kSignedOut, 1000, 600, 0, {438, 467, 562, 507}, {120, 93, 880, 507}},
    {ClientState::kSignedInNoSync, 900, 900, 2, {13, 645, 887, 889}, {13, 10, 887, 889}},
    {ClientState::kSignedInNoSync, 873, 900, 1, {218, 551, 655, 673}, {218, 226, 655, 673}},
    {ClientState::kSignedInNoSync, 436, 900, 3, {140, 430, 297, 470}, {}},
};

class PromptTest : public NamespaceTest {};

// The prompt's state posts (WM_USER + 239) seen by this thread's message loop.
std::vector<std::pair<HWND, WPARAM>> g_statePosts;
LRESULT CALLBACK RecordStatePosts(int code, WPARAM wParam, LPARAM lParam) {
  const auto* message = reinterpret_cast<const MSG*>(lParam);
  if (code == HC_ACTION && wParam == PM_REMOVE && message->message == WM_USER + 239) {
    g_statePosts.emplace_back(message->hwnd, message->wParam);
  }
  return ::CallNextHookEx(nullptr, code, wParam, lParam);
}

TEST_F(PromptTest, FacesByStateSizeAndTheme) {
  for (const bool dark : {false, true}) {
    SetDarkTheme(dark);
    const DWORD brush = dark ? 0x202020 : 0xFFFFFF;
    for (const FaceCase& face : kFaces) {
      SCOPED_TRACE(testing::Message() << face.width << "x" << face.height << " state " << static_cast<int>(face.state)
                                      << (dark ? " dark" : " light"));
      Publish(face.state);
      OpenView(face.width, face.height);
      const HWND prompt = Prompt();
      ASSERT_NE(prompt, nullptr);
      EXPECT_TRUE(::IsWindowVisible(prompt));
      const RECT promptRect = RectIn(prompt, m_host->ViewWindow());
      EXPECT_EQ(promptRect.right - promptRect.left, face.width);
      EXPECT_EQ(promptRect.bottom - promptRect.top, face.height);
      for (int i = 0; i < 4; ++i) {
        const HWND button = Button(prompt, i);
        ASSERT_NE(button, nullptr) << i;
        EXPECT_EQ(::IsWindowVisible(button) != FALSE, i == face.button) << "button " << i;
        EXPECT_EQ(::GetDlgCtrlID(button), i == 0 ? 1001 : 1002);
      }
      const RECT shown = RectIn(Button(prompt, face.button), prompt);
      EXPECT_TRUE(::EqualRect(&shown, &face.buttonRect))
          << shown.left << "," << shown.top << "," << shown.right << "," << shown.bottom;

      const std::vector<DWORD> pixels = Capture(prompt, face.width, face.height);
      // The button painted its picture; nothing outside it and the background picture's place is painted.
      EXPECT_FALSE(IsEmptyBox(PaintedBox(pixels, face.width, face.height, brush, face.buttonRect, true)));
      const RECT rest = PaintedBox(pixels, face.width, face.height, brush, face.buttonRect, false);
      if (IsEmptyBox(face.background)) {
        EXPECT_TRUE(IsEmptyBox(rest)) << rest.left << "," << rest.top << "," << rest.right << "," << rest.bottom;
      } else {
        EXPECT_FALSE(IsEmptyBox(rest));
        EXPECT_TRUE(Contains(face.background, rest))
            << rest.left << "," << rest.top << "," << rest.right << "," << rest.bottom;
      }
      m_host.reset();
    }
  }
}

TEST_F(PromptTest, OnlyAColourSetChangeSwitchesTheTheme) {
  Publish(ClientState::kSignedOut);
  OpenView(600, 400);
  const HWND prompt = Prompt();
  const RECT login = RectIn(Button(prompt, 0), prompt);
  // A corner of the prompt, and a point inside the button's picture.
  const auto colours = [&] {
    // The handler leaves repainting to whoever changed the setting.
    ::RedrawWindow(prompt, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    const std::vector<DWORD> pixels = Capture(prompt, 600, 400);
    const size_t inButton = static_cast<size_t>(login.top + 20) * 600 + login.left + 10;
    return std::make_pair(pixels[5 * 600 + 5], pixels[inButton]);
  };
  const auto light = colours();
  EXPECT_EQ(light.first, 0xFFFFFFu);

  SetDarkTheme(true);
  ::SendMessageW(prompt, WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(L"immersivecolorset"));
  EXPECT_EQ(colours(), light) << "the setting's name is compared exactly";
  ::SendMessageW(prompt, WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(L"ImmersiveColorSet"));
  const auto dark = colours();
  EXPECT_EQ(dark.first, 0x202020u);
  EXPECT_NE(dark.second, light.second) << "the button shows its dark picture";
}

TEST_F(PromptTest, HoverShowsTheHoverPictureWhereThereIsOne) {
  // The login button has a light hover picture and none for dark, where it keeps its dark face.
  for (const bool dark : {false, true}) {
    SetDarkTheme(dark);
    Publish(ClientState::kSignedOut);
    OpenView(600, 400);
    const HWND prompt = Prompt();
    const HWND button = Button(prompt, 0);
    const RECT login = RectIn(button, prompt);
    const auto pixel = [&] {
      ::RedrawWindow(button, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
      return Capture(prompt, 600, 400)[static_cast<size_t>(login.top + 20) * 600 + login.left + 10];
    };
    const DWORD normal = pixel();
    POINT centre{62, 20};
    ::ClientToScreen(button, &centre);
    ::SetCursorPos(centre.x, centre.y);
    ::SendMessageW(button, WM_MOUSEMOVE, 0, MAKELPARAM(62, 20));
    EXPECT_EQ(pixel() != normal, !dark) << (dark ? "dark" : "light");
    ::SendMessageW(button, WM_MOUSELEAVE, 0, 0);
    EXPECT_EQ(pixel(), normal);
    m_host.reset();
  }
}

TEST_F(PromptTest, ButtonsSendTheirCommands) {
  struct ClickCase {
    ClientState state;
    int button;
    const wchar_t* command;
    const wchar_t* logger;  // the function the log line names
  };
  const ClickCase cases[] = {
      {ClientState::kSignedOut, 0, L"login|from_shell", L"CMainWindow::OnBtnLoginClick"},
      {ClientState::kSignedInNoSync, 1, L"syncdisk|open", L"CMainWindow::OnBtnSyncClick"},
      {ClientState::kSignedInNoSync, 2, L"syncdisk|open", L"CMainWindow::OnBtnSyncClick"},
      {ClientState::kSignedInNoSync, 3, L"syncdisk|open", L"CMainWindow::OnBtnSyncClick"},
  };
  for (const ClickCase& c : cases) {
    SCOPED_TRACE(testing::Message() << "button " << c.button);
    Publish(c.state);
    OpenView(900, 900);
    const HWND button = Button(Prompt(), c.button);
    ASSERT_NE(button, nullptr);
    const size_t before = CommandCount();
    testsupport::DebugCapture capture;  // every log line also goes to the debugger
    // A press and release inside the button, as the mouse delivers them; the button need not show.
    ::SendMessageW(button, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
    ::SendMessageW(button, WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
    const std::wstring parameters = L" -shellpopwin \"" + std::wstring(c.command) + L"\"";
    EXPECT_EQ(NextCommand(before), launchertest::Received(ClientExe(), parameters));
    const auto logged = capture.LinesContaining(L"call cx::exeCloudCommandLine");
    ASSERT_EQ(logged.size(), 1u);
    EXPECT_EQ(logged[0].rfind(L"[Info][", 0), 0u) << Utf8(logged[0]);
    const std::wstring tail = L"[" + std::wstring(c.logger) + L"]call cx::exeCloudCommandLine = " + ClientExe() + parameters + L".";
    EXPECT_TRUE(logged[0].ends_with(tail)) << Utf8(logged[0]);
    m_host.reset();
  }
}

TEST_F(PromptTest, SyncReadyBrowsesIntoTheSyncFolderAndHidesThePrompt) {
  Publish(ClientState::kSignedInNoSync);
  OpenView(800, 600);
  nshost::PumpFor(1300);
  EXPECT_TRUE(m_host->BrowseCalls().empty());

  Publish(ClientState::kSyncReady);
  nshost::PumpFor(1300);
  ASSERT_FALSE(m_host->BrowseCalls().empty());
  EXPECT_EQ(m_host->BrowseCalls().front().path, m_syncFolder);
  EXPECT_EQ(m_host->BrowseCalls().front().flags, 1u) << "SBSP_SAMEBROWSER and nothing else";

  // Signed out, the poll keeps the sync-ready value it had: it still posts 1, yet nothing browses,
  // because the step into the folder asks the registry again.
  const size_t browses = m_host->BrowseCalls().size();
  g_statePosts.clear();
  const corvane::unique_hhook spy(::SetWindowsHookExW(WH_GETMESSAGE, RecordStatePosts, nullptr, ::GetCurrentThreadId()));
  ASSERT_TRUE(static_cast<bool>(spy));
  Publish(ClientState::kSignedOut);
  nshost::PumpFor(1300);
  ASSERT_FALSE(g_statePosts.empty());
  for (const auto& [window, wParam] : g_statePosts) {
    EXPECT_EQ(window, Prompt());
    EXPECT_EQ(wParam, 1u);
  }
  EXPECT_EQ(m_host->BrowseCalls().size(), browses);
  Publish(ClientState::kSyncReady);

  // The view decides the prompt's visibility when it is sized.
  ::SetWindowPos(m_host->Frame(), nullptr, 0, 0, 820, 600, SWP_NOMOVE | SWP_NOZORDER);
  nshost::PumpFor(50);
  EXPECT_FALSE(::IsWindowVisible(Prompt()));
  Publish(ClientState::kSignedOut);
  ::SetWindowPos(m_host->Frame(), nullptr, 0, 0, 840, 620, SWP_NOMOVE | SWP_NOZORDER);
  nshost::PumpFor(50);
  EXPECT_TRUE(::IsWindowVisible(Prompt()));
  const RECT prompt = RectIn(Prompt(), m_host->ViewWindow());
  EXPECT_EQ(prompt.right - prompt.left, 840);
  EXPECT_EQ(prompt.bottom - prompt.top, 620);
}

}  // namespace
}  // namespace nstest
