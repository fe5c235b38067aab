#pragma once
// The outer part of an Explorer window, with Explorer's class names and parentage:
//   CabinetWClass (top level)
//     WorkerW               the band above the view (Explorer's address and command bars live there)
//     ShellTabWindowClass   the tab that hosts the view windows (view_windows.h)
//     msctls_statusbar32    comctl32's status bar, what IShellBrowser::GetControlWindow(FCW_STATUS) gives
#include <windows.h>

#include <span>
#include <string>

#include "platform/handles.h"
#include "platform/window.h"

namespace explorer_standin {

// What the frame reports to the window that owns it.
class FrameEvents {
 public:
  virtual void OnCloseRequested() = 0;
  virtual void OnTasksPending() = 0;

 protected:
  ~FrameEvents() = default;
};

class WorkerBand final : public corvane::Window<WorkerBand> {
 public:
  static constexpr const wchar_t* kClassName = L"WorkerW";
  static std::span<const MessageEntry> MessageMap();

  void SetAddress(const std::wstring& address);

 private:
  LRESULT OnPaint(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnEraseBackground(UINT, WPARAM, LPARAM, bool&);

  std::wstring m_address;
};

class ShellTab final : public corvane::Window<ShellTab> {
 public:
  static constexpr const wchar_t* kClassName = L"ShellTabWindowClass";
  static std::span<const MessageEntry> MessageMap();

  // The DUIViewWndClassName window, which always fills the tab from its top-left corner.
  void SetView(HWND view);

 private:
  LRESULT OnSize(UINT, WPARAM, LPARAM, bool&);

  HWND m_view = nullptr;
};

class CabinetFrame final : public corvane::Window<CabinetFrame> {
 public:
  static constexpr const wchar_t* kClassName = L"CabinetWClass";
  // Wakes the window thread for queued work (task_queue.h).
  static constexpr UINT kRunTasksMessage = WM_APP + 1;
  static constexpr int kBandHeight = 40;
  static std::span<const MessageEntry> MessageMap();

  explicit CabinetFrame(FrameEvents& events) noexcept : m_events(events) {}

  // Creates the frame, hidden, with its band, tab and status bar.
  bool CreateFrame(const RECT& rect);
  WorkerBand& Band() noexcept { return m_band; }
  ShellTab& Tab() noexcept { return m_tab; }
  HWND Status() const noexcept { return m_status; }
  void SetStatus(const std::wstring& count, const std::wstring& location);

 private:
  LRESULT OnCreate(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnSize(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnEraseBackground(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnClose(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnDestroy(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnRunTasks(UINT, WPARAM, LPARAM, bool&);
  void Layout();

  FrameEvents& m_events;
  WorkerBand m_band;
  ShellTab m_tab;
  HWND m_status = nullptr;  // a comctl32 child: destroyed with the frame
};

}  // namespace explorer_standin
