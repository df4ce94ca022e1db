// How the values of a change become the C++ values that a lambda is told of.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <type_traits>

#include <Brindle/Platform/NSString.h>

namespace brindle::detail {

/// A value as it was read, lent.
struct ObservedValue {
  enum class Kind : std::uint8_t { kObject, kInteger, kNatural, kReal };

  Kind kind = Kind::kObject;
  std::int64_t integer = 0;  // of a natural number its bits
  double real = 0;
  id (*box)(const void* source) = nullptr;  // makes the object; null for nil
  const void* source = nullptr;

  /// Nil for nil and NSNull.
  [[nodiscard]] BRINDLE_PLATFORM_EXPORT id object() const;
  /// Itself, or the number in the object. Raises for other objects, 0 for nil.
  [[nodiscard]] BRINDLE_PLATFORM_EXPORT ObservedValue number(const NSString& keyPath) const;
  [[nodiscard]] bool isNil() const { return kind == Kind::kObject && !object(); }
};

[[noreturn]] BRINDLE_PLATFORM_EXPORT void raiseUnexpectedValue(const id& value,
                                                               const NSString& keyPath,
                                                               const char* wanted);

/// The nearest number of the type, cut toward zero; 0 for one that is no number.
template <class T>
T cutToward0(double value) noexcept {
  if (std::isnan(value)) return 0;
  // The first number beyond the type is a power of two, and so exact.
  const double beyond = std::ldexp(1.0, std::numeric_limits<T>::digits);
  if (value >= beyond) return std::numeric_limits<T>::max();
  const double least = std::is_signed_v<T> ? -beyond : 0.0;
  return value <= least ? std::numeric_limits<T>::min() : static_cast<T>(value);
}

template <class T>
T numberAs(const ObservedValue& value) noexcept {
  if constexpr (std::is_same_v<T, bool>) {
    return value.kind == ObservedValue::Kind::kReal ? value.real != 0 : value.integer != 0;
  } else if (value.kind == ObservedValue::Kind::kReal) {
    if constexpr (std::is_integral_v<T>) return cutToward0<T>(value.real);
    return static_cast<T>(value.real);
  } else if (value.kind == ObservedValue::Kind::kNatural) {
    return static_cast<T>(static_cast<std::uint64_t>(value.integer));
  }
  return static_cast<T>(value.integer);
}

template <class T>
struct ObservedAs {
  static_assert(Reference<T> || std::is_arithmetic_v<T> || std::is_enum_v<T>,
                "observe<T>: T is a number, an enumeration, std::string, id, a class, or a "
                "std::optional of these");

  static T from(const ObservedValue& value, const NSString& keyPath) {
    if constexpr (std::is_enum_v<T>) {
      return static_cast<T>(ObservedAs<std::underlying_type_t<T>>::from(value, keyPath));
    } else if constexpr (std::is_arithmetic_v<T>) {
      if (value.kind != ObservedValue::Kind::kObject) return numberAs<T>(value);
      return numberAs<T>(value.number(keyPath));
    } else {
      const id object = value.object();
      if constexpr (std::is_same_v<T, id>) {
        return object;
      } else {
        if (!object) return nullptr;
        T narrowed = dynCast<T>(object);
        if (!narrowed) raiseUnexpectedValue(object, keyPath, T::classPair.cls.name);
        return narrowed;
      }
    }
  }
};

template <>
struct ObservedAs<std::string> {
  static std::string from(const ObservedValue& value, const NSString& keyPath) {
    const NSString text = ObservedAs<NSString>::from(value, keyPath);
    return text ? static_cast<std::string>(text) : std::string();
  }
};

template <class T>
struct ObservedAs<std::optional<T>> {
  static std::optional<T> from(const ObservedValue& value, const NSString& keyPath) {
    if (value.isNil()) return std::nullopt;
    return ObservedAs<T>::from(value, keyPath);
  }
};

}  // namespace brindle::detail
