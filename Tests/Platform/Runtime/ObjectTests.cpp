// The life of objects: owners, ends, and what happens to a raise out of an end.
#include <Brindle/Platform/Object.h>

#include <future>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include <Brindle/Platform/AutoreleasePool.h>
#include <Brindle/Platform/Weak.h>
#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

static_assert(std::is_nothrow_move_constructible_v<id>);
static_assert(std::is_nothrow_move_constructible_v<Mortal>);
static_assert(std::is_nothrow_destructible_v<Mortal>);
static_assert(sizeof(Mortal) == sizeof(void*));
static_assert(!std::is_trivially_copyable_v<id>);
static_assert(std::is_convertible_v<Mortal, NSObject> && std::is_convertible_v<Mortal, id>);
static_assert(!std::is_convertible_v<NSObject, Mortal>, "narrowing asks for a cast");
constinit const id kNil;

TEST(ObjectTest, Tour) {
  ASSERT_EQ(Mortal::living(), 0);
  {
    Mortal a = Mortal::alloc()->init();
    EXPECT_EQ(a->retainCount(), 1u);
    const Mortal b = a;
    EXPECT_EQ(a->retainCount(), 2u);
    EXPECT_TRUE(a == b);
    a = nullptr;
    EXPECT_TRUE(a == nullptr);
    EXPECT_EQ(b->retainCount(), 1u);
    EXPECT_EQ(Mortal::living(), 1);
  }
  EXPECT_EQ(Mortal::living(), 0);
}

TEST(ObjectTest, ReferencesCountOwners) {
  Mortal a = Mortal::new_();
  Mortal b = a;
  Mortal c = std::move(b);
  EXPECT_TRUE(b == nullptr);  // NOLINT(bugprone-use-after-move): moving leaves nil
  EXPECT_EQ(a->retainCount(), 2u);
  Mortal& alias = a;
  a = alias;
  EXPECT_EQ(a->retainCount(), 2u);
  a = std::move(alias);
  EXPECT_EQ(a->retainCount(), 2u);
  c = nullptr;
  EXPECT_EQ(a->retainCount(), 1u);
  id wide = a;
  const Mortal narrow = uncheckedCast<Mortal>(wide);
  EXPECT_EQ(a->retainCount(), 3u);
  ObjectRecord* record = wide.leak();
  EXPECT_FALSE(wide);
  EXPECT_EQ(record, a.record());
  wide = adopt<id>(record);
  EXPECT_EQ(a->retainCount(), 3u);
  EXPECT_EQ(borrow<id>(record)->record(), record);
}

TEST(ObjectTest, HashesAndComparesByIdentity) {
  const Mortal a = Mortal::new_();
  const Mortal b = Mortal::new_();
  std::unordered_set<id> set{a, b, a, nullptr};
  EXPECT_EQ(set.size(), 3u);
  EXPECT_TRUE(set.contains(b));
  std::unordered_map<Mortal, int> map{{a, 1}};
  EXPECT_EQ(map.at(a), 1);
  EXPECT_FALSE(a == b);
  EXPECT_TRUE(id() == nullptr);
  EXPECT_TRUE(id() == id());
}

// Looked at by name: with a destructor that may raise, none of these compile.
TEST(ObjectTest, ThreadsFuturesAndExceptionsHoldReferences) {
  struct Base {
    virtual ~Base() = default;
  };
  struct Window : Base {
    Mortal title = Mortal::new_();
  };
  struct Failure : std::exception {
    Mortal why = Mortal::new_();
  };
  {
    const Mortal shared = Mortal::new_();
    int seen = 0;
    std::thread([shared, &seen] { seen = shared ? 1 : 0; }).join();
    EXPECT_EQ(seen, 1);
    EXPECT_TRUE(std::async(std::launch::async, [shared] { return shared; }).get() == shared);
    std::packaged_task<int()> task([shared] { return shared->tag(); });
    task();
    EXPECT_EQ(task.get_future().get(), 0);
    std::vector<Mortal> many(3, shared);
    many.insert(many.begin(), Mortal::new_());
    for (int i = 0; i < 100; ++i) many.push_back(shared);
    EXPECT_EQ(shared->retainCount(), 105u);  // and the task's
    many.erase(many.begin(), many.begin() + 2);
    many.clear();
    const Window window;
    EXPECT_THROW(throw Failure(), std::exception);
  }
  EXPECT_EQ(Mortal::living(), 0);
}

