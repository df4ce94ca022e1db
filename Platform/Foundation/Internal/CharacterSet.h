// A set of Unicode characters, as sorted ranges, with a bitmap for the ASCII ones.
#pragma once

#include <bitset>
#include <cstddef>
#include <optional>
#include <vector>

#include "Platform/Foundation/Internal/Text.h"

namespace brindle::internal {

/// Characters by what the Unicode tables say of them.
enum class CharacterClass {
  whitespace,            // spaces and the tab
  whitespaceAndNewline,  // those and line breaks
  newline,
  decimalDigit,
  letter,  // with the marks that belong to letters
  lowercaseLetter,
  uppercaseLetter,  // and title case
  alphanumeric,
  punctuation,
  symbol,
  control,
};

class CharacterSet {
 public:
  struct Range {
    char32_t first;
    char32_t last;
    friend bool operator==(const Range&, const Range&) = default;
  };

  CharacterSet() = default;
  explicit CharacterSet(std::vector<Range> ranges);
  /// Every character of the text.
  static CharacterSet of(TextView text);
  static CharacterSet of(CharacterClass characters);

  /// Everything up to U+10FFFF that is not in this set.
  [[nodiscard]] CharacterSet inverted() const;

  [[nodiscard]] bool contains(char32_t character) const noexcept {
    return character < kAscii ? ascii_[character] : containsInRanges(character);
  }
  [[nodiscard]] bool isSupersetOf(const CharacterSet& other) const noexcept;
  [[nodiscard]] std::size_t hash() const noexcept;
  friend bool operator==(const CharacterSet& a, const CharacterSet& b) noexcept {
    return a.ranges_ == b.ranges_;
  }

  /// The first, or the last, character of the text that is in the set; with `anchored` only the one
  /// at the very start or end.
  [[nodiscard]] std::optional<TextRange> find(TextView text, bool backwards, bool anchored) const;
  /// How many units at the start of the text belong to members.
  [[nodiscard]] std::size_t span(TextView text) const;
  /// The part of the text without the members at both ends.
  [[nodiscard]] TextRange trimmed(TextView text) const;

 private:
  static constexpr std::size_t kAscii = 128;
  // The last range that begins at the character or before it.
  [[nodiscard]] const Range* rangeFrom(char32_t character) const noexcept;
  [[nodiscard]] bool containsInRanges(char32_t character) const noexcept;

  std::vector<Range> ranges_;  // sorted, apart from each other
  std::bitset<kAscii> ascii_;
};

}  // namespace brindle::internal
