// Messages that the receiver's class has no method for.
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSInvocation.h>
#include <Brindle/Platform/NSProxy.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include <Brindle/Platform/Block.h>
#include <Brindle/Platform/Weak.h>
#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

struct Triple {
  double x, y, z;
};
struct Pair {
  NSUInteger first, second;
};
struct Mixed {
  std::int8_t small;
  double large;
};

}  // namespace
template <>
struct StructEncoding<Triple> : FieldsEncoding<"Triple", double, double, double> {};
template <>
struct StructEncoding<Pair> : FieldsEncoding<"Pair", NSUInteger, NSUInteger> {};
template <>
struct StructEncoding<Mixed> : FieldsEncoding<"Mixed", std::int8_t, double> {};
namespace {

/// Takes and answers everything.
class Machine : public Interface<Machine, Mortal> {
 public:
  using Interface::Interface;
  static ClassPair<Machine> classPair;
};

constexpr MethodDefinition kMachineMethods[] = {
    method<"int8:">([](const Machine&, std::int8_t n) -> std::int8_t {
      return static_cast<std::int8_t>(n - 1);
    }),
    method<"uint8:">([](const Machine&, std::uint8_t n) -> std::uint8_t {
      return static_cast<std::uint8_t>(n + 1);
    }),
    method<"int16:">([](const Machine&, std::int16_t n) -> std::int16_t {
      return static_cast<std::int16_t>(n - 1);
    }),
    method<"flag:">([](const Machine&, bool b) { return !b; }),
    method<"float:">([](const Machine&, float f) { return f / 2; }),
    method<"double:">([](const Machine&, double d) { return d / 2; }),
    method<"longDouble:">([](const Machine&, long double d) { return d / 2; }),
    method<"int32:">([](const Machine&, std::int32_t n) { return n - 1; }),
    method<"int64:">([](const Machine&, std::int64_t n) { return n - 1; }),
    method<"object:">([](const Machine&, const id& o) -> id { return o; }),
    method<"newObject">([](const Machine&) -> id { return Mortal::new_(); }),
    method<"classOf:">([](const Machine&, Class c) -> Class { return class_getSuperclass(c); }),
    method<"selectorOf:">([](const Machine&, SEL s) -> SEL { return s; }),
    method<"text:">([](const Machine&, const char* t) -> const char* { return t + 1; }),
    method<"triple:">([](const Machine&, Triple t) {
      return Triple{t.z, t.x, t.y};
    }),
    method<"pair:">([](const Machine&, Pair p) {
      return Pair{p.second, p.first};
    }),
    method<"mixed:">([](const Machine&, Mixed m) {
      return Mixed{static_cast<std::int8_t>(-m.small), -m.large};
    }),
    method<"nothing">([](const Machine& self) { self->setTag(77); }),
    method<"many:a:b:c:d:e:f:g:h:">([](const Machine&, int a, double b, NSInteger c, float d,
                                       std::int8_t e, const id& f, Pair g, Triple h,
                                       bool i) -> double {
      return a + b + static_cast<double>(c) + static_cast<double>(d) + e + (f ? 1 : 0) +
             static_cast<double>(g.first) + h.z + (i ? 1000 : 0);
    }),
    method<"fail:error:">([](const Machine&, int how, NSObject* error) {
      if (how == 1) *error = Mortal::new_();
      if (how == 2) *error = nullptr;
      if (how == 3) {
        *error = Mortal::new_();
        throw std::runtime_error("after writing");
      }
      return how == 0 && error != nullptr;
    }),
    method<"raise">([](const Machine&) -> int { throw std::runtime_error("from the target"); }),
    method<"call:">([](const Machine&, const Block<int()>& block) { return block() + 1; }),
};
constexpr ClassDefinition kMachine{.name = "Machine", .methods = kMachineMethods};

/// Sends everything on by invocation.
class Relay : public Interface<Relay, NSProxy> {
 public:
  using Interface::Interface;
  static ClassPair<Relay> classPair;
  static Relay to(const id& target);
};
struct RelayFields {
  Field<id> target;
  int forwarded = 0;
};
RelayFields& fields(const Relay& self) { return fieldsOf<RelayFields>(self); }
constexpr MethodDefinition kRelayMethods[] = {
    method<"methodSignatureForSelector:">([](const Relay& self, SEL s) -> NSMethodSignature {
      return send<"methodSignatureForSelector:", NSMethodSignature>(fields(self).target.get(), s);
    }),
    method<"forwardInvocation:">([](const Relay& self, const NSInvocation& call) {
      ++fields(self).forwarded;
      call->invokeWithTarget(fields(self).target);
    }),
};
constexpr ClassDefinition kRelay{
    .name = "Relay", .methods = kRelayMethods, .fields = fieldsDefinition<RelayFields>()};
Relay Relay::to(const id& target) {
  Relay made = Relay::alloc();
  fields(made).target = target;
  return made;
}

/// Names another receiver.
class Delegating : public Interface<Delegating, Mortal> {
 public:
  using Interface::Interface;
  static ClassPair<Delegating> classPair;
};
constexpr MethodDefinition kDelegatingMethods[] = {
    method<"forwardingTargetForSelector:">(
        [](const Delegating& self, SEL) -> id { return self->held(); }),
};
constexpr ClassDefinition kDelegating{.name = "Delegating", .methods = kDelegatingMethods};

/// Gives every message the same signature, whatever its sender thinks, and answers from `reply`.
class Liar : public Interface<Liar, NSProxy> {
 public:
  using Interface::Interface;
  static ClassPair<Liar> classPair;
  static inline const char* types = "v16@0:8";
  static inline std::function<void(const NSInvocation&)> reply;
  static Liar with(const char* signature, std::function<void(const NSInvocation&)> answer = {}) {
    types = signature;
    reply = std::move(answer);
    return Liar::alloc();
  }
};
constexpr MethodDefinition kLiarMethods[] = {
    method<"methodSignatureForSelector:">([](const Liar&, SEL) -> NSMethodSignature {
      return NSMethodSignature::signatureWithObjCTypes(Liar::types);
    }),
    method<"forwardInvocation:">([](const Liar&, const NSInvocation& call) {
      if (Liar::reply) Liar::reply(call);
    }),
};
constexpr ClassDefinition kLiar{.name = "Liar", .methods = kLiarMethods};

}  // namespace
constinit ClassPair<Machine> Machine::classPair{kMachine};
constinit ClassPair<Relay> Relay::classPair{kRelay};
constinit ClassPair<Delegating> Delegating::classPair{kDelegating};
constinit ClassPair<Liar> Liar::classPair{kLiar};
namespace {

/// Everything sent to one receiver; what comes back is right whichever way it went.
void expectEverything(const id& machine) {
  for (int n : {-128 + 1, -1, 0, 1, 127}) {
    EXPECT_EQ((send<"int8:", std::int8_t>(machine, static_cast<std::int8_t>(n))), n - 1);
  }
  EXPECT_EQ((send<"uint8:", std::uint8_t>(machine, std::uint8_t{254})), 255);
  EXPECT_EQ((send<"int16:", std::int16_t>(machine, std::int16_t{-7})), -8);
  EXPECT_TRUE((send<"flag:", bool>(machine, false)));
  EXPECT_FALSE((send<"flag:", bool>(machine, true)));
  EXPECT_EQ((send<"float:", float>(machine, -2.5F)), -1.25F);
  EXPECT_EQ((send<"double:", double>(machine, 1e300)), 5e299);
  EXPECT_EQ((send<"longDouble:", long double>(machine, 3.0L)), 1.5L);
  EXPECT_EQ((send<"int32:", std::int32_t>(machine, INT32_MIN + 1)), INT32_MIN);
  EXPECT_EQ((send<"int64:", std::int64_t>(machine, INT64_MIN + 1)), INT64_MIN);
  const Mortal object = Mortal::new_();
  EXPECT_TRUE((send<"object:", id>(machine, object)) == object);
  EXPECT_FALSE((send<"object:", id>(machine, id())));
  EXPECT_EQ(object->retainCount(), 1u);
  EXPECT_EQ((send<"newObject", Mortal>(machine))->retainCount(), 1u);
  EXPECT_TRUE((send<"classOf:", Class>(machine, Class(Mortal::class_()))) == NSObject::class_());
  EXPECT_EQ((send<"selectorOf:", SEL>(machine, selector<"init">())), selector<"init">());
  const char* text = "text";
  EXPECT_STREQ((send<"text:", const char*>(machine, text)), "ext");
  const auto triple = send<"triple:", Triple>(machine, Triple{1, 2, 3});
  EXPECT_EQ(triple.x + 10 * triple.y + 100 * triple.z, 3 + 10 + 200);
  const auto pair = send<"pair:", Pair>(machine, Pair{1, ~NSUInteger{0}});
  EXPECT_EQ(pair.first, ~NSUInteger{0});
  EXPECT_EQ(pair.second, 1u);
  const auto mixed = send<"mixed:", Mixed>(machine, Mixed{3, 2.5});
  EXPECT_EQ(mixed.small, -3);
  EXPECT_EQ(mixed.large, -2.5);
  send<"nothing">(machine);
  EXPECT_EQ(
      (send<"many:a:b:c:d:e:f:g:h:", double>(machine, 1, 2.5, NSInteger{-3}, 4.5F, std::int8_t{-5},
                                             object, Pair{6, 0}, Triple{0, 0, 7}, true)),
      1 + 2.5 - 3 + 4.5 - 5 + 1 + 6 + 7 + 1000);
  NSObject error;
  NSObject* slot = &error;
  EXPECT_TRUE((send<"fail:error:", bool>(machine, 0, slot)));
  EXPECT_FALSE(error) << "untouched";
  EXPECT_FALSE((send<"fail:error:", bool>(machine, 1, slot)));
  EXPECT_TRUE(error) << "written";
  EXPECT_EQ(error->retainCount(), 1u);
  EXPECT_TRUE((send<"fail:error:", bool>(machine, 0, slot)));
  EXPECT_TRUE(error) << "untouched, still there";
  EXPECT_FALSE((send<"fail:error:", bool>(machine, 2, slot)));
  EXPECT_FALSE(error) << "set to nil";
  NSObject* none = nullptr;
  EXPECT_FALSE((send<"fail:error:", bool>(machine, 0, none)));
  EXPECT_EQ(raised([&] { send<"fail:error:", bool>(machine, 3, slot); }), "after writing");
  EXPECT_TRUE(error);
  EXPECT_EQ(raised([&] { send<"raise", int>(machine); }), "from the target");
  int captured = 41;
  const auto callIt = [&machine](const BlockArg<int()>& block) {
    return send<"call:", int>(machine, block);
  };
  EXPECT_EQ(callIt([&captured] { return captured; }), 42);
}

class ForwardingTest : public ::testing::Test {
 protected:
  void TearDown() override { EXPECT_EQ(Mortal::living(), 0); }
};

TEST_F(ForwardingTest, Tour) {
  const Machine machine = Machine::new_();
  const Relay relay = Relay::to(machine);
  EXPECT_EQ((send<"int32:", int>(relay, 43)), 42);
  EXPECT_EQ(fields(relay).forwarded, 1);
  EXPECT_TRUE(isa<Machine>(relay)) << "a proxy's kind is its target's";
}

TEST_F(ForwardingTest, EveryTypeDirectly) { expectEverything(Machine::new_()); }
TEST_F(ForwardingTest, EveryTypeByInvocation) { expectEverything(Relay::to(Machine::new_())); }
TEST_F(ForwardingTest, EveryTypeThroughThreeProxies) {
  expectEverything(Relay::to(Relay::to(Relay::to(Machine::new_()))));
}
TEST_F(ForwardingTest, EveryTypeByAnotherReceiver) {
  const Delegating delegating = Delegating::new_();
  delegating->setHeld(Machine::new_());
  expectEverything(delegating);
}
TEST_F(ForwardingTest, EveryTypeByAnotherReceiverThatForwards) {
  const Delegating delegating = Delegating::new_();
  delegating->setHeld(Relay::to(Machine::new_()));
  expectEverything(delegating);
}

TEST_F(ForwardingTest, NobodyAnswers) {
  const NSObject object = NSObject::new_();
  const std::string text = raised([&] { send<"fly:to:", id>(object, object, object); });
  EXPECT_NE(text.find("NSInvalidArgumentException"), std::string::npos) << text;
  EXPECT_NE(text.find("-[NSObject fly:to:]: unrecognized selector sent to instance 0x"),
            std::string::npos)
      << text;
  const std::string ofClass = raised([] { send<"fly">(Mortal::class_()); });
  EXPECT_NE(ofClass.find("+[Mortal fly]: unrecognized selector sent to class 0x"),
            std::string::npos)
      << ofClass;
  EXPECT_NE(raised([] { send<"fly">(Relay::to(nullptr)); }).find("unrecognized selector"),
            std::string::npos);
  const Delegating delegating = Delegating::new_();
  EXPECT_NE(raised([&] { send<"fly">(delegating); }).find("-[Delegating fly]"), std::string::npos);
  delegating->setHeld(NSObject::new_());
  EXPECT_NE(raised([&] { send<"fly">(delegating); }).find("-[NSObject fly]"), std::string::npos);
}

TEST_F(ForwardingTest, AReceiverThatNamesItselfIsNotAskedForEver) {
  const Class cls = makeClass(NSObject::class_());
  addMethod<"forwardingTargetForSelector:">(cls,
                                            [](const NSObject& self, SEL) -> id { return self; });
  const id object = send<"new", id>(cls);
  EXPECT_NE(raised([&] { send<"fly">(object); }).find("unrecognized"), std::string::npos);
}

TEST_F(ForwardingTest, ANullForwardingTargetCountsAsMissing) {
  const Class cls = makeClass(NSObject::class_());
  class_addMethod(cls, selector<"forwardingTargetForSelector:">(), nullptr, "@24@0:8:16");
  const id object = send<"new", id>(cls);
  EXPECT_NE(raised([&] { send<"fly">(object); }).find("fly]: unrecognized"), std::string::npos);
}

// `performSelector:` takes and answers objects; the receiver's own methods may answer others.
TEST_F(ForwardingTest, PerformingReachesAnotherReceiversMethodsOfOtherTypes) {
  const Delegating delegating = Delegating::new_();
  const Machine machine = Machine::new_();
  delegating->setHeld(machine);
  EXPECT_FALSE(delegating->performSelector(selector<"nothing">()));
  EXPECT_EQ(machine->tag(), 77);
  EXPECT_TRUE(delegating->performSelector(selector<"newObject">()));
  EXPECT_TRUE(delegating->performSelector(selector<"object:">(), machine) == machine);
  EXPECT_FALSE(delegating->performSelector(selector<"call:">(), Block<int()>([] { return 1; })));
}

TEST_F(ForwardingTest, ClassesForwardToo) {
  const Class cls = makeClass(NSObject::class_());
  addMethod<"forwardingTargetForSelector:">(
      object_getClass(cls), [](const Class&, SEL) -> id { return Machine::new_(); });
  EXPECT_EQ((send<"int32:", int>(cls, 2)), 1);
}

TEST_F(ForwardingTest, AnInheritedMessageToSuperIsForwarded) {
  const Class cls = makeClass(Delegating::class_());
  addMethod<"int32:">(cls, [](const Delegating& self, int n) {
    return 100 + sendSuper<Machine, "int32:", int>(self, n);
  });
  const Delegating object = cast<Delegating>(send<"new", id>(cls));
  object->setHeld(Machine::new_());
  // The superclass of Machine has no such method; the receiver's own forwarding takes over.
  EXPECT_EQ((send<"int32:", int>(object, 5)), 104);
}

// A signature that is not the caller's must never decide the frame.
TEST_F(ForwardingTest, ARootClassForwardsWithTwoOperations) {
  const Class root = objc_allocateClassPair(nullptr, uniqueName("Root").c_str(), 0);
  objc_registerClassPair(root);
  const id object = class_createInstance(root, 0);
  std::array<char, 32> address{};
  std::snprintf(address.data(), address.size(), "%p", static_cast<void*>(object.record()));
  const std::string text = std::string("-[") + class_getName(root) +
                           " int32:]: unrecognized selector sent to instance " + address.data();
  EXPECT_NE(raised([&] { send<"int32:", int>(object, 5); }).find(text), std::string::npos)
      << "it has none";
  addMethod<"methodSignatureForSelector:">(root, [](const id&, SEL s) -> NSMethodSignature {
    return Machine::class_()->instanceMethodSignatureForSelector(s);
  });
  EXPECT_NE(raised([&] { send<"int32:", int>(object, 5); }).find(text), std::string::npos)
      << "it has one";
  addMethod<"forwardInvocation:">(
      root, [](const id&, const NSInvocation& call) { call->invokeWithTarget(Machine::new_()); });
  EXPECT_EQ((send<"int32:", int>(object, 5)), 4);
  EXPECT_NE(raised([&] { send<"unknown">(object); }).find("unrecognized selector"),
            std::string::npos);
}

TEST_F(ForwardingTest, ASignatureOfFewerOrOtherArguments) {
  const Liar none = Liar::with("v16@0:8");
  EXPECT_EQ((send<"int32:", int>(none, 1)), 0);
  EXPECT_FALSE((send<"object:", id>(none, NSObject::new_())));
  const auto triple = send<"triple:", Triple>(none, Triple{1, 2, 3});
  EXPECT_EQ(triple.x + triple.y + triple.z, 0);
  const auto pair = send<"pair:", Pair>(none, Pair{1, 2});
  EXPECT_EQ(pair.first + pair.second, 0u);

  const Liar many = Liar::with("{Triple=ddd}64@0:8{Triple=ddd}16@40^v48q56");
  send<"int32:">(many, 1);
  EXPECT_EQ((send<"int32:", std::int8_t>(many, 1)), 0);
  EXPECT_FALSE((send<"object:", id>(many, NSObject::new_())));
}

TEST_F(ForwardingTest, ResultsOfOtherTypesAreConvertedOrZero) {
  const struct {
    const char* types;
    std::function<void(const NSInvocation&)> reply;
    std::int64_t asInt64;
    std::int8_t asInt8;
    double asDouble;
  } kCases[] = {
      {"c16@0:8", [](const NSInvocation& i) { i->setResult<std::int8_t>(-3); }, -3, -3, 0},
      {"C16@0:8", [](const NSInvocation& i) { i->setResult<std::uint8_t>(200); }, 200, -56, 0},
      {"i16@0:8", [](const NSInvocation& i) { i->setResult<int>(-70000); }, -70000, -112, 0},
      {"q16@0:8", [](const NSInvocation& i) { i->setResult<NSInteger>(-5); }, -5, -5, 0},
      {"f16@0:8", [](const NSInvocation& i) { i->setResult<float>(2.5F); }, 0, 0, 2.5},
      {"d16@0:8", [](const NSInvocation& i) { i->setResult<double>(2.5); }, 0, 0, 2.5},
      {"@16@0:8", [](const NSInvocation& i) { i->setResult<id>(Mortal::new_()); }, 0, 0, 0},
      {"{Pair=QQ}16@0:8",
       [](const NSInvocation& i) {
         i->setResult(Pair{1, 2});
       },
       0, 0, 0},
      {"v16@0:8", {}, 0, 0, 0},
  };
  for (const auto& c : kCases) {
    const Liar liar = Liar::with(c.types, c.reply);
    EXPECT_EQ((send<"asked", std::int64_t>(liar)), c.asInt64) << c.types;
    EXPECT_EQ((send<"asked", std::int8_t>(liar)), c.asInt8) << c.types;
    EXPECT_EQ((send<"asked", double>(liar)), c.asDouble) << c.types;
    const auto triple = send<"asked", Triple>(liar);
    EXPECT_EQ(triple.x + triple.y + triple.z, 0) << c.types;
    send<"asked">(liar);
  }
  Liar::reply = nullptr;
}

TEST_F(ForwardingTest, ArgumentsOfOtherTypesAreConverted) {
  NSInteger seen = 0;
  const Liar wide = Liar::with(
      "v24@0:8q16", [&seen](const NSInvocation& call) { seen = call->argument<NSInteger>(2); });
  send<"take:">(wide, -1);
  EXPECT_EQ(seen, -1);
  send<"take:">(wide, std::int8_t{-5});
  EXPECT_EQ(seen, -5);
  send<"take:">(wide, 2.5);
  EXPECT_EQ(seen, 0);
  Liar::reply = nullptr;
}

TEST_F(ForwardingTest, ATargetOfOtherTypesIsRefused) {
  const Delegating delegating = Delegating::new_();
  delegating->setHeld(Machine::new_());
  EXPECT_NE(
      raised([&] { send<"int32:", double>(delegating, 1.0); }).find("NSInvalidArgumentException"),
      std::string::npos);
}

TEST_F(ForwardingTest, AnAnswerNobodyTakesIsReleased) {
  const Relay relay = Relay::to(Machine::new_());
  send<"newObject", id>(relay);
  EXPECT_EQ(Mortal::living(), 1);
}

TEST_F(ForwardingTest, TheReceiverLivesWhileItForwards) {
  static Relay only;
  const Class cls = makeClass(Relay::class_());
  addMethod<"forwardInvocation:">(cls, [](const Relay& self, const NSInvocation& call) {
    only = nullptr;
    call->invokeWithTarget(fields(self).target);
  });
  only = Relay::to(Machine::new_());
  object_setClass(only, cls);
  EXPECT_EQ((send<"int32:", int>(only, 8)), 7);
  EXPECT_FALSE(only);
}

TEST_F(ForwardingTest, RaisesPassEverySide) {
  const Class cls = makeClass(NSObject::class_());
  addMethod<"methodSignatureForSelector:">(cls, [](const NSObject&, SEL s) -> NSMethodSignature {
    if (s == selector<"early">()) throw std::runtime_error("signature");
    return NSMethodSignature::signatureWithObjCTypes("i16@0:8");
  });
  addMethod<"forwardInvocation:">(
      cls, [](const NSObject&, const NSInvocation&) { throw std::runtime_error("forward"); });
  const id object = send<"new", id>(cls);
  EXPECT_EQ(raised([&] { send<"early">(object); }), "signature");
  EXPECT_EQ(raised([&] { send<"late", int>(object); }), "forward");
  const IMP entry = forwardingImplementation("i16@0:8");
  EXPECT_EQ(raised([&] { callImplementation<int>(entry, object, selector<"late">()); }), "forward");
}

TEST_F(ForwardingTest, TheForwardingEntryTakesAndAnswersEveryType) {
  const Machine machine = Machine::new_();
  const Relay relay = Relay::to(machine);
  const auto entryFor = [&machine](SEL s) {
    return forwardingImplementation(
        method_getTypeEncoding(class_getInstanceMethod(classOf(machine), s)));
  };
  const auto triple = callImplementation<Triple>(entryFor(selector<"triple:">()), relay,
                                                 selector<"triple:">(), Triple{1, 2, 3});
  EXPECT_EQ(triple.x + 10 * triple.y, 3 + 10);
  const auto mixed = callImplementation<Mixed>(entryFor(selector<"mixed:">()), relay,
                                               selector<"mixed:">(), Mixed{1, 2.0});
  EXPECT_EQ(mixed.small, -1);
  EXPECT_EQ((callImplementation<std::int8_t>(entryFor(selector<"int8:">()), relay,
                                             selector<"int8:">(), std::int8_t{-3})),
            -4);
  EXPECT_TRUE(
      (callImplementation<bool>(entryFor(selector<"flag:">()), relay, selector<"flag:">(), false)));
  EXPECT_EQ(
      callImplementation<float>(entryFor(selector<"float:">()), relay, selector<"float:">(), 5.0F),
      2.5F);
  const Mortal made =
      callImplementation<Mortal>(entryFor(selector<"newObject">()), relay, selector<"newObject">());
  EXPECT_EQ(made->retainCount(), 1u);
  EXPECT_EQ(raised([&] {
              callImplementation<int>(entryFor(selector<"raise">()), relay, selector<"raise">());
            }),
            "from the target");
}

}  // namespace
}  // namespace brindle
