#pragma once
// The probe helper object: what an add-in sees of the stand-in, written down. When sited it asks
// the site for the web browser and the shell browser, notes the window tree as it stands, installs
// a WH_CBT hook on its thread that records every window created there, advises DWebBrowserEvents2
// and subclasses the frame; at each NavigateComplete2 it records the event's arguments;
// at OnQuit it unadvises; at SetSite(NULL) it undoes the rest.
#include <windows.h>
#include <exdisp.h>
#include <ocidl.h>
#include <shobjidl.h>
#include <wrl/client.h>

#include <string>

#include "platform/com_object.h"
#include "platform/handles.h"
#include "probe_sink.h"

namespace probe {

class CProbeBho final : public corvane::ComObject<CProbeBho, IObjectWithSite> {
 public:
  // name: which of the probe's classes this is; full: do the whole round, or only record life.
  CProbeBho(const wchar_t* name, bool full);
  ~CProbeBho() override;

  IFACEMETHODIMP SetSite(IUnknown* site) override;
  IFACEMETHODIMP GetSite(REFIID riid, void** site) override;

  // From the sink, on the window thread.
  void OnEvent(DISPID id, IDispatch* source, const std::wstring& url);

 private:
  void Attach();
  void Detach();
  void Unadvise(const wchar_t* when);
  static LRESULT CALLBACK FrameProc(HWND, UINT, WPARAM, LPARAM, UINT_PTR, DWORD_PTR self) noexcept;
  static LRESULT CALLBACK HookProc(int code, WPARAM wParam, LPARAM lParam) noexcept;

  const std::wstring m_name;
  const bool m_full;
  Microsoft::WRL::ComPtr<IUnknown> m_site;
  Microsoft::WRL::ComPtr<IWebBrowser2> m_web;
  Microsoft::WRL::ComPtr<IShellBrowser> m_shell;
  Microsoft::WRL::ComPtr<CProbeSink> m_sink;
  DWORD m_cookie = 0;
  corvane::unique_hhook m_hook;
  HWND m_frame = nullptr;
  bool m_subclassed = false;
};

}  // namespace probe
