#include "module/registrar.h"

#include <string>
#include <string_view>

#include "platform/errors.h"
#include "platform/handles.h"
#include "platform/module_path.h"

namespace corvane::registrar {

namespace {

using core::rgs::Hive;
using core::rgs::Mark;
using core::rgs::Node;

std::wstring Wide(std::string_view utf8) {
  if (utf8.empty()) return std::wstring();
  const int size = ::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
  std::wstring out(static_cast<size_t>(size > 0 ? size : 0), L'\0');
  ::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), out.data(), size);
  return out;
}

std::string Utf8(std::wstring_view text) {
  if (text.empty()) return std::string();
  const int size =
      ::WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr, nullptr);
  std::string out(static_cast<size_t>(size > 0 ? size : 0), '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), out.data(), size, nullptr, nullptr);
  return out;
}

// An absent key or value is what removal wants, so it is not an error.
HRESULT Forgiving(LSTATUS status) noexcept {
  return (status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND) ? S_OK : HRESULT_FROM_WIN32(status);
}

HRESULT WriteValue(HKEY key, const wchar_t* name, const core::rgs::Value& value) {
  LSTATUS status;
  if (value.type == core::rgs::ValueType::Dword) {
    const DWORD number = value.number;
    status = ::RegSetValueExW(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof number);
  } else {
    const std::wstring text = Wide(value.text);
    status = ::RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                              static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
  }
  return HRESULT_FROM_WIN32(status);
}

HRESULT Register(HKEY parent, const std::vector<Node>& items) {
  for (const Node& item : items) {
    const std::wstring name = Wide(item.name);
    if (item.isNamedValue) {
      CORVANE_RETURN_IF_FAILED(WriteValue(parent, name.c_str(), *item.value));
      continue;
    }
    if (item.mark == Mark::ForceRemove || item.mark == Mark::Delete) {
      CORVANE_RETURN_IF_FAILED(Forgiving(::RegDeleteTreeW(parent, name.c_str())));
      if (item.mark == Mark::Delete) continue;
    }
    unique_hkey key;
    const LSTATUS status = ::RegCreateKeyExW(parent, name.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                             KEY_READ | KEY_WRITE, nullptr, key.put(), nullptr);
    if (status != ERROR_SUCCESS) return HRESULT_FROM_WIN32(status);
    if (item.value) CORVANE_RETURN_IF_FAILED(WriteValue(key.get(), nullptr, *item.value));
    CORVANE_RETURN_IF_FAILED(Register(key.get(), item.children));
  }
  return S_OK;
}

// Removes as much as it can and reports the first failure.
HRESULT Unregister(HKEY parent, const std::vector<Node>& items) {
  HRESULT first = S_OK;
  const auto note = [&first](HRESULT hr) {
    if (FAILED(hr) && SUCCEEDED(first)) first = hr;
  };
  for (const Node& item : items) {
    const std::wstring name = Wide(item.name);
    if (item.isNamedValue) {
      if (item.mark != Mark::NoRemove) note(Forgiving(::RegDeleteValueW(parent, name.c_str())));
      continue;
    }
    if (item.mark == Mark::Delete) continue;
    if (item.mark == Mark::ForceRemove) {
      note(Forgiving(::RegDeleteTreeW(parent, name.c_str())));
      continue;
    }
    unique_hkey key;
    const LSTATUS status = ::RegOpenKeyExW(parent, name.c_str(), 0, KEY_READ | KEY_WRITE, key.put());
    if (status != ERROR_SUCCESS) {
      note(Forgiving(status));
      continue;
    }
    note(Unregister(key.get(), item.children));
    if (item.mark == Mark::NoRemove) continue;
    DWORD subkeys = 0;
    if (::RegQueryInfoKeyW(key.get(), nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr, nullptr, nullptr,
                           nullptr, nullptr, nullptr) != ERROR_SUCCESS) {
      continue;
    }
    key.reset();
    // Another program's subkey keeps a shared key alive; the key's own values go with it.
    if (subkeys == 0) note(Forgiving(::RegDeleteTreeW(parent, name.c_str())));
  }
  return first;
}

HRESULT OpenRoot(Hive hive, bool perUser, unique_hkey& owned, HKEY& root) {
  switch (hive) {
    case Hive::ClassesRoot:
      if (!perUser) {
        root = HKEY_CLASSES_ROOT;
        return S_OK;
      }
      {
        const LSTATUS status = ::RegCreateKeyExW(HKEY_CURRENT_USER, L"Software\\Classes", 0, nullptr,
                                                 REG_OPTION_NON_VOLATILE, KEY_READ | KEY_WRITE, nullptr,
                                                 owned.put(), nullptr);
        if (status != ERROR_SUCCESS) return HRESULT_FROM_WIN32(status);
      }
      root = owned.get();
      return S_OK;
    case Hive::CurrentUser: root = HKEY_CURRENT_USER; return S_OK;
    case Hive::LocalMachine: root = HKEY_LOCAL_MACHINE; return S_OK;
    case Hive::Users: root = HKEY_USERS; return S_OK;
    case Hive::CurrentConfig: root = HKEY_CURRENT_CONFIG; return S_OK;
  }
  return E_INVALIDARG;
}

HRESULT Run(const core::rgs::Script& script, bool registering, bool perUser) {
  HRESULT first = S_OK;
  for (const core::rgs::Root& root : script.roots) {
    unique_hkey owned;
    HKEY hive = nullptr;
    HRESULT hr = OpenRoot(root.hive, perUser, owned, hive);
    if (SUCCEEDED(hr)) hr = registering ? Register(hive, root.children) : Unregister(hive, root.children);
    if (FAILED(hr)) {
      if (registering) return hr;
      if (SUCCEEDED(first)) first = hr;
    }
  }
  return first;
}

}  // namespace

HRESULT RunScript(const core::rgs::Script& script, bool registering, bool perUser) {
  const HRESULT hr = Run(script, registering, perUser);
  // A registration that stopped half-way takes back what it wrote, as the ATL registrar does.
  if (FAILED(hr) && registering) Run(script, false, perUser);
  return hr;
}

HRESULT RunScriptResource(HMODULE module, UINT id, bool registering, bool perUser) {
  const HRSRC found = ::FindResourceW(module, MAKEINTRESOURCEW(id), L"REGISTRY");
  CORVANE_RETURN_LAST_ERROR_IF_FALSE(found != nullptr);
  const HGLOBAL loaded = ::LoadResource(module, found);
  CORVANE_RETURN_LAST_ERROR_IF_FALSE(loaded != nullptr);
  const void* bytes = ::LockResource(loaded);
  CORVANE_RETURN_LAST_ERROR_IF_FALSE(bytes != nullptr);
  std::string_view text(static_cast<const char*>(bytes), ::SizeofResource(module, found));
  // Resource compilers may pad the data with zeros.
  while (!text.empty() && text.back() == '\0') text.remove_suffix(1);

  const std::wstring modulePath = ThisModulePath();
  if (modulePath.empty()) return HresultFromLastError();
  const core::rgs::Replacements replacements{{"MODULE", Utf8(modulePath)}};
  const std::optional<core::rgs::Script> script = core::rgs::Parse(text, replacements);
  if (!script) return HRESULT_FROM_WIN32(ERROR_BAD_FORMAT);
  return RunScript(*script, registering, perUser);
}

}  // namespace corvane::registrar
