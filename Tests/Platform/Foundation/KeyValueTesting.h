// What the tests of key-value coding share: classes with accessors and variables of every kind.
#pragma once

#include <string>
#include <vector>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSIndexSet.h>
#include <Brindle/Platform/NSKeyValueCoding.h>
#include <Brindle/Platform/NSNumber.h>

namespace brindle {

/// A name, a number of coins and another one: the ordinary case.
class Owner : public Interface<Owner, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Owner> classPair;

  static Owner with(const NSString& name, NSInteger coins, const id& friend_ = nullptr);
};

/// Accessors by every pattern: each key is named after the pattern that answers it.
class Patterns : public Interface<Patterns, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Patterns> classPair;
};

/// Variables under each of the names, and of each type.
class Variables : public Interface<Variables, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Variables> classPair;
};

/// Relationships: `items` by indexed accessors, one at a time; `blocks` by those that take many;
/// `tags` by accessors of a set; `pool` by those that take many; `plain` and `crowd` by a getter
/// and a setter; `_stored` and `_gathered` in variables. `log` tells which of them were called.
class Shelf : public Interface<Shelf, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Shelf> classPair;

  std::string& log() const;
};

}  // namespace brindle
