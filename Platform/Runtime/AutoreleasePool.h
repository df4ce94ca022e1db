// Autorelease pools: objects that live until the end of a stretch of work.
//
// References own, so pools are for those who ask: `autorelease` retains an object now and releases
// it when the current pool is drained.
//
//   {
//     AutoreleasePool pool;
//     weakly.lock()->autorelease();   // alive to the closing brace at least
//   }
//
// Pools belong to their thread and nest. Draining an outer pool takes along inner ones left above
// it, and draining one of those afterwards does nothing. A thread without a pool has one that is
// drained at its end; the main thread's is not, since the process ends with it.
#pragma once

#include <cstdint>

#include <Brindle/Platform/Export.h>
#include <Brindle/Platform/Object.h>

namespace brindle {

/// Opens a pool on the current thread and answers its token.
BRINDLE_PLATFORM_EXPORT std::uint64_t autoreleasePoolPush();

/// Drains the pool of that token and those above it, the newest object first. A raise out of an
/// object's end leaves the drain; the objects not yet released stay in the pool below.
BRINDLE_PLATFORM_EXPORT void autoreleasePoolPop(std::uint64_t token);

namespace detail {
/// Gives one owner of the record to the current pool. An object whose end has begun is left out.
BRINDLE_PLATFORM_EXPORT void autoreleaseOwned(ObjectRecord* record);
}  // namespace detail

/// A pool from here to the end of the scope, also when the scope is left by an exception. A raise
/// out of a drained object's end leaves the destructor, unless another exception is on its way.
class AutoreleasePool {
 public:
  BRINDLE_PLATFORM_EXPORT AutoreleasePool();
  BRINDLE_PLATFORM_EXPORT ~AutoreleasePool() noexcept(false);
  AutoreleasePool(const AutoreleasePool&) = delete;
  AutoreleasePool& operator=(const AutoreleasePool&) = delete;

 private:
  std::uint64_t token_;
  int uncaught_;
};

}  // namespace brindle
