// NSProxy: the root of objects that stand for others.
//
// A proxy answers itself what concerns memory and identity (`retain`, `release`, `autorelease`,
// `retainCount`, `self`, `class`, `superclass`, `isProxy`, `zone`, `hash`, `isEqual:`,
// `description`, `debugDescription`, `performSelector:` and its like, `dealloc`) and forwards
// everything else, `isKindOfClass:`, `respondsToSelector:` and `conformsToProtocol:` included.
// NSObject's categories are not on it, and it has no `init`. A subclass overrides
// `methodSignatureForSelector:` and `forwardInvocation:`, which raise here.
#pragma once

#include <Brindle/Platform/NSInvocation.h>

namespace brindle {

class NSProxy : public Interface<NSProxy, id> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSProxy> classPair;

  /// Class operations of proxies.
  template <class Self>
  class ClassSide : public Class {
   public:
    /// A new proxy. Zeroed fields, one owner.
    Self alloc() const { return send<"alloc", Self>(*this); }
    /// The same; the zone is ignored.
    Self allocWithZone(NSZone* zone) const { return send<"allocWithZone:", Self>(*this, zone); }
    Class superclass() const { return send<"superclass", Class>(*this); }
  };
};

}  // namespace brindle
