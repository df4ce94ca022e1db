// Classes: made at run time, found by name, and made ready by their first message.
#include <Brindle/Platform/Class.h>

#include <atomic>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

std::string initialized;

/// Tells which classes `initialize` ran for.
class Initialized : public Interface<Initialized, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Initialized> classPair;
};
class InitializedToo : public Interface<InitializedToo, Initialized> {
 public:
  using Interface::Interface;
  static ClassPair<InitializedToo> classPair;
};
constexpr MethodDefinition kInitializedMethods[] = {
    classMethod<"initialize">(
        [](const Class& self) { initialized += std::string(class_getName(self)) + " "; }),
};
constexpr ClassDefinition kInitialized{.name = "Initialized", .methods = kInitializedMethods};
constexpr ClassDefinition kInitializedToo{.name = "InitializedToo"};

/// Two classes of one name, as two libraries may bring them.
class FirstTwin : public Interface<FirstTwin, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<FirstTwin> classPair;
};
class SecondTwin : public Interface<SecondTwin, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<SecondTwin> classPair;
};
constexpr MethodDefinition kFirstTwin[] = {
    method<"order">([](const FirstTwin&) { return 1; }),
};
constexpr MethodDefinition kSecondTwin[] = {
    method<"order">([](const SecondTwin&) { return 2; }),
};
constexpr ClassDefinition kTwinOne{.name = "Twin", .methods = kFirstTwin};
constexpr ClassDefinition kTwinTwo{.name = "Twin", .methods = kSecondTwin};

class Outdated : public Interface<Outdated, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Outdated> classPair;
};
constexpr ClassDefinition kOutdated{.version = kDefinitionVersion + 1, .name = "Outdated"};

class Forgetful : public Interface<Forgetful, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Forgetful> classPair;
};
constexpr ClassDefinition kForgetful{.name = "Forgetful"};

}  // namespace
constinit ClassPair<Initialized> Initialized::classPair{kInitialized};
constinit ClassPair<InitializedToo> InitializedToo::classPair{kInitializedToo};
constinit ClassPair<FirstTwin> FirstTwin::classPair{kTwinOne};
constinit ClassPair<SecondTwin> SecondTwin::classPair{kTwinTwo};
constinit ClassPair<Outdated> Outdated::classPair{kOutdated};
constinit ClassPair<Forgetful> Forgetful::classPair{kForgetful};
namespace {

TEST(ClassTest, Tour) {
  const Class cat = objc_allocateClassPair(Mortal::class_(), "Cat", 0);
  ASSERT_TRUE(cat);
  EXPECT_TRUE(addMethod<"tag">(cat, [](const Mortal&) { return 9; }));
  objc_registerClassPair(cat);
  EXPECT_TRUE(objc_getClass("Cat") == cat);
  const Mortal felix = cast<Mortal>(send<"new", id>(cat));
  EXPECT_EQ(felix->tag(), 9);
  EXPECT_TRUE(classOf(felix) == cat);
  EXPECT_TRUE(class_getSuperclass(cat) == Mortal::class_());
  EXPECT_STREQ(class_getName(cat), "Cat");
}

TEST(ClassTest, InitializeRunsSuperclassFirstAndOnceForEachClass) {
  EXPECT_EQ(initialized, "");
  registerClass(InitializedToo::classPair);
  EXPECT_TRUE(objc_getClass("InitializedToo"));
  EXPECT_EQ(class_getInstanceSize(InitializedToo::class_()), 16u);
  const id early = class_createInstance(InitializedToo::class_(), 0);
  EXPECT_EQ(initialized, "") << "only a message counts";
  EXPECT_TRUE(classOf(early) == InitializedToo::class_());
  EXPECT_EQ(initialized, "Initialized InitializedToo ") << "an inherited one runs again";
  send<"class", Class>(InitializedToo::class_());
  Initialized::new_();
  EXPECT_EQ(initialized, "Initialized InitializedToo ");
}

TEST(ClassTest, InitializeMaySendToItsOwnClassMeanwhile) {
  static int ran = 0;
  static int seen = 0;
  const Class cls = makeClass(Mortal::class_());
  addMethod<"initialize">(object_getClass(cls), [](const Class& self) {
    ++ran;
    const Mortal made = cast<Mortal>(send<"new", id>(self));
    made->setTag(3);
    seen = made->tag();
  });
  EXPECT_TRUE((send<"new", id>(cls)));
  EXPECT_EQ(ran, 1);
  EXPECT_EQ(seen, 3);
}

TEST(ClassTest, InitializeThatRaisesRanAllTheSame) {
  static int ran = 0;
  const Class cls = makeClass(NSObject::class_());
  addMethod<"initialize">(object_getClass(cls), [](const Class&) {
    ++ran;
    throw std::runtime_error("not today");
  });
  EXPECT_EQ(raised([&] { send<"new", id>(cls); }), "not today");
  EXPECT_TRUE((send<"new", id>(cls)));
  EXPECT_EQ(ran, 1);
}

TEST(ClassTest, AnotherThreadWaitsForInitialize) {
  static std::mutex lock;
  static std::condition_variable changed;
  static int sending = 0;
  static std::atomic<bool> done{false};
  const Class cls = makeClass(NSObject::class_());
  addMethod<"initialize">(object_getClass(cls), [](const Class&) {
    std::unique_lock guard(lock);
    changed.wait(guard, [] { return sending == 5; });
    done = true;
  });
  addMethod<"isDone">(cls, [](const NSObject&) -> bool { return done; });
  std::vector<std::thread> threads;
  std::atomic<int> right{0};
  for (int i = 0; i < 5; ++i) {
    threads.emplace_back([&] {
      {
        const std::lock_guard guard(lock);
        ++sending;
      }
      changed.notify_all();
      const id object = class_createInstance(cls, 0);
      if (send<"isDone", bool>(object)) ++right;
    });
  }
  for (std::thread& t : threads) t.join();
  EXPECT_EQ(right, 5);
}

TEST(ClassTest, ManyThreadsInitializeOnce) {
  static std::atomic<int> ran{0};
  for (int round = 0; round < 50; ++round) {
    ran = 0;
    const Class super = makeClass(NSObject::class_());
    addMethod<"initialize">(object_getClass(super), [](const Class&) { ++ran; });
    const Class sub = makeClass(super);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back([super, sub, i] { send<"new", id>(i % 2 == 0 ? super : sub); });
    }
    for (std::thread& t : threads) t.join();
    ASSERT_EQ(ran, 2) << "once for each class";
  }
}

