#include <Brindle/BDBlockOperation.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSOperationQueue.h>
#include <Brindle/Platform/Runtime.h>
#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

/// Calls the operation of BDBlockOperation itself.
template <FixedString Name, class R, class... A>
R original(const BDBlockOperation& self, const A&... arguments) {
  const IMP imp = class_getMethodImplementation(BDBlockOperation::class_(), selector<Name>());
  return callImplementation<R>(imp, self, selector<Name>(), arguments...);
}

TEST(BDBlockOperationTest, Tour) {
  std::string run;
  const BDBlockOperation operation = BDBlockOperation::blockOperationWithBlock(
      [&run] { run += "work "; }, [&run] { run += "cancel "; });
  operation->start();
  EXPECT_EQ(run, "work ");
  EXPECT_TRUE(operation->isFinished());
  operation->cancel();
  operation->cancel();
  EXPECT_EQ(run, "work cancel cancel ") << "each time, though it is finished";
}

TEST(BDBlockOperationTest, ACancelledOneNeverRunsItsWork) {
  std::string run;
  BDBlockOperation operation;
  operation = BDBlockOperation::blockOperationWithBlock(
      [&run] { run += "work "; },
      [&] { run += operation->isCancelled() ? "cancelled " : "too early "; });
  operation->cancel();
  EXPECT_EQ(run, "cancelled ");
  operation->start();
  EXPECT_EQ(run, "cancelled ");
  EXPECT_TRUE(operation->isFinished());
  operation->setCancelBlock(nullptr);
}

TEST(BDBlockOperationTest, WithoutACancelBlockOnlyMarks) {
  const auto operation = BDBlockOperation::blockOperationWithBlock([] {});
  EXPECT_TRUE(operation->cancelBlock() == nullptr);
  EXPECT_TRUE(operation->executionBlock() != nullptr);
  operation->cancel();
  EXPECT_TRUE(operation->isCancelled());
  const auto made = BDBlockOperation::alloc()->initWithBlock([] {});
  EXPECT_TRUE(made->cancelBlock() == nullptr);
}

TEST(BDBlockOperationTest, BlocksMayBeReplaced) {
  std::string run;
  const auto operation = BDBlockOperation::alloc()->initWithBlock([] {}, nullptr);
  operation->setExecutionBlock([&run] { run += "other "; });
  operation->setCancelBlock([&run] { run += "cancel "; });
  operation->executionBlock()();
  operation->cancelBlock()();
  operation->start();
  EXPECT_EQ(run, "other cancel other ");
}

TEST(BDBlockOperationTest, NilWorkFailsWhenItRuns) {
  const auto operation = BDBlockOperation::blockOperationWithBlock(nullptr);
  EXPECT_EQ(raised([&] { operation->start(); }),
            "NSInvalidArgumentException: a nil block was called");
  EXPECT_EQ(raised([] { BDBlockOperation::new_()->main(); }),
            "NSInvalidArgumentException: a nil block was called");
}

TEST(BDBlockOperationTest, OwnsItsBlocks) {
  {
    const Mortal mortal = Mortal::new_();
    const auto operation = BDBlockOperation::blockOperationWithBlock(
        [mortal] { mortal->setTag(1); }, [mortal] { mortal->setTag(2); });
    EXPECT_EQ(mortal->retainCount(), 3u) << "copied";
  }
  EXPECT_EQ(Mortal::living(), 0);
  Mortal::ended();
}

TEST(BDBlockOperationTest, ReadsItsBlocksThroughTheGetters) {
  const Class cls = makeClass(BDBlockOperation::class_());
  static std::string sent;
  addMethod<"executionBlock">(cls, [](const BDBlockOperation& self) {
    sent += "executionBlock ";
    return original<"executionBlock", Block<void()>>(self);
  });
  addMethod<"cancelBlock">(cls, [](const BDBlockOperation&) {
    sent += "cancelBlock ";
    return Block<void()>([] { sent += "cancelled "; });
  });
  const auto without = ClassOf<BDBlockOperation>(cls)->blockOperationWithBlock([] {});
  without->cancel();
  EXPECT_EQ(sent, "") << "a getter is not asked when there is no block";
  const auto with = ClassOf<BDBlockOperation>(cls)->blockOperationWithBlock([] {}, [] {});
  with->start();
  EXPECT_EQ(sent, "executionBlock ");
  with->cancel();
  EXPECT_EQ(sent, "executionBlock cancelBlock cancelled ");
}

