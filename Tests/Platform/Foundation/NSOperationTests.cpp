#include <Brindle/Platform/NSOperation.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>

#include <Brindle/Platform/NSOperationQueue.h>
#include <Brindle/Platform/Observation.h>
#include <gtest/gtest.h>

#include "Tests/Platform/Foundation/OperationTesting.h"
#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

/// "ready executing finished cancelled", those that hold.
std::string stateOf(const NSOperation& operation) {
  std::string state;
  if (operation->isReady()) state += "ready ";
  if (operation->isExecuting()) state += "executing ";
  if (operation->isFinished()) state += "finished ";
  if (operation->isCancelled()) state += "cancelled ";
  return state;
}

TEST(NSOperationTest, Tour) {
  std::string during;
  Job job;
  job = Job::with([&] { during = stateOf(job); });
  EXPECT_EQ(stateOf(job), "ready ");
  EXPECT_FALSE(job->isConcurrent());
  job->start();
  EXPECT_EQ(during, "ready executing ");
  EXPECT_EQ(stateOf(job), "ready finished ");
  EXPECT_EQ(job->announced(),
            "isExecuting+ isExecuting- isExecuting+ isFinished+ isExecuting- "
            "isFinished- ");
  job->waitUntilFinished();
  NSOperation::new_()->start();
}

TEST(NSOperationTest, WaitsForWhatItDependsOn) {
  const Job first = Job::with({});
  const Job second = Job::with({});
  const Job last = Job::with({});
  last->addDependency(first);
  last->addDependency(second);
  last->addDependency(second);
  EXPECT_EQ(last->dependencies()->count(), 2u);
  EXPECT_EQ(stateOf(last), "");
  EXPECT_EQ(last->announced(), "isReady+ isReady- ");
  first->start();
  EXPECT_EQ(stateOf(last), "");
  second->start();
  EXPECT_EQ(stateOf(last), "ready ");
  EXPECT_EQ(last->announced(), "isReady+ isReady- isReady+ isReady- ");
  EXPECT_EQ(last->dependencies()->count(), 2u) << "finished ones stay";
  last->addDependency(NSOperation::new_());
  EXPECT_EQ(stateOf(last), "");
  last->removeDependency(cast<NSOperation>(last->dependencies()[2]));
  EXPECT_EQ(stateOf(last), "ready ");
  last->removeDependency(first);
  EXPECT_EQ(last->dependencies()->count(), 1u);
}

TEST(NSOperationTest, AFinishedDependencyHoldsNobodyUp) {
  const Job first = Job::with({});
  first->start();
  const Job last = Job::with({});
  last->addDependency(first);
  EXPECT_EQ(stateOf(last), "ready ");
  EXPECT_EQ(last->announced(), "");
}

TEST(NSOperationTest, AnEndThatIsMissedHoldsNobodyUp) {
  // It finishes after it was asked, before the other one is on its list.
  const Class cls = makeClass(NSOperation::class_());
  static bool asked = false;
  addMethod<"isFinished">(cls, [](const NSOperation& self) {
    const IMP imp = class_getMethodImplementation(NSOperation::class_(), selector<"isFinished">());
    const auto isFinished = [&] {
      return callImplementation<bool>(imp, self, selector<"isFinished">());
    };
    if (asked) return isFinished();
    asked = true;
    self->start();
    return false;
  });
  const Job last = Job::with({});
  last->addDependency(send<"new", NSOperation>(cls));
  EXPECT_EQ(stateOf(last), "ready ");
}

TEST(NSOperationTest, ACancelledOneFinishesWithoutItsWork) {
  bool ran = false;
  const Job first = Job::with([&ran] { ran = true; });
  const Job last = Job::with({});
  last->addDependency(first);
  first->cancel();
  first->cancel();
  EXPECT_EQ(stateOf(first), "ready cancelled ");
  EXPECT_EQ(first->announced(), "isCancelled+ isCancelled- ") << "once";
  first->start();
  EXPECT_FALSE(ran);
  EXPECT_EQ(stateOf(first), "ready finished cancelled ");
  EXPECT_EQ(first->announced(), "isCancelled+ isCancelled- isFinished+ isFinished- ");
  EXPECT_EQ(stateOf(last), "ready ") << "it waits no longer";
}

