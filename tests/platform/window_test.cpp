// The window base and the subclass wrapper on real windows.
#include <gtest/gtest.h>

#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "platform/subclass.h"
#include "platform/window.h"

namespace {

class CProbe : public corvane::Window<CProbe> {
 public:
  static constexpr const wchar_t* kClassName = L"CorvaneTestProbe";
  static std::span<const MessageEntry> MessageMap() {
    static const MessageEntry map[] = {
        {WM_USER + 1, &CProbe::OnDeclined},
        {WM_USER + 1, &CProbe::OnTaken},
        {WM_USER + 2, &CProbe::OnThrow},
        {WM_COMMAND, &CProbe::OnCommandA, 7, BN_CLICKED},
        {WM_COMMAND, &CProbe::OnAnyCommand},
        {WM_GETTEXTLENGTH, &CProbe::OnDeclined},
    };
    return map;
  }
  // Each handler notes its call and answers its own number.
  LRESULT Note(std::wstring call, LRESULT result) {
    calls.push_back(std::move(call));
    return result;
  }
  LRESULT OnDeclined(UINT, WPARAM, LPARAM, bool& handled) {
    handled = false;
    return Note(L"declined", 111);
  }
  LRESULT OnTaken(UINT, WPARAM, LPARAM, bool&) { return Note(L"taken", 42); }
  LRESULT OnThrow(UINT, WPARAM, LPARAM, bool&) { throw std::runtime_error("handler failure"); }
  LRESULT OnCommandA(UINT, WPARAM, LPARAM, bool&) { return Note(L"A", 1); }
  LRESULT OnAnyCommand(UINT, WPARAM wParam, LPARAM, bool&) { return Note(L"any:" + std::to_wstring(LOWORD(wParam)), 2); }
  void OnFinalMessage(HWND) override { finalSeen = true; }

  std::vector<std::wstring> calls;
  bool finalSeen = false;
};

class CSpy : public corvane::SubclassWindow<CSpy, int> {
 public:
  CSpy() : SubclassWindow(0x20190803) {}
  LRESULT OnSubclassMessage(UINT message, WPARAM, LPARAM, bool& handled) {
    if (message == WM_USER + 5) {
      ++seen;
      handled = true;
      return 5;
    }
    return 0;
  }
  int seen = 0;
};

}  // namespace

TEST(Window, MessageMapRunsInOrderAndFallsBackToDefault) {
  CProbe probe;
  ASSERT_NE(probe.Create(nullptr, nullptr, L"probe text", WS_OVERLAPPEDWINDOW), nullptr);
  EXPECT_EQ(::SendMessageW(probe.m_hWnd, WM_USER + 1, 0, 0), 42) << "a declining handler lets later entries run";
  EXPECT_EQ(probe.calls, (std::vector<std::wstring>{L"declined", L"taken"}));

  probe.calls.clear();
  EXPECT_EQ(::SendMessageW(probe.m_hWnd, WM_COMMAND, MAKEWPARAM(7, BN_CLICKED), 0), 1);
  EXPECT_EQ(::SendMessageW(probe.m_hWnd, WM_COMMAND, MAKEWPARAM(7, BN_SETFOCUS), 0), 2);
  EXPECT_EQ(::SendMessageW(probe.m_hWnd, WM_COMMAND, MAKEWPARAM(8, BN_CLICKED), 0), 2);
  EXPECT_EQ(probe.calls, (std::vector<std::wstring>{L"A", L"any:7", L"any:8"}));

  // Declined everywhere, the message reaches DefWindowProc, which knows the text.
  EXPECT_EQ(::SendMessageW(probe.m_hWnd, WM_GETTEXTLENGTH, 0, 0), 10);
  // A throwing handler never leaves the window procedure.
  EXPECT_EQ(::SendMessageW(probe.m_hWnd, WM_USER + 2, 0, 0), 0);

  CProbe second;  // the class is registered once and shared
  ASSERT_NE(second.Create(nullptr, nullptr, L"", WS_OVERLAPPEDWINDOW), nullptr);
  ::DestroyWindow(probe.m_hWnd);
  EXPECT_EQ(std::make_tuple(probe.finalSeen, probe.m_hWnd, second.IsWindow()), std::make_tuple(true, HWND{}, true));

  // A destroyed object takes its window along.
  auto third = std::make_unique<CProbe>();
  const HWND window = third->Create(nullptr, nullptr, L"", WS_OVERLAPPEDWINDOW);
  third.reset();
  EXPECT_FALSE(::IsWindow(window));
}

TEST(SubclassWindow, SeesMessagesAndLetsGoOfADyingWindow) {
  CProbe target;
  ASSERT_NE(target.Create(nullptr, nullptr, L"", WS_OVERLAPPEDWINDOW), nullptr);
  int owner = 0;
  CSpy spy;
  ASSERT_TRUE(spy.Subclass(target.m_hWnd, &owner));
  EXPECT_EQ(spy.GetOwner(), &owner);
  EXPECT_EQ(::SendMessageW(target.m_hWnd, WM_USER + 5, 0, 0), 5);
  EXPECT_EQ(spy.seen, 1);
  // Messages the subclass leaves alone still reach the window's own map.
  EXPECT_EQ(::SendMessageW(target.m_hWnd, WM_USER + 1, 0, 0), 42);

  spy.Unsubclass();
  EXPECT_EQ(::SendMessageW(target.m_hWnd, WM_USER + 5, 0, 0), 0);
  EXPECT_EQ(spy.seen, 1);

  ASSERT_TRUE(spy.Subclass(target.m_hWnd, &owner));
  const HWND window = target.m_hWnd;
  ::DestroyWindow(window);
  EXPECT_FALSE(spy.IsSubclassed()) << "the subclass goes with WM_NCDESTROY";
  EXPECT_EQ(spy.GetHwnd(), window) << "the handle stays held for the owner's rules";
  spy.Unsubclass();  // and a later unsubclass of a dead window is harmless
  EXPECT_EQ(spy.GetHwnd(), nullptr);
}

TEST(SubclassWindow, HoldsOneWindowAndAnOlderWindowsDeathLeavesTheNewOneAlone) {
  CProbe first, second;
  ASSERT_NE(first.Create(nullptr, nullptr, L"", WS_OVERLAPPEDWINDOW), nullptr);
  ASSERT_NE(second.Create(nullptr, nullptr, L"", WS_OVERLAPPEDWINDOW), nullptr);
  int owner = 0;
  CSpy spy;
  ASSERT_TRUE(spy.Subclass(first.m_hWnd, &owner));
  ASSERT_TRUE(spy.Subclass(second.m_hWnd, &owner));
  EXPECT_EQ(::SendMessageW(first.m_hWnd, WM_USER + 5, 0, 0), 0) << "the window let go keeps no procedure of ours";
  EXPECT_EQ(::SendMessageW(second.m_hWnd, WM_USER + 5, 0, 0), 5);

  ::DestroyWindow(first.m_hWnd);
  EXPECT_TRUE(spy.IsSubclassed()) << "the older window's end is not the current one's";
  spy.Unsubclass();
  EXPECT_EQ(::SendMessageW(second.m_hWnd, WM_USER + 5, 0, 0), 0) << "the unsubclass really removed it";
  EXPECT_EQ(spy.seen, 1);
}
