// Encodings taken apart while the program runs must agree with those put together by the compiler.
#include <Brindle/Platform/Encoding.h>
#include <Brindle/Platform/NSMethodSignature.h>

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include <Brindle/Platform/Block.h>
#include <Brindle/Platform/NSInvocation.h>
#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

struct Inner {
  float a, b;
};
struct Outer {
  Inner inner;
  std::int8_t c;
  const char* text;
  Inner more;
};

}  // namespace
template <>
struct StructEncoding<Inner> : FieldsEncoding<"Inner", float, float> {};
template <>
struct StructEncoding<Outer> : FieldsEncoding<"Outer", Inner, std::int8_t, const char*, Inner> {};
namespace {

/// Adds a method of that type; a send with the same types must pass the check of its wire codes,
/// which are read from the encoding's text here.
template <class R, class... A>
void expectAgreement(const A&... arguments) {
  const char* types = detail::methodTypes<R, A...>.c_str();
  const auto signature = NSMethodSignature::signatureWithObjCTypes(types);
  EXPECT_EQ(signature->numberOfArguments(), 2 + sizeof...(A)) << types;
  if constexpr (std::is_void_v<R>) {
    EXPECT_EQ(signature->methodReturnLength(), 0u);
  } else {
    EXPECT_EQ(signature->methodReturnLength(), sizeof(detail::Wire<R>)) << types;
  }
  const std::string afterResult =
      std::string(types).substr(std::string(signature->methodReturnType()).size());
  EXPECT_EQ(signature->frameLength(), std::stoul(afterResult)) << types;
  const Class cls = makeClass(NSObject::class_());
  const SEL s = uniqueSelector("agreed");
  // A forwarding entry is known to nobody, so its wire codes come from the encoding.
  class_addMethod(cls, s, forwardingImplementation(types), types);
  EXPECT_NE(raised([&] {
              sendSelector<R>(send<"new", id>(cls), s, arguments...);
            }).find("unrecognized selector"),
            std::string::npos)
      << types;
}

TEST(SignatureTest, Tour) {
  expectAgreement<NSUInteger>(id());
  expectAgreement<void>();
}

TEST(SignatureTest, EveryTypeAgrees) {
  expectAgreement<bool>(true, std::int8_t{1}, std::uint8_t{1}, std::int16_t{1}, std::uint16_t{1});
  expectAgreement<int>(1, 1U, std::int64_t{1}, std::uint64_t{1}, 1L, 1LL);
  expectAgreement<float>(1.0F, 1.0);
  expectAgreement<double>(1.0);
  expectAgreement<long double>(1.0L, std::int8_t{1});
  expectAgreement<Mortal>(Mortal(), NSObject(), Class(), Block<int()>(), selector<"init">());
  expectAgreement<Class>(static_cast<const char*>("x"), static_cast<char*>(nullptr),
                         static_cast<void*>(nullptr), static_cast<const void*>(nullptr));
  expectAgreement<SEL>(static_cast<int*>(nullptr), static_cast<const double*>(nullptr),
                       static_cast<Outer*>(nullptr), static_cast<NSZone*>(nullptr),
                       static_cast<bool*>(nullptr), static_cast<void**>(nullptr));
  expectAgreement<IMP>(static_cast<int (*)(int)>(nullptr));
  expectAgreement<const char*>(static_cast<std::string*>(nullptr));
  expectAgreement<Inner>(Inner{1, 2});
  expectAgreement<Outer>(Outer{{1, 2}, 3, "x", {4, 5}}, 1.0, Inner{1, 2});
}

TEST(SignatureTest, OutSlots) {
  NSObject error;
  NSObject* slot = &error;
  expectAgreement<bool>(slot);
  NSObject* none = nullptr;
  expectAgreement<bool>(none, 1);
}

TEST(SignatureTest, StructsHaveTheCompilersSize) {
  EXPECT_EQ(NSMethodSignature::signatureWithObjCTypes("{Outer={Inner=ff}c*{Inner=ff}}@:")
                ->methodReturnLength(),
            sizeof(Outer));
}

TEST(SignatureTest, AMethodWhoseTypesAreNoEncodingHasNoSignature) {
  const Class cls = makeClass(NSObject::class_());
  const TypedImplementation code = implementation([](const NSObject&) { return 4; });
  class_addMethod(cls, selector<"odd">(), code.implementation, "no encoding");
  const NSObject object = cast<NSObject>(send<"new", id>(cls));
  EXPECT_FALSE(object->methodSignatureForSelector(selector<"odd">()));
  EXPECT_EQ((send<"odd", int>(object)), 4) << "it can be sent all the same";
}

/// What a method answers to an invocation.
template <class R, class F, class... A>
R invoked(F body, const A&... arguments) {
  const Class cls = makeClass(NSObject::class_());
  const SEL s = uniqueSelector("invoked");
  const TypedImplementation code = implementation(body);
  class_addMethod(cls, s, code.implementation, code.types);
  const NSInvocation call = NSInvocation::invocationWithMethodSignature(
      NSMethodSignature::signatureWithObjCTypes(code.types));
  call->setSelector(s);
  NSUInteger index = 2;
  (call->setArgument(index++, arguments), ...);
  call->invokeWithTarget(send<"new", id>(cls));
  if constexpr (!std::is_void_v<R>) return call->template result<R>();
}

double told = 0;

TEST(SignatureTest, CommonShapesAreCalledWithTheirOwnTypes) {
  const NSObject a = NSObject::new_();
  const NSObject b = NSObject::new_();
  invoked<void>([](const NSObject&) { told = 1; });
  EXPECT_EQ(told, 1);
  invoked<void>([](const NSObject&, const id& x) { told = x ? 2 : 0; }, a);
  EXPECT_EQ(told, 2);
  invoked<void>([](const NSObject&, const id& x, const id& y) { told = x && !y ? 3 : 0; }, a,
                NSObject());
  EXPECT_EQ(told, 3);
  invoked<void>([](const NSObject&, bool x) { told = x ? 4 : 0; }, true);
  EXPECT_EQ(told, 4);
  invoked<void>([](const NSObject&, int x) { told = x; }, -5);
  EXPECT_EQ(told, -5);
  invoked<void>([](const NSObject&, NSInteger x) { told = static_cast<double>(x); }, NSInteger{-6});
  EXPECT_EQ(told, -6);
  invoked<void>([](const NSObject&, double x) { told = x; }, 2.5);
  EXPECT_EQ(told, 2.5);

  EXPECT_EQ(
      (invoked<id>([](const NSObject&) -> id { return NSObject::new_(); })).record()->count.load(),
      1u);
  EXPECT_TRUE((invoked<id>([](const NSObject&, const id& x) -> id { return x; }, a)) == a);
  EXPECT_TRUE(
      (invoked<id>([](const NSObject&, const id&, const id& y) -> id { return y; }, a, b)) == b);
  EXPECT_TRUE((invoked<id>(
                  [](const NSObject&, NSInteger x) -> id {
                    return class_createInstance(x < 0 ? Class() : Class(NSObject::class_()), 0);
                  },
                  NSInteger{-1})) == nullptr);
  EXPECT_TRUE((invoked<bool>([](const NSObject&) { return true; })));
  EXPECT_FALSE((invoked<bool>([](const NSObject& self, const id& x) { return self == x; }, a)));
  EXPECT_EQ((invoked<int>([](const NSObject&) { return -7; })), -7);
  EXPECT_EQ((invoked<NSInteger>([](const NSObject&) -> NSInteger { return INT64_MIN; })),
            INT64_MIN);
  EXPECT_EQ((invoked<NSInteger>([](const NSObject&, const id& x) -> NSInteger { return x ? 1 : 2; },
                                NSObject())),
            2);
  EXPECT_EQ((invoked<double>([](const NSObject&) { return -0.125; })), -0.125);
  EXPECT_EQ(a->retainCount(), 1u);
}

}  // namespace
}  // namespace brindle
