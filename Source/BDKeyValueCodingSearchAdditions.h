// Whether an object, or the instances of a class, would find an accessor for a key.
//
//   if (hasSetKey(object, "title"_ns)) setValue(object, "Home"_ns, "title"_ns);
//
// The class's methods, declared properties and instance variables are searched by name,
// superclasses included; nothing found is ever called, and names that nobody has are not
// remembered. In the patterns below, Key is the key with its first UTF-16 unit in upper case. An
// object asks its `class`, so one that is observed answers as it did before. Nil has nothing. Safe
// on any thread.
//
// Three things differ from the search that key-value coding itself makes: accessors that begin with
// an underscore and those that change collections are not looked for, and a declared property can
// be set though it be read-only.
#pragma once

#include <Brindle/BDLibrary.h>
#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/NSString.h>

namespace brindle {

/// Whether instances can be read and set under the key.
inline bool instancesHaveKey(Class cls, const NSString& key) {
  return send<"instancesHaveKey:", bool>(cls, key);
}
/// Whether instances can be read under the key: a declared property; a method getKey, key or isKey;
/// countOfKey with objectInKeyAtIndex:, with keyAtIndexes:, or with enumeratorOfKey and
/// memberOfKey:; or, unless `accessInstanceVariablesDirectly` is NO, a variable _key, _isKey, key
/// or isKey.
inline bool instancesHaveGetKey(Class cls, const NSString& key) {
  return send<"instancesHaveGetKey:", bool>(cls, key);
}
/// Whether instances can be set under the key: a declared property; a method setKey:; or, unless
/// `accessInstanceVariablesDirectly` is NO, a variable _key, _isKey, key or isKey.
inline bool instancesHaveSetKey(Class cls, const NSString& key) {
  return send<"instancesHaveSetKey:", bool>(cls, key);
}
/// Whether instances have a method of that name, own or inherited.
inline bool instancesHaveMethod(Class cls, const NSString& name) {
  return send<"instancesHaveMethod:", bool>(cls, name);
}
/// Whether instances have an instance variable of that name, own or inherited.
inline bool instancesHaveVariable(Class cls, const NSString& name) {
  return send<"instancesHaveVariable:", bool>(cls, name);
}
/// Whether instances have a declared property of that name, own or inherited.
inline bool instancesHaveProperty(Class cls, const NSString& name) {
  return send<"instancesHaveProperty:", bool>(cls, name);
}

/// The same of one object's class.
inline bool hasKey(const id& object, const NSString& key) {
  return send<"hasKey:", bool>(object, key);
}
inline bool hasGetKey(const id& object, const NSString& key) {
  return send<"hasGetKey:", bool>(object, key);
}
inline bool hasSetKey(const id& object, const NSString& key) {
  return send<"hasSetKey:", bool>(object, key);
}
inline bool hasMethod(const id& object, const NSString& name) {
  return send<"hasMethod:", bool>(object, name);
}
inline bool hasVariable(const id& object, const NSString& name) {
  return send<"hasVariable:", bool>(object, name);
}
inline bool hasProperty(const id& object, const NSString& name) {
  return send<"hasProperty:", bool>(object, name);
}

}  // namespace brindle
