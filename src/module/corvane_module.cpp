#include "module/corvane_module.h"

#include "platform/module_lock.h"

CCorvaneModule g_CorvaneModule;

std::span<const corvane::ClassEntry> CCorvaneModule::ClassTable() noexcept {
  // Empty until the helper object, the view and the namespace folders are built.
  return {};
}

HRESULT CCorvaneModule::DllGetClassObject(REFCLSID clsid, REFIID riid, void** ppv) noexcept {
  return corvane::GetClassObjectFromTable(ClassTable(), clsid, riid, ppv);
}

HRESULT CCorvaneModule::DllCanUnloadNow() noexcept {
  return corvane::ModuleLock::Value() == 0 ? S_OK : S_FALSE;
}

BOOL CCorvaneModule::DllMain(DWORD, LPVOID) noexcept {
  // Nothing of the module's own to set up per process or thread.
  return TRUE;
}
