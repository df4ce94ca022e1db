// A dictionary: values under keys, immutable. Holds both strongly; never holds nil.
//
//   NSDictionary ages = {{"Ann"_ns, NSNumber(31)}, {"Bo"_ns, NSNumber(27)}};
//   for (const id& name : ages) std::cout << name << ' ' << ages->objectForKey(name) << '\n';
//
// Keys are copied when they are put in, and found by `hash` and `isEqual:`. Nil as a key or value
// raises NSInvalidArgumentException. Keys are enumerated in the order in which they came.
// Subclasses that override `count`, `objectForKey:` and `keyEnumerator` work with every operation,
// and with `initWithObjects:forKeys:count:` the class operations make them too. Dictionaries that
// nobody changes may be used by many threads at once. A key that changes the dictionary whenever it
// is compared raises NSGenericException.
#pragma once

#include <initializer_list>
#include <utility>

#include <Brindle/Platform/NSArray.h>
#include <Brindle/Platform/NSEnumerator.h>
#include <Brindle/Platform/NSFastEnumeration.h>
#include <Brindle/Platform/NSObject.h>

namespace brindle {

class NSMutableDictionary;

class NSDictionary : public Interface<NSDictionary, NSObject>,
                     public NSFastEnumerable<NSDictionary> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSDictionary> classPair;

  /// The entries in the braces. Of equal keys the last counts.
  BRINDLE_PLATFORM_EXPORT NSDictionary(std::initializer_list<std::pair<id, id>> entries);

  template <class Self>
  class ClassSide : public NSObject::ClassSide<Self> {
   public:
    /// An empty one.
    Self dictionary() const { return send<"dictionary", Self>(*this); }
    Self dictionaryWithObject(const id& object, const id& key) const {
      return send<"dictionaryWithObject:forKey:", Self>(*this, object, key);
    }
    /// The objects of one array under the keys of the other; arrays of different lengths raise
    /// NSInvalidArgumentException.
    Self dictionaryWithObjects(const NSArray& objects, const NSArray& keys) const {
      return send<"dictionaryWithObjects:forKeys:", Self>(*this, objects, keys);
    }
    Self dictionaryWithObjects(const id* objects, const id* keys, NSUInteger count) const {
      return send<"dictionaryWithObjects:forKeys:count:", Self>(*this, objects, keys, count);
    }
    /// The entries of another dictionary; none for nil.
    Self dictionaryWithDictionary(const NSDictionary& other) const {
      return send<"dictionaryWithDictionary:", Self>(*this, other);
    }
  };

  static NSDictionary dictionary() { return class_()->dictionary(); }
  static NSDictionary dictionaryWithObject(const id& object, const id& key) {
    return class_()->dictionaryWithObject(object, key);
  }
  static NSDictionary dictionaryWithObjects(const NSArray& objects, const NSArray& keys) {
    return class_()->dictionaryWithObjects(objects, keys);
  }
  static NSDictionary dictionaryWithObjects(const id* objects, const id* keys, NSUInteger count) {
    return class_()->dictionaryWithObjects(objects, keys, count);
  }
  static NSDictionary dictionaryWithDictionary(const NSDictionary& other) {
    return class_()->dictionaryWithDictionary(other);
  }

  NSDictionary initWithObjects(const id* objects, const id* keys, NSUInteger count) const {
    return send<"initWithObjects:forKeys:count:", NSDictionary>(*this, objects, keys, count);
  }
  NSDictionary initWithDictionary(const NSDictionary& other) const {
    return send<"initWithDictionary:", NSDictionary>(*this, other);
  }

  NSUInteger count() const { return send<"count", NSUInteger>(*this); }
  /// Nil when there is none.
  id objectForKey(const id& key) const { return send<"objectForKey:", id>(*this, key); }
  id operator[](const id& key) const { return objectForKey(key); }
  NSArray allKeys() const { return send<"allKeys", NSArray>(*this); }
  /// In the order of the keys.
  NSArray allValues() const { return send<"allValues", NSArray>(*this); }
  /// The keys of the values that are equal to the object.
  NSArray allKeysForObject(const id& object) const {
    return send<"allKeysForObject:", NSArray>(*this, object);
  }
  /// For each key its value, or the marker where there is none.
  NSArray objectsForKeys(const NSArray& keys, const id& notFoundMarker) const {
    return send<"objectsForKeys:notFoundMarker:", NSArray>(*this, keys, notFoundMarker);
  }
  NSEnumerator keyEnumerator() const { return send<"keyEnumerator", NSEnumerator>(*this); }
  /// Of the values.
  NSEnumerator objectEnumerator() const { return send<"objectEnumerator", NSEnumerator>(*this); }
  /// The same keys with equal values.
  bool isEqualToDictionary(const NSDictionary& other) const {
    return send<"isEqualToDictionary:", bool>(*this, other);
  }
  /// The entries in a mutable dictionary of their own.
  NSMutableDictionary mutableCopy() const;
};

}  // namespace brindle
