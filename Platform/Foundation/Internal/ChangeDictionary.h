// What observers are handed: a dictionary of at most five entries, without a table.
#pragma once

#include "Platform/Foundation/Internal/ObservedChange.h"

namespace brindle::detail {

struct ChangeContents {
  NSKeyValueChange kind = NSKeyValueChangeSetting;
  bool prior = false;
  CapturedValue before;
  CapturedValue after;
  NSIndexSet indexes;
};

/// A new immutable dictionary. Its values are boxed when they are asked for.
NSDictionary changeDictionary(ChangeContents contents);

/// The end of the last reference that this library has to it. When nobody else has one, its memory
/// serves this thread's next change.
void reuseChangeDictionary(id dictionary);

}  // namespace brindle::detail
