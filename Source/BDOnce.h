// Work that runs once, however many threads ask for it at the same time.
//
//   NSInteger once = 0;  // one for each piece of work, for ever
//   do_once(&once, [] { table = makeTable(); });
//   use(table);          // made, on every thread
//
// The flag is 0 before the first run, 1 while it lasts and -1 from then on. Who comes meanwhile
// waits, spinning. What the run wrote is visible to everybody who returns. A run that raises leaves
// the flag at 1, and one that asks for the same flag waits for itself: everybody then waits for
// ever. Use `std::call_once` where a run may fail.
#pragma once

#include <atomic>

#include <Brindle/BDLibrary.h>
#include <Brindle/Platform/Block.h>

namespace brindle {

extern "C" {
/// The block takes and answers nothing.
BRINDLE_EXPORT void do_once(NSInteger* flag, ObjectRecord* block);
}

namespace detail {

inline void fullBarrier() noexcept {
  // ThreadSanitizer knows no barriers; the flag's own order says all it has to know.
#if !defined(__SANITIZE_THREAD__)
  std::atomic_thread_fence(std::memory_order_seq_cst);
#endif
}

/// Waits until the flag says that the run is done.
BRINDLE_EXPORT void waitForOnce(std::atomic_ref<NSInteger> flag) noexcept;

}  // namespace detail

/// Runs the body (a lambda or a `Block<void()>`) unless it has run already under this flag; returns
/// when it has. Afterwards a call costs a compare-and-swap that fails, a read and a barrier.
template <class Body>
requires std::is_invocable_v<Body&>
inline void do_once(NSInteger* flag, Body&& body) {
  const std::atomic_ref<NSInteger> state(*flag);
  NSInteger untouched = 0;
  if (state.compare_exchange_strong(untouched, 1)) [[unlikely]] {
    body();
    detail::fullBarrier();
    state.store(-1, std::memory_order_release);
    return;
  }
  if (state.load(std::memory_order_acquire) != -1) [[unlikely]]
    detail::waitForOnce(state);
  detail::fullBarrier();
}

}  // namespace brindle
