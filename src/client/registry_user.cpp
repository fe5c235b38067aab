#include "client/registry_user.h"

namespace regUtil::detail {

namespace {
// A currentUser text shorter than this is not taken as an account.
constexpr std::size_t kMinimumUserLength = 11;
}  // namespace

bool ReadCurrentUser(const wchar_t* function, Level level, std::wstring& user) {
  const CReadKey root(kRootKey);
  if (!root.IsOpen() || !root.HasValue(L"currentUser")) {
    CORVANE_REG_LOG(level, function,
                    L"HKEY_CURRENT_USER\\Software\\varnowe\\Halvex not exist or "
                    L"HKEY_CURRENT_USER\\Software\\varnowe\\Halvex\\currentUser not exist");
    return false;
  }
  user = root.ReadText(L"currentUser");
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
  for (const wchar_t* name : names) present = present && m_key->HasValue(name);
  if (!present) {
    // Every message names the key up to three times; surplus arguments are ignored by the format.
    CORVANE_REG_LOG(level, function, missingFormat, Path(), Path(), Path());
    return false;
  }
  return true;
}

}  // namespace regUtil::detail