TEST(BDBlockOperationTest, IsMadeByItsDesignatedInitialiser) {
  const Class cls = makeClass(BDBlockOperation::class_());
  static std::string sent;
  addMethod<"initWithBlock:cancel:">(cls,
                                     [](const BDBlockOperation& self, const Block<void()>& block,
                                        const Block<void()>& cancel) -> BDBlockOperation {
                                       sent += cancel ? "both " : "one ";
                                       return original<"initWithBlock:cancel:", BDBlockOperation>(
                                           self, block, cancel);
                                     });
  addMethod<"setExecutionBlock:">(
      cls, [](const BDBlockOperation&, const Block<void()>&) { sent += "setter "; });
  addMethod<"setCancelBlock:">(
      cls, [](const BDBlockOperation&, const Block<void()>&) { sent += "setter "; });
  const auto one = ClassOf<BDBlockOperation>(cls)->blockOperationWithBlock([] {});
  const auto both = ClassOf<BDBlockOperation>(cls)->blockOperationWithBlock([] {}, [] {});
  EXPECT_EQ(sent, "one both ");
  EXPECT_TRUE(one->executionBlock() && both->executionBlock() && both->cancelBlock());
}

TEST(BDBlockOperationTest, IsNilWhenItsBaseIs) {
  static bool refuses = false;
  addMethod<"init">(NSOperation::class_(), [](const NSOperation& self) -> NSOperation {
    if (refuses) return nullptr;
    return sendSuper<NSOperation, "init", NSOperation>(self);
  });
  refuses = true;
  const auto refused = BDBlockOperation::blockOperationWithBlock([] {}, [] {});
  refuses = false;
  EXPECT_TRUE(refused == nullptr);
  EXPECT_TRUE(BDBlockOperation::blockOperationWithBlock([] {}) != nullptr);
}

TEST(BDBlockOperationTest, RunsItsCancelBlockWhileItWorks) {
  std::mutex lock;
  std::condition_variable changed;
  int step = 0;
  const auto reach = [&](int next) {
    const std::lock_guard guard(lock);
    step = next;
    changed.notify_all();
  };
  const auto await = [&](int wanted) {
    std::unique_lock guard(lock);
    changed.wait(guard, [&] { return step >= wanted; });
  };
  std::thread::id cancelled;
  const auto operation = BDBlockOperation::blockOperationWithBlock(
      [&] {
        reach(1);
        await(2);
      },
      [&] {
        cancelled = std::this_thread::get_id();
        reach(2);
      });
  std::thread worker([&operation] { operation->start(); });
  await(1);
  operation->cancel();
  worker.join();
  EXPECT_EQ(cancelled, std::this_thread::get_id());
  EXPECT_TRUE(operation->isCancelled() && operation->isFinished());
}

TEST(BDBlockOperationTest, MarksItselfBeforeACancelBlockThatRaises) {
  const auto operation = BDBlockOperation::blockOperationWithBlock(
      [] {}, [] { NSException::raise("Oops"_ns, "not now"_ns); });
  EXPECT_EQ(raised([&] { operation->cancel(); }), "Oops: not now");
  EXPECT_TRUE(operation->isCancelled());
  EXPECT_EQ(raised([&] { operation->start(); }), "");
}

TEST(BDBlockOperationTest, OneThreadReadsItsBlocksWhileAnotherSets) {
  std::atomic<int> calls{0};
  std::atomic<bool> stop{false};
  const auto operation = BDBlockOperation::blockOperationWithBlock([] {}, [] {});
  std::thread reader([&] {
    while (!stop) {
      operation->executionBlock()();
      operation->cancelBlock()();
    }
  });
  for (int i = 0; i < 5000; ++i) {
    operation->setExecutionBlock([&calls] { ++calls; });
    operation->setCancelBlock([&calls] { --calls; });
  }
  stop = true;
  reader.join();
}

TEST(BDBlockOperationTest, RunsInAQueue) {
  const NSOperationQueue queue = NSOperationQueue::new_();
  std::thread::id ran;
  const auto operation =
      BDBlockOperation::blockOperationWithBlock([&ran] { ran = std::this_thread::get_id(); });
  queue->addOperation(operation);
  operation->waitUntilFinished();
  EXPECT_NE(ran, std::this_thread::get_id());
}

TEST(BDBlockOperationTest, ASubclassMakesItsOwn) {
  const Class sub = makeClass(BDBlockOperation::class_(), "Operation");
  const auto operation = ClassOf<BDBlockOperation>(sub)->blockOperationWithBlock([] {});
  EXPECT_TRUE(object_getClass(operation) == sub);
}

TEST(BDBlockOperationTest, DeclaresItsProperties) {
  const Class cls = BDBlockOperation::class_();
  EXPECT_STREQ(property_getAttributes(class_getProperty(cls, "executionBlock")),
               "T@?,C,VexecutionBlock");
  EXPECT_STREQ(property_getAttributes(class_getProperty(cls, "cancelBlock")), "T@?,C,VcancelBlock");
}

}  // namespace
}  // namespace brindle
