// What key-value coding tells observers of when it changes a variable itself.
#pragma once

#include <Brindle/Platform/NSIndexSet.h>
#include <Brindle/Platform/NSKeyValueObserving.h>
#include <Brindle/Platform/NSSet.h>
#include <Brindle/Platform/NSString.h>

namespace brindle::detail {

/// Whether the object's class has observers told of direct changes.
inline bool tellsByItself(const id& object, const NSString& key) {
  return automaticallyNotifiesObserversForKey(classOf(object), key);
}

/// Makes the change, with the object's observers told before and after.
template <class Change>
void changeValue(const id& object, const NSString& key, const Change& change) {
  if (!tellsByItself(object, key)) return change();
  willChangeValueForKey(object, key);
  change();
  didChangeValueForKey(object, key);
}

template <class Change>
void changeValues(const id& object, NSKeyValueChange kind, const NSIndexSet& indexes,
                  const NSString& key, const Change& change) {
  if (!tellsByItself(object, key)) return change();
  willChange(object, kind, indexes, key);
  change();
  didChange(object, kind, indexes, key);
}

template <class Change>
void changeMembers(const id& object, const NSString& key, NSKeyValueSetMutationKind kind,
                   const NSSet& members, const Change& change) {
  if (!tellsByItself(object, key)) return change();
  willChangeValueForKey(object, key, kind, members);
  change();
  didChangeValueForKey(object, key, kind, members);
}

}  // namespace brindle::detail
