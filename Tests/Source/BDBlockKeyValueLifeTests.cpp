// What block observers register, what they keep, and in which order they let go of it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <Brindle/BDBlockKeyValueAdditions.h>
#include <Brindle/Platform/AutoreleasePool.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSNull.h>
#include <Brindle/Platform/Runtime.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

using ChangeBlock = Block<void(const NSDictionary&)>;

constexpr NSUInteger kNew = NSKeyValueObservingOptionNew;
constexpr NSUInteger kTied = kNew | BDKeyValueObservingOptionRemoveOnDealloc;

/// Writes down what is registered with it.
class Meter : public Interface<Meter, Mortal> {
 public:
  using Interface::Interface;
  static ClassPair<Meter> classPair;
  void setLevel(int level) const { send<"setLevel:">(*this, level); }
  void setParts(const id& parts) const { send<"setParts:">(*this, parts); }
};

struct Registered {
  id observer;  // nothing that these tests register is a cycle
  std::string keyPath;
  NSUInteger options;
  void* context;
};
struct MeterFields {
  int level = 0;
  Field<id> parts;
  std::vector<Registered> registered;
  std::string events;
};
MeterFields& fields(const Meter& self) { return fieldsOf<MeterFields>(self); }

constexpr MethodDefinition kMethods[] = {
    method<"level">([](const Meter& self) { return fields(self).level; }),
    method<"setLevel:">([](const Meter& self, int level) { fields(self).level = level; }),
    method<"parts">([](const Meter& self) -> id { return fields(self).parts; }),
    method<"setParts:">([](const Meter& self, const id& parts) { fields(self).parts = parts; }),
    method<"addObserver:forKeyPath:options:context:">([](const Meter& self, const id& observer,
                                                         const NSString& keyPath,
                                                         NSUInteger options, void* context) {
      fields(self).registered.push_back({observer, std::string(keyPath), options, context});
      sendSuper<Meter, "addObserver:forKeyPath:options:context:">(self, observer, keyPath, options,
                                                                  context);
    }),
    method<"removeObserver:forKeyPath:">(
        [](const Meter& self, const id& observer, const NSString& keyPath) {
          fields(self).events += "remove " + std::string(keyPath) + " ";
          sendSuper<Meter, "removeObserver:forKeyPath:">(self, observer, keyPath);
        }),
};
constexpr ClassDefinition kDefinition{
    .name = "Meter", .methods = kMethods, .fields = fieldsDefinition<MeterFields>()};

}  // namespace
constinit ClassPair<Meter> Meter::classPair{kDefinition};
namespace {

/// The last registration, which is forgotten.
Registered taken(const Meter& meter) {
  Registered last = fields(meter).registered.back();
  fields(meter).registered.clear();
  return last;
}

TEST(BlockObserversLife, RegisterACopyThatTheObserverKeeps) {
  const Meter meter = Meter::new_();
  const NSObject owner = NSObject::new_();
  const ChangeBlock block = [](const NSDictionary&) {};
  const Block<void()> stop = addObserver(meter, owner, "level"_ns, kNew, block);
  Registered seen = taken(meter);
  EXPECT_EQ(seen.observer, block) << "the copy of a block that is kept is the block";
  EXPECT_EQ(seen.keyPath, "level");
  EXPECT_EQ(objc_getAssociatedObject(owner, block.record()), block);
  stop();
  EXPECT_TRUE(objc_getAssociatedObject(owner, block.record()) == nullptr);
}

TEST(BlockObserversLife, HandOnTheLowBitsOfTheOptions) {
  const Meter meter = Meter::new_();
  NSObject owner = NSObject::new_();
  const auto handedOn = [&](NSUInteger options) {
    addObserver(meter, owner, "level"_ns, options, [](const NSDictionary&) {});
    return taken(meter).options;
  };
  EXPECT_EQ(handedOn(kTied), kNew);
  EXPECT_EQ(handedOn(0xFFFFFFFFFFFFFFFB), 0x7FFFFFFBU);
  EXPECT_EQ(handedOn(0x80000001), 1U);
  EXPECT_EQ(handedOn(0xFFFFFFFF00000001), 1U) << "bit 31 belongs to the option too";
  EXPECT_EQ(deallocUnobservers(owner)->count(), 2U);
}

TEST(BlockObserversLife, HaveOneContextThatIsAText) {
  const Meter meter = Meter::new_();
  const NSObject owner = NSObject::new_();
  NSUInteger told = 0;
  addObserver(meter, owner, "level"_ns, kNew, [](const NSDictionary&) {});
  const Registered one = taken(meter);
  const Block<void()> stop =
      addObserver(meter, owner, "tag"_ns, kNew,
                  [&told](const NSDictionary& change) { told += change->count(); });
  const Registered other = taken(meter);
  EXPECT_EQ(one.context, other.context);
  const auto text = borrow<NSString>(static_cast<ObjectRecord*>(one.context));
  EXPECT_TRUE(text->isEqualToString("BDBlockCallContext"_ns));
  // Whoever gets a message with it is a block, and runs.
  const NSDictionary change = NSDictionary::dictionaryWithObject("x"_ns, "new"_ns);
  send<"observeValueForKeyPath:ofObject:change:context:">(other.observer, "tag"_ns, meter, change,
                                                          other.context);
  EXPECT_EQ(told, 1U);
  // Without it, the message goes where it went before.
  EXPECT_NE(raised([&] {
              send<"observeValueForKeyPath:ofObject:change:context:">(
                  other.observer, "tag"_ns, meter, change, static_cast<void*>(nullptr));
            }).find("received but not handled.\nKey path: tag"),
            std::string::npos);
}

TEST(BlockObserversLife, GoByTheGeneralForm) {
  const Class cls = makeClass(Meter::class_());
  static std::string seen;
  addMethod<"addObserver:forKeyPath:options:block:extraRemoval:">(
      cls,
      [](const Meter& self, const id& observer, const NSString& keyPath, NSUInteger options,
         const ChangeBlock& block, const Block<void()>& extra) -> Block<void()> {
        seen += observer == self ? "itself " : "other ";
        seen += std::string(keyPath) + " " + std::to_string(options) + (extra ? " extra\n" : "\n");
        return sendSuper<Meter, "addObserver:forKeyPath:options:block:extraRemoval:",
                         Block<void()>>(self, observer, keyPath, options, block, extra);
      });
  const Meter meter = send<"new", Meter>(cls);
  const NSObject owner = NSObject::new_();
  const auto nothing = [](const NSDictionary&) {};
  addObserver(meter, owner, "level"_ns, 1, nothing);
  addObserverForKeyPath(meter, "level"_ns, 2, nothing);
  addObserverForCollection(meter, owner, "parts"_ns, "level"_ns, 8, nothing);
  addObserverForCollection(meter, "parts"_ns, "level"_ns, kTied, nothing);
  EXPECT_EQ(seen, "other level 1\nitself level 2\nother parts 7 extra\nitself parts 7 extra\n");
}

TEST(BlockObserversLife, KeepNeitherSideByTheirRemoval) {
  Meter meter = Meter::new_();
  Mortal owner = Mortal::new_();
  const Block<void()> stop =
      addObserver(meter, owner, "level"_ns, kNew, [](const NSDictionary&) {});
  EXPECT_EQ(meter->retainCount(), 1U);
  EXPECT_EQ(owner->retainCount(), 1U);
  meter = nullptr;
  owner = nullptr;
  EXPECT_EQ(Mortal::living(), 0);
  stop();  // in vain
}

TEST(BlockObserversLife, LetGoOfTheirBlocks) {
  const Meter meter = Meter::new_();
  NSObject owner = NSObject::new_();
  const int before = Mortal::living();
  const auto observed = [&](NSUInteger options) {
    const Mortal inBlock = Mortal::new_();
    const Mortal inExtra = Mortal::new_();
    return addObserver(
        meter, owner, "level"_ns, options, [inBlock](const NSDictionary&) { inBlock->setTag(1); },
        [inExtra] { inExtra->setTag(1); });
  };
  Block<void()> stop = observed(kNew);
  EXPECT_EQ(Mortal::living() - before, 2);
  fields(meter).registered.clear();
  stop();
  stop = nullptr;
  EXPECT_EQ(Mortal::living() - before, 0);
  // The observer keeps what the removal does not.
  stop = observed(kNew);
  fields(meter).registered.clear();
  stop = nullptr;
  EXPECT_EQ(Mortal::living() - before, 1) << "the block, not the extra removal";
  stop = observed(kTied);
  fields(meter).registered.clear();
  EXPECT_EQ(Mortal::living() - before, 3);
  owner = nullptr;
  EXPECT_EQ(Mortal::living() - before, 0);
}

TEST(BlockObserversLife, StopInOrder) {
  const Meter meter = Meter::new_();
  const NSObject owner = NSObject::new_();
  const ChangeBlock block = [](const NSDictionary&) {};
  const Block<void()> stop = addObserver(meter, owner, "level"_ns, kNew, block, [&] {
    const bool isKept = static_cast<bool>(objc_getAssociatedObject(owner, block.record()));
    fields(meter).events += isKept ? "extra, block is kept" : "extra, block is gone";
  });
  stop();
  EXPECT_EQ(fields(meter).events, "remove level extra, block is kept");
}

TEST(BlockObserversLife, AnswerOneEmptyBlockForTheTied) {
  const Meter meter = Meter::new_();
  const NSObject owner = NSObject::new_();
  const auto nothing = [](const NSDictionary&) {};
  const Block<void()> one = addObserver(meter, owner, "level"_ns, kTied, nothing);
  EXPECT_EQ(addObserver(meter, owner, "level"_ns, kTied, nothing), one);
  one();
  EXPECT_EQ(fields(meter).events, "");
  EXPECT_EQ(deallocUnobservers(owner)->count(), 2U);
}

TEST(BlockObserversLife, HaveAListThatIsMadeWhenItIsAskedFor) {
  const Class cls = makeClass(Mortal::class_());
  static int asked = 0;
  addMethod<"_deallocUnobservers">(cls, [](const Mortal& self) -> NSMutableArray {
    ++asked;
    return sendSuper<Mortal, "_deallocUnobservers", NSMutableArray>(self);
  });
  Mortal owner = send<"new", Mortal>(cls);
  owner = nullptr;
  EXPECT_EQ(asked, 0) << "the end of an object makes none";
  owner = send<"new", Mortal>(cls);
  const NSMutableArray list = deallocUnobservers(owner);
  EXPECT_EQ(list->count(), 0U);
  EXPECT_EQ(deallocUnobservers(owner), list);
  EXPECT_EQ(list->retainCount(), 2U) << "the object's and this one";
  addObserver(Meter::new_(), owner, "level"_ns, kTied, [](const NSDictionary&) {});
  EXPECT_EQ(asked, 3);
  EXPECT_EQ(list->count(), 1U);
}

TEST(BlockObserversLife, EndInTheOrderOfTheListBeforeTheirObserver) {
  const Meter meter = Meter::new_();
  Mortal owner = Mortal::new_();
  const int living = Mortal::living();
  std::string order;
  std::string expected;
  for (int i = 0; i < 40; ++i) {  // more than one batch of an enumeration
    addObserver(
        meter, owner, "level"_ns, kTied, [](const NSDictionary&) {},
        [&, i] { order += std::to_string(i) + (Mortal::living() == living ? " " : "late "); });
    expected += std::to_string(i) + " ";
  }
  owner = nullptr;
  EXPECT_EQ(order, expected);
  EXPECT_EQ(Mortal::living(), living - 1);
}

TEST(BlockObserversLife, ReachAnObserverThatEnds) {
  const int before = Mortal::living();
  std::string events;
  int living = 0;
  {
    const Meter meter = Meter::new_();
    const auto* own = &fields(meter);
    const Mortal captured = Mortal::new_();
    addObserver(
        meter, meter, "level"_ns, kTied, [captured](const NSDictionary&) { captured->setTag(1); },
        [&events, own] { events = own->events; });
    addObserver(
        meter, meter, "tag"_ns, kTied, [](const NSDictionary&) {},
        [&living] { living = Mortal::living(); });
    fields(meter).registered.clear();
    EXPECT_EQ(Mortal::living() - before, 2);
  }
  EXPECT_EQ(events, "remove level ") << "the message, though weak references read nil by then";
  EXPECT_EQ(living - before, 2) << "the list keeps the first block yet";
  EXPECT_EQ(Mortal::living(), before);
}

TEST(BlockObserversLife, AreNotRegisteredWhenTheFirstCallRaises) {
  const Meter meter = Meter::new_();
  meter->setHeld("text"_ns);
  const NSObject owner = NSObject::new_();
  EXPECT_NE(raised([&] {
              addObserver(meter, owner, "held.level"_ns, kNew | NSKeyValueObservingOptionInitial,
                          [](const NSDictionary&) {});
            }).find("not key value coding-compliant for the key level"),
            std::string::npos);
  EXPECT_EQ(raised([&] { meter->setHeld("another"_ns); }), "") << "the path is not read any more";
  EXPECT_EQ(object_getClass(meter), Meter::class_());
}

TEST(CollectionObserversLife, HandTheOptionsToTheMembersAsTheyAre) {
  const Meter room = Meter::new_();
  const Meter part = Meter::new_();
  room->setParts(NSArray{part});
  const NSObject owner = NSObject::new_();
  int calls = 0;
  const NSUInteger options = kTied | NSKeyValueObservingOptionInitial;
  const ChangeBlock block = [&calls](const NSDictionary&) { ++calls; };
  const Block<void()> stop =
      addObserverForCollection(room, owner, "parts"_ns, "level"_ns, options, block);
  EXPECT_EQ(calls, 1) << "once for each member";
  const Registered ofRoom = taken(room);
  const Registered ofPart = taken(part);
  EXPECT_EQ(ofPart.options, options);
  EXPECT_EQ(ofPart.observer, block);
  EXPECT_EQ(ofPart.keyPath, "level");
  EXPECT_EQ(ofPart.context, ofRoom.context);
  EXPECT_EQ(ofRoom.options, 7U);
  EXPECT_EQ(objc_getAssociatedObject(owner, ofRoom.observer.record()), ofRoom.observer);
  EXPECT_EQ(deallocUnobservers(owner)->count(), 0U) << "the option does not reach the collection";
  stop();
  part->setLevel(1);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(fields(room).events, "remove parts ");
}

TEST(CollectionObserversLife, MoveFromTheMembersAsTheyWere) {
  const AutoreleasePool pool;  // takes the collections of before
  const Meter room = Meter::new_();
  const Meter a = Meter::new_();
  const Meter b = Meter::new_();
  const NSMutableArray parts = NSMutableArray::array();
  parts->addObject(a);
  room->setParts(parts);
  std::string told;
  const Block<void()> stop = addObserverForCollection(
      room, "parts"_ns, "level"_ns, kNew, [&told](const NSDictionary&) { told += "x"; });
  parts->replaceObjectAtIndex(0, b);  // nobody is told
  b->setLevel(1);
  EXPECT_EQ(told, "");
  a->setLevel(1);
  EXPECT_EQ(told, "x");
  room->setParts(parts);
  a->setLevel(2);
  EXPECT_EQ(told, "x");
  b->setLevel(2);
  EXPECT_EQ(told, "xx");
  stop();
}

TEST(CollectionObserversLife, StopAtTheMembersThatAreThereNow) {
  const Meter room = Meter::new_();
  const Meter a = Meter::new_();
  const Meter b = Meter::new_();
  const NSMutableArray parts = NSMutableArray::array();
  parts->addObject(a);
  parts->addObject(b);
  room->setParts(parts);
  int calls = 0;
  const auto observed = [&] {
    return addObserverForCollection(room, "parts"_ns, "level"_ns, kNew,
                                    [&calls](const NSDictionary&) { ++calls; });
  };
  Block<void()> stop = observed();
  parts->removeLastObject();  // nobody is told
  stop();
  a->setLevel(1);
  EXPECT_EQ(calls, 0);
  b->setLevel(1);
  EXPECT_EQ(calls, 1) << "it was not there any more";
  stop = observed();
  parts->addObject(Meter::new_());
  EXPECT_NE(raised([&] { stop(); }).find("NSRangeException"), std::string::npos)
      << "it was never registered";
  for (const id& empty : {id(NSArray::array()), id(NSNull::null()), id(""_ns), id()}) {
    room->setParts(empty);
    stop = observed();
    EXPECT_EQ(raised([&] { stop(); }), "") << "there is nothing to stop";
  }
}

TEST(CollectionObserversLife, LetGoOfTheLastCollection) {
  const Meter room = Meter::new_();
  const int before = Mortal::living();
  Block<void()> stop;
  {
    const AutoreleasePool pool;
    room->setParts(NSArray{Mortal::new_()});
    stop = addObserverForCollection(room, "parts"_ns, "tag"_ns, kNew, [](const NSDictionary&) {});
    fields(room).registered.clear();
    room->setParts(NSArray{Mortal::new_(), Mortal::new_()});
    fields(room).parts = nullptr;
  }
  EXPECT_EQ(Mortal::living() - before, 2) << "the collection observed last is kept";
  stop();
  stop = nullptr;
  EXPECT_EQ(Mortal::living() - before, 0);
}

TEST(CollectionObserversLife, DoNotStopWithTheirObserverByThemselves) {
  const Meter room = Meter::new_();
  const Meter part = Meter::new_();
  room->setParts(NSArray{part});
  NSObject owner = NSObject::new_();
  int calls = 0;
  const Block<void()> stop = addObserverForCollection(room, owner, "parts"_ns, "level"_ns, kTied,
                                                      [&calls](const NSDictionary&) { ++calls; });
  owner = nullptr;
  part->setLevel(1);
  EXPECT_EQ(calls, 1) << "the removal keeps the blocks";
  stop();
  part->setLevel(2);
  EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace brindle
