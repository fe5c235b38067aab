#include "platform/work_profile.h"

#include <atomic>

namespace corvane::profile {

namespace {

constexpr int kKinds = static_cast<int>(Work::kCount);
std::atomic<std::int64_t> g_counts[kKinds];
std::atomic<std::int64_t> g_micros[kKinds];

std::int64_t Frequency() noexcept {
  static const std::int64_t frequency = [] {
    LARGE_INTEGER value{};
    ::QueryPerformanceFrequency(&value);
    return value.QuadPart > 0 ? value.QuadPart : 1;
  }();
  return frequency;
}

bool Valid(Work work) noexcept { return static_cast<int>(work) >= 0 && static_cast<int>(work) < kKinds; }

}  // namespace

void Add(Work work, std::int64_t microseconds) noexcept {
  if (!Valid(work)) return;
  g_counts[static_cast<int>(work)].fetch_add(1, std::memory_order_relaxed);
  g_micros[static_cast<int>(work)].fetch_add(microseconds, std::memory_order_relaxed);
}

Tally Get(Work work) noexcept {
  if (!Valid(work)) return {};
  return Tally{g_counts[static_cast<int>(work)].load(std::memory_order_relaxed),
               g_micros[static_cast<int>(work)].load(std::memory_order_relaxed)};
}

const wchar_t* NameOf(Work work) noexcept {
  static const wchar_t* const names[kKinds] = {
      L"caption renders", L"picture joins",  L"picture stretches",  L"renders/joins/stretches reused",
      L"size queries",    L"PNG decodes",    L"file reads",    L"premultiplications", L"PNG encodes",   L"file writes",        L"encoder look-ups",
      L"font creations",  L"font families",  L"windows created",    L"paints",             L"registry reads",
      L"process starts",
  };
  return Valid(work) ? names[static_cast<int>(work)] : L"?";
}

Timed::Timed(Work work) noexcept : m_work(work) {
  if (Valid(m_work)) ::QueryPerformanceCounter(&m_start);
}

Timed::~Timed() {
  if (!Valid(m_work)) return;
  LARGE_INTEGER end{};
  ::QueryPerformanceCounter(&end);
  Add(m_work, (end.QuadPart - m_start.QuadPart) * 1000000 / Frequency());
}

}  // namespace corvane::profile
