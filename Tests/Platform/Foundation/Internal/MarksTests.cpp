#include "Platform/Foundation/Internal/Marks.h"

#include <gtest/gtest.h>

#include <pthread.h>
#include <array>
#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace brindle::detail {
namespace {

TEST(Marks, AreSeenAsLongAsTheyAreSet) {
  int first = 0;
  int second = 0;
  Mark mark;
  EXPECT_FALSE(mark.isSet());
  ASSERT_TRUE(mark.set(&first));
  {
    Mark inner;
    ASSERT_TRUE(inner.set(&second));
    EXPECT_TRUE(isMarked(&first));
    EXPECT_TRUE(isMarked(&second));
  }
  EXPECT_TRUE(isMarked(&first));
  EXPECT_FALSE(isMarked(&second));
  mark.clear();
  EXPECT_FALSE(mark.isSet());
  EXPECT_FALSE(isMarked(&first));
  ASSERT_TRUE(mark.set(&second));
  EXPECT_TRUE(isMarked(&second));
}

TEST(Marks, MayEndInAnyOrder) {
  int first = 0;
  int second = 0;
  auto one = std::make_unique<Mark>();
  auto two = std::make_unique<Mark>();
  ASSERT_TRUE(one->set(&first));
  ASSERT_TRUE(two->set(&second));
  one.reset();
  EXPECT_FALSE(isMarked(&first));
  EXPECT_TRUE(isMarked(&second));
  Mark three;
  ASSERT_TRUE(three.set(&first));
  two.reset();
  EXPECT_TRUE(isMarked(&first));
  EXPECT_FALSE(isMarked(&second));
}

TEST(Marks, OfOneThingAreCountedEach) {
  int thing = 0;
  auto one = std::make_unique<Mark>();
  auto two = std::make_unique<Mark>();
  ASSERT_TRUE(one->set(&thing));
  ASSERT_TRUE(two->set(&thing));
  one.reset();
  EXPECT_TRUE(isMarked(&thing));
  two.reset();
  EXPECT_FALSE(isMarked(&thing));
}

TEST(Marks, AreRefusedWhenThereAreTooMany) {
  int thing = 0;
  int other = 0;
  {
    std::array<Mark, 16> all;
    for (Mark& mark : all) ASSERT_TRUE(mark.set(&thing));
    Mark more;
    EXPECT_FALSE(more.set(&other));
    EXPECT_FALSE(more.isSet());
    EXPECT_FALSE(isMarked(&other));
    all[7].clear();
    EXPECT_TRUE(more.set(&other));
    EXPECT_TRUE(isMarked(&other));
  }
  EXPECT_FALSE(isMarked(&thing));
  EXPECT_FALSE(isMarked(&other));
}

TEST(Marks, OfOtherThreadsAreSeen) {
  int thing = 0;
  std::atomic<int> step{0};
  std::thread other([&] {
    Mark mark;
    EXPECT_TRUE(mark.set(&thing));
    step = 1;
    while (step != 2) std::this_thread::yield();
    mark.clear();
    step = 3;
    while (step != 4) std::this_thread::yield();
  });
  while (step != 1) std::this_thread::yield();
  EXPECT_FALSE(onlyThisThreadMarks());
  settleMarks();
  EXPECT_TRUE(isMarked(&thing));
  step = 2;
  while (step != 3) std::this_thread::yield();
  EXPECT_FALSE(isMarked(&thing));
  step = 4;
  other.join();
}

TEST(Marks, OfThreadsThatAreGoneAreTakenOver) {
  int thing = 0;
  for (int i = 0; i < 200; ++i) {
    std::thread([&thing] {
      Mark mark;
      EXPECT_TRUE(mark.set(&thing));
    }).join();
  }
  EXPECT_FALSE(isMarked(&thing));
  Mark mark;
  ASSERT_TRUE(mark.set(&thing));
  EXPECT_TRUE(isMarked(&thing));
}

int thing = 0;
std::atomic<int> lateMarks{0};

/// Where a thread ends that has set a number under this key, and after everything that C++ ends
/// there, `thing` is marked, so many rounds of ends later.
pthread_key_t lateKey() {
  static const pthread_key_t key = [] {
    pthread_key_t made{};
    pthread_key_create(&made, [](void* rounds) {
      if ((*static_cast<int*>(rounds))-- > 0) {
        pthread_setspecific(lateKey(), rounds);
        return;
      }
      Mark mark;
      if (mark.set(&thing)) ++lateMarks;
    });
    return made;
  }();
  return key;
}

TEST(Marks, MayBeginWhereAThreadEnds) {
  const bool alone = onlyThisThreadMarks();
  lateMarks = 0;
  for (int i = 0; i < 10; ++i) {
    int rounds = 0;
    std::thread([&rounds] { pthread_setspecific(lateKey(), &rounds); }).join();
  }
  EXPECT_EQ(lateMarks, 10);
  EXPECT_FALSE(isMarked(&thing));
  EXPECT_EQ(onlyThisThreadMarks(), alone);  // the threads are not among the living
}

TEST(Marks, AreRefusedWhenAThreadHasGivenThemBack) {
  const bool alone = onlyThisThreadMarks();
  lateMarks = 0;
  int rounds = 1;
  std::thread([&rounds] {
    pthread_setspecific(lateKey(), &rounds);
    Mark mark;
    EXPECT_TRUE(mark.set(&thing));
  }).join();
  EXPECT_EQ(lateMarks, 0);
  EXPECT_FALSE(isMarked(&thing));
  EXPECT_EQ(onlyThisThreadMarks(), alone);
}

TEST(Marks, KeepWhatOtherThreadsTakeAway) {
  constexpr int kReaders = 3;
  constexpr int kRounds = 2000;
  std::atomic<int*> current{new int(0)};
  std::atomic<bool> done{false};
  std::atomic<int> wrong{0};
  std::vector<std::thread> readers;
  for (int i = 0; i < kReaders; ++i) {
    readers.emplace_back([&] {
      while (!done) {
        int* read = current.load();
        Mark mark;
        if (!mark.set(read)) ++wrong;
        if (current.load() == read && *read < 0) ++wrong;
        if (current.load() == nullptr) ++wrong;
      }
    });
  }
  std::vector<int*> retired;
  for (int round = 1; round <= kRounds; ++round) {
    retired.push_back(current.exchange(new int(round)));
    settleMarks();
    std::erase_if(retired, [](int* old) {
      if (isMarked(old)) return false;
      *old = -1;
      delete old;
      return true;
    });
  }
  done = true;
  for (std::thread& reader : readers) reader.join();
  for (int* old : retired) delete old;
  delete current.load();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace brindle::detail
