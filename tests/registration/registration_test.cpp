// Corvane.dll registered and removed for real. Wine's regsvr32.exe shows what an installer gets;
// its exit code is always 0 under Wine, so the stand-in named regsvr32.exe calls the exports
// where their results matter, each sequence in one process (the per-user choice lasts for the
// process).
#include <gtest/gtest.h>

#include <olectl.h>

#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "host_process.h"
#include "platform/handles.h"
#include "registration_state.h"

namespace {

using regtest::FolderId;
using regtest::Scope;

std::wstring Dll() { return moduletest::ProgramFolder() + L"Corvane.dll"; }

// Runs Wine's own regsvr32.exe with the given switches on the DLL.
void WineRegsvr32(const std::wstring& switches) {
  wchar_t system[MAX_PATH] = {};
  ::GetSystemDirectoryW(system, MAX_PATH);
  const moduletest::HostRun run = moduletest::RunHost(std::wstring(system) + L"\\regsvr32.exe", Dll(), switches);
  ASSERT_TRUE(run.finished);
}

// The stand-in's results, one per call, in order.
std::vector<HRESULT> CallExports(const std::wstring& calls) {
  const moduletest::HostRun run =
      moduletest::RunHost(moduletest::ProgramFolder() + L"hosts\\regsvr\\regsvr32.exe", Dll(), calls);
  EXPECT_TRUE(run.finished);
  EXPECT_EQ(run.exitCode, 0u) << testing::PrintToString(run.output);
  std::vector<HRESULT> results;
  std::wistringstream lines(run.output);
  for (std::wstring line; std::getline(lines, line);) {
    if (!line.starts_with(L"Dll")) continue;
    results.push_back(static_cast<HRESULT>(std::stoul(line.substr(line.find(L"=0x") + 3), nullptr, 16)));
  }
  return results;
}

enum class State { Nothing, Machine, User, DesktopFolderOnly };

void ExpectState(State state) {
  switch (state) {
    case State::Nothing: regtest::ExpectNothingLeft(); break;
    case State::Machine: regtest::ExpectAllRegistered(Scope::Machine, Dll()); break;
    case State::User: regtest::ExpectAllRegistered(Scope::User, Dll()); break;
    case State::DesktopFolderOnly:
      regtest::ExpectScriptsAbsent();
      regtest::ExpectTypeLibrary(false);
      regtest::ExpectFolderAbsent(FolderId::MyComputer);
      regtest::ExpectFolderRegistered(FolderId::Desktop, Dll());
      break;
  }
}

class Registration : public testing::Test {
 protected:
  void SetUp() override { regtest::RemoveEverything(); }
  void TearDown() override { regtest::RemoveEverything(); }
};

TEST_F(Registration, WineRegsvr32RegistersAndRemovesEverything) {
  const struct {
    const wchar_t* install;
    const wchar_t* uninstall;
    State registered;
  } cases[] = {
      {L"/s", L"/s /u", State::Machine},
      {L"/s /i:user /n", L"/s /u /i:user /n", State::User},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(c.install)));
    regtest::RemoveEverything();
    WineRegsvr32(c.install);
    ExpectState(c.registered);
    WineRegsvr32(c.uninstall);
    ExpectState(State::Nothing);
  }
}

TEST_F(Registration, ExportResultsAndWhereTheyWrite) {
  const HRESULT failed = SELFREG_E_CLASS;
  const struct {
    const wchar_t* calls;
    std::vector<HRESULT> results;
    State after;
  } cases[] = {
      // Never registered: nothing to remove is reported as a failed removal.
      {L"unregister", {failed}, State::Nothing},
      {L"register register", {S_OK, S_OK}, State::Machine},
      {L"register unregister unregister", {S_OK, S_OK, failed}, State::Nothing},
      {L"install:1:USER", {S_OK}, State::User},
      {L"install:1:users", {S_OK}, State::Machine},
      {L"install:1:use", {S_OK}, State::Machine},
      {L"install:1", {S_OK}, State::Machine},
      // Per-user mode, once chosen, holds for the rest of the process.
      {L"install:1:User install:0", {S_OK, S_OK}, State::Nothing},
      {L"install:1:User register", {S_OK, S_OK}, State::User},
      // Uninstalling only unregisters and reports that.
      {L"install:0:user", {failed}, State::Nothing},
      {L"register install:0:users", {S_OK, S_OK}, State::Nothing},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(c.calls)));
    regtest::RemoveEverything();
    EXPECT_EQ(CallExports(c.calls), c.results);
    ExpectState(c.after);
  }
}

