#include "bar_fixture.h"

#include <algorithm>
#include <vector>

#include "platform/module_path.h"
#include "widgets/image_file.h"
#include "widgets/image_helpers.h"

namespace bartest {

HRESULT STDMETHODCALLTYPE CountingUnknown::QueryInterface(REFIID iid, void** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  if (iid != IID_IUnknown) return E_NOINTERFACE;
  *out = static_cast<IUnknown*>(this);
  AddRef();
  return S_OK;
}

TestOwner::TestOwner(int clientWidth) : m_nWidth(clientWidth) {
  RECT frame{0, 0, clientWidth, 200};
  ::AdjustWindowRectEx(&frame, WS_OVERLAPPEDWINDOW, FALSE, 0);
  const RECT place{20, 20, 20 + frame.right - frame.left, 20 + frame.bottom - frame.top};
  // Never shown: under Wine without a window manager, destroying a mapped top-level window waits
  // two seconds for a withdrawal that never comes. The bar and its children keep their own styles.
  m_frame.Create(nullptr, &place, L"Corvane bar test", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN);
}

void TestOwner::SetBarHeight(int height) {
  ++m_nSetBarHeightCalls;
  m_nBarHeight = height;
  // The controller lays its window out again whenever the bar's height changes.
  if (m_pBar != nullptr && m_pBar->IsWindow()) Layout(m_nWidth);
}

void TestOwner::GetIconSize(int& width, int& height) const {
  width = m_nIconWidth;
  height = m_nIconHeight;
}

void TestOwner::SetIconSize(int width, int height) {
  m_nIconWidth = width;
  m_nIconHeight = height;
}

void TestOwner::Layout(int width) {
  m_nWidth = width;
  if (m_pBar != nullptr) m_pBar->MovePosition(RECT{0, 0, width, m_nBarHeight});
}

bool HostedBar::Start(bool settle) {
  if (!bar.Initialize(&unknown, &owner, owner.GetExplorerHwnd())) return false;
  owner.Attach(&bar);
  timerWasRunning = ::KillTimer(bar.m_hWnd, CTitleWindow::TIMER_CLOUD_UPDATE_INFO) != FALSE;
  if (settle) Settle();
  return true;
}

void HostedBar::Settle() {
  ::PostMessageW(bar.m_hWnd, WM_DISPLAYCHANGE, 0, 0);
  ::PostMessageW(bar.GetRightHwnd(), WM_DISPLAYCHANGE, 0, 0);
  owner.Layout(owner.Width());
  Pump();
}

HostedBar::~HostedBar() {
  bar.Uninitialize();
  owner.Attach(nullptr);
  Pump();
}

void HostedBar::Tick() const { ::SendMessageW(bar.m_hWnd, WM_TIMER, CTitleWindow::TIMER_CLOUD_UPDATE_INFO, 0); }

void Pump() {
  MSG msg{};
  while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
    ::TranslateMessage(&msg);
    ::DispatchMessageW(&msg);
  }
}

std::vector<HWND> TakeQueued(UINT message) {
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

int CountOf(const std::vector<HWND>& windows, HWND window) {
  return static_cast<int>(std::count(windows.begin(), windows.end(), window));
}

bool HasStyle(HWND window, DWORD style) {
  return window != nullptr && (static_cast<DWORD>(::GetWindowLongPtrW(window, GWL_STYLE)) & style) == style;
}

RECT RectIn(HWND window, HWND parent) {
  RECT rect{};
  ::GetWindowRect(window, &rect);
  ::MapWindowPoints(HWND_DESKTOP, parent, reinterpret_cast<POINT*>(&rect), 2);
  return rect;
}

std::wstring SkinFile(const wchar_t* name) { return corvane::ThisModuleFolder() + L"CorvaneSkin\\" + name; }

std::set<std::uint32_t> InkColours(const std::wstring& path, LONG fromColumn, LONG toColumn) {
  std::set<std::uint32_t> colours;
  imageutil::CImageFile file;
  if (!file.Open(path)) return colours;
  const LONG width = static_cast<LONG>(file.Width());
  std::vector<std::uint32_t> pixels(static_cast<size_t>(width) * file.Height());
  if (!file.CopyPixels(PixelFormat32bppARGB, pixels.data(), static_cast<int>(width * 4))) return colours;
  for (size_t i = 0; i < pixels.size(); ++i) {
    const LONG column = static_cast<LONG>(i % static_cast<size_t>(width));
    if (column >= fromColumn && column < toColumn && (pixels[i] >> 24) >= 128) colours.insert(pixels[i] & 0xFFFFFFu);
  }
  return colours;
}

SIZE PictureSize(const std::wstring& path) {
  UINT width = 0, height = 0;
  if (!imageutil::GetImageSize(path, width, height)) return SIZE{-1, -1};
  return SIZE{static_cast<LONG>(width), static_cast<LONG>(height)};
}

void BarTest::SetUp() {
  m_comStarted = SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
  m_gdiplus.emplace();
  ASSERT_TRUE(m_gdiplus->ok());
  m_theme.emplace(false);
  RegistryTest::SetUp();
}

void BarTest::TearDown() {
  Pump();
  RegistryTest::TearDown();
  m_theme.reset();
  m_gdiplus.reset();
  if (m_comStarted) ::CoUninitialize();
}

void BarTest::DeleteValue(const std::wstring& subkey, const std::wstring& name) {
  ::RegDeleteKeyValueW(HKEY_CURRENT_USER, subkey.c_str(), name.c_str());
}

void BarTest::PublishSpace(std::uint64_t total, std::uint64_t used) {
  PublishUser();
  SetText(kUserKey, L"totalSpace", std::to_wstring(total));
  SetText(kUserKey, L"usedSpace", std::to_wstring(used));
}

void BarTest::PublishAdvertising(const std::wstring& id, const std::wstring& title) {
  PublishUser();
  SetText(kUserKey, L"advertisingId", id);
  SetText(kUserKey, L"advertisingTitle", title);
}

void BarTest::PublishZoom(HWND window, const std::wstring& text) {
  SetText(kZoomKey, std::to_wstring(reinterpret_cast<std::uintptr_t>(window)), text);
}

std::vector<std::wstring> BarTest::LogOf(const std::wstring& function) const {
  std::vector<std::wstring> messages;
  for (const registrytest::LogLine& line : RegistryTest::LogOf(function)) messages.push_back(line.message);
  return messages;
}

}  // namespace bartest
