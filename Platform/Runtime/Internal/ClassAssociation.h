// The associated values of classes, which end never and are read often.
#pragma once

#include <atomic>

#include <Brindle/Platform/Object.h>

#include "Platform/Runtime/Internal/ClassData.h"

namespace brindle::detail {

/// One key of one class. Never freed; its value is changed under the class's stripe.
struct ClassAssociation {
  const void* key;
  ClassAssociation* next;
  // Null for no value, an immortal one, or the slot itself for one that is read under the lock.
  std::atomic<void*> published{nullptr};
  ObjectRecord* object = nullptr;
  bool owned = false;

  /// Whether what lies here is told without the lock: nothing, or an immortal object.
  [[nodiscard]] bool tells(ObjectRecord*& value) const noexcept {
    void* const here = published.load(std::memory_order_acquire);
    value = here != this ? static_cast<ObjectRecord*>(here) : nullptr;
    return here != this;
  }
};

/// The slot of a class for a key; null while nothing was ever set for it. No lock.
inline ClassAssociation* classAssociation(ObjectRecord* cls, const void* key) noexcept {
  const ClassData* data = static_cast<ClassRecord*>(cls)->data.load(std::memory_order_acquire);
  if (data == nullptr) return nullptr;
  ClassAssociation* slot = data->associations.load(std::memory_order_acquire);
  while (slot != nullptr && slot->key != key) slot = slot->next;
  return slot;
}

}  // namespace brindle::detail
