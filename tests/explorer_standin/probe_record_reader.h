#pragma once
// Reads what the probe helper object wrote (probe_protocol.h).
#include <windows.h>

#include <initializer_list>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace standintest {

struct ProbeEntry {
  unsigned long sequence = 0;
  DWORD thread = 0;
  std::wstring event;
  std::map<std::wstring, std::wstring> fields;

  // The field's value, or "(missing)".
  std::wstring operator[](const std::wstring& key) const;
  bool Matches(std::initializer_list<std::pair<const wchar_t*, const wchar_t*>> match) const;
};

std::vector<ProbeEntry> ReadProbeRecord(const std::wstring& path);

// The entries of one event whose fields have the given values, in record order.
std::vector<ProbeEntry> Select(const std::vector<ProbeEntry>& entries, const std::wstring& event,
                               std::initializer_list<std::pair<const wchar_t*, const wchar_t*>> match = {});

// Handles as the probe writes them.
std::wstring Decimal(HWND window);

}  // namespace standintest
