#include <Brindle/Platform/NSOperationQueue.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include <Brindle/Platform/NSMutableArray.h>
#include <gtest/gtest.h>

#include "Tests/Platform/Foundation/OperationTesting.h"
#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

/// A door that threads wait at until it is opened.
class Door {
 public:
  void open() {
    const std::lock_guard guard(lock_);
    isOpen_ = true;
    opened_.notify_all();
  }
  void pass() {
    std::unique_lock guard(lock_);
    opened_.wait(guard, [this] { return isOpen_; });
  }

 private:
  std::mutex lock_;
  std::condition_variable opened_;
  bool isOpen_ = false;
};

TEST(NSOperationQueueTest, Tour) {
  const NSOperationQueue queue = NSOperationQueue::new_();
  std::atomic<int> runs{0};
  std::thread::id ran;
  const Job first = Job::with([&] {
    ran = std::this_thread::get_id();
    ++runs;
  });
  const Job second = Job::with([&] { ++runs; });
  second->addDependency(first);
  queue->addOperation(second);
  queue->addOperation(first);
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(runs, 2);
  EXPECT_NE(ran, std::this_thread::get_id());
  EXPECT_TRUE(first->isFinished() && second->isFinished());
  EXPECT_EQ(queue->operationCount(), 0u);
  queue->waitUntilAllOperationsAreFinished();
}

TEST(NSOperationQueueTest, DefaultsAndNames) {
  const NSOperationQueue queue = NSOperationQueue::new_();
  EXPECT_EQ(queue->maxConcurrentOperationCount(), -1);
  EXPECT_FALSE(queue->isSuspended());
  EXPECT_EQ(queue->operations()->count(), 0u);
  EXPECT_TRUE(queue->name() == nullptr);
  queue->setName("pictures"_ns);
  EXPECT_TRUE(queue->name()->isEqual("pictures"_ns));
  EXPECT_TRUE(NSOperationQueue::currentQueue() == nullptr);
}

TEST(NSOperationQueueTest, ASuspendedQueueStartsNothing) {
  const NSOperationQueue queue = NSOperationQueue::new_();
  queue->setSuspended(true);
  EXPECT_TRUE(queue->isSuspended());
  std::string order;
  const Job low = Job::with([&] { order += "low "; });
  const Job high = Job::with([&] { order += "high "; });
  const Job normal = Job::with([&] { order += "normal "; });
  low->setQueuePriority(NSOperationQueuePriorityLow);
  high->setQueuePriority(NSOperationQueuePriorityVeryHigh);
  queue->setMaxConcurrentOperationCount(1);
  queue->addOperations(NSArray{low, normal, high}, false);
  EXPECT_EQ(queue->operationCount(), 3u);
  EXPECT_TRUE(queue->operations()[1] == normal) << "in the order they were added";
  EXPECT_FALSE(low->isExecuting() || low->isFinished());
  queue->setSuspended(false);
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(order, "high normal low ");
}

TEST(NSOperationQueueTest, AtMostSoManyAtOnce) {
  const NSOperationQueue queue = NSOperationQueue::new_();
  queue->setMaxConcurrentOperationCount(2);
  EXPECT_EQ(queue->maxConcurrentOperationCount(), 2);
  std::atomic<int> now{0};
  std::atomic<int> most{0};
  for (int i = 0; i < 200; ++i) {
    queue->addOperation(Job::with([&] {
      const int running = ++now;
      int seen = most;
      while (running > seen && !most.compare_exchange_weak(seen, running)) {
      }
      std::this_thread::yield();
      --now;
    }));
  }
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_LE(most, 2);
  EXPECT_EQ(raised([&] { queue->setMaxConcurrentOperationCount(-2); }),
            "NSInvalidArgumentException: -[NSOperationQueue setMaxConcurrentOperationCount:]: a "
            "count below -1: -2");
}

TEST(NSOperationQueueTest, ZeroAtOnceStartsNone) {
  const NSOperationQueue queue = NSOperationQueue::new_();
  queue->setMaxConcurrentOperationCount(0);
  const Job job = Job::with({});
  queue->addOperation(job);
  EXPECT_EQ(queue->operationCount(), 1u);
  EXPECT_FALSE(job->isFinished());
  queue->setMaxConcurrentOperationCount(1);
  job->waitUntilFinished();
}

TEST(NSOperationQueueTest, SeveralRunAtTheSameTime) {
  const NSOperationQueue queue = NSOperationQueue::new_();
  Door door;
  queue->addOperation(Job::with([&door] { door.pass(); }));
  queue->addOperation(Job::with([&door] { door.open(); }));
  queue->waitUntilAllOperationsAreFinished();
}

