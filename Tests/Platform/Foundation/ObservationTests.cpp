#include <Brindle/Platform/Observation.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/Runtime.h>
#include <Brindle/Platform/Weak.h>

#include "Tests/Platform/Foundation/ObservingTesting.h"
#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

constexpr NSUInteger kNew = NSKeyValueObservingOptionNew;
constexpr NSUInteger kInitial = NSKeyValueObservingOptionInitial;

TEST(Observations, TellOldAndNewValuesAsLongAsTheyLive) {
  const WatchedPerson ann = WatchedPerson::new_();
  std::vector<std::pair<int, int>> told;
  {
    const Observation watching =
        observe<int>(ann, "age"_ns, [&](int old, int now) { told.emplace_back(old, now); });
    EXPECT_TRUE(watching);
    ann->setAge(30);
    ann->setAge(31);
  }
  ann->setAge(32);
  EXPECT_EQ(told, (std::vector<std::pair<int, int>>{{0, 30}, {30, 31}}));
  EXPECT_EQ(object_getClass(ann), WatchedPerson::class_());
}

TEST(Observations, TellDictionariesToo) {
  const WatchedPerson ann = WatchedPerson::new_();
  std::string told;
  Observation watching = observe(ann, "age"_ns, kNew | kInitial, [&](const NSDictionary& change) {
    told += textOfChange(change) + ";";
  });
  ann->setAge(30);
  watching.reset();
  EXPECT_FALSE(watching);
  ann->setAge(31);
  EXPECT_EQ(told, "kind=1 new=0;kind=1 new=30;");
  EXPECT_EQ(object_getClass(ann), WatchedPerson::class_());
}

TEST(Observations, OfRelationshipsTellTheMembersConcerned) {
  const WatchedPerson ann = WatchedPerson::new_();
  ann->setItems(NSArray{"a"_ns});
  std::string told;
  const Observation watching =
      observe<NSArray>(ann, "items"_ns, [&](const NSArray& old, const NSArray& now) {
        told += std::to_string(old->count()) + ">" + std::to_string(now->count()) + " ";
      });
  ann->insertItem("b"_ns, 1);
  ann->removeItem(0);
  ann->setItems(NSArray{"x"_ns, "y"_ns});
  EXPECT_EQ(told, "0>1 1>0 1>2 ");
}

TEST(Observations, FollowPathsAndDependentKeys) {
  const WatchedPerson ann = WatchedPerson::new_();
  std::string told;
  const Observation watching = observe<std::string>(
      ann, "friend.fullName"_ns,
      [&](const std::string& old, const std::string& now) { told += old + ">" + now + ";"; });
  const WatchedPerson bo = WatchedPerson::new_();
  bo->setName("Bo"_ns);
  bo->setSurname("Li"_ns);
  ann->setFriend(bo);
  bo->setSurname("Wu"_ns);
  EXPECT_EQ(told, ">Bo Li;Bo Li>Bo Wu;");
}

TEST(Observations, Move) {
  const WatchedPerson ann = WatchedPerson::new_();
  int first = 0;
  int second = 0;
  Observation a = observe<int>(ann, "age"_ns, [&](int, int) { ++first; });
  Observation b = observe<int>(ann, "age"_ns, [&](int, int) { ++second; });
  Observation moved = std::move(a);
  EXPECT_FALSE(a);  // NOLINT: says what it is then
  a.reset();
  ann->setAge(1);
  moved = std::move(b);  // ends the first
  ann->setAge(2);
  EXPECT_EQ(first, 1);
  EXPECT_EQ(second, 2);
  Observation& same = moved;
  moved = std::move(same);
  ann->setAge(3);
  EXPECT_EQ(second, 3);
  moved = Observation();
  ann->setAge(4);
  EXPECT_EQ(second, 3);
}

TEST(Observations, OutliveTheObject) {
  Observation value;
  Observation dictionary;
  Observation path;
  {
    const WatchedPerson ann = WatchedPerson::new_();
    value = observe<int>(ann, "age"_ns, [](int, int) {});
    dictionary = observe(ann, "age"_ns, kNew, [](const NSDictionary&) {});
    path = observe<int>(ann, "friend.age"_ns, [](int, int) {});
  }
  // Perhaps at the same address.
  const WatchedPerson bo = WatchedPerson::new_();
  int calls = 0;
  const Observation other = observe<int>(bo, "age"_ns, [&](int, int) { ++calls; });
  EXPECT_TRUE(value);
  value.reset();
  dictionary.reset();
  path.reset();
  bo->setAge(1);
  EXPECT_EQ(calls, 1);
}

