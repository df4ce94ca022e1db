#include "Platform/Foundation/Internal/TextFormat.h"

#include <locale.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Foundation/Internal/FormatParser.h"
#include "Platform/Foundation/Internal/TextEncoding.h"

namespace brindle::internal {
namespace {

using Kind = FormatArgument::Kind;

constexpr TextView kNull = TextView::latin1("(null)");

// A conversion with its arguments found: what is left to do is to print one value.
struct Job {
  FormatSpecification spec;
  std::size_t width = 0;
  std::optional<std::size_t> precision;
  const FormatArgument* argument = nullptr;
};

// The plain locale for this thread while it lives: the host's decimal comma is not wanted.
class PlainLocale {
 public:
  PlainLocale() noexcept : previous_(::uselocale(shared())) {}
  ~PlainLocale() { ::uselocale(previous_); }
  PlainLocale(const PlainLocale&) = delete;
  PlainLocale& operator=(const PlainLocale&) = delete;

 private:
  static locale_t shared() noexcept {
    static const locale_t plain = ::newlocale(LC_ALL_MASK, "C", nullptr);
    return plain;
  }
  locale_t previous_;
};

std::uint64_t integerFromReal(double value) noexcept {
  constexpr double kLimit = 9223372036854775808.0;  // 2^63
  if (std::isnan(value)) return 0;
  if (value >= kLimit) {
    return value >= 2 * kLimit ? std::numeric_limits<std::uint64_t>::max()
                               : static_cast<std::uint64_t>(value);
  }
  const std::int64_t cut =
      value < -kLimit ? std::numeric_limits<std::int64_t>::min() : static_cast<std::int64_t>(value);
  return static_cast<std::uint64_t>(cut);
}

// What an integer conversion sees of the argument.
std::optional<std::uint64_t> integerOf(const FormatArgument& argument) noexcept {
  switch (argument.kind()) {
    case Kind::signedInteger:
    case Kind::unsignedInteger:
      return argument.integer();
    case Kind::floating:
      return integerFromReal(argument.real());
    case Kind::pointer:
    case Kind::object:
      return reinterpret_cast<std::uintptr_t>(argument.pointer());
    case Kind::bytes:
    case Kind::cString:
    case Kind::units:
    case Kind::cUnits:
      break;
  }
  return std::nullopt;
}

std::optional<double> realOf(const FormatArgument& argument) noexcept {
  switch (argument.kind()) {
    case Kind::signedInteger:
      return static_cast<double>(static_cast<std::int64_t>(argument.integer()));
    case Kind::unsignedInteger:
      return static_cast<double>(argument.integer());
    case Kind::floating:
      return argument.real();
    default:
      return std::nullopt;
  }
}

unsigned bitsOf(FormatLength length) noexcept {
  switch (length) {
    case FormatLength::hh:
      return 8;
    case FormatLength::h:
      return 16;
    case FormatLength::none:
      return 32;
    default:
      return 64;
  }
}

void appendPadded(TextBuilder& target, TextView text, const Job& job) {
  const std::size_t fill = job.width > text.size() ? job.width - text.size() : 0;
  if (!job.spec.leftAligned) target.append(fill, u' ');
  target.append(text);
  if (job.spec.leftAligned) target.append(fill, u' ');
}

// Sign or prefix, zeros, digits.
void appendNumber(TextBuilder& target, std::string_view prefix, std::string_view digits,
                  const Job& job) {
  std::size_t size = prefix.size() + digits.size();
  std::size_t zeros = 0;
  if (job.precision) {
    zeros = *job.precision > digits.size() ? *job.precision - digits.size() : 0;
  } else if (job.spec.zero && !job.spec.leftAligned && job.width > size) {
    zeros = job.width - size;
  }
  size += zeros;
  const std::size_t fill = job.width > size ? job.width - size : 0;
  if (!job.spec.leftAligned) target.append(fill, u' ');
  target.append(TextView::latin1(prefix));
  target.append(zeros, u'0');
  target.append(TextView::latin1(digits));
  if (job.spec.leftAligned) target.append(fill, u' ');
}

void appendInteger(TextBuilder& target, const Job& job) {
  const auto value = integerOf(*job.argument);
  if (!value) return;
  const char conversion = job.spec.conversion;
  const unsigned unused = 64 - bitsOf(job.spec.length);
  std::uint64_t magnitude = *value << unused >> unused;
  std::string_view prefix;
  if (conversion == 'd' || conversion == 'i') {
    const bool negative = (magnitude >> (63 - unused)) != 0;
    if (negative) magnitude = (0 - magnitude) << unused >> unused;
    prefix = negative ? "-" : job.spec.plus ? "+" : job.spec.space ? " " : "";
  }
  const bool isHex = conversion == 'x' || conversion == 'X';
  char buffer[24];
  const int base = conversion == 'o' ? 8 : isHex ? 16 : 10;
  const char* end = std::to_chars(buffer, buffer + sizeof buffer, magnitude, base).ptr;
  std::string_view digits(buffer, static_cast<std::size_t>(end - buffer));
  if (conversion == 'X') {
    std::transform(buffer, buffer + digits.size(), buffer,
                   [](char c) { return c >= 'a' ? static_cast<char>(c - 32) : c; });
  }
  if (magnitude == 0 && job.precision == 0u) digits = {};
  if (job.spec.alternate) {
    if (isHex && magnitude != 0) prefix = conversion == 'x' ? "0x" : "0X";
    if (conversion == 'o' && (digits.empty() || digits[0] != '0') &&
        job.precision.value_or(0) <= digits.size()) {
      prefix = "0";
    }
  }
  appendNumber(target, prefix, digits, job);
}

void appendPointer(TextBuilder& target, const Job& job) {
  const FormatArgument& argument = *job.argument;
  if (argument.kind() == Kind::floating) return;
  const auto value =
      integerOf(argument).value_or(reinterpret_cast<std::uintptr_t>(argument.pointer()));
  char buffer[24];
  const char* end = std::to_chars(buffer, buffer + sizeof buffer, value, 16).ptr;
  appendNumber(target, "0x", {buffer, static_cast<std::size_t>(end - buffer)}, job);
}

void appendReal(TextBuilder& target, const Job& job) {
  const auto value = realOf(*job.argument);
  if (!value) return;
  char format[16];
  char* at = format;
  *at++ = '%';
  if (job.spec.leftAligned) *at++ = '-';
  if (job.spec.plus) *at++ = '+';
  if (job.spec.space) *at++ = ' ';
  if (job.spec.alternate) *at++ = '#';
  if (job.spec.zero) *at++ = '0';
  for (const char c : {'*', '.', '*', job.spec.conversion, '\0'}) *at++ = c;
  const int width = static_cast<int>(job.width);
  const int precision = job.precision ? static_cast<int>(*job.precision) : -1;
  const PlainLocale plain;
  char buffer[128];
  // The format holds nothing but what was put in above.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  const int size = std::snprintf(buffer, sizeof buffer, format, width, precision, *value);
  if (size < 0) return;
  const auto count = static_cast<std::size_t>(size);
  if (count < sizeof buffer) return target.append(TextView::latin1({buffer, count}));
  std::string large(count + 1, '\0');
  std::snprintf(large.data(), large.size(), format, width, precision, *value);
#pragma GCC diagnostic pop
  large.pop_back();
  target.append(TextView::latin1(large));
}

void appendCharacter(TextBuilder& target, const Job& job) {
  const auto value = integerOf(*job.argument);
  if (!value) return;
  const bool isWide = job.spec.conversion == 'C' || job.spec.length == FormatLength::l;
  const char32_t character = static_cast<char32_t>(*value & (isWide ? 0x1FFFFF : 0xFF));
  TextBuilder text;
  if (character >= 0x10000 && character <= 0x10FFFF) {
    text.append(static_cast<char16_t>(0xD7C0 + (character >> 10)));
    text.append(static_cast<char16_t>(0xDC00 + (character & 0x3FF)));
  } else {
    text.append(static_cast<char16_t>(character));
  }
  appendPadded(target, text, job);
}

// The first units of `text`, without one half of a pair.
TextView cut(TextView text, std::optional<std::size_t> precision) noexcept {
  if (!precision || *precision >= text.size()) return text;
  const TextView kept = text.sub(0, *precision);
  const bool splitsPair = !kept.empty() && (kept[kept.size() - 1] & 0xFC00) == 0xD800 &&
                          (text[kept.size()] & 0xFC00) == 0xDC00;
  return splitsPair ? kept.sub(0, kept.size() - 1) : kept;
}

// UTF-8. A precision counts its bytes, and no more of them are read.
void appendBytes(TextBuilder& target, const Job& job) {
  const auto* bytes = static_cast<const char*>(job.argument->pointer());
  if (bytes == nullptr && job.argument->kind() == Kind::cString) {
    return appendPadded(target, cut(kNull, job.precision), job);
  }
  const bool isC = job.argument->kind() == Kind::cString;
  std::size_t size = isC ? 0 : job.argument->size();
  if (isC) size = job.precision ? ::strnlen(bytes, *job.precision) : std::strlen(bytes);
  std::string_view string(bytes, size);
  if (job.precision && *job.precision <= size) {
    string = withoutCutCharacter(string.substr(0, *job.precision));
  }
  const TextView ascii = TextView::latin1(string);
  if (ascii.isAscii()) return appendPadded(target, ascii, job);
  appendPadded(target, textFromUtf8Replacing(string), job);
}

// As far as the zero unit. A precision counts units, and no more of them are read.
TextView unitsOf(const char16_t* string, std::optional<std::size_t> precision) noexcept {
  std::size_t size = 0;
  while ((!precision || size < *precision) && string[size] != u'\0') ++size;
  const bool splitsPair = precision == size && size > 0 && (string[size - 1] & 0xFC00) == 0xD800;
  return TextView::utf16({string, splitsPair ? size - 1 : size});
}

// "%@", "%s", "%S": whatever the argument is, its text.
void appendText(TextBuilder& target, Job job, DescribeObject describe) {
  const FormatArgument& argument = *job.argument;
  switch (argument.kind()) {
    case Kind::signedInteger:
    case Kind::unsignedInteger:
      job.spec.conversion = argument.kind() == Kind::signedInteger ? 'd' : 'u';
      job.spec.length = FormatLength::ll;
      job.precision.reset();
      return appendInteger(target, job);
    case Kind::floating:
      job.spec.conversion = 'g';
      job.precision.reset();
      return appendReal(target, job);
    case Kind::bytes:
    case Kind::cString:
      return appendBytes(target, job);
    case Kind::units: {
      const std::u16string_view units(static_cast<const char16_t*>(argument.pointer()),
                                      argument.size());
      return appendPadded(target, cut(TextView::utf16(units), job.precision), job);
    }
    case Kind::cUnits:
      if (const auto* string = static_cast<const char16_t*>(argument.pointer())) {
        return appendPadded(target, unitsOf(string, job.precision), job);
      }
      return appendPadded(target, cut(kNull, job.precision), job);
    case Kind::pointer:
    case Kind::object:
      if (argument.pointer() == nullptr) {
        return appendPadded(target, cut(kNull, job.precision), job);
      }
      if (argument.kind() == Kind::pointer) return appendPointer(target, job);
      if (job.width == 0 && !job.precision) return describe(target, argument.pointer());
      TextBuilder text;
      describe(text, argument.pointer());
      return appendPadded(target, cut(text, job.precision), job);
  }
}

void appendConversion(TextBuilder& target, const Job& job, DescribeObject describe) {
  switch (job.spec.conversion) {
    case 'n':
      return;
    case 'c':
    case 'C':
      return appendCharacter(target, job);
    case 's':
    case 'S':
    case '@':
      return appendText(target, job, describe);
    case 'p':
      return appendPointer(target, job);
    case 'd':
    case 'i':
    case 'u':
    case 'x':
    case 'X':
    case 'o':
      return appendInteger(target, job);
    default:
      return appendReal(target, job);
  }
}

const FormatArgument* argumentAt(std::span<const FormatArgument> arguments, std::size_t index) {
  return index < arguments.size() ? &arguments[index] : nullptr;
}

// The number that a field says; negative ones are possible where an argument says it.
std::optional<std::int64_t> fieldValue(const FormatField& field,
                                       std::span<const FormatArgument> arguments) {
  if (field.kind == FormatField::Kind::none) return std::nullopt;
  if (field.kind == FormatField::Kind::fixed) return static_cast<std::int64_t>(field.value);
  const FormatArgument* argument = argumentAt(arguments, field.value);
  const auto value = argument != nullptr ? integerOf(*argument) : std::nullopt;
  if (!value) return std::nullopt;
  constexpr std::int64_t kLimit = kMaximumFormatField;
  return std::clamp<std::int64_t>(static_cast<std::int32_t>(*value), -kLimit, kLimit);
}

Job jobFor(const FormatSpecification& spec, std::span<const FormatArgument> arguments) {
  Job job{spec, 0, std::nullopt, argumentAt(arguments, spec.argument)};
  constexpr auto kNone = FormatField::Kind::none;
  if (spec.width.kind == kNone && spec.precision.kind == kNone) return job;
  const std::int64_t width = fieldValue(spec.width, arguments).value_or(0);
  if (width < 0) job.spec.leftAligned = true;
  job.width = static_cast<std::size_t>(width < 0 ? -width : width);
  const auto precision = fieldValue(spec.precision, arguments);
  if (precision && *precision >= 0) job.precision = static_cast<std::size_t>(*precision);
  return job;
}

// What most formats are made of, without the rest of the work. False: left to that.
bool appendPlain(TextBuilder& target, char conversion, const FormatArgument& argument,
                 DescribeObject describe) {
  if (conversion == '@') {
    if (argument.kind() != Kind::object || argument.pointer() == nullptr) return false;
    describe(target, argument.pointer());
    return true;
  }
  if (argument.kind() != Kind::signedInteger && argument.kind() != Kind::unsignedInteger) {
    return false;
  }
  char buffer[12];
  const auto value = static_cast<std::int32_t>(argument.integer());
  const char* end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
  target.append(TextView::latin1({buffer, static_cast<std::size_t>(end - buffer)}));
  return true;
}

}  // namespace

void formatText(TextBuilder& target, TextView format, std::span<const FormatArgument> arguments,
                DescribeObject describe) {
  FormatParser parser(format);
  for (;;) {
    switch (parser.next()) {
      case FormatParser::Piece::end:
        return;
      case FormatParser::Piece::text:
        target.append(parser.text());
        break;
      case FormatParser::Piece::conversion: {
        const FormatSpecification& spec = parser.specification();
        const FormatArgument* argument = argumentAt(arguments, spec.argument);
        if (argument == nullptr) break;
        if (parser.isPlain() && appendPlain(target, spec.conversion, *argument, describe)) break;
        appendConversion(target, jobFor(spec, arguments), describe);
        break;
      }
    }
  }
}

}  // namespace brindle::internal
