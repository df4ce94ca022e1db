#include <Brindle/BDSafeMessengerProxy.h>

#include <array>
#include <cstdint>
#include <string>

#include <Brindle/Platform/AutoreleasePool.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSInvocation.h>
#include <Brindle/Platform/NSMutableString.h>
#include <Brindle/Platform/NSRange.h>
#include <Brindle/Platform/Runtime.h>
#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

struct Vector {
  double x, y, z;
};

/// Knows the types of many messages that others do not answer.
class Typist : public Interface<Typist, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Typist> classPair;
  NSInteger wide() const { return send<"wide", NSInteger>(*this); }
  int middle() const { return send<"middle", int>(*this); }
  short narrow() const { return send<"narrow", short>(*this); }
  signed char tiny() const { return send<"tiny", signed char>(*this); }
  bool truth() const { return send<"truth", bool>(*this); }
  float real() const { return send<"real", float>(*this); }
  double longReal() const { return send<"longReal", double>(*this); }
  NSRange range() const { return send<"range", NSRange>(*this); }
  Vector vector() const;
  NSString name() const { return send<"name", NSString>(*this); }
  NSInteger sum(NSInteger a, NSInteger b) const {
    return send<"sum:with:", NSInteger>(*this, a, b);
  }
};

}  // namespace
template <>
struct StructEncoding<Vector> : FieldsEncoding<"Vector", double, double, double> {};
namespace {

Vector Typist::vector() const { return send<"vector", Vector>(*this); }

constexpr MethodDefinition kTypistMethods[] = {
    method<"wide">([](const Typist&) -> NSInteger { return 1; }),
    method<"middle">([](const Typist&) { return 2; }),
    method<"narrow">([](const Typist&) -> short { return 3; }),
    method<"tiny">([](const Typist&) -> signed char { return 4; }),
    method<"truth">([](const Typist&) { return true; }),
    method<"real">([](const Typist&) { return 0.5F; }),
    method<"longReal">([](const Typist&) { return 0.25; }),
    method<"range">([](const Typist&) {
      return NSRange{5, 6};
    }),
    method<"vector">([](const Typist&) {
      return Vector{7, 8, 9};
    }),
    method<"name">([](const Typist&) -> NSString { return "typist"_ns; }),
    method<"sum:with:">([](const Typist&, NSInteger a, NSInteger b) { return a + b; }),
    classMethod<"only">([](const Class&) -> short { return 10; }),
};
constexpr ClassDefinition kTypist{.name = "SafeTypist", .methods = kTypistMethods};

}  // namespace
constinit ClassPair<Typist> Typist::classPair{kTypist};
namespace {

/// An object with none of a Typist's operations, seen as one.
Typist stranger() { return uncheckedCast<Typist>(NSObject::new_()); }

TEST(BDSafeMessengerProxyTest, Tour) {
  const Typist typist = Typist::new_();
  EXPECT_EQ(safely(typist)->wide(), 1);
  EXPECT_TRUE(safely(typist)->name()->isEqual("typist"_ns));
  EXPECT_EQ(safely(typist)->sum(20, 22), 42);

  const Typist other = stranger();
  EXPECT_NE(raised([&] { other->wide(); }), "");
  EXPECT_EQ(safely(other)->wide(), 0);
  EXPECT_TRUE(safely(other)->name() == nullptr);

  NSInteger seven = 7;
  const BDFallback fallback = BDMakeFallback(Typist::class_(), &seven);
  EXPECT_EQ(safely(other, fallback)->wide(), 7);
  EXPECT_EQ(safely(other, fallback)->sum(20, 22), 7);
  EXPECT_EQ(safely(typist, fallback)->wide(), 1) << "who answers is asked";
}

TEST(BDSafeMessengerProxyTest, NobodyKnowsTheMessage) {
  const Typist other = safely(stranger());
  EXPECT_EQ(other->wide(), 0);
  EXPECT_EQ(other->middle(), 0);
  EXPECT_EQ(other->narrow(), 0);
  EXPECT_EQ(other->tiny(), 0);
  EXPECT_FALSE(other->truth());
  EXPECT_EQ(other->real(), 0.0F);
  EXPECT_EQ(other->longReal(), 0.0);
  EXPECT_EQ(other->range(), (NSRange{0, 0}));
  EXPECT_EQ(other->vector().x + other->vector().y + other->vector().z, 0);
  EXPECT_EQ(other->sum(1, 2), 0);
  EXPECT_TRUE((send<"nobodyHasEverHeardOf:this:", id>(other, 1.5, other)) == nullptr);
  send<"nobodyListens">(other);
}

TEST(BDSafeMessengerProxyTest, FallbacksOfEveryWidth) {
  const auto with = [](void* value) {
    return safely(stranger(), BDMakeFallback(Typist::class_(), value));
  };
  NSInteger wide = INT64_MIN;
  EXPECT_EQ(with(&wide)->wide(), INT64_MIN);
  int middle = -70000;
  EXPECT_EQ(with(&middle)->middle(), -70000);
  short narrow = -300;
  EXPECT_EQ(with(&narrow)->narrow(), -300);
  signed char tiny = -1;
  EXPECT_EQ(with(&tiny)->tiny(), -1);
  BOOL truth = YES;
  EXPECT_TRUE(with(&truth)->truth());
  float real = 1.5F;
  EXPECT_EQ(with(&real)->real(), 1.5F);
  double longReal = -2.5;
  EXPECT_EQ(with(&longReal)->longReal(), -2.5);
  NSRange range{3, 4};
  EXPECT_EQ(with(&range)->range(), range);
  Vector vector{1, 2, 3};
  EXPECT_EQ(with(&vector)->vector().z, 3);
}

TEST(BDSafeMessengerProxyTest, AnObjectAsFallback) {
  NSString none = NSString("nameless, and long enough for the heap");
  const NSUInteger count = none->retainCount();
  const Typist other = safely(stranger(), BDMakeFallback(Typist::class_(), &none));
  EXPECT_TRUE(other->name() == none);
  EXPECT_EQ(none->retainCount(), count) << "the answer was the caller's own, and is gone";
  const Typist unknown = safely(stranger(), BDMakeFallback(nullptr, &none));
  EXPECT_TRUE((send<"nobodyKnowsThis", id>(unknown)) == none)
      << "whom nobody knows is taken to answer an object";
}

TEST(BDSafeMessengerProxyTest, TheSignatureIsAskedAsAnObjectFirst) {
  short value = 11;
  const id other = NSObject::new_();
  const auto signatureOf = [&](const id& knower, SEL selector) -> std::string {
    const NSMethodSignature signature = send<"methodSignatureForSelector:", NSMethodSignature>(
        safely(other, BDMakeFallback(knower, &value)), selector);
    return signature->methodReturnType();
  };
  EXPECT_EQ(signatureOf(Typist::class_(), selector<"only">()), "s") << "a class operation";
  EXPECT_EQ(signatureOf(Typist::class_(), selector<"vector">()), "{Vector=ddd}");
  EXPECT_EQ(signatureOf(Typist::new_(), selector<"vector">()), "{Vector=ddd}");
  EXPECT_EQ(signatureOf(Typist::new_(), selector<"only">()), "@") << "an instance has no such";
  EXPECT_EQ(signatureOf(NSObject::new_(), selector<"vector">()), "@");
  EXPECT_EQ(signatureOf(nullptr, selector<"vector">()), "@");
}

TEST(BDSafeMessengerProxyTest, ANilTargetSwallowsEverything) {
  const auto nothing = BDSafeMessengerProxy::safeMessengerWithTarget(nullptr, BDFallback{});
  EXPECT_TRUE(nothing != nullptr);
  const auto typist = uncheckedCast<Typist>(nothing);
  EXPECT_EQ(typist->wide(), 0);
  EXPECT_TRUE(typist->name() == nullptr);
  EXPECT_FALSE(typist->respondsToSelector(selector<"description">()));
  NSInteger seven = 7;
  const auto answering = uncheckedCast<Typist>(BDSafeMessengerProxy::safeMessengerWithTarget(
      nullptr, BDMakeFallback(Typist::class_(), &seven)));
  EXPECT_EQ(answering->wide(), 7);
}

TEST(BDSafeMessengerProxyTest, SafelyOfNilIsNil) {
  const Typist none;
  EXPECT_TRUE(safely(none) == nullptr);
  EXPECT_EQ(safely(none)->wide(), 0);
  EXPECT_TRUE(safely(none, BDFallback{}) == nullptr);
}

TEST(BDSafeMessengerProxyTest, OwnsItsTargetAndNotTheSignature) {
  const AutoreleasePool pool;
  const id knower = Typist::new_();
  {
    NSInteger seven = 7;
    id messenger = safely(id(Mortal::new_()), BDMakeFallback(knower, &seven));
    EXPECT_EQ(Mortal::living(), 1);
    EXPECT_EQ(knower->retainCount(), 1u);
    EXPECT_EQ(uncheckedCast<Typist>(messenger)->wide(), 7);
    messenger = nullptr;
    EXPECT_EQ(Mortal::living(), 0);
  }
  EXPECT_EQ(knower->retainCount(), 1u);
}

TEST(BDSafeMessengerProxyTest, IsAProxyOfItsTarget) {
  const id messenger = safely(id(NSMutableString::string()));
  EXPECT_TRUE(messenger->isProxy());
  EXPECT_TRUE(object_getClass(messenger) == BDSafeMessengerProxy::class_());
  EXPECT_TRUE(isa<NSString>(messenger)) << "asked of the target";
  EXPECT_TRUE(messenger->respondsToSelector(selector<"appendString:">()));
  EXPECT_FALSE(messenger->respondsToSelector(selector<"wide">()));
  const auto text = cast<NSMutableString>(messenger);
  text->appendString("abc"_ns);
  EXPECT_EQ(text->length(), 3u);
}

TEST(BDSafeMessengerProxyTest, AsksItsTargetEachTime) {
  const Class cls = makeClass(NSObject::class_());
  const auto object = uncheckedCast<Typist>(class_createInstance(cls, 0));
  const Typist messenger = safely(object);
  EXPECT_EQ(messenger->middle(), 0);
  ASSERT_TRUE((addMethod<"middle">(cls, [](const id&) { return 12; })));
  EXPECT_EQ(messenger->middle(), 12);
}

TEST(BDSafeMessengerProxyTest, PassesOnWhatTheTargetRaises) {
  const id messenger = safely(id("abc"_ns));
  EXPECT_NE(raised([&] { send<"substringFromIndex:", id>(messenger, NSUInteger{9}); }), "");
}

TEST(BDSafeMessengerProxyTest, ClassesCanBeAskedSafely) {
  const id cls = Typist::class_();
  EXPECT_EQ((send<"only", short>(safely(cls))), 10);
  EXPECT_EQ((send<"missing", short>(safely(cls))), 0);
}

TEST(BDSafeMessengerProxyTest, ASubclassMakesItsOwn) {
  const Class sub = makeClass(BDSafeMessengerProxy::class_(), "Messenger");
  const auto messenger =
      ClassOf<BDSafeMessengerProxy>(sub)->safeMessengerWithTarget(Typist::new_(), BDFallback{});
  EXPECT_TRUE(object_getClass(messenger) == sub);
  EXPECT_EQ(uncheckedCast<Typist>(messenger)->middle(), 2);
}

TEST(BDFallbackTest, HoldsItsArguments) {
  NSInteger value = 1;
  const NSObject object = NSObject::new_();
  const BDFallback fallback = BDMakeFallback(object, &value);
  EXPECT_EQ(fallback.signature, object.record());
  EXPECT_EQ(fallback.value, &value);
  EXPECT_EQ(BDFallback{}.signature, nullptr);
  EXPECT_EQ(BDFallback{}.value, nullptr);
  EXPECT_STREQ(typeEncoding<BDFallback>(), "{BDFallback=@^v}");
}

TEST(BDMakeUncollectableTest, ChangesNothing) {
  const Mortal mortal = Mortal::new_();
  const Mortal same = BDMakeUncollectable(mortal);
  EXPECT_TRUE(same == mortal);
  EXPECT_EQ(mortal->retainCount(), 2u) << "the two references";
  EXPECT_EQ(BDMakeUncollectable(mortal.record()), mortal.record());
  EXPECT_EQ(mortal->retainCount(), 2u);
  EXPECT_EQ(BDMakeUncollectable(static_cast<ObjectRecord*>(nullptr)), nullptr);
}

}  // namespace
}  // namespace brindle
