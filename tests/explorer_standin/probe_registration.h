#pragma once
// Registers the probe helper object machine-wide (Wine's COM does not read per-user classes) and
// lists it under Explorer's Browser Helper Objects key, then removes exactly what it wrote.
// Tests using it hold the bho-registry lock.
#include <windows.h>

#include <string>
#include <vector>

namespace standintest {

struct ProbeClass {
  const CLSID* clsid;
  bool noExplorer = false;  // listed with NoExplorer=1: Explorer must not load it
};

class ProbeRegistration {
 public:
  // junkKeys: further subkeys of the helper-object key that are no usable helper object.
  explicit ProbeRegistration(std::vector<ProbeClass> classes, std::vector<std::wstring> junkKeys = {});
  ProbeRegistration(const ProbeRegistration&) = delete;
  ProbeRegistration& operator=(const ProbeRegistration&) = delete;
  ~ProbeRegistration();

  bool Succeeded() const noexcept { return m_succeeded; }

 private:
  std::vector<std::wstring> m_written;  // keys under HKLM, deleted with their subtrees
  bool m_succeeded = true;
};

std::wstring ClsidText(const CLSID& clsid);

}  // namespace standintest
