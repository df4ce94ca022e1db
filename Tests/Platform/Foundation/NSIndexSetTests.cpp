#include <Brindle/Platform/NSIndexSet.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include <Brindle/Platform/NSString.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

constexpr auto kNotFound = static_cast<NSUInteger>(NSNotFound);

std::vector<NSUInteger> listed(const NSIndexSet& indexes) {
  std::vector<NSUInteger> result;
  for (const NSUInteger index : indexes) result.push_back(index);
  return result;
}

TEST(NSIndexSetTest, Tour) {
  const auto places = NSMutableIndexSet::indexSetWithIndexesInRange({2, 3});
  places->addIndex(9);
  places->removeIndex(3);
  EXPECT_EQ(listed(places), (std::vector<NSUInteger>{2, 4, 9}));
  EXPECT_EQ(places->count(), 3U);
  EXPECT_TRUE(places->containsIndex(4));
  EXPECT_EQ(places->firstIndex(), 2U);
  EXPECT_EQ(places->lastIndex(), 9U);
  EXPECT_EQ(places->indexGreaterThanIndex(4), 9U);
  EXPECT_EQ(places->indexLessThanIndex(4), 2U);
  EXPECT_EQ(places->indexGreaterThanOrEqualToIndex(3), 4U);
  EXPECT_EQ(places->indexLessThanOrEqualToIndex(3), 2U);
  EXPECT_EQ(places->countOfIndexesInRange({3, 7}), 2U);
  EXPECT_TRUE(places->intersectsIndexesInRange({0, 3}));
  EXPECT_FALSE(places->containsIndexesInRange({2, 3}));

  const NSIndexSet copy = places->copy();
  places->shiftIndexesStartingAtIndex(4, 10);
  EXPECT_EQ(listed(copy), (std::vector<NSUInteger>{2, 4, 9}));
  EXPECT_EQ(listed(places), (std::vector<NSUInteger>{2, 14, 19}));
}

TEST(NSIndexSetTest, AnEmptyOneHasNoIndexes) {
  const NSIndexSet none = NSIndexSet::indexSet();
  EXPECT_EQ(none->count(), 0U);
  EXPECT_EQ(none->firstIndex(), kNotFound);
  EXPECT_EQ(none->lastIndex(), kNotFound);
  EXPECT_EQ(none->indexGreaterThanIndex(0), kNotFound);
  EXPECT_EQ(none->indexLessThanIndex(kNotFound), kNotFound);
  EXPECT_TRUE(listed(none).empty());
  EXPECT_TRUE(listed(nullptr).empty());
  EXPECT_TRUE(none->isEqual(NSIndexSet::indexSetWithIndexesInRange({7, 0})));
  EXPECT_TRUE(none->containsIndexes(NSIndexSet::indexSet()));
}

TEST(NSIndexSetTest, EqualSetsHaveEqualHashes) {
  const auto a = NSMutableIndexSet::indexSetWithIndexesInRange({0, 4});
  const auto b = NSIndexSet::indexSetWithIndexesInRange({0, 4});
  EXPECT_TRUE(a->isEqual(b));
  EXPECT_TRUE(b->isEqualToIndexSet(a));
  EXPECT_EQ(a->hash(), b->hash());
  a->removeIndex(0);
  EXPECT_FALSE(a->isEqual(b));
  EXPECT_FALSE(b->isEqual("0-3"_ns));
  EXPECT_FALSE(b->isEqual(nullptr));
}

TEST(NSIndexSetTest, SetsAreAddedAndTakenAway) {
  const auto a = NSMutableIndexSet::indexSetWithIndexesInRange({0, 4});
  a->addIndexes(NSIndexSet::indexSetWithIndexesInRange({3, 4}));
  EXPECT_TRUE(a->isEqual(NSIndexSet::indexSetWithIndexesInRange({0, 7})));
  a->removeIndexes(NSIndexSet::indexSetWithIndexesInRange({1, 5}));
  EXPECT_EQ(listed(a), (std::vector<NSUInteger>{0, 6}));
  EXPECT_TRUE(a->containsIndexes(NSIndexSet::indexSetWithIndex(6)));
  EXPECT_FALSE(a->containsIndexes(NSIndexSet::indexSetWithIndex(5)));
  a->addIndexes(a);
  a->addIndexes(nullptr);
  a->removeIndexes(nullptr);
  EXPECT_EQ(a->count(), 2U);
  a->removeIndexes(a);
  EXPECT_EQ(a->count(), 0U);
  a->addIndexesInRange({5, 2});
  a->removeAllIndexes();
  EXPECT_EQ(a->count(), 0U);
}

