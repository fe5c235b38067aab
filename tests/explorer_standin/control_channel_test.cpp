// The stand-in's control channel and command line: one reply line per command, errors that name
// the problem without harming the windows, a client after another, windows and a script given on
// the command line, and the process ending with its last window unless told to keep running.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "log_files.h"
#include "scratch_folder.h"
#include "standin_session.h"

namespace standintest {
namespace {

bool StartsWith(const std::wstring& text, const std::wstring& prefix) { return text.compare(0, prefix.size(), prefix) == 0; }

TEST(StandinControlChannel, OneReplyPerCommandAndErrorsLeaveWindowsAlone) {
  ScratchFolder scratch;
  const std::wstring alpha = scratch.MakeFolder(L"Alpha"), unicode = scratch.MakeFolder(L"同步 Ŋame");
  StandinSession standin(scratch.Root());
  ASSERT_EQ(standin.Open(alpha), 1) << testing::PrintToString(standin.LogText());

  struct Case {
    std::wstring command;
    std::wstring reply;  // exact, or a prefix when it ends in a blank
  };
  const Case cases[] = {
      {L"windows", L"ok 1"},
      {L"bogus 1", L"error "},
      {L"navigate 7 " + alpha, L"error "},
      {L"open " + scratch.Root() + L"\\Missing", L"error "},
      {L"send 1 0x0400 0 pidl:" + scratch.Root() + L"\\Missing", L"error "},
      // A message nobody handles: the frame answers 0, and a PIDL given with it stays with the sender.
      {L"send 1 0x0500 0 pidl:" + alpha, L"ok 0"},
      {L"post 1 0x0500 0 0", L"ok"},
      {L"navigate 1 " + unicode, L"ok"},
      {L"folder 1", L"ok " + unicode},
      {L"windows", L"ok 1"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.command));
    const std::wstring reply = standin.Command(c.command);
    if (c.reply.back() == L' ') {
      EXPECT_TRUE(StartsWith(reply, c.reply)) << testing::PrintToString(reply);
      EXPECT_GT(reply.size(), c.reply.size()) << "an error names its reason";
    } else {
      EXPECT_EQ(reply, c.reply);
    }
  }

  // Two commands in one write get two replies, in order; then a second client takes over.
  EXPECT_EQ(standin.Command(L"windows\nfolder 1"), L"ok 1");
  EXPECT_EQ(standin.Command(L"sync 1"), L"ok " + unicode);
  EXPECT_EQ(standin.Command(L"sync 1"), L"ok");
  standin.Disconnect();
  EXPECT_EQ(standin.Command(L"open " + alpha), L"ok 2");
  EXPECT_EQ(standin.Command(L"windows"), L"ok 1 2");
}

TEST(StandinControlChannel, CommandLineWindowsScriptAndLastWindowEndingTheProcess) {
  ScratchFolder scratch;
  const std::wstring alpha = scratch.MakeFolder(L"Alpha"), beta = scratch.MakeFolder(L"Beta"), gamma = scratch.MakeFolder(L"Gamma");
  const std::wstring script = scratch.File(L"script.txt");
  const std::string text = "\xEF\xBB\xBF# opened from the command line first, then this runs\r\n\r\nnavigate 1 " +
                           logtest::Utf8(beta) + "\r\nopen " + logtest::Utf8(gamma) + "\r\n";
  logtest::WriteBytes(script, std::vector<std::uint8_t>(text.begin(), text.end()));
  StandinSession standin(scratch.Root(), false, {L"--open=" + alpha, L"--script=" + script, L"--width=640", L"--height=480"});
  ASSERT_TRUE(standin.Connect()) << testing::PrintToString(standin.LogText());
  // The script has run once the second window exists; the channel can answer before that.
  std::wstring windows;
  for (int attempt = 0; attempt < 200 && (windows = standin.Command(L"windows")) != L"ok 1 2"; ++attempt) ::Sleep(50);
  ASSERT_EQ(windows, L"ok 1 2") << testing::PrintToString(standin.LogText());
  EXPECT_EQ(standin.Command(L"folder 1"), L"ok " + beta);
  EXPECT_EQ(standin.Command(L"folder 2"), L"ok " + gamma);
  RECT frame{};
  ::GetWindowRect(standin.Handle(2, L"frame"), &frame);
  EXPECT_EQ(frame.right - frame.left, 640);
  EXPECT_EQ(frame.bottom - frame.top, 480);

  EXPECT_EQ(standin.Command(L"close 1"), L"ok");
  EXPECT_FALSE(standin.WaitForExit(300).has_value()) << "one window is still open";
  // Closing the last window the way a user does, with the frame's close message.
  EXPECT_EQ(standin.Command(L"post 2 0x0010 0 0"), L"ok");
  standin.Disconnect();
  const std::optional<DWORD> exitCode = standin.WaitForExit(15000);
  ASSERT_TRUE(exitCode.has_value()) << testing::PrintToString(standin.LogText());
  EXPECT_EQ(*exitCode, 0u);
}

TEST(StandinControlChannel, RefusesUnknownArguments) {
  ScratchFolder scratch;
  StandinSession standin(scratch.Root(), true, {L"--frobnicate"});
  const std::optional<DWORD> exitCode = standin.WaitForExit(15000);
  ASSERT_TRUE(exitCode.has_value());
  EXPECT_EQ(*exitCode, 2u);
}

}  // namespace
}  // namespace standintest
