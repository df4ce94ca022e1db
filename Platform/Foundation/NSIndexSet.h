// A set of indexes: places in an array, each of them once, in ascending order.
//
//   NSIndexSet places = NSIndexSet::indexSetWithIndexesInRange({2, 3});   // 2, 3, 4
//   for (const NSUInteger place : places) ...
//
// Indexes are below NSNotFound; one at or above it, or a range that reaches it, raises
// NSRangeException. Ranges of any length take little memory. Sets that nobody changes may be used
// by many threads at once.
#pragma once

#include <array>

#include <Brindle/Platform/Block.h>
#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/NSRange.h>

namespace brindle {

class NSIndexSet;
class NSMutableIndexSet;

/// The end of every loop over indexes.
struct NSIndexSetEnd {};

/// One loop over indexes: what `for` uses. A set that is changed meanwhile is gone on with from the
/// next batch on.
class NSIndexSetIterator {
 public:
  explicit NSIndexSetIterator(id indexes) : indexes_(static_cast<id&&>(indexes)) { fetch(); }

  NSUInteger operator*() const noexcept { return buffer_[index_]; }
  NSIndexSetIterator& operator++() {
    if (++index_ == count_) fetch();
    return *this;
  }
  friend bool operator==(const NSIndexSetIterator& i, NSIndexSetEnd) noexcept {
    return i.count_ == 0;
  }

 private:
  void fetch() {
    index_ = 0;
    count_ = send<"getIndexes:maxCount:inIndexRange:", NSUInteger>(indexes_, buffer_.data(),
                                                                   NSUInteger{kBatch}, &rest_);
  }

  static constexpr std::size_t kBatch = 32;
  id indexes_;
  NSRange rest_{0, static_cast<NSUInteger>(NSNotFound)};
  std::array<NSUInteger, kBatch> buffer_{};
  NSUInteger index_ = 0;
  NSUInteger count_ = 0;
};

class NSIndexSet : public Interface<NSIndexSet, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSIndexSet> classPair;

  template <class Self>
  class ClassSide : public NSObject::ClassSide<Self> {
   public:
    /// An empty one.
    Self indexSet() const { return send<"indexSet", Self>(*this); }
    Self indexSetWithIndex(NSUInteger index) const {
      return send<"indexSetWithIndex:", Self>(*this, index);
    }
    Self indexSetWithIndexesInRange(NSRange range) const {
      return send<"indexSetWithIndexesInRange:", Self>(*this, range);
    }
  };
  static NSIndexSet indexSet() { return class_()->indexSet(); }
  static NSIndexSet indexSetWithIndex(NSUInteger index) {
    return class_()->indexSetWithIndex(index);
  }
  static NSIndexSet indexSetWithIndexesInRange(NSRange range) {
    return class_()->indexSetWithIndexesInRange(range);
  }

  NSIndexSet initWithIndex(NSUInteger index) const {
    return send<"initWithIndex:", NSIndexSet>(*this, index);
  }
  NSIndexSet initWithIndexesInRange(NSRange range) const {
    return send<"initWithIndexesInRange:", NSIndexSet>(*this, range);
  }
  /// The indexes of another set; none for nil.
  NSIndexSet initWithIndexSet(const NSIndexSet& other) const {
    return send<"initWithIndexSet:", NSIndexSet>(*this, other);
  }

