#pragma once
// A drag source's data for the namespace view: a file list (CF_HDROP) of the given paths, or no
// file list at all. The namespace tests and the namespace benchmark drop it on the view.
#include <windows.h>
#include <shellapi.h>
#include <shlobj.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "platform/com_object.h"

namespace nshost {

class CFileListData final : public corvane::ComObject<CFileListData, IDataObject> {
 public:
  CFileListData(std::vector<std::wstring> paths, bool offerFiles) : m_paths(std::move(paths)), m_offer(offerFiles) {}

  IFACEMETHODIMP GetData(FORMATETC* format, STGMEDIUM* medium) override {
    if (QueryGetData(format) != S_OK) return DV_E_FORMATETC;
    *medium = STGMEDIUM{};
    medium->tymed = TYMED_HGLOBAL;
    medium->hGlobal = MakeDropFiles();
    return medium->hGlobal != nullptr ? S_OK : E_OUTOFMEMORY;
  }
  IFACEMETHODIMP GetDataHere(FORMATETC*, STGMEDIUM*) override { return E_NOTIMPL; }
  IFACEMETHODIMP QueryGetData(FORMATETC* format) override {
    return m_offer && format != nullptr && format->cfFormat == CF_HDROP && (format->tymed & TYMED_HGLOBAL) != 0
               ? S_OK
               : DV_E_FORMATETC;
  }
  IFACEMETHODIMP GetCanonicalFormatEtc(FORMATETC*, FORMATETC*) override { return E_NOTIMPL; }
  IFACEMETHODIMP SetData(FORMATETC*, STGMEDIUM*, BOOL) override { return E_NOTIMPL; }
  IFACEMETHODIMP EnumFormatEtc(DWORD, IEnumFORMATETC**) override { return E_NOTIMPL; }
  IFACEMETHODIMP DAdvise(FORMATETC*, DWORD, IAdviseSink*, DWORD*) override { return OLE_E_ADVISENOTSUPPORTED; }
  IFACEMETHODIMP DUnadvise(DWORD) override { return OLE_E_ADVISENOTSUPPORTED; }
  IFACEMETHODIMP EnumDAdvise(IEnumSTATDATA**) override { return OLE_E_ADVISENOTSUPPORTED; }

  // DROPFILES followed by the wide paths, each null-terminated, and a final null. The caller owns
  // the memory (a drop target frees it with DragFinish).
  HGLOBAL MakeDropFiles() const {
    std::wstring list;
    for (const std::wstring& path : m_paths) list += path + L'\0';
    list += L'\0';
    const size_t bytes = sizeof(DROPFILES) + list.size() * sizeof(wchar_t);
    HGLOBAL memory = ::GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, bytes);
    if (memory == nullptr) return nullptr;
    auto* header = static_cast<DROPFILES*>(::GlobalLock(memory));
    header->pFiles = sizeof(DROPFILES);
    header->fWide = TRUE;
    std::memcpy(header + 1, list.data(), list.size() * sizeof(wchar_t));
    ::GlobalUnlock(memory);
    return memory;
  }

 private:
  std::vector<std::wstring> m_paths;
  bool m_offer;
};

}  // namespace nshost
