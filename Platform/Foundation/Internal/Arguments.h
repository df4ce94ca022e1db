// How methods refuse what they were given: the text names the class and the operation.
#pragma once

#include <string>

#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/Runtime.h>

#include "Platform/Runtime/Internal/Raise.h"

namespace brindle::detail {

/// "-[NSArray objectAtIndex:]: " and what is wrong.
[[noreturn]] inline void raiseIn(const char* name, const id& self, SEL selector,
                                 const std::string& what) {
  const bool isClass = object_isClass(self) != NO;
  const char* cls = class_getName(send<"class", Class>(self));
  raise(name,
        std::string(isClass ? "+[" : "-[") + cls + " " + sel_getName(selector) + "]: " + what);
}

/// Raises NSInvalidArgumentException for nil.
inline void requireArgument(const id& self, SEL selector, const id& argument) {
  if (!argument) raiseIn("NSInvalidArgumentException", self, selector, "nil argument");
}

/// The same for the argument at a place in a row.
inline void requireArgument(const id& self, SEL selector, const id& argument, NSUInteger place) {
  if (argument) return;
  raiseIn("NSInvalidArgumentException", self, selector,
          "nil argument at place " + std::to_string(place));
}

[[noreturn]] inline void raiseBeyondCount(const id& self, SEL selector, NSUInteger index,
                                          NSUInteger count) {
  raiseIn("NSRangeException", self, selector,
          "index " + std::to_string(index) + " beyond the end of " + std::to_string(count));
}

/// Raises NSRangeException for a range that is not wholly in the first `count` places.
inline void requireRangeWithin(const id& self, SEL selector, NSUInteger location, NSUInteger length,
                               NSUInteger count) {
  if (location <= count && length <= count - location) return;
  raiseIn("NSRangeException", self, selector,
          "range {" + std::to_string(location) + ", " + std::to_string(length) +
              "} beyond the end of " + std::to_string(count));
}

}  // namespace brindle::detail