TEST_F(Registration, OnlyAMissingNameSpaceKeyFailsTheRemoval) {
  const std::wstring explorer = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\";
  const std::wstring approved = L"Software\\Microsoft\\Windows\\CurrentVersion\\Shell Extensions\\Approved";
  const std::wstring first = L"{6E0D3A92-C4B7-4A18-8F25-B93C1D7E5A40}";
  const std::wstring second = L"{6E0D3A92-C4B7-4A18-8F25-B93C1D7E5A42}";
  const struct {
    const char* removed;
    std::function<void()> remove;
    HRESULT result;
  } cases[] = {
      {"first NameSpace key", [&] { ::RegDeleteTreeW(HKEY_CURRENT_USER, (explorer + L"MyComputer\\NameSpace\\" + first).c_str()); },
       SELFREG_E_CLASS},
      {"second NameSpace key", [&] { ::RegDeleteTreeW(HKEY_CURRENT_USER, (explorer + L"Desktop\\NameSpace\\" + second).c_str()); },
       SELFREG_E_CLASS},
      {"first CLSID key", [&] { ::RegDeleteTreeW(HKEY_CLASSES_ROOT, (L"CLSID\\" + first).c_str()); }, S_OK},
      {"Approved values", [&] {
         ::RegDeleteKeyValueW(HKEY_CURRENT_USER, approved.c_str(), first.c_str());
         ::RegDeleteKeyValueW(HKEY_CURRENT_USER, approved.c_str(), second.c_str());
       }, S_OK},
      {"NewStartPanel value", [&] {
         ::RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, (explorer + L"HideDesktopIcons\\NewStartPanel").c_str(), second.c_str());
       }, S_OK},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.removed);
    regtest::RemoveEverything();
    ASSERT_EQ(CallExports(L"register"), std::vector<HRESULT>{S_OK});
    c.remove();
    EXPECT_EQ(CallExports(L"unregister"), std::vector<HRESULT>{c.result});
    ExpectState(State::Nothing);
  }
}

// A non-volatile key cannot be created under a volatile one, even by an administrator: that is how
// these cases make one table entry's key impossible to create.
class Blocker {
 public:
  Blocker(HKEY hive, std::wstring path) : m_hive(hive), m_path(std::move(path)) {
    ::RegDeleteTreeW(m_hive, m_path.c_str());
    corvane::unique_hkey key;
    EXPECT_EQ(::RegCreateKeyExW(m_hive, m_path.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr,
                                key.put(), nullptr),
              ERROR_SUCCESS);
    corvane::unique_hkey child;
    m_works = ::RegCreateKeyExW(key.get(), L"probe", 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE, nullptr,
                                child.put(), nullptr) != ERROR_SUCCESS;
  }
  Blocker(const Blocker&) = delete;
  Blocker& operator=(const Blocker&) = delete;
  ~Blocker() { ::RegDeleteTreeW(m_hive, m_path.c_str()); }
  bool works() const { return m_works; }

 private:
  HKEY m_hive;
  std::wstring m_path;
  bool m_works = false;
};

TEST_F(Registration, KeyThatCannotBeCreatedRollsBack) {
  const std::wstring firstFolder = L"CLSID\\{6E0D3A92-C4B7-4A18-8F25-B93C1D7E5A40}";
  const std::wstring hideDesktopIcons = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\HideDesktopIcons";
  const struct {
    HKEY hive;
    const std::wstring& blocked;
    const wchar_t* calls;
    State after;
  } cases[] = {
      // The first folder's walk stops at InprocServer32 and unregisters everything; the second
      // folder is registered afterwards all the same.
      {HKEY_CLASSES_ROOT, firstFolder, L"register", State::DesktopFolderOnly},
      // DllInstall rolls that back too.
      {HKEY_CLASSES_ROOT, firstFolder, L"install:1", State::Nothing},
      // The second folder's last entry: nothing is left.
      {HKEY_LOCAL_MACHINE, hideDesktopIcons, L"register", State::Nothing},
      {HKEY_LOCAL_MACHINE, hideDesktopIcons, L"install:1:user", State::Nothing},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.blocked + L" " + c.calls));
    regtest::RemoveEverything();
    const Blocker blocker(c.hive, c.blocked);
    ASSERT_TRUE(blocker.works());
    EXPECT_EQ(CallExports(c.calls), std::vector<HRESULT>{SELFREG_E_CLASS});
    ExpectState(c.after);
  }
}

}  // namespace
