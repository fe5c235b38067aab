#pragma once
// The probe's DWebBrowserEvents2 sink: records every event with the shape of its arguments and
// hands it to its helper object, which it does not own.
#include <windows.h>
#include <exdisp.h>

#include "platform/com_object.h"

namespace probe {

class CProbeBho;

class CProbeSink final : public corvane::ComObject<CProbeSink, DWebBrowserEvents2, corvane::ComAlias<IDispatch, DWebBrowserEvents2>> {
 public:
  explicit CProbeSink(CProbeBho* owner) noexcept : m_owner(owner) {}
  // The helper object is going; later events are recorded but go nowhere.
  void Disconnect() noexcept { m_owner = nullptr; }

  IFACEMETHODIMP GetTypeInfoCount(UINT* count) override;
  IFACEMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo** info) override;
  IFACEMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return DISP_E_UNKNOWNNAME; }
  IFACEMETHODIMP Invoke(DISPID id, REFIID riid, LCID, WORD flags, DISPPARAMS* params, VARIANT* result, EXCEPINFO*, UINT*) override;

 private:
  CProbeBho* m_owner;
};

}  // namespace probe
