// What a class has for a key: the methods or the variable that key-value coding goes by.
//
// What was found is remembered for each class and key until a method changes anywhere. Only
// selectors are kept, and sent: an implementation that is exchanged takes effect at once.
#pragma once

#include <array>
#include <cstddef>

#include <Brindle/Platform/NSString.h>

#include "Platform/Foundation/Internal/KeyValueTypes.h"

namespace brindle::detail {

struct KeyAccessor {
  enum class Kind {
    kMethod,      // `selector`, whose result or argument has the type `type`
    kVariable,    // of the type `type`, at `offset`
    kCollection,  // the parts below
  };
  /// The methods of a relationship; null where the class has none.
  enum Part : std::size_t {
    kCount,
    kObjectAt,
    kObjectsAt,
    kEnumerator,
    kMember,
    kInsert,
    kInsertMany,
    kRemove,
    kRemoveMany,
    kReplace,
    kReplaceMany,
    kIntersect,
    kSetAll,
    kParts,
  };

  Kind kind = Kind::kMethod;
  SEL selector = nullptr;
  KeyValueType type;
  std::ptrdiff_t offset = 0;
  std::array<SEL, kParts> parts{};

  friend bool operator==(const KeyAccessor&, const KeyAccessor&) = default;
  [[nodiscard]] bool has(Part part) const noexcept { return parts[part] != nullptr; }
};

enum class KeyPurpose : unsigned { kGet, kSet, kMutableArray, kMutableSet, kValidate };

/// What the object's class has; null when that is nothing. Lives as long as the process. Asking
/// registers no selectors.
const KeyAccessor* keyAccessor(const id& object, const NSString& key, KeyPurpose purpose);

/// Where the object has the variable.
inline void* variableOf(const id& object, const KeyAccessor& accessor) noexcept {
  return reinterpret_cast<char*>(object.record()) + accessor.offset;  // NOLINT: raw memory
}

}  // namespace brindle::detail
