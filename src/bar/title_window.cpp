#include "bar/title_window.h"

#include "client/registry.h"
#include "client/theme.h"
#include "core/bar_layout.h"
#include "log/logger.h"
#include "platform/module_path.h"

namespace {

constexpr DWORD kBarStyle = WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_CLIPCHILDREN;
constexpr DWORD kChildStyle = WS_CHILD | WS_VISIBLE;
constexpr std::uint64_t kGiB = 1024ULL * 1024 * 1024;
constexpr std::uint64_t kMiB = 1024ULL * 1024;

// Where the right group was last placed by WM_TITLE_PLACE_RIGHT, shared by every bar of the
// process without a lock (all bars live on UI threads). Being process-wide, a second bar of the
// same width skips this placement while its group exists; WM_SIZE places each group regardless.
int g_nLastRightX = 0;
int g_nLastRightHeight = 0;

RECT ToRect(const corvane::core::BarRect& r) noexcept { return RECT{r.left, r.top, r.right, r.bottom}; }
corvane::core::BarRect FromRect(const RECT& r) noexcept { return {r.left, r.top, r.right, r.bottom}; }

}  // namespace

std::span<const CTitleWindow::MessageEntry> CTitleWindow::MessageMap() {
  static const MessageEntry map[] = {
      {WM_CREATE, &CTitleWindow::OnCreate},
      {WM_DESTROY, &CTitleWindow::OnDestroy},
      {WM_SIZE, &CTitleWindow::OnSize},
      {WM_PAINT, &CTitleWindow::OnPaint},
      {WM_ERASEBKGND, &CTitleWindow::OnEraseBkgnd},
      {WM_SETTINGCHANGE, &CTitleWindow::OnSettingChange},
      {WM_TIMER, &CTitleWindow::OnTimer},
      {WM_DISPLAYCHANGE, &CTitleWindow::OnDisplayChange},
      {WM_COMMAND, &CTitleWindow::OnLogoClick, IDC_TITLE_LOGO, BN_CLICKED},
      {WM_COMMAND, &CTitleWindow::OnLogoClick, IDC_TITLE_CAPACITY, BN_CLICKED},
      {WM_COMMAND, &CTitleWindow::OnAdvertisingClick, IDC_TITLE_ADVERTISING, BN_CLICKED},
      {WM_TITLE_PLACE_RIGHT, &CTitleWindow::OnPlaceRightWindow},
  };
  return map;
}

CTitleWindow::CTitleWindow() : m_strModuleFolder(corvane::ThisModuleFolder()) {}

CTitleWindow::~CTitleWindow() {
  // Taken down while the children's objects still exist, so WM_DESTROY finds them alive.
  if (IsWindow()) DestroyWindow();
}

bool CTitleWindow::Initialize(IUnknown* unknown, IBarOwner* owner, HWND ownerHandle) {
  if (m_spOwnerInterface.Get() != unknown) m_spOwnerInterface = unknown;
  m_pOwner = owner;
  m_hOwner = ownerHandle;
  const HWND parent = owner != nullptr ? owner->GetExplorerHwnd() : nullptr;
  if (!CreateBarWnd(parent)) return false;
  m_bLogoSubclassed = m_logoSubclass.Subclass(m_btnLogo.m_hWnd, this);
  return true;
}

void CTitleWindow::Uninitialize() {
  DestroyBarWnd();
  m_spOwnerInterface.Reset();
  // Removed only after the logo button is gone, the order the controller's teardown has always had.
  // The subclass wrapper already let go of the dying window at WM_NCDESTROY, so this forgets it.
  if (m_bLogoSubclassed) {
    m_logoSubclass.Unsubclass();
    m_bLogoSubclassed = false;
  }
}

bool CTitleWindow::CreateBarWnd(HWND parent) {
  LOG_INFO(L"CTitleWindow::CreateBarWnd", L"CTitleWindow::CreateBarWnd() invoked");
  if (Create(parent, nullptr, nullptr, kBarStyle, WS_EX_COMPOSITED, 0) == nullptr) return false;
  m_bLive = true;
  return true;
}

