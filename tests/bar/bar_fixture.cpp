#include "bar_fixture.h"

#include <algorithm>
#include <filesystem>

#include "log/logger.h"
#include "platform/module_path.h"
#include "widgets/image_helpers.h"

namespace bartest {

namespace {

const wchar_t kPersonalize[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize";
const wchar_t kThemeValue[] = L"AppsUseLightTheme";

}  // namespace

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

bool FileExists(const std::wstring& path) { return ::GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

std::wstring SkinFile(const wchar_t* name) { return corvane::ThisModuleFolder() + L"CorvaneSkin\\" + name; }

std::set<std::uint32_t> InkColours(const std::wstring& path) {
  std::set<std::uint32_t> colours;
  const std::unique_ptr<Gdiplus::Bitmap> bitmap = imageutil::LoadBitmapFromFile(path);
  if (!bitmap) return colours;
  for (UINT y = 0; y < bitmap->GetHeight(); ++y) {
    for (UINT x = 0; x < bitmap->GetWidth(); ++x) {
      Gdiplus::Color pixel;
      bitmap->GetPixel(static_cast<INT>(x), static_cast<INT>(y), &pixel);
      if (pixel.GetA() >= 128) colours.insert(pixel.GetValue() & 0xFFFFFFu);
    }
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
  ::RegDeleteTreeW(HKEY_CURRENT_USER, kRoot.c_str());

  DWORD type = 0, size = 0;
  if (::RegGetValueW(HKEY_CURRENT_USER, kPersonalize, kThemeValue, RRF_RT_ANY, &type, nullptr, &size) == ERROR_SUCCESS) {
    m_savedTheme.emplace(size);
    ::RegGetValueW(HKEY_CURRENT_USER, kPersonalize, kThemeValue, RRF_RT_ANY, &type, m_savedTheme->data(), &size);
    m_savedThemeType = type;
  }
  SetDarkTheme(false);

  static std::atomic<int> counter{0};
  wchar_t temp[MAX_PATH] = {};
  ::GetTempPathW(MAX_PATH, temp);
  m_scratch = std::wstring(temp) + L"corvane-bar-" + std::to_wstring(::GetCurrentProcessId()) + L"-" +
              std::to_wstring(counter++);
  std::filesystem::remove_all(m_scratch);
  std::filesystem::create_directories(m_scratch);
  g_pLogger = new LOGGER::CLogger(4, m_scratch + L"\\log", L"Corvane");
}

void BarTest::TearDown() {
  Pump();
  delete g_pLogger;
  g_pLogger = nullptr;
  ::RegDeleteTreeW(HKEY_CURRENT_USER, kRoot.c_str());
  ::RegDeleteKeyValueW(HKEY_CURRENT_USER, kPersonalize, kThemeValue);
  if (m_savedTheme) {
    ::RegSetKeyValueW(HKEY_CURRENT_USER, kPersonalize, kThemeValue, m_savedThemeType, m_savedTheme->data(),
                      static_cast<DWORD>(m_savedTheme->size()));
  }
  std::error_code ignored;
  std::filesystem::remove_all(m_scratch, ignored);
  m_gdiplus.reset();
  if (m_comStarted) ::CoUninitialize();
}

void BarTest::SetText(const std::wstring& subkey, const std::wstring& name, const std::wstring& text) {
  ASSERT_EQ(::RegSetKeyValueW(HKEY_CURRENT_USER, subkey.c_str(), name.c_str(), REG_SZ, text.c_str(),
                              static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))),
            ERROR_SUCCESS);
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

void BarTest::SetDarkTheme(bool dark) {
  const DWORD value = dark ? 0 : 1;
  ASSERT_EQ(::RegSetKeyValueW(HKEY_CURRENT_USER, kPersonalize, kThemeValue, REG_DWORD, &value, sizeof(value)),
            ERROR_SUCCESS);
}

std::vector<std::wstring> BarTest::LogOf(const std::wstring& function) const {
  const std::wstring location = L"[" + function + L"]";
  std::vector<std::wstring> found;
  for (std::wstring line : m_capture.Lines()) {
    const auto at = line.find(location);
    if (at == std::wstring::npos) continue;
    while (!line.empty() && (line.back() == L'\n' || line.back() == L'\r')) line.pop_back();
    found.push_back(line.substr(at + location.size()));
  }
  return found;
}

}  // namespace bartest
