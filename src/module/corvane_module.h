#pragma once
// The module object: the class table served by DllGetClassObject and the lock count behind
// DllCanUnloadNow.
#include <windows.h>

#include <span>

#include "platform/class_factory.h"

class CCorvaneModule {
 public:
  // The classes the module serves; each joins the table when it exists.
  static std::span<const corvane::ClassEntry> ClassTable() noexcept;

  HRESULT DllGetClassObject(REFCLSID clsid, REFIID riid, void** ppv) noexcept;
  HRESULT DllCanUnloadNow() noexcept;
  BOOL DllMain(DWORD reason, LPVOID reserved) noexcept;
};

extern CCorvaneModule g_CorvaneModule;