TEST(ObjectTest, ConstantsAreNeitherCountedNorEnded) {
  static constinit ObjectRecord record(&NSObject::classPair.cls, detail::kCountImmortal, 0);
  static constinit const NSObject constant{Adopt{}, &record};
  for (int i = 0; i < 3; ++i) {
    NSObject copy = constant;
    copy = nullptr;
  }
  EXPECT_EQ(record.count.load(), detail::kCountImmortal);
  EXPECT_TRUE(constant->isEqual(constant));
}

TEST(ObjectTest, AnObjectWithCountsBeyondAnyUseBecomesImmortal) {
  ObjectRecord record(&NSObject::classPair.cls, detail::kCountNearLimit, 0);
  id object = borrow<id>(&record);
  EXPECT_EQ(record.count.load(), detail::kCountImmortal);
  object = nullptr;
  EXPECT_EQ(record.count.load(), detail::kCountImmortal);
}

TEST(ObjectTest, RetainingAndReleasingInsideDeallocBeginsNoSecondEnd) {
  int ends = 0;
  Ender a = Ender::with([&ends](const Ender& self) {
    ++ends;
    const Ender again = self;
    send<"release">(send<"retain", id>(self));
    Weak<Ender> weak = self;
    EXPECT_FALSE(weak.lock());
  });
  a = nullptr;
  EXPECT_EQ(ends, 1);
  EXPECT_EQ(Mortal::living(), 0);
}

TEST(ObjectTest, FieldsEndAfterDeallocSubclassFirst) {
  Mortal::ended();
  Mortal inner = Mortal::new_();
  inner->setTag(2);
  Ender outer = Ender::with([](const Ender& self) { EXPECT_EQ(self->tag(), 1); }, 1);
  outer->setHeld(inner);
  inner = nullptr;
  EXPECT_EQ(Mortal::ended(), "");
  outer = nullptr;
  EXPECT_EQ(Mortal::ended(), "1 2 ");
}

TEST(ObjectTest, ARaiseLeavesNilAndAssignment) {
  Ender a = Ender::raising("one");
  EXPECT_EQ(raised([&a] { a = nullptr; }), "one");
  EXPECT_FALSE(a);
  a = Ender::raising("two");
  const Ender b = Ender::new_();
  EXPECT_EQ(raised([&] { a = b; }), "two");
  EXPECT_TRUE(a == b) << "the new object is in place";
  a = Ender::raising("three");
  Ender c = Ender::new_();
  EXPECT_EQ(raised([&] { a = std::move(c); }), "three");
  EXPECT_TRUE(a);
  a = nullptr;
  c = nullptr;
  EXPECT_EQ(Mortal::living(), 1);
}

TEST(ObjectTest, ARaiseLeavesASetterAndAReleaseMessage) {
  const Mortal holder = Mortal::new_();
  holder->setHeld(Ender::raising("setter"));
  EXPECT_EQ(raised([&] { holder->setHeld(nullptr); }), "setter");
  EXPECT_FALSE(holder->held());
  id a = Ender::raising("release");
  EXPECT_EQ(raised([&a] { send<"release">(a); }), "release");
  EXPECT_EQ(a.leak() != nullptr, true);
  EXPECT_EQ(Mortal::living(), 1);
}

TEST(ObjectTest, ARaiseLeavesNestedEndsWhenAllOfThemAreDone) {
  Mortal::ended();
  Mortal top = Mortal::new_();
  const Mortal middle = Mortal::new_();
  top->setTag(1);
  middle->setTag(2);
  const auto holdAndForget = [&] {
    Mortal m = Mortal::new_();
    m->setTag(3);
    m->setHeld(Ender::raising("deep", 4));
    top->setHeld(m);
  };
  holdAndForget();
  EXPECT_EQ(raised([&top] { top = nullptr; }), "deep");
  EXPECT_EQ(Mortal::ended(), "1 3 4 ");
}

