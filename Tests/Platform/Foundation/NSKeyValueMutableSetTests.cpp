#include <gtest/gtest.h>

#include <string>
#include <utility>

#include <Brindle/Platform/NSMutableDictionary.h>

#include "Tests/Platform/Foundation/CollectionTesting.h"
#include "Tests/Platform/Foundation/KeyValueTesting.h"
#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

std::string logged(const Shelf& shelf) { return std::exchange(shelf->log(), ""); }

// The same changes, whatever the relationship is made of.
void change(const NSMutableSet& set) {
  EXPECT_EQ(set->count(), 0U);
  EXPECT_FALSE(set->anyObject());
  set->addObject("a"_ns);
  set->addObject("a"_ns);
  set->addObjectsFromArray({"b"_ns, "c"_ns});
  EXPECT_TRUE(set->isEqual(NSSet{"a"_ns, "b"_ns, "c"_ns}));
  set->removeObject("a"_ns);
  set->removeObject("x"_ns);
  set->removeObject(nullptr);
  EXPECT_TRUE(set->isEqual(NSSet{"b"_ns, "c"_ns}));
  set->unionSet({"d"_ns, "c"_ns});
  EXPECT_EQ(set->count(), 3U);
  EXPECT_EQ(told(set->member("d"_ns)), "d");
  EXPECT_FALSE(set->member(nullptr));
  set->minusSet({"b"_ns, "x"_ns});
  EXPECT_TRUE(set->isEqual(NSSet{"c"_ns, "d"_ns}));
  set->intersectSet({"d"_ns, "e"_ns});
  EXPECT_EQ(listed(set), "d");
  set->setSet({"x"_ns, "y"_ns});
  EXPECT_TRUE(set->isEqual(NSSet{"x"_ns, "y"_ns}));
  const NSSet copy = send<"copy", NSSet>(set);
  set->removeAllObjects();
  EXPECT_EQ(set->count(), 0U);
  EXPECT_EQ(copy->count(), 2U);
  EXPECT_EQ(raised([&] { set->addObject(nullptr); }),
            "NSInvalidArgumentException: -[NSKeyValueMutableSet addObject:]: nil argument");
}

TEST(NSKeyValueMutableSetTest, Tour) {
  const Shelf shelf = Shelf::new_();
  const NSMutableSet tags = mutableSetValueForKey(shelf, "tags"_ns);
  tags->addObject("a"_ns);
  tags->addObjectsFromArray({"b"_ns, "c"_ns});
  tags->removeObject("a"_ns);
  EXPECT_EQ(logged(shelf), "add add add remove ");
  EXPECT_TRUE(valueForKey(shelf, "tags"_ns)->isEqual(NSSet{"b"_ns, "c"_ns}));
}

TEST(NSKeyValueMutableSetTest, EveryKindChangesAlike) {
  const Shelf shelf = Shelf::new_();
  for (const char* const key : {"tags", "pool", "crowd", "gathered"}) {
    change(mutableSetValueForKey(shelf, key));
  }
  const auto dictionary = NSMutableDictionary::dictionary();
  setValue(dictionary, shelf, "shelf"_ns);
  change(mutableSetValueForKey(dictionary, "set"_ns));
  change(mutableSetValueForKeyPath(dictionary, "shelf.tags"_ns));
}

TEST(NSKeyValueMutableSetTest, AccessorsOfManyAreCalledOnce) {
  const Shelf shelf = Shelf::new_();
  const NSMutableSet pool = mutableSetValueForKey(shelf, "pool"_ns);
  pool->addObjectsFromArray({"a"_ns, "b"_ns});
  pool->minusSet({"a"_ns, "b"_ns});
  pool->intersectSet({"a"_ns});
  pool->setSet({"c"_ns});
  EXPECT_EQ(logged(shelf), "addMany removeMany intersect set ");
}

TEST(NSKeyValueMutableSetTest, OneSetterCallForEachChange) {
  const Shelf shelf = Shelf::new_();
  const NSMutableSet crowd = mutableSetValueForKey(shelf, "crowd"_ns);
  crowd->addObjectsFromArray({"a"_ns, "b"_ns});
  crowd->setSet({"c"_ns});
  EXPECT_EQ(logged(shelf), "set set ");
  EXPECT_EQ(listed(valueForKey<NSSet>(shelf, "crowd"_ns)), "c");
}

TEST(NSKeyValueMutableSetTest, TheSetOfAVariableIsChangedWhereItIs) {
  const Shelf shelf = Shelf::new_();
  const NSMutableSet own = {"a"_ns};
  setValue(shelf, own, "gathered"_ns);
  mutableSetValueForKey(shelf, "gathered"_ns)->addObject("b"_ns);
  EXPECT_EQ(own->count(), 2U);
  const NSSet fixed = {"a"_ns};
  setValue(shelf, fixed, "gathered"_ns);
  mutableSetValueForKey(shelf, "gathered"_ns)->addObject("b"_ns);
  EXPECT_EQ(fixed->count(), 1U);
  EXPECT_EQ(valueForKey<NSSet>(shelf, "gathered"_ns)->count(), 2U);
}

}  // namespace
}  // namespace brindle
