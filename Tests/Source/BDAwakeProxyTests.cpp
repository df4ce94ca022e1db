#include <Brindle/BDAwakeProxy.h>

#include <gtest/gtest.h>

#include <Brindle/BDRuntimeAdditions.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSMethodSignature.h>
#include <Brindle/Platform/Runtime.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"
#include "Tests/Source/AwakeTesting.h"

namespace brindle {
namespace {

BDAwakeProxy proxied(const id& object) { return uncheckedCast<BDAwakeProxy>(object); }

TEST(BDAwakeProxyTest, StandsForTheObjectUntilItsInitialiser) {
  const Waking waking = Waking::alloc();
  EXPECT_EQ(object_getClass(waking), objc_getClass("BDAwakeProxy_Waking"));
  EXPECT_EQ(class_getSuperclass(object_getClass(waking)), BDAwakeProxy::class_());
  EXPECT_EQ(proxied(waking)->originalClass(), Waking::class_());
  EXPECT_TRUE(waking->isProxy());
  EXPECT_EQ(
      proxied(waking)->methodSignatureForSelector(selector<"initWithName:">())->numberOfArguments(),
      3u);
  const Waking same = waking->init();
  EXPECT_EQ(same, waking);
  EXPECT_FALSE(waking->isProxy());
}

TEST(BDAwakeProxyTest, ExportsTheTwoPrefixes) {
  EXPECT_STREQ(kAwakeProxyPrefix, "BDAwakeProxy_");
  EXPECT_STREQ(kInitPrefix, "init");
}

TEST(BDAwakeProxyTest, AnotherFirstMessageRaisesAndTheObjectStaysAProxy) {
  const Waking waking = Waking::alloc();
  EXPECT_EQ(raised([&] { waking->count(); }),
            "BDInternalInconsistencyException: Unexpected non-init method (count) called on awake "
            "proxy for Waking");
  EXPECT_EQ(raised([&] { waking->isKindOfClass(NSObject::class_()); }),
            "BDInternalInconsistencyException: Unexpected non-init method (isKindOfClass:) called "
            "on awake proxy for Waking");
  EXPECT_TRUE(waking->isProxy());
  happened();
  const Waking same = waking->init();
  EXPECT_EQ(happened(), "init awake");
}

TEST(BDAwakeProxyTest, WhatEveryProxyAnswersIsAnswered) {
  const Waking waking = Waking::alloc();
  EXPECT_EQ(classOf(waking), objc_getClass("BDAwakeProxy_Waking"));
  EXPECT_TRUE(waking->isEqual(waking));
  EXPECT_NE(waking->hash(), 0u);
  EXPECT_EQ(waking->retainCount(), 1u);
  EXPECT_EQ((send<"self", id>(waking)), waking);
}

TEST(BDAwakeProxyTest, AnUnknownInitialiserRaisesLikeAnyUnknownMessage) {
  const Waking waking = Waking::alloc();
  EXPECT_NE(raised([&] { send<"initNowhere", id>(waking); }).find("unrecognized selector"),
            std::string::npos);
  EXPECT_TRUE(waking->isProxy());
}

TEST(BDAwakeProxyTest, NamesThatOnlyBeginWithInitCount) {
  const Class cls = makeClass(Waking::class_());
  addMethod<"initials">(cls, [](const NSObject&) -> id { return "J. W."_ns; });
  happened();
  const id object = send<"alloc", id>(cls);
  EXPECT_TRUE((send<"initials", id>(object))->isEqual("J. W."_ns));
  EXPECT_EQ(happened(), "awake");
}

TEST(BDAwakeProxyTest, AProxyClassWithoutThePrefixRaises) {
  const Waking waking = Waking::alloc();
  object_setClass(waking, BDAwakeProxy::class_());
  const char* text =
      "BDInternalInconsistencyException: BDAwakeProxy object with invalid name of BDAwakeProxy";
  EXPECT_EQ(raised([&] { proxied(waking)->originalClass(); }), text);
  EXPECT_EQ(raised([&] { waking->init(); }), text);
}

TEST(BDAwakeProxyTest, AProxyOfAClassThatNobodyKnowsHasNone) {
  Class orphan = objc_allocateClassPair(BDAwakeProxy::class_(), "BDAwakeProxy_Nobody", 0);
  objc_registerClassPair(orphan);
  const Waking waking = Waking::alloc();
  object_setClass(waking, orphan);
  EXPECT_FALSE(proxied(waking)->originalClass());
  object_setClass(waking, objc_getClass("BDAwakeProxy_Waking"));
}

TEST(BDAwakeProxyTest, APreparedClassOfTheNameIsUsed) {
  const Class cls = makeClass(NSObject::class_());
  addMethod<"awake">(cls, [](const NSObject&) {});
  const std::string name = std::string("BDAwakeProxy_") + class_getName(cls);
  const Class prepared = objc_allocateClassPair(BDAwakeProxy::class_(), name.c_str(), 0);
  objc_registerClassPair(prepared);
  EXPECT_EQ(object_getClass(send<"alloc", id>(cls)), prepared);
}

TEST(BDAwakeProxyTest, AnObjectThatItsInitialiserLetsGoOfIsStillThereForAwake) {
  // The only other owner is the field that the initialiser empties.
  static id keeper;
  const Class cls = makeClass(NSObject::class_());
  addMethod<"init">(cls, [](const NSObject&) -> id {
    keeper = nullptr;
    return "another"_ns;
  });
  addMethod<"awake">(cls,
                     [](const NSObject& self) { happens(class_getName(object_getClass(self))); });
  happened();
  keeper = send<"alloc", id>(cls);
  const detail::Lent<id> lent(keeper.record());
  EXPECT_TRUE((send<"init", id>(lent.reference))->isEqual("another"_ns));
  EXPECT_EQ(happened(), class_getName(cls));
}

}  // namespace
}  // namespace brindle
