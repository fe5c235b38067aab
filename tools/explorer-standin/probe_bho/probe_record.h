#pragma once
// Appends the probe's observations to the record file (probe_protocol.h), one line each, opened
// and closed per line so that the test can read the file while the stand-in runs.
#include <windows.h>

#include <string>
#include <utility>
#include <vector>

namespace probe {

using Field = std::pair<const wchar_t*, std::wstring>;

void Record(const wchar_t* event, const std::vector<Field>& fields) noexcept;

std::wstring Hex(HRESULT hr);
std::wstring Decimal(const void* handle);
std::wstring ClassOf(HWND window);

}  // namespace probe
