// Every hover and click of the bar ends as one command line at the client stand-in, with the
// window handles and screen anchors the client needs to place its pop-ups.
#include "bar_fixture.h"

#include <functional>

#include "platform/module_path.h"
#include "standin_session.h"

namespace bartest {
namespace {

std::wstring Params(const std::wstring& fields) { return L" -shellpopwin \"" + fields + L"\""; }
std::wstring Number(HWND window) { return std::to_wstring(reinterpret_cast<std::uintptr_t>(window)); }
RECT ScreenRect(HWND window) {
  RECT rect{};
  ::GetWindowRect(window, &rect);
  return rect;
}

// A press and release inside the button, as the mouse would deliver them.
void Click(HWND button) {
  ::SendMessageW(button, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(2, 2));
  ::SendMessageW(button, WM_LBUTTONUP, 0, MAKELPARAM(2, 2));
}

class BarCommandTest : public BarTest {
 protected:
  // Runs the action and checks that exactly one client start followed, with these parameters, from
  // the client folder, and that the log names it under function with the given ending.
  void ExpectCommand(const char* what, const std::function<void()>& action, const std::wstring& parameters,
                     const std::wstring& function, const wchar_t* ending = L".") {
    SCOPED_TRACE(what);
    const size_t before = launchertest::ReadRecords(m_standin.ClientRecord()).size();
    ClearLog();
    action();
    const auto records = launchertest::WaitForRecords(m_standin.ClientRecord(), before + 1);
    ASSERT_EQ(records.size(), before + 1);
    const std::wstring exe = corvane::ClientFolder() + L"Halvex.exe";
    EXPECT_EQ(records.back().commandLine, launchertest::Received(exe, parameters));
    EXPECT_EQ(records.back().directory + L"\\", corvane::ClientFolder());
    EXPECT_EQ(LogOf(function), std::vector<std::wstring>{L"call cx::exeCloudCommandLine = " + exe + parameters + ending});
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
  const RECT logoRect = ScreenRect(logo);
  const std::wstring logoAnchor = std::to_wstring(logoRect.left) + L"|" + std::to_wstring(logoRect.bottom) + L"|" +
                                  std::to_wstring(logoRect.right) + L";" + std::to_wstring(logoRect.top);

  ExpectCommand("logo hover", [&] { ::SendMessageW(logo, WM_MOUSEMOVE, 0, MAKELPARAM(3, 3)); },
                Params(L"accountInfo|show|" + logoAnchor), L"CTitleWindow::BtnLogoSubclassProc", L"");
  EXPECT_TRUE(hosted.bar.IsLogoHovered());
  // The command is sent and logged inside the move itself: a second one would show at once.
  ::SendMessageW(logo, WM_MOUSEMOVE, 0, MAKELPARAM(4, 4));
  EXPECT_EQ(LogOf(L"CTitleWindow::BtnLogoSubclassProc").size(), 1u) << "a hovered logo asks once";
  ExpectCommand("logo leave", [&] { ::SendMessageW(logo, WM_MOUSELEAVE, 0, 0); },
                Params(L"accountInfo|hide|" + logoAnchor), L"CTitleWindow::BtnLogoSubclassProc");
  EXPECT_FALSE(hosted.bar.IsLogoHovered());
  ExpectCommand("leave without a show", [&] { ::SendMessageW(logo, WM_MOUSELEAVE, 0, 0); },
                Params(L"accountInfo|hide|" + logoAnchor), L"CTitleWindow::BtnLogoSubclassProc");

  const RECT adRect = ScreenRect(advertising);
  ExpectCommand("promotion click", [&] { Click(advertising); },
                Params(L"vip|show|" + std::to_wstring(adRect.left) + L"|" + std::to_wstring(adRect.bottom) + L"|" +
                       Number(hosted.Bar()) + L"|0"),
                L"CTitleWindow::OnAdvertisingClick");

  const RECT capacityRect = ScreenRect(capacity.m_hWnd);
  ExpectCommand("expand click", [&] { Click(capacity.GetExpandButton().m_hWnd); },
                Params(L"vip|show|" + std::to_wstring(capacityRect.left) + L"|" +
                       std::to_wstring(capacityRect.bottom) + L"|" + Number(capacity.m_hWnd) + L"|1"),
                L"CDiskCapacityWnd::OnBnClickedExpand");

  const HWND syncProgress = right.GetSyncProgressButton().m_hWnd;
  ExpectCommand("sync progress click", [&] { Click(syncProgress); },
                Params(L"syncprogress|show|-1|-1|" + Number(syncProgress)), L"CRightWindow::OnSyncProgressClick");

  const RECT settingsRect = ScreenRect(right.GetSettingsButton().m_hWnd);
  const HWND zhishiku = right.GetZhishikuButton().m_hWnd;
  ASSERT_NE(ScreenRect(zhishiku).left, settingsRect.left);
  ExpectCommand("knowledge base click", [&] { Click(zhishiku); },
                Params(L"zhishiku|show|" + std::to_wstring(settingsRect.left) + L"|" +
                       std::to_wstring(settingsRect.bottom) + L"|" + Number(zhishiku)),
                L"CRightWindow::OnZhishikuClick");

  const struct {
    int id;
    const wchar_t* argument;
  } menu[] = {{1001, L"sync_setting"}, {1002, L"sync_operate"}, {1003, L"ai_custom"}};
  for (const auto& item : menu) {
    ExpectCommand("settings menu", [&] { ::SendMessageW(hosted.Right(), WM_COMMAND, item.id, 0); },
                  Params(std::wstring(L"setting|") + item.argument), L"CRightWindow::onCommand");
  }
}

}  // namespace
}  // namespace bartest
