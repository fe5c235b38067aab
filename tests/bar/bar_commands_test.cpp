// Every hover and click of the bar ends as one command line at the client stand-in, with the
// window handles and screen anchors the client needs to place its pop-ups.
#include "bar_fixture.h"

#include <functional>
#include <tuple>

#include "accessible_probe.h"
#include "standin_session.h"

namespace bartest {
namespace {

std::wstring Number(HWND window) { return std::to_wstring(reinterpret_cast<std::uintptr_t>(window)); }
// "left|bottom" of the window on the screen, and with "|right;top" after it.
std::wstring Anchor(HWND window, bool full = false) {
  const RECT r = RectIn(window, HWND_DESKTOP);
  const std::wstring anchor = std::to_wstring(r.left) + L"|" + std::to_wstring(r.bottom);
  return full ? anchor + L"|" + std::to_wstring(r.right) + L";" + std::to_wstring(r.top) : anchor;
}

// A press and release inside the button, as the mouse would deliver them.
void Click(HWND button) {
  ::SendMessageW(button, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(2, 2));
  ::SendMessageW(button, WM_LBUTTONUP, 0, MAKELPARAM(2, 2));
}

class BarCommandTest : public BarTest {
 protected:
  // Runs the action and checks that exactly one client start followed, with these parameters, from
  // the client folder, and that the handler named function logged it once.
  void ExpectCommand(const char* what, const std::function<void()>& action, const std::wstring& fields,
                     const std::wstring& function) {
    SCOPED_TRACE(what);
    const size_t before = launchertest::ReadRecords(m_standin.ClientRecord()).size();
    ClearLog();
    action();
    const auto records = launchertest::WaitForRecords(m_standin.ClientRecord(), before + 1);
    ASSERT_EQ(records.size(), before + 1);
    EXPECT_EQ(records.back().commandLine, launchertest::Received(corvane::ClientFolder() + L"Halvex.exe", L" -shellpopwin \"" + fields + L"\""));
    // The client folder, named from this program's own place: the test bed's shell folder under it.
    wchar_t program[MAX_PATH] = {};
    ::GetModuleFileNameW(nullptr, program, MAX_PATH);
    EXPECT_EQ(records.back().directory + L"\\shell\\bar_command_tests.exe", program);
    EXPECT_EQ(records.back().show, L"1") << "started SW_SHOWNORMAL";
    EXPECT_EQ(LogOf(function).size(), 1u);
    // One client at a time: a second one starting within 8 seconds would close the start-up gate.
    ASSERT_TRUE(launchertest::WaitForNoClient());
  }

