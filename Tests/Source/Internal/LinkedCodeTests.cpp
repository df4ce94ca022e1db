// Which code counts as linked, seen through `supportsAwake`. Libraries and programs that are linked
// in other ways are in Tests/Linking.
#include <unistd.h>

#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <Brindle/BDAwake.h>
#include <Brindle/Platform/Implementation.h>
#include <Brindle/Platform/Runtime.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

bool isLinked(IMP implementation) {
  const Class cls = makeClass(NSObject::class_());
  class_addMethod(cls, selector<"awake">(), implementation, "v16@0:8");
  return supportsAwake(cls);
}

TEST(LinkedCodeTest, CodeOfThisProgramIsLinked) {
  const IMP awake = implementation([](const NSObject&) {}).implementation;
  EXPECT_TRUE(isLinked(awake));
  EXPECT_TRUE(isLinked(awake)) << "asked again";
}

TEST(LinkedCodeTest, CodeThatNoImageHoldsIsNot) {
  // A forwarding entry is made on the heap.
  EXPECT_FALSE(isLinked(forwardingImplementation("v16@0:8")));
  EXPECT_FALSE(isLinked(nullptr));
}

TEST(LinkedCodeTest, CodeOfTheCLibraryIsNot) {
  EXPECT_FALSE(isLinked(reinterpret_cast<IMP>(&::getpid)));  // NOLINT(*-reinterpret-cast)
}

TEST(LinkedCodeTest, CodeOfThePlatformIsNot) {
  // NSObject's own, in the library that this one stands on.
  EXPECT_FALSE(isLinked(NSObject::class_()->instanceMethodForSelector(selector<"self">())));
}

TEST(LinkedCodeTest, ThreadsThatAskAtOnceHearTheSame) {
  std::atomic<int> ready{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([&] {
      ++ready;
      while (ready < 8) std::this_thread::yield();
      EXPECT_TRUE(isLinked(implementation([](const NSObject&) {}).implementation));
      EXPECT_FALSE(isLinked(nullptr));
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace brindle
