#include <Brindle/Platform/NSThread.h>

#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <Brindle/Platform/Weak.h>

namespace brindle {
namespace {

TEST(NSThreadTest, EveryThreadHasADictionaryOfItsOwn) {
  NSThread::currentThread()->threadDictionary()->setObject("main"_ns, "who"_ns);
  std::thread([] {
    EXPECT_EQ(NSThread::currentThread()->threadDictionary()->count(), 0U);
    EXPECT_TRUE(NSThread::currentThread() == NSThread::currentThread());
    EXPECT_FALSE(NSThread::currentThread() == NSThread::mainThread());
  }).join();
  EXPECT_TRUE(
      NSThread::currentThread()->threadDictionary()->objectForKey("who"_ns)->isEqual("main"_ns));
  NSThread::currentThread()->threadDictionary()->removeAllObjects();
}

TEST(NSThreadTest, TheMainThreadIsTheFirst) {
  EXPECT_TRUE(NSThread::class_()->isMainThread());
  EXPECT_TRUE(NSThread::currentThread()->isMainThread());
  EXPECT_TRUE(NSThread::currentThread() == NSThread::mainThread());
  std::thread([] {
    EXPECT_FALSE(NSThread::class_()->isMainThread());
    EXPECT_FALSE(NSThread::currentThread()->isMainThread());
    EXPECT_TRUE(NSThread::mainThread()->isMainThread());
  }).join();
}

TEST(NSThreadTest, TheDictionaryGoesWithItsThread) {
  Weak<NSObject> weak;
  std::thread([&weak] {
    const NSObject object = NSObject::alloc()->init();
    weak = object;
    NSThread::currentThread()->threadDictionary()->setObject(object, "object"_ns);
  }).join();
  EXPECT_TRUE(weak.lock() == nullptr);
}

TEST(NSThreadTest, HasAName) {
  std::thread([] {
    EXPECT_TRUE(NSThread::currentThread()->name() == nullptr);
    NSThread::currentThread()->setName("worker"_ns);
    EXPECT_EQ(std::string(NSThread::currentThread()->name()), "worker");
  }).join();
}

TEST(NSThreadTest, ManyThreadsAtOnce) {
  std::atomic<int> right = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&right] {
      for (int round = 0; round < 200; ++round) {
        NSThread::currentThread()->threadDictionary()->setObject("x"_ns, "key"_ns);
        if (NSThread::currentThread()->threadDictionary()->count() == 1) ++right;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(right, 1600);
}

}  // namespace
}  // namespace brindle
