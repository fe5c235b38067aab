#include "registry_fixture.h"

#include <atomic>
#include <cstdio>
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
  static std::atomic<int> counter{0};
  wchar_t temp[MAX_PATH] = {};
  ::GetTempPathW(MAX_PATH, temp);
  m_scratch = std::wstring(temp) + L"corvane-reg-" + std::to_wstring(::GetCurrentProcessId()) + L"-" +
              std::to_wstring(counter++);
  std::filesystem::remove_all(m_scratch);
  std::filesystem::create_directories(m_scratch);
  g_pLogger = new LOGGER::CLogger(4, m_scratch + L"\\log", L"Corvane");
}

void RegistryTest::TearDown() {
  delete g_pLogger;
  g_pLogger = nullptr;
  DeleteHalvexTree();
  std::error_code ignored;
  std::filesystem::remove_all(m_scratch, ignored);
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
  const std::wstring path = m_scratch + L"\\" + name;
  std::filesystem::create_directories(path);
  return path;
}

std::wstring RegistryTest::MakeFile(const std::wstring& name) const {
  const std::wstring path = m_scratch + L"\\" + name;
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

std::wstring RegistryTest::LogFileText() const {
  std::ifstream in(std::filesystem::path(g_pLogger->Path()), std::ios::binary);
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  std::wstring text;
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
    text.push_back(static_cast<wchar_t>(static_cast<unsigned char>(bytes[i]) |
                                        (static_cast<unsigned char>(bytes[i + 1]) << 8)));
  }
  return text;
}

}  // namespace registrytest
