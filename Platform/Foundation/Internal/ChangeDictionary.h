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

}  // namespace brindle::detail
