// Per-object recursive monitors.
#include <Brindle/Platform/Runtime.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

TEST(MonitorTest, Tour) {
  const NSObject object = NSObject::new_();
  int total = 0;
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 1000; ++i) {
        const Synchronized inside(object);
        ++total;
      }
    });
  }
  for (std::thread& t : threads) t.join();
  EXPECT_EQ(total, 8000);
}

TEST(MonitorTest, IsRecursive) {
  const NSObject object = NSObject::new_();
  for (int i = 0; i < 100; ++i) EXPECT_EQ(objc_sync_enter(object), OBJC_SYNC_SUCCESS);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(objc_sync_exit(object), OBJC_SYNC_SUCCESS);
  EXPECT_EQ(objc_sync_exit(object), OBJC_SYNC_NOT_OWNING_THREAD_ERROR);
}

TEST(MonitorTest, LeavingWhatOneIsNotInside) {
  const NSObject object = NSObject::new_();
  EXPECT_EQ(objc_sync_exit(object), OBJC_SYNC_NOT_OWNING_THREAD_ERROR);
  EXPECT_EQ(objc_sync_enter(object), OBJC_SYNC_SUCCESS);
  int other = 1;
  std::thread([&] { other = objc_sync_exit(object); }).join();
  EXPECT_EQ(other, OBJC_SYNC_NOT_OWNING_THREAD_ERROR);
  EXPECT_EQ(objc_sync_exit(object), OBJC_SYNC_SUCCESS) << "the owner is still inside";
}

TEST(MonitorTest, NilDoesNothing) {
  EXPECT_EQ(objc_sync_enter(nullptr), OBJC_SYNC_SUCCESS);
  EXPECT_EQ(objc_sync_exit(nullptr), OBJC_SYNC_SUCCESS);
  const Synchronized inside{id()};
}

TEST(MonitorTest, AnotherThreadWaits) {
  const NSObject object = NSObject::new_();
  std::mutex lock;
  std::condition_variable changed;
  bool started = false;
  std::atomic<bool> entered{false};
  objc_sync_enter(object);
  std::thread other([&] {
    {
      const std::lock_guard guard(lock);
      started = true;
    }
    changed.notify_one();
    const Synchronized inside(object);
    entered = true;
  });
  {
    std::unique_lock guard(lock);
    changed.wait(guard, [&] { return started; });
  }
  EXPECT_FALSE(entered);
  objc_sync_exit(object);
  other.join();
  EXPECT_TRUE(entered);
}

TEST(MonitorTest, TwoObjectsNeverShareOne) {
  // A lock that any two shared would wait for ever. (ThreadSanitizer follows 64 held locks at
  // most.)
  std::vector<NSObject> held;
  std::vector<NSObject> others;
  for (int i = 0; i < 40; ++i) held.push_back(NSObject::new_());
  for (int i = 0; i < 300; ++i) others.push_back(NSObject::new_());
  for (const NSObject& a : held) objc_sync_enter(a);
  std::thread([&] {
    for (const NSObject& b : others) const Synchronized inside(b);
  }).join();
  for (const NSObject& a : held) EXPECT_EQ(objc_sync_exit(a), OBJC_SYNC_SUCCESS);
}

TEST(MonitorTest, ClassesAreObjectsToo) {
  const Synchronized inside{id(NSObject::class_())};
  int other = 1;
  std::thread([&] { other = objc_sync_exit(NSObject::class_()); }).join();
  EXPECT_EQ(other, OBJC_SYNC_NOT_OWNING_THREAD_ERROR);
}

TEST(MonitorTest, IsLeftWhenAnExceptionPasses) {
  const NSObject object = NSObject::new_();
  EXPECT_EQ(raised([&] {
              const Synchronized inside(object);
              throw std::runtime_error("out");
            }),
            "out");
  EXPECT_EQ(objc_sync_exit(object), OBJC_SYNC_NOT_OWNING_THREAD_ERROR);
}

// The next object at the same address was inside from its birth, and kept other threads out.
TEST(MonitorTest, GoesWithItsObject) {
  for (int i = 0; i < 100; ++i) {
    const NSObject object = NSObject::new_();
    EXPECT_EQ(objc_sync_exit(object), OBJC_SYNC_NOT_OWNING_THREAD_ERROR);
    objc_sync_enter(object);
    objc_sync_enter(object);
  }
  const Ender inItsEnd = Ender::with([](const Ender& self) { objc_sync_enter(self); });
}

TEST(MonitorTest, AnObjectThatEndsWhileAnotherThreadIsInside) {
  id object = Mortal::new_();
  ObjectRecord* record = object.record();
  std::thread([record] { objc_sync_enter(borrow<id>(record)); }).join();
  object = nullptr;
  EXPECT_EQ(Mortal::living(), 0);
}

TEST(MonitorTest, TheScopeKeepsItsObject) {
  Mortal object = Mortal::new_();
  {
    const Synchronized inside{id(object)};
    object = nullptr;
    EXPECT_EQ(Mortal::living(), 1);
  }
  EXPECT_EQ(Mortal::living(), 0);
}

}  // namespace
}  // namespace brindle
