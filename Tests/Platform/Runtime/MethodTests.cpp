// The runtime's functions on methods.
#include <Brindle/Platform/Method.h>

#include <string>
#include <vector>

#include <Brindle/Platform/NSInvocation.h>
#include <Brindle/Platform/NSProxy.h>
#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

/// Three methods, for lists in order.
class Listed : public Interface<Listed, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Listed> classPair;
};
constexpr MethodDefinition kListedMethods[] = {
    method<"first">([](const Listed&) { return 1; }),
    classMethod<"ofClass">([](const Class&) { return 10; }),
    method<"second:">([](const Listed&, int n) { return 2 + n; }),
    method<"third">([](const Listed&) { return 3; }),
};
constexpr ClassDefinition kListed{.name = "Listed", .methods = kListedMethods};

}  // namespace
constinit ClassPair<Listed> Listed::classPair{kListed};
namespace {

std::string names(Class cls) {
  std::string text;
  for (Method m : class_copyMethodList(cls))
    text += std::string(sel_getName(method_getName(m))) + " ";
  return text;
}

template <int N>
TypedImplementation answering() {
  return implementation([](const NSObject&) { return N; });
}

int ask(const id& object, SEL s) { return sendSelector<int>(object, s); }

TEST(MethodTest, Tour) {
  Method second = class_getInstanceMethod(Listed::class_(), selector<"second:">());
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(method_getName(second), selector<"second:">());
  EXPECT_STREQ(method_getTypeEncoding(second), "i20@0:8i16");
  EXPECT_EQ(method_getNumberOfArguments(second), 3u);
  const Listed object = Listed::new_();
  const IMP code = method_getImplementation(second);
  EXPECT_EQ(callImplementation<int>(code, object, selector<"second:">(), 5), 7);
}

TEST(MethodTest, ListsAreOwnMethodsInOrderOfDefinitionAddedOnesFirst) {
  EXPECT_EQ(names(Listed::class_()), "first second: third ");
  EXPECT_EQ(names(object_getClass(Listed::class_())), "ofClass ");
  const Class made = makeClass(Listed::class_());
  EXPECT_EQ(names(made), "");
  addMethod<"b">(made, [](const NSObject&) { return 1; });
  addMethod<"a">(made, [](const NSObject&) { return 1; });
  addMethod<"first">(made, [](const NSObject&) { return 1; });
  EXPECT_EQ(names(made), "first a b ");
  EXPECT_TRUE(class_copyMethodList(nullptr).empty());
}

TEST(MethodTest, FindsOwnAndInheritedMethodsOfInstancesAndClasses) {
  const Class made = makeClass(Listed::class_());
  EXPECT_EQ(class_getInstanceMethod(made, selector<"first">()),
            class_getInstanceMethod(Listed::class_(), selector<"first">()));
  EXPECT_EQ(class_getInstanceMethod(made, selector<"ofClass">()), nullptr);
  Method ofClass = class_getClassMethod(made, selector<"ofClass">());
  EXPECT_EQ(ofClass,
            class_getInstanceMethod(object_getClass(Listed::class_()), selector<"ofClass">()));
  EXPECT_EQ(ofClass, class_getClassMethod(object_getClass(made), selector<"ofClass">()));
  EXPECT_NE(class_getClassMethod(made, selector<"hash">()), nullptr)
      << "the root's are on its class";
  EXPECT_EQ(class_getInstanceMethod(made, uniqueSelector("none")), nullptr);
}

TEST(MethodTest, AddingOverridesButNeverReplaces) {
  const Class made = makeClass(Listed::class_());
  const id object = send<"new", id>(made);
  EXPECT_EQ(class_addMethod(made, selector<"first">(), answering<7>().implementation, "i16@0:8"),
            YES);
  EXPECT_EQ(class_addMethod(made, selector<"first">(), answering<8>().implementation, "i16@0:8"),
            NO);
  EXPECT_EQ((send<"first", int>(object)), 7);
  EXPECT_EQ((send<"first", int>(Listed::new_())), 1);
}

TEST(MethodTest, ReplacingAnInheritedMethodAddsAnOwnOne) {
  const Class made = makeClass(Listed::class_());
  const SEL third = selector<"third">();
  EXPECT_EQ(class_replaceMethod(made, third, answering<4>().implementation, "i16@0:8"), nullptr);
  EXPECT_EQ(ask(send<"new", id>(made), third), 4);
  EXPECT_EQ(ask(Listed::new_(), third), 3);
  EXPECT_EQ(class_replaceMethod(made, third, answering<5>().implementation, "i16@0:8"),
            answering<4>().implementation);
  EXPECT_EQ(ask(send<"new", id>(made), third), 5);
  EXPECT_EQ(class_copyMethodList(made).size(), 1u);
}

TEST(MethodTest, SettingAnImplementationReachesThoseThatInheritIt) {
  const SEL s = uniqueSelector("set");
  const Class super = makeClass(NSObject::class_());
  const Class sub = makeClass(super);
  const Class other = makeClass(super);
  class_addMethod(super, s, answering<1>().implementation, "i16@0:8");
  class_addMethod(other, s, answering<2>().implementation, "i16@0:8");
  const id inSub = send<"new", id>(sub);
  const id inOther = send<"new", id>(other);
  Method found = class_getInstanceMethod(sub, s);
  EXPECT_EQ(method_setImplementation(found, answering<3>().implementation),
            answering<1>().implementation);
  EXPECT_EQ(ask(inSub, s), 3) << "the handle is the superclass's";
  EXPECT_EQ(ask(send<"new", id>(super), s), 3);
  EXPECT_EQ(ask(inOther, s), 2) << "it differs";
}

TEST(MethodTest, ExchangingTwice) {
  const SEL s = uniqueSelector("exchangeA");
  const SEL t = uniqueSelector("exchangeB");
  const Class cls = makeClass(NSObject::class_());
  class_addMethod(cls, s, answering<1>().implementation, "i16@0:8");
  class_addMethod(cls, t, answering<2>().implementation, "i16@0:8");
  const id object = send<"new", id>(cls);
  Method a = class_getInstanceMethod(cls, s);
  Method b = class_getInstanceMethod(cls, t);
  method_exchangeImplementations(a, b);
  EXPECT_EQ(ask(object, s), 2);
  EXPECT_EQ(ask(object, t), 1);
  EXPECT_EQ(method_getName(a), s) << "the names stay";
  method_exchangeImplementations(b, a);
  EXPECT_EQ(ask(object, s), 1);
  method_exchangeImplementations(a, a);
  EXPECT_EQ(ask(object, s), 1);
}

TEST(MethodTest, ASwizzleCallsThePreviousImplementation) {
  static IMP previous = nullptr;
  const Class cls = makeClass(Mortal::class_());
  const TypedImplementation more = implementation([](const Mortal& self, Cmd cmd) {
    return 100 + callImplementation<int>(previous, self, cmd.selector);
  });
  previous = class_getMethodImplementation(cls, selector<"tag">());
  class_addMethod(cls, selector<"tag">(), more.implementation, more.types);
  const Mortal object = cast<Mortal>(send<"new", id>(cls));
  object->setTag(5);
  EXPECT_EQ(object->tag(), 105);
}

TEST(MethodTest, HandlesStayWhileTheirClassGrows) {
  const Class cls = makeClass(NSObject::class_());
  const SEL s = uniqueSelector("stays");
  class_addMethod(cls, s, answering<1>().implementation, "i16@0:8");
  Method handle = class_getInstanceMethod(cls, s);
  for (int i = 0; i < 300; ++i) {
    class_addMethod(cls, uniqueSelector("more"), answering<2>().implementation, "i16@0:8");
  }
  EXPECT_EQ(class_getInstanceMethod(cls, s), handle);
  EXPECT_EQ(method_getName(handle), s);
}

TEST(MethodTest, TypesAreCopiedAndKeptByReplacement) {
  const Class cls = makeClass(NSObject::class_());
  const SEL s = uniqueSelector("typed");
  std::string types = "i16@0:8";
  class_addMethod(cls, s, answering<1>().implementation, types.c_str());
  types[0] = 'q';
  Method handle = class_getInstanceMethod(cls, s);
  EXPECT_STREQ(method_getTypeEncoding(handle), "i16@0:8");
  class_replaceMethod(cls, s, answering<2>().implementation, "q16@0:8");
  EXPECT_STREQ(method_getTypeEncoding(handle), "i16@0:8") << "as on the platform";
  class_addMethod(cls, selector<"untyped">(), answering<3>().implementation, nullptr);
  Method untyped = class_getInstanceMethod(cls, selector<"untyped">());
  EXPECT_EQ(method_getTypeEncoding(untyped), nullptr);
  EXPECT_EQ(method_getNumberOfArguments(untyped), 0u);
  EXPECT_EQ((send<"untyped", int>(send<"new", id>(cls))), 3);
}

/// Answers every message with the sum of its arguments.
class Summing : public Interface<Summing, NSProxy> {
 public:
  using Interface::Interface;
  static ClassPair<Summing> classPair;
};
constexpr MethodDefinition kSummingMethods[] = {
    method<"methodSignatureForSelector:">([](const Summing&, SEL) -> NSMethodSignature {
      return NSMethodSignature::signatureWithObjCTypes("i24@0:8i16i20");
    }),
    method<"forwardInvocation:">([](const Summing&, const NSInvocation& call) {
      call->setResult(call->argument<int>(2) + call->argument<int>(3));
    }),
};
constexpr ClassDefinition kSumming{.name = "Summing", .methods = kSummingMethods};

}  // namespace
constinit ClassPair<Summing> Summing::classPair{kSumming};
namespace {

TEST(MethodTest, TheForwardingEntryForwards) {
  const Summing proxy = Summing::alloc();
  const SEL s = selector<"sum:and:">();
  EXPECT_EQ((send<"sum:and:", int>(proxy, 20, 22)), 42);
  const IMP entry = forwardingImplementation("i24@0:8i16i20");
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(forwardingImplementation("i24@0:8i16i20"), entry) << "one for each encoding";
  EXPECT_EQ(callImplementation<int>(entry, proxy, s, 3, -4), -1);
  EXPECT_EQ(callImplementation<int>(entry, Summing(), s, 3, 4), 0) << "nil answers zero";
  EXPECT_NE(raised([&] {
              callImplementation<int>(entry, NSObject::new_(), s, 1, 2);
            }).find("unrecognized selector"),
            std::string::npos);
}

TEST(MethodTest, AMissingImplementationIsAnEntryThatForwards) {
  const IMP missing = class_getMethodImplementation(NSObject::class_(), uniqueSelector("missing"));
  ASSERT_NE(missing, nullptr);
  const NSObject object = NSObject::new_();
  EXPECT_NE(raised([&] {
              callImplementation<id>(missing, object, selector<"missingHere">());
            }).find("missingHere"),
            std::string::npos);
  const Class cls = makeClass(NSObject::class_());
  class_addMethod(cls, selector<"sum:and:">(), nullptr, "i24@0:8i16i20");
  const IMP typed = class_getMethodImplementation(cls, selector<"sum:and:">());
  EXPECT_EQ(callImplementation<int>(typed, Summing::alloc(), selector<"sum:and:">(), 1, 2), 3)
      << "of the method's own types";
  EXPECT_EQ(object->methodForSelector(selector<"hash">()),
            class_getMethodImplementation(NSObject::class_(), selector<"hash">()));
  EXPECT_EQ(class_getMethodImplementation(nullptr, selector<"hash">()), nullptr);
}

TEST(MethodTest, NullsDoNothing) {
  const SEL s = uniqueSelector("nulls");
  const Class cls = makeClass(NSObject::class_());
  EXPECT_EQ(class_addMethod(nullptr, s, answering<1>().implementation, "i16@0:8"), NO);
  EXPECT_EQ(class_addMethod(cls, nullptr, answering<1>().implementation, "i16@0:8"), NO);
  EXPECT_EQ(class_replaceMethod(nullptr, s, answering<1>().implementation, "i16@0:8"), nullptr);
  EXPECT_EQ(class_replaceMethod(cls, nullptr, answering<1>().implementation, "i16@0:8"), nullptr);
  EXPECT_EQ(class_getInstanceMethod(nullptr, s), nullptr);
  EXPECT_EQ(class_getInstanceMethod(cls, nullptr), nullptr);
  EXPECT_EQ(class_getClassMethod(nullptr, s), nullptr);
  EXPECT_EQ(class_respondsToSelector(nullptr, s), NO);
  EXPECT_EQ(class_respondsToSelector(cls, nullptr), NO);
  EXPECT_EQ(method_getName(nullptr), nullptr);
  EXPECT_EQ(method_getImplementation(nullptr), nullptr);
  EXPECT_EQ(method_getTypeEncoding(nullptr), nullptr);
  EXPECT_EQ(method_getNumberOfArguments(nullptr), 0u);
  EXPECT_EQ(method_setImplementation(nullptr, nullptr), nullptr);
  method_exchangeImplementations(nullptr, class_getInstanceMethod(cls, selector<"hash">()));
}

}  // namespace
}  // namespace brindle
