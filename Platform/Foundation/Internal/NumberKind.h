// What lies in a number object, and numbers of different types compared exactly.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>

#include <Brindle/Platform/NSObjCRuntime.h>

namespace brindle::detail {

struct NumberValue {
  enum class Kind : std::uint8_t { signedInteger, unsignedInteger, real };

  Kind kind = Kind::signedInteger;
  bool isTruth = false;
  char type = 'i';         // the first letter of its encoding
  std::uint64_t bits = 0;  // of an integer, in two's complement
  double real = 0;

  static NumberValue ofTruth(bool value) noexcept {
    return {Kind::signedInteger, true, 'c', value ? 1U : 0U, 0};
  }
  static NumberValue ofSigned(std::int64_t value, char type) noexcept {
    return {Kind::signedInteger, false, type, static_cast<std::uint64_t>(value), 0};
  }
  static NumberValue ofUnsigned(std::uint64_t value, char type) noexcept {
    return {Kind::unsignedInteger, false, type, value, 0};
  }
  static NumberValue ofReal(double value, char type) noexcept {
    return {Kind::real, false, type, 0, value};
  }

  [[nodiscard]] bool isNegative() const noexcept {
    if (kind == Kind::real) return real < 0;
    return kind == Kind::signedInteger && static_cast<std::int64_t>(bits) < 0;
  }
};

inline const char* encodingOfNumber(char type) noexcept {
  static constexpr char kTypes[] = "c\0C\0s\0S\0i\0I\0q\0Q\0f\0d";
  for (const char* at = kTypes; at < kTypes + sizeof kTypes; at += 2) {
    if (*at == type) return at;
  }
  return "q";
}

template <class T>
NSComparisonResult compareValues(T a, T b) noexcept {
  return a < b ? NSOrderedAscending : b < a ? NSOrderedDescending : NSOrderedSame;
}

inline NSComparisonResult compareIntegers(const NumberValue& a, const NumberValue& b) noexcept {
  if (a.isNegative() != b.isNegative()) {
    return a.isNegative() ? NSOrderedAscending : NSOrderedDescending;
  }
  return compareValues(a.bits, b.bits);  // two's complement keeps the order within a sign
}

/// An integer with a floating number: exactly, not after rounding the integer.
inline NSComparisonResult compareIntegerWithReal(const NumberValue& a, double b) noexcept {
  constexpr double kTwo63 = 9223372036854775808.0;
  if (std::isnan(b)) return a.isNegative() ? NSOrderedAscending : NSOrderedDescending;
  if (b >= 2 * kTwo63) return NSOrderedAscending;
  if (b < -kTwo63) return NSOrderedDescending;
  const double whole = std::floor(b);
  const NumberValue integer = whole < 0
                                  ? NumberValue::ofSigned(static_cast<std::int64_t>(whole), 'q')
                                  : NumberValue::ofUnsigned(static_cast<std::uint64_t>(whole), 'Q');
  const NSComparisonResult result = compareIntegers(a, integer);
  return result == NSOrderedSame && whole < b ? NSOrderedAscending : result;
}

inline NSComparisonResult compareNumbers(const NumberValue& a, const NumberValue& b) noexcept {
  const bool aReal = a.kind == NumberValue::Kind::real;
  const bool bReal = b.kind == NumberValue::Kind::real;
  if (aReal && bReal) {
    if (std::isnan(a.real) || std::isnan(b.real)) {
      // What is no number equals itself and stands at zero's lower side.
      if (std::isnan(a.real) && std::isnan(b.real)) return NSOrderedSame;
      const double other = std::isnan(a.real) ? b.real : a.real;
      const bool aComesFirst = std::isnan(a.real) == (other >= 0);
      return aComesFirst ? NSOrderedAscending : NSOrderedDescending;
    }
    return compareValues(a.real, b.real);
  }
  if (!aReal && !bReal) return compareIntegers(a, b);
  if (!aReal) return compareIntegerWithReal(a, b.real);
  return static_cast<NSComparisonResult>(-compareIntegerWithReal(b, a.real));
}

/// Equal numbers have equal hashes, whatever their types.
inline NSUInteger hashOfNumber(const NumberValue& value) noexcept {
  if (value.kind != NumberValue::Kind::real) return value.bits * 0x9E3779B97F4A7C15U;
  const double whole = std::trunc(value.real);
  constexpr double kTwo63 = 9223372036854775808.0;
  if (whole == value.real && whole < 2 * kTwo63 && whole >= -kTwo63) {
    const std::uint64_t bits = whole < 0
                                   ? static_cast<std::uint64_t>(static_cast<std::int64_t>(whole))
                                   : static_cast<std::uint64_t>(whole);
    return bits * 0x9E3779B97F4A7C15U;
  }
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value.real, sizeof bits);
  return bits ^ bits >> 32U;
}

}  // namespace brindle::detail
