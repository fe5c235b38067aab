#pragma once
// One HKEY_CURRENT_USER key opened read-only, so that a state reader can test and read several
// values through a single open. The free helpers in reg_util.h are built on it.
#include <windows.h>

#include <optional>
#include <string>

#include "platform/handles.h"

namespace regUtil {

// HKEY_CURRENT_USER\subkey with the given access, or an empty owner. The handle is taken over only
// on success, so a failed open never hands a stray value to the owner.
corvane::unique_hkey OpenUserKey(const wchar_t* subkey, REGSAM access) noexcept;

class CReadKey {
 public:
  explicit CReadKey(const wchar_t* subkey) noexcept;
  CReadKey(const CReadKey&) = delete;
  CReadKey& operator=(const CReadKey&) = delete;

  bool IsOpen() const noexcept { return static_cast<bool>(m_key); }
  // The value is there; its type and size are asked for, its data is not.
  bool HasValue(const wchar_t* name) const noexcept { return ValueSize(name).has_value(); }
  // The value's size in bytes when it is there.
  std::optional<DWORD> ValueSize(const wchar_t* name) const noexcept;
  // ReadRegistryValue on this key: the data as UTF-16 text up to the first null, empty on failure.
  // A size the caller has just asked for (the existence check) is not asked for again; a value that
  // grew since then fails the read like any value that changes between the two queries.
  // Throws only std::bad_alloc.
  std::wstring ReadText(const wchar_t* name, std::optional<DWORD> knownSize = std::nullopt) const;

 private:
  corvane::unique_hkey m_key;
};

}  // namespace regUtil
