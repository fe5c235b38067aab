#include "platform/class_factory.h"

#include "platform/errors.h"
#include "platform/module_lock.h"

namespace corvane {

IFACEMETHODIMP ClassFactory::CreateInstance(IUnknown* outer, REFIID riid, void** ppv) {
  return m_create(outer, riid, ppv);
}

IFACEMETHODIMP ClassFactory::LockServer(BOOL lock) {
  if (lock) {
    ModuleLock::Lock();
  } else {
    ModuleLock::Unlock();
  }
  return S_OK;
}

HRESULT GetClassObjectFromTable(std::span<const ClassEntry> table, REFCLSID clsid, REFIID riid, void** ppv) noexcept {
  if (ppv == nullptr) return E_POINTER;
  *ppv = nullptr;
  return ComBoundary([&]() -> HRESULT {
    for (const ClassEntry& entry : table) {
      if (*entry.clsid == clsid) {
        auto factory = MakeObject<ClassFactory>(entry.create);
        return factory->QueryInterface(riid, ppv);
      }
    }
    return CLASS_E_CLASSNOTAVAILABLE;
  });
}

}  // namespace corvane
