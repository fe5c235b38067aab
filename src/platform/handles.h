#pragma once
// The handle kinds the add-in owns, one alias each. Business code never closes a handle by hand.
#include <windows.h>
#include <ole2.h>
#include <shlobj.h>
#include <tlhelp32.h>

#include "platform/unique_resource.h"

namespace corvane {

namespace detail {
inline void CloseKey(HKEY key) noexcept { ::RegCloseKey(key); }
inline void CloseKernelHandle(HANDLE h) noexcept { ::CloseHandle(h); }
inline void CloseFind(HANDLE h) noexcept { ::FindClose(h); }
inline void DeleteGdiObject(HGDIOBJ h) noexcept { ::DeleteObject(h); }
inline void DeleteMemoryDc(HDC dc) noexcept { ::DeleteDC(dc); }
inline void FreeCoTaskMem(void* p) noexcept { ::CoTaskMemFree(p); }
inline void FreePidl(PIDLIST_ABSOLUTE p) noexcept { ::ILFree(p); }
inline void Unhook(HHOOK h) noexcept { ::UnhookWindowsHookEx(h); }
inline void DestroyMenuHandle(HMENU h) noexcept { ::DestroyMenu(h); }
inline void DestroyIconHandle(HICON h) noexcept { ::DestroyIcon(h); }
inline void ReleaseLibrary(HMODULE h) noexcept { ::FreeLibrary(h); }
}  // namespace detail

// Kernel handles whose failure value is INVALID_HANDLE_VALUE (files, snapshots, find handles).
template <auto Close>
struct invalid_value_traits {
  using type = HANDLE;
  static type invalid() noexcept { return INVALID_HANDLE_VALUE; }
  static bool is_invalid(type value) noexcept { return value == INVALID_HANDLE_VALUE || value == nullptr; }
  static void close(type value) noexcept { Close(value); }
};

using unique_hkey = unique_resource<null_handle_traits<HKEY, detail::CloseKey>>;
using unique_handle = unique_resource<null_handle_traits<HANDLE, detail::CloseKernelHandle>>;
using unique_file = unique_resource<invalid_value_traits<detail::CloseKernelHandle>>;
using unique_snapshot = unique_file;
using unique_find = unique_resource<invalid_value_traits<detail::CloseFind>>;
using unique_hhook = unique_resource<null_handle_traits<HHOOK, detail::Unhook>>;
using unique_hmenu = unique_resource<null_handle_traits<HMENU, detail::DestroyMenuHandle>>;
using unique_hicon = unique_resource<null_handle_traits<HICON, detail::DestroyIconHandle>>;
using unique_hmodule = unique_resource<null_handle_traits<HMODULE, detail::ReleaseLibrary>>;
using unique_pidl = unique_resource<null_handle_traits<PIDLIST_ABSOLUTE, detail::FreePidl>>;

template <class T>
using unique_gdi = unique_resource<null_handle_traits<T, detail::DeleteGdiObject>>;
using unique_hbrush = unique_gdi<HBRUSH>;
using unique_hpen = unique_gdi<HPEN>;
using unique_hfont = unique_gdi<HFONT>;
using unique_hbitmap = unique_gdi<HBITMAP>;
using unique_hrgn = unique_gdi<HRGN>;
using unique_hdc = unique_resource<null_handle_traits<HDC, detail::DeleteMemoryDc>>;

template <class T>
using unique_cotaskmem_ptr = unique_resource<null_handle_traits<T*, detail::FreeCoTaskMem>>;
using unique_cotaskmem_string = unique_cotaskmem_ptr<wchar_t>;

// SelectObject that puts the previous object back when it goes out of scope.
class scoped_select {
 public:
  scoped_select(HDC dc, HGDIOBJ object) noexcept : m_dc(dc), m_old(::SelectObject(dc, object)) {}
  scoped_select(const scoped_select&) = delete;
  scoped_select& operator=(const scoped_select&) = delete;
  ~scoped_select() {
    if (m_old != nullptr && m_old != HGDI_ERROR) ::SelectObject(m_dc, m_old);
  }

 private:
  HDC m_dc;
  HGDIOBJ m_old;
};

// BeginPaint/EndPaint as one owner.
class scoped_paint {
 public:
  explicit scoped_paint(HWND window) noexcept : m_window(window) { m_dc = ::BeginPaint(window, &m_ps); }
  scoped_paint(const scoped_paint&) = delete;
  scoped_paint& operator=(const scoped_paint&) = delete;
  ~scoped_paint() { ::EndPaint(m_window, &m_ps); }
  HDC dc() const noexcept { return m_dc; }
  const PAINTSTRUCT& ps() const noexcept { return m_ps; }

 private:
  HWND m_window;
  PAINTSTRUCT m_ps{};
  HDC m_dc = nullptr;
};

// GetDC/ReleaseDC as one owner.
class scoped_window_dc {
 public:
  explicit scoped_window_dc(HWND window) noexcept : m_window(window), m_dc(::GetDC(window)) {}
  scoped_window_dc(const scoped_window_dc&) = delete;
  scoped_window_dc& operator=(const scoped_window_dc&) = delete;
  ~scoped_window_dc() {
    if (m_dc != nullptr) ::ReleaseDC(m_window, m_dc);
  }
  HDC get() const noexcept { return m_dc; }
  explicit operator bool() const noexcept { return m_dc != nullptr; }

 private:
  HWND m_window;
  HDC m_dc;
};

// A window registered as an OLE drop target; revoked while the window still exists, which also
// drops the reference OLE holds on the target.
class scoped_drag_drop {
 public:
  scoped_drag_drop() noexcept = default;
  scoped_drag_drop(const scoped_drag_drop&) = delete;
  scoped_drag_drop& operator=(const scoped_drag_drop&) = delete;
  ~scoped_drag_drop() { reset(); }
  HRESULT Register(HWND window, IDropTarget* target) noexcept {
    reset();
    const HRESULT hr = ::RegisterDragDrop(window, target);
    if (SUCCEEDED(hr)) m_window = window;
    return hr;
  }
  void reset() noexcept {
    if (m_window != nullptr) ::RevokeDragDrop(m_window);
    m_window = nullptr;
  }
  explicit operator bool() const noexcept { return m_window != nullptr; }

 private:
  HWND m_window = nullptr;
};

// A critical section owned by an object (the logger's only lock).
class critical_section {
 public:
  critical_section() noexcept { ::InitializeCriticalSection(&m_cs); }
  critical_section(const critical_section&) = delete;
  critical_section& operator=(const critical_section&) = delete;
  ~critical_section() { ::DeleteCriticalSection(&m_cs); }
  void lock() noexcept { ::EnterCriticalSection(&m_cs); }
  void unlock() noexcept { ::LeaveCriticalSection(&m_cs); }

 private:
  CRITICAL_SECTION m_cs;
};

}  // namespace corvane
