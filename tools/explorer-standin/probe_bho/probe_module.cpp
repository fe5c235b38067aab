// The probe's COM server entry points: three classes of the one probe helper object.
#include <windows.h>

#include "platform/class_factory.h"
#include "platform/errors.h"
#include "platform/module_lock.h"
#include "probe_bho.h"
#include "probe_protocol.h"

namespace {

template <const wchar_t* Name, bool Full>
HRESULT CreateProbe(IUnknown* outer, REFIID riid, void** ppv) noexcept {
  if (ppv == nullptr) return E_POINTER;
  *ppv = nullptr;
  if (outer != nullptr) return CLASS_E_NOAGGREGATION;
  return corvane::ComBoundary([&] { return corvane::MakeObject<probe::CProbeBho>(Name, Full)->QueryInterface(riid, ppv); });
}

constexpr wchar_t kFull[] = L"full";
constexpr wchar_t kQuiet[] = L"quiet";
constexpr wchar_t kSpare[] = L"spare";

constexpr corvane::ClassEntry kClasses[] = {
    {&probe::kClsidFull, &CreateProbe<kFull, true>},
    {&probe::kClsidQuiet, &CreateProbe<kQuiet, false>},
    {&probe::kClsidSpare, &CreateProbe<kSpare, false>},
};

}  // namespace

extern "C" HRESULT WINAPI DllGetClassObject(REFCLSID clsid, REFIID riid, void** ppv) {
  return corvane::GetClassObjectFromTable(kClasses, clsid, riid, ppv);
}

extern "C" HRESULT WINAPI DllCanUnloadNow() { return corvane::ModuleLock::Value() == 0 ? S_OK : S_FALSE; }
