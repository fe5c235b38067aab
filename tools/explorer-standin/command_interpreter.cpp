#include "command_interpreter.h"

#include <cerrno>
#include <cwchar>
#include <functional>
#include <optional>
#include <sstream>
#include <utility>

#include "browser.h"
#include "connection_point.h"
#include "folder_location.h"
#include "headroom.h"
#include "standin_log.h"

namespace explorer_standin {

namespace {

constexpr DWORD kCommandTimeoutMs = 15000;
constexpr std::wstring_view kPidlPrefix = L"pidl:";

// Splits off the first blank-separated word; the rest keeps its inner blanks (paths have them).
std::wstring NextWord(std::wstring& rest) {
  const size_t start = rest.find_first_not_of(L" \t");
  if (start == std::wstring::npos) {
    rest.clear();
    return std::wstring();
  }
  const size_t end = rest.find_first_of(L" \t", start);
  std::wstring word = rest.substr(start, end == std::wstring::npos ? std::wstring::npos : end - start);
  rest = end == std::wstring::npos ? std::wstring() : rest.substr(end);
  return word;
}

std::wstring Trim(const std::wstring& text) {
  const size_t start = text.find_first_not_of(L" \t\r\n");
  if (start == std::wstring::npos) return std::wstring();
  const size_t end = text.find_last_not_of(L" \t\r\n");
  return text.substr(start, end - start + 1);
}

std::optional<long long> Number(const std::wstring& word) {
  if (word.empty()) return std::nullopt;
  wchar_t* end = nullptr;
  errno = 0;
  const long long value = std::wcstoll(word.c_str(), &end, 0);
  if (errno != 0 || end == nullptr || *end != L'\0') return std::nullopt;
  return value;
}

Reply Ok(const std::wstring& value = std::wstring()) { return Reply{value.empty() ? L"ok" : L"ok " + value}; }
Reply Error(const std::wstring& reason) { return Reply{L"error " + reason}; }

std::optional<HWND> Part(const WindowHandles& handles, const std::wstring& name) {
  const std::pair<const wchar_t*, HWND> parts[] = {
      {L"frame", handles.frame},       {L"band", handles.band},       {L"tab", handles.tab},
      {L"duiview", handles.duiView},   {L"directui", handles.directUi}, {L"notifysink", handles.notifySink},
      {L"defview", handles.defView},   {L"items", handles.items},     {L"status", handles.status},
  };
  for (const auto& [partName, handle] : parts) {
    if (name == partName) return handle;
  }
  return std::nullopt;
}

// A message for the frame: the numbers, and the location of a PIDL to make for lParam.
struct FrameMessage {
  UINT message = 0;
  WPARAM wParam = 0;
  LPARAM lParam = 0;
  std::wstring pidlLocation;
};

std::optional<FrameMessage> ParseFrameMessage(std::wstring rest) {
  FrameMessage parsed;
  const auto message = Number(NextWord(rest));
  const auto wParam = Number(NextWord(rest));
  const std::wstring last = Trim(rest);
  if (!message || !wParam || last.empty()) return std::nullopt;
  parsed.message = static_cast<UINT>(*message);
  parsed.wParam = static_cast<WPARAM>(*wParam);
  if (last.compare(0, kPidlPrefix.size(), kPidlPrefix) == 0) {
    parsed.pidlLocation = last.substr(kPidlPrefix.size());
    if (parsed.pidlLocation.empty()) return std::nullopt;
  } else {
    const auto lParam = Number(last);
    if (!lParam) return std::nullopt;
    parsed.lParam = static_cast<LPARAM>(*lParam);
  }
  return parsed;
}

// Runs on the window thread: delivers the message, with a PIDL made here when one was asked for.
std::wstring Deliver(ExplorerWindow& window, const FrameMessage& parsed, bool send) {
  corvane::unique_pidl pidl;
  LPARAM lParam = parsed.lParam;
  if (!parsed.pidlLocation.empty()) {
    const HRESULT hr = ParseLocation(parsed.pidlLocation, pidl);
    if (FAILED(hr)) return L"error cannot parse location (" + HexResult(hr) + L")";
    lParam = reinterpret_cast<LPARAM>(pidl.get());
  }
  const HWND frame = window.Handles().frame;
  if (!send) {
    if (!::PostMessageW(frame, parsed.message, parsed.wParam, lParam)) return L"error PostMessage failed";
    pidl.release();  // the receiver owns it now
    return L"ok";
  }
  const LRESULT result = ::SendMessageW(frame, parsed.message, parsed.wParam, lParam);
  if (result != 0) pidl.release();
  return L"ok " + std::to_wstring(static_cast<long long>(result));
}

}  // namespace

Reply CommandInterpreter::Execute(const std::wstring& line) {
  std::wstring rest = line;
  const std::wstring command = NextWord(rest);
  if (command.empty()) return Error(L"empty command");

  if (command == L"quit") {
    m_windows.CloseAll();
    Reply reply = Ok();
    reply.quit = true;
    return reply;
  }
  if (command == L"windows") {
    std::wstring ids;
    for (int id : m_windows.Ids()) ids += (ids.empty() ? L"" : L" ") + std::to_wstring(id);
    return Ok(ids);
  }
  if (command == L"sleep") {
    const auto ms = Number(Trim(rest));
    if (!ms || *ms < 0 || *ms > 600000) return Error(L"usage: sleep <ms>");
    ::Sleep(static_cast<DWORD>(*ms));
    return Ok();
  }
  if (command == L"canunload") {
    const std::wstring name = Trim(rest);
    if (name.empty()) return Error(L"usage: canunload <dll name>");
    const HMODULE module = ::GetModuleHandleW(name.c_str());
    if (module == nullptr) return Ok(L"unloaded");
    using CanUnloadNowFn = HRESULT(WINAPI*)();
    const auto canUnloadNow = reinterpret_cast<CanUnloadNowFn>(reinterpret_cast<void*>(::GetProcAddress(module, "DllCanUnloadNow")));
    if (canUnloadNow == nullptr) return Error(L"no DllCanUnloadNow");
    return Ok(HexResult(canUnloadNow()));
  }
  if (command == L"viewdelay") {
    const auto ms = Number(Trim(rest));
    if (!ms || *ms < 0 || *ms > 10000) return Error(L"usage: viewdelay <ms>");
    CBrowser::SetOffThreadViewDelay(static_cast<DWORD>(*ms));
    return Ok();
  }
  if (command == L"viewheld") {
    const auto ms = Number(Trim(rest));
    if (!ms || *ms < 0 || *ms > 10000) return Error(L"usage: viewheld <ms>");
    return Ok(CBrowser::WaitForHeldViewQuery(static_cast<DWORD>(*ms)) ? L"1" : L"0");
  }
  if (command == L"viewqueries") return Ok(std::to_wstring(CBrowser::OffThreadViewQueries()));
  if (command == L"connections") {
    const ConnectionTally tally = CountedConnections();
    return Ok(std::to_wstring(tally.advised) + L" " + std::to_wstring(tally.unadvised) + L" " + std::to_wstring(tally.refused));
  }
  if (command == L"footprint") {
    // Wine answers GetGuiResources with 0, so leaks show as headroom lost; measured here because
    // GDI handles are counted per process.
    const bench::Headroom room = bench::MeasureHeadroom();
    return Ok(std::to_wstring(room.gdi) + L" " + std::to_wstring(room.user) + L" " + std::to_wstring(bench::WorkingSetBytes()));
  }
  if (command == L"counter") {
    const std::wstring name = NextWord(rest);
    const std::wstring exportName = Trim(rest);
    if (name.empty() || exportName.empty()) return Error(L"usage: counter <dll name> <export>");
    const HMODULE module = ::GetModuleHandleW(name.c_str());
    if (module == nullptr) return Error(L"not loaded");
    using CounterFn = LONG(WINAPI*)();
    std::string narrow;
    for (const wchar_t c : exportName) narrow += static_cast<char>(c);  // export names are ASCII
    const auto counter = reinterpret_cast<CounterFn>(reinterpret_cast<void*>(::GetProcAddress(module, narrow.c_str())));
    if (counter == nullptr) return Error(L"no export " + exportName);
    return Ok(std::to_wstring(counter()));
  }
  if (command == L"open") {
    const std::wstring location = Trim(rest);
    if (location.empty()) return Error(L"usage: open <location>");
    std::wstring error;
    const int id = m_windows.Open(location, error);
    return id != 0 ? Ok(std::to_wstring(id)) : Error(error);
  }

  // Every other command names a window.
  const auto id = Number(NextWord(rest));
  if (!id) return Error(L"usage: " + command + L" <id> ...");
  const std::shared_ptr<WindowThread> window = m_windows.Find(static_cast<int>(*id));
  if (!window) return Error(L"no window " + std::to_wstring(*id));

  std::wstring reply;
  const auto onWindow = [&](const std::function<std::wstring(ExplorerWindow&)>& work) {
    return window->Run(work, kCommandTimeoutMs, reply) ? Reply{reply} : Error(reply);
  };

  if (command == L"close") {
    std::wstring error;
    return m_windows.Close(window->Id(), error) ? Ok() : Error(error);
  }
  if (command == L"hwnd") {
    const std::optional<HWND> handle = Part(window->Handles(), Trim(rest));
    if (!handle) return Error(L"unknown part \"" + Trim(rest) + L"\"");
    return Ok(HandleText(*handle));
  }
  if (command == L"navigate") {
    const std::wstring location = Trim(rest);
    if (location.empty()) return Error(L"usage: navigate <id> <location>");
    return onWindow([location](ExplorerWindow& target) {
      const HRESULT hr = target.Navigate(location);
      return SUCCEEDED(hr) ? std::wstring(L"ok") : L"error cannot navigate (" + HexResult(hr) + L")";
    });
  }
  if (command == L"folder") {
    return onWindow([](ExplorerWindow& target) { return L"ok " + target.CurrentFolder(); });
  }
  if (command == L"resite" || command == L"unsite") {
    const bool withSite = command == L"resite";
    return onWindow([withSite](ExplorerWindow& target) {
      std::wstring results;
      for (const HRESULT hr : target.SiteHelpersAgain(withSite)) results += L" " + HexResult(hr);
      return L"ok" + results;
    });
  }
  if (command == L"sync") {
    return onWindow([](ExplorerWindow&) { return std::wstring(L"ok"); });
  }
  if (command == L"freeunused") {
    // COM frees only what the calling apartment loaded, so it runs in the window's own apartment.
    return onWindow([](ExplorerWindow&) {
      ::CoFreeUnusedLibrariesEx(0, 0);
      return std::wstring(L"ok");
    });
  }
  if (command == L"move" || command == L"size") {
    const auto first = Number(NextWord(rest));
    const auto second = Number(NextWord(rest));
    if (!first || !second || !Trim(rest).empty()) return Error(L"usage: " + command + L" <id> <a> <b>");
    const bool move = command == L"move";
    const int a = static_cast<int>(*first), b = static_cast<int>(*second);
    return onWindow([move, a, b](ExplorerWindow& target) {
      const UINT flags = SWP_NOZORDER | SWP_NOACTIVATE | (move ? SWP_NOSIZE : SWP_NOMOVE);
      const BOOL done = ::SetWindowPos(target.Handles().frame, nullptr, move ? a : 0, move ? b : 0, move ? 0 : a,
                                       move ? 0 : b, flags);
      return std::wstring(done ? L"ok" : L"error SetWindowPos failed");
    });
  }
  if (command == L"post" || command == L"send") {
    const std::optional<FrameMessage> parsed = ParseFrameMessage(rest);
    if (!parsed) return Error(L"usage: " + command + L" <id> <msg> <wparam> <lparam|pidl:location>");
    const bool send = command == L"send";
    const FrameMessage message = *parsed;
    return onWindow([message, send](ExplorerWindow& target) { return Deliver(target, message, send); });
  }
  return Error(L"unknown command \"" + command + L"\"");
}

}  // namespace explorer_standin
