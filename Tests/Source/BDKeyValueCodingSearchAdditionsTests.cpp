#include <Brindle/BDKeyValueCodingSearchAdditions.h>

#include <string>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSKeyValueObserving.h>
#include <Brindle/Platform/NSMutableString.h>
#include <Brindle/Platform/Runtime.h>
#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

/// Has one accessor of each kind, each for a key of its own.
class Searched : public Interface<Searched, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Searched> classPair;
};

struct Fields {
  int count, isOpen, plain, isPlainer;
};
constexpr MethodDefinition kMethods[] = {
    method<"getSize">([](const Searched&) { return 1; }),
    method<"length">([](const Searched&) { return 1; }),
    method<"isReady">([](const Searched&) { return true; }),
    method<"setReady:">([](const Searched&, bool) {}),
    method<"setOnly:">([](const Searched&, int) {}),
    method<"_hidden">([](const Searched&) { return 1; }),
    method<"_getVeiled">([](const Searched&) { return 1; }),
    method<"insertObject:inListAtIndex:">([](const Searched&, const id&, NSUInteger) {}),
    classMethod<"classOnly">([](const Class&) { return 1; }),
};
constexpr PropertyDefinition kProperties[] = {{"name", "T@,R"}};
constexpr IvarDefinition kVariables[] = {
    ivar<int>("_count", offsetof(Fields, count)),
    ivar<int>("_isOpen", offsetof(Fields, isOpen)),
    ivar<int>("plain", offsetof(Fields, plain)),
    ivar<int>("isPlainer", offsetof(Fields, isPlainer)),
};
constexpr ClassDefinition kDefinition{.name = "SearchedObject",
                                      .methods = kMethods,
                                      .properties = kProperties,
                                      .variables = kVariables,
                                      .fields = fieldsDefinition<Fields>()};

