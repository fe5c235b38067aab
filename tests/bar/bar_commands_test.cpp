// Every hover and click of the bar ends as one command line at the client stand-in, with the
// window handles and screen anchors the client needs to place its pop-ups.
#include "bar_fixture.h"

#include <functional>

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
    EXPECT_EQ(records.back().directory + L"\\", corvane::ClientFolder());
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
  for (const auto& [id, argument] : {std::pair{1001, L"sync_setting"}, std::pair{1002, L"sync_operate"}, std::pair{1003, L"ai_custom"}}) {
    ExpectCommand("settings menu", [&] { ::SendMessageW(hosted.Right(), WM_COMMAND, id, 0); },
                  std::wstring(L"setting|") + argument, L"CRightWindow::onCommand");
  }
}

}  // namespace
}  // namespace bartest
