// The classes that observed objects have meanwhile: their setters tell.
#pragma once

#include <atomic>
#include <vector>

#include <Brindle/Platform/Class.h>

#include "Platform/Foundation/Internal/ObservedKeys.h"

namespace brindle::detail {

/// How a setter changes its key.
enum class SetterKind {
  kValue,
  kInsertObject,
  kInsertObjects,
  kRemoveObject,
  kRemoveObjects,
  kReplaceObject,
  kReplaceObjects,
  kAddMember,  // of sets, from here
  kAddMembers,
  kRemoveMember,
  kRemoveMembers,
  kIntersect,
  kSetMembers,
};

/// A class that stands in for another one: same in everything but that its setters tell.
struct ObservingClass {
  ClassRecord* original;
  ClassRecord* notifying;
};

/// Set in the head of such a class.
inline constexpr std::uint32_t kFlagObservingClass = 1U << 7;

/// What stands behind the class, itself or inherited; null for others.
inline const ObservingClass* observingClass(const ClassRecord* cls) noexcept {
  for (; cls != nullptr; cls = cls->superclass) {
    if ((cls->flags.load(std::memory_order_acquire) & kFlagObservingClass) != 0) {
      return reinterpret_cast<const ObservingClass*>(cls + 2);  // NOLINT(*-reinterpret-cast)
    }
  }
  return nullptr;
}

/// The class that an object with this one reports.
inline ClassRecord* reportedClass(ClassRecord* cls) noexcept {
  while (const ObservingClass* observing = observingClass(cls)) cls = observing->original;
  return cls;
}

/// What observing a key of a class takes.
struct ObservingPlan {
  const ObservingClass* notifying = nullptr;  // null when no setter of the key tells
  std::vector<const ObservedPath*> affecting;
  mutable std::atomic<std::uint64_t> epoch{0};  // of methods, when it was made or found right
};

/// The plan for objects with this class (or the one that stands in for it), made when it is asked
/// for first and after methods changed. Runs the class's own operations.
const ObservingPlan& observingPlan(ClassRecord* cls, const ObservedKey& key);

}  // namespace brindle::detail
