#pragma once
// Owners for the Automation types: BSTR and VARIANT (WMI answers, Navigate2 arguments).
#include <windows.h>
#include <oleauto.h>

#include "platform/unique_resource.h"

namespace corvane {

namespace detail {
inline void FreeBstr(BSTR text) noexcept { ::SysFreeString(text); }
}  // namespace detail

using unique_bstr = corvane::unique_resource<corvane::null_handle_traits<BSTR, detail::FreeBstr>>;

// A VARIANT that is cleared when it goes out of scope or is handed out again.
class unique_variant {
 public:
  unique_variant() noexcept { ::VariantInit(&m_value); }
  unique_variant(const unique_variant&) = delete;
  unique_variant& operator=(const unique_variant&) = delete;
  ~unique_variant() { ::VariantClear(&m_value); }

  const VARIANT& get() const noexcept { return m_value; }
  // Clears the held value first, then hands out the slot for an out-parameter.
  VARIANT* put() noexcept {
    ::VariantClear(&m_value);
    return &m_value;
  }

 private:
  VARIANT m_value;
};

}  // namespace corvane
