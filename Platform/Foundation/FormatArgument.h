// A format ("%@ has %d") is filled with arguments. Here every argument knows its own type, so that
// a format that asks for something else, or for more, can do no harm.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

namespace brindle {

/// One argument for a format. Lends what it was made from: pass it on at once, keep it nowhere.
class FormatArgument {
 public:
  enum class Kind : std::uint8_t {
    signedInteger,
    unsignedInteger,
    floating,
    bytes,    // UTF-8
    cString,  // UTF-8 up to a zero byte, or null
    units,    // UTF-16
    cUnits,   // UTF-16 up to a zero unit, or null
    pointer,
    object,
  };

  template <class T>
  requires(std::integral<T> || std::is_enum_v<T>) constexpr FormatArgument(T value) noexcept
      : kind_(isSigned<T>() ? Kind::signedInteger : Kind::unsignedInteger),
        value_{.integer = static_cast<std::uint64_t>(value)} {}
  template <std::floating_point T>
  constexpr FormatArgument(T value) noexcept
      : kind_(Kind::floating), value_{.real = static_cast<double>(value)} {}
  constexpr FormatArgument(const char* string) noexcept
      : kind_(Kind::cString), value_{.pointer = string} {}
  constexpr FormatArgument(std::string_view string) noexcept
      : kind_(Kind::bytes), value_{.pointer = string.data()}, size_(string.size()) {}
  FormatArgument(const std::string& string) noexcept : FormatArgument(std::string_view(string)) {}
  constexpr FormatArgument(std::u16string_view units) noexcept
      : kind_(Kind::units), value_{.pointer = units.data()}, size_(units.size()) {}
  constexpr FormatArgument(const char16_t* string) noexcept
      : kind_(Kind::cUnits), value_{.pointer = string} {}
  constexpr FormatArgument(const void* pointer) noexcept
      : kind_(Kind::pointer), value_{.pointer = pointer} {}
  constexpr FormatArgument(std::nullptr_t) noexcept
      : FormatArgument(static_cast<const void*>(nullptr)) {}

  /// An object or a class, or nil: a reference, lent like everything else.
  template <class T>
  requires requires(const T& reference) { reference.record()->isa; }
  constexpr FormatArgument(const T& reference) noexcept
      : FormatArgument(object(reference.record())) {}

  /// The object at `object`, or nil; whoever formats knows how to ask it for its text.
  static constexpr FormatArgument object(const void* object) noexcept {
    FormatArgument argument(object);
    argument.kind_ = Kind::object;
    return argument;
  }

  [[nodiscard]] constexpr Kind kind() const noexcept { return kind_; }
  /// The value of an integer, in two's complement.
  [[nodiscard]] constexpr std::uint64_t integer() const noexcept { return value_.integer; }
  [[nodiscard]] constexpr double real() const noexcept { return value_.real; }
  /// Of bytes, units, a string up to its zero, a pointer or an object.
  [[nodiscard]] constexpr const void* pointer() const noexcept { return value_.pointer; }
  /// The number of bytes or units.
  [[nodiscard]] constexpr std::size_t size() const noexcept { return size_; }

 private:
  template <class T>
  static constexpr bool isSigned() noexcept {
    if constexpr (std::is_enum_v<T>) {
      return std::is_signed_v<std::underlying_type_t<T>>;
    } else {
      return std::is_signed_v<T>;
    }
  }

  union Value {
    std::uint64_t integer;
    double real;
    const void* pointer;
  };

  Kind kind_;
  Value value_;
  std::size_t size_ = 0;
};

/// All arguments of a format, as a variadic message carries them.
struct FormatArguments {
  using VariadicTailTag = void;
  std::span<const FormatArgument> list;
};

}  // namespace brindle
