#include <Brindle/BDOnce.h>

namespace brindle {
namespace {

void pauseSpinning() noexcept {
#if defined(__x86_64__) || defined(__i386__)
  __builtin_ia32_pause();
#elif defined(__aarch64__)
  asm volatile("yield");
#endif
}

}  // namespace

void detail::waitForOnce(std::atomic_ref<NSInteger> flag) noexcept {
  while (flag.load(std::memory_order_acquire) != -1) pauseSpinning();
}

void do_once(NSInteger* flag, ObjectRecord* block) {
  do_once(flag, [block] {
    const detail::Lent<Block<void()>> lent(block);
    lent.reference();
  });
}

}  // namespace brindle