  launchertest::StandinSession m_standin;
};

TEST_F(BarCommandTest, EveryHoverAndClickSendsItsCommand) {
  PublishAdvertising(L"ad-7", L"开通会员");
  HostedBar hosted(1600);
  ASSERT_TRUE(hosted.Start());
  const HWND logo = hosted.Child(CTitleWindow::IDC_TITLE_LOGO);
  const HWND advertising = hosted.Child(CTitleWindow::IDC_TITLE_ADVERTISING);
  const CDiskCapacityWnd& capacity = hosted.bar.GetCapacity();
  const CRightWindow& right = hosted.bar.GetRightWindow();
  const std::wstring logoProc = L"CTitleWindow::BtnLogoSubclassProc";

  ExpectCommand("logo hover", [&] { ::SendMessageW(logo, WM_MOUSEMOVE, 0, MAKELPARAM(3, 3)); },
                L"accountInfo|show|" + Anchor(logo, true), logoProc);
  EXPECT_TRUE(hosted.bar.IsLogoHovered());
  // The command is sent and logged inside the move itself: a second one would show at once.
  ::SendMessageW(logo, WM_MOUSEMOVE, 0, MAKELPARAM(4, 4));
  EXPECT_EQ(LogOf(logoProc).size(), 1u) << "a hovered logo asks once";
  ExpectCommand("logo leave", [&] { ::SendMessageW(logo, WM_MOUSELEAVE, 0, 0); }, L"accountInfo|hide|" + Anchor(logo, true),
                logoProc);
  EXPECT_FALSE(hosted.bar.IsLogoHovered());
  ExpectCommand("leave without a show", [&] { ::SendMessageW(logo, WM_MOUSELEAVE, 0, 0); },
                L"accountInfo|hide|" + Anchor(logo, true), logoProc);

  ExpectCommand("promotion click", [&] { Click(advertising); },
                L"vip|show|" + Anchor(advertising) + L"|" + Number(hosted.Bar()) + L"|0", L"CTitleWindow::OnAdvertisingClick");
  ExpectCommand("expand click", [&] { Click(capacity.GetExpandButton().m_hWnd); },
                L"vip|show|" + Anchor(capacity.m_hWnd) + L"|" + Number(capacity.m_hWnd) + L"|1",
                L"CDiskCapacityWnd::OnBnClickedExpand");
  const HWND syncProgress = right.GetSyncProgressButton().m_hWnd;
  ExpectCommand("sync progress click", [&] { Click(syncProgress); }, L"syncprogress|show|-1|-1|" + Number(syncProgress),
                L"CRightWindow::OnSyncProgressClick");
  // The knowledge base's pop-up is anchored on the settings button.
  const HWND settings = right.GetSettingsButton().m_hWnd, zhishiku = right.GetZhishikuButton().m_hWnd;
  ASSERT_NE(Anchor(zhishiku), Anchor(settings));
  ExpectCommand("knowledge base click", [&] { Click(zhishiku); },
                L"zhishiku|show|" + Anchor(settings) + L"|" + Number(zhishiku), L"CRightWindow::OnZhishikuClick");
  // A screen reader's "Press" is the same click, to the same command line.
  ExpectCommand("knowledge base pressed through its accessible object",
                [&] { EXPECT_EQ(testsupport::PressAccessibly(zhishiku), S_OK); },
                L"zhishiku|show|" + Anchor(settings) + L"|" + Number(zhishiku), L"CRightWindow::OnZhishikuClick");

  // Every picture button as a screen reader reads it: a push button named after what its picture
  // shows, focusable and nothing else while idle, and "Press" as its default action.
  const struct { const char* what; HWND window; std::wstring name; } buttons[] = {
      {"logo", logo, kUser},
      {"promotion", advertising, L"开通会员"},
      {"capacity figures", capacity.GetTextButton().m_hWnd, L"0B/0B"},
      {"expand", capacity.GetExpandButton().m_hWnd, L"扩容>"},
      {"sync progress", right.GetSyncProgressButton().m_hWnd, L"同步进度"},
      {"settings", settings, L"设置"},
      {"knowledge base", zhishiku, L"AI工作台"},
  };
  for (const auto& button : buttons) {
    const testsupport::Accessible seen = testsupport::AccessibleOf(button.window);
    EXPECT_EQ(std::make_tuple(seen.found, seen.role, seen.name, seen.action),
              std::make_tuple(true, static_cast<LONG>(ROLE_SYSTEM_PUSHBUTTON), button.name, std::wstring(L"Press")))
        << button.what;
    EXPECT_EQ(seen.state & (STATE_SYSTEM_UNAVAILABLE | STATE_SYSTEM_HOTTRACKED | STATE_SYSTEM_PRESSED), 0) << button.what;
  }
  // Disabled, hovered and held show in its state.
  ::EnableWindow(zhishiku, FALSE);
  EXPECT_EQ(testsupport::AccessibleOf(zhishiku).state & STATE_SYSTEM_UNAVAILABLE, STATE_SYSTEM_UNAVAILABLE);
  ::EnableWindow(zhishiku, TRUE);
  ::SendMessageW(zhishiku, WM_MOUSEMOVE, 0, MAKELPARAM(2, 2));
  ::SendMessageW(zhishiku, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(2, 2));
  EXPECT_EQ(testsupport::AccessibleOf(zhishiku).state & (STATE_SYSTEM_HOTTRACKED | STATE_SYSTEM_PRESSED),
            STATE_SYSTEM_HOTTRACKED | STATE_SYSTEM_PRESSED);
  ::ReleaseCapture();
  ::SendMessageW(zhishiku, WM_MOUSELEAVE, 0, 0);
  for (const auto& item : {std::pair{1001, L"sync_setting"}, std::pair{1002, L"sync_operate"}, std::pair{1003, L"ai_custom"}}) {
    // A structured binding is not captured by a lambda before C++20's P1091 fix, which clang 14 lacks.
    const WPARAM id = static_cast<WPARAM>(item.first);
    ExpectCommand("settings menu", [&] { ::SendMessageW(hosted.Right(), WM_COMMAND, id, 0); },
                  std::wstring(L"setting|") + item.second, L"CRightWindow::onCommand");
  }
}

}  // namespace
}  // namespace bartest
