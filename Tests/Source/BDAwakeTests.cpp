#include <Brindle/BDAwake.h>

#include <algorithm>
#include <atomic>
#include <set>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <Brindle/BDSwizzle.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSMutableArray.h>
#include <Brindle/Platform/Runtime.h>
#include <Brindle/Platform/Weak.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"
#include "Tests/Source/AwakeTesting.h"

namespace brindle {
namespace {

std::string classNameNow(const id& object) { return class_getName(object_getClass(object)); }

TEST(BDAwakeTest, RunsAfterTheFirstInitialiserWhicheverItIs) {
  happened();
  const Waking plain = Waking::alloc()->init();
  EXPECT_EQ(happened(), "init awake");
  const Waking named = Waking::alloc()->initWithName("Ada"_ns);
  EXPECT_EQ(happened(), "Ada awakeAda");
  EXPECT_EQ(classNameNow(named), "Waking");
  EXPECT_EQ(named->count(), 3);
  // Initialised again: no proxy any more, so nothing else happens.
  named->initWithName("Bob"_ns);
  EXPECT_EQ(happened(), "Bob");
}

TEST(BDAwakeTest, RunsOnceForEachClassOfTheChainTheTopmostFirst) {
  happened();
  const Bottom bottom = Bottom::alloc()->init();
  EXPECT_EQ(happened(), "init awake awakeBottom");
}

TEST(BDAwakeTest, ASubclassWithoutItsOwnGetsAProxyAndRunsTheSuperclasss) {
  happened();
  const id middle = Middle::alloc();
  EXPECT_EQ(classNameNow(middle), "BDAwakeProxy_Middle");
  send<"init", id>(middle);
  EXPECT_EQ(classNameNow(middle), "Middle");
  EXPECT_EQ(happened(), "init awake");
}

TEST(BDAwakeTest, AClassWithoutItGetsPlainObjectsAndNoProxyClass) {
  const id plain = Plain::alloc();
  EXPECT_EQ(classNameNow(plain), "Plain");
  EXPECT_FALSE(objc_getClass("BDAwakeProxy_Plain"));
  EXPECT_EQ(classNameNow(NSObject::alloc()), "NSObject");
}

TEST(BDAwakeTest, ClassesTellWhetherTheySupportAndPerformIt) {
  EXPECT_TRUE(supportsAwake(Waking::class_()));
  EXPECT_TRUE(performAwake(Waking::class_()));
  EXPECT_FALSE(supportsAwake(Middle::class_()));
  EXPECT_TRUE(performAwake(Middle::class_()));
  EXPECT_TRUE(supportsAwake(Bottom::class_()));
  EXPECT_FALSE(supportsAwake(Plain::class_()));
  EXPECT_FALSE(performAwake(Plain::class_()));
  EXPECT_FALSE(performAwake(NSObject::class_()));
  EXPECT_FALSE(supportsAwake(nullptr));
  EXPECT_FALSE(performAwake(nullptr));
}

TEST(BDAwakeTest, WhatAClassPerformsIsDecidedAtItsFirstAllocation) {
  const Class late = makeClass(NSObject::class_());
  send<"init", id>(send<"alloc", id>(late));
  addMethod<"awake">(late, [](const NSObject&) { happens("late"); });
  happened();
  const id object = send<"alloc", id>(late);
  EXPECT_EQ(object_getClass(object), late);
  send<"init", id>(object);
  EXPECT_EQ(happened(), "");
  EXPECT_FALSE(performAwake(late));
  EXPECT_TRUE(supportsAwake(late));
}

TEST(BDAwakeTest, AClassMadeAtRunTimeIsAwakenedToo) {
  const Class made = makeClass(Middle::class_());
  addMethod<"awake">(made, [](const NSObject&) { happens("made"); });
  happened();
  const id object = send<"alloc", id>(made);
  EXPECT_EQ(classNameNow(object), std::string("BDAwakeProxy_") + class_getName(made));
  send<"init", id>(object);
  EXPECT_EQ(happened(), "init awake made");
}

TEST(BDAwakeTest, RunsOnTheReceiverNotOnWhatTheInitialiserAnswered) {
  happened();
  const Waking other = Waking::alloc()->initElsewhere();
  // The other object first, wholly; then the one that was allocated, which has no name.
  EXPECT_EQ(happened(), "other awakeother elsewhere awake");
  EXPECT_EQ(classNameNow(other), "Waking");
}

TEST(BDAwakeTest, DoesNotRunAfterAnInitialiserThatRaised) {
  happened();
  const Waking waking = Waking::alloc();
  EXPECT_EQ(raised([&] { waking->initRaising(); }), "WakingException: no initialising today");
  EXPECT_EQ(happened(), "");
  // It has its class by then.
  EXPECT_EQ(classNameNow(waking), "Waking");
  EXPECT_EQ(waking->count(), 3);
}

TEST(BDAwakeTest, IsCalledByImplementationNotByMessage) {
  // An `awake` that stands above a class's own in the table for messages is not reached through it.
  const Class top = makeClass(NSObject::class_());
  addMethod<"awake">(top, [](const NSObject&) { happens("top"); });
  const Class below = makeClass(top);
  addMethod<"awake">(below, [](const NSObject&) { happens("below"); });
  happened();
  const id object = send<"init", id>(send<"alloc", id>(below));
  EXPECT_EQ(happened(), "top below");
  invokeAwake(top, object);
  EXPECT_EQ(happened(), "top");
  send<"awake">(object);
  EXPECT_EQ(happened(), "below");
}

TEST(BDAwakeTest, ASwizzledAwakeRunsInItsPlace) {
  const Class cls = makeClass(NSObject::class_());
  addMethod<"awake">(cls, [](const NSObject&) { happens("first"); });
  happened();
  send<"init", id>(send<"alloc", id>(cls));
  EXPECT_EQ(happened(), "first");
  class_replaceMethodImp(cls, selector<"awake">(), [](const NSObject&) { happens("second"); });
  send<"init", id>(send<"alloc", id>(cls));
  EXPECT_EQ(happened(), "second");
}

TEST(BDAwakeTest, AScopedSwizzleOfAwakeRunsAsLongAsItsToken) {
  const Class cls = makeClass(NSObject::class_());
  addMethod<"awake">(cls, [](const NSObject&) { happens("first"); });
  happened();
  {
    ImplementationSlot<void(NSObject)> previous;
    const SwizzleToken token = scopedSwizzle(
        cls, selector<"awake">(),
        [&previous](const NSObject& self, Cmd cmd) {
          previous(self, cmd);
          happens("scoped");
        },
        previous);
    send<"init", id>(send<"alloc", id>(cls));
    EXPECT_EQ(happened(), "first scoped");
  }
  send<"init", id>(send<"alloc", id>(cls));
  EXPECT_EQ(happened(), "first");
}

TEST(BDAwakeTest, WhatAnAwakeAnswersIsLetGoOf) {
  const int before = Mortal::living();
  const Class cls = makeClass(Mortal::class_());
  addMethod<"awake">(cls, [](const NSObject& self) -> id { return self; });
  id object = send<"init", id>(send<"alloc", id>(cls));
  EXPECT_EQ(object->retainCount(), 1u);
  object = nullptr;
  EXPECT_EQ(Mortal::living(), before);
  Mortal::ended();
}

TEST(BDAwakeTest, ALoadThatRunsItsSuperclasssInstallsNothingTwice) {
  const Class meta = object_getClass(NSObject::class_());
  const auto installed = [meta] {
    return std::pair(class_getMethodImplementation(meta, selector<"allocWithZone:">()),
                     NSObject::class_()->instanceMethodForSelector(selector<"dealloc">()));
  };
  const auto before = installed();
  const Class cls = makeClass(Waking::class_());
  send<"load">(cls);
  send<"load">(NSObject::class_());
  EXPECT_EQ(installed(), before);
  EXPECT_EQ(class_firstLevelMethod(cls, selector<"dealloc">()), nullptr);
  happened();
  send<"init", id>(send<"alloc", id>(cls));
  EXPECT_EQ(happened(), "init awake");
}

TEST(BDAwakeTest, AClassMayAnswerForItself) {
  const Class silent = makeClass(Waking::class_());
  addMethod<"performAwake">(object_getClass(silent), [](const Class&) { return false; });
  happened();
  send<"init", id>(send<"alloc", id>(silent));
  EXPECT_EQ(happened(), "init");
}

TEST(BDAwakeTest, AClassThatAllocatesForItselfStaysOut) {
  const Class own = makeClass(Waking::class_());
  addMethod<"allocWithZone:">(object_getClass(own), [](const Class& self, NSZone*) -> id {
    return class_createInstance(self, 0);
  });
  happened();
  send<"init", id>(send<"alloc", id>(own));
  EXPECT_EQ(happened(), "init");
}

TEST(BDAwakeTest, ItsMarkOfLinkedCodeIsOne) { EXPECT_EQ(__kBrindleAwakeLinkCheckingSymbol, 1); }

TEST(BDAwakeTest, FieldsOfAnObjectEndedBeforeItsInitialiserAreDestroyed) {
  happened();
  {
    const Waking never = Waking::alloc();
    EXPECT_EQ(classNameNow(never), "BDAwakeProxy_Waking");
  }
  EXPECT_EQ(happened(), "");
  const int before = Mortal::living();
  const Class cls = makeClass(Mortal::class_());
  addMethod<"awake">(cls, [](const NSObject&) { happens("awake"); });
  id object = send<"alloc", id>(cls);
  EXPECT_EQ(Mortal::living(), before + 1);
  object = nullptr;
  EXPECT_EQ(Mortal::living(), before);
  EXPECT_EQ(happened(), "");
  Mortal::ended();
  // A weak reference to it is cleared as for any object.
  Waking waking = Waking::alloc();
  const Weak<Waking> weak = waking;
  waking = nullptr;
  EXPECT_FALSE(weak.lock());
}

TEST(BDAwakeTest, CollectionsAndStringsAreNoProxies) {
  const NSMutableArray array = NSMutableArray::alloc()->init();
  array->addObject("x"_ns);
  EXPECT_EQ(array->count(), 1u);
}

TEST(BDAwakeTest, ThreadsThatAllocateAtOnceMakeOneProxyClassAndAwakeEachObjectOnce) {
  constexpr int kThreads = 16;
  constexpr int kObjects = 50;
  static std::atomic<int> awakened;
  for (int round = 0; round < 20; ++round) {
    const Class cls = makeClass(NSObject::class_());
    awakened = 0;
    addMethod<"awake">(cls, [](const NSObject&) { ++awakened; });
    std::atomic<int> ready{0};
    std::vector<std::set<ClassRecord*>> proxies(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
      threads.emplace_back([&, t] {
        ++ready;
        while (ready < kThreads) std::this_thread::yield();
        for (int i = 0; i < kObjects; ++i) {
          const id object = send<"alloc", id>(cls);
          proxies[static_cast<std::size_t>(t)].insert(object_getClass(object).record());
          send<"init", id>(object);
          EXPECT_EQ(object_getClass(object), cls);
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
    std::set<ClassRecord*> all;
    for (const auto& some : proxies) all.insert(some.begin(), some.end());
    EXPECT_EQ(all.size(), 1u);
    EXPECT_EQ(awakened, kThreads * kObjects);
  }
}

}  // namespace
}  // namespace brindle
