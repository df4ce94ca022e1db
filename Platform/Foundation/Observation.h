// Observing for as long as a C++ object lives, told of values instead of dictionaries.
//
//   Observation watching = observe<int>(account, "balance"_ns, [](int old, int now) {
//     std::cout << old << " -> " << now << '\n';
//   });
//   account->setBalance(7);   // 0 -> 7
//   watching.reset();         // or let it go
//
// The lambda runs on the thread that makes the change, also on several at once. What it raises
// goes to whoever makes the change.
#pragma once

#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include <Brindle/Platform/Block.h>
#include <Brindle/Platform/NSKeyValueObserving.h>
#include <Brindle/Platform/ObservedValue.h>

namespace brindle {

class Observation;

namespace detail {

class ObservationState;

/// A lambda that is told of values.
class ValueBlock {
 public:
  ValueBlock() = default;
  ValueBlock(const ValueBlock&) = delete;
  ValueBlock& operator=(const ValueBlock&) = delete;
  virtual ~ValueBlock() = default;
  virtual void run(const ObservedValue& before, const ObservedValue& after,
                   const NSString& keyPath) = 0;
};

template <class T, class Lambda>
class TypedValueBlock final : public ValueBlock {
 public:
  template <class L>
  explicit TypedValueBlock(L&& lambda) : lambda_(std::forward<L>(lambda)) {}
  void run(const ObservedValue& before, const ObservedValue& after,
           const NSString& keyPath) override {
    lambda_(ObservedAs<T>::from(before, keyPath), ObservedAs<T>::from(after, keyPath));
  }

 private:
  Lambda lambda_;
};

/// Takes the block, also when it raises.
BRINDLE_PLATFORM_EXPORT Observation observeValues(const id& object, const NSString& keyPath,
                                                  ValueBlock* block);

}  // namespace detail

/// What `observe` answers: observes until it is reset or destroyed. Keeps neither side alive, and
/// may outlive the object that is observed. One thread at a time uses a token.
///
/// A token that its own lambda captures would keep itself.
class [[nodiscard]] Observation {
 public:
  /// Observes nothing.
  constexpr Observation() noexcept = default;
  Observation(Observation&& other) noexcept : state_(std::exchange(other.state_, nullptr)) {}
  /// Ends what it observed before.
  Observation& operator=(Observation&& other) noexcept {
    if (this != &other) {
      reset();
      state_ = std::exchange(other.state_, nullptr);
    }
    return *this;
  }
  Observation(const Observation&) = delete;
  Observation& operator=(const Observation&) = delete;
  ~Observation() { reset(); }

  /// Ends the observation and destroys the lambda. When this returns, the lambda does not run, and
  /// never will: it waits for calls on other threads to return. So whoever resets may not hold a
  /// lock that the lambda takes.
  ///
  /// There are two exceptions, where the lambda is destroyed after the last of its calls. From
  /// inside its own call, a token waits for nobody. And from inside the call of another token, one
  /// does not wait for a thread that itself waits, in a reset, for this thread's call to return.
  BRINDLE_PLATFORM_EXPORT void reset() noexcept;

  /// Whether there is something to reset. The object may be gone all the same.
  explicit operator bool() const noexcept { return state_ != nullptr; }

 private:
  friend class detail::ObservationState;
  explicit Observation(detail::ObservationState* state) noexcept : state_(state) {}

  detail::ObservationState* state_ = nullptr;
};

/// Observes a key path; the lambda gets the value before the change and the one after it, as
/// `const T&`. T is bool, a number, an enumeration, `std::string`, `id`, a class such as
/// NSString, or a `std::optional` of one of these.
///
/// Numbers are converted as by NSNumber's `intValue` and the like. Where there is no value, nil or
/// NSNull, T is 0, false, "", nil, or without a value for the optional. A value of another kind
/// raises NSInvalidArgumentException at the change, out of the setter. Of a change at indexes, or
/// of a set, the two are the members concerned, as in the dictionary of NSKeyValueObserving.h.
///
/// Raises as `addObserver` does. Nil observes nothing.
template <class T, class Lambda>
requires std::is_invocable_v < std::decay_t<Lambda>
&, const T&,
    const T& > Observation observe(const id& object, const NSString& keyPath, Lambda&& lambda) {
  using Typed = detail::TypedValueBlock<T, std::decay_t<Lambda>>;
  return detail::observeValues(object, keyPath, new Typed(std::forward<Lambda>(lambda)));
}

/// The same with the change dictionary, and all options.
BRINDLE_PLATFORM_EXPORT Observation
observe(const id& object, const NSString& keyPath, NSUInteger options,
        const BlockArg<void(const NSDictionary& change)>& block);

}  // namespace brindle
