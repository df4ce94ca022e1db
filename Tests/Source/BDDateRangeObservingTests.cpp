#include <Brindle/BDDateRange.h>

#include <gtest/gtest.h>

#include <Brindle/BDBlockKeyValueAdditions.h>

#include "Tests/Source/DateRangeTesting.h"

namespace brindle {
namespace {

TEST(DateRangeObserving, TellsOfStartAndEnd) {
  const DateSettings settings("UTC");
  const BDDateRange range = BDDateRange::dateRangeWithAnchor(dateOf(2020, 1, 1), 0, 1);
  const NSUInteger both = NSKeyValueObservingOptionNew | NSKeyValueObservingOptionOld;
  int starts = 0;
  int ends = 0;
  const Block<void()> stopStart =
      addObserverForKeyPath(range, "start"_ns, both, [&](const NSDictionary& change) {
        ++starts;
        EXPECT_EQ(change->count(), 3U);
      });
  const Block<void()> stopEnd =
      addObserverForKeyPath(range, "end"_ns, both, [&](const NSDictionary&) { ++ends; });
  range->setOffset(1);
  range->setAnchor(dateOf(2021, 1, 1));
  range->setLengthUnit(BDTimeUnitMonth);
  EXPECT_EQ(starts, 3);
  EXPECT_EQ(ends, 3);
  stopStart();
  stopEnd();
  range->setOffset(2);
  EXPECT_EQ(starts, 3);
  EXPECT_EQ(classOf(range->copy()), BDDateRange::class_());
}

}  // namespace
}  // namespace brindle