TEST(Observations, KeepNeitherSideAndDestroyTheLambdaAtTheEnd) {
  WatchedPerson ann = WatchedPerson::new_();
  const Weak<WatchedPerson> weak = ann;
  const auto held = std::make_shared<int>(0);
  Observation value = observe<int>(ann, "age"_ns, [held](int, int) {});
  Observation dictionary = observe(ann, "age"_ns, kNew, [held](const NSDictionary&) {});
  EXPECT_EQ(held.use_count(), 3);
  ann->setAge(1);
  value.reset();
  EXPECT_EQ(held.use_count(), 2);
  dictionary.reset();
  EXPECT_EQ(held.use_count(), 1);
  const Observation last = observe<int>(ann, "age"_ns, [](int, int) {});
  ann = nullptr;
  EXPECT_FALSE(weak.lock());
}

TEST(Observations, TakeLambdasThatCanOnlyBeMoved) {
  const WatchedPerson ann = WatchedPerson::new_();
  int now = 0;
  const Observation watching = observe<int>(
      ann, "age"_ns,
      [&now, step = std::make_unique<int>(5)](int, int age) mutable { now = age + *step; });
  ann->setAge(1);
  EXPECT_EQ(now, 6);
}

TEST(Observations, EndInsideTheirOwnCall) {
  const WatchedPerson ann = WatchedPerson::new_();
  int calls = 0;
  const auto held = std::make_shared<int>(0);
  Observation value;
  value = observe<int>(ann, "age"_ns, [&calls, &value, held](int, int) {
    ++calls;
    value.reset();
    EXPECT_EQ(held.use_count(), 2);  // still there while it runs
  });
  ann->setAge(1);
  EXPECT_EQ(held.use_count(), 1);
  ann->setAge(2);
  EXPECT_EQ(calls, 1);

  Observation dictionary;
  dictionary = observe(ann, "age"_ns, kNew, [&](const NSDictionary&) {
    ++calls;
    dictionary.reset();
  });
  ann->setAge(3);
  ann->setAge(4);
  EXPECT_EQ(calls, 2);
}

TEST(Observations, EndInsideACallThatTheyBeganInTurn) {
  const WatchedPerson ann = WatchedPerson::new_();
  int calls = 0;
  Observation watching;
  watching = observe<int>(ann, "age"_ns, [&](int, int now) {
    ++calls;
    if (now < 3) ann->setAge(now + 1);
    if (now == 3) watching.reset();  // inside three calls
  });
  ann->setAge(1);
  ann->setAge(9);
  EXPECT_EQ(calls, 3);
}

TEST(Observations, EndInsideAnyNumberOfTheirCalls) {
  for (int depth = 1; depth <= 24; ++depth) {
    const WatchedPerson ann = WatchedPerson::new_();
    int calls = 0;
    const auto held = std::make_shared<int>(0);
    Observation watching;
    watching = observe<int>(ann, "age"_ns, [&, held](int, int now) {
      ++calls;
      if (now < depth) ann->setAge(now + 1);
      if (now == depth) watching.reset();
      EXPECT_EQ(held.use_count(), 2);
    });
    ann->setAge(1);
    EXPECT_EQ(held.use_count(), 1);
    ann->setAge(99);
    EXPECT_EQ(calls, depth);
  }
}

TEST(Observations, ThatEndDuringAChangeAreNotToldOfIt) {
  const WatchedPerson ann = WatchedPerson::new_();
  int calls = 0;
  Observation second;
  const Observation first = observe<int>(ann, "age"_ns, [&](int, int) { second.reset(); });
  second = observe<int>(ann, "age"_ns, [&](int, int) { ++calls; });
  ann->setAge(1);
  EXPECT_EQ(calls, 0);
}

TEST(Observations, EndEachOtherWhenWhatTheyHoldGoes) {
  const WatchedPerson ann = WatchedPerson::new_();
  int calls = 0;
  auto inner =
      std::make_shared<Observation>(observe<int>(ann, "age"_ns, [&calls](int, int) { ++calls; }));
  Observation outer = observe<int>(ann, "age"_ns, [inner = std::move(inner)](int, int) {});
  ann->setAge(1);
  outer.reset();
  ann->setAge(2);
  EXPECT_EQ(calls, 1);
}

