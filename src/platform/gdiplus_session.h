#pragma once
// GDI+ started for the lifetime of an owner: hosts without an Explorer window controller (tests,
// tools, the namespace view in a foreign Explorer) start it themselves with their own token.
#include "platform/gdiplus_headers.h"

namespace corvane {

class GdiplusSession {
 public:
  GdiplusSession() noexcept {
    Gdiplus::GdiplusStartupInput input;
    m_ok = Gdiplus::GdiplusStartup(&m_token, &input, nullptr) == Gdiplus::Ok;
  }
  GdiplusSession(const GdiplusSession&) = delete;
  GdiplusSession& operator=(const GdiplusSession&) = delete;
  ~GdiplusSession() {
    if (m_ok) Gdiplus::GdiplusShutdown(m_token);
  }
  bool ok() const noexcept { return m_ok; }

 private:
  ULONG_PTR m_token = 0;
  bool m_ok = false;
};

}  // namespace corvane
