// Navigation and the folder a window shows, as the add-in reads it: the real absolute PIDL through
// the active view, the same from worker threads and across apartments, and the requests an add-in
// makes (Navigate2, BrowseObject on the window thread and from a worker).
#include <windows.h>
#include <shlobj.h>

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "probe_protocol.h"
#include "probe_record_reader.h"
#include "probe_registration.h"
#include "scratch_folder.h"
#include "standin_session.h"

namespace standintest {
namespace {

constexpr wchar_t kThisPcName[] = L"::{20D04FE0-3AEA-1069-A2D8-08002B30309D}";

std::wstring Upper(std::wstring text) {
  for (wchar_t& c : text) c = static_cast<wchar_t>(::towupper(c));
  return text;
}

// The folder reports the probe wrote at the last NavigateComplete2, by where they were taken.
std::map<std::wstring, ProbeEntry> LastFolderReports(const std::vector<ProbeEntry>& record) {
  std::map<std::wstring, ProbeEntry> reports;
  const std::vector<ProbeEntry> navigated = Select(record, L"navigated");
  if (navigated.empty()) return reports;
  for (const ProbeEntry& entry : Select(record, L"folder")) {
    if (entry.sequence > navigated.back().sequence) reports[entry[L"where"]] = entry;
  }
  return reports;
}

TEST(StandinNavigation, CurrentFolderOnEveryThreadForFileAndVirtualFolders) {
  ScratchFolder scratch;
  const std::wstring alpha = scratch.MakeFolder(L"Alpha"), spaced = scratch.MakeFolder(L"Beta Folder\\Inner");
  ProbeRegistration registration({{&probe::kClsidFull}});
  ASSERT_TRUE(registration.Succeeded());
  StandinSession standin(scratch.Root());
  ASSERT_EQ(standin.Open(alpha), 1) << testing::PrintToString(standin.LogText());
  const HWND defView = standin.Handle(1, L"defview");

  struct Case {
    std::wstring location;  // as given to "navigate"
    bool fileSystem;
    std::wstring expected;  // the path, or the parsing name of a virtual folder
  };
  const Case cases[] = {
      {alpha, true, alpha},
      {spaced, true, spaced},
      {L"::ThisPC", false, kThisPcName},
      {kThisPcName, false, kThisPcName},
      {alpha + L"\\", true, alpha},
  };
  size_t navigations = 1;
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.location));
    if (c.location != alpha) {
      ASSERT_EQ(standin.Command(L"navigate 1 " + c.location), L"ok");
      ++navigations;
    }
    const std::wstring folder = standin.Command(L"folder 1");
    EXPECT_EQ(Upper(folder), Upper(L"ok " + c.expected));
    const std::vector<ProbeEntry> record = ReadProbeRecord(standin.RecordPath());
    ASSERT_EQ(Select(record, L"navigated").size(), navigations);
    EXPECT_EQ(Upper(Select(record, L"navigated").back()[L"url"]), Upper(c.expected));
    const std::map<std::wstring, ProbeEntry> reports = LastFolderReports(record);
    for (const wchar_t* where : {L"ui", L"worker", L"marshalled"}) {
      SCOPED_TRACE(testing::PrintToString(std::wstring(where)));
      ASSERT_EQ(reports.count(where), 1u);
      const ProbeEntry& report = reports.at(where);
      // Finished while the window thread waited: nothing on the way needs that thread.
      EXPECT_EQ(report[L"done"], L"1");
      EXPECT_EQ(report[L"hr"], L"0x00000000");
      EXPECT_EQ(report[L"pidl"], L"1");
      EXPECT_EQ(report[L"fs"], c.fileSystem ? L"1" : L"0");
      EXPECT_EQ(report[L"path"], c.fileSystem ? c.expected : L"");
      EXPECT_EQ(report[L"view"], Decimal(defView));
    }
    // Marshalling hands over the object itself: the worker never waits for the window thread.
    EXPECT_EQ(reports.at(L"marshalled")[L"same"], L"1");
  }

  // A folder that does not exist is refused and the window stays where it was.
  EXPECT_EQ(standin.Command(L"navigate 1 " + scratch.Root() + L"\\Missing").compare(0, 6, L"error "), 0);
  EXPECT_EQ(standin.Command(L"folder 1"), L"ok " + alpha);
  EXPECT_EQ(Select(ReadProbeRecord(standin.RecordPath()), L"navigated").size(), navigations);
}

