// The base of every reference type: what a class's header page is made of.
//
//   class BDStack : public Interface<BDStack, NSObject> {
//    public:
//     using Interface::Interface;
//     BRINDLE_EXPORT static ClassPair<BDStack> classPair;
//
//     void pushObject(const id& object) const { send<"pushObject:">(*this, object); }
//   };
//
// Superclass references are C++ bases, so a `BDStack` goes wherever an `NSObject` or an `id` is
// wanted. Members are const, have no body but their send, and answer zero for nil.
#pragma once

#include <Brindle/Platform/Class.h>
#include <Brindle/Platform/Object.h>
#include <Brindle/Platform/Send.h>

namespace brindle {

/// The reference type `Self` of a class whose superclass is `Super`; `id` for a root class.
template <class Self, class Super>
class Interface : public Super {
 public:
  using Superclass = Super;

  constexpr Interface() noexcept = default;
  // NOLINTNEXTLINE(google-explicit-constructor): nil is nullptr.
  constexpr Interface(std::nullptr_t) noexcept {}
  constexpr Interface(Adopt, ObjectRecord* record) noexcept : Super(Adopt{}, record) {}

  /// The reference itself, so that members are reached with `->` also for nil.
  const Self* operator->() const noexcept { return static_cast<const Self*>(this); }

  /// The class, with its class operations as members.
  static ClassOf<Self> class_() {
    static_assert(std::is_same_v<decltype(Self::classPair), ClassPair<Self>>,
                  "a class declares its own `static ClassPair<Self> classPair;`");
    return ClassOf<Self>(Class(&Self::classPair.cls));
  }

  /// A new object of the class, still to be initialised. Zeroed fields, one owner.
  static Self alloc() { return send<"alloc", Self>(class_()); }

  /// A new object, initialised with `init`.
  static Self new_() { return send<"new", Self>(class_()); }

  /// Initialises a new object. Answers the object to use, which may be another one, or nil.
  Self init() const { return send<"init", Self>(*this); }

  /// Retains the object until the current pool is drained, and answers it.
  Self autorelease() const { return send<"autorelease", Self>(*this); }

  /// The object itself, by message: a proxy answers itself.
  Self self() const { return send<"self", Self>(*this); }

  /// A copy, owned by the caller; raises when the class does not copy.
  Self copy() const { return send<"copy", Self>(*this); }
};

}  // namespace brindle
