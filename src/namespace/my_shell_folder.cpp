#include "namespace/my_shell_folder.h"

#include <cstring>
#include <cwchar>

#include "namespace/my_shell_view.h"
#include "platform/errors.h"

namespace {

// The folder's own columns: text, shown by default.
constexpr SHCOLSTATEF kColumnState = SHCOLSTATE_TYPE_STR | SHCOLSTATE_ONBYDEFAULT;
// Browsable, file-system ancestor, folder, file system, has subfolders: what Explorer needs to open
// the folder and show it in the tree.
constexpr SFGAOF kFolderAttributes = 0xF8000000;

// EP_Ribbon; spelled out so no GUID library has to provide it.
constexpr GUID kRibbonPane = {0xd27524a8, 0xc9f2, 0x4834, {0xa1, 0x06, 0xdf, 0x88, 0x89, 0xfd, 0x4f, 0x37}};
// The ribbon's state as the folder has always answered it. Meant as "off by default, forced", but in
// the SDK's numbering 0x1 is EPS_DEFAULT_ON (EPS_DEFAULT_OFF is 0x2); Explorer has been given this
// exact value, so it stays until the product decides otherwise.
constexpr EXPLORERPANESTATE kRibbonState = 0x20001;

bool IsChildItem(PCUIDLIST_RELATIVE pidl) noexcept { return pidl != nullptr && pidl->mkid.cb != 0; }

}  // namespace

template <class Kind>
IFACEMETHODIMP CMyShellFolderT<Kind>::GetPaneState(REFEXPLORERPANE pane, EXPLORERPANESTATE* state) {
  // The ribbon is the only pane the folder has a say on; the others keep Explorer's choice.
  if (IsEqualGUID(pane, kRibbonPane) && state != nullptr) *state = kRibbonState;
  return S_OK;
}

template <class Kind>
IFACEMETHODIMP CMyShellFolderT<Kind>::GetClassID(CLSID* clsid) {
  if (clsid == nullptr) return E_POINTER;
  *clsid = Kind::Clsid();
  return S_OK;
}

template <class Kind>
IFACEMETHODIMP CMyShellFolderT<Kind>::Initialize(PCIDLIST_ABSOLUTE pidl) {
  try {
    m_pidl.clear();
    if (pidl == nullptr) return S_OK;
    const auto* bytes = reinterpret_cast<const std::byte*>(pidl);
    m_pidl.assign(bytes, bytes + ::ILGetSize(pidl));
    return S_OK;
  } catch (...) {
    m_pidl.clear();
    return E_FAIL;
  }
}

template <class Kind>
IFACEMETHODIMP CMyShellFolderT<Kind>::GetCurFolder(PIDLIST_ABSOLUTE* ppidl) {
  if (ppidl == nullptr) return E_POINTER;
  *ppidl = nullptr;
  if (m_pidl.empty()) return S_FALSE;
  void* copy = ::CoTaskMemAlloc(m_pidl.size());
  CORVANE_RETURN_IF_NULL_ALLOC(copy);
  std::memcpy(copy, m_pidl.data(), m_pidl.size());
  *ppidl = static_cast<PIDLIST_ABSOLUTE>(copy);
  return S_OK;
}

template <class Kind>
IFACEMETHODIMP CMyShellFolderT<Kind>::ParseDisplayName(HWND, IBindCtx*, LPWSTR name, ULONG*, PIDLIST_RELATIVE* ppidl,
                                                       ULONG*) {
  // Any name goes to the desktop's parser; eaten and attributes stay as the caller gave them.
  const HRESULT hr = ::SHParseDisplayName(name, nullptr, reinterpret_cast<PIDLIST_ABSOLUTE*>(ppidl), 0, nullptr);
  return FAILED(hr) ? E_INVALIDARG : S_OK;
}

template <class Kind>
IFACEMETHODIMP CMyShellFolderT<Kind>::EnumObjects(HWND, SHCONTF, IEnumIDList** ppenum) {
  if (ppenum == nullptr) return E_POINTER;
  *ppenum = nullptr;
  return E_NOTIMPL;
}

