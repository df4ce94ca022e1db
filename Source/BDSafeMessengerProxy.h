// Messages that the receiver need not understand.
//
//   NSString title = safely(thing)->title();       // nil when `thing` has no title
//   safely(delegate)->windowDidClose(window);      // nothing when it does not care
//
//   NSInteger seven = 7;
//   const BDFallback fallback = BDMakeFallback(Counter::class_(), &seven);
//   safely(thing, fallback)->count();              // 7 when `thing` does not count
//
// A safe messenger is a proxy: what its target answers goes to the target, anything else is
// swallowed and answers zero, or the fallback's value. It asks the target anew for each message,
// and owns it. It has no lock: it is as safe on threads as its target.
#pragma once

#include <Brindle/BDLibrary.h>
#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/NSProxy.h>

namespace brindle {

/// What a message that the target does not answer gives. Nothing in it is retained: signature and
/// buffer live as long as the messengers made with them. `BDFallback{}` is the empty one.
struct BDFallback {
  /// Who knows the types of such a message: an object, or a class for what its instances answer.
  /// Null, or one that does not know them either, takes any message for one that answers an object.
  ObjectRecord* signature;
  /// Where the result lies, in the type that the signature says; null for zero.
  void* value;
};
template <>
struct StructEncoding<BDFallback> {
  static constexpr FixedString encoding{"{BDFallback=@^v}"};
  static constexpr FixedString wireCode{"{@p}"};
};

extern "C" {
BRINDLE_EXPORT BDFallback BDMakeFallback(ObjectRecord* signature, void* value);
BRINDLE_EXPORT ObjectRecord* BDMakeUncollectable(ObjectRecord* object);
}

/// A fallback of these two. A reference in the buffer counts as any other result:
/// `NSString none = "none"_ns; BDMakeFallback(NSObject::class_(), &none)`.
inline BDFallback BDMakeFallback(const id& signature, void* value) {
  return BDMakeFallback(signature.record(), value);
}

/// The same object, its count unchanged: retained where no collector looks, and released here.
/// There is no collector, so nothing else happens. Nil for nil.
template <Reference T>
T BDMakeUncollectable(const T& object) {
  return borrow<T>(BDMakeUncollectable(object.record()));
}

/// Passes on what its target answers. `class` and what else a proxy answers itself concerns the
/// messenger; `isKindOfClass:` and `respondsToSelector:` are passed on.
class BDSafeMessengerProxy : public Interface<BDSafeMessengerProxy, NSProxy> {
 public:
  using Interface::Interface;
  BRINDLE_EXPORT static ClassPair<BDSafeMessengerProxy> classPair;

  template <class Self>
  class ClassSide : public NSProxy::ClassSide<Self> {
   public:
    Self safeMessengerWithTarget(const id& target, BDFallback fallback) const {
      return send<"safeMessengerWithTarget:fallback:", Self>(*this, target, fallback);
    }
  };

  /// A messenger that owns the target. A nil target answers nothing, so that every message is
  /// swallowed.
  static BDSafeMessengerProxy safeMessengerWithTarget(const id& target, BDFallback fallback) {
    return class_()->safeMessengerWithTarget(target, fallback);
  }
};

/// A messenger for the object, to be used as the object itself would be; unanswered messages give
/// zero. Nil for nil, which swallows every message anyway.
template <Reference T>
T safely(const T& object) {
  return uncheckedCast<T>(send<"safely", id>(object));
}

/// The same, with a value for unanswered messages.
template <Reference T>
T safely(const T& object, BDFallback fallback) {
  return uncheckedCast<T>(send<"safelyWithFallback:", id>(object, fallback));
}

}  // namespace brindle
