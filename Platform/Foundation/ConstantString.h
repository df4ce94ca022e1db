// Strings that exist before the program runs: what "text"_ns is made of. Clients use the literal.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <type_traits>

#include <Brindle/Platform/FixedString.h>
#include <Brindle/Platform/Object.h>

namespace brindle::detail {

/// The variables of every string object: where its text lies. One byte per unit (Latin-1) where
/// every unit is below 256, else two. A zero unit follows the text of immutable strings.
struct StringContents {
  const void* units = "";
  std::size_t length = 0;
  bool isWide = false;
  bool ownsUnits = false;
  std::atomic<std::size_t> hash{0};        // once asked for
  std::atomic<const char*> utf8{nullptr};  // once asked for, when it is not the units themselves

  constexpr StringContents() noexcept = default;
  constexpr StringContents(const void* text, std::size_t size, bool wide) noexcept
      : units(text), length(size), isWide(wide) {}
};

/// The memory of a string object.
struct StringRecord : ObjectRecord {
  StringContents contents;

  constexpr StringRecord(ClassRecord* cls, const void* units, std::size_t length,
                         bool isWide) noexcept
      : ObjectRecord(cls, kCountImmortal, 0), contents(units, length, isWide) {}
};

/// The character that begins at `index` of UTF-8, which is left behind it. Not UTF-8: the compiler
/// refuses the literal.
constexpr char32_t literalCharacter(std::string_view text, std::size_t& index) {
  const auto byte = [&text, &index] {
    if (index == text.size()) throw "a string literal is UTF-8";
    return static_cast<unsigned char>(text[index++]);
  };
  const char32_t first = byte();
  if (first < 0x80) return first;
  if (first < 0xC2 || first > 0xF4) throw "a string literal is UTF-8";
  const unsigned more = first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
  char32_t character = first & (0x3FU >> more);
  for (unsigned i = 0; i < more; ++i) {
    const char32_t next = byte();
    if ((next & 0xC0U) != 0x80) throw "a string literal is UTF-8";
    character = character << 6U | (next & 0x3FU);
  }
  return character;
}

struct LiteralMeasure {
  std::size_t units = 0;
  bool isWide = false;
};

constexpr LiteralMeasure measureLiteral(std::string_view text) {
  LiteralMeasure measure;
  for (std::size_t i = 0; i < text.size();) {
    const char32_t character = literalCharacter(text, i);
    measure.units += character < 0x10000 ? 1 : 2;
    measure.isWide = measure.isWide || character > 0xFF;
  }
  return measure;
}

/// The units of a literal, and a zero unit.
template <FixedString Text>
constexpr auto literalUnits() {
  constexpr LiteralMeasure measure = measureLiteral(Text.view());
  using Unit = std::conditional_t<measure.isWide, char16_t, char>;
  std::array<Unit, measure.units + 1> units{};
  std::size_t at = 0;
  for (std::size_t i = 0; i < Text.size();) {
    const char32_t character = literalCharacter(Text.view(), i);
    if (character < 0x10000) {
      units[at++] = static_cast<Unit>(character);
    } else {
      units[at++] = static_cast<Unit>(0xD7C0 + (character >> 10U));
      units[at++] = static_cast<Unit>(0xDC00 + (character & 0x3FFU));
    }
  }
  return units;
}

template <FixedString Text>
BRINDLE_LOCAL inline constexpr auto literalText = literalUnits<Text>();

}  // namespace brindle::detail
