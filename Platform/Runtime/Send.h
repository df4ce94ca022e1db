// Sending messages.
//
//   NSUInteger n = send<"count", NSUInteger>(array);
//   id first = send<"objectAtIndex:", id>(array, NSUInteger{0});
//
// A send looks the selector up in the receiver's class while the program runs and calls what it
// finds. Nil answers zero or nil. A message that nobody answers goes to `forwardInvocation:`, which
// raises unless the receiver forwards it. Arguments must have the method's own types: with
// assertions on, a send whose types differ from the method's stops the program with both encodings.
#pragma once

#include <atomic>
#include <type_traits>

#include <Brindle/Platform/Class.h>
#include <Brindle/Platform/Encoding.h>
#include <Brindle/Platform/Implementation.h>
#include <Brindle/Platform/Method.h>
#include <Brindle/Platform/Passing.h>
#include <Brindle/Platform/Selector.h>

namespace brindle {
namespace detail {

template <class T>
concept Receiver = Reference<T> || std::derived_from<std::remove_cvref_t<T>, Class>;

template <class R, class... A>
inline R callImplementation(IMP imp, ObjectRecord* object, SEL sel, const A&... a) {
  auto function = typedImplementation<Wire<R>, Wire<std::decay_t<const A&>>...>(imp);
  if constexpr (std::is_void_v<R>) {
    function(object, sel, Passed<std::decay_t<const A&>>(a).wire()...);
  } else {
    return fromWire<R>(function(object, sel, Passed<std::decay_t<const A&>>(a).wire()...));
  }
}

template <class R, class... A>
inline void checkSend([[maybe_unused]] ObjectRecord* object,
                      [[maybe_unused]] const MethodRecord* method, [[maybe_unused]] IMP imp) {
#if BRINDLE_ASSERTIONS
  const char* wire = method->wire.load(std::memory_order_acquire);
  // An implementation that is being exchanged at this moment is checked the next time.
  if (wire == nullptr || method->implementation.load(std::memory_order_acquire) != imp) return;
  if (!sameWire(wire, wireTypes<R, std::decay_t<const A&>...>.c_str())) [[unlikely]] {
    stopForWrongTypes(object, method, methodTypes<R, std::decay_t<const A&>...>.c_str(),
                      wireTypes<R, std::decay_t<const A&>...>.c_str());
  }
#endif
}

template <class R, class... A>
R forward(ObjectRecord* object, SEL sel, const A&... a) {
  auto forwardWires = [object, sel](auto... wire) -> R {
    void* arguments[] = {static_cast<void*>(&wire)..., nullptr};
    const char* codes = wireTypes<R, std::decay_t<const A&>...>.c_str();
    if constexpr (std::is_void_v<R>) {
      forwardMessage(object, sel, codes, arguments, nullptr);
    } else {
      Wire<R> result{};
      forwardMessage(object, sel, codes, arguments, &result);
      return fromWire<R>(result);
    }
  };
  return forwardWires(Passed<std::decay_t<const A&>>(a).wire()...);
}

template <class R, class... A>
[[gnu::noinline, gnu::cold]] R sendMissed(ObjectRecord* object, ClassRecord* cls,
                                          std::atomic<SEL>& slot, const char* name, const A&... a) {
  MethodRecord* method = resolveMissed(cls, slot, name);
  SEL sel = slot.load(std::memory_order_acquire);
  if (method != nullptr) {
    IMP imp = method->implementation.load(std::memory_order_acquire);
    if (imp != nullptr) {
      checkSend<R, A...>(object, method, imp);
      return callImplementation<R>(imp, object, sel, a...);
    }
  }
  return forward<R>(object, sel, a...);
}

template <FixedString Name, class R, class... A>
inline R sendFrom(ClassRecord* cls, ObjectRecord* object, const A&... a) {
  static_assert(colonsOf(Name.view()) ==
                    (std::size_t{0} + ... + (VariadicTail<std::decay_t<const A&>> ? 0U : 1U)),
                "the selector has another number of colons than the send has arguments");
  SEL sel = selectorSlot<Name>.load(std::memory_order_acquire);
  MethodRecord* method = findMethod(cls, sel);
  IMP imp = method->implementation.load(std::memory_order_acquire);
  if (imp == nullptr) [[unlikely]] {
    return sendMissed<R>(object, cls, selectorSlot<Name>, selectorText<Name>.c_str(), a...);
  }
  checkSend<R, A...>(object, method, imp);
  return callImplementation<R>(imp, object, sel, a...);
}

}  // namespace detail

/// Sends the message to an object or a class and answers what the method answers, as R.
template <FixedString Name, class R = void, detail::Receiver T, class... A>
inline R send(const T& receiver, const A&... a) {
  ObjectRecord* object = receiver.record();
  if (object == nullptr) [[unlikely]]
    return detail::nilResult<R>();
  return detail::sendFrom<Name, R>(object->isa.load(std::memory_order_acquire), object, a...);
}

/// Runs the superclass's method, from inside a method of class `Current`:
/// `sendSuper<BDStack, "init", BDStack>(self)`. In a class operation `self` is the class, and the
/// search starts at the meta-class's superclass.
template <class Current, FixedString Name, class R = void, detail::Receiver T, class... A>
inline R sendSuper(const T& self, const A&... a) {
  ObjectRecord* object = self.record();
  if (object == nullptr) [[unlikely]]
    return detail::nilResult<R>();
  ClassRecord* super;
  if constexpr (Reference<T>)
    super = Current::classPair.cls.superclass;
  else
    super = Current::classPair.meta.superclass;
  return detail::sendFrom<Name, R>(super, object, a...);
}

/// Sends a message whose selector is known only while the program runs.
/// Counts and types of the arguments are the caller's to match; with assertions on they are
/// checked.
template <class R = void, detail::Receiver T, class... A>
R sendSelector(const T& receiver, SEL selector, const A&... a) {
  ObjectRecord* object = receiver.record();
  if (object == nullptr || selector == nullptr) return detail::nilResult<R>();
  ClassRecord* cls = object->isa.load(std::memory_order_acquire);
  MethodRecord* method = detail::findMethod(cls, selector);
  IMP imp = method->implementation.load(std::memory_order_acquire);
  if (imp == nullptr) [[unlikely]] {
    std::atomic<SEL> slot{selector};
    return detail::sendMissed<R>(object, cls, slot, selector->name, a...);
  }
  detail::checkSend<R, A...>(object, method, imp);
  return detail::callImplementation<R>(imp, object, selector, a...);
}

/// Calls an implementation directly, as replacing code does with the previous one:
/// `callImplementation<void>(previous, self, cmd.selector, argument)`.
template <class R, class T, class... A>
R callImplementation(IMP imp, const T& self, SEL selector, const A&... a) {
  return detail::callImplementation<R>(imp, self.record(), selector, a...);
}

}  // namespace brindle
