// A number in an object: any of C's arithmetic types, and whether it is a truth value.
//
//   NSNumber seven = 7;
//   if (seven->isEqual(NSNumber(7.0))) ...   // numbers are equal by value, whatever their types
//
// Immutable; may be used by many threads at once. Two threads may also share the small ones that
// the class keeps.
#pragma once

#include <concepts>
#include <type_traits>

#include <Brindle/Platform/NSObjCRuntime.h>
#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/NSValue.h>

namespace brindle {

class NSNumber : public Interface<NSNumber, NSValue> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSNumber> classPair;

  /// The number of that C++ type; `bool` gives a truth value.
  template <class T>
  requires std::integral<T> || std::floating_point<T> NSNumber(T value)
      : NSNumber(make(value)) {}  // NOLINT: a number is a number

  template <class Self>
  class ClassSide : public NSValue::ClassSide<Self> {
   public:
    /// One of two objects, which are told from all other numbers in archives.
    NSNumber numberWithBool(bool value) const {
      return send<"numberWithBool:", NSNumber>(*this, value);
    }
    NSNumber numberWithChar(signed char v) const {
      return send<"numberWithChar:", NSNumber>(*this, v);
    }
    NSNumber numberWithUnsignedChar(unsigned char v) const {
      return send<"numberWithUnsignedChar:", NSNumber>(*this, v);
    }
    NSNumber numberWithShort(short v) const { return send<"numberWithShort:", NSNumber>(*this, v); }
    NSNumber numberWithUnsignedShort(unsigned short v) const {
      return send<"numberWithUnsignedShort:", NSNumber>(*this, v);
    }
    NSNumber numberWithInt(int v) const { return send<"numberWithInt:", NSNumber>(*this, v); }
    NSNumber numberWithUnsignedInt(unsigned v) const {
      return send<"numberWithUnsignedInt:", NSNumber>(*this, v);
    }
    NSNumber numberWithLong(long v) const { return send<"numberWithLong:", NSNumber>(*this, v); }
    NSNumber numberWithUnsignedLong(unsigned long v) const {
      return send<"numberWithUnsignedLong:", NSNumber>(*this, v);
    }
    NSNumber numberWithLongLong(long long v) const {
      return send<"numberWithLongLong:", NSNumber>(*this, v);
    }
    NSNumber numberWithUnsignedLongLong(unsigned long long v) const {
      return send<"numberWithUnsignedLongLong:", NSNumber>(*this, v);
    }
    NSNumber numberWithInteger(NSInteger v) const {
      return send<"numberWithInteger:", NSNumber>(*this, v);
    }
    NSNumber numberWithUnsignedInteger(NSUInteger v) const {
      return send<"numberWithUnsignedInteger:", NSNumber>(*this, v);
    }
    NSNumber numberWithFloat(float v) const { return send<"numberWithFloat:", NSNumber>(*this, v); }
    NSNumber numberWithDouble(double v) const {
      return send<"numberWithDouble:", NSNumber>(*this, v);
    }
  };

  static NSNumber numberWithBool(bool value) { return class_()->numberWithBool(value); }
  static NSNumber numberWithInt(int value) { return class_()->numberWithInt(value); }
  static NSNumber numberWithUnsignedInt(unsigned value) {
    return class_()->numberWithUnsignedInt(value);
  }
  static NSNumber numberWithLongLong(long long value) {
    return class_()->numberWithLongLong(value);
  }
  static NSNumber numberWithUnsignedLongLong(unsigned long long value) {
    return class_()->numberWithUnsignedLongLong(value);
  }
  static NSNumber numberWithInteger(NSInteger value) { return class_()->numberWithInteger(value); }
  static NSNumber numberWithUnsignedInteger(NSUInteger value) {
    return class_()->numberWithUnsignedInteger(value);
  }
  static NSNumber numberWithFloat(float value) { return class_()->numberWithFloat(value); }
  static NSNumber numberWithDouble(double value) { return class_()->numberWithDouble(value); }

  /// The number converted as C converts integers: the low bits. A floating number is cut toward
  /// zero, and the nearest value of the type beyond its range; 0 for one that is no number.
  bool boolValue() const { return send<"boolValue", bool>(*this); }
  signed char charValue() const { return send<"charValue", signed char>(*this); }
  unsigned char unsignedCharValue() const {
    return send<"unsignedCharValue", unsigned char>(*this);
  }
  short shortValue() const { return send<"shortValue", short>(*this); }
  unsigned short unsignedShortValue() const {
    return send<"unsignedShortValue", unsigned short>(*this);
  }
  int intValue() const { return send<"intValue", int>(*this); }
  unsigned unsignedIntValue() const { return send<"unsignedIntValue", unsigned>(*this); }
  long longValue() const { return send<"longValue", long>(*this); }
  unsigned long unsignedLongValue() const {
    return send<"unsignedLongValue", unsigned long>(*this);
  }
  long long longLongValue() const { return send<"longLongValue", long long>(*this); }
  unsigned long long unsignedLongLongValue() const {
    return send<"unsignedLongLongValue", unsigned long long>(*this);
  }
  NSInteger integerValue() const { return send<"integerValue", NSInteger>(*this); }
  NSUInteger unsignedIntegerValue() const {
    return send<"unsignedIntegerValue", NSUInteger>(*this);
  }
  float floatValue() const { return send<"floatValue", float>(*this); }
  double doubleValue() const { return send<"doubleValue", double>(*this); }
  /// "7", "0.1"; "1" and "0" for truth values.
  NSString stringValue() const { return send<"stringValue", NSString>(*this); }

  /// By value, exactly, whatever the types. Nil comes first.
  NSComparisonResult compare(const NSNumber& other) const {
    return send<"compare:", NSComparisonResult>(*this, other);
  }
  bool isEqualToNumber(const NSNumber& other) const {
    return send<"isEqualToNumber:", bool>(*this, other);
  }

 private:
  template <class T>
  static NSNumber make(T value) {
    if constexpr (std::same_as<T, bool>)
      return class_()->numberWithBool(value);
    else if constexpr (std::same_as<T, float>)
      return class_()->numberWithFloat(value);
    else if constexpr (std::floating_point<T>) {
      return class_()->numberWithDouble(static_cast<double>(value));
    } else if constexpr (std::is_signed_v<T> && sizeof(T) <= sizeof(int)) {
      return class_()->numberWithInt(value);
    } else if constexpr (std::is_signed_v<T>)
      return class_()->numberWithLongLong(value);
    else if constexpr (sizeof(T) <= sizeof(int))
      return class_()->numberWithUnsignedInt(value);
    else
      return class_()->numberWithUnsignedLongLong(value);
  }
};

}  // namespace brindle
