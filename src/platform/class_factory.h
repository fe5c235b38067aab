#pragma once
// One class factory for every class of the module, driven by the class table.
#include <windows.h>
#include <unknwn.h>

#include <span>

#include "platform/com_object.h"

namespace corvane {

using ComCreator = HRESULT (*)(IUnknown* outer, REFIID riid, void** ppv) noexcept;

struct ClassEntry {
  const CLSID* clsid;
  ComCreator create;
};

template <class T>
constexpr ClassEntry ClassEntryFor(const CLSID& clsid) noexcept {
  return ClassEntry{&clsid, &CreateComInstance<T>};
}

class ClassFactory final : public ComObject<ClassFactory, IClassFactory> {
 public:
  explicit ClassFactory(ComCreator create) noexcept : m_create(create) {}

  IFACEMETHODIMP CreateInstance(IUnknown* outer, REFIID riid, void** ppv) override;
  IFACEMETHODIMP LockServer(BOOL lock) override;

 private:
  ComCreator m_create;
};

// DllGetClassObject over a table: CLASS_E_CLASSNOTAVAILABLE for a CLSID it does not hold.
HRESULT GetClassObjectFromTable(std::span<const ClassEntry> table, REFCLSID clsid, REFIID riid, void** ppv) noexcept;

}  // namespace corvane
