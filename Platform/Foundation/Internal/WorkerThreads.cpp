#include "Platform/Foundation/Internal/WorkerThreads.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace brindle::internal {
namespace {

constexpr std::chrono::milliseconds kIdleTime{500};

/// Threads are detached and the state is never destroyed: they may run while the program ends.
struct Workers {
  std::mutex lock;
  std::condition_variable work;
  std::deque<std::function<void()>> waiting;
  std::size_t idle = 0;
};

Workers& workers() {
  static auto& all = *new Workers;
  return all;
}

void serve(std::function<void()> work) {
  Workers& all = workers();
  for (;;) {
    work();
    work = nullptr;
    std::unique_lock guard(all.lock);
    ++all.idle;
    const bool more = all.work.wait_for(guard, kIdleTime, [&all] { return !all.waiting.empty(); });
    --all.idle;
    if (!more) return;
    work = std::move(all.waiting.front());
    all.waiting.pop_front();
  }
}

}  // namespace

void runOnWorker(std::function<void()> work) {
  Workers& all = workers();
  {
    const std::lock_guard guard(all.lock);
    // Those that wait are promised to idle threads already.
    if (all.idle > all.waiting.size()) {
      all.waiting.push_back(std::move(work));
      all.work.notify_one();
      return;
    }
  }
  std::thread(serve, std::move(work)).detach();
}

}  // namespace brindle::internal