TEST(Observations, GoOnAfterTheirLambdaRaised) {
  const WatchedPerson ann = WatchedPerson::new_();
  int calls = 0;
  Observation watching = observe<int>(ann, "age"_ns, [&](int, int) {
    if (++calls == 1) throw std::runtime_error("no");
  });
  EXPECT_THROW(ann->setAge(1), std::runtime_error);
  ann->setAge(2);
  EXPECT_EQ(calls, 2);
  watching.reset();  // nothing is left running
}

TEST(Observations, RefuseWhatCannotBeObserved) {
  const NSArray array = {"a"_ns};
  EXPECT_THROW(auto token = observe<int>(array, "count"_ns, [](int, int) {}), RaisedException);
  EXPECT_THROW(auto token = observe(array, "count"_ns, kNew, [](const NSDictionary&) {}),
               RaisedException);
  const WatchedPerson ann = WatchedPerson::new_();
  EXPECT_THROW(auto token = observe<int>(ann, nullptr, [](int, int) {}), RaisedException);
  EXPECT_THROW(auto token = observe<int>(ann, ""_ns, [](int, int) {}), RaisedException);
  EXPECT_FALSE(observe<int>(nullptr, "age"_ns, [](int, int) {}));
  EXPECT_FALSE(observe(nullptr, "age"_ns, kNew, [](const NSDictionary&) {}));
}

TEST(Observations, AreGoneWhenTheInitialCallRaises) {
  const WatchedPerson ann = WatchedPerson::new_();
  int calls = 0;
  const auto raising = [&](const NSDictionary&) {
    ++calls;
    throw std::runtime_error("no");
  };
  EXPECT_THROW(auto token = observe(ann, "age"_ns, kInitial, raising), std::runtime_error);
  ann->setAge(1);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(object_getClass(ann), WatchedPerson::class_());
}

// --- Objects that register observers in a way of their own
// -----------------------------------------

class GuardedPerson : public Interface<GuardedPerson, WatchedPerson> {
 public:
  using Interface::Interface;
  static ClassPair<GuardedPerson> classPair;
};

struct GuardedFields {
  int registered = 0;
};
constexpr MethodDefinition kGuardedMethods[] = {
    method<"addObserver:forKeyPath:options:context:">(
        [](const GuardedPerson& self, Cmd, const id& observer, const NSString& keyPath,
           NSUInteger options, void* context) {
          ++fieldsOf<GuardedFields>(self).registered;
          sendSuper<GuardedPerson, "addObserver:forKeyPath:options:context:">(
              self, observer, keyPath, options, context);
        }),
    method<"registered">(
        [](const GuardedPerson& self) { return fieldsOf<GuardedFields>(self).registered; }),
};
constexpr ClassDefinition kGuarded{.name = "GuardedPerson",
                                   .methods = kGuardedMethods,
                                   .fields = fieldsDefinition<GuardedFields>()};

constinit ClassPair<GuardedPerson> GuardedPerson::classPair{kGuarded};

TEST(Observations, AskObjectsThatRegisterInAWayOfTheirOwn) {
  const GuardedPerson ann = GuardedPerson::new_();
  int sum = 0;
  std::string names;
  Observation age = observe<int>(ann, "age"_ns, [&](int old, int now) { sum += now - old; });
  Observation name = observe<std::string>(
      ann, "name"_ns, [&](const std::string&, const std::string& now) { names += now + ";"; });
  Observation large = observe<NSUInteger>(
      ann, "large"_ns, [&](NSUInteger, NSUInteger now) { names += std::to_string(now) + ";"; });
  Observation real = observe<int>(ann, "height"_ns, [&](int, int now) { sum += now; });
  EXPECT_EQ((send<"registered", int>(ann)), 4);
  ann->setAge(5);
  ann->setHeight(2.5);
  ann->setName("Ann"_ns);
  ann->setName(nullptr);
  ann->setLarge(18446744073709551615U);
  EXPECT_EQ(sum, 7);
  EXPECT_EQ(names, "Ann;;18446744073709551615;");
  age.reset();
  ann->setAge(9);
  EXPECT_EQ(sum, 7);
}

}  // namespace
}  // namespace brindle
