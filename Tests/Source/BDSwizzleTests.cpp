// Typed slots, and swizzles that end with their token.
#include <Brindle/BDSwizzle.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <Brindle/Platform/NSMutableString.h>
#include <Brindle/Platform/NSString.h>
#include <gtest/gtest.h>

#include "Tests/Source/MethodsTesting.h"

namespace brindle {
namespace {

struct Point {
  double x, y, z;
};

}  // namespace
template <>
struct StructEncoding<Point> : FieldsEncoding<"Point", double, double, double> {};
namespace {

using NumberSlot = ImplementationSlot<int(NSObject)>;

/// A class with `one` and a subclass that inherits it.
class SwizzleTest : public testing::Test {
 protected:
  SwizzleTest() { addAnswer<1>(super, one); }

  /// Writes a digit behind the previous answer.
  SwizzleToken digit(Class cls, int digit, NumberSlot& slot) {
    return scopedSwizzle(
        cls, one,
        [digit, &slot](const NSObject& self, Cmd cmd) { return slot(self, cmd) * 10 + digit; },
        slot);
  }

  const SEL one = unusedSelector("one");
  const SEL two = unusedSelector("two");
  const Class super = makeClass(NSObject::class_());
  const Class sub = makeClass(super);
  const id inSuper = newObject(super);
  const id inSub = newObject(sub);
};

NumberSlot previousNumber;

TEST_F(SwizzleTest, Tour) {
  int calls = 0;
  {
    const SwizzleToken token = scopedSwizzle(
        super, one,
        [&calls](const NSObject& self, Cmd cmd) {
          ++calls;
          return previousNumber(self, cmd) + 10;
        },
        previousNumber);
    EXPECT_EQ(ask(inSub, one), 11);
    EXPECT_EQ(calls, 1);
  }
  EXPECT_EQ(ask(inSub, one), 1);
  EXPECT_EQ(calls, 1);
}

// --- Typed slots ---------------------------------------------------------------------------------

ImplementationSlot<NSString(NSString, const NSString&, NSInteger)> previousJoin;

TEST_F(SwizzleTest, ATypedSlotTakesArgumentsAsTheMethodDoes) {
  const Class cls = makeClass(NSMutableString::class_());
  const SEL join = unusedSelector("join:times:");
  addMethod(cls, join, [](const NSString&, const NSString& text, NSInteger times) -> NSString {
    NSString result = text;
    for (NSInteger i = 1; i < times; ++i) result = result->stringByAppendingString(text);
    return result;
  });
  EXPECT_FALSE(previousJoin);
  EXPECT_EQ(previousJoin(nullptr, join, "a"_ns, 1), nullptr) << "empty: answers nothing";
  EXPECT_TRUE(swizzle(
      cls, join,
      [](const NSString& self, Cmd cmd, const NSString& text, NSInteger times) -> NSString {
        return previousJoin(self, cmd, text, times + 1)->uppercaseString();
      },
      previousJoin));
  EXPECT_TRUE(previousJoin);
  const id object = newObject(cls);
  EXPECT_EQ(std::string(sendSelector<NSString>(object, join, "a"_ns, NSInteger{2})), "AAA");
  EXPECT_EQ(std::string(previousJoin(nullptr, join, "b"_ns, 2)), "bb");
}

ImplementationSlot<int(Class)> previousOfClass;

TEST_F(SwizzleTest, ATypedSlotForAClassOperation) {
  addAnswer<3>(object_getClass(super), one);
  EXPECT_TRUE(swizzleClassMethod(
      sub, one, [](const Class& self, Cmd cmd) { return previousOfClass(self, cmd) * 2; },
      previousOfClass));
  EXPECT_EQ(ask(sub, one), 6);
  EXPECT_EQ(ask(super, one), 3);
}

TEST_F(SwizzleTest, WithoutAMethodASlotStaysEmpty) {
  static NumberSlot slot;
  EXPECT_FALSE(swizzle(
      super, two, [](const NSObject&) { return 2; }, slot));
  EXPECT_FALSE(slot);
  int calls = 0;
  const SwizzleToken token = scopedSwizzle(
      super, two, [&](const NSObject&) { return ++calls; }, slot);
  EXPECT_FALSE(token);
  EXPECT_FALSE(slot);
  EXPECT_FALSE(scopedSwizzle(Class(), one, [](const NSObject&) { return 2; }));
}

// --- Tokens --------------------------------------------------------------------------------------

TEST_F(SwizzleTest, SuperclassesAreLeftAlone) {
  NumberSlot slot;
  const SwizzleToken token = digit(sub, 2, slot);
  EXPECT_EQ(ask(inSub, one), 12);
  EXPECT_EQ(ask(inSuper, one), 1);
}

TEST_F(SwizzleTest, TokensEndInAnyOrder) {
  const IMP before = class_getMethodImplementation(super, one);
  const int orders[][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};
  for (const auto& order : orders) {
    NumberSlot slots[3];
    SwizzleToken tokens[] = {digit(super, 2, slots[0]), digit(super, 3, slots[1]),
                             digit(super, 4, slots[2])};
    EXPECT_EQ(ask(inSub, one), 1234);
    bool live[] = {true, true, true};
    for (const int ending : order) {
      tokens[ending].end();
      live[ending] = false;
      int expected = 1;
      for (int i = 0; i < 3; ++i) {
        if (live[i]) expected = expected * 10 + i + 2;
      }
      EXPECT_EQ(ask(inSub, one), expected);
    }
    EXPECT_EQ(class_getMethodImplementation(super, one), before) << "nothing is left in between";
  }
}

TEST_F(SwizzleTest, AnEndedTokenUnderAPlainSwizzlePassesOn) {
  static NumberSlot plain;
  NumberSlot slot;
  NumberSlot later;
  SwizzleToken token = digit(super, 2, slot);
  swizzle(
      super, one, [](const NSObject& self, Cmd cmd) { return plain(self, cmd) * 10 + 3; }, plain);
  SwizzleToken top = digit(super, 4, later);
  EXPECT_EQ(ask(inSub, one), 1234);
  token.end();
  EXPECT_EQ(ask(inSub, one), 134);
  top.end();
  EXPECT_EQ(ask(inSub, one), 13) << "the plain one stays";
}

TEST_F(SwizzleTest, CopiesOfItsCodePassOnToo) {
  NumberSlot slot;
  addAnswer<7>(super, two);
  SwizzleToken token = digit(super, 2, slot);
  class_cacheMethodImp(super, one);
  class_pullUpInstanceMethod(sub, class_getInstanceMethod(super, one));
  method_swizzle(super, one, two);
  EXPECT_EQ(ask(inSuper, two), 12);
  token.end();
  EXPECT_EQ(ask(inSuper, one), 7);
  EXPECT_EQ(ask(inSuper, two), 1);
  EXPECT_EQ(ask(inSub, one), 1);
  EXPECT_EQ(callImplementation<int>(class_getCachedMethodImp(super, one), inSub, one), 1);
}

TEST_F(SwizzleTest, ATokenMovesAndEndsOnce) {
  NumberSlot slot, other;
  SwizzleToken token = digit(super, 2, slot);
  SwizzleToken owner = std::move(token);
  EXPECT_TRUE(owner);
  owner = digit(super, 3, other);
  EXPECT_EQ(ask(inSub, one), 13) << "the token that was replaced has ended";
  std::vector<SwizzleToken> tokens;
  tokens.push_back(std::move(owner));
  EXPECT_EQ(ask(inSub, one), 13);
  tokens[0].end();
  tokens[0].end();
  EXPECT_FALSE(tokens[0]);
  EXPECT_EQ(ask(inSub, one), 1);
}

TEST_F(SwizzleTest, AMethodThatWasEmptyIsEmptyAgain) {
  class_addMethod(super, two, nullptr, "i16@0:8");
  {
    NumberSlot slot;
    const SwizzleToken token = scopedSwizzle(
        super, two, [](const NSObject&) { return 2; }, slot);
    EXPECT_EQ(ask(inSub, two), 2);
    EXPECT_FALSE(slot);
    class_pullUpInstanceMethod(sub, class_getInstanceMethod(super, two));
  }
  EXPECT_FALSE(inSuper->respondsToSelector(two));
  EXPECT_THROW(ask(inSub, two), std::exception) << "a copy of its code forwards";
}

TEST_F(SwizzleTest, EveryTypeGoesThrough) {
  const Class cls = makeClass(NSObject::class_());
  const SEL point = unusedSelector("point:text:error:");
  addMethod(cls, point, [](const NSObject&, double x, const NSString& text, NSString* error) {
    if (error != nullptr) *error = text;
    return Point{x, x, x};
  });
  const id object = newObject(cls);
  const auto askPoint = [&](NSString* error) {
    return sendSelector<Point>(object, point, 1.5, "why"_ns, error);
  };
  ImplementationSlot<Point(NSObject, double, const NSString&, NSString*)> slot;
  SwizzleToken token = scopedSwizzle(
      cls, point,
      [&slot](const NSObject& self, Cmd cmd, double x, const NSString& text, NSString* error) {
        Point answer = slot(self, cmd, x, text->uppercaseString(), error);
        answer.y = 2;
        return answer;
      },
      slot);
  NSString error = nullptr;
  EXPECT_EQ(askPoint(&error).y, 2);
  EXPECT_EQ(std::string(error), "WHY");
  class_pullUpInstanceMethod(cls, class_getInstanceMethod(cls, point));
  const IMP code = class_getMethodImplementation(cls, point);
  token.end();
  EXPECT_EQ(askPoint(&error).y, 1.5);
  EXPECT_EQ(callImplementation<Point>(code, object, point, 2.5, "so"_ns, &error).z, 2.5);
  EXPECT_EQ(std::string(error), "so");

  const SwizzleToken small = scopedSwizzle(NSObject::class_(), selector<"isProxy">(),
                                           [](const NSObject&) { return true; });
  EXPECT_TRUE(object->isProxy());
}

TEST_F(SwizzleTest, TheBodyGoesWithTheTokenOrWithTheLastCall) {
  const auto kept = std::make_shared<int>(5);
  SwizzleToken token;
  token = scopedSwizzle(super, one, [&token, kept](const NSObject&) {
    token.end();  // inside its own call
    return *kept;
  });
  EXPECT_EQ(kept.use_count(), 2);
  EXPECT_EQ(ask(inSub, one), 5);
  EXPECT_EQ(kept.use_count(), 1);
  EXPECT_EQ(ask(inSub, one), 1);
}

TEST_F(SwizzleTest, PassesOnWhatTheBodyRaises) {
  const SwizzleToken token = scopedSwizzle(
      super, one, [](const NSObject&) -> int { throw std::runtime_error("from inside"); });
  EXPECT_THROW(ask(inSub, one), std::runtime_error);
}

TEST_F(SwizzleTest, AClassOperationGoesThroughTheMetaClass) {
  addAnswer<3>(object_getClass(super), one);
  const SwizzleToken token =
      scopedSwizzle(object_getClass(super), one, [](const Class&) { return 4; });
  EXPECT_EQ(ask(sub, one), 4);
}

}  // namespace
}  // namespace brindle
