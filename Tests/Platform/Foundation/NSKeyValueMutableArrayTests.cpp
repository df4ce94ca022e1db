#include <gtest/gtest.h>

#include <string>
#include <utility>

#include <Brindle/Platform/NSArrayIndexing.h>
#include <Brindle/Platform/NSMutableDictionary.h>

#include "Tests/Platform/Foundation/CollectionTesting.h"
#include "Tests/Platform/Foundation/KeyValueTesting.h"
#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

std::string logged(const Shelf& shelf) { return std::exchange(shelf->log(), ""); }

// The same changes, whatever the relationship is made of.
void change(const NSMutableArray& array) {
  array->addObject("a"_ns);
  array->addObjectsFromArray({"b"_ns, "c"_ns});
  EXPECT_EQ(listed(array), "a b c");
  array->insertObject("x"_ns, 1);
  array->replaceObjectAtIndex(0, "A"_ns);
  EXPECT_EQ(listed(array), "A x b c");
  array->removeObjectAtIndex(2);
  array->removeLastObject();
  EXPECT_EQ(listed(array), "A x");
  insertObjects(array, NSArray{"1"_ns, "2"_ns}, NSIndexSet::indexSetWithIndexesInRange({0, 2}));
  replaceObjectsAtIndexes(array, NSIndexSet::indexSetWithIndexesInRange({1, 2}),
                          NSArray{"B"_ns, "C"_ns});
  EXPECT_EQ(listed(array), "1 B C x");
  removeObjectsAtIndexes(array, NSIndexSet::indexSetWithIndexesInRange({0, 2}));
  array->exchangeObjectAtIndex(0, 1);
  EXPECT_EQ(listed(array), "x C");
  array->sortUsingSelector(selector<"compare:">());
  EXPECT_EQ(listed(array), "C x");
  array->setArray({"z"_ns, "y"_ns, "x"_ns, "y"_ns});
  array->removeObject("y"_ns);
  EXPECT_EQ(listed(array), "z x");
  array->sortUsingComparator(
      [](const id& a, const id& b) { return cast<NSString>(a)->compare(cast<NSString>(b)); });
  EXPECT_EQ(listed(array), "x z");
  array->removeObjectsInRange({0, 1});
  EXPECT_EQ(told(array->firstObject()), "z");
  array->removeAllObjects();
  EXPECT_EQ(array->count(), 0U);
}

void refuse(const NSMutableArray& array) {
  array->setArray({"a"_ns});
  const std::string head = "NSRangeException: -[NSKeyValueMutableArray ";
  EXPECT_EQ(raised([&] { array->objectAtIndex(1); }),
            head + "objectAtIndex:]: index 1 beyond the end of 1");
  EXPECT_EQ(raised([&] { array->insertObject("b"_ns, 2); }),
            head + "insertObject:atIndex:]: index 2 beyond the end of 2");
  EXPECT_EQ(raised([&] { array->removeObjectAtIndex(1); }),
            head + "removeObjectAtIndex:]: index 1 beyond the end of 1");
  EXPECT_EQ(raised([&] { array->replaceObjectAtIndex(1, "b"_ns); }),
            head + "replaceObjectAtIndex:withObject:]: index 1 beyond the end of 1");
  EXPECT_EQ(raised([&] { array->addObject(nullptr); }),
            "NSInvalidArgumentException: -[NSKeyValueMutableArray addObject:]: nil argument");
  EXPECT_EQ(raised([&] { insertObjects(array, array, NSIndexSet::indexSet()); }),
            "NSInvalidArgumentException: -[NSKeyValueMutableArray insertObjects:atIndexes:]: 1 "
            "objects for 0 indexes");
  EXPECT_EQ(listed(array), "a");
  array->removeAllObjects();
}

TEST(NSKeyValueMutableArrayTest, Tour) {
  const Shelf shelf = Shelf::new_();
  const NSMutableArray items = mutableArrayValueForKey(shelf, "items"_ns);
  items->addObject("a"_ns);
  items->insertObject("b"_ns, 0);
  items->replaceObjectAtIndex(1, "c"_ns);
  items->removeObjectAtIndex(0);
  EXPECT_EQ(logged(shelf), "insert insert replace remove ");
  EXPECT_EQ(listed(valueForKey<NSArray>(shelf, "items"_ns)), "c");
}

TEST(NSKeyValueMutableArrayTest, EveryKindChangesAlike) {
  const Shelf shelf = Shelf::new_();
  for (const char* const key : {"items", "blocks", "plain", "stored", "_stored"}) {
    change(mutableArrayValueForKey(shelf, key));
    refuse(mutableArrayValueForKey(shelf, key));
  }
  const auto dictionary = NSMutableDictionary::dictionary();
  setValue(dictionary, shelf, "shelf"_ns);
  change(mutableArrayValueForKey(dictionary, "list"_ns));
  change(mutableArrayValueForKeyPath(dictionary, "shelf.items"_ns));
}

TEST(NSKeyValueMutableArrayTest, AccessorsOfManyAreCalledOnce) {
  const Shelf shelf = Shelf::new_();
  const NSMutableArray blocks = mutableArrayValueForKey(shelf, "blocks"_ns);
  blocks->addObjectsFromArray({"a"_ns, "b"_ns, "c"_ns});
  EXPECT_EQ(logged(shelf), "insertMany ");
  blocks->removeObjectsInRange({0, 2});
  EXPECT_EQ(logged(shelf), "removeMany ");
  blocks->replaceObjectAtIndex(0, "d"_ns);
  EXPECT_EQ(logged(shelf), "removeMany insertMany ");
  blocks->addObjectsFromArray(nullptr);
  blocks->removeObjectsInRange({0, 0});
  EXPECT_EQ(logged(shelf), "");
}

TEST(NSKeyValueMutableArrayTest, OneSetterCallForEachChange) {
  const Shelf shelf = Shelf::new_();
  const NSMutableArray plain = mutableArrayValueForKey(shelf, "plain"_ns);
  EXPECT_EQ(plain->count(), 0U);
  plain->addObjectsFromArray({"b"_ns, "a"_ns});
  plain->sortUsingSelector(selector<"compare:">());
  EXPECT_EQ(logged(shelf), "set set ");
  EXPECT_EQ(listed(valueForKey<NSArray>(shelf, "plain"_ns)), "a b");
}

TEST(NSKeyValueMutableArrayTest, TheArrayOfAVariableIsChangedWhereItIs) {
  const Shelf shelf = Shelf::new_();
  const NSMutableArray own = {"a"_ns};
  setValue(shelf, own, "stored"_ns);
  mutableArrayValueForKey(shelf, "stored"_ns)->addObject("b"_ns);
  EXPECT_EQ(listed(own), "a b");
  // One that cannot be changed is replaced.
  const NSArray fixed = {"a"_ns};
  setValue(shelf, fixed, "stored"_ns);
  mutableArrayValueForKey(shelf, "stored"_ns)->addObject("c"_ns);
  EXPECT_EQ(listed(fixed), "a");
  EXPECT_EQ(listed(valueForKey<NSArray>(shelf, "stored"_ns)), "a c");
}

TEST(NSKeyValueMutableArrayTest, UnknownKeysRaiseWhenTheyAreUsed) {
  const NSMutableArray none = mutableArrayValueForKey(Shelf::new_(), "nothing"_ns);
  EXPECT_NE(raised([&] { none->count(); }).find("valueForUndefinedKey:"), std::string::npos);
  EXPECT_NE(raised([&] { none->setArray(NSArray::array()); }).find("setValue:forUndefinedKey:"),
            std::string::npos);
}

}  // namespace
}  // namespace brindle
