#include "module/corvane_module.h"

#include "explorer/title_bar_bho.h"
#include "platform/module_lock.h"

CCorvaneModule g_CorvaneModule;

std::span<const corvane::ClassEntry> CCorvaneModule::ClassTable() noexcept {
  // The view and the namespace folders join the helper object when they are built.
  static const corvane::ClassEntry table[] = {
      corvane::ClassEntryFor<CTitleBarBHO>(CLSID_TitleBarBHO),
  };
  return table;
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
