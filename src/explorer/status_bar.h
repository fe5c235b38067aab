#pragma once
// Explorer's status bar: whether the user has it switched on, and two repairs of its parts for
// older Windows versions. The subclass changes no message.
#include <windows.h>

#include <cstdint>

#include "explorer/browser_subclass.h"

class CStatusBar final : public CBrowserSubclass<CStatusBar> {
 public:
  static constexpr UINT_PTR kSubclassId = 0x20190806;
  // Explorer's own command that shows or hides its status bar.
  static constexpr WORD kToggleStatusBarCommand = 41504;

  CStatusBar() noexcept : CBrowserSubclass(kSubclassId) {}

  BOOL Initialize(const Microsoft::WRL::ComPtr<IShellBrowser>& shellBrowser, HWND hwnd);
  void Uninitialize() noexcept { UnsubclassWindow(); }

  LRESULT OnSubclassMessage(UINT, WPARAM, LPARAM, bool&) { return 0; }

  // Explorer's "ShowStatusBar" setting; a missing value reads as off.
  bool IsStatusBarShown() const;

  // The repairs and the free-space reader have no caller at present; what sets the pending flags
  // is still open, so both repairs do nothing until one does.
  void ToggleStatusBar();
  void ResetStatus();
  bool GetCurrentFolderFreeSpace(std::uint64_t& freeBytes) const;
  static bool GetCurrentFolderFreeSpace(IShellBrowser* shellBrowser, std::uint64_t& freeBytes);

  void MovePosition(const RECT& rect);

 private:
  int PartsCount() const noexcept;

  bool m_bNeedToggle = false;
  bool m_bNeedReset = false;
};
