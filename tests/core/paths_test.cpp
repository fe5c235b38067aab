// Folder arithmetic behind the log folder and the client folder.
#include <gtest/gtest.h>

#include "core/paths.h"

namespace {

using corvane::core::FolderOf;
using corvane::core::ParentFolder;
using corvane::core::WithTrailingBackslash;

TEST(ParentFolder, CutsOneLevelAndKeepsRoots) {
  const struct {
    const wchar_t* folder;
    const wchar_t* parent;
  } cases[] = {
      {L"C:\\Program Files\\App\\shell\\", L"C:\\Program Files\\App\\"},
      {L"C:\\Program Files\\App\\shell", L"C:\\Program Files\\App\\"},
      {L"C:\\App\\shell\\\\\\", L"C:\\App\\"},
      {L"C:\\App\\shell\\/", L"C:\\App\\"},
      {L"C:\\shell\\", L"C:\\"},
      // Drive roots are their own parent, in whatever shape they came.
      {L"C:\\", L"C:\\"},
      {L"C:", L"C:"},
      // A UNC share is the root of its path; folders on it have parents.
      {L"\\\\server\\share", L"\\\\server\\share"},
      {L"\\\\server\\share\\shell\\", L"\\\\server\\share\\"},
      // Forward slashes separate like backslashes, and the separator found is the one kept.
      {L"C:/App/shell/", L"C:/App/"},
      {L"C:\\App/shell", L"C:\\App/"},
      // Nothing to cut.
      {L"shell", L"shell"},
      {L"", L""},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ParentFolder(c.folder), c.parent) << "folder: " << testing::PrintToString(std::wstring(c.folder));
  }
}

TEST(FolderOf, KeepsEverythingUpToTheLastBackslash) {
  EXPECT_EQ(FolderOf(L"C:\\Halvex\\shell\\Corvane.dll"), L"C:\\Halvex\\shell\\");
  EXPECT_EQ(FolderOf(L"\\\\server\\share\\x.exe"), L"\\\\server\\share\\");
  EXPECT_EQ(FolderOf(L"Corvane.dll"), L"");
}

TEST(WithTrailingBackslash, AppendsOnlyWhenMissing) {
  EXPECT_EQ(WithTrailingBackslash(L"C:\\log\\Corvane"), L"C:\\log\\Corvane\\");
  EXPECT_EQ(WithTrailingBackslash(L"C:\\log\\Corvane\\"), L"C:\\log\\Corvane\\");
  EXPECT_EQ(WithTrailingBackslash(L""), L"\\");
}

}  // namespace
