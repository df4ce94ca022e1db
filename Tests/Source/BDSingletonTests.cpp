#include <Brindle/BDSingleton.h>

#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <Brindle/BDRuntimeAdditions.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSString.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"
#include "Tests/Source/AwakeTesting.h"

namespace brindle {
namespace {

id allocated(Class cls) { return send<"alloc", id>(cls); }
id initialised(Class cls) { return send<"init", id>(allocated(cls)); }

/// A class whose `init` writes `init` and runs NSObject's.
Class noting(Class superclass) {
  const Class cls = makeClass(superclass);
  addMethod<"init">(cls, [](const NSObject& self) -> id {
    happens("init");
    return self;
  });
  return cls;
}

Class singleton(Class superclass = NSObject::class_()) {
  const Class cls = noting(superclass);
  class_addProtocol(cls, kBDSingleton);
  return cls;
}

TEST(BDSingletonTest, HasOneInstanceThatIsInitialisedOnce) {
  const Class cls = singleton();
  happened();
  const id first = initialised(cls);
  EXPECT_EQ(happened(), "init");
  const id second = initialised(cls);
  EXPECT_EQ(happened(), "");
  EXPECT_EQ(first, second);
  EXPECT_EQ(object_getClass(first), cls);
  EXPECT_EQ((send<"new", id>(cls)), first);
}

TEST(BDSingletonTest, TheFirstAllocationInitialisesBeforeItAnswers) {
  const Class cls = singleton();
  happened();
  const id object = allocated(cls);
  EXPECT_EQ(happened(), "init");
  send<"init", id>(object);
  EXPECT_EQ(happened(), "");
}

TEST(BDSingletonTest, EachAllocationHandsOutOneReferenceMore) {
  const Class cls = singleton();
  id object = allocated(cls);
  // One of its making, which stays, and one that was handed out.
  EXPECT_EQ(object->retainCount(), 2u);
  id again = allocated(cls);
  EXPECT_EQ(object->retainCount(), 3u);
  object = nullptr;
  EXPECT_EQ(again->retainCount(), 2u);
  again = nullptr;
  // Nobody holds it, and it is still the instance.
  happened();
  EXPECT_EQ(initialised(cls)->retainCount(), 3u - 1u);
  EXPECT_EQ(happened(), "");
}

TEST(BDSingletonTest, OnlyInitDoesNothingMore) {
  const Class cls = singleton();
  addMethod<"initWithName:">(cls, [](const NSObject& self, const NSString& name) -> id {
    happens(name->UTF8String());
    return self;
  });
  happened();
  send<"initWithName:", id>(allocated(cls), "a"_ns);
  send<"initWithName:", id>(allocated(cls), "b"_ns);
  EXPECT_EQ(happened(), "init a b");
}

TEST(BDSingletonTest, InitIsReplacedByTheClasssOwnSelf) {
  const Class cls = singleton();
  addMethod<"self">(cls, [](const NSObject& self) -> id {
    happens("self");
    return self;
  });
  const id object = allocated(cls);
  happened();
  EXPECT_EQ((send<"init", id>(object)), object);
  EXPECT_EQ(happened(), "self");
}

TEST(BDSingletonTest, ASubclassHasItsOwnInstanceAndInheritsTheReplacedInit) {
  const Class cls = singleton();
  const Class plainSubclass = makeClass(cls);
  const Class ownSubclass = noting(cls);
  const id object = initialised(cls);
  happened();
  const id below = initialised(plainSubclass);
  EXPECT_NE(below, object);
  EXPECT_EQ(object_getClass(below), plainSubclass);
  EXPECT_EQ(initialised(plainSubclass), below);
  EXPECT_EQ(happened(), "") << "it inherits the replaced init";
  const id own = initialised(ownSubclass);
  EXPECT_NE(own, object);
  EXPECT_NE(own, below);
  EXPECT_EQ(initialised(ownSubclass), own);
  EXPECT_EQ(happened(), "init") << "it has an init of its own";
  EXPECT_EQ(initialised(cls), object);
}

TEST(BDSingletonTest, TheSuperclasssInitIsLeftAlone) {
  const Class base = noting(NSObject::class_());
  const Class cls = makeClass(base);
  class_addProtocol(cls, kBDSingleton);
  initialised(cls);
  happened();
  initialised(base);
  EXPECT_EQ(happened(), "init");
  EXPECT_NE(initialised(base), initialised(base));
}

TEST(BDSingletonTest, TheAnswerIsTheSameBeforeAndAfterItIsRemembered) {
  const Class yes = singleton();
  const Class no = makeClass(NSObject::class_());
  for (int i = 0; i < 3; ++i) {
    EXPECT_TRUE(hasSingletonProtocol(yes));
    EXPECT_FALSE(hasSingletonProtocol(no));
    EXPECT_FALSE(hasSingletonProtocol(NSObject::class_()));
  }
  EXPECT_FALSE(hasSingletonProtocol(nullptr));
  // Each class keeps its own answer, as a class operation of its own.
  EXPECT_NE(class_firstLevelMethod(object_getClass(yes), selector<"hasSingletonProtocol">()),
            nullptr);
  EXPECT_NE(class_firstLevelMethod(object_getClass(no), selector<"hasSingletonProtocol">()),
            nullptr);
}

TEST(BDSingletonTest, APlainBasesAnswerIsNotItsSubclasss) {
  for (const bool baseFirst : {true, false}) {
    const Class base = noting(NSObject::class_());
    const Class cls = singleton(base);
    if (baseFirst) initialised(base);
    EXPECT_EQ(initialised(cls), initialised(cls));
    EXPECT_NE(initialised(base), initialised(base));
    EXPECT_TRUE(hasSingletonProtocol(cls));
    EXPECT_FALSE(hasSingletonProtocol(base));
  }
}

TEST(BDSingletonTest, ADeeperSubclassOfAPlainClassFindsItsOwnAnswer) {
  const Class base = makeClass(NSObject::class_());
  const Class middle = makeClass(base);
  const Class below = singleton(middle);
  EXPECT_FALSE(hasSingletonProtocol(base));
  EXPECT_FALSE(hasSingletonProtocol(middle));
  EXPECT_TRUE(hasSingletonProtocol(below));
  EXPECT_TRUE(hasSingletonProtocol(makeClass(below)));
}

TEST(BDSingletonTest, TheAnswerIsRememberedForGood) {
  const Class cls = makeClass(NSObject::class_());
  EXPECT_FALSE(hasSingletonProtocol(cls));
  class_addProtocol(cls, kBDSingleton);
  EXPECT_FALSE(hasSingletonProtocol(cls));
}

TEST(BDSingletonTest, AnAwakenedSingletonIsAwakenedOnce) {
  const Class cls = singleton(Waking::class_());
  happened();
  const id object = initialised(cls);
  EXPECT_EQ(happened(), "init awake");
  EXPECT_EQ(object_getClass(object), cls);
  EXPECT_EQ(initialised(cls), object);
  EXPECT_EQ(happened(), "");
}

TEST(BDSingletonTest, AnInitialiserThatRaisesLeavesNoInstanceAndNoLock) {
  static bool raises;
  raises = true;
  const Class cls = makeClass(NSObject::class_());
  class_addProtocol(cls, kBDSingleton);
  addMethod<"init">(cls, [](const NSObject& self) -> id {
    if (raises) NSException::raise("NotYet"_ns, "not yet"_ns);
    return self;
  });
  EXPECT_EQ(raised([&] { allocated(cls); }), "NotYet: not yet");
  raises = false;
  // From another thread: the first one left the monitor.
  id object;
  std::thread([&] { object = allocated(cls); }).join();
  EXPECT_TRUE(object);
  EXPECT_EQ(allocated(cls), object);
}

TEST(BDSingletonTest, WhatTheInitialiserAnswersIsTheInstance) {
  const Class cls = makeClass(NSObject::class_());
  class_addProtocol(cls, kBDSingleton);
  addMethod<"init">(cls, [](const NSObject&) -> id { return "the one"_ns; });
  EXPECT_TRUE(allocated(cls)->isEqual("the one"_ns));
}

TEST(BDSingletonTest, ThreadsThatAllocateAtOnceFindOneInstanceInitialisedOnce) {
  constexpr int kThreads = 16;
  static std::atomic<int> initialisations;
  for (int round = 0; round < 50; ++round) {
    const Class cls = makeClass(NSObject::class_());
    class_addProtocol(cls, kBDSingleton);
    initialisations = 0;
    addMethod<"init">(cls, [](const NSObject& self) -> id {
      ++initialisations;
      return self;
    });
    std::atomic<int> ready{0};
    std::vector<id> found(kThreads);
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < kThreads; ++t) {
      threads.emplace_back([&, t] {
        ++ready;
        while (ready < kThreads) std::this_thread::yield();
        found[t] = initialised(cls);
      });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(initialisations, 1);
    for (const id& object : found) EXPECT_EQ(object, found[0]);
  }
}

}  // namespace
}  // namespace brindle
