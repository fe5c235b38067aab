#pragma once
// A bar as the Explorer window controller would host it, over a plain top-level window: COM
// started and a light app theme (restored afterwards, like COM), on top of the registry tests' scratch
// Halvex key, logger and debugger capture. The bar's own timer is stopped after creation so the
// tests drive OnTimer with WM_TIMER themselves.
#include <windows.h>

#include <atomic>
#include <tuple>

#include "bar/bar_owner.h"
#include "bar/title_window.h"
#include "platform/module_path.h"
#include "platform/window.h"
#include "registry_fixture.h"
#include "widget_support.h"
#include "window_probe.h"

namespace bartest {

using namespace widgettest;
using registrytest::kUser;
using registrytest::kUserKey;
using registrytest::kZoomKey;
using testsupport::SetText;
constexpr std::uint64_t kMiB = 1024ULL * 1024, kGiB = 1024 * kMiB;

// An IUnknown that only counts its references (the bar never asks it for an interface).
class CountingUnknown final : public IUnknown {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** out) override { return *out = nullptr, E_NOINTERFACE; }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++m_count; }
  ULONG STDMETHODCALLTYPE Release() override { return --m_count; }
  std::atomic<ULONG> m_count{1};
};

struct COwnerFrame final : corvane::Window<COwnerFrame> {
  static constexpr const wchar_t* kClassName = L"CorvaneBarTestOwner";
  static std::span<const MessageEntry> MessageMap() { return {}; }
};

// The owner: holds H and the text unit like the controller, and lays the bar out as a strip of
// height H across the top of its window. A pinned owner keeps H = 40 and the unit 10 x 16 whatever
// the bar measures (it only records what it was asked), so a layout can be stated in literal pixels.
class TestOwner final : public IBarOwner {
 public:
  // Never shown: under Wine without a window manager, destroying a mapped top-level window waits
  // two seconds for a withdrawal that never comes. The bar and its children keep their own styles.
  TestOwner(int clientWidth, bool pinned) : width(clientWidth), m_pinned(pinned) {
    const RECT place{20, 20, 40 + clientWidth, 240};
    m_frame.Create(nullptr, &place, L"Corvane bar test", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN);
  }
  int GetBarHeight() const override { return m_nBarHeight; }
  void SetBarHeight(int height) override {
    askedHeight = height;
    if (m_pinned) return;
    m_nBarHeight = height;
    // The controller lays its window out again whenever the bar's height changes.
    if (bar != nullptr && bar->IsWindow()) bar->MovePosition(RECT{0, 0, width, m_nBarHeight});
  }
  void GetIconSize(int& width, int& height) const override { width = m_icon.cx, height = m_icon.cy; }
  void SetIconSize(int cx, int cy) override {
    askedIcon = SIZE{cx, cy};
    if (!m_pinned) m_icon = askedIcon;
  }
  HWND GetExplorerHwnd() const override { return m_frame.m_hWnd; }
  // MovePosition of the bar to (0, 0, width, H), then the messages pumped.
  void Layout(int newWidth) {
    width = newWidth;
    if (bar != nullptr) bar->MovePosition(RECT{0, 0, width, m_nBarHeight});
    Pump();
  }

  CTitleWindow* bar = nullptr;
  int width;
  int askedHeight = 0;  // the last height and unit the bar set
  SIZE askedIcon{};

 private:
  COwnerFrame m_frame;
  bool m_pinned;
  int m_nBarHeight = 40;
  SIZE m_icon{10, 16};
};

// A bar hosted like the controller does it. Start: Initialize under the owner's window and the
// timer stopped; Settle: WM_DISPLAYCHANGE posted to the bar and its right group, the bar laid out
// at the owner's width and the messages pumped.
struct HostedBar {
  explicit HostedBar(int width, bool pinned = false) : owner(width, pinned) {}
  ~HostedBar() {
    bar.Uninitialize();
    owner.bar = nullptr;
    Pump();
  }
  bool Start(bool settle = true) {
    if (!bar.Initialize(&unknown, &owner, owner.GetExplorerHwnd())) return false;
    owner.bar = &bar;
    timerWasRunning = ::KillTimer(bar.m_hWnd, CTitleWindow::TIMER_CLOUD_UPDATE_INFO) != FALSE;
    if (settle) Settle();
    return true;
  }
  void Settle() {
    ::PostMessageW(bar.m_hWnd, WM_DISPLAYCHANGE, 0, 0);
    ::PostMessageW(bar.GetRightHwnd(), WM_DISPLAYCHANGE, 0, 0);
    owner.Layout(owner.width);
  }
  HWND Bar() const { return bar.m_hWnd; }
  HWND Right() const { return bar.GetRightHwnd(); }
  HWND Child(int id) const { return ::GetDlgItem(bar.m_hWnd, id); }
  void Tick() const { ::SendMessageW(bar.m_hWnd, WM_TIMER, CTitleWindow::TIMER_CLOUD_UPDATE_INFO, 0); }

  bool timerWasRunning = false;  // the bar's own update timer, when Start stopped it
  CountingUnknown unknown;
  TestOwner owner;
  CTitleWindow bar;
};

// Removes the queued messages of one kind, dispatches them and returns their windows in order.
// (A window filter would also take the messages of the window's children.)
inline std::vector<HWND> TakeQueued(UINT message) {
  std::vector<MSG> taken;
  MSG msg{};
  while (::PeekMessageW(&msg, nullptr, message, message, PM_REMOVE)) taken.push_back(msg);
  std::vector<HWND> windows;
  for (const MSG& queued : taken) {
    windows.push_back(queued.hwnd);
    ::DispatchMessageW(&queued);
  }
  return windows;
}
inline bool HasStyle(HWND window, DWORD style) {
  return window != nullptr && (static_cast<DWORD>(::GetWindowLongPtrW(window, GWL_STYLE)) & style) == style;
}
using testsupport::RectIn;
inline auto Tie(const RECT& r) { return std::make_tuple(r.left, r.top, r.right, r.bottom); }
#define EXPECT_RECT(actual, l, t, r, b) EXPECT_EQ(Tie(actual), std::make_tuple(l, t, r, b)) << #actual
inline std::wstring SkinFile(const wchar_t* name) { return corvane::ThisModuleFolder() + L"CorvaneSkin\\" + name; }

class BarTest : public registrytest::RegistryTest {
 protected:
  ~BarTest() override {
    if (m_comStarted) ::CoUninitialize();
  }

  static void PublishSpace(std::uint64_t total, std::uint64_t used) {
    SetUser(kUser);
    SetUserValue(L"totalSpace", std::to_wstring(total));
    SetUserValue(L"usedSpace", std::to_wstring(used));
  }
  static void PublishAdvertising(const std::wstring& id, const std::wstring& title) {
    SetUser(kUser);
    SetUserValue(L"advertisingId", id);
    SetUserValue(L"advertisingTitle", title);
  }
  static void PublishZoom(HWND window, const std::wstring& text) {
    SetText(kZoomKey, std::to_wstring(reinterpret_cast<std::uintptr_t>(window)), text);
  }
  void SetDarkTheme(bool dark) { ASSERT_TRUE(m_theme.Set(dark)); }

 private:
  bool m_comStarted = SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
  registrytest::ThemeOverride m_theme{false};
};

}  // namespace bartest
