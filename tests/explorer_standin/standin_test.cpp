// What the integration tests take from the Explorer stand-in on trust: Explorer's window tree (with
// the second DirectUIHWND deeper inside, which an add-in must leave alone) on one thread per window,
// the file list filling the view until an add-in moves it, and a channel that says "ok" only for
// what it did.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "log_files.h"
#include "standin_session.h"

namespace standintest {
namespace {

std::wstring ClassOf(HWND window) {
  wchar_t name[256] = {};
  ::GetClassNameW(window, name, 256);
  return name;
}

TEST(Standin, WindowTreeOneThreadPerWindowAndAChannelThatSaysOkOnlyForWhatWasDone) {
  logtest::TempFolder scratch;
  const std::wstring alpha = scratch.MakeFolder(L"Alpha"), beta = scratch.MakeFolder(L"Beta");
  StandinSession standin(scratch.Path());
  const int first = standin.Open(alpha), second = standin.Open(alpha);
  ASSERT_EQ(first, 1) << testing::PrintToString(standin.LogText());

  struct Part {
    const wchar_t* part;
    const wchar_t* className;
    const wchar_t* parent;  // part name of the direct parent
  };
  const Part parts[] = {
      {L"band", L"WorkerW", L"frame"},
      {L"tab", L"ShellTabWindowClass", L"frame"},
      {L"duiview", L"DUIViewWndClassName", L"tab"},
      {L"directui", L"DirectUIHWND", L"duiview"},
      {L"notifysink", L"CtrlNotifySink", L"directui"},
      {L"defview", L"SHELLDLL_DefView", L"notifysink"},
      {L"items", L"DirectUIHWND", L"defview"},
  };
  const HWND frame = standin.Handle(first, L"frame");
  EXPECT_EQ(ClassOf(frame), L"CabinetWClass");
  const DWORD windowThread = ::GetWindowThreadProcessId(frame, nullptr);
  for (const Part& part : parts) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(part.part)));
    const HWND window = standin.Handle(first, part.part);
    EXPECT_EQ(ClassOf(window), part.className);
    EXPECT_EQ(::GetParent(window), standin.Handle(first, part.parent));
    EXPECT_EQ(::GetWindowThreadProcessId(window, nullptr), windowThread);
  }
  EXPECT_NE(::GetWindowThreadProcessId(standin.Handle(second, L"frame"), nullptr), windowThread);

  // The list fills the view, so that a list at the top and down to the bottom means "not laid out".
  const HWND view = standin.Handle(first, L"duiview");
  RECT list{}, client{};
  ::GetWindowRect(standin.Handle(first, L"directui"), &list);
  ::MapWindowPoints(nullptr, view, reinterpret_cast<POINT*>(&list), 2);
  ::GetClientRect(view, &client);
  EXPECT_TRUE(::EqualRect(&list, &client));

  // One reply per command, "ok" only for what was done.
  struct Case {
    std::wstring command;
    std::wstring reply;  // exact, or a prefix when it ends in a blank
  };
  const Case cases[] = {
      {L"navigate 7 " + alpha, L"error "},
      {L"navigate 1 " + scratch.Path() + L"\\Missing", L"error "},
      // A message nobody handles: the frame answers 0, and a PIDL given with it stays with the sender.
      {L"send 1 0x0500 0 pidl:" + beta, L"ok 0"},
      {L"folder 1", L"ok " + alpha},
      {L"navigate 1 " + beta, L"ok"},
      {L"folder 1", L"ok " + beta},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.command));
    const std::wstring reply = standin.Command(c.command);
    EXPECT_EQ(c.reply.back() == L' ' ? reply.substr(0, c.reply.size()) : reply, c.reply) << testing::PrintToString(reply);
  }
}

}  // namespace
}  // namespace standintest
