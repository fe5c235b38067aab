#include "client/registry_user.h"

#include <cwchar>

namespace regUtil::detail {

namespace {
// A currentUser text shorter than this is not taken as an account.
constexpr std::size_t kMinimumUserLength = 11;
}  // namespace

bool ReadCurrentUser(const wchar_t* function, Level level, std::wstring& user) {
  const CReadKey root(kRootKey);
  const std::optional<DWORD> size = root.ValueSize(L"currentUser");
  if (!size) {
    CORVANE_REG_LOG(level, function,
                    L"HKEY_CURRENT_USER\\Software\\varnowe\\Halvex not exist or "
                    L"HKEY_CURRENT_USER\\Software\\varnowe\\Halvex\\currentUser not exist");
    return false;
  }
  user = root.ReadText(L"currentUser", size);
  return true;
}

bool CUserValues::Open(const wchar_t* function, Level level, std::initializer_list<const wchar_t*> names,
                       const wchar_t* missingFormat) {
  std::wstring user;
  if (!ReadCurrentUser(function, level, user)) return false;
  if (user.size() < kMinimumUserLength) {
    CORVANE_REG_LOG(level, function, L"HKEY_CURRENT_USER\\Software\\varnowe\\Halvex\\currentUser value invalid");
    return false;
  }
  // Plain concatenation: the client names the subkey after the identifier exactly as it wrote it.
  m_path.reserve(std::size(kRootKey) + user.size());
  m_path = kRootKey;
  m_path += L'\\';
  m_path += user;
  m_key.emplace(m_path.c_str());
  bool present = m_key->IsOpen();
  for (const wchar_t* name : names) present = present && Has(name);
  if (!present) {
    // Every message names the key up to three times; surplus arguments are ignored by the format.
    CORVANE_REG_LOG(level, function, missingFormat, Path(), Path(), Path());
    return false;
  }
  return true;
}

bool CUserValues::Has(const wchar_t* name) noexcept {
  if (!m_key) return false;
  const std::optional<DWORD> size = m_key->ValueSize(name);
  if (!size) return false;
  try {
    m_checked.push_back({name, *size});
  } catch (...) {
    // Without the note the read simply asks for the size itself.
  }
  return true;
}

std::wstring CUserValues::Read(const wchar_t* name) const {
  if (!m_key) return std::wstring();
  for (const Checked& checked : m_checked) {
    if (std::wcscmp(checked.name, name) == 0) return m_key->ReadText(name, checked.size);
  }
  return m_key->ReadText(name);
}

}  // namespace regUtil::detail
