// Looking at an associated value without becoming one of its owners.
//
// Reading a value and letting it go again costs more than finding it. Who knows what kind of object
// it is, and wants a few of its bytes, looks at it where it lies.
#pragma once

#include <Brindle/Platform/Export.h>
#include <Brindle/Platform/Object.h>

namespace brindle {

/// Whether the object may have associated values; false for nil. One load.
inline bool hasAssociations(const ObjectRecord* object) noexcept {
  return object != nullptr &&
         (object->flags.load(std::memory_order_acquire) & detail::kFlagAssociations) != 0;
}

/// Calls `look` with the value that the object has under the key, and `result`, while nobody can
/// replace it. Answers what `look` answers, and false when there is no value. `look` is a few
/// instructions: it sends no message, takes no lock and owns nothing.
BRINDLE_PLATFORM_EXPORT bool peekAssociatedObject(ObjectRecord* object, const void* key,
                                                  bool (*look)(const ObjectRecord* value,
                                                               void* result),
                                                  void* result);

}  // namespace brindle