TEST(StandinNavigation, RequestsFromTheAddInSide) {
  ScratchFolder scratch;
  const std::wstring alpha = scratch.MakeFolder(L"Alpha"), beta = scratch.MakeFolder(L"Beta");
  const std::wstring nested = scratch.MakeFolder(L"Gamma\\Nested"), gamma = scratch.Root() + L"\\Gamma";
  ProbeRegistration registration({{&probe::kClsidFull}});
  ASSERT_TRUE(registration.Succeeded());
  StandinSession standin(scratch.Root());
  ASSERT_EQ(standin.Open(alpha), 1) << testing::PrintToString(standin.LogText());

  const std::wstring navigatePidl = std::to_wstring(probe::kNavigatePidlMessage);
  const std::wstring browse = std::to_wstring(probe::kBrowseObjectMessage);
  const std::wstring browseFromWorker = std::to_wstring(probe::kBrowseFromWorkerMessage);
  struct Case {
    std::wstring command;  // sent to window 1
    std::wstring reply;
    std::wstring folderAfter;
    const wchar_t* event;   // what the probe recorded for the request
    const wchar_t* result;  // and the HRESULT it saw
  };
  const Case cases[] = {
      // Navigate2 with a BSTR path, as the add-in's WM_BROWSE_OBJECT handler does.
      {L"send 1 " + navigatePidl + L" 0 pidl:" + beta, L"ok 1", beta, L"navigate2", L"0x00000000"},
      // Navigate2 with a URL that is no string, and with a path that does not exist.
      {L"send 1 " + navigatePidl + L" 1 pidl:" + alpha, L"ok 0", beta, L"navigate2", L"0x80070057"},
      {L"send 1 " + navigatePidl + L" 2 pidl:" + alpha, L"ok 0", beta, L"navigate2", nullptr},
      // BrowseObject: absolute, then up to the parent, then from a worker thread.
      {L"send 1 " + browse + L" 0 pidl:" + nested, L"ok 1", nested, L"browseobject", L"0x00000000"},
      {L"send 1 " + browse + L" 8192 0", L"ok 1", gamma, L"browseobject", L"0x00000000"},
      {L"send 1 " + browseFromWorker + L" 0 pidl:" + alpha, L"ok 1", alpha, L"browseobject", L"0x00000000"},
      // Posted, the way other senders reach the frame; the receiver owns the PIDL.
      {L"post 1 " + navigatePidl + L" 0 pidl:" + beta, L"ok", beta, L"navigate2", L"0x00000000"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.command));
    const size_t before = ReadProbeRecord(standin.RecordPath()).size();
    EXPECT_EQ(standin.Command(c.command), c.reply);
    // Navigation is carried out on the window thread after the request returns; sync waits for it.
    ASSERT_EQ(standin.Command(L"sync 1"), L"ok");
    EXPECT_EQ(standin.Command(L"folder 1"), L"ok " + c.folderAfter);
    const std::vector<ProbeEntry> record = ReadProbeRecord(standin.RecordPath());
    std::vector<ProbeEntry> requests;
    for (size_t index = before; index < record.size(); ++index) {
      if (record[index].event == c.event) requests.push_back(record[index]);
    }
    ASSERT_EQ(requests.size(), 1u);
    if (c.result != nullptr) {
      EXPECT_EQ(requests[0][L"hr"], c.result);
    } else {
      EXPECT_NE(requests[0][L"hr"].substr(0, 3), L"0x0");
    }
    if (requests[0].event == L"browseobject") {
      EXPECT_EQ(requests[0][L"finished"], L"1");
    }
    // A request that navigated was announced on the window thread, whichever thread asked.
    std::vector<ProbeEntry> navigated;
    for (size_t index = before; index < record.size(); ++index) {
      if (record[index].event == L"navigated") navigated.push_back(record[index]);
    }
    const bool moved = std::wstring(c.reply) == L"ok 1" || c.command.compare(0, 4, L"post") == 0;
    ASSERT_EQ(navigated.size(), moved ? 1u : 0u);
    if (moved) {
      EXPECT_EQ(navigated[0][L"url"], c.folderAfter);
      EXPECT_EQ(navigated[0].thread, Select(record, L"setsite", {{L"site", L"1"}})[0].thread);
    }
  }
}

}  // namespace
}  // namespace standintest
