#include "Platform/Foundation/Internal/IndexRanges.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

namespace brindle::internal {
namespace {

constexpr std::uint64_t kNone = IndexRanges::kNone;

TEST(IndexRangesTest, Tour) {
  IndexRanges indexes;
  indexes.add({3, 5});
  indexes.add({7, 8});
  indexes.add({5, 7});
  EXPECT_EQ(indexes.ranges(), (std::vector<IndexRange>{{3, 8}}));
  indexes.remove({4, 6});
  EXPECT_EQ(indexes.ranges(), (std::vector<IndexRange>{{3, 4}, {6, 8}}));
  EXPECT_EQ(indexes.count(), 3U);
  EXPECT_TRUE(indexes.contains(7));
  EXPECT_EQ(indexes.atOrAbove(4), 6U);
  EXPECT_EQ(indexes.below(6), 3U);
  EXPECT_EQ(indexes.runAt(7), (IndexRange{6, 8}));
  indexes.shiftUp(7, 2);
  EXPECT_EQ(indexes.ranges(), (std::vector<IndexRange>{{3, 4}, {6, 7}, {9, 10}}));
  indexes.clear();
  EXPECT_EQ(indexes.count(), 0U);
  EXPECT_EQ(indexes.atOrAbove(0), kNone);
  EXPECT_EQ(indexes.below(kNone), kNone);
}

TEST(IndexRangesTest, ShiftsLoseWhatLeavesTheRangeOfIndexes) {
  IndexRanges indexes;
  indexes.add({kNone - 4, kNone});
  indexes.add({0, 2});
  indexes.shiftUp(1, 2);
  EXPECT_EQ(indexes.ranges(), (std::vector<IndexRange>{{0, 1}, {3, 4}, {kNone - 2, kNone}}));
  indexes.shiftUp(0, ~std::uint64_t{0});
  EXPECT_EQ(indexes.count(), 0U);
  indexes.add({0, 5});
  indexes.shiftDown(2, std::uint64_t{1} << 63U);
  EXPECT_EQ(indexes.count(), 0U);
  indexes.add({0, 5});
  indexes.shiftDown(3, 1);
  EXPECT_EQ(indexes.ranges(), (std::vector<IndexRange>{{0, 4}}));
}

// Against a set of numbers, which needs no cleverness.
TEST(IndexRangesTest, RandomChangesAgreeWithAPlainSet) {
  std::mt19937 random(7);
  const auto below = [&random](std::uint64_t n) { return random() % n; };
  for (int program = 0; program < 200; ++program) {
    IndexRanges indexes;
    std::set<std::uint64_t> plain;
    for (int step = 0; step < 40; ++step) {
      const std::uint64_t first = below(40);
      const std::uint64_t end = first + below(6);
      switch (below(5)) {
        case 0:
        case 1:
          indexes.add({first, end});
          for (auto i = first; i < end; ++i) plain.insert(i);
          break;
        case 2:
          indexes.remove({first, end});
          for (auto i = first; i < end; ++i) plain.erase(i);
          break;
        case 3: {
          indexes.shiftUp(first, end - first);
          std::set<std::uint64_t> moved;
          for (const auto i : plain) moved.insert(i < first ? i : i + end - first);
          plain = moved;
          break;
        }
        default: {
          const std::uint64_t by = end - first;
          indexes.shiftDown(first, by);
          std::set<std::uint64_t> moved;
          for (const auto i : plain) {
            if (i < first && i + by < first) moved.insert(i);
            if (i >= first && i >= by) moved.insert(i - by);
          }
          plain = moved;
        }
      }
      std::vector<std::uint64_t> listed;
      for (const IndexRange& range : indexes.ranges()) {
        ASSERT_LT(range.first, range.end);
        ASSERT_TRUE(listed.empty() || listed.back() + 1 < range.first);
        for (auto i = range.first; i < range.end; ++i) listed.push_back(i);
      }
      ASSERT_EQ(listed, std::vector<std::uint64_t>(plain.begin(), plain.end()));
      ASSERT_EQ(indexes.count(), plain.size());
      const auto above = plain.lower_bound(first);
      ASSERT_EQ(indexes.atOrAbove(first), above == plain.end() ? kNone : *above);
      ASSERT_EQ(indexes.below(first), above == plain.begin() ? kNone : *std::prev(above));
      ASSERT_EQ(indexes.contains(first), plain.contains(first));
      std::uint64_t within = 0;
      for (auto i = first; i < end; ++i) within += plain.count(i);
      ASSERT_EQ(indexes.countWithin({first, end}), within);
      ASSERT_EQ(indexes.containsAll({first, end}), end > first && within == end - first);
    }
  }
}

}  // namespace
}  // namespace brindle::internal
