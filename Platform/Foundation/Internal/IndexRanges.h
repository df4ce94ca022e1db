// Numbers in a set, kept as the ranges they form.
//
// The ranges are in order, never empty, and never touch: {1, 2, 3, 7} is [1, 4) and [7, 8). Asking
// for a number takes the logarithm of the ranges; adding and removing is linear in those behind it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace brindle::internal {

/// The numbers from `first` to before `end`.
struct IndexRange {
  std::uint64_t first = 0;
  std::uint64_t end = 0;

  friend bool operator==(const IndexRange&, const IndexRange&) = default;
};

class IndexRanges {
 public:
  /// Greater than every member; what is answered when there is none.
  static constexpr std::uint64_t kNone = INT64_MAX;

  [[nodiscard]] const std::vector<IndexRange>& ranges() const noexcept { return ranges_; }
  [[nodiscard]] std::uint64_t count() const noexcept;
  /// How many are at or above `first` and below `end`.
  [[nodiscard]] std::uint64_t countWithin(IndexRange range) const noexcept;
  [[nodiscard]] bool contains(std::uint64_t index) const noexcept;
  /// Whether all of the range is in; not for an empty range.
  [[nodiscard]] bool containsAll(IndexRange range) const noexcept;

  /// The smallest member at or above the index.
  [[nodiscard]] std::uint64_t atOrAbove(std::uint64_t index) const noexcept;
  /// The greatest member below the index.
  [[nodiscard]] std::uint64_t below(std::uint64_t index) const noexcept;

  /// The range that holds a member.
  [[nodiscard]] IndexRange runAt(std::uint64_t member) const noexcept {
    return ranges_[place(member)];
  }

  void add(IndexRange range);
  void remove(IndexRange range);
  void clear() noexcept { ranges_.clear(); }

  /// Moves the members at or above the index up, or down over what is there. What would come to lie
  /// below zero or at `kNone` and above goes.
  void shiftUp(std::uint64_t index, std::uint64_t by);
  void shiftDown(std::uint64_t index, std::uint64_t by);

  friend bool operator==(const IndexRanges&, const IndexRanges&) = default;

 private:
  // The first range that ends above the index.
  [[nodiscard]] std::size_t place(std::uint64_t index) const noexcept;

  std::vector<IndexRange> ranges_;
};

}  // namespace brindle::internal
