// Mixing the methods of one class into another.
#include <Brindle/BDClassMixIn.h>

#include <string>

#include <Brindle/BDRuntimeAdditions.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSString.h>
#include <gtest/gtest.h>

#include "Tests/Source/DateRangeTesting.h"
#include "Tests/Source/MethodsTesting.h"

namespace brindle {
namespace {

/// Says please, and knows how often it was asked: in fields that only its own objects have.
class Polite : public Interface<Polite, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Polite> classPair;
};
struct PoliteFields {
  int asked = 0;
};
constexpr MethodDefinition kPoliteMethods[] = {
    method<"description">([](const Polite& self) -> NSString {
      const NSString former = send<"mixin_description", NSString>(self);
      return former->stringByAppendingString(", please"_ns);
    }),
    // What the mix-in expects of its targets.
    method<"mixin_description">([](const Polite&) -> NSString { return "never copied"_ns; }),
    method<"thanks">([](const Polite&) -> NSString { return "thank you"_ns; }),
    method<"debugDescription">([](const Polite& self) -> NSString {
      return sendSuper<Polite, "debugDescription", NSString>(self);
    }),
    method<"asked">([](const Polite& self) { return ++fieldsOf<PoliteFields>(self).asked; }),
};
constexpr ClassDefinition kPolite{
    .name = "Polite", .methods = kPoliteMethods, .fields = fieldsDefinition<PoliteFields>()};

/// Has a description and a debug description of its own.
class Waiter : public Interface<Waiter, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Waiter> classPair;
};
constexpr MethodDefinition kWaiterMethods[] = {
    method<"description">([](const Waiter&) -> NSString { return "the menu"_ns; }),
    method<"debugDescription">([](const Waiter&) -> NSString { return "a waiter"_ns; }),
};
constexpr ClassDefinition kWaiter{.name = "Waiter", .methods = kWaiterMethods};

}  // namespace
constinit ClassPair<Polite> Polite::classPair{kPolite};
constinit ClassPair<Waiter> Waiter::classPair{kWaiter};
namespace {

/// Name and reason of what the body raises.
template <class Body>
std::string told(Body body) {
  const NSException raised = raisedBy(body);
  return std::string(raised->name()) + ": " + std::string(raised->reason());
}

std::string text(const id& object) { return std::string(object->description()); }

TEST(ClassMixInTest, Tour) {
  const Class polite = makeClass(Waiter::class_(), "PoliteWaiter");
  const id waiter = newObject(polite);
  EXPECT_EQ(text(waiter), "the menu");
  class_mixIn(polite, Polite::class_());
  EXPECT_EQ(text(waiter), "the menu, please");
  EXPECT_EQ(std::string(send<"mixin_description", NSString>(waiter)), "the menu");
  EXPECT_EQ(std::string(send<"thanks", NSString>(waiter)), "thank you");
  EXPECT_EQ(text(Waiter::new_()), "the menu") << "its superclass is left alone";
}

TEST(ClassMixInTest, OnlyWrappedMethodsKeepAFormerOne) {
  const Class target = makeClass(Waiter::class_());
  class_mixIn(target, Polite::class_());
  EXPECT_EQ(class_getInstanceMethod(target, selector<"mixin_thanks">()), nullptr);
  EXPECT_EQ(class_getInstanceMethod(target, selector<"mixin_mixin_description">()), nullptr);
  // The last that the target got is the first in its list.
  EXPECT_EQ(ownMethods(target),
            "asked debugDescription mixin_debugDescription thanks description mixin_description ");
}

TEST(ClassMixInTest, MethodsOfTheMixInsSuperclassesStayThere) {
  const Class mixIn = makeClass(Polite::class_());
  addAnswer<4>(mixIn, selector<"four">());
  const Class target = makeClass(NSObject::class_());
  class_mixIn(target, mixIn);
  EXPECT_EQ(ownMethods(target), "four ");
}

TEST(ClassMixInTest, WithoutMethodsNothingChanges) {
  const Class target = makeClass(NSObject::class_());
  class_mixIn(target, makeClass(NSObject::class_()));
  class_mixIn(target, Class());
  EXPECT_EQ(ownMethods(target), "");
}

TEST(ClassMixInTest, SuperStartsAtTheMixInsSuperclass) {
  const Class target = makeClass(Waiter::class_());
  class_mixIn(target, Polite::class_());
  const id waiter = newObject(target);
  EXPECT_EQ(std::string(waiter->debugDescription()), text(waiter))
      << "NSObject's, not the waiter's: it answers the description";
}

TEST(ClassMixInTest, KeepsColonsInDerivedNames) {
  const Class target = makeClass(NSObject::class_());
  const Class mixIn = makeClass(NSObject::class_());
  const auto nothing = [](const NSObject&, const id&, const id&) {};
  addMethod(target, selector<"setValue:forKey:">(), nothing);
  addMethod(mixIn, selector<"setValue:forKey:">(), nothing);
  class_mixIn(target, mixIn);
  EXPECT_NE(class_firstLevelMethod(target, selector<"mixin_setValue:forKey:">()), nullptr);
}

TEST(ClassMixInTest, ClassMethodsAreMixedThroughTheMetaClasses) {
  const Class target = makeClass(Waiter::class_());
  const Class mixIn = makeClass(NSObject::class_());
  addAnswer<5>(object_getClass(target), selector<"five">());
  addMethod(object_getClass(mixIn), selector<"five">(),
            [](const Class& self) { return send<"mixin_five", int>(self) * 10; });
  class_mixIn(object_getClass(target), object_getClass(mixIn));
  EXPECT_EQ(ask(target, selector<"five">()), 50);
}

// --- Conflicts -----------------------------------------------------------------------------------

TEST(ClassMixInTest, ASecondTimeRaises) {
  const Class target = makeClass(Waiter::class_(), "TwicePolite");
  class_mixIn(target, Polite::class_());
  const std::string name = class_getName(target);
  EXPECT_EQ(
      told([&] { class_mixIn(target, Polite::class_()); }),
      "BDInvalidArgumentException: " + name + " has already mixed in a method named description");
  EXPECT_EQ(text(newObject(target)), "the menu, please") << "wrapped once";
}

TEST(ClassMixInTest, SubclassesOfATargetHaveItAlready) {
  const Class target = makeClass(Waiter::class_());
  class_mixIn(target, Polite::class_());
  const Class below = makeClass(target, "BelowPolite");
  EXPECT_EQ(told([&] { class_mixIn(below, Polite::class_()); }),
            "BDInvalidArgumentException: " + std::string(class_getName(below)) +
                " has already mixed in a method named description");
  EXPECT_EQ(ownMethods(below), "");
}

TEST(ClassMixInTest, OtherTypesRaiseAndWhatCameBeforeStays) {
  const Class target = makeClass(NSObject::class_(), "Counting");
  const Class mixIn = makeClass(NSObject::class_(), "Naming");
  addAnswer<1>(target, selector<"label">());
  // Methods are mixed in the order of the list, in which the last added is the first.
  addAnswer<9>(mixIn, selector<"afterLabel">());
  addMethod(mixIn, selector<"label">(), [](const NSObject&) -> NSString { return "one"_ns; });
  addAnswer<2>(mixIn, selector<"beforeLabel">());
  EXPECT_EQ(told([&] { class_mixIn(target, mixIn); }),
            std::string("BDInvalidArgumentException: Cannot mix ") + class_getName(mixIn) +
                " into " + class_getName(target) + ".  Type mismatch on label.");
  EXPECT_EQ(ownMethods(target), "beforeLabel label ");
  EXPECT_EQ(ask(newObject(target), selector<"label">()), 1);
}

TEST(ClassMixInTest, TypesAreComparedBeforeNames) {
  const Class target = makeClass(NSObject::class_());
  const Class first = makeClass(NSObject::class_());
  const Class second = makeClass(NSObject::class_());
  addAnswer<1>(target, selector<"label">());
  addAnswer<2>(first, selector<"label">());
  addMethod(second, selector<"label">(), [](const NSObject&) -> NSString { return nullptr; });
  class_mixIn(target, first);
  EXPECT_NE(told([&] { class_mixIn(target, second); }).find("Type mismatch on label."),
            std::string::npos);
}

TEST(ClassMixInTest, MethodsWithoutTypesAreOfOneKind) {
  const Class target = makeClass(NSObject::class_());
  const Class mixIn = makeClass(NSObject::class_());
  class_addMethod(target, selector<"untyped">(), answering<1>().implementation, nullptr);
  class_addMethod(mixIn, selector<"untyped">(), answering<2>().implementation, nullptr);
  class_mixIn(target, mixIn);
  EXPECT_EQ(ask(newObject(target), selector<"untyped">()), 2);
  EXPECT_EQ(ask(newObject(target), selector<"mixin_untyped">()), 1);
}

// --- Fields --------------------------------------------------------------------------------------

TEST(ClassMixInDeathTest, TheMixInsFieldsAreNotThere) {
#if BRINDLE_ASSERTIONS
  const Class target = makeClass(Waiter::class_(), "Asked");
  class_mixIn(target, Polite::class_());
  const id waiter = newObject(target);
  EXPECT_DEATH((send<"asked", int>(waiter)),
               "a method of Polite reached for its fields in an instance of Asked[0-9]+, which has "
               "none of them");
#endif
}

}  // namespace
}  // namespace brindle
