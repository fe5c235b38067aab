// The stand-in's window tree: Explorer's class names and parentage, one thread for the whole
// window, and a layout that follows resizes without undoing a list that an add-in moved down.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "scratch_folder.h"
#include "standin_session.h"

namespace standintest {
namespace {

std::wstring ClassOf(HWND window) {
  wchar_t name[256] = {};
  ::GetClassNameW(window, name, 256);
  return name;
}

RECT Client(HWND window) {
  RECT rect{};
  ::GetClientRect(window, &rect);
  return rect;
}

// A window's rectangle in its parent's client coordinates.
RECT InParent(HWND window) {
  RECT rect{};
  ::GetWindowRect(window, &rect);
  ::MapWindowPoints(nullptr, ::GetParent(window), reinterpret_cast<POINT*>(&rect), 2);
  return rect;
}

::testing::AssertionResult Fills(HWND child, HWND parent) {
  const RECT inner = InParent(child), outer = Client(parent);
  if (inner.left == 0 && inner.top == 0 && inner.right == outer.right && inner.bottom == outer.bottom) {
    return ::testing::AssertionSuccess();
  }
  return ::testing::AssertionFailure() << ClassOf(child).c_str() << " at (" << inner.left << "," << inner.top << ")-("
                                       << inner.right << "," << inner.bottom << ") in " << ClassOf(parent).c_str()
                                       << " of " << outer.right << "x" << outer.bottom;
}

TEST(StandinWindowTree, ClassesParentageAndLayout) {
  ScratchFolder scratch;
  const std::wstring folder = scratch.MakeFolder(L"Alpha");
  StandinSession standin(scratch.Root());
  const int id = standin.Open(folder);
  ASSERT_EQ(id, 1) << testing::PrintToString(standin.LogText());

  struct Part {
    const wchar_t* part;
    const wchar_t* className;
    const wchar_t* parent;  // part name of the direct parent; null for the top-level frame
  };
  const Part parts[] = {
      {L"frame", L"CabinetWClass", nullptr},
      {L"band", L"WorkerW", L"frame"},
      {L"tab", L"ShellTabWindowClass", L"frame"},
      {L"duiview", L"DUIViewWndClassName", L"tab"},
      {L"directui", L"DirectUIHWND", L"duiview"},
      {L"notifysink", L"CtrlNotifySink", L"directui"},
      {L"defview", L"SHELLDLL_DefView", L"notifysink"},
      {L"items", L"DirectUIHWND", L"defview"},
      {L"status", L"msctls_statusbar32", L"frame"},
  };
  const HWND frame = standin.Handle(id, L"frame");
  ASSERT_TRUE(::IsWindow(frame));
  const DWORD windowThread = ::GetWindowThreadProcessId(frame, nullptr);
  for (const Part& part : parts) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(part.part)));
    const HWND window = standin.Handle(id, part.part);
    ASSERT_TRUE(::IsWindow(window));
    EXPECT_EQ(ClassOf(window), part.className);
    EXPECT_TRUE(::IsWindowVisible(window));
    EXPECT_EQ(::GetWindowThreadProcessId(window, nullptr), windowThread);
    if (part.parent == nullptr) {
      EXPECT_EQ(::GetAncestor(window, GA_PARENT), ::GetDesktopWindow());
      EXPECT_EQ(::GetWindowLongPtrW(window, GWL_STYLE) & WS_CHILD, 0);
    } else {
      EXPECT_EQ(::GetParent(window), standin.Handle(id, part.parent));
      EXPECT_TRUE(::IsChild(frame, window));
    }
  }
  EXPECT_NE(windowThread, ::GetCurrentThreadId());

  const HWND tab = standin.Handle(id, L"tab"), duiView = standin.Handle(id, L"duiview");
  const HWND directUi = standin.Handle(id, L"directui"), status = standin.Handle(id, L"status");
  // The band on top, the status bar at the bottom, the view filling the tab in between.
  EXPECT_EQ(InParent(standin.Handle(id, L"band")).top, 0);
  EXPECT_EQ(InParent(status).bottom, Client(frame).bottom);
  EXPECT_EQ(InParent(tab).bottom, InParent(status).top);
  EXPECT_TRUE(Fills(duiView, tab));
  EXPECT_TRUE(Fills(directUi, duiView));
  EXPECT_TRUE(Fills(standin.Handle(id, L"items"), standin.Handle(id, L"defview")));

  // A resize reaches the view and the list.
  ASSERT_EQ(standin.Command(L"size 1 820 560"), L"ok");
  RECT outer{};
  ::GetWindowRect(frame, &outer);
  EXPECT_EQ(outer.right - outer.left, 820);
  EXPECT_EQ(outer.bottom - outer.top, 560);
  EXPECT_TRUE(Fills(duiView, tab));
  EXPECT_TRUE(Fills(directUi, duiView));

  // An add-in moves the list down inside the view; a later resize must keep that offset and only
  // follow the new width and bottom edge.
  const RECT view = Client(duiView);
  ASSERT_TRUE(::SetWindowPos(directUi, nullptr, 0, 40, view.right, view.bottom - 40, SWP_NOZORDER | SWP_NOACTIVATE));
  ASSERT_EQ(standin.Command(L"size 1 900 640"), L"ok");
  ASSERT_EQ(standin.Command(L"sync 1"), L"ok");
  const RECT list = InParent(directUi), resized = Client(duiView);
  EXPECT_EQ(list.top, 40);
  EXPECT_EQ(list.left, 0);
  EXPECT_EQ(list.right, resized.right);
  EXPECT_EQ(list.bottom, resized.bottom);
  EXPECT_TRUE(Fills(duiView, tab));
}

}  // namespace
}  // namespace standintest
