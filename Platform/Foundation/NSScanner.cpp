#include <Brindle/Platform/NSScanner.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>

#include "Platform/Foundation/Internal/CharacterSetAccess.h"
#include "Platform/Foundation/Internal/StringAccess.h"
#include "Platform/Foundation/Internal/TextCompare.h"
#include "Platform/Foundation/Internal/TextNumbers.h"
#include "Platform/Foundation/Internal/TextUnicode.h"

namespace brindle {
namespace {

using internal::TextView;

struct Fields {
  Field<NSString> string;  // the library's own, so that its text is at hand
  Field<NSCharacterSet> skipped;
  NSUInteger location = 0;
  bool caseSensitive = false;
};

Fields& fields(const NSScanner& self) { return fieldsOf<Fields>(self); }

TextView textOf(const Fields& f) {
  if (!f.string) return {};
  return detail::textIn(detail::contentsOf(f.string.peek().record()));
}

// Where the text goes on after the characters to be skipped.
std::size_t afterSkipped(const Fields& f) {
  if (!f.skipped) return f.location;
  return f.location + detail::charactersOf(f.skipped.peek()).span(textOf(f).sub(f.location));
}

// Reads a number with `parse`, which would pass over white space that is not to be skipped.
template <class Number, class Parse>
bool scanNumber(const NSScanner& self, Number* value, const Parse& parse) {
  Fields& f = fields(self);
  const std::size_t start = afterSkipped(f);
  const TextView rest = textOf(f).sub(start);
  if (rest.empty() || internal::isWhiteSpace(rest[0])) return false;
  const auto parsed = parse(rest);
  if (!parsed) return false;
  f.location = start + parsed->end;
  if (value != nullptr) *value = static_cast<Number>(parsed->value);
  return true;
}

// Takes the units from `start` to `end`, when there are any.
bool take(const NSScanner& self, std::size_t start, std::size_t end, NSString* result) {
  if (start == end) return false;
  Fields& f = fields(self);
  const NSString taken = detail::makeString(textOf(f).sub(start, end - start));
  f.location = end;
  if (result != nullptr) *result = taken;
  return true;
}

internal::TextOptions optionsOf(const Fields& f, bool anchored) {
  return {.caseInsensitive = !f.caseSensitive, .anchored = anchored};
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"scannerWithString:">([](const Class& self, const NSString& string) -> id {
      return send<"initWithString:", id>(send<"alloc", id>(self), string);
    }),
    method<"initWithString:">([](const NSScanner& self, Cmd cmd, const NSString& string) -> id {
      detail::requireArgument(self, cmd.selector, string);
      Fields& f = fields(self);
      f.string = detail::isImmutableLibraryString(string.record())
                     ? string
                     : detail::makeString(detail::StringText(string));
      f.skipped = NSCharacterSet::whitespaceAndNewlineCharacterSet();
      return self;
    }),
    method<"string">([](const NSScanner& self) { return fields(self).string.get(); }),
    method<"scanLocation">([](const NSScanner& self) { return fields(self).location; }),
    method<"setScanLocation:">([](const NSScanner& self, Cmd cmd, NSUInteger location) {
      Fields& f = fields(self);
      detail::requireIndex(self, cmd.selector, location, textOf(f).size());
      f.location = location;
    }),
    method<"isAtEnd">([](const NSScanner& self) {
      const Fields& f = fields(self);
      return afterSkipped(f) == textOf(f).size();
    }),
    method<"charactersToBeSkipped">(
        [](const NSScanner& self) { return fields(self).skipped.get(); }),
    method<"setCharactersToBeSkipped:">(
        [](const NSScanner& self, const NSCharacterSet& set) { fields(self).skipped = set; }),
    method<"caseSensitive">([](const NSScanner& self) { return fields(self).caseSensitive; }),
    method<"setCaseSensitive:">(
        [](const NSScanner& self, bool sensitive) { fields(self).caseSensitive = sensitive; }),

    method<"scanInt:">([](const NSScanner& self, int* value) {
      std::int64_t wide = 0;
      if (!scanNumber(self, &wide, internal::parseInteger)) return false;
      using Limits = std::numeric_limits<int>;
      if (value != nullptr) {
        *value = static_cast<int>(std::clamp<std::int64_t>(wide, Limits::min(), Limits::max()));
      }
      return true;
    }),
    method<"scanInteger:">([](const NSScanner& self, NSInteger* value) {
      return scanNumber(self, value, internal::parseInteger);
    }),
    method<"scanLongLong:">([](const NSScanner& self, long long* value) {
      return scanNumber(self, value, internal::parseInteger);
    }),
    method<"scanUnsignedLongLong:">([](const NSScanner& self, unsigned long long* value) {
      return scanNumber(self, value, [](TextView rest) {
        return rest[0] == '-' ? std::nullopt : internal::parseUnsigned(rest);
      });
    }),
    method<"scanHexLongLong:">([](const NSScanner& self, unsigned long long* value) {
      return scanNumber(self, value, internal::parseHexadecimal);
    }),
    method<"scanDouble:">([](const NSScanner& self, double* value) {
      return scanNumber(self, value, internal::parseDouble);
    }),

    method<"scanString:intoString:">([](const NSScanner& self, Cmd cmd, const NSString& string,
                                        NSString* result) {
      detail::requireArgument(self, cmd.selector, string);
      const Fields& f = fields(self);
      const std::size_t start = afterSkipped(f);
      const auto match =
          internal::findText(textOf(f).sub(start), detail::StringText(string), optionsOf(f, true));
      return match && take(self, start, start + match->length, result);
    }),
    method<"scanUpToString:intoString:">([](const NSScanner& self, Cmd cmd, const NSString& string,
                                            NSString* result) {
      detail::requireArgument(self, cmd.selector, string);
      const Fields& f = fields(self);
      const std::size_t start = afterSkipped(f);
      const TextView rest = textOf(f).sub(start);
      const auto match = internal::findText(rest, detail::StringText(string), optionsOf(f, false));
      return take(self, start, start + (match ? match->location : rest.size()), result);
    }),
    method<"scanCharactersFromSet:intoString:">(
        [](const NSScanner& self, Cmd cmd, const NSCharacterSet& set, NSString* result) {
          detail::requireArgument(self, cmd.selector, set);
          const Fields& f = fields(self);
          const std::size_t start = afterSkipped(f);
          const std::size_t count = detail::charactersOf(set).span(textOf(f).sub(start));
          return take(self, start, start + count, result);
        }),
    method<"scanUpToCharactersFromSet:intoString:">(
        [](const NSScanner& self, Cmd cmd, const NSCharacterSet& set, NSString* result) {
          detail::requireArgument(self, cmd.selector, set);
          const Fields& f = fields(self);
          const std::size_t start = afterSkipped(f);
          const TextView rest = textOf(f).sub(start);
          const auto match = detail::charactersOf(set).find(rest, false, false);
          return take(self, start, start + (match ? match->location : rest.size()), result);
        }),
};

constexpr ClassDefinition kDefinition{
    .name = "NSScanner", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<NSScanner> NSScanner::classPair{kDefinition};

}  // namespace brindle
