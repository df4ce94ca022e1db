#include <Brindle/BDOnce.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

TEST(BDOnceTest, Tour) {
  NSInteger once = 0;
  int runs = 0;
  for (int i = 0; i < 3; ++i) do_once(&once, [&runs] { ++runs; });
  EXPECT_EQ(runs, 1);

  NSInteger another = 0;
  do_once(&another, [&runs] { ++runs; });
  EXPECT_EQ(runs, 2) << "one run for each flag";
}

TEST(BDOnceTest, TheFlagTellsTheState) {
  NSInteger once = 0;
  NSInteger during = 0;
  do_once(&once, [&] { during = once; });
  EXPECT_EQ(during, 1);
  EXPECT_EQ(once, -1);
}

TEST(BDOnceTest, TakesBlocks) {
  NSInteger once = 0;
  int runs = 0;
  const Block<void()> block = [&runs] { ++runs; };
  do_once(&once, block);
  do_once(&once, block);
  EXPECT_EQ(runs, 1);
  NSInteger another = 0;
  do_once(&another, block.record());
  do_once(&another, block.record());
  EXPECT_EQ(runs, 2) << "as a plain pointer";
  const auto onStack = [&another](const BlockArg<void()>& argument) {
    another = 0;
    do_once(&another, argument.record());
  };
  onStack([&runs] { ++runs; });
  EXPECT_EQ(runs, 3);
}

TEST(BDOnceTest, ManyThreadsRunItOnceAndWaitForItsEnd) {
  constexpr int kThreads = 8;
  for (int round = 0; round < 200; ++round) {
    NSInteger once = 0;
    int runs = 0;
    int made = 0;  // no atomic: the barriers are what makes it visible
    std::atomic<int> ready{0};
    std::atomic<int> unseen{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
      threads.emplace_back([&] {
        ++ready;
        while (ready < kThreads) std::this_thread::yield();
        do_once(&once, [&] {
          ++runs;
          std::this_thread::yield();
          made = 42;
        });
        if (made != 42) ++unseen;
      });
    }
    for (std::thread& thread : threads) thread.join();
    ASSERT_EQ(runs, 1);
    ASSERT_EQ(unseen, 0);
  }
}

TEST(BDOnceTest, ARaiseLeavesTheFlagRunning) {
  NSInteger once = 0;
  EXPECT_EQ(raised([&once] { do_once(&once, [] { throw std::runtime_error("not done"); }); }),
            "not done");
  EXPECT_EQ(once, 1) << "whoever comes next waits for ever";
  EXPECT_NE(raised([] {
              NSInteger flag = 0;
              do_once(&flag, nullptr);
            }),
            "")
      << "nil is called like any block";
}

}  // namespace
}  // namespace brindle
