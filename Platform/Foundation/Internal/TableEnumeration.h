// Enumerating an object table in batches.
#pragma once

#include <Brindle/Platform/NSFastEnumeration.h>

#include "Platform/Foundation/Internal/ObjectTable.h"

namespace brindle::detail {

inline NSUInteger enumerateKeys(ObjectTable& table, NSFastEnumerationState& state,
                                ObjectRecord** buffer, NSUInteger room) {
  state.mutationsPtr = table.mutations();
  state.itemsPtr = lentObjects(buffer);
  NSUInteger filled = 0;
  const auto& entries = table.entries();
  for (; filled < room && state.state < entries.size(); ++state.state) {
    const id& key = entries[state.state].key;
    if (key) buffer[filled++] = key.record();
  }
  return filled;
}

}  // namespace brindle::detail
