// Helper objects as Explorer hosts them: which are loaded, what they find when sited, that the
// view windows are made after SetSite on the same thread, the events they hear, and the order of
// OnQuit, SetSite(NULL) and release when the window closes.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "probe_protocol.h"
#include "probe_record_reader.h"
#include "probe_registration.h"
#include "scratch_folder.h"
#include "standin_session.h"

namespace standintest {
namespace {

constexpr wchar_t kOk[] = L"0x00000000";

TEST(StandinHelperObject, SitedBeforeTheViewIsMadeAndReleasedAfterOnQuit) {
  ScratchFolder scratch;
  const std::wstring alpha = scratch.MakeFolder(L"Alpha"), beta = scratch.MakeFolder(L"Beta Folder"),
                     gamma = scratch.MakeFolder(L"Gamma");
  ProbeRegistration registration({{&probe::kClsidFull}});
  ASSERT_TRUE(registration.Succeeded());
  StandinSession standin(scratch.Root());
  const int id = standin.Open(alpha);
  ASSERT_EQ(id, 1) << testing::PrintToString(standin.LogText());
  const HWND frame = standin.Handle(id, L"frame");
  const HWND duiView = standin.Handle(id, L"duiview"), directUi = standin.Handle(id, L"directui");
  const HWND status = standin.Handle(id, L"status"), band = standin.Handle(id, L"band");
  EXPECT_EQ(standin.Command(L"navigate 1 " + beta), L"ok");
  EXPECT_EQ(standin.Command(L"navigate 1 " + gamma), L"ok");
  EXPECT_EQ(standin.Command(L"close 1"), L"ok");
  EXPECT_FALSE(::IsWindow(frame));
  EXPECT_FALSE(::IsWindow(duiView));

  const std::vector<ProbeEntry> record = ReadProbeRecord(standin.RecordPath());
  ASSERT_EQ(Select(record, L"created").size(), 1u) << testing::PrintToString(standin.LogText());
  const std::vector<ProbeEntry> sited = Select(record, L"setsite", {{L"site", L"1"}});
  ASSERT_EQ(sited.size(), 1u);
  const ProbeEntry& site = sited[0];
  const DWORD windowThread = site.thread;

  // What the helper object finds when it is sited: the services, the frame on this very thread,
  // the status bar, the band and the tab already there, the view windows not yet.
  const std::pair<const wchar_t*, std::wstring> expected[] = {
      {L"apt", L"sta"},
      {L"sp", kOk},
      {L"web", kOk},
      {L"shell", kOk},
      {L"hwndhr", kOk},
      {L"frame", Decimal(frame)},
      {L"framethread", L"1"},
      {L"shellwindow", Decimal(frame)},
      {L"statushr", kOk},
      {L"status", Decimal(status)},
      {L"statusclass", L"msctls_statusbar32"},
      {L"statusparent", Decimal(frame)},
      {L"band", Decimal(band)},
      {L"duiview", L"0"},
      {L"activeview", L"0x80004005"},  // no view before the first navigation completes
      {L"hook", L"1"},
      {L"advise", kOk},
      {L"subclass", L"1"},
  };
  for (const auto& [key, value] : expected) EXPECT_EQ(site[key], value) << testing::PrintToString(std::wstring(key));
  EXPECT_NE(site[L"tab"], L"0");

  // The hook, installed on this thread in SetSite, saw the view windows being made, each once.
  std::vector<ProbeEntry> views, lists;
  for (const ProbeEntry& entry : Select(record, L"cbt")) {
    EXPECT_NE(entry[L"class"], L"CabinetWClass");
    if (entry[L"class"] == L"DUIViewWndClassName") views.push_back(entry);
    if (entry[L"class"] == L"DirectUIHWND" && entry[L"parentclass"] == L"DUIViewWndClassName") lists.push_back(entry);
  }
  ASSERT_EQ(views.size(), 1u);
  ASSERT_EQ(lists.size(), 1u);
  EXPECT_EQ(views[0][L"hwnd"], Decimal(duiView));
  EXPECT_EQ(views[0][L"parentclass"], L"ShellTabWindowClass");
  EXPECT_EQ(views[0][L"createclass"], L"DUIViewWndClassName");  // a class name, not an atom
  EXPECT_EQ(lists[0][L"hwnd"], Decimal(directUi));
  EXPECT_EQ(lists[0][L"createclass"], L"DirectUIHWND");
  EXPECT_LT(views[0].sequence, lists[0].sequence);
  EXPECT_EQ(Select(record, L"cbt", {{L"class", L"DirectUIHWND"}, {L"parentclass", L"SHELLDLL_DefView"}}).size(), 1u);

  // One NavigateComplete2 per navigation, with Explorer's argument shapes, on the window thread.
  const std::vector<ProbeEntry> completes = Select(record, L"invoke", {{L"dispid", L"252"}});
  ASSERT_EQ(completes.size(), 3u);
  for (const ProbeEntry& entry : completes) {
    EXPECT_EQ(entry.thread, windowThread);
    EXPECT_TRUE(entry.Matches({{L"args", L"2"}, {L"named", L"0"}, {L"iidnull", L"1"}, {L"method", L"1"},
                               {L"urlvt", L"16396"},  // VT_BYREF | VT_VARIANT
                               {L"dispvt", L"9"}}))   // VT_DISPATCH
        << testing::PrintToString(entry.fields);
  }
  const std::vector<ProbeEntry> navigated = Select(record, L"navigated");
  ASSERT_EQ(navigated.size(), 3u);
  const std::wstring urls[] = {alpha, beta, gamma};
  for (size_t index = 0; index < 3; ++index) {
    EXPECT_EQ(navigated[index][L"url"], urls[index]);
    EXPECT_EQ(navigated[index][L"samebrowser"], L"1");
  }

  // Closing: OnQuit, then SetSite(NULL), then the last release, each once and in that order.
  const std::vector<ProbeEntry> quits = Select(record, L"invoke", {{L"dispid", L"253"}});
  const std::vector<ProbeEntry> unsited = Select(record, L"setsite", {{L"site", L"0"}});
  const std::vector<ProbeEntry> destroyed = Select(record, L"destroyed");
  ASSERT_EQ(quits.size(), 1u);
  ASSERT_EQ(unsited.size(), 1u);
  ASSERT_EQ(destroyed.size(), 1u);
  EXPECT_EQ(quits[0][L"args"], L"0");
  EXPECT_EQ(quits[0].thread, windowThread);
  EXPECT_EQ(unsited[0].thread, windowThread);
  EXPECT_LT(completes.back().sequence, quits[0].sequence);
  EXPECT_LT(quits[0].sequence, unsited[0].sequence);
  EXPECT_LT(unsited[0].sequence, destroyed[0].sequence);
  // The sink unadvised from inside OnQuit, which the browser accepted; nothing fired after it.
  const std::vector<ProbeEntry> unadvised = Select(record, L"unadvise");
  ASSERT_EQ(unadvised.size(), 1u);
  EXPECT_TRUE(unadvised[0].Matches({{L"when", L"onquit"}, {L"hr", kOk}}));
  EXPECT_EQ(Select(record, L"invoke").back().sequence, quits[0].sequence);
}

TEST(StandinHelperObject, LoadsEveryRegisteredObjectExceptNoExplorerOnes) {
  ScratchFolder scratch;
  const std::wstring alpha = scratch.MakeFolder(L"Alpha");
  // Beside the probe's classes: a key that is no CLSID and a CLSID that nothing registered.
  ProbeRegistration registration({{&probe::kClsidFull}, {&probe::kClsidQuiet}, {&probe::kClsidSpare, true}},
                                 {L"not a class", L"{6D3E1D0A-0000-4000-8000-00000000BEEF}"});
  ASSERT_TRUE(registration.Succeeded());
  StandinSession standin(scratch.Root());
  ASSERT_EQ(standin.Open(alpha), 1) << testing::PrintToString(standin.LogText());
  ASSERT_EQ(standin.Open(alpha), 2);
  const std::optional<DWORD> exitCode = standin.Quit();
  ASSERT_TRUE(exitCode.has_value());
  EXPECT_EQ(*exitCode, 0u);

  const std::vector<ProbeEntry> record = ReadProbeRecord(standin.RecordPath());
  struct Expectation {
    const wchar_t* name;
    size_t count;  // per kind of entry, over both windows
  };
  const Expectation expectations[] = {{L"full", 2}, {L"quiet", 2}, {L"spare", 0}};
  for (const Expectation& e : expectations) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(e.name)));
    EXPECT_EQ(Select(record, L"created", {{L"name", e.name}}).size(), e.count);
    EXPECT_EQ(Select(record, L"setsite", {{L"name", e.name}, {L"site", L"1"}}).size(), e.count);
    EXPECT_EQ(Select(record, L"setsite", {{L"name", e.name}, {L"site", L"0"}}).size(), e.count);
    EXPECT_EQ(Select(record, L"destroyed", {{L"name", e.name}}).size(), e.count);
  }
  // Each window's objects are sited on that window's own thread, before its view is made there;
  // quit closes each window with OnQuit and SetSite(NULL) on that same thread.
  std::multiset<DWORD> sited, views, quits, unsited;
  for (const ProbeEntry& entry : Select(record, L"setsite", {{L"site", L"1"}, {L"name", L"full"}})) sited.insert(entry.thread);
  for (const ProbeEntry& entry : Select(record, L"cbt", {{L"class", L"DUIViewWndClassName"}})) views.insert(entry.thread);
  for (const ProbeEntry& entry : Select(record, L"invoke", {{L"dispid", L"253"}})) quits.insert(entry.thread);
  for (const ProbeEntry& entry : Select(record, L"setsite", {{L"site", L"0"}, {L"name", L"full"}})) unsited.insert(entry.thread);
  EXPECT_EQ(std::set<DWORD>(sited.begin(), sited.end()).size(), 2u);
  EXPECT_EQ(views, sited);
  EXPECT_EQ(quits, sited);
  EXPECT_EQ(unsited, sited);
}

}  // namespace
}  // namespace standintest
