#include "Platform/Foundation/Internal/WorkerThreads.h"

#include <condition_variable>
#include <mutex>
#include <thread>

#include <gtest/gtest.h>

namespace brindle::internal {
namespace {

/// Counts what has arrived, and waits for it.
class Count {
 public:
  void add() {
    const std::lock_guard guard(lock_);
    ++count_;
    changed_.notify_all();
  }
  void waitFor(int count) {
    std::unique_lock guard(lock_);
    changed_.wait(guard, [this, count] { return count_ >= count; });
  }

 private:
  std::mutex lock_;
  std::condition_variable changed_;
  int count_ = 0;
};

TEST(WorkerThreadsTest, Tour) {
  Count count;
  std::thread::id ran;
  runOnWorker([&] {
    ran = std::this_thread::get_id();
    count.add();
  });
  count.waitFor(1);
  EXPECT_NE(ran, std::this_thread::get_id());
}

TEST(WorkerThreadsTest, NobodyWaitsForAnotherOne) {
  // Each of them waits for all the others to run.
  constexpr int kWorkers = 20;
  for (int round = 0; round < 5; ++round) {
    Count started;
    Count done;
    for (int i = 0; i < kWorkers; ++i) {
      runOnWorker([&] {
        started.add();
        started.waitFor(kWorkers);
        done.add();
      });
    }
    done.waitFor(kWorkers);
  }
}

}  // namespace
}  // namespace brindle::internal
