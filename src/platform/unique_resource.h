#pragma once
// One move-only owner for every kind of handle: a traits type names the handle,
// its "no value" and how it is given back. Short aliases per kind live in handles.h.
#include <atomic>
#include <utility>

namespace corvane {

// Live-object counters per handle kind, so tests can prove that a soak leaves nothing behind.
template <class Traits>
struct LiveCount {
  static std::atomic<long>& value() noexcept {
    static std::atomic<long> count{0};
    return count;
  }
};

template <class Traits>
class unique_resource {
 public:
  using pointer = typename Traits::type;
  using traits_type = Traits;

  // How many owners of this kind hold a value right now.
  static long Live() noexcept { return LiveCount<Traits>::value().load(); }

  unique_resource() noexcept = default;
  explicit unique_resource(pointer value) noexcept : m_value(value) { Track(m_value, +1); }
  unique_resource(unique_resource&& other) noexcept : m_value(other.release()) { Track(m_value, +1); }
  unique_resource& operator=(unique_resource&& other) noexcept {
    if (this != &other) reset(other.release());
    return *this;
  }
  unique_resource(const unique_resource&) = delete;
  unique_resource& operator=(const unique_resource&) = delete;
  ~unique_resource() { reset(); }

  pointer get() const noexcept {
    Settle();
    return m_value;
  }
  explicit operator bool() const noexcept { return !Traits::is_invalid(get()); }

  // Frees the held value first, then hands out the slot for an out-parameter.
  pointer* put() noexcept {
    reset();
    m_putPending = true;
    return &m_value;
  }

  pointer release() noexcept {
    Settle();
    Track(m_value, -1);
    return std::exchange(m_value, Traits::invalid());
  }

  void reset(pointer value = Traits::invalid()) noexcept {
    Settle();
    pointer old = std::exchange(m_value, value);
    Track(m_value, +1);
    if (!Traits::is_invalid(old)) {
      Track(old, -1);
      Traits::close(old);
    }
  }

 private:
  // A value written through put() is counted the first time the owner is touched again.
  void Settle() const noexcept {
    if (m_putPending) {
      m_putPending = false;
      Track(m_value, +1);
    }
  }
  static void Track(pointer value, long delta) noexcept {
    if (!Traits::is_invalid(value)) LiveCount<Traits>::value().fetch_add(delta, std::memory_order_relaxed);
  }

  pointer m_value = Traits::invalid();
  mutable bool m_putPending = false;
};

// Traits for handles whose "no value" is a null pointer.
template <class T, auto Close>
struct null_handle_traits {
  using type = T;
  static constexpr T invalid() noexcept { return nullptr; }
  static bool is_invalid(T value) noexcept { return value == nullptr; }
  static void close(T value) noexcept { Close(value); }
};

}  // namespace corvane
