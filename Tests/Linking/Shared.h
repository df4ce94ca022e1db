// A class in a header that two libraries include: each has its own copy of it.
#pragma once

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSObject.h>

namespace shared {

using namespace brindle;  // NOLINT: the whole header is a definition

inline int awakened = 0;

class Common : public Interface<Common, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Common> classPair;
};

inline constexpr auto kAwake = method<"awake">([](const Common&) { ++awakened; });
inline constexpr MethodDefinition kMethods[] = {kAwake};
inline constexpr ClassDefinition kDefinition{.name = "Common", .methods = kMethods};

}  // namespace shared
