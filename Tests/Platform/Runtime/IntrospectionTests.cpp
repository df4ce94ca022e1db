// Variables and properties of classes.
#include <Brindle/Platform/Runtime.h>

#include <cstddef>
#include <cstring>
#include <string>

#include <Brindle/Platform/Field.h>
#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

class Described : public Interface<Described, Mortal> {
 public:
  using Interface::Interface;
  static ClassPair<Described> classPair;
};
struct DescribedFields {
  NSInteger count = 3;
  Field<id> title;
  bool open = true;
};
constexpr PropertyDefinition kProperties[] = {
    {"count", "Tq,R,V_count"},
    {"title", "T@\"NSString\",&,N,V_title"},
    {"open", "Tc,GisOpen,V_open"},
};
constexpr IvarDefinition kVariables[] = {
    ivar<NSInteger>("_count", offsetof(DescribedFields, count)),
    ivar<id>("_title", offsetof(DescribedFields, title)),
    ivar<bool>("_open", offsetof(DescribedFields, open)),
};
constexpr ClassDefinition kDescribed{.name = "Described",
                                     .properties = kProperties,
                                     .variables = kVariables,
                                     .fields = fieldsDefinition<DescribedFields>()};

}  // namespace
constinit ClassPair<Described> Described::classPair{kDescribed};
namespace {

TEST(IntrospectionTest, Tour) {
  std::string text;
  for (objc_property_t p : class_copyPropertyList(Described::class_())) {
    text += std::string(property_getName(p)) + "=" + property_getAttributes(p) + " ";
  }
  EXPECT_EQ(text, "count=Tq,R,V_count title=T@\"NSString\",&,N,V_title open=Tc,GisOpen,V_open ");
  text.clear();
  for (Ivar v : class_copyIvarList(Described::class_())) {
    text += std::string(ivar_getName(v)) + ":" + ivar_getTypeEncoding(v) + " ";
  }
  EXPECT_EQ(text, "_count:q _title:@ _open:c ");
}

TEST(IntrospectionTest, OffsetsCountFromTheObjectsStart) {
  const Described object = Described::new_();
  Ivar count = class_getInstanceVariable(Described::class_(), "_count");
  ASSERT_NE(count, nullptr);
  auto* memory = reinterpret_cast<char*>(object.record());
  NSInteger value = 0;
  std::memcpy(&value, memory + ivar_getOffset(count), sizeof value);
  EXPECT_EQ(value, 3);
  EXPECT_LE(ivar_getOffset(count) + 24,
            static_cast<std::ptrdiff_t>(class_getInstanceSize(Described::class_())));
}

TEST(IntrospectionTest, InheritedOnesAreFoundButNotListed) {
  const Class sub = makeClass(Described::class_());
  EXPECT_TRUE(class_copyIvarList(sub).empty());
  EXPECT_TRUE(class_copyPropertyList(sub).empty());
  EXPECT_EQ(class_getInstanceVariable(sub, "_title"),
            class_getInstanceVariable(Described::class_(), "_title"));
  EXPECT_EQ(class_getProperty(sub, "open"), class_getProperty(Described::class_(), "open"));
  EXPECT_EQ(class_getProperty(sub, "Open"), nullptr);
}

TEST(IntrospectionTest, VariablesAreAddedBeforeTheClassIsRegistered) {
  const Class cls = objc_allocateClassPair(Described::class_(), uniqueName("Grown").c_str(), 0);
  const std::size_t before = class_getInstanceSize(cls);
  EXPECT_EQ(class_addIvar(cls, "a", 1, 0, "c"), YES);
  EXPECT_EQ(class_addIvar(cls, "b", 8, 3, "q"), YES);
  EXPECT_EQ(class_addIvar(cls, "c", 2, 1, "s"), YES);
  EXPECT_EQ(class_addIvar(cls, "d", 100, 4, "[100c]"), YES);
  EXPECT_EQ(class_addIvar(cls, "a", 4, 2, "i"), NO) << "the name is taken";
  EXPECT_EQ(class_addIvar(cls, "e", 4, 5, "i"), NO) << "no such alignment";
  EXPECT_EQ(class_addIvar(cls, "f", SIZE_MAX, 0, "c"), NO);
  EXPECT_EQ(class_addIvar(object_getClass(cls), "g", 4, 2, "i"), NO) << "a meta-class";
  EXPECT_EQ(class_addIvar(Described::class_(), "h", 4, 2, "i"), NO) << "a class written in C++";
  objc_registerClassPair(cls);
  EXPECT_EQ(class_addIvar(cls, "late", 4, 2, "i"), NO);
  const auto offset = [cls](const char* name) {
    return ivar_getOffset(class_getInstanceVariable(cls, name));
  };
  EXPECT_EQ(offset("a"), static_cast<std::ptrdiff_t>(before));
  EXPECT_EQ(offset("b") % 8, 0);
  EXPECT_EQ(offset("c"), offset("b") + 8);
  EXPECT_EQ(offset("d") % 16, 0);
  EXPECT_GE(class_getInstanceSize(cls), static_cast<std::size_t>(offset("d")) + 100);
  const Described object = cast<Described>(send<"new", id>(cls));
  const auto* memory = reinterpret_cast<const char*>(object.record());
  for (int i = 0; i < 100; ++i) EXPECT_EQ(memory[offset("d") + i], 0);
  EXPECT_STREQ(ivar_getTypeEncoding(class_getInstanceVariable(cls, "d")), "[100c]");
}

TEST(IntrospectionTest, InstancesNeverOutgrowTheirSize) {
  const Class cls = objc_allocateClassPair(NSObject::class_(), uniqueName("Huge").c_str(), 0);
  const std::size_t half = UINT32_MAX / 2;
  EXPECT_EQ(class_addIvar(cls, "a", half, 0, "c"), YES);
  EXPECT_EQ(class_addIvar(cls, "b", half, 0, "c"), NO);
  EXPECT_EQ(class_addIvar(cls, "c", 8, 3, "q"), YES);
  EXPECT_GT(class_getInstanceSize(cls), half + 8);
}

// The variables of a subclass lie behind those of its superclass, whose size must not change any
// more.
TEST(IntrospectionTest, AClassWithSubclassesTakesNoMoreVariables) {
  const Class cls = objc_allocateClassPair(NSObject::class_(), uniqueName("Super").c_str(), 0);
  EXPECT_EQ(class_addIvar(cls, "a", 8, 3, "q"), YES);
  const Class sub = objc_allocateClassPair(cls, uniqueName("Sub").c_str(), 0);
  EXPECT_EQ(class_addIvar(sub, "b", 8, 3, "q"), YES);
  EXPECT_EQ(class_addIvar(cls, "c", 8, 3, "q"), NO);
  EXPECT_GT(ivar_getOffset(class_getInstanceVariable(sub, "b")),
            ivar_getOffset(class_getInstanceVariable(cls, "a")));
}

TEST(IntrospectionTest, PropertiesAreAddedAtAnyTime) {
  const Class cls = makeClass(Described::class_());
  std::string attributes = "Ti,N";
  EXPECT_EQ(class_addProperty(cls, "extra", attributes.c_str()), YES);
  attributes = "????";
  EXPECT_EQ(class_addProperty(cls, "extra", "Tq"), NO);
  EXPECT_STREQ(property_getAttributes(class_getProperty(cls, "extra")), "Ti,N");
  EXPECT_EQ(class_addProperty(cls, "count", "Ti"), YES) << "only its own count";
  EXPECT_STREQ(property_getAttributes(class_getProperty(cls, "count")), "Ti");
  EXPECT_EQ(class_copyPropertyList(cls).size(), 2u);
}

TEST(IntrospectionTest, NullsAnswerNothing) {
  EXPECT_TRUE(class_copyIvarList(nullptr).empty());
  EXPECT_TRUE(class_copyPropertyList(nullptr).empty());
  EXPECT_EQ(class_getInstanceVariable(nullptr, "a"), nullptr);
  EXPECT_EQ(class_getInstanceVariable(Described::class_(), nullptr), nullptr);
  EXPECT_EQ(class_getProperty(nullptr, "a"), nullptr);
  EXPECT_EQ(class_getProperty(Described::class_(), nullptr), nullptr);
  EXPECT_EQ(class_addIvar(nullptr, "a", 1, 0, "c"), NO);
  EXPECT_EQ(class_addProperty(nullptr, "a", "Ti"), NO);
  EXPECT_EQ(class_addProperty(Described::class_(), nullptr, "Ti"), NO);
  EXPECT_EQ(class_addProperty(Described::class_(), "a", nullptr), NO);
  EXPECT_EQ(ivar_getName(nullptr), nullptr);
  EXPECT_EQ(ivar_getTypeEncoding(nullptr), nullptr);
  EXPECT_EQ(ivar_getOffset(nullptr), 0);
  EXPECT_EQ(property_getName(nullptr), nullptr);
  EXPECT_EQ(property_getAttributes(nullptr), nullptr);
}

}  // namespace
}  // namespace brindle
