#include "bar/disk_capacity_wnd.h"

#include "bar/bar_common.h"
#include "client/launcher.h"
#include "client/theme.h"
#include "core/capacity.h"
#include "log/logger.h"
#include "platform/module_path.h"

namespace {

constexpr Gdiplus::ARGB kWhite = 0xFFFFFFFF;            // 255, 255, 255
constexpr Gdiplus::ARGB kSlate = 0xFF4D5966;            // 77, 89, 102
constexpr Gdiplus::ARGB kWarningRed = 0xFFFB5248;       // 251, 82, 72
constexpr Gdiplus::ARGB kBlue = 0xFF0091FF;             // 0, 145, 255

constexpr wchar_t kExpandPng[] = L"CorvaneSkin\\Expand.png";
constexpr wchar_t kCombinedPng[] = L"CorvaneSkin\\Capacity.png";
constexpr wchar_t kUsedPng[] = L"CorvaneSkin\\Capacityu.png";
constexpr wchar_t kTotalPng[] = L"CorvaneSkin\\Capacityt.png";
constexpr wchar_t kJoinedPng[] = L"CorvaneSkin\\Capacityut.png";

constexpr DWORD kChildStyle = WS_CHILD | WS_VISIBLE;

Gdiplus::ARGB CombinedColor(bool dark) noexcept { return dark ? kWhite : kSlate; }

void SetAllImages(CPngToolButton& button, const std::wstring& path) { button.SetImages(path, path, path, path); }

}  // namespace

std::span<const CDiskCapacityWnd::MessageEntry> CDiskCapacityWnd::MessageMap() {
  static const MessageEntry map[] = {
      {WM_CREATE, &CDiskCapacityWnd::OnCreate},
      {WM_DESTROY, &CDiskCapacityWnd::OnDestroy},
      {WM_PAINT, &CDiskCapacityWnd::OnPaint},
      {WM_ERASEBKGND, &CDiskCapacityWnd::OnEraseBkgnd},
      {WM_SIZE, &CDiskCapacityWnd::OnSize},
      {WM_SETTINGCHANGE, &CDiskCapacityWnd::OnSettingChange},
      {WM_COMMAND, &CDiskCapacityWnd::OnBnClickedExpand, IDC_CAPACITY_EXPAND, BN_CLICKED},
      {WM_COMMAND, &CDiskCapacityWnd::OnBnClickedText, IDC_CAPACITY_TEXT, BN_CLICKED},
  };
  return map;
}

CDiskCapacityWnd::CDiskCapacityWnd() : m_strModuleFolder(corvane::ThisModuleFolder()) {
  for (TextImageStyle* caption : {&m_captionCombined, &m_captionUsed, &m_captionTotal, &m_captionExpand}) {
    caption->fontName = L"Microsoft YaHei";
    caption->fontSize = 12.0f;
  }
}

void CDiskCapacityWnd::SetSize(int width, int height) noexcept {
  m_nWidth = width;
  m_nHeight = height;
}

void CDiskCapacityWnd::SetSpace(std::uint64_t totalSpace, std::uint64_t usedSpace) {
  if (totalSpace == m_nTotalSpace && usedSpace == m_nUsedSpace) return;
  m_nTotalSpace = totalSpace;
  m_nUsedSpace = usedSpace;
  Refresh();
}

void CDiskCapacityWnd::SetExpandText(const std::wstring& text) {
  m_strExpandText = text;
  if (m_btnExpand.IsWindow()) m_captionExpand.text = text;
}

int CDiskCapacityWnd::BarHeight() const noexcept { return m_pOwner != nullptr ? m_pOwner->GetBarHeight() : 0; }

std::uint64_t CDiskCapacityWnd::ZoomWindow() const noexcept {
  return m_pOwner != nullptr ? bar::WindowNumber(m_pOwner->GetExplorerHwnd()) : 0;
}

