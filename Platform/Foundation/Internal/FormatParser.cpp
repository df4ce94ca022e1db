#include "Platform/Foundation/Internal/FormatParser.h"

#include <algorithm>
#include <string_view>

#include "Platform/Foundation/Internal/TextUnicode.h"

namespace brindle::internal {
namespace {

// Far above any list of arguments, and far below where adding a digit overflows.
constexpr std::size_t kHugeNumber = 1'000'000'000;

std::size_t findPercent(TextView format, std::size_t position) noexcept {
  return format.visit([position](auto units) {
    const auto from = units.begin() + static_cast<std::ptrdiff_t>(position);
    return static_cast<std::size_t>(std::find(from, units.end(), '%') - units.begin());
  });
}

}  // namespace

FormatParser::Piece FormatParser::next() noexcept {
  if (position_ == format_.size()) return Piece::end;
  if (takePlainConversion()) return Piece::conversion;
  const std::size_t start = position_;
  position_ = findPercent(format_, start);
  if (position_ > start) {
    text_ = format_.sub(start, position_ - start);
    return Piece::text;
  }
  ++position_;
  const std::size_t firstArgument = nextArgument_;
  if (takeConversion()) {
    if (found_.conversion != '%') return Piece::conversion;
    text_ = TextView::latin1("%");
  } else {
    nextArgument_ = firstArgument;
    text_ = format_.sub(start, position_ - start);
  }
  return Piece::text;
}

char16_t FormatParser::peek() const noexcept {
  return position_ < format_.size() ? format_[position_] : u'\0';
}

bool FormatParser::take(char unit) noexcept {
  if (position_ == format_.size() || format_[position_] != static_cast<unsigned char>(unit)) {
    return false;
  }
  ++position_;
  return true;
}

bool FormatParser::takeNumber(std::size_t& number) noexcept {
  const std::size_t start = position_;
  number = 0;
  for (; isAsciiDigit(peek()); ++position_) {
    number = std::min(number * 10 + static_cast<std::size_t>(peek() - '0'), kHugeNumber);
  }
  return position_ > start;
}

bool FormatParser::takePosition(std::size_t& argument) noexcept {
  const std::size_t start = position_;
  std::size_t number;
  if (takeNumber(number) && take('$')) {
    argument = number == 0 ? FormatSpecification::kNoArgument : number - 1;
    return true;
  }
  position_ = start;
  return false;
}

void FormatParser::takeFlags() noexcept {
  for (;; ++position_) {
    switch (peek()) {
      case '-':
        found_.leftAligned = true;
        break;
      case '+':
        found_.plus = true;
        break;
      case ' ':
        found_.space = true;
        break;
      case '#':
        found_.alternate = true;
        break;
      case '0':
        found_.zero = true;
        break;
      case '\'':  // Digits are grouped as the plain locale does: not at all.
        break;
      default:
        return;
    }
  }
}

FormatField FormatParser::takeField() noexcept {
  FormatField field;
  if (take('*')) {
    field.kind = FormatField::Kind::argument;
    if (!takePosition(field.value)) field.value = nextArgument_++;
  } else if (takeNumber(field.value)) {
    field.kind = FormatField::Kind::fixed;
    field.value = std::min<std::size_t>(field.value, kMaximumFormatField);
  }
  return field;
}

void FormatParser::takeLength() noexcept {
  if (take('h')) {
    found_.length = take('h') ? FormatLength::hh : FormatLength::h;
  } else if (take('l')) {
    found_.length = take('l') ? FormatLength::ll : FormatLength::l;
  } else if (take('q')) {
    found_.length = FormatLength::q;
  } else if (take('L')) {
    found_.length = FormatLength::L;
  } else if (take('z')) {
    found_.length = FormatLength::z;
  } else if (take('t')) {
    found_.length = FormatLength::t;
  } else if (take('j')) {
    found_.length = FormatLength::j;
  }
}

bool FormatParser::takePlainConversion() noexcept {
  if (format_.size() - position_ < 2 || format_[position_] != u'%') return false;
  const char16_t letter = format_[position_ + 1];
  if (letter != u'@' && letter != u'd' && letter != u'i') return false;
  position_ += 2;
  if (hasDetails_) found_ = {};
  hasDetails_ = false;
  isPlain_ = true;
  found_.conversion = static_cast<char>(letter);
  found_.argument = nextArgument_++;
  return true;
}

bool FormatParser::takeConversion() noexcept {
  found_ = {};
  hasDetails_ = true;
  isPlain_ = false;
  std::size_t argument = 0;
  const bool hasPosition = takePosition(argument);
  takeFlags();
  found_.width = takeField();
  if (take('.')) {
    found_.precision = takeField();
    if (found_.precision.kind == FormatField::Kind::none) {
      found_.precision.kind = FormatField::Kind::fixed;
    }
  }
  takeLength();
  if (position_ == format_.size()) return false;
  const char16_t letter = format_[position_++];
  constexpr std::u16string_view kConversions = u"diuxXocCsSfFeEgGaAp@n%";
  if (kConversions.find(letter) == std::u16string_view::npos) return false;
  found_.conversion = static_cast<char>(letter);
  if (letter != '%') found_.argument = hasPosition ? argument : nextArgument_++;
  return true;
}

}  // namespace brindle::internal
