// How arguments and results travel between a sender and a method.
//
// A sender turns each argument into its wire value (`Passed`), a method turns it back (`Receive`).
// Objects travel as plain pointers: borrowed as arguments, owned as results, so nothing is counted
// on the way. An out-slot is moved into a raw slot for the call and moved back after it, so it may
// be written, left untouched or set to nil, also when the method raises.
#pragma once

#include <type_traits>

#include <Brindle/Platform/Encoding.h>
#include <Brindle/Platform/Object.h>

namespace brindle::detail {

/// An argument on its way out of a sender.
template <class A>
class Passed {
 public:
  explicit Passed(const A& argument) noexcept : argument_(argument) {}

  Wire<A> wire() const noexcept {
    if constexpr (VariadicTail<A>) {
      return const_cast<A*>(&argument_);  // NOLINT(*-const-cast): travels untyped
    } else if constexpr (Reference<A> || std::is_base_of_v<Class, A>) {
      return argument_.record();
    } else if constexpr (std::is_null_pointer_v<A>) {
      return nullptr;
    } else if constexpr (std::is_pointer_v<A> && std::is_function_v<std::remove_pointer_t<A>>) {
      return reinterpret_cast<void*>(argument_);  // NOLINT(*-reinterpret-cast)
    } else if constexpr (std::is_pointer_v<A>) {
      return const_cast<void*>(static_cast<const volatile void*>(argument_));  // NOLINT
    } else if constexpr (std::is_class_v<A>) {
      return argument_;
    } else {
      return static_cast<Wire<A>>(argument_);
    }
  }

 private:
  const A& argument_;
};

template <class T>
requires(SlotPointee<T>) class Passed<T*> {
 public:
  explicit Passed(T* slot) noexcept : slot_(slot), raw_(slot != nullptr ? slot->leak() : nullptr) {}
  Passed(const Passed&) = delete;
  Passed& operator=(const Passed&) = delete;
  ~Passed() {
    if (slot_ != nullptr) *slot_ = adopt<T>(raw_);
  }

  ObjectRecord** wire() noexcept { return slot_ != nullptr ? &raw_ : nullptr; }

 private:
  T* slot_;
  ObjectRecord* raw_;
};

/// A result that arrives at a sender.
template <class R>
R fromWire(Wire<R> value) noexcept {
  if constexpr (Reference<R> || std::is_base_of_v<Class, R>) {
    return R(Adopt{}, value);
  } else if constexpr (std::is_pointer_v<R> && std::is_function_v<std::remove_pointer_t<R>>) {
    return reinterpret_cast<R>(value);  // NOLINT(*-reinterpret-cast)
  } else if constexpr (std::is_same_v<R, bool>) {
    return value != 0;
  } else {
    return static_cast<R>(value);
  }
}

/// What a message to nil answers.
template <class R>
constexpr R nilResult() noexcept {
  if constexpr (!std::is_void_v<R>) return R{};
}

/// An argument that arrives at a method or block, in the type P that the body declares for it.
template <class P>
class Receive {
  using T = std::remove_cvref_t<P>;

 public:
  explicit Receive(Wire<T> wire) noexcept : wire_(wire) {}

  decltype(auto) get() noexcept {
    if constexpr (VariadicTail<T>)
      return *static_cast<const T*>(wire_);
    else
      return fromWire<T>(wire_);
  }

 private:
  Wire<T> wire_;
};

template <class P>
requires(Reference<P>) class Receive<P> {
  using T = std::remove_cvref_t<P>;
  static_assert(std::is_lvalue_reference_v<P> && std::is_const_v<std::remove_reference_t<P>>,
                "a method and a block take objects as `const T&`: they are lent for the call, not "
                "given");

 public:
  explicit Receive(ObjectRecord* record) noexcept : lent_(record) {}
  const T& get() const noexcept { return lent_.reference; }

 private:
  Lent<T> lent_;
};

template <class P>
requires(std::is_pointer_v<std::remove_cvref_t<P>>&&
             SlotPointee<std::remove_pointer_t<std::remove_cvref_t<P>>>) class Receive<P> {
  using T = std::remove_pointer_t<std::remove_cvref_t<P>>;

 public:
  explicit Receive(ObjectRecord** raw) noexcept
      : raw_(raw), value_(Adopt{}, raw != nullptr ? *raw : nullptr) {}
  Receive(const Receive&) = delete;
  Receive& operator=(const Receive&) = delete;
  ~Receive() {
    if (raw_ != nullptr) *raw_ = value_.leak();
  }
  T* get() noexcept { return raw_ != nullptr ? &value_ : nullptr; }

 private:
  ObjectRecord** raw_;
  T value_;
};

/// Runs a body and hands its result over in wire form: objects owned.
template <class R, class Body, class... A>
Wire<R> wireResult(Body&& body, A&&... arguments) {
  if constexpr (std::is_void_v<R>) {
    body(static_cast<A&&>(arguments)...);
  } else if constexpr (Reference<R>) {
    R result = body(static_cast<A&&>(arguments)...);
    return result.leak();
  } else {
    const R result = body(static_cast<A&&>(arguments)...);
    return Passed<R>(result).wire();
  }
}

}  // namespace brindle::detail
