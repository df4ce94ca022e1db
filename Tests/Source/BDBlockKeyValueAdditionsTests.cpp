#include <Brindle/BDBlockKeyValueAdditions.h>

#include <gtest/gtest.h>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSNull.h>
#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/Runtime.h>

#include "Tests/Source/DateRangeTesting.h"

namespace brindle {
namespace {

class Light : public Interface<Light, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Light> classPair;
  void setLevel(int level) const { send<"setLevel:">(*this, level); }
  void setParts(const id& parts) const { send<"setParts:">(*this, parts); }
};

struct Fields {
  int level = 0;
  Field<id> parts;
};
constexpr MethodDefinition kMethods[] = {
    method<"level">([](const Light& self) { return fieldsOf<Fields>(self).level; }),
    method<"setLevel:">([](const Light& self, int level) { fieldsOf<Fields>(self).level = level; }),
    method<"parts">([](const Light& self) -> id { return fieldsOf<Fields>(self).parts; }),
    method<"setParts:">(
        [](const Light& self, const id& parts) { fieldsOf<Fields>(self).parts = parts; }),
};
constexpr ClassDefinition kDefinition{
    .name = "Light", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<Light> Light::classPair{kDefinition};

namespace {

constexpr NSUInteger kNew = NSKeyValueObservingOptionNew;
constexpr NSUInteger kInitial = NSKeyValueObservingOptionInitial;

TEST(BlockObservers, RunABlockForEachChange) {
  const Light light = Light::new_();
  const NSObject observer = NSObject::new_();
  int level = -1;
  const Block<void()> stop =
      addObserver(light, observer, "level"_ns, kNew, [&](const NSDictionary& change) {
        level = send<"intValue", int>(change->objectForKey(NSKeyValueChangeNewKey));
      });
  light->setLevel(3);
  EXPECT_EQ(level, 3);
  stop();
  light->setLevel(4);
  EXPECT_EQ(level, 3);
  EXPECT_EQ(object_getClass(light), Light::class_());
}

TEST(BlockObservers, RunAtOnceWithTheInitialOption) {
  const Light light = Light::new_();
  int calls = 0;
  const Block<void()> stop =
      addObserverForKeyPath(light, "level"_ns, kInitial, [&](const NSDictionary&) { ++calls; });
  EXPECT_EQ(calls, 1);
  stop();
}

TEST(BlockObservers, RaiseWhenTheyAreStoppedTwice) {
  const Light light = Light::new_();
  const Block<void()> stop =
      addObserverForKeyPath(light, "level"_ns, kNew, [](const NSDictionary&) {});
  stop();
  EXPECT_TRUE(raisedBy([&] { stop(); })->name()->isEqualToString(NSRangeException));
}

TEST(BlockObservers, StopWithTheirObserver) {
  const Light light = Light::new_();
  NSObject observer = NSObject::new_();
  int calls = 0;
  int extra = 0;
  const Block<void()> nothing = addObserver(
      light, observer, "level"_ns, kNew | BDKeyValueObservingOptionRemoveOnDealloc,
      [&](const NSDictionary&) { ++calls; }, [&] { ++extra; });
  nothing();
  EXPECT_EQ(deallocUnobservers(observer)->count(), 1U);
  light->setLevel(1);
  EXPECT_EQ(calls, 1);
  observer = nullptr;
  EXPECT_EQ(extra, 1);
  light->setLevel(2);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(object_getClass(light), Light::class_());
}

TEST(BlockObservers, TakeTheOptionAlone) {
  static_assert(BDKeyValueObservingOptions(BDKeyValueObservingOptionRemoveOnDealloc) ==
                0xFFFFFFFF80000000);
  const Light light = Light::new_();
  NSObject observer = NSObject::new_();
  int calls = 0;
  addObserver(light, observer, "level"_ns, BDKeyValueObservingOptionRemoveOnDealloc,
              [&](const NSDictionary& change) {
                ++calls;
                EXPECT_FALSE(change->objectForKey(NSKeyValueChangeNewKey));
              });
  light->setLevel(1);
  observer = nullptr;
  light->setLevel(2);
  EXPECT_EQ(calls, 1);
}

TEST(BlockObservers, TakeTheOptionOnlyWithAllItsBits) {
  static_assert((NSUInteger{1} | BDKeyValueObservingOptionRemoveOnDealloc) == 0xFFFFFFFF80000001);
  static_assert((1U | BDKeyValueObservingOptionRemoveOnDealloc) == 0x80000001U);
  static_assert((BDKeyValueObservingOptionRemoveOnDealloc | 1U) == 0x80000001U);
  static_assert((NSKeyValueObservingOptionNew | BDKeyValueObservingOptionRemoveOnDealloc) ==
                0xFFFFFFFF80000001);
  const Light light = Light::new_();
  const NSObject observer = NSObject::new_();
  int calls = 0;
  const Block<void()> stop = addObserver(light, observer, "level"_ns, kNew | 0x80000000U,
                                         [&](const NSDictionary&) { ++calls; });
  EXPECT_EQ(deallocUnobservers(observer)->count(), 0U);
  light->setLevel(1);
  stop();
  light->setLevel(2);
  EXPECT_EQ(calls, 1);
}

TEST(BlockObservers, ObserveThemselvesToTheirEnd) {
  int calls = 0;
  {
    const Light light = Light::new_();
    addObserverForKeyPath(light, "level"_ns, kNew | BDKeyValueObservingOptionRemoveOnDealloc,
                          [&](const NSDictionary&) { ++calls; });
    light->setLevel(1);
  }
  EXPECT_EQ(calls, 1);
}

TEST(BlockObservers, AreStoppedInVainWhenTheObservedObjectIsGone) {
  Light light = Light::new_();
  NSObject observer = NSObject::new_();
  int extra = 0;
  const Block<void()> stop = addObserver(
      light, observer, "level"_ns, kNew, [](const NSDictionary&) {}, [&] { ++extra; });
  addObserver(light, observer, "level"_ns, kNew | BDKeyValueObservingOptionRemoveOnDealloc,
              [](const NSDictionary&) {});
  light = nullptr;
  stop();
  observer = nullptr;
  EXPECT_EQ(extra, 1);
}

TEST(BlockObservers, SeparateTheRegistrationsOfOneBlock) {
  const Light one = Light::new_();
  const Light two = Light::new_();
  const NSObject observer = NSObject::new_();
  int calls = 0;
  const Block<void(const NSDictionary&)> block = [&](const NSDictionary&) { ++calls; };
  const Block<void()> stopOne = addObserver(one, observer, "level"_ns, kNew, block);
  const Block<void()> stopTwo = addObserver(two, observer, "level"_ns, kNew, block);
  stopOne();
  one->setLevel(1);
  two->setLevel(1);
  EXPECT_EQ(calls, 1);
  stopTwo();
}

TEST(BlockObservers, LiveOnWhenTheSameBlockIsStoppedElsewhere) {
  const Light light = Light::new_();
  const NSObject observer = NSObject::new_();
  int calls = 0;
  Block<void(const NSDictionary&)> block = [&](const NSDictionary&) { ++calls; };
  Block<void()> stop = addObserver(light, observer, "level"_ns, kNew, block);
  addObserver(light, observer, "level"_ns, kNew, block);
  block = nullptr;
  stop();
  stop = nullptr;  // it held the block too
  light->setLevel(1);
  EXPECT_EQ(calls, 1);
}

TEST(BlockObservers, RaiseWhenTheListChangesDuringTheEnd) {
  const Light light = Light::new_();
  NSObject observer = NSObject::new_();
  const NSMutableArray list = deallocUnobservers(observer);
  list->addObject(Block<void()>(
      [list = Weak<NSMutableArray>(list)] { list.lock()->addObject(Block<void()>([] {})); }));
  list->addObject(Block<void()>([] {}));
  EXPECT_TRUE(raisedBy([&] { observer = nullptr; })->name()->isEqualToString(NSGenericException));
}

TEST(BlockObservers, DoNotTakeAnEqualContextForTheirs) {
  const Light light = Light::new_();
  const Block<void(const NSDictionary&)> block = [](const NSDictionary&) {};
  addObserver(light, block, "level"_ns, kNew,
              static_cast<void*>(id("BDBlockCallContext"_ns).record()));
  const NSException raised = raisedBy([&] { light->setLevel(1); });
  EXPECT_TRUE(raised->name()->isEqualToString(NSInternalInconsistencyException));
  removeObserver(light, block, "level"_ns);
}

TEST(CollectionObservers, FollowTheRelationship) {
  const Light room = Light::new_();
  const Light a = Light::new_();
  const Light b = Light::new_();
  const Light c = Light::new_();
  const Light d = Light::new_();
  room->setParts(NSArray{a, b});
  int calls = 0;
  const Block<void()> stop = addObserverForCollection(room, "parts"_ns, "level"_ns, kNew,
                                                      [&](const NSDictionary&) { ++calls; });
  const auto changeAll = [&] {
    calls = 0;
    for (const Light& light : {a, b, c, d}) light->setLevel(1);
    return calls;
  };
  EXPECT_EQ(changeAll(), 2);
  room->setParts(NSArray{b, c, d});
  EXPECT_EQ(changeAll(), 3);
  a->setLevel(2);
  EXPECT_EQ(calls, 3);
  for (const id& empty : {id(NSArray::array()), id(NSNull::null()), id(""_ns), id()}) {
    room->setParts(empty);
    EXPECT_EQ(changeAll(), 0);
  }
  room->setParts(NSArray{a});
  EXPECT_EQ(changeAll(), 1);
  stop();
  EXPECT_EQ(changeAll(), 0);
  room->setParts(NSArray{b});
  EXPECT_EQ(changeAll(), 0);
}

/// What observing the members of this value raises.
std::string raisedFor(const id& parts) {
  const Light room = Light::new_();
  room->setParts(parts);
  try {
    addObserverForCollection(room, "parts"_ns, "level"_ns, kNew, [](const NSDictionary&) {});
  } catch (const std::exception& e) {
    return e.what();
  }
  return "";
}

TEST(CollectionObservers, AskForLengthAndCountOnlyWhereTheyAreAnswered) {
  // An array has a count and no length, a text the other way round.
  EXPECT_EQ(raisedFor(NSArray::array()), "");
  EXPECT_EQ(raisedFor(NSArray{Light::new_()}), "");
  EXPECT_EQ(raisedFor(""_ns), "");
  EXPECT_EQ(raisedFor(NSNull::null()), "");
  EXPECT_EQ(raisedFor(NSDictionary::dictionary()), "");
  // What is neither empty nor a collection is asked for its members.
  EXPECT_NE(raisedFor(NSObject::new_()).find("-[NSObject count]: unrecognized selector"),
            std::string::npos);
  EXPECT_NE(raisedFor("text"_ns).find("count]: unrecognized selector"), std::string::npos);
}

TEST(CollectionObservers, RaiseForSets) {
  // Members of a set have no indexes: an empty one is nothing to observe, another is refused.
  EXPECT_EQ(raisedFor(NSSet::set()), "");
  const Light part = Light::new_();
  EXPECT_NE(raisedFor(NSSet{part})
                .find("addObserver:toObjectsAtIndexes:forKeyPath:options:context:]: unrecognized"),
            std::string::npos);
  part->setLevel(1);
  EXPECT_EQ(object_getClass(part), Light::class_());
}

}  // namespace
}  // namespace brindle
