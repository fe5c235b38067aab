#pragma once
// A bar as the Explorer window controller would host it, over a plain top-level window: GDI+ and
// COM started and a light app theme (restored afterwards), on top of the registry tests' scratch
// Halvex key, logger and debugger capture. The bar's own timer is stopped after creation so the
// tests drive OnTimer with WM_TIMER themselves.
#include <windows.h>
#include <unknwn.h>

#include <gtest/gtest.h>

#include <atomic>
#include <climits>
#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "bar/bar_owner.h"
#include "bar/title_window.h"
#include "log_files.h"
#include "platform/gdiplus_session.h"
#include "platform/window.h"
#include "registry_fixture.h"
#include "saved_value.h"

namespace bartest {

using logtest::FileExists;
using registrytest::kRoot;
using registrytest::kUser;
using registrytest::kUserKey;
using registrytest::kZoomKey;
constexpr std::uint64_t kMiB = 1024ULL * 1024, kGiB = 1024 * kMiB;

// An IUnknown that only counts its references.
class CountingUnknown final : public IUnknown {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return ++m_count; }
  ULONG STDMETHODCALLTYPE Release() override { return --m_count; }
  ULONG Count() const noexcept { return m_count; }

 private:
  std::atomic<ULONG> m_count{1};
};

class COwnerFrame final : public corvane::Window<COwnerFrame> {
 public:
  static constexpr const wchar_t* kClassName = L"CorvaneBarTestOwner";
  static std::span<const MessageEntry> MessageMap() { return {}; }
};

// The owner: holds H and the text unit like the controller, and lays the bar out as a strip of
// height H across the top of its window. A pinned owner keeps H = 40 and the unit 10 x 16 whatever
// the bar measures (it only records what it was asked), so a layout can be stated in literal pixels.
class TestOwner final : public IBarOwner {
 public:
  TestOwner(int clientWidth, bool pinned);
  int GetBarHeight() const override { return m_nBarHeight; }
  void SetBarHeight(int height) override;
  void GetIconSize(int& width, int& height) const override { width = m_icon.cx, height = m_icon.cy; }
  void SetIconSize(int width, int height) override;
  HWND GetExplorerHwnd() const override { return m_frame.m_hWnd; }
  void Attach(CTitleWindow* bar) noexcept { m_pBar = bar; }
  // MovePosition of the bar to (0, 0, width, H).
  void Layout(int width);
  int Width() const noexcept { return m_nWidth; }

  int askedHeight = 0;  // the last height and unit the bar set
  SIZE askedIcon{};

 private:
  COwnerFrame m_frame;
  CTitleWindow* m_pBar = nullptr;
  bool m_pinned;
  int m_nWidth;
  int m_nBarHeight = 40;
  SIZE m_icon{10, 16};
};

// A bar hosted like the controller does it. Start: Initialize under the owner's window; Settle:
// WM_DISPLAYCHANGE posted to the bar and its right group, the bar laid out at the owner's width and
// the messages pumped.
struct HostedBar {
  explicit HostedBar(int width, bool pinned = false) : owner(width, pinned) {}
  ~HostedBar();
  HostedBar(const HostedBar&) = delete;
  HostedBar& operator=(const HostedBar&) = delete;
  bool Start(bool settle = true);
  void Settle();
  HWND Bar() const { return bar.m_hWnd; }
  HWND Right() const { return bar.GetRightHwnd(); }
  HWND Child(int id) const { return ::GetDlgItem(bar.m_hWnd, id); }
  void Tick() const { ::SendMessageW(bar.m_hWnd, WM_TIMER, CTitleWindow::TIMER_CLOUD_UPDATE_INFO, 0); }

  bool timerWasRunning = false;  // the bar's own update timer, when Start stopped it
  CountingUnknown unknown;
  TestOwner owner;
  CTitleWindow bar;
};

// Dispatches everything queued for this thread.
void Pump();
// Removes the queued messages of one kind, dispatches them and returns their windows in order.
// (A window filter would also take the messages of the window's children.)
std::vector<HWND> TakeQueued(UINT message);
int CountOf(const std::vector<HWND>& windows, HWND window);
bool HasStyle(HWND window, DWORD style);
RECT RectIn(HWND window, HWND parent);
std::wstring SkinFile(const wchar_t* name);
// The distinct colours (0xRRGGBB) of a picture's pixels that are at least half covered; faint
// anti-aliased edges are left out, so a caption yields exactly its text colour. Only the columns
// [fromColumn, toColumn) are looked at. Read with GDI+ directly, not through the bar's own readers.
std::set<std::uint32_t> InkColours(const std::wstring& path, LONG fromColumn = 0, LONG toColumn = LONG_MAX);
SIZE PictureSize(const std::wstring& path);
// The window painted into a 32-bit buffer first filled with 0x0A141E, as 0xRRGGBB rows.
std::vector<std::uint32_t> PaintedPixels(HWND window);

class BarTest : public registrytest::RegistryTest {
 protected:
  void SetUp() override;
  void TearDown() override;

  static void DeleteValue(const std::wstring& subkey, const std::wstring& name) {
    ::RegDeleteKeyValueW(HKEY_CURRENT_USER, subkey.c_str(), name.c_str());
  }
  static void PublishSpace(std::uint64_t total, std::uint64_t used);
  static void PublishAdvertising(const std::wstring& id, const std::wstring& title);
  static void PublishZoom(HWND window, const std::wstring& text) {
    SetText(kZoomKey, std::to_wstring(reinterpret_cast<std::uintptr_t>(window)), text);
  }
  void SetDarkTheme(bool dark) { ASSERT_TRUE(m_theme->Set(dark)); }
  // The messages logged under [function], in order.
  std::vector<std::wstring> LogOf(const std::wstring& function) const;

 private:
  std::optional<corvane::GdiplusSession> m_gdiplus;
  std::optional<registrytest::ThemeOverride> m_theme;
  bool m_comStarted = false;
};

}  // namespace bartest
