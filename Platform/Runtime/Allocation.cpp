#include <Brindle/Platform/Allocation.h>

#include "Platform/Runtime/Internal/ClassData.h"

namespace brindle {

Class object_getBirthClass(const id& object) {
  if (!object) return nullptr;
  const std::uint32_t flags = object.record()->flags.load(std::memory_order_relaxed);
  if ((flags & detail::kFlagClass) != 0) return nullptr;
  const detail::ClassData* birth = detail::classOfNumber(flags >> detail::kBirthShift);
  return birth != nullptr ? Class(birth->record) : nullptr;
}

}  // namespace brindle
