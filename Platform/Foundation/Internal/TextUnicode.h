// What the Unicode tables say about text: case, canonical equivalence (one letter with its accent
// is the same text as the letter followed by the accent), white space, and the order that readers
// of a language expect. The only unit that asks ICU about text.
#pragma once

#include <cstddef>
#include <string>

#include "Platform/Foundation/Internal/Text.h"

namespace brindle::internal {

/// What two texts may differ in and still match.
struct TextFolding {
  bool canonical = true;              // Canonically equivalent characters match.
  bool caseInsensitive = false;       // Full case folding: U+00DF matches "SS".
  bool diacriticInsensitive = false;  // Marks do not count; implies `canonical`.

  [[nodiscard]] bool isNone() const noexcept {
    return !canonical && !caseInsensitive && !diacriticInsensitive;
  }
};

/// The units that are the same for all texts that match under `folding`.
std::u16string foldedText(TextView text, TextFolding folding);

/// The end of the shortest piece of `text` from `position` (below the size) on that folds by
/// itself: a character with the marks that follow it, or only the character without `canonical`.
std::size_t foldingPieceEnd(TextView text, std::size_t position, TextFolding folding);

/// Whether such a piece begins at `position`, which is below the size. One does at 0.
bool isFoldingPieceStart(TextView text, std::size_t position, TextFolding folding);

/// Appends the folded form of a piece, or of several.
void appendFolded(std::u16string& target, TextView pieces, TextFolding folding);

/// Case by the rules that belong to no language. A word for `capitalizedText` is what stands
/// between white space; its first letter is made upper case, the rest lower case.
Text uppercaseText(TextView text);
Text lowercaseText(TextView text);
Text capitalizedText(TextView text);

/// -1, 0 or 1, in the order of the language that `locale` (such as "sv_SE") names; the general
/// order for "" and for a language that is not known.
int compareInLocale(TextView a, TextView b, const std::string& locale, bool caseInsensitive);

/// Whether the character (no surrogate) is white space, line breaks included.
bool isWhiteSpace(char32_t character) noexcept;

constexpr bool isAsciiDigit(char32_t character) noexcept {
  return character >= '0' && character <= '9';
}
constexpr char16_t asciiLower(char16_t unit) noexcept {
  return unit >= 'A' && unit <= 'Z' ? static_cast<char16_t>(unit + 32) : unit;
}
constexpr char16_t asciiUpper(char16_t unit) noexcept {
  return unit >= 'a' && unit <= 'z' ? static_cast<char16_t>(unit - 32) : unit;
}

}  // namespace brindle::internal