TEST(NSIndexSetTest, AreBelowNSNotFound) {
  const auto all = NSMutableIndexSet::indexSetWithIndexesInRange({0, kNotFound});
  EXPECT_EQ(all->count(), kNotFound);
  EXPECT_EQ(all->lastIndex(), kNotFound - 1);
  EXPECT_FALSE(all->containsIndex(kNotFound));
  EXPECT_FALSE(all->containsIndexesInRange({1, kNotFound}));
  EXPECT_EQ(all->countOfIndexesInRange({kNotFound - 1, ~NSUInteger{0}}), 1U);
  EXPECT_EQ(all->indexGreaterThanIndex(~NSUInteger{0}), kNotFound);
  EXPECT_EQ(all->indexLessThanOrEqualToIndex(~NSUInteger{0}), kNotFound - 1);
  const struct {
    std::function<void()> body;
    const char* text;
  } kCases[] = {
      {[&] { all->addIndex(kNotFound); },
       "NSRangeException: -[NSMutableIndexSet addIndex:]: index 9223372036854775807 beyond the "
       "greatest index"},
      {[&] {
         all->removeIndexesInRange({1, kNotFound});
       },
       "NSRangeException: -[NSMutableIndexSet removeIndexesInRange:]: range {1, "
       "9223372036854775807} beyond the greatest index"},
      {[&] {
         NSIndexSet::indexSetWithIndexesInRange({2, ~NSUInteger{0}});
       },
       "NSRangeException: -[NSIndexSet initWithIndexesInRange:]: range {2, 18446744073709551615} "
       "beyond the greatest index"},
      {[&] { NSIndexSet::indexSetWithIndex(~NSUInteger{0}); },
       "NSRangeException: -[NSIndexSet initWithIndex:]: index 18446744073709551615 beyond the "
       "greatest index"},
  };
  for (const auto& [body, text] : kCases) EXPECT_EQ(raised(body), text);
}

TEST(NSIndexSetTest, HandsOutBatchesOfARange) {
  const auto indexes = NSMutableIndexSet::indexSetWithIndexesInRange({10, 5});
  indexes->addIndexesInRange({20, 100});
  NSUInteger buffer[4];
  NSRange rest{12, 10};
  EXPECT_EQ(indexes->getIndexes(buffer, 4, &rest), 4U);
  EXPECT_EQ(std::vector<NSUInteger>(buffer, buffer + 4), (std::vector<NSUInteger>{12, 13, 14, 20}));
  EXPECT_EQ(rest, (NSRange{21, 1}));
  EXPECT_EQ(indexes->getIndexes(buffer, 4, &rest), 1U);
  EXPECT_EQ(rest, (NSRange{22, 0}));
  EXPECT_EQ(indexes->getIndexes(buffer, 4, &rest), 0U);
  EXPECT_EQ(indexes->getIndexes(buffer, 1, nullptr), 1U);
  EXPECT_EQ(buffer[0], 10U);
  EXPECT_EQ(listed(indexes).size(), 105U);
}

TEST(NSIndexSetTest, CallsBlocksUntilTheyStop) {
  const auto indexes = NSMutableIndexSet::indexSetWithIndexesInRange({1, 2});
  indexes->addIndexesInRange({5, 3});
  std::vector<NSUInteger> seen;
  indexes->enumerateIndexesUsingBlock([&](NSUInteger index, bool* stop) {
    seen.push_back(index);
    *stop = index == 5;
  });
  EXPECT_EQ(seen, (std::vector<NSUInteger>{1, 2, 5}));
  std::vector<NSRange> ranges;
  indexes->enumerateRangesUsingBlock([&](NSRange range, bool*) { ranges.push_back(range); });
  EXPECT_EQ(ranges, (std::vector<NSRange>{{1, 2}, {5, 3}}));
}

TEST(NSIndexSetTest, CopiesThatCannotChangeAreTheSame) {
  const NSIndexSet fixed = NSIndexSet::indexSetWithIndex(3);
  EXPECT_EQ(fixed->copy(), fixed);
  const NSMutableIndexSet changed = fixed->mutableCopy();
  changed->addIndex(4);
  EXPECT_EQ(fixed->count(), 1U);
  EXPECT_FALSE(isa<NSMutableIndexSet>(send<"copy", id>(changed)));
  EXPECT_EQ(NSIndexSet::alloc()->initWithIndexSet(nullptr)->count(), 0U);
}

TEST(NSIndexSetTest, DescribesItself) {
  const auto indexes = NSMutableIndexSet::indexSetWithIndexesInRange({1, 2});
  indexes->addIndex(5);
  const std::string text(indexes->description());
  EXPECT_NE(text.find(">[number of indexes: 3 (in 2 ranges), indexes: (1-2 5)]"), text.npos);
  const std::string none(NSIndexSet::indexSet()->description());
  EXPECT_TRUE(none.ends_with(">(no indexes)")) << none;
}

}  // namespace
}  // namespace brindle