TEST(ClassTest, AClassThatIsNotRegisteredWorksByPointerOnly) {
  const std::string name = uniqueName("Hidden");
  const Class cls = objc_allocateClassPair(NSObject::class_(), name.c_str(), 0);
  EXPECT_FALSE(objc_getClass(name.c_str()));
  EXPECT_TRUE((send<"new", id>(cls)));
  const Class sub = makeClass(cls);
  EXPECT_TRUE(class_getSuperclass(sub) == cls);
  for (Class each : objc_copyClassList()) EXPECT_FALSE(each == cls);
  objc_registerClassPair(cls);
  EXPECT_TRUE(objc_getClass(name.c_str()) == cls);
  objc_registerClassPair(cls);
  int found = 0;
  for (Class each : objc_copyClassList()) found += each == cls ? 1 : 0;
  EXPECT_EQ(found, 1);
}

TEST(ClassTest, NamesThatAreTaken) {
  EXPECT_FALSE(objc_allocateClassPair(NSObject::class_(), "NSObject", 0));
  EXPECT_FALSE(objc_allocateClassPair(NSObject::class_(), nullptr, 0));
  const std::string name = uniqueName("Contested");
  const Class first = objc_allocateClassPair(NSObject::class_(), name.c_str(), 0);
  const Class second = objc_allocateClassPair(NSObject::class_(), name.c_str(), 0);
  ASSERT_TRUE(first && second) << "neither is registered yet";
  objc_registerClassPair(second);
  objc_registerClassPair(first);
  EXPECT_TRUE(objc_getClass(name.c_str()) == second) << "it keeps its first owner";
  EXPECT_TRUE((send<"new", id>(first)));
}

TEST(ClassTest, OfTwoClassesOfOneNameTheFirstIsFoundAndBothWork) {
  EXPECT_EQ((send<"order", int>(SecondTwin::new_())), 2);
  EXPECT_EQ((send<"order", int>(FirstTwin::new_())), 1);
  EXPECT_TRUE(objc_getClass("Twin") == SecondTwin::class_());
}

TEST(ClassTest, AMadeClassCopiesItsName) {
  std::string name = uniqueName("Copied");
  const std::string kept = name;
  const Class cls = objc_allocateClassPair(NSObject::class_(), name.c_str(), 0);
  name.assign(name.size(), '?');
  EXPECT_EQ(class_getName(cls), kept);
}

