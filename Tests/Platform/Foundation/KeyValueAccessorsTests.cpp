#include <gtest/gtest.h>

#include <string>

#include "Tests/Platform/Foundation/KeyValueTesting.h"
#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

std::string text(const id& object) { return std::string(object->description()); }

TEST(KeyValueAccessorsTest, GettersAreFoundInTheirOrder) {
  const Patterns object = Patterns::new_();
  const struct {
    const char* key;
    const char* value;
  } kCases[] = {
      {"byGet", "getByGet"},
      {"byName", "byName"},
      {"byIs", "1"},
      {"byUnderscoreGet", "_getByUnderscoreGet"},
      {"byUnderscore", "_byUnderscore"},
      {"ByName", "isByName"},
      {"étage", "3"},
      {"self", nullptr},
  };
  for (const auto& [key, value] : kCases) {
    const id found = valueForKey(object, key);
    if (value == nullptr)
      EXPECT_EQ(found, object);
    else
      EXPECT_EQ(text(found), value) << key;
  }
}

TEST(KeyValueAccessorsTest, SettersAreFoundInTheirOrder) {
  const Patterns object = Patterns::new_();
  const struct {
    const char* key;
    const id value;
    const char* setter;
  } kCases[] = {
      {"bySet", "x"_ns, "setBySet:"},
      {"byUnderscore", "x"_ns, "_setByUnderscore:"},
      {"byIs", NSNumber(true), "setIsByIs:"},
      {"étage", NSNumber(3), "étage"},
      {"fluent", "x"_ns, "x"},
      {"fluentNumber", NSNumber(-4), "-4"},
  };
  for (const auto& [key, value, setter] : kCases) {
    setValue(object, value, key);
    EXPECT_EQ(text(valueForKey(object, "last"_ns)), setter);
  }
}

TEST(KeyValueAccessorsTest, MethodsOfOtherShapesAreNoAccessors) {
  const Patterns object = Patterns::new_();
  for (const char* const key : {"nothing", "takes", "takes:", "dealloc", "release"}) {
    EXPECT_NE(raised([&] { valueForKey(object, key); }), "") << key;
  }
}

TEST(KeyValueAccessorsTest, VariablesAreFoundInTheirOrder) {
  const Variables object = Variables::new_();
  const struct {
    const char* key;
    const char* value;
  } kCases[] = {
      {"first", "_first"}, {"second", "_isSecond"}, {"third", "third"}, {"fourth", "isFourth"}};
  for (const auto& [key, value] : kCases) {
    EXPECT_EQ(text(valueForKey(object, key)), value);
    setValue(object, "new"_ns, key);
    EXPECT_EQ(text(valueForKey(object, key)), "new");
  }
  EXPECT_EQ(text(valueForKey(object, "_isFirst"_ns)), "_isFirst");
}

TEST(KeyValueAccessorsTest, AClassMayForbidItsVariables) {
  const Class cls = makeClass(Variables::class_());
  const auto object = send<"new", id>(cls);
  EXPECT_EQ(text(valueForKey(object, "third"_ns)), "third");
  addMethod<"accessInstanceVariablesDirectly">(object_getClass(cls),
                                               [](const Class&) { return false; });
  EXPECT_NE(raised([&] { valueForKey(object, "third"_ns); }), "");
  EXPECT_NE(raised([&] { setValue(object, "x"_ns, "third"_ns); }), "");
}

TEST(KeyValueAccessorsTest, VariablesOfClassesMadeAtRunTimeAreFound) {
  const Class cls = objc_allocateClassPair(NSObject::class_(), uniqueName("Varied").c_str(), 0);
  EXPECT_TRUE(class_addIvar(cls, "_count", 4, 2, "i"));
  EXPECT_TRUE(class_addIvar(cls, "_text", 8, 3, "@\"NSString\""));
  objc_registerClassPair(cls);
  const auto object = send<"new", id>(cls);
  EXPECT_EQ(text(valueForKey(object, "count"_ns)), "0");
  EXPECT_FALSE(valueForKey(object, "text"_ns));
  setValue(object, NSNumber(8), "count"_ns);
  setValue(object, "words"_ns, "text"_ns);
  EXPECT_EQ(text(valueForKey(object, "count"_ns)), "8");
  EXPECT_EQ(text(valueForKey(object, "text"_ns)), "words");
  setValue(object, nullptr, "text"_ns);
}

TEST(KeyValueAccessorsTest, ClassesHaveKeysToo) {
  EXPECT_EQ(text(valueForKey(Class(Owner::class_()), "description"_ns)), "TestedOwner");
  EXPECT_NE(raised([] { valueForKey(Class(Variables::class_()), "first"_ns); }), "");
}

}  // namespace
}  // namespace brindle
