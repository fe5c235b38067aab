#include "registry_tree.h"

#include <cstdio>
#include <vector>

#include "platform/handles.h"

namespace regtest {

namespace {

std::wstring Render(DWORD type, const std::vector<BYTE>& data) {
  if (type == REG_SZ) {
    std::wstring text(reinterpret_cast<const wchar_t*>(data.data()), data.size() / sizeof(wchar_t));
    // The stored size counts the terminating zero; a value written without one shows as it is.
    if (!text.empty() && text.back() == L'\0') text.pop_back();
    return Sz(text);
  }
  if (type == REG_DWORD && data.size() == sizeof(DWORD)) return Dword(*reinterpret_cast<const DWORD*>(data.data()));
  return L"type" + std::to_wstring(type) + L" size" + std::to_wstring(data.size());
}

void ReadKey(HKEY key, const std::wstring& path, Tree& tree) {
  Values& values = tree[path];
  for (DWORD i = 0;; ++i) {
    wchar_t name[16384];
    DWORD nameLength = 16384;
    DWORD type = 0;
    DWORD size = 0;
    if (::RegEnumValueW(key, i, name, &nameLength, nullptr, &type, nullptr, &size) != ERROR_SUCCESS) break;
    std::vector<BYTE> data(size);
    nameLength = 16384;
    ::RegEnumValueW(key, i, name, &nameLength, nullptr, &type, data.data(), &size);
    data.resize(size);
    values[Upper(name)] = Render(type, data);
  }
  for (DWORD i = 0;; ++i) {
    wchar_t name[256];
    DWORD nameLength = 256;
    if (::RegEnumKeyExW(key, i, name, &nameLength, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
    corvane::unique_hkey child;
    if (::RegOpenKeyExW(key, name, 0, KEY_READ, child.put()) != ERROR_SUCCESS) continue;
    ReadKey(child.get(), path.empty() ? Upper(name) : path + L"\\" + Upper(name), tree);
  }
}

}  // namespace

std::wstring Sz(const std::wstring& text) { return L"sz:" + text; }

std::wstring Dword(DWORD value) {
  wchar_t text[16] = {};
  std::swprintf(text, 16, L"0x%08lX", static_cast<unsigned long>(value));
  return L"dword:" + std::wstring(text);
}

std::wstring Upper(std::wstring text) {
  for (wchar_t& c : text) {
    if (c >= L'a' && c <= L'z') c = static_cast<wchar_t>(c - L'a' + L'A');
  }
  return text;
}

std::optional<Tree> ReadTree(HKEY hive, const std::wstring& path) {
  corvane::unique_hkey key;
  if (::RegOpenKeyExW(hive, path.c_str(), 0, KEY_READ, key.put()) != ERROR_SUCCESS) return std::nullopt;
  Tree tree;
  ReadKey(key.get(), L"", tree);
  return tree;
}

std::optional<std::wstring> ReadValue(HKEY hive, const std::wstring& path, const std::wstring& name) {
  const std::optional<Tree> tree = ReadTree(hive, path);
  if (!tree) return std::nullopt;
  const Values& values = tree->at(L"");
  const auto found = values.find(Upper(name));
  if (found == values.end()) return std::nullopt;
  return found->second;
}

bool KeyExists(HKEY hive, const std::wstring& path) {
  corvane::unique_hkey key;
  return ::RegOpenKeyExW(hive, path.c_str(), 0, KEY_READ, key.put()) == ERROR_SUCCESS;
}

}  // namespace regtest