TEST(NSOperationQueueTest, CancelsAll) {
  const NSOperationQueue queue = NSOperationQueue::new_();
  Door started;
  Door door;
  std::atomic<int> runs{0};
  const Job running = Job::with([&] {
    started.open();
    door.pass();
  });
  const Job never = Job::with([&] { ++runs; });
  const Job waiting = Job::with([&] { ++runs; });
  waiting->addDependency(NSOperation::new_());
  queue->setMaxConcurrentOperationCount(1);
  queue->addOperations(NSArray{running, never, waiting}, false);
  started.pass();
  queue->cancelAllOperations();
  EXPECT_EQ(queue->operationCount(), 3u) << "they stay until they are finished";
  door.open();
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(runs, 0);
  EXPECT_TRUE(running->isCancelled() && never->isFinished() && waiting->isFinished());
}

TEST(NSOperationQueueTest, RefusesOperationsThatAreTakenAlready) {
  const NSOperationQueue queue = NSOperationQueue::new_();
  const std::string refusal =
      "NSInvalidArgumentException: -[NSOperationQueue addOperation:]: the operation is in a queue, "
      "executing or finished";
  const Job done = Job::with({});
  done->start();
  EXPECT_EQ(raised([&] { queue->addOperation(done); }), refusal);
  const Job queued = Job::with({});
  queue->setSuspended(true);
  queue->addOperation(queued);
  EXPECT_EQ(raised([&] { queue->addOperation(queued); }), refusal);
  EXPECT_EQ(raised([&] { NSOperationQueue::new_()->addOperation(queued); }), refusal);
  EXPECT_EQ(raised([&] { queue->addOperation(nullptr); }),
            "NSInvalidArgumentException: -[NSOperationQueue addOperation:]: nil argument");
  queue->setSuspended(false);
  queued->waitUntilFinished();
}

TEST(NSOperationQueueTest, KnowsTheQueueThatRunsAnOperation) {
  const NSOperationQueue queue = NSOperationQueue::new_();
  NSOperationQueue seen;
  const Job job = Job::with([&seen] { seen = NSOperationQueue::currentQueue(); });
  queue->addOperation(job);
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(seen == queue);
}

TEST(NSOperationQueueTest, WorksOnWhenNobodyRefersToIt) {
  Door door;
  const Job first = Job::with([&door] { door.pass(); });
  const Job last = Job::with({});
  last->addDependency(first);
  {
    const NSOperationQueue queue = NSOperationQueue::new_();
    queue->addOperations(NSArray{last, first}, false);
  }
  door.open();
  last->waitUntilFinished();
}

TEST(NSOperationQueueTest, LetsGoOfFinishedOperations) {
  const NSOperationQueue queue = NSOperationQueue::new_();
  {
    const Mortal mortal = Mortal::new_();
    queue->addOperation(Job::with([mortal] { mortal->setTag(1); }));
    EXPECT_GE(Mortal::living(), 1);
  }
  queue->waitUntilAllOperationsAreFinished();
  // The worker may hold it for another moment.
  while (Mortal::living() != 0) std::this_thread::yield();
}

TEST(NSOperationQueueTest, ManyOperationsInChains) {
  const NSOperationQueue queue = NSOperationQueue::new_();
  constexpr int kChains = 20;
  constexpr int kLength = 50;
  std::atomic<int> runs{0};
  std::atomic<int> wrong{0};
  for (int chain = 0; chain < kChains; ++chain) {
    Job previous;
    for (int i = 0; i < kLength; ++i) {
      const Job job = Job::with([&, previous] {
        if (previous && !previous->isFinished()) ++wrong;
        ++runs;
      });
      if (previous) job->addDependency(previous);
      queue->addOperation(job);
      previous = job;
    }
  }
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(runs, kChains * kLength);
  EXPECT_EQ(wrong, 0);
}

TEST(NSOperationQueueTest, WaitsForWhatAnOperationIsMadeToDependOnInTheQueue) {
  const NSOperationQueue queue = NSOperationQueue::new_();
  queue->setSuspended(true);
  std::string order;
  const Job first = Job::with([&order] { order += "first "; });
  const Job last = Job::with([&order] { order += "last "; });
  queue->addOperation(last);
  last->addDependency(first);  // it was ready, and had its turn
  queue->setSuspended(false);
  const Job other = Job::with({});
  queue->addOperations(NSArray{other}, true);
  queue->addOperation(first);
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(order, "first last ");
}

TEST(NSOperationQueueTest, WaitsForTheOperationsItIsGiven) {
  const NSOperationQueue queue = NSOperationQueue::new_();
  const NSMutableArray jobs = NSMutableArray::array();
  std::atomic<int> runs{0};
  for (int i = 0; i < 10; ++i) jobs->addObject(Job::with([&runs] { ++runs; }));
  queue->addOperations(jobs, true);
  EXPECT_EQ(runs, 10);
}

}  // namespace
}  // namespace brindle
