// A lock for a few instructions.
#pragma once

#include <atomic>
#include <chrono>
#include <thread>

namespace brindle::detail {

/// Half the price of a mutex where nobody else wants it. Nothing that runs under it runs other
/// code.
class SpinLock {
 public:
  void lock() noexcept {
    if (busy_.exchange(true, std::memory_order_acquire)) [[unlikely]]
      lockLater();
  }
  void unlock() noexcept { busy_.store(false, std::memory_order_release); }

 private:
  [[gnu::noinline]] void lockLater() noexcept {
    constexpr int kYields = 100;
    for (int i = 0; busy_.exchange(true, std::memory_order_acquire); ++i) {
      if (i < kYields) {
        std::this_thread::yield();
      } else {
        // Yielding lets nobody of a lower priority run, and it may be one of those who has it.
        std::this_thread::sleep_for(std::chrono::microseconds(50));
      }
    }
  }

  std::atomic<bool> busy_{false};
};

}  // namespace brindle::detail
