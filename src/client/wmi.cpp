#include "client/wmi.h"

#include <wbemidl.h>
#include <wrl/client.h>

#include "platform/automation.h"

namespace cx {

using Microsoft::WRL::ComPtr;

bool QueryProcessCommandLine(DWORD pid, std::wstring& commandLine) noexcept {
  try {
    ComPtr<IWbemLocator> locator;
    if (FAILED(::CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                                  reinterpret_cast<void**>(locator.ReleaseAndGetAddressOf())))) {
      return false;
    }

    const corvane::unique_bstr resource(::SysAllocString(L"ROOT\\CIMV2"));
    if (!resource) return false;
    ComPtr<IWbemServices> services;
    if (FAILED(locator->ConnectServer(resource.get(), nullptr, nullptr, nullptr, 0, nullptr, nullptr,
                                      services.ReleaseAndGetAddressOf()))) {
      return false;
    }

    // WMI's providers act under the caller's identity, so the proxy must allow impersonation.
    if (FAILED(::CoSetProxyBlanket(services.Get(), RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                                   RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE))) {
      return false;
    }

    const corvane::unique_bstr language(::SysAllocString(L"WQL"));
    const std::wstring text = L"SELECT CommandLine FROM Win32_Process WHERE ProcessId = " + std::to_wstring(pid);
    const corvane::unique_bstr query(::SysAllocString(text.c_str()));
    if (!language || !query) return false;
    ComPtr<IEnumWbemClassObject> enumerator;
    if (FAILED(services->ExecQuery(language.get(), query.get(), WBEM_FLAG_FORWARD_ONLY, nullptr,
                                   enumerator.ReleaseAndGetAddressOf()))) {
      return false;
    }

    bool found = false;
    std::wstring result;
    for (;;) {
      ComPtr<IWbemClassObject> object;
      ULONG returned = 0;
      // The result of Next is not needed: an enumeration that ends or fails returns no object.
      static_cast<void>(enumerator->Next(static_cast<LONG>(WBEM_INFINITE), 1, object.ReleaseAndGetAddressOf(), &returned));
      if (returned == 0 || !object) break;
      corvane::unique_variant value;
      if (SUCCEEDED(object->Get(L"CommandLine", 0, value.put(), nullptr, nullptr)) && V_VT(&value.get()) == VT_BSTR) {
        const BSTR line = V_BSTR(&value.get());
        result.assign(line != nullptr ? line : L"", ::SysStringLen(line));
        found = true;
      }
    }
    if (found) commandLine = std::move(result);
    return found;
  } catch (...) {
    return false;
  }
}

}  // namespace cx
