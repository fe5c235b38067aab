#pragma once
// Browser helper objects, loaded for each window the way Explorer loads them: every CLSID under
// HKLM\SOFTWARE\Microsoft\Windows\CurrentVersion\Explorer\Browser Helper Objects, skipping those
// marked NoExplorer (meant for Internet Explorer only), created in-process on the window thread and
// given the window's browser object as their site.
#include <windows.h>
#include <ocidl.h>
#include <wrl/client.h>

#include <vector>

namespace explorer_standin {

// The registered helper objects, in the registry's enumeration order.
std::vector<CLSID> RegisteredHelperObjects();

class HelperObjects {
 public:
  HelperObjects() = default;
  HelperObjects(const HelperObjects&) = delete;
  HelperObjects& operator=(const HelperObjects&) = delete;
  ~HelperObjects() { Unload(); }

  // Creates each one and calls SetSite(site) at once. An object whose SetSite fails is kept, as
  // Explorer keeps it: it still gets SetSite(NULL) when the window closes.
  void Load(IUnknown* site);
  // SetSite(site) once more on every loaded object, as a host that hands its site out again (or
  // takes it away, with NULL) would; each object's result in load order.
  std::vector<HRESULT> SiteAgain(IUnknown* site);
  // SetSite(NULL) and release, in the order they were loaded.
  void Unload() noexcept;
  size_t Count() const noexcept { return m_objects.size(); }

 private:
  std::vector<Microsoft::WRL::ComPtr<IObjectWithSite>> m_objects;
};

}  // namespace explorer_standin
