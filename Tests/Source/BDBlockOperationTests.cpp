#include <Brindle/BDBlockOperation.h>

#include <string>
#include <thread>

#include <Brindle/Platform/NSOperationQueue.h>
#include <Brindle/Platform/Runtime.h>
#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

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
