// Collections that stand for a relationship of an object: whatever they are asked, they ask it.
#pragma once

#include <Brindle/Platform/NSArray.h>
#include <Brindle/Platform/NSMutableArray.h>
#include <Brindle/Platform/NSMutableSet.h>
#include <Brindle/Platform/NSSet.h>

#include "Platform/Foundation/Internal/KeyValueAccessors.h"

namespace brindle {

/// By `countOfKey` and `objectInKeyAtIndex:` or `keyAtIndexes:`.
class NSKeyValueArray : public Interface<NSKeyValueArray, NSArray> {
 public:
  using Interface::Interface;
  static ClassPair<NSKeyValueArray> classPair;
};

/// By `countOfKey`, `enumeratorOfKey` and `memberOfKey:`.
class NSKeyValueSet : public Interface<NSKeyValueSet, NSSet> {
 public:
  using Interface::Interface;
  static ClassPair<NSKeyValueSet> classPair;
};

/// By the accessors that insert and remove, in a variable, or by setting the value.
class NSKeyValueMutableArray : public Interface<NSKeyValueMutableArray, NSMutableArray> {
 public:
  using Interface::Interface;
  static ClassPair<NSKeyValueMutableArray> classPair;
};

class NSKeyValueMutableSet : public Interface<NSKeyValueMutableSet, NSMutableSet> {
 public:
  using Interface::Interface;
  static ClassPair<NSKeyValueMutableSet> classPair;
};

namespace detail {

/// An array when there are accessors for one, otherwise a set.
id keyValueCollection(const id& object, const KeyAccessor& accessor);
NSMutableArray keyValueMutableArray(const id& object, const NSString& key);
NSMutableSet keyValueMutableSet(const id& object, const NSString& key);

/// What the accessors of a relationship answer.
NSUInteger countIn(const id& object, const KeyAccessor& accessor);
id memberAt(const id& object, const KeyAccessor& accessor, NSUInteger index);

}  // namespace detail
}  // namespace brindle
