// A class as text: its operations and whose code they are, its properties and variables, and what
// was changed in it, when, and from where.
#pragma once

#include <string>

#include <Brindle/Platform/Class.h>

namespace tool {

/// Some lines for people.
std::string describeClass(brindle::Class cls);
/// One JSON object in one line: name, superclass, instanceSize, image, protocols, instanceMethods
/// and classMethods (selector, types, image), properties (name, attributes), variables (name, type,
/// offset) and changes (when, selector, classMethod, kind, image, symbol, code).
std::string describeClassAsJson(brindle::Class cls);

/// Either of the two, with a line's end; a line that says so when there is no class of the name.
std::string listing(const char* className, bool json);

}  // namespace tool
