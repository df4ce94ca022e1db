// A number for each pointer, found fast: a flat hash table that only grows.
#pragma once

#include <bit>
#include <cstdint>
#include <vector>

namespace brindle::internal {

class PointerTable {
 public:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  /// The number of the pointer, kNone when it has none. It can be given one there, before the next
  /// pointer is looked up.
  std::uint32_t& operator[](const void* pointer) {
    if ((used_ + 1) * 2 > entries_.size()) grow();
    Entry& entry = place(pointer);
    if (entry.pointer == nullptr) {
      entry.pointer = pointer;
      ++used_;
    }
    return entry.number;
  }

 private:
  struct Entry {
    const void* pointer = nullptr;
    std::uint32_t number = kNone;
  };

  Entry& place(const void* pointer) {
    const std::size_t mask = entries_.size() - 1;
    const auto bits = std::bit_cast<std::uintptr_t>(pointer);
    std::size_t slot = static_cast<std::size_t>((bits >> 4U) * 0x9E3779B97F4A7C15U >> 32U) & mask;
    while (entries_[slot].pointer != nullptr && entries_[slot].pointer != pointer) {
      slot = (slot + 1) & mask;
    }
    return entries_[slot];
  }
  void grow() {
    std::vector<Entry> old(entries_.empty() ? 16 : entries_.size() * 2);
    old.swap(entries_);
    for (const Entry& entry : old) {
      if (entry.pointer != nullptr) place(entry.pointer) = entry;
    }
  }

  std::vector<Entry> entries_;
  std::size_t used_ = 0;
};

}  // namespace brindle::internal
