// Encodings taken apart while the program runs must agree with those put together by the compiler.
#include <Brindle/Platform/Encoding.h>
#include <Brindle/Platform/NSMethodSignature.h>

#include <string>
#include <vector>

#include <Brindle/Platform/Block.h>
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

/// Adds a method of that type; a send with the same types must pass the check of its wire codes, which
/// are read from the encoding's text here.
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
  EXPECT_NE(raised([&] { sendSelector<R>(send<"new", id>(cls), s, arguments...); })
                .find("unrecognized selector"),
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

}  // namespace
}  // namespace brindle