TEST(ObjectTest, OfTwoRaisesTheFirstIsTold) {
  struct Two {
    static Mortal holding(const char* first, const char* second) {
      Mortal both = Mortal::new_();
      both->setHeld(Ender::raising(first));
      objc_setAssociatedObject(both, &kNil, Ender::raising(second), OBJC_ASSOCIATION_RETAIN);
      return both;
    }
  };
  Mortal both = Two::holding("first", "second");
  EXPECT_EQ(raised([&both] { both = nullptr; }), "first");
  EXPECT_EQ(Mortal::living(), 0);
  EXPECT_EQ(raised([] { Mortal::new_()->setHeld(nullptr); }), "") << "nothing is left over";
}

TEST(ObjectTest, ARaiseOutOfDeallocStillFreesTheFieldsOfTheObject) {
  Ender a = Ender::raising("teardown", 7);
  Mortal held = Mortal::new_();
  a->setHeld(held);
  held = nullptr;
  EXPECT_EQ(Mortal::living(), 2);
  EXPECT_EQ(raised([&a] { a = nullptr; }), "teardown");
  EXPECT_EQ(Mortal::living(), 0);
}

TEST(ObjectTest, WhenDeallocAndAFieldRaiseDeallocIsTold) {
  Ender a = Ender::raising("dealloc");
  a->setHeld(Ender::raising("field"));
  EXPECT_EQ(raised([&a] { a = nullptr; }), "dealloc");
  EXPECT_EQ(Mortal::living(), 0);
}

TEST(ObjectTest, ARaiseInsideDeallocCanBeCaughtThere) {
  std::string caught;
  Ender outer = Ender::with([&caught](const Ender&) {
    Mortal inner = Mortal::new_();
    inner->setHeld(Ender::raising("inner"));
    caught = raised([&inner] { inner = nullptr; });
  });
  EXPECT_EQ(raised([&outer] { outer = nullptr; }), "");
  EXPECT_EQ(caught, "inner");
}

TEST(ObjectTest, AClosingBraceInsideDeallocKeepsTheRaiseUntilTheObjectIsDone) {
  Mortal::ended();
  bool ranOn = false;
  Ender outer = Ender::with(
      [&ranOn](const Ender&) {
        { const Ender local = Ender::raising("brace", 2); }
        ranOn = true;
      },
      1);
  EXPECT_EQ(raised([&outer] { outer = nullptr; }), "brace");
  EXPECT_TRUE(ranOn);
  EXPECT_EQ(Mortal::ended(), "2 1 ");
}

TEST(ObjectDeathTest, AtAClosingBraceARaiseEndsTheProgram) {
  EXPECT_DEATH({ const Ender local = Ender::raising("brace"); }, "");
}

TEST(ObjectTest, AMillionObjectsInAChainEndWithoutOverflow) {
  Mortal chain = Mortal::new_();
  for (int i = 0; i < 1'000'000; ++i) {
    Mortal next = Mortal::new_();
    next->setHeld(chain);
    chain = std::move(next);
  }
  chain = nullptr;
  EXPECT_EQ(Mortal::living(), 0);
}

TEST(ObjectTest, AMillionAssociatedObjectsInAChainEndWithoutOverflow) {
  NSObject chain = NSObject::new_();
  for (int i = 0; i < 1'000'000; ++i) {
    NSObject next = NSObject::new_();
    objc_setAssociatedObject(next, &kNil, chain, OBJC_ASSOCIATION_RETAIN);
    chain = std::move(next);
  }
  const Weak<NSObject> weak = chain;
  chain = nullptr;
  EXPECT_FALSE(weak.lock());
}

TEST(ObjectTest, ALongChainThatDropsItsLinksInDeallocEndsWithoutOverflow) {
  const auto dropLink = [](const Ender& self) { self->setHeld(nullptr); };
  Ender chain = Ender::with(dropLink);
  for (int i = 0; i < 100'000; ++i) {
    Ender next = Ender::with(dropLink);
    next->setHeld(chain);
    chain = std::move(next);
  }
  chain = nullptr;
  EXPECT_EQ(Mortal::living(), 0);
}

// An object far down a chain waits for its end. Whoever reached it by then, without owning it,
// ended it a second time.
TEST(ObjectTest, AnObjectThatWaitsForItsEndEndsOnce) {
  static ObjectRecord* unowned;
  Ender waiting = Ender::with([](const Ender&) {}, 7);
  unowned = waiting.record();
  const Weak<Ender> weak = waiting;
  Mortal chain = Ender::with([&weak](const Ender& self) {
    self->setHeld(nullptr);
    EXPECT_FALSE(weak.lock());
    const id reached = borrow<id>(unowned);
  });
  chain->setHeld(waiting);
  waiting = nullptr;
  for (int i = 0; i < 199; ++i) {  // the end of `chain` is as deep as ends nest
    Mortal next = Mortal::new_();
    next->setHeld(chain);
    chain = std::move(next);
  }
  Mortal::ended();
  chain = nullptr;
  const std::string ended = Mortal::ended();
  EXPECT_EQ(ended.find('7'), ended.rfind('7')) << ended;
  EXPECT_EQ(Mortal::living(), 0);
}

