#pragma once
// A value under HKCU that a test changes: saved when this is made and put back (or removed again)
// when it goes, so that other programs in the prefix keep the setting they expect.
#include <windows.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace registrytest {

class SavedValue {
 public:
  SavedValue(std::wstring key, std::wstring name) : m_key(std::move(key)), m_name(std::move(name)) {
    std::vector<BYTE> data(64 * 1024);  // far more than any setting a test changes
    auto size = static_cast<DWORD>(data.size());
    if (::RegGetValueW(HKEY_CURRENT_USER, m_key.c_str(), m_name.c_str(), RRF_RT_ANY, &m_type, data.data(), &size) ==
        ERROR_SUCCESS) {
      data.resize(size);
      m_saved = std::move(data);
    }
  }
  ~SavedValue() {
    Remove();
    if (m_saved) Write(m_type, m_saved->data(), static_cast<DWORD>(m_saved->size()));
  }
  SavedValue(const SavedValue&) = delete;
  SavedValue& operator=(const SavedValue&) = delete;

  bool Write(DWORD type, const void* data, DWORD size) const {
    return ::RegSetKeyValueW(HKEY_CURRENT_USER, m_key.c_str(), m_name.c_str(), type, data, size) == ERROR_SUCCESS;
  }
  bool WriteDword(DWORD value) const { return Write(REG_DWORD, &value, sizeof(value)); }
  void Remove() const { ::RegDeleteKeyValueW(HKEY_CURRENT_USER, m_key.c_str(), m_name.c_str()); }

 private:
  std::wstring m_key, m_name;
  std::optional<std::vector<BYTE>> m_saved;
  DWORD m_type = REG_NONE;
};

inline constexpr wchar_t kPersonalizeKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize";

// The app theme (AppsUseLightTheme, the DWORD 0 for dark) set for the life of the object.
class ThemeOverride : public SavedValue {
 public:
  explicit ThemeOverride(bool dark) : SavedValue(kPersonalizeKey, L"AppsUseLightTheme") { Set(dark); }
  bool Set(bool dark) const { return WriteDword(dark ? 0 : 1); }
};

}  // namespace registrytest
