#pragma once
// Runs work on a new thread while the calling thread waits without pumping messages. If the work
// needed the calling (window) thread it could not finish: after the timeout the answer is nullopt
// and the worker is left to end on its own.
#include <windows.h>

#include <chrono>
#include <future>
#include <memory>
#include <optional>
#include <thread>

namespace probe {

template <class Work>
auto OnWorker(DWORD timeoutMs, Work work) -> std::optional<decltype(work())> {
  using Result = decltype(work());
  auto answer = std::make_shared<std::promise<Result>>();
  std::future<Result> future = answer->get_future();
  std::thread worker([answer, work]() mutable {
    try {
      answer->set_value(work());
    } catch (...) {
      answer->set_exception(std::current_exception());
    }
  });
  if (future.wait_for(std::chrono::milliseconds(timeoutMs)) != std::future_status::ready) {
    worker.detach();
    return std::nullopt;
  }
  worker.join();
  try {
    return future.get();
  } catch (...) {
    return std::nullopt;
  }
}

}  // namespace probe
