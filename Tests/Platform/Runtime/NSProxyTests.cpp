// What a proxy answers itself, and what it hands on.
#include <Brindle/Platform/NSProxy.h>

#include <gtest/gtest.h>

#include <Brindle/Platform/AutoreleasePool.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSInvocation.h>
#include <Brindle/Platform/Weak.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

class StandIn : public Interface<StandIn, NSProxy> {
 public:
  using Interface::Interface;
  static ClassPair<StandIn> classPair;
};
struct StandInFields {
  Field<id> object;
};
constexpr MethodDefinition kMethods[] = {
    method<"methodSignatureForSelector:">([](const StandIn& self, SEL s) -> NSMethodSignature {
      return send<"methodSignatureForSelector:", NSMethodSignature>(
          fieldsOf<StandInFields>(self).object.get(), s);
    }),
    method<"forwardInvocation:">([](const StandIn& self, const NSInvocation& call) {
      call->invokeWithTarget(fieldsOf<StandInFields>(self).object);
    }),
};
constexpr ClassDefinition kStandIn{
    .name = "StandIn", .methods = kMethods, .fields = fieldsDefinition<StandInFields>()};

StandIn standInFor(const id& object) {
  StandIn made = StandIn::alloc();
  fieldsOf<StandInFields>(made).object = object;
  return made;
}

}  // namespace
constinit ClassPair<StandIn> StandIn::classPair{kStandIn};
namespace {

TEST(NSProxyTest, Tour) {
  const Mortal object = Mortal::new_();
  const StandIn proxy = standInFor(object);
  send<"setTag:">(proxy, 5);
  EXPECT_EQ(object->tag(), 5);
  EXPECT_TRUE(isa<Mortal>(proxy)) << "the object is asked";
  EXPECT_TRUE((send<"respondsToSelector:", bool>(proxy, selector<"setTag:">())));
  object->setTag(0);
}

TEST(NSProxyTest, AnswersItselfWhatItIs) {
  const Mortal object = Mortal::new_();
  const StandIn proxy = standInFor(object);
  EXPECT_TRUE((send<"isProxy", bool>(proxy)));
  EXPECT_FALSE((send<"isProxy", bool>(object)));
  EXPECT_TRUE((send<"class", Class>(proxy)) == StandIn::class_());
  EXPECT_TRUE((send<"superclass", Class>(proxy)) == NSProxy::class_());
  EXPECT_TRUE((send<"self", id>(proxy)) == proxy);
  EXPECT_TRUE((send<"isEqual:", bool>(proxy, proxy)));
  EXPECT_FALSE((send<"isEqual:", bool>(proxy, object)));
  EXPECT_NE((send<"hash", NSUInteger>(proxy)), (send<"hash", NSUInteger>(object)));
  EXPECT_TRUE(object_getClass(proxy) == StandIn::class_());
}

TEST(NSProxyTest, IsOwnedByItself) {
  const Mortal object = Mortal::new_();
  Weak<StandIn> weak;
  {
    const AutoreleasePool pool;
    weak = uncheckedCast<StandIn>(send<"autorelease", id>(standInFor(object)));
    EXPECT_EQ((send<"retainCount", NSUInteger>(weak.lock())), 2u);
    EXPECT_EQ(object->retainCount(), 2u);
  }
  EXPECT_FALSE(weak.lock());
  EXPECT_EQ(object->retainCount(), 1u) << "let go with the proxy";
}

TEST(NSProxyTest, PerformsByName) {
  const Mortal object = Mortal::new_();
  const StandIn proxy = standInFor(object);
  send<"performSelector:withObject:", id>(proxy, selector<"setHeld:">(), object);
  EXPECT_TRUE((send<"performSelector:", id>(proxy, selector<"held">())) == object);
  object->setHeld(nullptr);
}

TEST(NSProxyTest, AbstractOnesRaise) {
  const NSProxy proxy = NSProxy::alloc();
  EXPECT_NE(raised([&] { send<"setTag:">(proxy, 1); }).find("-[NSProxy setTag:]"),
            std::string::npos);
  EXPECT_NE(raised([] { send<"unknown">(NSProxy::class_()); }).find("+[NSProxy unknown]"),
            std::string::npos);
}

}  // namespace
}  // namespace brindle
