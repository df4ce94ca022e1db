#include <Brindle/Platform/NSAutoreleasePool.h>

#include <gtest/gtest.h>

#include <Brindle/Platform/Weak.h>

namespace brindle {
namespace {

Weak<NSObject> leaveInPool() {
  const NSObject object = NSObject::alloc()->init()->autorelease();
  return object;
}

TEST(NSAutoreleasePoolTest, ReleasesWhenItIsDrained) {
  const NSAutoreleasePool pool = NSAutoreleasePool::new_();
  const Weak<NSObject> weak = leaveInPool();
  EXPECT_TRUE(weak.lock() != nullptr);
  pool->drain();
  EXPECT_TRUE(weak.lock() == nullptr);
  pool->drain();  // nothing is left to do
}

TEST(NSAutoreleasePoolTest, IsDrainedWithItsLastReference) {
  NSAutoreleasePool pool = NSAutoreleasePool::new_();
  const Weak<NSObject> weak = leaveInPool();
  pool = nullptr;
  EXPECT_TRUE(weak.lock() == nullptr);
}

TEST(NSAutoreleasePoolTest, AnOuterPoolTakesInnerOnesAlong) {
  const NSAutoreleasePool outer = NSAutoreleasePool::new_();
  const NSAutoreleasePool inner = NSAutoreleasePool::new_();
  const Weak<NSObject> weak = leaveInPool();
  outer->drain();
  EXPECT_TRUE(weak.lock() == nullptr);
  inner->drain();
}

TEST(NSAutoreleasePoolTest, TakesObjectsGivenToTheClass) {
  const NSAutoreleasePool pool = NSAutoreleasePool::new_();
  Weak<NSObject> weak;
  {
    const NSObject object = NSObject::alloc()->init();
    weak = object;
    NSAutoreleasePool::class_()->addObject(object);
  }
  EXPECT_TRUE(weak.lock() != nullptr);
  pool->drain();
  EXPECT_TRUE(weak.lock() == nullptr);
}

}  // namespace
}  // namespace brindle
