// Protocols: named promises that a class can adopt and be asked about.
//
// A protocol is a constant with a C++ name of its own, listed in the `protocols` of the classes
// that adopt it:
//
//   extern ProtocolRecord kDrawing;                 // header
//   constinit ProtocolRecord kDrawing{"Drawing"};   // source
//   if (view->conformsToProtocol(kDrawing)) ...
//
// Only its name and the protocols it includes are recorded; what its operations are is documented
// where it stands.
#pragma once

#include <initializer_list>
#include <vector>

#include <Brindle/Platform/Class.h>
#include <Brindle/Platform/NSObject.h>

namespace brindle {

/// A protocol as an object; nil by default. Protocols never die.
class Protocol : public Interface<Protocol, NSObject> {
 public:
  using Interface::Interface;
  Protocol(ProtocolRecord& record) noexcept;  // NOLINT: a record is a protocol
  BRINDLE_PLATFORM_EXPORT static ClassPair<Protocol> classPair;
};

/// The memory of a protocol: constant data.
struct ProtocolRecord : ObjectRecord {
  static constexpr std::size_t kMaximalIncluded = 4;
  const char* name;
  ProtocolRecord* included[kMaximalIncluded] = {};

  constexpr explicit ProtocolRecord(const char* protocolName,
                                    std::initializer_list<ProtocolRecord*> others = {}) noexcept
      : ObjectRecord(&Protocol::classPair.cls, detail::kCountImmortal, 0), name(protocolName) {
    std::size_t i = 0;
    for (ProtocolRecord* other : others) included[i++] = other;
  }
};

inline Protocol::Protocol(ProtocolRecord& record) noexcept : Protocol(Adopt{}, &record) {}

/// The protocol's name; null for nil.
BRINDLE_PLATFORM_EXPORT const char* protocol_getName(const Protocol& protocol);
/// Whether the protocol is the other one or includes it, to any depth.
BRINDLE_PLATFORM_EXPORT BOOL protocol_conformsToProtocol(const Protocol& protocol,
                                                         const Protocol& other);
/// Whether the class itself (not its superclasses) adopts the protocol or one that includes it.
BRINDLE_PLATFORM_EXPORT BOOL class_conformsToProtocol(Class cls, const Protocol& protocol);
/// The protocols that the class itself adopts; not its superclasses', nor those included in others.
BRINDLE_PLATFORM_EXPORT std::vector<Protocol> class_copyProtocolList(Class cls);
/// Adds a protocol to a class. NO when the class itself adopts it already.
BRINDLE_PLATFORM_EXPORT BOOL class_addProtocol(Class cls, const Protocol& protocol);
/// The protocol of that name, adopted by any class that is attached; nil when there is none.
BRINDLE_PLATFORM_EXPORT Protocol objc_getProtocol(const char* name);

inline bool id::conformsToProtocol(const Protocol& protocol) const {
  return send<"conformsToProtocol:", bool>(*this, protocol);
}
template <class Self>
bool NSObject::ClassSide<Self>::conformsToProtocol(const Protocol& protocol) const {
  return send<"conformsToProtocol:", bool>(*this, protocol);
}

}  // namespace brindle
