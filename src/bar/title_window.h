#pragma once
// The bar placed above the file list of an Explorer window that shows the client's sync folder:
// the account logo, the capacity display, the advertising entry and, flush right, the right button
// group. Once a second it re-reads the client's published state and updates what changed.
#include <atomic>
#include <windows.h>
#include <unknwn.h>
#include <wrl/client.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "bar/bar_common.h"
#include "bar/bar_owner.h"
#include "bar/disk_capacity_wnd.h"
#include "bar/logo_subclass.h"
#include "bar/right_window.h"
#include "platform/window.h"
#include "widgets/image_helpers.h"
#include "widgets/picture_store.h"
#include "widgets/png_tool_button.h"

class CTitleWindow final : public corvane::Window<CTitleWindow> {
 public:
  static constexpr const wchar_t* kClassName = L"CorvaneTitleWindow";
  enum : int { IDC_TITLE_LOGO = 2001, IDC_TITLE_CAPACITY = 2002, IDC_TITLE_ADVERTISING = 2003 };
  static constexpr UINT_PTR TIMER_CLOUD_UPDATE_INFO = 1;
  static constexpr const wchar_t* kDefaultLogo = L"CorvaneSkin\\logo1.png";
  // The advertising caption's colour, also used to measure the text unit.
  static constexpr Gdiplus::ARGB kCaptionColor = 0xFF0091FF;  // 0, 145, 255

  static std::span<const MessageEntry> MessageMap();

  CTitleWindow();
  ~CTitleWindow() override;

  // Holds a reference on unknown, keeps the owner and its handle, creates the bar under the owner's
  // window and subclasses the logo button. False when the bar window cannot be created.
  bool Initialize(IUnknown* unknown, IBarOwner* owner, HWND ownerHandle);
  // Destroys the bar, releases the reference, then removes the logo subclass.
  void Uninitialize();
  bool CreateBarWnd(HWND parent);
  void DestroyBarWnd();
  // rect in the parent's client coordinates.
  void MovePosition(const RECT& rect);
  void ShowBar(bool show);

  HWND GetRightHwnd() const noexcept { return m_rightWindow.m_hWnd; }
  const CRightWindow& GetRightWindow() const noexcept { return m_rightWindow; }
  const CDiskCapacityWnd& GetCapacity() const noexcept { return m_capacity; }
  const CPngToolButton& GetLogoButton() const noexcept { return m_btnLogo; }
  const CPngToolButton& GetAdvertisingButton() const noexcept { return m_btnAdvertising; }
  const RECT& GetLogoRect() const noexcept { return m_rcLogo; }
  const RECT& GetCapacityRect() const noexcept { return m_rcCapacity; }
  const RECT& GetAdvertisingRect() const noexcept { return m_rcAdvertising; }
  bool IsCreated() const noexcept { return m_bCreated; }
  // Whether the bar window exists, for other threads: the window thread sets it once the window is
  // made and clears it as the window goes, so the timer thread never reads m_hWnd while it changes.
  bool IsLive() const noexcept { return m_bLive; }
  bool IsLogoHovered() const noexcept { return m_bLogoHovered; }
  bool IsLogoSubclassed() const noexcept { return m_bLogoSubclassed; }
  double GetDpiZoom() const noexcept { return m_dDpiZoom; }
  const std::wstring& GetCurrentUser() const noexcept { return m_strCurrentUser; }

 private:
  friend class CLogoSubclass;

  LRESULT OnCreate(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnDestroy(UINT, WPARAM, LPARAM, bool& handled);
  LRESULT OnSize(UINT, WPARAM, LPARAM lParam, bool&);
  LRESULT OnPaint(UINT, WPARAM wParam, LPARAM, bool&);
  LRESULT OnEraseBkgnd(UINT, WPARAM, LPARAM, bool&) { return 1; }
  LRESULT OnSettingChange(UINT, WPARAM, LPARAM lParam, bool& handled);
  LRESULT OnTimer(UINT, WPARAM wParam, LPARAM, bool&);
  LRESULT OnDisplayChange(UINT, WPARAM, LPARAM, bool& handled);
  LRESULT OnLogoClick(UINT, WPARAM, LPARAM, bool&) { return 0; }
  LRESULT OnAdvertisingClick(UINT, WPARAM, LPARAM lParam, bool&);
  LRESULT OnPlaceRightWindow(UINT, WPARAM, LPARAM, bool&);

  int BarHeight() const noexcept;
  std::uint64_t ZoomWindow() const noexcept;
  void ComputeLogoRect();
  void ComputeCapacityRect();
  void ComputeAdvertisingRect();
  void RenderAdvertising();
  void ApplyLogoPath(const std::wstring& path);

  // The process's pictures are kept while any bar's window lives, and given back when the last
  // one is destroyed (the object itself may outlive its window).
  std::optional<imageutil::store::Use> m_pictureUse;
  CRightWindow m_rightWindow;
  bool m_bCreated = false;
  std::atomic<bool> m_bLive{false};
  CPngToolButton m_btnLogo;
  CDiskCapacityWnd m_capacity;
  CPngToolButton m_btnAdvertising;
  std::wstring m_strModuleFolder;
  TextImageStyle m_advertisingCaption;
  RECT m_rcLogo{};
  RECT m_rcCapacity{};
  RECT m_rcAdvertising{};
  int m_nGap = 20;
  int m_nBarWidth = 0;
  bool m_bLogoHovered = false;
  bool m_bLogoSubclassed = false;
  CLogoSubclass m_logoSubclass;
  std::wstring m_strCurrentUser;
  std::wstring m_strLogoPath;
  std::wstring m_strAdvertisingId;
  std::wstring m_strAdvertisingTitle;
  std::uint64_t m_nTotalSpace = 0;
  std::uint64_t m_nUsedSpace = 0;
  double m_dDpiZoom = 0.0;
  IBarOwner* m_pOwner = nullptr;
  HWND m_hOwner = nullptr;
  Microsoft::WRL::ComPtr<IUnknown> m_spOwnerInterface;
};
