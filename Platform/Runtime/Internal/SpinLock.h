// A lock for a few instructions.
#pragma once

#include <atomic>
#include <thread>

namespace brindle::detail {

/// Half the price of a mutex where nobody else wants it. Nothing that runs under it runs other
/// code.
class SpinLock {
 public:
  void lock() noexcept {
    while (busy_.exchange(true, std::memory_order_acquire)) std::this_thread::yield();
  }
  void unlock() noexcept { busy_.store(false, std::memory_order_release); }

 private:
  std::atomic<bool> busy_{false};
};

}  // namespace brindle::detail
