#include <Brindle/Platform/NSKeyValueObserving.h>

#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <thread>

#include <Brindle/Platform/Observation.h>

#include "Tests/Platform/Foundation/ObservingTesting.h"
#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

constexpr NSUInteger kNew = NSKeyValueObservingOptionNew;

TEST(Observations, TellInTheOrderOfRegistration) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  std::string order;
  recorder->onChange([&](const NSString&, const id&, const NSDictionary&, void* context) {
    order += static_cast<const char*>(context);
  });
  char names[] = "a\0b\0c\0d";
  for (int i = 0; i < 4; ++i) addObserver(ann, recorder, "age"_ns, 0, names + 2 * i);
  ann->setAge(1);
  removeObserver(ann, recorder, "age"_ns, names + 2);
  ann->setAge(2);
  addObserver(ann, recorder, "age"_ns, 0, names + 2);
  ann->setAge(3);
  EXPECT_EQ(order,
            "abcd"
            "acd"
            "acdb");
}

TEST(Observations, AreManyOnOneObject) {
  const WatchedPerson ann = WatchedPerson::new_();
  constexpr std::size_t kCount = 10000;
  std::vector<ChangeRecorder> recorders;
  for (std::size_t i = 0; i < kCount; ++i) {
    recorders.push_back(ChangeRecorder::new_());
    addObserver(ann, recorders.back(), "age"_ns, kNew);
  }
  ann->setAge(1);
  for (const ChangeRecorder& recorder : recorders) {
    ASSERT_EQ(recorder->lines(), "age kind=1 new=1\n");
  }
  // Half of them in any order, the others as they die.
  std::shuffle(recorders.begin(), recorders.end(), std::mt19937(7));  // NOLINT: the same each time
  for (std::size_t i = 0; i < kCount / 2; ++i) removeObserver(ann, recorders[i], "age"_ns);
  ann->setAge(2);
  for (std::size_t i = 0; i < kCount; ++i) {
    ASSERT_EQ(recorders[i]->lines(), i < kCount / 2 ? "" : "age kind=1 new=2\n");
  }
  recorders.clear();
  ann->setAge(3);
  EXPECT_EQ(object_getClass(ann), WatchedPerson::class_());
}

TEST(Observations, EndWithTheirObserverOrTheirObject) {
  const ChangeRecorder recorder = ChangeRecorder::new_();
  WatchedPerson ann = WatchedPerson::new_();
  addObserver(ann, recorder, "age"_ns, kNew);
  addObserver(ann, ann, "name"_ns, kNew);
  ann = nullptr;
  EXPECT_EQ(recorder->lines(), "");
  ann = WatchedPerson::new_();
  for (int i = 0; i < 100; ++i) {
    // Observers at the same address, one after the other.
    const ChangeRecorder brief = ChangeRecorder::new_();
    EXPECT_NE(raised([&] { removeObserver(ann, brief, "age"_ns); }), "");
    addObserver(ann, brief, "age"_ns, kNew);
    if (i % 2 == 0) ann->setAge(i);
  }
  ann->setAge(0);
  EXPECT_EQ(object_getClass(ann), WatchedPerson::class_());
}

TEST(Observations, AreRemovedByAnObserverThatEnds) {
  const WatchedPerson ann = WatchedPerson::new_();
  {
    const Ender observer =
        Ender::with([ann](const Ender& self) { removeObserver(ann, self, "age"_ns); });
    addObserver(ann, observer, "age"_ns, kNew);
    EXPECT_NE(object_getClass(ann), WatchedPerson::class_());
  }
  EXPECT_EQ(object_getClass(ann), WatchedPerson::class_());
}

TEST(Observations, AreRemovedFromAnObjectThatEnds) {
  const ChangeRecorder recorder = ChangeRecorder::new_();
  {
    const Ender object = Ender::with([recorder](const Ender& self) {
      self->setTag(9);
      removeObserver(self, recorder, "tag"_ns);
      self->setTag(10);
    });
    addObserver(object, recorder, "tag"_ns, kNew);
    object->setTag(8);
  }
  EXPECT_EQ(recorder->lines(), "tag kind=1 new=8\ntag kind=1 new=9\n");
}

TEST(Observations, MayHaveNoObserver) {
  const WatchedPerson ann = WatchedPerson::new_();
  addObserver(ann, id(), "age"_ns, kNew);
  ann->setAge(1);
  EXPECT_EQ(ann->age(), 1);
}