/// The same, but nobody reads its variables.
class Closed : public Interface<Closed, Searched> {
 public:
  using Interface::Interface;
  static ClassPair<Closed> classPair;
};
constexpr MethodDefinition kClosedMethods[] = {
    classMethod<"accessInstanceVariablesDirectly">([](const Class&) { return false; }),
};
constexpr ClassDefinition kClosed{.name = "ClosedObject", .methods = kClosedMethods};

}  // namespace
constinit ClassPair<Searched> Searched::classPair{kDefinition};
constinit ClassPair<Closed> Closed::classPair{kClosed};
namespace {

/// "gs" for a key that can be read and set, "g-", "-s", "--".
std::string found(Class cls, const NSString& key) {
  std::string text = instancesHaveGetKey(cls, key) ? "g" : "-";
  text += instancesHaveSetKey(cls, key) ? "s" : "-";
  EXPECT_EQ(instancesHaveKey(cls, key), text == "gs");
  return text;
}

/// A class with methods of these names.
Class withMethods(std::initializer_list<const char*> names) {
  const Class cls = makeClass(NSObject::class_(), "Counted");
  const TypedImplementation code = implementation([](const id&) -> id { return nullptr; });
  for (const char* name : names) {
    class_addMethod(cls, sel_registerName(name), code.implementation, code.types);
  }
  return cls;
}

TEST(BDKeyValueCodingSearchTest, Tour) {
  const id object = Searched::new_();
  EXPECT_TRUE(hasKey(object, "name"_ns));
  EXPECT_TRUE(hasGetKey(object, "length"_ns));
  EXPECT_FALSE(hasSetKey(object, "length"_ns));
  EXPECT_FALSE(hasKey(object, "length"_ns));
  EXPECT_FALSE(hasKey(object, "nothing"_ns));
  EXPECT_TRUE(hasMethod(object, "setReady:"_ns));
  EXPECT_TRUE(hasVariable(object, "_count"_ns));
  EXPECT_TRUE(hasProperty(object, "name"_ns));
}

TEST(BDKeyValueCodingSearchTest, EveryPatternAlone) {
  const Class cls = Searched::class_();
  EXPECT_EQ(found(cls, "name"_ns), "gs") << "a property, though it be read-only";
  EXPECT_EQ(found(cls, "size"_ns), "g-") << "getSize";
  EXPECT_EQ(found(cls, "length"_ns), "g-") << "length";
  EXPECT_EQ(found(cls, "ready"_ns), "gs") << "isReady, setReady:";
  EXPECT_EQ(found(cls, "only"_ns), "-s") << "setOnly:";
  EXPECT_EQ(found(cls, "count"_ns), "gs") << "_count";
  EXPECT_EQ(found(cls, "open"_ns), "gs") << "_isOpen";
  EXPECT_EQ(found(cls, "plain"_ns), "gs") << "plain";
  EXPECT_EQ(found(cls, "plainer"_ns), "gs") << "isPlainer";
}

TEST(BDKeyValueCodingSearchTest, WhatIsNotSearched) {
  const Class cls = Searched::class_();
  EXPECT_EQ(found(cls, "hidden"_ns), "--");
  EXPECT_EQ(found(cls, "veiled"_ns), "--");
  EXPECT_EQ(found(cls, "list"_ns), "--");
  EXPECT_EQ(found(cls, "classOnly"_ns), "--");
  EXPECT_EQ(found(cls, "nothing"_ns), "--");
}

TEST(BDKeyValueCodingSearchTest, VariablesOnlyWhereTheClassLets) {
  const Class cls = Closed::class_();
  for (const NSString& key : {"count"_ns, "open"_ns, "plain"_ns, "plainer"_ns}) {
    EXPECT_EQ(found(cls, key), "--") << std::string(key);
  }
  EXPECT_EQ(found(cls, "name"_ns), "gs");
  EXPECT_EQ(found(cls, "ready"_ns), "gs");
  EXPECT_TRUE(instancesHaveVariable(cls, "_count"_ns)) << "it is there all the same";
}

TEST(BDKeyValueCodingSearchTest, Collections) {
  EXPECT_EQ(found(withMethods({"countOfItems", "objectInItemsAtIndex:"}), "items"_ns), "g-");
  EXPECT_EQ(found(withMethods({"countOfItems", "itemsAtIndexes:"}), "items"_ns), "g-");
  EXPECT_EQ(found(withMethods({"countOfItems", "enumeratorOfItems", "memberOfItems:"}), "items"_ns),
            "g-");
  EXPECT_EQ(found(withMethods({"countOfItems", "enumeratorOfItems"}), "items"_ns), "--");
  EXPECT_EQ(found(withMethods({"countOfItems", "memberOfItems:"}), "items"_ns), "--");
  EXPECT_EQ(found(withMethods({"countOfItems", "ItemsAtIndexes:"}), "items"_ns), "--")
      << "the key as it is";
  EXPECT_EQ(found(withMethods({"countOfItems"}), "items"_ns), "--");
  EXPECT_EQ(found(withMethods({"objectInItemsAtIndex:", "itemsAtIndexes:", "enumeratorOfItems",
                               "memberOfItems:"}),
                  "items"_ns),
            "--")
      << "without a count none of them counts";
}

TEST(BDKeyValueCodingSearchTest, CapitalizesOneUnit) {
  EXPECT_EQ(found(withMethods({"setURL:"}), "URL"_ns), "-s");
  EXPECT_EQ(found(withMethods({"setURL:"}), "uRL"_ns), "-s");
  EXPECT_EQ(found(withMethods({"set\xC3\x84nderung:"}), NSString("\xC3\xA4nderung")), "-s");
  EXPECT_EQ(found(withMethods({"setSSx:"}), NSString("\xC3\x9Fx")), "-s") << "sharp s";
  // A letter beyond the first plane is two units, and half of it has no upper case.
  EXPECT_EQ(found(withMethods({"set\xF0\x90\x90\xA8:"}), NSString("\xF0\x90\x90\xA8")), "-s");
  EXPECT_EQ(found(withMethods({"set\xF0\x90\x90\x80:"}), NSString("\xF0\x90\x90\xA8")), "--");
}

TEST(BDKeyValueCodingSearchTest, EmptyKeysAndNil) {
  EXPECT_EQ(found(Searched::class_(), ""_ns), "--");
  EXPECT_EQ(found(withMethods({"get"}), ""_ns), "g-");
  EXPECT_EQ(found(withMethods({"is"}), ""_ns), "g-");
  EXPECT_EQ(found(withMethods({"set:"}), ""_ns), "-s");
  EXPECT_EQ(found(withMethods({"countOf", "AtIndexes:"}), ""_ns), "g-");
  EXPECT_EQ(found(Searched::class_(), nullptr), "--");
  EXPECT_FALSE(instancesHaveMethod(Searched::class_(), nullptr));
  EXPECT_FALSE(instancesHaveVariable(Searched::class_(), nullptr));
  EXPECT_FALSE(instancesHaveProperty(Searched::class_(), nullptr));
  EXPECT_FALSE(hasKey(nullptr, "name"_ns));
  EXPECT_FALSE(instancesHaveKey(nullptr, "name"_ns));
}

TEST(BDKeyValueCodingSearchTest, ObjectsAskTheirClass) {
  const id object = Searched::new_();
  for (const NSString& key : {"name"_ns, "size"_ns, "only"_ns, "count"_ns, "nothing"_ns}) {
    EXPECT_EQ(hasGetKey(object, key), instancesHaveGetKey(Searched::class_(), key));
    EXPECT_EQ(hasSetKey(object, key), instancesHaveSetKey(Searched::class_(), key));
    EXPECT_EQ(hasKey(object, key), instancesHaveKey(Searched::class_(), key));
  }
  EXPECT_FALSE(hasMethod(object, "classOnly"_ns));
  EXPECT_FALSE(hasVariable(object, "count"_ns));
  EXPECT_FALSE(hasProperty(object, "count"_ns));
}

TEST(BDKeyValueCodingSearchTest, AnObservedObjectAnswersAsBefore) {
  const id object = Searched::new_();
  const id observer = NSObject::new_();
  addObserver(object, observer, "ready"_ns, NSKeyValueObservingOptionNew);
  ASSERT_NE(object_getClass(object), Searched::class_());
  for (const NSString& key : {"name"_ns, "size"_ns, "ready"_ns, "only"_ns, "nothing"_ns}) {
    EXPECT_EQ(hasGetKey(object, key), instancesHaveGetKey(Searched::class_(), key));
    EXPECT_EQ(hasSetKey(object, key), instancesHaveSetKey(Searched::class_(), key));
    EXPECT_EQ(hasKey(object, key), instancesHaveKey(Searched::class_(), key));
  }
  for (const Method method : class_copyMethodList(object_getClass(object))) {
    const NSString name(sel_getName(method_getName(method)));
    EXPECT_EQ(hasMethod(object, name), instancesHaveMethod(Searched::class_(), name));
  }
  removeObserver(object, observer, "ready"_ns);
}

TEST(BDKeyValueCodingSearchTest, AskingRegistersNoSelectors) {
  const std::string name = uniqueName("neverHeardOf");
  EXPECT_EQ(found(Searched::class_(), NSString(name.c_str())), "--");
  EXPECT_EQ(sel_findName(name), nullptr);
  EXPECT_EQ(sel_findName("setN" + name.substr(1) + ":"), nullptr);
}

TEST(BDKeyValueCodingSearchTest, SubclassesMayAnswerOtherwise) {
  const Class cls = makeClass(Searched::class_(), "Sub");
  EXPECT_EQ(found(cls, "name"_ns), "gs") << "inherited";
  ASSERT_TRUE((addMethod<"instancesHaveProperty:">(
      object_getClass(cls), [](const Class&, const NSString&) { return false; })));
  EXPECT_EQ(found(cls, "name"_ns), "--") << "the search asks by message";
}

}  // namespace
}  // namespace brindle
