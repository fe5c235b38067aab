#include "shell_view.h"

#include <utility>

namespace explorer_standin {

namespace {

corvane::unique_pidl Clone(PCIDLIST_ABSOLUTE pidl) {
  return corvane::unique_pidl(pidl != nullptr ? ::ILCloneFull(pidl) : nullptr);
}

}  // namespace

CShownFolder::CShownFolder(corvane::unique_pidl pidl) noexcept : m_pidl(std::move(pidl)) {
  m_marshaler.Aggregate(Identity());
}

HRESULT CShownFolder::QueryInterface(REFIID riid, void** ppv) {
  return m_marshaler.Query(ComObject::QueryInterface(riid, ppv), riid, ppv);
}

HRESULT CShownFolder::GetClassID(CLSID* clsid) {
  if (clsid != nullptr) *clsid = CLSID_NULL;
  return E_NOTIMPL;
}

HRESULT CShownFolder::Initialize(PCIDLIST_ABSOLUTE) {
  // The folder is fixed when the view is made; it cannot be pointed elsewhere.
  return E_NOTIMPL;
}

HRESULT CShownFolder::GetCurFolder(PIDLIST_ABSOLUTE* pidl) {
  if (pidl == nullptr) return E_POINTER;
  *pidl = Clone(m_pidl.get()).release();
  return *pidl != nullptr ? S_OK : E_OUTOFMEMORY;
}

CShellView::CShellView(corvane::unique_pidl pidl, HWND window) : m_pidl(std::move(pidl)), m_window(window) {
  m_folder = corvane::MakeObject<CShownFolder>(Clone(m_pidl.get()));
  m_marshaler.Aggregate(Identity());
}

HRESULT CShellView::QueryInterface(REFIID riid, void** ppv) {
  return m_marshaler.Query(ComObject::QueryInterface(riid, ppv), riid, ppv);
}

HRESULT CShellView::GetWindow(HWND* window) {
  if (window == nullptr) return E_POINTER;
  *window = m_window;
  return m_window != nullptr ? S_OK : E_FAIL;
}

HRESULT CShellView::CreateViewWindow(IShellView*, LPCFOLDERSETTINGS, IShellBrowser*, RECT*, HWND* window) {
  if (window != nullptr) *window = nullptr;
  return E_NOTIMPL;
}

HRESULT CShellView::GetItemObject(UINT, REFIID, void** ppv) {
  if (ppv != nullptr) *ppv = nullptr;
  return E_NOTIMPL;
}

HRESULT CShellView::GetFolder(REFIID riid, void** ppv) {
  if (ppv == nullptr) return E_POINTER;
  *ppv = nullptr;
  return m_folder->QueryInterface(riid, ppv);
}

HRESULT CShellView::Items(UINT, REFIID, void** ppv) {
  if (ppv != nullptr) *ppv = nullptr;
  return E_NOTIMPL;
}

}  // namespace explorer_standin
