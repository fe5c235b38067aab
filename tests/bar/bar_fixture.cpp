#include "bar_fixture.h"

#include <algorithm>
#include <vector>

#include "platform/gdiplus_headers.h"
#include "platform/handles.h"
#include "platform/module_path.h"

namespace bartest {

HRESULT STDMETHODCALLTYPE CountingUnknown::QueryInterface(REFIID iid, void** out) {
  if (out == nullptr) return E_POINTER;
  *out = iid == IID_IUnknown ? static_cast<IUnknown*>(this) : nullptr;
  if (*out == nullptr) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

TestOwner::TestOwner(int clientWidth, bool pinned) : m_pinned(pinned), m_nWidth(clientWidth) {
  RECT frame{0, 0, clientWidth, 200};
  ::AdjustWindowRectEx(&frame, WS_OVERLAPPEDWINDOW, FALSE, 0);
  const RECT place{20, 20, 20 + frame.right - frame.left, 20 + frame.bottom - frame.top};
  // Never shown: under Wine without a window manager, destroying a mapped top-level window waits
  // two seconds for a withdrawal that never comes. The bar and its children keep their own styles.
  m_frame.Create(nullptr, &place, L"Corvane bar test", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN);
}

void TestOwner::SetBarHeight(int height) {
  askedHeight = height;
  if (m_pinned) return;
  m_nBarHeight = height;
  // The controller lays its window out again whenever the bar's height changes.
  if (m_pBar != nullptr && m_pBar->IsWindow()) Layout(m_nWidth);
}

void TestOwner::SetIconSize(int width, int height) {
  askedIcon = SIZE{width, height};
  if (!m_pinned) m_icon = askedIcon;
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
  Gdiplus::Bitmap picture(path.c_str());
  const LONG width = std::min(toColumn, static_cast<LONG>(picture.GetWidth()));
  for (LONG y = 0; y < static_cast<LONG>(picture.GetHeight()); ++y) {
    for (LONG x = fromColumn; x < width; ++x) {
      Gdiplus::Color pixel;
      if (picture.GetPixel(x, y, &pixel) == Gdiplus::Ok && pixel.GetA() >= 128) colours.insert(pixel.GetValue() & 0xFFFFFFu);
    }
  }
  return colours;
}

SIZE PictureSize(const std::wstring& path) {
  Gdiplus::Bitmap picture(path.c_str());
  if (picture.GetLastStatus() != Gdiplus::Ok) return SIZE{-1, -1};
  return SIZE{static_cast<LONG>(picture.GetWidth()), static_cast<LONG>(picture.GetHeight())};
}

std::vector<std::uint32_t> PaintedPixels(HWND window) {
  RECT client{};
  ::GetClientRect(window, &client);
  const corvane::unique_hdc dc(::CreateCompatibleDC(nullptr));
  BITMAPINFO info{};
  info.bmiHeader = {sizeof(info.bmiHeader), client.right, -client.bottom, 1, 32, BI_RGB};
  void* bits = nullptr;
  const corvane::unique_hbitmap target(::CreateDIBSection(dc.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
  if (!target) return {};
  const corvane::scoped_select selected(dc.get(), target.get());
  auto* pixels = static_cast<std::uint32_t*>(bits);
  const size_t count = static_cast<size_t>(client.right) * static_cast<size_t>(client.bottom);
  std::fill(pixels, pixels + count, 0x0A141Eu);
  ::SendMessageW(window, WM_PAINT, reinterpret_cast<WPARAM>(dc.get()), 0);
  ::GdiFlush();
  std::vector<std::uint32_t> rows(pixels, pixels + count);
  for (std::uint32_t& pixel : rows) pixel &= 0xFFFFFFu;
  return rows;
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

void BarTest::PublishSpace(std::uint64_t total, std::uint64_t used) {
  SetUser(kUser);
  SetText(kUserKey, L"totalSpace", std::to_wstring(total));
  SetText(kUserKey, L"usedSpace", std::to_wstring(used));
}

void BarTest::PublishAdvertising(const std::wstring& id, const std::wstring& title) {
  SetUser(kUser);
  SetText(kUserKey, L"advertisingId", id);
  SetText(kUserKey, L"advertisingTitle", title);
}

std::vector<std::wstring> BarTest::LogOf(const std::wstring& function) const {
  std::vector<std::wstring> messages;
  for (const registrytest::LogLine& line : RegistryTest::LogOf(function)) messages.push_back(line.message);
  return messages;
}

}  // namespace bartest
