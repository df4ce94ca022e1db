// NSObject, the root of nearly every class: making and ending objects, asking what they are, and
// sending messages whose names are known only while the program runs.
//
//   NSObject object = NSObject::alloc()->init();
//   if (isa<NSString>(object)) ...
//
// Every operation here may be called on any thread; an object's own methods are as safe as its
// class says. Objects are retained and released by their references; nobody sends `retain`.
#pragma once

#include <functional>
#include <ostream>

#include <Brindle/Platform/Interface.h>

namespace brindle {

class Protocol;
class NSString;
class NSInvocation;
class NSMethodSignature;

class NSObject : public Interface<NSObject, id> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSObject> classPair;

  /// Class operations that every class has. `Self` is the receiver's reference type.
  template <class Self>
  class ClassSide : public Class {
   public:
    /// A new object of the receiving class, still to be initialised.
    Self alloc() const { return send<"alloc", Self>(*this); }
    /// The same; the zone is ignored.
    Self allocWithZone(NSZone* zone) const { return send<"allocWithZone:", Self>(*this, zone); }
    /// `alloc` and `init`.
    Self new_() const { return send<"new", Self>(*this); }
    /// Nil for a root class.
    Class superclass() const { return send<"superclass", Class>(*this); }
    /// Whether the receiver is `other` or inherits from it.
    bool isSubclassOfClass(Class other) const {
      return send<"isSubclassOfClass:", bool>(*this, other);
    }
    /// Whether instances of the receiver answer the selector.
    bool instancesRespondToSelector(SEL s) const {
      return send<"instancesRespondToSelector:", bool>(*this, s);
    }
    /// Whether the receiver, or a superclass, adopts the protocol.
    bool conformsToProtocol(const Protocol& protocol) const;
    /// The code that an instance runs for the selector; a forwarding entry when there is none.
    IMP instanceMethodForSelector(SEL s) const {
      return send<"instanceMethodForSelector:", IMP>(*this, s);
    }
    /// The types of an instance operation; nil when instances do not answer the selector.
    NSMethodSignature instanceMethodSignatureForSelector(SEL s) const;
  };

  /// The superclass of its class.
  Class superclass() const { return send<"superclass", Class>(*this); }
  /// The code that the object runs for the selector; a forwarding entry when there is none.
  IMP methodForSelector(SEL s) const { return send<"methodForSelector:", IMP>(*this, s); }
  /// The types of a message; nil when the object does not answer it.
  NSMethodSignature methodSignatureForSelector(SEL s) const;
  /// Override to answer messages that the class has no method for. Raises here.
  void forwardInvocation(const NSInvocation& invocation) const;
  /// Raises NSInvalidArgumentException, naming class and selector.
  void doesNotRecognizeSelector(SEL s) const { send<"doesNotRecognizeSelector:">(*this, s); }

  /// A mutable copy; raises when the class has none.
  id mutableCopy() const { return send<"mutableCopy", id>(*this); }
};

/// The class that the object reports: the message `class`. (`T::class_()` is the class of a type;
/// C++ cannot tell the two apart as members.) An object whose class was replaced for observing
/// reports the class that it had before; `object_getClass` answers the replacement. Nil for nil.
inline Class classOf(const id& object) { return send<"class", Class>(object); }

/// Whether the object is of T's class or inherits from it. False for nil.
template <Reference T>
bool isa(const id& object) {
  return send<"isKindOfClass:", bool>(object, Class(&T::classPair.cls));
}

inline bool id::isKindOfClass(Class c) const { return send<"isKindOfClass:", bool>(*this, c); }
inline bool id::isMemberOfClass(Class c) const { return send<"isMemberOfClass:", bool>(*this, c); }
inline bool id::respondsToSelector(SEL s) const {
  return send<"respondsToSelector:", bool>(*this, s);
}
inline bool id::isProxy() const { return send<"isProxy", bool>(*this); }
inline bool id::isEqual(const id& other) const { return send<"isEqual:", bool>(*this, other); }
inline NSUInteger id::hash() const { return send<"hash", NSUInteger>(*this); }
inline id id::performSelector(SEL s) const { return send<"performSelector:", id>(*this, s); }
inline id id::performSelector(SEL s, const id& a) const {
  return send<"performSelector:withObject:", id>(*this, s, a);
}
inline id id::performSelector(SEL s, const id& a, const id& b) const {
  return send<"performSelector:withObject:withObject:", id>(*this, s, a, b);
}
inline NSUInteger id::retainCount() const { return send<"retainCount", NSUInteger>(*this); }

namespace detail {
[[noreturn]] BRINDLE_PLATFORM_EXPORT void raiseBadCast(const id& object, const ClassRecord* wanted);
}

/// The object as a T. Nil stays nil; another kind of object raises NSInvalidArgumentException.
template <Reference T>
T cast(id object) {
  if (object && !isa<T>(object)) detail::raiseBadCast(object, &T::classPair.cls);
  return uncheckedCast<T>(static_cast<id&&>(object));
}

/// The object as a T, or nil when it is nil or another kind of object.
template <Reference T>
T dynCast(id object) {
  if (!isa<T>(object)) return nullptr;
  return uncheckedCast<T>(static_cast<id&&>(object));
}

/// Contents as keys of standard containers: `std::unordered_set<id, NSObjectHash, NSObjectEqual>`.
struct NSObjectHash {
  std::size_t operator()(const id& object) const { return send<"hash", NSUInteger>(object); }
};
struct NSObjectEqual {
  bool operator()(const id& a, const id& b) const { return a == b || send<"isEqual:", bool>(a, b); }
};

}  // namespace brindle
