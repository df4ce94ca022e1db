// Text as a template argument: the selectors that stand in the code, and the type encodings that
// are put together from them while the compiler runs.
#pragma once

#include <cstddef>
#include <string_view>

namespace brindle {

/// A constant text of N characters and a closing NUL, usable as a template argument.
template <std::size_t N>
struct FixedString {
  char text[N + 1] = {};

  constexpr FixedString() = default;
  // NOLINTNEXTLINE(google-explicit-constructor): a literal is meant to convert.
  constexpr FixedString(const char (&literal)[N + 1]) {
    for (std::size_t i = 0; i <= N; ++i) text[i] = literal[i];
  }

  [[nodiscard]] constexpr std::size_t size() const { return N; }
  [[nodiscard]] constexpr const char* c_str() const { return text; }
  [[nodiscard]] constexpr std::string_view view() const { return {text, N}; }
};

template <std::size_t N>
FixedString(const char (&)[N]) -> FixedString<N - 1>;

/// Two constant texts, one after the other.
template <std::size_t N, std::size_t M>
constexpr FixedString<N + M> operator+(const FixedString<N>& a, const FixedString<M>& b) {
  FixedString<N + M> sum;
  for (std::size_t i = 0; i < N; ++i) sum.text[i] = a.text[i];
  for (std::size_t i = 0; i < M; ++i) sum.text[N + i] = b.text[i];
  return sum;
}

namespace detail {

constexpr std::size_t decimalDigits(std::size_t value) {
  std::size_t digits = 1;
  while (value >= 10) {
    value /= 10;
    ++digits;
  }
  return digits;
}

/// The decimal form of a number, as a constant text.
template <std::size_t Value>
constexpr FixedString<decimalDigits(Value)> decimal() {
  FixedString<decimalDigits(Value)> text;
  std::size_t value = Value;
  for (std::size_t i = text.size(); i-- > 0; value /= 10) {
    text.text[i] = static_cast<char>('0' + value % 10);
  }
  return text;
}

}  // namespace detail
}  // namespace brindle
