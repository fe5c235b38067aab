#pragma once
// The common "stop and report" shapes, and the exception barrier every boundary uses.
#include <windows.h>

#include <new>

namespace corvane {

// The last Win32 error as an HRESULT; a call that failed without setting one still reports failure.
inline HRESULT HresultFromLastError() noexcept {
  const DWORD error = ::GetLastError();
  return error == ERROR_SUCCESS ? E_FAIL : HRESULT_FROM_WIN32(error);
}

// Runs a COM method body; nothing thrown inside reaches the caller.
template <class Body>
HRESULT ComBoundary(Body&& body) noexcept {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_FAIL;
  }
}

// Runs a window, hook or thread body; anything thrown becomes the given fallback result.
template <class Result, class Body>
Result Barrier(Result fallback, Body&& body) noexcept {
  try {
    return body();
  } catch (...) {
    return fallback;
  }
}

}  // namespace corvane

#define CORVANE_RETURN_IF_FAILED(expr)          \
  do {                                          \
    const HRESULT corvane_hr_ = (expr);         \
    if (FAILED(corvane_hr_)) return corvane_hr_; \
  } while (false)

#define CORVANE_RETURN_LAST_ERROR_IF_FALSE(expr)                        \
  do {                                                                  \
    if (!(expr)) return ::corvane::HresultFromLastError();              \
  } while (false)

#define CORVANE_RETURN_IF_NULL_ALLOC(ptr)        \
  do {                                           \
    if ((ptr) == nullptr) return E_OUTOFMEMORY;  \
  } while (false)
