#include "helper_objects.h"

#include <iterator>
#include <string>

#include "platform/handles.h"
#include "standin_log.h"

namespace explorer_standin {

namespace {

constexpr wchar_t kHelperObjectsKey[] = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Browser Helper Objects";

// A NoExplorer value of any type keeps the object out of Explorer, unless it is the number 0.
bool MarkedNoExplorer(HKEY key, const wchar_t* subkey) {
  DWORD type = 0, number = 0, size = sizeof(number);
  const LSTATUS status = ::RegGetValueW(key, subkey, L"NoExplorer", RRF_RT_ANY | RRF_NOEXPAND, &type, nullptr, &size);
  if (status != ERROR_SUCCESS && status != ERROR_MORE_DATA) return false;
  if (type != REG_DWORD) return true;
  size = sizeof(number);
  return ::RegGetValueW(key, subkey, L"NoExplorer", RRF_RT_REG_DWORD, nullptr, &number, &size) != ERROR_SUCCESS || number != 0;
}

std::wstring ClsidText(const CLSID& clsid) {
  wchar_t text[64] = {};
  ::StringFromGUID2(clsid, text, static_cast<int>(std::size(text)));
  return text;
}

}  // namespace

std::vector<CLSID> RegisteredHelperObjects() {
  std::vector<CLSID> found;
  corvane::unique_hkey key;
  if (::RegOpenKeyExW(HKEY_LOCAL_MACHINE, kHelperObjectsKey, 0, KEY_READ, key.put()) != ERROR_SUCCESS) return found;
  for (DWORD index = 0;; ++index) {
    wchar_t name[256];
    DWORD length = static_cast<DWORD>(std::size(name));
    const LSTATUS status = ::RegEnumKeyExW(key.get(), index, name, &length, nullptr, nullptr, nullptr, nullptr);
    if (status == ERROR_NO_MORE_ITEMS) break;
    if (status != ERROR_SUCCESS) continue;
    CLSID clsid{};
    if (FAILED(::CLSIDFromString(name, &clsid))) {
      Log(L"helper object key \"" + std::wstring(name) + L"\" is not a CLSID; skipped");
      continue;
    }
    if (MarkedNoExplorer(key.get(), name)) {
      Log(L"helper object " + std::wstring(name) + L" is marked NoExplorer; skipped");
      continue;
    }
    found.push_back(clsid);
  }
  return found;
}

void HelperObjects::Load(IUnknown* site) {
  for (const CLSID& clsid : RegisteredHelperObjects()) {
    Microsoft::WRL::ComPtr<IObjectWithSite> object;
    const HRESULT created = ::CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(object.GetAddressOf()));
    if (FAILED(created) || !object) {
      Log(L"helper object " + ClsidText(clsid) + L": CoCreateInstance " + HexResult(created));
      continue;
    }
    m_objects.push_back(object);
    const HRESULT sited = object->SetSite(site);
    Log(L"helper object " + ClsidText(clsid) + L": SetSite " + HexResult(sited));
  }
}

std::vector<HRESULT> HelperObjects::SiteAgain(IUnknown* site) {
  std::vector<HRESULT> results;
  for (const Microsoft::WRL::ComPtr<IObjectWithSite>& object : m_objects) {
    results.push_back(object->SetSite(site));
    Log(L"helper object " + HandleText(object.Get()) + L": SetSite again " + HexResult(results.back()));
  }
  return results;
}

void HelperObjects::Unload() noexcept {
  try {
    for (Microsoft::WRL::ComPtr<IObjectWithSite>& object : m_objects) {
      const HRESULT hr = object->SetSite(nullptr);
      Log(L"helper object " + HandleText(object.Get()) + L": SetSite(NULL) " + HexResult(hr));
      object.Reset();
    }
    m_objects.clear();
  } catch (...) {
  }
}

}  // namespace explorer_standin
