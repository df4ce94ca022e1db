// Implementations made while the program runs.
#include <Brindle/Platform/Closure.h>

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

struct Triple {
  double a, b, c;
};
struct Small {
  int a, b;
};

}  // namespace
template <>
struct StructEncoding<Triple> : FieldsEncoding<"Triple", double, double, double> {};
template <>
struct StructEncoding<Small> : FieldsEncoding<"Small", int, int> {};
namespace {

/// Adds its context's number to the argument.
void addNumber(void* context, void** arguments, void* result) {
  const int sum = *static_cast<int*>(context) + *static_cast<int*>(arguments[2]);
  *static_cast<int*>(result) = sum;
}

TEST(ClosureTest, Tour) {
  static int five = 5;
  static int six = 6;
  const Class cls = makeClass(NSObject::class_());
  const SEL first = uniqueSelector("first:");
  const SEL second = uniqueSelector("second:");
  class_addMethod(cls, first, closureImplementation("i20@0:8i16", nullptr, &addNumber, &five),
                  "i20@0:8i16");
  class_addMethod(cls, second, closureImplementation("i20@0:8i16", nullptr, &addNumber, &six),
                  "i20@0:8i16");
  const id object = send<"new", id>(cls);
  EXPECT_EQ(sendSelector<int>(object, first, 10), 15);
  EXPECT_EQ(sendSelector<int>(object, second, 10), 16);
}

TEST(ClosureTest, PassesOnWhatItsHandlerRaises) {
  const IMP raising = closureImplementation(
      "v16@0:8", nullptr, [](void*, void**, void*) { throw std::runtime_error("from inside"); },
      nullptr);
  const id object = NSObject::new_();
  EXPECT_EQ(raised([&] { callImplementation<void>(raising, object, selector<"self">()); }),
            "from inside");
}

TEST(ClosureTest, ResultsAreZeroBeforeTheHandlerRuns) {
  const IMP nothing = closureImplementation(
      "c16@0:8", nullptr, [](void*, void**, void*) {}, nullptr);
  const id object = NSObject::new_();
  EXPECT_EQ((callImplementation<bool>(nothing, object, selector<"self">())), false);
}

TEST(ClosureTest, NoTypesNoClosure) {
  EXPECT_EQ(closureImplementation(nullptr, nullptr, &addNumber, nullptr), nullptr);
  EXPECT_EQ(closureImplementation("no encoding", nullptr, &addNumber, nullptr), nullptr);
}

template <class R, class... A>
R zero(const char* types, A... arguments) {
  const id object = NSObject::new_();
  return callImplementation<R>(zeroImplementation(types), object, selector<"self">(), arguments...);
}

TEST(ZeroImplementationTest, EveryResult) {
  EXPECT_EQ(zero<int>("i16@0:8"), 0);
  EXPECT_EQ((zero<bool, double, int>("c28@0:8d16i24", 2.5, 3)), false);
  EXPECT_EQ(zero<short>("s16@0:8"), 0);
  EXPECT_EQ(zero<float>("f16@0:8"), 0.0F);
  EXPECT_EQ(zero<double>("d16@0:8"), 0.0);
  EXPECT_EQ(zero<long double>("D16@0:8"), 0.0L);
  EXPECT_EQ(zero<id>("@16@0:8"), nullptr);
  EXPECT_EQ(zero<Class>("#16@0:8"), nullptr);
  zero<void>("v16@0:8");
  const auto triple = zero<Triple>("{Triple=ddd}16@0:8");
  EXPECT_EQ(triple.a + triple.b + triple.c, 0.0);
  const auto small = zero<Small>("{Small=ii}16@0:8");
  EXPECT_EQ(small.a + small.b, 0);
}

TEST(ZeroImplementationTest, OneForTheSameTypes) {
  EXPECT_EQ(zeroImplementation("d16@0:8"), zeroImplementation("d16@0:8"));
  EXPECT_NE(zeroImplementation("d16@0:8"), zeroImplementation("f16@0:8"));
  EXPECT_NE(zeroImplementation("d16@0:8"), zeroImplementation("d16@0:8", "d~"));
}

TEST(ZeroImplementationTest, TextThatIsNoEncodingIsNotChecked) {
  const IMP zero = zeroImplementation(nullptr);
  EXPECT_EQ(zero, zeroImplementation("no encoding"));
  const Class cls = makeClass(NSObject::class_());
  const SEL s = uniqueSelector("anything:");
  class_addMethod(cls, s, zero, nullptr);
  const id object = send<"new", id>(cls);
  EXPECT_EQ(sendSelector<int>(object, s, 5), 0);
  EXPECT_EQ(sendSelector<id>(object, s, object), nullptr);
}

}  // namespace
}  // namespace brindle
