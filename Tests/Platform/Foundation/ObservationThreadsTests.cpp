// Observations that end while other threads run their lambdas.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <barrier>
#include <future>
#include <memory>
#include <thread>
#include <vector>

#include <Brindle/Platform/Observation.h>

#include "Tests/Platform/Foundation/ObservingTesting.h"

namespace brindle {
namespace {

/// Something that happens once, on whatever thread.
class Event {
 public:
  void happen() { promise_.set_value(); }
  void await() const { future_.wait(); }

 private:
  std::promise<void> promise_;
  std::shared_future<void> future_ = promise_.get_future().share();
};

/// Gives other threads a chance to do wrong.
void dawdle() {
  for (int i = 0; i < 200; ++i) std::this_thread::yield();
}

/// Resets an observation while another thread is inside its call. `observing` observes the age of a
/// person with a lambda that it is given.
template <class Observing>
void expectResetToWait(const Observing& observing) {
  const WatchedPerson ann = WatchedPerson::new_();
  Event inside;
  Event leave;
  int finished = 0;  // of this frame, and without a lock
  Observation watching = observing(ann, [&] {
    inside.happen();
    leave.await();
    dawdle();
    ++finished;
  });
  std::thread changer([&] { ann->setAge(1); });
  inside.await();
  leave.happen();
  watching.reset();
  EXPECT_EQ(finished, 1);
  changer.join();
}

TEST(ObservationThreads, ResetWaitsForCallsOnOtherThreads) {
  for (int round = 0; round < 20; ++round) {
    expectResetToWait([](const WatchedPerson& ann, auto call) {
      return observe<int>(ann, "age"_ns, [call](int, int) { call(); });
    });
  }
}

TEST(ObservationThreads, ResetWaitsInTheDictionaryFormToo) {
  expectResetToWait([](const WatchedPerson& ann, auto call) {
    return observe(ann, "age"_ns, NSKeyValueObservingOptionNew,
                   [call](const NSDictionary&) { call(); });
  });
}

TEST(ObservationThreads, NoCallBeginsAfterReset) {
  const WatchedPerson ann = WatchedPerson::new_();
  std::atomic<bool> done{false};
  std::vector<std::thread> changers;
  for (int t = 0; t < 3; ++t) {
    changers.emplace_back([&] {
      while (!done) {  // tells without writing, since the model is not for many threads
        willChangeValueForKey(ann, "tall"_ns);
        didChangeValueForKey(ann, "tall"_ns);
      }
    });
  }
  std::atomic<int> late{0};
  for (int round = 0; round < 300; ++round) {
    auto over = std::make_unique<std::atomic<bool>>(false);
    Observation watching =
        observe<bool>(ann, "tall"_ns, [&late, flag = over.get()](bool, bool) { late += *flag; });
    if (round % 3 == 0) std::this_thread::yield();
    watching.reset();
    *over = true;
    over.reset();  // a late call would read freed memory
  }
  done = true;
  for (std::thread& changer : changers) changer.join();
  EXPECT_EQ(late, 0);
}

/// Each thread is inside the call of its own observation and ends the next one's.
void endInARing(std::size_t count) {
  std::vector<WatchedPerson> people;
  std::vector<Observation> ring(count);
  std::barrier together(static_cast<std::ptrdiff_t>(count));
  std::atomic<int> finished{0};
  for (std::size_t i = 0; i < count; ++i) {
    people.push_back(WatchedPerson::new_());
    ring[i] = observe<int>(people[i], "age"_ns, [&, i](int, int) {
      together.arrive_and_wait();
      ring[(i + 1) % count].reset();
      ++finished;
    });
  }
  std::vector<std::thread> threads;
  for (const WatchedPerson& person : people) {
    threads.emplace_back([person] { person->setAge(1); });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(finished, static_cast<int>(count));
  for (const WatchedPerson& person : people) person->setAge(2);
  EXPECT_EQ(finished, static_cast<int>(count));
}

TEST(ObservationThreads, MayEndEachOtherFromInsideTheirCalls) {
  for (int round = 0; round < 100; ++round) endInARing(2);
}

TEST(ObservationThreads, MayEndEachOtherInALargerRing) {
  for (int round = 0; round < 30; ++round) endInARing(5);
}

TEST(ObservationThreads, ResetInsideAnotherCallWaitsForWhoeverDoesNotWait) {
  const WatchedPerson ann = WatchedPerson::new_();
  const WatchedPerson bo = WatchedPerson::new_();
  Event inside;
  Event leave;
  int finished = 0;
  Observation second = observe<int>(bo, "age"_ns, [&](int, int) {
    inside.happen();
    leave.await();
    dawdle();
    ++finished;
  });
  int seen = 0;
  const Observation first = observe<int>(ann, "age"_ns, [&](int, int) {
    leave.happen();
    second.reset();
    seen = finished;
  });
  std::thread changer([&] { bo->setAge(1); });
  inside.await();
  ann->setAge(1);
  EXPECT_EQ(seen, 1);
  changer.join();
}

TEST(ObservationThreads, ResetInsideItsOwnCallWaitsForNobody) {
  const WatchedPerson ann = WatchedPerson::new_();
  const auto held = std::make_shared<int>(0);
  Event bothInside;
  Event isReset;
  Observation watching;
  watching = observe<int>(ann, "age"_ns, [&, held](int, int now) {
    if (now == 1) {
      bothInside.happen();
      isReset.await();
    } else {
      watching.reset();
      isReset.happen();
    }
  });
  std::thread other([&] { ann->setAge(1); });
  bothInside.await();
  ann->setAge(2);
  other.join();
  EXPECT_EQ(held.use_count(), 1);
  ann->setAge(3);  // would raise: the event has happened
}

TEST(ObservationThreads, ResetWaitsForNestedCallsOnOtherThreads) {
  for (const int depth : {1, 7, 8, 9, 24}) {
    const WatchedPerson ann = WatchedPerson::new_();
    Event inside;
    Event leave;
    int finished = 0;
    Observation watching = observe<int>(ann, "age"_ns, [&](int, int now) {
      if (now < depth) ann->setAge(now + 1);
      if (now == depth) {
        inside.happen();
        leave.await();
        dawdle();
      }
      ++finished;
    });
    std::thread changer([&] { ann->setAge(1); });
    inside.await();
    leave.happen();
    watching.reset();
    EXPECT_EQ(finished, depth);
    changer.join();
  }
}

TEST(ObservationThreads, NoCallBeginsAfterResetWhileOthersComeAndGo) {
  const WatchedPerson ann = WatchedPerson::new_();
  std::atomic<int> late{0};
  for (int round = 0; round < 50; ++round) {
    auto over = std::make_unique<std::atomic<bool>>(false);
    Observation watching =
        observe<bool>(ann, "tall"_ns, [&late, flag = over.get()](bool, bool) { late += *flag; });
    const Observation other = observe<bool>(ann, "tall"_ns, [](bool, bool) {});
    std::vector<std::thread> changers;
    for (int t = 0; t < 3; ++t) {
      changers.emplace_back([&ann] {
        for (int i = 0; i < 50; ++i) {
          willChangeValueForKey(ann, "tall"_ns);
          didChangeValueForKey(ann, "tall"_ns);
        }
      });
    }
    std::this_thread::yield();
    watching.reset();
    *over = true;
    over.reset();
    for (std::thread& changer : changers) changer.join();
  }
  EXPECT_EQ(late, 0);
}

TEST(ObservationThreads, EndWhileTheObjectEnds) {
  for (int round = 0; round < 200; ++round) {
    WatchedPerson ann = WatchedPerson::new_();
    ann->setFriend(WatchedPerson::new_());
    std::array<Observation, 3> watching{
        observe<int>(ann, "age"_ns, [](int, int) {}),
        observe<int>(ann, "friend.age"_ns, [](int, int) {}),
        observe(ann, "age"_ns, NSKeyValueObservingOptionNew, [](const NSDictionary&) {})};
    std::barrier together(2);
    std::thread ender([&] {
      together.arrive_and_wait();
      ann = nullptr;
    });
    together.arrive_and_wait();
    for (Observation& token : watching) token.reset();
    ender.join();
  }
}

TEST(ObservationThreads, TokensMayBeHandedToOtherThreads) {
  const WatchedPerson ann = WatchedPerson::new_();
  std::atomic<int> calls{0};
  Observation watching = observe<int>(ann, "age"_ns, [&](int, int) { ++calls; });
  std::thread owner([&ann, token = std::move(watching)] { ann->setAge(1); });
  owner.join();
  EXPECT_FALSE(watching);  // NOLINT: says what it is then
  EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace brindle