TEST(Observations, ListenAlongAPathThatMeetsItselfAgain) {
  const WatchedPerson ann = WatchedPerson::new_();
  const WatchedPerson bo = WatchedPerson::new_();
  ann->setFriend(bo);
  bo->setFriend(ann);
  const ChangeRecorder recorder = ChangeRecorder::new_();
  addObserver(ann, recorder, "friend.friend.friend.age"_ns, kNew);
  bo->setAge(1);
  EXPECT_EQ(recorder->lines(), "friend.friend.friend.age kind=1 new=1\n");
  ann->setFriend(ann);
  EXPECT_EQ(recorder->lines(), "friend.friend.friend.age kind=1 new=0\n");
  bo->setAge(2);
  EXPECT_EQ(recorder->lines(), "");
  EXPECT_EQ(object_getClass(bo), WatchedPerson::class_());
  ann->setFriend(nullptr);
  EXPECT_EQ(recorder->lines(), "friend.friend.friend.age kind=1 new=null\n");
  ann->setAge(1);
  EXPECT_EQ(recorder->lines(), "");
  bo->setFriend(nullptr);
}

TEST(Observations, FollowTheCountOfMembers) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  const NSString path = "items.@count"_ns;
  addObserver(ann, recorder, path, kNew | NSKeyValueObservingOptionOld);
  ann->setItems(NSArray{"a"_ns, "b"_ns});
  ann->insertItem("c"_ns, 0);
  ann->removeItem(0);
  EXPECT_EQ(recorder->lines(),
            "items.@count kind=1 old=0 new=2\nitems.@count kind=1 old=2 new=3\n"
            "items.@count kind=1 old=3 new=2\n");
  removeObserver(ann, recorder, path);
  EXPECT_EQ(object_getClass(ann), WatchedPerson::class_());
}

TEST(Observations, RaiseForAPathThroughACollection) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  const WatchedPerson bo = WatchedPerson::new_();
  bo->setItems(NSArray{ann});
  addObserver(ann, recorder, "friend.items.age"_ns, 0);
  // The change is made, the path is followed as far as it goes.
  EXPECT_NE(raised([&] { ann->setFriend(bo); }).find("is not supported. Key path: age"),
            std::string::npos);
  EXPECT_EQ(ann->friend_(), bo);
  EXPECT_EQ(recorder->lines(), "friend.items.age kind=1\n");
  ann->setFriend(nullptr);
  EXPECT_EQ(recorder->lines(), "friend.items.age kind=1\n");
  removeObserver(ann, recorder, "friend.items.age"_ns);
  EXPECT_EQ(object_getClass(bo), WatchedPerson::class_());
}

TEST(Observations, OfAnObserverThatIsGoneRaiseNothing) {
  const WatchedPerson ann = WatchedPerson::new_();
  ann->setFriend(WatchedPerson::new_());
  addObserver(ann, ChangeRecorder::new_(), "friend.age"_ns,
              kNew | NSKeyValueObservingOptionOld | NSKeyValueObservingOptionPrior);
  const auto ageless = uncheckedCast<WatchedPerson>(id(Mortal::new_()));
  EXPECT_EQ(raised([&] { ann->setFriend(ageless); }), "") << "nobody wants to know the age";
  EXPECT_EQ(ann->friend_(), ageless);
  EXPECT_EQ(object_getClass(ann), WatchedPerson::class_());
}

TEST(Observations, AreMadeAndEndedByManyThreads) {
  const WatchedPerson ann = WatchedPerson::new_();
  ann->setFriend(WatchedPerson::new_());
  constexpr int kRounds = 20000;
  std::atomic<int> told{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([&ann, &told, t] {
      const ChangeRecorder recorder = ChangeRecorder::new_();
      const NSString path = t % 2 == 0 ? "age"_ns : "friend.age"_ns;
      for (int i = 0; i < kRounds; ++i) {
        if (t % 4 < 2) {
          addObserver(ann, recorder, path, kNew);
          ann->setAge(i);
          removeObserver(ann, recorder, path);
        } else {
          const Observation token = observe<int>(ann, path, [&told](int, int) { ++told; });
          ann->setAge(i);
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_GE(told, 2 * kRounds) << "each of its own change at least";
  EXPECT_EQ(object_getClass(ann), WatchedPerson::class_());
}

}  // namespace
}  // namespace brindle