TEST(NSOperationTest, ACancelledOneWaitsForNobody) {
  const Job last = Job::with({});
  last->addDependency(Job::with({}));
  last->cancel();
  EXPECT_EQ(stateOf(last), "ready cancelled ");
  EXPECT_EQ(last->announced(), "isReady+ isReady- isReady+ isCancelled+ isCancelled- isReady- ");
  last->start();
  EXPECT_TRUE(last->isFinished());
}

TEST(NSOperationTest, CancellingWhileItRunsOnlyMarks) {
  Job job;
  bool cancelled = false;
  job = Job::with([&] {
    job->cancel();
    cancelled = job->isCancelled();
  });
  job->start();
  EXPECT_TRUE(cancelled);
  EXPECT_EQ(stateOf(job), "ready finished cancelled ");
  const Job done = Job::with({});
  done->start();
  done->cancel();
  EXPECT_EQ(stateOf(done), "ready finished ") << "too late";
}

TEST(NSOperationTest, StartsOnce) {
  Job job;
  std::string again;
  job = Job::with([&] { again = raised([&] { job->start(); }); });
  const Job waiting = Job::with({});
  waiting->addDependency(job);
  EXPECT_EQ(raised([&] { waiting->start(); }),
            "NSInvalidArgumentException: -[TestJob start]: the operation is not ready");
  job->start();
  EXPECT_EQ(again, "NSInvalidArgumentException: -[TestJob start]: the operation is executing");
  EXPECT_EQ(raised([&] { job->start(); }),
            "NSInvalidArgumentException: -[TestJob start]: the operation has finished");
}

TEST(NSOperationTest, WhatMainRaisesIsPassedOn) {
  const Job job = Job::with([] { throw std::runtime_error("no luck"); });
  EXPECT_EQ(raised([&] { job->start(); }), "no luck");
  EXPECT_EQ(stateOf(job), "ready finished ");
}

/// Raises when it is told of the key, and counts how often that was.
Observation raiseOn(const NSOperation& operation, const NSString& key, NSUInteger options,
                    int& told) {
  return observe(operation, key, options, [&told, key](const NSDictionary&) {
    ++told;
    throw std::runtime_error("told of " + std::string(key));
  });
}

TEST(NSOperationTest, FinishesThoughItsObserversRaise) {
  for (const NSUInteger options : {NSUInteger{0}, NSUInteger{NSKeyValueObservingOptionPrior}}) {
    for (const NSString& key : {"isExecuting"_ns, "isFinished"_ns}) {
      const Job job = Job::with({});
      const Job last = Job::with({});
      last->addDependency(job);
      bool completed = false;
      job->setCompletionBlock([&completed] { completed = true; });
      int told = 0;
      const Observation raising = raiseOn(job, key, options, told);
      EXPECT_EQ(raised([&] { job->start(); }), "told of " + std::string(key));
      EXPECT_GT(told, 0);
      EXPECT_EQ(stateOf(job), "ready finished ");
      EXPECT_EQ(stateOf(last), "ready ");
      EXPECT_TRUE(completed);
      job->waitUntilFinished();
    }
  }
}

TEST(NSOperationTest, PassesOnWhatMainRaisedBeforeItsObservers) {
  const Job job = Job::with([] { throw std::runtime_error("no luck"); });
  int told = 0;
  const Observation raising = raiseOn(job, "isFinished"_ns, 0, told);
  EXPECT_EQ(raised([&] { job->start(); }), "no luck");
  EXPECT_EQ(told, 1);
  EXPECT_EQ(stateOf(job), "ready finished ");
}

TEST(NSOperationTest, LetsAllGoOnThoughTheObserversOfOneRaise) {
  const Job job = Job::with({});
  const Job one = Job::with({});
  const Job other = Job::with({});
  one->addDependency(job);
  other->addDependency(job);
  int told = 0;
  const Observation raising = raiseOn(one, "isReady"_ns, 0, told);
  EXPECT_EQ(raised([&] { job->start(); }), "told of isReady");
  EXPECT_EQ(stateOf(one) + stateOf(other), "ready ready ");
  job->waitUntilFinished();
}

TEST(NSOperationTest, IsReadyWhenItIsCancelledThoughItsObserversRaise) {
  const NSOperationQueue queue = NSOperationQueue::new_();
  const Job job = Job::with({});
  job->addDependency(Job::with({}));
  queue->addOperation(job);
  int told = 0;
  const Observation raising = raiseOn(job, "isCancelled"_ns, 0, told);
  EXPECT_EQ(raised([&] { job->cancel(); }), "told of isCancelled");
  job->waitUntilFinished();
  EXPECT_EQ(stateOf(job), "ready finished cancelled ");
}

