#pragma once
// The parts of IWebBrowser2 that the stand-in does not offer: every method answers E_NOTIMPL,
// apart from get_HWND and Navigate2, which the browser object implements. IDispatch answers
// that there is no type information and no member, which is what a caller without the type
// library sees from a late-bound call it cannot make.
#include <windows.h>
#include <exdisp.h>

namespace explorer_standin {

class WebBrowser2Stubs : public IWebBrowser2 {
 public:
  // IDispatch
  IFACEMETHODIMP GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    *count = 0;
    return S_OK;
  }
  IFACEMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
    if (info != nullptr) *info = nullptr;
    return E_NOTIMPL;
  }
  IFACEMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return DISP_E_UNKNOWNNAME; }
  IFACEMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    return DISP_E_MEMBERNOTFOUND;
  }

  // IWebBrowser
  IFACEMETHODIMP GoBack() override { return E_NOTIMPL; }
  IFACEMETHODIMP GoForward() override { return E_NOTIMPL; }
  IFACEMETHODIMP GoHome() override { return E_NOTIMPL; }
  IFACEMETHODIMP GoSearch() override { return E_NOTIMPL; }
  IFACEMETHODIMP Navigate(BSTR, VARIANT*, VARIANT*, VARIANT*, VARIANT*) override { return E_NOTIMPL; }
  IFACEMETHODIMP Refresh() override { return E_NOTIMPL; }
  IFACEMETHODIMP Refresh2(VARIANT*) override { return E_NOTIMPL; }
  IFACEMETHODIMP Stop() override { return E_NOTIMPL; }
  IFACEMETHODIMP get_Application(IDispatch**) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_Parent(IDispatch**) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_Container(IDispatch**) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_Document(IDispatch**) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_TopLevelContainer(VARIANT_BOOL*) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_Type(BSTR*) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_Left(LONG*) override { return E_NOTIMPL; }
  IFACEMETHODIMP put_Left(LONG) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_Top(LONG*) override { return E_NOTIMPL; }
  IFACEMETHODIMP put_Top(LONG) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_Width(LONG*) override { return E_NOTIMPL; }
  IFACEMETHODIMP put_Width(LONG) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_Height(LONG*) override { return E_NOTIMPL; }
  IFACEMETHODIMP put_Height(LONG) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_LocationName(BSTR*) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_LocationURL(BSTR*) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_Busy(VARIANT_BOOL*) override { return E_NOTIMPL; }

  // IWebBrowserApp (get_HWND is the browser object's)
  IFACEMETHODIMP Quit() override { return E_NOTIMPL; }
  IFACEMETHODIMP ClientToWindow(int*, int*) override { return E_NOTIMPL; }
  IFACEMETHODIMP PutProperty(BSTR, VARIANT) override { return E_NOTIMPL; }
  IFACEMETHODIMP GetProperty(BSTR, VARIANT*) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_Name(BSTR*) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_FullName(BSTR*) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_Path(BSTR*) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_Visible(VARIANT_BOOL*) override { return E_NOTIMPL; }
  IFACEMETHODIMP put_Visible(VARIANT_BOOL) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_StatusBar(VARIANT_BOOL*) override { return E_NOTIMPL; }
  IFACEMETHODIMP put_StatusBar(VARIANT_BOOL) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_StatusText(BSTR*) override { return E_NOTIMPL; }
  IFACEMETHODIMP put_StatusText(BSTR) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_ToolBar(int*) override { return E_NOTIMPL; }
  IFACEMETHODIMP put_ToolBar(int) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_MenuBar(VARIANT_BOOL*) override { return E_NOTIMPL; }
  IFACEMETHODIMP put_MenuBar(VARIANT_BOOL) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_FullScreen(VARIANT_BOOL*) override { return E_NOTIMPL; }
  IFACEMETHODIMP put_FullScreen(VARIANT_BOOL) override { return E_NOTIMPL; }

  // IWebBrowser2 (Navigate2 is the browser object's)
  IFACEMETHODIMP QueryStatusWB(OLECMDID, OLECMDF*) override { return E_NOTIMPL; }
  IFACEMETHODIMP ExecWB(OLECMDID, OLECMDEXECOPT, VARIANT*, VARIANT*) override { return E_NOTIMPL; }
  IFACEMETHODIMP ShowBrowserBar(VARIANT*, VARIANT*, VARIANT*) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_ReadyState(READYSTATE*) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_Offline(VARIANT_BOOL*) override { return E_NOTIMPL; }
  IFACEMETHODIMP put_Offline(VARIANT_BOOL) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_Silent(VARIANT_BOOL*) override { return E_NOTIMPL; }
  IFACEMETHODIMP put_Silent(VARIANT_BOOL) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_RegisterAsBrowser(VARIANT_BOOL*) override { return E_NOTIMPL; }
  IFACEMETHODIMP put_RegisterAsBrowser(VARIANT_BOOL) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_RegisterAsDropTarget(VARIANT_BOOL*) override { return E_NOTIMPL; }
  IFACEMETHODIMP put_RegisterAsDropTarget(VARIANT_BOOL) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_TheaterMode(VARIANT_BOOL*) override { return E_NOTIMPL; }
  IFACEMETHODIMP put_TheaterMode(VARIANT_BOOL) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_AddressBar(VARIANT_BOOL*) override { return E_NOTIMPL; }
  IFACEMETHODIMP put_AddressBar(VARIANT_BOOL) override { return E_NOTIMPL; }
  IFACEMETHODIMP get_Resizable(VARIANT_BOOL*) override { return E_NOTIMPL; }
  IFACEMETHODIMP put_Resizable(VARIANT_BOOL) override { return E_NOTIMPL; }

 protected:
  WebBrowser2Stubs() = default;
  ~WebBrowser2Stubs() = default;
};

}  // namespace explorer_standin
