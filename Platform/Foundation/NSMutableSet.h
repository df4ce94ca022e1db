// A set whose members can be added and taken away. What is said of NSSet holds here; for one thread
// at a time while it changes.
//
// Subclasses override `count`, `member:`, `objectEnumerator`, `addObject:` and `removeObject:`;
// those made of other objects get them by `addObject:`.
#pragma once

#include <Brindle/Platform/NSSet.h>

namespace brindle {

class NSMutableSet : public Interface<NSMutableSet, NSSet> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSMutableSet> classPair;

  NSMutableSet(std::initializer_list<id> objects)
      : NSMutableSet(class_()->setWithObjects(objects.begin(), objects.size())) {}

  template <class Self>
  class ClassSide : public NSSet::ClassSide<Self> {
   public:
    /// An empty one, with room for that many.
    Self setWithCapacity(NSUInteger capacity) const {
      return send<"setWithCapacity:", Self>(*this, capacity);
    }
  };

  static NSMutableSet set() { return class_()->set(); }
  static NSMutableSet setWithCapacity(NSUInteger capacity) {
    return class_()->setWithCapacity(capacity);
  }
  static NSMutableSet setWithObject(const id& object) { return class_()->setWithObject(object); }
  static NSMutableSet setWithObjects(const id* objects, NSUInteger count) {
    return class_()->setWithObjects(objects, count);
  }
  static NSMutableSet setWithArray(const NSArray& array) { return class_()->setWithArray(array); }
  static NSMutableSet setWithSet(const NSSet& other) { return class_()->setWithSet(other); }

  /// Nothing when an equal one is there, which stays.
  void addObject(const id& object) const { send<"addObject:">(*this, object); }
  /// Nothing when there is none.
  void removeObject(const id& object) const { send<"removeObject:">(*this, object); }
  void removeAllObjects() const { send<"removeAllObjects">(*this); }
  void addObjectsFromArray(const NSArray& array) const {
    send<"addObjectsFromArray:">(*this, array);
  }
  /// Adds the members of the other set.
  void unionSet(const NSSet& other) const { send<"unionSet:">(*this, other); }
  /// Removes the members of the other set.
  void minusSet(const NSSet& other) const { send<"minusSet:">(*this, other); }
  /// Removes what is not in the other set; everything for nil.
  void intersectSet(const NSSet& other) const { send<"intersectSet:">(*this, other); }
  /// Takes the members of the other set in place of its own.
  void setSet(const NSSet& other) const { send<"setSet:">(*this, other); }
};

inline NSMutableSet NSSet::mutableCopy() const { return send<"mutableCopy", NSMutableSet>(*this); }

}  // namespace brindle
