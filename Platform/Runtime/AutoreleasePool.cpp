#include <Brindle/Platform/AutoreleasePool.h>

#include <pthread.h>
#include <algorithm>
#include <exception>
#include <vector>

namespace brindle {
namespace {

struct Boundary {
  std::uint64_t token;
  std::size_t first;  // of the pool's objects
};

/// The pools of one thread: one list of objects, with a boundary for each open pool.
struct ThreadPools {
  std::vector<ObjectRecord*> objects;
  std::vector<Boundary> pools;
  std::uint64_t lastToken = 0;
};

// A bare pointer: touching it costs nothing at a thread's start or end.
constinit thread_local ThreadPools* current [[gnu::tls_model("initial-exec")]] = nullptr;

void drainTo(ThreadPools& pools, std::size_t count) {
  while (pools.objects.size() > count) {
    ObjectRecord* record = pools.objects.back();
    pools.objects.pop_back();
    detail::release(record);
  }
}

std::vector<Boundary>::iterator boundary(ThreadPools& pools, std::uint64_t token) {
  return std::lower_bound(pools.pools.begin(), pools.pools.end(), token,
                          [](const Boundary& b, std::uint64_t t) { return b.token < t; });
}

void endThread(void* pools) {
  auto* mine = static_cast<ThreadPools*>(pools);
  // What objects do at their end may autorelease again.
  current = mine;
  drainTo(*mine, 0);
  current = nullptr;
  delete mine;
}

pthread_key_t threadKey() {
  static const pthread_key_t key = [] {
    pthread_key_t made{};
    pthread_key_create(&made, &endThread);
    return made;
  }();
  return key;
}

ThreadPools& threadPools() {
  if (current == nullptr) [[unlikely]] {
    current = new ThreadPools;
    pthread_setspecific(threadKey(), current);
  }
  return *current;
}

}  // namespace

std::uint64_t autoreleasePoolPush() {
  ThreadPools& pools = threadPools();
  pools.pools.push_back({++pools.lastToken, pools.objects.size()});
  return pools.lastToken;
}

void autoreleasePoolPop(std::uint64_t token) {
  ThreadPools& pools = threadPools();
  // Tokens rise; a pool that went with an outer one is not found.
  auto pool = boundary(pools, token);
  if (pool == pools.pools.end() || pool->token != token) return;
  const std::size_t first = pool->first;
  // The pool stays open while its objects end, so that what they autorelease goes with them. It is
  // closed also when one of them raises.
  struct Closer {
    ThreadPools& pools;
    std::uint64_t token;
    ~Closer() { pools.pools.erase(boundary(pools, token), pools.pools.end()); }
  } const closer{pools, token};
  drainTo(pools, first);
}

void detail::autoreleaseOwned(ObjectRecord* record) {
  if (record == nullptr) return;
  const std::uint32_t count = record->count.load(std::memory_order_relaxed);
  // An object that is ending is gone when the pool is drained: the pool keeps nothing of it.
  if (count >= kCountDying && count < kCountImmortal) return;
  threadPools().objects.push_back(record);
}

AutoreleasePool::AutoreleasePool()
    : token_(autoreleasePoolPush()), uncaught_(std::uncaught_exceptions()) {}

AutoreleasePool::~AutoreleasePool() noexcept(false) {
  try {
    autoreleasePoolPop(token_);
  } catch (...) {
    // An exception that is on its way already must not meet another one.
    if (std::uncaught_exceptions() == uncaught_) throw;
  }
}

}  // namespace brindle
