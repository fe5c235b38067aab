// Folders dropped on the view, and Ctrl+V in it, as the client sees them: one command line at the
// Halvex.exe stand-in, or none, and the drop effects the source is told.
#include <windows.h>
#include <shellapi.h>
#include <shlobj.h>
#include <wrl/client.h>

#include <vector>

#include "debug_capture.h"
#include "file_list_data.h"
#include "namespace_fixture.h"
#include "platform/com_object.h"

namespace nstest {
namespace {

using Microsoft::WRL::ComPtr;
using nshost::CFileListData;

class DropTest : public NamespaceTest {
 protected:
  std::vector<std::wstring> Folders(int count) {
    std::vector<std::wstring> folders;
    for (int i = 1; i <= count; ++i) folders.push_back(m_scratch->MakeFolder(L"文件夹 " + std::to_wstring(i)));
    return folders;
  }
  std::wstring File(const std::wstring& name) {
    const std::wstring path = m_scratch->File(name);
    corvane::unique_file file(::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    EXPECT_TRUE(static_cast<bool>(file));
    return path;
  }
  // The object's reference count, read through an AddRef/Release pair.
  static ULONG References(IUnknown* object) {
    object->AddRef();
    return object->Release();
  }
  ComPtr<IDropTarget> Target() {
    ComPtr<IDropTarget> target;
    EXPECT_EQ(m_host->View()->QueryInterface(IID_PPV_ARGS(&target)), S_OK);
    return target;
  }
  // No command within a second: the client is started asynchronously, so absence needs a wait.
  void ExpectNoCommand(size_t before) {
    nshost::PumpFor(1000);
    EXPECT_EQ(CommandCount(), before);
  }
  static std::wstring Command(const std::wstring& fields) {
    return launchertest::Received(ClientExe(), L" -shellpopwin \"" + fields + L"\"");
  }
};

TEST_F(DropTest, DroppedFoldersBecomeOneCommand) {
  const std::vector<std::wstring> folders = Folders(6);
  const std::wstring fileA = File(L"a.txt"), fileB = File(L"b.txt");
  struct DropCase {
    const char* what;
    ClientState state;
    std::vector<std::wstring> paths;
    const wchar_t* fields;  // null: nothing is sent
  };
  const std::wstring firstFive = folders[0] + L"|" + folders[1] + L"|" + folders[2] + L"|" + folders[3] + L"|" + folders[4];
  const std::wstring fiveFields = L"syncdisk|open_folders|" + firstFive;
  const DropCase cases[] = {
      {"five folders among files", ClientState::kSignedInNoSync,
       {fileA, folders[0], folders[1], fileB, folders[2], folders[3], folders[4]}, fiveFields.c_str()},
      {"six folders", ClientState::kSignedInNoSync, folders, L"syncdisk|open_invaild"},
      {"files only", ClientState::kSignedInNoSync, {fileA, fileB}, nullptr},
      {"signed out", ClientState::kSignedOut, {folders[0], folders[1]}, nullptr},
  };
  for (const DropCase& c : cases) {
    SCOPED_TRACE(c.what);
    Publish(c.state);
    OpenView(600, 400);
    ComPtr<IDropTarget> target = Target();
    auto data = corvane::MakeObject<CFileListData>(c.paths, true);
    const size_t before = CommandCount();
    const ULONG references = References(data.Get());
    DWORD effect = DROPEFFECT_COPY | DROPEFFECT_MOVE | DROPEFFECT_LINK;
    ASSERT_EQ(target->DragEnter(data.Get(), MK_LBUTTON, POINTL{10, 10}, &effect), S_OK);
    EXPECT_EQ(effect, static_cast<DWORD>(DROPEFFECT_COPY));
    EXPECT_EQ(References(data.Get()), references + 1) << "held from DragEnter";
    effect = DROPEFFECT_MOVE;
    ASSERT_EQ(target->Drop(data.Get(), 0, POINTL{10, 10}, &effect), S_OK);
    EXPECT_EQ(effect, static_cast<DWORD>(DROPEFFECT_COPY));
    EXPECT_EQ(References(data.Get()), references) << "let go by Drop";
    if (c.fields != nullptr) {
      EXPECT_EQ(Utf8(NextCommand(before)), Utf8(Command(c.fields)));
    } else {
      ExpectNoCommand(before);
    }
    // The view goes before the host unloads the DLL that holds its code.
    target.Reset();
    data.Reset();
    m_host.reset();
  }
}

TEST_F(DropTest, OnlyACopyOfAFileListIsOffered) {
  Publish(ClientState::kSignedInNoSync);
  OpenView(600, 400);
  const ComPtr<IDropTarget> target = Target();
  struct EffectCase {
    bool offerFiles;
    DWORD offered;
    DWORD expected;
  };
  const EffectCase cases[] = {
      {true, DROPEFFECT_MOVE, DROPEFFECT_NONE},
      {true, DROPEFFECT_COPY | DROPEFFECT_LINK, DROPEFFECT_COPY},
      {false, DROPEFFECT_COPY, DROPEFFECT_NONE},
  };
  for (const EffectCase& c : cases) {
    const auto data = corvane::MakeObject<CFileListData>(Folders(1), c.offerFiles);
    const ULONG references = References(data.Get());
    DWORD effect = c.offered;
    EXPECT_EQ(target->DragEnter(data.Get(), MK_LBUTTON, POINTL{1, 1}, &effect), S_OK);
    EXPECT_EQ(References(data.Get()), references + 1) << "held from DragEnter, offered files or not";
    EXPECT_EQ(effect, c.expected) << c.offerFiles << " " << c.offered;
    effect = c.offered;
    EXPECT_EQ(target->DragOver(MK_LBUTTON, POINTL{2, 2}, &effect), S_OK);
    EXPECT_EQ(effect, c.expected) << "drag over";
    EXPECT_EQ(target->DragLeave(), S_OK);
    EXPECT_EQ(References(data.Get()), references) << "let go by DragLeave";
  }
}

TEST_F(DropTest, CtrlVOnlyWritesTheDebuggerLine) {
  Publish(ClientState::kSignedInNoSync);
  OpenView(600, 400);
  // Folders on the clipboard, ready for a paste that must not be sent.
  const auto data = corvane::MakeObject<CFileListData>(Folders(2), true);
  ASSERT_TRUE(::OpenClipboard(nullptr));
  ::EmptyClipboard();
  ASSERT_NE(::SetClipboardData(CF_HDROP, data->MakeDropFiles()), nullptr);
  ::CloseClipboard();

  testsupport::DebugCapture capture;
  BYTE keys[256] = {};
  ASSERT_TRUE(::GetKeyboardState(keys));
  const BYTE savedControl = keys[VK_CONTROL];
  keys[VK_CONTROL] = 0x80;
  ::SetKeyboardState(keys);
  const size_t before = CommandCount();
  ::SendMessageW(m_host->ViewWindow(), WM_KEYDOWN, 'V', 1);
  // 118 ('v') is taken as well; as a virtual key it is F7, so Ctrl+F7 pastes too.
  ::SendMessageW(m_host->ViewWindow(), WM_KEYDOWN, 118, 1);
  keys[VK_CONTROL] = savedControl;
  ::SetKeyboardState(keys);
  ExpectNoCommand(before);
  EXPECT_EQ(capture.LinesContaining(L"CMyShellView::OnPaste called").size(), 2u);
  // Without Ctrl the key is just a key.
  ::SendMessageW(m_host->ViewWindow(), WM_KEYDOWN, 'V', 1);
  nshost::PumpFor(100);
  EXPECT_EQ(capture.LinesContaining(L"CMyShellView::OnPaste called").size(), 2u);
  ::OpenClipboard(nullptr);
  ::EmptyClipboard();
  ::CloseClipboard();
}

}  // namespace
}  // namespace nstest
