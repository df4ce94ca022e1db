// An enumerator hands out the members of a collection one at a time, until it answers nil.
//
//   NSEnumerator members = array->objectEnumerator();
//   while (id member = members->nextObject()) ...
//
// It keeps its collection. A collection that changed meanwhile raises NSGenericException at the
// next member. For one thread.
#pragma once

#include <Brindle/Platform/NSFastEnumeration.h>

namespace brindle {

class NSArray;

class NSEnumerator : public Interface<NSEnumerator, NSObject>,
                     public NSFastEnumerable<NSEnumerator> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSEnumerator> classPair;

  /// The next member; nil after the last. What subclasses define; raises here.
  id nextObject() const { return send<"nextObject", id>(*this); }
  /// The members still to come.
  BRINDLE_PLATFORM_EXPORT NSArray allObjects() const;
};

}  // namespace brindle
