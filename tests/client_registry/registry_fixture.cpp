#include "registry_fixture.h"

#include <utility>

#include "log/logger.h"

namespace registrytest {

void RegistryTest::SetUp() {
  DeleteHalvexTree();
  g_pLogger = new LOGGER::CLogger(4, m_scratch / L"log", L"Corvane");
}

void RegistryTest::TearDown() {
  delete std::exchange(g_pLogger, nullptr);
  DeleteHalvexTree();
}

std::vector<LogLine> RegistryTest::LogOf(const std::wstring& function) const {
  const std::wstring location = L"[" + function + L"]";
  std::vector<LogLine> found;
  for (const auto& line : m_capture.Lines()) {
    const auto at = line.find(location);
    const auto tagEnd = line.find(L']');
    if (at == std::wstring::npos || tagEnd == std::wstring::npos) continue;
    found.push_back({line.substr(0, tagEnd + 1), line.substr(at + location.size())});
  }
  return found;
}

}  // namespace registrytest
