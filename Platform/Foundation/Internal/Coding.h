// How the library's own classes are archived: what the coders and the classes agree on.
#pragma once

#include <Brindle/Platform/NSArray.h>
#include <Brindle/Platform/NSCoder.h>

namespace brindle::detail {

/// Writes objects, none of them nil, under one key.
inline void encodeObjects(const NSCoder& coder, const NSArray& objects, const NSString& key) {
  send<"_encodeArrayOfObjects:forKey:">(coder, objects, key);
}

/// Reads them; nil when they are not there, or one of them is nil.
inline NSArray decodeObjects(const NSCoder& coder, const NSString& key) {
  return send<"_decodeArrayOfObjectsForKey:", NSArray>(coder, key);
}

/// Raises NSInvalidArchiveOperationException or NSInvalidUnarchiveOperationException, for an object
/// graph that is nested more deeply than the thread's stack allows.
void requireStack(const char* exceptionName);

}  // namespace brindle::detail
