#include "probe_record_reader.h"

#include "platform/handles.h"

namespace standintest {

namespace {

std::vector<std::wstring> Split(const std::wstring& line, wchar_t separator) {
  std::vector<std::wstring> parts;
  size_t start = 0;
  for (;;) {
    const size_t end = line.find(separator, start);
    parts.push_back(line.substr(start, end == std::wstring::npos ? std::wstring::npos : end - start));
    if (end == std::wstring::npos) return parts;
    start = end + 1;
  }
}

}  // namespace

std::wstring ProbeEntry::operator[](const std::wstring& key) const {
  const auto found = fields.find(key);
  return found == fields.end() ? L"(missing)" : found->second;
}

bool ProbeEntry::Matches(std::initializer_list<std::pair<const wchar_t*, const wchar_t*>> match) const {
  for (const auto& [key, value] : match) {
    if ((*this)[key] != value) return false;
  }
  return true;
}

std::vector<ProbeEntry> ReadProbeRecord(const std::wstring& path) {
  std::vector<ProbeEntry> entries;
  std::string bytes;
  const corvane::unique_file file(::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                                nullptr, OPEN_EXISTING, 0, nullptr));
  if (!file) return entries;
  char buffer[4096];
  DWORD read = 0;
  while (::ReadFile(file.get(), buffer, sizeof buffer, &read, nullptr) && read > 0) bytes.append(buffer, read);
  const int size = ::MultiByteToWideChar(CP_UTF8, 0, bytes.data(), static_cast<int>(bytes.size()), nullptr, 0);
  std::wstring text(static_cast<size_t>(size > 0 ? size : 0), L'\0');
  ::MultiByteToWideChar(CP_UTF8, 0, bytes.data(), static_cast<int>(bytes.size()), text.data(), size);
  for (const std::wstring& line : Split(text, L'\n')) {
    const std::vector<std::wstring> parts = Split(line, L'\t');
    if (parts.size() < 3) continue;
    ProbeEntry entry;
    entry.sequence = std::stoul(parts[0]);
    entry.thread = std::stoul(parts[1]);
    entry.event = parts[2];
    for (size_t index = 3; index < parts.size(); ++index) {
      const size_t equals = parts[index].find(L'=');
      if (equals != std::wstring::npos) entry.fields[parts[index].substr(0, equals)] = parts[index].substr(equals + 1);
    }
    entries.push_back(std::move(entry));
  }
  return entries;
}

std::vector<ProbeEntry> Select(const std::vector<ProbeEntry>& entries, const std::wstring& event,
                               std::initializer_list<std::pair<const wchar_t*, const wchar_t*>> match) {
  std::vector<ProbeEntry> selected;
  for (const ProbeEntry& entry : entries) {
    if (entry.event == event && entry.Matches(match)) selected.push_back(entry);
  }
  return selected;
}

std::wstring Decimal(HWND window) { return std::to_wstring(reinterpret_cast<ULONG_PTR>(window)); }

}  // namespace standintest
