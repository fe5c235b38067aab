// Both namespace folder classes as Explorer meets them: created through the built DLL's class
// factory and asked the questions Explorer asks. Nothing here touches shared state.
#include <windows.h>
#include <shlobj.h>
#include <shobjidl.h>
#include <wrl/client.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <tuple>

#include "core/paths.h"
#include "corvane_h.h"
#include "namespace_host.h"
#include "platform/handles.h"
#include "platform/module_path.h"

namespace {

using Microsoft::WRL::ComPtr;

struct FolderClass {
  const char* name;
  const CLSID* clsid;
  const IID* dual;
  const wchar_t* parsingPath;
};

const FolderClass kClasses[] = {
    {"MyShellFolder", &CLSID_MyShellFolder, &IID_IMyShellFolder, L"::{20D04FE0-3AEA-1069-A2D8-08002B30309D}\\::{6e0d3a92-c4b7-4a18-8f25-b93c1d7e5a40}"},
    {"MyShellFolder1", &CLSID_MyShellFolder1, &IID_IMyShellFolder1, L"::{20D04FE0-3AEA-1069-A2D8-08002B30309D}\\::{6e0d3a92-c4b7-4a18-8f25-b93c1d7e5a42}"},
};

// An ID list of one 6-byte item (the folder has none of its own, so any bytes will do), and an
// empty list, which is the folder itself.
alignas(USHORT) const BYTE kChild[] = {6, 0, 1, 2, 3, 4, 0, 0};
const auto kChildItem = reinterpret_cast<PCUITEMID_CHILD>(kChild);
const auto kEmptyList = reinterpret_cast<PCUITEMID_CHILD>(kChild + 6);

std::wstring NameOf(IShellFolder* folder, PCUITEMID_CHILD pidl, SHGDNF flags, HRESULT& hr) {
  STRRET name{};
  hr = folder->GetDisplayNameOf(pidl, flags, &name);
  if (FAILED(hr)) return L"";
  EXPECT_EQ(name.uType, static_cast<UINT>(STRRET_WSTR));
  const corvane::unique_cotaskmem_string text(name.pOleStr);
  return text.get();
}

class FolderTest : public ::testing::TestWithParam<FolderClass> {
 protected:
  void SetUp() override {
    ASSERT_TRUE(SUCCEEDED(::OleInitialize(nullptr)));
    m_host = std::make_unique<nshost::NamespaceHost>();
    // This program lies one folder below the DLL, as the namespace-host does.
    ASSERT_EQ(m_host->LoadFolder(corvane::core::ParentFolder(corvane::ThisModuleFolder()) + L"Corvane.dll", *GetParam().clsid), S_OK);
    m_folder = m_host->Folder();
  }
  void TearDown() override {
    m_folder.Reset();
    m_host.reset();
    ::OleUninitialize();
  }
  std::unique_ptr<nshost::NamespaceHost> m_host;
  ComPtr<IShellFolder> m_folder;
};

TEST_P(FolderTest, NamesClassAndInterfaces) {
  const FolderClass& c = GetParam();
  HRESULT hr = E_FAIL;
  EXPECT_EQ(NameOf(m_folder.Get(), nullptr, SHGDN_INFOLDER | SHGDN_FORADDRESSBAR, hr), L"Halvex同步盘");
  EXPECT_EQ(hr, S_OK);
  EXPECT_EQ(NameOf(m_folder.Get(), nullptr, SHGDN_FORPARSING | SHGDN_INFOLDER, hr), c.parsingPath);
  NameOf(m_folder.Get(), kChildItem, SHGDN_NORMAL, hr);
  EXPECT_EQ(hr, E_INVALIDARG) << "an item has no name";
  EXPECT_EQ(m_folder->GetDisplayNameOf(nullptr, SHGDN_NORMAL, nullptr), E_INVALIDARG);

  ComPtr<IPersist> persist;
  ASSERT_EQ(m_folder.As(&persist), S_OK);
  CLSID clsid{};
  EXPECT_EQ(persist->GetClassID(&clsid), S_OK);
  EXPECT_TRUE(IsEqualCLSID(clsid, *c.clsid));
  // Every interface of the map, and one identity behind them.
  const IID* interfaces[] = {c.dual, &IID_IDispatch, &IID_IExplorerPaneVisibility, &IID_IPersist, &IID_IPersistFolder,
                             &IID_IPersistFolder2, &IID_IShellFolder, &IID_IShellFolder2};
  ComPtr<IUnknown> identity;
  ASSERT_EQ(m_folder.As(&identity), S_OK);
  for (const IID* iid : interfaces) {
    ComPtr<IUnknown> piece, back;
    ASSERT_EQ(m_folder->QueryInterface(*iid, &piece), S_OK);
    ASSERT_EQ(piece.As(&back), S_OK);
    EXPECT_EQ(back.Get(), identity.Get());
  }
  ComPtr<IUnknown> none;
  EXPECT_EQ(m_folder->QueryInterface(IID_IShellView, &none), E_NOINTERFACE);
}

TEST_P(FolderTest, RemembersItsIdListParsesThroughTheShellAndHasNoItems) {
  ComPtr<IPersistFolder2> persist;
  ASSERT_EQ(m_folder.As(&persist), S_OK);
  PIDLIST_ABSOLUTE current = reinterpret_cast<PIDLIST_ABSOLUTE>(1);
  EXPECT_EQ(persist->GetCurFolder(&current), S_FALSE);
  EXPECT_EQ(current, nullptr);
  EXPECT_EQ(persist->GetCurFolder(nullptr), E_POINTER);
  corvane::unique_pidl location, copy;
  ASSERT_EQ(::SHParseDisplayName(L"C:\\windows", nullptr, location.put(), 0, nullptr), S_OK);
  ASSERT_EQ(persist->Initialize(location.get()), S_OK);
  ASSERT_EQ(persist->GetCurFolder(copy.put()), S_OK);
  ASSERT_NE(copy.get(), location.get());
  EXPECT_TRUE(::ILIsEqual(copy.get(), location.get()));
  ASSERT_EQ(persist->Initialize(nullptr), S_OK);
  EXPECT_EQ(persist->GetCurFolder(copy.put()), S_FALSE) << "a null list forgets the stored one";

  // Parsing is the shell's; the counts the caller passes are left alone.
  ULONG eaten = 77;
  SFGAOF attributes = 77;
  wchar_t path[] = L"C:\\windows";
  corvane::unique_pidl parsed;
  EXPECT_EQ(m_folder->ParseDisplayName(nullptr, nullptr, path, &eaten, reinterpret_cast<PIDLIST_RELATIVE*>(parsed.put()),
                                       &attributes), S_OK);
  EXPECT_EQ(std::make_tuple(parsed.get() != nullptr, eaten, attributes), std::make_tuple(true, 77ul, 77ul));

  void* ui = reinterpret_cast<void*>(0x1234);
  EXPECT_EQ(m_folder->GetUIObjectOf(nullptr, 0, nullptr, IID_IContextMenu, nullptr, &ui), E_NOINTERFACE);
  EXPECT_EQ(ui, nullptr);
}

TEST_P(FolderTest, ViewsAttributesAndPanes) {
  EXPECT_EQ(m_folder->CreateViewObject(nullptr, IID_IShellView, nullptr), E_POINTER);
  ComPtr<IShellView> first, second;
  ASSERT_EQ(m_folder->CreateViewObject(nullptr, IID_PPV_ARGS(&first)), S_OK);
  ASSERT_EQ(m_folder->CreateViewObject(nullptr, IID_PPV_ARGS(&second)), S_OK);
  EXPECT_NE(first.Get(), second.Get()) << "each window gets a view of its own";
  // Explorer's other view objects are refused with E_NOTIMPL, the out pointer cleared.
  for (const IID& other : {IID_IDropTarget, IID_IContextMenu, IID_IUnknown}) {
    void* object = &object;
    EXPECT_EQ(m_folder->CreateViewObject(nullptr, other, &object), E_NOTIMPL);
    EXPECT_EQ(object, nullptr);
  }
  // Columns 0 to 2 are strings shown by default (0x11); the fourth is refused and nothing written.
  ComPtr<IShellFolder2> folder2;
  ASSERT_EQ(m_folder.As(&folder2), S_OK);
  for (const auto& [column, result, flags] : {std::tuple{0u, S_OK, 0x11u}, std::tuple{2u, S_OK, 0x11u},
                                               std::tuple{3u, E_INVALIDARG, 0x77u}}) {
    SHCOLSTATEF state = 0x77;
    EXPECT_EQ(folder2->GetDefaultColumnState(column, &state), result) << "column " << column;
    EXPECT_EQ(state, flags) << "column " << column;
  }
  const struct { UINT count; PCUITEMID_CHILD item; SFGAOF in, out; } cases[] = {
      {0, nullptr, 0xFFFFFFFF, 0xF8000000},
      {0, nullptr, SFGAO_FOLDER | SFGAO_CANCOPY, SFGAO_FOLDER},
      {1, kEmptyList, 0xFFFFFFFF, 0xF8000000},
      {1, kChildItem, 0xFFFFFFFF, 0xFFFFFFFF},  // items keep what the caller asked
  };
  for (const auto& c : cases) {
    SFGAOF attributes = c.in;
    PCUITEMID_CHILD item = c.item;
    EXPECT_EQ(m_folder->GetAttributesOf(c.count, c.count ? &item : nullptr, &attributes), S_OK);
    EXPECT_EQ(attributes, c.out) << c.count << " " << (c.item == kChildItem);
  }
  ComPtr<IExplorerPaneVisibility> panes;
  ASSERT_EQ(m_folder.As(&panes), S_OK);
  const GUID ribbon = {0xd27524a8, 0xc9f2, 0x4834, {0xa1, 0x06, 0xdf, 0x88, 0x89, 0xfd, 0x4f, 0x37}};
  const GUID navigation = {0xcb316b22, 0x25f7, 0x42b8, {0x8a, 0x09, 0x54, 0x0d, 0x23, 0xa4, 0x3c, 0x2f}};
  for (const auto& [pane, expected] : {std::pair{ribbon, 0x20001u}, std::pair{navigation, 0x77u}}) {
    EXPLORERPANESTATE state = 0x77;
    EXPECT_EQ(panes->GetPaneState(pane, &state), S_OK);
    EXPECT_EQ(state, expected);
  }
}

INSTANTIATE_TEST_SUITE_P(BothClasses, FolderTest, ::testing::ValuesIn(kClasses),
                         [](const ::testing::TestParamInfo<FolderClass>& info) { return std::string(info.param.name); });

}  // namespace
