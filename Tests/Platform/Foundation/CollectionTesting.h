// What the tests of collections share: members that count themselves or do as they are told, and a
// collection of each kind as a client writes one, which overrides the primitives and no more.
#pragma once

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSMutableArray.h>
#include <Brindle/Platform/NSMutableDictionary.h>
#include <Brindle/Platform/NSMutableSet.h>
#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/Runtime.h>

#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "Tests/Platform/Foundation/StringTesting.h"

namespace brindle {

inline constexpr auto kMissing = static_cast<NSUInteger>(NSNotFound);

/// The description.
inline std::string told(const id& object) {
  return std::string(send<"description", NSString>(object));
}

/// "a b c": the descriptions of what `for` sees in a collection or an enumerator.
template <class Collection>
std::string listed(const Collection& collection) {
  std::ostringstream out;
  const char* before = "";
  for (const id& member : collection) {
    out << before << member;
    before = " ";
  }
  return out.str();
}

/// What a `Member` does. Empty functions mean: by number.
struct MemberActions {
  std::function<bool(const id& other)> isEqual;
  std::function<NSUInteger()> hash;
  std::function<void()> end;
  std::function<id()> copy;
  std::function<NSString()> description;
};

/// An object with a number, equal to those of the same number. Counts how many there are.
class Member : public Interface<Member, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Member> classPair;

  static Member with(int number);
  static int living();

  int number() const { return send<"number", int>(*this); }
  /// Ascending by number.
  NSComparisonResult compare(const Member& other) const {
    return send<"compare:", NSComparisonResult>(*this, other);
  }
  /// How often `poke` or `poke:` was sent.
  int pokes() const { return send<"pokes", int>(*this); }
  MemberActions& actions() const;
};

class ClientArray : public Interface<ClientArray, NSArray> {
 public:
  using Interface::Interface;
  static ClassPair<ClientArray> classPair;
  static ClientArray with(std::vector<id> members);
};

class ClientMutableArray : public Interface<ClientMutableArray, NSMutableArray> {
 public:
  using Interface::Interface;
  static ClassPair<ClientMutableArray> classPair;
  static ClientMutableArray with(std::vector<id> members);
};

/// Keeps its entries in the order of the keys' texts. Keys are strings.
class ClientDictionary : public Interface<ClientDictionary, NSDictionary> {
 public:
  using Interface::Interface;
  static ClassPair<ClientDictionary> classPair;
  static ClientDictionary with(std::map<std::string, id> entries);
};

class ClientMutableDictionary : public Interface<ClientMutableDictionary, NSMutableDictionary> {
 public:
  using Interface::Interface;
  static ClassPair<ClientMutableDictionary> classPair;
  static ClientMutableDictionary with(std::map<std::string, id> entries);
};

class ClientSet : public Interface<ClientSet, NSSet> {
 public:
  using Interface::Interface;
  static ClassPair<ClientSet> classPair;
  static ClientSet with(std::vector<id> members);
};

class ClientMutableSet : public Interface<ClientMutableSet, NSMutableSet> {
 public:
  using Interface::Interface;
  static ClassPair<ClientMutableSet> classPair;
  static ClientMutableSet with(std::vector<id> members);
};

/// A subclass that overrides nothing, made at run time.
template <class T>
ClassOf<T> plainSubclass(const char* name) {
  if (const Class known = objc_lookUpClass(name)) return ClassOf<T>(known);
  const Class made = objc_allocateClassPair(T::class_(), name, 0);
  objc_registerClassPair(made);
  return ClassOf<T>(made);
}

}  // namespace brindle
