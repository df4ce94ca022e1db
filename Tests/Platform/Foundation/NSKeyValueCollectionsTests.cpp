#include <gtest/gtest.h>

#include <string>

#include <Brindle/Platform/NSMutableDictionary.h>
#include <Brindle/Platform/NSNull.h>

#include "Tests/Platform/Foundation/KeyValueTesting.h"
#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

std::string text(const id& object) { return std::string(object->description()); }

TEST(NSKeyValueCollectionsTest, ArraysAnswerTheValuesOfTheirMembers) {
  const Owner ann = Owner::with("Ann"_ns, 7);
  const NSArray owners = {ann, Owner::with("Bo"_ns, 1, ann)};
  EXPECT_TRUE(valueForKey(owners, "name"_ns)->isEqual(NSArray{"Ann"_ns, "Bo"_ns}));
  EXPECT_TRUE(valueForKey(owners, "friend"_ns)->isEqual(NSArray{NSNull::null(), ann}));
  EXPECT_TRUE(
      valueForKeyPath(owners, "name.length"_ns)->isEqual(NSArray{NSNumber(3), NSNumber(2)}));
  setValue(owners, NSNumber(5), "coins"_ns);
  EXPECT_TRUE(valueForKey(owners, "coins"_ns)->isEqual(NSArray{NSNumber(5), NSNumber(5)}));
  setValueForKeyPath(NSArray{owners}, NSNumber(6), "coins"_ns);
  EXPECT_EQ(text(valueForKey(ann, "coins"_ns)), "6");
  EXPECT_TRUE(valueForKey(NSArray::array(), "anything"_ns)->isEqual(NSArray::array()));
}

TEST(NSKeyValueCollectionsTest, SetsLeaveNilOut) {
  const Owner ann = Owner::with("Ann"_ns, 7);
  const NSSet owners = {ann, Owner::with("Bo"_ns, 7, ann)};
  EXPECT_TRUE(valueForKey(owners, "friend"_ns)->isEqual(NSSet::setWithObject(ann)));
  EXPECT_TRUE(valueForKey(owners, "coins"_ns)->isEqual(NSSet::setWithObject(NSNumber(7))));
  EXPECT_TRUE(valueForKeyPath(owners, "name.length"_ns)->isEqual(NSSet{NSNumber(3), NSNumber(2)}));
  setValue(owners, "C"_ns, "name"_ns);
  EXPECT_EQ(text(valueForKey(ann, "name"_ns)), "C");
}

TEST(NSKeyValueCollectionsTest, AKeyWithASignIsTheCollectionsOwn) {
  const NSArray owners = {Owner::with("Ann"_ns, 7), Owner::with("Bo"_ns, 1)};
  EXPECT_EQ(text(valueForKey(owners, "@count"_ns)), "2");
  EXPECT_EQ(text(valueForKeyPath(owners, "@firstObject.name"_ns)), "Ann");
  EXPECT_EQ(text(valueForKey(NSDictionary{{"count"_ns, "a"_ns}}, "count"_ns)), "a");
  EXPECT_EQ(text(valueForKey(NSDictionary{{"count"_ns, "a"_ns}}, "@count"_ns)), "1");
  EXPECT_EQ(text(valueForKeyPath(NSDictionary{{"list"_ns, owners}}, "list.@count"_ns)), "2");
  for (const char* const key : {"@", "@@", "@nothing"}) {
    EXPECT_NE(raised([&] { valueForKey(owners, key); }).find("NSUndefinedKeyException"),
              std::string::npos);
    EXPECT_NE(raised([&] { valueForKeyPath(owners, key); }).find("NSUndefinedKeyException"),
              std::string::npos);
  }
}

TEST(NSKeyValueCollectionsTest, DictionariesHoldValuesUnderKeys) {
  const auto dictionary = NSMutableDictionary::dictionary();
  setValue(dictionary, "red"_ns, "colour"_ns);
  setValue(dictionary, Owner::with("Ann"_ns, 7), "owner"_ns);
  EXPECT_EQ(text(valueForKey(dictionary, "colour"_ns)), "red");
  EXPECT_EQ(text(valueForKeyPath(dictionary, "owner.name"_ns)), "Ann");
  EXPECT_FALSE(valueForKey(dictionary, "nothing"_ns));
  setValueForKeyPath(dictionary, NSNumber(9), "owner.coins"_ns);
  EXPECT_EQ(text(valueForKeyPath(dictionary, "owner.coins"_ns)), "9");
  setValue(dictionary, nullptr, "colour"_ns);
  EXPECT_EQ(dictionary->count(), 1U);
  const NSDictionary fixed = dictionary->copy();
  EXPECT_NE(raised([&] { setValue(fixed, "x"_ns, "colour"_ns); }).find("NSUndefinedKeyException"),
            std::string::npos);
}

TEST(NSKeyValueCollectionsTest, ACollectionThatHoldsItselfRaises) {
  const auto array = NSMutableArray::array();
  array->addObject(array);
  EXPECT_EQ(raised([&] { valueForKey(array, "name"_ns); }),
            "NSInvalidArgumentException: -[NSMutableArray valueForKey:]: collections are nested "
            "too deeply");
  EXPECT_EQ(raised([&] { setValue(array, nullptr, "name"_ns); }),
            "NSInvalidArgumentException: -[NSMutableArray setValue:forKey:]: collections are "
            "nested too deeply");
  std::string path;
  for (int i = 0; i < 2000; ++i) path += "@max.";
  EXPECT_NE(raised([&] { valueForKeyPath(array, path + "x"); }).find("nested too deeply"),
            std::string::npos);
  EXPECT_EQ(text(valueForKeyPath(array, "@count"_ns)), "1");
  array->removeAllObjects();
}

}  // namespace
}  // namespace brindle
