#pragma once
// The module's lock count: live COM objects, LockServer calls and explicit locks.
// DllCanUnloadNow answers from it.
#include <atomic>

namespace corvane {

class ModuleLock {
 public:
  static long Lock() noexcept { return ++Count(); }
  static long Unlock() noexcept { return --Count(); }
  static long Value() noexcept { return Count().load(); }

 private:
  static std::atomic<long>& Count() noexcept {
    static std::atomic<long> count{0};
    return count;
  }
};

// Holds one lock for its own lifetime (a member of every COM object).
class ScopedModuleLock {
 public:
  ScopedModuleLock() noexcept { ModuleLock::Lock(); }
  ScopedModuleLock(const ScopedModuleLock&) noexcept { ModuleLock::Lock(); }
  ScopedModuleLock& operator=(const ScopedModuleLock&) noexcept { return *this; }
  ~ScopedModuleLock() { ModuleLock::Unlock(); }
};

}  // namespace corvane
