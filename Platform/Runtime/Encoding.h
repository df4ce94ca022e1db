// Type encodings: the platform's text form of C types, worked out while the compiler runs.
//
// A method that takes an object and answers an integer is encoded "q24@0:8@16": the result, the
// size of all arguments, then each argument with its offset. A structure that is passed by value
// names its fields once:
//
//   template <> struct brindle::StructEncoding<NSRange> : FieldsEncoding<"_NSRange", NSUInteger,
//   NSUInteger> {};
//
// Beside the encoding stands the wire type, in which a value really travels between a sender and a
// method: every object is one kind of pointer, every integer the fixed-width type of its size.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include <Brindle/Platform/Class.h>
#include <Brindle/Platform/FixedString.h>
#include <Brindle/Platform/Object.h>
#include <Brindle/Platform/Selector.h>
#include <Brindle/Platform/Types.h>

namespace brindle {

/// Names the fields of a structure that methods take or answer by value. Specialise it by deriving
/// from `FieldsEncoding`.
template <class T>
struct StructEncoding;

namespace detail {
template <class T>
struct TypeTraits;

// A pointee may be a type that is only declared, and of such a type nothing can be asked.
template <class T>
concept CompleteClass = std::is_class_v<T> && requires {
  sizeof(T);
};

template <class T>
concept DescribedStruct = CompleteClass<T> && !Reference<T> && requires {
  StructEncoding<T>::encoding;
};

template <std::size_t Size>
struct WireInteger;
template <>
struct WireInteger<1> {
  using Type = std::uint8_t;
  static constexpr FixedString code{"b"};
};
template <>
struct WireInteger<2> {
  using Type = std::uint16_t;
  static constexpr FixedString code{"s"};
};
template <>
struct WireInteger<4> {
  using Type = std::uint32_t;
  static constexpr FixedString code{"i"};
};
template <>
struct WireInteger<8> {
  using Type = std::uint64_t;
  static constexpr FixedString code{"q"};
};

template <class T>
constexpr auto integerEncoding() {
  if constexpr (std::is_same_v<T, bool> || std::is_same_v<T, char> ||
                std::is_same_v<T, signed char>) {
    return FixedString("c");
  } else if constexpr (sizeof(T) == 1) {
    return FixedString("C");
  } else if constexpr (sizeof(T) == 2) {
    if constexpr (std::is_signed_v<T>)
      return FixedString("s");
    else
      return FixedString("S");
  } else if constexpr (sizeof(T) == 4) {
    if constexpr (std::is_signed_v<T>)
      return FixedString("i");
    else
      return FixedString("I");
  } else {
    if constexpr (std::is_signed_v<T>)
      return FixedString("q");
    else
      return FixedString("Q");
  }
}

template <class T>
requires std::is_integral_v<T>
struct TypeTraits<T> {
  using Wire = typename WireInteger<sizeof(T)>::Type;
  static constexpr auto encoding = integerEncoding<T>();
  static constexpr auto wireCode = WireInteger<sizeof(T)>::code;
  static constexpr std::size_t frameSize = sizeof(T) < 4 ? 4 : sizeof(T);
};

template <class T>
requires std::is_enum_v<T>
struct TypeTraits<T> : TypeTraits<std::underlying_type_t<T>> {
};

template <>
struct TypeTraits<void> {
  using Wire = void;
  static constexpr FixedString encoding{"v"};
  static constexpr FixedString wireCode{"v"};
  static constexpr std::size_t frameSize = 0;
};

template <>
struct TypeTraits<float> {
  using Wire = float;
  static constexpr FixedString encoding{"f"};
  static constexpr FixedString wireCode{"f"};
  static constexpr std::size_t frameSize = 4;
};

template <>
struct TypeTraits<double> {
  using Wire = double;
  static constexpr FixedString encoding{"d"};
  static constexpr FixedString wireCode{"d"};
  static constexpr std::size_t frameSize = 8;
};

template <>
struct TypeTraits<long double> {
  using Wire = long double;
  static constexpr FixedString encoding{"D"};
  static constexpr FixedString wireCode{"D"};
  static constexpr std::size_t frameSize = 16;
};

template <Reference T>
struct TypeTraits<T> {
  using Wire = ObjectRecord*;
  static constexpr auto encoding = [] {
    if constexpr (requires { typename T::BlockSignature; })
      return FixedString("@?");
    else
      return FixedString("@");
  }();
  static constexpr FixedString wireCode{"@"};
  static constexpr std::size_t frameSize = 8;
};

template <class T>
requires std::derived_from<T, Class>
struct TypeTraits<T> {
  using Wire = ObjectRecord*;
  static constexpr FixedString encoding{"#"};
  static constexpr FixedString wireCode{"@"};
  static constexpr std::size_t frameSize = 8;
};

template <>
struct TypeTraits<std::nullptr_t> {
  using Wire = ObjectRecord*;
  static constexpr FixedString encoding{"@"};
  static constexpr FixedString wireCode{"@"};
  static constexpr std::size_t frameSize = 8;
};

template <class T>
concept ReferencePointee = CompleteClass<T> && Reference<T>;

/// What an out-slot points to. A pointer to constant references is a plain one: objects lent in a
/// row.
template <class T>
concept SlotPointee = ReferencePointee<T> && !std::is_const_v<T>;

/// The typed tail of a variadic message. It travels by address and has no place in encodings.
template <class T>
concept VariadicTail = requires {
  typename T::VariadicTailTag;
};

template <VariadicTail T>
struct TypeTraits<T> {
  using Wire = void*;
  static constexpr FixedString<0> encoding{};
  static constexpr FixedString wireCode{"~"};
  static constexpr std::size_t frameSize = 0;
};

template <class T>
constexpr auto pointerEncoding() {
  using Pointee = std::remove_cv_t<T>;
  if constexpr (std::is_same_v<Pointee, SelectorRecord>) {
    return FixedString(":");
  } else if constexpr (std::is_same_v<Pointee, char>) {
    if constexpr (std::is_const_v<T>)
      return FixedString("r*");
    else
      return FixedString("*");
  } else if constexpr (std::is_function_v<T>) {
    return FixedString("^?");
  } else if constexpr (ReferencePointee<Pointee>) {
    if constexpr (std::is_const_v<T>)
      return FixedString("r^@");
    else
      return FixedString("^@");
  } else if constexpr (std::is_class_v<Pointee> && !DescribedStruct<Pointee>) {
    return FixedString("^v");
  } else if constexpr (std::is_const_v<T>) {
    return FixedString("r^") + TypeTraits<Pointee>::encoding;
  } else {
    return FixedString("^") + TypeTraits<Pointee>::encoding;
  }
}

template <class T>
requires(!SlotPointee<T>) struct TypeTraits<T*> {
  using Wire = void*;
  static constexpr auto encoding = pointerEncoding<T>();
  static constexpr FixedString wireCode{"p"};
  static constexpr std::size_t frameSize = 8;
};

/// An out-slot: where a method stores an object for its caller.
template <class T>
requires(SlotPointee<T>) struct TypeTraits<T*> {
  using Wire = ObjectRecord**;
  static constexpr FixedString encoding{"^@"};
  static constexpr FixedString wireCode{"&"};
  static constexpr std::size_t frameSize = 8;
};

template <DescribedStruct T>
struct TypeTraits<T> {
  static_assert(std::is_trivially_copyable_v<T>,
                "a structure that travels by value must be trivially copyable");
  using Wire = T;
  static constexpr auto encoding = StructEncoding<T>::encoding;
  static constexpr auto wireCode = StructEncoding<T>::wireCode;
  static constexpr std::size_t frameSize = sizeof(T);
};

template <class T>
struct TypeTraits {
  static_assert(!std::is_same_v<T, T>,
                "this type cannot be an argument or result of a method: use an integer, a floating "
                "type, a pointer, a reference to an object, or a structure described with "
                "brindle::StructEncoding");
};

template <class T>
using Wire = typename TypeTraits<std::remove_cvref_t<T>>::Wire;

template <class T>
inline constexpr auto encodingOf = TypeTraits<std::remove_cvref_t<T>>::encoding;

template <class A, std::size_t Offset>
constexpr auto argumentEncoding() {
  if constexpr (VariadicTail<std::remove_cvref_t<A>>)
    return FixedString<0>{};
  else
    return encodingOf<A> + decimal<Offset>();
}

/// Where an argument lies in the frame, counted as the platform counts.
template <std::size_t First, class... A>
constexpr std::size_t frameOffset(std::size_t index) {
  const std::size_t sizes[] = {TypeTraits<std::remove_cvref_t<A>>::frameSize..., 0};
  std::size_t offset = First;
  for (std::size_t i = 0; i < index; ++i) offset += sizes[i];
  return offset;
}

/// Result, frame size, self and selector (or the block alone), then the arguments with their
/// offsets.
template <bool IsBlock, class R, class... A>
constexpr auto methodEncoding() {
  constexpr std::size_t first = IsBlock ? 8 : 16;
  constexpr std::size_t frame = (first + ... + TypeTraits<std::remove_cvref_t<A>>::frameSize);
  auto head = [] {
    if constexpr (IsBlock)
      return encodingOf<R> + decimal<frame>() + FixedString("@?0");
    else
      return encodingOf<R> + decimal<frame>() + FixedString("@0:8");
  }();
  return [&]<std::size_t... I>(std::index_sequence<I...>) {
    return (head + ... + argumentEncoding<A, frameOffset<first, A...>(I)>());
  }
  (std::index_sequence_for<A...>{});
}

template <class R, class... A>
BRINDLE_LOCAL inline constexpr auto methodTypes = methodEncoding<false, R, A...>();

template <class R, class... A>
BRINDLE_LOCAL inline constexpr auto blockTypes = methodEncoding<true, R, A...>();

/// The wire codes of result and arguments: what a checked send compares.
template <class R, class... A>
BRINDLE_LOCAL inline constexpr auto wireTypes = (TypeTraits<std::remove_cvref_t<R>>::wireCode +
                                                 ... +
                                                 TypeTraits<std::remove_cvref_t<A>>::wireCode);

}  // namespace detail

/// The encoding and wire form of a structure with these fields, in order.
template <FixedString Name, class... Fields>
struct FieldsEncoding {
  static constexpr auto encoding = ((FixedString("{") + Name + FixedString("=")) + ... +
                                    detail::encodingOf<Fields>)+FixedString("}");
  static constexpr auto wireCode =
      (FixedString("{") + ... + detail::TypeTraits<Fields>::wireCode) + FixedString("}");
};

/// The platform's encoding of a C++ type: `typeEncoding<int>()` is "i". As `@encode` on the
/// platform.
template <class T>
constexpr const char* typeEncoding() {
  return detail::encodingOf<T>.c_str();
}

}  // namespace brindle
