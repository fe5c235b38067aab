#pragma once
// The thin rounded progress bar under the capacity text: a pale rounded track and a rounded fill of
// a settable colour whose width is the position's share of the range.
#include <windows.h>

#include <span>

#include "platform/window.h"
#include "platform/gdiplus_headers.h"

class CMyProgressCtrl final : public corvane::Window<CMyProgressCtrl> {
 public:
  static constexpr const wchar_t* kClassName = L"CorvaneProgressCtrl";
  static std::span<const MessageEntry> MessageMap();

  // Stores both ends and repaints; a range with minimum >= maximum paints only the track.
  void SetRange(int minimum, int maximum);
  // Stores the position, raised to the minimum and then lowered to the maximum, and repaints.
  void SetPos(int position);
  void SetRadius(int radius);
  // Stores the fill colour only; callers set it before the position, whose repaint shows it.
  void SetColor(Gdiplus::ARGB color) noexcept { m_fillColor = color; }

  int GetMin() const noexcept { return m_nMin; }
  int GetMax() const noexcept { return m_nMax; }
  int GetPos() const noexcept { return m_nPos; }
  int GetRadius() const noexcept { return m_nRadius; }
  Gdiplus::ARGB GetColor() const noexcept { return m_fillColor; }

  // The fill width for a track of the given width; 0 when the range is empty.
  int FillWidth(int trackWidth) const noexcept;

 private:
  LRESULT OnPaint(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnEraseBkgnd(UINT, WPARAM, LPARAM, bool&) { return 1; }
  void Repaint();

  int m_nMin = 0;
  int m_nMax = 100;
  int m_nPos = 0;
  int m_nRadius = 3;
  Gdiplus::ARGB m_fillColor = 0xFF417FF9;  // opaque (65, 127, 249)
};
