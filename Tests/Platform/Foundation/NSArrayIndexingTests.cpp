#include <Brindle/Platform/NSArrayIndexing.h>

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "Tests/Platform/Foundation/CollectionTesting.h"
#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

NSIndexSet indexes(std::initializer_list<NSUInteger> list) {
  const auto result = NSMutableIndexSet::indexSet();
  for (const NSUInteger index : list) result->addIndex(index);
  return result;
}

std::string joined(const NSArray& array) {
  return std::string(array->componentsJoinedByString(""_ns));
}

TEST(NSArrayIndexingTest, Tour) {
  const NSMutableArray letters = {"a"_ns, "b"_ns, "c"_ns, "d"_ns};
  EXPECT_EQ(joined(objectsAtIndexes(letters, indexes({3, 1}))), "bd");
  insertObjects(letters, NSArray{"x"_ns, "y"_ns, "z"_ns}, indexes({0, 2, 6}));
  EXPECT_EQ(joined(letters), "xaybcdz");
  removeObjectsAtIndexes(letters, indexes({0, 2, 6}));
  EXPECT_EQ(joined(letters), "abcd");
  replaceObjectsAtIndexes(letters, indexes({1, 2}), NSArray{"B"_ns, "C"_ns});
  EXPECT_EQ(joined(letters), "aBCd");
}

TEST(NSArrayIndexingTest, NoIndexesAreNoChange) {
  const NSMutableArray letters = {"a"_ns};
  insertObjects(letters, NSArray::array(), indexes({}));
  removeObjectsAtIndexes(letters, indexes({}));
  replaceObjectsAtIndexes(letters, indexes({}), NSArray::array());
  EXPECT_EQ(joined(letters), "a");
  EXPECT_EQ(objectsAtIndexes(letters, indexes({}))->count(), 0U);
  EXPECT_FALSE(objectsAtIndexes(nullptr, indexes({1})));
}

TEST(NSArrayIndexingTest, WhatDoesNotFitRaisesBeforeAnythingChanges) {
  const NSMutableArray letters = {"a"_ns, "b"_ns};
  EXPECT_EQ(raised([&] {
              objectsAtIndexes(letters, indexes({0, 2}));
            }),
            "NSRangeException: -[NSMutableArray objectsAtIndexes:]: index 2 beyond the end of 2");
  EXPECT_EQ(raised([&] {
              removeObjectsAtIndexes(letters, indexes({0, 5}));
            }),
            "NSRangeException: -[NSMutableArray removeObjectsAtIndexes:]: index 5 beyond the end "
            "of 2");
  EXPECT_EQ(raised([&] { insertObjects(letters, NSArray{"x"_ns}, indexes({3})); }),
            "NSRangeException: -[NSMutableArray insertObjects:atIndexes:]: index 3 beyond the end "
            "of 3");
  EXPECT_EQ(raised([&] {
              insertObjects(letters, NSArray{"x"_ns}, indexes({0, 1}));
            }),
            "NSInvalidArgumentException: -[NSMutableArray insertObjects:atIndexes:]: 1 objects for "
            "2 indexes");
  EXPECT_EQ(raised([&] {
              replaceObjectsAtIndexes(letters, indexes({1, 2}), letters);
            }),
            "NSRangeException: -[NSMutableArray replaceObjectsAtIndexes:withObjects:]: index 2 "
            "beyond the end of 2");
  EXPECT_EQ(raised([&] { removeObjectsAtIndexes(letters, nullptr); }),
            "NSInvalidArgumentException: -[NSMutableArray removeObjectsAtIndexes:]: nil argument");
  EXPECT_EQ(joined(letters), "ab");
}

TEST(NSArrayIndexingTest, WorksWithItselfAndWithClientsClasses) {
  const NSMutableArray letters = {"a"_ns, "b"_ns};
  insertObjects(letters, letters, indexes({1, 2}));
  EXPECT_EQ(joined(letters), "aabb");
  const auto own = ClientMutableArray::class_()->arrayWithArray(letters);
  insertObjects(own, NSArray{"x"_ns, "y"_ns}, indexes({1, 5}));
  EXPECT_EQ(joined(own), "axabby");
  removeObjectsAtIndexes(own, indexes({0, 1, 5}));
  EXPECT_EQ(joined(own), "abb");
  EXPECT_EQ(joined(objectsAtIndexes(own, indexes({0, 2}))), "ab");
}

TEST(NSArrayIndexingTest, AMemberThatEndsSeesTheWholeArray) {
  const auto array = NSMutableArray::array();
  NSUInteger seen = 99;
  array->addObject(Ender::with([&](const Ender&) { seen = array->count(); }));
  array->addObject("b"_ns);
  removeObjectsAtIndexes(array, indexes({0}));
  EXPECT_EQ(seen, 1U);
}

}  // namespace
}  // namespace brindle
