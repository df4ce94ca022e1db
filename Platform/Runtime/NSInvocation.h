// NSInvocation: a message as an object, to be kept, changed, sent to another receiver, or answered.
//
//   NSInvocation call = NSInvocation::invocationWithMethodSignature(
//       target->methodSignatureForSelector(selector<"objectAtIndex:">()));
//   call->setSelector(selector<"objectAtIndex:">());
//   call->setArgument(2, NSUInteger{0});
//   call->invokeWithTarget(target);
//   id object = call->result<id>();
//
// Arguments are numbered from 0: the receiver, the selector, then the message's own. Objects among
// them are borrowed until `retainArguments`; an object result belongs to the invocation. One thread
// at a time.
#pragma once

#include <cstring>
#include <type_traits>

#include <Brindle/Platform/NSMethodSignature.h>

namespace brindle {

class NSInvocation : public Interface<NSInvocation, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSInvocation> classPair;

  /// An invocation with zeroed arguments. Raises NSInvalidArgumentException for a nil signature.
  /// The only way to make one: `alloc` raises the same.
  static NSInvocation invocationWithMethodSignature(const NSMethodSignature& signature) {
    return send<"invocationWithMethodSignature:", NSInvocation>(class_(), signature);
  }

  NSMethodSignature methodSignature() const {
    return send<"methodSignature", NSMethodSignature>(*this);
  }
  id target() const { return send<"target", id>(*this); }
  void setTarget(const id& target) const { send<"setTarget:">(*this, target); }
  SEL selector() const { return send<"selector", SEL>(*this); }
  void setSelector(SEL selector) const { send<"setSelector:">(*this, selector); }

  /// Copies the bytes of an argument in or out: as many as its type has. An object is one pointer,
  /// borrowed. Raises NSInvalidArgumentException when the index is too large.
  void setArgumentBytes(const void* bytes, NSUInteger index) const {
    send<"setArgument:atIndex:">(*this, const_cast<void*>(bytes), index);  // NOLINT
  }
  void getArgumentBytes(void* bytes, NSUInteger index) const {
    send<"getArgument:atIndex:">(*this, bytes, index);
  }
  /// Copies the bytes of the result in or out. An object is one pointer: retained when it is set,
  /// lent when it is read.
  void setReturnValueBytes(const void* bytes) const {
    send<"setReturnValue:">(*this, const_cast<void*>(bytes));  // NOLINT
  }
  void getReturnValueBytes(void* bytes) const { send<"getReturnValue:">(*this, bytes); }

  /// The same, typed; objects owned as references are. A type other than the signature's raises
  /// NSInvalidArgumentException: `setResult(std::int64_t{7})` for a result that is "q".
  template <class T>
  void setArgument(NSUInteger index, const T& value) const {
    requireType<T>(static_cast<NSInteger>(index));
    const auto wire = detail::Passed<std::decay_t<const T&>>(value).wire();
    setArgumentBytes(&wire, index);
  }
  template <class T>
  T argument(NSUInteger index) const {
    requireType<T>(static_cast<NSInteger>(index));
    detail::Wire<T> wire{};
    getArgumentBytes(&wire, index);
    return lent<T>(wire);
  }
  template <class T>
  void setResult(const T& value) const {
    requireType<T>(kResult);
    const auto wire = detail::Passed<std::decay_t<const T&>>(value).wire();
    setReturnValueBytes(&wire);
  }
  template <class T>
  T result() const {
    requireType<T>(kResult);
    detail::Wire<T> wire{};
    getReturnValueBytes(&wire);
    return lent<T>(wire);
  }

  /// Owns receiver and object arguments, and copies C strings, from now on.
  void retainArguments() const { send<"retainArguments">(*this); }
  bool argumentsRetained() const { return send<"argumentsRetained", bool>(*this); }

  /// Sends the message to its target and keeps the result. A nil target leaves a zero result.
  void invoke() const { send<"invoke">(*this); }
  /// Sets the target, then the same.
  void invokeWithTarget(const id& target) const { send<"invokeWithTarget:">(*this, target); }

 private:
  static constexpr NSInteger kResult = -1;

  /// Raises unless a value of T is what the signature has there.
  template <class T>
  void requireType(NSInteger place) const {
    using Type = std::decay_t<const T&>;
    checkType(place, detail::TypeTraits<Type>::wireCode.c_str(), typeEncoding<Type>());
  }
  BRINDLE_PLATFORM_EXPORT void checkType(NSInteger place, const char* wire,
                                         const char* encoding) const;

  template <class T>
  static T lent(detail::Wire<T> wire) {
    if constexpr (Reference<T>)
      return borrow<T>(wire);
    else
      return detail::fromWire<T>(wire);
  }
};

inline void NSObject::forwardInvocation(const NSInvocation& invocation) const {
  send<"forwardInvocation:">(*this, invocation);
}

}  // namespace brindle
