// Several places of an array at once, as an index set names them.
//
//   NSArray chosen = objectsAtIndexes(colours, NSIndexSet::indexSetWithIndexesInRange({1, 2}));
//   removeObjectsAtIndexes(queue, done);
//
// An index beyond the array raises NSRangeException before anything is changed; a nil index set
// raises NSInvalidArgumentException.
#pragma once

#include <Brindle/Platform/NSIndexSet.h>
#include <Brindle/Platform/NSMutableArray.h>

namespace brindle {

/// The members at the indexes, in ascending order of these.
inline NSArray objectsAtIndexes(const NSArray& array, const NSIndexSet& indexes) {
  return send<"objectsAtIndexes:", NSArray>(array, indexes);
}

/// Inserts the objects, first to last, so that each lies at its index when all are in. Raises
/// NSInvalidArgumentException unless there are as many objects as indexes.
inline void insertObjects(const NSMutableArray& array, const NSArray& objects,
                          const NSIndexSet& indexes) {
  send<"insertObjects:atIndexes:">(array, objects, indexes);
}

/// Removes the members at the indexes.
inline void removeObjectsAtIndexes(const NSMutableArray& array, const NSIndexSet& indexes) {
  send<"removeObjectsAtIndexes:">(array, indexes);
}

/// Puts the objects, first to last, in place of the members at the indexes. Raises
/// NSInvalidArgumentException unless there are as many objects as indexes.
inline void replaceObjectsAtIndexes(const NSMutableArray& array, const NSIndexSet& indexes,
                                    const NSArray& objects) {
  send<"replaceObjectsAtIndexes:withObjects:">(array, indexes, objects);
}

}  // namespace brindle
