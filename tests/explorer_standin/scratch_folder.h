#pragma once
// A fresh folder tree under the temporary folder, removed with everything in it at the end.
#include <string>

namespace standintest {

class ScratchFolder {
 public:
  ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  ~ScratchFolder();

  // The root, without a trailing backslash.
  const std::wstring& Root() const noexcept { return m_root; }
  // Creates <root>\<relative> (and its parents); returns its full path.
  std::wstring MakeFolder(const std::wstring& relative) const;
  std::wstring File(const std::wstring& name) const { return m_root + L"\\" + name; }

 private:
  std::wstring m_root;
};

}  // namespace standintest
