#include "accessible_tree.h"

#include <oleacc.h>
#include <wrl/client.h>

#include "platform/automation.h"
#include "platform/handles.h"

namespace {

std::wstring Line(HWND window, int depth) {
  Microsoft::WRL::ComPtr<IAccessible> object;
  if (FAILED(::AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT), IID_PPV_ARGS(&object))) || !object) {
    return std::wstring(static_cast<size_t>(depth) * 2, L' ') + L"(no accessible object)\n";
  }
  VARIANT self{};
  self.vt = VT_I4;
  self.lVal = CHILDID_SELF;
  corvane::unique_variant value;
  std::wstring role = L"?";
  if (SUCCEEDED(object->get_accRole(self, value.put())) && value.get().vt == VT_I4) {
    wchar_t text[64] = {};
    ::GetRoleTextW(static_cast<DWORD>(value.get().lVal), text, 64);
    role = text;
  }
  std::wstring states;
  if (SUCCEEDED(object->get_accState(self, value.put())) && value.get().vt == VT_I4) {
    for (DWORD bit = 1; bit != 0 && bit <= static_cast<DWORD>(STATE_SYSTEM_VALID); bit <<= 1) {
      if ((static_cast<DWORD>(value.get().lVal) & bit) == 0) continue;
      wchar_t text[64] = {};
      ::GetStateTextW(bit, text, 64);
      states += (states.empty() ? L"" : L", ") + std::wstring(text);
    }
  }
  corvane::unique_bstr name, action;
  const std::wstring shown = SUCCEEDED(object->get_accName(self, name.put())) && name ? name.get() : L"";
  const std::wstring press = SUCCEEDED(object->get_accDefaultAction(self, action.put())) && action ? action.get() : L"";
  wchar_t className[64] = {};
  ::GetClassNameW(window, className, 64);
  std::wstring line = std::wstring(static_cast<size_t>(depth) * 2, L' ') + role + L"  \"" + shown + L"\"  [" +
                      (states.empty() ? L"normal" : states) + L"]";
  if (!press.empty()) line += L"  default action: " + press;
  return line + L"  (" + className + L")\n";
}

void Walk(HWND parent, int depth, std::wstring& tree) {
  for (HWND child = ::GetWindow(parent, GW_CHILD); child != nullptr; child = ::GetWindow(child, GW_HWNDNEXT)) {
    if (!::IsWindowVisible(child)) continue;
    tree += Line(child, depth);
    Walk(child, depth + 1, tree);
  }
}

}  // namespace

std::wstring AccessibleTree(HWND root) {
  std::wstring tree = Line(root, 0);
  Walk(root, 1, tree);
  return tree;
}

bool WriteAccessibleTree(HWND root, const std::wstring& path) {
  const std::wstring tree = AccessibleTree(root);
  const int size = ::WideCharToMultiByte(CP_UTF8, 0, tree.data(), static_cast<int>(tree.size()), nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<size_t>(size > 0 ? size : 0), '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, tree.data(), static_cast<int>(tree.size()), bytes.data(), size, nullptr, nullptr);
  const corvane::unique_file file(
      ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  DWORD written = 0;
  return file && ::WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
         written == bytes.size();
}
