#pragma once
// The namespace folder "Halvex同步盘": no items of its own, only a view that shows the login prompt
// and accepts dropped folders. Two classes register it in two places (under This PC and as a
// navigation-pane root); they differ only in their CLSID and parsing path, so one implementation is
// instantiated twice.
#include <windows.h>
#include <shlobj.h>
#include <shobjidl.h>

#include <cstddef>
#include <vector>

#include "corvane_h.h"
#include "platform/com_object.h"
#include "platform/type_lib_dispatch.h"

struct MyShellFolderKind {
  using Interface = IMyShellFolder;
  static const CLSID& Clsid() noexcept { return CLSID_MyShellFolder; }
  static constexpr const wchar_t* kParsingPath =
      L"::{20D04FE0-3AEA-1069-A2D8-08002B30309D}\\::{6e0d3a92-c4b7-4a18-8f25-b93c1d7e5a40}";
};

struct MyShellFolder1Kind {
  using Interface = IMyShellFolder1;
  static const CLSID& Clsid() noexcept { return CLSID_MyShellFolder1; }
  static constexpr const wchar_t* kParsingPath =
      L"::{20D04FE0-3AEA-1069-A2D8-08002B30309D}\\::{6e0d3a92-c4b7-4a18-8f25-b93c1d7e5a42}";
};

template <class Kind>
class CMyShellFolderT
    : public corvane::ComObject<CMyShellFolderT<Kind>, corvane::DualInterface<typename Kind::Interface>,
                                corvane::ComAlias<IDispatch, typename Kind::Interface>, IExplorerPaneVisibility,
                                corvane::ComAlias<IPersist, IPersistFolder2>,
                                corvane::ComAlias<IPersistFolder, IPersistFolder2>, IPersistFolder2,
                                corvane::ComAlias<IShellFolder, IShellFolder2>, IShellFolder2> {
 public:
  static constexpr const wchar_t* kDisplayName = L"Halvex同步盘";

  CMyShellFolderT() = default;

  // IExplorerPaneVisibility
  IFACEMETHODIMP GetPaneState(REFEXPLORERPANE pane, EXPLORERPANESTATE* state) override;

  // IPersist, IPersistFolder, IPersistFolder2
  IFACEMETHODIMP GetClassID(CLSID* clsid) override;
  IFACEMETHODIMP Initialize(PCIDLIST_ABSOLUTE pidl) override;
  IFACEMETHODIMP GetCurFolder(PIDLIST_ABSOLUTE* ppidl) override;

  // IShellFolder
  IFACEMETHODIMP ParseDisplayName(HWND, IBindCtx*, LPWSTR name, ULONG* eaten, PIDLIST_RELATIVE* ppidl,
                                  ULONG* attributes) override;
  IFACEMETHODIMP EnumObjects(HWND, SHCONTF, IEnumIDList** ppenum) override;
  IFACEMETHODIMP BindToObject(PCUIDLIST_RELATIVE, IBindCtx*, REFIID, void**) override;
  IFACEMETHODIMP BindToStorage(PCUIDLIST_RELATIVE, IBindCtx*, REFIID, void**) override;
  IFACEMETHODIMP CompareIDs(LPARAM, PCUIDLIST_RELATIVE, PCUIDLIST_RELATIVE) override;
  IFACEMETHODIMP CreateViewObject(HWND owner, REFIID riid, void** ppv) override;
  IFACEMETHODIMP GetAttributesOf(UINT count, PCUITEMID_CHILD_ARRAY items, SFGAOF* inOut) override;
  IFACEMETHODIMP GetUIObjectOf(HWND, UINT, PCUITEMID_CHILD_ARRAY, REFIID, UINT*, void** ppv) override;
  IFACEMETHODIMP GetDisplayNameOf(PCUITEMID_CHILD pidl, SHGDNF flags, STRRET* name) override;
  IFACEMETHODIMP SetNameOf(HWND, PCUITEMID_CHILD, LPCWSTR, SHGDNF, PITEMID_CHILD*) override;

  // IShellFolder2
  IFACEMETHODIMP GetDefaultSearchGUID(GUID*) override { return E_NOTIMPL; }
  IFACEMETHODIMP EnumSearches(IEnumExtraSearch** ppenum) override;
  IFACEMETHODIMP GetDefaultColumn(DWORD, ULONG* sort, ULONG* display) override;
  IFACEMETHODIMP GetDefaultColumnState(UINT column, SHCOLSTATEF* flags) override;
  IFACEMETHODIMP GetDetailsEx(PCUITEMID_CHILD, const SHCOLUMNID*, VARIANT*) override { return E_NOTIMPL; }
  IFACEMETHODIMP GetDetailsOf(PCUITEMID_CHILD, UINT, SHELLDETAILS*) override { return E_NOTIMPL; }
  IFACEMETHODIMP MapColumnToSCID(UINT, SHCOLUMNID*) override { return E_NOTIMPL; }

 private:
  // The absolute ID list from the last Initialize, as raw bytes; empty until then.
  std::vector<std::byte> m_pidl;
};

using CMyShellFolder = CMyShellFolderT<MyShellFolderKind>;
using CMyShellFolder1 = CMyShellFolderT<MyShellFolder1Kind>;

extern template class CMyShellFolderT<MyShellFolderKind>;
extern template class CMyShellFolderT<MyShellFolder1Kind>;