TEST(NSOperationTest, CompletionRunsOnceWhenAllIsDone) {
  const Job job = Job::with({});
  std::string seen;
  job->setCompletionBlock([&] { seen += stateOf(job) + "| "; });
  EXPECT_TRUE(job->completionBlock() != nullptr);
  job->start();
  EXPECT_EQ(seen, "ready finished | ");
  EXPECT_TRUE(job->completionBlock() == nullptr);
  const Job cancelled = Job::with({});
  cancelled->setCompletionBlock([&] { seen += "cancelled"; });
  cancelled->cancel();
  cancelled->start();
  EXPECT_EQ(seen, "ready finished | cancelled") << "as well";
}

TEST(NSOperationTest, Priorities) {
  const NSOperation operation = NSOperation::new_();
  EXPECT_EQ(operation->queuePriority(), NSOperationQueuePriorityNormal);
  const auto rounded = [&](NSInteger priority) -> NSInteger {
    operation->setQueuePriority(static_cast<NSOperationQueuePriority>(priority));
    return operation->queuePriority();
  };
  EXPECT_EQ(rounded(100), 8);
  EXPECT_EQ(rounded(7), 4);
  EXPECT_EQ(rounded(3), 0);
  EXPECT_EQ(rounded(-3), 0);
  EXPECT_EQ(rounded(-5), -4);
  EXPECT_EQ(rounded(-100), -8);
}

TEST(NSOperationTest, RefusesNilAndItself) {
  const NSOperation operation = NSOperation::new_();
  EXPECT_EQ(raised([&] { operation->addDependency(nullptr); }),
            "NSInvalidArgumentException: -[NSOperation addDependency:]: nil argument");
  EXPECT_EQ(raised([&] { operation->removeDependency(nullptr); }),
            "NSInvalidArgumentException: -[NSOperation removeDependency:]: nil argument");
  EXPECT_NE(raised([&] { operation->addDependency(operation); }), "");
}

/// Works on after `start`, and says itself when it has finished.
class Remote : public Interface<Remote, NSOperation> {
 public:
  using Interface::Interface;
  static ClassPair<Remote> classPair;
  void answer() const { send<"answer">(*this); }
};
struct RemoteFields {
  std::atomic<bool> finished{false};
};
constexpr MethodDefinition kRemoteMethods[] = {
    method<"start">([](const Remote&) {}),
    method<"isConcurrent">([](const Remote&) { return true; }),
    method<"isFinished">(
        [](const Remote& self) { return fieldsOf<RemoteFields>(self).finished.load(); }),
    method<"answer">([](const Remote& self) {
      willChangeValueForKey(self, "isFinished"_ns);
      fieldsOf<RemoteFields>(self).finished = true;
      didChangeValueForKey(self, "isFinished"_ns);
    }),
};
constexpr ClassDefinition kRemote{
    .name = "RemoteJob", .methods = kRemoteMethods, .fields = fieldsDefinition<RemoteFields>()};

}  // namespace
constinit ClassPair<Remote> Remote::classPair{kRemote};
namespace {

TEST(NSOperationTest, ASubclassAnnouncesItsOwnEnd) {
  const Remote remote = Remote::new_();
  const Job after = Job::with({});
  after->addDependency(remote);
  remote->start();
  EXPECT_FALSE(after->isReady());
  std::thread waiter([&] { remote->waitUntilFinished(); });
  remote->answer();
  waiter.join();
  EXPECT_TRUE(after->isReady());
}

TEST(NSOperationTest, DependenciesFinishOnManyThreads) {
  for (int round = 0; round < 50; ++round) {
    const Job last = Job::with({});
    std::vector<Job> jobs;
    for (int i = 0; i < 4; ++i) jobs.push_back(Job::with({}));
    std::vector<std::thread> threads;
    for (const Job& job : jobs) {
      last->addDependency(job);
      threads.emplace_back([&job] { job->start(); });
    }
    for (std::thread& thread : threads) thread.join();
    ASSERT_TRUE(last->isReady());
  }
}

}  // namespace
}  // namespace brindle
