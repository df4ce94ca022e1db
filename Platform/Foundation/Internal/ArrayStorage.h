// How the array classes reach the members of an array, whoever wrote its class.
#pragma once

#include <span>
#include <utility>
#include <vector>

#include <Brindle/Platform/NSArray.h>

namespace brindle::detail {

/// The variables of every array. Those of a subclass that keeps its members elsewhere stay empty.
struct ArrayStorage {
  ArrayStorage() = default;
  ArrayStorage(const ArrayStorage&) = delete;
  ArrayStorage& operator=(const ArrayStorage&) = delete;
  // The members' ends may look at the array.
  ~ArrayStorage() { std::exchange(items, {}).clear(); }

  std::vector<id> items;
  unsigned long mutations = 0;
};

ArrayStorage& storageOf(const NSArray& array);

/// Whether the array is of the library's own classes, so that its storage holds its members.
bool isLibraryArray(const NSArray& array) noexcept;

/// A new immutable array.
NSArray makeArray(std::vector<id> items);

/// The members of an array for the time of a call: where they lie, or gathered by messages. The
/// array must not change meanwhile. Nothing for nil.
class ArrayItems {
 public:
  explicit ArrayItems(const NSArray& array);
  ArrayItems(const ArrayItems&) = delete;
  ArrayItems& operator=(const ArrayItems&) = delete;

  [[nodiscard]] std::span<const id> items() const noexcept { return items_; }
  [[nodiscard]] auto begin() const noexcept { return items_.begin(); }
  [[nodiscard]] auto end() const noexcept { return items_.end(); }
  [[nodiscard]] std::size_t size() const noexcept { return items_.size(); }

 private:
  std::vector<id> gathered_;
  std::span<const id> items_;
};

/// A copy of the members, owned: for operations that run a client's code.
std::vector<id> copyItems(const NSArray& array);

/// Whether the two are the same object or equal.
inline bool sameOrEqual(const id& a, const id& b) { return a == b || send<"isEqual:", bool>(a, b); }

}  // namespace brindle::detail
