// Pulling up, caching, replacing, exchanging and storing implementations.
#include <Brindle/BDRuntimeAdditions.h>

#include <string>

#include <Brindle/Platform/NSKeyValueObserving.h>
#include <Brindle/Platform/NSProxy.h>
#include <Brindle/Platform/NSString.h>
#include <gtest/gtest.h>

#include "Tests/Source/MethodsTesting.h"

namespace brindle {
namespace {

IMP previousAnswer;

struct Pair {
  double x, y;
};

}  // namespace
template <>
struct StructEncoding<Pair> : FieldsEncoding<"Pair", double, double> {};
namespace {

/// A class with `one` and a subclass that inherits it.
class RuntimeAdditionsTest : public testing::Test {
 protected:
  RuntimeAdditionsTest() { addAnswer<1>(super, one); }

  const SEL one = unusedSelector("one");
  const SEL two = unusedSelector("two");
  const Class super = makeClass(NSObject::class_());
  const Class sub = makeClass(super);
  const id inSuper = newObject(super);
  const id inSub = newObject(sub);
};

TEST_F(RuntimeAdditionsTest, Tour) {
  const auto moreThanBefore = [](const NSObject& self, Cmd cmd) {
    return callImplementation<int>(previousAnswer, self, cmd.selector) + 10;
  };
  EXPECT_TRUE(swizzle(sub, one, moreThanBefore, &previousAnswer));
  EXPECT_EQ(ask(inSub, one), 11);
  EXPECT_EQ(ask(inSuper, one), 1) << "a superclass is left alone";

  addAnswer<2>(sub, two);
  EXPECT_TRUE(swizzle(sub, one, two));
  EXPECT_EQ(ask(inSub, one), 2);
  EXPECT_THROW(ask(inSuper, two), std::exception);
  EXPECT_TRUE(swizzle(sub, one, two));
  EXPECT_EQ(ask(inSub, one), 11);
}

// --- Own methods, and pulling up -----------------------------------------------------------------

TEST_F(RuntimeAdditionsTest, OnlyOwnMethodsAreOfTheFirstLevel) {
  EXPECT_EQ(class_firstLevelMethod(super, one), class_getInstanceMethod(super, one));
  EXPECT_EQ(class_firstLevelMethod(sub, one), nullptr);
  EXPECT_EQ(class_firstLevelMethod(sub, two), nullptr);
  EXPECT_EQ(class_firstLevelMethod(Class(), one), nullptr);
  EXPECT_EQ(class_firstLevelMethod(super, nullptr), nullptr);
  const Class meta = object_getClass(NSObject::class_());
  EXPECT_NE(class_firstLevelMethod(meta, selector<"alloc">()), nullptr);
  EXPECT_EQ(class_firstLevelMethod(object_getClass(super), selector<"alloc">()), nullptr);
}

TEST_F(RuntimeAdditionsTest, AMethodPulledUpIsTheClassesOwn) {
  const Method inherited = class_getInstanceMethod(sub, one);
  const Method own = class_pullUpInstanceMethod(sub, inherited);
  EXPECT_EQ(own, class_firstLevelMethod(sub, one));
  EXPECT_NE(own, inherited);
  EXPECT_EQ(method_getImplementation(own), method_getImplementation(inherited));
  EXPECT_STREQ(method_getTypeEncoding(own), method_getTypeEncoding(inherited));
  method_setImplementation(own, answering<7>().implementation);
  EXPECT_EQ(ask(inSub, one), 7);
  EXPECT_EQ(ask(inSuper, one), 1);
  EXPECT_EQ(class_pullUpInstanceMethod(sub, inherited), own) << "it keeps the one it has";
  EXPECT_EQ(ask(inSub, one), 7);
}

TEST_F(RuntimeAdditionsTest, NothingIsPulledUpFromNothing) {
  EXPECT_EQ(class_pullUpInstanceMethod(sub, nullptr), nullptr);
  EXPECT_EQ(class_pullUpInstanceMethod(Class(), class_getInstanceMethod(super, one)), nullptr);
  EXPECT_EQ(ownMethods(sub), "");
}

// --- Caching -------------------------------------------------------------------------------------

TEST_F(RuntimeAdditionsTest, TheFirstCachedImplementationStays) {
  const IMP first = class_getMethodImplementation(super, one);
  EXPECT_EQ(class_getCachedMethodImp(super, one), nullptr);
  class_cacheMethodImp(super, one);
  EXPECT_EQ(class_getCachedMethodImp(super, one), first);
  class_replaceMethodImp(super, one, answering<3>().implementation);
  class_cacheMethodImp(super, one);
  EXPECT_EQ(class_getCachedMethodImp(super, one), first);
  EXPECT_EQ(ask(inSub, sel_registerName((std::string("bddyn_") + sel_getName(one)).c_str())), 1)
      << "a method like any other";
}

TEST_F(RuntimeAdditionsTest, CachesAreInheritedButOfTheirLevel) {
  class_cacheMethodImp(super, one);
  EXPECT_NE(class_getCachedMethodImp(sub, one), nullptr);
  EXPECT_EQ(class_firstLevelCachedMethodImp(sub, one), nullptr);
  EXPECT_EQ(class_firstLevelCachedMethodImp(super, one), class_getCachedMethodImp(sub, one));
  class_cacheMethodImp(sub, one);
  EXPECT_EQ(class_firstLevelCachedMethodImp(sub, one), class_getCachedMethodImp(super, one));
}

TEST_F(RuntimeAdditionsTest, ACacheKeepsColonsAndTypes) {
  addMethod(super, selector<"setValue:forKey:">(), [](const NSObject&, const id&, const id&) {});
  class_cacheMethodImp(super, selector<"setValue:forKey:">());
  const Method cached = class_firstLevelMethod(super, selector<"bddyn_setValue:forKey:">());
  ASSERT_NE(cached, nullptr);
  EXPECT_STREQ(method_getTypeEncoding(cached), "v32@0:8@16@24");
}

TEST_F(RuntimeAdditionsTest, CachingAnUnknownSelectorAddsAnEmptyEntry) {
  class_cacheMethodImp(super, two);
  EXPECT_EQ(class_getCachedMethodImp(super, two), nullptr);
  const SEL cached = sel_registerName((std::string("bddyn_") + sel_getName(two)).c_str());
  EXPECT_NE(class_firstLevelMethod(super, cached), nullptr);
  EXPECT_FALSE(inSuper->respondsToSelector(cached));
  EXPECT_THROW(ask(inSuper, cached), std::exception) << "a message to it finds nothing";
  addAnswer<2>(super, two);
  class_cacheMethodImp(super, two);
  EXPECT_EQ(class_getCachedMethodImp(super, two), nullptr) << "the empty entry was the first";
  class_cacheMethodImp(super, nullptr);
  class_cacheMethodImp(Class(), one);
  EXPECT_EQ(class_getCachedMethodImp(Class(), one), nullptr);
}

// --- Replacing -----------------------------------------------------------------------------------

TEST_F(RuntimeAdditionsTest, ReplacingChangesOneClass) {
  EXPECT_EQ(class_replaceMethodImp(sub, one, [](const NSObject&) { return 5; }), YES);
  EXPECT_EQ(ask(inSub, one), 5);
  EXPECT_EQ(ask(inSuper, one), 1);
  EXPECT_EQ(class_replaceMethodImp(sub, two, answering<5>().implementation), NO);
  EXPECT_EQ(class_replaceMethodImp(Class(), one, answering<5>().implementation), NO);
  EXPECT_EQ(ownMethods(sub), std::string(sel_getName(one)) + " ");
}

// --- Exchanging ----------------------------------------------------------------------------------

TEST_F(RuntimeAdditionsTest, ExchangedInheritedMethodsLeaveTheSuperclassAlone) {
  addAnswer<2>(super, two);
  EXPECT_EQ(method_swizzle(sub, one, two), YES);
  EXPECT_EQ(ask(inSub, one), 2);
  EXPECT_EQ(ask(inSub, two), 1);
  EXPECT_EQ(ask(inSuper, one), 1);
  EXPECT_EQ(ask(inSuper, two), 2);
  EXPECT_EQ(ownMethods(sub), std::string(sel_getName(two)) + " " + sel_getName(one) + " ")
      << "the target was pulled up first";
  EXPECT_EQ(method_swizzle(sub, one, one), YES);
  EXPECT_EQ(ask(inSub, one), 2) << "with itself: as before";
}

TEST_F(RuntimeAdditionsTest, AMissingTargetBecomesAMethodThatAnswersZero) {
  EXPECT_EQ(method_swizzle(sub, two, one), YES);
  EXPECT_EQ(ask(inSub, two), 1);
  EXPECT_EQ(ask(inSub, one), 0);
  EXPECT_FALSE(inSuper->respondsToSelector(two));
}

template <class R, class F>
R zeroAfterSwizzle(F body) {
  const Class cls = makeClass(NSObject::class_());
  const SEL target = unusedSelector("missing:");
  const SEL replacement = unusedSelector("there:");
  addMethod(cls, replacement, body);
  EXPECT_EQ(method_swizzle(cls, target, replacement), YES);
  return sendSelector<R>(newObject(cls), replacement, 5);
}

TEST_F(RuntimeAdditionsTest, ThePlaceholderIsZeroInEveryType) {
  EXPECT_EQ(zeroAfterSwizzle<bool>([](const NSObject&, int) { return true; }), false);
  EXPECT_EQ(zeroAfterSwizzle<double>([](const NSObject&, int) { return 2.5; }), 0.0);
  EXPECT_EQ(zeroAfterSwizzle<float>([](const NSObject&, int) { return 2.5F; }), 0.0F);
  EXPECT_EQ(zeroAfterSwizzle<NSString>([](const NSObject&, int) -> NSString { return "x"_ns; }),
            nullptr);
  const Pair pair = zeroAfterSwizzle<Pair>([](const NSObject&, int) { return Pair{1, 2}; });
  EXPECT_EQ(pair.x + pair.y, 0.0);
  zeroAfterSwizzle<void>([](const NSObject&, int) {});
}

TEST_F(RuntimeAdditionsTest, WithoutAReplacementAPlaceholderStays) {
  EXPECT_EQ(method_swizzle(sub, one, two), NO);
  EXPECT_EQ(ownMethods(sub), "") << "nothing was pulled up";
  EXPECT_EQ(method_swizzle(sub, two, unusedSelector("three")), NO);
  EXPECT_TRUE(inSub->respondsToSelector(two));
  EXPECT_EQ(ask(inSub, two), 0);
  EXPECT_EQ(method_swizzle(Class(), one, two), NO);
  EXPECT_EQ(method_swizzle(sub, nullptr, one), NO);
  EXPECT_EQ(method_swizzle(sub, one, nullptr), NO);
}

TEST_F(RuntimeAdditionsTest, ExchangedCodeKeepsItsTypes) {
  addMethod(super, two, [](const NSObject&) { return 2.5; });
  EXPECT_EQ(method_swizzle(super, one, two), YES);
  EXPECT_EQ(sendSelector<double>(inSuper, one), 2.5);
  EXPECT_EQ(ask(inSuper, two), 1);
}

// --- Storing -------------------------------------------------------------------------------------

TEST_F(RuntimeAdditionsTest, StoresTheInheritedImplementation) {
  IMP slot = nullptr;
  const IMP before = class_getMethodImplementation(super, one);
  EXPECT_EQ(class_swizzleMethodAndStore(sub, one, answering<5>().implementation, &slot), YES);
  EXPECT_EQ(slot, before);
  EXPECT_EQ(ask(inSub, one), 5);
  EXPECT_EQ(ask(inSuper, one), 1);
  EXPECT_EQ(class_swizzleMethodAndStore(sub, one, answering<6>().implementation, nullptr), YES);
  EXPECT_EQ(ask(inSub, one), 6) << "without a slot too";
}

TEST_F(RuntimeAdditionsTest, AnUnknownSelectorLeavesTheSlotAlone) {
  IMP slot = answering<9>().implementation;
  EXPECT_EQ(class_swizzleMethodAndStore(sub, two, answering<5>().implementation, &slot), NO);
  EXPECT_EQ(class_swizzleMethodAndStore(Class(), one, answering<5>().implementation, &slot), NO);
  EXPECT_EQ(slot, answering<9>().implementation);
  class_addMethod(sub, two, nullptr, "i16@0:8");
  EXPECT_EQ(class_swizzleMethodAndStore(sub, two, answering<5>().implementation, &slot), YES);
  EXPECT_EQ(slot, answering<9>().implementation) << "an empty method is no implementation";
  EXPECT_EQ(ask(inSub, two), 5);
}

TEST_F(RuntimeAdditionsTest, SwizzlesOfOneSelectorMakeAChain) {
  static IMP first, second;
  class_swizzleMethodAndStore(
      super, one,
      [](const NSObject& self, Cmd cmd) {
        return callImplementation<int>(first, self, cmd.selector) * 10 + 2;
      },
      &first);
  class_swizzleMethodAndStore(
      super, one,
      [](const NSObject& self, Cmd cmd) {
        return callImplementation<int>(second, self, cmd.selector) * 10 + 3;
      },
      &second);
  EXPECT_EQ(ask(inSub, one), 123);
}

// --- Class operations ----------------------------------------------------------------------------

TEST_F(RuntimeAdditionsTest, ClassMethodsAreTheMetaClassesMethods) {
  const Class meta = object_getClass(super);
  addAnswer<3>(meta, one);
  addAnswer<4>(meta, two);
  EXPECT_TRUE(swizzleClassMethod(sub, one, two));
  EXPECT_EQ(ask(sub, one), 4);
  EXPECT_EQ(ask(super, one), 3);
  static IMP slot;
  EXPECT_TRUE(swizzleClassMethod(
      sub, one,
      [](const Class& self, Cmd cmd) {
        return callImplementation<int>(slot, self, cmd.selector) + 1;
      },
      &slot));
  EXPECT_EQ(ask(sub, one), 5);
  EXPECT_EQ(ask(inSub, one), 1) << "the instances' method of that name is another";
}

TEST_F(RuntimeAdditionsTest, AClassNotYetRegisteredIsNotFoundByName) {
  const Class pending = objc_allocateClassPair(super, unusedName("Pending").c_str(), 0);
  addAnswer<3>(object_getClass(pending), one);
  addAnswer<4>(object_getClass(pending), two);
  EXPECT_FALSE(swizzleClassMethod(pending, one, two));
  EXPECT_EQ(ask(pending, one), 3);
  IMP slot = nullptr;
  EXPECT_TRUE(swizzleClassMethod(pending, one, answering<8>().implementation, &slot))
      << "this one goes to the class's class";
  EXPECT_EQ(ask(pending, one), 8);
  objc_registerClassPair(pending);
  EXPECT_TRUE(swizzleClassMethod(pending, one, two));
  EXPECT_EQ(ask(pending, one), 4);
}

TEST_F(RuntimeAdditionsTest, NilClassesChangeNothing) {
  EXPECT_FALSE(swizzle(Class(), one, two));
  EXPECT_FALSE(swizzleClassMethod(Class(), one, two));
  EXPECT_FALSE(swizzle(Class(), one, answering<1>().implementation, nullptr));
  EXPECT_FALSE(swizzleClassMethod(Class(), one, answering<1>().implementation, nullptr));
}

// --- What is installed now -----------------------------------------------------------------------

TEST_F(RuntimeAdditionsTest, UnswizzleAnswersWhatASelectorLeadsToNow) {
  addAnswer<2>(super, two);
  const IMP before = unswizzleImp(inSuper, one);
  EXPECT_EQ(before, answering<1>().implementation);
  method_swizzle(super, one, two);
  EXPECT_EQ(unswizzleImp(inSuper, two), before);
  EXPECT_EQ(unswizzleImp(nullptr, one), nullptr);
  EXPECT_EQ(unswizzleImp(inSuper, unusedSelector("none")), forwardingImplementation(nullptr));
}

TEST_F(RuntimeAdditionsTest, UnswizzleBelievesWhatTheObjectSaysOfItsClass) {
  static Class reported;
  reported = super;
  addMethod(sub, selector<"class">(), [](const NSObject&) -> Class { return reported; });
  class_replaceMethodImp(sub, one, answering<6>().implementation);
  EXPECT_EQ(ask(inSub, one), 6);
  EXPECT_EQ(unswizzleImp(inSub, one), answering<1>().implementation);
}

TEST_F(RuntimeAdditionsTest, UnswizzleOfAnObservedObjectAnswersTheMethodOfItsOwnClass) {
  addMethod(super, selector<"setSize:">(), [](const NSObject&, int) {});
  const IMP before = unswizzleImp(inSub, selector<"setSize:">());
  const id observer = NSObject::new_();
  addObserver(inSub, observer, "size"_ns, NSKeyValueObservingOptionNew);
  EXPECT_NE(class_getMethodImplementation(object_getClass(inSub), selector<"setSize:">()), before);
  EXPECT_EQ(unswizzleImp(inSub, selector<"setSize:">()), before);
  removeObserver(inSub, observer, "size"_ns);
}

TEST_F(RuntimeAdditionsTest, UnswizzleOfAClassGoesByItsName) {
  addAnswer<3>(object_getClass(super), one);
  EXPECT_EQ(unswizzleClassImp(super, one), answering<3>().implementation);
  EXPECT_EQ(unswizzleClassImp(sub, one), answering<3>().implementation);
  const Class pending = objc_allocateClassPair(super, unusedName("Pending").c_str(), 0);
  EXPECT_EQ(unswizzleClassImp(pending, one), nullptr);
  EXPECT_EQ(unswizzleClassImp(Class(), one), nullptr);
}

// --- Plain pointers ------------------------------------------------------------------------------

TEST_F(RuntimeAdditionsTest, PlainPointersAreThoseOfTheHandles) {
  EXPECT_EQ(object_getClassPointer(inSub), sub.record());
  EXPECT_EQ(object_getClassPointer(nullptr), nullptr);
  EXPECT_EQ(objc_getClassPointer("NSObject"), &NSObject::classPair.cls);
  EXPECT_EQ(objc_getClassPointer("NoSuchClass"), nullptr);
  ClassRecord* made = objc_allocateClassPairPointer(sub, unusedName("Plain").c_str(), 24);
  EXPECT_EQ(class_getSuperclass(Class(made)), sub);
  EXPECT_NE(objc_getIndexedIvars(Class(made)), nullptr);
  EXPECT_EQ(objc_allocateClassPairPointer(sub, "NSObject", 0), nullptr);
}

}  // namespace
}  // namespace brindle
