// Keys and key paths of observing, each text once, so that they are compared as pointers.
#pragma once

#include <string>

#include <Brindle/Platform/NSString.h>

namespace brindle::detail {

/// One key. Lives for ever.
struct ObservedKey {
  NSString name;
  std::string text;         // UTF-8
  std::string capitalized;  // the first letter, when it is a Latin one
  // The getters that reading by key tries first, once the key was read.
  mutable std::atomic<SEL> getters[3];
};

/// A key path: its first key and the rest. Lives for ever. Paths share their ends, so that a long
/// one takes no more than its keys.
struct ObservedPath {
  NSString text;  // of a path that was asked for, and of what begins with an operator; else nil
  const ObservedKey* key;
  const ObservedPath* rest;  // null behind the last key
};

/// The path of that text; null for nil and empty text.
const ObservedPath* observedPath(const NSString& text);
/// The text of any path, the rest of another one too.
NSString textOfPath(const ObservedPath& path);
/// The whole text as one key; null for nil.
const ObservedKey* observedKey(const NSString& text);

/// The key's selector, such as "set" + Key + ":", if anybody has registered it; else null.
SEL keySelector(const ObservedKey& key, const char* before, const char* behind);

}  // namespace brindle::detail
