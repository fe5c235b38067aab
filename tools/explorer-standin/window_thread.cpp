#include "window_thread.h"

#include <ole2.h>

#include <future>
#include <utility>

#include "standin_log.h"

namespace explorer_standin {

namespace {

constexpr DWORD kOpenTimeoutMs = 30000;

}  // namespace

WindowThread::WindowThread(int id, std::wstring location, const RECT& rect, Ended ended)
    : m_id(id),
      m_location(std::move(location)),
      m_rect(rect),
      m_ended(std::move(ended)),
      m_opened(::CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      m_finished(::CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

WindowThread::~WindowThread() {
  if (m_thread.joinable()) m_thread.join();
}

bool WindowThread::Start(std::wstring& error) {
  if (!m_opened || !m_finished) {
    error = L"cannot create events";
    return false;
  }
  m_thread = std::thread([this] { Main(); });
  if (::WaitForSingleObject(m_opened.get(), kOpenTimeoutMs) != WAIT_OBJECT_0) {
    error = L"the window did not open in time";
    return false;
  }
  std::lock_guard<std::mutex> guard(m_lock);
  if (m_window == nullptr) {
    error = m_error.empty() ? L"the window failed to open" : m_error;
    return false;
  }
  return true;
}

WindowHandles WindowThread::Handles() const {
  std::lock_guard<std::mutex> guard(m_lock);
  return m_handles;
}

bool WindowThread::HasEnded() const noexcept {
  return ::WaitForSingleObject(m_finished.get(), 0) == WAIT_OBJECT_0;
}

bool WindowThread::IsOpen() const {
  std::lock_guard<std::mutex> guard(m_lock);
  return m_window != nullptr;
}

bool WindowThread::Run(const std::function<std::wstring(ExplorerWindow&)>& work, DWORD timeoutMs, std::wstring& reply) {
  std::shared_ptr<TaskQueue> tasks;
  ExplorerWindow* window = nullptr;
  {
    std::lock_guard<std::mutex> guard(m_lock);
    tasks = m_tasks;
    window = m_window;
  }
  auto answer = std::make_shared<std::promise<std::wstring>>();
  std::future<std::wstring> future = answer->get_future();
  const bool queued = tasks && window != nullptr && tasks->Post([answer, window, work] {
    try {
      answer->set_value(work(*window));
    } catch (...) {
      answer->set_exception(std::current_exception());
    }
  });
  if (!queued) {
    reply = L"window " + std::to_wstring(m_id) + L" is closed";
    return false;
  }
  if (future.wait_for(std::chrono::milliseconds(timeoutMs)) != std::future_status::ready) {
    reply = L"window " + std::to_wstring(m_id) + L" did not answer in time";
    return false;
  }
  try {
    reply = future.get();
    return true;
  } catch (const std::future_error&) {
    // The queue dropped the work unrun: the window closed first.
    reply = L"window " + std::to_wstring(m_id) + L" closed before the command ran";
  } catch (...) {
    reply = L"the command failed on the window thread";
  }
  return false;
}

bool WindowThread::Close(DWORD timeoutMs) {
  std::wstring ignored;
  // A window already closing refuses the task; waiting for its end is all that is left to do.
  Run([](ExplorerWindow& window) {
        window.Close();
        return std::wstring();
      },
      timeoutMs, ignored);
  if (::WaitForSingleObject(m_finished.get(), timeoutMs) != WAIT_OBJECT_0) return false;
  if (m_thread.joinable()) m_thread.join();
  return true;
}

void WindowThread::Main() noexcept {
  const HRESULT ole = ::OleInitialize(nullptr);
  bool wasOpen = false;
  try {
    ExplorerWindow window(m_id);
    std::wstring error;
    const HRESULT hr = SUCCEEDED(ole) ? window.Open(m_location, m_rect, error) : ole;
    {
      std::lock_guard<std::mutex> guard(m_lock);
      m_handles = window.Handles();
      if (SUCCEEDED(hr)) {
        wasOpen = true;
        m_tasks = window.Tasks();
        m_window = &window;
      } else {
        m_error = error.empty() ? L"OleInitialize failed (" + HexResult(ole) + L")" : error;
      }
    }
    ::SetEvent(m_opened.get());
    if (SUCCEEDED(hr)) {
      MSG message;
      while (::GetMessageW(&message, nullptr, 0, 0) > 0) {
        // A WM_SIZE that came through the queue (posted, not sent by a move) is noted on its window
        // as the last posted size, so a test can tell the add-in's own post from the move's.
        if (message.message == WM_SIZE) {
          ::SetPropW(message.hwnd, L"CorvanePostedSize", reinterpret_cast<HANDLE>(static_cast<ULONG_PTR>(message.lParam) + 1));
        }
        ::TranslateMessage(&message);
        ::DispatchMessageW(&message);
      }
    }
    {
      std::lock_guard<std::mutex> guard(m_lock);
      m_tasks.reset();
      m_window = nullptr;
    }
    window.Close();
  } catch (...) {
    Log(L"window " + std::to_wstring(m_id) + L": its thread stopped on an exception");
  }
  ::SetEvent(m_opened.get());
  if (SUCCEEDED(ole)) ::OleUninitialize();
  Log(L"window " + std::to_wstring(m_id) + L": thread ends");
  try {
    if (m_ended) m_ended(m_id, wasOpen);
  } catch (...) {
  }
  ::SetEvent(m_finished.get());
}

}  // namespace explorer_standin