// BindToObject, BindToStorage and CompareIDs answer S_OK and write nothing: the folder has no
// items, and the shell has always been given this answer, out pointer untouched.
template <class Kind>
IFACEMETHODIMP CMyShellFolderT<Kind>::BindToObject(PCUIDLIST_RELATIVE, IBindCtx*, REFIID, void**) {
  return S_OK;
}

template <class Kind>
IFACEMETHODIMP CMyShellFolderT<Kind>::BindToStorage(PCUIDLIST_RELATIVE, IBindCtx*, REFIID, void**) {
  return S_OK;
}

template <class Kind>
IFACEMETHODIMP CMyShellFolderT<Kind>::CompareIDs(LPARAM, PCUIDLIST_RELATIVE, PCUIDLIST_RELATIVE) {
  return S_OK;
}

template <class Kind>
IFACEMETHODIMP CMyShellFolderT<Kind>::CreateViewObject(HWND, REFIID riid, void** ppv) {
  if (ppv == nullptr) return E_POINTER;
  *ppv = nullptr;
  // Drop target, context menu, category provider and the rest are refused: the view does it all.
  return corvane::ComBoundary([&]() -> HRESULT {
    if (riid != IID_IShellView) return E_NOTIMPL;
    const Microsoft::WRL::ComPtr<CMyShellView> view = corvane::MakeObject<CMyShellView>();
    return view->QueryInterface(riid, ppv);
  });
}

template <class Kind>
IFACEMETHODIMP CMyShellFolderT<Kind>::GetAttributesOf(UINT count, PCUITEMID_CHILD_ARRAY items, SFGAOF* inOut) {
  if (inOut == nullptr) return E_POINTER;
  if (count != 0 && items != nullptr && IsChildItem(items[0])) return S_OK;
  *inOut &= kFolderAttributes;
  return S_OK;
}

template <class Kind>
IFACEMETHODIMP CMyShellFolderT<Kind>::GetUIObjectOf(HWND, UINT, PCUITEMID_CHILD_ARRAY, REFIID, UINT*, void** ppv) {
  if (ppv != nullptr) *ppv = nullptr;
  return E_NOINTERFACE;
}

template <class Kind>
IFACEMETHODIMP CMyShellFolderT<Kind>::GetDisplayNameOf(PCUITEMID_CHILD pidl, SHGDNF flags, STRRET* name) {
  if (name == nullptr) return E_INVALIDARG;
  // Only the folder itself has a name.
  if (IsChildItem(pidl)) return E_INVALIDARG;
  const wchar_t* text = (flags & SHGDN_FORPARSING) != 0 ? Kind::kParsingPath : kDisplayName;
  const size_t length = std::wcslen(text);
  auto* copy = static_cast<wchar_t*>(::CoTaskMemAlloc((length + 1) * sizeof(wchar_t)));
  CORVANE_RETURN_IF_NULL_ALLOC(copy);
  std::memcpy(copy, text, (length + 1) * sizeof(wchar_t));
  name->uType = STRRET_WSTR;
  name->pOleStr = copy;
  return S_OK;
}

template <class Kind>
IFACEMETHODIMP CMyShellFolderT<Kind>::SetNameOf(HWND, PCUITEMID_CHILD, LPCWSTR, SHGDNF, PITEMID_CHILD*) {
  return S_OK;
}

template <class Kind>
IFACEMETHODIMP CMyShellFolderT<Kind>::EnumSearches(IEnumExtraSearch** ppenum) {
  if (ppenum != nullptr) *ppenum = nullptr;
  return E_NOINTERFACE;
}

template <class Kind>
IFACEMETHODIMP CMyShellFolderT<Kind>::GetDefaultColumn(DWORD, ULONG* sort, ULONG* display) {
  if (sort == nullptr || display == nullptr) return E_POINTER;
  *sort = 0;
  *display = 0;
  return S_OK;
}

template <class Kind>
IFACEMETHODIMP CMyShellFolderT<Kind>::GetDefaultColumnState(UINT column, SHCOLSTATEF* flags) {
  if (column > 2) return E_INVALIDARG;
  if (flags == nullptr) return E_POINTER;
  *flags = kColumnState;
  return S_OK;
}

template class CMyShellFolderT<MyShellFolderKind>;
template class CMyShellFolderT<MyShellFolder1Kind>;
