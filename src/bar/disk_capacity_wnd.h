#pragma once
// The bar's capacity display: the used and total figures drawn as a two-coloured picture, a thin
// progress bar of the used share under it, and the expand entry that asks the client for its
// capacity-purchase pop-up. Colours turn red when free space is nearly exhausted.
#include <windows.h>

#include <cstdint>
#include <span>
#include <string>

#include "bar/bar_owner.h"
#include "platform/window.h"
#include "widgets/image_helpers.h"
#include "widgets/png_tool_button.h"
#include "widgets/progress_ctrl.h"

class CDiskCapacityWnd final : public corvane::Window<CDiskCapacityWnd> {
 public:
  static constexpr const wchar_t* kClassName = L"CorvaneDiskCapacity";
  enum : int { IDC_CAPACITY_EXPAND = 3001, IDC_CAPACITY_TEXT = 3002, IDC_CAPACITY_PROGRESS = 3003 };

  static std::span<const MessageEntry> MessageMap();

  CDiskCapacityWnd();

  void SetOwner(IBarOwner* owner) noexcept { m_pOwner = owner; }
  // Stored only; the next placement uses it.
  void SetSize(int width, int height) noexcept;
  // Unchanged figures change nothing; new ones are stored and shown (Refresh).
  void SetSpace(std::uint64_t totalSpace, std::uint64_t usedSpace);
  // The label of the expand entry; rendered by the next Refresh.
  void SetExpandText(const std::wstring& text);
  // Recolours, re-renders and re-places the children; nothing before all three exist.
  void Refresh();
  void DestroyChildren();

  std::uint64_t GetTotalSpace() const noexcept { return m_nTotalSpace; }
  std::uint64_t GetUsedSpace() const noexcept { return m_nUsedSpace; }
  const CPngToolButton& GetTextButton() const noexcept { return m_btnText; }
  const CPngToolButton& GetExpandButton() const noexcept { return m_btnExpand; }
  const CMyProgressCtrl& GetProgress() const noexcept { return m_progress; }

 private:
  LRESULT OnCreate(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnDestroy(UINT, WPARAM, LPARAM, bool& handled);
  LRESULT OnPaint(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnEraseBkgnd(UINT, WPARAM, LPARAM, bool&) { return 1; }
  LRESULT OnSize(UINT, WPARAM, LPARAM, bool& handled);
  LRESULT OnSettingChange(UINT, WPARAM, LPARAM, bool& handled);
  LRESULT OnBnClickedExpand(UINT, WPARAM, LPARAM, bool&);
  LRESULT OnBnClickedText(UINT, WPARAM, LPARAM, bool&) { return 0; }

  int BarHeight() const noexcept;
  std::uint64_t ZoomWindow() const noexcept;
  void PlaceChildren();
  void PlaceExpand();
  void PlaceProgress();

  CPngToolButton m_btnText;
  CPngToolButton m_btnExpand;
  CMyProgressCtrl m_progress;
  TextImageStyle m_captionCombined;
  TextImageStyle m_captionUsed;
  TextImageStyle m_captionTotal;
  TextImageStyle m_captionExpand;
  std::wstring m_strModuleFolder;
  IBarOwner* m_pOwner = nullptr;
  int m_nWidth = 0;
  int m_nHeight = 0;
  std::uint64_t m_nTotalSpace = 0;
  std::uint64_t m_nUsedSpace = 0;
  std::wstring m_strExpandText;
};
