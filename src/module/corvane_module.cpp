#include "module/corvane_module.h"

#include "explorer/title_bar_bho.h"
#include "namespace/my_shell_folder.h"
#include "namespace/my_shell_view.h"
#include "platform/module_lock.h"

CCorvaneModule g_CorvaneModule;

std::span<const corvane::ClassEntry> CCorvaneModule::ClassTable() noexcept {
  static const corvane::ClassEntry table[] = {
      corvane::ClassEntryFor<CTitleBarBHO>(CLSID_TitleBarBHO),
      corvane::ClassEntryFor<CMyShellView>(CLSID_MyShellView),
      corvane::ClassEntryFor<CMyShellFolder>(CLSID_MyShellFolder),
      corvane::ClassEntryFor<CMyShellFolder1>(CLSID_MyShellFolder1),
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
