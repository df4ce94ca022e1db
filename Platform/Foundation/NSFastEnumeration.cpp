#include <Brindle/Platform/NSFastEnumeration.h>

#include <cstdio>

#include <Brindle/Platform/Runtime.h>

#include "Platform/Runtime/Internal/Raise.h"

namespace brindle {

constinit ProtocolRecord kNSFastEnumeration{"NSFastEnumeration"};

void detail::raiseMutated(const id& collection) {
  char address[32];
  std::snprintf(address, sizeof address, "%p", static_cast<const void*>(collection.record()));
  raise("NSGenericException", std::string("Collection <") +
                                  class_getName(send<"class", Class>(collection)) + ": " + address +
                                  "> was mutated while being enumerated.");
}

}  // namespace brindle
