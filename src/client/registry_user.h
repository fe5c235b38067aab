#pragma once
// The opening every state reader shares: the signed-in user from the root key, its validity, and
// the reader's own values under the per-user key, with the log lines each failure owes.
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "client/reg_util_key.h"
#include "log/logger.h"

namespace regUtil::detail {

// Most readers report a missing user at Info; the ones the bar polls for decoration stay at Debug.
enum class Level { Info, Debug };

#define CORVANE_REG_LOG(level, function, ...)      \
  do {                                             \
    if ((level) == ::regUtil::detail::Level::Info) \
      LOG_INFO(function, __VA_ARGS__);             \
    else                                           \
      LOG_DEBUG(function, __VA_ARGS__);            \
  } while (false)

inline constexpr wchar_t kRootKey[] = L"Software\\varnowe\\Halvex";

// The root key and its "currentUser" value; logs the root message when either is missing.
bool ReadCurrentUser(const wchar_t* function, Level level, std::wstring& user);

// The per-user key of a valid user, opened once for all of a reader's values.
class CUserValues {
 public:
  // Checks the user (at least 11 characters) and that the key and every named value exist, in
  // order; otherwise logs the matching message (missingFormat gets the key path in every %s).
  bool Open(const wchar_t* function, Level level, std::initializer_list<const wchar_t*> names,
            const wchar_t* missingFormat);

  // "Software\varnowe\Halvex\<currentUser>", for the log lines.
  const wchar_t* Path() const noexcept { return m_path.c_str(); }
  bool Has(const wchar_t* name) noexcept;
  // Reads a value; one whose existence this object checked is read without asking its size again.
  std::wstring Read(const wchar_t* name) const;

 private:
  struct Checked {
    const wchar_t* name;
    DWORD size;
  };
  std::wstring m_path;
  std::optional<CReadKey> m_key;
  std::vector<Checked> m_checked;
};

}  // namespace regUtil::detail
