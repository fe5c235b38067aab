#pragma once
// The prompt's picture button: light and dark pictures, a hover picture for each theme and a
// disabled pair, painted over the prompt's background colour; WM_COMMAND (BN_CLICKED) to the
// parent on a completed click.
#include <windows.h>

#include <array>
#include <span>
#include <string>

#include "platform/handles.h"
#include "platform/window.h"
#include "widgets/accessible_button.h"

class CCustomButton final : public corvane::Window<CCustomButton>, private accessibility::IButtonFace {
 public:
  static constexpr const wchar_t* kClassName = L"CorvaneCustomButton";
  static HCURSOR ClassCursor() noexcept { return ::LoadCursorW(nullptr, IDC_HAND); }
  static std::span<const MessageEntry> MessageMap();

  // Which picture a paint shows.
  enum Face : int { kNormal, kDark, kHover, kHoverDark, kDisabled, kDisabledDark, kFaceCount };

  CCustomButton() = default;

  // Paths relative to the module folder; an empty path leaves its face without a picture.
  void SetImages(const std::wstring& normal, const std::wstring& dark, const std::wstring& hover);
  void SetHoverDarkImage(const std::wstring& hoverDark);
  void SetDisabledImages(const std::wstring& disabled, const std::wstring& disabledDark);
  void SetSize(int width, int height) noexcept;
  void SetName(const std::wstring& name);
  void SetDarkMode(bool dark);
  // Stores the flag and enables or disables the window.
  void Enable(bool enable);

  // The face a paint would use now, after falling back from a face that has no picture.
  Face CurrentFace() const noexcept;
  const std::wstring& GetName() const noexcept { return m_strName; }
  // What the picture says, for screen readers (the window text stays the placeholder name).
  void SetAccessibleName(const std::wstring& name) { m_strAccessibleName = name; }
  bool IsHovered() const noexcept { return m_bHovered; }

 private:
  LRESULT OnPaint(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnEraseBkgnd(UINT, WPARAM, LPARAM, bool&) { return 1; }
  LRESULT OnMouseMove(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnMouseLeave(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnLButtonDown(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnLButtonUp(UINT, WPARAM, LPARAM lParam, bool&);
  LRESULT OnGetObject(UINT, WPARAM wParam, LPARAM lParam, bool& handled);

  std::wstring AccessibleName() const override { return m_strAccessibleName; }
  bool IsAccessiblyHot() const override { return m_bHovered; }
  bool IsAccessiblyPressed() const override { return m_bPressed; }
  void PressLikeAClick() override;

  void Load(Face face, const std::wstring& path);
  void Repaint() noexcept;

  std::array<corvane::unique_hbitmap, kFaceCount> m_images;
  corvane::unique_hbrush m_hBackground;  // the prompt's colour behind the picture's transparent parts
  std::wstring m_strName;
  int m_nWidth = 0;
  int m_nHeight = 0;
  bool m_bDark = false;
  bool m_bEnabled = true;
  bool m_bHovered = false;
  bool m_bPressed = false;
  std::wstring m_strAccessibleName;
  // Last: the link to accessible objects is cut before anything they ask about goes.
  accessibility::CButtonAccessibility m_accessibility{*this};
};