TEST(ClassTest, MetaClasses) {
  const Class cls = Mortal::class_();
  const Class meta = object_getClass(cls);
  EXPECT_TRUE(objc_getMetaClass("NSObject") == object_getClass(NSObject::class_()));
  EXPECT_EQ(class_isMetaClass(meta), YES);
  EXPECT_EQ(class_isMetaClass(cls), NO);
  EXPECT_TRUE(class_getSuperclass(meta) == object_getClass(NSObject::class_()));
  EXPECT_TRUE(object_getClass(meta) == object_getClass(NSObject::class_()));
  const Class root = object_getClass(NSObject::class_());
  EXPECT_TRUE(object_getClass(root) == root);
  EXPECT_TRUE(class_getSuperclass(root) == NSObject::class_());
  const Class made = makeClass(cls);
  EXPECT_TRUE(class_getSuperclass(object_getClass(made)) == meta);
  EXPECT_TRUE(object_getClass(object_getClass(made)) == root);
  EXPECT_EQ(class_getInstanceSize(meta), 0u);
  EXPECT_FALSE(objc_allocateClassPair(meta, uniqueName("OfMeta").c_str(), 0));
  EXPECT_FALSE(class_createInstance(meta, 0));
}

TEST(ClassTest, RootClassesCanBeMade) {
  const Class root = objc_allocateClassPair(nullptr, uniqueName("Root").c_str(), 0);
  addMethod<"answer">(root, [](const id&) { return 42; });
  addMethod<"classAnswer">(object_getClass(root), [](const Class&) { return 43; });
  objc_registerClassPair(root);
  EXPECT_FALSE(class_getSuperclass(root));
  EXPECT_TRUE(object_getClass(object_getClass(root)) == object_getClass(root));
  id object = class_createInstance(root, 0);
  EXPECT_EQ((send<"answer", int>(object)), 42);
  EXPECT_EQ((send<"classAnswer", int>(root)), 43);
  EXPECT_EQ((send<"answer", int>(root)), 42) << "the root's methods are on its class too";
  EXPECT_NE(raised([&] { send<"description", id>(object); }), "");
  object = nullptr;
}

TEST(ClassTest, ExtraBytes) {
  const Class cls = objc_allocateClassPair(NSObject::class_(), uniqueName("Extra").c_str(), 100);
  auto* bytes = static_cast<char*>(objc_getIndexedIvars(cls));
  ASSERT_NE(bytes, nullptr);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(bytes[i], 0);
  std::memset(bytes, 'x', 100);
  EXPECT_TRUE((send<"new", id>(cls)));
  EXPECT_EQ(objc_getIndexedIvars(cls), bytes);
  EXPECT_EQ(objc_getIndexedIvars(makeClass(cls)), nullptr);
  EXPECT_EQ(objc_getIndexedIvars(Mortal::class_()), nullptr);
  EXPECT_EQ(objc_getIndexedIvars(nullptr), nullptr);
  EXPECT_THROW(objc_allocateClassPair(nullptr, uniqueName("Huge").c_str(), SIZE_MAX - 8),
               std::bad_alloc);
}

TEST(ClassTest, NilsOfTheFunctionsOnClasses) {
  EXPECT_FALSE(objc_getClass(nullptr));
  EXPECT_FALSE(objc_getClass("NoSuchClassAnywhere"));
  EXPECT_FALSE(objc_lookUpClass("NoSuchClassAnywhere"));
  EXPECT_FALSE(objc_getMetaClass("NoSuchClassAnywhere"));
  EXPECT_STREQ(class_getName(nullptr), "nil");
  EXPECT_FALSE(class_getSuperclass(nullptr));
  EXPECT_EQ(class_isMetaClass(nullptr), NO);
  EXPECT_EQ(class_getInstanceSize(nullptr), 0u);
  objc_registerClassPair(nullptr);
  EXPECT_FALSE(Class() == NSObject::class_());
  EXPECT_FALSE(Class());
  EXPECT_FALSE((send<"new", id>(Class())));
}

#if BRINDLE_ASSERTIONS
TEST(ClassDeathTest, FieldsThatTheDefinitionDoesNotKnowStop) {
  EXPECT_DEATH(fieldsOf<std::int64_t>(Forgetful::new_()) = 1,
               "the methods of Forgetful use fields of 8 bytes, but its ClassDefinition has 0");
}
#endif

TEST(ClassDeathTest, ADefinitionOfAnotherLayoutIsRefused) {
  EXPECT_DEATH(registerClass(Outdated::classPair), "class Outdated was built for layout");
}

TEST(ClassTest, ClassesAreMadeByManyThreads) {
  std::vector<std::thread> threads;
  std::atomic<int> right{0};
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([&right] {
      Class super = Mortal::class_();
      for (int i = 0; i < 30; ++i) {
        const Class made = makeClass(super, "Threaded");
        const Mortal object = cast<Mortal>(send<"new", id>(made));
        object->setTag(i);
        if (object->tag() == i && objc_getClass(class_getName(made)) == made) ++right;
        super = i % 5 == 0 ? Class(Mortal::class_()) : made;
      }
    });
  }
  for (std::thread& t : threads) t.join();
  EXPECT_EQ(right, 240);
  Mortal::ended();
}

}  // namespace
}  // namespace brindle
