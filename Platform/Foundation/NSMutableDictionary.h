// A dictionary whose entries can be added, replaced and taken away. What is said of NSDictionary
// holds here; for one thread at a time while it changes.
//
// Subclasses override `count`, `objectForKey:`, `keyEnumerator`, `setObject:forKey:` and
// `removeObjectForKey:`; those made of other entries get them by `setObject:forKey:`.
#pragma once

#include <Brindle/Platform/NSDictionary.h>

namespace brindle {

class NSMutableDictionary : public Interface<NSMutableDictionary, NSDictionary> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSMutableDictionary> classPair;

  NSMutableDictionary(std::initializer_list<std::pair<id, id>> entries)
      : NSMutableDictionary(dictionaryWithDictionary(NSDictionary(entries))) {}

  template <class Self>
  class ClassSide : public NSDictionary::ClassSide<Self> {
   public:
    /// An empty one, with room for that many.
    Self dictionaryWithCapacity(NSUInteger capacity) const {
      return send<"dictionaryWithCapacity:", Self>(*this, capacity);
    }
  };

  static NSMutableDictionary dictionary() { return class_()->dictionary(); }
  static NSMutableDictionary dictionaryWithCapacity(NSUInteger capacity) {
    return class_()->dictionaryWithCapacity(capacity);
  }
  static NSMutableDictionary dictionaryWithObject(const id& object, const id& key) {
    return class_()->dictionaryWithObject(object, key);
  }
  static NSMutableDictionary dictionaryWithObjects(const NSArray& objects, const NSArray& keys) {
    return class_()->dictionaryWithObjects(objects, keys);
  }
  static NSMutableDictionary dictionaryWithObjects(const id* objects, const id* keys,
                                                   NSUInteger count) {
    return class_()->dictionaryWithObjects(objects, keys, count);
  }
  static NSMutableDictionary dictionaryWithDictionary(const NSDictionary& other) {
    return class_()->dictionaryWithDictionary(other);
  }

  /// Replaces the value of an equal key, which stays; otherwise keeps a copy of the key.
  void setObject(const id& object, const id& key) const {
    send<"setObject:forKey:">(*this, object, key);
  }
  /// Nothing when there is none.
  void removeObjectForKey(const id& key) const { send<"removeObjectForKey:">(*this, key); }
  void removeObjectsForKeys(const NSArray& keys) const {
    send<"removeObjectsForKeys:">(*this, keys);
  }
  void removeAllObjects() const { send<"removeAllObjects">(*this); }
  void addEntriesFromDictionary(const NSDictionary& other) const {
    send<"addEntriesFromDictionary:">(*this, other);
  }
  /// Takes the entries of the other dictionary in place of its own.
  void setDictionary(const NSDictionary& other) const { send<"setDictionary:">(*this, other); }
};

inline NSMutableDictionary NSDictionary::mutableCopy() const {
  return send<"mutableCopy", NSMutableDictionary>(*this);
}

}  // namespace brindle
