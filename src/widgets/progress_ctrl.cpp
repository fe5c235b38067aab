#include "widgets/progress_ctrl.h"

#include <algorithm>

#include "client/theme.h"
#include "platform/handles.h"

namespace {

Gdiplus::ARGB ToArgb(COLORREF color) noexcept {
  return Gdiplus::Color::MakeARGB(255, GetRValue(color), GetGValue(color), GetBValue(color));
}


// The track stays this pale blue in both themes: the capacity display's colours were chosen
// against it, and it reads on the dark bar as well.
const Gdiplus::Color kTrackColor(255, 232, 248, 255);

void AddRoundedRect(Gdiplus::GraphicsPath& path, Gdiplus::REAL x, Gdiplus::REAL y, Gdiplus::REAL w, Gdiplus::REAL h,
                    Gdiplus::REAL r) {
  // Corners wider than half a side would make the arcs cross, and the crossing figure paints
  // stray crescents (a 5-pixel track with the default radius 3 would); such corners meet in the middle.
  const Gdiplus::REAL d = std::min({2 * r, w, h});
  if (d <= 0.0f) {
    path.AddRectangle(Gdiplus::RectF(x, y, w, h));
    return;
  }
  path.AddArc(x, y, d, d, 180.0f, 90.0f);
  path.AddArc(x + w - d, y, d, d, 270.0f, 90.0f);
  path.AddArc(x + w - d, y + h - d, d, d, 0.0f, 90.0f);
  path.AddArc(x, y + h - d, d, d, 90.0f, 90.0f);
  path.CloseFigure();
}

}  // namespace

std::span<const CMyProgressCtrl::MessageEntry> CMyProgressCtrl::MessageMap() {
  static const MessageEntry map[] = {
      {WM_PAINT, &CMyProgressCtrl::OnPaint},
      {WM_ERASEBKGND, &CMyProgressCtrl::OnEraseBkgnd},
  };
  return map;
}

void CMyProgressCtrl::SetRange(int minimum, int maximum) {
  m_nMin = minimum;
  m_nMax = maximum;
  Repaint();
}

void CMyProgressCtrl::SetPos(int position) {
  // Minimum first, then maximum: with an inverted range the maximum wins.
  m_nPos = position;
  if (m_nPos < m_nMin) m_nPos = m_nMin;
  if (m_nPos > m_nMax) m_nPos = m_nMax;
  Repaint();
}

void CMyProgressCtrl::SetRadius(int radius) {
  m_nRadius = radius;
  Repaint();
}

int CMyProgressCtrl::FillWidth(int trackWidth) const noexcept {
  if (m_nMin >= m_nMax) return 0;
  const double share = (static_cast<double>(m_nPos) - m_nMin) / (static_cast<double>(m_nMax) - m_nMin);
  return static_cast<int>(share * trackWidth);
}

void CMyProgressCtrl::Repaint() {
  if (IsWindow()) Invalidate();
}

LRESULT CMyProgressCtrl::OnPaint(UINT, WPARAM, LPARAM, bool&) {
  const corvane::scoped_paint paint(m_hWnd);
  if (paint.dc() == nullptr) return 0;
  // Small and repainted only on invalidation: drawn straight into the paint DC.
  Gdiplus::Graphics graphics(paint.dc());
  if (graphics.GetLastStatus() != Gdiplus::Ok) return 0;
  graphics.SetSmoothingMode(Gdiplus::SmoothingModeHighQuality);

  RECT client{};
  ::GetClientRect(m_hWnd, &client);
  // The control sits on the bar. Explorer composites the bar's children, so pixels the track does
  // not cover would show the bar; hosts that do not composite would show stale pixels instead, so
  // the bar's colour goes down first.
  const Gdiplus::SolidBrush barBrush(ToArgb(theme::BarBackground(theme::IsDarkTheme())));
  graphics.FillRectangle(&barBrush, static_cast<INT>(client.left), static_cast<INT>(client.top),
                         static_cast<INT>(client.right - client.left), static_cast<INT>(client.bottom - client.top));
  client.bottom -= 2;
  const auto width = static_cast<Gdiplus::REAL>(client.right - client.left);
  const auto height = static_cast<Gdiplus::REAL>(client.bottom - client.top);
  const auto radius = static_cast<Gdiplus::REAL>(m_nRadius);

  Gdiplus::GraphicsPath track;
  AddRoundedRect(track, static_cast<Gdiplus::REAL>(client.left), static_cast<Gdiplus::REAL>(client.top), width, height,
                 radius);
  const Gdiplus::SolidBrush trackBrush(kTrackColor);
  graphics.FillPath(&trackBrush, &track);

  const int fill = FillWidth(client.right - client.left);
  // An empty range or a fill of width 0 leaves only the track.
  if (m_nMin < m_nMax && fill > 0) {
    Gdiplus::GraphicsPath bar;
    AddRoundedRect(bar, 0.0f, 0.0f, static_cast<Gdiplus::REAL>(fill), height, radius);
    const Gdiplus::SolidBrush fillBrush{Gdiplus::Color(m_fillColor)};
    graphics.FillPath(&fillBrush, &bar);
  }
  return 0;
}
