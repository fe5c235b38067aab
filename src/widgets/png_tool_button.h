#pragma once
// The picture button of the bar: one of four PNG pictures by state (1 normal, 2 hover or focus,
// 3 pressed, 4 disabled) painted over the bar's background without flicker, and WM_COMMAND to the
// parent when clicked. It keeps its own pressed and hovered flags instead of the base's state.
#include <windows.h>

#include <array>
#include <memory>
#include <span>
#include <string>

#include "platform/handles.h"
#include "widgets/accessible_button.h"
#include "widgets/default_tool_button.h"
#include "platform/gdiplus_headers.h"

class CPngToolButton final : public CDefaultToolButtonT<CPngToolButton>, private accessibility::IButtonFace {
 public:
  static constexpr const wchar_t* kClassName = L"CorvanePngToolButton";
  // The button sets the cursor itself on every mouse move; a class cursor would flicker against it.
  static HCURSOR ClassCursor() noexcept { return nullptr; }

  static std::span<const MessageEntry> MessageMap();

  CPngToolButton();
  ~CPngToolButton() override;

  // Relative paths are taken under the module folder, absolute ones as they are; all four pictures
  // are loaded again and the image size comes from slot 1. A slot whose file cannot be loaded stays
  // empty. True when slot 1 loaded. Repaints when the window exists.
  bool SetImages(const std::wstring& normal, const std::wstring& hover, const std::wstring& pressed,
                 const std::wstring& disabled);
  // 1: the hand cursor over the button; anything else: the arrow.
  void SetHandCursor(int hand) noexcept { m_nHandCursor = hand; }
  int GetImageWidth() const noexcept { return m_nImageWidth; }
  int GetImageHeight() const noexcept { return m_nImageHeight; }
  // Destroys the window if it still exists, then frees the four pictures and the caption font.
  void DestroyButton();

  // Optional caption drawn over the picture (the bar does not use it).
  void SetCaption(const std::wstring& caption);
  void SetCaptionFont(const std::wstring& family, float emSize, INT style = Gdiplus::FontStyleRegular);
  void SetCaptionColors(Gdiplus::ARGB enabled, Gdiplus::ARGB disabled) noexcept;

  // What the picture shows, for screen readers (the window text stays as the owner gives it). A
  // different name is announced as a name change.
  void SetAccessibleName(const std::wstring& name);
  const std::wstring& GetAccessibleName() const noexcept { return m_strAccessibleName; }

  // The slot (0 to 3) that a paint would show now.
  int CurrentSlot() const noexcept;
  bool IsPressed() const noexcept { return m_bPressed; }
  bool IsHovered() const noexcept { return m_bHovered; }
  const std::wstring& GetImagePath(int slot) const { return m_strImagePaths.at(static_cast<size_t>(slot)); }
  bool HasImage(int slot) const { return static_cast<bool>(m_hImages.at(static_cast<size_t>(slot))); }

 private:
  LRESULT OnPaint(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnLButtonDown(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnLButtonUp(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnMouseMove(UINT, WPARAM, LPARAM lParam, bool&);
  LRESULT OnMouseLeave(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnRepaintNeeded(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnEraseBkgnd(UINT, WPARAM, LPARAM, bool&) { return 1; }
  LRESULT OnSettingChange(UINT, WPARAM, LPARAM lParam, bool&);
  LRESULT OnGetObject(UINT, WPARAM wParam, LPARAM lParam, bool&);

  std::wstring AccessibleName() const override { return m_strAccessibleName; }
  bool IsAccessiblyHot() const override { return m_bHovered; }
  bool IsAccessiblyPressed() const override { return m_bPressed; }
  void PressLikeAClick() override;

  void Paint(HDC dc);
  const Gdiplus::Font* CaptionFont();

  std::array<std::wstring, 4> m_strImagePaths;
  std::array<corvane::unique_hbitmap, 4> m_hImages;
  // A slot whose file held a good picture but could not be made into a bitmap (memory or GDI ran
  // short) is loaded again when it is next painted, instead of staying blank for good.
  std::array<bool, 4> m_bRetryImage{};
  int m_nImageWidth = 0;
  int m_nImageHeight = 0;
  bool m_bPressed = false;
  bool m_bHovered = false;
  std::wstring m_strBaseFolder;
  int m_nHandCursor = 0;
  HCURSOR m_hHandCursor = nullptr;   // shared system cursors: never destroyed
  HCURSOR m_hArrowCursor = nullptr;
  std::wstring m_strCaption;
  // The font is made on first use, not at construction: a button may be constructed before the
  // Explorer window controller has started GDI+.
  std::wstring m_strCaptionFontFamily = L"Arial";
  float m_fCaptionFontSize = 12.0f;
  INT m_nCaptionFontStyle = Gdiplus::FontStyleRegular;
  std::unique_ptr<Gdiplus::Font> m_captionFont;
  Gdiplus::ARGB m_captionColor = 0xFF000000;
  Gdiplus::ARGB m_captionDisabledColor = 0xFF808080;
  std::wstring m_strAccessibleName;
  // Last: the link to accessible objects is cut before anything they ask about goes.
  accessibility::CButtonAccessibility m_accessibility{*this};
};
