// The steps in the life of an object that the runtime's units share.
#pragma once

#include <atomic>
#include <cstddef>

#include <Brindle/Platform/Object.h>

namespace brindle::detail {

/// A new instance, fields constructed, one owner. Throws std::bad_alloc.
ObjectRecord* createInstance(ClassRecord* cls, std::size_t extraBytes);

/// Destroys the object's fields by the class it was born with, forgets its associations, frees it.
/// Raises, after all that, what the ends of its fields raised.
void disposeObject(ObjectRecord* record);

/// The `dealloc` that does nothing but dispose: the root classes' own.
void setPlainDealloc(IMP dealloc) noexcept;

/// From now on the object is not counted and never ends. Before anybody else finds it.
inline void makeImmortal(ObjectRecord* record) noexcept {
  record->count.store(kCountImmortal, std::memory_order_relaxed);
}

/// To end the fields of this class's instances, not of its subclasses', runs no other code and
/// raises nothing. Before the first of them ends.
void setEndsQuietly(ClassRecord* cls) noexcept;

/// Weak references to the object read nil from now on.
void clearWeakReferences(ObjectRecord* record);

/// Releases the values associated with an object that ends. What their ends raise is parked.
void forgetAssociations(ObjectRecord* record) noexcept;

/// Whoever keeps the observers of objects is told here when an object ends that has some.
void setForgetObservers(void (*forget)(ObjectRecord* record) noexcept) noexcept;

/// Forgets the monitor of an object that ends although a thread is inside.
void forgetMonitor(ObjectRecord* record) noexcept;

/// A heap copy of a block on the stack, owned.
ObjectRecord* copyStackBlock(ObjectRecord* record);

}  // namespace brindle::detail
