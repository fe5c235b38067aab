#include "window_set.h"

#include "standin_log.h"

namespace explorer_standin {

namespace {

constexpr DWORD kCloseTimeoutMs = 15000;

}  // namespace

int WindowSet::Open(const std::wstring& location, std::wstring& error) {
  TakeEnded();
  int id = 0;
  {
    std::lock_guard<std::mutex> guard(m_lock);
    id = m_nextId++;
  }
  // Cascaded like Explorer's new windows, so several stay visible at once.
  const int offset = 30 * ((id - 1) % 10);
  const RECT rect{60 + offset, 40 + offset, 60 + offset + m_width, 40 + offset + m_height};
  auto window = std::make_shared<WindowThread>(id, location, rect, [this](int ended, bool wasOpen) { OnEnded(ended, wasOpen); });
  {
    std::lock_guard<std::mutex> guard(m_lock);
    m_windows.emplace(id, window);
  }
  if (!window->Start(error)) {
    Log(L"window " + std::to_wstring(id) + L" failed to open at \"" + location + L"\": " + error);
    std::lock_guard<std::mutex> guard(m_lock);
    m_windows.erase(id);
    // The id goes back unless a later window took the next one meanwhile.
    if (m_nextId == id + 1) m_nextId = id;
    return 0;
  }
  Log(L"window " + std::to_wstring(id) + L" opened at \"" + location + L"\"");
  return id;
}

std::shared_ptr<WindowThread> WindowSet::Find(int id) {
  std::lock_guard<std::mutex> guard(m_lock);
  const auto found = m_windows.find(id);
  // A window still opening is not there yet for commands: it has nothing to run them with.
  return found == m_windows.end() || !found->second->IsOpen() ? nullptr : found->second;
}

bool WindowSet::Close(int id, std::wstring& error) {
  const std::shared_ptr<WindowThread> window = Find(id);
  if (!window) {
    error = L"no window " + std::to_wstring(id);
    return false;
  }
  if (!window->Close(kCloseTimeoutMs)) {
    error = L"window " + std::to_wstring(id) + L" did not close in time";
    return false;
  }
  std::lock_guard<std::mutex> guard(m_lock);
  m_windows.erase(id);
  return true;
}

void WindowSet::CloseAll() noexcept {
  try {
    std::map<int, std::shared_ptr<WindowThread>> windows;
    {
      std::lock_guard<std::mutex> guard(m_lock);
      windows.swap(m_windows);
    }
    for (auto& [id, window] : windows) {
      if (!window->Close(kCloseTimeoutMs)) Log(L"window " + std::to_wstring(id) + L" did not close in time");
    }
  } catch (...) {
  }
}

std::vector<int> WindowSet::Ids() {
  TakeEnded();
  std::lock_guard<std::mutex> guard(m_lock);
  std::vector<int> ids;
  for (const auto& entry : m_windows) {
    if (entry.second->IsOpen()) ids.push_back(entry.first);
  }
  return ids;
}

void WindowSet::OnEnded(int id, bool wasOpen) noexcept {
  // A window that failed to open was never one the user had; its end ends nothing.
  if (!wasOpen) return;
  try {
    std::lock_guard<std::mutex> guard(m_lock);
    for (const auto& [other, window] : m_windows) {
      if (other != id && !window->HasEnded()) return;
    }
    if (!m_keepRunning) {
      Log(L"the last window has closed");
      ::SetEvent(m_lastClosed);
    }
  } catch (...) {
  }
}

std::vector<std::shared_ptr<WindowThread>> WindowSet::TakeEnded() {
  std::vector<std::shared_ptr<WindowThread>> ended;
  std::lock_guard<std::mutex> guard(m_lock);
  for (auto entry = m_windows.begin(); entry != m_windows.end();) {
    if (entry->second->HasEnded()) {
      ended.push_back(std::move(entry->second));
      entry = m_windows.erase(entry);
    } else {
      ++entry;
    }
  }
  return ended;
}

}  // namespace explorer_standin
