// Key-value coding: the values of an object under their names, which may be known only while the
// program runs.
//
//   setValue(account, NSNumber(120), "balance"_ns);            // sends setBalance:
//   const id city = valueForKeyPath(account, "owner.address.city"_ns);
//   const id total = valueForKeyPath(accounts, "@sum.balance"_ns);
//
// A key finds an accessor method by its name, or else an instance variable. Numbers, truth values
// and structures travel in NSNumber and NSValue. A method that is added, replaced or swizzled is
// found at once. Any object answers these messages; a class overrides `valueForUndefinedKey:`,
// `setValue:forUndefinedKey:`, `setNilValueForKey:` and the class operation
// `accessInstanceVariablesDirectly` (YES) to say otherwise. Nil as a key raises
// NSInvalidArgumentException. As safe on several threads as the accessors that are found.
#pragma once

#include <Brindle/Platform/NSArray.h>
#include <Brindle/Platform/NSDictionary.h>
#include <Brindle/Platform/NSError.h>
#include <Brindle/Platform/NSMutableArray.h>
#include <Brindle/Platform/NSMutableSet.h>
#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/NSString.h>

namespace brindle {

extern "C" {
/// What an NSUndefinedKeyException says of itself: the object, and the key.
BRINDLE_PLATFORM_EXPORT extern const NSString NSTargetObjectUserInfoKey;
BRINDLE_PLATFORM_EXPORT extern const NSString NSUnknownUserInfoKey;
}

// --- Reading -------------------------------------------------------------------------------------

/// The value under the key: of the first of these that there is, for a key `name`.
/// - a method `getName`, `name`, `isName`, `_getName`, `_name`;
/// - `countOfName` with `objectInNameAtIndex:` or `nameAtIndexes:`: an array that asks them;
/// - `countOfName`, `enumeratorOfName` and `memberOfName:`: a set that asks them;
/// - a variable `_name`, `_isName`, `name`, `isName`, unless the class forbids it.
/// Otherwise the object is sent `valueForUndefinedKey:`, which raises NSUndefinedKeyException.
/// An array answers the values of its members, with NSNull for nil; a set those that are not nil; a
/// dictionary the object under the key. Nil for nil.
inline id valueForKey(const id& object, const NSString& key) {
  return send<"valueForKey:", id>(object, key);
}

/// The same in the type that the caller expects; raises NSInvalidArgumentException for another one.
template <Reference T>
T valueForKey(const id& object, const NSString& key) {
  return cast<T>(valueForKey(object, key));
}

/// The value of the value ...: "owner.address.city". In an array or a set, `@count` is their
/// number, and with a further path, of the members' values there: `@sum`, `@avg` (numbers, where
/// nil counts as 0), `@min`, `@max` (by `compare:`, without nil), `@unionOfObjects`,
/// `@distinctUnionOfObjects`, and, of a collection of collections, `@unionOfArrays`,
/// `@distinctUnionOfArrays`, `@distinctUnionOfSets`. The unions refuse nil.
inline id valueForKeyPath(const id& object, const NSString& keyPath) {
  return send<"valueForKeyPath:", id>(object, keyPath);
}
template <Reference T>
T valueForKeyPath(const id& object, const NSString& keyPath) {
  return cast<T>(valueForKeyPath(object, keyPath));
}

/// The values under the keys, NSNull where that is nil.
inline NSDictionary dictionaryWithValuesForKeys(const id& object, const NSArray& keys) {
  return send<"dictionaryWithValuesForKeys:", NSDictionary>(object, keys);
}

// --- Writing -------------------------------------------------------------------------------------

/// Sets the value by a method `setName:`, `_setName:`, `setIsName:` or in a variable, as above; the
/// variable's observers are told. Otherwise sends `setValue:forUndefinedKey:`, which raises. Nil
/// where a number or structure is wanted sends `setNilValueForKey:`, which raises
/// NSInvalidArgumentException. An array or set passes it to its members; a mutable dictionary takes
/// the object, or for nil removes what is there.
inline void setValue(const id& object, const id& value, const NSString& key) {
  send<"setValue:forKey:">(object, value, key);
}

/// Sets the value under the path's last key, in the object that the keys before it lead to.
inline void setValueForKeyPath(const id& object, const id& value, const NSString& keyPath) {
  send<"setValue:forKeyPath:">(object, value, keyPath);
}

/// Sets each value under its key; NSNull sets nil.
inline void setValuesForKeysWithDictionary(const id& object, const NSDictionary& values) {
  send<"setValuesForKeysWithDictionary:">(object, values);
}

/// Whether the value may be set: what the object's own `validateName:error:` says, which may put
/// another value or an error in their places. Yes when it has none.
inline bool validateValue(const id& object, id* value, const NSString& key, NSError* error) {
  return send<"validateValue:forKey:error:", bool>(object, value, key, error);
}
inline bool validateValueForKeyPath(const id& object, id* value, const NSString& keyPath,
                                    NSError* error) {
  return send<"validateValue:forKeyPath:error:", bool>(object, value, keyPath, error);
}

// --- Relationships -------------------------------------------------------------------------------

/// An array that reads and changes the values under the key, whenever it is used: by
/// `insertObject:inNameAtIndex:` or `insertName:atIndexes:` and `removeObjectFromNameAtIndex:` or
/// `removeNameAtIndexes:` (and `replaceObjectInNameAtIndex:withObject:` or
/// `replaceNameAtIndexes:withName:`); or else in the array of a variable, whose observers are told;
/// or else by setting another array. Nil reads as an empty one.
inline NSMutableArray mutableArrayValueForKey(const id& object, const NSString& key) {
  return send<"mutableArrayValueForKey:", NSMutableArray>(object, key);
}
inline NSMutableArray mutableArrayValueForKeyPath(const id& object, const NSString& keyPath) {
  return send<"mutableArrayValueForKeyPath:", NSMutableArray>(object, keyPath);
}

/// The same as a set: by `addNameObject:` or `addName:` and `removeNameObject:` or `removeName:`
/// (and `intersectName:`, `setName:`), in a variable's set, or by setting another set.
inline NSMutableSet mutableSetValueForKey(const id& object, const NSString& key) {
  return send<"mutableSetValueForKey:", NSMutableSet>(object, key);
}
inline NSMutableSet mutableSetValueForKeyPath(const id& object, const NSString& keyPath) {
  return send<"mutableSetValueForKeyPath:", NSMutableSet>(object, keyPath);
}

}  // namespace brindle