TEST(ObjectTest, ARaiseAtTheFarEndOfALongChainArrives) {
  Mortal chain = Ender::raising("far");
  for (int i = 0; i < 1000; ++i) {
    Mortal next = Mortal::new_();
    next->setHeld(chain);
    chain = std::move(next);
  }
  EXPECT_EQ(raised([&chain] { chain = nullptr; }), "far");
  EXPECT_EQ(Mortal::living(), 0);
}

TEST(ObjectTest, FieldsOfTheBirthClassAreDestroyedWhateverTheClassIsAtTheEnd) {
  const Class plain = makeClass(NSObject::class_());
  Mortal a = Mortal::new_();
  EXPECT_TRUE(object_setClass(a, plain) == Mortal::class_());
  EXPECT_TRUE(object_getClass(a) == plain);
  a = nullptr;
  EXPECT_EQ(Mortal::living(), 0);
  NSObject b = NSObject::new_();
  object_setClass(b, Mortal::class_());
  b = nullptr;
  EXPECT_EQ(Mortal::living(), 0) << "no fields were made, none are destroyed";
}

#if BRINDLE_ASSERTIONS
TEST(ObjectDeathTest, AMixedInMethodThatReachesForFieldsStops) {
  const NSObject stranger = NSObject::new_();
  object_setClass(stranger, Mortal::class_());
  EXPECT_DEATH(uncheckedCast<Mortal>(stranger)->tag(),
               "a method of Mortal reached for its fields in an instance of Mortal");
}
#endif

TEST(ObjectTest, ExtraBytesAreZeroAndAligned) {
  const Class cls = objc_allocateClassPair(NSObject::class_(), uniqueName("Odd").c_str(), 0);
  EXPECT_EQ(class_addIvar(cls, "flag", 1, 0, "c"), YES);
  objc_registerClassPair(cls);
  const id object = class_createInstance(cls, 24);
  auto* extra = static_cast<char*>(object_getIndexedIvars(object));
  ASSERT_NE(extra, nullptr);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(extra) % 8, 0u);
  for (int i = 0; i < 24; ++i) EXPECT_EQ(extra[i], 0);
  std::fill(extra, extra + 24, 'x');
  object_setClass(object, Mortal::class_());
  EXPECT_EQ(object_getIndexedIvars(object), extra) << "changing the class moves nothing";
  object_setClass(object, cls);
}

TEST(ObjectTest, NilsOfTheFunctionsOnObjects) {
  EXPECT_FALSE(class_createInstance(nullptr, 0));
  EXPECT_TRUE(object_getClass(nullptr) == nullptr);
  EXPECT_TRUE(object_setClass(nullptr, NSObject::class_()) == nullptr);
  EXPECT_EQ(object_isClass(nullptr), NO);
  EXPECT_EQ(object_isClass(NSObject::class_()), YES);
  EXPECT_EQ(object_isClass(NSObject::new_()), NO);
  EXPECT_EQ(object_getIndexedIvars(nullptr), nullptr);
  const NSObject object = NSObject::new_();
  EXPECT_TRUE(object_setClass(object, nullptr) == nullptr);
  EXPECT_TRUE(object_getClass(object) == NSObject::class_());
}

TEST(ObjectTest, SixteenThreadsShareOneObject) {
  {
    const Mortal shared = Mortal::new_();
    std::vector<std::thread> threads;
    for (int i = 0; i < 16; ++i) {
      threads.emplace_back([shared] {
        std::vector<Mortal> owners;
        for (int k = 0; k < 1000; ++k) owners.push_back(shared);
      });
    }
    for (std::thread& t : threads) t.join();
    EXPECT_EQ(shared->retainCount(), 17u - 16u);
  }
  EXPECT_EQ(Mortal::living(), 0);
}

}  // namespace
}  // namespace brindle
