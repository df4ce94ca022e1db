// An array whose members can be added, replaced and taken away. What is said of NSArray holds here;
// for one thread at a time while it changes.
//
// Subclasses override `count`, `objectAtIndex:`, `insertObject:atIndex:`, `removeObjectAtIndex:`,
// `addObject:`, `removeLastObject` and `replaceObjectAtIndex:withObject:`; those made of
// other objects get them by `addObject:`.
#pragma once

#include <Brindle/Platform/NSArray.h>

namespace brindle {

class NSMutableArray : public Interface<NSMutableArray, NSArray> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSMutableArray> classPair;

  NSMutableArray(std::initializer_list<id> objects)
      : NSMutableArray(class_()->arrayWithObjects(objects.begin(), objects.size())) {}

  template <class Self>
  class ClassSide : public NSArray::ClassSide<Self> {
   public:
    /// An empty one, with room for that many.
    Self arrayWithCapacity(NSUInteger capacity) const {
      return send<"arrayWithCapacity:", Self>(*this, capacity);
    }
  };

  static NSMutableArray array() { return class_()->array(); }
  static NSMutableArray arrayWithCapacity(NSUInteger capacity) {
    return class_()->arrayWithCapacity(capacity);
  }
  static NSMutableArray arrayWithObject(const id& object) {
    return class_()->arrayWithObject(object);
  }
  static NSMutableArray arrayWithObjects(const id* objects, NSUInteger count) {
    return class_()->arrayWithObjects(objects, count);
  }
  static NSMutableArray arrayWithArray(const NSArray& other) {
    return class_()->arrayWithArray(other);
  }

  void addObject(const id& object) const { send<"addObject:">(*this, object); }
  /// Members from the index on move up; the count is the end.
  void insertObject(const id& object, NSUInteger index) const {
    send<"insertObject:atIndex:">(*this, object, index);
  }
  void replaceObjectAtIndex(NSUInteger index, const id& object) const {
    send<"replaceObjectAtIndex:withObject:">(*this, index, object);
  }
  void removeObjectAtIndex(NSUInteger index) const { send<"removeObjectAtIndex:">(*this, index); }
  /// Raises NSRangeException when there is none.
  void removeLastObject() const { send<"removeLastObject">(*this); }
  /// Every member that is equal; nothing when there is none.
  void removeObject(const id& object) const { send<"removeObject:">(*this, object); }
  /// Every place of that very object.
  void removeObjectIdenticalTo(const id& object) const {
    send<"removeObjectIdenticalTo:">(*this, object);
  }
  void removeObjectsInRange(NSRange range) const { send<"removeObjectsInRange:">(*this, range); }
  /// Every member that is equal to one of the array's.
  void removeObjectsInArray(const NSArray& other) const {
    send<"removeObjectsInArray:">(*this, other);
  }
  void removeAllObjects() const { send<"removeAllObjects">(*this); }
  void addObjectsFromArray(const NSArray& other) const {
    send<"addObjectsFromArray:">(*this, other);
  }
  /// Takes the members of the other array in place of its own.
  void setArray(const NSArray& other) const { send<"setArray:">(*this, other); }
  void exchangeObjectAtIndex(NSUInteger a, NSUInteger b) const {
    send<"exchangeObjectAtIndex:withObjectAtIndex:">(*this, a, b);
  }
  /// In ascending order; equal members keep their order.
  void sortUsingSelector(SEL comparison) const { send<"sortUsingSelector:">(*this, comparison); }
  void sortUsingComparator(
      const BlockArg<NSComparisonResult(const id& a, const id& b)>& comparison) const {
    send<"sortUsingComparator:">(*this, comparison);
  }
};

inline NSMutableArray NSArray::mutableCopy() const {
  return send<"mutableCopy", NSMutableArray>(*this);
}

}  // namespace brindle