void CTitleWindow::DestroyBarWnd() {
  LOG_INFO(L"CTitleWindow::DestroyBarWnd", L"CTitleWindow::DestroyBarWnd() invoked");
  if (IsWindow()) DestroyWindow();
  m_btnLogo.DestroyButton();
  m_capacity.DestroyChildren();
  m_btnAdvertising.DestroyButton();
  m_rightWindow.Destroy();
}

void CTitleWindow::MovePosition(const RECT& rect) {
  LOG_INFO(L"CTitleWindow::MovePosition",
           L"CTitleWindow::MovePosition(TabPos [left = %d, top = %d, right = %d, bottom = %d])", rect.left, rect.top,
           rect.right, rect.bottom);
  ::SetWindowPos(m_hWnd, nullptr, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top,
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
}

void CTitleWindow::ShowBar(bool show) { ::ShowWindow(m_hWnd, show ? SW_SHOW : SW_HIDE); }

int CTitleWindow::BarHeight() const noexcept { return m_pOwner != nullptr ? m_pOwner->GetBarHeight() : 0; }

std::uint64_t CTitleWindow::ZoomWindow() const noexcept {
  return m_pOwner != nullptr ? bar::WindowNumber(m_pOwner->GetExplorerHwnd()) : 0;
}

void CTitleWindow::ComputeLogoRect() { m_rcLogo = ToRect(corvane::core::LogoRect(BarHeight())); }

void CTitleWindow::ComputeCapacityRect() {
  int unitWidth = 0, unitHeight = 0;
  if (m_pOwner != nullptr) m_pOwner->GetIconSize(unitWidth, unitHeight);
  m_rcCapacity = ToRect(corvane::core::CapacityRect(FromRect(m_rcLogo), m_nGap, unitWidth, BarHeight()));
}

void CTitleWindow::ComputeAdvertisingRect() {
  m_rcAdvertising = ToRect(corvane::core::AdvertisingRect(FromRect(m_rcCapacity), m_nGap,
                                                          m_btnAdvertising.GetImageWidth(),
                                                          m_btnAdvertising.GetImageHeight(), BarHeight()));
}

void CTitleWindow::RenderAdvertising() {
  m_advertisingCaption.text = m_strAdvertisingTitle;
  RenderTextToPng(m_advertisingCaption, m_strModuleFolder + L"CorvaneSkin\\advertisingInfo.png");
  const std::wstring picture = L"CorvaneSkin\\advertisingInfo.png";
  m_btnAdvertising.SetImages(picture, picture, picture, picture);
  m_btnAdvertising.SetAccessibleName(m_strAdvertisingTitle);
}

void CTitleWindow::ApplyLogoPath(const std::wstring& path) {
  m_strLogoPath = path;
  m_btnLogo.SetImages(path, path, path, path);
}

LRESULT CTitleWindow::OnCreate(UINT, WPARAM, LPARAM, bool&) {
  LOG_INFO(L"CTitleWindow::OnCreate", L"CTitleWindow::OnCreate() invoked");
  // Without an owner there is no height to lay out with.
  if (m_pOwner == nullptr) return -1;
  m_pictureUse.emplace();

  std::wstring user;
  regUtil::getCurrentUser(user);
  if (user.size() >= 11) m_strCurrentUser = user;
  // The logo stands for the signed-in account: screen readers name it so.
  m_btnLogo.SetAccessibleName(m_strCurrentUser);

  int unitWidth = 0, unitHeight = 0;
  m_pOwner->GetIconSize(unitWidth, unitHeight);

  std::wstring logo = kDefaultLogo;
  regUtil::getLogoPath(logo);
  ApplyLogoPath(logo);

  m_capacity.SetOwner(m_pOwner);
  ComputeLogoRect();
  m_btnLogo.Create(m_hWnd, &m_rcLogo, L"vip", kChildStyle, 0, IDC_TITLE_LOGO);
  ComputeCapacityRect();
  m_capacity.SetSize(m_rcCapacity.right - m_rcCapacity.left, m_rcCapacity.bottom - m_rcCapacity.top);
  m_capacity.Create(m_hWnd, &m_rcCapacity, L"", kChildStyle, 0, IDC_TITLE_CAPACITY);
  // Placeholders until the client publishes its figures.
  m_capacity.SetSpace(500 * kGiB, 200 * kMiB);
  m_capacity.SetExpandText(L"扩容>");

  m_rightWindow.Create(m_hWnd, m_pOwner);

  regUtil::getDpiZoom(ZoomWindow(), m_dDpiZoom);

  std::uint64_t total = 0, used = 0;
  // Given to the display whatever the reader says: nothing read leaves 0 and 0.
  static_cast<void>(regUtil::getCloudSpace(total, used));
  m_nTotalSpace = total;
  m_nUsedSpace = used;
  m_capacity.SetSpace(total, used);

  regUtil::getAdvertisingInfo(m_strAdvertisingId, m_strAdvertisingTitle);

  m_advertisingCaption.zoomWindow = ZoomWindow();
  m_advertisingCaption.color = kCaptionColor;
  m_advertisingCaption.fontName = L"Microsoft YaHei";
  m_advertisingCaption.fontSize = 12.0f;
  m_btnAdvertising.SetHandCursor(1);
  RenderAdvertising();

  ComputeAdvertisingRect();
  m_btnAdvertising.Create(m_hWnd, &m_rcAdvertising, L"广告位", kChildStyle, 0, IDC_TITLE_ADVERTISING);
  bar::MoveTo(m_btnAdvertising.m_hWnd, m_rcAdvertising);
  ::ShowWindow(m_btnAdvertising.m_hWnd, m_strAdvertisingId.empty() ? SW_HIDE : SW_SHOW);

  ::SetTimer(m_hWnd, TIMER_CLOUD_UPDATE_INFO, 1000, nullptr);
  m_bCreated = true;
  return 0;
}

LRESULT CTitleWindow::OnDestroy(UINT, WPARAM, LPARAM, bool& handled) {
  LOG_INFO(L"CTitleWindow::OnDestroy", L"CTitleWindow::OnDestroy() invoked");
  m_bLive = false;
  ::KillTimer(m_hWnd, TIMER_CLOUD_UPDATE_INFO);
  m_pictureUse.reset();
  handled = false;
  return 0;
}

LRESULT CTitleWindow::OnSize(UINT, WPARAM, LPARAM lParam, bool&) {
  const int width = LOWORD(lParam);
  m_nBarWidth = width;
  const int rightWidth = m_rightWindow.GetWidth();
  const auto visible = corvane::core::VisibleChildren(width, rightWidth, FromRect(m_rcLogo), FromRect(m_rcCapacity),
                                                      FromRect(m_rcAdvertising), !m_strAdvertisingId.empty());
  ::ShowWindow(m_btnLogo.m_hWnd, visible.logo ? SW_SHOW : SW_HIDE);
  ::ShowWindow(m_capacity.m_hWnd, visible.capacity ? SW_SHOW : SW_HIDE);
  ::ShowWindow(m_btnAdvertising.m_hWnd, visible.advertising ? SW_SHOW : SW_HIDE);
  ::ShowWindow(m_rightWindow.m_hWnd, SW_SHOW);
  m_rightWindow.Place(width - rightWidth, 0, rightWidth, BarHeight() - 1);
  return 0;
}

LRESULT CTitleWindow::OnPlaceRightWindow(UINT, WPARAM, LPARAM, bool&) {
  const int rightWidth = m_rightWindow.GetWidth();
  const int x = m_nBarWidth - rightWidth;
  const int height = BarHeight() - 1;
  if (x != g_nLastRightX || height != g_nLastRightHeight || !m_rightWindow.IsWindow()) {
    g_nLastRightX = x;
    g_nLastRightHeight = height;
    ::ShowWindow(m_rightWindow.m_hWnd, SW_SHOW);
    m_rightWindow.Place(x, 0, rightWidth, height);
  }
  return 0;
}

LRESULT CTitleWindow::OnPaint(UINT, WPARAM wParam, LPARAM, bool&) {
  bar::Paint(m_hWnd, reinterpret_cast<HDC>(wParam), bar::PaintStyle{true, true});
  return 0;
}

LRESULT CTitleWindow::OnSettingChange(UINT, WPARAM, LPARAM lParam, bool& handled) {
  // The bar reads the theme afresh at every paint, so a theme change needs nothing here; the
  // children and the default processing still get the message.
  static_cast<void>(theme::IsSettingChange(lParam, L"ImmersiveColorSet"));
  handled = false;
  return 0;
}
