#include "widgets/png_tool_button.h"

#include <shlwapi.h>
#include <windowsx.h>

#include "client/theme.h"
#include "platform/module_path.h"
#include "widgets/font_maker.h"
#include "widgets/png_picture.h"

namespace {

constexpr int kSlotNormal = 0, kSlotHover = 1, kSlotPressed = 2, kSlotDisabled = 3;

}  // namespace

std::span<const CPngToolButton::MessageEntry> CPngToolButton::MessageMap() {
  static const MessageEntry map[] = {
      {WM_PAINT, &CPngToolButton::OnPaint},
      {WM_LBUTTONDOWN, &CPngToolButton::OnLButtonDown},
      {WM_LBUTTONUP, &CPngToolButton::OnLButtonUp},
      {WM_MOUSEMOVE, &CPngToolButton::OnMouseMove},
      {WM_MOUSELEAVE, &CPngToolButton::OnMouseLeave},
      {WM_SETFOCUS, &CPngToolButton::OnRepaintNeeded},
      {WM_KILLFOCUS, &CPngToolButton::OnRepaintNeeded},
      {WM_ENABLE, &CPngToolButton::OnRepaintNeeded},
      {WM_ERASEBKGND, &CPngToolButton::OnEraseBkgnd},
      {WM_SETTINGCHANGE, &CPngToolButton::OnSettingChange},
      // Beyond the rules: screen readers learn what the picture means and can press it.
      {WM_GETOBJECT, &CPngToolButton::OnGetObject},
  };
  return map;
}

CPngToolButton::CPngToolButton()
    : m_strBaseFolder(corvane::ThisModuleFolder()),
      m_hHandCursor(::LoadCursorW(nullptr, IDC_HAND)),
      m_hArrowCursor(::LoadCursorW(nullptr, IDC_ARROW)) {}

// The caption font must already be gone when GDI+ is shut down before this object (the bar calls
// DestroyButton); nothing else here belongs to GDI+.
CPngToolButton::~CPngToolButton() = default;

bool CPngToolButton::SetImages(const std::wstring& normal, const std::wstring& hover, const std::wstring& pressed,
                               const std::wstring& disabled) {
  const std::wstring* const paths[] = {&normal, &hover, &pressed, &disabled};
  for (size_t slot = 0; slot < m_strImagePaths.size(); ++slot) {
    const std::wstring& path = *paths[slot];
    m_strImagePaths[slot] = ::PathIsRelativeW(path.c_str()) ? m_strBaseFolder + path : path;
  }
  // Most owners give one file to all four slots: it is decoded once and copied for the others.
  for (size_t slot = 0; slot < m_hImages.size(); ++slot) {
    size_t same = 0;
    while (same < slot && m_strImagePaths[same] != m_strImagePaths[slot]) ++same;
    // A twin that failed only for memory or GDI is tried again here; one that failed for good is
    // copied as it is (empty), so a missing file is not opened four times.
    m_bRetryImage[slot] = false;
    m_hImages[slot] = same < slot && !m_bRetryImage[same]
                          ? imageutil::CopyPngBitmap(m_hImages[same].get())
                          : imageutil::LoadPngBitmap(m_strImagePaths[slot], &m_bRetryImage[slot]);
  }
  const SIZE size = imageutil::GetBitmapSize(m_hImages[kSlotNormal].get());
  m_nImageWidth = size.cx;
  m_nImageHeight = size.cy;
  if (IsWindow()) Invalidate(FALSE);
  return static_cast<bool>(m_hImages[kSlotNormal]);
}

void CPngToolButton::DestroyButton() {
  // A button whose pictures are gone has nothing left to show: the window goes with them, which is
  // also how the capacity display takes its children down.
  if (IsWindow()) DestroyWindow();
  for (auto& image : m_hImages) image.reset();
  m_captionFont.reset();
}

void CPngToolButton::SetCaption(const std::wstring& caption) {
  m_strCaption = caption;
  if (IsWindow()) Invalidate(FALSE);
}

void CPngToolButton::SetCaptionFont(const std::wstring& family, float emSize, INT style) {
  m_strCaptionFontFamily = family;
  m_fCaptionFontSize = emSize;
  m_nCaptionFontStyle = style;
  m_captionFont.reset();
  if (IsWindow()) Invalidate(FALSE);
}

void CPngToolButton::SetCaptionColors(Gdiplus::ARGB enabled, Gdiplus::ARGB disabled) noexcept {
  m_captionColor = enabled;
  m_captionDisabledColor = disabled;
}

int CPngToolButton::CurrentSlot() const noexcept {
  if (m_hWnd != nullptr && !::IsWindowEnabled(m_hWnd)) return kSlotDisabled;
  if (m_bPressed) return kSlotPressed;
  if (m_bHovered) return kSlotHover;
  if (m_hWnd != nullptr && ::GetFocus() == m_hWnd) return kSlotHover;
  return kSlotNormal;
}

LRESULT CPngToolButton::OnPaint(UINT, WPARAM, LPARAM, bool&) {
  const corvane::scoped_paint paint(m_hWnd);
  if (paint.dc() != nullptr) Paint(paint.dc());
  return 0;
}