LRESULT CDiskCapacityWnd::OnCreate(UINT, WPARAM, LPARAM, bool&) {
  const bool dark = theme::IsDarkTheme();
  m_captionExpand.color = kBlue;
  m_captionCombined.color = CombinedColor(dark);
  m_captionUsed.color = kWhite;
  m_captionTotal.color = kWhite;
  // Only the expand label follows the zoom the client publishes for the owner's window; the figures
  // keep zoomWindow 0, which names no Explorer window, so they stay at their unzoomed size.
  m_captionExpand.zoomWindow = ZoomWindow();

  const int barHeight = BarHeight();
  const RECT textRect{0, 0, 160, 20};
  m_btnText.Create(m_hWnd, &textRect, L"0B/0B", kChildStyle, 0, IDC_CAPACITY_TEXT);
  const RECT expandRect{210, 0, m_nWidth, 20};
  m_btnExpand.Create(m_hWnd, &expandRect, m_strExpandText.c_str(), kChildStyle, 0, IDC_CAPACITY_EXPAND);
  const RECT progressRect{0, barHeight - 10, m_nWidth, barHeight - 3};
  m_progress.Create(m_hWnd, &progressRect, L"", kChildStyle, 0, IDC_CAPACITY_PROGRESS);

  m_captionExpand.text = m_strExpandText;
  RenderTextToPng(m_captionExpand, bar::SkinPath(m_strModuleFolder, kExpandPng));
  SetAllImages(m_btnExpand, kExpandPng);
  m_btnExpand.SetAccessibleName(m_strExpandText);

  m_captionCombined.text = L"0B/0B";
  RenderTextToPng(m_captionCombined, bar::SkinPath(m_strModuleFolder, kCombinedPng));
  SetAllImages(m_btnText, kCombinedPng);
  m_btnText.SetAccessibleName(m_captionCombined.text);
  m_captionUsed.text = L"0B";
  m_captionTotal.text = L"/0B";

  // Before the first Refresh the text button keeps its creation size rather than its picture's.
  bar::MoveTo(m_btnText.m_hWnd, textRect);
  PlaceExpand();
  PlaceProgress();
  m_btnExpand.SetHandCursor(1);
  return 0;
}

LRESULT CDiskCapacityWnd::OnDestroy(UINT, WPARAM, LPARAM, bool& handled) {
  handled = false;
  return 0;
}

void CDiskCapacityWnd::Refresh() {
  if (!m_btnText.IsWindow() || !m_btnExpand.IsWindow() || !m_progress.IsWindow()) return;

  const bool warn = corvane::core::IsCapacityWarning(m_nTotalSpace, m_nUsedSpace);
  const bool dark = theme::IsDarkTheme();
  const Gdiplus::ARGB text = dark ? kWhite : kSlate;
  m_captionCombined.color = warn ? kWarningRed : text;
  m_captionUsed.color = warn ? kWarningRed : text;
  m_captionTotal.color = text;
  m_captionExpand.color = warn ? kWarningRed : kBlue;
  m_progress.SetColor(warn ? kWarningRed : kBlue);

  const std::wstring used = corvane::core::FormatSize(m_nUsedSpace);
  const std::wstring total = corvane::core::FormatSize(m_nTotalSpace);
  m_captionUsed.text = used;
  m_captionTotal.text = L"/" + total;
  m_captionCombined.text = used + L"/" + total;

  RenderTextToPng(m_captionExpand, bar::SkinPath(m_strModuleFolder, kExpandPng));
  SetAllImages(m_btnExpand, kExpandPng);
  m_btnExpand.SetAccessibleName(m_captionExpand.text);
  // Named after the figures it shows; a change is announced to screen readers.
  m_btnText.SetAccessibleName(m_captionCombined.text);
  RenderTextToPng(m_captionCombined, bar::SkinPath(m_strModuleFolder, kCombinedPng));
  RenderTextToPng(m_captionUsed, bar::SkinPath(m_strModuleFolder, kUsedPng));
  RenderTextToPng(m_captionTotal, bar::SkinPath(m_strModuleFolder, kTotalPng));
  // The text button shows the two-coloured join, not the single-coloured Capacity.png.
  CombinePngHorizontally(bar::SkinPath(m_strModuleFolder, kUsedPng), bar::SkinPath(m_strModuleFolder, kTotalPng),
                         bar::SkinPath(m_strModuleFolder, kJoinedPng), 4, 0);
  SetAllImages(m_btnText, kJoinedPng);

  if (m_nTotalSpace != 0) {
    m_progress.SetRange(0, 100);
    m_progress.SetPos(corvane::core::UsedPercent(m_nTotalSpace, m_nUsedSpace));
  } else {
    m_progress.SetPos(0);
  }

  PlaceChildren();
  bar::RedrawNow(m_btnText.m_hWnd);
  bar::RedrawNow(m_btnExpand.m_hWnd);
  bar::RedrawNow(m_progress.m_hWnd);
}

