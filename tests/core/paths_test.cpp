// Folder arithmetic behind the log folder and the client folder (also fuzzed against a reference;
// these rows pin the roots, which the reference re-implements rather than checks).
#include <gtest/gtest.h>

#include "core/paths.h"

namespace {

namespace core = corvane::core;

TEST(Paths, ParentKeepsRootsAndTheSeparatorFoundFolderKeepsItsBackslash) {
  const struct {
    const wchar_t* folder;
    const wchar_t* parent;
  } cases[] = {
      {L"C:\\Program Files\\App\\shell", L"C:\\Program Files\\App\\"},
      {L"C:\\App\\shell\\\\\\", L"C:\\App\\"},
      {L"C:\\", L"C:\\"},
      {L"C:", L"C:"},
      {L"\\\\server\\share", L"\\\\server\\share"},
      {L"\\\\server\\share\\shell\\", L"\\\\server\\share\\"},
      {L"C:\\App/shell", L"C:\\App/"},
      {L"shell", L"shell"},
  };
  for (const auto& c : cases) EXPECT_EQ(core::ParentFolder(c.folder), c.parent) << testing::PrintToString(std::wstring(c.folder));
  EXPECT_EQ(core::FolderOf(L"\\\\server\\share\\x.exe"), L"\\\\server\\share\\");
  EXPECT_EQ(core::FolderOf(L"Corvane.dll"), L"");
  EXPECT_EQ(core::WithTrailingBackslash(L"C:\\log\\Corvane"), L"C:\\log\\Corvane\\");
  EXPECT_EQ(core::WithTrailingBackslash(L"C:\\log\\Corvane\\"), L"C:\\log\\Corvane\\");
}

}  // namespace
