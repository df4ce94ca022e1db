// An array: objects in a row, immutable. Holds them strongly; never holds nil.
//
//   NSArray colours = {"red"_ns, "green"_ns, "blue"_ns};
//   for (const id& colour : colours) std::cout << colour << '\n';
//
// An index at or beyond the count raises NSRangeException, nil as a member
// NSInvalidArgumentException. Subclasses that override `count` and `objectAtIndex:` work with every
// operation, and with `initWithObjects:count:` the class operations make them too. Arrays that
// nobody changes may be used by many threads at once.
#pragma once

#include <initializer_list>

#include <Brindle/Platform/Block.h>
#include <Brindle/Platform/NSEnumerator.h>
#include <Brindle/Platform/NSFastEnumeration.h>
#include <Brindle/Platform/NSObjCRuntime.h>
#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/NSRange.h>
#include <Brindle/Platform/NSString.h>

namespace brindle {

class NSMutableArray;

/// Says in which order two objects come.
using NSComparator = Block<NSComparisonResult(const id& a, const id& b)>;

class NSArray : public Interface<NSArray, NSObject>, public NSFastEnumerable<NSArray> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSArray> classPair;

  /// The objects in the braces. Of one array alone in the braces some compilers make a copy: write
  /// `arrayWithObject(a)` for an array that holds it. Empty braces are nil.
  NSArray(std::initializer_list<id> objects)
      : NSArray(arrayWithObjects(objects.begin(), objects.size())) {}

  template <class Self>
  class ClassSide : public NSObject::ClassSide<Self> {
   public:
    /// An empty one.
    Self array() const { return send<"array", Self>(*this); }
    Self arrayWithObject(const id& object) const {
      return send<"arrayWithObject:", Self>(*this, object);
    }
    /// The `count` objects from `objects` on.
    Self arrayWithObjects(const id* objects, NSUInteger count) const {
      return send<"arrayWithObjects:count:", Self>(*this, objects, count);
    }
    /// The members of another array; none for nil.
    Self arrayWithArray(const NSArray& other) const {
      return send<"arrayWithArray:", Self>(*this, other);
    }
  };

  static NSArray array() { return class_()->array(); }
  static NSArray arrayWithObject(const id& object) { return class_()->arrayWithObject(object); }
  static NSArray arrayWithObjects(const id* objects, NSUInteger count) {
    return class_()->arrayWithObjects(objects, count);
  }
  static NSArray arrayWithArray(const NSArray& other) { return class_()->arrayWithArray(other); }

  NSArray initWithObjects(const id* objects, NSUInteger count) const {
    return send<"initWithObjects:count:", NSArray>(*this, objects, count);
  }
  NSArray initWithArray(const NSArray& other) const {
    return send<"initWithArray:", NSArray>(*this, other);
  }

  // --- Members ---------------------------------------------------------------------------------

  NSUInteger count() const { return send<"count", NSUInteger>(*this); }
  id objectAtIndex(NSUInteger index) const { return send<"objectAtIndex:", id>(*this, index); }
  id operator[](NSUInteger index) const { return objectAtIndex(index); }
  /// Nil when there is none.
  id firstObject() const { return send<"firstObject", id>(*this); }
  id lastObject() const { return send<"lastObject", id>(*this); }
  /// By `isEqual:`.
  bool containsObject(const id& object) const {
    return send<"containsObject:", bool>(*this, object);
  }
  /// The first that is equal; NSNotFound when there is none.
  NSUInteger indexOfObject(const id& object) const {
    return send<"indexOfObject:", NSUInteger>(*this, object);
  }
  /// The first that is that very object.
  NSUInteger indexOfObjectIdenticalTo(const id& object) const {
    return send<"indexOfObjectIdenticalTo:", NSUInteger>(*this, object);
  }
  /// The same number of members, each equal to the other's at its place.
  bool isEqualToArray(const NSArray& other) const {
    return send<"isEqualToArray:", bool>(*this, other);
  }
  NSEnumerator objectEnumerator() const { return send<"objectEnumerator", NSEnumerator>(*this); }
  /// From the last to the first.
  NSEnumerator reverseObjectEnumerator() const {
    return send<"reverseObjectEnumerator", NSEnumerator>(*this);
  }

  // --- Made from this one ----------------------------------------------------------------------

  NSArray arrayByAddingObject(const id& object) const {
    return send<"arrayByAddingObject:", NSArray>(*this, object);
  }
  NSArray arrayByAddingObjectsFromArray(const NSArray& other) const {
    return send<"arrayByAddingObjectsFromArray:", NSArray>(*this, other);
  }
  NSArray subarrayWithRange(NSRange range) const {
    return send<"subarrayWithRange:", NSArray>(*this, range);
  }
  /// The members' descriptions, with the separator between them.
  NSString componentsJoinedByString(const NSString& separator) const {
    return send<"componentsJoinedByString:", NSString>(*this, separator);
  }
  /// In ascending order; equal members keep their order. The method takes an object and answers an
  /// NSComparisonResult, as `compare:` does.
  NSArray sortedArrayUsingSelector(SEL comparison) const {
    return send<"sortedArrayUsingSelector:", NSArray>(*this, comparison);
  }
  NSArray sortedArrayUsingComparator(
      const BlockArg<NSComparisonResult(const id& a, const id& b)>& comparison) const {
    return send<"sortedArrayUsingComparator:", NSArray>(*this, comparison);
  }
  /// Sends a message to every member, first to last.
  void makeObjectsPerformSelector(SEL message) const {
    send<"makeObjectsPerformSelector:">(*this, message);
  }
  void makeObjectsPerformSelector(SEL message, const id& argument) const {
    send<"makeObjectsPerformSelector:withObject:">(*this, message, argument);
  }
  /// The members in a mutable array of their own.
  NSMutableArray mutableCopy() const;
};

}  // namespace brindle
