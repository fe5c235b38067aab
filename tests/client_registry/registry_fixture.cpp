#include "registry_fixture.h"

#include <filesystem>
#include <fstream>
#include <ostream>

#include "log/logger.h"

namespace registrytest {

void PrintTo(const LogLine& line, std::ostream* os) {
  std::string narrow;
  for (wchar_t c : line.tag + line.message) narrow.push_back(c < 0x80 ? static_cast<char>(c) : '?');
  *os << narrow;
}

LogLine Info(std::wstring message) { return {L"[Info]", std::move(message)}; }
LogLine Debug(std::wstring message) { return {L"[Debug]", std::move(message)}; }

void RegistryTest::SetUp() {
  DeleteHalvexTree();
  g_pLogger = new LOGGER::CLogger(4, m_scratch / L"log", L"Corvane");
}

void RegistryTest::TearDown() {
  delete g_pLogger;
  g_pLogger = nullptr;
  DeleteHalvexTree();
}

void RegistryTest::DeleteHalvexTree() { ::RegDeleteTreeW(HKEY_CURRENT_USER, kRoot.c_str()); }

void RegistryTest::SetText(const std::wstring& subkey, const std::wstring& name, const std::wstring& text) {
  SetRaw(subkey, name, REG_SZ, text.c_str(), static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}

void RegistryTest::SetRaw(const std::wstring& subkey, const std::wstring& name, DWORD type, const void* data,
                          DWORD bytes) {
  ASSERT_EQ(::RegSetKeyValueW(HKEY_CURRENT_USER, subkey.c_str(), name.c_str(), type, data, bytes), ERROR_SUCCESS);
}

std::wstring RegistryTest::MakeFolder(const std::wstring& name) const {
  const std::wstring path = m_scratch / name;
  std::filesystem::create_directories(path);
  return path;
}

std::wstring RegistryTest::MakeFile(const std::wstring& name) const {
  const std::wstring path = m_scratch / name;
  std::ofstream(std::filesystem::path(path)) << "png";
  return path;
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
