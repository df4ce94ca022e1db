// What a declared property's attribute string says, taken apart.
//
//   const BDPropertyDetails details = property_getDetails(class_getProperty(cls, "title"));
//   if (details.setter) std::cout << sel_getName(details.setter) << '\n';  // setTitle:
//
// Attributes are comma-separated, one letter each with an optional value, such as
// `T@"NSString",C,N,V_title`. A selector that they do not name follows from the property's name.
// Names found are registered as selectors. Safe on any thread.
#pragma once

#include <Brindle/BDLibrary.h>
#include <Brindle/Platform/Selector.h>
#include <Brindle/Platform/Types.h>

namespace brindle {

/// A property's description. Read-only is a null setter.
struct BDPropertyDetails {
  BOOL isObject;  // an object, or a pointer
  BOOL isCopy;
  BOOL isRetain;
  SEL getter;
  SEL setter;  // null when there is none
};

extern "C" {
/// The property's details. An attribute that nobody knows, or a setter behind "R", raises
/// BDInternalInconsistencyException; an attribute of one letter with something behind it ends the
/// reading, and what was read counts. For null, nothing: NO and null.
BRINDLE_EXPORT BDPropertyDetails property_getDetails(objc_property_t property);
}

}  // namespace brindle