  NSUInteger count() const { return send<"count", NSUInteger>(*this); }
  /// The smallest and the greatest; NSNotFound of an empty set.
  NSUInteger firstIndex() const { return send<"firstIndex", NSUInteger>(*this); }
  NSUInteger lastIndex() const { return send<"lastIndex", NSUInteger>(*this); }
  /// The nearest index of the set on that side of `index`, which need not be in it; NSNotFound when
  /// there is none.
  NSUInteger indexGreaterThanIndex(NSUInteger index) const {
    return send<"indexGreaterThanIndex:", NSUInteger>(*this, index);
  }
  NSUInteger indexLessThanIndex(NSUInteger index) const {
    return send<"indexLessThanIndex:", NSUInteger>(*this, index);
  }
  /// The same, `index` itself included.
  NSUInteger indexGreaterThanOrEqualToIndex(NSUInteger index) const {
    return send<"indexGreaterThanOrEqualToIndex:", NSUInteger>(*this, index);
  }
  NSUInteger indexLessThanOrEqualToIndex(NSUInteger index) const {
    return send<"indexLessThanOrEqualToIndex:", NSUInteger>(*this, index);
  }
  bool containsIndex(NSUInteger index) const { return send<"containsIndex:", bool>(*this, index); }
  /// Whether the whole range is in the set; NO for an empty range.
  bool containsIndexesInRange(NSRange range) const {
    return send<"containsIndexesInRange:", bool>(*this, range);
  }
  /// Whether every index of the other set is in this one.
  bool containsIndexes(const NSIndexSet& other) const {
    return send<"containsIndexes:", bool>(*this, other);
  }
  /// Whether any index of the range is in the set.
  bool intersectsIndexesInRange(NSRange range) const {
    return send<"intersectsIndexesInRange:", bool>(*this, range);
  }
  NSUInteger countOfIndexesInRange(NSRange range) const {
    return send<"countOfIndexesInRange:", NSUInteger>(*this, range);
  }
  bool isEqualToIndexSet(const NSIndexSet& other) const {
    return send<"isEqualToIndexSet:", bool>(*this, other);
  }

  /// Stores indexes of the range, from the smallest on, `room` at most; answers how many. The range
  /// becomes what is left behind the last that was stored. A null range is everything.
  NSUInteger getIndexes(NSUInteger* indexes, NSUInteger room, NSRange* range) const {
    return send<"getIndexes:maxCount:inIndexRange:", NSUInteger>(*this, indexes, room, range);
  }
  /// Calls the block for each, from the smallest on, until it stores true.
  void enumerateIndexesUsingBlock(const BlockArg<void(NSUInteger index, bool* stop)>& block) const {
    send<"enumerateIndexesUsingBlock:">(*this, block);
  }
  /// The same for each unbroken range.
  void enumerateRangesUsingBlock(const BlockArg<void(NSRange range, bool* stop)>& block) const {
    send<"enumerateRangesUsingBlock:">(*this, block);
  }
  NSMutableIndexSet mutableCopy() const;

  NSIndexSetIterator begin() const { return NSIndexSetIterator(*this); }
  NSIndexSetEnd end() const noexcept { return {}; }
};

/// A set of indexes that can be changed; for one thread at a time while it does.
class NSMutableIndexSet : public Interface<NSMutableIndexSet, NSIndexSet> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSMutableIndexSet> classPair;

  static NSMutableIndexSet indexSet() { return class_()->indexSet(); }
  static NSMutableIndexSet indexSetWithIndex(NSUInteger index) {
    return class_()->indexSetWithIndex(index);
  }
  static NSMutableIndexSet indexSetWithIndexesInRange(NSRange range) {
    return class_()->indexSetWithIndexesInRange(range);
  }

  void addIndex(NSUInteger index) const { send<"addIndex:">(*this, index); }
  void addIndexesInRange(NSRange range) const { send<"addIndexesInRange:">(*this, range); }
  void addIndexes(const NSIndexSet& other) const { send<"addIndexes:">(*this, other); }
  /// Nothing for what is not there.
  void removeIndex(NSUInteger index) const { send<"removeIndex:">(*this, index); }
  void removeIndexesInRange(NSRange range) const { send<"removeIndexesInRange:">(*this, range); }
  void removeIndexes(const NSIndexSet& other) const { send<"removeIndexes:">(*this, other); }
  void removeAllIndexes() const { send<"removeAllIndexes">(*this); }
  /// Moves the indexes from `index` on up by `delta`, which leaves a gap, or down, which overwrites
  /// the `-delta` indexes below. What moves out of the range of indexes goes.
  void shiftIndexesStartingAtIndex(NSUInteger index, NSInteger delta) const {
    send<"shiftIndexesStartingAtIndex:by:">(*this, index, delta);
  }
};

inline NSMutableIndexSet NSIndexSet::mutableCopy() const {
  return send<"mutableCopy", NSMutableIndexSet>(*this);
}

}  // namespace brindle
