#include <gtest/gtest.h>

#include <string>

#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSValue.h>

#include "Tests/Platform/Foundation/KeyValueTesting.h"
#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

TEST(KeyValueTypesTest, NumbersOfEveryTypeAreNumbers) {
  const Variables object = Variables::new_();
  const struct {
    const char* key;
    const char* type;
    NSNumber value;
    NSNumber other;
  } kCases[] = {
      {"truth", "c", true, false},
      {"sc", "c", -3, 100},
      {"uc", "C", 200, 7},
      {"ss", "s", -300, 300},
      {"us", "S", 60000, 1},
      {"si", "i", -70000, 70000},
      {"ui", "I", 4000000000U, 5U},
      {"sq", "q", -5000000000LL, 6LL},
      {"uq", "Q", 18000000000000000000ULL, 9ULL},
      {"f", "f", 0.5F, 1.5F},
      {"d", "d", 0.1, 1e300},
  };
  for (const auto& [key, type, value, other] : kCases) {
    const auto now = valueForKey<NSNumber>(object, key);
    EXPECT_TRUE(now->isEqual(value)) << key << now;
    EXPECT_STREQ(now->objCType(), type) << key;
    setValue(object, other, key);
    EXPECT_TRUE(valueForKey(object, key)->isEqual(other)) << key;
    EXPECT_NE(raised([&, name = key] { setValue(object, nullptr, name); }), "") << key;
  }
}

TEST(KeyValueTypesTest, NumbersAreConvertedAsTheyAreAskedFor) {
  const Variables object = Variables::new_();
  setValue(object, "42"_ns, "si"_ns);
  EXPECT_EQ(valueForKey<NSNumber>(object, "si"_ns)->intValue(), 42);
  setValue(object, NSNumber(2.75), "si"_ns);
  EXPECT_EQ(valueForKey<NSNumber>(object, "si"_ns)->intValue(), 2);
  EXPECT_NE(raised([&] { setValue(object, NSObject::new_(), "si"_ns); }).find("intValue"),
            std::string::npos);
}

TEST(KeyValueTypesTest, OtherTypesAreValues) {
  const Variables object = Variables::new_();
  EXPECT_EQ(valueForKey<NSValue>(object, "range"_ns)->rangeValue(), (NSRange{3, 4}));
  setValue(object, NSValue::valueWithRange({5, 6}), "range"_ns);
  EXPECT_EQ(valueForKey<NSValue>(object, "range"_ns)->rangeValue(), (NSRange{5, 6}));
  int target = 0;
  setValue(object, NSValue::valueWithPointer(&target), "pointer"_ns);
  EXPECT_EQ(valueForKey<NSValue>(object, "pointer"_ns)->pointerValue(), &target);
  EXPECT_STREQ(valueForKey<NSValue>(object, "selector"_ns)->objCType(), ":");
  long double number = 0;
  valueForKey<NSValue>(object, "ld"_ns)->getValue(&number);
  EXPECT_EQ(number, 2.5L);
  EXPECT_FALSE(valueForKey(object, "cls"_ns));
  setValue(object, Class(NSString::class_()), "cls"_ns);
  EXPECT_EQ(valueForKey(object, "cls"_ns), id(Class(NSString::class_())));
}

TEST(KeyValueTypesTest, ValuesOfAnotherTypeRaise) {
  const Variables object = Variables::new_();
  EXPECT_EQ(raised([&] { setValue(object, "x"_ns, "range"_ns); }),
            "NSInvalidArgumentException: key-value coding: a value of type @ where one of type "
            "{_NSRange=QQ} is wanted");
  EXPECT_EQ(raised([&] { setValue(object, NSNumber(7), "pointer"_ns); }),
            "NSInvalidArgumentException: key-value coding: a value of type i where one of type "
            "^v is wanted");
}

TEST(KeyValueTypesTest, AccessorsOfStructuresAndPointersAreCalled) {
  const Class cls = makeClass(NSObject::class_());
  addMethod<"range">(cls, [](const NSObject&) { return NSRange{1, 2}; });
  addMethod<"setRange:">(cls, [](const NSObject&, NSRange range) {
    if (!(range == NSRange{8, 9})) NSException::raise("Wrong"_ns, "range"_ns);
  });
  addMethod<"text">(cls, [](const NSObject&) { return "bytes"; });
  addMethod<"kind">(cls, [](const NSObject&) -> Class { return NSString::class_(); });
  const auto object = send<"new", id>(cls);
  EXPECT_EQ(valueForKey<NSValue>(object, "range"_ns)->rangeValue(), (NSRange{1, 2}));
  setValue(object, NSValue::valueWithRange({8, 9}), "range"_ns);
  EXPECT_NE(raised([&] { setValue(object, nullptr, "range"_ns); }).find("could not set nil"),
            std::string::npos);
  const char* bytes = nullptr;
  valueForKey<NSValue>(object, "text"_ns)->getValue(&bytes);
  EXPECT_STREQ(bytes, "bytes");
  EXPECT_EQ(valueForKey(object, "kind"_ns), id(Class(NSString::class_())));
}

}  // namespace
}  // namespace brindle
