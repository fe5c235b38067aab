#include "wine_explorer.h"

#include <commctrl.h>

#include <memory>

#include "host_process.h"

namespace e2etest {

namespace {

constexpr const wchar_t* kExplorerClass = L"ExplorerWClass";

struct RemoteBlockFree {
  HANDLE process;
  void operator()(void* block) const noexcept { ::VirtualFreeEx(process, block, 0, MEM_RELEASE); }
};

}  // namespace

WineExplorer::WineExplorer() {
  wchar_t windows[MAX_PATH] = {};
  ::GetWindowsDirectoryW(windows, MAX_PATH);
  const std::wstring exe = std::wstring(windows) + L"\\explorer.exe";
  std::wstring commandLine = L"\"" + exe + L"\"";
  STARTUPINFOW startup{sizeof startup};
  PROCESS_INFORMATION info{};
  if (!::CreateProcessW(exe.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &info)) {
    return;
  }
  m_process.reset(info.hProcess);
  corvane::unique_handle thread(info.hThread);
  m_pid = info.dwProcessId;
}

WineExplorer::~WineExplorer() {
  if (!m_process) return;
  if (HWND window = Window(); window != nullptr) ::PostMessageW(window, WM_CLOSE, 0, 0);
  if (!WaitForExit(5000)) {
    ::TerminateProcess(m_process.get(), 1);
    WaitForExit(5000);
  }
}

HWND WineExplorer::Window() const {
  struct Search {
    DWORD pid;
    HWND found = nullptr;
  } search{m_pid};
  ::EnumWindows(
      [](HWND window, LPARAM param) -> BOOL {
        auto* s = reinterpret_cast<Search*>(param);
        wchar_t name[64] = {};
        ::GetClassNameW(window, name, 64);
        DWORD pid = 0;
        ::GetWindowThreadProcessId(window, &pid);
        if (pid != s->pid || std::wstring_view(name) != kExplorerClass) return TRUE;
        s->found = window;
        return FALSE;
      },
      reinterpret_cast<LPARAM>(&search));
  return search.found;
}

bool WineExplorer::Navigate(const std::wstring& path) const {
  // shell-nav lies in the client folder's tools folder, one level up from this program.
  const moduletest::HostRun run =
      moduletest::RunHost(moduletest::ProgramFolder() + L"..\\tools\\shell-nav.exe", L"navigate", L"\"" + path + L"\"");
  return run.finished && run.exitCode == 0;
}

bool WineExplorer::Running() const { return m_process && ::WaitForSingleObject(m_process.get(), 0) == WAIT_TIMEOUT; }

bool WineExplorer::WaitForExit(DWORD timeoutMs) const {
  return !m_process || ::WaitForSingleObject(m_process.get(), timeoutMs) == WAIT_OBJECT_0;
}

bool WaitUntil(const std::function<bool()>& condition, DWORD timeoutMs) {
  const ULONGLONG end = ::GetTickCount64() + timeoutMs;
  for (;;) {
    if (condition()) return true;
    if (::GetTickCount64() >= end) return false;
    ::Sleep(50);
  }
}

HWND FindDescendant(HWND root, const wchar_t* className) {
  // Without a root EnumChildWindows would walk every top-level window.
  if (root == nullptr) return nullptr;
  struct Search {
    const wchar_t* className;
    HWND found = nullptr;
  } search{className};
  ::EnumChildWindows(
      root,
      [](HWND child, LPARAM param) -> BOOL {
        auto* s = reinterpret_cast<Search*>(param);
        wchar_t name[128] = {};
        ::GetClassNameW(child, name, 128);
        if (std::wstring_view(name) != s->className) return TRUE;
        s->found = child;
        return FALSE;
      },
      reinterpret_cast<LPARAM>(&search));
  return search.found;
}

std::wstring WindowText(HWND window) {
  wchar_t text[512] = {};
  ::GetWindowTextW(window, text, 512);
  return text;
}

std::vector<std::wstring> ListViewItems(HWND list) {
  std::vector<std::wstring> items;
  DWORD pid = 0;
  ::GetWindowThreadProcessId(list, &pid);
  const corvane::unique_handle process(
      ::OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE, FALSE, pid));
  if (!process) return items;
  // The list view writes the text where the item's pointer says, which must be in its own process.
  constexpr int kChars = 260;
  const std::unique_ptr<void, RemoteBlockFree> remote(
      ::VirtualAllocEx(process.get(), nullptr, sizeof(LVITEMW) + kChars * sizeof(wchar_t), MEM_COMMIT, PAGE_READWRITE),
      RemoteBlockFree{process.get()});
  if (!remote) return items;
  auto* remoteText = reinterpret_cast<wchar_t*>(static_cast<char*>(remote.get()) + sizeof(LVITEMW));
  const auto count = static_cast<int>(::SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
  for (int i = 0; i < count; ++i) {
    LVITEMW item{};
    item.mask = LVIF_TEXT;
    item.iItem = i;
    item.pszText = remoteText;
    item.cchTextMax = kChars;
    wchar_t text[kChars] = {};
    if (!::WriteProcessMemory(process.get(), remote.get(), &item, sizeof item, nullptr)) break;
    const auto length = ::SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(remote.get()));
    if (length > 0 && ::ReadProcessMemory(process.get(), remoteText, text, sizeof text - sizeof(wchar_t), nullptr)) {
      items.emplace_back(text);
    }
  }
  return items;
}

}  // namespace e2etest
