#pragma once
// The view part of an Explorer window, inside its ShellTabWindowClass window, with Explorer's
// class names and parentage:
//   DUIViewWndClassName
//     DirectUIHWND          the file list the add-in moves down to make room for its bar
//       CtrlNotifySink
//         SHELLDLL_DefView  what IShellView::GetWindow gives
//           DirectUIHWND    the items themselves (a second window of that class, not under the view)
// Each is made once per Explorer window; navigating changes what they show, not the windows.
#include <windows.h>

#include <span>
#include <string>
#include <vector>

#include "platform/handles.h"
#include "platform/window.h"

namespace explorer_standin {

class DuiViewWindow final : public corvane::Window<DuiViewWindow> {
 public:
  static constexpr const wchar_t* kClassName = L"DUIViewWndClassName";
  static std::span<const MessageEntry> MessageMap();

  void SetList(HWND list) noexcept { m_list = list; }

 private:
  LRESULT OnSize(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnEraseBackground(UINT, WPARAM, LPARAM, bool&);

  HWND m_list = nullptr;
};

// Both DirectUIHWND windows: one class name means one window procedure, so one C++ class.
class DirectUiWindow final : public corvane::Window<DirectUiWindow> {
 public:
  static constexpr const wchar_t* kClassName = L"DirectUIHWND";
  static std::span<const MessageEntry> MessageMap();

  // A container fills its one child; the items window paints the folder's rows.
  void SetChild(HWND child) noexcept { m_child = child; }
  void SetContent(const std::wstring& title, std::vector<std::wstring> rows);

 private:
  LRESULT OnSize(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnPaint(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnEraseBackground(UINT, WPARAM, LPARAM, bool&);
  void Paint(HDC dc);

  HWND m_child = nullptr;
  std::wstring m_title;
  std::vector<std::wstring> m_rows;
  corvane::unique_hfont m_font;
};

// A window that only hosts one child filling it.
template <class Name>
class HostWindow final : public corvane::Window<HostWindow<Name>> {
  using Base = corvane::Window<HostWindow<Name>>;

 public:
  static constexpr const wchar_t* kClassName = Name::kClassName;
  static std::span<const typename Base::MessageEntry> MessageMap() {
    static constexpr typename Base::MessageEntry map[] = {
        {WM_SIZE, &HostWindow::OnSize},
    };
    return map;
  }
  void SetChild(HWND child) noexcept { m_child = child; }

 private:
  LRESULT OnSize(UINT, WPARAM, LPARAM lParam, bool&) {
    if (m_child != nullptr) ::SetWindowPos(m_child, nullptr, 0, 0, LOWORD(lParam), HIWORD(lParam), SWP_NOZORDER | SWP_NOACTIVATE);
    return 0;
  }

  HWND m_child = nullptr;
};

struct CtrlNotifySinkName {
  static constexpr const wchar_t* kClassName = L"CtrlNotifySink";
};
struct DefViewName {
  static constexpr const wchar_t* kClassName = L"SHELLDLL_DefView";
};
using CtrlNotifySinkWindow = HostWindow<CtrlNotifySinkName>;
using DefViewWindow = HostWindow<DefViewName>;

}  // namespace explorer_standin
