// Classes with one instance.
//
//   class Settings : public Interface<Settings, NSObject> { ... };
//   constexpr ProtocolRecord* kProtocols[] = {&kBDSingleton};     // in its definition
//
//   Settings::alloc()->init() == Settings::alloc()->init()        // always the same object
//
// A class that adopts the protocol, itself or by inheritance, has exactly one instance. The first
// allocation makes and initialises it; every allocation answers it. From then on its `init` answers
// the receiver and does nothing more. Only `init` does: other initialisers run again each time they
// are sent. The instance is never deallocated.
//
// A subclass has an instance of its own. It inherits the `init` that does nothing, unless it
// defines its own or was allocated first.
//
// Allocation may come from any thread: the instance is made once, under the class's monitor.
#pragma once

#include <Brindle/BDLibrary.h>
#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/Protocol.h>

namespace brindle {

/// The protocol BDSingleton: a mark without operations.
BRINDLE_EXPORT extern ProtocolRecord kBDSingleton;

/// Whether the class adopts BDSingleton, itself or by inheritance. The class answers it once and
/// remembers it: a protocol that is added to the class after that comes too late. False for nil.
inline bool hasSingletonProtocol(Class cls) { return send<"hasSingletonProtocol", bool>(cls); }

}  // namespace brindle
