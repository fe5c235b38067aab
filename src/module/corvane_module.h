#pragma once
// The module object: the class table served by DllGetClassObject and the lock count behind
// DllCanUnloadNow.
#include <windows.h>

#include <span>

#include "platform/class_factory.h"

// The type library of the module.
// {d27f4b19-0c86-4e3a-a95b-7e14c3f8602d}
inline constexpr GUID LIBID_CorvaneLib = {0xd27f4b19, 0x0c86, 0x4e3a, {0xa9, 0x5b, 0x7e, 0x14, 0xc3, 0xf8, 0x60, 0x2d}};

class CCorvaneModule {
 public:
  // The classes the module serves; each joins the table when it exists.
  static std::span<const corvane::ClassEntry> ClassTable() noexcept;

  HRESULT DllGetClassObject(REFCLSID clsid, REFIID riid, void** ppv) noexcept;
  HRESULT DllCanUnloadNow() noexcept;
  BOOL DllMain(DWORD reason, LPVOID reserved) noexcept;
};

extern CCorvaneModule g_CorvaneModule;
