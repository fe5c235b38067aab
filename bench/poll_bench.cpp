// One full client-state poll (what the bar's once-a-second tick and the folder check read) against
// the registry floor (registry_floor.h), in the same run.
#include <windows.h>

#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

#include "bench_util.h"
#include "registry_floor.h"
#include "client/registry.h"
#include "log/logger.h"
#include "platform/handles.h"

namespace {

using namespace bench::registry_floor;

void OurPoll() {
  std::wstring user, logo, id, title, sync;
  std::uint64_t total = 0, used = 0;
  double zoom = 0.0;
  regUtil::getCurrentUser(user);
  regUtil::getLogoPath(logo);
  regUtil::getCloudSpace(total, used);
  regUtil::getAdvertisingInfo(id, title);
  regUtil::getDpiZoom(4242, zoom);
  regUtil::checkReadyLoginAndOpenSync(sync);
}

}  // namespace

int wmain() {
  wchar_t temp[MAX_PATH] = {};
  ::GetTempPathW(MAX_PATH, temp);
  const std::wstring folder = std::wstring(temp) + L"corvane-bench-poll";
  const std::wstring sync = folder + L"\\sync";
  const std::wstring logo = folder + L"\\logo.png";
  ::CreateDirectoryW(folder.c_str(), nullptr);
  ::CreateDirectoryW(sync.c_str(), nullptr);
  corvane::unique_file logoFile(::CreateFileW(logo.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  logoFile.reset();

  PublishClientState(sync, logo);

  // The readers log through the process logger; without one their debugger lines would be skipped.
  g_pLogger = new LOGGER::CLogger(4, folder + L"\\log", L"Bench");
  std::vector<double> ours, floor;
  for (int i = 0; i < 50; ++i) {  // warm the registry cache for both
    OurPoll();
    FloorPoll();
  }
  bench::Interleave(2000, OurPoll, [] { FloorPoll(); }, ours, floor);
  delete g_pLogger;
  g_pLogger = nullptr;
  ::RegDeleteTreeW(HKEY_CURRENT_USER, kRoot.c_str());

  const double o = bench::Median(ours), f = bench::Median(floor);
  std::printf("client-state poll (6 readers): regUtil %.1f us, hand-written floor %.1f us (median of 2000), ratio %.2f"
              " (goal <= 1.20)\n",
              o, f, o / f);
  return 0;
}
