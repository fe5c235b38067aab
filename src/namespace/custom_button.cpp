#include "namespace/custom_button.h"

#include "client/theme.h"
#include "platform/module_path.h"
#include "widgets/png_picture.h"

std::span<const CCustomButton::MessageEntry> CCustomButton::MessageMap() {
  static constexpr MessageEntry map[] = {
      {WM_PAINT, &CCustomButton::OnPaint},
      {WM_ERASEBKGND, &CCustomButton::OnEraseBkgnd},
      {WM_MOUSEMOVE, &CCustomButton::OnMouseMove},
      {WM_MOUSELEAVE, &CCustomButton::OnMouseLeave},
      {WM_LBUTTONDOWN, &CCustomButton::OnLButtonDown},
      {WM_LBUTTONUP, &CCustomButton::OnLButtonUp},
      // Beyond the rules: screen readers learn what the picture says and can press it.
      {WM_GETOBJECT, &CCustomButton::OnGetObject},
  };
  return map;
}

void CCustomButton::Load(Face face, const std::wstring& path) {
  auto& slot = m_images[static_cast<size_t>(face)];
  slot.reset();
  if (!path.empty()) slot = imageutil::LoadPngBitmap(corvane::ThisModuleFolder() + path);
}

void CCustomButton::SetImages(const std::wstring& normal, const std::wstring& dark, const std::wstring& hover) {
  Load(kNormal, normal);
  Load(kDark, dark);
  Load(kHover, hover);
  Repaint();
}

void CCustomButton::SetHoverDarkImage(const std::wstring& hoverDark) {
  Load(kHoverDark, hoverDark);
  Repaint();
}

void CCustomButton::SetDisabledImages(const std::wstring& disabled, const std::wstring& disabledDark) {
  Load(kDisabled, disabled);
  Load(kDisabledDark, disabledDark);
  Repaint();
}

void CCustomButton::SetSize(int width, int height) noexcept {
  m_nWidth = width;
  m_nHeight = height;
  if (IsWindow()) ::SetWindowPos(m_hWnd, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void CCustomButton::SetName(const std::wstring& name) {
  m_strName = name;
  if (IsWindow()) ::SetWindowTextW(m_hWnd, name.c_str());
}

void CCustomButton::SetDarkMode(bool dark) {
  m_bDark = dark;
  m_hBackground.reset(::CreateSolidBrush(theme::LoginBackground(dark)));
  Repaint();
}

void CCustomButton::Enable(bool enable) {
  m_bEnabled = enable;
  if (IsWindow()) ::EnableWindow(m_hWnd, enable ? TRUE : FALSE);
  Repaint();
}

CCustomButton::Face CCustomButton::CurrentFace() const noexcept {
  const auto has = [this](Face face) { return static_cast<bool>(m_images[static_cast<size_t>(face)]); };
  const Face plain = m_bDark && has(kDark) ? kDark : kNormal;
  if (!m_bEnabled) {
    const Face disabled = m_bDark ? kDisabledDark : kDisabled;
    return has(disabled) ? disabled : plain;
  }
  if (m_bHovered) {
    // A button without a dark hover picture keeps its dark face under the mouse: the light hover
    // picture would flash white in a dark window.
    const Face hover = m_bDark ? kHoverDark : kHover;
    return has(hover) ? hover : plain;
  }
  return plain;
}

void CCustomButton::Repaint() noexcept {
  if (IsWindow()) ::InvalidateRect(m_hWnd, nullptr, FALSE);
}

LRESULT CCustomButton::OnPaint(UINT, WPARAM, LPARAM, bool&) {
  corvane::scoped_paint paint(m_hWnd);
  RECT client{};
  ::GetClientRect(m_hWnd, &client);
  // Drawn off screen and copied in one step, so hover changes do not flicker.
  corvane::unique_hdc memory(::CreateCompatibleDC(paint.dc()));
  corvane::unique_hbitmap canvas(::CreateCompatibleBitmap(paint.dc(), client.right, client.bottom));
  if (!memory || !canvas) return 0;
  corvane::scoped_select selected(memory.get(), canvas.get());
  if (!m_hBackground) m_hBackground.reset(::CreateSolidBrush(theme::LoginBackground(m_bDark)));
  ::FillRect(memory.get(), &client, m_hBackground.get());
  imageutil::DrawPngBitmap(memory.get(), m_images[static_cast<size_t>(CurrentFace())].get(), client);
  ::BitBlt(paint.dc(), 0, 0, client.right, client.bottom, memory.get(), 0, 0, SRCCOPY);
  return 0;
}

LRESULT CCustomButton::OnMouseMove(UINT, WPARAM, LPARAM, bool&) {
  if (!m_bHovered) {
    m_bHovered = true;
    TRACKMOUSEEVENT track{sizeof(track), TME_LEAVE, m_hWnd, 0};
    ::TrackMouseEvent(&track);
    Repaint();
  }
  return 0;
}

LRESULT CCustomButton::OnMouseLeave(UINT, WPARAM, LPARAM, bool&) {
  m_bHovered = false;
  Repaint();
  return 0;
}

LRESULT CCustomButton::OnLButtonDown(UINT, WPARAM, LPARAM, bool&) {
  m_bPressed = true;
  ::SetCapture(m_hWnd);
  return 0;
}

LRESULT CCustomButton::OnLButtonUp(UINT, WPARAM, LPARAM lParam, bool&) {
  const bool pressed = m_bPressed;
  m_bPressed = false;
  if (::GetCapture() == m_hWnd) ::ReleaseCapture();
  RECT client{};
  ::GetClientRect(m_hWnd, &client);
  const POINT at{static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
  if (pressed && m_bEnabled && ::PtInRect(&client, at)) PressLikeAClick();
  return 0;
}

void CCustomButton::PressLikeAClick() {
  const int id = ::GetDlgCtrlID(m_hWnd);
  ::SendMessageW(::GetParent(m_hWnd), WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(m_hWnd));
}

LRESULT CCustomButton::OnGetObject(UINT, WPARAM wParam, LPARAM lParam, bool& handled) {
  const LRESULT result = m_accessibility.OnGetObject(m_hWnd, wParam, lParam);
  handled = result != 0;
  return result;
}
