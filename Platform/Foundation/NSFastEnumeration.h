// Going through a collection, one member after the other.
//
//   for (const id& member : array) ...
//
// Works for every class with `countByEnumeratingWithState:objects:count:`, clients' own included.
// The members are lent: a member that the loop's body takes out of the collection, or a collection
// that is changed, must not be used further. The loop keeps the collection itself alive. A
// collection that was changed meanwhile raises NSGenericException before the next member is seen;
// not after the last.
#pragma once

#include <array>
#include <cstddef>

#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/Protocol.h>

namespace brindle {

/// Where an enumeration stands. The caller zeroes it; everything else is the collection's.
struct NSFastEnumerationState {
  unsigned long state = 0;
  /// The members of this batch, lent.
  const id* itemsPtr = nullptr;
  /// A number that changes whenever the collection does. Never null after the first batch.
  unsigned long* mutationsPtr = nullptr;
  unsigned long extra[5] = {};
};

/// `countByEnumeratingWithState:objects:count:` answers the number of members in the next batch, 0
/// after the last. It may put them into the caller's buffer (`ObjectRecord**`, of that many places)
/// and let `itemsPtr` look there (`detail::lentObjects`), or at members where they lie.
BRINDLE_PLATFORM_EXPORT extern ProtocolRecord kNSFastEnumeration;

namespace detail {

[[noreturn]] BRINDLE_PLATFORM_EXPORT void raiseMutated(const id& collection);

/// A row of lent records seen as references.
inline const id* lentObjects(ObjectRecord* const* records) noexcept {
  return reinterpret_cast<const id*>(records);  // NOLINT(*-reinterpret-cast): one pointer each
}

}  // namespace detail

/// The end of every enumeration.
struct NSFastEnumerationEnd {};

/// One enumeration: what `for` uses.
class NSFastEnumerationIterator {
 public:
  static constexpr std::size_t kBatch = 16;

  explicit NSFastEnumerationIterator(id collection) : collection_(static_cast<id&&>(collection)) {
    fetch();
  }
  NSFastEnumerationIterator(const NSFastEnumerationIterator&) = delete;
  NSFastEnumerationIterator& operator=(const NSFastEnumerationIterator&) = delete;

  const id& operator*() const noexcept { return state_.itemsPtr[index_]; }
  NSFastEnumerationIterator& operator++() {
    if (++index_ < count_)
      checkUnchanged();
    else
      fetch();
    return *this;
  }
  friend bool operator==(const NSFastEnumerationIterator& i, NSFastEnumerationEnd) noexcept {
    return i.count_ == 0;
  }

 private:
  void fetch() {
    index_ = 0;
    count_ = send<"countByEnumeratingWithState:objects:count:", NSUInteger>(
        collection_, &state_, buffer_.data(), NSUInteger{kBatch});
    if (count_ == 0) return;
    if (!started_) mutations_ = *state_.mutationsPtr;
    started_ = true;
    checkUnchanged();
  }
  void checkUnchanged() const {
    if (*state_.mutationsPtr != mutations_) [[unlikely]]
      detail::raiseMutated(collection_);
  }

  id collection_;
  NSFastEnumerationState state_;
  std::array<ObjectRecord*, kBatch> buffer_{};
  NSUInteger index_ = 0;
  NSUInteger count_ = 0;
  unsigned long mutations_ = 0;
  bool started_ = false;
};

/// What a collection's interface derives its `begin` and `end` from.
template <class Self>
class NSFastEnumerable {
 public:
  NSFastEnumerationIterator begin() const {
    return NSFastEnumerationIterator(static_cast<const Self&>(*this));
  }
  NSFastEnumerationEnd end() const noexcept { return {}; }
};

}  // namespace brindle
