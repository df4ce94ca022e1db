// A variable of an object that holds another object.
//
// A method that uses a field in place may cause that very field to be replaced, and the object in
// it to be deallocated while it still runs. So a `Field` lends an owned copy whenever it is used:
// `fields(self).child->poke()` is safe whatever `poke` does to `child`.
#pragma once

#include <Brindle/Platform/Object.h>

namespace brindle {

/// A strong reference inside `Fields`. Not atomic: one thread at a time, as its object says.
template <Reference T>
class Field {
 public:
  Field() noexcept = default;
  Field(T value) noexcept : value_(static_cast<T&&>(value)) {}  // NOLINT: meant to convert

  /// Keeps `value`; releases the previous object last.
  Field& operator=(T value) {
    value_ = static_cast<T&&>(value);
    return *this;
  }

  /// An owned copy.
  [[nodiscard]] T get() const { return value_; }
  operator T() const { return value_; }  // NOLINT: a field is used as its reference

  /// Calls on the object, which stays alive until the call is done.
  T operator->() const { return value_; }
  template <class... A>
  auto operator()(A&&... a) const {
    const T kept = value_;
    return kept(static_cast<A&&>(a)...);
  }

  /// Gives the object up and leaves nil.
  [[nodiscard]] T take() noexcept { return static_cast<T&&>(value_); }

  /// The reference where it lies, for code that cannot cause it to change.
  [[nodiscard]] const T& peek() const noexcept { return value_; }

  explicit operator bool() const noexcept { return static_cast<bool>(value_); }
  friend bool operator==(const Field& a, const id& b) noexcept { return a.value_ == b; }
  friend bool operator==(const Field& a, std::nullptr_t) noexcept { return a.value_ == nullptr; }

 private:
  T value_;
};

}  // namespace brindle