void CDiskCapacityWnd::PlaceChildren() {
  if (m_btnText.IsWindow()) {
    bar::MoveTo(m_btnText.m_hWnd, RECT{0, 0, m_btnText.GetImageWidth(), m_btnText.GetImageHeight()});
  }
  PlaceExpand();
  PlaceProgress();
}

void CDiskCapacityWnd::PlaceExpand() {
  if (!m_btnExpand.IsWindow()) return;
  const int ew = m_btnExpand.GetImageWidth(), eh = m_btnExpand.GetImageHeight();
  bar::MoveTo(m_btnExpand.m_hWnd, RECT{m_nWidth - ew, 0, m_nWidth, eh});
}

void CDiskCapacityWnd::PlaceProgress() {
  if (!m_progress.IsWindow()) return;
  const int barHeight = BarHeight();
  bar::MoveTo(m_progress.m_hWnd, RECT{0, barHeight - 10, m_nWidth, barHeight - 3});
}

void CDiskCapacityWnd::DestroyChildren() {
  m_btnText.DestroyButton();
  m_btnExpand.DestroyButton();
  m_progress.DestroyWindow();
}

LRESULT CDiskCapacityWnd::OnPaint(UINT, WPARAM wParam, LPARAM, bool&) {
  bar::Paint(m_hWnd, reinterpret_cast<HDC>(wParam), bar::PaintStyle{true, false});
  return 0;
}

LRESULT CDiskCapacityWnd::OnSize(UINT, WPARAM wParam, LPARAM, bool& handled) {
  // The stored width, not the new client size, decides: the title window sets both together.
  if (wParam != SIZE_MINIMIZED) PlaceChildren();
  handled = false;
  return 0;
}

LRESULT CDiskCapacityWnd::OnSettingChange(UINT, WPARAM, LPARAM lParam, bool& handled) {
  if (theme::IsSettingChange(lParam, L"ImmersiveColorSet") || theme::IsSettingChange(lParam, L"WindowsThemeElement")) {
    m_captionCombined.color = CombinedColor(theme::IsDarkTheme());
  }
  Refresh();
  handled = false;
  return 0;
}

LRESULT CDiskCapacityWnd::OnBnClickedExpand(UINT, WPARAM, LPARAM, bool&) {
  RECT rect{};
  ::GetWindowRect(m_hWnd, &rect);
  // The pop-up is anchored under the whole capacity display and owned by it; flag 1 marks the
  // request as coming from the expand entry (the promotion entry passes 0).
  const std::wstring command = cx::exeCloudCommandLine(L"vip", L"show", rect.left, rect.bottom, m_hWnd, 1);
  LOG_INFO(L"CDiskCapacityWnd::OnBnClickedExpand", L"call cx::exeCloudCommandLine = %s.", command.c_str());
  return 0;
}
