#include "namespace_fixture.h"

#include <ole2.h>

#include "corvane_h.h"
#include "platform/module_path.h"

namespace nstest {

namespace {

std::wstring Parent(std::wstring path) {
  if (!path.empty() && path.back() == L'\\') path.pop_back();
  return path.substr(0, path.rfind(L'\\') + 1);
}

}  // namespace

// The test program lies in <client>\shell\namespace-tests\; the DLL in <client>\shell\.
std::wstring DllPath() { return Parent(corvane::ThisModuleFolder()) + L"Corvane.dll"; }
std::wstring ClientExe() { return Parent(Parent(corvane::ThisModuleFolder())) + L"Halvex.exe"; }

void NamespaceTest::SetUp() {
  ASSERT_TRUE(SUCCEEDED(::OleInitialize(nullptr)));
  m_theme.emplace(false);
  m_clients = std::make_unique<launchertest::StandinSession>();
  m_scratch = std::make_unique<standintest::ScratchFolder>();
  m_syncFolder = m_scratch->MakeFolder(L"同步盘");
  Publish(ClientState::kSignedOut);
}

void NamespaceTest::TearDown() {
  m_host.reset();
  nshost::PumpFor(50);
  testsupport::ClearClientState();
  m_theme.reset();
  EXPECT_TRUE(launchertest::WaitForNoClient());
  m_scratch.reset();
  m_clients.reset();
  ::OleUninitialize();
}

void NamespaceTest::Publish(ClientState state) { testsupport::PublishClientState(state, m_syncFolder); }

void NamespaceTest::OpenView(int width, int height) {
  m_host = std::make_unique<nshost::NamespaceHost>();
  ASSERT_EQ(m_host->LoadFolder(DllPath(), CLSID_MyShellFolder), S_OK);
  ASSERT_EQ(m_host->OpenView(width, height), S_OK);
  // The face tests read the screen; other tests' windows on the same display must not cover it.
  ::SetWindowPos(m_host->Frame(), HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
  ::UpdateWindow(m_host->Frame());
  nshost::PumpFor(100);
}

HWND NamespaceTest::Prompt() const { return ::FindWindowExW(m_host->ViewWindow(), nullptr, L"CorvaneMainWindow", nullptr); }

size_t NamespaceTest::CommandCount() const { return launchertest::ReadRecords(m_clients->ClientRecord()).size(); }

std::wstring NamespaceTest::NextCommand(size_t before) {
  const auto records = launchertest::WaitForRecords(m_clients->ClientRecord(), before + 1);
  EXPECT_EQ(records.size(), before + 1);
  // One client at a time: a second start within 8 seconds would close the start-up gate.
  EXPECT_TRUE(launchertest::WaitForNoClient());
  return records.size() > before ? records.back().commandLine : L"";
}

}  // namespace nstest
