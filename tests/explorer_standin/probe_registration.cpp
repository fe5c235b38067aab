#include "probe_registration.h"

#include <gtest/gtest.h>

#include "platform/handles.h"
#include "standin_session.h"

namespace standintest {

namespace {

constexpr wchar_t kHelperObjectsKey[] = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Browser Helper Objects\\";
constexpr wchar_t kClassesKey[] = L"SOFTWARE\\Classes\\CLSID\\";

bool WriteString(const std::wstring& key, const wchar_t* name, const std::wstring& value) {
  corvane::unique_hkey handle;
  if (::RegCreateKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, handle.put(), nullptr) != ERROR_SUCCESS) return false;
  if (name == nullptr && value.empty()) return true;
  return ::RegSetValueExW(handle.get(), name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                          static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS;
}

bool WriteNumber(const std::wstring& key, const wchar_t* name, DWORD value) {
  corvane::unique_hkey handle;
  if (::RegCreateKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, handle.put(), nullptr) != ERROR_SUCCESS) return false;
  return ::RegSetValueExW(handle.get(), name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof(value)) == ERROR_SUCCESS;
}

}  // namespace

std::wstring ClsidText(const CLSID& clsid) {
  wchar_t text[64] = {};
  ::StringFromGUID2(clsid, text, 64);
  return text;
}

ProbeRegistration::ProbeRegistration(std::vector<ProbeClass> classes, std::vector<std::wstring> junkKeys) {
  const std::wstring dll = ProbePath();
  for (const ProbeClass& probeClass : classes) {
    const std::wstring clsid = ClsidText(*probeClass.clsid);
    const std::wstring classKey = kClassesKey + clsid;
    const std::wstring helperKey = kHelperObjectsKey + clsid;
    // A scratch area: whatever an earlier run left is cleared first.
    ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, classKey.c_str());
    ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, helperKey.c_str());
    m_written.push_back(classKey);
    m_written.push_back(helperKey);
    m_succeeded = m_succeeded && WriteString(classKey + L"\\InprocServer32", nullptr, dll) &&
                  WriteString(classKey + L"\\InprocServer32", L"ThreadingModel", L"Apartment") &&
                  WriteString(helperKey, nullptr, std::wstring()) &&
                  (!probeClass.noExplorer || WriteNumber(helperKey, L"NoExplorer", 1));
  }
  for (const std::wstring& junk : junkKeys) {
    const std::wstring key = kHelperObjectsKey + junk;
    ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, key.c_str());
    m_written.push_back(key);
    m_succeeded = m_succeeded && WriteString(key, nullptr, std::wstring());
  }
  EXPECT_TRUE(m_succeeded) << "registering the probe under HKLM failed";
}

ProbeRegistration::~ProbeRegistration() {
  for (const std::wstring& key : m_written) ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, key.c_str());
}

}  // namespace standintest