void CPngToolButton::Paint(HDC dc) {
  RECT client{};
  ::GetClientRect(m_hWnd, &client);
  const int width = client.right - client.left, height = client.bottom - client.top;
  if (width <= 0 || height <= 0) return;

  const corvane::unique_hdc memory(::CreateCompatibleDC(dc));
  const corvane::unique_hbitmap buffer(::CreateCompatibleBitmap(dc, width, height));
  if (!memory || !buffer) return;
  const corvane::scoped_select selected(memory.get(), buffer.get());

  // The stock DC brush takes any colour without creating a brush per paint.
  ::SetDCBrushColor(memory.get(), theme::BarBackground(IsDarkTheme()));
  ::FillRect(memory.get(), &client, static_cast<HBRUSH>(::GetStockObject(DC_BRUSH)));

  const auto slot = static_cast<size_t>(CurrentSlot());
  if (m_bRetryImage[slot]) {
    m_hImages[slot] = imageutil::LoadPngBitmap(m_strImagePaths[slot], &m_bRetryImage[slot]);
    if (slot == static_cast<size_t>(kSlotNormal)) {
      const SIZE size = imageutil::GetBitmapSize(m_hImages[slot].get());
      m_nImageWidth = size.cx;
      m_nImageHeight = size.cy;
    }
  }
  if (const HBITMAP picture = m_hImages[slot].get()) {
    // Across the whole client rectangle: an account picture of any size fills the logo's square
    // (the bar sizes every other button to its picture, so those are drawn one to one).
    imageutil::StretchPngBitmap(memory.get(), picture, client);
  }

  if (!m_strCaption.empty()) {
    if (const Gdiplus::Font* font = CaptionFont()) {
      Gdiplus::Graphics graphics(memory.get());
      const Gdiplus::SolidBrush brush{
          Gdiplus::Color(::IsWindowEnabled(m_hWnd) ? m_captionColor : m_captionDisabledColor)};
      if (graphics.GetLastStatus() == Gdiplus::Ok && brush.GetLastStatus() == Gdiplus::Ok) {
        const Gdiplus::RectF layout(0.0f, 0.0f, static_cast<Gdiplus::REAL>(width), static_cast<Gdiplus::REAL>(height));
        graphics.DrawString(m_strCaption.c_str(), -1, font, layout, nullptr, &brush);
      }
    }
  }

  ::BitBlt(dc, 0, 0, width, height, memory.get(), 0, 0, SRCCOPY);
}

const Gdiplus::Font* CPngToolButton::CaptionFont() {
  if (!m_captionFont) {
    m_captionFont = imageutil::MakeFont(m_strCaptionFontFamily, m_fCaptionFontSize, m_nCaptionFontStyle, Gdiplus::UnitPoint);
  }
  return m_captionFont.get();
}

LRESULT CPngToolButton::OnLButtonDown(UINT, WPARAM, LPARAM, bool&) {
  if (!m_bPressed) {
    m_bPressed = true;
    ::SetCapture(m_hWnd);
    Invalidate(FALSE);
  }
  return 0;
}

LRESULT CPngToolButton::OnLButtonUp(UINT, WPARAM, LPARAM, bool&) {
  // A release that this button did not capture belongs to no click of ours.
  if (::GetCapture() != m_hWnd) return 0;
  ::ReleaseCapture();
  if (m_bPressed) {
    m_bPressed = false;
    Invalidate(FALSE);
    PressLikeAClick();
  }
  return 0;
}

LRESULT CPngToolButton::OnMouseMove(UINT, WPARAM, LPARAM lParam, bool&) {
  if (!m_bHovered) {
    m_bHovered = true;
    TRACKMOUSEEVENT tme{sizeof(tme), TME_LEAVE, m_hWnd, 0};
    ::TrackMouseEvent(&tme);
    Invalidate(FALSE);
  }
  if (::GetCapture() == m_hWnd) {
    // Dragging out of the button while it is held cancels the press; coming back restores it.
    RECT client{};
    ::GetClientRect(m_hWnd, &client);
    const POINT cursor{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    const bool inside = ::PtInRect(&client, cursor) != FALSE;
    if (inside != m_bPressed) {
      m_bPressed = inside;
      Invalidate(FALSE);
    }
  }
  ::SetCursor(m_nHandCursor == 1 ? m_hHandCursor : m_hArrowCursor);
  return 0;
}

LRESULT CPngToolButton::OnMouseLeave(UINT, WPARAM, LPARAM, bool&) {
  m_bHovered = false;
  Invalidate(FALSE);
  return 0;
}

LRESULT CPngToolButton::OnRepaintNeeded(UINT, WPARAM, LPARAM, bool&) {
  Invalidate(FALSE);
  return 0;
}

LRESULT CPngToolButton::OnSettingChange(UINT, WPARAM, LPARAM lParam, bool&) {
  if (theme::IsSettingChange(lParam, L"ImmersiveColorSet") || theme::IsSettingChange(lParam, L"WindowsThemeElement")) {
    if (IsWindow()) Invalidate(FALSE);
  }
  return 0;
}

void CPngToolButton::PressLikeAClick() {
  const HWND self = m_hWnd;
  ::SendMessageW(::GetParent(self), WM_COMMAND, static_cast<WPARAM>(::GetDlgCtrlID(self)), reinterpret_cast<LPARAM>(self));
}

void CPngToolButton::SetAccessibleName(const std::wstring& name) {
  if (name == m_strAccessibleName) return;
  m_strAccessibleName = name;
  accessibility::CButtonAccessibility::RaiseNameChange(m_hWnd);
}

LRESULT CPngToolButton::OnGetObject(UINT, WPARAM wParam, LPARAM lParam, bool& handled) {
  const LRESULT result = m_accessibility.OnGetObject(m_hWnd, wParam, lParam);
  handled = result != 0;
  return result;
}
