#pragma once
// The right end of the bar: sync progress, settings (with its small menu) and the knowledge-base
// entry. Each button's picture is made at run time from its rendered label and an icon scaled to
// the label's height, one set per theme and state. Clicks become commands for the client.
#include <windows.h>

#include <array>
#include <span>
#include <string>

#include "bar/bar_owner.h"
#include "platform/handles.h"
#include "platform/window.h"
#include "widgets/image_helpers.h"
#include "widgets/png_tool_button.h"

class CRightWindow final : public corvane::Window<CRightWindow> {
 public:
  static constexpr const wchar_t* kClassName = L"CorvaneRightWindow";
  enum : int { IDC_RIGHT_SYNCPROGRESS = 4001, IDC_RIGHT_SETTINGS = 4002, IDC_RIGHT_ZHISHIKU = 4003 };
  enum : int { IDM_SYNC_SETTING = 1001, IDM_SYNC_OPERATE = 1002, IDM_AI_CUSTOM = 1003 };
  // The width reported before the first measurement.
  static constexpr int kInitialWidth = 360;

  static std::span<const MessageEntry> MessageMap();

  CRightWindow();

  // Creates the group under the title window and builds its buttons; false without a window.
  bool Create(HWND parent, IBarOwner* owner);
  void Place(int x, int y, int width, int height) noexcept;
  void Destroy();

  // R: the group's width, read by the title window to place it flush right.
  int GetWidth() const noexcept { return m_nWidth; }
  const RECT& GetButtonRect(size_t index) const { return m_rcButtons.at(index); }
  const CPngToolButton& GetSyncProgressButton() const noexcept { return m_btnSyncProgress; }
  const CPngToolButton& GetSettingsButton() const noexcept { return m_btnSettings; }
  const CPngToolButton& GetZhishikuButton() const noexcept { return m_btnZhishiku; }
  // Null until the settings button is first clicked.
  HMENU GetSettingsMenu() const noexcept { return m_hMenu.get(); }

 private:
  LRESULT OnNothing(UINT, WPARAM, LPARAM, bool&) { return 0; }
  LRESULT OnSize(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnPaint(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnSettingChange(UINT, WPARAM, LPARAM lParam, bool& handled);
  LRESULT OnDisplayChange(UINT, WPARAM, LPARAM, bool&);
  LRESULT onCommand(UINT, WPARAM wParam, LPARAM, bool& handled);
  LRESULT OnSyncProgressClick(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnSettingsClick(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnZhishikuClick(UINT, WPARAM, LPARAM, bool&);

  // Renders the labels, scales the icons and joins them (right_window_pictures.cpp).
  void BuildPictures();
  void BuildFamily(TextImageStyle& caption, const wchar_t* prefix, const wchar_t* iconStem, Gdiplus::ARGB darkText);
  bool ScaleIconToText(const std::wstring& textPng, const std::wstring& iconPng, const std::wstring& scaledPng);
  // Gives each button the pictures of the current theme.
  void ApplyThemeImages();
  void ComputeButtonRects();
  void MoveButtons();
  std::wstring Skin(const std::wstring& name) const;

  int m_nWidth = kInitialWidth;
  CPngToolButton m_btnSyncProgress;
  CPngToolButton m_btnSettings;
  CPngToolButton m_btnZhishiku;
  std::array<RECT, 3> m_rcButtons{};
  int m_nGap = 20;
  TextImageStyle m_captionSyncProgress;
  TextImageStyle m_captionSettings;
  TextImageStyle m_captionZhishiku;
  IBarOwner* m_pOwner = nullptr;
  std::wstring m_strModuleFolder;
  corvane::unique_hmenu m_hMenu;
  HWND m_hParent = nullptr;
};
