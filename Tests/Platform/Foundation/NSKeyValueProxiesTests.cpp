#include <gtest/gtest.h>

#include <string>

#include <Brindle/Platform/NSArrayIndexing.h>

#include "Tests/Platform/Foundation/CollectionTesting.h"
#include "Tests/Platform/Foundation/KeyValueTesting.h"
#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

TEST(NSKeyValueProxiesTest, IndexedAccessorsAreAnArray) {
  const Shelf shelf = Shelf::new_();
  const auto items = valueForKey<NSArray>(shelf, "items"_ns);
  EXPECT_EQ(items->count(), 0U);
  EXPECT_EQ(listed(items), "");
  mutableArrayValueForKey(shelf, "items"_ns)->addObjectsFromArray({"a"_ns, "b"_ns, "c"_ns});
  EXPECT_EQ(listed(items), "a b c");
  EXPECT_EQ(told(items[1]), "b");
  EXPECT_EQ(items->indexOfObject("c"_ns), 2U);
  EXPECT_TRUE(items->isEqual(NSArray{"a"_ns, "b"_ns, "c"_ns}));
  EXPECT_EQ(listed(items->reverseObjectEnumerator()), "c b a");
  EXPECT_EQ(told(valueForKeyPath(shelf, "items.@count"_ns)), "3");
  EXPECT_EQ(raised([&] { items->objectAtIndex(3); }),
            "NSRangeException: -[NSKeyValueArray objectAtIndex:]: index 3 beyond the end of 3");
  const NSArray copy = items->copy();
  mutableArrayValueForKey(shelf, "items"_ns)->removeAllObjects();
  EXPECT_EQ(items->count(), 0U);
  EXPECT_EQ(listed(copy), "a b c");
  EXPECT_EQ(listed(items->mutableCopy()), "");
}

TEST(NSKeyValueProxiesTest, AccessorsOfManyAreAnArrayToo) {
  const Shelf shelf = Shelf::new_();
  mutableArrayValueForKey(shelf, "blocks"_ns)->setArray({"a"_ns, "b"_ns, "c"_ns});
  const auto blocks = valueForKey<NSArray>(shelf, "blocks"_ns);
  EXPECT_EQ(listed(blocks), "a b c");
  EXPECT_EQ(listed(objectsAtIndexes(blocks, NSIndexSet::indexSetWithIndexesInRange({1, 2}))),
            "b c");
}

TEST(NSKeyValueProxiesTest, AccessorsOfASetAreASet) {
  const Shelf shelf = Shelf::new_();
  const auto tags = valueForKey<NSSet>(shelf, "tags"_ns);
  EXPECT_FALSE(tags->containsObject("x"_ns));
  mutableSetValueForKey(shelf, "tags"_ns)->addObjectsFromArray({"x"_ns, "y"_ns, "x"_ns});
  EXPECT_EQ(tags->count(), 2U);
  EXPECT_TRUE(tags->containsObject("x"_ns));
  EXPECT_FALSE(tags->member(nullptr));
  EXPECT_EQ(listed(tags), "x y");
  EXPECT_TRUE(tags->isEqual(NSSet{"y"_ns, "x"_ns}));
  const NSSet copy = tags->copy();
  mutableSetValueForKey(shelf, "tags"_ns)->removeAllObjects();
  EXPECT_EQ(tags->count(), 0U);
  EXPECT_EQ(copy->count(), 2U);
}

TEST(NSKeyValueProxiesTest, KeepTheObject) {
  Shelf shelf = Shelf::new_();
  const auto array = mutableArrayValueForKey(shelf, "items"_ns);
  const auto items = valueForKey<NSArray>(shelf, "items"_ns);
  shelf = nullptr;
  array->addObject("a"_ns);
  EXPECT_EQ(listed(items), "a");
}

}  // namespace
}  // namespace brindle
