// Enumerating an object table in batches.
#pragma once

#include <algorithm>

#include <Brindle/Platform/NSFastEnumeration.h>

#include "Platform/Foundation/Internal/ObjectTable.h"

namespace brindle::detail {

/// The next batch of the table's keys; the table is the collection's own.
inline NSUInteger enumerateKeys(const id& collection, ObjectTable& table,
                                NSFastEnumerationState& state, ObjectRecord** buffer,
                                NSUInteger room) {
  // A change that takes away the members of the next batch must not pass for the end.
  auto& [left, mutations, unused1, unused2, unused3] = state.extra;
  if (state.mutationsPtr == nullptr) {
    left = table.count();
    mutations = *table.mutations();
  } else if (left > 0 && mutations != *table.mutations()) {
    raiseMutated(collection);
  }
  state.mutationsPtr = table.mutations();
  state.itemsPtr = lentObjects(buffer);
  NSUInteger filled = 0;
  const auto& entries = table.entries();
  for (; filled < room && state.state < entries.size(); ++state.state) {
    const id& key = entries[state.state].key;
    if (key) buffer[filled++] = key.record();
  }
  left -= std::min(left, filled);
  return filled;
}

}  // namespace brindle::detail
