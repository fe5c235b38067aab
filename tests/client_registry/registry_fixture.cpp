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

std::vector<logtest::LogLine> RegistryTest::LogOf(const std::wstring& function) const {
  std::vector<logtest::LogLine> found;
  for (const std::wstring& text : m_capture.Lines()) {
    logtest::LogLine line;
    if (logtest::ParseLogLine(text, line) && line.function == function) found.push_back(line);
  }
  return found;
}

}  // namespace registrytest
