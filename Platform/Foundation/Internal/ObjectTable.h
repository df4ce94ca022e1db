// The hash table behind dictionaries and sets: keys by `hash` and `isEqual:`, in the order in which
// they came. Both messages may run a client's code, which may change the table that asks: after
// each of them the table is looked at anew, and objects that leave are released when the table is
// whole. A raise out of either leaves the table as it was.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include <Brindle/Platform/NSObject.h>

#include "Platform/Foundation/Internal/ReleaseEach.h"
#include "Platform/Runtime/Internal/Raise.h"

namespace brindle::detail {

class ObjectTable {
 public:
  struct Entry {
    id key;  // nil where an entry was taken away
    id value;
    NSUInteger hash = 0;
  };

  ObjectTable() = default;
  ObjectTable(const ObjectTable&) = delete;
  ObjectTable& operator=(const ObjectTable&) = delete;
  ~ObjectTable() { const std::vector<Entry> removed = takeEntries(); }

  [[nodiscard]] std::size_t count() const noexcept { return live_; }
  /// Changes whenever the table does.
  [[nodiscard]] unsigned long* mutations() noexcept { return &mutations_; }
  /// All entries, some of them without a key.
  [[nodiscard]] const std::vector<Entry>& entries() const noexcept { return entries_; }

  /// The entry of that key, or null.
  [[nodiscard]] const Entry* find(const id& key) const {
    if (live_ == 0) return nullptr;
    const std::size_t place = findPlace(key, hashOf(key));
    return place == kNone ? nullptr : &entries_[place];
  }

  /// Puts the value under the key. An equal key that is there stays, and gets the value only when
  /// `replaces` is set.
  void insert(const id& key, const id& value, bool replaces) {
    const NSUInteger hash = hashOf(key);
    const std::size_t place = findPlace(key, hash);
    if (place != kNone) {
      if (!replaces) return;
      ++mutations_;
      entries_[place].value = value;  // releases the old one last
      return;
    }
    ++mutations_;
    if (entries_.size() == entries_.capacity() && entries_.size() > 2 * live_) compact();
    entries_.push_back({key, value, hash});
    ++live_;
    if (entries_.size() <= kLinear) return;
    if (slots_.size() * 3 < entries_.size() * 4)
      rebuildSlots();
    else
      occupySlot(entries_.size() - 1);
  }

  void remove(const id& key) {
    if (live_ == 0) return;
    const std::size_t place = findPlace(key, hashOf(key));
    if (place == kNone) return;
    ++mutations_;
    Entry removed = std::move(entries_[place]);
    entries_[place].hash = 0;
    if (--live_ == 0) forgetEntries();
    removed.value = nullptr;  // not at the brace: they may raise
    removed.key = nullptr;
  }

  void clear() {
    std::vector<Entry> removed = takeEntries();
    releaseEach(removed, [](Entry& entry) { entry.value = nullptr; });
    releaseEach(removed, [](Entry& entry) { entry.key = nullptr; });
  }

  /// Takes what the other table holds in place of its own, which goes to the other.
  void swapEntries(ObjectTable& other) noexcept {
    entries_.swap(other.entries_);
    slots_.swap(other.slots_);
    std::swap(live_, other.live_);
    std::swap(shift_, other.shift_);
    ++mutations_;
    ++other.mutations_;
  }

  void reserve(std::size_t count) { entries_.reserve(count); }

 private:
  static constexpr std::size_t kNone = ~std::size_t{0};
  static constexpr std::uint32_t kEmpty = 0xFFFFFFFF;
  static constexpr std::size_t kLinear = 8;  // so few entries are found faster one by one
  static constexpr int kPatience = 100;      // searches that a change of the table overtakes

  /// All entries, for the caller to release: their ends may look at the table.
  std::vector<Entry> takeEntries() {
    ++mutations_;
    live_ = 0;
    slots_.clear();
    return std::exchange(entries_, {});
  }

  static NSUInteger hashOf(const id& key) { return send<"hash", NSUInteger>(key); }
  [[nodiscard]] std::size_t startOf(NSUInteger hash) const noexcept {
    return (hash * 0x9E3779B97F4A7C15U) >> shift_;
  }

  // Whether the entry has the key. An answer that a change of the table has overtaken is told by
  // `mutations_`.
  bool matches(std::size_t place, const id& key, NSUInteger hash) const {
    const Entry& entry = entries_[place];
    if (entry.key == key) return true;
    if (entry.hash != hash || !entry.key) return false;
    const id candidate = entry.key;
    return send<"isEqual:", bool>(key, candidate);
  }

  [[nodiscard]] std::size_t findPlace(const id& key, NSUInteger hash) const {
    for (int i = 0; i < kPatience; ++i) {
      const unsigned long before = mutations_;
      const std::size_t place = slots_.empty() ? scan(key, hash, before) : probe(key, hash, before);
      if (mutations_ == before) return place;
    }
    raise("NSGenericException", "a collection is changed whenever one of its members is compared");
  }
  [[nodiscard]] std::size_t scan(const id& key, NSUInteger hash, unsigned long before) const {
    for (std::size_t i = 0; i < entries_.size(); ++i) {
      const bool found = matches(i, key, hash);
      if (mutations_ != before) return kNone;
      if (found) return i;
    }
    return kNone;
  }
  [[nodiscard]] std::size_t probe(const id& key, NSUInteger hash, unsigned long before) const {
    for (std::size_t slot = startOf(hash); slots_[slot] != kEmpty;
         slot = (slot + 1) & (slots_.size() - 1)) {
      const std::size_t place = slots_[slot];
      const bool found = matches(place, key, hash);
      if (mutations_ != before) return kNone;
      if (found) return place;
    }
    return kNone;
  }

  void occupySlot(std::size_t place) {
    std::size_t slot = startOf(entries_[place].hash);
    while (slots_[slot] != kEmpty) slot = (slot + 1) & (slots_.size() - 1);
    slots_[slot] = static_cast<std::uint32_t>(place);
  }
  // Twice as many slots as there may be entries, at least.
  void rebuildSlots() {
    std::size_t size = 32;
    unsigned bits = 5;
    for (; size < entries_.size() * 2; size *= 2) ++bits;
    slots_.assign(size, kEmpty);
    shift_ = 64 - bits;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
      if (entries_[i].key) occupySlot(i);
    }
  }
  void compact() {
    std::erase_if(entries_, [](const Entry& entry) { return !entry.key; });
    if (entries_.size() > kLinear)
      rebuildSlots();
    else
      slots_.clear();
  }
  void forgetEntries() {
    entries_.clear();
    slots_.clear();
  }

  std::vector<Entry> entries_;
  std::vector<std::uint32_t> slots_;  // places in `entries_`; a power of two, or none
  std::size_t live_ = 0;
  unsigned shift_ = 59;
  unsigned long mutations_ = 0;
};

}  // namespace brindle::detail
