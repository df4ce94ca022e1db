// A set: objects without order, no two of them equal, immutable. Holds them strongly; never nil.
//
//   NSSet vowels = {"a"_ns, "e"_ns, "i"_ns, "o"_ns, "u"_ns};
//   if (vowels->containsObject(letter)) ...
//
// Members are found by `hash` and `isEqual:`, and enumerated in the order in which they came. Nil
// as a member raises NSInvalidArgumentException. Subclasses that override `count`, `member:` and
// `objectEnumerator` work with every operation, and with `initWithObjects:count:` the class
// operations make them too. Sets that nobody changes may be used by many threads at once. A member
// that changes the set whenever it is compared raises NSGenericException.
#pragma once

#include <initializer_list>

#include <Brindle/Platform/NSArray.h>
#include <Brindle/Platform/NSEnumerator.h>
#include <Brindle/Platform/NSFastEnumeration.h>
#include <Brindle/Platform/NSObject.h>

namespace brindle {

class NSMutableSet;

class NSSet : public Interface<NSSet, NSObject>, public NSFastEnumerable<NSSet> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSSet> classPair;

  /// The objects in the braces. Of one set alone in the braces some compilers make a copy: write
  /// `setWithObject(a)` for a set that holds it. Empty braces are nil.
  NSSet(std::initializer_list<id> objects)
      : NSSet(class_()->setWithObjects(objects.begin(), objects.size())) {}

  template <class Self>
  class ClassSide : public NSObject::ClassSide<Self> {
   public:
    /// An empty one.
    Self set() const { return send<"set", Self>(*this); }
    Self setWithObject(const id& object) const {
      return send<"setWithObject:", Self>(*this, object);
    }
    /// The `count` objects from `objects` on.
    Self setWithObjects(const id* objects, NSUInteger count) const {
      return send<"setWithObjects:count:", Self>(*this, objects, count);
    }
    /// The members of a collection; none for nil.
    Self setWithArray(const NSArray& array) const {
      return send<"setWithArray:", Self>(*this, array);
    }
    Self setWithSet(const NSSet& other) const { return send<"setWithSet:", Self>(*this, other); }
  };

  static NSSet set() { return class_()->set(); }
  static NSSet setWithObject(const id& object) { return class_()->setWithObject(object); }
  static NSSet setWithObjects(const id* objects, NSUInteger count) {
    return class_()->setWithObjects(objects, count);
  }
  static NSSet setWithArray(const NSArray& array) { return class_()->setWithArray(array); }
  static NSSet setWithSet(const NSSet& other) { return class_()->setWithSet(other); }

  NSSet initWithObjects(const id* objects, NSUInteger count) const {
    return send<"initWithObjects:count:", NSSet>(*this, objects, count);
  }
  NSSet initWithArray(const NSArray& array) const {
    return send<"initWithArray:", NSSet>(*this, array);
  }
  NSSet initWithSet(const NSSet& other) const { return send<"initWithSet:", NSSet>(*this, other); }

  NSUInteger count() const { return send<"count", NSUInteger>(*this); }
  /// The member that is equal to the object; nil when there is none.
  id member(const id& object) const { return send<"member:", id>(*this, object); }
  bool containsObject(const id& object) const {
    return send<"containsObject:", bool>(*this, object);
  }
  /// One of the members; nil when there is none.
  id anyObject() const { return send<"anyObject", id>(*this); }
  NSArray allObjects() const { return send<"allObjects", NSArray>(*this); }
  NSEnumerator objectEnumerator() const { return send<"objectEnumerator", NSEnumerator>(*this); }
  bool isEqualToSet(const NSSet& other) const { return send<"isEqualToSet:", bool>(*this, other); }
  /// Whether every member is in the other set.
  bool isSubsetOfSet(const NSSet& other) const {
    return send<"isSubsetOfSet:", bool>(*this, other);
  }
  /// Whether any member is in the other set.
  bool intersectsSet(const NSSet& other) const {
    return send<"intersectsSet:", bool>(*this, other);
  }

  NSSet setByAddingObject(const id& object) const {
    return send<"setByAddingObject:", NSSet>(*this, object);
  }
  NSSet setByAddingObjectsFromSet(const NSSet& other) const {
    return send<"setByAddingObjectsFromSet:", NSSet>(*this, other);
  }
  NSSet setByAddingObjectsFromArray(const NSArray& array) const {
    return send<"setByAddingObjectsFromArray:", NSSet>(*this, array);
  }
  /// Sends a message to every member.
  void makeObjectsPerformSelector(SEL message) const {
    send<"makeObjectsPerformSelector:">(*this, message);
  }
  void makeObjectsPerformSelector(SEL message, const id& argument) const {
    send<"makeObjectsPerformSelector:withObject:">(*this, message, argument);
  }
  /// The members in a mutable set of their own.
  NSMutableSet mutableCopy() const;
};

}  // namespace brindle
