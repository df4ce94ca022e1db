// A format is text with conversions: "%", then a position ("2$"), flags ("-+ #0'"), a width, a
// precision (".3"), a length ("ll") and the conversion's letter. Width and precision may be "*",
// taken from the arguments. Formats may come from files, so nothing in one is trusted: numbers are
// bounded, and what is no conversion is text.
#pragma once

#include <cstddef>
#include <cstdint>

#include "Platform/Foundation/Internal/Text.h"

namespace brindle::internal {

/// The widths and precisions that are honoured; greater ones are cut to it.
inline constexpr unsigned kMaximumFormatField = 16384;

enum class FormatLength : std::uint8_t { none, hh, h, l, ll, q, L, z, t, j };

/// A width or a precision: absent, a number, or the number of the argument that says it.
struct FormatField {
  enum class Kind : std::uint8_t { none, fixed, argument };
  Kind kind = Kind::none;
  std::size_t value = 0;
};

/// One conversion. Arguments are numbered from 0.
struct FormatSpecification {
  static constexpr std::size_t kNoArgument = static_cast<std::size_t>(-1);

  bool leftAligned = false;
  bool plus = false;
  bool space = false;
  bool alternate = false;
  bool zero = false;
  FormatField width;
  FormatField precision;
  FormatLength length = FormatLength::none;
  char conversion = 0;  // One of d i u x X o c C s S f F e E g G a A p @ n
  std::size_t argument = kNoArgument;
};

/// Takes a format apart from its start to its end.
class FormatParser {
 public:
  enum class Piece { end, text, conversion };

  /// `format` is lent.
  explicit FormatParser(TextView format) noexcept : format_(format) {}

  /// Reads the next piece. Text stands in `text()`, and so does what looks like a conversion but is
  /// none, as it is written; "%%" is the text "%".
  Piece next() noexcept;

  [[nodiscard]] TextView text() const noexcept { return text_; }
  [[nodiscard]] const FormatSpecification& specification() const noexcept { return found_; }
  /// Whether the conversion is one of "%@", "%d" and "%i", with nothing before its letter.
  [[nodiscard]] bool isPlain() const noexcept { return isPlain_; }

 private:
  [[nodiscard]] char16_t peek() const noexcept;
  bool take(char unit) noexcept;
  bool takeNumber(std::size_t& number) noexcept;
  bool takePosition(std::size_t& argument) noexcept;
  void takeFlags() noexcept;
  FormatField takeField() noexcept;
  void takeLength() noexcept;
  /// The usual ones, with nothing between the percent sign and the letter.
  bool takePlainConversion() noexcept;
  /// The others; the percent sign is behind us.
  bool takeConversion() noexcept;

  TextView format_;
  std::size_t position_ = 0;
  std::size_t nextArgument_ = 0;
  TextView text_;
  FormatSpecification found_;
  bool isPlain_ = false;
  bool hasDetails_ = false;  // whether more than the letter and the argument may be set
};

}  // namespace brindle::internal
